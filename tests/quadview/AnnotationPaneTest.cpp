// Rulers, marks and their controller on real slice panes: following the slice,
// constant pixel size, hit areas, saved records and their repair, and the
// mouse and key gestures of the controller.
#include "AnnotationTestSupport.hpp"
#include "ImageCompare.hpp"
#include "VXTestSupport.hpp"

#include <quadview/annotations/AnnotationJson.hpp>
#include <quadview/annotations/AnnotationRestore.hpp>
#include <quadview/annotations/VXAnnotationHud.hpp>

#include <vtkCamera.h>
#include <vtkDistanceWidget.h>
#include <vtkPlane.h>
#include <vtkResliceCursor.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <QVTKOpenGLNativeWidget.h>
#include <QtCore/QJsonObject>
#include <QtGui/QKeyEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>

#include <gtest/gtest.h>

#include <cmath>

using namespace voxelia::quadview::annotations;
using Controller = VXQuadViewAnnotationsController;

namespace
{
void expectNear(const Vec3& a, const Vec3& b, double tolerance = 1e-9)
{
  for (int k = 0; k < 3; ++k)
    EXPECT_NEAR(a[k], b[k], tolerance) << "component " << k;
}

/** Width in pixels of the columns holding a strongly magenta pixel. */
int magentaWidth(const QImage& image)
{
  int first = -1;
  int last = -1;
  for (int x = 0; x < image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
    {
      const QColor c = image.pixelColor(x, y);
      if (c.red() > 180 && c.blue() > 180 && c.green() < 80)
      {
        first = first < 0 ? x : first;
        last = x;
        break;
      }
    }
  return first < 0 ? 0 : last - first + 1;
}

int nameNumber(const QString& name)
{
  return name.section(' ', 1).toInt();
}
} // namespace

TEST(AnnotationPane, RecordsRoundTripInThreePanes)
{
  kxtest::AnnotatedTrio s;
  std::array<QJsonArray, 3> saved;
  for (int i = 0; i < 3; ++i)
  {
    VXQuadViewRuler* ruler =
      s.addRuler(i, { 1.0, 2.0 }, { 3.0, -4.0 }, QStringLiteral("R%1").arg(i));
    VXQuadViewMark* mark = s.addMark(i, { 2.0, 5.0 }, QStringLiteral("M%1").arg(i));
    mark->setColor(QColor(10, 200, 30, 128));
    mark->setSizeInPixels(20);
    mark->setShape(MarkShape::Cross);
    mark->setLabelVisibleInViewport(true);
    if (i == 1)
      ruler->setLocked(true);
    saved[i] = s.controller(i)->serialize();
    ASSERT_EQ(saved[i].size(), 2);

    const QJsonObject r = saved[i].at(0).toObject();
    EXPECT_EQ(r.value("type").toString(), "Ruler");
    EXPECT_EQ(r.value("id").toString(), ruler->id().toString());
    EXPECT_EQ(r.value("name").toString(), QStringLiteral("R%1").arg(i));
    EXPECT_EQ(r.value("locked").toBool(), i == 1);
    EXPECT_EQ(r.value("anchorSliceIndex").toInt(), s.sliceIndex(i));
    expectNear(vec3FromJson(r.value("point2")), ruler->point2());
    expectNear(planeFromJson(r.value("anchorPlane")).origin, s.plane(i).origin);
    EXPECT_EQ(boundsFromJson(r.value("geomBounds")).zmax, 83.0);

    const QJsonObject m = saved[i].at(1).toObject();
    EXPECT_EQ(m.value("type").toString(), "Mark");
    EXPECT_EQ(m.value("color").toString(), "#800ac81e");
    EXPECT_EQ(m.value("sizeInPixels").toInt(), 20);
    EXPECT_EQ(m.value("shape").toInt(), 1);
    EXPECT_TRUE(m.value("labelVisible").toBool());
    EXPECT_TRUE(m.value("locked").toBool());
    expectNear(vec3FromJson(m.value("anchor")), worldFromInPlane(s.plane(i), { 2.0, 5.0 }));
  }

  for (int i = 0; i < 3; ++i)
  {
    Controller* c = s.controller(i);
    const AnnotationId oldRuler = c->annotations()[0]->id();
    c->clearAll();
    QStringList messages;
    EXPECT_EQ(restoreAnnotationRecords(*c, saved[i], s.bounds(),
                                       [&messages](const QString& m) { messages << m; }),
              2);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    ASSERT_EQ(c->count(), 2);
    auto* ruler = dynamic_cast<VXQuadViewRuler*>(c->annotations()[0].get());
    auto* mark = dynamic_cast<VXQuadViewMark*>(c->annotations()[1].get());
    ASSERT_TRUE(ruler && mark);
    EXPECT_NE(ruler->id(), oldRuler);
    EXPECT_EQ(ruler->name(), QStringLiteral("R%1").arg(i));
    EXPECT_EQ(ruler->locked(), i == 1);
    expectNear(ruler->point1(), worldFromInPlane(s.plane(i), { 1.0, 2.0 }));
    EXPECT_EQ(ruler->summaryText(), "6.32");
    EXPECT_EQ(mark->color(), QColor(10, 200, 30, 128));
    EXPECT_EQ(mark->sizeInPixels(), 20);
    EXPECT_EQ(mark->shape(), MarkShape::Cross);
    EXPECT_TRUE(mark->labelVisibleInViewport());
    EXPECT_TRUE(mark->locked());
  }
}

TEST(AnnotationPane, LoadRepairsRecordsWithOneMessageEach)
{
  kxtest::AnnotatedTrio s;
  const SlicePlane plane{ { 0.0, 0.0, 0.0 }, { 1.0, 0.0, 0.0 }, { 0.0, 1.0, 0.0 } };
  const auto record = [&plane](const char* type, const char* name)
  {
    QJsonObject o;
    if (type != nullptr)
      o.insert("type", type);
    o.insert("name", name);
    o.insert("anchorSliceIndex", 7);
    o.insert("anchorPlane", planeToJson(plane));
    o.insert("geomBounds", boundsToJson({ -5, 5, 10, 40, 3, 83 }));
    return o;
  };
  QJsonObject off = record("Ruler", "R off");
  off.insert("point1", vec3ToJson({ 1.0, 0.0, 0.5 }));
  off.insert("point2", vec3ToJson({ 2.0, 0.0, 0.5 }));
  off.insert("locked", true);
  QJsonObject edge = record("Ruler", "R edge");
  edge.insert("point1", vec3ToJson({ 1.0, 1.0, 1e-6 }));
  edge.insert("point2", vec3ToJson({ 2.0, 1.0, 0.0 }));
  QJsonObject mark = record("Mark", "M off");
  mark.insert("anchor", vec3ToJson({ 3.0, 4.0, -0.25 }));
  QJsonObject noBounds = record("Mark", "M bare");
  noBounds.remove("geomBounds");
  noBounds.insert("anchor", vec3ToJson({ 3.0, 4.0, 0.0 }));
  const QJsonArray records{ off,
                            edge,
                            mark,
                            noBounds,
                            record("Ellipse", "e1"),
                            42,
                            record("Ellipse", "e2"),
                            record(nullptr, "nameless") };

  Controller* c = s.controller(2);
  QStringList messages;
  EXPECT_EQ(restoreAnnotationRecords(*c, records, s.bounds(),
                                     [&messages](const QString& m) { messages << m; }),
            4);
  EXPECT_EQ(messages,
            QStringList({ "QuadView: ruler 'R off' had off-plane endpoint(s); snapped to anchor "
                          "plane.",
                          "QuadView: mark 'M off' had an off-plane anchor; snapped to anchor "
                          "plane.",
                          "QuadView: annotation 'M bare' had missing/degenerate bounds; using "
                          "current geometry bounds.",
                          "QuadView: skipped 3 annotation record(s) of unknown type(s): Ellipse, "
                          "<missing type>." }));
  ASSERT_EQ(c->count(), 4);
  auto* snapped = dynamic_cast<VXQuadViewRuler*>(c->annotations()[0].get());
  auto* kept = dynamic_cast<VXQuadViewRuler*>(c->annotations()[1].get());
  auto* moved = dynamic_cast<VXQuadViewMark*>(c->annotations()[2].get());
  auto* bare = dynamic_cast<VXQuadViewMark*>(c->annotations()[3].get());
  ASSERT_TRUE(snapped && kept && moved && bare);
  expectNear(snapped->point1(), { 1.0, 0.0, 0.0 });
  expectNear(snapped->point2(), { 2.0, 0.0, 0.0 });
  EXPECT_TRUE(snapped->locked());
  EXPECT_EQ(snapped->anchorSliceIndex(), 7);
  EXPECT_DOUBLE_EQ(kept->point1()[2], 1e-6);
  expectNear(moved->anchor(), { 3.0, 4.0, 0.0 });
  EXPECT_EQ(bare->geomBounds().ymax, 40.0);
  EXPECT_EQ(bare->geomBounds().zmin, 3.0);
}

TEST(AnnotationPane, RulersFollowOrKeepTheirSlice)
{
  kxtest::AnnotatedTrio s;
  VXQuadViewRuler* follower = s.addRuler(2, { 1.0, 2.0 }, { 3.0, 5.0 });
  VXQuadViewRuler* pinned = s.addRuler(2, { -1.0, -1.0 }, { 0.0, 3.0 });
  pinned->setLocked(true);
  const int start = s.sliceIndex(2);
  const Vec3 pinnedEnd = pinned->point2();
  QSignalSpy changed(s.controller(2), &Controller::annotationChanged);

  s.moveSlice(2, 3);
  const SlicePlane now = s.plane(2);
  EXPECT_EQ(s.sliceIndex(2), start + 3);
  const Vec2 uv1 = inPlaneFromWorld(now, follower->point1());
  const Vec2 uv2 = inPlaneFromWorld(now, follower->point2());
  EXPECT_NEAR(uv1[0], 1.0, 1e-9);
  EXPECT_NEAR(uv1[1], 2.0, 1e-9);
  EXPECT_NEAR(uv2[0], 3.0, 1e-9);
  EXPECT_NEAR(uv2[1], 5.0, 1e-9);
  EXPECT_NEAR(follower->point1()[2], now.origin[2], 1e-9);
  EXPECT_EQ(follower->displaySliceIndex(), start + 3);
  EXPECT_TRUE(follower->isShown());
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.at(0).at(0).value<AnnotationId>(), follower->id());

