// The annotation value types and the plane geometry they rest on.
#include <quadview/annotations/AnnotationId.hpp>
#include <quadview/annotations/AnnotationJson.hpp>
#include <quadview/annotations/MarkShape.hpp>
#include <quadview/annotations/SliceGeometry.hpp>

#include <gtest/gtest.h>

#include <QtCore/QJsonArray>

using namespace voxelia::quadview::annotations;

namespace
{
constexpr double k_Eps = 1e-5;

SlicePlane xyPlane()
{
  return { { 1.0, 2.0, 3.0 }, { 1.0, 0.0, 0.0 }, { 0.0, 1.0, 0.0 } };
}
} // namespace

TEST(AnnotationGeometry, VectorsAndPlanes)
{
  EXPECT_EQ(cross({ 1, 0, 0 }, { 0, 1, 0 }), (Vec3{ 0, 0, 1 }));
  EXPECT_EQ(cross({ 0, 0, 2 }, { 0, 3, 0 }), (Vec3{ -6, 0, 0 }));

  Vec3 v{ 3.0, 0.0, 4.0 };
  ASSERT_TRUE(normalize(v, 1e-12));
  EXPECT_DOUBLE_EQ(v[0], 0.6);
  EXPECT_DOUBLE_EQ(v[2], 0.8);
  Vec3 tiny{ 1e-7, 0.0, 0.0 };
  EXPECT_FALSE(normalize(tiny, 1e-6));
  EXPECT_EQ(tiny, (Vec3{ 1e-7, 0.0, 0.0 }));

  EXPECT_EQ(planeNormal(xyPlane(), 1e-12), (Vec3{ 0, 0, 1 }));
  SlicePlane flat = xyPlane();
  flat.axisV = flat.axisU;
  EXPECT_FALSE(planeNormal(flat, 1e-12).has_value());

  const SlicePlane p = xyPlane();
  const Vec2 uv = inPlaneFromWorld(p, { 4.0, -1.0, 9.0 });
  EXPECT_EQ(uv, (Vec2{ 3.0, -3.0 }));
  EXPECT_EQ(worldFromInPlane(p, uv), (Vec3{ 4.0, -1.0, 3.0 }));

  EXPECT_DOUBLE_EQ(signedDistanceToPlane({ 0, 0, 5 }, p.origin, { 0, 0, 1 }), 2.0);
  EXPECT_EQ(projectOntoPlane({ 7, 8, 5 }, p.origin, { 0, 0, 1 }), (Vec3{ 7, 8, 3 }));
}

TEST(AnnotationGeometry, WorldAxes)
{
  EXPECT_TRUE(axisIsParallelToWorldAxis({ 0, -2, 0 }, 1, k_Eps));
  EXPECT_FALSE(axisIsParallelToWorldAxis({ 0, -2, 0 }, 0, k_Eps));
  EXPECT_FALSE(axisIsParallelToWorldAxis({ 0, 0, 1 }, 3, k_Eps));
  EXPECT_FALSE(axisIsParallelToWorldAxis({ 0, 0, 1e-7 }, 2, k_Eps));
  EXPECT_FALSE(axisIsParallelToWorldAxis({ 0.1, 0, 1 }, 2, k_Eps));

  EXPECT_EQ(worldAxisIndexOf({ 0, 0, -1 }, k_Eps), 2);
  EXPECT_EQ(worldAxisIndexOf({ 1, 1, 0 }, k_Eps), -1);
  EXPECT_EQ(worldAxisName({ -1, 0, 0 }, k_Eps), "X");
  EXPECT_EQ(worldAxisName({ 0, 0, 1 }, k_Eps), "Z");
  EXPECT_EQ(worldAxisName({ 0, 1, 1 }, k_Eps), "");

  SlicePlane tilted = xyPlane();
  tilted.axisU = { 0.8, 0.6, 0.0 };
  EXPECT_TRUE(slicePlaneIsAxisAligned(xyPlane(), k_Eps));
  EXPECT_FALSE(slicePlaneIsAxisAligned(tilted, k_Eps));

  EXPECT_EQ(slicePaneName(SlicePaneRole::YZ), "YZ");
  EXPECT_EQ(slicePaneName(SlicePaneRole::XZ), "XZ");
  EXPECT_EQ(slicePaneName(SlicePaneRole::XY), "XY");
}

