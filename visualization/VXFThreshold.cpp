#include "visualization/VXFThreshold.hpp"

#include "visualization/QtWidgets/VXFThresholdFilterWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXUserPrompt.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QScrollArea>

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkDataObject.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>
#include <vtkThreshold.h>
#include <vtkUnstructuredGrid.h>

#include <iostream>

namespace
{
/** The host filter takes one component arrays only: the record as a range, by display name. */
KX::ArrayThresholdRange RangeOf(const VXFThreshold::ActiveArrayInfo& info)
{
  return { info.displayName.toStdString(), info.userMin, info.userMax };
}

const VXFThreshold::ActiveArrayInfo* ActiveInfo(const VXFThreshold* filter)
{
  const auto& infos = filter->activeArrayInfos();
  return filter->activeArrayInfoIndex() < infos.size() ? &infos[filter->activeArrayInfoIndex()]
                                                       : nullptr;
}
} // namespace

VXFThreshold::VXFThreshold(QObject* parent)
  : VXFilter(parent)
  , m_Threshold(vtkSmartPointer<vtkThreshold>::New())
{
  m_DefaultName = QStringLiteral("Threshold Filter");
  m_BaseName = m_DefaultName;
}

VXFThreshold::~VXFThreshold() = default;

vtkAlgorithmOutput* VXFThreshold::outputPort()
{
  return m_Threshold->GetOutputPort();
}

vtkThreshold* VXFThreshold::thresholdFilter() const
{
  return m_Threshold;
}

void VXFThreshold::setInputPort(vtkAlgorithmOutput* port)
{
  VXFilter::setInputPort(port);
  m_Threshold->SetInputConnection(port);
  rebuildActiveArrayInfos();
}

void VXFThreshold::rebuildActiveArrayInfos()
{
  m_ActiveArrayInfos.clear();
  vtkDataSet* input = inputDataSet();
  if (input != nullptr)
  {
    for (vtkFieldData* data : { static_cast<vtkFieldData*>(input->GetPointData()),
                                static_cast<vtkFieldData*>(input->GetCellData()) })
    {
      for (int a = 0; a < data->GetNumberOfArrays(); ++a)
      {
        vtkDataArray* array = data->GetArray(a);
        if (array == nullptr || array->GetName() == nullptr)
          continue;
        const int components = array->GetNumberOfComponents();
        for (int c = 0; c < components; ++c)
        {
          ActiveArrayInfo info;
          info.arrayName = QString::fromLocal8Bit(array->GetName());
          info.displayName =
            components > 1 ? QString("%1 (Comp %2)").arg(info.arrayName).arg(c) : info.arrayName;
          info.components = components;
          info.component = c;
          double range[2] = { 0.0, 0.0 };
          array->GetFiniteRange(range, c);
          info.dataMin = info.userMin = range[0];
          info.dataMax = info.userMax = range[1];
          m_ActiveArrayInfos.push_back(info);
        }
      }
    }
  }
  if (m_ActiveArrayInfoIndex >= m_ActiveArrayInfos.size())
    m_ActiveArrayInfoIndex = 0;
  Q_EMIT activeArrayInfosChanged();
}

void VXFThreshold::setActiveArrayInfoIndex(size_t index)
{
  if (index >= m_ActiveArrayInfos.size())
  {
    std::cerr << "VXFThreshold::setActiveArrayInfoIndex(): Index Out of bounds" << std::endl;
    index = 0;
  }
  m_ActiveArrayInfoIndex = index;
}

void VXFThreshold::setUserRange(double minimum, double maximum)
{
  if (m_ActiveArrayInfoIndex >= m_ActiveArrayInfos.size())
    return;
  m_ActiveArrayInfos[m_ActiveArrayInfoIndex].userMin = minimum;
  m_ActiveArrayInfos[m_ActiveArrayInfoIndex].userMax = maximum;
}

