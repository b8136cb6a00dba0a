// The volume data view: component reduction, functions kept per array, state, splits, the texture
// limit, the refused parent colours, and pictures of real volumes.
#include "DataViewTestSupport.hpp"
#include "HostDataSupport.hpp"

#include <visualization/QtWidgets/VXColorMapEditorWidget.hpp>
#include <visualization/QtWidgets/VXGLWidget.hpp>
#include <visualization/QtWidgets/VXHistogramOpacityWidget.hpp>
#include <visualization/VXVolumeComponentReduceFilter.hpp>
#include <visualization/VXVolumeRep.hpp>
#include <visualization/VXVolumeRepPimpl.hpp>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QPushButton>

#include <vtkColorTransferControlPointsItem.h>
#include <vtkColorTransferFunction.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextView.h>
#include <vtkPiecewiseControlPointsItem.h>
#include <vtkPlotBar.h>
#include <vtkPointData.h>
#include <vtkVector.h>
#include <vtkTable.h>

namespace
{
using dataviewtest::Scene;
using dataviewtest::ScopedSettings;

/** An 8^3 image: "Density" (float, x + 10 y + 100 z) active, and "Vec" (int, 3 components). */
vtkSmartPointer<vtkImageData> TwoArrayImage()
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(8, 8, 8);
  vtkNew<vtkFloatArray> density;
  density->SetName("Density");
  vtkNew<vtkIntArray> vec;
  vec->SetName("Vec");
  vec->SetNumberOfComponents(3);
  for (int z = 0; z < 8; ++z)
    for (int y = 0; y < 8; ++y)
      for (int x = 0; x < 8; ++x)
      {
        density->InsertNextValue(static_cast<float>(x + 10 * y + 100 * z));
        const int tuple[3] = { x, 2 * y, 3 };
        vec->InsertNextTypedTuple(tuple);
      }
  image->GetPointData()->SetScalars(density);
  image->GetPointData()->AddArray(vec);
  return image;
}

vtkDataArray* ReducedArray(VXVolumeRepPimpl* volume)
{
  return volume->reduceFilter()->GetOutput()->GetPointData()->GetArray(
    VXVolumeComponentReduceFilter::k_ReducedArrayName);
}
} // namespace

