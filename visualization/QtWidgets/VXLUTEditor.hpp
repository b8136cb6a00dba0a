#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QDialog>

#include <vtkSmartPointer.h>

class KXColorButton;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTableView;
class VXColorMapEditorWidget;
class VXLookupTable;
class VXLookupTableModel;
class vtkColorTransferFunction;

/**
 * The colour map editor of a data view: a continuous map as editable points on a colour bar
 * (VXColorMapEditorWidget), a categorical map as rows of value, colour and label
 * (VXLookupTableModel: double-click a colour to change it, edit a value or label in place, add
 * and remove rows). The editor changes the table directly and reports every user edit with
 * colorMapEdited(); the data view decides what the edit means for its settings. Presets,
 * inversion and the NaN colour stay with the data view, which owns their state: the editor
 * asks for them through signals. Whatever changes the table otherwise (a preset, an inversion,
 * categorical mode) shows in the editor once control returns to the event loop.
 */
class KXVTKLIB_EXPORT VXLUTEditor : public QDialog
{
  Q_OBJECT

public:
  static inline const QString k_Title = QStringLiteral("Color Map Editor");
  static inline const QString k_NotANumberMessage =
    QStringLiteral("Row %1: \"%2\" is not a number; the row is left out of the color map.");

  explicit VXLUTEditor(QWidget* parent = nullptr);
  ~VXLUTEditor() override;

  /** Edits @p table, naming @p arrayName in the title; null empties the editor. */
  void setLookupTable(VXLookupTable* table, const QString& arrayName);
  VXLookupTable* lookupTable() const;
  /** Shows the table as it is now. */
  void refresh();

  VXColorMapEditorWidget* colorMapWidget() const;
  VXLookupTableModel* tableModel() const;
  QTableView* tableView() const;
  /** The message under the rows (a value that is not a number), or empty. */
  QString message() const;

Q_SIGNALS:
  /** The user changed the colours of the table. */
  void colorMapEdited();
  /** The user asked to invert the map. */
  void invertRequested();
  /** The user asked for the preset list. */
  void presetsRequested();
  /** The user picked a NaN colour. */
  void nanColorChanged(QColor color);

private:
  void applyRows();
  void addRow();
  void removeSelectedRows();
  void onCellDoubleClicked(const QModelIndex& index);
  /** The table's function changed: show it once the current change is over. */
  void onFunctionModified();
  void observe(vtkColorTransferFunction* function);

  QPointer<VXLookupTable> m_Table;
  QPointer<QLabel> m_ArrayLabel;
  QPointer<QStackedWidget> m_Pages;
  QPointer<VXColorMapEditorWidget> m_ColorMapWidget;
  QPointer<VXLookupTableModel> m_Model;
  QPointer<QTableView> m_TableView;
  QPointer<QLabel> m_MessageLabel;
  QPointer<KXColorButton> m_NanColorButton;
  vtkSmartPointer<vtkColorTransferFunction> m_Function;
  unsigned long m_ModifiedObserver = 0;
  bool m_Filling = false;
  bool m_Applying = false;
  bool m_RefreshQueued = false;
};
