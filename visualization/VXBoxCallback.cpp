#include "visualization/VXBoxCallback.hpp"

#include "visualization/VXBox.hpp"

#include <vtkBoxRepresentation.h>
#include <vtkBoxWidget2.h>
#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXBoxCallback);

void VXBoxCallback::Execute(vtkObject* caller, unsigned long, void*)
{
  auto* widget = vtkBoxWidget2::SafeDownCast(caller);
  auto* representation =
    widget != nullptr ? vtkBoxRepresentation::SafeDownCast(widget->GetRepresentation()) : nullptr;
  if (representation == nullptr || m_Box == nullptr)
    return;
  m_Box->takeWidgetTransform();
}
