#pragma once

#include "KXVtkLib_export.h"

#include "quadview/annotations/AnnotationId.hpp"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QList>
#include <QtCore/QString>

#include <array>
#include <vector>

class QWidget;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotation;
class VXQuadViewAnnotationsController;

/**
 * The rulers and marks of the three slice panes of one quad view as one
 * table: type, name, pane, slice, length or shape, and the lock. Rows follow
 * the controllers: an added annotation gets a row at the end, a removed one
 * loses its row, a changed one is redrawn. Names and locks are edited here;
 * the table's own actions (navigate, delete, clear) act on the controllers.
 *
 * The confirmations the table's users ask before deleting are static, so
 * that the floating editors and the pane menu ask the same questions.
 */
class KXVTKLIB_EXPORT VXQuadViewAnnotationsTableModel : public QAbstractTableModel
{
  Q_OBJECT

public:
  enum Column : int
  {
    TypeColumn = 0,
    NameColumn = 1,
    PaneColumn = 2,
    SliceColumn = 3,
    SummaryColumn = 4,
    LockedColumn = 5,
    ColumnCount = 6
  };

  /** Lists the annotations the controllers hold now, by slice pane index; null entries are skipped.
   */
  explicit VXQuadViewAnnotationsTableModel(
    const std::array<VXQuadViewAnnotationsController*, 3>& controllers, QObject* parent = nullptr);
  ~VXQuadViewAnnotationsTableModel() override;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

  /** The annotation of @p row, or null. */
  VXQuadViewAnnotation* annotationAt(int row) const;
  /** The row of @p id, or -1. */
  int findRow(const AnnotationId& id) const;
  /** The row of @p id, or -1. */
  int rowFor(const AnnotationId& id) const;
  /** The slice pane index of @p row, or -1. */
  int paneOfRow(int row) const;

  /** Moves the slices to the annotation of @p row. */
  void navigateToRow(int row);
  /** Removes the annotation of @p row from its controller; no question asked. */
  void removeAnnotationByRow(int row);
  /** Removes the annotations of @p rows; the ids are taken first, so the rows cannot shift. */
  void removeAnnotationsByRows(QList<int> rows);
  /** Empties the three controllers. */
  void clearAllAnnotations();

  /** "Delete Annotation": true when the user accepts deleting @p name. */
  static bool confirmDeleteOne(QWidget* parent, const QString& name);
  /** "Delete Annotations": true when the user accepts deleting @p count annotations. */
  static bool confirmDeleteMany(QWidget* parent, int count);
  /** "Clear Annotations": true when the user accepts clearing everything in @p scope. */
  static bool confirmClearAll(QWidget* parent, QString scope);

private:
  struct Row
  {
    int pane = -1;
    AnnotationId id;
  };

  void onAnnotationAdded(const AnnotationId& id);
  void onAnnotationRemoved(const AnnotationId& id);
  void onAnnotationChanged(const AnnotationId& id);
  /** The slice pane index of the controller that sent the signal now handled, or -1. */
  int paneIdxOfSender() const;

  std::array<VXQuadViewAnnotationsController*, 3> m_Controllers{};
  std::vector<Row> m_Rows;
};
} // namespace voxelia::quadview::annotations