TEST(VolumeDataView, ReducesComponentsAndKeepsFunctionsPerArray)
{
  ScopedSettings settings;
  Scene scene;
  auto image = TwoArrayImage();
  auto* volume = scene.add<VXVolumeRepPimpl>(scene.source(image), VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  EXPECT_TRUE(scene.renderer()->HasViewProp(volume->volume()));

  // a one-component array goes to the mapper as it is
  EXPECT_EQ(volume->activeArray(), "Density");
  EXPECT_EQ(volume->reduceFilter()->GetNumberOfInputConnections(0), 0);
  EXPECT_STREQ(volume->volumeMapper()->GetArrayName(), "Density");
  vtkPiecewiseFunction* density = volume->opacityFunction("Density");
  ASSERT_NE(density, nullptr);
  EXPECT_EQ(density->GetSize(), 2);
  double range[2];
  density->GetRange(range);
  EXPECT_DOUBLE_EQ(range[0], 0.0);
  EXPECT_DOUBLE_EQ(range[1], 777.0);
  density->AddPoint(400.0, 0.8);

  // the drawn array's histogram: 200 bins, every value but the top one counted, computed once
  auto* counts = vtkIntArray::SafeDownCast(volume->histogramTable()->GetColumnByName("image_pops"));
  ASSERT_NE(counts, nullptr);
  EXPECT_EQ(counts->GetNumberOfTuples(), 200);
  int total = 0;
  for (vtkIdType i = 0; i < counts->GetNumberOfTuples(); ++i)
    total += counts->GetValue(i);
  EXPECT_EQ(total, 511);
  QSignalSpy recomputed(volume, &VXVolumeRepPimpl::histogramChanged);
  volume->updateHistogram();
  EXPECT_EQ(recomputed.size(), 0);

  // a component has its own range; component 7 of three is the last one, in the array's own type
  volume->setActiveArray("Vec");
  volume->setActiveComponent(1);
  EXPECT_EQ(volume->lookupTable("Vec")->getRange(), (std::array<double, 2>{ 0.0, 14.0 }));
  EXPECT_STREQ(volume->volumeMapper()->GetArrayName(),
               VXVolumeComponentReduceFilter::k_ReducedArrayName);
  // tuple 9 is x = 1, y = 1: (1, 2, 3)
  EXPECT_EQ(ReducedArray(volume)->GetComponent(9, 0), 2.0);
  volume->setActiveComponent(7);
  vtkDataArray* reduced = ReducedArray(volume);
  ASSERT_NE(reduced, nullptr);
  EXPECT_EQ(reduced->GetDataType(), VTK_INT);
  EXPECT_EQ(reduced->GetNumberOfComponents(), 1);
  EXPECT_EQ(reduced->GetComponent(9, 0), 3.0);

  // the magnitude of an integer array is a double array
  volume->setActiveComponent(-1);
  reduced = ReducedArray(volume);
  ASSERT_NE(reduced, nullptr);
  EXPECT_EQ(reduced->GetDataType(), VTK_DOUBLE);
  EXPECT_DOUBLE_EQ(reduced->GetComponent(9, 0), std::sqrt(14.0));
  EXPECT_EQ(volume->legendTitle(), "Vec Magnitude");

  // back to the first array: its own edited opacity and table come back, unfiltered
  volume->setActiveArray("Density");
  EXPECT_EQ(volume->opacityFunction("Density"), density);
  EXPECT_EQ(density->GetSize(), 3);
  EXPECT_EQ(volume->volumeProperty()->GetScalarOpacity(0), density);
  EXPECT_EQ(volume->volumeProperty()->GetRGBTransferFunction(0),
            volume->lookupTable("Density")->getColorTransferFunction());
  EXPECT_EQ(volume->reduceFilter()->GetNumberOfInputConnections(0), 0);

  // types beyond the ten are refused with the dispatcher's message
  vtkNew<vtkIdTypeArray> ids;
  ids->SetName("Ids");
  ids->SetNumberOfComponents(2);
  ids->SetNumberOfTuples(image->GetNumberOfPoints());
  ids->Fill(1);
  image->GetPointData()->AddArray(ids);
  vtkNew<VXVolumeComponentReduceFilter> filter;
  filter->SetInputData(image);
  filter->SetArrayName("Ids");
  try
  {
    filter->Update();
    ADD_FAILURE() << "an id array was reduced";
  }
  catch (const std::runtime_error& error)
  {
    EXPECT_STREQ(error.what(), "ExecuteVtkDataFunctionNoBool<...>(FuncT&& func, DataType "
                               "dataType, ArgsT&&... args). Error: Invalid DataType");
  }
}

TEST(VolumeDataView, StateRoundTripsAndSplitsOwnTheirFunctions)
{
  ScopedSettings settings;
  Scene scene;
  auto* volume =
    scene.add<VXVolumeRepPimpl>(scene.source(TwoArrayImage()), VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  volume->opacityFunction("Density")->AddPoint(250.0, 0.25, 0.5, 0.1);
  volume->rescaleToCustomRange(100.0, 500.0);
  volume->setActiveArray("Vec");
  volume->setColorMapInverted(true);

  nlohmann::json written;
  volume->write(written);
  EXPECT_EQ(written.at("active_array"), "Vec");
  EXPECT_EQ(written.at("array_custom_ranges").at("Density"),
            nlohmann::json({ { "used", true }, { "min", 100.0 }, { "max", 500.0 } }));
  // relative positions survive the range change: 250 of [0, 777] lands at 100 + 400 * 250 / 777
  const nlohmann::json& points = written.at("array_scalar_opacity_fct").at("Density");
  ASSERT_EQ(points.size(), 3u);
  EXPECT_DOUBLE_EQ(points[1][0].get<double>(), 100.0 + 400.0 * 250.0 / 777.0);
  EXPECT_EQ(points[1][1], 0.25);
  EXPECT_TRUE(written.at("array_lut_fct").contains("Vec"));

  // a second data view reads it back to the same JSON
  auto* copy = scene.add<VXVolumeRepPimpl>(scene.source(TwoArrayImage()), VXRepresentation::Volume);
  ASSERT_NE(copy, nullptr);
  copy->read(written);
  nlohmann::json reread;
  copy->write(reread);
  EXPECT_EQ(reread, written);
  EXPECT_EQ(copy->activeArray(), "Vec");

  // a split copies the values, never the objects
  VXVolumeRepPimpl split(scene.view.get(), nullptr);
  split.copyFrom(volume);
  ASSERT_NE(split.opacityFunction("Density"), nullptr);
  EXPECT_NE(split.opacityFunction("Density"), volume->opacityFunction("Density"));
  EXPECT_NE(split.lookupTable("Vec"), volume->lookupTable("Vec"));
  EXPECT_TRUE(split.lookupTable("Vec")->equals(volume->lookupTable("Vec")));
  EXPECT_EQ(split.opacityFunction("Density")->GetSize(), 3);
}

TEST(VolumeDataView, RefusesTooLargeTexturesAndParentColoursAndResetsOnYes)
{
  ScopedSettings settings;
  Scene scene;
  QSignalSpy popups(scene.pipeline.get(), &VXPipeline::sendPopupMessage);
  QSignalSpy output(scene.pipeline.get(), &VXPipeline::sendOutputMessage);
  scene.view->getVisualizationWidget()->setMaximumTextureSize(6);
  VXDataSource* source = scene.source(TwoArrayImage());
  auto* refused = scene.add<VXVolumeRepPimpl>(source, VXRepresentation::Volume);
  ASSERT_NE(refused, nullptr);
  EXPECT_FALSE(scene.renderer()->HasViewProp(refused->volume()));
  EXPECT_EQ(kxtest::ForegroundFraction(dataviewtest::ToQImage(dataviewtest::Capture(scene))), 0.0);
  ASSERT_EQ(popups.size(), 1);
  EXPECT_EQ(popups[0][0].toString(), "Invalid Texture dimensions");
  EXPECT_EQ(popups[0][1].toString(),
            "The data set dimensions are 8 x 8 x 8 and the system's max texture size as report by "
            "the GPU is 6. ALL dimensions of the data set MUST be below that value.");

  scene.view->getVisualizationWidget()->setMaximumTextureSize(0);
  auto* volume = scene.add<VXVolumeRepPimpl>(source, VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  volume->connectParentColorSignals(true);
  volume->disconnectParentColorSignals();
  ASSERT_GE(output.size(), 2);
  EXPECT_EQ(output[output.size() - 2][0].toString(),
            "Error: Cannot connect parent data source color settings for volume representations");
  EXPECT_EQ(output.last()[0].toString(),
            "Error: Cannot disconnect parent data source color settings for volume "
            "representations");

  // "Reset" asks first; No keeps the user's functions, Yes brings back the defaults
  volume->opacityFunction("Density")->AddPoint(300.0, 0.9);
  volume->rescaleToCustomRange(10.0, 20.0);
  std::vector<VXUserPrompt::Question> asked;
  QMessageBox::StandardButton answer = QMessageBox::No;
  VXUserPrompt::setAskHandler(
    [&](const VXUserPrompt::Question& question)
    {
      asked.push_back(question);
      return answer;
    });
  auto* reset = volume->settingsWidget()->findChild<QPushButton*>("resetButton");
  ASSERT_NE(reset, nullptr);
  QTest::mouseClick(reset, Qt::LeftButton);
  EXPECT_EQ(volume->opacityFunction("Density")->GetSize(), 3);
  answer = QMessageBox::Yes;
  QTest::mouseClick(reset, Qt::LeftButton);
  VXUserPrompt::setAskHandler({});
  ASSERT_EQ(asked.size(), 2u);
  EXPECT_EQ(asked[0].title, "Resetting color map");
  EXPECT_TRUE(asked[0].text.startsWith("Resetting all color transfer function"));
  EXPECT_EQ(volume->opacityFunction("Density")->GetSize(), 2);
  EXPECT_FALSE(volume->customRange("Density").used);
  EXPECT_EQ(volume->lookupTable("Density")->getRange(), (std::array<double, 2>{ 0.0, 777.0 }));
  EXPECT_EQ(volume->volumeProperty()->GetScalarOpacity(0), volume->opacityFunction("Density"));
}

TEST(VolumeDataView, HydrogenAsAVolume)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.import(kxtest::DataFile("hydrogen.vti"));
  auto* volume = scene.add<VXVolumeRepPimpl>(source, VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  EXPECT_FALSE(volume->activeArray().isEmpty());
  volume->setScalarBarVisibility(true);
  scene.renderer()->ResetCamera();
  dataviewtest::CompareWithBaseline(scene, "volume_hydrogen");
}

TEST(VolumeDataView, SampleOrientationsAsMagnitudeAndComponentAndAnEditedOpacity)
{
  ScopedSettings settings;
  Scene scene;
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 24), "Microstructure");
  ASSERT_NE(source, nullptr);
  auto* volume = scene.add<VXVolumeRepPimpl>(source, VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  volume->setActiveArray("EulerAngles");
  volume->setActiveComponent(-1);
  volume->setScalarBarVisibility(true);
  vtkRenderer* renderer = scene.renderer();
  renderer->GetActiveCamera()->Azimuth(30.0);
  renderer->GetActiveCamera()->Elevation(20.0);
  renderer->ResetCamera();
  dataviewtest::CompareWithBaseline(scene, "volume_sample_euler_magnitude");

  volume->setActiveComponent(1);
  dataviewtest::CompareWithBaseline(scene, "volume_sample_euler_component1");

  // only the upper third of the component's range stays visible, fully opaque
  vtkPiecewiseFunction* opacity = volume->opacityFunction("EulerAngles");
  ASSERT_NE(opacity, nullptr);
  double range[2];
  opacity->GetRange(range);
  const double cut = range[0] + 2.0 * (range[1] - range[0]) / 3.0;
  opacity->RemoveAllPoints();
  opacity->AddPoint(range[0], 0.0);
  opacity->AddPoint(cut, 0.0);
  opacity->AddPoint(cut + 1e-3 * (range[1] - range[0]), 1.0);
  opacity->AddPoint(range[1], 1.0);
  dataviewtest::CompareWithBaseline(scene, "volume_sample_euler_component1_upper_third");
}

TEST(VolumeDataView, OpacityEditorShowsTheHistogramAndAClickAddsAPoint)
{
  ScopedSettings settings;
  Scene scene;
  auto* volume =
    scene.add<VXVolumeRepPimpl>(scene.source(TwoArrayImage()), VXRepresentation::Volume);
  ASSERT_NE(volume, nullptr);
  QWidget* page = volume->settingsWidget();
  page->resize(420, 700);
  page->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(page));
  VXHistogramOpacityWidget* editor = volume->opacityEditor();
  ASSERT_NE(editor, nullptr);
  // the bars are the drawn array's histogram; the points are its opacity function
  vtkTable* bars = editor->histogramPlot()->GetInput();
  ASSERT_EQ(bars->GetNumberOfRows(), 200);
  double total = 0.0;
  for (vtkIdType i = 0; i < 200; ++i)
    total += bars->GetValue(i, 1).ToDouble();
  EXPECT_EQ(total, 511.0);
  ASSERT_NE(editor->controlPoints(), nullptr);
  EXPECT_EQ(editor->controlPoints()->GetPiecewiseFunction(), volume->opacityFunction("Density"));

  // a click at value 600, opacity 0.3 (below the ramp) adds that point to the volume's function
  const QPoint at = dataviewtest::ChartPosition(editor, 600.0, vtkAxis::RIGHT, 0.3);
  VXGLWidget* chart = editor->chartWidget();
  QSignalSpy edited(editor, &VXHistogramOpacityWidget::opacityFunctionEdited);
  QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, at);
  vtkPiecewiseFunction* opacity = volume->opacityFunction("Density");
  ASSERT_EQ(opacity->GetSize(), 3);
  double node[4];
  opacity->GetNodeValue(1, node);
  EXPECT_NEAR(node[0], 600.0, 10.0);
  EXPECT_NEAR(node[1], 0.3, 0.03);
  EXPECT_GE(edited.size(), 1);
  EXPECT_EQ(volume->volumeProperty()->GetScalarOpacity(0), opacity);

  // the colour editor under it edits the same array's colours, which the state keeps
  VXColorMapEditorWidget* colors = volume->colorMapEditor();
  ASSERT_NE(colors, nullptr);
  vtkColorTransferFunction* function = volume->lookupTable("Density")->getColorTransferFunction();
  ASSERT_EQ(colors->controlPoints()->GetColorTransferFunction(), function);
  volume->lookupTable("Density")->parseRgbJson(dataviewtest::ThreePointPreset());
  const int nodes = function->GetSize();
  ASSERT_EQ(nodes, 3);
  QTest::mouseClick(colors->chartWidget(), Qt::LeftButton, Qt::NoModifier,
                    dataviewtest::ChartPosition(colors, 600.0, vtkAxis::LEFT, 0.5));
  ASSERT_EQ(function->GetSize(), nodes + 1);
  nlohmann::json state;
  volume->write(state);
  EXPECT_EQ(state["array_lut_fct"]["Density"]["rgb_pos_vector"].size(),
            static_cast<size_t>(nodes + 1));
}
