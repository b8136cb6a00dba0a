#pragma once

#include "KXVtkLib_export.h"
#include "quadview/VXResliceCursorRepresentationCommon.hpp"

#include <vtkResliceCursorLineRepresentation.h>
#include <vtkResliceCursorThickLineRepresentation.h>
#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

#include <array>

class vtkActor2D;
class vtkPolyData;
class vtkPolyDataMapper2D;
class vtkRenderer;
class vtkViewport;
class vtkWindow;

/**
 * The crosshair of a quad view slice pane, on top of VTK's thin (T =
 * vtkResliceCursorLineRepresentation) or thick (T =
 * vtkResliceCursorThickLineRepresentation) cursor representation.
 *
 * Dragging the centre or a line moves the shared cursor but never out of its
 * image, and a line moves only along the normal of the plane it stands for.
 * Rotation is only through two pairs of arrows drawn beside the lines, shown in
 * oblique mode while the mouse is over the line of their group: arrows 0 and 1
 * (group 0) turn the plane of GetPlaneAxis1(), arrows 2 and 3 (group 1) the
 * plane of GetPlaneAxis2(). VTK's rotation of both axes at once is switched off.
 */
template<class T>
class KXVTKLIB_EXPORT VXResliceCursorRepresentationBase
  : public T
  , public VXResliceCursorRepresentationCommon
{
public:
  vtkAbstractTemplateTypeMacro(VXResliceCursorRepresentationBase<T>, T);

  /** The stock build, then the arrows: added to a new renderer and placed along the lines. */
  void BuildRepresentation() override;
  /**
   * In oblique mode a press on a shown arrow starts a rotation (OnAxis1 for
   * group 0, OnAxis2 for group 1); otherwise the stock state, which also
   * decides which arrow group is hovered.
   */
  int ComputeInteractionState(int x, int y, int modify = 0) override;
  /** Rotation by an arrow, clamped moves of the centre and the lines, nothing for rotate-both. */
  void WidgetInteraction(double e[2]) override;
  int RenderOverlay(vtkViewport* viewport) override;
  void ReleaseGraphicsResources(vtkWindow* window) override;

  void setObliqueMode(bool on) override;
  bool getObliqueMode() const override { return m_ObliqueMode; }
  void removeActorsFromRenderer(vtkRenderer* renderer) override;

  /** Arrow @p index (0 to 3) fill and outline, for placement checks. */
  vtkActor2D* arrowFill(int index) const { return m_ArrowFillActors.at(index); }
  vtkActor2D* arrowOutline(int index) const { return m_ArrowOutlineActors.at(index); }
  /** Whether the last hit test struck an arrow, and of which group. */
  bool isRotating() const { return m_Rotating; }
  int activeArrowGroup() const { return m_ActiveArrowGroup; }

protected:
  VXResliceCursorRepresentationBase();
  ~VXResliceCursorRepresentationBase() override;

private:
  VXResliceCursorRepresentationBase(const VXResliceCursorRepresentationBase&) = delete;
  void operator=(const VXResliceCursorRepresentationBase&) = delete;

  void createArrows();
  void updateArrowPositions();
  bool hitTestArrows(int x, int y, int& group) const;
  void setArrowsVisible(int group, bool visible);
  void clampedTranslateCenter(double e[2]);
  double clampedTranslateAxis(double e[2], int axis);

  bool m_ObliqueMode = false;
  bool m_Rotating = false;
  int m_ActiveArrowGroup = 0;
  std::array<vtkSmartPointer<vtkActor2D>, 4> m_ArrowFillActors;
  std::array<vtkSmartPointer<vtkPolyData>, 4> m_ArrowFillPolyData;
  std::array<vtkSmartPointer<vtkPolyDataMapper2D>, 4> m_ArrowFillMappers;
  std::array<vtkSmartPointer<vtkActor2D>, 4> m_ArrowOutlineActors;
  std::array<vtkSmartPointer<vtkPolyData>, 4> m_ArrowOutlinePolyData;
  std::array<vtkSmartPointer<vtkPolyDataMapper2D>, 4> m_ArrowOutlineMappers;
  bool m_ArrowsCreated = false;
  bool m_Group0Hovered = false;
  bool m_Group1Hovered = false;
  // weak: the renderer may go first when a pane is torn down
  vtkWeakPointer<vtkRenderer> m_ArrowRenderer;
};

extern template class VXResliceCursorRepresentationBase<vtkResliceCursorLineRepresentation>;
extern template class VXResliceCursorRepresentationBase<vtkResliceCursorThickLineRepresentation>;
