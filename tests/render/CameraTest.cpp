// Camera snaps and rolls, the centre of rotation, props, outlines and links.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXViewActionsController.hpp"
#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"

#include <vtkCamera.h>
#include <vtkCursor3D.h>
#include <vtkGridAxesActor3D.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QToolButton>

#include <array>
#include <cmath>
#include <functional>

using rendertest::expectNear3;
using rendertest::makeBox;
using rendertest::pump;

namespace
{
class CameraView : public rendertest::ViewTest
{
protected:
  void addBox()
  {
    m_Box = makeBox(0, 2, 0, 4, 0, 6);
    m_View->addActor(m_Box);
    pump();
  }
  std::array<double, 3> position() const
  {
    std::array<double, 3> p;
    m_View->getRenderer()->GetActiveCamera()->GetPosition(p.data());
    return p;
  }
  std::array<double, 3> viewUp() const
  {
    std::array<double, 3> p;
    m_View->getRenderer()->GetActiveCamera()->GetViewUp(p.data());
    return p;
  }
  vtkSmartPointer<vtkActor> m_Box;
};

struct SnapCase
{
  const char* name;
  std::function<void(VXVisualizationWidget&)> snap;
  std::array<double, 3> offset; // position minus focal point, in units of the distance
  std::array<double, 3> viewUp;
};

} // namespace

TEST_F(CameraView, SnapsPlaceTheCameraOnTheOppositeSideOfTheAxisItLooksAlongAndRollsTurnIt)
{
  // the default camera looks from (0, 0, 1) at the origin
  const std::array<double, 4> initial = m_View->getCameraFocalPointAndDistance();
  EXPECT_DOUBLE_EQ(initial[0], 0.0);
  EXPECT_DOUBLE_EQ(initial[3], 1.0);
  addBox();
  using W = VXVisualizationWidget;
  const std::vector<SnapCase> cases = {
    { "camXPlus", &W::camXPlus, { -1, 0, 0 }, { 0, 0, 1 } },
    { "camYPlus", &W::camYPlus, { 0, -1, 0 }, { 0, 0, 1 } },
    { "camZPlus", &W::camZPlus, { 0, 0, -1 }, { 0, 1, 0 } },
    { "camXMinus", &W::camXMinus, { 1, 0, 0 }, { 0, 0, 1 } },
    { "camYMinus", &W::camYMinus, { 0, 1, 0 }, { 0, 0, 1 } },
    { "camZMinus", &W::camZMinus, { 0, 0, 1 }, { 0, 1, 0 } },
    { "camImageView", &W::camImageView, { 0, 0, -1 }, { 0, -1, 0 } },
    { "XPlus",
      [](VXVisualizationWidget& v)
      { v.setCameraView(VXVisualizationWidget::CameraPosition::XPlus); },
      { -1, 0, 0 },
      { 0, 0, 1 } },
    { "ZMinus",
      [](VXVisualizationWidget& v)
      { v.setCameraView(VXVisualizationWidget::CameraPosition::ZMinus); },
      { 0, 0, 1 },
      { 0, 1, 0 } },
  };
  for (const SnapCase& c : cases)
  {
    SCOPED_TRACE(c.name);
    // start from an oblique camera so that every snap really moves it
    vtkCamera* camera = m_View->getRenderer()->GetActiveCamera();
    camera->SetPosition(10, 20, 30);
    camera->SetViewUp(0, 1, 0);
    c.snap(*m_View);
    const std::array<double, 4> fd = m_View->getCameraFocalPointAndDistance();
    // the reset camera centres on the box
    expectNear3({ fd[0], fd[1], fd[2] }, { 1, 2, 3 }, 1e-9);
    ASSERT_GT(fd[3], 0.0);
    expectNear3(
      position(),
      { fd[0] + c.offset[0] * fd[3], fd[1] + c.offset[1] * fd[3], fd[2] + c.offset[2] * fd[3] },
      1e-9);
    expectNear3(viewUp(), c.viewUp, 1e-9);
  }

  m_View->camZMinus(); // view up (0, 1, 0), looking along -Z
  m_View->rotateCamClockwise();
  expectNear3(viewUp(), { -1, 0, 0 }, 1e-9);
  m_View->rotateCamCounterClockwise();
  m_View->rotateCamCounterClockwise();
  expectNear3(viewUp(), { 1, 0, 0 }, 1e-9);
}

