// Behaviour of the data view frame and of the outline, points, wireframe and
// surface data views: instances per view, colouring, legend titles, grid
// labels, state and settings keys, categorical colours and reloads.
#include "DataViewTestSupport.hpp"

#include <visualization/QtWidgets/VXCustomRangeDialog.hpp>
#include <visualization/VXColoringSettings.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXOutlineRep.hpp>
#include <visualization/VXPointsRep.hpp>
#include <visualization/VXRepresentationUtils.hpp>
#include <visualization/VXSurfaceRep.hpp>
#include <visualization/VXSurfaceRepPimpl.hpp>
#include <visualization/VXUserPrompt.hpp>
#include <visualization/VXWireframeRep.hpp>

#include <gtest/gtest.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QPushButton>

#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkGridAxesActor3D.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkCommand.h>
#include <KXComponents/KXPreferences.hpp>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarWidget.h>
#include <vtkSphereSource.h>
#include <vtkUnsignedCharArray.h>

using namespace dataviewtest;

namespace
{
/** A sphere with a scalar "Height" (z), "Index" (point id), a 3-component "Vec", an RGBA array and
 * a cell array "Id". */
vtkSmartPointer<vtkPolyData> makeSphere(int distinctIds = 4)
{
  vtkNew<vtkSphereSource> sphere;
  sphere->SetThetaResolution(16);
  sphere->SetPhiResolution(16);
  sphere->SetRadius(2.0);
  sphere->Update();
  auto data = vtkSmartPointer<vtkPolyData>::New();
  data->DeepCopy(sphere->GetOutput());
  data->GetPointData()->SetNormals(nullptr);
  auto add =
    [](vtkDataSetAttributes* attributes, vtkDataArray* array, const char* name, int components)
  {
    array->SetName(name);
    array->SetNumberOfComponents(components);
    attributes->AddArray(array);
    return array;
  };
  vtkPointData* pd = data->GetPointData();
  vtkDataArray* height = add(pd, vtkNew<vtkDoubleArray>(), "Height", 1);
  vtkDataArray* vec = add(pd, vtkNew<vtkDoubleArray>(), "Vec", 3);
  vtkDataArray* index = add(pd, vtkNew<vtkDoubleArray>(), "Index", 1);
  vtkDataArray* rgba = add(pd, vtkNew<vtkUnsignedCharArray>(), "RGBA", 4);
  vtkDataArray* rgb = add(pd, vtkNew<vtkUnsignedCharArray>(), "RGB", 3);
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); i++)
  {
    height->InsertNextTuple1(data->GetPoint(i)[2]);
    index->InsertNextTuple1(double(i));
    vec->InsertNextTuple3(1.0, double(i % 5), 10.0 + double(i % 3));
    rgba->InsertNextTuple4(10, 20, 30, 255);
    rgb->InsertNextTuple3(10, 20, 30);
  }
  vtkDataArray* ids = add(data->GetCellData(), vtkNew<vtkDoubleArray>(), "Id", 1);
  for (vtkIdType c = 0; c < data->GetNumberOfCells(); c++)
    ids->InsertNextTuple1(double(c % distinctIds));
  return data;
}

/** Settings of the test's own and a scene with a shown view. */
class SceneTest : public ::testing::Test
{
protected:
  ScopedSettings m_Settings;
  Scene scene;
};
using DataViewColoring = SceneTest;
using DataViewGrid = SceneTest;
using DataViewState = SceneTest;
using DataViewDecimation = SceneTest;

/** Answers the save-defaults question with Yes and records it. */
class YesPrompt
{
public:
  YesPrompt()
  {
    VXUserPrompt::setAskHandler(
      [this](const VXUserPrompt::Question& question)
      {
        asked.push_back(question);
        return QMessageBox::Yes;
      });
  }
  ~YesPrompt() { VXUserPrompt::setAskHandler({}); }
  std::vector<VXUserPrompt::Question> asked;
};
} // namespace

TEST(DataViewFrame, BuiltInClassesAreRegisteredWithTheirNames)
{
  VXPipeline pipeline;
  struct Expected
  {
    VXRepresentation::Type type;
    QString human;
    QString defaultName;
    QString typeName;
  };
  const Expected expected[] = {
    { VXRepresentation::Outline, "Outline Representation", "Outline View", "VXOutlineRep" },
    { VXRepresentation::Points, "Point Representation", "Points View", "VXPointsRep" },
    { VXRepresentation::Wireframe, "Wireframe Representation", "Wireframe View", "VXWireframeRep" },
    { VXRepresentation::Surface, "Surface Representation", "Surface View", "VXSurfaceRep" },
  };
  for (const Expected& e : expected)
  {
    std::unique_ptr<VXRepresentation> rep(VXRepresentation::Create(e.type, &pipeline));
    ASSERT_NE(rep, nullptr) << e.typeName.toStdString();
    EXPECT_EQ(rep->type(), e.type);
    EXPECT_EQ(rep->humanTypeName(), e.human);
    EXPECT_EQ(rep->defaultName(), e.defaultName);
    EXPECT_EQ(rep->baseName(), e.defaultName);
    EXPECT_EQ(rep->typeName(), e.typeName);
    EXPECT_FALSE(rep->getIcon().isNull());
  }
  EXPECT_TRUE(dynamic_cast<VXPointsRep*>(
                VXRepresentation::Create(VXRepresentation::Surface, &pipeline)) != nullptr);
}

