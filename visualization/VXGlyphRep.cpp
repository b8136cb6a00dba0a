#include "visualization/VXGlyphRep.hpp"

#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"
#include "visualization/VXGlyphRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

#include <vtkAlgorithmOutput.h>
#include <vtkDataSet.h>

VXGlyphRep::VXGlyphRep(VXPipeline* pipeline, QObject* parent)
  : VXRepresentation(pipeline, "Glyph View", parent)
{
}

VXGlyphRep::~VXGlyphRep() = default;

QIcon VXGlyphRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("GlyphView");
}

vtkAlgorithmOutput* VXGlyphRep::outputPort()
{
  if (m_ViewImplementations.isEmpty() || m_ViewImplementations.first() == nullptr)
    return nullptr;
  return m_ViewImplementations.first()->outputPort();
}

std::shared_ptr<VXRepresentationPimpl> VXGlyphRep::createImplementation(VXAbstractViewWidget* view)
{
  return std::make_shared<VXGlyphRepPimpl>(view, this);
}

bool VXGlyphRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXGlyphRepPimpl*>(implementation) != nullptr;
}

void VXGlyphRep::initializeImplementations(vtkAlgorithmOutput* inputPort)
{
  initializePendingImplementations(inputPort);
}

bool VXGlyphRep::addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                                 vtkAlgorithmOutput* inputPort, bool visible)
{
  return addImplementationInView(sourceView, view, inputPort, visible);
}

void VXGlyphRep::updateDataSetInfo()
{
  if (m_ViewImplementations.isEmpty() || m_DataSetInfoWidget == nullptr)
    return;
  auto* first = dynamic_cast<VXGlyphRepPimpl*>(m_ViewImplementations.first().get());
  if (first != nullptr && first->inputDataSet() != nullptr)
    m_DataSetInfoWidget->updateDatasetInfo(first->inputDataSet());
}
