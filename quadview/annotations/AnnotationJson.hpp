#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/SliceGeometry.hpp"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>

/**
 * The JSON pieces shared by the annotation records: vectors, planes and
 * bounds. A reader takes an array up to its own size, at most the expected
 * count; what is missing reads as 0.
 */
namespace voxelia::quadview::annotations
{
KXVTKLIB_EXPORT QJsonArray vec3ToJson(const Vec3& v);
KXVTKLIB_EXPORT Vec3 vec3FromJson(const QJsonValue& value);
/** {"origin", "axisU", "axisV"}. */
KXVTKLIB_EXPORT QJsonObject planeToJson(const SlicePlane& plane);
KXVTKLIB_EXPORT SlicePlane planeFromJson(const QJsonValue& value);
/** [xmin, xmax, ymin, ymax, zmin, zmax]. */
KXVTKLIB_EXPORT QJsonArray boundsToJson(const WorldBounds& bounds);
KXVTKLIB_EXPORT WorldBounds boundsFromJson(const QJsonValue& value);
} // namespace voxelia::quadview::annotations
