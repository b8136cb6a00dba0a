#pragma once

// Helpers for the quad view tests: a test image with a different spacing and
// origin on each axis, and three slice panes sharing one reslice cursor, set
// up the way the quad view sets up its panes.
#include "QtTestSupport.hpp"

#include <quadview/VXQuadView.hpp>
#include <quadview/VXResliceCursorLineRepresentation.hpp>
#include <quadview/VXResliceCursorThickLineRepresentation.hpp>
#include <quadview/VXResliceImageViewer.hpp>
#include <quadview/vtkInteractorStyleImageNoWindowLevel.hpp>
#include <quadview/vtkSnapToClickCallback.hpp>

#include <QVTKOpenGLNativeWidget.h>
#include <QtTest/QTest>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QWidget>

#include <vtkCellData.h>
#include <vtkCommand.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkPlane.h>
#include <vtkPointData.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorActor.h>
#include <vtkResliceCursorPolyDataAlgorithm.h>
#include <vtkResliceCursorWidget.h>
#include <vtkSmartPointer.h>

#include <array>
#include <functional>
#include <cmath>
#include <numbers>
#include <memory>

namespace kxtest
{
/**
 * A float image of nx x ny x nz points, spacing (0.5, 1, 2) and origin (-5, 10, 3),
 * value x + 100 y + 10000 z by index: every voxel tells where it is.
 */
inline vtkSmartPointer<vtkImageData> makeQuadViewImage(int nx = 21, int ny = 31, int nz = 41)
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(nx, ny, nz);
  image->SetSpacing(0.5, 1.0, 2.0);
  image->SetOrigin(-5.0, 10.0, 3.0);
  vtkNew<vtkFloatArray> values;
  values->SetName("index");
  values->SetNumberOfTuples(static_cast<vtkIdType>(nx) * ny * nz);
  vtkIdType id = 0;
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i)
        values->SetValue(id++, static_cast<float>(i + 100 * j + 10000 * k));
  image->GetPointData()->SetScalars(values);
  return image;
}

/**
 * An image as the host hands it over: @p nx x @p ny x @p nz voxels whose values are the cell
 * array @p name; @p value gives each component of voxel (i, j, k).
 */
inline vtkSmartPointer<vtkImageData> hostCellImage(
  int nx, int ny, int nz, int components, const std::function<float(int, int, int, int)>& value,
  const char* name = "values")
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(nx + 1, ny + 1, nz + 1);
  vtkNew<vtkFloatArray> array;
  array->SetName(name);
  array->SetNumberOfComponents(components);
  array->SetNumberOfTuples(static_cast<vtkIdType>(nx) * ny * nz);
  vtkIdType id = 0;
  for (int k = 0; k < nz; ++k)
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i, ++id)
        for (int c = 0; c < components; ++c)
          array->SetComponent(id, c, value(i, j, k, c));
  image->GetCellData()->SetScalars(array);
  return image;
}

/**
 * The quad view's cursor back at rest, centred on @p center and turned by @p zDegrees about z,
 * announced through the cursor widget of slice pane 0 as a drag would be. The cursor's planes
 * are its truth: its axes are computed from their normals.
 */
inline void setQuadViewCursor(VXQuadView& view, const double center[3], double zDegrees)
{
  vtkResliceCursor* cursor = view.getViewer(0)->GetResliceCursor();
  cursor->Reset();
  cursor->SetCenter(center[0], center[1], center[2]);
  const double a = zDegrees * std::numbers::pi / 180.0;
  for (int i = 0; i < 2; ++i)
  {
    const double* n = cursor->GetPlane(i)->GetNormal();
    cursor->GetPlane(i)->SetNormal(std::cos(a) * n[0] - std::sin(a) * n[1],
                                   std::sin(a) * n[0] + std::cos(a) * n[1], n[2]);
  }
  cursor->Modified();
  cursor->Update();
  vtkResliceCursorWidget* widget = view.getViewer(0)->GetResliceCursorWidget();
  widget->InvokeEvent(vtkResliceCursorWidget::ResliceAxesChangedEvent);
  widget->InvokeEvent(vtkCommand::EndInteractionEvent);
}

/**
 * Three slice panes side by side (slice pane index 0 YZ, 1 XZ, 2 XY), each a
 * QVTKOpenGLNativeWidget with a VXResliceImageViewer; the first viewer's
 * cursor is shared by all three, the image style has no window and level,
 * the quad view's cursor representations are installed and each pane snaps
 * the cursor on a double click.
 */
