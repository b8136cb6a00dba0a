#include "visualization/VXImageSliceRep.hpp"

#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/VXImageSliceRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

#include <vtkAlgorithmOutput.h>
#include <vtkDataSet.h>

VXImageSliceRep::VXImageSliceRep(VXPipeline* pipeline, QObject* parent)
  : VXRepresentation(pipeline, "2D Image/Slice View", parent)
{
}

VXImageSliceRep::~VXImageSliceRep() = default;

QIcon VXImageSliceRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("SliceView");
}

vtkAlgorithmOutput* VXImageSliceRep::outputPort()
{
  if (m_ViewImplementations.isEmpty() || m_ViewImplementations.first() == nullptr)
    return nullptr;
  return m_ViewImplementations.first()->outputPort();
}

std::shared_ptr<VXRepresentationPimpl> VXImageSliceRep::createImplementation(
  VXAbstractViewWidget* view)
{
  return std::make_shared<VXImageSliceRepPimpl>(view, this);
}

bool VXImageSliceRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXImageSliceRepPimpl*>(implementation) != nullptr;
}

void VXImageSliceRep::initializeImplementations(vtkAlgorithmOutput* inputPort)
{
  initializePendingImplementations(inputPort);
}

bool VXImageSliceRep::addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                                      vtkAlgorithmOutput* inputPort, bool visible)
{
  return addImplementationInView(sourceView, view, inputPort, visible);
}

void VXImageSliceRep::updateDataSetInfo()
{
  if (m_ViewImplementations.isEmpty() || m_DataSetInfoWidget == nullptr)
    return;
  vtkAlgorithmOutput* port = m_ViewImplementations.first()->outputPort();
  if (port == nullptr || port->GetProducer() == nullptr)
    return;
  m_DataSetInfoWidget->updateDatasetInfo(
    vtkDataSet::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex())));
}
