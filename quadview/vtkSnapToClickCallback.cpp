#include "quadview/vtkSnapToClickCallback.hpp"

#include "quadview/VXResliceImageViewer.hpp"

#include <vtkImageData.h>
#include <vtkObjectFactory.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorWidget.h>
#include <vtkWorldPointPicker.h>

#include <algorithm>

vtkStandardNewMacro(vtkSnapToClickCallback);

vtkSnapToClickCallback::vtkSnapToClickCallback()
  : m_Picker(vtkSmartPointer<vtkWorldPointPicker>::New())
{
}

vtkSnapToClickCallback::~vtkSnapToClickCallback() = default;

void vtkSnapToClickCallback::setPane(int slicePaneIndex, VXResliceImageViewer* viewer,
                                     vtkResliceCursorWidget* widget, vtkResliceCursor* cursor)
{
  m_SlicePaneIndex = slicePaneIndex;
  m_Viewer = viewer;
  m_Widget = widget;
  m_Cursor = cursor;
}

void vtkSnapToClickCallback::clear()
{
  m_SlicePaneIndex = -1;
  m_Viewer = nullptr;
  m_Widget = nullptr;
  m_Cursor = nullptr;
}

void vtkSnapToClickCallback::Execute(vtkObject*, unsigned long event, void*)
{
  if (event != vtkCommand::LeftButtonDoubleClickEvent)
    return;
  if (m_Viewer == nullptr || m_Widget == nullptr || m_Cursor == nullptr || m_Picker == nullptr)
    return;
  vtkImageData* image = m_Cursor->GetImage();
  vtkRenderWindowInteractor* interactor = m_Viewer->GetInteractor();
  vtkRenderer* renderer = m_Viewer->GetRenderer();
  if (image == nullptr || m_Viewer->GetRenderWindow() == nullptr || interactor == nullptr ||
      renderer == nullptr)
    return;

  const int* position = interactor->GetEventPosition();
  m_Picker->Pick(position[0], position[1], 0.0, renderer);
  double point[3];
  m_Picker->GetPickPosition(point);
  const double* bounds = image->GetBounds();
  for (int i = 0; i < 3; ++i)
    point[i] = std::clamp(point[i], bounds[2 * i], bounds[2 * i + 1]);
  m_Cursor->SetCenter(point);
  m_Widget->InvokeEvent(vtkResliceCursorWidget::ResliceAxesChangedEvent);
  m_Widget->InvokeEvent(vtkCommand::EndInteractionEvent);
}
