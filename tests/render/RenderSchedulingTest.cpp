// Construction of a view and how frames are scheduled and blocked.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXViewCubeWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <vtkCamera.h>
#include <vtkCursor3D.h>
#include <vtkOutlineGlowPass.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

using rendertest::EventCounter;
using rendertest::pump;

namespace
{
class RenderScheduling : public rendertest::ViewTest
{
};

/** The smallest concrete frame, to reach the block-render gate. */
class TestFrame : public VXAbstractViewWidget
{
public:
  using VXAbstractViewWidget::VXAbstractViewWidget;
  VXAbstractViewWidget* clone() override { return nullptr; }
  VXAbstractViewWidget* newInstance() override { return nullptr; }
};
} // namespace

TEST_F(RenderScheduling, TwoRequestsInOneTurnDrawOneFrame)
{
  EventCounter windowFrames(m_View->renderWindow(), vtkCommand::StartEvent);

  const int before = m_View->frameCount();
  m_View->render();
  EXPECT_TRUE(m_View->isRenderPending());
  pump();
  EXPECT_FALSE(m_View->isRenderPending());
  EXPECT_EQ(m_View->frameCount(), before + 1);
  const int windowRendersForOne = windowFrames.count();
  EXPECT_GE(windowRendersForOne, 1);

  windowFrames.reset();
  m_View->render();
  m_View->render();
  m_View->render();
  pump();
  EXPECT_EQ(m_View->frameCount(), before + 2);
  EXPECT_EQ(windowFrames.count(), windowRendersForOne);
}

TEST_F(RenderScheduling, OutlineLayerDrawsOnlyInFramesWithVisibleOutlines)
{
  vtkRenderer* outline = m_View->getOutlineRenderer();
  vtkRenderWindow* window = m_View->renderWindow();
  EventCounter outlineFrames(outline, vtkCommand::StartEvent);
  EventCounter sceneFrames(m_View->getRenderer(), vtkCommand::StartEvent);

  window->Render();
  EXPECT_EQ(outlineFrames.count(), 0);
  EXPECT_EQ(sceneFrames.count(), 1);

  vtkSmartPointer<vtkActor> box = rendertest::makeBox(0, 1, 0, 1, 0, 1);
  m_View->addOutline(box);
  window->Render();
  EXPECT_EQ(outlineFrames.count(), 1);
  EXPECT_EQ(outline->GetDraw(), 1);

  // a hidden outline is no reason to draw the layer
  box->VisibilityOff();
  window->Render();
  EXPECT_EQ(outlineFrames.count(), 1);
  box->VisibilityOn();
  window->Render();
  EXPECT_EQ(outlineFrames.count(), 2);

  m_View->clearOutlines();
  window->Render();
  EXPECT_EQ(outlineFrames.count(), 2);
  EXPECT_EQ(outline->GetDraw(), 0);
  EXPECT_EQ(sceneFrames.count(), 5);
}

