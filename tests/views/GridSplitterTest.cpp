// The grid of cells with splitters: splits and spans, closing and merging,
// the last cell, activation, equalizing, dragging and the saved grid.
#include "ViewTestSupport.hpp"

#include <KXComponents/AbstractKXGridSplitterWidget.hpp>

#include <QtCore/QMap>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QLabel>

#include <string>
#include <vector>

namespace
{
/** Cells are labels named "cell N"; every hook call is recorded. */
class TestGrid : public AbstractKXGridSplitterWidget
{
public:
  TestGrid()
  {
    resize(400, 300);
    setInitialWidget(makeCell());
  }

  QLabel* cell(const QString& name) const { return findChild<QLabel*>(name); }
  QWidget* split(const QString& name, bool column)
  {
    return column ? addColumn(cell(name)) : addRow(cell(name));
  }

  /** Loads a saved grid with the protected building blocks. */
  void load(const nlohmann::json& input)
  {
    clearGrid();
    ASSERT_TRUE(setGridShape(input.at("grid_rows").get<int>(), input.at("grid_cols").get<int>(),
                             input.at("col_widths").get<std::vector<double>>(),
                             input.at("row_heights").get<std::vector<double>>()));
    for (const auto& entry : input.at("grid_cells"))
    {
      auto* label = new QLabel(this);
      ASSERT_TRUE(
        appendCell(label, entry.at("row_span").get<int>(), entry.at("col_span").get<int>()));
      loadWidgetState(label, entry.at("widget_state"));
      connectWidget(label);
      label->show();
    }
    EXPECT_FALSE(hasFreeSlot());
    markWidgetActive(allWidgets().value(0));
    updateAllClosable();
    layoutChildren();
  }

  QMap<QWidget*, bool> closable;
  std::vector<std::pair<QWidget*, QWidget*>> created;
  std::vector<QWidget*> closing;
  std::vector<std::pair<QWidget*, QWidget*>> activeChanges;

protected:
  QWidget* createSplitWidget(QWidget*) override { return makeCell(); }
  void saveWidgetState(QWidget* widget, nlohmann::json& state) const override
  {
    state["name"] = widget->objectName().toStdString();
  }
  void loadWidgetState(QWidget* widget, const nlohmann::json& state) override
  {
    widget->setObjectName(QString::fromStdString(state.at("name").get<std::string>()));
  }
  void setWidgetClosable(QWidget* widget, bool value) override { closable[widget] = value; }
  void onWidgetCreated(QWidget* source, QWidget* widget) override
  {
    created.emplace_back(source, widget);
  }
  void onWidgetClosing(QWidget* widget) override { closing.push_back(widget); }
  void onActiveWidgetChanged(QWidget* previous, QWidget* current) override
  {
    activeChanges.emplace_back(previous, current);
  }

private:
  QLabel* makeCell()
  {
    auto* label = new QLabel(this);
    label->setObjectName(QStringLiteral("cell %1").arg(m_Next++));
    return label;
  }
  int m_Next = 1;
};

QStringList names(const QList<QWidget*>& widgets)
{
  QStringList result;
  for (QWidget* widget : widgets)
    result << widget->objectName();
  return result;
}
} // namespace

