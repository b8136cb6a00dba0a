#include "visualization/QtWidgets/VXViewCubeRepresentation.hpp"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXViewCubeRepresentation);

namespace
{
// red, green and blue, softened a little so that white labels stay readable on them
constexpr std::array<std::array<double, 3>, 3> k_AxisColors{
  { { 0.90, 0.22, 0.22 }, { 0.30, 0.76, 0.30 }, { 0.25, 0.50, 0.95 } }
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