TEST(DataViewFrame, InstancesPerViewPortOnlyForTheFirstAndSplitsCopyThenStayApart)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(makeSphere());
  auto* first = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(first, nullptr);
  VXRepresentation* rep = scene.lastRep;
  EXPECT_TRUE(first->isInitialized());
  EXPECT_TRUE(rep->isVisible());

  RenderView second;
  second.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&second));
  EXPECT_FALSE(rep->addViewInstance(nullptr, nullptr, nullptr, true));
  // a port is only taken for the first instance
  EXPECT_FALSE(rep->addViewInstance(nullptr, &second, source->outputPort(), true));
  EXPECT_EQ(rep->getDataViewSplits().size(), 1u);

  first->setSolidColor(QColor(10, 20, 30));
  first->pointSizeEdited("7");
  first->setActiveArray("Vec");
  first->setActiveComponent(1);
  // a split: created hidden, with the source's settings
  scene.view->notifyViewWidgetCreated(&second);
  auto* copy = dynamic_cast<VXSurfaceRepPimpl*>(rep->implementation(&second));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(rep->getDataViewSplits().size(), 2u);
  EXPECT_EQ(copy->solidColor(), QColor(10, 20, 30));
  EXPECT_EQ(copy->pointSize(), 7);
  EXPECT_EQ(copy->activeArray(), "Vec");
  EXPECT_EQ(copy->activeComponent(), 1);
  EXPECT_EQ(copy->legendTitle(), "Vec\n(Comp 1)");
  EXPECT_TRUE(second.getVisualizationWidget()->getRenderer()->HasViewProp(copy->actor()));

  // afterwards they are independent
  copy->pointSizeEdited("2");
  copy->setSolidColor(QColor(200, 0, 0));
  copy->setActiveArray("Height");
  EXPECT_EQ(first->pointSize(), 7);
  EXPECT_EQ(first->solidColor(), QColor(10, 20, 30));
  EXPECT_EQ(first->activeArray(), "Vec");
  EXPECT_NE(first->lookupTable(), copy->lookupTable());

  // an existing instance is reused, and keeps its own visibility
  copy->setVisibility(false);
  EXPECT_TRUE(rep->addViewInstance(nullptr, &second, nullptr, true));
  EXPECT_FALSE(copy->isVisible());
  EXPECT_FALSE(second.getVisualizationWidget()->getRenderer()->HasViewProp(copy->actor()));
  scene.pipeline->setActiveViewWidget(&second);
  EXPECT_FALSE(rep->isVisible());
  scene.pipeline->setActiveViewWidget(scene.view.get());
  EXPECT_TRUE(rep->isVisible());
  rep->removeModuleInstance(&second);
}

TEST(DataViewFrame, ScalarMappingModes)
{
  vtkSmartPointer<vtkPolyData> data = makeSphere();
  vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputData(data);
  vtkNew<vtkActor> actor;
  int stored = -7;
  // an RGBA array does not count as colours: "Non-Colors" maps it through the table
  KXVtkModule::utils::UpdateColorMode(1, nullptr, actor, mapper, "RGBA", &stored, false);
  EXPECT_EQ(mapper->GetColorMode(), VTK_COLOR_MODE_MAP_SCALARS);
  EXPECT_EQ(stored, 1);
  KXVtkModule::utils::UpdateColorMode(1, nullptr, actor, mapper, "RGB", &stored, false);
  EXPECT_EQ(mapper->GetColorMode(), VTK_COLOR_MODE_DIRECT_SCALARS);
  KXVtkModule::utils::UpdateColorMode(0, nullptr, actor, mapper, "RGB", &stored, false);
  EXPECT_EQ(mapper->GetColorMode(), VTK_COLOR_MODE_MAP_SCALARS);
  EXPECT_EQ(stored, 0);
  KXVtkModule::utils::UpdateColorMode(2, nullptr, actor, mapper, "Height", &stored, false);
  EXPECT_EQ(mapper->GetColorMode(), VTK_COLOR_MODE_DIRECT_SCALARS);
  EXPECT_EQ(stored, 2);
  // an unknown array changes nothing, not even the stored mode
  KXVtkModule::utils::UpdateColorMode(0, nullptr, actor, mapper, "Nope", &stored, false);
  EXPECT_EQ(stored, 2);
  EXPECT_EQ(mapper->GetColorMode(), VTK_COLOR_MODE_DIRECT_SCALARS);
}

