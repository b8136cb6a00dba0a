#include "KXComponents/AbstractKXGridSplitterWidget.hpp"

#include <QtCore/QDebug>
#include <QtCore/QEvent>
#include <QtGui/QMouseEvent>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace
{
std::string key(std::string_view name)
{
  return std::string(name);
}

/** @p sizes if it has @p count positive entries, normalised to a sum of 1; otherwise equal shares.
 */
std::vector<double> normalisedShares(const std::vector<double>& sizes, int count)
{
  std::vector<double> shares(static_cast<size_t>(count), 1.0 / count);
  if (static_cast<int>(sizes.size()) != count)
    return shares;
  double sum = 0.0;
  for (double size : sizes)
  {
    if (!(size > 0.0) || !std::isfinite(size))
      return shares;
    sum += size;
  }
  for (int i = 0; i < count; i++)
    shares[static_cast<size_t>(i)] = sizes[static_cast<size_t>(i)] / sum;
  return shares;
}
} // namespace

AbstractKXGridSplitterWidget::AbstractKXGridSplitterWidget(QWidget* parent)
  : QWidget(parent)
{
  // the splitter cursor follows the mouse over the handles
  setMouseTracking(true);
}

AbstractKXGridSplitterWidget::~AbstractKXGridSplitterWidget() = default;

// ---------------------------------------------------------------------------
// Queries

QWidget* AbstractKXGridSplitterWidget::activeWidget() const
{
  return m_ActiveWidget.data();
}

QList<QWidget*> AbstractKXGridSplitterWidget::allWidgets() const
{
  QList<QWidget*> widgets;
  for (QWidget* widget : m_Slots)
  {
    if (widget != nullptr && !widgets.contains(widget))
      widgets.append(widget);
  }
  return widgets;
}

int AbstractKXGridSplitterWidget::widgetCount() const
{
  return static_cast<int>(allWidgets().size());
}

QRect AbstractKXGridSplitterWidget::cellOf(const QWidget* widget) const
{
  if (widget == nullptr)
    return {};
  int top = m_Rows;
  int left = m_Cols;
  int bottom = -1;
  int right = -1;
  for (int row = 0; row < m_Rows; row++)
  {
    for (int col = 0; col < m_Cols; col++)
    {
      if (slot(row, col) != widget)
        continue;
      top = std::min(top, row);
      left = std::min(left, col);
      bottom = std::max(bottom, row);
      right = std::max(right, col);
    }
  }
  if (bottom < 0)
    return {};
  return QRect(left, top, right - left + 1, bottom - top + 1);
}

bool AbstractKXGridSplitterWidget::hasFreeSlot() const
{
  return std::find(m_Slots.begin(), m_Slots.end(), nullptr) != m_Slots.end();
}

// ---------------------------------------------------------------------------
// Building the grid

void AbstractKXGridSplitterWidget::setInitialWidget(QWidget* widget)
{
  if (widget == nullptr)
    return;
  const QList<QWidget*> previous = allWidgets();
  for (QWidget* old : previous)
  {
    if (old == widget)
      continue;
    disconnectWidget(old);
    old->hide();
    old->deleteLater();
  }
  m_Rows = 1;
  m_Cols = 1;
  m_ColWidths = { 1.0 };
  m_RowHeights = { 1.0 };
  m_Slots = { widget };
  m_ActiveWidget = nullptr;
  adoptWidget(widget);
  markWidgetActive(widget);
  updateAllClosable();
  layoutChildren();
}

void AbstractKXGridSplitterWidget::adoptWidget(QWidget* widget)
{
  if (widget->parentWidget() != this)
    widget->setParent(this);
  connectWidget(widget);
  widget->show();
}

QWidget* AbstractKXGridSplitterWidget::addRow(QWidget* widget)
{
  return insertSplit(widget, false);
}

QWidget* AbstractKXGridSplitterWidget::addColumn(QWidget* widget)
{
  return insertSplit(widget, true);
}

