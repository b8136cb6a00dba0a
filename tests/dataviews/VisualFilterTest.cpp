// The clip and slice filters: a plane or a box cuts the data, the tools in the view follow the
// filter's visibility, the active view and reloads, and the state keeps the tools where they were.
#include "DataViewTestSupport.hpp"
#include "HostDataSupport.hpp"

#include <visualization/QtWidgets/VXFClipFilterWidget.hpp>
#include <visualization/QtWidgets/VXPlaneWidget.hpp>
#include <visualization/VXBox.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXFSlice.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXPlane.hpp>

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

#include <vtkCellData.h>
#include <vtkCutter.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkPolyData.h>
#include <vtkPointData.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkThreshold.h>
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

  // copied and pasted into another clip filter: the same tools
  clip->copyActiveSettings();
  VXFClip* pasted = AddClip(scene, source);
  pasted->pasteToActiveSettings();
  EXPECT_EQ(pasted->clipType(), VXFClip::ClipType::Box);
  EXPECT_EQ(pasted->plane()->getOrigin(), (std::array<double, 3>{ 1.0, 2.0, 3.0 }));
  EXPECT_EQ(pasted->box()->getRotation(), (std::array<double, 3>{ 0.0, 0.0, 30.0 }));

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

namespace
{
/** 4 x 4 x 4 cells: a point array "Height" (the z of the point) and a cell vector "Flow". */
vtkSmartPointer<vtkImageData> ThresholdInput(const char* vectorName = "Flow")
{
  auto image = Cube(4);
  vtkNew<vtkFloatArray> height;
  height->SetName("Height");
  for (vtkIdType i = 0; i < image->GetNumberOfPoints(); ++i)
    height->InsertNextValue(static_cast<float>(image->GetPoint(i)[2]));
  image->GetPointData()->AddArray(height);
  vtkNew<vtkFloatArray> flow;
  flow->SetName(vectorName);
  flow->SetNumberOfComponents(3);
  for (vtkIdType i = 0; i < image->GetNumberOfCells(); ++i)
    flow->InsertNextTuple3(double(i), 10.0 * double(i), -double(i));
  image->GetCellData()->AddArray(flow);
  return image;
}
} // namespace

TEST(ThresholdFilter, OneRecordPerComponentEachWithItsRangeThroughApplyStateAndReload)
{
  ScopedSettings settings;
  Scene scene;
  auto image = ThresholdInput();
  VXDataSource* source = scene.source(image);
  auto* threshold = new VXFThreshold();
  ASSERT_TRUE(scene.pipeline->addFilter(source, threshold));
  EXPECT_EQ(threshold->name(), "Threshold Filter");

  // point arrays first, then each component of the cell vector, each with its own data range
  const auto& infos = threshold->activeArrayInfos();
  ASSERT_EQ(infos.size(), 4u);
  EXPECT_EQ(infos[0].displayName, "Height");
  EXPECT_EQ(infos[2].displayName, "Flow (Comp 1)");
  EXPECT_EQ((std::array<double, 2>{ infos[0].dataMin, infos[0].dataMax }),
            (std::array<double, 2>{ 0.0, 4.0 }));
  EXPECT_EQ((std::array<double, 2>{ infos[2].dataMin, infos[2].dataMax }),
            (std::array<double, 2>{ 0.0, 630.0 }));
  EXPECT_EQ((std::array<double, 2>{ infos[3].dataMin, infos[3].dataMax }),
            (std::array<double, 2>{ -63.0, 0.0 }));

  // component 1 between 0 and 150 keeps the cells 0..15: the first layer
  threshold->setActiveArrayInfoIndex(2);
  threshold->setUserRange(0.0, 150.0);
  threshold->applyFilter();
  EXPECT_EQ(threshold->thresholdFilter()->GetOutput()->GetNumberOfCells(), 16);
  EXPECT_EQ(threshold->findChildren<VXRepresentation*>().size(), 1);

  // the state keeps each record's range by name; an index past the end shows the first record
  nlohmann::json state;
  threshold->write(state, {});
  EXPECT_EQ(state["threshold_active_array_index"], 2);
  EXPECT_EQ(state["threshold_data_array_info"]["Flow (Comp 1)"]["threshold_info_user_range_1"],
            150.0);
  state["threshold_active_array_index"] = 9;
  auto* loaded = new VXFThreshold();
  loaded->setInputPort(source->outputPort());
  testing::internal::CaptureStderr();
  loaded->read(state, {});
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "VXFThreshold::setActiveArrayInfoIndex(): Index Out of bounds\n");
  EXPECT_EQ(loaded->activeArrayInfoIndex(), 0u);
  EXPECT_EQ(loaded->activeArrayInfos()[2].userMax, 150.0);
  delete loaded;

  // a reload that renames the vector drops its ranges; the point array keeps its own
  threshold->setActiveArrayInfoIndex(0);
  threshold->setUserRange(1.0, 2.0);
  image->GetCellData()->GetArray("Flow")->SetName("Velocity");
  image->Modified();
  threshold->receivePipelineOutputReloaded();
  ASSERT_EQ(infos.size(), 4u);
  EXPECT_EQ(infos[0].userMax, 2.0);
  EXPECT_EQ(infos[2].displayName, "Velocity (Comp 1)");
  EXPECT_EQ(infos[2].userMax, 630.0);
}