TEST(AnnotationGeometry, MatchingSlices)
{
  const SlicePlane a = xyPlane();
  SlicePlane negated = a;
  negated.axisU = { -1.0, 0.0, 0.0 };
  // the same slice seen with a flipped axis: the slice matches, the axes do not
  EXPECT_FALSE(slicePlaneAxesMatch(a, negated, k_Eps));
  EXPECT_TRUE(sliceMatches(a, negated, k_Eps));
  EXPECT_TRUE(slicePlaneAxesMatch(a, a, k_Eps));

  SlicePlane scaled = a;
  scaled.axisU = { 5.0, 0.0, 0.0 };
  EXPECT_TRUE(slicePlaneAxesMatch(a, scaled, k_Eps));

  SlicePlane moved = a;
  moved.origin[2] += 1e-3;
  EXPECT_FALSE(sliceMatches(a, moved, k_Eps));
  EXPECT_TRUE(slicePlaneAxesMatch(a, moved, k_Eps));

  SlicePlane degenerate = a;
  degenerate.axisV = { 0.0, 0.0, 0.0 };
  EXPECT_FALSE(slicePlaneAxesMatch(a, degenerate, k_Eps));
  EXPECT_FALSE(sliceMatches(a, degenerate, k_Eps));
}

TEST(AnnotationGeometry, ValuesAndJsonPieces)
{
  const AnnotationId a;
  const AnnotationId b;
  EXPECT_NE(a, b);
  EXPECT_EQ(AnnotationId::fromUuid(a.uuid()), a);
  EXPECT_EQ(a.toString().size(), 36);
  EXPECT_FALSE(a.toString().startsWith('{'));

  EXPECT_EQ(markShapeLabel(MarkShape::Sphere), "Sphere");
  EXPECT_EQ(markShapeLabel(MarkShape::Cross), "Cross");
  EXPECT_EQ(markShapeLabel(MarkShape::Square), "Square");
  EXPECT_EQ(markShapeFromInt(2), MarkShape::Square);
  EXPECT_EQ(markShapeFromInt(7), MarkShape::Sphere);

  const WorldBounds box{ -1, 1, -2, 2, -3, 3 };
  EXPECT_TRUE(box.contains({ 1, -2, 3 }));
  EXPECT_FALSE(box.contains({ 1.001, 0, 0 }));
  EXPECT_FALSE(box.isDegenerate());
  EXPECT_TRUE((WorldBounds{ 4, 4, 5, 5, 6, 6 }).isDegenerate());
  EXPECT_FALSE((WorldBounds{ 4, 4, 5, 5, 6, 7 }).isDegenerate());

  // short arrays read what they have; missing numbers are 0, extra ones are ignored
  EXPECT_EQ(vec3FromJson(QJsonArray{ 1.5, 2.5 }), (Vec3{ 1.5, 2.5, 0.0 }));
  EXPECT_EQ(vec3FromJson(QJsonArray{ 1, 2, 3, 4 }), (Vec3{ 1, 2, 3 }));
  const WorldBounds read = boundsFromJson(boundsToJson(box));
  EXPECT_EQ(read.zmin, -3.0);
  EXPECT_EQ(read.ymax, 2.0);
  EXPECT_TRUE(boundsFromJson(QJsonValue()).isDegenerate());
  const SlicePlane plane = planeFromJson(planeToJson(xyPlane()));
  EXPECT_EQ(plane.origin, xyPlane().origin);
  EXPECT_EQ(plane.axisV, xyPlane().axisV);
}
