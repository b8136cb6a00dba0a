// The camera style and the hover modes, driven by interactor and Qt events as a user drives them.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"
#include "visualization/QtWidgets/VXViewCubeWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"

#include <vtkCamera.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QToolButton>

#include <array>

using rendertest::click;
using rendertest::displayOf;
using rendertest::drag;
using rendertest::EventCounter;
using rendertest::expectNear3;
using rendertest::key;
using rendertest::makeBox;
using rendertest::pump;

namespace
{
struct CameraState
{
  std::array<double, 3> position;
  std::array<double, 3> focalPoint;
  std::array<double, 3> viewUp;
};

CameraState cameraOf(vtkRenderer* renderer)
{
  CameraState state{};
  vtkCamera* camera = renderer->GetActiveCamera();
  camera->GetPosition(state.position.data());
  camera->GetFocalPoint(state.focalPoint.data());
  camera->GetViewUp(state.viewUp.data());
  return state;
}

class Interaction : public rendertest::ViewTest
{
protected:
  void SetUp() override
  {
    ViewTest::SetUp();
    m_Box = makeBox(-1, 1, -1, 1, -1, 1);
    m_View->addActor(m_Box);
    pump();
    // the camera on +Z looking at the origin, view up +Y
    vtkCamera* camera = renderer()->GetActiveCamera();
    camera->SetFocalPoint(0, 0, 0);
    camera->SetPosition(0, 0, 10);
    camera->SetViewUp(0, 1, 0);
    renderer()->ResetCameraClippingRange();
    m_View->renderWindow()->Render();
  }
  vtkRenderer* renderer() const { return m_View->getRenderer(); }
  vtkRenderWindowInteractor* interactor() const { return m_View->getRenderWindowInteractor(); }
  VXInteractorStyleCamera* style() const { return m_View->getInteractorStyle(); }
  VXVisualizationToolbarWidget* toolbar() const { return m_View->getToolbar(); }

  vtkSmartPointer<vtkActor> m_Box;
};
} // namespace

TEST_F(Interaction, KeysOneAndTwoArmThePickModesAndEveryKeyIsAnnounced)
{
  EventCounter pressed(style(), VXInteractorStyleCamera::k_KeyPressEvent);
  EventCounter released(style(), VXInteractorStyleCamera::k_KeyReleaseEvent);
  key(interactor(), '1', true);
  EXPECT_TRUE(style()->pick1ModeOn());
  EXPECT_FALSE(style()->pick2ModeOn());
  EXPECT_TRUE(m_View->getPickerCallback()->keyPickOn());
  key(interactor(), '2', true);
  EXPECT_TRUE(style()->pick2ModeOn());
  EXPECT_FALSE(style()->pick1ModeOn());
  key(interactor(), 'x', true); // any other key leaves the modes
  EXPECT_TRUE(style()->pick2ModeOn());
  key(interactor(), 'x', false);
  EXPECT_TRUE(style()->pick2ModeOn());
  key(interactor(), '2', false);
  EXPECT_FALSE(style()->pick1ModeOn());
  EXPECT_FALSE(style()->pick2ModeOn());
  EXPECT_FALSE(m_View->getPickerCallback()->keyPickOn());
  EXPECT_EQ(pressed.count(), 3);
  EXPECT_EQ(released.count(), 2);
}

TEST_F(Interaction, VtkCharacterKeysDoNothing)
{
  // a camera away from its reset position, so that a reset or fly-to would show
  renderer()->GetActiveCamera()->SetPosition(3, 4, 10);
  const CameraState before = cameraOf(renderer());
  EventCounter exits(interactor(), vtkCommand::ExitEvent);
  EventCounter picks(interactor(), vtkCommand::StartPickEvent);
  EventCounter userKeys(interactor(), vtkCommand::UserEvent);
  for (const char code : std::string("wsp3efrjtuiqxyzWSR"))
  {
    SCOPED_TRACE(std::string("key ") + code);
    QTest::keyClick(m_View.get(), code);
    pump();
    EXPECT_EQ(m_Box->GetProperty()->GetRepresentation(), VTK_SURFACE);
    EXPECT_FALSE(m_View->renderWindow()->GetStereoRender());
    EXPECT_EQ(exits.count(), 0);
    EXPECT_EQ(picks.count(), 0);
    EXPECT_EQ(userKeys.count(), 0);
    EXPECT_TRUE(m_View->getCameraOrientationWidget()->GetEnabled()); // 'i' would switch it
    const CameraState after = cameraOf(renderer());
    expectNear3(after.position, before.position);
    expectNear3(after.focalPoint, before.focalPoint);
  }
}

TEST_F(Interaction, LeftDragTurnsTheCameraAroundTheCentreOfRotation)
{
  const double centre[3] = { 5, 0, 0 };
  style()->setCenterOfRotation(centre);
  // 30 pixels right in a 300 pixel wide view: -20 / 300 * 30 * MotionFactor (10) = -20 degrees
  // around the view up through the centre
  drag(interactor(), 150, 150, 180, 150);
  const double angle = vtkMath::RadiansFromDegrees(-20.0);
  const auto turned = [&](double x, double z) -> std::array<double, 3>
  {
    const double dx = x - centre[0];
    const double dz = z - centre[2];
    return { centre[0] + dx * std::cos(angle) + dz * std::sin(angle), 0.0,
             centre[2] - dx * std::sin(angle) + dz * std::cos(angle) };
  };
  const CameraState after = cameraOf(renderer());
  expectNear3(after.position, turned(0, 10), 1e-6);
  // the focal point is away from the centre, so it moves as well
  expectNear3(after.focalPoint, turned(0, 0), 1e-6);
  expectNear3(after.viewUp, { 0, 1, 0 }, 1e-9);
}

