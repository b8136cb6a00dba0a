#include "visualization/VXFClip.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXFClipFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXBox.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXPlane.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QScrollArea>

#include <vtkAlgorithmOutput.h>
#include <vtkPlane.h>
#include <vtkPlanes.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkUnstructuredGrid.h>

VXFClip::VXFClip(QObject* parent)
  : VXFilter(parent)
  , m_ClipFilter(vtkSmartPointer<vtkTableBasedClipDataSet>::New())
{
  m_DefaultName = QStringLiteral("Clip Filter");
  m_BaseName = m_DefaultName;
}

VXFClip::~VXFClip() = default;

vtkAlgorithmOutput* VXFClip::outputPort()
{
  return m_ClipFilter->GetOutputPort();
}

void VXFClip::setInputPort(vtkAlgorithmOutput* port)
{
  VXFilter::setInputPort(port);
  m_ClipFilter->SetInputConnection(port);
}

VXPlane* VXFClip::plane() const
{
  return m_Plane;
}

VXBox* VXFClip::box() const
{
  return m_Box;
}

vtkTableBasedClipDataSet* VXFClip::clipFilter() const
{
  return m_ClipFilter;
}

VXFClipFilterWidget* VXFClip::filterWidget() const
{
  return qobject_cast<VXFClipFilterWidget*>(m_FilterWidget.data());
}

void VXFClip::writeValues(nlohmann::json& output) const
{
  output["clip_inverted"] = m_Inverted;
  output["clip_type"] = static_cast<int>(m_ClipType);
  output["show_clip_tool"] = m_ShowClipTool;
  if (m_Plane != nullptr)
  {
    WriteTriple(output, "clip_plane_normal", m_Plane->getNormal());
    WriteTriple(output, "clip_plane_origin", m_Plane->getOrigin());
  }
  if (m_Box != nullptr)
  {
    WriteTriple(output, "clip_box_translate", m_Box->getTranslation());
    WriteTriple(output, "clip_box_rotate", m_Box->getRotation());
    WriteTriple(output, "clip_box_scale", m_Box->getScale());
  }
}

void VXFClip::readValues(const nlohmann::json& input)
{
  if (auto it = input.find("clip_inverted"); it != input.end() && it->is_boolean())
    setInverted(it->get<bool>());
  if (auto it = input.find("clip_type"); it != input.end() && it->is_number_integer())
  {
    const int type = KXVtkModule::utils::StateInt(*it);
    if (type == 0 || type == 1)
      setClipType(static_cast<ClipType>(type));
  }
  if (auto it = input.find("show_clip_tool"); it != input.end() && it->is_boolean())
    setShowClipTool(it->get<bool>());
  if (m_Plane == nullptr || m_Box == nullptr)
  {
    m_PendingToolValues = input;
    return;
  }
  const auto normal = ReadTriple(input, "clip_plane_normal");
  const auto origin = ReadTriple(input, "clip_plane_origin");
  if (normal || origin)
    m_Plane->setValues(normal.value_or(m_Plane->getNormal()),
                       origin.value_or(m_Plane->getOrigin()));
  const auto translation = ReadTriple(input, "clip_box_translate");
  const auto rotation = ReadTriple(input, "clip_box_rotate");
  const auto scale = ReadTriple(input, "clip_box_scale");
  if (translation || rotation || scale)
    m_Box->setValues(translation.value_or(m_Box->getTranslation()),
                     rotation.value_or(m_Box->getRotation()), scale.value_or(m_Box->getScale()));
}

void VXFClip::write(nlohmann::json& output,
                    const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXFilter::write(output, viewIndices);
  writeValues(output);
}

void VXFClip::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  VXFilter::read(input, views);
  if (input.is_object())
    readValues(input);
}

void VXFClip::setupFilter()
{
  if (m_Plane != nullptr)
    return;
  const auto bounds = inputBounds();
  vtkRenderWindowInteractor* interactor = activeInteractor();
  m_Box = new VXBox(bounds, interactor, this);
  m_Plane = new VXPlane(bounds, interactor, this);
  connect(m_Plane, &VXPlane::planeChanged, this, &VXCoreObject::requestRenderAll);
  connect(m_Box, &VXBox::transformChanged, this, &VXCoreObject::requestRenderAll);
  readSettings();
  // values from a state file or a paste win over the defaults
  if (m_PendingToolValues)
  {
    const nlohmann::json pending = *m_PendingToolValues;
    m_PendingToolValues.reset();
    readValues(pending);
  }
  configureClip();
  updateClipTool();
}

