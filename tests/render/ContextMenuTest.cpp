// The context menu: when it opens, what it holds, and the mouse handling around it.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXPickerCallback.hpp"

#include <vtkCamera.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtTest/QSignalSpy>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>

using rendertest::pump;

namespace
{
/** The entries of a menu: texts, "-" for separators, "Title>" and the submenu's entries for
 * submenus. */
QStringList entries(const QMenu* menu)
{
  QStringList result;
  for (QAction* action : menu->actions())
  {
    if (action->isSeparator())
      result << QStringLiteral("-");
    else if (action->menu() != nullptr)
    {
      result << action->text() + QStringLiteral(">");
      for (const QString& sub : entries(action->menu()))
        result << QStringLiteral("  ") + sub;
    }
    else
      result << action->text();
  }
  return result;
}

class ContextMenu : public rendertest::ViewTest
{
protected:
  void SetUp() override
  {
    rendertest::ViewTest::SetUp();
    m_View->setContextMenuExecutor(
      [this](QMenu* menu, const QPoint&)
      {
        ++m_Shown;
        m_Entries = entries(menu);
      });
  }
  void send(QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons, QPoint pos)
  {
    QMouseEvent event(type, QPointF(pos), QPointF(m_View->mapToGlobal(pos)), button, buttons,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(m_View.get(), &event);
  }
  int m_Shown = 0;
  QStringList m_Entries;
};
} // namespace

TEST_F(ContextMenu, OnlyARightClickInAViewWithItsOwnMenuOpensIt)
{
  QSignalSpy doubleClicked(m_View.get(), &VXVisualizationWidget::doubleClicked);
  auto click = [this](Qt::MouseButton button, QPoint release)
  {
    send(QEvent::MouseButtonPress, button, button, { 150, 150 });
    if (release != QPoint(150, 150))
      send(QEvent::MouseMove, Qt::NoButton, button, release);
    send(QEvent::MouseButtonRelease, button, Qt::NoButton, release);
  };
  click(Qt::RightButton, { 150, 150 });
  EXPECT_EQ(m_Shown, 1);
  // a right drag opens none; a left click none, but signals the press
  click(Qt::RightButton, { 160, 180 });
  EXPECT_EQ(m_Shown, 1);
  QSignalSpy pressed(m_View.get(), &VXVisualizationWidget::mousePressed);
  click(Qt::LeftButton, { 150, 150 });
  EXPECT_EQ(m_Shown, 1);
  EXPECT_EQ(pressed.count(), 1);
  // double clicks are reported with the left button only
  send(QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton, { 40, 50 });
  send(QEvent::MouseButtonDblClick, Qt::RightButton, Qt::RightButton, { 40, 50 });
  ASSERT_EQ(doubleClicked.count(), 1);
  EXPECT_EQ(doubleClicked.at(0).at(0).toPoint(), QPoint(40, 50));
  // a view without its own menu shows none
  m_View->setOwnContextMenu(false);
  click(Qt::RightButton, { 150, 150 });
  EXPECT_EQ(m_Shown, 1);
}

TEST_F(ContextMenu, UnlinkedViewMenuHasTheActionsInOrder)
{
  std::unique_ptr<QMenu> menu(m_View->getContextMenu());
  EXPECT_EQ(menu->title(), QStringLiteral("Visualization"));
  const QStringList expected = {
    "Show All Geometries",
    "Hide All Geometries",
    "-",
    "Link Cameras",
    "Link All Cameras",
    "Camera Parallel Projection",
    "-",
    "Current View>",
    "  Split View Horizontally",
    "  Split View Vertically",
    "  Save Screenshot ...",
    "  Copy Screenshot",
    "All Views>",
    "  Save Screenshot ...",
    "  Copy to Clipboard",
    "Equalize Views>",
    "  Equalize View Widths",
    "  Equalize View Heights",
    "-",
    "Change Background Color",
    "Restore Default Background Color",
    "-",
    "Axes Grid",
    "Edit Axes Grid",
  };
  EXPECT_EQ(entries(menu.get()), expected);
}

TEST_F(ContextMenu, LinkingDecidesTheUnlinkEntriesAndActionsAreCached)
{
  std::unique_ptr<QMenu> first(m_View->getContextMenu());
  std::unique_ptr<QMenu> second(m_View->getContextMenu());
  ASSERT_EQ(first->actions().size(), second->actions().size());
  EXPECT_EQ(first->actions().at(0), second->actions().at(0));
  EXPECT_EQ(first->actions().at(0), m_View->getShowAllAction());
  EXPECT_EQ(first->actions().last(), m_View->getEditGridAxesAction());

  m_View->setAnyViewLinkedQuery([]() { return true; });
  std::unique_ptr<QMenu> menu(m_View->getContextMenu());
  EXPECT_TRUE(entries(menu.get()).contains("Unlink All Cameras"));
  EXPECT_FALSE(entries(menu.get()).contains("Unlink Cameras"));

  VXVisualizationWidget other(nullptr, 2);
  m_View->linkCameraWith(&other);
  std::unique_ptr<QMenu> linked(m_View->getContextMenu());
  const QStringList all = entries(linked.get());
  const qsizetype link = all.indexOf("Link All Cameras");
  ASSERT_GE(link, 0);
  EXPECT_EQ(all.mid(link + 1, 3),
            (QStringList{ "Unlink Cameras", "Unlink All Cameras", "Camera Parallel Projection" }));
  m_View->setAnyViewLinkedQuery([]() { return false; });
  std::unique_ptr<QMenu> alone(m_View->getContextMenu());
  EXPECT_TRUE(entries(alone.get()).contains("Unlink Cameras"));
  EXPECT_FALSE(entries(alone.get()).contains("Unlink All Cameras"));
  m_View->unlinkCamera();
}

TEST_F(ContextMenu, ParallelProjectionEntryShowsAndTogglesTheCamera)
{
  vtkCamera* camera = m_View->getRenderer()->GetActiveCamera();
  camera->SetParallelProjection(true);
  std::unique_ptr<QMenu> menu(m_View->getContextMenu());
  QAction* parallel = m_View->getParallelProjectionAction();
  EXPECT_TRUE(parallel->isCheckable());
  EXPECT_TRUE(parallel->isChecked());
  parallel->trigger();
  EXPECT_FALSE(camera->GetParallelProjection());
  EXPECT_FALSE(parallel->isChecked());
}

TEST_F(ContextMenu, MenuActionsEmitTheirRequests)
{
  QSignalSpy showAll(m_View.get(), &VXVisualizationWidget::showAll);
  QSignalSpy hideAll(m_View.get(), &VXVisualizationWidget::hideAll);
  QSignalSpy split(m_View.get(), &VXVisualizationWidget::requestSplitVertically);
  QSignalSpy saveAll(m_View.get(), &VXVisualizationWidget::requestSaveAllViewsScreenshot);
  QSignalSpy heights(m_View.get(), &VXVisualizationWidget::requestEqualizeViewHeights);
  m_View->getShowAllAction()->trigger();
  m_View->getHideAllAction()->trigger();
  m_View->getSplitVerticallyAction()->trigger();
  m_View->getSaveAllViewsScreenshotAction()->trigger();
  m_View->getEqualizeViewHeightsAction()->trigger();
  EXPECT_EQ(showAll.count(), 1);
  EXPECT_EQ(hideAll.count(), 1);
  EXPECT_EQ(split.count(), 1);
  EXPECT_EQ(saveAll.count(), 1);
  EXPECT_EQ(heights.count(), 1);
}

TEST_F(ContextMenu, PressInHoverModeCopiesThePickTextFlat)
{
  QSignalSpy output(m_View.get(), &VXVisualizationWidget::printOutput);
  m_View->getPickerCallback()->setPickedDataText(
    QStringLiteral("Grains\n    Point Id: 3\n    Phase: 2\n"));
  m_View->toggleHoverPoints(true);
  send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, { 150, 150 });
  send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton, { 150, 150 });
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            QStringLiteral("Grains\nPoint Id: 3\nPhase: 2\n"));
  ASSERT_GE(output.count(), 1);
  EXPECT_EQ(output.last().at(0).toString(), QStringLiteral("Picked item data copied to clipboard"));
  m_View->toggleHoverPoints(false);
}
