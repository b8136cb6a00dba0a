#pragma once

#include "KXVtkLib_export.h"
#include "quadview/VXResliceCursorRepresentationBase.hpp"

#include <vtkSmartPointer.h>

class vtkImageData;

/**
 * The thin crosshair of a quad view slice pane. It draws lines and arrows
 * only: the picture of a thin slice comes from the quad view's own
 * vtkImageSlice, so this representation shows no resliced image and its
 * reslice is fed a private one-voxel image instead of reslicing the volume.
 */
class KXVTKLIB_EXPORT VXResliceCursorLineRepresentation
  : public VXResliceCursorRepresentationBase<vtkResliceCursorLineRepresentation>
{
public:
  static VXResliceCursorLineRepresentation* New();
  vtkTypeMacro(VXResliceCursorLineRepresentation,
               VXResliceCursorRepresentationBase<vtkResliceCursorLineRepresentation>);

protected:
  VXResliceCursorLineRepresentation();
  ~VXResliceCursorLineRepresentation() override = default;

private:
  VXResliceCursorLineRepresentation(const VXResliceCursorLineRepresentation&) = delete;
  void operator=(const VXResliceCursorLineRepresentation&) = delete;

  vtkSmartPointer<vtkImageData> m_PlaceholderImage;
};