void AbstractKXGridSplitterWidget::insertColumn(int after)
{
  std::vector<QWidget*> grown;
  grown.reserve(static_cast<size_t>(m_Rows * (m_Cols + 1)));
  for (int row = 0; row < m_Rows; row++)
  {
    for (int col = 0; col < m_Cols; col++)
    {
      grown.push_back(slot(row, col));
      // the cells of the split column widen over the new one
      if (col == after)
        grown.push_back(slot(row, col));
    }
  }
  m_Slots = std::move(grown);
  const double half = m_ColWidths[static_cast<size_t>(after)] / 2.0;
  m_ColWidths[static_cast<size_t>(after)] = half;
  m_ColWidths.insert(m_ColWidths.begin() + after + 1, half);
  m_Cols++;
}

void AbstractKXGridSplitterWidget::insertRow(int after)
{
  const auto rowBegin = m_Slots.begin() + static_cast<std::ptrdiff_t>((after + 1) * m_Cols);
  std::vector<QWidget*> copied(m_Slots.begin() + after * m_Cols, rowBegin);
  m_Slots.insert(rowBegin, copied.begin(), copied.end());
  const double half = m_RowHeights[static_cast<size_t>(after)] / 2.0;
  m_RowHeights[static_cast<size_t>(after)] = half;
  m_RowHeights.insert(m_RowHeights.begin() + after + 1, half);
  m_Rows++;
}

QWidget* AbstractKXGridSplitterWidget::insertSplit(QWidget* widget, bool asColumn)
{
  const QRect cell = cellOf(widget);
  if (cell.isNull())
    return nullptr;
  QWidget* created = createSplitWidget(widget);
  if (created == nullptr)
    return nullptr;

  QRect target;
  if (asColumn)
  {
    if (cell.width() > 1)
    {
      // a wide cell is divided within its own span
      const int kept = (cell.width() + 1) / 2;
      target = QRect(cell.x() + kept, cell.y(), cell.width() - kept, cell.height());
    }
    else
    {
      insertColumn(cell.x());
      target = QRect(cell.x() + 1, cell.y(), 1, cell.height());
    }
  }
  else
  {
    if (cell.height() > 1)
    {
      const int kept = (cell.height() + 1) / 2;
      target = QRect(cell.x(), cell.y() + kept, cell.width(), cell.height() - kept);
    }
    else
    {
      insertRow(cell.y());
      target = QRect(cell.x(), cell.y() + 1, cell.width(), 1);
    }
  }
  for (int row = target.top(); row <= target.bottom(); row++)
  {
    for (int col = target.left(); col <= target.right(); col++)
      slot(row, col) = created;
  }

  adoptWidget(created);
  onWidgetCreated(widget, created);
  updateAllClosable();
  layoutChildren();
  return created;
}

