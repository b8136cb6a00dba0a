// The split grid of render views: the last-view rule, splits and their
// cameras, the active view, camera links, the saved grid (current and older
// format), split numbering, blocked views and tree items in split views.
#include "ViewTestSupport.hpp"

#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXRepresentation.hpp>
#include <visualization/VXRepresentationPimpl.hpp>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

#include <vtkPropCollection.h>
#include <vtkRenderWindow.h>
#include <vtkSphereSource.h>
#include <vtkXMLPolyDataWriter.h>

using viewtest::GridTest;
using viewtest::pump;

namespace
{
using Triple = std::array<double, 3>;

int dataViewActorCount(VXAbstractViewWidget* view)
{
  VXVisualizationWidget* widget = view->getVisualizationWidget();
  vtkPropCollection* props = widget->getRenderer()->GetViewProps();
  int count = 0;
  props->InitTraversal();
  while (vtkProp* prop = props->GetNextProp())
  {
    if (widget->isDataViewActor(prop))
      count++;
  }
  return count;
}

/** A saved grid of two columns whose views carry the given split numbers. */
nlohmann::json twoColumnState(int leftId, int rightId)
{
  nlohmann::json state = { { "grid_version", 1 },      { "grid_rows", 1 },
                           { "grid_cols", 2 },         { "col_widths", { 0.5, 0.5 } },
                           { "row_heights", { 1.0 } }, { "grid_cells", nlohmann::json::array() } };
  for (int id : { leftId, rightId })
  {
    state["grid_cells"].push_back(
      { { "row_span", 1 },
        { "col_span", 1 },
        { "widget_state", { { "view_state", { { "split_view_index", id } } } } } });
  }
  return state;
}
} // namespace

TEST_F(GridTest, LastViewCannotCloseAndASplitEnablesBoth)
{
  VXViewWidget* first = viewAt(0);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(m_Grid->viewCount(), 1);
  EXPECT_EQ(first->getSplitId(), 1);
  EXPECT_FALSE(first->closeButton()->isEnabled());
  EXPECT_EQ(first->closeButton()->toolTip(), "Cannot close the last view.");
  EXPECT_FALSE(m_Grid->closeCell(first));

  QSignalSpy created(m_Grid.get(), &VXViewGridWidget::viewCreated);
  first->splitHorizontalButton()->click();
  ASSERT_EQ(m_Grid->viewCount(), 2);
  VXViewWidget* second = viewAt(1);
  ASSERT_EQ(created.count(), 1);
  EXPECT_EQ(created.at(0).at(0).value<VXAbstractViewWidget*>(), second);
  EXPECT_EQ(second->getSplitId(), 2);
  for (VXViewWidget* view : { first, second })
  {
    EXPECT_TRUE(view->closeButton()->isEnabled());
    EXPECT_EQ(view->closeButton()->toolTip(), "Close this view.");
  }

  QSignalSpy closed(m_Grid.get(), &VXViewGridWidget::viewClosed);
  QSignalSpy closing(second, &VXAbstractViewWidget::closingView);
  second->closeButton()->click();
  EXPECT_EQ(closing.count(), 1);
  ASSERT_EQ(closed.count(), 1);
  EXPECT_EQ(closed.at(0).at(0).value<VXAbstractViewWidget*>(), second);
  EXPECT_EQ(m_Grid->viewCount(), 1);
  EXPECT_FALSE(first->closeButton()->isEnabled());
  EXPECT_EQ(first->closeButton()->toolTip(), "Cannot close the last view.");
}