TEST_F(Interaction, RotationIsANoOpWhenTheViewUpRunsAlongTheViewDirection)
{
  renderer()->GetActiveCamera()->SetViewUp(0, 0, 1);
  const CameraState before = cameraOf(renderer());
  drag(interactor(), 150, 150, 190, 120);
  const CameraState after = cameraOf(renderer());
  expectNear3(after.position, before.position);
  expectNear3(after.focalPoint, before.focalPoint);
  expectNear3(after.viewUp, before.viewUp);
}

TEST_F(Interaction, TwoDModeLocksRotationAndTheRightButtonStillZooms)
{
  style()->SetInteractionModeToImage2D();
  const CameraState before = cameraOf(renderer());
  drag(interactor(), 150, 150, 200, 100);
  const CameraState afterLeft = cameraOf(renderer());
  expectNear3(afterLeft.position, before.position);
  expectNear3(afterLeft.viewUp, before.viewUp);

  drag(interactor(), 150, 150, 150, 200, vtkCommand::RightButtonPressEvent);
  const CameraState afterRight = cameraOf(renderer());
  EXPECT_LT(afterRight.position[2], before.position[2] - 0.1); // closer: a zoom, not a turn
  EXPECT_NEAR(afterRight.position[0], 0.0, 1e-9);
  EXPECT_NEAR(afterRight.position[1], 0.0, 1e-9);
}

TEST_F(Interaction, CentrePickClickMovesAndLocksTheCentreAndTheButtonsFollow)
{
  QToolButton* points = toolbar()->hoverPointsButton();
  QToolButton* cells = toolbar()->hoverCellsButton();
  QToolButton* centre = toolbar()->centerOfRotationButton();
  QTest::mouseClick(points, Qt::LeftButton);
  EXPECT_TRUE(m_View->hoverPointsModeOn());
  QTest::mouseClick(cells, Qt::LeftButton);
  EXPECT_TRUE(m_View->hoverCellsModeOn());
  EXPECT_FALSE(m_View->hoverPointsModeOn());
  EXPECT_FALSE(points->isChecked());
  QTest::mouseClick(points, Qt::LeftButton);
  EXPECT_FALSE(cells->isChecked());

  // the centre pick shows cells under the cursor: the view and its buttons say so
  QTest::mouseClick(centre, Qt::LeftButton);
  ASSERT_TRUE(m_View->pickCenterOfRotationModeOn());
  EXPECT_TRUE(m_View->hoverCellsModeOn());
  EXPECT_TRUE(cells->isChecked());
  EXPECT_FALSE(points->isChecked());

  // a click on the box's front face (z = 1) at (0.5, 0.25) sets the centre there
  QSignalSpy picks(m_View.get(), &VXVisualizationWidget::pickEvent);
  const auto at = displayOf(renderer(), 0.5, 0.25, 1.0);
  click(interactor(), at[0], at[1]);
  ASSERT_EQ(picks.count(), 1);
  EXPECT_TRUE(picks.at(0).at(1).toBool());
  EXPECT_TRUE(picks.at(0).at(2).toBool());
  const std::array<double, 3> picked = m_View->getCenterOfRotation();
  expectNear3(picked, { 0.5, 0.25, 1.0 }, 0.05);
  EXPECT_TRUE(m_View->isCenterOfRotationLocked());
  // the pick ends the mode, and no button claims a mode the view has left
  EXPECT_FALSE(m_View->pickCenterOfRotationModeOn());
  EXPECT_FALSE(centre->isChecked());
  EXPECT_FALSE(m_View->hoverCellsModeOn());
  EXPECT_FALSE(cells->isChecked());
  EXPECT_FALSE(points->isChecked());

  // with key 1 held and no centre pick, a click reaches the listeners but leaves the centre
  key(interactor(), '1', true, at[0], at[1]);
  const auto elsewhere = displayOf(renderer(), -0.5, -0.5, 1.0);
  click(interactor(), elsewhere[0], elsewhere[1]);
  key(interactor(), '1', false, elsewhere[0], elsewhere[1]);
  ASSERT_EQ(picks.count(), 2);
  EXPECT_TRUE(picks.at(1).at(1).toBool());
  EXPECT_FALSE(picks.at(1).at(2).toBool());
  EXPECT_EQ(m_View->getCenterOfRotation(), picked);
}

TEST_F(Interaction, ReleasingThePickKeyRestoresTheHoverHighlighters)
{
  m_View->toggleHoverCells(true);
  VXPickerCallback* picker = m_View->getPickerCallback();
  const auto at = displayOf(renderer(), 0.2, 0.2, 1.0);
  key(interactor(), '1', true, at[0], at[1]);
  // the key pick shows the point marker
  EXPECT_TRUE(picker->getPointHighlightActor()->GetVisibility());
  EXPECT_FALSE(picker->getPickedDataText().isEmpty());
  key(interactor(), '1', false, at[0], at[1]);
  EXPECT_FALSE(picker->getPointHighlightActor()->GetVisibility());
  EXPECT_TRUE(picker->getCellHighlightActor()->GetVisibility());
  m_View->toggleHoverCells(false);
}
