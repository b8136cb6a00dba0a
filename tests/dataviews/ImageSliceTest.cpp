// The image slice data view: cells presented as points, choosing and animating slices, slices
// linked between data views (by number and by physical position), state, and pictures of real
// images sliced in the three directions.
#include "DataViewTestSupport.hpp"
#include "HostDataSupport.hpp"

#include <visualization/VXImageSliceRep.hpp>
#include <visualization/VXImageSliceRepPimpl.hpp>
#include <visualization/VXImageSliceUtilities.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/QtWidgets/VXFTransformFilterWidget.hpp>
#include <visualization/QtWidgets/VXLUTEditor.hpp>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QSpinBox>

#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkFloatArray.h>
#include <vtkImageProperty.h>
#include <vtkIntArray.h>
#include <vtkMatrix4x4.h>
#include <vtkPointData.h>
#include <vtkUnsignedCharArray.h>

namespace
{
using dataviewtest::Scene;
using dataviewtest::ScopedSettings;
using SliceDirection = KXVtkModule::constants::SliceDirection;

/** An image of nx * ny * nz cells with the cell arrays "Ids" (the cell index), "Half" (id / 2)
 * and "Field" (x + z + 8 y at the cell's centre, whatever the spacing), starting at index @p start
 * on every axis. */
vtkSmartPointer<vtkImageData> CellImage(int nx, int ny, int nz, double spacing = 1.0, int start = 0)
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetExtent(start, start + nx, start, start + ny, start, start + nz);
  image->SetSpacing(spacing, spacing, spacing);
  vtkNew<vtkIntArray> ids;
  ids->SetName("Ids");
  vtkNew<vtkFloatArray> half;
  half->SetName("Half");
  vtkNew<vtkFloatArray> field;
  field->SetName("Field");
  for (int i = 0; i < nx * ny * nz; ++i)
  {
    ids->InsertNextValue(i);
    half->InsertNextValue(static_cast<float>(i) / 2.0f);
    const double x = (i % nx + 0.5) * spacing;
    const double y = ((i / nx) % ny + 0.5) * spacing;
    const double z = (i / (nx * ny) + 0.5) * spacing;
    field->InsertNextValue(static_cast<float>(x + z + 8.0 * y));
  }
  image->GetCellData()->AddArray(half);
  image->GetCellData()->AddArray(field);
  image->GetCellData()->SetScalars(ids);
  return image;
}

VXImageSliceRepPimpl* AddSlice(Scene& scene, vtkImageData* image)
{
  auto* slice = scene.add<VXImageSliceRepPimpl>(scene.source(image), VXRepresentation::ImageSlice);
  if (slice != nullptr)
    slice->settingsWidget(); // the page with its controls
  return slice;
}

std::array<int, 6> DisplayExtent(VXImageSliceRepPimpl* slice)
{
  std::array<int, 6> extent{};
  slice->imageActor()->GetDisplayExtent(extent.data());
  return extent;
}
} // namespace