TEST_F(GridTest, HorizontalSplitAddsAColumnAndVerticalSplitARow)
{
  VXViewWidget* first = viewAt(0);
  first->splitHorizontally();
  EXPECT_EQ(m_Grid->columnCount(), 2);
  EXPECT_EQ(m_Grid->rowCount(), 1);
  VXViewWidget* right = viewAt(1);
  EXPECT_EQ(m_Grid->cellOf(right), QRect(1, 0, 1, 1));
  right->splitVertically();
  EXPECT_EQ(m_Grid->rowCount(), 2);
  VXViewWidget* below = qobject_cast<VXViewWidget*>(m_Grid->allViews().value(2));
  ASSERT_NE(below, nullptr);
  EXPECT_EQ(m_Grid->cellOf(below), QRect(1, 1, 1, 1));
  EXPECT_EQ(below->getSplitId(), 3);
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 4);
  EXPECT_GT(first->width(), 250);
  EXPECT_LT(first->width(), 300);
  EXPECT_LT(below->height(), 200);

  // the render widget's context menu splits too, and the requests connect once
  m_Grid->loadState(twoColumnState(1, 2));
  EXPECT_EQ(m_Grid->viewCount(), 2);
  viewAt(0)->getVisualizationWidget()->getSplitVerticallyAction()->trigger();
  EXPECT_EQ(m_Grid->viewCount(), 3);
  EXPECT_EQ(m_Grid->rowCount(), 2);

  m_Grid->equalizeColumnWidths();
  EXPECT_DOUBLE_EQ(m_Grid->columnWidths()[0], 0.5);
  m_Grid->reset();
  EXPECT_EQ(m_Grid->viewCount(), 1);
}

TEST_F(GridTest, SplitViewStartsWithAnEqualButIndependentCamera)
{
  VXViewWidget* first = viewAt(0);
  vtkCamera* camera = viewtest::cameraOf(first);
  camera->SetPosition(5.0, 6.0, 70.0);
  camera->SetFocalPoint(1.0, 1.0, 0.0);
  camera->SetViewUp(0.0, 1.0, 0.0);
  first->splitHorizontally();
  pump();
  VXViewWidget* second = viewAt(1);
  vtkCamera* copied = viewtest::cameraOf(second);
  EXPECT_NE(copied, camera);
  EXPECT_EQ(viewtest::triple(copied->GetPosition()), (Triple{ 5.0, 6.0, 70.0 }));
  EXPECT_EQ(viewtest::triple(copied->GetFocalPoint()), (Triple{ 1.0, 1.0, 0.0 }));
  EXPECT_EQ(viewtest::triple(copied->GetViewUp()), (Triple{ 0.0, 1.0, 0.0 }));
  EXPECT_FALSE(first->getVisualizationWidget()->isLinked());
  EXPECT_FALSE(second->getVisualizationWidget()->isLinked());
  copied->SetPosition(-40.0, 0.0, 0.0);
  EXPECT_EQ(viewtest::triple(camera->GetPosition()), (Triple{ 5.0, 6.0, 70.0 }));
}