TEST_F(DataViewColoring, ComponentsRangesAndLegendTitles)
{
  vtkSmartPointer<vtkPolyData> data = makeSphere();
  VXDataSource* source = scene.source(data);
  auto* points = scene.add(source, VXRepresentation::Points);
  ASSERT_NE(points, nullptr);

  points->setActiveArray("Height");
  EXPECT_EQ(points->legendTitle(), "Height");
  EXPECT_EQ(points->mapper()->GetScalarMode(), VTK_SCALAR_MODE_USE_POINT_FIELD_DATA);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[0], -2.0);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[1], 2.0);

  points->setActiveArray("Vec");
  points->setActiveComponent(2);
  EXPECT_EQ(points->activeComponent(), 2);
  EXPECT_EQ(points->legendTitle(), "Vec\n(Comp 2)");
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[0], 10.0);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[1], 12.0);
  EXPECT_EQ(points->mapper()->GetLookupTable()->GetVectorMode(), vtkScalarsToColors::COMPONENT);

  // below -1 counts as the magnitude
  points->setActiveComponent(-5);
  EXPECT_EQ(points->activeComponent(), -1);
  EXPECT_EQ(points->legendTitle(), "Vec\nMagnitude");
  EXPECT_EQ(points->mapper()->GetLookupTable()->GetVectorMode(), vtkScalarsToColors::MAGNITUDE);
  double expected[2];
  data->GetPointData()->GetArray("Vec")->GetFiniteRange(expected, -1);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[0], expected[0]);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[1], expected[1]);

  // a component past the array's count leaves title and range, but is stored
  points->setActiveComponent(9);
  EXPECT_EQ(points->activeComponent(), 9);
  EXPECT_EQ(points->legendTitle(), "Vec\nMagnitude");

  // a cell array colours through cell field data
  points->setActiveArray("Id");
  points->setActiveComponent(-1);
  EXPECT_EQ(points->mapper()->GetScalarMode(), VTK_SCALAR_MODE_USE_CELL_FIELD_DATA);
  EXPECT_EQ(points->legendTitle(), "Id");

  // custom range wins over the data until "Scale to Data"
  points->rescaleToCustomRange(-100.0, 50.0);
  points->setActiveArray("Height");
  EXPECT_TRUE(points->usingCustomRange());
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[0], -100.0);
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[1], 50.0);
  points->rescaleToDataRange();
  EXPECT_FALSE(points->usingCustomRange());
  EXPECT_DOUBLE_EQ(points->lookupTable()->getRange()[1], 2.0);

  // the legend follows the flag and the title
  points->setScalarBarVisibility(true);
  ASSERT_NE(points->scalarBarRepresentation(), nullptr);
  EXPECT_TRUE(points->scalarBarWidget()->GetEnabled());
  EXPECT_STREQ(points->scalarBarWidget()->GetScalarBarActor()->GetTitle(), "Height");
  EXPECT_EQ(points->scalarBarWidget()->GetScalarBarActor()->GetNumberOfLabels(), 5);
  const double* position = points->scalarBarRepresentation()->GetPosition();
  EXPECT_DOUBLE_EQ(position[0], 0.9);
  EXPECT_DOUBLE_EQ(position[1], 0.175);
  points->setVisibility(false);
  EXPECT_FALSE(points->scalarBarWidget()->GetEnabled());
  EXPECT_TRUE(points->showLegend());
}

TEST_F(DataViewColoring, SolidColourClearsTheArrayAndDisablesTheColourMapControls)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  scene.pipeline->setActiveViewWidget(scene.view.get());
  ASSERT_NE(scene.lastRep->settingsWidget(), nullptr);
  surface->setActiveArray("Height");
  auto* editButton = surface->control<QPushButton>("m_EditColorMapButton");
  auto* componentCombo = surface->control<QComboBox>("m_ComponentCombo");
  ASSERT_NE(editButton, nullptr);
  ASSERT_NE(componentCombo, nullptr);
  EXPECT_TRUE(editButton->isEnabled());

  surface->setUseSolidColor(true);
  EXPECT_EQ(surface->activeArray(), "");
  EXPECT_FALSE(surface->activeArray().isNull());
  EXPECT_FALSE(editButton->isEnabled());
  EXPECT_FALSE(componentCombo->isEnabled());
  EXPECT_FALSE(surface->mapper()->GetScalarVisibility());
  surface->setSolidColor(QColor(0, 255, 0));
  double rgb[3];
  surface->actor()->GetProperty()->GetColor(rgb);
  EXPECT_DOUBLE_EQ(rgb[1], 1.0);
  EXPECT_DOUBLE_EQ(rgb[0], 0.0);
}

TEST_F(DataViewColoring, CategoriesCacheUniqueValuesAndWarnAboutTooMany)
{
  RecordedQuestions questions;
  VXDataSource* source = scene.source(makeSphere(5));
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);

  surface->setActiveArray("Id");
  surface->setInterpretValuesAsCategories(true);
  EXPECT_TRUE(questions.asked.empty());
  ASSERT_EQ(surface->uniqueValues().count("Id"), 1u);
  EXPECT_EQ(surface->uniqueValues().at("Id").at(-1), (std::set<double>{ 0, 1, 2, 3, 4 }));
  vtkColorTransferFunction* ctf = surface->lookupTable()->getColorTransferFunction();
  EXPECT_TRUE(ctf->GetIndexedLookup());
  EXPECT_EQ(ctf->GetNumberOfAvailableColors(), 5);

  // "Index" has far more than 32 values: the set is emptied and the warning names 32
  surface->setActiveArray("Index");
  ASSERT_FALSE(questions.asked.empty());
  EXPECT_EQ(questions.asked.back().title,
            "Too many discrete values to determine color map annotations");
  EXPECT_EQ(questions.asked.back().text,
            "More than 32 unique values were found in the active array (Index). "
            "Categorical coloring may not be the best color map to use for this data set");
  EXPECT_TRUE(surface->uniqueValues().at("Index").at(-1).empty());

  // a reload clears the cache, so categories are computed again on next use
  surface->receivePipelineOutputReloaded();
  EXPECT_TRUE(surface->uniqueValues().empty() || surface->uniqueValues().count("Id") == 0);

  // more values than preset colours: the second warning
  kx::core::ColorTableUtilities::ColorPreset twoColours;
  twoColours.name = "Two";
  twoColours.indexedColors = { 1, 0, 0, 0, 0, 1 };
  questions.asked.clear();
  surface->setActiveArray("Id");
  surface->loadIndexedPresetColors(twoColours);
  ASSERT_FALSE(questions.asked.empty());
  EXPECT_EQ(questions.asked.back().title, "One or more colors mapping to multiple array values");
  EXPECT_TRUE(questions.asked.back().text.startsWith(
    "The number of unique array values (5) is greater than the "
    "number of colors in the selected preset (2)."));
  EXPECT_FALSE(surface->usingDefaultIndexedPreset());

  // back to continuous colours: the data range again
  surface->setInterpretValuesAsCategories(false);
  EXPECT_FALSE(surface->lookupTable()->getColorTransferFunction()->GetIndexedLookup());
  EXPECT_DOUBLE_EQ(surface->lookupTable()->getRange()[0], 0.0);
  EXPECT_DOUBLE_EQ(surface->lookupTable()->getRange()[1], 4.0);
}

