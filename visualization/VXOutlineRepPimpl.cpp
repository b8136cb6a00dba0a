#include "visualization/VXOutlineRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXOutlineRep.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXIconPushButton.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QIntValidator>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSlider>
#include <QtWidgets/QVBoxLayout>

#include <vtkActor.h>
#include <vtkAlgorithmOutput.h>
#include <vtkCommand.h>
#include <vtkDataObject.h>
#include <vtkInformation.h>
#include <vtkNamedColors.h>
#include <vtkOutlineFilter.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkQuadricClustering.h>
#include <vtkRenderer.h>

#include <algorithm>

using KXVtkModule::utils::HtmlToolTip;

VXOutlineRepPimpl::VXOutlineRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXRepresentationPimpl(view, owner)
{
  m_Actor = vtkSmartPointer<vtkActor>::New();
  m_Mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  m_OutlineFilter = vtkSmartPointer<vtkOutlineFilter>::New();
  m_QuadricClustering = vtkSmartPointer<vtkQuadricClustering>::New();
  if (auto* outlineRep = qobject_cast<VXOutlineRep*>(owner))
  {
    vtkNew<VXDataSetInfoWidgetUpdateCallback<VXOutlineRep>> callback;
    callback->setRepresentation(outlineRep);
    m_QuadricClustering->AddObserver(vtkCommand::EndEvent, callback);
  }
  if (owner != nullptr)
  {
    QtKXSettings settings;
    BeginSettingsGroup(settings, owner->typeName());
    loadOutlineDefaults(settings);
  }
}

VXOutlineRepPimpl::~VXOutlineRepPimpl()
{
  disconnectParentColorSignals();
}

VXDataSource* VXOutlineRepPimpl::parentDataSource() const
{
  return m_Owner != nullptr ? m_Owner->parentDataSource() : nullptr;
}

void VXOutlineRepPimpl::setMapper(vtkMapper* mapper)
{
  m_Mapper = mapper;
  m_Actor->SetMapper(mapper);
}

vtkMapper* VXOutlineRepPimpl::mapper() const
{
  return m_Mapper;
}

vtkActor* VXOutlineRepPimpl::actor() const
{
  return m_Actor;
}

bool VXOutlineRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  vtkRenderer* ren = renderer();
  if (m_View == nullptr || port == nullptr || (ren != nullptr && ren->HasViewProp(m_Actor)))
    return false;
  m_OutlineFilter->SetInputConnection(port);
  m_OutlineFilter->Update();
  if (VXDataSource* source = parentDataSource())
    m_OutlineFilter->GetOutput()->SetObjectName(source->name().toStdString());
  setMapper(m_Mapper);
  m_Mapper->SetInputConnection(m_OutlineFilter->GetOutputPort());

  m_HighlightMapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  m_HighlightMapper->SetInputConnection(m_OutlineFilter->GetOutputPort());
  m_HighlightMapper->ScalarVisibilityOff();
  m_HighlightActor = vtkSmartPointer<vtkActor>::New();
  m_HighlightActor->SetMapper(m_HighlightMapper);
  vtkNew<vtkNamedColors> colors;
  m_HighlightActor->GetProperty()->SetColor(colors->GetColor3d("Magenta").GetData());
  // the highlight must stand out from the actor it follows: thick lines on top
  m_HighlightActor->GetProperty()->SetRepresentationToWireframe();
  m_HighlightActor->GetProperty()->SetLineWidth(3.0f);

  applyActorProperties();
  m_Initialized = true;
  setupGridAxes();
  ensureTransformWidget();
  applyTransform();
  if (ren != nullptr)
  {
    if (m_Visible)
      visualizationWidget()->addActor(m_Actor);
    ren->ResetCamera();
    requestRender();
  }
  if (VXDataSource* source = parentDataSource())
    connect(source, &VXDataSource::syncChildColorMaps, this,
            &VXOutlineRepPimpl::onSyncColorMapToParentGeometry, Qt::UniqueConnection);
  if (!m_DetachColorSettings)
    connectParentColorSignals(true);
  if (m_UseDecimationOnInteraction)
    decimateGeometry();
  return true;
}

