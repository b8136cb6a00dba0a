#include "visualization/VXDataSource.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/ColorPresetsDialog.hpp>
#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <vtkAbstractArray.h>
#include <vtkCellData.h>
#include <vtkImageData.h>
#include <vtkPointData.h>
#include <vtkTrivialProducer.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

using kx::core::ColorTableUtilities::ColorPreset;

namespace
{
void beginSettingsGroup(QtKXSettings& settings, const QString& typeName)
{
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("RepresentationSettings");
  settings.beginGroup(typeName);
}

/** A colour from three keys, only when all three are there. */
bool readColor(const nlohmann::json& input, const char* r, const char* g, const char* b,
               QColor& color)
{
  if (!input.contains(r) || !input.contains(g) || !input.contains(b))
    return false;
  if (!input[r].is_number() || !input[g].is_number() || !input[b].is_number())
    return false;
  color = QColor(KXVtkModule::utils::StateInt(input[r]), KXVtkModule::utils::StateInt(input[g]),
                 KXVtkModule::utils::StateInt(input[b]));
  return true;
}

/** The first key of the data source's settings whose value has the wrong type, or empty. */
QString wrongTypedPasteKey(const nlohmann::json& state)
{
  for (const char* key :
       { "data_source_solid_color_r", "data_source_solid_color_g", "data_source_solid_color_b",
         "data_source_nan_color_r", "data_source_nan_color_g", "data_source_nan_color_b" })
  {
    if (state.contains(key) && !state.at(key).is_number())
      return key;
  }
  for (const char* key : { "data_source_using_default_preset", "data_source_color_map_inverted" })
  {
    if (state.contains(key) && !state.at(key).is_boolean())
      return key;
  }
  if (state.contains("current_preset") && !state.at("current_preset").is_object())
    return "current_preset";
  return {};
}
} // namespace

VXDataSource::VXDataSource(QObject* parent)
  : VXCoreObject(parent)
  , m_OutputAlgorithm(vtkTrivialProducer::New())
  , m_CurrentPreset(KXPreferences::getDefaultColorPreset())
{
  m_BaseName = k_DefaultBaseName;
  // not a QObject child: a data source's children are its data views and filters
  m_LookupTable = new VXLookupTable();
  readSettings();
}

VXDataSource::~VXDataSource()
{
  // releases the data set, and with it the host's stores once the views let go
  m_OutputAlgorithm->SetOutput(nullptr);
  m_OutputAlgorithm->Delete();
  delete m_ColorPresetsDialog;
  delete m_LookupTable;
}

vtkAlgorithmOutput* VXDataSource::outputPort()
{
  return m_OutputAlgorithm->GetOutputPort();
}

vtkDataSet* VXDataSource::getOutput() const
{
  return m_WrappedGeometry ? m_WrappedGeometry->DataSet.Get() : nullptr;
}

kx::core::DataPath VXDataSource::importedDataPath() const
{
  return m_WrappedGeometry ? m_WrappedGeometry->Path : kx::core::DataPath();
}

void VXDataSource::takeDataSet(vtkDataSet* dataSet)
{
  if (dataSet != nullptr && !dataSet->GetObjectName().empty())
    m_BaseName = QString::fromStdString(dataSet->GetObjectName());
  m_OutputAlgorithm->SetOutput(dataSet);
  m_IsImageGeometrySource = vtkImageData::SafeDownCast(dataSet) != nullptr;
}

void VXDataSource::setWrappedGeometry(std::shared_ptr<CV::VtkBridge::WrappedGeometry> wrapped)
{
  m_WrappedGeometry = std::move(wrapped);
  takeDataSet(getOutput());
  const kx::core::DataPath path = importedDataPath();
  m_QuadViewDisplayText =
    path.getLength() > 0 ? QString::fromStdString(path.toString("/")) : QString();
  initializeDataSetInfoWidget();
}

void VXDataSource::setDataSet(vtkSmartPointer<vtkDataSet> dataSet)
{
  if (!m_WrappedGeometry)
    m_WrappedGeometry = std::make_shared<CV::VtkBridge::WrappedGeometry>();
  m_WrappedGeometry->DataSet = dataSet;
  takeDataSet(dataSet);
  m_QuadViewDisplayText.clear();
  updateDataSetInfoWidget();
}

