#include "visualization/VXPipelineModel.hpp"

#include "visualization/FileToVXBridge.hpp"
#include "visualization/KXToVXBridge.hpp"
#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXCoreObject.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXFilter.hpp"
#include "visualization/VXGlobalSource.hpp"
#include "visualization/VXImageSliceRepPimpl.hpp"
#include "visualization/VXPipeline.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtCore/QPersistentModelIndex>
#include <QtGui/QColor>
#include <QtGui/QIcon>

#include <algorithm>
#include <any>
#include <functional>
#include <type_traits>
#include <utility>

namespace
{
constexpr std::int32_t k_BridgeKind = 0;
constexpr std::int32_t k_DataSourceKind = 1;
constexpr std::int32_t k_FilterKind = 2;
constexpr std::int32_t k_RepresentationKind = 3;
constexpr std::int32_t k_GlobalSourceKind = 4;

constexpr int k_CheckStateRole = Qt::CheckStateRole;
constexpr int k_NameColumn = 1;

template<typename Item>
int smallestFreeSuffix(const QList<Item*>& items, const QString& baseName)
{
  QList<int> taken;
  for (const Item* item : items)
  {
    if (item != nullptr && item->baseName() == baseName)
      taken.append(item->getNameSuffixCounter());
  }
  if (taken.isEmpty())
    return 0;
  std::sort(taken.begin(), taken.end());
  int candidate = 1;
  for (int suffix : taken)
  {
    if (suffix == candidate)
      candidate++;
    else if (suffix > candidate)
      break;
  }
  return candidate;
}

/** A check state from a view (Qt::CheckState) or a button (bool). */
bool truthOf(const QVariant& value)
{
  if (value.typeId() == QMetaType::Bool)
    return value.toBool();
  return value.toInt() != 0;
}

QString toolTipText(const QString& name, const QString& type, const QString& hint)
{
  QString text = QString("Name: %1\nType: %2").arg(name, type);
  if (!hint.isEmpty())
    text += "\n" + hint;
  return text;
}
} // namespace

/**
 * One row: the kind says which pointer type the value holds, and every access
 * reads the kind first and casts to exactly that type.
 */
class VXPipelineModel::TreeItem
{
public:
  TreeItem(TreeItem* parentItem, std::int32_t itemKind, std::any itemValue)
    : parent(parentItem)
    , kind(itemKind)
    , value(std::move(itemValue))
  {
  }
  ~TreeItem() { qDeleteAll(children); }
  TreeItem(const TreeItem&) = delete;
  TreeItem& operator=(const TreeItem&) = delete;

  VXBridgeObject* bridge() const
  {
    return kind == k_BridgeKind ? std::any_cast<VXBridgeObject*>(value) : nullptr;
  }
  VXDataSource* dataSource() const
  {
    return kind == k_DataSourceKind ? std::any_cast<VXDataSource*>(value) : nullptr;
  }
  VXFilter* filter() const
  {
    return kind == k_FilterKind ? std::any_cast<VXFilter*>(value) : nullptr;
  }
  VXRepresentation* representation() const
  {
    return kind == k_RepresentationKind ? std::any_cast<VXRepresentation*>(value) : nullptr;
  }
  VXGlobalSource* globalSource() const
  {
    return kind == k_GlobalSourceKind ? std::any_cast<VXGlobalSource*>(value) : nullptr;
  }

  VXCoreObject* coreObject() const
  {
    switch (kind)
    {
      case k_DataSourceKind:
        return dataSource();
      case k_FilterKind:
        return filter();
      case k_RepresentationKind:
        return representation();
      default:
        return nullptr;
    }
  }

  /** A top-level row's object: a bridge or a global source. */
  VXBridgeObject* topLevelObject() const
  {
    if (kind == k_GlobalSourceKind)
      return globalSource();
    return bridge();
  }

  /** Keeps the kind but lets the row hold no object any more. */
  void clearValue()
  {
    switch (kind)
    {
      case k_BridgeKind:
        value = static_cast<VXBridgeObject*>(nullptr);
        break;
      case k_DataSourceKind:
        value = static_cast<VXDataSource*>(nullptr);
        break;
      case k_FilterKind:
        value = static_cast<VXFilter*>(nullptr);
        break;
      case k_RepresentationKind:
        value = static_cast<VXRepresentation*>(nullptr);
        break;
      case k_GlobalSourceKind:
        value = static_cast<VXGlobalSource*>(nullptr);
        break;
      default:
        break;
    }
  }

  /** The address of the item's object; a pointer conversion only, so it is safe on a dying object.
   */
  QObject* object() const
  {
    if (kind == k_BridgeKind || kind == k_GlobalSourceKind)
      return topLevelObject();
    return coreObject();
  }

  TreeItem* parent = nullptr;
  std::int32_t kind = 0;
  std::any value;
  QList<TreeItem*> children;
};