bool VXOutlineRepPimpl::finalize()
{
  vtkRenderer* ren = renderer();
  if (m_View == nullptr || ren == nullptr || !ren->HasViewProp(m_Actor))
    return false;
  releaseTransformWidget();
  visualizationWidget()->removeActor(m_Actor);
  if (m_HighlightActor != nullptr)
    ren->RemoveViewProp(m_HighlightActor);
  if (m_GridAxes != nullptr)
  {
    m_GridAxes->SetVisibility(false);
    ren->RemoveViewProp(m_GridAxes);
  }
  requestRender();
  return true;
}

vtkAlgorithmOutput* VXOutlineRepPimpl::outputPort()
{
  return m_OutlineFilter->GetOutputPort();
}

vtkAlgorithmOutput* VXOutlineRepPimpl::inputPort()
{
  return m_OutlineFilter->GetNumberOfInputConnections(0) > 0
           ? m_OutlineFilter->GetInputConnection(0, 0)
           : nullptr;
}

void VXOutlineRepPimpl::bounds(double bounds[6])
{
  const double* b = m_Actor->GetBounds();
  std::copy(b, b + 6, bounds);
}

void VXOutlineRepPimpl::applyActorProperties()
{
  vtkProperty* property = m_Actor->GetProperty();
  property->SetColor(m_SolidColor.redF(), m_SolidColor.greenF(), m_SolidColor.blueF());
  property->SetOpacity(m_Opacity);
  property->SetEdgeVisibility(m_EdgeVisibility);
  property->SetLineWidth(static_cast<float>(m_LineSize));
  property->SetRenderLinesAsTubes(m_RenderLinesAsTubes);
}

void VXOutlineRepPimpl::setVisibility(bool visible)
{
  setPropVisibility(m_Actor, m_HighlightActor, visible, m_Initialized);
}

void VXOutlineRepPimpl::setHighlighted(bool highlighted)
{
  m_Highlighted = highlighted;
  setPropHighlighted(m_HighlightActor, highlighted);
}

void VXOutlineRepPimpl::applyTransform()
{
  applyTransformTo({ m_Actor, m_HighlightActor });
}

// ---------------------------------------------------------------------------
// Setters

void VXOutlineRepPimpl::setSolidColor(QColor newColor)
{
  m_SolidColor = newColor;
  m_Actor->GetProperty()->SetColor(newColor.redF(), newColor.greenF(), newColor.blueF());
  if (m_SolidColorButton != nullptr)
  {
    const QSignalBlocker blocker(m_SolidColorButton);
    m_SolidColorButton->setColor(newColor);
  }
  requestRender();
}

void VXOutlineRepPimpl::setOpacity(int alpha)
{
  m_Opacity = std::clamp(alpha / 100.0, 0.0, 1.0);
  m_Actor->GetProperty()->SetOpacity(m_Opacity);
  requestRender();
}

void VXOutlineRepPimpl::lineSizeChanged()
{
  if (m_LineSizeEdit != nullptr)
    lineSizeEdited(m_LineSizeEdit->text());
}

void VXOutlineRepPimpl::lineSizeEdited(QString text)
{
  if (text.isEmpty())
    return;
  m_LineSize = text.toInt();
  m_Actor->GetProperty()->SetLineWidth(static_cast<float>(m_LineSize));
  requestRender();
}

void VXOutlineRepPimpl::setEdgeVisibility(bool visible)
{
  m_EdgeVisibility = visible;
  if (visible)
    m_Actor->GetProperty()->EdgeVisibilityOn();
  else
    m_Actor->GetProperty()->EdgeVisibilityOff();
  if (m_LineSizeLabel != nullptr)
    m_LineSizeLabel->setEnabled(visible);
  if (m_LineSizeEdit != nullptr)
    m_LineSizeEdit->setEnabled(visible);
  requestRender();
}

void VXOutlineRepPimpl::setRenderLinesAsTubes(bool tubes)
{
  m_RenderLinesAsTubes = tubes;
  m_Actor->GetProperty()->SetRenderLinesAsTubes(tubes);
  requestRender();
}

// ---------------------------------------------------------------------------
// Colours of the parent