  EXPECT_FALSE(pinned->isShown());
  EXPECT_EQ(pinned->displaySliceIndex(), start);
  expectNear(pinned->point2(), pinnedEnd);

  s.moveSlice(2, -3);
  EXPECT_TRUE(pinned->isShown());
  EXPECT_TRUE(follower->isShown());
}

TEST(AnnotationPane, ObliqueSlicesHideRulersButNotMarks)
{
  kxtest::AnnotatedTrio s;
  VXQuadViewRuler* free = s.addRuler(2, { 1.0, 2.0 }, { 3.0, 5.0 });
  VXQuadViewRuler* pinned = s.addRuler(2, { -1.0, 2.0 }, { -3.0, 5.0 });
  pinned->setLocked(true);
  VXQuadViewMark* mark = s.addMark(2, { 0.5, 0.5 });
  mark->setLocked(false);

  // turn the cursor about z: the cursor derives its axes from the planes' normals
  s.trio().setOblique(true);
  vtkResliceCursor* cursor = s.trio().cursor();
  double normal0[3];
  double normal1[3];
  cursor->GetPlane(0)->GetNormal(normal0);
  cursor->GetPlane(1)->GetNormal(normal1);
  cursor->GetPlane(0)->SetNormal(0.8, 0.6, 0.0);
  cursor->GetPlane(1)->SetNormal(-0.6, 0.8, 0.0);
  cursor->Update();
  s.trio().renderAll();
  s.controller(2)->onSliceChanged();
  EXPECT_FALSE(slicePlaneIsAxisAligned(s.plane(2), 1e-5));
  EXPECT_FALSE(free->isShown());
  EXPECT_FALSE(pinned->isShown());
  EXPECT_TRUE(mark->isShown());

  cursor->GetPlane(0)->SetNormal(normal0);
  cursor->GetPlane(1)->SetNormal(normal1);
  cursor->Update();
  s.trio().renderAll();
  s.controller(2)->onSliceChanged();
  EXPECT_TRUE(free->isShown());
  EXPECT_TRUE(pinned->isShown());
}