VXPipelineModel::VXPipelineModel(VXPipeline* pipeline, QObject* parent)
  : QAbstractItemModel(parent)
  , m_Pipeline(pipeline)
{
  if (pipeline == nullptr)
    return;
  connect(pipeline, &VXPipeline::pipelineBridgeAdded, this, &VXPipelineModel::pipelineBridgeAdded);
  connect(pipeline, &VXPipeline::dataSourceAdded, this, &VXPipelineModel::dataSourceAdded);
  connect(pipeline, &VXPipeline::filterAdded, this, &VXPipelineModel::filterAdded);
  connect(pipeline, &VXPipeline::representationAdded, this, &VXPipelineModel::representationAdded);
  connect(pipeline, &VXPipeline::removeModule, this, &VXPipelineModel::removeLeafItem);
  connect(pipeline, &VXPipeline::removeDataSource, this, &VXPipelineModel::removeDataSource);
  connect(pipeline, &VXPipeline::representationViewInstanceAdded, this,
          &VXPipelineModel::representationViewInstanceAdded);
  // the module hears of linked data views through its pipeline
  connect(this, &VXPipelineModel::linkingDataViews, pipeline, &VXPipeline::linkingDataViews);
  // a model that outlives its pipeline must not call into it while the pipeline's children go
  connect(pipeline, &QObject::destroyed, this, [this]() { m_Pipeline = nullptr; });
}

VXPipelineModel::~VXPipelineModel()
{
  qDeleteAll(m_Items);
}

// ---------------------------------------------------------------------------
// Structure

VXPipelineModel::TreeItem* VXPipelineModel::itemFromIndex(const QModelIndex& index) const
{
  if (!index.isValid() || index.model() != this)
    return nullptr;
  return static_cast<TreeItem*>(index.internalPointer());
}

const QList<VXPipelineModel::TreeItem*>& VXPipelineModel::siblingsOf(const TreeItem* item) const
{
  return item->parent != nullptr ? item->parent->children : m_Items;
}

QModelIndex VXPipelineModel::indexOfItem(const TreeItem* item, int column) const
{
  if (item == nullptr)
    return {};
  const int row = siblingsOf(item).indexOf(item);
  if (row < 0)
    return {};
  return createIndex(row, column, const_cast<TreeItem*>(item));
}

QModelIndex VXPipelineModel::index(int row, int column, const QModelIndex& parent) const
{
  if (!hasIndex(row, column, parent))
    return {};
  const TreeItem* parentItem = itemFromIndex(parent);
  const QList<TreeItem*>& rows = parentItem != nullptr ? parentItem->children : m_Items;
  return createIndex(row, column, rows.at(row));
}

QModelIndex VXPipelineModel::parent(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr || item->parent == nullptr)
    return {};
  return indexOfItem(item->parent, 0);
}

int VXPipelineModel::rowCount(const QModelIndex& parent) const
{
  if (!parent.isValid())
    return static_cast<int>(m_Items.size());
  // children hang from the first column only, as tree views expect
  if (parent.column() != 0)
    return 0;
  const TreeItem* item = itemFromIndex(parent);
  return item != nullptr ? static_cast<int>(item->children.size()) : 0;
}

int VXPipelineModel::columnCount(const QModelIndex&) const
{
  return 2;
}

Qt::ItemFlags VXPipelineModel::flags(const QModelIndex& index) const
{
  if (!index.isValid())
    return Qt::NoItemFlags;
  if (index.column() == k_NameColumn)
    return Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsUserCheckable | Qt::ItemIsEnabled;
  return Qt::ItemIsSelectable | Qt::ItemIsEnabled;
}

QVariant VXPipelineModel::headerData(int section, Qt::Orientation, int role) const
{
  if (role == Qt::DisplayRole && section >= 0 && section <= 2)
    return QString("");
  return {};
}

// ---------------------------------------------------------------------------
// Data

QVariant VXPipelineModel::data(const QModelIndex& index, int role) const
{
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr || item->object() == nullptr)
    return {};
  VXBridgeObject* bridge = item->bridge();
  VXBridgeObject* topLevel = item->topLevelObject();
  VXCoreObject* coreObject = item->coreObject();

  if (role == k_CheckStateRole)
  {
    if (m_Pipeline == nullptr || m_Pipeline->activeViewWidget() == nullptr)
      return {};
    if (item->kind == k_RepresentationKind)
      return static_cast<int>(coreObject->isVisible() ? Qt::Checked : Qt::Unchecked);
    if (item->kind == k_GlobalSourceKind)
      return static_cast<int>(item->globalSource()->isVisible() ? Qt::Checked : Qt::Unchecked);
    return {};
  }

  if (role == Qt::DisplayRole && index.column() == k_NameColumn)
    return topLevel != nullptr ? topLevel->name() : coreObject->name();

  if (role == Qt::ToolTipRole && index.column() == k_NameColumn)
  {
    switch (item->kind)
    {
      case k_BridgeKind:
        return toolTipText(bridge->name(), "Pipeline or File", {});
      case k_DataSourceKind:
        return toolTipText(coreObject->name(), "DataSource",
                           "With this item selected, use the above toolbar to add a DataView or "
                           "add a Visual Filter to see your data.");
      case k_FilterKind:
        return toolTipText(coreObject->name(), "Visual Filter",
                           "With this item selected, use the above toolbar to add a DataView or "
                           "add a Visual Filter to see your data.");
      case k_RepresentationKind:
        return toolTipText(coreObject->name(), "Data View",
                           "Click on the parent of this item in the tree to add another DataView "
                           "or additional Visual Filters.");
      case k_GlobalSourceKind:
        return toolTipText(topLevel->name(), "Global Source", {});
      default:
        return {};
    }
  }

  if (role == Qt::DecorationRole)
  {
    const QIcon icon = topLevel != nullptr ? topLevel->getIcon() : coreObject->getIcon();
    if (!icon.isNull())
      return icon;
    return KXStyle::generateThemeIconFromName("VXPipelineTreeIcon");
  }

  if (role == Qt::ForegroundRole)
  {
    bool flagged = false;
    if (auto* fileBridge = qobject_cast<FileToVXBridge*>(bridge))
      flagged = fileBridge->autoReloadFlagged();
    else if (coreObject != nullptr)
      flagged = coreObject->autoReloadFlagged();
    return flagged ? KXStyle::getLightRedColor() : KXStyle::getDefaultTextColor();
  }

  return {};
}

