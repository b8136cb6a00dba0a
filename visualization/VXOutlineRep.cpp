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
  initializePendingImplementations(inputPort);
}

bool VXOutlineRep::addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                                   vtkAlgorithmOutput* inputPort, bool visible)
{
  return addImplementationInView(sourceView, view, inputPort, visible);
}

void VXOutlineRep::updateDataSetInfo()
{
  if (m_ViewImplementations.isEmpty() || m_DataSetInfoWidget == nullptr)
    return;
  auto* first = dynamic_cast<VXOutlineRepPimpl*>(m_ViewImplementations.first().get());
  if (first != nullptr && first->mapper() != nullptr)
    m_DataSetInfoWidget->updateDatasetInfo(vtkDataSet::SafeDownCast(first->mapper()->GetInput()));
}