TEST(AnnotationPane, DraggedHandlesStayOnTheirPlane)
{
  kxtest::AnnotatedTrio s;
  VXQuadViewRuler* ruler = s.addRuler(2, { -3.0, 6.0 }, { 3.0, 10.0 });
  VXQuadViewMark* mark = s.addMark(2, { 2.0, -6.0 });
  s.trio().renderAll();
  QSignalSpy changed(s.controller(2), &Controller::annotationChanged);
  const SlicePlane plane = s.plane(2);
  const Vec3 end2 = ruler->point2();

  const Vec3 end1 = ruler->point1();
  const auto from = s.trio().toDisplay(2, end1.data());
  // the mouse comes to the handle before it presses, as a hand does
  s.trio().interactor(2)->SetEventInformation(from[0], from[1], 0, 0);
  s.trio().interactor(2)->InvokeEvent(vtkCommand::MouseMoveEvent);
  kxtest::drag(s.trio().interactor(2), from[0], from[1], from[0] + 24, from[1] - 16);
  const Vec3 moved1 = ruler->point1();
  EXPECT_NEAR(moved1[2], plane.origin[2], 1e-9);
  const Vec2 shift = inPlaneFromWorld(plane, moved1);
  EXPECT_GT(std::hypot(shift[0] + 3.0, shift[1] - 6.0), 5.0);
  expectNear(ruler->point2(), end2);
  EXPECT_EQ(ruler->summaryText(), QString::number(ruler->distance(), 'f', 2));
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.at(0).at(0).value<AnnotationId>(), ruler->id());

  const Vec3 anchor = mark->anchor();
  const auto at = s.trio().toDisplay(2, anchor.data());
  kxtest::drag(s.trio().interactor(2), at[0], at[1], at[0] - 30, at[1] + 10);
  EXPECT_NEAR(mark->anchor()[2], plane.origin[2], 1e-9);
  EXPECT_GT(std::hypot(mark->anchor()[0] - anchor[0], mark->anchor()[1] - anchor[1]), 5.0);
  ASSERT_EQ(changed.count(), 2);
  EXPECT_EQ(changed.at(1).at(0).value<AnnotationId>(), mark->id());
}