TEST(ImageSliceFilter, PresentsEachCellAsOnePointSharingTheArrays)
{
  auto input = CellImage(4, 3, 2);
  input->SetOrigin(1.0, 2.0, 3.0);
  vtkNew<image_slice_utilities::VXImageSliceFilter> filter;
  filter->SetInputData(input);
  filter->Update();
  auto* output = image_slice_utilities::VXImageSliceData::SafeDownCast(filter->GetOutput());
  ASSERT_NE(output, nullptr);

  EXPECT_EQ(output->GetNumberOfPoints(), 24);
  EXPECT_EQ(output->GetNumberOfCells(), input->GetNumberOfCells());
  std::array<int, 6> extent{};
  output->GetExtent(extent.data());
  EXPECT_EQ(extent, (std::array<int, 6>{ 0, 3, 0, 2, 0, 1 }));
  EXPECT_EQ(output->GetOrigin()[2], 3.0);
  // nothing is copied: the point arrays are the cell arrays themselves, buffer and all
  vtkDataArray* ids = input->GetCellData()->GetArray("Ids");
  EXPECT_EQ(output->GetPointData()->GetArray("Ids"), ids);
  EXPECT_EQ(output->GetPointData()->GetArray("Ids")->GetVoidPointer(0), ids->GetVoidPointer(0));
  EXPECT_EQ(output->GetPointData()->GetArray("Half"), input->GetCellData()->GetArray("Half"));
  // the active cell scalars become the point scalars; without any, the first array does
  EXPECT_EQ(output->GetPointData()->GetScalars(), ids);
  input->GetCellData()->SetActiveScalars(nullptr);
  input->Modified();
  filter->Update();
  EXPECT_STREQ(filter->GetOutput()->GetPointData()->GetScalars()->GetName(), "Half");

  // an image whose values stand on points already goes through as it is
  auto points = vtkSmartPointer<vtkImageData>::New();
  points->SetDimensions(5, 5, 5);
  vtkNew<vtkFloatArray> density;
  density->SetName("density");
  density->SetNumberOfTuples(125);
  points->GetPointData()->SetScalars(density);
  filter->SetInputData(points);
  filter->Update();
  EXPECT_EQ(filter->GetOutput()->GetNumberOfPoints(), 125);
  EXPECT_EQ(filter->GetOutput()->GetPointData()->GetScalars(), density.GetPointer());
}

TEST(ImageSliceDataView, ChoosesDirectionAndNumberThroughItsControls)
{
  ScopedSettings settings;
  Scene scene;
  auto* slice = AddSlice(scene, CellImage(6, 5, 4));
  ASSERT_NE(slice, nullptr);
  EXPECT_TRUE(scene.renderer()->HasViewProp(slice->imageActor()));
  EXPECT_EQ(slice->coloringSettings().activeArray, "Ids");
  EXPECT_EQ(scene.lastRep->typeName(), "VXImageSliceRep ");

  // the page: its sections in order, the direction combo's rows, the named link button
  QStringList sections;
  for (QGroupBox* box : slice->settingsWidget()->findChildren<QGroupBox*>())
    sections << box->title();
  EXPECT_EQ(sections, (QStringList{ "Slicing", "Animation", "Coloring", "Styling", "Annotations",
                                    "Transform", "Array Histogram" }));
  auto* combo = slice->control<QComboBox>("m_DirectionCombo");
  ASSERT_NE(combo, nullptr);
  EXPECT_EQ(combo->itemText(1), "XZPlane");
  auto* link = slice->control<QPushButton>("linkSlicesButton");
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->text(), "Link Slices");
  auto* histogram = slice->control<QComboBox>("m_HistogramCombo");
  ASSERT_NE(histogram, nullptr);
  EXPECT_EQ(histogram->itemText(2), "Generate Visible Data Histogram");
  // the "Transform" section moves the slice like any data view
  auto* transform = slice->settingsWidget()->findChild<VXFTransformFilterWidget*>();
  ASSERT_NE(transform, nullptr);
  transform->findChild<QDoubleSpinBox*>("translateXSpinBox")->setValue(3.0);
  EXPECT_DOUBLE_EQ(slice->imageActor()->GetMatrix()->GetElement(0, 3), 3.0);
  transform->findChild<QDoubleSpinBox*>("translateXSpinBox")->setValue(0.0);

  // XY: slices along z, 4 cells deep: 0 to 3; the spin box drives the slider and the actor
  auto* slider = slice->control<QSlider>("m_SliceSlider");
  auto* spin = slice->control<QSpinBox>("m_SliceSpinBox");
  ASSERT_TRUE(slider != nullptr && spin != nullptr);
  EXPECT_EQ(slider->maximum(), 3);
  QSignalSpy numbers(slice, &VXImageSliceRepPimpl::sliceNumberChanged);
  spin->setValue(2);
  EXPECT_EQ(slider->value(), 2);
  EXPECT_EQ(slice->sliceNumber(), 2);
  ASSERT_EQ(numbers.size(), 1);
  EXPECT_EQ(numbers[0][0].toInt(), 2);
  EXPECT_EQ(DisplayExtent(slice), (std::array<int, 6>{ 0, 5, 0, 4, 2, 2 }));
  spin->setValue(9); // kept in range by the control
  EXPECT_EQ(slice->sliceNumber(), 3);

  // "YZPlane" runs along x and resets the number
  QSignalSpy directions(slice, &VXImageSliceRepPimpl::sliceDirectionChanged);
  combo->setCurrentIndex(2);
  EXPECT_EQ(slice->sliceDirection(), KXVtkModule::constants::YZ);
  ASSERT_EQ(directions.size(), 1);
  EXPECT_EQ(slice->sliceNumber(), 0);
  EXPECT_EQ(slider->maximum(), 5);
  EXPECT_EQ(slice->control<QSpinBox>("m_ToggleRightSpinBox")->maximum(), 5);
  EXPECT_EQ(DisplayExtent(slice), (std::array<int, 6>{ 0, 0, 0, 4, 0, 3 }));

  // the state carries the slice keys; a new view reads them back onto its controls
  slider->setValue(4);
  nlohmann::json state;
  slice->write(state);
  EXPECT_EQ(state.at("slice_dir"), 1);
  EXPECT_EQ(state.at("slice_num"), 4);
  EXPECT_EQ(state.at("animation_duration"), 0.5);
  EXPECT_EQ(state.at("active_array"), "Ids");
  auto* other = AddSlice(scene, CellImage(6, 5, 4));
  ASSERT_NE(other, nullptr);
  other->read(state);
  EXPECT_EQ(other->sliceDirection(), KXVtkModule::constants::YZ);
  EXPECT_EQ(other->control<QSlider>("m_SliceSlider")->value(), 4);
  EXPECT_EQ(other->control<QComboBox>("m_DirectionCombo")->currentIndex(), 2);
}

