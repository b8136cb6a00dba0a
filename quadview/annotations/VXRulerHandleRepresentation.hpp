#pragma once

#include "KXVtkLib_export.h"

#include <vtkPointHandleRepresentation3D.h>
#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

class vtkActor2D;
class vtkRenderer;
class vtkTextActor;

namespace voxelia::quadview::annotations
{
/**
 * The end point handle of a quad view ruler: a ring with a crosshair and a
 * small badge with the end's digit, all in screen pixels at the handle's world
 * position. Highlight state 0 is idle, 1 hovered, 2 grabbed; the ring shows the
 * state. The ring, crosshair and badge are 2D actors the ruler adds to the
 * pane's renderer, so their visibility follows setHandleVisibility.
 */
class KXVTKLIB_EXPORT VXRulerHandleRepresentation : public vtkPointHandleRepresentation3D
{
public:
  static VXRulerHandleRepresentation* New();
  vtkTypeMacro(VXRulerHandleRepresentation, vtkPointHandleRepresentation3D);

  /** Which end this handle is, 1 or 2; the badge shows it. */
  void SetEndpointIndex(int index);
  int GetEndpointIndex() const { return m_EndpointIndex; }
  /** Shows or hides the whole handle: base cursor, ring, crosshair and badge. */
  void setHandleVisibility(bool visible);
  bool handleVisibility() const { return m_HandleVisible; }
  /** 0 idle, 1 hovered, 2 grabbed. */
  int highlightState() const { return m_HighlightState; }
  /** Adds ring, crosshair and badge to @p renderer (once), removing them from a previous one. */
  void registerActorsWithRenderer(vtkRenderer* renderer);
  /** Takes ring, crosshair and badge out of the renderer they were added to. */
  void unregisterActorsFromRenderer();

  int ComputeInteractionState(int X, int Y, int modify = 0) override;
  void Highlight(int highlight) override;

protected:
  VXRulerHandleRepresentation();
  ~VXRulerHandleRepresentation() override;

  void buildRingAndCrosshair();
  void buildDigitBadge();
  void applyActorVisibilities();
  void setHighlightState(int state);

private:
  VXRulerHandleRepresentation(const VXRulerHandleRepresentation&) = delete;
  void operator=(const VXRulerHandleRepresentation&) = delete;

  int m_EndpointIndex = 1;
  bool m_HandleVisible = true;
  int m_HighlightState = 0;
  vtkSmartPointer<vtkActor2D> m_Ring;
  vtkSmartPointer<vtkActor2D> m_Crosshair;
  vtkSmartPointer<vtkTextActor> m_Badge;
  vtkWeakPointer<vtkRenderer> m_ActorRenderer;
};
} // namespace voxelia::quadview::annotations
