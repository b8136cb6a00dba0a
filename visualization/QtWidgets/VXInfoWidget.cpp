#include "visualization/QtWidgets/VXInfoWidget.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/FileToVXBridge.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXFilter.hpp"
#include "visualization/VXGlobalSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXPipelineModel.hpp"
#include "visualization/VXStateItemFactory.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTreeView>
#include <QtWidgets/QVBoxLayout>

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkImageData.h>
#include <vtkRenderer.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace
{
const QString k_StateFileFilter = QStringLiteral("VOXELIA-KX State File (*.vlxstate)");
const QString k_NoViewMessage =
  QStringLiteral("Error reading state file; could not find a view widget to add items to");

QString typeOf(const nlohmann::json& item)
{
  return QString::fromStdString(item.at("item_type").get<std::string>());
}

/**
 * Puts the per-window entries of an item's data in window order. Objects keep
 * their views in maps ordered by address, so without this two saves of the
 * same scene could list them differently.
 */
void sortWindowEntries(nlohmann::json& itemData)
{
  if (!itemData.is_object())
    return;
  auto windowOf = [](const nlohmann::json& entry)
  {
    if (entry.is_object())
    {
      const auto iter = entry.find("render_window_index");
      if (iter != entry.end() && iter->is_number_integer())
        return iter->get<std::int64_t>();
    }
    return std::numeric_limits<std::int64_t>::max();
  };
  for (const char* key : { "render_window_index", "rep_view_implementations" })
  {
    const auto list = itemData.find(key);
    if (list != itemData.end() && list->is_array())
    {
      auto& entries = list->get_ref<nlohmann::json::array_t&>();
      std::stable_sort(entries.begin(), entries.end(),
                       [&](const nlohmann::json& a, const nlohmann::json& b)
                       { return windowOf(a) < windowOf(b); });
    }
  }
}

bool sameFile(const QString& a, const QString& b)
{
  const QFileInfo infoA(a);
  const QFileInfo infoB(b);
  if (infoA.exists() && infoB.exists())
    return infoA.canonicalFilePath() == infoB.canonicalFilePath();
  return infoA.absoluteFilePath() == infoB.absoluteFilePath();
}
} // namespace

VXInfoWidget::VXInfoWidget(QWidget* parent)
  : QWidget(parent)
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_Splitter = new QSplitter(Qt::Vertical, this);
  m_Splitter->setObjectName("infoSplitter");
  m_TreeView = new QTreeView(m_Splitter);
  m_TreeView->setObjectName("pipelineTreeView");
  m_TreeView->setHeaderHidden(true);
  m_TreeView->setSelectionMode(QAbstractItemView::ExtendedSelection);
  m_TreeView->setEditTriggers(QAbstractItemView::EditKeyPressed |
                              QAbstractItemView::SelectedClicked);
  m_TreeView->setContextMenuPolicy(Qt::CustomContextMenu);
  m_TreeView->setExpandsOnDoubleClick(true);
  m_SettingsArea = new QScrollArea(m_Splitter);
  m_SettingsArea->setObjectName("settingsArea");
  m_SettingsArea->setWidgetResizable(true);
  m_Splitter->addWidget(m_TreeView);
  m_Splitter->addWidget(m_SettingsArea);
  m_Splitter->setStretchFactor(0, 1);
  m_Splitter->setStretchFactor(1, 2);
  layout->addWidget(m_Splitter);

  connect(m_TreeView, &QTreeView::customContextMenuRequested, this,
          &VXInfoWidget::onCustomContextMenuRequested);
}

VXInfoWidget::~VXInfoWidget()
{
  // the pages belong to their items, not to this panel
  releaseSettingsPage();
}

