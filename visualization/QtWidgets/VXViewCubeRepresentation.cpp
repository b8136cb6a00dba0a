#include "visualization/QtWidgets/VXViewCubeRepresentation.hpp"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXViewCubeRepresentation);

namespace
{
// VTK's own gizmo colours: the cube looks as it always has, and the quad view's plane
// outlines and crosshair lines take the colour of the axis they stand for
constexpr std::array<std::array<double, 3>, 3> k_AxisColors{
  { { 0.870, 0.254, 0.188 }, { 0.952, 0.752, 0.090 }, { 0.654, 0.823, 0.549 } }
};
} // namespace

VXViewCubeRepresentation::VXViewCubeRepresentation()
{
  for (int axis = 0; axis < 3; ++axis)
  {
    const auto& color = k_AxisColors[static_cast<size_t>(axis)];
    SetAxisColor(axis, color[0], color[1], color[2]);
  }
}

VXViewCubeRepresentation::~VXViewCubeRepresentation() = default;

std::array<double, 3> VXViewCubeRepresentation::GetAxisColor(int axis)
{
  if (axis < 0 || axis > 2)
    return { 0.0, 0.0, 0.0 };
  return k_AxisColors[static_cast<size_t>(axis)];
}
