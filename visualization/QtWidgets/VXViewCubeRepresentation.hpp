#pragma once

#include "KXVtkLib_export.h"

#include <vtkCameraOrientationRepresentation.h>

#include <array>

/**
 * The look of the view cube: VTK's camera orientation gizmo with the
 * library's axis colours. The colours are also what the quad view paints its
 * slice plane outlines and crosshair lines with, so that a plane reads the same
 * in every pane; GetAxisColor gives them without a representation at hand.
 */
class KXVTKLIB_EXPORT VXViewCubeRepresentation : public vtkCameraOrientationRepresentation
{
public:
  static VXViewCubeRepresentation* New();
  vtkTypeMacro(VXViewCubeRepresentation, vtkCameraOrientationRepresentation);

  /** The colour of axis @p axis (0 X, 1 Y, 2 Z); black for any other index. */
  static std::array<double, 3> GetAxisColor(int axis);

protected:
  VXViewCubeRepresentation();
  ~VXViewCubeRepresentation() override;

private:
  VXViewCubeRepresentation(const VXViewCubeRepresentation&) = delete;
  void operator=(const VXViewCubeRepresentation&) = delete;
};