bool AbstractKXGridSplitterWidget::closeCell(QWidget* widget)
{
  const QRect cell = cellOf(widget);
  if (cell.isNull() || widgetCount() <= 1)
    return false;

  onWidgetClosing(widget);

  // Give the area to the neighbours of one side, provided none of them reaches
  // past the closed cell's edge (they then stay rectangles). Left and above
  // come first: that is where a split came from.
  struct Side
  {
    int dRow;
    int dCol;
  };
  const Side sides[] = { { 0, -1 }, { -1, 0 }, { 0, 1 }, { 1, 0 } };
  bool merged = false;
  for (const Side& side : sides)
  {
    const bool horizontal = side.dCol != 0;
    const int fixed = horizontal ? (side.dCol < 0 ? cell.left() - 1 : cell.right() + 1)
                                 : (side.dRow < 0 ? cell.top() - 1 : cell.bottom() + 1);
    if (fixed < 0 || fixed >= (horizontal ? m_Cols : m_Rows))
      continue;
    const int first = horizontal ? cell.top() : cell.left();
    const int last = horizontal ? cell.bottom() : cell.right();
    bool fits = true;
    for (int i = first; i <= last && fits; i++)
    {
      QWidget* neighbour = horizontal ? slot(i, fixed) : slot(fixed, i);
      const QRect other = cellOf(neighbour);
      if (neighbour == nullptr || other.isNull())
      {
        fits = false;
        break;
      }
      fits = horizontal ? (other.top() >= first && other.bottom() <= last)
                        : (other.left() >= first && other.right() <= last);
    }
    if (!fits)
      continue;
    for (int row = cell.top(); row <= cell.bottom(); row++)
    {
      for (int col = cell.left(); col <= cell.right(); col++)
        slot(row, col) = horizontal ? slot(row, fixed) : slot(fixed, col);
    }
    merged = true;
    break;
  }
  if (!merged)
  {
    // only a grid that was not built by splits can get here; leave a hole rather than overlap
    qDebug() << "AbstractKXGridSplitterWidget: no neighbour can take the closed cell's area";
    std::replace(m_Slots.begin(), m_Slots.end(), widget, static_cast<QWidget*>(nullptr));
  }

  disconnectWidget(widget);
  widget->hide();
  widget->deleteLater();
  removeRedundantLines();

  if (m_ActiveWidget == widget || m_ActiveWidget.isNull())
  {
    const QList<QWidget*> remaining = allWidgets();
    if (!remaining.isEmpty())
      markWidgetActive(remaining.first());
  }
  updateAllClosable();
  layoutChildren();
  return true;
}

void AbstractKXGridSplitterWidget::removeRedundantLines()
{
  // a column line that separates nothing in any row goes
  for (int col = m_Cols - 1; col >= 1; col--)
  {
    bool same = true;
    for (int row = 0; row < m_Rows && same; row++)
      same = slot(row, col) == slot(row, col - 1);
    if (!same)
      continue;
    for (int row = m_Rows - 1; row >= 0; row--)
      m_Slots.erase(m_Slots.begin() + row * m_Cols + col);
    m_ColWidths[static_cast<size_t>(col - 1)] += m_ColWidths[static_cast<size_t>(col)];
    m_ColWidths.erase(m_ColWidths.begin() + col);
    m_Cols--;
  }
  for (int row = m_Rows - 1; row >= 1; row--)
  {
    bool same = true;
    for (int col = 0; col < m_Cols && same; col++)
      same = slot(row, col) == slot(row - 1, col);
    if (!same)
      continue;
    m_Slots.erase(m_Slots.begin() + row * m_Cols, m_Slots.begin() + (row + 1) * m_Cols);
    m_RowHeights[static_cast<size_t>(row - 1)] += m_RowHeights[static_cast<size_t>(row)];
    m_RowHeights.erase(m_RowHeights.begin() + row);
    m_Rows--;
  }
}

void AbstractKXGridSplitterWidget::resetGrid()
{
  const QList<QWidget*> widgets = allWidgets();
  if (widgets.isEmpty())
    return;
  QWidget* kept = m_ActiveWidget != nullptr && widgets.contains(m_ActiveWidget.data())
                    ? m_ActiveWidget.data()
                    : widgets.first();
  for (QWidget* widget : widgets)
  {
    if (widget == kept)
      continue;
    onWidgetClosing(widget);
    disconnectWidget(widget);
    widget->hide();
    widget->deleteLater();
  }
  m_Rows = 1;
  m_Cols = 1;
  m_ColWidths = { 1.0 };
  m_RowHeights = { 1.0 };
  m_Slots = { kept };
  markWidgetActive(kept);
  updateAllClosable();
  layoutChildren();
}