void VXFThreshold::applyFilter()
{
  if (!configureThreshold())
    return;
  m_Threshold->Update();
  addRepresentationAfterApply();
  updateDownstreamGridAxesBounds();
  Q_EMIT requestRenderAll();
}

bool VXFThreshold::configureThreshold()
{
  if (m_ActiveArrayInfoIndex >= m_ActiveArrayInfos.size())
    return false;
  const ActiveArrayInfo& info = m_ActiveArrayInfos[m_ActiveArrayInfoIndex];
  m_Threshold->SetLowerThreshold(info.userMin);
  m_Threshold->SetUpperThreshold(info.userMax);
  m_Threshold->SetThresholdFunction(vtkThreshold::THRESHOLD_BETWEEN);
  m_Threshold->SetComponentModeToUseSelected();
  m_Threshold->SetSelectedComponent(info.component);
  m_Threshold->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS_THEN_CELLS,
                                      info.arrayName.toLocal8Bit().constData());
  return true;
}

void VXFThreshold::receivePipelineOutputReloaded()
{
  const std::vector<ActiveArrayInfo> previous = m_ActiveArrayInfos;
  rebuildActiveArrayInfos();
  // a user range survives a reload only where the record is still the same component
  for (ActiveArrayInfo& info : m_ActiveArrayInfos)
  {
    for (const ActiveArrayInfo& old : previous)
    {
      if (old.arrayName == info.arrayName && old.displayName == info.displayName &&
          old.components == info.components && old.component == info.component)
      {
        info.userMin = old.userMin;
        info.userMax = old.userMax;
      }
    }
  }
  Q_EMIT activeArrayInfosChanged();
  applyFilter();
}

void VXFThreshold::writeValues(nlohmann::json& output) const
{
  output["threshold_active_array_index"] = static_cast<int64_t>(m_ActiveArrayInfoIndex);
  nlohmann::json infos = nlohmann::json::object();
  for (const ActiveArrayInfo& info : m_ActiveArrayInfos)
    infos[info.displayName.toStdString()] = { { "threshold_info_user_range_0", info.userMin },
                                              { "threshold_info_user_range_1", info.userMax } };
  output["threshold_data_array_info"] = infos;
}

void VXFThreshold::readValues(const nlohmann::json& input)
{
  if (auto it = input.find("threshold_data_array_info"); it != input.end() && it->is_object())
  {
    for (ActiveArrayInfo& info : m_ActiveArrayInfos)
    {
      const auto entry = it->find(info.displayName.toStdString());
      if (entry == it->end() || !entry->is_object())
        continue;
      const auto low = entry->find("threshold_info_user_range_0");
      const auto high = entry->find("threshold_info_user_range_1");
      if (low != entry->end() && high != entry->end() && low->is_number() && high->is_number())
      {
        info.userMin = low->get<double>();
        info.userMax = high->get<double>();
      }
    }
  }
  if (auto it = input.find("threshold_active_array_index");
      it != input.end() && it->is_number_integer())
  {
    const int64_t index = it->get<int64_t>();
    setActiveArrayInfoIndex(index < 0 ? m_ActiveArrayInfos.size() : static_cast<size_t>(index));
  }
  // the data views under a loaded threshold show what it kept when it was saved
  configureThreshold();
  Q_EMIT activeArrayInfosChanged();
}

void VXFThreshold::write(nlohmann::json& output,
                         const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXFilter::write(output, viewIndices);
  writeValues(output);
}

void VXFThreshold::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views)
{
  VXFilter::read(input, views);
  if (input.is_object())
    readValues(input);
}

void VXFThreshold::setupFilter()
{
  if (m_ActiveArrayInfos.empty())
    rebuildActiveArrayInfos();
  readSettings();
}

void VXFThreshold::setVisibility(bool visible)
{
  if (isVisible() && !visible)
    Q_EMIT requestClear();
  VXFilter::setVisibility(visible);
  if (visible)
    Q_EMIT requestUnstructuredGridUpdate(pathName(), m_Threshold->GetOutput());
}