TEST_F(DataViewColoring, ReloadWithoutTheActiveArrayFallsBackToTheFirstImportedArray)
{
  vtkSmartPointer<vtkPolyData> data = makeSphere();
  VXDataSource* source = scene.source(data);
  auto* points = scene.add(source, VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  points->setActiveArray("Vec");
  EXPECT_EQ(points->activeArray(), "Vec");

  auto reloaded = vtkSmartPointer<vtkPolyData>::New();
  reloaded->DeepCopy(data);
  reloaded->GetPointData()->RemoveArray("Vec");
  source->setDataSet(reloaded);
  scene.lastRep->receivePipelineOutputReloaded();
  // names are ordered: "Height" < "Id" < "RGB" < "RGBA"
  EXPECT_EQ(points->activeArray(), "Height");
  EXPECT_EQ(points->legendTitle(), "Height");
}

TEST_F(DataViewGrid, SpacingGivesAccumulatedLabelsAndZeroLeavesVtkLabels)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setDataGridVisibility(true);
  ASSERT_NE(surface->gridAxes(), nullptr);
  EXPECT_TRUE(scene.renderer()->HasViewProp(surface->gridAxes()));

  surface->setGridAxesOptions({ 0.5, 0.0, 1.5 }, true, QColor(255, 0, 0), 3.0, false,
                              { "X axis", "", "Z" });
  const double* bounds = surface->gridAxes()->GetGridBounds();
  const std::vector<double> x = surface->gridCustomLabels(0);
  ASSERT_EQ(x.size(), static_cast<size_t>(std::floor((bounds[1] - bounds[0]) / 0.5)) + 1);
  EXPECT_DOUBLE_EQ(x.front(), bounds[0]);
  EXPECT_NEAR(x[1] - x[0], 0.5, 1e-12);
  EXPECT_TRUE(surface->gridCustomLabels(1).empty());
  EXPECT_EQ(surface->gridCustomLabels(2).size(),
            static_cast<size_t>(std::floor((bounds[5] - bounds[4]) / 1.5)) + 1);
  EXPECT_TRUE(surface->gridAxes()->GetGenerateGrid());
  EXPECT_DOUBLE_EQ(surface->gridOpacity(), 1.0);
  EXPECT_EQ(surface->gridAxes()->GetTitle(0), "X axis");

  surface->setVisibility(false);
  EXPECT_FALSE(scene.renderer()->HasViewProp(surface->gridAxes()));
  surface->setVisibility(true);
  EXPECT_TRUE(scene.renderer()->HasViewProp(surface->gridAxes()));
  surface->setDataGridVisibility(false);
  EXPECT_FALSE(scene.renderer()->HasViewProp(surface->gridAxes()));
}

TEST_F(DataViewState, ReadTakesOnlyCompleteGroupsAndClampsValues)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setGridAxesOptions({ 1.0, 2.0, 3.0 }, false, Qt::white, 1.0, true, {});

  // one spacing key missing: all three stay
  surface->read({ { "global_grid_axes_spacingx", 9.0 }, { "global_grid_axes_spacingz", 9.0 } });
  EXPECT_EQ(surface->gridAxesSpacing(), (std::array<double, 3>{ 1.0, 2.0, 3.0 }));
  // a colour of four entries is ignored, three are clamped
  surface->read({ { "global_grid_axes_color", { 0.0, 1.0, 0.0, 1.0 } } });
  EXPECT_EQ(surface->gridColor(), QColor(Qt::white));
  surface->read(
    { { "global_grid_axes_color", { 2.0, -1.0, 0.5 } }, { "global_grid_axes_opacity", 4.0 } });
  EXPECT_DOUBLE_EQ(surface->gridColor().redF(), 1.0);
  EXPECT_DOUBLE_EQ(surface->gridColor().greenF(), 0.0);
  EXPECT_DOUBLE_EQ(surface->gridOpacity(), 1.0);
  // opacity 250 percent is stored as 1.0
  surface->setOpacity(250);
  EXPECT_DOUBLE_EQ(surface->opacity(), 1.0);
  EXPECT_DOUBLE_EQ(surface->actor()->GetProperty()->GetOpacity(), 1.0);
  surface->read({ { "opacity_percent", 40.0 } });
  EXPECT_DOUBLE_EQ(surface->opacity(), 0.4);
  EXPECT_DOUBLE_EQ(surface->actor()->GetProperty()->GetOpacity(), 0.4);
  // the culling key is read after the points-level keys, and applied
  surface->read(
    { { "back_face_culling", true }, { "point_size", 4 }, { "render_points_as_spheres", true } });
  EXPECT_TRUE(surface->backFaceCulling());
  EXPECT_TRUE(surface->actor()->GetProperty()->GetBackfaceCulling());
  EXPECT_EQ(surface->pointSize(), 4);
  // transform triples only as a whole
  surface->read({ { "transform_box_translate_x", 1.0 }, { "transform_box_translate_y", 2.0 } });
  EXPECT_EQ(surface->translation(), (std::array<double, 3>{ 0.0, 0.0, 0.0 }));
  // wrong types raise the JSON library's error
  EXPECT_THROW(surface->read({ { "line_size", "thick" } }), nlohmann::json::type_error);
}