TEST_F(RenderScheduling, ConstructionBuildsLayeredRenderersStyleCursorPickerAndOrientationWidget)
{
  vtkRenderer* scene = m_View->getRenderer();
  vtkRenderer* outline = m_View->getOutlineRenderer();
  ASSERT_NE(scene, nullptr);
  ASSERT_NE(outline, nullptr);
  EXPECT_EQ(scene->GetLayer(), 0);
  EXPECT_EQ(outline->GetLayer(), 1);
  EXPECT_EQ(scene->GetActiveCamera(), outline->GetActiveCamera());
  EXPECT_EQ(m_View->getNumRenderLayers(), 2);
  EXPECT_EQ(m_View->renderWindow()->GetMultiSamples(), 8);
  EXPECT_TRUE(m_View->renderWindow()->HasRenderer(scene));
  EXPECT_TRUE(m_View->renderWindow()->HasRenderer(outline));
  // the glow pass draws the outlines only
  EXPECT_NE(vtkOutlineGlowPass::SafeDownCast(outline->GetPass()), nullptr);
  EXPECT_EQ(scene->GetPass(), nullptr);

  const QColor background = KXPreferences::getDefaultRenderWindowBackground();
  double rgb[3];
  scene->GetBackground(rgb);
  EXPECT_NEAR(rgb[0], background.redF(), 1e-6);
  EXPECT_NEAR(rgb[1], background.greenF(), 1e-6);
  EXPECT_NEAR(rgb[2], background.blueF(), 1e-6);
  EXPECT_EQ(scene->GetActiveCamera()->GetParallelProjection() != 0,
            KXPreferences::getCameraParallelProjDefault());

  VXInteractorStyleCamera* style = m_View->getInteractorStyle();
  ASSERT_NE(style, nullptr);
  EXPECT_EQ(m_View->getRenderWindowInteractor()->GetInteractorStyle(), style);
  EXPECT_EQ(style->GetInteractionMode(), VTKIS_IMAGE3D);
  EXPECT_EQ(style->GetDefaultRenderer(), m_View->getRenderer());
  EXPECT_FALSE(style->cellPickModeOn());

  vtkActor* cross = m_View->getCenterOfRotationActor();
  ASSERT_NE(cross, nullptr);
  EXPECT_FALSE(cross->GetVisibility());
  EXPECT_FALSE(cross->GetPickable());
  EXPECT_FALSE(cross->GetUseBounds());
  EXPECT_FLOAT_EQ(cross->GetProperty()->GetLineWidth(), 2.0f);
  double color[3];
  cross->GetProperty()->GetColor(color);
  EXPECT_EQ(color[0] + color[1] + color[2], 0.0);
  EXPECT_TRUE(m_View->getRenderer()->HasViewProp(cross));
  EXPECT_TRUE(m_View->getCenterOfRotationCursor()->GetTranslationMode());

  VXPickerCallback* picker = m_View->getPickerCallback();
  ASSERT_NE(picker, nullptr);
  for (vtkActor* highlight : { picker->getPointHighlightActor(), picker->getCellHighlightActor() })
  {
    ASSERT_NE(highlight, nullptr);
    EXPECT_TRUE(m_View->getRenderer()->HasViewProp(highlight));
    EXPECT_FALSE(highlight->GetVisibility());
    EXPECT_FALSE(highlight->GetPickable());
  }
  EXPECT_TRUE(style->HasObserver(vtkCommand::PickEvent, picker));
  EXPECT_TRUE(style->HasObserver(vtkCommand::UserEvent, picker));
  EXPECT_TRUE(style->HasObserver(vtkCommand::UserEvent + 1, picker));

  VXViewCubeWidget* cube = m_View->getCameraOrientationWidget();
  ASSERT_NE(cube, nullptr);
  EXPECT_TRUE(cube->GetEnabled());
  EXPECT_EQ(cube->faceLabels(), KXPreferences::getOrientationMarkerText());

  // the marker text follows the view; anything but six texts is ignored
  const QStringList labels = { "E", "W", "N", "S", "Up", "Down" };
  m_View->setOrientationMarkerText(labels);
  EXPECT_EQ(m_View->getCameraOrientationWidget()->faceLabels(), labels);
  m_View->setOrientationMarkerText({ "a", "b" });
  EXPECT_EQ(m_View->getCameraOrientationWidget()->faceLabels(), labels);
}

TEST_F(RenderScheduling, ToolbarSitsAQuarterDownTheLeftEdgeAndBackgroundsReachBothRenderers)
{
  VXVisualizationToolbarWidget* toolbar = m_View->getToolbar();
  ASSERT_NE(toolbar, nullptr);
  EXPECT_TRUE(toolbar->isVisible());
  m_View->resize(300, 1000);
  pump();
  EXPECT_EQ(toolbar->x(), 0);
  ASSERT_LT(toolbar->height(), 500);
  EXPECT_EQ(toolbar->y(), 250);
  // a view too short for the strip keeps it near the top
  m_View->resize(300, toolbar->height());
  pump();
  EXPECT_EQ(toolbar->y(), 20);

  // a background colour goes to both renderers
  m_View->setRenderWindowBackgroundColor(QColor(255, 0, 0));
  double scene[3];
  double outline[3];
  m_View->getRenderer()->GetBackground(scene);
  m_View->getOutlineRenderer()->GetBackground(outline);
  EXPECT_EQ((std::array<double, 3>{ scene[0], scene[1], outline[0] }),
            (std::array<double, 3>{ 1, 0, 1 }));
  EXPECT_DOUBLE_EQ(outline[2], 0.0);
  EXPECT_TRUE(m_View->isRenderPending());
}

TEST(RenderBlocking, BlockedViewsRendererDrawsNothing)
{
  TestFrame frame;
  frame.setupView();
  frame.resize(300, 300);
  frame.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&frame));
  pump();
  VXVisualizationWidget* view = frame.getVisualizationWidget();
  ASSERT_NE(view, nullptr);
  EventCounter sceneFrames(view->getRenderer(), vtkCommand::StartEvent);
  EventCounter windowFrames(view->renderWindow(), vtkCommand::StartEvent);

  frame.setBlockRender(true);
  EXPECT_TRUE(frame.isRenderBlocked());
  EXPECT_EQ(view->getRenderer()->GetDraw(), 0);
  // a tree item's request reaches render() without passing the gate
  view->render();
  pump();
  EXPECT_GE(windowFrames.count(), 1);
  EXPECT_EQ(sceneFrames.count(), 0);

  frame.setBlockRender(false);
  EXPECT_EQ(view->getRenderer()->GetDraw(), 1);
  EXPECT_TRUE(view->isRenderPending());
  pump();
  EXPECT_GE(sceneFrames.count(), 1);
}