TEST_F(GridTest, AClickMakesTheViewActiveAndOnlyOne)
{
  VXViewWidget* first = viewAt(0);
  EXPECT_EQ(m_Grid->activeView(), first);
  EXPECT_TRUE(first->isActive());
  first->splitVertically();
  VXViewWidget* second = viewAt(1);
  EXPECT_FALSE(second->isActive());

  QSignalSpy changed(m_Grid.get(), &VXViewGridWidget::activeViewChanged);
  QTest::mousePress(second->getVisualizationWidget(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(40, 40));
  QTest::mouseRelease(second->getVisualizationWidget(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(40, 40));
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.at(0).at(0).value<VXAbstractViewWidget*>(), second);
  EXPECT_EQ(m_Grid->activeView(), second);
  EXPECT_TRUE(second->property("Active").toBool());
  EXPECT_FALSE(first->property("Active").toBool());

  // closing the active view hands the role to the first
  second->closeView();
  ASSERT_EQ(changed.count(), 2);
  EXPECT_EQ(changed.at(1).at(0).value<VXAbstractViewWidget*>(), first);
  EXPECT_TRUE(first->isActive());
}

TEST_F(GridTest, PendingLinkCompletesOnAnotherViewAndClosingALinkedViewUnlinksIt)
{
  viewAt(0)->splitHorizontally();
  viewAt(1)->splitHorizontally();
  ASSERT_EQ(m_Grid->viewCount(), 3);
  VXViewWidget* a = viewAt(0);
  VXViewWidget* b = viewAt(1);
  VXViewWidget* c = viewAt(2);
  EXPECT_FALSE(m_Grid->anyViewLinked());

  // "Link Cameras" in a, then a click in b
  a->getVisualizationWidget()->getLinkCamerasAction()->trigger();
  EXPECT_EQ(VXVisualizationWidget::linkingWidget(), a->getVisualizationWidget());
  viewtest::focusIn(b);
  EXPECT_EQ(VXVisualizationWidget::linkingWidget(), nullptr);
  EXPECT_EQ(viewtest::cameraOf(a), viewtest::cameraOf(b));
  EXPECT_TRUE(m_Grid->anyViewLinked());

  b->getVisualizationWidget()->getLinkCamerasAction()->trigger();
  viewtest::focusIn(c);
  vtkCamera* shared = viewtest::cameraOf(b);
  EXPECT_EQ(viewtest::cameraOf(a), shared);
  EXPECT_EQ(viewtest::cameraOf(c), shared);
  EXPECT_EQ(a->getVisualizationWidget()->getLinkedWidgets().size(), 3u);

  m_Grid->closeCell(b);
  EXPECT_FALSE(b->getVisualizationWidget()->isLinked());
  EXPECT_NE(viewtest::cameraOf(b), shared);
  EXPECT_EQ(viewtest::cameraOf(a), shared);
  EXPECT_EQ(viewtest::cameraOf(c), shared);
  const std::set<VXVisualizationWidget*> remaining = { a->getVisualizationWidget(),
                                                       c->getVisualizationWidget() };
  EXPECT_EQ(a->getVisualizationWidget()->getLinkedWidgets(), remaining);
  EXPECT_EQ(c->getVisualizationWidget()->getLinkedWidgets(), remaining);
  pump();
  EXPECT_EQ(m_Grid->viewCount(), 2);
  EXPECT_EQ(viewtest::cameraOf(a), viewtest::cameraOf(c));

  // the context menu asks the grid whether any view is linked
  QMenu* menu = c->getVisualizationWidget()->getContextMenu();
  EXPECT_TRUE(menu->actions().contains(c->getVisualizationWidget()->getUnlinkAllCamerasAction()));
  delete menu;
  m_Grid->unlinkAllViews();
  EXPECT_FALSE(m_Grid->anyViewLinked());
  EXPECT_NE(viewtest::cameraOf(a), viewtest::cameraOf(c));
}

TEST_F(GridTest, StartingALinkThenClickingTheSameViewClearsItAndLinkAllSharesOneCamera)
{
  viewAt(0)->splitVertically();
  VXViewWidget* a = viewAt(0);
  VXViewWidget* b = viewAt(1);
  a->getVisualizationWidget()->getLinkCamerasAction()->trigger();
  ASSERT_EQ(VXVisualizationWidget::linkingWidget(), a->getVisualizationWidget());
  viewtest::focusIn(a);
  EXPECT_EQ(VXVisualizationWidget::linkingWidget(), nullptr);
  EXPECT_FALSE(a->getVisualizationWidget()->isLinked());
  viewtest::focusIn(b);
  EXPECT_FALSE(b->getVisualizationWidget()->isLinked());
  EXPECT_NE(viewtest::cameraOf(a), viewtest::cameraOf(b));

  // "Link All Cameras" shares one camera among every view
  viewAt(0)->splitHorizontally();
  m_Grid->linkAllViews();
  vtkCamera* shared = viewtest::cameraOf(viewAt(0));
  for (VXAbstractViewWidget* view : m_Grid->allViews())
  {
    EXPECT_EQ(viewtest::cameraOf(view), shared);
    EXPECT_EQ(view->getVisualizationWidget()->getLinkedWidgets().size(), 3u);
  }
}

TEST_F(GridTest, SavedGridLoadsIntoAFreshGridAndSavesTheSame)
{
  VXViewWidget* first = viewAt(0);
  viewtest::cameraOf(first)->SetPosition(3.0, 4.0, 50.0);
  first->splitHorizontally();
  viewAt(1)->splitVertically();
  VXViewWidget* last = qobject_cast<VXViewWidget*>(m_Grid->allViews().value(2));
  m_Grid->markWidgetActive(last);
  nlohmann::json saved;
  m_Grid->saveState(saved);
  ASSERT_EQ(saved.at("grid_cells").size(), 3u);
  const nlohmann::json& firstCell = saved.at("grid_cells")[0];
  EXPECT_EQ(firstCell.at("row_span"), 2);
  EXPECT_EQ(firstCell.at("widget_state").at("view_state").at("split_view_index"), 1);
  EXPECT_EQ(firstCell.at("widget_state").at("view_state").at("camera_pos_z"), 50.0);
  EXPECT_EQ(saved.at("grid_cells")[2].at("widget_state").at("view_state").at("active_view"), true);

  VXViewWidget::s_NextSplitViewId = 2;
  auto fresh = makeGrid();
  QSignalSpy created(fresh.get(), &VXViewGridWidget::viewCreated);
  QSignalSpy active(fresh.get(), &VXViewGridWidget::activeViewChanged);
  fresh->loadState(saved);
  pump();
  EXPECT_EQ(created.count(), 3);
  ASSERT_EQ(fresh->viewCount(), 3);
  EXPECT_EQ(fresh->activeView(), fresh->allViews().value(2));
  EXPECT_FALSE(fresh->allViews().value(0)->isActive());
  EXPECT_GE(active.count(), 1);
  EXPECT_EQ(fresh->cellOf(fresh->allViews().value(0)), QRect(0, 0, 1, 2));
  EXPECT_EQ(fresh->allViews().value(2)->getSplitId(), 3);
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 4);
  EXPECT_TRUE(fresh->allViews().value(0)->isClosable());
  nlohmann::json again;
  fresh->saveState(again);
  EXPECT_EQ(again, saved) << again.dump(1);
}

