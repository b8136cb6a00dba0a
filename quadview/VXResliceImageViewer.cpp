#include "quadview/VXResliceImageViewer.hpp"

#include <vtkCommand.h>
#include <vtkImageData.h>
#include <vtkObjectFactory.h>
#include <vtkResliceCursor.h>

#include <algorithm>
#include <cmath>

vtkStandardNewMacro(VXResliceImageViewer);

void VXResliceImageViewer::IncrementSlice(int n)
{
  if (GetResliceMode() == RESLICE_OBLIQUE)
  {
    Superclass::IncrementSlice(n);
    return;
  }
  vtkResliceCursor* cursor = GetResliceCursor();
  vtkImageData* image = cursor != nullptr ? cursor->GetImage() : nullptr;
  const int axis = GetSliceOrientation();
  if (image == nullptr || axis < 0 || axis > 2)
    return;
  double spacing[3];
  double origin[3];
  int extent[6];
  image->GetSpacing(spacing);
  image->GetOrigin(origin);
  image->GetExtent(extent);
  if (spacing[axis] == 0.0)
    return;

  double center[3];
  cursor->GetCenter(center);
  const long current = std::lround((center[axis] - origin[axis]) / spacing[axis]);
  const long step = std::lround(n * SliceScrollFactor);
  const long next = std::clamp<long>(current + step, extent[2 * axis], extent[2 * axis + 1]);
  if (next == current)
    return;

  center[axis] = static_cast<double>(next) * spacing[axis] + origin[axis];
  cursor->SetCenter(center);
  SetSlice(static_cast<int>(next));
  InvokeEvent(SliceChangedEvent);
  InvokeEvent(vtkCommand::InteractionEvent);
}