TEST_F(DataViewState, WriteReadRoundTripThroughTheItem)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setActiveArray("Vec");
  surface->setActiveComponent(0);
  surface->setSolidColor(QColor(1, 2, 3));
  surface->setBackFaceCulling(true);
  surface->setScalarBarVisibility(true);
  surface->rescaleToCustomRange(2.0, 3.0);
  surface->setTransform({ 1, 2, 3 }, { 0, 90, 0 }, { 2, 2, 2 });

  nlohmann::json state;
  scene.lastRep->write(state, { { scene.view.get(), 0 } });
  EXPECT_EQ(state.at("core_object_name"), "Surface View");
  ASSERT_EQ(state.at("rep_view_implementations").size(), 1u);
  const nlohmann::json& entry = state.at("rep_view_implementations")[0];
  EXPECT_EQ(entry.at("render_window_index"), 0);
  EXPECT_EQ(entry.at("active_array"), "Vec");
  EXPECT_EQ(entry.at("active_component"), 0);
  EXPECT_EQ(entry.at("solid_color_g"), 2);
  EXPECT_EQ(entry.at("back_face_culling"), true);
  EXPECT_EQ(entry.at("scalar_bar_visible"), true);
  EXPECT_EQ(entry.at("custom_range_max"), 3.0);
  EXPECT_EQ(entry.at("transform_box_rotate_y"), 90.0);
  EXPECT_EQ(entry.at("representation_visible"), true);
  EXPECT_TRUE(entry.at("color_preset").is_object());

  auto* other = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  ASSERT_NE(other, nullptr);
  scene.lastRep->read(state, { { 0, scene.view.get() } });
  EXPECT_EQ(other->activeArray(), "Vec");
  EXPECT_EQ(other->activeComponent(), 0);
  EXPECT_EQ(other->solidColor(), QColor(1, 2, 3));
  EXPECT_TRUE(other->backFaceCulling());
  EXPECT_TRUE(other->usingCustomRange());
  EXPECT_DOUBLE_EQ(other->lookupTable()->getRange()[0], 2.0);
  EXPECT_EQ(other->rotation(), (std::array<double, 3>{ 0, 90, 0 }));
  EXPECT_EQ(other->legendTitle(), "Vec\n(Comp 0)");
}