TEST(AnnotationPane, MarkSizeInPixelsHitAreaAndLabel)
{
  kxtest::AnnotatedTrio s;
  VXQuadViewMark* mark = s.addMark(2, { 0.0, 0.0 });
  mark->setShape(MarkShape::Square);
  mark->setSizeInPixels(20);
  vtkCamera* camera = s.trio().renderer(2)->GetActiveCamera();
  ASSERT_TRUE(camera->GetParallelProjection());

  s.trio().renderAll();
  const int before = magentaWidth(s.trio().pane(2)->grabFramebuffer());
  camera->Zoom(2.5);
  s.trio().renderAll();
  const int zoomed = magentaWidth(s.trio().pane(2)->grabFramebuffer());
  EXPECT_NEAR(before, 20, 2);
  EXPECT_NEAR(zoomed, before, 1);

  const QPoint centre = mark->screenBounds().center();
  mark->setSizeInPixels(100);
  EXPECT_EQ(mark->hitRadius(), 100);
  EXPECT_TRUE(mark->hitTestScreen(centre + QPoint(0, 99)));
  EXPECT_FALSE(mark->hitTestScreen(centre + QPoint(0, 102)));
  mark->setSizeInPixels(1);
  EXPECT_EQ(mark->hitRadius(), 6);
  EXPECT_TRUE(mark->hitTestScreen(centre + QPoint(5, 0)));
  EXPECT_FALSE(mark->hitTestScreen(centre + QPoint(8, 0)));
  mark->setSizeInPixels(0);
  EXPECT_EQ(mark->sizeInPixels(), 1);

  mark->setSizeInPixels(4);
  EXPECT_EQ(mark->labelFontSize(), 8);
  mark->setSizeInPixels(12);
  EXPECT_EQ(mark->labelFontSize(), 15);
  EXPECT_EQ(mark->labelActor(), nullptr);
  mark->setLabelVisibleInViewport(true);
  ASSERT_NE(mark->labelActor(), nullptr);
  EXPECT_EQ(mark->labelActor()->GetTextProperty()->GetFontSize(), 15);
  EXPECT_STREQ(mark->labelActor()->GetInput(), mark->name().toUtf8().constData());
  // the label is part of the hit area, to the right of the mark
  EXPECT_TRUE(mark->hitTestScreen(centre + QPoint(12 + 4 + 3, -3)));
}

