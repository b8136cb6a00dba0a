#include "visualization/VXVolumeRep.hpp"

#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/VXVolumeRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

#include <vtkAlgorithmOutput.h>
#include <vtkDataSet.h>

VXVolumeRep::VXVolumeRep(VXPipeline* pipeline, QObject* parent)
  : VXRepresentation(pipeline, "Volume View", parent)
{
}

VXVolumeRep::~VXVolumeRep() = default;

QIcon VXVolumeRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("VolumeView");
}

vtkAlgorithmOutput* VXVolumeRep::outputPort()
{
  if (m_ViewImplementations.isEmpty() || m_ViewImplementations.first() == nullptr)
    return nullptr;
  return m_ViewImplementations.first()->outputPort();
}

std::shared_ptr<VXRepresentationPimpl> VXVolumeRep::createImplementation(VXAbstractViewWidget* view)
{
  return std::make_shared<VXVolumeRepPimpl>(view, this);
}

bool VXVolumeRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXVolumeRepPimpl*>(implementation) != nullptr;
}

void VXVolumeRep::initializeImplementations(vtkAlgorithmOutput* inputPort)
{
  initializePendingImplementations(inputPort);
}

bool VXVolumeRep::addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                                  vtkAlgorithmOutput* inputPort, bool visible)
{
  return addImplementationInView(sourceView, view, inputPort, visible);
}

void VXVolumeRep::updateDataSetInfo()
{
  if (m_ViewImplementations.isEmpty() || m_DataSetInfoWidget == nullptr)
    return;
  vtkAlgorithmOutput* port = m_ViewImplementations.first()->outputPort();
  if (port == nullptr || port->GetProducer() == nullptr)
    return;
  m_DataSetInfoWidget->updateDatasetInfo(
    vtkDataSet::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex())));
}