TEST_F(CameraView, AddingActorsRecentresRotationOnceThePropsAreIn)
{
  QSignalSpy added(m_View.get(), &VXVisualizationWidget::actorAdded);
  auto a = makeBox(0, 2, 0, 2, 0, 2);
  auto b = makeBox(8, 10, 0, 2, 0, 2);
  m_View->addActor(a);
  m_View->addActor(b);
  EXPECT_EQ(added.count(), 2);
  // recentring waits for the event loop, so both boxes count
  pump();
  expectNear3(m_View->getCenterOfRotation(), { 5, 1, 1 }, 1e-12);
  EXPECT_FALSE(m_View->isCenterOfRotationLocked());

  // the cross is sized a quarter of the largest extent (10)
  double modelBounds[6];
  m_View->getCenterOfRotationCursor()->GetModelBounds(modelBounds);
  EXPECT_DOUBLE_EQ(modelBounds[0], 5.0 - 2.5);
  EXPECT_DOUBLE_EQ(modelBounds[1], 5.0 + 2.5);

  QSignalSpy removed(m_View.get(), &VXVisualizationWidget::actorRemoved);
  m_View->removeActor(b);
  EXPECT_EQ(removed.count(), 1);
  EXPECT_FALSE(m_View->getRenderer()->HasViewProp(b));
  pump();
  EXPECT_DOUBLE_EQ(m_View->getCenterOfRotation()[0], 1.0);
}

TEST_F(CameraView, PickedCentreSurvivesAddAndRemoveUntilReset)
{
  auto a = makeBox(0, 2, 0, 2, 0, 2);
  m_View->addActor(a);
  pump();
  m_View->camZMinus(); // looking along -Z at the face z = 2
  // the toolbar's button enters the pick mode and a click on the box picks, as a user does
  m_View->getToolbar()->centerOfRotationButton()->setChecked(true);
  ASSERT_TRUE(m_View->pickCenterOfRotationModeOn());
  const auto at = rendertest::displayOf(m_View->getRenderer(), 0.5, 1.5, 2.0);
  rendertest::click(m_View->getRenderWindowInteractor(), at[0], at[1]);
  EXPECT_TRUE(m_View->isCenterOfRotationLocked());
  // the pick releases the toolbar button, which ends the pick mode
  EXPECT_FALSE(m_View->pickCenterOfRotationModeOn());
  const std::array<double, 3> picked = m_View->getCenterOfRotation();
  expectNear3(picked, { 0.5, 1.5, 2.0 }, 0.05);

  auto b = makeBox(10, 20, 10, 20, 10, 20);
  m_View->addActor(b);
  pump();
  m_View->removeActor(a);
  pump();
  EXPECT_EQ(m_View->getCenterOfRotation(), picked);

  m_View->resetCenterOfRotation();
  EXPECT_FALSE(m_View->isCenterOfRotationLocked());
  expectNear3(m_View->getCenterOfRotation(), { 15, 15, 15 }, 1e-12);
}

TEST_F(CameraView, ResetCameraRecentresUnlessLocked)
{
  addBox();
  m_View->camZMinus(); // looking along -Z at the face z = 6
  m_View->toggleCenterOfRotationPicking(true);
  const auto at = rendertest::displayOf(m_View->getRenderer(), 0.5, 0.5, 6.0);
  rendertest::click(m_View->getRenderWindowInteractor(), at[0], at[1]);
  const std::array<double, 3> picked = m_View->getCenterOfRotation();
  EXPECT_NEAR(picked[2], 6.0, 0.05);
  m_View->resetCamera();
  EXPECT_EQ(m_View->getCenterOfRotation(), picked);
  m_View->resetCenterOfRotation();
  m_View->getRenderer()->GetActiveCamera()->SetFocalPoint(50, 50, 50);
  m_View->resetCamera();
  expectNear3(m_View->getCenterOfRotation(), { 1, 2, 3 }, 1e-12);
}

TEST_F(CameraView, DataViewActorsExcludeGridHighlightersAndHiddenProps)
{
  addBox();
  EXPECT_TRUE(m_View->isDataViewActor(m_Box));
  m_Box->SetVisibility(false);
  EXPECT_FALSE(m_View->isDataViewActor(m_Box));
  m_Box->SetVisibility(true);

  auto outside = makeBox(0, 1, 0, 1, 0, 1);
  EXPECT_FALSE(m_View->isDataViewActor(outside));

  VXPickerCallback* picker = m_View->getPickerCallback();
  picker->getPointHighlightActor()->SetVisibility(true);
  EXPECT_FALSE(m_View->isDataViewActor(picker->getPointHighlightActor()));
  m_View->getViewActionsController()->setGridAxesEnabled(true);
  vtkGridAxesActor3D* grid = m_View->getViewActionsController()->getGridAxesActor();
  ASSERT_NE(grid, nullptr);
  EXPECT_TRUE(grid->GetVisibility());
  EXPECT_FALSE(m_View->isDataViewActor(grid));
}

TEST_F(CameraView, OutlinesAreAddedOnceAndClearedAsIsTheRenderWindow)
{
  auto a = makeBox(0, 1, 0, 1, 0, 1);
  auto b = makeBox(0, 1, 0, 1, 0, 1);
  m_View->addOutline(a);
  m_View->addOutline(a);
  m_View->addOutline(b);
  EXPECT_EQ(m_View->getOutlineRenderer()->GetViewProps()->GetNumberOfItems(), 2);
  EXPECT_TRUE(m_View->hasOutlineActor(a));
  EXPECT_FALSE(m_View->getRenderer()->HasViewProp(a));
  m_View->removeOutline(a);
  EXPECT_FALSE(m_View->hasOutlineActor(a));
  EXPECT_TRUE(m_View->hasOutlineActor(b));
  m_View->clearOutlines();
  EXPECT_EQ(m_View->getOutlineRenderer()->GetViewProps()->GetNumberOfItems(), 0);

  // clearing the render window drops the props and the orientation widget
  addBox();
  m_View->clearRenderWindow();
  EXPECT_EQ(m_View->getRenderer()->GetViewProps()->GetNumberOfItems(), 0);
  EXPECT_EQ(m_View->getCameraOrientationWidget(), nullptr);
}