TEST(ImageSliceDataView, PlayAllWrapsToZeroAndFlickerAlternatesOnTheTimer)
{
  ScopedSettings settings;
  Scene scene;
  // the extent starts at 3: the numbers still run from 0
  auto* slice = AddSlice(scene, CellImage(4, 4, 5, 1.0, 3));
  ASSERT_NE(slice, nullptr);
  EXPECT_EQ(slice->sliceMaximum(), 4);
  slice->control<QSpinBox>("m_SliceSpinBox")->setValue(4);
  EXPECT_EQ(DisplayExtent(slice)[4], 7);

  // the first step runs at once, past the last slice to 0, on a 500 ms timer
  auto* play = slice->control<QPushButton>("m_PlayAllButton");
  ASSERT_NE(play, nullptr);
  play->click();
  EXPECT_EQ(slice->sliceNumber(), 0);
  EXPECT_EQ(DisplayExtent(slice)[4], 3);
  ASSERT_GE(slice->animationTimerId(), 0);
  vtkRenderWindowInteractor* interactor =
    scene.view->getVisualizationWidget()->getRenderWindowInteractor();
  EXPECT_EQ(interactor->GetTimerDuration(slice->animationTimerId()), 500u);
  EXPECT_FALSE(slice->control<QComboBox>("m_DirectionCombo")->isEnabled());
  EXPECT_FALSE(slice->control<QSlider>("m_SliceSlider")->isEnabled());
  // a tick of the timer: the next slice
  QTest::qWait(700);
  EXPECT_GE(slice->sliceNumber(), 1);
  play->click();
  EXPECT_EQ(slice->animationTimerId(), -1);
  EXPECT_TRUE(slice->control<QSlider>("m_SliceSlider")->isEnabled());

  // flicker between 1 and 3, whole milliseconds of the duration
  slice->control<QSpinBox>("m_ToggleLeftSpinBox")->setValue(1);
  slice->control<QSpinBox>("m_ToggleRightSpinBox")->setValue(3);
  slice->setAnimationDuration(0.2509);
  auto* flicker = slice->control<QPushButton>("m_FlickerButton");
  flicker->click();
  EXPECT_EQ(interactor->GetTimerDuration(slice->animationTimerId()), 250u);
  EXPECT_EQ(slice->sliceNumber(), 3);
  EXPECT_TRUE(slice->flickerShowsRight());
  EXPECT_FALSE(slice->control<QSpinBox>("m_ToggleLeftSpinBox")->isEnabled());
  flicker->click();
  EXPECT_EQ(slice->animationTimerId(), -1);
  // "Toggle" flips by hand
  slice->control<QPushButton>("m_ToggleButton")->click();
  EXPECT_EQ(slice->sliceNumber(), 1);
  slice->toggleSlices();
  EXPECT_EQ(slice->sliceNumber(), 3);
}