TEST_F(GridTest, LoadedSplitNumbersThreeAndSevenGiveTheNextViewEight)
{
  m_Grid->loadState(twoColumnState(3, 7));
  ASSERT_EQ(m_Grid->viewCount(), 2);
  EXPECT_EQ(m_Grid->allViews().value(0)->getSplitId(), 3);
  EXPECT_EQ(m_Grid->allViews().value(1)->getSplitId(), 7);
  EXPECT_EQ(m_Grid->activeView(), m_Grid->allViews().value(0))
    << "no view was active: the first is";
  m_Grid->addRow(m_Grid->allViews().value(0));
  ASSERT_EQ(m_Grid->viewCount(), 3);
  EXPECT_EQ(m_Grid->allViews().value(2)->getSplitId(), 8);

  // a number that is already further on stays
  VXViewWidget::s_NextSplitViewId = 20;
  m_Grid->loadState(twoColumnState(3, 7));
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 20);
}

TEST_F(GridTest, OlderSplitTreeLoadsAndOrientationOneGivesColumns)
{
  // columns: 3 | (5 over 7)
  const nlohmann::json legacy = {
    { "split_view_orientation", 1 },
    { "0",
      { { "split_view_index", 3 },
        { "camera_pos_x", 1.0 },
        { "camera_pos_y", 2.0 },
        { "camera_pos_z", 90.0 } } },
    { "1",
      { { "split_view_orientation", 2 },
        { "0", { { "split_view_index", 5 } } },
        { "1", { { "split_view_index", 7 }, { "active_view", true } } } } }
  };
  QSignalSpy created(m_Grid.get(), &VXViewGridWidget::viewCreated);
  m_Grid->loadState(legacy);
  pump();
  EXPECT_EQ(created.count(), 2);
  ASSERT_EQ(m_Grid->viewCount(), 3);
  EXPECT_EQ(m_Grid->columnCount(), 2);
  EXPECT_EQ(m_Grid->rowCount(), 2);
  const auto views = m_Grid->allViews();
  EXPECT_EQ(views[0]->getSplitId(), 3);
  EXPECT_EQ(m_Grid->cellOf(views[0]), QRect(0, 0, 1, 2));
  EXPECT_EQ(views[1]->getSplitId(), 5);
  EXPECT_EQ(m_Grid->cellOf(views[1]), QRect(1, 0, 1, 1));
  EXPECT_EQ(views[2]->getSplitId(), 7);
  EXPECT_EQ(m_Grid->cellOf(views[2]), QRect(1, 1, 1, 1));
  EXPECT_EQ(m_Grid->activeView(), views[2]);
  EXPECT_EQ(viewtest::triple(viewtest::cameraOf(views[0])->GetPosition()),
            (Triple{ 1.0, 2.0, 90.0 }));
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 8);

  // any other orientation gives rows
  const nlohmann::json rows = { { "split_view_orientation", 0 },
                                { "0", { { "split_view_index", 1 } } },
                                { "1", { { "split_view_index", 2 } } } };
  m_Grid->loadState(rows);
  pump();
  EXPECT_EQ(m_Grid->viewCount(), 2);
  EXPECT_EQ(m_Grid->columnCount(), 1);
  EXPECT_EQ(m_Grid->rowCount(), 2);
}