void VXDataSource::setBaseName(const QString& name)
{
  VXCoreObject::setBaseName(name);
  if (vtkDataSet* dataSet = getOutput())
    dataSet->SetObjectName(name.toStdString());
}

void VXDataSource::setVisibility(bool visible)
{
  if (isVisible() && !visible)
    Q_EMIT requestClear();
  VXCoreObject::setVisibility(visible);
  if (visible)
    Q_EMIT requestUpdate(pathName(), getOutput());
}

QIcon VXDataSource::getIcon()
{
  return KXStyle::generateThemeIconFromName("DataSource");
}

QMap<QString, QIcon> VXDataSource::getImportedArrayNames() const
{
  QMap<QString, QIcon> names;
  vtkDataSet* dataSet = getOutput();
  if (dataSet == nullptr)
    return names;
  const QIcon pointIcon = KXStyle::generateThemeIconFromName("VertexGeometry");
  const QIcon cellIcon = KXStyle::generateThemeIconFromName("Cells");
  for (int i = 0; i < dataSet->GetPointData()->GetNumberOfArrays(); i++)
  {
    if (const char* name = dataSet->GetPointData()->GetArrayName(i))
      names.insert(QString::fromUtf8(name), pointIcon);
  }
  for (int i = 0; i < dataSet->GetCellData()->GetNumberOfArrays(); i++)
  {
    if (const char* name = dataSet->GetCellData()->GetArrayName(i))
      names.insert(QString::fromUtf8(name), cellIcon);
  }
  return names;
}

QList<QString> VXDataSource::getComponentNames(const QString& arrayName) const
{
  vtkDataSet* dataSet = getOutput();
  if (dataSet == nullptr || arrayName.isNull())
    return {};
  const std::string name = arrayName.toStdString();
  vtkAbstractArray* array = dataSet->GetPointData()->GetAbstractArray(name.c_str());
  if (array == nullptr)
    array = dataSet->GetCellData()->GetAbstractArray(name.c_str());
  if (array == nullptr)
    return {};
  const int components = array->GetNumberOfComponents();
  // a wrapped host float array doesn't claim to be a vtkFloatArray, so it gets the generic names
  if (components == 3 && array->IsA("vtkUnsignedCharArray"))
    return { "R", "G", "B", "Magnitude" };
  if (components == 3 && array->IsA("vtkFloatArray"))
    return { "X", "Y", "Z", "Magnitude" };
  QList<QString> names;
  for (int c = 0; c < components; c++)
    names.append(QString("Comp %1").arg(c));
  if (components >= 2)
    names.append("Magnitude");
  return names;
}

void VXDataSource::setSolidColor(const QColor& color)
{
  m_SolidColor = color;
  Q_EMIT solidColorChanged(color);
}

void VXDataSource::setNanColor(const QColor& color)
{
  m_NanColor = color;
  Q_EMIT nanColorChanged(color);
}

void VXDataSource::setColorsInverted()
{
  m_ColorsInverted = !m_ColorsInverted;
  Q_EMIT invertColorMap(m_ColorsInverted);
}

void VXDataSource::setRestoreDefaultPreset()
{
  m_UsingDefaultPreset = true;
  Q_EMIT restoreDefaultPresetColors();
  if (m_ColorsInverted)
    Q_EMIT invertColorMap(true);
}

void VXDataSource::applyPreset(const ColorPreset& preset, const QPixmap&)
{
  m_CurrentPreset = preset;
  m_UsingDefaultPreset = false;
  Q_EMIT loadPresetColors(m_CurrentPreset);
  if (m_ColorsInverted)
    Q_EMIT invertColorMap(true);
  Q_EMIT presetApplied(QString::fromStdString(preset.name));
}