TEST(AnnotationPane, ControllerGestures)
{
  kxtest::AnnotatedTrio s;
  Controller* c = s.controller(2);
  QVTKOpenGLNativeWidget* pane = s.trio().pane(2);
  QSignalSpy gestures(c, &Controller::markClickGesture);

  QTest::keyPress(pane, Qt::Key_M);
  EXPECT_TRUE(c->markKeyHeld());
  // auto-repeat of a held key changes nothing
  QKeyEvent repeatRelease(QEvent::KeyRelease, Qt::Key_M, Qt::NoModifier, "m", true);
  QApplication::sendEvent(pane, &repeatRelease);
  QKeyEvent repeatPress(QEvent::KeyPress, Qt::Key_M, Qt::NoModifier, "m", true);
  QApplication::sendEvent(pane, &repeatPress);
  EXPECT_TRUE(c->markKeyHeld());
  QTest::mouseClick(pane, Qt::LeftButton, {}, QPoint(40, 50));
  QTest::mouseClick(pane, Qt::LeftButton, {}, QPoint(200, 120));
  QTest::keyRelease(pane, Qt::Key_M);
  EXPECT_FALSE(c->markKeyHeld());
  QTest::mouseClick(pane, Qt::LeftButton, {}, QPoint(90, 90));
  ASSERT_EQ(gestures.count(), 2);
  EXPECT_EQ(gestures.at(0).at(0).toPoint(), QPoint(40, 50));
  EXPECT_EQ(gestures.at(1).at(0).toPoint(), QPoint(200, 120));

  // an M typed into a text field is a letter, not the gesture
  auto* edit = new QLineEdit(pane->window());
  edit->show();
  pane->window()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(pane->window()));
  edit->setFocus();
  ASSERT_EQ(QApplication::focusWidget(), edit);
  QTest::keyPress(edit, Qt::Key_M);
  EXPECT_EQ(edit->text(), "m");
  EXPECT_FALSE(c->markKeyHeld());
  QTest::mouseClick(pane, Qt::LeftButton, {}, QPoint(60, 60));
  QTest::keyRelease(edit, Qt::Key_M);
  EXPECT_EQ(gestures.count(), 2);
}

