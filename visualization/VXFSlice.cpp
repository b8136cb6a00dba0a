#include "visualization/VXFSlice.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXFSliceFilterWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXPlane.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QScrollArea>

#include <vtkCutter.h>
#include <vtkPlane.h>
#include <vtkPolyData.h>

VXFSlice::VXFSlice(QObject* parent)
  : VXFilter(parent)
  , m_Cutter(vtkSmartPointer<vtkCutter>::New())
{
  m_DefaultName = QStringLiteral("Slice Filter");
  m_BaseName = m_DefaultName;
}

VXFSlice::~VXFSlice() = default;

vtkAlgorithmOutput* VXFSlice::outputPort()
{
  return m_Cutter->GetOutputPort();
}

void VXFSlice::setInputPort(vtkAlgorithmOutput* port)
{
  VXFilter::setInputPort(port);
  m_Cutter->SetInputConnection(port);
}

VXPlane* VXFSlice::plane() const
{
  return m_Plane;
}

vtkCutter* VXFSlice::cutter() const
{
  return m_Cutter;
}

void VXFSlice::writeValues(nlohmann::json& output) const
{
  output["show_slice_tool"] = m_ShowPlaneTool;
  output["filter_rep_type_to_add"] = static_cast<int>(m_RepTypeToAdd);
  if (m_Plane != nullptr)
  {
    WriteTriple(output, "clip_plane_normal", m_Plane->getNormal());
    WriteTriple(output, "clip_plane_origin", m_Plane->getOrigin());
  }
}

void VXFSlice::readValues(const nlohmann::json& input)
{
  if (auto it = input.find("show_slice_tool"); it != input.end() && it->is_boolean())
    setShowPlaneTool(it->get<bool>());
  if (auto it = input.find("filter_rep_type_to_add"); it != input.end() && it->is_number_integer())
  {
    const auto type = static_cast<VXRepresentation::Type>(KXVtkModule::utils::StateInt(*it));
    if (VXRepresentation::k_RepresentationTypeToString.contains(type))
      m_RepTypeToAdd = type;
  }
  if (m_Plane == nullptr)
  {
    m_PendingToolValues = input;
    return;
  }
  const auto normal = ReadTriple(input, "clip_plane_normal");
  const auto origin = ReadTriple(input, "clip_plane_origin");
  if (normal || origin)
    m_Plane->setValues(normal.value_or(m_Plane->getNormal()),
                       origin.value_or(m_Plane->getOrigin()));
}

void VXFSlice::write(nlohmann::json& output,
                     const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXFilter::write(output, viewIndices);
  writeValues(output);
}

void VXFSlice::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  VXFilter::read(input, views);
  if (input.is_object())
    readValues(input);
}

void VXFSlice::setupFilter()
{
  if (m_Plane != nullptr)
    return;
  m_Plane = new VXPlane(inputBounds(), activeInteractor(), this);
  connect(m_Plane, &VXPlane::planeChanged, this, &VXCoreObject::requestRenderAll);
  readSettings();
  if (m_PendingToolValues)
  {
    const nlohmann::json pending = *m_PendingToolValues;
    m_PendingToolValues.reset();
    readValues(pending);
  }
  // a filter from a state file draws its cut without waiting for an apply
  vtkNew<vtkPlane> plane;
  plane->SetNormal(m_Plane->getNormal().data());
  plane->SetOrigin(m_Plane->getOrigin().data());
  m_Cutter->SetCutFunction(plane);
  updatePlaneTool();
}

void VXFSlice::applyFilter()
{
  if (m_Plane == nullptr)
    return;
  vtkNew<vtkPlane> plane;
  plane->SetNormal(m_Plane->getNormal().data());
  plane->SetOrigin(m_Plane->getOrigin().data());
  m_Cutter->SetCutFunction(plane);
  m_Cutter->Update();
  updateDownstreamGridAxesBounds();
  Q_EMIT requestRenderAll();
  addRepresentationAfterApply();
}

void VXFSlice::receivePipelineOutputReloaded()
{
  if (m_Plane == nullptr)
    return;
  m_Plane->updateBounds(inputBounds());
  applyFilter();
}

void VXFSlice::activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                 VXAbstractViewWidget* currentActiveView)
{
  VXFilter::activeViewChanged(previousActiveView, currentActiveView);
  if (currentActiveView == nullptr || currentActiveView->getVisualizationWidget() == nullptr)
    return;
  if (m_Plane != nullptr)
    m_Plane->setRenderWindowInteractor(currentActiveView->getVisualizationWidget()->interactor());
  Q_EMIT requestRenderAll();
}

void VXFSlice::setShowPlaneTool(bool show)
{
  m_ShowPlaneTool = show;
  updatePlaneTool();
  Q_EMIT showPlaneToolChanged(show);
}

void VXFSlice::updatePlaneTool()
{
  if (m_Plane == nullptr)
    return;
  if (m_ShowPlaneTool && isVisible())
    m_Plane->enable();
  else
    m_Plane->disable();
  Q_EMIT requestRenderAll();
}

void VXFSlice::setVisibility(bool visible)
{
  if (isVisible() && !visible)
    Q_EMIT requestClear();
  VXFilter::setVisibility(visible);
  updatePlaneTool();
  if (visible)
    Q_EMIT requestPolyDataUpdate(pathName(), m_Cutter->GetOutput());
}

void VXFSlice::readSettings()
{
  readValues(savedDefaults({ "show_slice_tool" }, { "filter_rep_type_to_add" },
                           { "clip_plane_normal", "clip_plane_origin" }));
}

void VXFSlice::writeSettings()
{
  if (!shouldSaveAsDefaultSettings())
    return;
  nlohmann::json values = nlohmann::json::object();
  writeValues(values);
  saveDefaults(values);
}

void VXFSlice::openHelpLink()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl));
}

void VXFSlice::initializeSettingsWidget()
{
  addFilterPageTitle();
  auto* widget = new VXFSliceFilterWidget(this);
  m_FilterWidget = widget;
  m_SettingsScrollArea->setWidget(widget);
}