bool VXPipelineModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
  TreeItem* item = itemFromIndex(index);
  if (item == nullptr || item->object() == nullptr)
    return false;

  if (role == k_CheckStateRole)
  {
    if (m_Pipeline == nullptr || m_Pipeline->activeViewWidget() == nullptr)
      return false;
    const bool visible = truthOf(value);
    if (VXGlobalSource* source = item->globalSource())
      source->setVisibility(visible);
    else if (VXCoreObject* coreObject = item->coreObject())
      coreObject->setVisibility(visible);
    else
      return false;
    // a data view shown under a filter shows the filter's output too
    if (item->kind == k_RepresentationKind && item->parent != nullptr &&
        item->parent->kind == k_FilterKind)
    {
      if (VXFilter* filter = item->parent->filter())
        filter->setVisibility(visible);
    }
    Q_EMIT itemVisibilityChanged(index, visible);
    emitRowChanged(item, { k_CheckStateRole });
    return true;
  }

  if (index.column() == k_NameColumn && (role == Qt::DisplayRole || role == Qt::EditRole))
  {
    const QString name = value.toString();
    // a blank name would leave the row without text and the item without a path key
    if (name.trimmed().isEmpty() || itemNameIsDuplicate(index, name))
      return false;
    if (VXBridgeObject* topLevel = item->topLevelObject())
    {
      topLevel->setName(name, 0);
    }
    else if (VXCoreObject* coreObject = item->coreObject())
    {
      // the typed text is the whole name: no suffix behind it
      coreObject->setNameSuffixCounter(0);
      coreObject->setBaseName(name);
    }
    emitRowChanged(item, { Qt::EditRole, Qt::DisplayRole });
    return true;
  }
  return false;
}

void VXPipelineModel::emitRowChanged(const TreeItem* item, const QList<int>& roles)
{
  const QModelIndex first = indexOfItem(item, 0);
  if (!first.isValid())
    return;
  Q_EMIT dataChanged(first, first.siblingAtColumn(k_NameColumn), roles);
}

bool VXPipelineModel::itemNameIsDuplicate(const QModelIndex& index, const QString& name) const
{
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr)
    return false;
  if (item->kind == k_BridgeKind || item->kind == k_GlobalSourceKind)
  {
    // top-level rows of the same kind must be told apart
    return std::any_of(m_Items.cbegin(), m_Items.cend(),
                       [&name, item](const TreeItem* other)
                       {
                         return other->kind == item->kind && other->topLevelObject() != nullptr &&
                                other->topLevelObject()->name() == name;
                       });
  }
  const QList<VXCoreObject*> objects = getAllCoreObjects();
  return std::any_of(objects.cbegin(), objects.cend(),
                     [&name](const VXCoreObject* object) { return object->name() == name; });
}

// ---------------------------------------------------------------------------
// Adding

VXPipelineModel::TreeItem* VXPipelineModel::insertItem(TreeItem* parentItem, std::int32_t kind,
                                                       QObject* object)
{
  std::any value;
  switch (kind)
  {
    case k_BridgeKind:
      value = qobject_cast<VXBridgeObject*>(object);
      break;
    case k_DataSourceKind:
      value = qobject_cast<VXDataSource*>(object);
      break;
    case k_FilterKind:
      value = qobject_cast<VXFilter*>(object);
      break;
    case k_RepresentationKind:
      value = qobject_cast<VXRepresentation*>(object);
      break;
    case k_GlobalSourceKind:
      value = qobject_cast<VXGlobalSource*>(object);
      break;
    default:
      return nullptr;
  }
  QList<TreeItem*>& rows = parentItem != nullptr ? parentItem->children : m_Items;
  const int row = static_cast<int>(rows.size());
  beginInsertRows(indexOfItem(parentItem, 0), row, row);
  auto* item = new TreeItem(parentItem, kind, std::move(value));
  rows.append(item);
  endInsertRows();
  // whoever deletes the object, its rows must not outlive it
  connect(object, &QObject::destroyed, this, &VXPipelineModel::onObjectDestroyed,
          Qt::UniqueConnection);
  return item;
}