TEST(ThresholdFilter, ChainsGoToTheHostAsOneMultiThresholdFilter)
{
  ScopedSettings settings;
  Scene scene;
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 8), "Microstructure");
  ASSERT_NE(source, nullptr);
  auto* first = new VXFThreshold();
  ASSERT_TRUE(scene.pipeline->addFilter(source, first));
  auto* second = new VXFThreshold();
  ASSERT_TRUE(scene.pipeline->addFilter(first, second));
  auto pick = [](VXFThreshold* filter, const QString& name)
  {
    const auto& infos = filter->activeArrayInfos();
    for (size_t i = 0; i < infos.size(); ++i)
      if (infos[i].displayName == name)
        filter->setActiveArrayInfoIndex(i);
  };
  pick(first, "Phases");
  first->setUserRange(1.0, 2.0);
  pick(second, "FeatureIds");
  second->setUserRange(3.0, 9.0);

  std::vector<std::vector<KX::ArrayThresholdRange>> sent;
  std::vector<std::string> paths;
  QObject::connect(scene.pipeline.get(), &VXPipeline::createMultiThresholdObjectsFilter,
                   [&](kx::core::DataPath path, std::vector<KX::ArrayThresholdRange> ranges)
                   {
                     paths.push_back(path.toString());
                     sent.push_back(ranges);
                   });
  int answer = 1;
  std::vector<VXUserPrompt::Choice> asked;
  VXUserPrompt::setChoiceHandler(
    [&](const VXUserPrompt::Choice& choice)
    {
      asked.push_back(choice);
      return VXUserPrompt::ChoiceAnswer{ answer, false };
    });
  std::vector<VXUserPrompt::Question> boxes;
  VXUserPrompt::setAskHandler(
    [&](const VXUserPrompt::Question& question)
    {
      boxes.push_back(question);
      return QMessageBox::Ok;
    });

  // "All Filters": the parent's range, then this one's
  second->createMultiThresholdObjectsFilter();
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(asked[0].title, "Create Multi-Threshold Objects Filter");
  EXPECT_EQ(asked[0].buttons, (QStringList{ "Just This Filter", "All Filters", "Cancel" }));
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(paths[0], "Microstructure");
  ASSERT_EQ(sent[0].size(), 2u);
  EXPECT_EQ(sent[0][0].arrayPath, "Phases");
  EXPECT_EQ(sent[0][1].arrayPath, "FeatureIds");
  EXPECT_EQ(sent[0][1].upperBound, 9.0);

  // "Just This Filter" sends one range; "Cancel" sends nothing
  answer = 0;
  second->createMultiThresholdObjectsFilter();
  ASSERT_EQ(sent.size(), 2u);
  ASSERT_EQ(sent[1].size(), 1u);
  EXPECT_EQ(sent[1][0].arrayPath, "FeatureIds");
  answer = 2;
  second->createMultiThresholdObjectsFilter();
  EXPECT_EQ(sent.size(), 2u);

  // a component of a vector can't go: a box and the same text in the output
  QSignalSpy output(scene.pipeline.get(), &VXPipeline::sendOutputMessage);
  pick(second, "EulerAngles (Comp 0)");
  answer = 1;
  second->createMultiThresholdObjectsFilter();
  EXPECT_EQ(sent.size(), 2u);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].title, "Cannot Create Multi-Threshold Objects Filter");
  EXPECT_EQ(boxes[0].text, VXFThreshold::k_MultiComponentText);
  ASSERT_EQ(output.size(), 1);
  EXPECT_EQ(output[0][0].toString(), VXFThreshold::k_MultiComponentText);

  // without a host geometry above it there is nothing to hand over
  auto* orphan = new VXFThreshold();
  ASSERT_TRUE(scene.pipeline->addFilter(scene.source(ThresholdInput()), orphan));
  orphan->createMultiThresholdObjectsFilter();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[1].text, VXFThreshold::k_NoGeometryText);
  VXUserPrompt::setChoiceHandler({});
  VXUserPrompt::setAskHandler({});
}
