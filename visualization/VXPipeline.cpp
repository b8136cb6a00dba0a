#include "visualization/VXPipeline.hpp"

#include "visualization/FileToVXBridge.hpp"
#include "visualization/KXToVXBridge.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXFilter.hpp"
#include "visualization/VXGlobalSource.hpp"
#include "visualization/VXPipelineModel.hpp"

#include <KX/IPipelineController.hpp>

#include <vtkCellType.h>
#include <vtkDataSet.h>
#include <vtkCellArray.h>
#include <vtkPolyData.h>
#include <vtkType.h>
#include <vtkUnstructuredGrid.h>

namespace
{
VXRepresentation::Type s_DefaultRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultImageGeomRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultRectGridRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultVertexRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultEdgeRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultTriangleRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultQuadRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultTetRepType = VXRepresentation::Outline;
VXRepresentation::Type s_DefaultHexRepType = VXRepresentation::Outline;
QString s_DefaultPresetName = "Cool to Warm";
} // namespace

VXPipeline::StateLoadScope::StateLoadScope(VXPipeline& pipeline)
  : m_Pipeline(pipeline)
  , m_Previous(pipeline.m_LoadingState)
{
  pipeline.m_LoadingState = true;
}

VXPipeline::StateLoadScope::~StateLoadScope()
{
  m_Pipeline.m_LoadingState = m_Previous;
}

VXAbstractViewWidget* VXPipeline::activeViewWidget() const
{
  return m_ActiveViewWidget;
}

VXPipeline::VXPipeline(QObject* parent)
  : QObject(parent)
{
}

VXPipeline::~VXPipeline() = default;

void VXPipeline::addBridge(VXBridgeObject* bridge)
{
  bridge->setParent(this);
  Q_EMIT pipelineBridgeAdded(bridge);
  if (auto* fileBridge = qobject_cast<FileToVXBridge*>(bridge))
    connect(fileBridge, &FileToVXBridge::sendFileMovedMessage, this,
            &VXPipeline::sendOutputMessage);
  connectVXBridgeObject(bridge);
}

bool VXPipeline::importFile(const QString& filePath)
{
  if (filePath.isEmpty())
    return false;
  auto* bridge = new FileToVXBridge(this);
  addBridge(bridge);
  // the data sources arrive through the connected signals, into a tree that has their bridge
  bridge->import(filePath);
  bridge->setNameSuffix(VXPipelineModel::GetNameSuffixCounter(m_Bridges, bridge->baseName()));
  m_Bridges.append(bridge);
  return true;
}

bool VXPipeline::importPipelineOutput(KX::IPipelineController* controller,
                                      std::shared_ptr<kx::core::DataStructure>& structure)
{
  if (structure == nullptr)
    return false;
  auto* bridge = new KXToVXBridge(this);
  bridge->setParent(this);
  Q_EMIT pipelineBridgeAdded(bridge);
  connectVXBridgeObject(bridge);
  bridge->importPipelineOutput(controller, structure);
  bridge->setNameSuffix(VXPipelineModel::GetNameSuffixCounter(m_Bridges, bridge->baseName()));
  m_Bridges.append(bridge);
  return true;
}

bool VXPipeline::reloadPipelineOutput(KX::IPipelineController* controller,
                                      std::shared_ptr<kx::core::DataStructure>& structure)
{
  if (structure == nullptr)
    return false;
  if (controller != nullptr)
  {
    const QString uuid = controller->getPipelineUuid();
    for (VXBridgeObject* bridge : m_Bridges)
    {
      auto* hostBridge = qobject_cast<KXToVXBridge*>(bridge);
      // a bridge without a controller (read from a state file) never matches a run
      if (hostBridge != nullptr && hostBridge->kxPipeline() != nullptr &&
          hostBridge->getPipelineUuid() == uuid)
      {
        hostBridge->reloadPipelineOutput(controller, structure);
        return true;
      }
    }
  }
  return importPipelineOutput(controller, structure);
}

bool VXPipeline::addVXBridgeObject(VXBridgeObject* bridge)
{
  if (bridge == nullptr)
    return false;
  addBridge(bridge);
  bridge->setNameSuffix(VXPipelineModel::GetNameSuffixCounter(m_Bridges, bridge->baseName()));
  m_Bridges.append(bridge);
  return true;
}