void VXPipelineModel::connectCoreObject(VXCoreObject* coreObject)
{
  connect(coreObject, &VXCoreObject::enabledDisabledStateChanged, this,
          &VXPipelineModel::coreObjectViewStateChanged);
  connect(coreObject, &VXCoreObject::settingsWidgetVisibilityButtonClicked, this,
          [this, coreObject](bool checked)
          { setData(helperIndex(coreObject), checked, k_CheckStateRole); });
  // names and tool tips follow the path
  connect(coreObject, &VXCoreObject::pathChanged, this,
          [this, coreObject]()
          {
            if (const TreeItem* item = findItem(coreObject))
              emitRowChanged(item, { Qt::DisplayRole, Qt::ToolTipRole });
          });
}

void VXPipelineModel::followName(VXBridgeObject* topLevel)
{
  connect(topLevel, &VXBridgeObject::nameChanged, this,
          [this, topLevel]()
          {
            if (const TreeItem* item = findItem(topLevel))
              emitRowChanged(item, { Qt::DisplayRole, Qt::ToolTipRole });
          });
}

void VXPipelineModel::pipelineBridgeAdded(VXBridgeObject* bridge)
{
  if (bridge == nullptr || findItem(bridge) != nullptr)
    return;
  if (auto* fileBridge = qobject_cast<FileToVXBridge*>(bridge))
    connect(fileBridge, &FileToVXBridge::autoReloadFlagChanged, this,
            &VXPipelineModel::onFileObjectFlagged);
  insertItem(nullptr, k_BridgeKind, bridge);
  followName(bridge);
  if (auto* hostBridge = qobject_cast<KXToVXBridge*>(bridge))
    Q_EMIT kxToVXBridgeObjectAdded(hostBridge);
}

void VXPipelineModel::dataSourceAdded(VXDataSource* source)
{
  if (source == nullptr || findItem(source) != nullptr)
    return;
  TreeItem* parentItem = findItem(source->parent());
  if (parentItem == nullptr)
    return;
  insertItem(parentItem, k_DataSourceKind, source);
  connectCoreObject(source);
  if (VXBridgeObject* bridge = parentItem->bridge())
    connect(bridge, &VXBridgeObject::nameChanged, source, &VXDataSource::updatePath);
  connect(source, &VXDataSource::goToParentColorSettings, this,
          [this, source]() { Q_EMIT selectIndexRequest(helperIndex(source)); });
  Q_EMIT applyDefaultPresetRequest(helperIndex(source));
}

void VXPipelineModel::filterAdded(VXFilter* filter)
{
  if (filter == nullptr || findItem(filter) != nullptr)
    return;
  TreeItem* parentItem = findItem(filter->parent());
  if (parentItem == nullptr)
    return;
  insertItem(parentItem, k_FilterKind, filter);
  connectCoreObject(filter);
  if (VXCoreObject* parentObject = parentItem->coreObject())
    connect(parentObject, &VXCoreObject::pathChanged, filter, &VXCoreObject::updatePath);
  Q_EMIT applyDefaultPresetRequest(helperIndex(filter));
}

void VXPipelineModel::representationAdded(VXRepresentation* representation)
{
  if (representation == nullptr || findItem(representation) != nullptr)
    return;
  // slices link through this model even where a host made the data source without a row
  if (representation->type() == VXRepresentation::ImageSlice)
  {
    connect(representation, &VXRepresentation::requestLinkViews, this,
            &VXPipelineModel::linkImageSliceSlices, Qt::UniqueConnection);
    connect(representation, &VXRepresentation::requestUnlinkViews, this,
            &VXPipelineModel::unlinkImageSliceSlices, Qt::UniqueConnection);
    for (VXRepresentationPimpl* implementation : representation->getDataViewSplits())
    {
      if (implementation != nullptr && implementation->isLinked())
        linkImageSliceSlices(implementation);
    }
  }
  TreeItem* parentItem = findItem(representation->parent());
  if (parentItem == nullptr)
    return;
  if (representation->getNameSuffixCounter() < 1 &&
      representation->baseName() == representation->defaultName())
  {
    const QList<VXRepresentation*> representations = getAllRepresentations();
    const QList<VXCoreObject*> held(representations.cbegin(), representations.cend());
    representation->setNameSuffixCounter(GetNameSuffixCounter(held, representation->baseName()));
  }
  insertItem(parentItem, k_RepresentationKind, representation);
  connectCoreObject(representation);
}

QModelIndex VXPipelineModel::addBridgeObject(VXBridgeObject* bridge)
{
  if (bridge == nullptr)
    return {};
  if (m_Pipeline == nullptr || !m_Pipeline->addVXBridgeObject(bridge))
    return {};
  return helperIndex(bridge);
}

