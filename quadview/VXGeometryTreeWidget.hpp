#pragma once

#include "KXVtkLib_export.h"
#include "visualization/VXDataSource.hpp" // guarded pointers need the complete type

#include <QtCore/QList>
#include <QtCore/QMetaObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QWidget>

class QTreeWidget;
class QTreeWidgetItem;
class VXPipelineModel;

/**
 * The image geometries of a pipeline, as a tree of bridges and their data
 * sources, for choosing what a quad view shows. It reads the module's
 * VXPipelineModel and lists only the data sources whose output is a
 * vtkImageData; bridges without one are left out. It follows the model as
 * rows come and go. A geometry is named by its path: bridge name + "/" +
 * source name, the path the quad view keeps in its settings.
 */
class KXVTKLIB_EXPORT VXGeometryTreeWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXGeometryTreeWidget(QWidget* parent = nullptr);
  ~VXGeometryTreeWidget() override;

  /** Lists the image geometries of @p model and follows its changes; null empties the tree. */
  void setPipelineModel(VXPipelineModel* model);
  VXPipelineModel* pipelineModel() const;

  /** The image geometries listed, in the tree's order. */
  QList<VXDataSource*> dataSources() const;
  /** The geometry of the current row, or null when a bridge or nothing is current. */
  VXDataSource* selectedDataSource() const;
  /** Makes @p source's row current; false when it isn't listed. */
  bool selectDataSource(VXDataSource* source);
  QTreeWidget* treeWidget() const { return m_Tree; }

  /** Bridge name + "/" + source name, or the source's name when it hangs from no bridge. */
  static QString geometryPath(const VXDataSource* source);
  /** Whether the source's output is an image geometry. */
  static bool isImageGeometry(const VXDataSource* source);

public Q_SLOTS:
  /** Lists the model's image geometries again, keeping the current one when it remains. */
  void refresh();

Q_SIGNALS:
  /** A geometry was chosen: double click or Enter on its row. */
  void geometryChosen(VXDataSource* source, QString path);
  /** The current row changed; null and an empty path when it is no geometry. */
  void currentGeometryChanged(VXDataSource* source, QString path);

private:
  VXDataSource* sourceOf(const QTreeWidgetItem* item) const;
  void onCurrentItemChanged(QTreeWidgetItem* current);
  void onItemActivated(QTreeWidgetItem* item);

  QTreeWidget* m_Tree = nullptr;
  QPointer<VXPipelineModel> m_Model;
  QList<QMetaObject::Connection> m_ModelConnections;
  QList<QPointer<VXDataSource>> m_Sources;
};
