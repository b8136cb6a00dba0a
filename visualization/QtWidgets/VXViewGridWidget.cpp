#include "visualization/QtWidgets/VXViewGridWidget.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <QtCore/QDebug>
#include <QtCore/QPointer>

#include <algorithm>
#include <string>

namespace
{
std::string key(std::string_view name)
{
  return std::string(name);
}

VXAbstractViewWidget* asView(QWidget* widget)
{
  return qobject_cast<VXAbstractViewWidget*>(widget);
}

constexpr const char* k_LegacyOrientationKey = "split_view_orientation";
// more cells than this is no grid a user made: refuse it rather than build thousands of render
// windows
constexpr int k_MaximumCells = 256;
} // namespace

VXViewGridWidget::VXViewGridWidget(QWidget* parent)
  : AbstractKXGridSplitterWidget(parent)
{
  setObjectName(QStringLiteral("viewGridWidget"));
  setInitialWidget(new VXViewWidget(this));
}

VXViewGridWidget::~VXViewGridWidget() = default;

// ---------------------------------------------------------------------------
// Views

VXAbstractViewWidget* VXViewGridWidget::activeView() const
{
  return asView(activeWidget());
}

QList<VXAbstractViewWidget*> VXViewGridWidget::allViews() const
{
  QList<VXAbstractViewWidget*> views;
  for (QWidget* widget : allWidgets())
  {
    if (VXAbstractViewWidget* view = asView(widget))
      views.append(view);
  }
  return views;
}

int VXViewGridWidget::viewCount() const
{
  return static_cast<int>(allViews().size());
}

void VXViewGridWidget::reset()
{
  resetGrid();
}

// ---------------------------------------------------------------------------
// Hooks of the grid

QWidget* VXViewGridWidget::createSplitWidget(QWidget* source)
{
  VXAbstractViewWidget* view = asView(source);
  return view != nullptr ? view->clone() : nullptr;
}

void VXViewGridWidget::saveWidgetState(QWidget* widget, nlohmann::json& widgetState) const
{
  VXAbstractViewWidget* view = asView(widget);
  if (view == nullptr)
    return;
  nlohmann::json viewState = nlohmann::json::object();
  view->saveState(viewState);
  widgetState[k_ViewStateKey] = std::move(viewState);
}

void VXViewGridWidget::loadWidgetState(QWidget* widget, const nlohmann::json& widgetState)
{
  VXAbstractViewWidget* view = asView(widget);
  // without "view_state" the view keeps its defaults
  if (view == nullptr || !widgetState.is_object() || !widgetState.contains(k_ViewStateKey))
    return;
  view->loadState(widgetState.at(k_ViewStateKey));
}

void VXViewGridWidget::setWidgetClosable(QWidget* widget, bool closable)
{
  if (VXAbstractViewWidget* view = asView(widget))
    view->setClosable(closable);
}

void VXViewGridWidget::onWidgetCreated(QWidget* source, QWidget* created)
{
  VXAbstractViewWidget* sourceView = asView(source);
  VXAbstractViewWidget* createdView = asView(created);
  if (createdView == nullptr)
    return;
  // the tree items shown in the source copy themselves into the new view
  if (sourceView != nullptr)
    sourceView->notifyViewWidgetCreated(createdView);
  Q_EMIT viewCreated(createdView);
}

void VXViewGridWidget::onWidgetClosing(QWidget* widget)
{
  VXAbstractViewWidget* view = asView(widget);
  if (view == nullptr)
    return;
  view->notifyClosingView();
  // a closed view leaves its link set at once (the gate of a blocked frame doesn't apply here)
  if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
    renderWidget->unlinkCamera();
  Q_EMIT viewClosed(view);
}

void VXViewGridWidget::onActiveWidgetChanged(QWidget* previous, QWidget* current)
{
  VXAbstractViewWidget* previousView = asView(previous);
  VXAbstractViewWidget* currentView = asView(current);
  if (previousView != nullptr && previousView != currentView)
    previousView->setActive(false);
  if (currentView != nullptr)
    currentView->setActive(true);
  Q_EMIT activeViewChanged(currentView);
}