QModelIndex VXPipelineModel::addFilter(const QModelIndex& parent, VXFilter* filter)
{
  VXCoreObject* parentObject = getCoreObject(parent);
  if (parentObject == nullptr || filter == nullptr || m_Pipeline == nullptr)
    return {};
  if (!m_Pipeline->addFilter(parentObject, filter))
    return {};
  return helperIndex(filter);
}

QModelIndex VXPipelineModel::addGlobalSource(VXGlobalSource* source)
{
  if (source == nullptr || m_Pipeline == nullptr || findItem(source) != nullptr)
    return {};
  if (!m_Pipeline->addGlobalSource(source))
    return {};
  insertItem(nullptr, k_GlobalSourceKind, source);
  connect(source, &VXGlobalSource::enabledDisabledStateChanged, this,
          [this](VXGlobalSource* changed, bool isEnabled)
          { Q_EMIT itemVisibilityChanged(helperIndex(changed), isEnabled); });
  followName(source);
  return helperIndex(source);
}

QModelIndex VXPipelineModel::addRepresentation(const QModelIndex& parent,
                                               VXRepresentation::Type type)
{
  TreeItem* parentItem = itemFromIndex(parent);
  VXCoreObject* parentObject = getCoreObject(parent);
  if (parentItem == nullptr || parentObject == nullptr || m_Pipeline == nullptr)
    return {};
  const qsizetype before = parentItem->children.size();
  if (!m_Pipeline->addRepresentation(parentObject, type))
    return {};
  // the pipeline announced the new data view, which took the last row
  if (parentItem->children.size() <= before)
    return {};
  return indexOfItem(parentItem->children.last(), 0);
}

QModelIndex VXPipelineModel::loadRepresentation(const QModelIndex& parent,
                                                VXRepresentation* representation)
{
  VXCoreObject* parentObject = getCoreObject(parent);
  if (parentObject == nullptr || representation == nullptr || m_Pipeline == nullptr)
    return {};
  if (!m_Pipeline->addLoadedRepresentation(parentObject, representation))
    return {};
  return helperIndex(representation);
}

void VXPipelineModel::linkLoadedRepresentations()
{
  m_LinkedViews.removeIf([](const QPointer<VXImageSliceRepPimpl>& view) { return view.isNull(); });
  for (VXRepresentation* representation : getAllRepresentations())
  {
    if (representation == nullptr || representation->type() != VXRepresentation::ImageSlice)
      continue;
    for (VXRepresentationPimpl* implementation : representation->getDataViewSplits())
    {
      if (implementation != nullptr && implementation->isLinked())
        linkImageSliceSlices(implementation);
    }
  }
}

QList<VXImageSliceRepPimpl*> VXPipelineModel::linkedViews() const
{
  QList<VXImageSliceRepPimpl*> views;
  for (const QPointer<VXImageSliceRepPimpl>& view : m_LinkedViews)
  {
    if (!view.isNull())
      views.append(view.data());
  }
  return views;
}

// ---------------------------------------------------------------------------
// Linked image slices

void VXPipelineModel::linkImageSliceSlices(VXRepresentationPimpl* representation)
{
  auto* view = qobject_cast<VXImageSliceRepPimpl*>(representation);
  if (view == nullptr)
    return;
  m_LinkedViews.removeIf([](const QPointer<VXImageSliceRepPimpl>& entry)
                         { return entry.isNull(); });
  if (!m_LinkedViews.contains(view))
    m_LinkedViews.append(view);
  view->setLinked(true);
  connect(view, &VXImageSliceRepPimpl::sliceNumberChanged, this,
          &VXPipelineModel::updateLinkedSlices, Qt::UniqueConnection);
  connect(view, &VXImageSliceRepPimpl::linkPhysicalUnitsChanged, this,
          &VXPipelineModel::updateLinkedPhysicalUnits, Qt::UniqueConnection);
  connect(view, &VXImageSliceRepPimpl::sliceDirectionChanged, this,
          &VXPipelineModel::updateLinkedSliceDirections, Qt::UniqueConnection);
  Q_EMIT linkingDataViews(m_LinkedViews.size() > 1);
}

void VXPipelineModel::unlinkImageSliceSlices(VXRepresentationPimpl* representation)
{
  auto* view = qobject_cast<VXImageSliceRepPimpl*>(representation);
  if (view == nullptr)
    return;
  view->setLinked(false);
  disconnect(view, &VXImageSliceRepPimpl::sliceNumberChanged, this,
             &VXPipelineModel::updateLinkedSlices);
  disconnect(view, &VXImageSliceRepPimpl::linkPhysicalUnitsChanged, this,
             &VXPipelineModel::updateLinkedPhysicalUnits);
  disconnect(view, &VXImageSliceRepPimpl::sliceDirectionChanged, this,
             &VXPipelineModel::updateLinkedSliceDirections);
  m_LinkedViews.removeIf([view](const QPointer<VXImageSliceRepPimpl>& entry)
                         { return entry.isNull() || entry.data() == view; });
  Q_EMIT linkingDataViews(m_LinkedViews.size() > 1);
}

