// The view frame on its own: form, split number and overlay, status text,
// the Active property, the block-render gate and the frame's state keys.
#include "ViewTestSupport.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtGui/QImage>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QGraphicsBlurEffect>
#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include <vtkActor.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderWindow.h>
#include <vtkSphereSource.h>

using viewtest::pump;

namespace
{
class ViewWidget : public ::testing::Test
{
protected:
  void SetUp() override
  {
    VXViewWidget::s_NextSplitViewId = 2;
    m_View = std::make_unique<VXViewWidget>();
    m_View->resize(320, 240);
    m_View->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_View.get()));
    pump();
  }
  void TearDown() override
  {
    m_View.reset();
    pump();
  }
  std::unique_ptr<VXViewWidget> m_View;
};

bool sameIcon(const QIcon& a, const QIcon& b)
{
  return a.pixmap(16, 16).toImage() == b.pixmap(16, 16).toImage();
}
} // namespace

TEST_F(ViewWidget, FormHasStatusSplitAndCloseButtonsWithThemeIconsThatRequestSplitsAndClose)
{
  ASSERT_NE(m_View->getVisualizationWidget(), nullptr);
  EXPECT_EQ(m_View->getVisualizationWidget()->parentWidget(), m_View.get());
  EXPECT_EQ(m_View->getVisualizationWidget()->getNumRenderLayers(), 2);
  EXPECT_EQ(m_View->findChild<QPushButton*>("closeButton"), m_View->closeButton());
  EXPECT_TRUE(sameIcon(m_View->closeButton()->icon(), KXStyle::generateThemeIconFromName("Close")));
  EXPECT_TRUE(sameIcon(m_View->splitHorizontalButton()->icon(),
                       KXStyle::generateThemeIconFromName("Split Horizontal")));
  EXPECT_TRUE(sameIcon(m_View->splitVerticalButton()->icon(),
                       KXStyle::generateThemeIconFromName("Split Vertical")));
  EXPECT_FALSE(sameIcon(m_View->closeButton()->icon(), KXStyle::fallbackIcon()));

  // alone, a frame is not closable
  EXPECT_FALSE(m_View->closeButton()->isEnabled());
  EXPECT_EQ(m_View->closeButton()->toolTip(), "Cannot close the last view.");
  m_View->setClosable(true);
  EXPECT_TRUE(m_View->closeButton()->isEnabled());
  EXPECT_EQ(m_View->closeButton()->toolTip(), "Close this view.");

  // the buttons and the render widget's menu request splits and the close
  QSignalSpy horizontal(m_View.get(), &VXAbstractViewWidget::requestSplitHorizontally);
  QSignalSpy vertical(m_View.get(), &VXAbstractViewWidget::requestSplitVertically);
  QSignalSpy close(m_View.get(), &VXAbstractViewWidget::requestClose);
  m_View->splitHorizontalButton()->click();
  m_View->splitVerticalButton()->click();
  m_View->closeButton()->click();
  ASSERT_EQ(horizontal.count(), 1);
  EXPECT_EQ(horizontal.at(0).at(0).value<QWidget*>(), m_View.get());
  EXPECT_EQ(vertical.count(), 1);
  EXPECT_EQ(close.count(), 1);
  // the render widget's context menu actions reach the frame too
  m_View->getVisualizationWidget()->getSplitVerticallyAction()->trigger();
  EXPECT_EQ(vertical.count(), 2);
  m_View->getVisualizationWidget()->getSplitHorizontallyAction()->trigger();
  EXPECT_EQ(horizontal.count(), 2);
}