void VXInfoWidget::setPipelineModel(VXPipelineModel* model)
{
  if (m_Model == model)
    return;
  releaseSettingsPage();
  if (m_Model != nullptr)
    disconnect(m_Model, nullptr, this, nullptr);
  m_Model = model;
  m_TreeView->setModel(model);
  if (model == nullptr)
    return;
  // column 0 is the delegate's strip; names and eye boxes are in column 1
  m_TreeView->setColumnHidden(0, true);
  connect(m_TreeView->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current) { showSettingsPage(current); });
  connect(model, &QAbstractItemModel::rowsInserted, this,
          [this](const QModelIndex& parent, int first)
          {
            // new items show at once: open their parent and select what arrived
            if (parent.isValid())
              m_TreeView->expand(parent);
            const QModelIndex added = m_Model->index(first, 1, parent);
            m_TreeView->expand(added);
            setCurrentIndex(added);
          });
  connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
          [this](const QModelIndex& parent, int first, int last)
          {
            const QModelIndex current = m_TreeView->currentIndex();
            for (QModelIndex walk = current; walk.isValid(); walk = walk.parent())
            {
              if (walk.parent() == parent && walk.row() >= first && walk.row() <= last)
              {
                releaseSettingsPage();
                break;
              }
            }
          });
  connect(model, &VXPipelineModel::selectIndexRequest, this, &VXInfoWidget::setCurrentIndex);
  checkForValidSaveState();
}

VXPipeline* VXInfoWidget::pipeline() const
{
  return m_Model != nullptr ? m_Model->pipeline() : nullptr;
}

bool VXInfoWidget::modelIsEmpty() const
{
  return m_Model == nullptr || m_Model->rowCount(QModelIndex()) == 0;
}

bool VXInfoWidget::checkForExistingFile(const QString& filePath)
{
  if (m_Model == nullptr)
    return false;
  for (VXBridgeObject* bridge : m_Model->getAllBridgeObjects())
  {
    if (bridge->filePath().isEmpty() || !sameFile(bridge->filePath(), filePath))
      continue;
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Question;
    question.title = "File Already Imported";
    question.text = QString("The file at %1 has already been imported. Would you like to reload "
                            "the existing file data instead?")
                      .arg(filePath);
    question.buttons = QMessageBox::Yes | QMessageBox::No;
    question.defaultButton = QMessageBox::Yes;
    if (VXUserPrompt::ask(this, question) == QMessageBox::Yes)
    {
      if (auto* fileBridge = qobject_cast<FileToVXBridge*>(bridge))
        fileBridge->reload();
    }
    return true;
  }
  return false;
}

void VXInfoWidget::checkForValidSaveState()
{
  // A state naming a file that is gone could never be loaded again.
  m_ValidSaveState = true;
  if (m_Model == nullptr)
    return;
  for (VXBridgeObject* bridge : m_Model->getAllBridgeObjects())
  {
    if (auto* fileBridge = qobject_cast<FileToVXBridge*>(bridge);
        fileBridge != nullptr && fileBridge->autoReloadFlagged())
      m_ValidSaveState = false;
  }
}

void VXInfoWidget::saveState(nlohmann::json& output, QMap<VXAbstractViewWidget*, int>& viewIndexMap)
{
  checkForValidSaveState();
  if (!m_ValidSaveState)
  {
    report("The visualization tree was not saved: the source file of an item is missing. Reload or "
           "remove the items shown in red first.");
    return;
  }
  saveState(QModelIndex(), output, viewIndexMap);
}

void VXInfoWidget::saveState(const QModelIndex& parent, nlohmann::json& output,
                             QMap<VXAbstractViewWidget*, int>& viewIndexMap)
{
  output = nlohmann::json::array();
  if (m_Model == nullptr)
    return;
  const int rows = m_Model->rowCount(parent);
  for (int row = 0; row < rows; ++row)
  {
    const QModelIndex index = m_Model->index(row, 0, parent);
    nlohmann::json itemData = nlohmann::json::object();
    QString itemType;
    if (m_Model->isPipeline(index))
    {
      VXBridgeObject* bridge = m_Model->getPipelineObject(index);
      if (bridge == nullptr)
        continue;
      itemType = bridge->typeName();
      bridge->write(itemData, viewIndexMap);
    }
    else if (VXGlobalSource* source = m_Model->getGlobalSource(index))
    {
      itemType = source->typeName();
      source->write(itemData, viewIndexMap);
    }
    else if (VXCoreObject* object = m_Model->getCoreObject(index))
    {
      itemType = object->typeName();
      object->write(itemData, viewIndexMap);
    }
    else
    {
      continue;
    }
    sortWindowEntries(itemData);
    nlohmann::json item = { { "item_type", itemType.toStdString() },
                            { "item_data", std::move(itemData) } };
    if (m_Model->rowCount(index) > 0)
    {
      nlohmann::json children;
      saveState(index, children, viewIndexMap);
      item["item_children"] = children;
    }
    output.push_back(item);
  }
}