void VXPipelineModel::updateLinkedSlices(int sliceNumber, VXImageSliceRepPimpl* sourceView)
{
  if (sourceView == nullptr)
    return;
  m_LinkedViews.removeIf([](const QPointer<VXImageSliceRepPimpl>& entry)
                         { return entry.isNull(); });
  const double position = sourceView->physicalPosition(sliceNumber);
  for (const QPointer<VXImageSliceRepPimpl>& entry : m_LinkedViews)
  {
    VXImageSliceRepPimpl* view = entry.data();
    if (view == sourceView)
      continue;
    // a follower must not answer with its own change, or the views would chase each other
    const QSignalBlocker blocker(view);
    int number = sliceNumber;
    if (view->linkPhysicalUnits())
    {
      const int physical = view->sliceNumberAt(position);
      if (physical >= 0)
        number = physical;
    }
    view->followSliceNumber(number);
  }
}

void VXPipelineModel::updateLinkedPhysicalUnits(bool linkPhysicalUnits,
                                                VXImageSliceRepPimpl* sourceView)
{
  for (const QPointer<VXImageSliceRepPimpl>& entry : m_LinkedViews)
  {
    if (entry.isNull() || entry.data() == sourceView)
      continue;
    const QSignalBlocker blocker(entry.data());
    entry->setLinkPhysicalUnits(linkPhysicalUnits);
  }
}

void VXPipelineModel::updateLinkedSliceDirections(KXVtkModule::constants::SliceDirection direction,
                                                  VXImageSliceRepPimpl* sourceView)
{
  if (sourceView == nullptr || !sourceView->linkPhysicalUnits())
    return;
  for (const QPointer<VXImageSliceRepPimpl>& entry : m_LinkedViews)
  {
    if (entry.isNull() || entry.data() == sourceView)
      continue;
    const QSignalBlocker blocker(entry.data());
    entry->followSliceDirection(direction);
  }
}

// ---------------------------------------------------------------------------
// Removing

void VXPipelineModel::removeItemRows(TreeItem* item)
{
  const QList<TreeItem*> children = item->children;
  for (TreeItem* child : children)
  {
    removeItemRows(child);
    delete child;
  }
  QList<TreeItem*>& rows = item->parent != nullptr ? item->parent->children : m_Items;
  const int row = static_cast<int>(rows.indexOf(item));
  if (row < 0)
    return;
  beginRemoveRows(indexOfItem(item->parent, 0), row, row);
  rows.removeAt(row);
  endRemoveRows();
}

void VXPipelineModel::removeTreeItem(TreeItem* item)
{
  // what the subtree holds, outermost last, read before the rows go
  QList<TreeItem*> subtree;
  std::function<void(TreeItem*)> gather = [&subtree, &gather](TreeItem* node)
  {
    for (TreeItem* child : node->children)
      gather(child);
    subtree.append(node);
  };
  gather(item);
  QList<std::pair<std::int32_t, QPointer<QObject>>> removed;
  for (const TreeItem* node : subtree)
    removed.append({ node->kind, node->object() });
  const std::int32_t kind = item->kind;
  QObject* object = item->object();

  removeItemRows(item);
  delete item;

  for (const auto& [nodeKind, nodeObject] : removed)
  {
    if (nodeObject.isNull())
      continue;
    // data views take their actors out of the views now, not when the deferred delete comes
    if (auto* coreObject = qobject_cast<VXCoreObject*>(nodeObject.data()))
      coreObject->finalize();
    else if (auto* source = qobject_cast<VXGlobalSource*>(nodeObject.data()))
      source->finalize();
    if (m_Pipeline == nullptr)
      continue;
    if (nodeKind == k_DataSourceKind)
      m_Pipeline->onDataSourceRemoved(qobject_cast<VXDataSource*>(nodeObject.data()));
  }
  if (m_Pipeline != nullptr)
  {
    if (kind == k_BridgeKind)
      m_Pipeline->pipelineBridgeRemoved(qobject_cast<VXBridgeObject*>(object));
    else if (kind == k_GlobalSourceKind)
      m_Pipeline->globalSourceRemoved(qobject_cast<VXGlobalSource*>(object));
  }
  const bool hostBridge = qobject_cast<KXToVXBridge*>(object) != nullptr;
  if (object != nullptr)
  {
    disconnect(object, nullptr, this, nullptr);
    // the item may have asked for its removal from one of its own slots
    object->deleteLater();
  }
  if (hostBridge)
    Q_EMIT kxToVXBridgeObjectRemoved();
  if (m_Pipeline != nullptr)
    Q_EMIT m_Pipeline->requestRenderAll();
}

void VXPipelineModel::removeItem(const QModelIndex& index)
{
  if (TreeItem* item = itemFromIndex(index))
    removeTreeItem(item);
}

void VXPipelineModel::removeItems(const QModelIndexList& indices)
{
  // earlier removals shift and invalidate plain indices; persistent ones follow
  QList<QPersistentModelIndex> persistent;
  for (const QModelIndex& index : indices)
    persistent.append(QPersistentModelIndex(index));
  for (const QPersistentModelIndex& index : persistent)
  {
    if (index.isValid())
      removeItem(index);
  }
}