void VXDataSource::triggerColorSettingsChange()
{
  if (m_UsingDefaultPreset)
    Q_EMIT restoreDefaultPresetColors();
  else
    Q_EMIT loadPresetColors(m_CurrentPreset);
  Q_EMIT solidColorChanged(m_SolidColor);
  Q_EMIT nanColorChanged(m_NanColor);
  Q_EMIT invertColorMap(m_ColorsInverted);
}

ColorPresetsDialog* VXDataSource::colorPresetsDialog() const
{
  return m_ColorPresetsDialog;
}

void VXDataSource::readSettings()
{
  QtKXSettings settings;
  beginSettingsGroup(settings, typeName());
  if (settings.contains("solid_color_r") && settings.contains("solid_color_g") &&
      settings.contains("solid_color_b"))
    m_SolidColor = QColor(settings.value("solid_color_r", 255).toInt(),
                          settings.value("solid_color_g", 255).toInt(),
                          settings.value("solid_color_b", 255).toInt());
  if (settings.contains("nan_color_r") && settings.contains("nan_color_g") &&
      settings.contains("nan_color_b"))
    m_NanColor =
      QColor(settings.value("nan_color_r", 255).toInt(), settings.value("nan_color_g", 255).toInt(),
             settings.value("nan_color_b", 255).toInt());
  if (settings.contains("color_preset"))
  {
    const std::string text = settings.value("color_preset", QString()).toString().toStdString();
    const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_discarded() && json.is_object())
      m_CurrentPreset = ColorPreset(json);
  }
  if (settings.contains("using_default_preset"))
    m_UsingDefaultPreset = settings.value("using_default_preset", true).toBool();
  if (settings.contains("color_map_inverted"))
    m_ColorsInverted = settings.value("color_map_inverted", false).toBool();
}

void VXDataSource::writeSettings()
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Information;
  question.title = "Save Default Settings";
  question.text = "Do you want to save the current data source setting values as the default "
                  "values for all data sources?";
  question.buttons = QMessageBox::Yes | QMessageBox::No | QMessageBox::Reset;
  question.defaultButton = QMessageBox::Yes;
  const auto answer = VXUserPrompt::ask(nullptr, question);
  if (answer == QMessageBox::No)
    return;
  QtKXSettings settings;
  beginSettingsGroup(settings, typeName());
  if (answer == QMessageBox::Reset)
  {
    settings.clearGroup();
    return;
  }
  if (answer != QMessageBox::Yes)
    return;
  settings.setValue("solid_color_r", m_SolidColor.red());
  settings.setValue("solid_color_g", m_SolidColor.green());
  settings.setValue("solid_color_b", m_SolidColor.blue());
  settings.setValue("nan_color_r", m_NanColor.red());
  settings.setValue("nan_color_g", m_NanColor.green());
  settings.setValue("nan_color_b", m_NanColor.blue());
  settings.setValue("color_preset", QString::fromStdString(m_CurrentPreset.toJsonString()));
  settings.setValue("using_default_preset", m_UsingDefaultPreset);
  settings.setValue("color_map_inverted", m_ColorsInverted);
}

void VXDataSource::write(nlohmann::json& output,
                         const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXCoreObject::write(output, viewIndices);
  output["core_object_name"] = m_BaseName.toStdString();
  output["imported_data_path"] = importedDataPath().toString("/");
  output["data_source_solid_color_r"] = m_SolidColor.red();
  output["data_source_solid_color_g"] = m_SolidColor.green();
  output["data_source_solid_color_b"] = m_SolidColor.blue();
  output["data_source_nan_color_r"] = m_NanColor.red();
  output["data_source_nan_color_g"] = m_NanColor.green();
  output["data_source_nan_color_b"] = m_NanColor.blue();
  output["data_source_using_default_preset"] = m_UsingDefaultPreset;
  output["current_preset"] = m_CurrentPreset.toJson();
  output["data_source_color_map_inverted"] = m_ColorsInverted;
  output["data_source_visibility"] = isVisible();
}