TEST(GridSplitter, SplitsAddColumnsBesideAndRowsBelowWithSpans)
{
  TestGrid grid;
  EXPECT_EQ(grid.widgetCount(), 1);
  EXPECT_EQ(grid.activeWidget(), grid.cell("cell 1"));

  QWidget* second = grid.split("cell 1", true);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->objectName(), "cell 2");
  EXPECT_EQ(grid.columnCount(), 2);
  EXPECT_EQ(grid.rowCount(), 1);
  EXPECT_EQ(grid.cellOf(second), QRect(1, 0, 1, 1));
  ASSERT_EQ(grid.created.size(), 1u);
  EXPECT_EQ(grid.created[0].first, grid.cell("cell 1"));
  EXPECT_EQ(grid.created[0].second, second);
  EXPECT_EQ(second->parentWidget(), &grid);
  EXPECT_FALSE(second->isHidden());

  // a row below cell 2: cell 1 now spans both rows
  QWidget* third = grid.split("cell 2", false);
  EXPECT_EQ(grid.rowCount(), 2);
  EXPECT_EQ(grid.cellOf(grid.cell("cell 1")), QRect(0, 0, 1, 2));
  EXPECT_EQ(grid.cellOf(third), QRect(1, 1, 1, 1));

  // splitting the tall cell 1 divides its own span: no new row
  QWidget* fourth = grid.split("cell 1", false);
  EXPECT_EQ(grid.rowCount(), 2);
  EXPECT_EQ(grid.cellOf(grid.cell("cell 1")), QRect(0, 0, 1, 1));
  EXPECT_EQ(grid.cellOf(fourth), QRect(0, 1, 1, 1));
  EXPECT_EQ(names(grid.allWidgets()), QStringList({ "cell 1", "cell 2", "cell 4", "cell 3" }));

  // the halves share the width of the column that was split
  ASSERT_EQ(grid.columnWidths().size(), 2u);
  EXPECT_DOUBLE_EQ(grid.columnWidths()[0], 0.5);
  EXPECT_DOUBLE_EQ(grid.rowHeights()[1], 0.5);

  // geometry: two columns of (400 - 5) / 2 pixels with the handle between
  EXPECT_EQ(grid.cell("cell 1")->geometry(), QRect(0, 0, 198, 148));
  EXPECT_EQ(grid.cell("cell 2")->geometry().left(), 203);
  EXPECT_EQ(grid.cell("cell 3")->geometry().bottom(), 299);

  EXPECT_EQ(grid.addColumn(new QLabel()), nullptr) << "a widget outside the grid can't be split";
}

TEST(GridSplitter, LastCellIsNotClosableAndClosingGivesTheAreaToANeighbour)
{
  TestGrid grid;
  QWidget* first = grid.cell("cell 1");
  EXPECT_FALSE(grid.closable.value(first, true));
  EXPECT_FALSE(grid.closeCell(first));
  EXPECT_EQ(grid.widgetCount(), 1);

  QWidget* second = grid.split("cell 1", true);
  EXPECT_TRUE(grid.closable.value(first));
  EXPECT_TRUE(grid.closable.value(second));
  QWidget* third = grid.split("cell 2", false);

  grid.markWidgetActive(third);
  grid.activeChanges.clear();
  QPointer<QWidget> closed = third;
  EXPECT_TRUE(grid.closeCell(third));
  ASSERT_EQ(grid.closing.size(), 1u);
  EXPECT_EQ(grid.closing[0], third);
  // cell 2 above takes the area back and the row line goes
  EXPECT_EQ(grid.rowCount(), 1);
  EXPECT_EQ(grid.cellOf(second), QRect(1, 0, 1, 1));
  // the closed cell was active: the first takes over
  EXPECT_EQ(grid.activeWidget(), first);
  ASSERT_EQ(grid.activeChanges.size(), 1u);
  EXPECT_EQ(grid.activeChanges[0].second, first);
  viewtest::pump();
  EXPECT_TRUE(closed.isNull()) << "a closed cell's widget is deleted";

  EXPECT_TRUE(grid.closeCell(first));
  EXPECT_EQ(grid.widgetCount(), 1);
  EXPECT_EQ(grid.columnCount(), 1);
  EXPECT_EQ(grid.cellOf(second), QRect(0, 0, 1, 1));
  EXPECT_FALSE(grid.closable.value(second, true));
  EXPECT_EQ(second->geometry(), QRect(0, 0, 400, 300));
}

TEST(GridSplitter, ResetKeepsTheActiveCellAndEqualizeSharesTheSpace)
{
  TestGrid grid;
  grid.split("cell 1", true);
  grid.split("cell 2", true);
  grid.split("cell 3", false);
  EXPECT_EQ(grid.columnCount(), 3);
  EXPECT_DOUBLE_EQ(grid.columnWidths()[0], 0.5);
  grid.equalizeColumnWidths();
  for (double width : grid.columnWidths())
    EXPECT_DOUBLE_EQ(width, 1.0 / 3.0);
  grid.equalizeRowHeights();
  EXPECT_DOUBLE_EQ(grid.rowHeights()[0], 0.5);

  grid.markWidgetActive(grid.cell("cell 3"));
  grid.resetGrid();
  EXPECT_EQ(grid.widgetCount(), 1);
  EXPECT_EQ(grid.allWidgets().value(0), grid.cell("cell 3"));
  EXPECT_EQ(grid.closing.size(), 3u);
  EXPECT_EQ(grid.cell("cell 3")->geometry(), QRect(0, 0, 400, 300));
}

