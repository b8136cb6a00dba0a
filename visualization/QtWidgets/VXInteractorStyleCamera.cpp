#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <vtkCamera.h>
#include <vtkCommand.h>
#include <vtkMath.h>
#include <vtkObjectFactory.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTransform.h>

#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkRenderWindowInteractor.h>

#include <cmath>
#include <string>

vtkStandardNewMacro(VXInteractorStyleCamera);

VXInteractorStyleCamera::VXInteractorStyleCamera()
  : m_Transform(vtkSmartPointer<vtkTransform>::New())
  , m_RotationTransform(vtkSmartPointer<vtkTransform>::New())
{
  // The style announces the end of a rotation, pan or zoom on itself; listeners
  // of the view (data views going back to full geometry) watch the interactor.
  m_EndInteractionForwarder = vtkSmartPointer<vtkCallbackCommand>::New();
  m_EndInteractionForwarder->SetClientData(this);
  m_EndInteractionForwarder->SetCallback(
    [](vtkObject*, unsigned long, void* clientData, void*)
    {
      auto* style = static_cast<VXInteractorStyleCamera*>(clientData);
      if (style->Interactor != nullptr)
        style->Interactor->InvokeEvent(vtkCommand::EndInteractionEvent);
    });
  AddObserver(vtkCommand::EndInteractionEvent, m_EndInteractionForwarder);
}

VXInteractorStyleCamera::~VXInteractorStyleCamera() = default;

void VXInteractorStyleCamera::getCenterOfRotation(double center[3]) const
{
  for (int i = 0; i < 3; ++i)
    center[i] = m_CenterOfRotation[i];
}

void VXInteractorStyleCamera::setCenterOfRotation(const double center[3])
{
  for (int i = 0; i < 3; ++i)
    m_CenterOfRotation[i] = center[i];
}

void VXInteractorStyleCamera::OnKeyPress()
{
  if (Interactor != nullptr)
  {
    const char* keySym = Interactor->GetKeySym();
    const std::string key = keySym != nullptr ? keySym : "";
    const char code = Interactor->GetKeyCode();
    if (key == "1" || code == '1')
    {
      m_Pick1Mode = true;
      m_Pick2Mode = false;
    }
    else if (key == "2" || code == '2')
    {
      m_Pick2Mode = true;
      m_Pick1Mode = false;
    }
  }
  InvokeEvent(k_KeyPressEvent, nullptr);
}

void VXInteractorStyleCamera::OnKeyRelease()
{
  if (Interactor != nullptr)
  {
    const char* keySym = Interactor->GetKeySym();
    const std::string key = keySym != nullptr ? keySym : "";
    const char code = Interactor->GetKeyCode();
    if (key == "1" || key == "2" || code == '1' || code == '2')
    {
      m_Pick1Mode = false;
      m_Pick2Mode = false;
    }
  }
  InvokeEvent(k_KeyReleaseEvent, nullptr);
}

void VXInteractorStyleCamera::OnChar()
{
  // the base styles would switch representations, stereo, pick or end the application
}

void VXInteractorStyleCamera::OnLeftButtonDown()
{
  // in the 2D image mode nothing may start a rotation: that is the 2D lock
  if (GetInteractionMode() == VTKIS_IMAGE3D)
    vtkInteractorStyleTrackballCamera::OnLeftButtonDown();
  updateLinkedRenderWindows();
  if (m_Pick1Mode || m_Pick2Mode || m_CellPickMode)
    InvokeEvent(vtkCommand::PickEvent, nullptr);
}

void VXInteractorStyleCamera::OnRightButtonDown()
{
  if (GetInteractionMode() == VTKIS_IMAGE2D)
    vtkInteractorStyleImage::OnRightButtonDown();
  else
    vtkInteractorStyleTrackballCamera::OnRightButtonDown();
  updateLinkedRenderWindows();
  if (m_Pick1Mode || m_Pick2Mode || m_CellPickMode)
    InvokeEvent(vtkCommand::PickEvent, nullptr);
}

void VXInteractorStyleCamera::OnMouseMove()
{
  if (GetInteractionMode() == VTKIS_IMAGE2D)
    vtkInteractorStyleImage::OnMouseMove();
  else
    vtkInteractorStyleTrackballCamera::OnMouseMove();
  if (m_ViewWidget != nullptr)
    updateLinkedRenderWindows();
}

void VXInteractorStyleCamera::OnMouseWheelForward()
{
  vtkInteractorStyleTrackballCamera::OnMouseWheelForward();
  if (m_ViewWidget != nullptr)
    updateLinkedRenderWindows();
}