void VXInfoWidget::loadState(const nlohmann::json& input,
                             const QMap<VXAbstractViewWidget*, int>& viewIndexMap)
{
  if (m_Model == nullptr)
    return;
  QList<VXDataSource*> loadedSources;
  QList<VXBridgeObject*> loadedBridges;
  loadState(QModelIndex(), input, viewIndexMap, loadedSources, loadedBridges);
  // geometries of a loaded file that the state does not name are not kept
  for (VXDataSource* source : m_Model->getChildDataSources(loadedBridges))
  {
    if (!loadedSources.contains(source))
      m_Model->removeDataSource(source);
  }
  m_Model->linkLoadedRepresentations();
  checkForValidSaveState();
}

bool VXInfoWidget::JsonNestingExceeds(const nlohmann::json& value, int limit)
{
  // an explicit stack: a hostile file must not be able to exhaust the call stack here
  std::vector<std::pair<const nlohmann::json*, int>> pending{ { &value, 1 } };
  while (!pending.empty())
  {
    const auto [node, depth] = pending.back();
    pending.pop_back();
    if (!node->is_structured())
      continue;
    if (depth > limit)
      return true;
    for (const nlohmann::json& child : *node)
      pending.emplace_back(&child, depth + 1);
  }
  return false;
}

void VXInfoWidget::loadState(const QModelIndex& parent, const nlohmann::json& input,
                             const QMap<VXAbstractViewWidget*, int>& viewIndexMap,
                             QList<VXDataSource*>& loadedSources,
                             QList<VXBridgeObject*>& loadedBridges, int depth)
{
  VXPipeline* owner = pipeline();
  if (m_Model == nullptr || owner == nullptr)
    return;
  VXPipeline::StateLoadScope scope(*owner);
  // the outermost read counts the errors of the whole tree and says how many went unreported
  struct ErrorCount
  {
    VXInfoWidget* widget;
    explicit ErrorCount(VXInfoWidget* owner)
      : widget(owner)
    {
      if (widget->m_StateLoadDepth++ == 0)
        widget->m_StateErrors = 0;
    }
    ~ErrorCount()
    {
      if (--widget->m_StateLoadDepth == 0 && widget->m_StateErrors > k_MaxReportedStateErrors)
        widget->report(QString("Error reading state file; %1 more errors not shown")
                         .arg(widget->m_StateErrors - k_MaxReportedStateErrors));
    }
    ErrorCount(const ErrorCount&) = delete;
    ErrorCount& operator=(const ErrorCount&) = delete;
  } errorCount(this);

  if (viewIndexMap.isEmpty())
  {
    reportStateError(k_NoViewMessage);
    return;
  }
  if (depth > k_MaxStateDepth)
  {
    reportStateError(
      QString("Error reading state file; the tree view items are nested deeper than %1 levels")
        .arg(k_MaxStateDepth));
    return;
  }
  if (!input.is_array())
  {
    reportStateError("Error reading state file; the tree view items must be a list");
    return;
  }
  QMap<int, VXAbstractViewWidget*> views;
  for (auto iter = viewIndexMap.cbegin(); iter != viewIndexMap.cend(); ++iter)
    views.insert(iter.value(), iter.key());

  for (const nlohmann::json& item : input)
  {
    bool missingKey = false;
    for (const char* key : { "item_type", "item_data" })
    {
      if (!item.is_object() || !item.contains(key))
      {
        reportStateError(
          QString("Error reading state file; tree view item is missing the '%1' key").arg(key));
        missingKey = true;
        break;
      }
    }
    if (missingKey)
      continue;
    if (!item.at("item_type").is_string())
    {
      reportStateError(
        QString("Error reading state file; the '%1' value of a tree view item must be text")
          .arg("item_type"));
      continue;
    }
    try
    {
      const QString itemType = typeOf(item);
      const nlohmann::json& itemData = item.at("item_data");
      if (JsonNestingExceeds(itemData, k_MaxItemDataDepth))
      {
        reportStateError(
          QString("Error reading state file; the item data of %1 is nested deeper than %2 levels")
            .arg(itemType)
            .arg(k_MaxItemDataDepth));
        continue;
      }
      QModelIndex itemIndex;
      if (!parent.isValid())
        itemIndex = loadTopLevelItem(itemType, itemData, viewIndexMap, views, loadedBridges);
      else
      {
        const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(itemType);
        const auto kind = entry != nullptr ? entry->kind : VXStateItemFactory::Kind::Bridge;
        if (entry != nullptr && kind == VXStateItemFactory::Kind::DataSource)
          itemIndex = loadDataSource(parent, itemType, itemData, views, loadedSources);
        else if (entry != nullptr && kind == VXStateItemFactory::Kind::Filter)
          itemIndex = loadFilterHelper(parent, itemType, itemData, views);
        else if (entry != nullptr && kind == VXStateItemFactory::Kind::Representation)
          itemIndex = loadRepresentationHelper(parent, itemType, itemData, views);
        else
          reportStateError(
            QString("Error reading state file; found VXBridgeObject item type %1 but the model "
                    "index for insertion is not at the top level of the tree.")
              .arg(itemType));
      }
      if (itemIndex.isValid() && item.contains("item_children"))
        loadState(itemIndex, item.at("item_children"), viewIndexMap, loadedSources, loadedBridges,
                  depth + 1);
    }
    catch (const std::exception& exception)
    {
      // a value of the wrong type ends this item only
      reportStateError(
        QString("Error reading state file; %1").arg(QString::fromUtf8(exception.what())));
    }
  }
}