void VXViewGridWidget::connectWidget(QWidget* widget)
{
  AbstractKXGridSplitterWidget::connectWidget(widget);
  VXAbstractViewWidget* view = asView(widget);
  if (view == nullptr)
    return;
  connect(view, &VXAbstractViewWidget::requestSplitHorizontally, this, &VXViewGridWidget::addColumn,
          Qt::UniqueConnection);
  connect(view, &VXAbstractViewWidget::requestSplitVertically, this, &VXViewGridWidget::addRow,
          Qt::UniqueConnection);
  connect(view, &VXAbstractViewWidget::requestClose, this, &VXViewGridWidget::closeCell,
          Qt::UniqueConnection);
  connect(view, &VXAbstractViewWidget::markActive, this, &VXViewGridWidget::markWidgetActive,
          Qt::UniqueConnection);
  if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
  {
    QPointer<VXViewGridWidget> grid(this);
    renderWidget->setAnyViewLinkedQuery([grid]()
                                        { return grid != nullptr && grid->anyViewLinked(); });
  }
}

// ---------------------------------------------------------------------------
// Camera links

bool VXViewGridWidget::anyViewLinked() const
{
  const QList<VXAbstractViewWidget*> views = allViews();
  return std::any_of(views.begin(), views.end(),
                     [](VXAbstractViewWidget* view)
                     {
                       return view->getVisualizationWidget() != nullptr &&
                              view->getVisualizationWidget()->isLinked();
                     });
}

void VXViewGridWidget::linkAllViews()
{
  const QList<VXAbstractViewWidget*> views = allViews();
  if (views.size() < 2)
    return;
  VXAbstractViewWidget* target = activeView() != nullptr ? activeView() : views.first();
  if (target->getVisualizationWidget() == nullptr)
    return;
  for (VXAbstractViewWidget* other : views)
  {
    if (other != target && other->getVisualizationWidget() != nullptr)
      other->getVisualizationWidget()->linkCameraWith(target->getVisualizationWidget());
  }
}

void VXViewGridWidget::unlinkAllViews()
{
  for (VXAbstractViewWidget* view : allViews())
    view->unlinkCamera();
}

// ---------------------------------------------------------------------------
// State

void VXViewGridWidget::saveState(nlohmann::json& output) const
{
  saveGridState(output);
}

void VXViewGridWidget::advanceNextSplitViewId(int largest)
{
  if (VXViewWidget::s_NextSplitViewId <= largest)
    VXViewWidget::s_NextSplitViewId = largest + 1;
}