void VXPipeline::connectVXBridgeObject(const VXBridgeObject* bridge)
{
  // the model hears of a new data source before it gets its data view
  connect(bridge, &VXBridgeObject::dataSourceAdded, this, &VXPipeline::dataSourceAdded);
  connect(bridge, &VXBridgeObject::dataSourceAdded, this, &VXPipeline::onDataSourceAdded);
  connect(bridge, &VXBridgeObject::removeDataSource, this, &VXPipeline::removeDataSource);
  connect(bridge, &VXBridgeObject::sendOutputMessage, this, &VXPipeline::sendOutputMessage);
  connect(bridge, &VXBridgeObject::sendPopupMessage, this, &VXPipeline::sendPopupMessage);
  connect(bridge, &VXBridgeObject::pipelineOutputReloaded, this,
          &VXPipeline::pipelineOutputReloaded);
}

VXRepresentation::Type VXPipeline::DefaultRepresentationType(vtkDataSet* dataSet)
{
  if (dataSet == nullptr)
    return VXRepresentation::Outline;
  switch (dataSet->GetDataObjectType())
  {
    case VTK_IMAGE_DATA:
      return s_DefaultImageGeomRepType;
    case VTK_RECTILINEAR_GRID:
      return s_DefaultRectGridRepType;
    case VTK_POLY_DATA:
    {
      auto* poly = vtkPolyData::SafeDownCast(dataSet);
      if (poly->GetNumberOfVerts() >= 1)
        return s_DefaultVertexRepType;
      if (poly->GetNumberOfLines() > 0)
        return s_DefaultEdgeRepType;
      if (poly->GetNumberOfPolys() >= 1)
      {
        // the first cell is the first polygon; its size gives its type without the cell map
        // that GetCellType builds over all cells (a large copy of a mesh's connectivity)
        const vtkIdType size = poly->GetPolys()->GetCellSize(0);
        switch (size == 3 ? VTK_TRIANGLE : size == 4 ? VTK_QUAD : VTK_POLYGON)
        {
          case VTK_TRIANGLE:
            return s_DefaultTriangleRepType;
          case VTK_QUAD:
            return s_DefaultQuadRepType;
          case VTK_TETRA:
            return s_DefaultTetRepType;
          case VTK_HEXAHEDRON:
            return s_DefaultHexRepType;
          default:
            break;
        }
      }
      return VXRepresentation::Outline;
    }
    case VTK_UNSTRUCTURED_GRID:
    {
      if (dataSet->GetNumberOfCells() > 0)
      {
        const int cellType = dataSet->GetCellType(0);
        if (cellType == VTK_TETRA)
          return s_DefaultTetRepType;
        if (cellType == VTK_HEXAHEDRON)
          return s_DefaultHexRepType;
      }
      return VXRepresentation::Outline;
    }
    default:
      return VXRepresentation::Outline;
  }
}

void VXPipeline::onDataSourceAdded(VXDataSource* source)
{
  if (source == nullptr)
    return;
  connect(this, &VXPipeline::pipelineOutputReloaded, source,
          &VXDataSource::receivePipelineOutputReloaded);
  // a data-only pipeline keeps data sources bare: no pipeline, no view, no data view
  if (m_DataOnlyMode)
    return;
  source->setPipeline(this);
  if (source->viewWidgets().isEmpty())
    source->addViewWidget(m_ActiveViewWidget);
  if (!source->children().isEmpty())
    return;
  if (m_ActiveViewWidget == nullptr || m_LoadingState)
    return;
  addRepresentation(source, DefaultRepresentationType(source->getOutput()));
}

bool VXPipeline::addRepresentation(VXCoreObject* parent, VXRepresentation::Type type)
{
  if (parent == nullptr)
  {
    Q_EMIT sendOutputMessage(
      "Cannot add representation view because the selected parent item does not exist!");
    return false;
  }
  if (m_ActiveViewWidget == nullptr)
  {
    Q_EMIT sendOutputMessage(
      "Cannot add representation view because no active render window is selected!");
    return false;
  }
  if (type == VXRepresentation::None)
    return false;
  if (type > VXRepresentation::Glyph)
    return true;
  VXRepresentation* representation = VXRepresentation::Create(type, this);
  if (representation == nullptr)
  {
    Q_EMIT sendOutputMessage(
      QString("Cannot add representation view: the %1 view is not available in this build.")
        .arg(VXRepresentation::k_RepresentationTypeToString.value(type)));
    return false;
  }
  return addRepresentation(parent, representation);
}