TEST_F(GridTest, ViewsBlockedByStateStayBlockedAndDrawNothing)
{
  viewAt(0)->splitHorizontally();
  viewAt(0)->setBlockRender(true);
  viewAt(1)->setBlockRender(true);
  nlohmann::json saved;
  m_Grid->saveState(saved);

  auto fresh = makeGrid();
  fresh->loadState(saved);
  pump();
  ASSERT_EQ(fresh->viewCount(), 2);
  std::vector<std::unique_ptr<viewtest::EventCounter>> starts;
  for (VXAbstractViewWidget* view : fresh->allViews())
  {
    EXPECT_TRUE(view->isRenderBlocked());
    EXPECT_EQ(view->getVisualizationWidget()->getRenderer()->GetDraw(), 0);
    starts.push_back(std::make_unique<viewtest::EventCounter>(
      view->getVisualizationWidget()->getRenderer(), vtkCommand::StartEvent));
  }
  for (VXAbstractViewWidget* view : fresh->allViews())
  {
    view->renderView();
    view->getVisualizationWidget()->render();
  }
  pump();
  for (VXAbstractViewWidget* view : fresh->allViews())
    view->getVisualizationWidget()->renderWindow()->Render();
  EXPECT_EQ(starts[0]->count(), 0);
  EXPECT_EQ(starts[1]->count(), 0);

  fresh->allViews().value(1)->setBlockRender(false);
  pump();
  fresh->allViews().value(1)->getVisualizationWidget()->renderWindow()->Render();
  EXPECT_EQ(starts[0]->count(), 0);
  EXPECT_GT(starts[1]->count(), 0);
}

TEST_F(GridTest, BadGridStateLeavesTheViewsOrThrowsTheTypeError)
{
  viewAt(0)->splitHorizontally();
  nlohmann::json noCells = twoColumnState(1, 2);
  noCells.erase("grid_cells");
  m_Grid->loadState(noCells);
  nlohmann::json empty = twoColumnState(1, 2);
  empty["grid_rows"] = 0;
  m_Grid->loadState(empty);
  pump();
  EXPECT_EQ(m_Grid->viewCount(), 2);
  EXPECT_EQ(viewAt(1)->getSplitId(), 2);

  nlohmann::json wrongType = twoColumnState(1, 2);
  wrongType["grid_cols"] = "2";
  EXPECT_THROW(m_Grid->loadState(wrongType), nlohmann::json::type_error);
  EXPECT_EQ(m_Grid->viewCount(), 2);

  // too few cells: the rest of the grid gets views of its own; a view without "view_state" keeps
  // its defaults
  nlohmann::json fewer = twoColumnState(4, 5);
  fewer["grid_cells"].erase(1);
  fewer["grid_cells"][0]["widget_state"] = nlohmann::json::object();
  m_Grid->loadState(fewer);
  pump();
  ASSERT_EQ(m_Grid->viewCount(), 2);
  EXPECT_EQ(m_Grid->allViews().value(0)->getSplitId(), 1);
  EXPECT_FALSE(m_Grid->allViews().value(0)->isRenderBlocked());
}