void VXInteractorStyleCamera::OnMouseWheelBackward()
{
  vtkInteractorStyleTrackballCamera::OnMouseWheelBackward();
  if (m_ViewWidget != nullptr)
    updateLinkedRenderWindows();
}

void VXInteractorStyleCamera::Rotate()
{
  if (CurrentRenderer == nullptr || Interactor == nullptr)
    return;
  vtkRenderWindowInteractor* rwi = Interactor;
  const int* size = CurrentRenderer->GetRenderWindow()->GetSize();
  if (size[0] == 0 || size[1] == 0)
    return;

  const int dx = rwi->GetEventPosition()[0] - rwi->GetLastEventPosition()[0];
  const int dy = rwi->GetEventPosition()[1] - rwi->GetLastEventPosition()[1];
  const double rxf = dx * (-20.0 / size[0]) * MotionFactor;
  const double ryf = dy * (-20.0 / size[1]) * MotionFactor;

  vtkCamera* camera = CurrentRenderer->GetActiveCamera();
  double position[3];
  double focalPoint[3];
  double viewUp[3];
  camera->GetPosition(position);
  camera->GetFocalPoint(focalPoint);
  camera->GetViewUp(viewUp);

  double direction[3];
  vtkMath::Subtract(focalPoint, position, direction);
  double right[3];
  vtkMath::Cross(direction, viewUp, right);
  // a view up along the view direction leaves no axis to turn around
  if (vtkMath::Norm(right) < 1e-8)
    return;
  vtkMath::Normalize(right);
  const double minusRight[3] = { -right[0], -right[1], -right[2] };

  m_Transform->Identity();
  m_Transform->Translate(m_CenterOfRotation[0], m_CenterOfRotation[1], m_CenterOfRotation[2]);
  m_Transform->RotateWXYZ(rxf, viewUp);
  m_Transform->RotateWXYZ(ryf, minusRight);
  m_Transform->Translate(-m_CenterOfRotation[0], -m_CenterOfRotation[1], -m_CenterOfRotation[2]);

  m_RotationTransform->Identity();
  m_RotationTransform->RotateWXYZ(rxf, viewUp);
  m_RotationTransform->RotateWXYZ(ryf, minusRight);

  double newPosition[3];
  double newFocalPoint[3];
  double newViewUp[3];
  m_Transform->TransformPoint(position, newPosition);
  m_Transform->TransformPoint(focalPoint, newFocalPoint);
  m_RotationTransform->TransformVector(viewUp, newViewUp);
  camera->SetPosition(newPosition);
  camera->SetFocalPoint(newFocalPoint);
  camera->SetViewUp(newViewUp);
  camera->OrthogonalizeViewUp();

  if (AutoAdjustCameraClippingRange)
    CurrentRenderer->ResetCameraClippingRange();
  if (rwi->GetLightFollowCamera())
    CurrentRenderer->UpdateLightsGeometryToFollowCamera();
  rwi->Render();
}

void VXInteractorStyleCamera::Dolly()
{
  if (CurrentRenderer == nullptr || Interactor == nullptr)
    return;
  const double* center = CurrentRenderer->GetCenter();
  if (center[1] == 0.0)
    return;
  const int dy = Interactor->GetEventPosition()[1] - Interactor->GetLastEventPosition()[1];
  const double factor = std::pow(1.1, dy * MotionFactor / center[1]);
  Dolly(factor);
}

void VXInteractorStyleCamera::Dolly(double factor)
{
  vtkInteractorStyleTrackballCamera::Dolly(factor);
}

bool VXInteractorStyleCamera::altKey() const
{
  return Interactor != nullptr && Interactor->GetAltKey() != 0;
}

bool VXInteractorStyleCamera::ctrlKey() const
{
  return Interactor != nullptr && Interactor->GetControlKey() != 0;
}

bool VXInteractorStyleCamera::shiftKey() const
{
  return Interactor != nullptr && Interactor->GetShiftKey() != 0;
}

void VXInteractorStyleCamera::updateLinkedRenderWindows()
{
  if (m_ViewWidget == nullptr)
    return;
  VXVisualizationWidget* own = m_ViewWidget->getVisualizationWidget();
  if (own == nullptr)
    return;
  for (VXVisualizationWidget* linked : own->getLinkedWidgets())
  {
    if (linked != nullptr && linked != own)
      linked->render();
  }
}
