#pragma once

#include "KXVtkLib_export.h"

#include "visualization/VXRepresentation.hpp"

#include <nlohmann/json.hpp>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QModelIndex>
#include <QtCore/QPair>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

class QMenu;
class QScrollArea;
class QSplitter;
class QTreeView;
class VXAbstractViewWidget;
class VXBridgeObject;
class VXDataSource;
class VXGlobalSource;
class VXPipeline;
class VXPipelineModel;

/**
 * The pipeline browser: the tree of bridges, data sources, filters and data
 * views of one pipeline, with an eye check box per item for the active view,
 * the selected item's settings page below the tree, and a context menu to add
 * data views, remove, reload, watch files, copy and paste settings and manage
 * presets. It also reads and writes the tree part of state files and presets.
 */
class KXVTKLIB_EXPORT VXInfoWidget : public QWidget
{
  Q_OBJECT

public:
  /** Nesting deeper than this in a state file is refused: no real tree comes near it. */
  static constexpr int k_MaxStateDepth = 256;
  /** Item data nested deeper than this is refused: real item data is a few levels deep. */
  static constexpr int k_MaxItemDataDepth = 64;
  /** One load reports at most this many errors, then how many more there were. */
  static constexpr int k_MaxReportedStateErrors = 100;

  /** True when arrays and objects in value nest deeper than limit levels; walks without recursion.
   */
  static bool JsonNestingExceeds(const nlohmann::json& value, int limit);

  explicit VXInfoWidget(QWidget* parent = nullptr);
  ~VXInfoWidget() override;

  void setPipelineModel(VXPipelineModel* model);
  VXPipelineModel* pipelineModel() const { return m_Model; }
  VXPipeline* pipeline() const;
  QTreeView* treeView() const { return m_TreeView; }
  /** The settings page shown below the tree, or null. */
  QWidget* currentSettingsPage() const { return m_CurrentPage; }

  /** True when the tree has no item. */
  bool modelIsEmpty() const;
  /**
   * True when a bridge already reads the file; then offers to reload it
   * instead (and reloads on Yes).
   */
  bool checkForExistingFile(const QString& filePath);
  /** Whether the tree can be written to a state file now (see checkForValidSaveState). */
  bool hasValidSaveState() const { return m_ValidSaveState; }

  /** Writes the whole tree into output (an array), when the save state is valid. */
  void saveState(nlohmann::json& output, QMap<VXAbstractViewWidget*, int>& viewIndexMap);
  /** Writes the items under parent into output, an array of item objects, recursively. */
  void saveState(const QModelIndex& parent, nlohmann::json& output,
                 QMap<VXAbstractViewWidget*, int>& viewIndexMap);
  /**
   * Reads a whole tree: bridges and global sources at the top, then removes
   * the data sources of loaded bridges that the state does not name.
   */
  void loadState(const nlohmann::json& input, const QMap<VXAbstractViewWidget*, int>& viewIndexMap);
  /** Reads the items of input under parent; errors skip the item and its children, never its
   * sisters. */
  void loadState(const QModelIndex& parent, const nlohmann::json& input,
                 const QMap<VXAbstractViewWidget*, int>& viewIndexMap,
                 QList<VXDataSource*>& loadedSources, QList<VXBridgeObject*>& loadedBridges,
                 int depth = 0);

  /** The context menu for an item (invalid index: the empty-area menu). The caller owns it. */
  QMenu* createContextMenu(const QModelIndex& index);
  QModelIndex currentIndex() const;
  /** Adds an annotation of a global source type to the active view, placed around what it shows,
   * and selects it; an image asks for its file first. Null when nothing was added. */
  VXGlobalSource* addGlobalSource(const QString& itemType);
  /** The annotations a user can add, as (item type, menu label), in menu order. */
  static QList<QPair<QString, QString>> AnnotationKinds();
  /** The names of the presets stored in the settings. */
  static QStringList PresetNames();

Q_SIGNALS:
  void loadStateFileRequest(QString filePath);
  void createPresetRequest(QModelIndex dataSourceIndex, QString presetName,
                           bool saveSplitViewState);
  void applyPresetRequest(QModelIndex parentIndex, QString presetName);
  void exportPresets(QString filePath, QStringList presetNames);
  void importPresets(QString filePath);
  void importFileRequest(QString filePath);
  void sendOutputMessage(QString message);
  void clearAllRenderWindowHighlighters();
  void saveStateFileRequest();

public Q_SLOTS:
  /** Check boxes and settings pages follow the active view. */
  void onActiveViewChanged();
  /** A tree whose source files are all present can be saved. */
  void checkForValidSaveState();
  void setCurrentIndex(const QModelIndex& index);
  /** Adds a data view of the type under the current item. */
  void addRepresentation(VXRepresentation::Type type);
  /** Removes the item and everything under it; the objects are deleted once control returns to the
   * event loop. */
  void removeItem(const QModelIndex& index);
  void reloadItem(const QModelIndex& index);

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  void showSettingsPage(const QModelIndex& index);
  void releaseSettingsPage();
  void onCustomContextMenuRequested(const QPoint& pos);
  void addPresetActions(QMenu* menu, const QModelIndex& index);
  void addAnnotationActions(QMenu* menu);
  void report(const QString& message);
  /** Reports an error of a state load, up to k_MaxReportedStateErrors of them per load. */
  void reportStateError(const QString& message);
  QModelIndex loadFilterHelper(const QModelIndex& parent, const QString& itemType,
                               const nlohmann::json& itemData,
                               const QMap<int, VXAbstractViewWidget*>& views);
  QModelIndex loadRepresentationHelper(const QModelIndex& parent, const QString& itemType,
                                       const nlohmann::json& itemData,
                                       const QMap<int, VXAbstractViewWidget*>& views);
  QModelIndex loadDataSource(const QModelIndex& parent, const QString& itemType,
                             const nlohmann::json& itemData,
                             const QMap<int, VXAbstractViewWidget*>& views,
                             QList<VXDataSource*>& loadedSources);
  QModelIndex loadTopLevelItem(const QString& itemType, const nlohmann::json& itemData,
                               const QMap<VXAbstractViewWidget*, int>& viewIndexMap,
                               const QMap<int, VXAbstractViewWidget*>& views,
                               QList<VXBridgeObject*>& loadedBridges);

  VXPipelineModel* m_Model = nullptr;
  QSplitter* m_Splitter = nullptr;
  QTreeView* m_TreeView = nullptr;
  QScrollArea* m_SettingsArea = nullptr;
  QPointer<QWidget> m_CurrentPage;
  bool m_ValidSaveState = true;
  /** Nesting of the running tree reads; the error count belongs to the outermost. */
  int m_StateLoadDepth = 0;
  int m_StateErrors = 0;
};