QModelIndex VXInfoWidget::loadTopLevelItem(const QString& itemType, const nlohmann::json& itemData,
                                           const QMap<VXAbstractViewWidget*, int>& viewIndexMap,
                                           const QMap<int, VXAbstractViewWidget*>& views,
                                           QList<VXBridgeObject*>& loadedBridges)
{
  // the first view by index, unless the item names another
  VXAbstractViewWidget* view = views.isEmpty() ? nullptr : views.first();
  if (itemData.is_object() && itemData.contains("render_window_index") &&
      itemData.at("render_window_index").is_number_integer())
  {
    const int index = KXVtkModule::utils::StateInt(itemData.at("render_window_index"));
    if (index != -1)
      view = KXVtkModule::utils::GetViewWidget(viewIndexMap, index);
  }
  if (view == nullptr)
  {
    reportStateError(k_NoViewMessage);
    return {};
  }
  const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(itemType);
  if (entry != nullptr && entry->kind == VXStateItemFactory::Kind::Bridge)
  {
    auto* bridge = qobject_cast<VXBridgeObject*>(entry->make(pipeline()));
    if (bridge == nullptr)
      return {};
    m_Model->addBridgeObject(bridge);
    // listed before it reads, so that a read cut short still has its unnamed sources removed
    loadedBridges.append(bridge);
    bridge->read(itemData, views);
    return m_Model->helperIndex(bridge);
  }
  if (entry != nullptr && entry->kind == VXStateItemFactory::Kind::GlobalSource)
  {
    auto* source = qobject_cast<VXGlobalSource*>(entry->make(pipeline()));
    if (source == nullptr)
      return {};
    try
    {
      source->read(itemData, views);
    }
    catch (...)
    {
      // not in the model yet: nothing else owns it
      delete source;
      throw;
    }
    m_Model->addGlobalSource(source);
    return m_Model->helperIndex(source);
  }
  reportStateError(QString("Error reading state file; found item type %1 but top level tree view "
                           "items must be of type VXBridgeObject")
                     .arg(itemType));
  return {};
}