TEST(DataViewSettings, DefaultsComeFromTheClassGroupAndSaveAfterYes)
{
  ScopedSettings settings;
  {
    QtKXSettings store;
    VXRepresentationPimpl::BeginSettingsGroup(store, "VXSurfaceRep");
    store.setValue("point_size", 6);
    store.setValue("back_face_culling", true);
    store.setValue("scalar_bar_visible", true);
    store.setValue("global_grid_axes_color", "not a colour");
    store.setValue("global_grid_axes_spacingx", 5.0); // y and z missing: ignored
    store.sync();
  }
  Scene scene;
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  EXPECT_EQ(surface->pointSize(), 6);
  EXPECT_TRUE(surface->backFaceCulling());
  EXPECT_TRUE(surface->showLegend());
  EXPECT_EQ(surface->gridColor(), QColor(Qt::white));
  EXPECT_EQ(surface->gridAxesSpacing(), (std::array<double, 3>{ 0.0, 0.0, 0.0 }));
  // a key missing keeps the constructor's value
  EXPECT_EQ(surface->lineSize(), 1);
  EXPECT_TRUE(surface->detachColorSettings());
  // the points class has its own group
  auto* points = scene.add(source, VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  EXPECT_EQ(points->pointSize(), 1);

  YesPrompt prompt;
  surface->lineSizeEdited("4");
  surface->saveDefaultSettings();
  ASSERT_EQ(prompt.asked.size(), 1u);
  EXPECT_EQ(prompt.asked[0].title, "Save Default Surface Representation Settings");
  EXPECT_EQ(prompt.asked[0].text,
            "Do you want to save the current setting values as the default values for all "
            "Surface Representation types? (Data specific settings will not be saved)");
  EXPECT_EQ(prompt.asked[0].defaultButton, QMessageBox::Yes);
  QtKXSettings store;
  VXRepresentationPimpl::BeginSettingsGroup(store, "VXSurfaceRep");
  EXPECT_EQ(store.value("line_size").toInt(), 4);
  EXPECT_TRUE(store.contains("back_face_culling"));
  EXPECT_FALSE(store.contains("active_array"));
  EXPECT_FALSE(store.contains("custom_range_min"));
}

TEST(DataViewSettings, PageHasTheLabelsAndTooltipsOfEachLevel)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  QWidget* page = scene.lastRep->settingsWidget();
  ASSERT_NE(page, nullptr);
  QStringList boxes;
  for (auto* box : page->findChildren<QCheckBox*>())
    boxes << box->text();
  for (const char* text :
       { "Enable Separate Color Map", "Show Edges", "Render Lines As Tubes", "Use Solid Color",
         "Interpret Values As Categories", "Render Points As Spheres", "Back Face Culling",
         "Generate Active Array Histogram" })
    EXPECT_TRUE(boxes.contains(text)) << text;
  auto* culling = surface->control<QCheckBox>("m_CullingCheckBox");
  ASSERT_NE(culling, nullptr);
  EXPECT_EQ(
    culling->toolTip(),
    "<html><head/><body><p>When checked turns on fast culling of polygons based on orientation of "
    "normal with "
    "respect to camera so that polygons facing away from camera are not drawn</p></body></html>");
  auto* scale = surface->control<QPushButton>("scaleToDataBtn");
  ASSERT_NE(scale, nullptr);
  EXPECT_EQ(scale->text(), "Scale to Data");
  EXPECT_EQ(scale->toolTip(),
            "<html><head/><body><p>Rescale the color map to the data's range</p></body></html>");
  auto* mapping = surface->control<QComboBox>("m_ScalarMappingCombo");
  ASSERT_NE(mapping, nullptr);
  EXPECT_EQ(mapping->itemText(0), "Always ");
  EXPECT_EQ(mapping->currentIndex(), 1);
  auto* title = page->findChild<QWidget*>("settingsWidgetTitleFrame");
  ASSERT_NE(title, nullptr);
  auto* help = surface->control<QPushButton>("m_HelpButton");
  ASSERT_NE(help, nullptr);
  EXPECT_EQ(help->toolTip(),
            "Open the user manual help documentation for Surface Representation types");
  // the histogram section comes last
  QStringList sections;
  for (auto* box : page->findChildren<QGroupBox*>())
    sections << box->title();
  EXPECT_EQ(sections.last(), "Array Histogram");

  // the eye button hides the data view in this view
  auto* eye = surface->control<QPushButton>("m_VisibilityButton");
  ASSERT_NE(eye, nullptr);
  EXPECT_TRUE(eye->isChecked());
  eye->click();
  EXPECT_FALSE(surface->isVisible());
  EXPECT_FALSE(scene.renderer()->HasViewProp(surface->actor()));
}

TEST(DataViewSettings, CopyAndPasteBetweenDataViews)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(makeSphere());
  auto* from = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  VXRepresentation* fromRep = scene.lastRep;
  auto* to = scene.add<VXSurfaceRepPimpl>(source, VXRepresentation::Surface);
  VXRepresentation* toRep = scene.lastRep;
  ASSERT_NE(from, nullptr);
  ASSERT_NE(to, nullptr);
  from->lineSizeEdited("5");
  from->setBackFaceCulling(true);
  from->setActiveArray("Height");
  fromRep->copyActiveSettings();
  const auto copied = nlohmann::json::parse(QGuiApplication::clipboard()->text().toStdString());
  EXPECT_EQ(copied.at("line_size"), 5);

  toRep->pasteToActiveSettings();
  EXPECT_EQ(to->lineSize(), 5);
  EXPECT_TRUE(to->backFaceCulling());
  EXPECT_EQ(to->activeArray(), "Height");
  EXPECT_FLOAT_EQ(to->actor()->GetProperty()->GetLineWidth(), 5.0f);
  auto* culling = to->control<QCheckBox>("m_CullingCheckBox");
  ASSERT_NE(culling, nullptr);
  EXPECT_TRUE(culling->isChecked());

  // text that is no JSON object changes nothing
  QGuiApplication::clipboard()->setText("not json");
  to->lineSizeEdited("2");
  toRep->pasteToActiveSettings();
  EXPECT_EQ(to->lineSize(), 2);
}

TEST_F(DataViewColoring, FollowingTheParentColoursAndDetachingAgain)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setSolidColor(QColor(1, 1, 1));
  surface->onDetachColorSettings(false);
  source->setSolidColor(QColor(100, 150, 200));
  EXPECT_EQ(surface->solidColor(), QColor(100, 150, 200));
  source->setColorsInverted();
  EXPECT_TRUE(surface->colorMapInverted());
  surface->onDetachColorSettings(true);
  EXPECT_EQ(surface->solidColor(), QColor(1, 1, 1));
  source->setSolidColor(QColor(9, 9, 9));
  EXPECT_EQ(surface->solidColor(), QColor(1, 1, 1));
  // syncing to the parent geometry detaches no more
  Q_EMIT source->syncChildColorMaps();
  EXPECT_FALSE(surface->detachColorSettings());
  EXPECT_EQ(surface->solidColor(), QColor(9, 9, 9));
}

