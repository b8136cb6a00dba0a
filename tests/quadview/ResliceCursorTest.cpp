// The slice panes' viewer, cursor representations, double click and image
// style, driven by real interactor events on three panes sharing one cursor.
#include "QuadViewTestSupport.hpp"
#include "VXTestSupport.hpp"

#include <vtkActor2D.h>
#include <vtkCallbackCommand.h>
#include <vtkImageSlabReslice.h>
#include <vtkOutputWindow.h>
#include <vtkPlane.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper2D.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using kxtest::EventCounter;
using kxtest::ResliceTrio;

namespace
{
constexpr int k_YZ = 0;
constexpr int k_XY = 2;

std::array<double, 3> centerOf(vtkResliceCursor* cursor)
{
  const double* c = cursor->GetCenter();
  return { c[0], c[1], c[2] };
}

std::array<double, 3> normalOf(vtkResliceCursor* cursor, int plane)
{
  const double* n = cursor->GetPlane(plane)->GetNormal();
  return { n[0], n[1], n[2] };
}

void wheelForward(vtkRenderWindowInteractor* interactor)
{
  interactor->SetEventInformation(150, 150, 0, 0);
  interactor->InvokeEvent(vtkCommand::MouseWheelForwardEvent);
}

void moveTo(vtkRenderWindowInteractor* interactor, int x, int y)
{
  interactor->SetEventInformation(x, y, 0, 0);
  interactor->InvokeEvent(vtkCommand::MouseMoveEvent);
}

template<class Rep>
Rep* quadRep(ResliceTrio& trio, int pane)
{
  return dynamic_cast<Rep*>(trio.representation(pane));
}

using ThinBase = VXResliceCursorRepresentationBase<vtkResliceCursorLineRepresentation>;

int shownArrows(ThinBase* rep)
{
  int shown = 0;
  for (int i = 0; i < 4; ++i)
    shown += rep->arrowFill(i)->GetVisibility() + rep->arrowOutline(i)->GetVisibility();
  return shown;
}

/** Mean of an arrow's three corners, in the pane's pixels. */
std::array<int, 2> arrowPixel(ThinBase* rep, int arrow, vtkRenderer* renderer)
{
  auto* mapper = vtkPolyDataMapper2D::SafeDownCast(rep->arrowFill(arrow)->GetMapper());
  vtkPoints* points = mapper->GetInput()->GetPoints();
  double mean[2] = { 0.0, 0.0 };
  for (vtkIdType p = 0; p < 3; ++p)
  {
    mean[0] += points->GetPoint(p)[0] / 3.0;
    mean[1] += points->GetPoint(p)[1] / 3.0;
  }
  const int* size = renderer->GetSize();
  return { static_cast<int>(std::lround(mean[0] * size[0])),
           static_cast<int>(std::lround(mean[1] * size[1])) };
}
} // namespace

TEST(ResliceCursor, WheelMovesTheSharedCursorAndStopsSilentlyAtTheLastSlice)
{
  auto image = kxtest::makeQuadViewImage();
  ResliceTrio trio(image);
  EventCounter sliceChanged(trio.viewer(k_XY), vtkResliceImageViewer::SliceChangedEvent);
  EventCounter interaction(trio.viewer(k_XY), vtkCommand::InteractionEvent);
  const auto start = centerOf(trio.cursor());
  ASSERT_DOUBLE_EQ(start[2], 43.0); // slice 20 of 41, spacing 2, origin 3

  wheelForward(trio.interactor(k_XY));
  auto center = centerOf(trio.cursor());
  EXPECT_DOUBLE_EQ(center[2], 45.0);
  EXPECT_DOUBLE_EQ(center[0], start[0]);
  EXPECT_DOUBLE_EQ(center[1], start[1]);
  EXPECT_EQ(trio.viewer(k_XY)->GetSlice(), 21);
  EXPECT_EQ(sliceChanged.count(), 1);
  EXPECT_EQ(interaction.count(), 1);
  // the other panes read the same cursor
  EXPECT_DOUBLE_EQ(trio.viewer(k_YZ)->GetResliceCursor()->GetCenter()[2], 45.0);

  for (int i = 0; i < 30; ++i)
    wheelForward(trio.interactor(k_XY));
  EXPECT_DOUBLE_EQ(trio.cursor()->GetCenter()[2], 83.0); // slice 40, the last
  EXPECT_EQ(sliceChanged.count(), 20);

  sliceChanged.reset();
  interaction.reset();
  wheelForward(trio.interactor(k_XY));
  EXPECT_DOUBLE_EQ(trio.cursor()->GetCenter()[2], 83.0);
  EXPECT_EQ(sliceChanged.count(), 0);
  EXPECT_EQ(interaction.count(), 0);
}