QModelIndex VXInfoWidget::loadDataSource(const QModelIndex& parent, const QString& itemType,
                                         const nlohmann::json& itemData,
                                         const QMap<int, VXAbstractViewWidget*>& views,
                                         QList<VXDataSource*>& loadedSources)
{
  VXBridgeObject* bridge = m_Model->getPipelineObject(parent);
  if (bridge == nullptr)
  {
    reportStateError(QString("Error reading state file; found item type %1 but the parent item is "
                             "not a VXBridgeObject type.")
                       .arg(itemType));
    return {};
  }
  const QString filePath = bridge->filePath();
  if (filePath.isEmpty())
  {
    reportStateError("Error reading state file; cannot load the data source because the parent "
                     "pipeline object does not have an associated .voxelia file.");
    return {};
  }
  VXDataSource* match = nullptr;
  const QList<VXDataSource*> children = m_Model->getChildDataSources(parent);
  if (QFileInfo(filePath).suffix().compare("voxelia", Qt::CaseInsensitive) == 0)
  {
    if (!itemData.is_object() || !itemData.contains("imported_data_path"))
    {
      reportStateError(QString("Error reading state file; found VOXELIA-KX file %1 item type but "
                               "missing the imported data path key.")
                         .arg(itemType));
      return {};
    }
    const std::string path = itemData.at("imported_data_path").get<std::string>();
    for (VXDataSource* source : children)
    {
      if (source->importedDataPath().toString("/") == path)
      {
        match = source;
        break;
      }
    }
  }
  else if (children.size() == 1)
  {
    match = children.front();
  }
  if (match == nullptr)
  {
    reportStateError(QString("Error reading state file; found item type %1 in state file but could "
                             "not find a matching data source in the model.")
                       .arg(itemType));
    return {};
  }
  match->read(itemData, views);
  loadedSources.append(match);
  return m_Model->helperIndex(match);
}

QModelIndex VXInfoWidget::loadFilterHelper(const QModelIndex& parent, const QString& itemType,
                                           const nlohmann::json& itemData,
                                           const QMap<int, VXAbstractViewWidget*>& views)
{
  if (m_Model->isRepresentation(parent))
  {
    reportStateError(QString("Error reading state file; found %1 filter item type cannot have a "
                             "VXRepresentation parent item.")
                       .arg(itemType));
    return {};
  }
  VXCoreObject* parentObject = m_Model->getCoreObject(parent);
  const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(itemType);
  auto* filter = entry != nullptr ? qobject_cast<VXFilter*>(entry->make(pipeline())) : nullptr;
  if (parentObject == nullptr || filter == nullptr)
  {
    delete filter;
    reportStateError(QString("Error reading state file; found %1 filter item type cannot have a "
                             "VXRepresentation parent item.")
                       .arg(itemType));
    return {};
  }
  filter->setInputPort(parentObject->outputPort());
  try
  {
    filter->read(itemData, views);
  }
  catch (...)
  {
    delete filter;
    throw;
  }
  return m_Model->addFilter(parent, filter);
}

QModelIndex VXInfoWidget::loadRepresentationHelper(const QModelIndex& parent,
                                                   const QString& itemType,
                                                   const nlohmann::json& itemData,
                                                   const QMap<int, VXAbstractViewWidget*>& views)
{
  if (!m_Model->isDataSource(parent) && !m_Model->isFilter(parent))
  {
    reportStateError(QString("Error reading state file; found %1 representation item type must "
                             "have a VXDataSource or VXFilter parent item.")
                       .arg(itemType));
    return {};
  }
  const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(itemType);
  auto* representation =
    entry != nullptr ? qobject_cast<VXRepresentation*>(entry->make(pipeline())) : nullptr;
  if (representation == nullptr)
    return {};
  // the per-view parts read their settings over the parent's data, so the parent comes first
  representation->setPipeline(pipeline());
  representation->setParentSource(m_Model->getCoreObject(parent));
  try
  {
    representation->read(itemData, views);
  }
  catch (...)
  {
    // a half-read data view never reaches the model or stays in the views
    delete representation;
    throw;
  }
  return m_Model->loadRepresentation(parent, representation);
}

QModelIndex VXInfoWidget::currentIndex() const
{
  return m_TreeView->currentIndex();
}

void VXInfoWidget::setCurrentIndex(const QModelIndex& index)
{
  if (m_Model == nullptr || !index.isValid())
    return;
  const QModelIndex nameIndex = index.sibling(index.row(), 1);
  m_TreeView->setCurrentIndex(nameIndex);
  showSettingsPage(nameIndex);
}

