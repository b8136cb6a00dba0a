#pragma once

#include "KXVtkLib_export.h"
#include "utils/KXVtkModuleConstants.hpp"
#include "visualization/VXRepresentation.hpp"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QList>
#include <QtCore/QModelIndex>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <cstdint>

class FileToVXBridge;
class KXToVXBridge;
class QWidget;
class VXBridgeObject;
class VXCoreObject;
class VXDataSource;
class VXFilter;
class VXGlobalSource;
class VXImageSliceRepPimpl;
class VXPipeline;

/**
 * The item model over one pipeline's tree, for the pipeline browser and the
 * quad view's geometry tree. The pipeline makes the items and announces them
 * by signal; this model is the one holder of the rows: which item stands under
 * which, and in what order. Bridges and global sources are top-level rows, a
 * data source stands under its bridge, filters and data views under a data
 * source or a filter.
 *
 * Two columns under any parent: column 0 is left to the delegate, column 1
 * carries name, check box and icon. Indices handed out by the lookup
 * operations are of column 0.
 *
 * Removing a row removes its children first (depth first), tells the pipeline
 * and the bridge, and then deletes the item's object later (deleteLater), so an
 * item may ask for its own removal from one of its slots. An item deleted by
 * someone else (a bridge clearing its data sources) loses its rows on its
 * destruction.
 */