TEST(ResliceCursor, DragsStayInsideTheImageAndLinesMoveAlongTheirNormal)
{
  auto image = kxtest::makeQuadViewImage();
  ResliceTrio trio(image);
  const double* bounds = image->GetBounds();
  double imageCenter[3];
  image->GetCenter(imageCenter);

  // the centre dragged far beyond the image's corner, in every pane
  for (int pane = 0; pane < 3; ++pane)
  {
    trio.cursor()->SetCenter(imageCenter);
    trio.renderAll();
    const auto from = trio.toDisplay(pane, imageCenter);
    const int to[2] = { from[0] - 400, from[1] + 400 };
    const auto target = trio.toWorld(pane, to[0], to[1]);
    kxtest::drag(trio.interactor(pane), from[0], from[1], to[0], to[1]);
    const auto center = centerOf(trio.cursor());
    for (int axis = 0; axis < 3; ++axis)
    {
      if (axis == pane)
      {
        EXPECT_DOUBLE_EQ(center[axis], imageCenter[axis]) << "pane " << pane;
        continue;
      }
      const double clamped = std::clamp(target[axis], bounds[2 * axis], bounds[2 * axis + 1]);
      EXPECT_TRUE(clamped == bounds[2 * axis] || clamped == bounds[2 * axis + 1]);
      EXPECT_NEAR(center[axis], clamped, 1e-9) << "pane " << pane << " axis " << axis;
    }
  }

  // in the XY pane the vertical line stands for the X plane: it moves in x only
  trio.cursor()->SetCenter(imageCenter);
  trio.renderAll();
  const double onVertical[3] = { imageCenter[0], imageCenter[1] + 12.0, imageCenter[2] };
  auto from = trio.toDisplay(k_XY, onVertical);
  auto target = trio.toWorld(k_XY, from[0] + 10, from[1] + 40);
  kxtest::drag(trio.interactor(k_XY), from[0], from[1], from[0] + 10, from[1] + 40);
  auto center = centerOf(trio.cursor());
  EXPECT_NEAR(center[0], target[0], 1e-6);
  EXPECT_GT(center[0], imageCenter[0] + 1.0);
  EXPECT_DOUBLE_EQ(center[1], imageCenter[1]);
  EXPECT_DOUBLE_EQ(center[2], imageCenter[2]);

  // and the horizontal line in y only
  trio.cursor()->SetCenter(imageCenter);
  trio.renderAll();
  const double onHorizontal[3] = { imageCenter[0] + 4.5, imageCenter[1], imageCenter[2] };
  from = trio.toDisplay(k_XY, onHorizontal);
  target = trio.toWorld(k_XY, from[0] + 30, from[1] + 40);
  kxtest::drag(trio.interactor(k_XY), from[0], from[1], from[0] + 30, from[1] + 40);
  center = centerOf(trio.cursor());
  EXPECT_DOUBLE_EQ(center[0], imageCenter[0]);
  EXPECT_NEAR(center[1], target[1], 1e-6);
  EXPECT_GT(center[1], imageCenter[1] + 1.0);
  EXPECT_DOUBLE_EQ(center[2], imageCenter[2]);
}

TEST(ResliceCursor, ArrowsShowOnlyInObliqueModeAndTurnTheirPlane)
{
  auto image = kxtest::makeQuadViewImage();
  ResliceTrio trio(image);
  double imageCenter[3];
  image->GetCenter(imageCenter);
  const double onHorizontal[3] = { imageCenter[0] + 4.0, imageCenter[1], imageCenter[2] };

  // axis aligned: hovering a line sets its hover flag, yet no arrow shows
  auto hover = trio.toDisplay(k_XY, onHorizontal);
  moveTo(trio.interactor(k_XY), hover[0], hover[1]);
  auto* thin = quadRep<ThinBase>(trio, k_XY);
  ASSERT_NE(thin, nullptr);
  EXPECT_EQ(thin->GetInteractionState(), vtkResliceCursorRepresentation::OnAxis2);
  EXPECT_EQ(shownArrows(thin), 0);

  trio.setOblique(true);
  thin = quadRep<ThinBase>(trio, k_XY);
  hover = trio.toDisplay(k_XY, onHorizontal);
  moveTo(trio.interactor(k_XY), hover[0] + 1, hover[1]);
  ASSERT_EQ(thin->GetInteractionState(), vtkResliceCursorRepresentation::OnAxis2);
  // the horizontal line carries group 1: arrows 2 and 3, fill and outline each
  EXPECT_EQ(shownArrows(thin), 4);
  EXPECT_TRUE(thin->arrowFill(2)->GetVisibility());
  EXPECT_TRUE(thin->arrowFill(3)->GetVisibility());

  auto* algorithm = trio.representation(k_XY)->GetResliceCursorActor()->GetCursorAlgorithm();
  const int planeAxis1 = algorithm->GetPlaneAxis1();
  const int planeAxis2 = algorithm->GetPlaneAxis2();
  const auto normal1 = normalOf(trio.cursor(), planeAxis1);
  const auto normal2 = normalOf(trio.cursor(), planeAxis2);
  const auto centerBefore = centerOf(trio.cursor());

  const auto arrow = arrowPixel(thin, 2, trio.renderer(k_XY));
  kxtest::drag(trio.interactor(k_XY), arrow[0], arrow[1], arrow[0] - 10, arrow[1] + 60);
  EXPECT_TRUE(thin->isRotating());
  EXPECT_EQ(thin->activeArrowGroup(), 1);
  EXPECT_EQ(normalOf(trio.cursor(), planeAxis1), normal1);
  const auto turned = normalOf(trio.cursor(), planeAxis2);
  EXPECT_NE(turned, normal2);
  EXPECT_NEAR(turned[2], 0.0, 1e-12); // turned about the pane's normal, z
  EXPECT_EQ(centerOf(trio.cursor()), centerBefore);

  // back to axis aligned: the arrows go
  trio.setOblique(false);
  thin = quadRep<ThinBase>(trio, k_XY);
  moveTo(trio.interactor(k_XY), hover[0], hover[1]);
  EXPECT_EQ(shownArrows(thin), 0);
}

