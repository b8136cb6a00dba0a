#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>

#include <array>
#include <optional>

/**
 * Plain value types and geometry of the slice panes the quad view annotates.
 * Every tolerance is an argument: callers use 1e-5 for alignment and matching
 * and 1e-12 for plane normals.
 */
namespace voxelia::quadview::annotations
{
using Vec3 = std::array<double, 3>;
using Vec2 = std::array<double, 2>;

/** The tolerance of the alignment and matching tests the annotations make. */
inline constexpr double k_AlignEps = 1e-5;
/** The tolerance of planeNormal as the annotations call it. */
inline constexpr double k_PlaneNormalEps = 1e-12;

/** One value per slice pane, numbered as the slice panes: 0 YZ, 1 XZ, 2 XY. */
enum class SlicePaneRole : int
{
  YZ = 0,
  XZ = 1,
  XY = 2
};

/** "YZ", "XZ" or "XY"; an empty string out of range. */
KXVTKLIB_EXPORT QString slicePaneName(SlicePaneRole role);

/**
 * The plane a slice pane shows: a point on it and two in-plane axes. The axes
 * are expected to be unit length and orthogonal; nothing enforces it.
 */
struct SlicePlane
{
  Vec3 origin{ 0.0, 0.0, 0.0 };
  Vec3 axisU{ 0.0, 0.0, 0.0 };
  Vec3 axisV{ 0.0, 0.0, 0.0 };
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
  bool contains(const Vec3& p) const
  {
    return p[0] >= xmin && p[0] <= xmax && p[1] >= ymin && p[1] <= ymax && p[2] >= zmin &&
           p[2] <= zmax;
  }
  /** True when all three extents are empty at once, as for a missing record. */
  bool isDegenerate() const { return xmin == xmax && ymin == ymax && zmin == zmax; }
};

/** The vector product a x b. */
KXVTKLIB_EXPORT Vec3 cross(const Vec3& a, const Vec3& b);
/** Scales @p v to unit length; false and @p v unchanged when its length is below @p eps. */
KXVTKLIB_EXPORT bool normalize(Vec3& v, double eps);
/** Normalised axisU x axisV, or nothing when that cannot be normalised. */
KXVTKLIB_EXPORT std::optional<Vec3> planeNormal(const SlicePlane& plane, double eps);
/** (d . axisU, d . axisV) with d = p - origin. */
KXVTKLIB_EXPORT Vec2 inPlaneFromWorld(const SlicePlane& plane, const Vec3& p);
/** origin + u axisU + v axisV. */
KXVTKLIB_EXPORT Vec3 worldFromInPlane(const SlicePlane& plane, const Vec2& uv);
/**
 * Whether @p axis points along world axis @p index (either sign): false for an
 * index above 2 or a length below @p eps, else |axis[index]| / length >= 1 - eps.
 */
KXVTKLIB_EXPORT bool axisIsParallelToWorldAxis(const Vec3& axis, int index, double eps);
/** The first world axis 0, 1, 2 that @p axis is parallel to, or -1. */
KXVTKLIB_EXPORT int worldAxisIndexOf(const Vec3& axis, double eps);
/** "X", "Y", "Z" for the world axis @p axis is parallel to, or an empty string. */
KXVTKLIB_EXPORT QString worldAxisName(const Vec3& axis, double eps);
/** Both in-plane axes lie along world axes. */
KXVTKLIB_EXPORT bool slicePlaneIsAxisAligned(const SlicePlane& plane, double eps);
/**
 * axisU with axisU and axisV with axisV each have a signed cosine >= 1 - eps;
 * an axis shorter than @p eps fails.
 */
KXVTKLIB_EXPORT bool slicePlaneAxesMatch(const SlicePlane& a, const SlicePlane& b, double eps);
/**
 * The same slice: origins within @p eps and normals (axisU x axisV, not
 * normalised first) with |cosine| >= 1 - eps; a normal shorter than @p eps fails.
 */
KXVTKLIB_EXPORT bool sliceMatches(const SlicePlane& a, const SlicePlane& b, double eps);
/** @p p moved along the unit @p normal onto the plane through @p origin. */
KXVTKLIB_EXPORT Vec3 projectOntoPlane(const Vec3& p, const Vec3& origin, const Vec3& normal);
/** Signed distance of @p p from the plane through @p origin with unit @p normal. */
KXVTKLIB_EXPORT double signedDistanceToPlane(const Vec3& p, const Vec3& origin, const Vec3& normal);
} // namespace voxelia::quadview::annotations