TEST(AnnotationPane, NewestAnnotationWinsAndNamesKeepCounting)
{
  kxtest::AnnotatedTrio s;
  Controller* c = s.controller(2);
  QVTKOpenGLNativeWidget* pane = s.trio().pane(2);
  VXQuadViewMark* older = s.addMark(2, { 0.0, 0.0 });
  VXQuadViewMark* newer = s.addMark(2, { 0.0, 0.0 });
  newer->setShape(MarkShape::Square);
  s.trio().renderAll();
  const QPoint at = newer->screenBounds().center();
  ASSERT_TRUE(older->hitTestScreen(at));
  EXPECT_EQ(c->hitTest(at), newer);

  QTest::mouseMove(pane, at);
  EXPECT_EQ(c->hoveredAnnotation(), newer);
  EXPECT_EQ(pane->cursor().shape(), Qt::PointingHandCursor);

  QSignalSpy rights(c, &Controller::rightClickedAt);
  // the editor's own size depends on its form: a small one fits above the mark
  const auto openSmallEditor = [&]
  {
    QTest::mouseDClick(pane, Qt::LeftButton, {}, at);
    ASSERT_NE(c->hud(), nullptr);
    EXPECT_GE(c->hud()->width(), Controller::k_MinHudWidth);
    c->hud()->setFixedSize(Controller::k_MinHudWidth, 60);
    c->positionHud();
  };
  openSmallEditor();
  EXPECT_EQ(c->hudAnnotation(), newer);
  const QRect mark = newer->screenBounds();
  EXPECT_EQ(c->hud()->geometry().bottom() + 1, mark.top() - Controller::k_HudGap);
  EXPECT_EQ(c->hud()->x() + Controller::k_MinHudWidth / 2, mark.center().x());
  QTest::keyClick(pane, Qt::Key_Escape);
  EXPECT_EQ(c->hud(), nullptr);

  openSmallEditor();
  // a press outside the editor closes it and goes on to the pane
  QTest::mouseClick(pane, Qt::RightButton, {}, at);
  EXPECT_EQ(c->hud(), nullptr);
  ASSERT_EQ(rights.count(), 1);
  EXPECT_EQ(rights.at(0).at(0).toPoint(), at);

  QTest::mouseMove(pane, QPoint(5, 5));
  EXPECT_EQ(c->hoveredAnnotation(), nullptr);

  const int before = nameNumber(Controller::nextRulerName());
  const AnnotationId newest = newer->id();
  QSignalSpy removed(c, &Controller::annotationRemoved);
  c->clearAll();
  ASSERT_EQ(removed.count(), 2);
  EXPECT_EQ(removed.at(0).at(0).value<AnnotationId>(), newest);
  EXPECT_EQ(c->count(), 0);
  EXPECT_EQ(nameNumber(Controller::nextRulerName()), before + 1);
}

TEST(AnnotationPane, RulerAndMarksPicture)
{
  kxtest::AnnotatedTrio s;
  s.trio().renderer(2)->GetActiveCamera()->Zoom(2.5);
  s.addRuler(2, { -4.0, 12.0 }, { 4.0, 2.0 }, QStringLiteral("Ruler A"));
  VXQuadViewMark* sphere = s.addMark(2, { -4.0, -4.0 }, QStringLiteral("Sphere"));
  sphere->setLabelVisibleInViewport(true);
  VXQuadViewMark* cross = s.addMark(2, { 0.0, -8.0 }, QStringLiteral("Cross"));
  cross->setShape(MarkShape::Cross);
  cross->setColor(QColor(0, 255, 255));
  cross->setSizeInPixels(16);
  cross->setLabelVisibleInViewport(true);
  VXQuadViewMark* square = s.addMark(2, { 4.0, -12.0 }, QStringLiteral("Square"));
  square->setShape(MarkShape::Square);
  square->setColor(QColor(255, 200, 0));
  square->setSizeInPixels(8);
  square->setLabelVisibleInViewport(true);
  s.trio().renderAll();
  kxtest::CompareWithBaseline(s.trio().pane(2)->grabFramebuffer(), "quadview",
                              "annotations_ruler_marks");
}
