#include "quadview/annotations/SliceGeometry.hpp"

#include <cmath>

namespace voxelia::quadview::annotations
{
namespace
{
double dot(const Vec3& a, const Vec3& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double length(const Vec3& v)
{
  return std::sqrt(dot(v, v));
}

/** Cosine of the angle between @p a and @p b, or nothing when either is shorter than @p eps. */
std::optional<double> cosine(const Vec3& a, const Vec3& b, double eps)
{
  const double la = length(a);
  const double lb = length(b);
  if (la < eps || lb < eps)
    return std::nullopt;
  return dot(a, b) / (la * lb);
}
} // namespace

QString slicePaneName(SlicePaneRole role)
{
  switch (role)
  {
    case SlicePaneRole::YZ:
      return QStringLiteral("YZ");
    case SlicePaneRole::XZ:
      return QStringLiteral("XZ");
    case SlicePaneRole::XY:
      return QStringLiteral("XY");
  }
  return {};
}

Vec3 cross(const Vec3& a, const Vec3& b)
{
  return { a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0] };
}

bool normalize(Vec3& v, double eps)
{
  const double len = length(v);
  if (len < eps)
    return false;
  for (double& c : v)
    c /= len;
  return true;
}

std::optional<Vec3> planeNormal(const SlicePlane& plane, double eps)
{
  Vec3 n = cross(plane.axisU, plane.axisV);
  if (!normalize(n, eps))
    return std::nullopt;
  return n;
}

Vec2 inPlaneFromWorld(const SlicePlane& plane, const Vec3& p)
{
  const Vec3 d{ p[0] - plane.origin[0], p[1] - plane.origin[1], p[2] - plane.origin[2] };
  return { dot(d, plane.axisU), dot(d, plane.axisV) };
}

Vec3 worldFromInPlane(const SlicePlane& plane, const Vec2& uv)
{
  Vec3 p = plane.origin;
  for (int i = 0; i < 3; ++i)
    p[i] += uv[0] * plane.axisU[i] + uv[1] * plane.axisV[i];
  return p;
}

bool axisIsParallelToWorldAxis(const Vec3& axis, int index, double eps)
{
  if (index < 0 || index > 2)
    return false;
  const double len = length(axis);
  if (len < eps)
    return false;
  return std::abs(axis[index]) / len >= 1.0 - eps;
}

int worldAxisIndexOf(const Vec3& axis, double eps)
{
  for (int i = 0; i < 3; ++i)
    if (axisIsParallelToWorldAxis(axis, i, eps))
      return i;
  return -1;
}

QString worldAxisName(const Vec3& axis, double eps)
{
  static const char* const names[] = { "X", "Y", "Z" };
  const int index = worldAxisIndexOf(axis, eps);
  return index < 0 ? QString() : QString::fromLatin1(names[index]);
}

bool slicePlaneIsAxisAligned(const SlicePlane& plane, double eps)
{
  return worldAxisIndexOf(plane.axisU, eps) >= 0 && worldAxisIndexOf(plane.axisV, eps) >= 0;
}

bool slicePlaneAxesMatch(const SlicePlane& a, const SlicePlane& b, double eps)
{
  const auto cu = cosine(a.axisU, b.axisU, eps);
  const auto cv = cosine(a.axisV, b.axisV, eps);
  return cu && cv && *cu >= 1.0 - eps && *cv >= 1.0 - eps;
}

bool sliceMatches(const SlicePlane& a, const SlicePlane& b, double eps)
{
  const Vec3 d{ a.origin[0] - b.origin[0], a.origin[1] - b.origin[1], a.origin[2] - b.origin[2] };
  if (length(d) > eps)
    return false;
  const auto c = cosine(cross(a.axisU, a.axisV), cross(b.axisU, b.axisV), eps);
  return c && std::abs(*c) >= 1.0 - eps;
}

double signedDistanceToPlane(const Vec3& p, const Vec3& origin, const Vec3& normal)
{
  return dot({ p[0] - origin[0], p[1] - origin[1], p[2] - origin[2] }, normal);
}

Vec3 projectOntoPlane(const Vec3& p, const Vec3& origin, const Vec3& normal)
{
  const double d = signedDistanceToPlane(p, origin, normal);
  return { p[0] - d * normal[0], p[1] - d * normal[1], p[2] - d * normal[2] };
}
} // namespace voxelia::quadview::annotations