TEST_F(DataViewDecimation, FullGeometrySharesTheSourceAndTheCoarseCopyWaitsForAPress)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  vtkRenderWindowInteractor* interactor =
    scene.view->getVisualizationWidget()->getRenderWindowInteractor();
  ASSERT_NE(interactor, nullptr);
  const int* size = scene.view->getVisualizationWidget()->renderWindow()->GetSize();
  interactor->SetEventInformation(size[0] / 2, size[1] / 2);
  vtkPolyData* full = vtkPolyData::SafeDownCast(surface->actor()->GetMapper()->GetInput());
  ASSERT_NE(full, nullptr);
  const vtkIdType fullCells = full->GetNumberOfCells();
  // the surface of a poly data set draws the source's own points and cells, not copies
  auto* data = vtkPolyData::SafeDownCast(source->getOutput());
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(full->GetPoints()->GetData(), data->GetPoints()->GetData());
  EXPECT_EQ(full->GetPolys(), data->GetPolys());

  // off by default: a press changes nothing
  interactor->InvokeEvent(vtkCommand::LeftButtonPressEvent);
  EXPECT_FALSE(surface->usingDecimatedGeometry());
  interactor->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);

  surface->setNumberOfDimensions({ 4, 4, 4 });
  surface->setUseDecimationOnInteraction(true);
  // switched on, the coarse copy is still not built: the first press that shows it builds it
  EXPECT_EQ(surface->quadricClustering()->GetOutput()->GetNumberOfCells(), 0);
  interactor->InvokeEvent(vtkCommand::LeftButtonPressEvent);
  ASSERT_TRUE(surface->usingDecimatedGeometry());
  surface->actor()->GetMapper()->Update();
  const vtkIdType coarseCells =
    vtkPolyData::SafeDownCast(surface->actor()->GetMapper()->GetInput())->GetNumberOfCells();
  EXPECT_GT(coarseCells, 0);
  EXPECT_LT(coarseCells, fullCells);
  interactor->InvokeEvent(vtkCommand::EndInteractionEvent);
  EXPECT_FALSE(surface->usingDecimatedGeometry());
  interactor->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
  surface->actor()->GetMapper()->Update();
  EXPECT_EQ(
    vtkPolyData::SafeDownCast(surface->actor()->GetMapper()->GetInput())->GetNumberOfCells(),
    fullCells);

  // a real drag: the style's end of rotation reaches the data view through the interactor
  interactor->InvokeEvent(vtkCommand::LeftButtonPressEvent);
  ASSERT_TRUE(surface->usingDecimatedGeometry());
  interactor->SetEventInformation(size[0] / 2 + 20, size[1] / 2);
  interactor->InvokeEvent(vtkCommand::MouseMoveEvent);
  interactor->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
  EXPECT_FALSE(surface->usingDecimatedGeometry());

  // the preference that disables decimation wins over the data view's flag
  KXPreferences::setDisableDecimation(true);
  interactor->InvokeEvent(vtkCommand::LeftButtonPressEvent);
  EXPECT_FALSE(surface->usingDecimatedGeometry());
  interactor->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
  KXPreferences::setDisableDecimation(false);
}

TEST_F(DataViewColoring, CustomRangeDialogFromTheButtonSetsTableAndLegend)
{
  VXDataSource* source = scene.source(makeSphere());
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  ASSERT_NE(scene.lastRep->settingsWidget(), nullptr);
  surface->setActiveArray("Height");
  surface->setScalarBarVisibility(true);
  VXCustomRangeDialog* dialog = surface->customRangeDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->dataRange(), (std::array<double, 2>{ -2.0, 2.0 }));
  auto* button = surface->control<QPushButton>("customRangeBtn");
  ASSERT_NE(button, nullptr);
  QLineEdit* minimum = dialog->minimumEdit();
  QLineEdit* maximum = dialog->maximumEdit();
  QPushButton* ok = dialog->buttonBox()->button(QDialogButtonBox::Ok);
  auto range = [surface]() { return surface->lookupTable()->getRange(); };
  auto legendRange = [surface]()
  {
    const double* r = surface->scalarBarWidget()->GetScalarBarActor()->GetLookupTable()->GetRange();
    return std::array<double, 2>{ r[0], r[1] };
  };

  // the button only opens the dialog, filled with the data range
  QTest::mouseClick(button, Qt::LeftButton);
  ASSERT_TRUE(dialog->isVisible());
  EXPECT_EQ(minimum->text(), "-2");
  EXPECT_EQ(maximum->text(), "2");
  EXPECT_EQ(range(), (std::array<double, 2>{ -2.0, 2.0 }));
  EXPECT_FALSE(surface->usingCustomRange());

  // letters are no number, and the minimum must stay below the maximum
  minimum->clear();
  QTest::keyClicks(minimum, "abc");
  EXPECT_EQ(minimum->text(), "");
  EXPECT_FALSE(ok->isEnabled());
  EXPECT_EQ(dialog->problem(), "The minimum must be a number.");
  QTest::keyClicks(minimum, "5");
  EXPECT_FALSE(ok->isEnabled());
  EXPECT_EQ(dialog->findChild<QLabel*>("messageLabel")->text(),
            "The minimum must be less than the maximum.");
  QTest::keyClick(minimum, Qt::Key_Return);
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_FALSE(surface->usingCustomRange());

  minimum->clear();
  QTest::keyClicks(minimum, "-1.5");
  maximum->clear();
  QTest::keyClicks(maximum, "0.5");
  ASSERT_TRUE(ok->isEnabled());
  EXPECT_EQ(dialog->problem(), "");
  QTest::mouseClick(ok, Qt::LeftButton);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_TRUE(surface->usingCustomRange());
  EXPECT_EQ(surface->customRange(), (std::array<double, 2>{ -1.5, 0.5 }));
  EXPECT_EQ(range(), (std::array<double, 2>{ -1.5, 0.5 }));
  EXPECT_EQ(legendRange(), (std::array<double, 2>{ -1.5, 0.5 }));

  // cancelling changes nothing
  QTest::mouseClick(button, Qt::LeftButton);
  ASSERT_TRUE(dialog->isVisible());
  EXPECT_EQ(minimum->text(), "-1.5");
  maximum->clear();
  QTest::keyClicks(maximum, "9");
  QTest::mouseClick(dialog->buttonBox()->button(QDialogButtonBox::Cancel), Qt::LeftButton);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(range(), (std::array<double, 2>{ -1.5, 0.5 }));

  // a new component keeps the custom range and shows its own data range
  surface->setActiveArray("Vec");
  surface->setActiveComponent(2);
  EXPECT_EQ(dialog->dataRange(), (std::array<double, 2>{ 10.0, 12.0 }));
  EXPECT_EQ(dialog->range(), (std::array<double, 2>{ -1.5, 0.5 }));
  EXPECT_EQ(range(), (std::array<double, 2>{ -1.5, 0.5 }));

  // "Scale to Data" goes back to the data and refills the dialog with it
  QTest::mouseClick(surface->control<QPushButton>("scaleToDataBtn"), Qt::LeftButton);
  EXPECT_FALSE(surface->usingCustomRange());
  EXPECT_EQ(range(), (std::array<double, 2>{ 10.0, 12.0 }));
  EXPECT_EQ(legendRange(), (std::array<double, 2>{ 10.0, 12.0 }));
  EXPECT_EQ(minimum->text(), "10");
  EXPECT_EQ(maximum->text(), "12");
}

