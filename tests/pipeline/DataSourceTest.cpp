#include "PipelineTestSupport.hpp"

#include <bridge/Array.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXLookupTable.hpp>

#include <KXComponents/KXPreferences.hpp>

#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkPointData.h>
#include <vtkUnsignedCharArray.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QSignalSpy>

using namespace pipelinetest;

namespace
{
vtkSmartPointer<vtkImageData> imageWithArrays()
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(2, 2, 1);
  auto addArray = [&](vtkDataArray* array, const char* name, int components)
  {
    array->SetName(name);
    array->SetNumberOfComponents(components);
    array->SetNumberOfTuples(4);
    image->GetPointData()->AddArray(array);
  };
  addArray(vtkNew<vtkUnsignedCharArray>(), "Color", 3);
  addArray(vtkNew<vtkFloatArray>(), "Velocity", 3);
  addArray(vtkNew<vtkFloatArray>(), "Scalar", 1);
  addArray(vtkNew<vtkFloatArray>(), "Tensor", 6);
  addArray(vtkNew<CV::Array<float>>(), "HostVectors", 3);
  image->SetObjectName("Image");
  return image;
}
} // namespace

TEST(DataSource, ComponentNamesByArrayKind)
{
  ScopedSettings settings;
  VXDataSource source;
  source.setDataSet(imageWithArrays());
  EXPECT_EQ(source.name(), "Image");
  EXPECT_TRUE(source.isImageGeometrySource());
  EXPECT_TRUE(source.importedDataPath().empty());
  EXPECT_EQ(source.getComponentNames("Color"), (QList<QString>{ "R", "G", "B", "Magnitude" }));
  EXPECT_EQ(source.getComponentNames("Velocity"), (QList<QString>{ "X", "Y", "Z", "Magnitude" }));
  EXPECT_EQ(source.getComponentNames("Scalar"), (QList<QString>{ "Comp 0" }));
  EXPECT_EQ(source.getComponentNames("Tensor").size(), 7);
  EXPECT_EQ(source.getComponentNames("Tensor").last(), "Magnitude");
  // a host float array is not a vtkFloatArray: generic names
  EXPECT_EQ(source.getComponentNames("HostVectors"),
            (QList<QString>{ "Comp 0", "Comp 1", "Comp 2", "Magnitude" }));
  EXPECT_TRUE(source.getComponentNames("Missing").isEmpty());
  EXPECT_TRUE(source.getComponentNames(QString()).isEmpty());
  EXPECT_EQ(source.getImportedArrayNames().keys(),
            (QList<QString>{ "Color", "HostVectors", "Scalar", "Tensor", "Velocity" }));
  // one lookup table for its children, which are data views and filters only
  VXLookupTable* table = source.lookupTable();
  ASSERT_NE(table, nullptr);
  EXPECT_TRUE(source.children().isEmpty());
  EXPECT_EQ(source.lookupTable(), table);
}

TEST(DataSource, ColorSignals)
{
  ScopedSettings settings;
  VXDataSource source;
  QStringList order;
  QObject::connect(&source, &VXDataSource::restoreDefaultPresetColors, [&] { order << "default"; });
  QObject::connect(&source, &VXDataSource::loadPresetColors, [&](const auto& preset)
                   { order << "preset:" + QString::fromStdString(preset.name); });
  QObject::connect(&source, &VXDataSource::solidColorChanged, [&](QColor) { order << "solid"; });
  QObject::connect(&source, &VXDataSource::nanColorChanged, [&](QColor) { order << "nan"; });
  QObject::connect(&source, &VXDataSource::invertColorMap,
                   [&](bool inverted) { order << QString("invert:%1").arg(inverted); });
  QSignalSpy applied(&source, &VXDataSource::presetApplied);

  source.triggerColorSettingsChange();
  EXPECT_EQ(order, (QStringList{ "default", "solid", "nan", "invert:0" }));
  order.clear();

  source.setColorsInverted();
  kx::core::ColorTableUtilities::ColorPreset viridis;
  viridis.name = "Viridis";
  viridis.rgbPoints = { 0, 0.267f, 0.005f, 0.329f, 1, 0.993f, 0.906f, 0.144f };
  source.applyPreset(viridis);
  EXPECT_EQ(order, (QStringList{ "invert:1", "preset:Viridis", "invert:1" }));
  ASSERT_EQ(applied.count(), 1);
  EXPECT_EQ(applied.at(0).at(0).toString(), "Viridis");
  EXPECT_FALSE(source.isUsingDefaultPreset());
  order.clear();
  source.setRestoreDefaultPreset();
  EXPECT_EQ(order, (QStringList{ "default", "invert:1" }));
}

TEST(DataSource, PasteChangesSettingsNeverIdentity)
{
  ScopedSettings settings;
  VXDataSource first;
  first.setDataSet(imageWithArrays());
  first.setSolidColor(QColor(10, 20, 30));
  first.setNanColor(QColor(200, 0, 0));
  first.copyActiveSettings();
  const nlohmann::json copied =
    nlohmann::json::parse(QGuiApplication::clipboard()->text().toStdString());
  EXPECT_EQ(copied["data_source_solid_color_g"], 20);
  EXPECT_EQ(copied["core_object_name"], "Image");

  VXDataSource second;
  second.setBaseName("Other");
  second.pasteToActiveSettings();
  EXPECT_EQ(second.getSolidColor(), QColor(10, 20, 30));
  EXPECT_EQ(second.getNanColor(), QColor(200, 0, 0));
  EXPECT_EQ(second.name(), "Other");

  QGuiApplication::clipboard()->setText("not json {");
  second.setSolidColor(QColor(1, 2, 3));
  second.pasteToActiveSettings();
  EXPECT_EQ(second.getSolidColor(), QColor(1, 2, 3));
}

TEST(DataSource, SettingsNeedAllThreeColorKeysAndAreWrittenAfterYes)
{
  ScopedSettings settings;
  {
    QtKXSettings store;
    store.beginGroup("VisualizationSettings");
    store.beginGroup("RepresentationSettings");
    store.beginGroup("VXDataSource");
    store.setValue("nan_color_r", 10);
    store.setValue("nan_color_g", 20); // no blue
    store.setValue("solid_color_r", 1);
    store.setValue("solid_color_g", 2);
    store.setValue("solid_color_b", 3);
    store.setValue("color_map_inverted", true);
  }
  VXDataSource source;
  EXPECT_EQ(source.getNanColor(), QColor::fromRgbF(0.5, 0.75, 0.0, 1.0));
  EXPECT_EQ(source.getSolidColor(), QColor(1, 2, 3));
  EXPECT_TRUE(source.getIsInverted());

  // writing them follows the answer
  ScriptedPrompts prompts;
  source.setSolidColor(QColor(9, 8, 7));
  prompts.answers = { QMessageBox::No, QMessageBox::Yes, QMessageBox::Reset };
  source.writeSettings();
  EXPECT_EQ(VXDataSource().getSolidColor(), QColor(1, 2, 3));
  source.writeSettings();
  EXPECT_EQ(VXDataSource().getSolidColor(), QColor(9, 8, 7));
  source.writeSettings();
  EXPECT_EQ(VXDataSource().getSolidColor(), QColor(255, 255, 255));
  ASSERT_EQ(prompts.asked.size(), 3u);
  EXPECT_EQ(prompts.asked[0].text, "Do you want to save the current data source setting values as "
                                   "the default values for all data sources?");
  EXPECT_EQ(prompts.asked[0].defaultButton, QMessageBox::Yes);
}