bool VXPipeline::addRepresentation(VXCoreObject* parent, VXRepresentation* representation)
{
  if (parent == nullptr || representation == nullptr || m_ActiveViewWidget == nullptr)
    return false;
  representation->setParentSource(parent);
  representation->setPipeline(this);
  if (!representation->addViewInstance(nullptr, m_ActiveViewWidget, parent->outputPort(), true))
    representation->initializeImplementations(parent->outputPort());
  connect(this, &VXPipeline::pipelineOutputReloaded, representation,
          &VXRepresentation::receivePipelineOutputReloaded);
  Q_EMIT representationAdded(representation);
  return true;
}

bool VXPipeline::addLoadedRepresentation(VXCoreObject* parent, VXRepresentation* representation)
{
  if (parent == nullptr || representation == nullptr)
    return false;
  representation->setParentSource(parent);
  representation->setPipeline(this);
  representation->initializeViewWidgetSplits(nullptr, false);
  representation->initializeImplementations(parent->outputPort());
  connect(this, &VXPipeline::pipelineOutputReloaded, representation,
          &VXRepresentation::receivePipelineOutputReloaded);
  Q_EMIT representationAdded(representation);
  return true;
}

bool VXPipeline::addFilter(VXCoreObject* parent, VXFilter* filter)
{
  if (parent == nullptr || filter == nullptr || m_ActiveViewWidget == nullptr)
    return false;
  filter->setParent(parent);
  filter->setPipeline(this);
  if (filter->inputPort() == nullptr)
    filter->setInputPort(parent->outputPort());
  // a filter from a state file comes with its views
  if (filter->viewWidgets().isEmpty())
    filter->addViewWidget(m_ActiveViewWidget);
  filter->setupFilter();
  connect(filter, &VXCoreObject::requestRenderAll, this, &VXPipeline::requestRenderAll);
  connect(this, &VXPipeline::pipelineOutputReloaded, filter,
          &VXFilter::receivePipelineOutputReloaded);
  Q_EMIT filterAdded(filter);
  return true;
}

bool VXPipeline::addGlobalSource(VXGlobalSource* source)
{
  if (source == nullptr)
    return false;
  const QList<VXBridgeObject*> held(m_GlobalSources.cbegin(), m_GlobalSources.cend());
  const int suffix = VXPipelineModel::GetNameSuffixCounter(held, source->baseName());
  m_GlobalSources.append(source);
  source->setPipeline(this);
  source->addViewWidget(m_ActiveViewWidget);
  connect(source, &VXGlobalSource::requestRenderAll, this, &VXPipeline::requestRenderAll);
  source->setNameSuffix(suffix);
  return true;
}

void VXPipeline::onDataSourceRemoved(VXDataSource* source)
{
  if (source == nullptr)
    return;
  if (auto* bridge = qobject_cast<VXBridgeObject*>(source->parent()))
    bridge->onDataSourceRemoved(source);
  Q_EMIT dataSourceRemoved(source);
}

void VXPipeline::pipelineBridgeRemoved(VXBridgeObject* bridge)
{
  m_Bridges.removeOne(bridge);
}

void VXPipeline::globalSourceRemoved(VXGlobalSource* source)
{
  m_GlobalSources.removeOne(source);
}

void VXPipeline::setActiveViewWidget(VXAbstractViewWidget* view)
{
  // listeners still see the old view through activeViewWidget(): they must use the arguments
  Q_EMIT activeViewChanged(m_ActiveViewWidget, view);
  m_ActiveViewWidget = view;
}

#define KXVTK_DEFAULT_ACCESSORS(Name, Field)                                                       \
  VXRepresentation::Type VXPipeline::get##Name()                                                   \
  {                                                                                                \
    return Field;                                                                                  \
  }                                                                                                \
  void VXPipeline::set##Name(VXRepresentation::Type type)                                          \
  {                                                                                                \
    Field = type;                                                                                  \
  }

KXVTK_DEFAULT_ACCESSORS(DefaultRepType, s_DefaultRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultImageGeomRepType, s_DefaultImageGeomRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultRectGridRepType, s_DefaultRectGridRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultVertexRepType, s_DefaultVertexRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultEdgeRepType, s_DefaultEdgeRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultTriangleRepType, s_DefaultTriangleRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultQuadRepType, s_DefaultQuadRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultTetRepType, s_DefaultTetRepType)
KXVTK_DEFAULT_ACCESSORS(DefaultHexRepType, s_DefaultHexRepType)
#undef KXVTK_DEFAULT_ACCESSORS

QString VXPipeline::getDefaultPreset()
{
  return s_DefaultPresetName;
}

void VXPipeline::setDefaultPreset(const QString& presetName)
{
  s_DefaultPresetName = presetName;
}
