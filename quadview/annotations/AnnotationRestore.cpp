#include "quadview/annotations/AnnotationRestore.hpp"

#include "quadview/annotations/AnnotationJson.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"
#include "quadview/annotations/VXQuadViewMark.hpp"
#include "quadview/annotations/VXQuadViewRuler.hpp"

#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include <cmath>
#include <memory>
#include <optional>

namespace voxelia::quadview::annotations
{
namespace
{
/** Farther than this from its plane, a saved point is moved back onto it. */
constexpr double k_SnapDistance = 1e-6;

/** Moves @p p onto the plane when it is off by more than k_SnapDistance; true if it moved. */
bool snapToPlane(Vec3& p, const SlicePlane& plane, const std::optional<Vec3>& normal)
{
  if (!normal)
    return false;
  if (std::abs(signedDistanceToPlane(p, plane.origin, *normal)) <= k_SnapDistance)
    return false;
  p = projectOntoPlane(p, plane.origin, *normal);
  return true;
}
} // namespace

int restoreAnnotationRecords(VXQuadViewAnnotationsController& controller, const QJsonArray& records,
                             const WorldBounds& currentBounds,
                             const std::function<void(const QString&)>& print)
{
  const auto report = [&print](const QString& message)
  {
    if (print)
      print(message);
  };
  int added = 0;
  int unknownCount = 0;
  QStringList unknownTypes;
  for (const QJsonValue& value : records)
  {
    if (!value.isObject())
      continue;
    const QJsonObject record = value.toObject();
    const QString type = record.value(QStringLiteral("type")).toString();
    const QString name = record.value(QStringLiteral("name")).toString();
    const int sliceIndex = record.value(QStringLiteral("anchorSliceIndex")).toInt();
    const SlicePlane plane = planeFromJson(record.value(QStringLiteral("anchorPlane")));
    WorldBounds bounds = boundsFromJson(record.value(QStringLiteral("geomBounds")));
    if (bounds.isDegenerate())
    {
      bounds = currentBounds;
      report(QStringLiteral("QuadView: annotation '%1' had missing/degenerate bounds; using "
                            "current geometry bounds.")
               .arg(name));
    }
    const std::optional<Vec3> normal = planeNormal(plane, k_PlaneNormalEps);

    std::unique_ptr<VXQuadViewAnnotation> annotation;
    if (type == QLatin1String("Ruler"))
    {
      Vec3 p1 = vec3FromJson(record.value(QStringLiteral("point1")));
      Vec3 p2 = vec3FromJson(record.value(QStringLiteral("point2")));
      const bool moved1 = snapToPlane(p1, plane, normal);
      const bool moved2 = snapToPlane(p2, plane, normal);
      if (moved1 || moved2)
        report(QStringLiteral("QuadView: ruler '%1' had off-plane endpoint(s); snapped to anchor "
                              "plane.")
                 .arg(name));
      annotation = std::make_unique<VXQuadViewRuler>(
        controller.role(), controller.pane(), &controller, name, sliceIndex, plane, bounds, p1, p2);
    }
    else if (type == QLatin1String("Mark"))
    {
      Vec3 anchor = vec3FromJson(record.value(QStringLiteral("anchor")));
      if (snapToPlane(anchor, plane, normal))
        report(
          QStringLiteral("QuadView: mark '%1' had an off-plane anchor; snapped to anchor plane.")
            .arg(name));
      annotation = std::make_unique<VXQuadViewMark>(
        controller.role(), controller.pane(), &controller, name, sliceIndex, plane, bounds, anchor);
    }
    else
    {
      ++unknownCount;
      const QString label = type.isEmpty() ? QStringLiteral("<missing type>") : type;
      if (!unknownTypes.contains(label))
        unknownTypes.append(label);
      continue;
    }
    VXQuadViewAnnotation* raw = annotation.get();
    controller.addAnnotation(std::move(annotation));
    raw->deserialize(record);
    ++added;
  }
  if (unknownCount > 0)
    report(QStringLiteral("QuadView: skipped %1 annotation record(s) of unknown type(s): %2.")
             .arg(unknownCount)
             .arg(unknownTypes.join(QStringLiteral(", "))));
  return added;
}
} // namespace voxelia::quadview::annotations
