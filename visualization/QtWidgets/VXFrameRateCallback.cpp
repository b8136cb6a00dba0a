#include "visualization/QtWidgets/VXFrameRateCallback.hpp"

#include <vtkObjectFactory.h>
#include <vtkRenderer.h>

vtkStandardNewMacro(VXFrameRateCallback);

void VXFrameRateCallback::Execute(vtkObject* caller, unsigned long /*eventId*/, void* /*callData*/)
{
  auto* renderer = vtkRenderer::SafeDownCast(caller);
  if (renderer == nullptr)
    return;
}