void VXPipelineModel::removePipeline(VXBridgeObject* bridge)
{
  if (TreeItem* item = findItem(bridge))
    removeTreeItem(item);
}

void VXPipelineModel::removeGlobalSource(VXGlobalSource* source)
{
  if (TreeItem* item = findItem(source))
    removeTreeItem(item);
}

void VXPipelineModel::removeLeafItem(VXCoreObject* coreObject)
{
  if (TreeItem* item = findItem(coreObject))
    removeTreeItem(item);
}

void VXPipelineModel::removeDataSource(VXDataSource* source)
{
  if (TreeItem* item = findItem(source))
    removeTreeItem(item);
}

void VXPipelineModel::onObjectDestroyed(QObject* object)
{
  TreeItem* item = findItem(object);
  if (item == nullptr)
    return;
  const std::int32_t kind = item->kind;
  QObject* parentObject = object->parent();
  // views may still ask the row for its data while it goes: it answers nothing, the object is half
  // gone
  item->clearValue();
  removeItemRows(item);
  delete item;
  // Only lists forget the address here: the object's own members are gone already.
  if (kind == k_DataSourceKind)
  {
    if (auto* bridge = qobject_cast<VXBridgeObject*>(parentObject))
      bridge->onDataSourceRemoved(static_cast<VXDataSource*>(object));
  }
  else if (kind == k_BridgeKind && m_Pipeline != nullptr)
  {
    m_Pipeline->pipelineBridgeRemoved(static_cast<VXBridgeObject*>(object));
  }
  else if (kind == k_GlobalSourceKind && m_Pipeline != nullptr)
  {
    m_Pipeline->globalSourceRemoved(static_cast<VXGlobalSource*>(object));
  }
}

// ---------------------------------------------------------------------------
// Flags and visibility

void VXPipelineModel::onFileObjectFlagged(FileToVXBridge* bridge, bool flagged)
{
  TreeItem* item = findItem(bridge);
  if (item == nullptr)
    return;
  emitRowChanged(item, { Qt::ForegroundRole });
  flagChildren(item, flagged);
}

void VXPipelineModel::flagChildren(TreeItem* item, bool flagged)
{
  for (TreeItem* child : item->children)
  {
    if (VXCoreObject* coreObject = child->coreObject())
      coreObject->setFlagAutoReload(flagged);
    emitRowChanged(child, { Qt::ForegroundRole });
    flagChildren(child, flagged);
  }
}

void VXPipelineModel::coreObjectViewStateChanged(VXCoreObject* coreObject, bool isEnabled)
{
  const QModelIndex index = helperIndex(coreObject);
  if (!index.isValid())
    return;
  Q_EMIT itemVisibilityChanged(index, isEnabled);
}

// ---------------------------------------------------------------------------
// Asking

bool VXPipelineModel::isPipeline(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->kind == k_BridgeKind;
}

bool VXPipelineModel::isDataSource(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->kind == k_DataSourceKind;
}

bool VXPipelineModel::isFilter(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->kind == k_FilterKind;
}

bool VXPipelineModel::isRepresentation(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->kind == k_RepresentationKind;
}

bool VXPipelineModel::isGlobalSource(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->kind == k_GlobalSourceKind;
}

bool VXPipelineModel::canAddFilter(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && (item->dataSource() != nullptr || item->filter() != nullptr);
}

bool VXPipelineModel::canAddRepresentation(const QModelIndex& index) const
{
  return canAddFilter(index);
}

bool VXPipelineModel::canReload(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->parent == nullptr &&
         qobject_cast<FileToVXBridge*>(item->bridge()) != nullptr;
}

bool VXPipelineModel::canSave(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr && item->coreObject() != nullptr;
}

// ---------------------------------------------------------------------------
// Getting

VXCoreObject* VXPipelineModel::getCoreObject(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr ? item->coreObject() : nullptr;
}

VXBridgeObject* VXPipelineModel::getPipelineObject(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr ? item->bridge() : nullptr;
}

VXFilter* VXPipelineModel::getFilter(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr ? item->filter() : nullptr;
}

VXRepresentation* VXPipelineModel::getRepresentation(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr ? item->representation() : nullptr;
}

VXGlobalSource* VXPipelineModel::getGlobalSource(const QModelIndex& index) const
{
  const TreeItem* item = itemFromIndex(index);
  return item != nullptr ? item->globalSource() : nullptr;
}

template<typename Object, std::int32_t Kind>
void VXPipelineModel::collect(const QList<TreeItem*>& items, QList<Object*>& result) const
{
  for (const TreeItem* item : items)
  {
    if (Kind < 0 || item->kind == Kind)
    {
      Object* object = nullptr;
      if constexpr (std::is_same_v<Object, VXCoreObject>)
        object = item->coreObject();
      else if constexpr (std::is_same_v<Object, VXBridgeObject>)
        object = item->bridge();
      else if constexpr (std::is_same_v<Object, VXDataSource>)
        object = item->dataSource();
      else if constexpr (std::is_same_v<Object, VXFilter>)
        object = item->filter();
      else if constexpr (std::is_same_v<Object, VXRepresentation>)
        object = item->representation();
      if (object != nullptr)
        result.append(object);
    }
    collect<Object, Kind>(item->children, result);
  }
}

