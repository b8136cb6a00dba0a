#pragma once

#include "KXVtkLib_export.h"
#include "quadview/VXResliceCursorRepresentationBase.hpp"

/**
 * The thick crosshair of a quad view slice pane: VTK's slab reslice stays, so
 * in thick mode the pane shows the slab (minimum, maximum or mean over the
 * cursor's thickness) while lines and arrows behave as in the thin crosshair.
 */
class KXVTKLIB_EXPORT VXResliceCursorThickLineRepresentation
  : public VXResliceCursorRepresentationBase<vtkResliceCursorThickLineRepresentation>
{
public:
  static VXResliceCursorThickLineRepresentation* New();
  vtkTypeMacro(VXResliceCursorThickLineRepresentation,
               VXResliceCursorRepresentationBase<vtkResliceCursorThickLineRepresentation>);

protected:
  VXResliceCursorThickLineRepresentation() = default;
  ~VXResliceCursorThickLineRepresentation() override = default;

private:
  VXResliceCursorThickLineRepresentation(const VXResliceCursorThickLineRepresentation&) = delete;
  void operator=(const VXResliceCursorThickLineRepresentation&) = delete;
};
