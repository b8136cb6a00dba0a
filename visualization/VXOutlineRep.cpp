#include "visualization/VXOutlineRep.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/VXOutlineRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

#include <vtkDataSet.h>
#include <vtkMapper.h>

VXOutlineRep::VXOutlineRep(VXPipeline* pipeline, QObject* parent)
  : VXOutlineRep(pipeline, "Outline View", parent)
{
}

VXOutlineRep::VXOutlineRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent)
  : VXRepresentation(pipeline, defaultName, parent)
{
}

VXOutlineRep::~VXOutlineRep() = default;

QIcon VXOutlineRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("Visualization");
}

vtkAlgorithmOutput* VXOutlineRep::outputPort()
{
  if (m_ViewImplementations.isEmpty() || m_ViewImplementations.first() == nullptr)
    return nullptr;
  return m_ViewImplementations.first()->outputPort();
}

std::shared_ptr<VXRepresentationPimpl> VXOutlineRep::createImplementation(
  VXAbstractViewWidget* view)
{
  return std::make_shared<VXOutlineRepPimpl>(view, this);
}

bool VXOutlineRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXOutlineRepPimpl*>(implementation) != nullptr;
}

void VXOutlineRep::initializeImplementations(vtkAlgorithmOutput* inputPort)
{
  for (const auto& implementation : std::as_const(m_ViewImplementations))
  {
    auto* outline = dynamic_cast<VXOutlineRepPimpl*>(implementation.get());
    if (outline != nullptr && !outline->isInitialized())
    {
      outline->initialize(inputPort != nullptr
                            ? inputPort
                            : (parentSource() ? parentSource()->outputPort() : nullptr));
      outline->setVisibility(outline->isVisible());
    }
  }
}

bool VXOutlineRep::addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                                   vtkAlgorithmOutput* inputPort, bool visible)
{
  if (view == nullptr)
    return false;
  std::shared_ptr<VXRepresentationPimpl> instance;
  if (VXRepresentationPimpl* existing = implementation(view))
  {
    if (!isOwnImplementation(existing))
      return false;
    instance = m_ViewImplementations.value(view);
    visible = existing->isVisible();
  }
  else
  {
    if (!m_ViewImplementations.isEmpty())
    {
      // a port is only accepted for the first instance; the others share its data
      if (inputPort != nullptr)
        return false;
      VXRepresentationPimpl* settingsSource = m_ViewImplementations.first().get();
      if (sourceView != nullptr && implementation(sourceView) != nullptr)
        settingsSource = implementation(sourceView);
      instance = createImplementation(view);
      instance->copyFrom(settingsSource);
    }
    else
    {
      instance = createImplementation(view);
    }
    m_ViewImplementations.insert(view, instance);
    connectViewSignals(view);
  }
  if (m_ViewImplementations.isEmpty())
  {
    vtkAlgorithmOutput* port =
      inputPort != nullptr ? inputPort : (parentSource() ? parentSource()->outputPort() : nullptr);
    instance->initialize(port);
    return true;
  }
  vtkAlgorithmOutput* port = nullptr;
  VXRepresentationPimpl* first = m_ViewImplementations.first().get();
  if (first != nullptr && first != instance.get() && first->inputPort() != nullptr)
    port = first->inputPort();
  if (port == nullptr)
    port = inputPort;
  if (port == nullptr)
  {
    VXCoreObject* parentItem = qobject_cast<VXCoreObject*>(parent());
    if (parentItem == nullptr)
      return false;
    port = parentItem->outputPort();
  }
  if (auto* outline = dynamic_cast<VXOutlineRepPimpl*>(instance.get());
      outline != nullptr && !outline->isInitialized())
    outline->initialize(port);
  instance->setVisibility(visible);
  m_ViewWidgets[view] = visible;
  return true;
}

void VXOutlineRep::updateDataSetInfo()
{
  if (m_ViewImplementations.isEmpty() || m_DataSetInfoWidget == nullptr)
    return;
  auto* first = dynamic_cast<VXOutlineRepPimpl*>(m_ViewImplementations.first().get());
  if (first != nullptr && first->mapper() != nullptr)
    m_DataSetInfoWidget->updateDatasetInfo(vtkDataSet::SafeDownCast(first->mapper()->GetInput()));
}