VXDataSource* VXPipelineModel::getDataSource(const QString& pathName) const
{
  for (VXDataSource* source : getAllDataSources())
  {
    if (source->pathName() == pathName)
      return source;
  }
  return nullptr;
}

QList<VXDataSource*> VXPipelineModel::getChildDataSources(const QModelIndex& index) const
{
  QList<VXDataSource*> sources;
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr)
    return sources;
  for (const TreeItem* child : item->children)
  {
    if (VXDataSource* source = child->dataSource())
      sources.append(source);
  }
  return sources;
}

QList<VXDataSource*> VXPipelineModel::getChildDataSources(
  const QList<VXBridgeObject*>& bridges) const
{
  QList<VXDataSource*> sources;
  for (VXBridgeObject* bridge : bridges)
    sources.append(getChildDataSources(helperIndex(bridge)));
  return sources;
}

QList<VXBridgeObject*> VXPipelineModel::getAllBridgeObjects() const
{
  QList<VXBridgeObject*> bridges;
  for (const TreeItem* item : m_Items)
  {
    if (VXBridgeObject* bridge = item->bridge())
      bridges.append(bridge);
  }
  return bridges;
}

QList<VXCoreObject*> VXPipelineModel::getAllCoreObjects() const
{
  QList<VXCoreObject*> objects;
  collect<VXCoreObject, -1>(m_Items, objects);
  return objects;
}

QList<VXDataSource*> VXPipelineModel::getAllDataSources() const
{
  QList<VXDataSource*> sources;
  collect<VXDataSource, k_DataSourceKind>(m_Items, sources);
  return sources;
}

QStringList VXPipelineModel::getAllDataSourceNames() const
{
  QStringList names;
  for (const VXDataSource* source : getAllDataSources())
    names.append(source->pathName());
  return names;
}

QList<VXFilter*> VXPipelineModel::getAllFilters() const
{
  QList<VXFilter*> filters;
  collect<VXFilter, k_FilterKind>(m_Items, filters);
  return filters;
}

QList<VXRepresentation*> VXPipelineModel::getAllRepresentations() const
{
  QList<VXRepresentation*> representations;
  collect<VXRepresentation, k_RepresentationKind>(m_Items, representations);
  return representations;
}

VXPipelineModel::TreeItem* VXPipelineModel::findItem(const QObject* object) const
{
  if (object == nullptr)
    return nullptr;
  std::function<TreeItem*(const QList<TreeItem*>&)> search =
    [&search, object](const QList<TreeItem*>& items) -> TreeItem*
  {
    for (TreeItem* item : items)
    {
      if (item->object() == object)
        return item;
      if (TreeItem* found = search(item->children))
        return found;
    }
    return nullptr;
  };
  return search(m_Items);
}

QModelIndex VXPipelineModel::helperIndex(QObject* object) const
{
  return indexOfItem(findItem(object), 0);
}

QModelIndex VXPipelineModel::pathIndex(const QString& path) const
{
  std::function<const TreeItem*(const QList<TreeItem*>&)> search =
    [&search, &path](const QList<TreeItem*>& items) -> const TreeItem*
  {
    for (const TreeItem* item : items)
    {
      if (const VXBridgeObject* topLevel = item->topLevelObject();
          topLevel != nullptr && topLevel->name() == path)
        return item;
      if (const VXCoreObject* coreObject = item->coreObject();
          coreObject != nullptr && coreObject->pathName() == path)
        return item;
      if (const TreeItem* found = search(item->children))
        return found;
    }
    return nullptr;
  };
  return indexOfItem(search(m_Items), 0);
}

QWidget* VXPipelineModel::itemWidget(const QModelIndex& index)
{
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr)
    return nullptr;
  if (VXGlobalSource* source = item->globalSource())
  {
    // a new page on each ask: the page shows the active view's settings
    source->releaseSettingsWidget();
    source->initializeSettingsWidget();
    return source->settingsWidget();
  }
  VXCoreObject* coreObject = item->coreObject();
  return coreObject != nullptr ? coreObject->settingsWidget() : nullptr;
}

void VXPipelineModel::showInfoWidget(const QModelIndex& index)
{
  const TreeItem* item = itemFromIndex(index);
  if (item == nullptr)
    return;
  if (VXRepresentation* representation = item->representation())
    representation->showDataSetInfoWidget();
  else if (VXDataSource* source = item->dataSource())
    source->showDataSetInfoWidget();
}

int VXPipelineModel::GetNameSuffixCounter(const QList<VXBridgeObject*>& items,
                                          const QString& baseName)
{
  return smallestFreeSuffix(items, baseName);
}

int VXPipelineModel::GetNameSuffixCounter(const QList<VXCoreObject*>& items,
                                          const QString& baseName)
{
  return smallestFreeSuffix(items, baseName);
}