void AbstractKXGridSplitterWidget::clearGrid()
{
  const QList<QWidget*> widgets = allWidgets();
  for (QWidget* widget : widgets)
  {
    disconnectWidget(widget);
    widget->hide();
    widget->deleteLater();
  }
  m_Rows = 0;
  m_Cols = 0;
  m_ColWidths.clear();
  m_RowHeights.clear();
  m_Slots.clear();
  m_ActiveWidget = nullptr;
}

bool AbstractKXGridSplitterWidget::setGridShape(int rows, int cols,
                                                const std::vector<double>& colWidths,
                                                const std::vector<double>& rowHeights)
{
  if (rows < 1 || cols < 1)
    return false;
  m_Rows = rows;
  m_Cols = cols;
  m_ColWidths = normalisedShares(colWidths, cols);
  m_RowHeights = normalisedShares(rowHeights, rows);
  m_Slots.assign(static_cast<size_t>(rows * cols), nullptr);
  return true;
}

bool AbstractKXGridSplitterWidget::appendCell(QWidget* widget, int rowSpan, int colSpan)
{
  const auto free = std::find(m_Slots.begin(), m_Slots.end(), nullptr);
  if (widget == nullptr || free == m_Slots.end())
    return false;
  const int index = static_cast<int>(free - m_Slots.begin());
  const int row = index / m_Cols;
  const int col = index % m_Cols;
  // cut the spans to the free rectangle that starts here
  int width = 1;
  while (width < std::max(colSpan, 1) && col + width < m_Cols && slot(row, col + width) == nullptr)
    width++;
  int height = 1;
  while (height < std::max(rowSpan, 1) && row + height < m_Rows)
  {
    bool rowFree = true;
    for (int c = col; c < col + width && rowFree; c++)
      rowFree = slot(row + height, c) == nullptr;
    if (!rowFree)
      break;
    height++;
  }
  for (int r = row; r < row + height; r++)
  {
    for (int c = col; c < col + width; c++)
      slot(r, c) = widget;
  }
  return true;
}

// ---------------------------------------------------------------------------
// Active cell, closable flags, sizes

void AbstractKXGridSplitterWidget::markWidgetActive(QWidget* widget)
{
  if (widget == nullptr || cellOf(widget).isNull() || widget == m_ActiveWidget)
    return;
  QWidget* previous = m_ActiveWidget.data();
  m_ActiveWidget = widget;
  onActiveWidgetChanged(previous, widget);
}

void AbstractKXGridSplitterWidget::updateAllClosable()
{
  const QList<QWidget*> widgets = allWidgets();
  const bool closable = widgets.size() > 1;
  for (QWidget* widget : widgets)
    setWidgetClosable(widget, closable);
}

void AbstractKXGridSplitterWidget::equalizeColumnWidths()
{
  m_ColWidths.assign(static_cast<size_t>(m_Cols), m_Cols > 0 ? 1.0 / m_Cols : 0.0);
  layoutChildren();
}

void AbstractKXGridSplitterWidget::equalizeRowHeights()
{
  m_RowHeights.assign(static_cast<size_t>(m_Rows), m_Rows > 0 ? 1.0 / m_Rows : 0.0);
  layoutChildren();
}

std::vector<int> AbstractKXGridSplitterWidget::edges(bool columns) const
{
  const int count = columns ? m_Cols : m_Rows;
  const std::vector<double>& shares = columns ? m_ColWidths : m_RowHeights;
  const int total = columns ? width() : height();
  const int available = std::max(0, total - (count - 1) * k_HandleWidth);
  std::vector<int> starts(static_cast<size_t>(count + 1), 0);
  double cumulative = 0.0;
  for (int i = 0; i <= count; i++)
  {
    // rounding the running sum keeps the last edge exactly at the end
    starts[static_cast<size_t>(i)] =
      static_cast<int>(std::lround(cumulative * available)) + i * k_HandleWidth;
    if (i < count)
      cumulative += shares[static_cast<size_t>(i)];
  }
  if (count > 0)
    starts[static_cast<size_t>(count)] = available + count * k_HandleWidth;
  return starts;
}

