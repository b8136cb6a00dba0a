#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QColor>

/**
 * The rows of an indexed (categorical) colour map as a table for the colour
 * editor: one row per annotated value, with its colour, value and annotation.
 * The editor fills it from a VXLookupTable and writes the edited rows back; the
 * model itself knows nothing of VTK.
 */
class KXVTKLIB_EXPORT VXLookupTableModel : public QAbstractTableModel
{
  Q_OBJECT

public:
  /** One row: the colour of a value and its label. */
  struct LUTEntry
  {
    QColor color;
    QString value;
    QString annotation;
  };

  static inline const QString k_TypeName = QStringLiteral("VXLookupTableModel");
  static constexpr int k_ColorColumn = 0;
  static constexpr int k_ValueColumn = 1;
  static constexpr int k_AnnotationColumn = 2;
  static inline const QString k_ColorDialogTitle = QStringLiteral("Select Color");

  explicit VXLookupTableModel(QObject* parent = nullptr);
  ~VXLookupTableModel() override;

  /** Appends a row. */
  void addRow(const QColor& color, const QString& value, const QString& annotation);
  /** Removes the row of @p index; an invalid index is ignored. */
  void removeRow(const QModelIndex& index);
  /** Removes all rows (a model reset). */
  void clearTable();
  /** Replaces all rows (a model reset). */
  void setTable(const QList<LUTEntry>& table);
  /** The rows, in order. */
  QList<LUTEntry> table() const;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  /** Always 3: colour, value, annotation. */
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  /** The colour (as QColor), value or annotation for the display and edit roles. */
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  /**
   * Stores a colour, value or annotation for the edit role; emits dataChanged, and
   * valueChanged for the value column.
   */
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  /** Every valid cell is editable. */
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  /** "Color", "Value" and "Annotation" over the columns. */
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
  using QAbstractTableModel::removeRow;

public Q_SLOTS:
  /** Lets the user pick the colour of the row of @p index; cancelling keeps the old colour. */
  void colorButtonClicked(QModelIndex index);

Q_SIGNALS:
  /** The value of a row was edited: the annotated value it stands for changed. */
  void valueChanged(QModelIndex index);

private:
  QList<LUTEntry> m_Table;
};