void VXInfoWidget::onActiveViewChanged()
{
  // check states and pages are per view: ask the model again
  m_TreeView->viewport()->update();
  showSettingsPage(m_TreeView->currentIndex());
}

void VXInfoWidget::showSettingsPage(const QModelIndex& index)
{
  releaseSettingsPage();
  if (m_Model == nullptr || !index.isValid())
    return;
  QWidget* page = m_Model->itemWidget(index);
  if (page == nullptr)
    return;
  m_CurrentPage = page;
  m_SettingsArea->setWidget(page);
  page->show();
}

void VXInfoWidget::releaseSettingsPage()
{
  if (m_SettingsArea == nullptr)
    return;
  // give the page back to its item instead of letting the scroll area delete it
  if (QWidget* page = m_SettingsArea->takeWidget())
  {
    page->hide();
    page->setParent(nullptr);
  }
  m_CurrentPage = nullptr;
}

void VXInfoWidget::addRepresentation(VXRepresentation::Type type)
{
  const QModelIndex index = currentIndex();
  if (m_Model == nullptr || !m_Model->canAddRepresentation(index))
    return;
  m_Model->addRepresentation(index, type);
}

void VXInfoWidget::removeItem(const QModelIndex& index)
{
  if (m_Model == nullptr || !index.isValid())
    return;
  releaseSettingsPage();
  Q_EMIT clearAllRenderWindowHighlighters();
  // the model removes the rows depth first and lets the objects go
  m_Model->removeItem(index);
  if (VXPipeline* owner = pipeline())
    Q_EMIT owner->requestRenderAll();
  checkForValidSaveState();
}

void VXInfoWidget::reloadItem(const QModelIndex& index)
{
  if (m_Model == nullptr || !m_Model->canReload(index))
    return;
  if (auto* fileBridge = qobject_cast<FileToVXBridge*>(m_Model->getPipelineObject(index)))
    fileBridge->reload();
  checkForValidSaveState();
}

QStringList VXInfoWidget::PresetNames()
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  const QJsonObject presets = settings.value("VisualizationPresets").toJsonObject();
  settings.endGroup();
  return presets.keys();
}