class ResliceTrio
{
public:
  explicit ResliceTrio(vtkImageData* image, int paneSize = 300)
    : m_Image(image)
  {
    m_Host = std::make_unique<QWidget>();
    auto* layout = new QHBoxLayout(m_Host.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int i = 0; i < 3; ++i)
    {
      m_Panes[i] = new QVTKOpenGLNativeWidget(m_Host.get());
      m_Panes[i]->setFixedSize(paneSize, paneSize);
      layout->addWidget(m_Panes[i]);
      m_Viewers[i] = vtkSmartPointer<VXResliceImageViewer>::New();
      auto window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
      m_Viewers[i]->SetRenderWindow(window);
      m_Panes[i]->setRenderWindow(window.Get());
      m_Viewers[i]->SetupInteractor(m_Panes[i]->renderWindow()->GetInteractor());
    }
    cursor()->SetZViewUp(0.0, 1.0, 0.0);
    for (int i = 0; i < 3; ++i)
    {
      VXResliceImageViewer* viewer = m_Viewers[i];
      viewer->SetResliceCursor(cursor());
      representation(i)->GetResliceCursorActor()->GetCursorAlgorithm()->SetReslicePlaneNormal(i);
      viewer->SetInputData(image);
      viewer->SetSliceOrientation(i);
      viewer->SetResliceModeToAxisAligned();
      viewer->SetSlice((image->GetDimensions()[i] - 1) / 2);
      m_Styles[i] = vtkSmartPointer<vtkInteractorStyleImageNoWindowLevel>::New();
      interactor(i)->SetInteractorStyle(m_Styles[i]);
      widget(i)->SetEnabled(1);
      widget(i)->SetManageWindowLevel(0);
      viewer->GetImageActor()->SetVisibility(0);
      installRepresentation(i, false, false);
      m_Snaps[i] = vtkSmartPointer<vtkSnapToClickCallback>::New();
      m_Snaps[i]->setPane(i, viewer, widget(i), cursor());
      interactor(i)->AddObserver(vtkCommand::LeftButtonDoubleClickEvent, m_Snaps[i]);
    }
    m_Host->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(m_Host.get()));
    pump();
    for (int i = 0; i < 3; ++i)
    {
      m_Viewers[i]->Render();
      renderer(i)->ResetCamera();
      m_Viewers[i]->Render();
    }
  }

  /** Puts a thin or thick quad view representation on pane @p i. */
  void installRepresentation(int i, bool thick, bool oblique)
  {
    vtkSmartPointer<vtkResliceCursorLineRepresentation> rep;
    if (thick)
      rep = vtkSmartPointer<VXResliceCursorThickLineRepresentation>::New();
    else
      rep = vtkSmartPointer<VXResliceCursorLineRepresentation>::New();
    if (auto* old = dynamic_cast<VXResliceCursorRepresentationCommon*>(representation(i)))
      old->removeActorsFromRenderer(renderer(i));
    rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetResliceCursor(cursor());
    rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetReslicePlaneNormal(i);
    widget(i)->SetRepresentation(rep);
    rep->SetRenderer(renderer(i));
    dynamic_cast<VXResliceCursorRepresentationCommon*>(rep.Get())->setObliqueMode(oblique);
  }

  /** Oblique or axis aligned reslicing on all panes, with fresh representations. */
  void setOblique(bool oblique)
  {
    for (int i = 0; i < 3; ++i)
    {
      m_Viewers[i]->SetResliceMode(oblique ? 1 : 0);
      interactor(i)->SetInteractorStyle(m_Styles[i]);
      widget(i)->SetEnabled(1);
      widget(i)->SetManageWindowLevel(0);
      m_Viewers[i]->GetImageActor()->SetVisibility(0);
      installRepresentation(i, false, oblique);
    }
    renderAll();
  }

  void renderAll()
  {
    for (auto& viewer : m_Viewers)
      viewer->Render();
  }

  /** Display position (pixels) of a world point in pane @p i. */
  std::array<int, 2> toDisplay(int i, const double world[3])
  {
    vtkRenderer* r = renderer(i);
    r->SetWorldPoint(world[0], world[1], world[2], 1.0);
    r->WorldToDisplay();
    const double* d = r->GetDisplayPoint();
    return { static_cast<int>(std::lround(d[0])), static_cast<int>(std::lround(d[1])) };
  }

  /** World point under a display position of pane @p i, on the plane of the focal point. */
  std::array<double, 3> toWorld(int i, double x, double y)
  {
    vtkRenderer* r = renderer(i);
    r->SetWorldPoint(cursor()->GetCenter()[0], cursor()->GetCenter()[1], cursor()->GetCenter()[2],
                     1.0);
    r->WorldToDisplay();
    const double depth = r->GetDisplayPoint()[2];
    r->SetDisplayPoint(x, y, depth);
    r->DisplayToWorld();
    const double* w = r->GetWorldPoint();
    return { w[0] / w[3], w[1] / w[3], w[2] / w[3] };
  }

  VXResliceImageViewer* viewer(int i) const { return m_Viewers[i]; }
  vtkResliceCursorWidget* widget(int i) const { return m_Viewers[i]->GetResliceCursorWidget(); }
  vtkResliceCursorLineRepresentation* representation(int i) const
  {
    return vtkResliceCursorLineRepresentation::SafeDownCast(widget(i)->GetRepresentation());
  }
  vtkRenderWindowInteractor* interactor(int i) const { return m_Viewers[i]->GetInteractor(); }
  vtkRenderer* renderer(int i) const { return m_Viewers[i]->GetRenderer(); }
  vtkResliceCursor* cursor() const { return m_Viewers[0]->GetResliceCursor(); }
  QVTKOpenGLNativeWidget* pane(int i) const { return m_Panes[i]; }
  vtkImageData* image() const { return m_Image; }

private:
  vtkSmartPointer<vtkImageData> m_Image;
  std::unique_ptr<QWidget> m_Host;
  std::array<QVTKOpenGLNativeWidget*, 3> m_Panes{};
  std::array<vtkSmartPointer<VXResliceImageViewer>, 3> m_Viewers;
  std::array<vtkSmartPointer<vtkInteractorStyleImageNoWindowLevel>, 3> m_Styles;
  std::array<vtkSmartPointer<vtkSnapToClickCallback>, 3> m_Snaps;
};
} // namespace kxtest
