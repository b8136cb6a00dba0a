// A drag in one of several linked views turns the shared camera and redraws
// every linked view while the mouse moves, not only when it is released.
#include "ViewTestSupport.hpp"

#include <vtkCommand.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>

using namespace viewtest;

TEST_F(GridTest, DraggingInALinkedViewRedrawsItsPartnersDuringTheDrag)
{
  VXAbstractViewWidget* left = m_Grid->activeView();
  m_Grid->addColumn(left);
  m_Grid->addRow(left);
  pump();
  const QList<VXAbstractViewWidget*> views = m_Grid->allViews();
  ASSERT_EQ(views.size(), 3);
  VXAbstractViewWidget* linkedPartner = nullptr;
  VXAbstractViewWidget* loner = nullptr;
  for (VXAbstractViewWidget* view : views)
  {
    if (view == left)
      continue;
    (linkedPartner == nullptr ? linkedPartner : loner) = view;
  }
  linkedPartner->getVisualizationWidget()->linkCameraWith(left->getVisualizationWidget());
  ASSERT_EQ(cameraOf(left), cameraOf(linkedPartner));
  ASSERT_NE(cameraOf(left), cameraOf(loner));
  pump();

  const auto before = triple(cameraOf(left)->GetPosition());
  const auto lonerBefore = triple(cameraOf(loner)->GetPosition());
  EventCounter partnerFrames(linkedPartner->getVisualizationWidget()->renderWindow(),
                             vtkCommand::StartEvent);
  EventCounter lonerFrames(loner->getVisualizationWidget()->renderWindow(), vtkCommand::StartEvent);
  // a left drag from the middle of the view, 60 pixels sideways in four moves
  const int* size = left->getVisualizationWidget()->renderWindow()->GetSize();
  kxtest::drag(left->getVisualizationWidget()->renderWindow()->GetInteractor(), size[0] / 2,
               size[1] / 2, size[0] / 2 + 60, size[1] / 2);
  pump();

  // the shared camera turned, so the partner sees the same new viewpoint
  EXPECT_NE(triple(cameraOf(linkedPartner)->GetPosition()), before);
  EXPECT_EQ(triple(cameraOf(linkedPartner)->GetPosition()), triple(cameraOf(left)->GetPosition()));
  EXPECT_GE(partnerFrames.count(), 1);
  // a view outside the link neither moves nor redraws
  EXPECT_EQ(triple(cameraOf(loner)->GetPosition()), lonerBefore);
  EXPECT_EQ(lonerFrames.count(), 0);
}