void VXViewGridWidget::loadState(const nlohmann::json& input, VXAbstractViewWidget* prototype)
{
  if (!input.is_object())
  {
    qWarning()
      << "VXViewGridWidget: the split view state is not a JSON object; the views stay as they are.";
    return;
  }
  if (!input.contains(k_GridVersion))
  {
    loadLegacyState(input);
    return;
  }

  // read everything that shapes the grid before anything changes
  const int rows = KXVtkModule::utils::StateInt(input.at(key(k_GridRows)));
  const int cols = KXVtkModule::utils::StateInt(input.at(key(k_GridCols)));
  std::vector<double> colWidths;
  std::vector<double> rowHeights;
  if (input.contains(k_ColWidths))
    colWidths = input.at(key(k_ColWidths)).get<std::vector<double>>();
  if (input.contains(k_RowHeights))
    rowHeights = input.at(key(k_RowHeights)).get<std::vector<double>>();
  const nlohmann::json cells = input.value(key(k_GridCells), nlohmann::json());
  if (rows < 1 || cols < 1 || rows * cols > k_MaximumCells || !cells.is_array())
  {
    qWarning() << "VXViewGridWidget: the split view state has" << rows << "x" << cols
               << "cells or no cell list; the views stay as they are.";
    return;
  }

  QPointer<VXAbstractViewWidget> source = prototype;
  if (source == nullptr && !allViews().isEmpty())
    source = allViews().first();
  auto makeView = [this, &source]() -> VXAbstractViewWidget*
  {
    // the old views are deleted later, so one of them can still serve as prototype
    VXAbstractViewWidget* view = source != nullptr ? source->newInstance() : nullptr;
    if (view == nullptr)
      view = new VXViewWidget(this);
    view->setParent(this);
    return view;
  };

  // the old views go: the tree items shown in them hear it as from a closed view
  for (VXAbstractViewWidget* view : allViews())
  {
    view->notifyClosingView();
    if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
      renderWidget->unlinkCamera();
  }
  clearGrid();
  setGridShape(rows, cols, colWidths, rowHeights);

  int largest = 0;
  auto finish = [&]()
  {
    // a list with too few cells still gives a whole grid
    while (hasFreeSlot())
    {
      VXAbstractViewWidget* view = makeView();
      appendCell(view, 1, 1);
      connectWidget(view);
      view->show();
      largest = std::max(largest, view->getSplitId());
      Q_EMIT viewCreated(view);
    }
    if (activeWidget() == nullptr && !allWidgets().isEmpty())
      markWidgetActive(allWidgets().first());
    advanceNextSplitViewId(largest);
    updateAllClosable();
    layoutChildren();
  };

  try
  {
    for (const nlohmann::json& cell : cells)
    {
      if (!hasFreeSlot())
      {
        qWarning() << "VXViewGridWidget: the split view state lists more cells than its grid "
                      "holds; the rest are ignored.";
        break;
      }
      const int rowSpan = cell.is_object() ? cell.value(key(k_RowSpan), 1) : 1;
      const int colSpan = cell.is_object() ? cell.value(key(k_ColSpan), 1) : 1;
      VXAbstractViewWidget* view = makeView();
      appendCell(view, rowSpan, colSpan);
      const nlohmann::json widgetState =
        cell.is_object() ? cell.value(key(k_WidgetState), nlohmann::json::object())
                         : nlohmann::json::object();
      loadWidgetState(view, widgetState);
      connectWidget(view);
      view->show();
      largest = std::max(largest, view->getSplitId());
      if (view->isActive())
        markWidgetActive(view);
      Q_EMIT viewCreated(view);
    }
  }
  catch (...)
  {
    // the grid stays whole; the caller reports the error
    finish();
    throw;
  }
  finish();
}

void VXViewGridWidget::loadLegacyState(const nlohmann::json& input)
{
  resetGrid();
  QList<VXAbstractViewWidget*> views = allViews();
  if (views.isEmpty())
  {
    setInitialWidget(new VXViewWidget(this));
    views = allViews();
  }
  const int largest = traverseLegacyNode(views.first(), input);
  advanceNextSplitViewId(largest);
  updateAllClosable();
  layoutChildren();
}

int VXViewGridWidget::traverseLegacyNode(VXAbstractViewWidget* view, const nlohmann::json& node)
{
  if (view == nullptr || !node.is_object())
    return 0;
  if (node.contains(VXViewWidget::k_SplitViewIndexKey))
  {
    view->loadState(node);
    return KXVtkModule::utils::StateInt(node.at(VXViewWidget::k_SplitViewIndexKey));
  }
  if (!node.contains(k_LegacyOrientationKey))
  {
    qWarning() << "VXViewGridWidget: a split of the older split view state has no"
               << k_LegacyOrientationKey << "; it is skipped.";
    return 0;
  }
  const int orientation = KXVtkModule::utils::StateInt(node.at(k_LegacyOrientationKey));
  const nlohmann::json first = node.value("0", nlohmann::json());
  const nlohmann::json second = node.value("1", nlohmann::json());
  const bool firstIsLeaf = first.is_object() && first.contains(VXViewWidget::k_SplitViewIndexKey);

  int largest = 0;
  if (firstIsLeaf)
    largest = traverseLegacyNode(view, first);

  const QList<VXAbstractViewWidget*> before = allViews();
  if (orientation == 1)
    addColumn(view);
  else
    addRow(view);
  VXAbstractViewWidget* created = nullptr;
  for (VXAbstractViewWidget* candidate : allViews())
  {
    if (!before.contains(candidate))
      created = candidate;
  }
  if (created != nullptr)
    largest = std::max(largest, traverseLegacyNode(created, second));
  if (!firstIsLeaf)
    largest = std::max(largest, traverseLegacyNode(view, first));
  return largest;
}
