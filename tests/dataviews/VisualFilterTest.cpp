// The clip and slice filters: a plane or a box cuts the data, the tools in the view follow the
// filter's visibility, the active view and reloads, and the state keeps the tools where they were.
#include "DataViewTestSupport.hpp"

#include <visualization/QtWidgets/VXFClipFilterWidget.hpp>
#include <visualization/QtWidgets/VXPlaneWidget.hpp>
#include <visualization/VXBox.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXFSlice.hpp>
#include <visualization/VXPlane.hpp>

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

#include <vtkCutter.h>
#include <vtkImageData.h>
#include <vtkPolyData.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkUnstructuredGrid.h>

using namespace dataviewtest;

namespace
{
/** 10 x 10 x 10 unit cells from 0 to 10. */
vtkSmartPointer<vtkImageData> Cube(int cells = 10)
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(cells + 1, cells + 1, cells + 1);
  return image;
}

std::array<double, 6> Bounds(vtkDataSet* data)
{
  std::array<double, 6> bounds{};
  data->GetBounds(bounds.data());
  return bounds;
}

/** Adds a clip filter under @p source as the tree's menu does. */
VXFClip* AddClip(Scene& scene, VXDataSource* source)
{
  auto* clip = new VXFClip();
  EXPECT_TRUE(scene.pipeline->addFilter(source, clip));
  return clip;
}
} // namespace

TEST(ClipFilter, PlaneAndBoxCutTheInputAndTheFirstApplyAddsOneDataView)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(Cube());
  VXFClip* clip = AddClip(scene, source);
  ASSERT_NE(clip->plane(), nullptr);
  ASSERT_NE(clip->box(), nullptr);
  EXPECT_EQ(clip->name(), "Clip Filter");
  // the plane starts through the centre of the input, across x, and is shown in the view
  EXPECT_EQ(clip->plane()->getOrigin(), (std::array<double, 3>{ 5.0, 5.0, 5.0 }));
  EXPECT_EQ(clip->plane()->getNormal(), (std::array<double, 3>{ 1.0, 0.0, 0.0 }));
  EXPECT_TRUE(clip->plane()->isEnabled());
  EXPECT_FALSE(clip->box()->isEnabled());

  // inverted (the default) keeps the side behind the normal
  clip->applyFilter();
  vtkUnstructuredGrid* out = clip->clipFilter()->GetOutput();
  EXPECT_EQ(out->GetNumberOfCells(), 500);
  EXPECT_EQ(Bounds(out), (std::array<double, 6>{ 0, 5, 0, 10, 0, 10 }));
  EXPECT_EQ(clip->findChildren<VXRepresentation*>().size(), 1);
  EXPECT_FALSE(clip->shouldAddRep());

  clip->setInverted(false);
  clip->plane()->setValues({ 0.0, 0.0, 1.0 }, { 5.0, 5.0, 3.5 });
  clip->applyFilter();
  // six whole layers and the cut halves of the seventh
  EXPECT_EQ(out->GetNumberOfCells(), 700);
  EXPECT_EQ(Bounds(out), (std::array<double, 6>{ 0, 10, 0, 10, 3.5, 10 }));
  EXPECT_EQ(clip->findChildren<VXRepresentation*>().size(), 1);

  // the box at 0.6 of the bounds spans 2..8 on cell faces: inverted keeps its 6^3 cells
  clip->setInverted(true);
  clip->setClipType(VXFClip::ClipType::Box);
  EXPECT_TRUE(clip->box()->isEnabled());
  EXPECT_FALSE(clip->plane()->isEnabled());
  clip->box()->setScale({ 0.6, 0.6, 0.6 });
  clip->applyFilter();
  EXPECT_EQ(out->GetNumberOfCells(), 216);
  const auto box = Bounds(out);
  for (int i = 0; i < 6; ++i)
    EXPECT_NEAR(box[i], i % 2 == 0 ? 2.0 : 8.0, 1e-9) << i;
}

