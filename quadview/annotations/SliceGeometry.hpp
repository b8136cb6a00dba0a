#pragma once

#include <array>

namespace voxelia::quadview::annotations
{
/** One value per slice pane, numbered as the slice panes: 0 YZ, 1 XZ, 2 XY. */
enum class SlicePaneRole : int
{
  YZ = 0,
  XZ = 1,
  XY = 2
};

/**
 * The plane a slice pane shows: a point on it and two in-plane axes. The axes
 * are expected to be unit length and orthogonal; nothing enforces it.
 */
struct SlicePlane
{
  std::array<double, 3> origin{ 0.0, 0.0, 0.0 };
  std::array<double, 3> axisU{ 0.0, 0.0, 0.0 };
  std::array<double, 3> axisV{ 0.0, 0.0, 0.0 };
};

/** An axis aligned box in world coordinates. */
struct WorldBounds
{
  double xmin = 0.0;
  double xmax = 0.0;
  double ymin = 0.0;
  double ymax = 0.0;
  double zmin = 0.0;
  double zmax = 0.0;

  /** Whether @p p lies in the box, the faces included. */
  bool contains(const std::array<double, 3>& p) const
  {
    return p[0] >= xmin && p[0] <= xmax && p[1] >= ymin && p[1] <= ymax && p[2] >= zmin &&
           p[2] <= zmax;
  }
};
} // namespace voxelia::quadview::annotations
