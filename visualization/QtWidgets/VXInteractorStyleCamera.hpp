#pragma once

#include <vtkSmartPointer.h>

class vtkCallbackCommand;

#include "KXVtkLib_export.h"

#include <vtkCommand.h>
#include <vtkInteractorStyleImage.h>
#include <vtkSmartPointer.h>

class vtkTransform;
class VXAbstractViewWidget;

/**
 * The mouse and key handling of a render view. In the 3D image mode the left
 * button turns the camera around a movable centre of rotation (not the focal
 * point); in the 2D image mode rotation is locked. Keys 1 and 2 arm two pick
 * modes and the cell pick mode makes a click choose the centre of rotation: a
 * click with any of them raises PickEvent for VXPickerCallback. Every key press
 * raises UserEvent and every release UserEvent + 1, so the callback can follow
 * the pick keys without handling keys itself. No other key does anything.
 */
class KXVTKLIB_EXPORT VXInteractorStyleCamera : public vtkInteractorStyleImage
{
public:
  static VXInteractorStyleCamera* New();
  vtkTypeMacro(VXInteractorStyleCamera, vtkInteractorStyleImage);

  /** Event raised on every key press, and (+1) on every release. */
  static constexpr unsigned long k_KeyPressEvent = vtkCommand::UserEvent;
  static constexpr unsigned long k_KeyReleaseEvent = vtkCommand::UserEvent + 1;

  void OnKeyPress() override;
  void OnKeyRelease() override;
  /**
   * Does nothing: VTK's character keys (wireframe, stereo, exit, pick, fly-to,
   * reset, window-level ...) have no place in a render view of the application.
   */
  void OnChar() override;
  void OnLeftButtonDown() override;
  void OnRightButtonDown() override;
  void OnMouseMove() override;
  void OnMouseWheelForward() override;
  void OnMouseWheelBackward() override;
  /** Turns the camera around the centre of rotation by the mouse motion since the last event. */
  void Rotate() override;
  /** Zooms by the vertical mouse motion since the last event. */
  void Dolly() override;

  /** Whether a click sets the centre of rotation. */
  bool cellPickModeOn() const { return m_CellPickMode; }
  /** Whether key 1 is held. */
  bool pick1ModeOn() const { return m_Pick1Mode; }
  /** Whether key 2 is held. */
  bool pick2ModeOn() const { return m_Pick2Mode; }
  /** Turns the click-sets-centre mode on or off. */
  void setCellPickMode(bool on) { m_CellPickMode = on; }
  /** Copies the centre of rotation into @p center. */
  void getCenterOfRotation(double center[3]) const;
  /** Sets the point the camera turns around. */
  void setCenterOfRotation(const double center[3]);
  /** The view frame whose linked views are redrawn during interaction; may be null. */
  void setViewWidget(VXAbstractViewWidget* viewWidget) { m_ViewWidget = viewWidget; }

protected:
  VXInteractorStyleCamera();
  ~VXInteractorStyleCamera() override;

  void Dolly(double factor) override;

  bool altKey() const;
  bool ctrlKey() const;
  bool shiftKey() const;
  /** Asks every view linked with this style's view for a frame. */
  void updateLinkedRenderWindows();

private:
  vtkSmartPointer<vtkCallbackCommand> m_EndInteractionForwarder;
  VXInteractorStyleCamera(const VXInteractorStyleCamera&) = delete;
  void operator=(const VXInteractorStyleCamera&) = delete;

  VXAbstractViewWidget* m_ViewWidget = nullptr;
  bool m_Pick1Mode = false;
  bool m_Pick2Mode = false;
  bool m_CellPickMode = false;
  double m_CenterOfRotation[3] = { 0.0, 0.0, 0.0 };
  // reused through a drag so that a rotation step allocates nothing
  vtkSmartPointer<vtkTransform> m_Transform;
  vtkSmartPointer<vtkTransform> m_RotationTransform;
};