TEST(ClipFilter, PageAndToolsEditTheSamePlane)
{
  ScopedSettings settings;
  Scene scene;
  VXFClip* clip = AddClip(scene, scene.source(Cube()));
  QWidget* page = clip->settingsWidget();
  ASSERT_NE(page, nullptr);
  page->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(page));
  VXFClipFilterWidget* widget = clip->filterWidget();
  ASSERT_NE(widget, nullptr);

  // the plane moved elsewhere shows in the spin boxes
  clip->plane()->setOrigin(2.5, 5.0, 5.0);
  auto* originX = widget->findChild<QDoubleSpinBox*>("originXSpinBox");
  ASSERT_NE(originX, nullptr);
  EXPECT_EQ(originX->value(), 2.5);

  // a value typed into a spin box moves the plane
  originX->setFocus();
  originX->selectAll();
  QTest::keyClicks(originX, "7.5");
  QTest::keyClick(originX, Qt::Key_Return);
  EXPECT_EQ(clip->plane()->getOrigin()[0], 7.5);

  // choosing "Box" shows the box's values and the box in the view
  auto* type = widget->findChild<QComboBox*>("m_ClipTypeCombo");
  ASSERT_NE(type, nullptr);
  type->setFocus();
  QTest::keyClick(type, Qt::Key_Down);
  EXPECT_EQ(clip->clipType(), VXFClip::ClipType::Box);
  EXPECT_EQ(widget->findChild<QStackedWidget*>()->currentIndex(), 1);
  EXPECT_TRUE(clip->box()->isEnabled());

  // "Apply" cuts with the box and adds the data view
  QTest::mouseClick(widget->findChild<QPushButton*>("m_ApplyButton"), Qt::LeftButton);
  EXPECT_EQ(clip->clipFilter()->GetOutput()->GetNumberOfCells(), 1000);
  EXPECT_EQ(clip->findChildren<VXRepresentation*>().size(), 1);
}

TEST(ClipFilter, ToolsFollowVisibilityTheActiveViewAndReloads)
{
  ScopedSettings settings;
  Scene scene;
  auto image = Cube();
  VXFClip* clip = AddClip(scene, scene.source(image));

  // hidden filter, hidden tool; shown again with the tool switched off, still hidden
  clip->setVisibility(false);
  EXPECT_FALSE(clip->plane()->isEnabled());
  clip->setShowClipTool(false);
  clip->setVisibility(true);
  EXPECT_FALSE(clip->plane()->isEnabled());
  clip->setShowClipTool(true);
  EXPECT_TRUE(clip->plane()->isEnabled());

  // a reload with larger bounds moves both tools, the hidden box too
  image->SetDimensions(21, 21, 21);
  image->Modified();
  clip->receivePipelineOutputReloaded();
  EXPECT_EQ(clip->plane()->bounds(), (std::array<double, 6>{ 0, 20, 0, 20, 0, 20 }));
  EXPECT_EQ(clip->box()->bounds(), (std::array<double, 6>{ 0, 20, 0, 20, 0, 20 }));

  // another active view takes both tools
  RenderView second;
  second.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&second));
  scene.pipeline->setActiveViewWidget(&second);
  vtkRenderWindowInteractor* interactor = second.getVisualizationWidget()->interactor();
  EXPECT_EQ(clip->plane()->renderWindowInteractor(), interactor);
  EXPECT_EQ(clip->box()->renderWindowInteractor(), interactor);
  EXPECT_TRUE(clip->plane()->isEnabled());
  scene.pipeline->setActiveViewWidget(scene.view.get());
}