void VXOutlineRepPimpl::connectParentColorSignals(bool trigger)
{
  VXDataSource* source = parentDataSource();
  if (source == nullptr)
    return;
  disconnectParentColorSignals();
  m_ParentColorConnections.append(
    connect(source, &VXDataSource::solidColorChanged, this, &VXOutlineRepPimpl::setSolidColor));
  if (trigger)
    source->triggerColorSettingsChange();
}

void VXOutlineRepPimpl::disconnectParentColorSignals()
{
  for (const auto& connection : std::as_const(m_ParentColorConnections))
    disconnect(connection);
  m_ParentColorConnections.clear();
}

void VXOutlineRepPimpl::onDetachColorSettings(bool checked)
{
  m_DetachColorSettings = checked;
  if (!checked)
  {
    m_SavedSolidColor = m_SolidColor;
    connectParentColorSignals(true);
  }
  else
  {
    disconnectParentColorSignals();
    setSolidColor(m_SavedSolidColor);
  }
  if (m_SolidColorButton != nullptr)
    m_SolidColorButton->setEnabled(checked);
  if (m_DetachColorCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_DetachColorCheckBox);
    m_DetachColorCheckBox->setChecked(checked);
  }
}

void VXOutlineRepPimpl::onSyncColorMapToParentGeometry()
{
  if (!m_DetachColorSettings)
    return;
  onDetachColorSettings(false);
}

// ---------------------------------------------------------------------------
// State

void VXOutlineRepPimpl::write(nlohmann::json& output) const
{
  VXRepresentationPimpl::write(output);
  output["opacity_percent"] = m_Opacity * 100.0;
  output["solid_color_r"] = m_SolidColor.red();
  output["solid_color_g"] = m_SolidColor.green();
  output["solid_color_b"] = m_SolidColor.blue();
  output["edge_visibility"] = m_EdgeVisibility;
  output["line_size"] = m_LineSize;
  output["render_lines_as_tubes"] = m_RenderLinesAsTubes;
  output["data_source_num_of_dims_x"] = m_DecimationDivisions[0];
  output["data_source_num_of_dims_y"] = m_DecimationDivisions[1];
  output["data_source_num_of_dims_z"] = m_DecimationDivisions[2];
  output["data_source_use_input_points"] = m_UseInputPoints;
  output["data_source_use_feature_edges"] = m_UseFeatureEdges;
  output["data_source_use_feature_points"] = m_UseFeaturePoints;
  output["data_source_use_internal_triangles"] = m_UseInternalTriangles;
}

void VXOutlineRepPimpl::read(const nlohmann::json& input)
{
  VXRepresentationPimpl::read(input);
  if (input.contains("opacity_percent"))
    m_Opacity = std::clamp(input.at("opacity_percent").get<double>() / 100.0, 0.0, 1.0);
  if (input.contains("solid_color_r") && input.contains("solid_color_g") &&
      input.contains("solid_color_b"))
    m_SolidColor = QColor(KXVtkModule::utils::StateInt(input.at("solid_color_r")),
                          KXVtkModule::utils::StateInt(input.at("solid_color_g")),
                          KXVtkModule::utils::StateInt(input.at("solid_color_b")), 255);
  if (input.contains("edge_visibility"))
    m_EdgeVisibility = input.at("edge_visibility").get<bool>();
  if (input.contains("line_size"))
    m_LineSize = KXVtkModule::utils::StateInt(input.at("line_size"));
  if (input.contains("render_lines_as_tubes"))
    m_RenderLinesAsTubes = input.at("render_lines_as_tubes").get<bool>();
  if (input.contains("data_source_num_of_dims_x") && input.contains("data_source_num_of_dims_y") &&
      input.contains("data_source_num_of_dims_z"))
    m_DecimationDivisions = { KXVtkModule::utils::StateInt(input.at("data_source_num_of_dims_x")),
                              KXVtkModule::utils::StateInt(input.at("data_source_num_of_dims_y")),
                              KXVtkModule::utils::StateInt(input.at("data_source_num_of_dims_z")) };
  if (input.contains("data_source_use_input_points"))
    m_UseInputPoints = input.at("data_source_use_input_points").get<bool>();
  if (input.contains("data_source_use_feature_edges"))
    m_UseFeatureEdges = input.at("data_source_use_feature_edges").get<bool>();
  if (input.contains("data_source_use_feature_points"))
    m_UseFeaturePoints = input.at("data_source_use_feature_points").get<bool>();
  if (input.contains("data_source_use_internal_triangles"))
    m_UseInternalTriangles = input.at("data_source_use_internal_triangles").get<bool>();
  if (m_Initialized)
  {
    applyActorProperties();
    applyTransform();
  }
}

void VXOutlineRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXRepresentationPimpl::copyFrom(other);
  auto* source = dynamic_cast<VXOutlineRepPimpl*>(other);
  if (source == nullptr)
    return;
  m_Opacity = source->m_Opacity;
  m_SolidColor = source->m_SolidColor;
  m_SavedSolidColor = source->m_SavedSolidColor;
  m_EdgeVisibility = source->m_EdgeVisibility;
  m_LineSize = source->m_LineSize;
  m_RenderLinesAsTubes = source->m_RenderLinesAsTubes;
}

void VXOutlineRepPimpl::copySettingsToClipboard()
{
  writeToClipboard();
}

void VXOutlineRepPimpl::pasteSettingsFromClipboard()
{
  const nlohmann::json input = readClipboard();
  if (input.is_null())
    return;
  read(input);
  settingsWidget();
  syncControls();
  if (!m_DetachColorSettings)
  {
    if (VXDataSource* source = parentDataSource())
      setSolidColor(source->getSolidColor());
    if (m_SolidColorButton != nullptr)
      m_SolidColorButton->setEnabled(false);
  }
  else
  {
    setSolidColor(m_SolidColor);
  }
}

// ---------------------------------------------------------------------------
// Defaults

void VXOutlineRepPimpl::loadOutlineDefaults(QtKXSettings& settings)
{
  if (settings.contains("opacity_percent"))
    m_Opacity = std::clamp(settings.value("opacity_percent", 100).toDouble() / 100.0, 0.0, 1.0);
  if (settings.contains("edge_visibility"))
    m_EdgeVisibility = settings.value("edge_visibility", true).toBool();
  if (settings.contains("line_size"))
    m_LineSize = settings.value("line_size", 1).toInt();
  if (settings.contains("render_lines_as_tubes"))
    m_RenderLinesAsTubes = settings.value("render_lines_as_tubes", false).toBool();
  if (settings.contains("data_source_num_of_dims_x") &&
      settings.contains("data_source_num_of_dims_y") &&
      settings.contains("data_source_num_of_dims_z"))
    m_DecimationDivisions = { settings.value("data_source_num_of_dims_x", 0).toInt(),
                              settings.value("data_source_num_of_dims_y", 0).toInt(),
                              settings.value("data_source_num_of_dims_z", 0).toInt() };
  if (settings.contains("data_source_use_input_points"))
    m_UseInputPoints = settings.value("data_source_use_input_points", true).toBool();
  if (settings.contains("data_source_use_feature_edges"))
    m_UseFeatureEdges = settings.value("data_source_use_feature_edges", false).toBool();
  if (settings.contains("data_source_use_feature_points"))
    m_UseFeaturePoints = settings.value("data_source_use_feature_points", false).toBool();
  if (settings.contains("data_source_use_internal_triangles"))
    m_UseInternalTriangles = settings.value("data_source_use_internal_triangles", false).toBool();
}

void VXOutlineRepPimpl::saveOutlineDefaults(QtKXSettings& settings) const
{
  settings.setValue("opacity_percent", m_Opacity * 100.0);
  settings.setValue("edge_visibility", m_EdgeVisibility);
  settings.setValue("line_size", m_LineSize);
  settings.setValue("render_lines_as_tubes", m_RenderLinesAsTubes);
  settings.setValue("data_source_num_of_dims_x", m_DecimationDivisions[0]);
  settings.setValue("data_source_num_of_dims_y", m_DecimationDivisions[1]);
  settings.setValue("data_source_num_of_dims_z", m_DecimationDivisions[2]);
  settings.setValue("data_source_use_input_points", m_UseInputPoints);
  settings.setValue("data_source_use_feature_edges", m_UseFeatureEdges);
  settings.setValue("data_source_use_feature_points", m_UseFeaturePoints);
  settings.setValue("data_source_use_internal_triangles", m_UseInternalTriangles);
}

