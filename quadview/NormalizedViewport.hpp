#pragma once

// Small geometry on a slice pane's normalised viewport (0..1 on both axes), shared by
// the cursor representations (rotation arrows) and the reslice callback (edge labels).
#include <vtkRenderer.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace KXVtk::quadview
{
/** Direction components below this count as parallel to an edge. */
constexpr double k_ParallelEps = 1e-10;

/** A world point in the renderer's normalised viewport coordinates; false without a size. */
inline bool toNormalizedViewport(vtkRenderer* renderer, const double world[3], double out[2])
{
  const int* size = renderer->GetSize();
  if (size[0] <= 0 || size[1] <= 0)
    return false;
  renderer->SetWorldPoint(world[0], world[1], world[2], 1.0);
  renderer->WorldToDisplay();
  const double* display = renderer->GetDisplayPoint();
  const int* origin = renderer->GetOrigin();
  out[0] = (display[0] - origin[0]) / size[0];
  out[1] = (display[1] - origin[1]) / size[1];
  return true;
}

/** Clips the line c + t d to the unit square (slab method); true when a piece remains. */
inline bool clipToUnitSquare(const double c[2], const double d[2], double& t0, double& t1)
{
  t0 = -1e30;
  t1 = 1e30;
  for (int k = 0; k < 2; ++k)
  {
    if (std::abs(d[k]) < k_ParallelEps)
    {
      if (c[k] < 0.0 || c[k] > 1.0)
        return false;
      continue;
    }
    double ta = (0.0 - c[k]) / d[k];
    double tb = (1.0 - c[k]) / d[k];
    if (ta > tb)
      std::swap(ta, tb);
    t0 = std::max(t0, ta);
    t1 = std::min(t1, tb);
  }
  return t0 < t1;
}
} // namespace KXVtk::quadview