TEST_F(DataViewState, ColoringFieldsAreDeclaredOnceForStateAndDefaults)
{
  VXColoringSettings coloring;
  coloring.showLegend = true;
  coloring.activeArray = "Vec";
  coloring.activeComponent = 2;
  coloring.scalarMapping = 0;
  coloring.colorMapInverted = true;
  coloring.colorPreset.name = "Mine";
  coloring.colorPreset.rgbPoints = { 0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 1.0f };
  coloring.usingDefaultPreset = false;
  coloring.usingCustomRange = true;
  coloring.customRange = { -3.0, 7.0 };
  coloring.valuesAsCategories = true;
  coloring.generateHistogram = true;
  coloring.nanColor = { 0.25, 0.5, 0.75 };
  coloring.legendPosition = { 0.1, 0.2 };
  coloring.legendPlaced = true;

  nlohmann::json state;
  coloring.write(state);
  std::vector<std::string> keys;
  for (const auto& item : state.items())
    keys.push_back(item.key());
  EXPECT_EQ(keys, (std::vector<std::string>{ "active_array",
                                             "active_component",
                                             "color_map_inverted",
                                             "color_preset",
                                             "custom_range_max",
                                             "custom_range_min",
                                             "generate_histogram_data",
                                             "indexed_color_preset",
                                             "nan_color_b",
                                             "nan_color_g",
                                             "nan_color_r",
                                             "scalar_bar_visible",
                                             "scalar_mapping",
                                             "source_position2_x",
                                             "source_position2_y",
                                             "source_position_x",
                                             "source_position_y",
                                             "using_custom_range",
                                             "using_default_indexed_preset",
                                             "using_default_preset",
                                             "using_solid_color",
                                             "values_as_categories" }));
  VXColoringSettings read;
  read.read(state);
  read.legendPlaced = true;
  EXPECT_EQ(read, coloring);

  // pairs and triples all or none; without a legend no positions
  state.erase("custom_range_max");
  state.erase("nan_color_b");
  VXColoringSettings partial;
  partial.read(state);
  EXPECT_EQ(partial.customRange, (std::array<double, 2>{ 0.0, 1.0 }));
  EXPECT_EQ(partial.nanColor, (std::array<double, 3>{ 0.5, 0.75, 1.0 }));
  nlohmann::json unplaced;
  VXColoringSettings().write(unplaced);
  EXPECT_FALSE(unplaced.contains("source_position_x"));

  // the default settings never hold the data specific fields, but take a stored range
  QtKXSettings store;
  store.beginGroup("Coloring");
  coloring.saveDefaults(store);
  QStringList stored = store.childKeys();
  stored.sort();
  EXPECT_EQ(stored,
            (QStringList{ "color_map_inverted", "generate_histogram_data", "nan_color_b",
                          "nan_color_g", "nan_color_r", "scalar_bar_visible", "scalar_mapping",
                          "using_default_indexed_preset", "using_default_preset",
                          "using_solid_color", "values_as_categories" }));
  store.setValue("custom_range_min", -1.0);
  store.setValue("custom_range_max", 1.0);
  VXColoringSettings loaded;
  loaded.loadDefaults(store);
  EXPECT_TRUE(loaded.showLegend);
  EXPECT_EQ(loaded.scalarMapping, 0);
  EXPECT_FALSE(loaded.usingDefaultPreset);
  EXPECT_EQ(loaded.nanColor, coloring.nanColor);
  EXPECT_EQ(loaded.customRange, (std::array<double, 2>{ -1.0, 1.0 }));
  EXPECT_FALSE(loaded.usingCustomRange);
  EXPECT_EQ(loaded.activeArray, "");
}