void VXDataSource::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  VXCoreObject::read(input, views);
  if (!input.is_object())
    return;
  // a list of views says all there is about them: a view it leaves out doesn't show this source,
  // even the one that was active when the source arrived
  const auto listed = input.find("render_window_index");
  const bool perView = listed != input.end() && listed->is_array() && !listed->empty();
  if (perView)
  {
    QList<int> indices;
    for (const nlohmann::json& entry : *listed)
      indices.append(KXVtkModule::utils::StateInt(entry.at("render_window_index")));
    for (auto iter = views.cbegin(); iter != views.cend(); ++iter)
    {
      if (!indices.contains(iter.key()))
        m_ViewWidgets.remove(iter.value());
    }
  }
  if (auto iter = input.find("core_object_name"); iter != input.end() && iter->is_string())
    setBaseName(QString::fromStdString(iter->get<std::string>()));
  if (auto iter = input.find("imported_data_path"); iter != input.end() && iter->is_string())
  {
    if (auto path = kx::core::DataPath::FromString(iter->get<std::string>(), '/'))
    {
      if (!m_WrappedGeometry)
        m_WrappedGeometry = std::make_shared<CV::VtkBridge::WrappedGeometry>();
      m_WrappedGeometry->Path = *path;
    }
  }
  readColor(input, "data_source_solid_color_r", "data_source_solid_color_g",
            "data_source_solid_color_b", m_SolidColor);
  readColor(input, "data_source_nan_color_r", "data_source_nan_color_g", "data_source_nan_color_b",
            m_NanColor);
  if (auto iter = input.find("data_source_using_default_preset");
      iter != input.end() && iter->is_boolean())
    m_UsingDefaultPreset = iter->get<bool>();
  if (auto iter = input.find("current_preset"); iter != input.end() && iter->is_object())
    m_CurrentPreset = ColorPreset(*iter);
  if (auto iter = input.find("data_source_color_map_inverted");
      iter != input.end() && iter->is_boolean())
    m_ColorsInverted = iter->get<bool>();
  // the active view's visibility only stands in for a missing list of views
  if (auto iter = input.find("data_source_visibility");
      !perView && iter != input.end() && iter->is_boolean())
    setVisibility(iter->get<bool>());
}

void VXDataSource::copyActiveSettings() const
{
  nlohmann::json state = nlohmann::json::object();
  write(state, {});
  QGuiApplication::clipboard()->setText(QString::fromStdString(state.dump(2)));
}

void VXDataSource::pasteToActiveSettings()
{
  nlohmann::json state = clipboardSettings();
  if (state.is_null())
    return;
  // settings only: the visibility in each view stays as the user set it
  state.erase("render_window_index");
  state.erase("data_source_visibility");
  if (const QString key = wrongTypedPasteKey(state); !key.isEmpty())
  {
    reportPasteFailure(QString("the value of \"%1\" has the wrong type.").arg(key));
    return;
  }
  // a paste changes the settings, never the identity
  const QString savedName = m_BaseName;
  const kx::core::DataPath savedPath = importedDataPath();
  read(state, {});
  setBaseName(savedName);
  if (m_WrappedGeometry)
    m_WrappedGeometry->Path = savedPath;
  if (!m_SettingsWidget)
    return;
  if (m_SolidColorButton)
    m_SolidColorButton->setColor(m_SolidColor);
  if (m_ColorPresetsDialog)
    m_ColorPresetsDialog->setNanColor(m_NanColor);
  if (m_UsingDefaultPreset)
    Q_EMIT restoreDefaultPresetColors();
  else
    Q_EMIT loadPresetColors(m_CurrentPreset);
  if (m_InvertColorButton)
    m_InvertColorButton->setChecked(m_ColorsInverted);
}