TEST(ImageSliceDataView, LinkedViewsFollowByNumberOrByPhysicalPosition)
{
  ScopedSettings settings;
  Scene scene;
  VXPipelineModel model(scene.pipeline.get(), nullptr);
  auto* coarse = AddSlice(scene, CellImage(20, 20, 20, 1.0));
  auto* fine = AddSlice(scene, CellImage(40, 40, 40, 0.5));
  auto* loose = AddSlice(scene, CellImage(20, 20, 20, 1.0));
  ASSERT_TRUE(coarse != nullptr && fine != nullptr && loose != nullptr);
  QSignalSpy linking(&model, &VXPipelineModel::linkingDataViews);
  coarse->control<QPushButton>("linkSlicesButton")->click();
  fine->control<QPushButton>("linkSlicesButton")->click();
  EXPECT_EQ(fine->control<QPushButton>("linkSlicesButton")->text(), "Unlink Slices");
  EXPECT_TRUE(fine->isLinked());
  EXPECT_EQ(model.linkedViews(), (QList<VXImageSliceRepPimpl*>{ coarse, fine }));
  ASSERT_FALSE(linking.isEmpty());
  EXPECT_TRUE(linking.last()[0].toBool());

  // by number; the follower does not answer with a change of its own
  QSignalSpy fineNumbers(fine, &VXImageSliceRepPimpl::sliceNumberChanged);
  coarse->control<QSlider>("m_SliceSlider")->setValue(6);
  EXPECT_EQ(fine->sliceNumber(), 6);
  EXPECT_EQ(fine->control<QSpinBox>("m_SliceSpinBox")->value(), 6);
  EXPECT_EQ(loose->sliceNumber(), 0);
  EXPECT_EQ(fineNumbers.size(), 0);

  // by physical position: the flag goes to the other linked views too
  coarse->control<QCheckBox>("m_LinkPhysicalCheckBox")->setChecked(true);
  EXPECT_TRUE(fine->linkPhysicalUnits());
  EXPECT_TRUE(fine->control<QCheckBox>("m_LinkPhysicalCheckBox")->isChecked());
  coarse->control<QSlider>("m_SliceSlider")->setValue(7);
  EXPECT_EQ(fine->sliceNumber(), 14);
  EXPECT_DOUBLE_EQ(fine->physicalPosition(fine->sliceNumber()), coarse->physicalPosition(7));
  // and back, with the follower's own translation taken out
  fine->setTranslation({ 0.0, 0.0, 2.0 });
  fine->control<QSpinBox>("m_SliceSpinBox")->setValue(20);
  EXPECT_DOUBLE_EQ(fine->physicalPosition(20), 12.0);
  EXPECT_EQ(coarse->sliceNumber(), 12);
  // a direction follows only with physical units
  coarse->control<QComboBox>("m_DirectionCombo")->setCurrentIndex(1);
  EXPECT_EQ(fine->sliceDirection(), KXVtkModule::constants::XZ);
  EXPECT_EQ(fine->control<QComboBox>("m_DirectionCombo")->currentIndex(), 1);

  // unlinked views go their own way
  fine->control<QPushButton>("linkSlicesButton")->click();
  EXPECT_EQ(fine->control<QPushButton>("linkSlicesButton")->text(), "Link Slices");
  EXPECT_FALSE(linking.last()[0].toBool());
  const int kept = fine->sliceNumber();
  coarse->control<QSlider>("m_SliceSlider")->setValue(kept + 3);
  EXPECT_EQ(fine->sliceNumber(), kept);
  EXPECT_EQ(model.linkedViews(), (QList<VXImageSliceRepPimpl*>{ coarse }));
}