void VXFClip::configureClip()
{
  if (m_ClipType == ClipType::Box && m_Box != nullptr)
    m_ClipFilter->SetClipFunction(m_Box->getPlanes());
  else if (m_Plane != nullptr)
  {
    vtkNew<vtkPlane> plane;
    plane->SetNormal(m_Plane->getNormal().data());
    plane->SetOrigin(m_Plane->getOrigin().data());
    m_ClipFilter->SetClipFunction(plane);
  }
  m_ClipFilter->SetInsideOut(m_Inverted);
}

void VXFClip::applyFilter()
{
  if (m_Plane == nullptr || m_Box == nullptr)
    return;
  configureClip();
  m_ClipFilter->Update();
  updateDownstreamGridAxesBounds();
  Q_EMIT requestRenderAll();
  addRepresentationAfterApply();
}

void VXFClip::receivePipelineOutputReloaded()
{
  if (m_Plane == nullptr || m_Box == nullptr)
    return;
  const auto bounds = inputBounds();
  m_Plane->updateBounds(bounds);
  m_Box->updateBounds(bounds);
  applyFilter();
}

void VXFClip::activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                VXAbstractViewWidget* currentActiveView)
{
  VXFilter::activeViewChanged(previousActiveView, currentActiveView);
  if (currentActiveView == nullptr || currentActiveView->getVisualizationWidget() == nullptr)
    return;
  vtkRenderWindowInteractor* interactor = currentActiveView->getVisualizationWidget()->interactor();
  if (m_Plane != nullptr)
    m_Plane->setRenderWindowInteractor(interactor);
  if (m_Box != nullptr)
    m_Box->setRenderWindowInteractor(interactor);
  Q_EMIT requestRenderAll();
}

void VXFClip::setClipType(VXFClip::ClipType type)
{
  if (type == m_ClipType)
    return;
  m_ClipType = type;
  updateClipTool();
  Q_EMIT clipTypeChanged(type);
}

void VXFClip::setInverted(bool inverted)
{
  if (inverted == m_Inverted)
    return;
  m_Inverted = inverted;
  Q_EMIT invertedChanged(inverted);
}

void VXFClip::setShowClipTool(bool show)
{
  m_ShowClipTool = show;
  updateClipTool();
  Q_EMIT showClipToolChanged(show);
}

void VXFClip::updateClipTool()
{
  const bool shown = m_ShowClipTool && isVisible();
  if (m_Plane != nullptr)
  {
    if (shown && m_ClipType == ClipType::Plane)
      m_Plane->enable();
    else
      m_Plane->disable();
  }
  if (m_Box != nullptr)
  {
    if (shown && m_ClipType == ClipType::Box)
      m_Box->enable();
    else
      m_Box->disable();
  }
  Q_EMIT requestRenderAll();
}

void VXFClip::setVisibility(bool visible)
{
  if (isVisible() && !visible)
    Q_EMIT requestClear();
  VXFilter::setVisibility(visible);
  updateClipTool();
  if (visible)
    Q_EMIT requestUnstructuredGridUpdate(pathName(), m_ClipFilter->GetOutput());
}

void VXFClip::readSettings()
{
  readValues(savedDefaults({ "clip_inverted", "show_clip_tool" }, { "clip_type" },
                           { "clip_plane_normal", "clip_plane_origin", "clip_box_translate",
                             "clip_box_rotate", "clip_box_scale" }));
}

void VXFClip::writeSettings()
{
  if (!shouldSaveAsDefaultSettings())
    return;
  nlohmann::json values = nlohmann::json::object();
  writeValues(values);
  saveDefaults(values);
}

void VXFClip::openHelpLink()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl));
}

void VXFClip::initializeSettingsWidget()
{
  addFilterPageTitle();
  auto* widget = new VXFClipFilterWidget(this);
  m_FilterWidget = widget;
  m_SettingsScrollArea->setWidget(widget);
}