class KXVTKLIB_EXPORT VXPipelineModel : public QAbstractItemModel
{
  Q_OBJECT

public:
  /** A model of @p pipeline's tree that follows the pipeline's item signals from now on. */
  explicit VXPipelineModel(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXPipelineModel() override;

  QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

  VXPipeline* pipeline() const { return m_Pipeline; }

  /** Adds a bridge made elsewhere (the state loader) through the pipeline; its row's index, or
   * invalid. */
  QModelIndex addBridgeObject(VXBridgeObject* bridge);
  /** Adds a filter under the item at @p parent through the pipeline; the new row's index, or
   * invalid. */
  QModelIndex addFilter(const QModelIndex& parent, VXFilter* filter);
  /** Adds a global source through the pipeline as a top-level row; its index, or invalid. */
  QModelIndex addGlobalSource(VXGlobalSource* source);
  /** Makes a data view of the type under the item at @p parent; the new row's index, or invalid. */
  QModelIndex addRepresentation(const QModelIndex& parent, VXRepresentation::Type type);
  /** Adds a data view read from a state file under the item at @p parent; the new row's index, or
   * invalid. */
  QModelIndex loadRepresentation(const QModelIndex& parent, VXRepresentation* representation);

  bool isPipeline(const QModelIndex& index) const;
  bool isDataSource(const QModelIndex& index) const;
  bool isFilter(const QModelIndex& index) const;
  bool isRepresentation(const QModelIndex& index) const;
  bool isGlobalSource(const QModelIndex& index) const;
  /** True for a data source or a filter. */
  bool canAddFilter(const QModelIndex& index) const;
  /** True for a data source or a filter. */
  bool canAddRepresentation(const QModelIndex& index) const;
  /** True for a top-level row whose bridge reads a file. */
  bool canReload(const QModelIndex& index) const;
  /** True for a row that holds a core object. */
  bool canSave(const QModelIndex& index) const;
  /**
   * Whether another item already shows @p name: a bridge among the top-level
   * bridges, any other item among all core objects of the tree (exact match).
   */
  bool itemNameIsDuplicate(const QModelIndex& index, const QString& name) const;

  /** The core object of a data source, filter, data view or global source row; null otherwise. */
  VXCoreObject* getCoreObject(const QModelIndex& index) const;
  /** The bridge of a top-level bridge row; null otherwise. */
  VXBridgeObject* getPipelineObject(const QModelIndex& index) const;
  VXFilter* getFilter(const QModelIndex& index) const;
  VXRepresentation* getRepresentation(const QModelIndex& index) const;
  VXGlobalSource* getGlobalSource(const QModelIndex& index) const;
  /** The data source whose path name (bridge > source) is @p pathName; null if none. */
  VXDataSource* getDataSource(const QString& pathName) const;
  /** The data sources in the rows under @p index. */
  QList<VXDataSource*> getChildDataSources(const QModelIndex& index) const;
  /** The data sources in the rows under each of the bridges, in the bridges' order. */
  QList<VXDataSource*> getChildDataSources(const QList<VXBridgeObject*>& bridges) const;
  /** Top-level bridges in row order. */
  QList<VXBridgeObject*> getAllBridgeObjects() const;
  /** Every core object, global sources included, depth first in row order. */
  QList<VXCoreObject*> getAllCoreObjects() const;
  QList<VXDataSource*> getAllDataSources() const;
  /** The path names of all data sources, the keys getDataSource(QString) takes. */
  QStringList getAllDataSourceNames() const;
  QList<VXFilter*> getAllFilters() const;
  QList<VXRepresentation*> getAllRepresentations() const;
  /** The index (column 0) of the row that holds @p object; invalid if none does. */
  QModelIndex helperIndex(QObject* object) const;
  /** The index (column 0) of the bridge named @p path or the core object whose path name is @p
   * path. */
  QModelIndex pathIndex(const QString& path) const;
  /** The settings page of the row's core object; a global source makes a new one on each ask. */
  QWidget* itemWidget(const QModelIndex& index);
  /** Shows the data set info window of a data view or data source row. */
  void showInfoWidget(const QModelIndex& index);

  /**
   * Joins the image slice data views read from a state file again: every
   * implementation whose link flag the file set follows the others.
   */
  void linkLoadedRepresentations();

  /** The image slice implementations whose slices follow each other, dead ones left out. */
  QList<VXImageSliceRepPimpl*> linkedViews() const;

  /** The smallest free suffix for the base name among the bridges: 0 if unused, else the first gap
   * from 1. */
  static int GetNameSuffixCounter(const QList<VXBridgeObject*>& items, const QString& baseName);
  static int GetNameSuffixCounter(const QList<VXCoreObject*>& items, const QString& baseName);

public Q_SLOTS:
  void pipelineBridgeAdded(VXBridgeObject* bridge);
  void dataSourceAdded(VXDataSource* source);
  void filterAdded(VXFilter* filter);
  void representationAdded(VXRepresentation* representation);
  void removePipeline(VXBridgeObject* bridge);
  void removeGlobalSource(VXGlobalSource* source);
  void removeLeafItem(VXCoreObject* coreObject);
  void removeItems(const QModelIndexList& indices);
  void removeItem(const QModelIndex& index);
  void removeDataSource(VXDataSource* source);
  void coreObjectViewStateChanged(VXCoreObject* coreObject, bool isEnabled);
  void onFileObjectFlagged(FileToVXBridge* bridge, bool flagged);

Q_SIGNALS:
  void kxToVXBridgeObjectAdded(KXToVXBridge* bridgeObj);
  void kxToVXBridgeObjectRemoved();
  void representationViewInstanceAdded();
  void applyDefaultPresetRequest(QModelIndex index);
  void spreadsheetDataChanged(QModelIndex index);
  void selectIndexRequest(QModelIndex indexToSelect);
  void itemVisibilityChanged(QModelIndex index, bool visibility);
  void linkingDataViews(bool isLinking);

private Q_SLOTS:
  void linkImageSliceSlices(VXRepresentationPimpl* representation);
  void unlinkImageSliceSlices(VXRepresentationPimpl* representation);
  void updateLinkedSlices(int sliceNumber, VXImageSliceRepPimpl* sourceView);
  void updateLinkedPhysicalUnits(bool linkPhysicalUnits, VXImageSliceRepPimpl* sourceView);
  void updateLinkedSliceDirections(KXVtkModule::constants::SliceDirection direction,
                                   VXImageSliceRepPimpl* sourceView);

private:
  class TreeItem;

  TreeItem* itemFromIndex(const QModelIndex& index) const;
  QModelIndex indexOfItem(const TreeItem* item, int column = 0) const;
  const QList<TreeItem*>& siblingsOf(const TreeItem* item) const;
  TreeItem* findItem(const QObject* object) const;
  /** Appends a row for the object under @p parentItem (null: top level). */
  TreeItem* insertItem(TreeItem* parentItem, std::int32_t kind, QObject* object);
  /** Takes the rows of the item's subtree out, children first, deleting all but the item; objects
   * are left alone. */
  void removeItemRows(TreeItem* item);
  /** Removes the rows of @p item, tells the pipeline, and deletes the object later. */
  void removeTreeItem(TreeItem* item);
  /** The rows of an object that is being destroyed go; only its address is used. */
  void onObjectDestroyed(QObject* object);
  void flagChildren(TreeItem* item, bool flagged);
  void emitRowChanged(const TreeItem* item, const QList<int>& roles);
  void connectCoreObject(VXCoreObject* coreObject);
  /** The row of a bridge or global source follows its name. */
  void followName(VXBridgeObject* topLevel);
  template<typename Object, std::int32_t Kind>
  void collect(const QList<TreeItem*>& items, QList<Object*>& result) const;

  QList<TreeItem*> m_Items;
  VXPipeline* m_Pipeline = nullptr;
  // image slice implementations whose slices follow each other
  QList<QPointer<VXImageSliceRepPimpl>> m_LinkedViews;
};