TEST_F(ViewWidget, SplitNumberOverlayShowsOverTheBlurredView)
{
  QLabel* hint = m_View->findChild<QLabel*>("m_MoveChartOverlayHint");
  QLabel* background = m_View->findChild<QLabel*>("m_MoveChartOverlayBackground");
  ASSERT_NE(hint, nullptr);
  ASSERT_NE(background, nullptr);
  EXPECT_EQ(hint->text(), "Split View 1");
  EXPECT_TRUE(hint->wordWrap());
  EXPECT_EQ(hint->alignment(), Qt::AlignCenter);
  EXPECT_TRUE(background->text().isEmpty());
  EXPECT_FALSE(hint->isVisible());
  EXPECT_FALSE(background->isVisible());
  auto* opacity = qobject_cast<QGraphicsOpacityEffect*>(background->graphicsEffect());
  ASSERT_NE(opacity, nullptr);
  EXPECT_DOUBLE_EQ(opacity->opacity(), 0.75);
  auto* blur =
    qobject_cast<QGraphicsBlurEffect*>(m_View->getVisualizationWidget()->graphicsEffect());
  ASSERT_NE(blur, nullptr);
  EXPECT_DOUBLE_EQ(blur->blurRadius(), 0.0);
  for (QWidget* child :
       { static_cast<QWidget*>(m_View->statusLabel()), static_cast<QWidget*>(m_View->closeButton()),
         static_cast<QWidget*>(m_View->splitHorizontalButton()),
         static_cast<QWidget*>(m_View->splitVerticalButton()) })
    EXPECT_NE(qobject_cast<QGraphicsBlurEffect*>(child->graphicsEffect()), nullptr)
      << child->objectName().toStdString();

  // the scene still reaches the screen through the effect
  m_View->getVisualizationWidget()->setRenderWindowBackgroundColor(QColor(255, 0, 0));
  pump();
  const QImage shown = m_View->grab().toImage();
  const QPoint centre = m_View->getVisualizationWidget()->geometry().center();
  EXPECT_EQ(shown.pixelColor(centre), QColor(255, 0, 0));

  m_View->setSplitId(4);
  EXPECT_EQ(m_View->getSplitId(), 4);
  EXPECT_EQ(hint->text(), "Split View 4");
  m_View->setSplitIdOverlayHintVisibility(true);
  EXPECT_TRUE(hint->isVisible());
  EXPECT_TRUE(background->isVisible());
  EXPECT_EQ(hint->geometry(), QRect(QPoint(0, 0), m_View->size()));
  EXPECT_DOUBLE_EQ(blur->blurRadius(), 5.0);
  m_View->resize(400, 300);
  pump();
  EXPECT_EQ(background->size(), QSize(400, 300));
  EXPECT_EQ(hint->size(), QSize(400, 300));
  m_View->setSplitIdOverlayHintVisibility(false);
  EXPECT_FALSE(hint->isVisible());
  EXPECT_DOUBLE_EQ(blur->blurRadius(), 0.0);
}

TEST_F(ViewWidget, CloneTakesTheNextSplitNumberAndTheCameraNewInstanceNeither)
{
  vtkCamera* camera = viewtest::cameraOf(m_View.get());
  camera->SetPosition(10.0, -20.0, 30.0);
  camera->SetFocalPoint(1.0, 2.0, 3.0);
  camera->SetViewUp(0.0, 0.0, 1.0);
  std::unique_ptr<VXAbstractViewWidget> clone(m_View->clone());
  std::unique_ptr<VXAbstractViewWidget> second(m_View->clone());
  EXPECT_EQ(clone->getSplitId(), 2);
  EXPECT_EQ(second->getSplitId(), 3);
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 4);
  EXPECT_NE(qobject_cast<VXViewWidget*>(clone.get()), nullptr);
  vtkCamera* cloned = viewtest::cameraOf(clone.get());
  EXPECT_NE(cloned, camera);
  EXPECT_EQ(viewtest::triple(cloned->GetPosition()), (std::array<double, 3>{ 10.0, -20.0, 30.0 }));
  EXPECT_EQ(viewtest::triple(cloned->GetFocalPoint()), (std::array<double, 3>{ 1.0, 2.0, 3.0 }));

  std::unique_ptr<VXAbstractViewWidget> fresh(m_View->newInstance());
  EXPECT_EQ(fresh->getSplitId(), 1);
  EXPECT_EQ(VXViewWidget::s_NextSplitViewId, 4);
  EXPECT_NE(viewtest::triple(viewtest::cameraOf(fresh.get())->GetPosition()),
            (std::array<double, 3>{ 10.0, -20.0, 30.0 }));
}