TEST(ClipFilter, StateKeepsTypeFlagsAndBothTools)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(Cube());
  VXFClip* clip = AddClip(scene, source);
  clip->plane()->setValues({ 0.0, 1.0, 0.0 }, { 1.0, 2.0, 3.0 });
  clip->box()->setValues({ 1.0, 0.0, 0.0 }, { 0.0, 0.0, 30.0 }, { 0.5, 1.0, 1.0 });
  clip->setClipType(VXFClip::ClipType::Box);
  clip->setInverted(false);
  clip->setRepTypeToAdd("Wireframe");
  nlohmann::json state;
  clip->write(state, {});
  EXPECT_EQ(state["clip_type"], 1);
  EXPECT_EQ(state["clip_inverted"], false);
  EXPECT_EQ(state["filter_rep_type_to_add"], static_cast<int>(VXRepresentation::Wireframe));
  EXPECT_EQ(state["clip_plane_origin_z"], 3.0);
  EXPECT_EQ(state["clip_box_rotate_z"], 30.0);

  // as the state loader does: read first, then into the tree, where the tools are built
  auto* loaded = new VXFClip();
  loaded->setInputPort(source->outputPort());
  loaded->read(state, {});
  ASSERT_TRUE(scene.pipeline->addFilter(source, loaded));
  EXPECT_EQ(loaded->clipType(), VXFClip::ClipType::Box);
  EXPECT_FALSE(loaded->inverted());
  EXPECT_EQ(loaded->repTypeToAdd(), VXRepresentation::Wireframe);
  EXPECT_EQ(loaded->plane()->getNormal(), (std::array<double, 3>{ 0.0, 1.0, 0.0 }));
  EXPECT_EQ(loaded->plane()->getOrigin(), (std::array<double, 3>{ 1.0, 2.0, 3.0 }));
  EXPECT_EQ(loaded->box()->getTranslation(), (std::array<double, 3>{ 1.0, 0.0, 0.0 }));
  EXPECT_EQ(loaded->box()->getRotation(), (std::array<double, 3>{ 0.0, 0.0, 30.0 }));
  EXPECT_EQ(loaded->box()->getScale(), (std::array<double, 3>{ 0.5, 1.0, 1.0 }));

  // an unknown data view name keeps the type and says so
  QSignalSpy output(scene.pipeline.get(), &VXPipeline::sendOutputMessage);
  loaded->setRepTypeToAdd("Hologram");
  ASSERT_EQ(output.size(), 1);
  EXPECT_EQ(output[0][0].toString(),
            "Hologram is not a valid representation type. Using Wireframe as the initial "
            "representation type to add for viewing the filtered results.");
}

TEST(SliceFilter, CutsWithThePlaneTakesTheClipsPlaneKeysAndKeepsItsToolHiddenWhenAsked)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(Cube());
  auto* slice = new VXFSlice();
  ASSERT_TRUE(scene.pipeline->addFilter(source, slice));
  EXPECT_EQ(slice->name(), "Slice Filter");
  ASSERT_NE(slice->plane(), nullptr);
  EXPECT_TRUE(slice->plane()->isEnabled());

  // the cut through the centre across x: the 10 x 10 cell faces of the plane x = 5
  slice->applyFilter();
  vtkPolyData* cut = slice->cutter()->GetOutput();
  EXPECT_GE(cut->GetNumberOfCells(), 100);
  EXPECT_EQ(Bounds(cut), (std::array<double, 6>{ 5, 5, 0, 10, 0, 10 }));
  EXPECT_EQ(slice->findChildren<VXRepresentation*>().size(), 1);

  // a clip filter's plane, as its state writes it, reads the same in a slice filter
  VXFClip* clip = AddClip(scene, source);
  clip->plane()->setValues({ 0.0, 0.0, 1.0 }, { 2.0, 3.0, 4.0 });
  nlohmann::json state;
  clip->write(state, {});
  slice->read(state, {});
  EXPECT_EQ(slice->plane()->getNormal(), (std::array<double, 3>{ 0.0, 0.0, 1.0 }));
  EXPECT_EQ(slice->plane()->getOrigin(), (std::array<double, 3>{ 2.0, 3.0, 4.0 }));
  slice->applyFilter();
  EXPECT_EQ(Bounds(cut), (std::array<double, 6>{ 0, 10, 0, 10, 4, 4 }));

  // shown again with the tool switched off, the tool stays hidden
  slice->setVisibility(false);
  EXPECT_FALSE(slice->plane()->isEnabled());
  slice->setShowPlaneTool(false);
  slice->setVisibility(true);
  EXPECT_FALSE(slice->plane()->isEnabled());
}