void VXOutlineRepPimpl::loadDefaultSettings()
{
  VXRepresentationPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  loadOutlineDefaults(settings);
}

void VXOutlineRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  saveOutlineDefaults(settings);
  settings.sync();
}

void VXOutlineRepPimpl::openHelp()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl + m_HelpAnchor));
}

// ---------------------------------------------------------------------------
// Settings page

QFormLayout* VXOutlineRepPimpl::sectionForm(const QString& title)
{
  if (m_Sections.contains(title) && m_Sections.value(title) != nullptr)
    return m_Sections.value(title);
  auto* box = new QGroupBox(title, m_PageContent);
  box->setObjectName(title);
  auto* form = new QFormLayout(box);
  m_PageLayout->addWidget(box);
  m_Sections.insert(title, form);
  return form;
}

void VXOutlineRepPimpl::buildSettingsPage()
{
  m_PageContent = new QWidget();
  m_PageLayout = new QVBoxLayout(m_PageContent);
  m_SettingsScrollArea->setWidget(m_PageContent);
  // the order of the sections is fixed; later levels add their rows to them
  for (const char* title : { "Coloring", "Styling", "Annotations", "Transform", "Decimation" })
    sectionForm(title);
  m_PageLayout->addStretch(1);
  sectionForm("Transform")->addRow(ensureTransformWidget());

  QFormLayout* coloring = sectionForm("Coloring");
  m_DetachColorCheckBox = new QCheckBox("Enable Separate Color Map", m_PageContent);
  m_DetachColorCheckBox->setObjectName("m_DetachColorCheckBox");
  m_DetachColorCheckBox->setChecked(m_DetachColorSettings);
  connect(m_DetachColorCheckBox, &QCheckBox::toggled, this,
          &VXOutlineRepPimpl::onDetachColorSettings);
  m_DataSourceButton = new QPushButton("DataSource", m_PageContent);
  m_DataSourceButton->setObjectName("m_DataSourceButton");
  connect(m_DataSourceButton, &QPushButton::clicked, this,
          [this]()
          {
            if (VXDataSource* source = parentDataSource())
              Q_EMIT source->goToParentColorSettings();
          });
  coloring->addRow(m_DetachColorCheckBox, m_DataSourceButton);
  m_SolidColorButton = new KXColorButton(m_SolidColor, m_PageContent);
  VXUserPrompt::routeColorButton(m_SolidColorButton, QStringLiteral("Select Solid Color"));
  m_SolidColorButton->setObjectName("m_SolidColorButton");
  m_SolidColorButton->setEnabled(m_DetachColorSettings);
  connect(m_SolidColorButton, &KXColorButton::changedColor, this,
          &VXOutlineRepPimpl::setSolidColor);
  coloring->addRow("Solid Color: ", m_SolidColorButton);

  QFormLayout* styling = sectionForm("Styling");
  m_OpacitySlider = new QSlider(Qt::Horizontal, m_PageContent);
  m_OpacitySlider->setObjectName("m_OpacitySlider");
  m_OpacitySlider->setRange(0, 100);
  m_OpacitySlider->setValue(static_cast<int>(m_Opacity * 100.0 + 0.5));
  connect(m_OpacitySlider, &QSlider::valueChanged, this, &VXOutlineRepPimpl::setOpacity);
  styling->addRow("Opacity", m_OpacitySlider);
  m_EdgesCheckBox = new QCheckBox("Show Edges", m_PageContent);
  m_EdgesCheckBox->setObjectName("m_EdgesCheckBox");
  m_EdgesCheckBox->setChecked(m_EdgeVisibility);
  connect(m_EdgesCheckBox, &QCheckBox::toggled, this, &VXOutlineRepPimpl::setEdgeVisibility);
  styling->addRow(m_EdgesCheckBox);
  m_LineSizeLabel = new QLabel("Line Size", m_PageContent);
  m_LineSizeEdit = new QLineEdit(QString::number(m_LineSize), m_PageContent);
  m_LineSizeEdit->setObjectName("m_LineSizeEdit");
  m_LineSizeEdit->setValidator(new QIntValidator(1, 100, m_LineSizeEdit));
  connect(m_LineSizeEdit, &QLineEdit::textEdited, this, &VXOutlineRepPimpl::lineSizeEdited);
  connect(m_LineSizeEdit, &QLineEdit::editingFinished, this, &VXOutlineRepPimpl::lineSizeChanged);
  m_LineSizeLabel->setEnabled(m_EdgeVisibility);
  m_LineSizeEdit->setEnabled(m_EdgeVisibility);
  styling->addRow(m_LineSizeLabel, m_LineSizeEdit);
  m_TubesCheckBox = new QCheckBox("Render Lines As Tubes", m_PageContent);
  m_TubesCheckBox->setObjectName("m_TubesCheckBox");
  m_TubesCheckBox->setChecked(m_RenderLinesAsTubes);
  connect(m_TubesCheckBox, &QCheckBox::toggled, this, &VXOutlineRepPimpl::setRenderLinesAsTubes);
  styling->addRow(m_TubesCheckBox);

  QFormLayout* decimation = sectionForm("Decimation");
  m_DecimationCheckBox = new QCheckBox("Use Decimation During Interactions", m_PageContent);
  m_DecimationCheckBox->setObjectName("m_DecimationCheckBox");
  m_DecimationCheckBox->setChecked(m_UseDecimationOnInteraction);
  connect(m_DecimationCheckBox, &QCheckBox::toggled, this,
          &VXRepresentationPimpl::setUseDecimationOnInteraction);
  decimation->addRow(m_DecimationCheckBox);
}