TEST_F(CameraView, CopyTakesCameraAndCentre)
{
  addBox();
  double picked[3] = { 7, 8, 9 };
  m_View->getInteractorStyle()->setCellPickMode(true);
  Q_EMIT m_View->pickEvent(picked, true, false);
  m_View->getRenderer()->GetActiveCamera()->SetPosition(1, 2, 30);

  VXVisualizationWidget clone(nullptr, 2);
  clone.copy(m_View.get());
  double p[3];
  clone.getRenderer()->GetActiveCamera()->GetPosition(p);
  EXPECT_DOUBLE_EQ(p[2], 30.0);
  EXPECT_TRUE(clone.isCenterOfRotationLocked());
  EXPECT_DOUBLE_EQ(clone.getCenterOfRotation()[1], 8.0);
  // a copy, not a link
  EXPECT_NE(clone.getRenderer()->GetActiveCamera(), m_View->getRenderer()->GetActiveCamera());
}

TEST_F(CameraView, LinkedViewsShareOneCameraUntilUnlinked)
{
  VXVisualizationWidget other(nullptr, 2);
  VXVisualizationWidget third(nullptr, 2);
  m_View->linkCameraWith(&other);
  other.linkCameraWith(&third);
  EXPECT_EQ(m_View->getLinkedWidgets().size(), 3u);
  EXPECT_EQ(third.getLinkedWidgets().size(), 3u);
  EXPECT_EQ(third.getRenderer()->GetActiveCamera(), other.getRenderer()->GetActiveCamera());
  EXPECT_EQ(third.getOutlineRenderer()->GetActiveCamera(), other.getRenderer()->GetActiveCamera());

  vtkCamera* shared = other.getRenderer()->GetActiveCamera();
  other.unlinkCamera();
  EXPECT_FALSE(other.isLinked());
  EXPECT_NE(other.getRenderer()->GetActiveCamera(), shared);
  // the others stay linked with the camera they shared
  EXPECT_EQ(m_View->getLinkedWidgets().size(), 2u);
  EXPECT_EQ(m_View->getRenderer()->GetActiveCamera(), third.getRenderer()->GetActiveCamera());
  m_View->unlinkCamera();
  EXPECT_FALSE(third.isLinked());
}

TEST_F(CameraView, LinkingStartsInOneViewAndEndsWhenAnotherGetsFocus)
{
  VXVisualizationWidget other(nullptr, 2);
  other.resize(100, 100);
  other.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
  m_View->getLinkCamerasAction()->trigger();
  EXPECT_EQ(VXVisualizationWidget::linkingWidget(), m_View.get());
  QFocusEvent focus(QEvent::FocusIn, Qt::MouseFocusReason);
  QCoreApplication::sendEvent(&other, &focus);
  EXPECT_EQ(VXVisualizationWidget::linkingWidget(), nullptr);
  EXPECT_TRUE(m_View->isLinked());
  EXPECT_EQ(other.getRenderer()->GetActiveCamera(), m_View->getRenderer()->GetActiveCamera());
}

TEST_F(CameraView, CustomCameraPresetsRestoreThePositionAndTheContextLimitsTextures)
{
  vtkCamera* camera = m_View->getRenderer()->GetActiveCamera();
  camera->SetPosition(3, 4, 5);
  const QString name = m_View->addCustomCameraPosPreset();
  EXPECT_FALSE(name.isEmpty());
  EXPECT_TRUE(m_View->customCameraPosPresetNames().contains(name));
  camera->SetPosition(-9, -9, -9);
  m_View->applyCustomCameraPosPreset(name);
  double p[3];
  camera->GetPosition(p);
  EXPECT_DOUBLE_EQ(p[0], 3.0);
  EXPECT_DOUBLE_EQ(p[2], 5.0);
  m_View->applyCustomCameraPosPreset(QStringLiteral("no such preset"));
  camera->GetPosition(p);
  EXPECT_DOUBLE_EQ(p[1], 4.0);

  // the texture limit comes from the context
  int maxSize = 0;
  EXPECT_TRUE(m_View->areDimensionsValid(16, 16, 16, maxSize));
  EXPECT_GE(maxSize, 16);
  EXPECT_FALSE(m_View->areDimensionsValid(maxSize + 1, 1, 1, maxSize));
  EXPECT_TRUE(m_View->areDimensionsValid(maxSize, maxSize, maxSize, maxSize));
}