TEST_F(ViewWidget, ActivePropertyRepolishesAtOnceAndStatusTextShows)
{
  m_View->setStyleSheet("VXViewWidget { border: 3px solid rgb(0, 0, 255); }"
                        "VXViewWidget[Active=\"true\"] { border: 3px solid rgb(255, 0, 0); }");
  m_View->setActive(false);
  pump();
  auto borderColor = [this]()
  { return m_View->grab().toImage().pixelColor(0, m_View->height() / 2); };
  EXPECT_EQ(borderColor(), QColor(0, 0, 255));
  m_View->setActive(true);
  EXPECT_TRUE(m_View->property("Active").toBool());
  EXPECT_EQ(borderColor(), QColor(255, 0, 0));

  // a click in the render view sets the flag and asks the grid to mark the frame
  m_View->setActive(false);
  QSignalSpy marked(m_View.get(), &VXAbstractViewWidget::markActive);
  QTest::mousePress(m_View->getVisualizationWidget(), Qt::LeftButton, Qt::NoModifier,
                    QPoint(150, 100));
  QTest::mouseRelease(m_View->getVisualizationWidget(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(150, 100));
  ASSERT_EQ(marked.count(), 1);
  EXPECT_EQ(marked.at(0).at(0).value<QWidget*>(), m_View.get());
  EXPECT_TRUE(m_View->isActive());

  // a status message shows in the strip and its tool tip
  Q_EMIT m_View->getVisualizationWidget()->statusMessage("Picked cell 12");
  EXPECT_EQ(m_View->statusLabel()->text(), "Picked cell 12");
  EXPECT_EQ(m_View->statusLabel()->toolTip(),
            "<html><head/><body><p>Picked cell 12</p></body></html>");
}

TEST_F(ViewWidget, BlockedFrameDrawsNothingAndIgnoresCameraRequests)
{
  VXVisualizationWidget* widget = m_View->getVisualizationWidget();
  vtkRenderer* renderer = widget->getRenderer();
  viewtest::EventCounter starts(renderer, vtkCommand::StartEvent);
  widget->renderWindow()->Render();
  EXPECT_GT(starts.count(), 0) << "an unblocked renderer draws";

  m_View->setBlockRender(true);
  EXPECT_TRUE(m_View->isRenderBlocked());
  EXPECT_EQ(renderer->GetDraw(), 0);
  const int before = starts.count();
  const int frames = widget->frameCount();
  m_View->renderView();
  m_View->updateScene();
  pump();
  widget->render();
  pump();
  widget->renderWindow()->Render();
  EXPECT_EQ(starts.count(), before);
  EXPECT_EQ(widget->frameCount(), frames + 1) << "only the render widget's own request got through";

  vtkNew<vtkSphereSource> sphere;
  vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputConnection(sphere->GetOutputPort());
  vtkNew<vtkActor> actor;
  actor->SetMapper(mapper);
  widget->addActor(actor);
  vtkCamera* camera = viewtest::cameraOf(m_View.get());
  camera->SetPosition(100.0, 0.0, 0.0);
  m_View->resetCamera();
  EXPECT_EQ(camera->GetPosition()[0], 100.0);

  m_View->setBlockRender(false);
  EXPECT_EQ(renderer->GetDraw(), 1);
  pump();
  EXPECT_GT(starts.count(), before);
  m_View->resetCamera();
  EXPECT_NE(camera->GetPosition()[0], 100.0);
}

TEST_F(ViewWidget, StateHasTheFrameKeysAndTheSplitNumber)
{
  m_View->setSplitId(6);
  m_View->setActive(true);
  m_View->setBlockRender(true);
  nlohmann::json state;
  m_View->saveState(state);
  EXPECT_EQ(state.at("block_render"), true);
  EXPECT_EQ(state.at("active_view"), true);
  EXPECT_EQ(state.at("split_view_index"), 6);
  EXPECT_TRUE(state.contains("camera_pos_x")) << "the render widget's keys follow";

  VXViewWidget other;
  QSignalSpy marked(&other, &VXAbstractViewWidget::markActive);
  other.loadState(state);
  EXPECT_EQ(other.getSplitId(), 6);
  EXPECT_TRUE(other.isActive());
  EXPECT_TRUE(other.isRenderBlocked());
  EXPECT_EQ(other.getVisualizationWidget()->getRenderer()->GetDraw(), 0);
  EXPECT_EQ(marked.count(), 1);

  nlohmann::json wrong = { { "block_render", 1 } };
  try
  {
    other.loadState(wrong);
    ADD_FAILURE() << "a number for a boolean key must throw";
  }
  catch (const nlohmann::json::type_error& error)
  {
    EXPECT_NE(std::string(error.what()).find("type must be boolean, but is number"),
              std::string::npos)
      << error.what();
  }
  nlohmann::json wrongIndex = { { "split_view_index", "7" } };
  EXPECT_THROW(other.loadState(wrongIndex), nlohmann::json::type_error);
  EXPECT_EQ(other.getSplitId(), 6);
}