TEST(ImageSliceDataView, HydrogenInTheThreeDirections)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.import(kxtest::DataFile("hydrogen.vti"));
  auto* slice = scene.add<VXImageSliceRepPimpl>(source, VXRepresentation::ImageSlice);
  ASSERT_NE(slice, nullptr);
  slice->settingsWidget();
  EXPECT_EQ(slice->sliceMaximum(), 63);
  slice->setScalarBarVisibility(true);
  vtkCamera* camera = scene.renderer()->GetActiveCamera();
  const struct
  {
    int comboIndex;
    const char* name;
    double position[3];
    double viewUp[3];
  } planes[] = { { 0, "slice_hydrogen_xy_32", { 31.5, 31.5, 200.0 }, { 0.0, 1.0, 0.0 } },
                 { 2, "slice_hydrogen_yz_40", { 200.0, 31.5, 31.5 }, { 0.0, 0.0, 1.0 } },
                 { 1, "slice_hydrogen_xz_24", { 31.5, -200.0, 31.5 }, { 0.0, 0.0, 1.0 } } };
  const int numbers[] = { 32, 40, 24 };
  for (int i = 0; i < 3; ++i)
  {
    slice->control<QComboBox>("m_DirectionCombo")->setCurrentIndex(planes[i].comboIndex);
    slice->control<QSpinBox>("m_SliceSpinBox")->setValue(numbers[i]);
    camera->SetFocalPoint(31.5, 31.5, 31.5);
    camera->SetPosition(planes[i].position);
    camera->SetViewUp(planes[i].viewUp);
    scene.renderer()->ResetCamera();
    dataviewtest::CompareWithBaseline(scene, planes[i].name);
  }
}

TEST(ImageSliceDataView, EditsItsColorMapAndShowsColorArraysDirectly)
{
  ScopedSettings settings;
  Scene scene;
  vtkSmartPointer<vtkImageData> image = CellImage(4, 3, 2);
  vtkNew<vtkUnsignedCharArray> rgb;
  rgb->SetName("Colors");
  rgb->SetNumberOfComponents(3);
  rgb->SetNumberOfTuples(4 * 3 * 2);
  rgb->Fill(200);
  image->GetCellData()->AddArray(rgb);
  auto* slice = AddSlice(scene, image);
  ASSERT_NE(slice, nullptr);
  slice->onDetachColorSettings(false); // follows its parent's colours, as a new view does

  // "Edit Color Map" opens the editor on the view's table; an edit becomes the view's preset
  auto* edit = slice->control<QPushButton>("m_EditColorMapButton");
  ASSERT_NE(edit, nullptr);
  EXPECT_TRUE(edit->isEnabled());
  edit->click();
  VXLUTEditor* editor = slice->colorMapEditor();
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(editor->windowTitle(), "Color Map Editor - Ids");
  slice->lookupTable()->setRange(5.0, 9.0);
  Q_EMIT editor->colorMapEdited();
  EXPECT_TRUE(slice->detachColorSettings());
  EXPECT_FALSE(slice->usingDefaultPreset());
  EXPECT_EQ(slice->colorPreset().name, "Edited");
  EXPECT_TRUE(slice->usingCustomRange());
  EXPECT_EQ(slice->customRange(), (std::array<double, 2>{ 5.0, 9.0 }));
  editor->close();

  // "Map Scalars :": an RGB array shows its own colours unless "Always " maps it
  auto* mapping = slice->control<QComboBox>("m_ScalarMappingCombo");
  ASSERT_NE(mapping, nullptr);
  EXPECT_EQ(mapping->itemText(0), "Always ");
  slice->setActiveArray("Colors");
  vtkImageProperty* property = slice->imageActor()->GetProperty();
  EXPECT_EQ(property->GetLookupTable(), nullptr); // the default, "Non-Colors"
  mapping->setCurrentIndex(0);
  EXPECT_EQ(property->GetLookupTable(), slice->lookupTable()->getColorTransferFunction());
  mapping->setCurrentIndex(2);
  EXPECT_EQ(property->GetLookupTable(), nullptr);
  // a scalar array is mapped through the table under "Non-Colors"
  slice->setActiveArray("Half");
  EXPECT_EQ(property->GetLookupTable(), slice->lookupTable()->getColorTransferFunction());
}