void VXFThreshold::readSettings()
{
  const nlohmann::json values = savedDefaults({}, { "filter_rep_type_to_add" }, {});
  if (auto it = values.find("filter_rep_type_to_add"); it != values.end())
  {
    const auto type = static_cast<VXRepresentation::Type>(KXVtkModule::utils::StateInt(*it));
    if (VXRepresentation::k_RepresentationTypeToString.contains(type))
      m_RepTypeToAdd = type;
  }
}

void VXFThreshold::writeSettings()
{
  if (!shouldSaveAsDefaultSettings())
    return;
  saveDefaults({ { "filter_rep_type_to_add", static_cast<int>(m_RepTypeToAdd) } });
}

void VXFThreshold::openHelpLink()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl));
}

void VXFThreshold::initializeSettingsWidget()
{
  addFilterPageTitle();
  auto* widget = new VXFThresholdFilterWidget(this);
  m_FilterWidget = widget;
  m_SettingsScrollArea->setWidget(widget);
}

void VXFThreshold::createMultiThresholdObjectsFilter()
{
  if (m_Pipeline == nullptr)
    return;
  VXDataSource* source = nullptr;
  for (QObject* ancestor = parent(); ancestor != nullptr && source == nullptr;
       ancestor = ancestor->parent())
    source = qobject_cast<VXDataSource*>(ancestor);
  const kx::core::DataPath geometryPath =
    source != nullptr ? source->importedDataPath() : kx::core::DataPath();
  if (geometryPath.empty())
  {
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Warning;
    question.title = k_NoGeometryTitle;
    question.text = k_NoGeometryText;
    VXUserPrompt::ask(nullptr, question);
    return;
  }

  std::vector<KX::ArrayThresholdRange> ranges;
  bool multiComponent = false;
  for (QObject* ancestor = parent(); ancestor != nullptr; ancestor = ancestor->parent())
  {
    if (auto* threshold = qobject_cast<VXFThreshold*>(ancestor))
    {
      if (const ActiveArrayInfo* info = ActiveInfo(threshold))
      {
        multiComponent = multiComponent || info->components > 1;
        ranges.push_back(RangeOf(*info));
      }
    }
  }
  const ActiveArrayInfo* own = ActiveInfo(this);
  if (own != nullptr && own->components < 2)
    ranges.push_back(RangeOf(*own));
  for (VXFThreshold* child : findChildren<VXFThreshold*>())
  {
    if (const ActiveArrayInfo* info = ActiveInfo(child))
    {
      multiComponent = multiComponent || info->components > 1;
      ranges.push_back(RangeOf(*info));
    }
  }

  bool allFilters = false;
  if (ranges.size() > 1)
  {
    VXUserPrompt::Choice choice;
    choice.icon = QMessageBox::Warning;
    choice.title = k_ChainTitle;
    choice.text = k_ChainText;
    choice.buttons = { QStringLiteral("Just This Filter"), QStringLiteral("All Filters"),
                       QStringLiteral("Cancel") };
    choice.cancelButton = 2;
    const int answer = VXUserPrompt::choose(nullptr, choice).button;
    if (answer != 0 && answer != 1)
      return;
    allFilters = answer == 1;
    if (!allFilters)
    {
      ranges.clear();
      if (own != nullptr)
        ranges.push_back(RangeOf(*own));
    }
  }
  // the host filter reads one component arrays: a record of several components can't go
  const bool ownMultiComponent = own != nullptr && own->components > 1;
  if ((allFilters && multiComponent) || ownMultiComponent)
  {
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Warning;
    question.title = k_NoGeometryTitle;
    question.text = k_MultiComponentText;
    question.buttons = QMessageBox::Ok;
    VXUserPrompt::ask(nullptr, question);
    Q_EMIT m_Pipeline->sendOutputMessage(k_MultiComponentText);
    return;
  }
  Q_EMIT m_Pipeline->createMultiThresholdObjectsFilter(geometryPath, ranges);
}