void AbstractKXGridSplitterWidget::layoutChildren()
{
  if (m_Rows < 1 || m_Cols < 1)
    return;
  const std::vector<int> colStarts = edges(true);
  const std::vector<int> rowStarts = edges(false);
  for (QWidget* widget : allWidgets())
  {
    const QRect cell = cellOf(widget);
    const int x0 = colStarts[static_cast<size_t>(cell.left())];
    const int x1 = colStarts[static_cast<size_t>(cell.right() + 1)] - k_HandleWidth;
    const int y0 = rowStarts[static_cast<size_t>(cell.top())];
    const int y1 = rowStarts[static_cast<size_t>(cell.bottom() + 1)] - k_HandleWidth;
    widget->setGeometry(x0, y0, std::max(0, x1 - x0), std::max(0, y1 - y0));
  }
}

// ---------------------------------------------------------------------------
// State

void AbstractKXGridSplitterWidget::saveGridState(nlohmann::json& output) const
{
  output = nlohmann::json::object();
  output[key(k_GridVersion)] = k_CurrentGridVersion;
  output[key(k_GridRows)] = m_Rows;
  output[key(k_GridCols)] = m_Cols;
  output[key(k_ColWidths)] = m_ColWidths;
  output[key(k_RowHeights)] = m_RowHeights;
  nlohmann::json cells = nlohmann::json::array();
  for (QWidget* widget : allWidgets())
  {
    const QRect cell = cellOf(widget);
    nlohmann::json entry = nlohmann::json::object();
    entry[key(k_RowSpan)] = cell.height();
    entry[key(k_ColSpan)] = cell.width();
    nlohmann::json widgetState = nlohmann::json::object();
    saveWidgetState(widget, widgetState);
    entry[key(k_WidgetState)] = std::move(widgetState);
    cells.push_back(std::move(entry));
  }
  output[key(k_GridCells)] = std::move(cells);
}

// ---------------------------------------------------------------------------
// Hooks

void AbstractKXGridSplitterWidget::saveWidgetState(QWidget*, nlohmann::json&) const {}

void AbstractKXGridSplitterWidget::loadWidgetState(QWidget*, const nlohmann::json&) {}

void AbstractKXGridSplitterWidget::setWidgetClosable(QWidget*, bool) {}

void AbstractKXGridSplitterWidget::onWidgetCreated(QWidget*, QWidget*) {}

void AbstractKXGridSplitterWidget::onWidgetClosing(QWidget*) {}

void AbstractKXGridSplitterWidget::onActiveWidgetChanged(QWidget*, QWidget*) {}

void AbstractKXGridSplitterWidget::connectWidget(QWidget* widget)
{
  if (widget != nullptr)
    widget->installEventFilter(this);
}

void AbstractKXGridSplitterWidget::disconnectWidget(QWidget* widget)
{
  if (widget == nullptr)
    return;
  widget->removeEventFilter(this);
  QObject::disconnect(widget, nullptr, this, nullptr);
}

// ---------------------------------------------------------------------------
// Events: activation on press, splitter dragging

bool AbstractKXGridSplitterWidget::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::MouseButtonPress)
  {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr && !cellOf(widget).isNull())
      markWidgetActive(widget);
  }
  return QWidget::eventFilter(watched, event);
}

void AbstractKXGridSplitterWidget::resizeEvent(QResizeEvent* event)
{
  QWidget::resizeEvent(event);
  layoutChildren();
}

