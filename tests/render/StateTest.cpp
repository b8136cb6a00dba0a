// Saving and loading a view's state: the keys, the round trip, partial and broken input.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXViewActionsController.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"

#include <vtkCamera.h>
#include <vtkGridAxesActor3D.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

#include <QtGui/QAction>

#include <set>
#include <string>

using rendertest::makeBox;
using rendertest::pump;

namespace
{
class ViewState : public rendertest::ViewTest
{
protected:
  VXViewActionsController* controller() const { return m_View->getViewActionsController(); }
  vtkCamera* camera() const { return m_View->getRenderer()->GetActiveCamera(); }
};
} // namespace

TEST_F(ViewState, SavedKeysAreExactlyTheViewKeys)
{
  nlohmann::json state = nlohmann::json::object();
  m_View->saveState(state);
  std::set<std::string> keys;
  for (const auto& item : state.items())
    keys.insert(item.key());
  std::set<std::string> expected = {
    "parallel_projection",    "global_grid_axes",         "global_grid_axes_show_grid_lines",
    "global_grid_axes_color", "global_grid_axes_opacity", "global_grid_axes_show_labels",
    "own_context_menu",       "check_context_menu",       "num_render_layers",
    "camera_view_angle",      "camera_parallel_scale"
  };
  for (const std::string prefix :
       { "global_grid_axes_spacing", "global_grid_axes_title_", "camera_pos_", "camera_view_up_",
         "camera_focal_pt_", "camera_center_of_rotation_" })
    for (const char* axis : { "x", "y", "z" })
      expected.insert(prefix + axis);
  EXPECT_EQ(keys, expected);
  EXPECT_TRUE(state["parallel_projection"].is_number());
  EXPECT_TRUE(state["global_grid_axes"].is_boolean());
  EXPECT_TRUE(state["global_grid_axes_color"].is_array());
  EXPECT_EQ(state["global_grid_axes_color"].size(), 3u);
  EXPECT_EQ(state["num_render_layers"], 2);
  EXPECT_EQ(state["own_context_menu"], true);
  EXPECT_EQ(state["check_context_menu"], false);
}

TEST_F(ViewState, RoundTripRestoresCameraGridAndFlags)
{
  m_View->addActor(makeBox(0, 4, 0, 4, 0, 4));
  pump();
  camera()->SetParallelProjection(true);
  camera()->SetPosition(1, 2, 20);
  camera()->SetFocalPoint(1, 2, 0);
  camera()->SetViewUp(0, 1, 0);
  camera()->SetParallelScale(3.5);
  camera()->SetViewAngle(25);
  const double center[3] = { 0.5, 0.25, 0.125 };
  m_View->getInteractorStyle()->setCenterOfRotation(center);
  controller()->setGridAxesEnabled(true);
  controller()->setGridAxesConfig({ 1, 2, 0 }, true, QColor(255, 0, 0), 0.5, false,
                                  { "x", "y", "z" });
  m_View->setOwnContextMenu(false);
  nlohmann::json state = nlohmann::json::object();
  m_View->saveState(state);

  VXVisualizationWidget restored(nullptr, 2);
  restored.resize(300, 300);
  restored.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&restored));
  restored.addActor(makeBox(0, 4, 0, 4, 0, 4));
  pump();
  ASSERT_FALSE(restored.getParallelProjectionAction()->isChecked());
  restored.loadState(state);

  vtkCamera* cam = restored.getRenderer()->GetActiveCamera();
  EXPECT_TRUE(cam->GetParallelProjection());
  EXPECT_TRUE(restored.getParallelProjectionAction()->isChecked());
  EXPECT_DOUBLE_EQ(cam->GetPosition()[2], 20.0);
  EXPECT_DOUBLE_EQ(cam->GetFocalPoint()[0], 1.0);
  EXPECT_DOUBLE_EQ(cam->GetParallelScale(), 3.5);
  EXPECT_DOUBLE_EQ(cam->GetViewAngle(), 25.0);
  const std::array<double, 3> restoredCenter = restored.getCenterOfRotation();
  EXPECT_DOUBLE_EQ(restoredCenter[0], 0.5);
  EXPECT_DOUBLE_EQ(restoredCenter[2], 0.125);
  EXPECT_FALSE(restored.ownContextMenu());

  VXViewActionsController* actions = restored.getViewActionsController();
  EXPECT_TRUE(actions->gridAxesEnabled());
  EXPECT_TRUE(actions->getGridAxesAction()->isChecked());
  const VXGridAxesConfig& grid = actions->gridAxesConfig();
  EXPECT_EQ(grid.spacing, (std::array<double, 3>{ 1, 2, 0 }));
  EXPECT_TRUE(grid.showGrid);
  EXPECT_EQ(grid.color, QColor(255, 0, 0));
  EXPECT_DOUBLE_EQ(grid.opacity, 0.5);
  EXPECT_FALSE(grid.showLabels);
  EXPECT_EQ(grid.titles[2], QStringLiteral("z"));
  EXPECT_EQ(actions->gridAxesLabels(0), (std::vector<double>{ 0, 1, 2, 3, 4 }));
  EXPECT_TRUE(actions->getGridAxesActor()->GetGenerateGrid());
}