TEST(ImageSliceDataView, SampleCategoriesFollowTheDistinctValueLimit)
{
  ScopedSettings settings;
  dataviewtest::RecordedQuestions questions;
  Scene scene;
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 24), "Microstructure");
  auto* slice = scene.add<VXImageSliceRepPimpl>(source, VXRepresentation::ImageSlice);
  ASSERT_NE(slice, nullptr);
  slice->settingsWidget();
  // hundreds of grains: too many categories, as for every data view that colours by an array
  slice->setActiveArray("FeatureIds");
  slice->setInterpretValuesAsCategories(true);
  ASSERT_FALSE(questions.asked.empty());
  EXPECT_EQ(questions.asked.back().text,
            "More than 32 unique values were found in the active array (FeatureIds). "
            "Categorical coloring may not be the best color map to use for this data set");
  EXPECT_TRUE(slice->uniqueValues().at("FeatureIds").at(-1).empty());
  // the two phases are categories; the picture shows them on slice 12
  slice->setActiveArray("Phases");
  slice->control<QSpinBox>("m_SliceSpinBox")->setValue(12);
  EXPECT_EQ(slice->uniqueValues().at("Phases").at(-1), (std::set<double>{ 1.0, 2.0 }));
  EXPECT_EQ(slice->imageActor()->GetProperty()->GetLookupTable(),
            slice->lookupTable()->getColorTransferFunction());
  scene.renderer()->ResetCamera();
  dataviewtest::CompareWithBaseline(scene, "slice_sample_phases_categories");
}

TEST(ImageSliceDataView, TwoLinkedImagesOfDifferentSpacingShowTheSameWorldPosition)
{
  ScopedSettings settings;
  Scene scene;
  VXPipelineModel model(scene.pipeline.get(), nullptr);
  // one field at spacing 1 and 0.5; the fine one stands to the right
  auto* coarse = AddSlice(scene, CellImage(16, 16, 16, 1.0));
  auto* fine = AddSlice(scene, CellImage(32, 32, 32, 0.5));
  ASSERT_TRUE(coarse != nullptr && fine != nullptr);
  fine->setTranslation({ 18.0, 0.0, 0.0 });
  for (VXImageSliceRepPimpl* view : { coarse, fine })
  {
    view->control<QPushButton>("linkSlicesButton")->click();
    view->setActiveArray("Field");
    view->rescaleToCustomRange(0.0, 160.0);
  }
  coarse->control<QCheckBox>("m_LinkPhysicalCheckBox")->setChecked(true);
  coarse->control<QComboBox>("m_DirectionCombo")->setCurrentIndex(1);
  coarse->control<QSpinBox>("m_SliceSpinBox")->setValue(8);
  EXPECT_EQ(fine->sliceDirection(), KXVtkModule::constants::XZ);
  EXPECT_EQ(fine->sliceNumber(), 16);
  vtkCamera* camera = scene.renderer()->GetActiveCamera();
  camera->SetFocalPoint(17.0, 8.0, 8.0);
  camera->SetPosition(17.0, -100.0, 8.0);
  camera->SetViewUp(0.0, 0.0, 1.0);
  scene.renderer()->ResetCamera();
  dataviewtest::CompareWithBaseline(scene, "slice_linked_different_spacing");
}
