#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QPointer>
#include <QtCore/QRect>
#include <QtWidgets/QWidget>

#include <string_view>
#include <vector>

/**
 * A grid of widgets in rows and columns with draggable splitters between the
 * rows and between the columns.
 *
 * Model: a row-major table of rows x columns slots. Every slot names the
 * widget that covers it, and a widget covers a rectangle of slots (its row
 * span and column span). Column widths and row heights are fractions of the
 * grid that add up to 1; a splitter is a grid line, so dragging it moves the
 * edges of every cell on that line.
 *
 * Splitting a cell one column wide inserts a column beside it: the other
 * cells of that column grow by one column of span, the old column's width is
 * shared by the two. A cell spanning several columns is divided within its
 * own span instead. Rows work alike. Closing a cell gives its area to the
 * neighbours on one side whose edges lie within the closed cell's edge; grid
 * lines that no longer separate anything are dropped afterwards.
 *
 * Saved state lists the cells in row-major order of their top-left slot, each
 * with its spans; on load each cell takes the next free slot, as the cells of
 * an HTML table do, so positions need no keys of their own.
 *
 * Subclasses say how a cell splits (createSplitWidget), how a widget's state
 * is saved and loaded, how "closable" is shown, and hear about created,
 * closing and newly active widgets. The last widget can't be closed.
 */
class KXCOMPONENTS_EXPORT AbstractKXGridSplitterWidget : public QWidget
{
  Q_OBJECT

public:
  static constexpr std::string_view k_GridVersion = "grid_version";
  static constexpr std::string_view k_GridRows = "grid_rows";
  static constexpr std::string_view k_GridCols = "grid_cols";
  static constexpr std::string_view k_ColWidths = "col_widths";
  static constexpr std::string_view k_RowHeights = "row_heights";
  static constexpr std::string_view k_GridCells = "grid_cells";
  static constexpr std::string_view k_RowSpan = "row_span";
  static constexpr std::string_view k_ColSpan = "col_span";
  static constexpr std::string_view k_WidgetState = "widget_state";
  /** The format written by saveGridState. */
  static constexpr int k_CurrentGridVersion = 1;
  /** Thickness of a splitter handle in pixels. */
  static constexpr int k_HandleWidth = 5;
  /** Smallest size a dragged splitter leaves a row or column, in pixels. */
  static constexpr int k_MinimumCellSize = 24;

  explicit AbstractKXGridSplitterWidget(QWidget* parent = nullptr);
  ~AbstractKXGridSplitterWidget() override;

  /** Empties the grid and makes @p widget its only cell, active. */
  void setInitialWidget(QWidget* widget);

  /** The active cell's widget; null when the grid is empty. */
  QWidget* activeWidget() const;
  /** The widgets in row-major order of their top-left slot. */
  QList<QWidget*> allWidgets() const;
  int widgetCount() const;

  int rowCount() const { return m_Rows; }
  int columnCount() const { return m_Cols; }
  /** Fractions of the grid's width, one per column. */
  const std::vector<double>& columnWidths() const { return m_ColWidths; }
  /** Fractions of the grid's height, one per row. */
  const std::vector<double>& rowHeights() const { return m_RowHeights; }
  /** The slots a widget covers: x = column, y = row, width = column span, height = row span; null
   * if absent. */
  QRect cellOf(const QWidget* widget) const;

  /**
   * Writes the grid: version, rows, columns, widths, heights and the cells with
   * their spans, each cell's k_WidgetState filled by saveWidgetState.
   */
  void saveGridState(nlohmann::json& output) const;

public Q_SLOTS:
  /** Splits @p widget's cell top and bottom; the new widget is below. Returns it, or null. */
  QWidget* addRow(QWidget* widget);
  /** Splits @p widget's cell left and right; the new widget is on the right. Returns it, or null.
   */
  QWidget* addColumn(QWidget* widget);
  /** Removes @p widget's cell and deletes the widget later; the last cell stays. Returns whether it
   * closed. */
  bool closeCell(QWidget* widget);
  /** Closes every cell but the active one (or the first). */
  void resetGrid();
  void equalizeColumnWidths();
  void equalizeRowHeights();
  /** Makes @p widget the active cell; onActiveWidgetChanged hears of a change. */
  void markWidgetActive(QWidget* widget);
  /** Tells every cell whether it may close: only when there is more than one. */
  void updateAllClosable();
  /** Places the widgets and splitters on the grid's current size. */
  void layoutChildren();

protected:
  /** The widget that a split of @p source adds; the grid takes ownership. */
  virtual QWidget* createSplitWidget(QWidget* source) = 0;
  /** Fills @p widgetState, the cell's k_WidgetState object. */
  virtual void saveWidgetState(QWidget* widget, nlohmann::json& widgetState) const;
  /** Reads a cell's k_WidgetState object into @p widget. */
  virtual void loadWidgetState(QWidget* widget, const nlohmann::json& widgetState);
  /** Shows whether @p widget may close. */
  virtual void setWidgetClosable(QWidget* widget, bool closable);
  /** @p created was split off @p source and is placed, connected and shown. */
  virtual void onWidgetCreated(QWidget* source, QWidget* created);
  /** @p widget is about to leave the grid. */
  virtual void onWidgetClosing(QWidget* widget);
  virtual void onActiveWidgetChanged(QWidget* previous, QWidget* current);
  /** Hooks a widget entering the grid; the base activates a cell pressed with the mouse. */
  virtual void connectWidget(QWidget* widget);
  /** Undoes connectWidget: the grid hears nothing more from @p widget. */
  void disconnectWidget(QWidget* widget);

  /** Disconnects and deletes (later) every widget; the grid is left with no cell. */
  void clearGrid();
  /**
   * Sets up an empty grid for loading. Missing or non-positive sizes become
   * equal shares. Returns false, changing nothing, for a shape below 1 x 1.
   */
  bool setGridShape(int rows, int cols, const std::vector<double>& colWidths,
                    const std::vector<double>& rowHeights);
  /** Puts @p widget at the next free slot with the given spans, cut to the grid. Returns false when
   * full. */
  bool appendCell(QWidget* widget, int rowSpan, int colSpan);
  /** Whether some slot has no widget. */
  bool hasFreeSlot() const;

  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

private:
  /** A grid line under the mouse: a column line (vertical) or a row line, by index of the cell
   * before it. */
  struct Handle
  {
    bool vertical = false;
    int index = -1;
    bool valid() const { return index >= 0; }
  };

  QWidget*& slot(int row, int col) { return m_Slots[static_cast<size_t>(row * m_Cols + col)]; }
  QWidget* slot(int row, int col) const { return m_Slots[static_cast<size_t>(row * m_Cols + col)]; }
  QWidget* insertSplit(QWidget* widget, bool asColumn);
  void insertColumn(int after);
  void insertRow(int after);
  void removeRedundantLines();
  void adoptWidget(QWidget* widget);
  /** Left edges of the columns (or top edges of the rows) in pixels, with the end as last entry. */
  std::vector<int> edges(bool columns) const;
  Handle handleAt(const QPoint& pos) const;
  void updateHoverCursor(const QPoint& pos);

  int m_Rows = 0;
  int m_Cols = 0;
  std::vector<double> m_ColWidths;
  std::vector<double> m_RowHeights;
  /** m_Rows * m_Cols slots, row-major; each names the widget covering it or is null. */
  std::vector<QWidget*> m_Slots;
  QPointer<QWidget> m_ActiveWidget;
  Handle m_Drag;
  bool m_HoverCursorSet = false;
};