TEST(GridSplitter, DraggingAColumnHandleMovesTheLineAndPressingACellActivatesIt)
{
  TestGrid grid;
  grid.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&grid));
  QWidget* second = grid.split("cell 1", true);
  QWidget* first = grid.cell("cell 1");
  const int handleX = first->geometry().right() + 3;
  QTest::mousePress(&grid, Qt::LeftButton, Qt::NoModifier, QPoint(handleX, 150));
  QMouseEvent move(QEvent::MouseMove, QPointF(100, 150), grid.mapToGlobal(QPointF(100, 150)),
                   Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&grid, &move);
  QTest::mouseRelease(&grid, Qt::LeftButton, Qt::NoModifier, QPoint(100, 150));
  // the line's gap now starts at 100 - 2 pixels
  EXPECT_NEAR(grid.columnWidths()[0], 98.0 / 395.0, 1e-9);
  EXPECT_NEAR(grid.columnWidths()[0] + grid.columnWidths()[1], 1.0, 1e-12);
  EXPECT_EQ(first->width(), 98);
  EXPECT_EQ(second->geometry().left(), 103);

  // a press inside a cell's area is no drag
  const double before = grid.columnWidths()[0];
  QTest::mousePress(&grid, Qt::LeftButton, Qt::NoModifier, QPoint(300, 150));
  QMouseEvent move2(QEvent::MouseMove, QPointF(350, 150), grid.mapToGlobal(QPointF(350, 150)),
                    Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&grid, &move2);
  EXPECT_DOUBLE_EQ(grid.columnWidths()[0], before);
  QTest::mouseRelease(&grid, Qt::LeftButton, Qt::NoModifier, QPoint(350, 150));

  // pressing a cell makes it active
  grid.markWidgetActive(first);
  grid.activeChanges.clear();
  QTest::mouseClick(second, Qt::LeftButton);
  EXPECT_EQ(grid.activeWidget(), second);
  ASSERT_EQ(grid.activeChanges.size(), 1u);
  EXPECT_EQ(grid.activeChanges[0].first, grid.cell("cell 1"));
  // the same cell again is no change
  QTest::mouseClick(second, Qt::LeftButton);
  EXPECT_EQ(grid.activeChanges.size(), 1u);
}

TEST(GridSplitter, SavedGridLoadsIntoAnEqualGridAndClosingBetweenSpansKeepsCellsRectangular)
{
  TestGrid grid;
  grid.split("cell 1", true);
  grid.split("cell 2", false);
  grid.split("cell 3", true);
  nlohmann::json saved;
  grid.saveGridState(saved);
  EXPECT_EQ(saved.at("grid_version"), 1);
  EXPECT_EQ(saved.at("grid_rows"), 2);
  EXPECT_EQ(saved.at("grid_cols"), 3);
  ASSERT_EQ(saved.at("grid_cells").size(), 4u);
  EXPECT_EQ(saved.at("grid_cells")[0].at("row_span"), 2);
  EXPECT_EQ(saved.at("grid_cells")[1].at("col_span"), 2);
  EXPECT_EQ(saved.at("grid_cells")[1].at("widget_state").at("name"), "cell 2");

  TestGrid other;
  other.load(saved);
  EXPECT_EQ(names(other.allWidgets()), QStringList({ "cell 1", "cell 2", "cell 3", "cell 4" }));
  EXPECT_EQ(other.cellOf(other.cell("cell 2")), QRect(1, 0, 2, 1));
  nlohmann::json again;
  other.saveGridState(again);
  EXPECT_EQ(again, saved);

  // 1 spans two rows beside 2 over 3 | 4: closing 2 gives its area to 3 and 4 below it
  EXPECT_EQ(grid.columnCount(), 3);
  EXPECT_TRUE(grid.closeCell(grid.cell("cell 2")));
  EXPECT_EQ(grid.cellOf(grid.cell("cell 3")), QRect(1, 0, 1, 1));
  EXPECT_EQ(grid.cellOf(grid.cell("cell 4")), QRect(2, 0, 1, 1));
  EXPECT_EQ(grid.rowCount(), 1);
  for (QWidget* widget : grid.allWidgets())
    EXPECT_EQ(grid.cellOf(widget).height(), 1) << widget->objectName().toStdString();
}
