#include "quadview/VXGeometryTreeWidget.hpp"

#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipelineModel.hpp"

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QTreeWidgetItemIterator>
#include <QtWidgets/QVBoxLayout>

#include <vtkImageData.h>

namespace
{
// the row of a geometry keeps its index in m_Sources; bridges keep -1
constexpr int k_SourceRole = Qt::UserRole + 1;
} // namespace

VXGeometryTreeWidget::VXGeometryTreeWidget(QWidget* parent)
  : QWidget(parent)
  , m_Tree(new QTreeWidget(this))
{
  setObjectName("VXGeometryTreeWidget");
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_Tree);
  m_Tree->setObjectName("geometryTree");
  m_Tree->setColumnCount(1);
  m_Tree->setHeaderLabels({ tr("Image Geometry") });
  m_Tree->header()->setStretchLastSection(true);
  m_Tree->setSelectionMode(QAbstractItemView::SingleSelection);
  connect(m_Tree, &QTreeWidget::currentItemChanged, this,
          [this](QTreeWidgetItem* current, QTreeWidgetItem*) { onCurrentItemChanged(current); });
  connect(m_Tree, &QTreeWidget::itemActivated, this,
          [this](QTreeWidgetItem* item, int) { onItemActivated(item); });
}

VXGeometryTreeWidget::~VXGeometryTreeWidget()
{
  for (const auto& connection : m_ModelConnections)
    disconnect(connection);
}

void VXGeometryTreeWidget::setPipelineModel(VXPipelineModel* model)
{
  for (const auto& connection : m_ModelConnections)
    disconnect(connection);
  m_ModelConnections.clear();
  m_Model = model;
  if (model != nullptr)
  {
    // a source's output is set after its row appears, so refresh once the event settles
    auto later = [this]()
    { QMetaObject::invokeMethod(this, &VXGeometryTreeWidget::refresh, Qt::QueuedConnection); };
    m_ModelConnections << connect(model, &QAbstractItemModel::rowsInserted, this, later)
                       << connect(model, &QAbstractItemModel::rowsRemoved, this, later)
                       << connect(model, &QAbstractItemModel::modelReset, this, later)
                       << connect(model, &QAbstractItemModel::dataChanged, this, later);
  }
  refresh();
}

VXPipelineModel* VXGeometryTreeWidget::pipelineModel() const
{
  return m_Model;
}

bool VXGeometryTreeWidget::isImageGeometry(const VXDataSource* source)
{
  return source != nullptr && vtkImageData::SafeDownCast(source->getOutput()) != nullptr;
}

QString VXGeometryTreeWidget::geometryPath(const VXDataSource* source)
{
  if (source == nullptr)
    return {};
  if (const auto* bridge = qobject_cast<const VXBridgeObject*>(source->parent()))
    return bridge->name() + "/" + source->name();
  return source->name();
}

void VXGeometryTreeWidget::refresh()
{
  VXDataSource* current = selectedDataSource();
  const QSignalBlocker blocker(m_Tree);
  m_Tree->clear();
  m_Sources.clear();
  if (m_Model != nullptr)
  {
    for (VXBridgeObject* bridge : m_Model->getAllBridgeObjects())
    {
      QTreeWidgetItem* bridgeItem = nullptr;
      for (VXDataSource* source : m_Model->getChildDataSources(QList<VXBridgeObject*>{ bridge }))
      {
        if (!isImageGeometry(source))
          continue;
        if (bridgeItem == nullptr)
        {
          bridgeItem = new QTreeWidgetItem(m_Tree, QStringList{ bridge->name() });
          bridgeItem->setData(0, k_SourceRole, -1);
          bridgeItem->setFlags(Qt::ItemIsEnabled);
        }
        auto* item = new QTreeWidgetItem(bridgeItem, QStringList{ source->name() });
        item->setData(0, k_SourceRole, static_cast<int>(m_Sources.size()));
        item->setToolTip(0, geometryPath(source));
        m_Sources.append(source);
      }
    }
  }
  m_Tree->expandAll();
  if (current != nullptr)
    selectDataSource(current);
  if (selectedDataSource() != current)
    onCurrentItemChanged(m_Tree->currentItem());
}

QList<VXDataSource*> VXGeometryTreeWidget::dataSources() const
{
  QList<VXDataSource*> sources;
  for (const auto& source : m_Sources)
  {
    if (source != nullptr)
      sources.append(source);
  }
  return sources;
}

VXDataSource* VXGeometryTreeWidget::sourceOf(const QTreeWidgetItem* item) const
{
  if (item == nullptr)
    return nullptr;
  const int index = item->data(0, k_SourceRole).toInt();
  return index >= 0 && index < m_Sources.size() ? m_Sources.at(index).data() : nullptr;
}

VXDataSource* VXGeometryTreeWidget::selectedDataSource() const
{
  return sourceOf(m_Tree->currentItem());
}

bool VXGeometryTreeWidget::selectDataSource(VXDataSource* source)
{
  const int index = source != nullptr ? m_Sources.indexOf(source) : -1;
  if (index < 0)
    return false;
  for (QTreeWidgetItemIterator it(m_Tree); *it != nullptr; ++it)
  {
    if ((*it)->data(0, k_SourceRole).toInt() == index)
    {
      m_Tree->setCurrentItem(*it);
      return true;
    }
  }
  return false;
}

void VXGeometryTreeWidget::onCurrentItemChanged(QTreeWidgetItem* current)
{
  VXDataSource* source = sourceOf(current);
  Q_EMIT currentGeometryChanged(source, geometryPath(source));
}

void VXGeometryTreeWidget::onItemActivated(QTreeWidgetItem* item)
{
  if (VXDataSource* source = sourceOf(item))
    Q_EMIT geometryChosen(source, geometryPath(source));
}
