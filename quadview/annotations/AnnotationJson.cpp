#include "quadview/annotations/AnnotationJson.hpp"

#include <algorithm>

namespace voxelia::quadview::annotations
{
namespace
{
/** Up to @p count numbers of @p value's array, the rest 0. */
template<size_t N>
std::array<double, N> numbersFromJson(const QJsonValue& value)
{
  std::array<double, N> out{};
  const QJsonArray array = value.toArray();
  const qsizetype n = std::min<qsizetype>(array.size(), static_cast<qsizetype>(N));
  for (qsizetype i = 0; i < n; ++i)
    out[static_cast<size_t>(i)] = array.at(i).toDouble();
  return out;
}
} // namespace

QJsonArray vec3ToJson(const Vec3& v)
{
  return QJsonArray{ v[0], v[1], v[2] };
}

Vec3 vec3FromJson(const QJsonValue& value)
{
  return numbersFromJson<3>(value);
}

QJsonObject planeToJson(const SlicePlane& plane)
{
  QJsonObject object;
  object.insert(QStringLiteral("origin"), vec3ToJson(plane.origin));
  object.insert(QStringLiteral("axisU"), vec3ToJson(plane.axisU));
  object.insert(QStringLiteral("axisV"), vec3ToJson(plane.axisV));
  return object;
}

SlicePlane planeFromJson(const QJsonValue& value)
{
  const QJsonObject object = value.toObject();
  SlicePlane plane;
  plane.origin = vec3FromJson(object.value(QStringLiteral("origin")));
  plane.axisU = vec3FromJson(object.value(QStringLiteral("axisU")));
  plane.axisV = vec3FromJson(object.value(QStringLiteral("axisV")));
  return plane;
}

QJsonArray boundsToJson(const WorldBounds& b)
{
  return QJsonArray{ b.xmin, b.xmax, b.ymin, b.ymax, b.zmin, b.zmax };
}

WorldBounds boundsFromJson(const QJsonValue& value)
{
  const auto n = numbersFromJson<6>(value);
  return WorldBounds{ n[0], n[1], n[2], n[3], n[4], n[5] };
}
} // namespace voxelia::quadview::annotations