QMenu* VXInfoWidget::createContextMenu(const QModelIndex& index)
{
  auto* menu = new QMenu(this);
  if (m_Model != nullptr && index.isValid())
  {
    if (m_Model->canAddRepresentation(index))
    {
      QMenu* views = menu->addMenu("Add Data View");
      // a volume is ray cast through voxels and a slice cuts through them: only image data has
      // them
      VXCoreObject* item = m_Model->getCoreObject(index);
      vtkAlgorithmOutput* port = item != nullptr ? item->outputPort() : nullptr;
      const bool isImage = port != nullptr && port->GetProducer() != nullptr &&
                           vtkImageData::SafeDownCast(
                             port->GetProducer()->GetOutputDataObject(port->GetIndex())) != nullptr;
      for (auto iter = VXRepresentation::k_RepresentationTypeToString.cbegin();
           iter != VXRepresentation::k_RepresentationTypeToString.cend(); ++iter)
      {
        const VXRepresentation::Type type = iter.key();
        if (type == VXRepresentation::None || !VXRepresentation::IsRegistered(type))
          continue;
        QAction* action = views->addAction(iter.value());
        action->setEnabled(
          (type != VXRepresentation::Volume && type != VXRepresentation::ImageSlice) || isImage);
        connect(action, &QAction::triggered, this,
                [this, index, type]
                {
                  setCurrentIndex(index);
                  addRepresentation(type);
                });
      }
    }
    if (m_Model->canAddFilter(index))
    {
      QMenu* filters = menu->addMenu("Add Visual Filter");
      for (const char* name : { "VXFClip", "VXFSlice", "VXFThreshold" })
      {
        const QString label = QString(name).mid(3);
        const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(name);
        QAction* action = filters->addAction(label);
        action->setEnabled(entry != nullptr);
        if (entry == nullptr)
          continue;
        connect(action, &QAction::triggered, this,
                [this, index, entry]
                {
                  if (auto* filter = qobject_cast<VXFilter*>(entry->make(pipeline())))
                    m_Model->addFilter(index, filter);
                });
      }
    }
    if (m_Model->isDataSource(index) || m_Model->isRepresentation(index))
    {
      connect(menu->addAction("Show Data Set Information"), &QAction::triggered, this,
              [this, index] { m_Model->showInfoWidget(index); });
    }
    if (VXCoreObject* object = m_Model->getCoreObject(index))
    {
      menu->addSeparator();
      connect(menu->addAction("Copy Settings"), &QAction::triggered, this,
              [object] { object->copyActiveSettings(); });
      connect(menu->addAction("Paste Settings"), &QAction::triggered, this,
              [object] { object->pasteToActiveSettings(); });
    }
    else if (VXGlobalSource* source = m_Model->getGlobalSource(index))
    {
      menu->addSeparator();
      connect(menu->addAction("Copy Settings"), &QAction::triggered, this,
              [source] { source->copyActiveSettings(); });
      connect(menu->addAction("Paste Settings"), &QAction::triggered, this,
              [source] { source->pasteToActiveSettings(); });
    }
    if (m_Model->canReload(index))
    {
      menu->addSeparator();
      connect(menu->addAction("Reload File"), &QAction::triggered, this,
              [this, index] { reloadItem(index); });
      if (auto* fileBridge = qobject_cast<FileToVXBridge*>(m_Model->getPipelineObject(index)))
      {
        QAction* watch = menu->addAction("Watch File for Changes");
        watch->setCheckable(true);
        watch->setChecked(fileBridge->isWatchingFile());
        connect(watch, &QAction::toggled, fileBridge, &FileToVXBridge::setWatchFile);
      }
    }
    if (m_Model->isDataSource(index))
    {
      menu->addSeparator();
      addPresetActions(menu, index);
    }
    if (m_Model->isGlobalSource(index))
      addAnnotationActions(menu);
    menu->addSeparator();
    connect(menu->addAction("Rename"), &QAction::triggered, this,
            [this, index] { m_TreeView->edit(index.sibling(index.row(), 1)); });
    connect(menu->addAction("Remove"), &QAction::triggered, this,
            [this, index] { removeItem(index); });
  }
  else
  {
    connect(menu->addAction("Open File..."), &QAction::triggered, this,
            [this]
            {
              const QString path =
                VXUserPrompt::getOpenFileName(this, "Open File", FileToVXBridge::FileFilterList());
              if (!path.isEmpty())
                Q_EMIT importFileRequest(path);
            });
    connect(menu->addAction("Load State File..."), &QAction::triggered, this,
            [this]
            {
              const QString path =
                VXUserPrompt::getOpenFileName(this, "Load State File", k_StateFileFilter);
              if (!path.isEmpty())
                Q_EMIT loadStateFileRequest(path);
            });
    connect(menu->addAction("Save State File..."), &QAction::triggered, this,
            &VXInfoWidget::saveStateFileRequest);
    addAnnotationActions(menu);
    menu->addSeparator();
    connect(menu->addAction("Export Visualization Presets..."), &QAction::triggered, this,
            [this]
            {
              const QString path = VXUserPrompt::getSaveFileName(
                this, "Export Visualization Presets", "JSON File (*.json)");
              if (!path.isEmpty())
                Q_EMIT exportPresets(path, PresetNames());
            });
    connect(menu->addAction("Import Visualization Presets..."), &QAction::triggered, this,
            [this]
            {
              const QString path = VXUserPrompt::getOpenFileName(
                this, "Import Visualization Presets", "JSON File (*.json)");
              if (!path.isEmpty())
                Q_EMIT importPresets(path);
            });
  }
  return menu;
}

QList<QPair<QString, QString>> VXInfoWidget::AnnotationKinds()
{
  return {
    { "VXTextAnnotationSource", "Text" },
    { "VXCornerAnnotationSource", "Corner Annotation" },
    { "VXCaptionAnnotationSource", "Caption" },
    { "VXArrowAnnotationSource", "Arrow" },
    { "VXEllipseAnnotationSource", "Ellipse" },
    { "VXDistanceAnnotationSource", "Ruler" },
    { "VXImageAnnotationSource", "Image (Logo)..." },
    { "VXBuildPlateAnnotationSource", "Build Plate" },
  };
}