TEST_F(GridTest, DataViewFollowsSplitsAndLeavesClosedViews)
{
  kxtest::TempDir dir;
  vtkNew<vtkSphereSource> sphere;
  sphere->SetRadius(3.0);
  vtkNew<vtkXMLPolyDataWriter> writer;
  const std::string file = (dir / "ball.vtp").string();
  writer->SetFileName(file.c_str());
  writer->SetInputConnection(sphere->GetOutputPort());
  ASSERT_EQ(writer->Write(), 1);

  VXPipeline pipeline;
  QObject::connect(m_Grid.get(), &VXViewGridWidget::activeViewChanged, &pipeline,
                   [&pipeline](VXAbstractViewWidget* view) { pipeline.setActiveViewWidget(view); });
  VXViewWidget* first = viewAt(0);
  pipeline.setActiveViewWidget(first);
  ASSERT_TRUE(pipeline.importFile(QString::fromStdString(file)));
  ASSERT_EQ(pipeline.bridges().size(), 1);
  ASSERT_EQ(pipeline.bridges()[0]->dataSources().size(), 1);
  VXDataSource* source = pipeline.bridges()[0]->dataSources()[0];
  const auto reps = source->findChildren<VXRepresentation*>();
  ASSERT_EQ(reps.size(), 1);
  VXRepresentation* rep = reps[0];
  ASSERT_NE(rep->implementation(first), nullptr);
  pump();
  const int shown = dataViewActorCount(first);
  EXPECT_GT(shown, 0);

  QSignalSpy copied(first, &VXAbstractViewWidget::viewWidgetCreated);
  first->splitHorizontally();
  pump();
  VXViewWidget* second = viewAt(1);
  ASSERT_EQ(copied.count(), 1);
  EXPECT_EQ(copied.at(0).at(1).value<VXAbstractViewWidget*>(), second);
  VXRepresentationPimpl* inSplit = rep->implementation(second);
  ASSERT_NE(inSplit, nullptr);
  EXPECT_NE(inSplit, rep->implementation(first));
  EXPECT_EQ(inSplit->renderer(), second->getVisualizationWidget()->getRenderer());
  EXPECT_TRUE(inSplit->isVisible());
  EXPECT_EQ(dataViewActorCount(second), shown);
  EXPECT_TRUE(rep->viewWidgets().value(second, false));

  // closing the split leaves the first view's data view alone, and nothing is kept for the
  // closed view
  QTest::mouseClick(second->findChild<QPushButton*>("closeButton"), Qt::LeftButton);
  pump();
  ASSERT_EQ(m_Grid->viewCount(), 1);
  EXPECT_EQ(dataViewActorCount(first), shown);
  EXPECT_EQ(rep->viewImplementations().keys(), QList<VXAbstractViewWidget*>{ first });
  EXPECT_EQ(rep->viewWidgets().keys(), QList<VXAbstractViewWidget*>{ first });
  EXPECT_EQ(source->viewWidgets().keys(), QList<VXAbstractViewWidget*>{ first });

  // a second split shows the data view again
  QTest::mouseClick(first->findChild<QPushButton*>("splitVerticalButton"), Qt::LeftButton);
  pump();
  ASSERT_EQ(m_Grid->viewCount(), 2);
  VXViewWidget* third = viewAt(1);
  VXRepresentationPimpl* again = rep->implementation(third);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->renderer(), third->getVisualizationWidget()->getRenderer());
  EXPECT_TRUE(again->isVisible());
  EXPECT_EQ(dataViewActorCount(third), shown);
  EXPECT_EQ(rep->viewImplementations().size(), 2);

  // a grid replaced by a saved one drops the data view from every old view
  m_Grid->loadState(twoColumnState(3, 7));
  pump();
  EXPECT_EQ(m_Grid->viewCount(), 2);
  EXPECT_TRUE(rep->viewImplementations().isEmpty());
  EXPECT_TRUE(rep->viewWidgets().isEmpty());
  EXPECT_TRUE(source->viewWidgets().isEmpty());
}