void VXDataSource::initializeSettingsWidget()
{
  using KXVtkModule::utils::HtmlToolTip;
  auto* saveButton = new KXIconPushButton();
  saveButton->setIcon(KXStyle::generateThemeIconFromName("Save"));
  saveButton->setToolTip(
    HtmlToolTip(QString("Save the current settings as the default settings for all %1 types")
                  .arg(humanTypeName())));
  connect(saveButton, &QPushButton::clicked, this, &VXDataSource::writeSettings);
  addSettingsWidgetTitle(saveButton, nullptr);

  auto* content = new QWidget();
  auto* contentLayout = new QVBoxLayout(content);
  auto* group = new QGroupBox("Coloring", content);
  auto* grid = new QGridLayout(group);
  grid->addWidget(new QLabel("Solid Color: ", group), 0, 0);
  m_SolidColorButton = new KXColorButton(group);
  VXUserPrompt::routeColorButton(m_SolidColorButton, QStringLiteral("Select Solid Color"));
  m_SolidColorButton->setColor(m_SolidColor);
  m_SolidColorButton->setToolTip(
    HtmlToolTip("Edit the solid color for all child data views not separated from this geometry"));
  grid->addWidget(m_SolidColorButton, 0, 1);

  m_ColorPresetButton = new KXIconPushButton(group);
  m_ColorPresetButton->setObjectName("m_ColorPresetButton");
  m_ColorPresetButton->setText("Edit");
  m_ColorPresetButton->setIcon(KXStyle::generateThemeIconFromName("preset"));
  m_ColorPresetButton->setToolTip(
    HtmlToolTip("Edit the color map for all child data views not separated from this geometry"));
  grid->addWidget(m_ColorPresetButton, 1, 0);

  m_InvertColorButton = new KXIconPushButton(group);
  m_InvertColorButton->setObjectName("m_InvertColorBtn");
  m_InvertColorButton->setCheckable(true);
  m_InvertColorButton->setChecked(m_ColorsInverted);
  m_InvertColorButton->setIcon(KXStyle::generateThemeIconFromName("invert"));
  m_InvertColorButton->setToolTip(
    HtmlToolTip("Invert the color map for all child data views not separated from this geometry"));
  grid->addWidget(m_InvertColorButton, 1, 1);

  m_SyncButton = new QPushButton("Sync", group);
  m_SyncButton->setToolTip(HtmlToolTip(
    "Recursively change all child data view color map settings to match this geometry"));
  grid->addWidget(m_SyncButton, 1, 2);
  contentLayout->addWidget(group);
  contentLayout->addStretch(1);
  m_SettingsScrollArea->setWidget(content);

  m_ColorPresetsDialog = new ColorPresetsDialog();
  VXUserPrompt::routeColorButton(m_ColorPresetsDialog->nanColorButton(),
                                 QStringLiteral("Select NaN Color"));
  m_ColorPresetsDialog->setNanColor(m_NanColor);
  connect(m_SolidColorButton, &KXColorButton::changedColor, this, &VXDataSource::setSolidColor);
  connect(m_ColorPresetsDialog, &ColorPresetsDialog::nanColorChanged, this,
          &VXDataSource::setNanColor);
  connect(m_ColorPresetsDialog, &ColorPresetsDialog::presetSelected, this,
          [this](const ColorPreset& preset) { applyPreset(preset, QPixmap()); });
  connect(m_ColorPresetsDialog, &ColorPresetsDialog::restoreDefaultPreset, this,
          &VXDataSource::setRestoreDefaultPreset);
  connect(m_ColorPresetButton, &QPushButton::clicked, m_ColorPresetsDialog, &QWidget::show);
  connect(m_InvertColorButton, &QPushButton::clicked, this, &VXDataSource::setColorsInverted);
  connect(m_SyncButton, &QPushButton::clicked, this, &VXDataSource::syncChildColorMaps);
}

void VXDataSource::initializeDataSetInfoWidget()
{
  if (!m_DataSetInfoWidget)
    m_DataSetInfoWidget = QSharedPointer<VXDatasetInfoWidget>(new VXDatasetInfoWidget());
  m_DataSetInfoWidget->updateDatasetInfo(getOutput());
}

VXDatasetInfoWidget* VXDataSource::getDataSetInfoWidget()
{
  if (!m_DataSetInfoWidget)
    initializeDataSetInfoWidget();
  return m_DataSetInfoWidget.data();
}

void VXDataSource::showDataSetInfoWidget()
{
  getDataSetInfoWidget()->show();
}

void VXDataSource::updateDataSetInfoWidget()
{
  if (m_DataSetInfoWidget)
    m_DataSetInfoWidget->updateDatasetInfo(getOutput());
}