AbstractKXGridSplitterWidget::Handle AbstractKXGridSplitterWidget::handleAt(const QPoint& pos) const
{
  if (m_Rows < 1 || m_Cols < 1)
    return {};
  const std::vector<int> colStarts = edges(true);
  const std::vector<int> rowStarts = edges(false);
  // the row (column) whose cell or following gap holds the coordinate
  auto indexOf = [](const std::vector<int>& starts, int value)
  {
    for (size_t i = 0; i + 1 < starts.size(); i++)
    {
      if (value < starts[i + 1])
        return static_cast<int>(i);
    }
    return static_cast<int>(starts.size()) - 2;
  };
  for (int col = 0; col + 1 < m_Cols; col++)
  {
    const int gapEnd = colStarts[static_cast<size_t>(col + 1)];
    if (pos.x() >= gapEnd - k_HandleWidth && pos.x() < gapEnd)
    {
      const int row = indexOf(rowStarts, pos.y());
      if (slot(row, col) != slot(row, col + 1))
        return { true, col };
    }
  }
  for (int row = 0; row + 1 < m_Rows; row++)
  {
    const int gapEnd = rowStarts[static_cast<size_t>(row + 1)];
    if (pos.y() >= gapEnd - k_HandleWidth && pos.y() < gapEnd)
    {
      const int col = indexOf(colStarts, pos.x());
      if (slot(row, col) != slot(row + 1, col))
        return { false, row };
    }
  }
  return {};
}

void AbstractKXGridSplitterWidget::updateHoverCursor(const QPoint& pos)
{
  const Handle handle = m_Drag.valid() ? m_Drag : handleAt(pos);
  if (handle.valid())
  {
    setCursor(handle.vertical ? Qt::SplitHCursor : Qt::SplitVCursor);
    m_HoverCursorSet = true;
  }
  else if (m_HoverCursorSet)
  {
    unsetCursor();
    m_HoverCursorSet = false;
  }
}

void AbstractKXGridSplitterWidget::mousePressEvent(QMouseEvent* event)
{
  if (event->button() == Qt::LeftButton)
  {
    m_Drag = handleAt(event->position().toPoint());
    if (m_Drag.valid())
    {
      event->accept();
      return;
    }
  }
  QWidget::mousePressEvent(event);
}

void AbstractKXGridSplitterWidget::mouseMoveEvent(QMouseEvent* event)
{
  const QPoint pos = event->position().toPoint();
  if (!m_Drag.valid())
  {
    updateHoverCursor(pos);
    QWidget::mouseMoveEvent(event);
    return;
  }
  const bool columns = m_Drag.vertical;
  std::vector<double>& shares = columns ? m_ColWidths : m_RowHeights;
  const int count = columns ? m_Cols : m_Rows;
  const int total = columns ? width() : height();
  const int available = total - (count - 1) * k_HandleWidth;
  const int index = m_Drag.index;
  if (available <= 0 || index + 1 >= count)
    return;
  // the line sits between share[index] and share[index + 1]; their sum stays
  const double before = std::accumulate(shares.begin(), shares.begin() + index, 0.0);
  const double pair = shares[static_cast<size_t>(index)] + shares[static_cast<size_t>(index + 1)];
  const int coordinate = columns ? pos.x() : pos.y();
  const double line = double(coordinate - k_HandleWidth / 2 - index * k_HandleWidth) / available;
  const double minimum = double(k_MinimumCellSize) / available;
  if (pair <= 2.0 * minimum)
    return;
  const double first = std::clamp(line - before, minimum, pair - minimum);
  shares[static_cast<size_t>(index)] = first;
  shares[static_cast<size_t>(index + 1)] = pair - first;
  layoutChildren();
  event->accept();
}

void AbstractKXGridSplitterWidget::mouseReleaseEvent(QMouseEvent* event)
{
  if (m_Drag.valid() && event->button() == Qt::LeftButton)
  {
    m_Drag = {};
    updateHoverCursor(event->position().toPoint());
    event->accept();
    return;
  }
  QWidget::mouseReleaseEvent(event);
}

void AbstractKXGridSplitterWidget::leaveEvent(QEvent* event)
{
  if (!m_Drag.valid() && m_HoverCursorSet)
  {
    unsetCursor();
    m_HoverCursorSet = false;
  }
  QWidget::leaveEvent(event);
}
