#pragma once

// Three slice panes with an annotation controller each, fed the way the quad
// view feeds them: the cursor's plane, the image's bounds and the slice index
// along the pane's normal.
#include "QuadViewTestSupport.hpp"

#include <quadview/annotations/VXQuadViewAnnotationsController.hpp>
#include <quadview/annotations/VXQuadViewMark.hpp>
#include <quadview/annotations/VXQuadViewRuler.hpp>

#include <vtkImageData.h>
#include <vtkResliceCursor.h>

#include <QtWidgets/QApplication>

#include <array>
#include <cmath>
#include <memory>

namespace kxtest
{
namespace qva = voxelia::quadview::annotations;

class AnnotatedTrio
{
public:
  explicit AnnotatedTrio(int paneSize = 300)
    : m_Image(makeQuadViewImage())
    , m_Trio(m_Image, paneSize)
  {
    for (int i = 0; i < 3; ++i)
      m_Controllers[i] = std::make_unique<qva::VXQuadViewAnnotationsController>(
        static_cast<qva::SlicePaneRole>(i), m_Trio.pane(i), [this, i] { return plane(i); },
        [this] { return bounds(); }, [this, i] { return sliceIndex(i); });
  }

  /** The pane's plane: the cursor's centre and the two in-plane cursor axes. */
  qva::SlicePlane plane(int i) const
  {
    static constexpr int axes[3][2] = { { 1, 2 }, { 0, 2 }, { 0, 1 } };
    qva::SlicePlane p;
    m_Trio.cursor()->GetCenter(p.origin.data());
    for (int k = 0; k < 3; ++k)
    {
      p.axisU[k] = m_Trio.cursor()->GetAxis(axes[i][0])[k];
      p.axisV[k] = m_Trio.cursor()->GetAxis(axes[i][1])[k];
    }
    return p;
  }
  qva::WorldBounds bounds() const
  {
    double b[6];
    m_Image->GetBounds(b);
    return { b[0], b[1], b[2], b[3], b[4], b[5] };
  }
  int sliceIndex(int i) const
  {
    return static_cast<int>(std::lround(
      (m_Trio.cursor()->GetCenter()[i] - m_Image->GetOrigin()[i]) / m_Image->GetSpacing()[i]));
  }

  /** Moves the cursor's centre along world axis @p axis by @p slices voxels and tells every pane.
   */
  void moveSlice(int axis, int slices)
  {
    double c[3];
    m_Trio.cursor()->GetCenter(c);
    c[axis] += slices * m_Image->GetSpacing()[axis];
    m_Trio.cursor()->SetCenter(c);
    m_Trio.renderAll();
    for (auto& controller : m_Controllers)
      controller->onSliceChanged();
  }

  /** A ruler between two in-plane points (u, v) of pane @p i, added to its controller. */
  qva::VXQuadViewRuler* addRuler(int i, qva::Vec2 a, qva::Vec2 b, QString name = {})
  {
    const qva::SlicePlane p = plane(i);
    auto ruler = std::make_unique<qva::VXQuadViewRuler>(
      static_cast<qva::SlicePaneRole>(i), m_Trio.pane(i), controller(i),
      name.isEmpty() ? qva::VXQuadViewAnnotationsController::nextRulerName() : name, sliceIndex(i),
      p, bounds(), qva::worldFromInPlane(p, a), qva::worldFromInPlane(p, b));
    auto* raw = ruler.get();
    controller(i)->addAnnotation(std::move(ruler));
    return raw;
  }
  /** A mark at in-plane point (u, v) of pane @p i, added to its controller. */
  qva::VXQuadViewMark* addMark(int i, qva::Vec2 at, QString name = {})
  {
    const qva::SlicePlane p = plane(i);
    auto mark = std::make_unique<qva::VXQuadViewMark>(
      static_cast<qva::SlicePaneRole>(i), m_Trio.pane(i), controller(i),
      name.isEmpty() ? qva::VXQuadViewAnnotationsController::nextMarkName() : name, sliceIndex(i),
      p, bounds(), qva::worldFromInPlane(p, at));
    auto* raw = mark.get();
    controller(i)->addAnnotation(std::move(mark));
    return raw;
  }

  qva::VXQuadViewAnnotationsController* controller(int i) const { return m_Controllers[i].get(); }
  ResliceTrio& trio() { return m_Trio; }

private:
  vtkSmartPointer<vtkImageData> m_Image;
  ResliceTrio m_Trio;
  std::array<std::unique_ptr<qva::VXQuadViewAnnotationsController>, 3> m_Controllers;
};
} // namespace kxtest