TEST(ResliceCursor, DoubleClickPutsTheCursorOnTheClickedPointInsideTheImage)
{
  auto image = kxtest::makeQuadViewImage();
  ResliceTrio trio(image);
  const double* bounds = image->GetBounds();
  EventCounter axesChanged(trio.widget(k_XY), vtkResliceCursorWidget::ResliceAxesChangedEvent);
  EventCounter ended(trio.widget(k_XY), vtkCommand::EndInteractionEvent);
  const auto before = centerOf(trio.cursor());

  // inside: the cursor goes to the clicked point
  const double inside[3] = { 2.0, 30.0, before[2] };
  const auto at = trio.toDisplay(k_XY, inside);
  const auto expected = trio.toWorld(k_XY, at[0], at[1]);
  trio.interactor(k_XY)->SetEventInformation(at[0], at[1], 0, 0, 0, 1);
  trio.interactor(k_XY)->InvokeEvent(vtkCommand::LeftButtonDoubleClickEvent);
  auto center = centerOf(trio.cursor());
  EXPECT_NEAR(center[0], expected[0], 1e-6);
  EXPECT_NEAR(center[1], expected[1], 1e-6);
  EXPECT_NEAR(center[2], before[2], 1.0); // the slice stays: within half a spacing
  EXPECT_EQ(axesChanged.count(), 1);
  EXPECT_EQ(ended.count(), 1);

  // outside, left of and above the image: the nearest bounds
  const double outside[3] = { bounds[0] - 20.0, bounds[3] + 20.0, before[2] };
  const auto out = trio.toDisplay(k_XY, outside);
  ASSERT_GE(out[0], 0);
  ASSERT_LT(out[1], 300);
  trio.interactor(k_XY)->SetEventInformation(out[0], out[1], 0, 0, 0, 1);
  trio.interactor(k_XY)->InvokeEvent(vtkCommand::LeftButtonDoubleClickEvent);
  center = centerOf(trio.cursor());
  EXPECT_DOUBLE_EQ(center[0], bounds[0]);
  EXPECT_DOUBLE_EQ(center[1], bounds[3]);
  EXPECT_NEAR(center[2], before[2], 1.0);
  EXPECT_EQ(axesChanged.count(), 2);
}

TEST(ResliceCursor, ThinCursorReslicesNothingAndThickKeepsTheSlab)
{
  // setting up and drawing thin cursors reports no VTK error
  std::vector<std::string> errors;
  vtkNew<vtkCallbackCommand> collect;
  collect->SetClientData(&errors);
  collect->SetCallback(
    [](vtkObject*, unsigned long, void* list, void* text)
    {
      static_cast<std::vector<std::string>*>(list)->emplace_back(static_cast<const char*>(text));
    });
  const unsigned long tag =
    vtkOutputWindow::GetInstance()->AddObserver(vtkCommand::ErrorEvent, collect);
  auto image = kxtest::makeQuadViewImage();
  ResliceTrio trio(image);
  trio.renderAll();
  vtkOutputWindow::GetInstance()->RemoveObserver(tag);
  EXPECT_EQ(errors, std::vector<std::string>{});
  auto* thin = trio.representation(k_XY);
  EXPECT_FALSE(thin->GetShowReslicedImage());
  auto* thinOutput = vtkImageData::SafeDownCast(thin->GetReslice()->GetOutputDataObject(0));
  EXPECT_LE(thinOutput->GetNumberOfPoints(), 1);

  trio.viewer(k_XY)->SetThickMode(1);
  trio.installRepresentation(k_XY, true, false);
  trio.renderAll();
  auto* thick = trio.representation(k_XY);
  ASSERT_NE(dynamic_cast<VXResliceCursorThickLineRepresentation*>(thick), nullptr);
  auto* slab = vtkImageSlabReslice::SafeDownCast(thick->GetReslice());
  ASSERT_NE(slab, nullptr);
  EXPECT_TRUE(thick->GetShowReslicedImage());
  EXPECT_GT(vtkImageData::SafeDownCast(slab->GetOutputDataObject(0))->GetNumberOfPoints(), 100);
}