TEST_F(ViewState, PartialStateKeepsWhatItDoesNotName)
{
  controller()->setGridAxesConfig({ 5, 6, 7 }, true, QColor(0, 255, 0), 0.9, true,
                                  { "a", "b", "c" });
  camera()->SetPosition(3, 3, 3);
  camera()->SetFocalPoint(0, 0, 0);
  const nlohmann::json partial = {
    { "global_grid_axes_opacity", 0.2 },
    { "global_grid_axes_spacingx", 1.0 }, // without y and z: ignored
    { "global_grid_axes_title_y", "Height" },
    { "global_grid_axes_color", { 0.5, 0.5 } }, // wrong length: ignored
    { "camera_pos_x", 9.0 },
    { "camera_pos_y", 9.0 }, // no z: the position stays
    { "camera_view_angle", 40.0 },
  };
  m_View->loadState(partial);
  const VXGridAxesConfig& grid = controller()->gridAxesConfig();
  EXPECT_DOUBLE_EQ(grid.opacity, 0.2);
  EXPECT_EQ(grid.spacing, (std::array<double, 3>{ 5, 6, 7 }));
  EXPECT_EQ(grid.titles[0], QStringLiteral("a"));
  EXPECT_EQ(grid.titles[1], QStringLiteral("Height"));
  EXPECT_EQ(grid.color, QColor(0, 255, 0));
  EXPECT_TRUE(grid.showGrid);
  EXPECT_DOUBLE_EQ(camera()->GetPosition()[0], 3.0);
  EXPECT_DOUBLE_EQ(camera()->GetViewAngle(), 40.0);
  // no centre in the file: the camera's focal point
  EXPECT_EQ(m_View->getCenterOfRotation(), (std::array<double, 3>{ 0, 0, 0 }));
  EXPECT_TRUE(m_View->ownContextMenu());
}

TEST_F(ViewState, SingleKeysClampColoursSetTheLayerFieldAndCheckTheParallelAction)
{
  m_View->loadState({ { "global_grid_axes_color", { 1.5, -2.0, 0.5 } } });
  const QColor color = controller()->gridAxesConfig().color;
  EXPECT_DOUBLE_EQ(color.redF(), 1.0);
  EXPECT_DOUBLE_EQ(color.greenF(), 0.0);
  EXPECT_NEAR(color.blueF(), 0.5, 1e-3);

  // the render layer count changes only the field
  const int layersBefore = m_View->renderWindow()->GetNumberOfLayers();
  m_View->loadState({ { "num_render_layers", 5 }, { "check_context_menu", true } });
  EXPECT_EQ(m_View->getNumRenderLayers(), 5);
  EXPECT_EQ(m_View->renderWindow()->GetNumberOfLayers(), layersBefore);
  nlohmann::json state = nlohmann::json::object();
  m_View->saveState(state);
  EXPECT_EQ(state["num_render_layers"], 5);
  EXPECT_EQ(state["check_context_menu"], true);

  camera()->SetParallelProjection(false);
  for (const int parallel : { 1, 0 })
  {
    m_View->loadState({ { "parallel_projection", parallel } });
    EXPECT_EQ(camera()->GetParallelProjection(), parallel);
    EXPECT_EQ(m_View->getParallelProjectionAction()->isChecked(), parallel == 1);
  }
}