void VXInfoWidget::addAnnotationActions(QMenu* menu)
{
  menu->addSeparator();
  QMenu* annotations = menu->addMenu("Add Annotation");
  const bool hasView = pipeline() != nullptr && pipeline()->activeViewWidget() != nullptr;
  for (const auto& [itemType, label] : AnnotationKinds())
  {
    QAction* action = annotations->addAction(label);
    action->setEnabled(hasView);
    connect(action, &QAction::triggered, this, [this, itemType]() { addGlobalSource(itemType); });
  }
}

VXGlobalSource* VXInfoWidget::addGlobalSource(const QString& itemType)
{
  VXPipeline* owner = pipeline();
  VXAbstractViewWidget* view = owner != nullptr ? owner->activeViewWidget() : nullptr;
  const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(itemType);
  if (view == nullptr || entry == nullptr || entry->kind != VXStateItemFactory::Kind::GlobalSource)
    return nullptr;
  QString imagePath;
  if (itemType == "VXImageAnnotationSource")
  {
    imagePath = VXUserPrompt::getOpenFileName(this, "Open Image",
                                              "Images (*.png *.jpg *.jpeg *.bmp *.tif *.tiff)");
    if (imagePath.isEmpty())
      return nullptr;
  }
  auto* source = qobject_cast<VXGlobalSource*>(entry->make(owner));
  if (source == nullptr)
    return nullptr;
  if (!imagePath.isEmpty())
    source->setInitialSettings({ { "file_path", imagePath.toStdString() } });
  // around what the view shows now, if it shows anything
  if (VXVisualizationWidget* widget = view->getVisualizationWidget();
      widget != nullptr && widget->getRenderer() != nullptr)
  {
    double bounds[6];
    widget->getRenderer()->ComputeVisiblePropBounds(bounds);
    if (bounds[0] <= bounds[1] && bounds[2] <= bounds[3] && bounds[4] <= bounds[5])
      source->fitToBounds(bounds);
  }
  const QModelIndex index = m_Model->addGlobalSource(source);
  if (!index.isValid())
  {
    delete source;
    return nullptr;
  }
  setCurrentIndex(index);
  return source;
}

void VXInfoWidget::addPresetActions(QMenu* menu, const QModelIndex& index)
{
  connect(menu->addAction("Save as Visualization Preset..."), &QAction::triggered, this,
          [this, index]
          {
            const QString name =
              VXUserPrompt::getText(this, "Create Visualization Preset", "Preset name:").trimmed();
            if (name.isEmpty())
              return;
            VXUserPrompt::Question question;
            question.icon = QMessageBox::Question;
            question.title = "Create Visualization Preset";
            question.text = "Save the layout of the split views with the preset?";
            question.buttons = QMessageBox::Yes | QMessageBox::No;
            question.defaultButton = QMessageBox::No;
            const bool withViews = VXUserPrompt::ask(this, question) == QMessageBox::Yes;
            Q_EMIT createPresetRequest(index, name, withViews);
          });
  QMenu* apply = menu->addMenu("Apply Visualization Preset");
  const QStringList names = PresetNames();
  apply->setEnabled(!names.isEmpty());
  for (const QString& name : names)
    connect(apply->addAction(name), &QAction::triggered, this,
            [this, index, name] { Q_EMIT applyPresetRequest(index, name); });
}

void VXInfoWidget::onCustomContextMenuRequested(const QPoint& pos)
{
  const QModelIndex index = m_TreeView->indexAt(pos);
  QMenu* menu = createContextMenu(index);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->popup(m_TreeView->viewport()->mapToGlobal(pos));
}

void VXInfoWidget::keyPressEvent(QKeyEvent* event)
{
  if (event->key() == Qt::Key_Delete && currentIndex().isValid())
  {
    removeItem(currentIndex());
    return;
  }
  QWidget::keyPressEvent(event);
}

void VXInfoWidget::reportStateError(const QString& message)
{
  if (++m_StateErrors <= k_MaxReportedStateErrors)
    report(message);
}

void VXInfoWidget::report(const QString& message)
{
  Q_EMIT sendOutputMessage(message);
}