void VXOutlineRepPimpl::syncControls()
{
  auto setChecked = [](QCheckBox* box, bool value)
  {
    if (box == nullptr)
      return;
    const QSignalBlocker blocker(box);
    box->setChecked(value);
  };
  setChecked(m_DetachColorCheckBox, m_DetachColorSettings);
  setChecked(m_EdgesCheckBox, m_EdgeVisibility);
  setChecked(m_TubesCheckBox, m_RenderLinesAsTubes);
  setChecked(m_DecimationCheckBox, m_UseDecimationOnInteraction);
  if (m_SolidColorButton != nullptr)
  {
    const QSignalBlocker blocker(m_SolidColorButton);
    m_SolidColorButton->setColor(m_SolidColor);
    m_SolidColorButton->setEnabled(m_DetachColorSettings);
  }
  if (m_OpacitySlider != nullptr)
  {
    const QSignalBlocker blocker(m_OpacitySlider);
    m_OpacitySlider->setValue(static_cast<int>(m_Opacity * 100.0 + 0.5));
  }
  if (m_LineSizeEdit != nullptr)
  {
    m_LineSizeEdit->setText(QString::number(m_LineSize));
    m_LineSizeEdit->setEnabled(m_EdgeVisibility);
  }
  if (m_LineSizeLabel != nullptr)
    m_LineSizeLabel->setEnabled(m_EdgeVisibility);
  if (m_GridAxesButton != nullptr)
  {
    const QSignalBlocker blocker(m_GridAxesButton);
    m_GridAxesButton->setChecked(m_DataGridVisible);
  }
}

void VXOutlineRepPimpl::updateToolTips()
{
  auto tip = [](QWidget* widget, const QString& text)
  {
    if (widget != nullptr)
      widget->setToolTip(HtmlToolTip(text));
  };
  tip(m_DetachColorCheckBox,
      "Use separate color settings (solid color, presets, & invert) from the parent geometry");
  tip(m_DataSourceButton, "Go to parent geometry color map settings");
  tip(m_SolidColorButton, "Edit the solid color");
  tip(m_OpacitySlider, "Use this to adjust the opacity of the geometry");
  tip(m_EdgesCheckBox, "When checked, render the edges");
  tip(m_LineSizeEdit,
      "Use this to adjust the thickness of display lines or edges for the current geometry");
  tip(m_TubesCheckBox, "When checked, render the lines as tubes");
  tip(m_GridAxesButton, "Show/Hide the data axis grid for this geometry");
  tip(m_GridAxesEditButton,
      "Edit the spacing and grid line visibility of the data axis grid for this geometry");
}
