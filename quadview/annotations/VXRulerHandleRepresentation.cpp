#include "quadview/annotations/VXRulerHandleRepresentation.hpp"

#include <vtkActor2D.h>
#include <vtkCellArray.h>
#include <vtkCoordinate.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper2D.h>
#include <vtkProperty2D.h>
#include <vtkRenderer.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <cmath>
#include <numbers>

namespace voxelia::quadview::annotations
{
vtkStandardNewMacro(VXRulerHandleRepresentation);

namespace
{
constexpr double k_RingRadius = 7.0;
constexpr int k_RingSegments = 32;
/** The crosshair's arms run from the gap to past the ring. */
constexpr double k_CrossGap = 2.5;
constexpr double k_CrossReach = 11.0;
/** Ring colours of the idle, hovered and grabbed states. */
constexpr double k_StateColors[3][3] = { { 1.0, 0.85, 0.2 }, { 0.3, 0.9, 1.0 }, { 1.0, 0.5, 0.1 } };
constexpr double k_StateWidths[3] = { 1.5, 2.0, 2.5 };

/** A 2D actor drawing @p polyData in pixels around the world point @p anchor. */
vtkSmartPointer<vtkActor2D> pixelActorAt(vtkPolyData* polyData, vtkCoordinate* anchor)
{
  vtkNew<vtkPolyDataMapper2D> mapper;
  mapper->SetInputData(polyData);
  auto actor = vtkSmartPointer<vtkActor2D>::New();
  actor->SetMapper(mapper);
  actor->GetPositionCoordinate()->SetCoordinateSystemToDisplay();
  actor->GetPositionCoordinate()->SetReferenceCoordinate(anchor);
  actor->GetPositionCoordinate()->SetValue(0.0, 0.0);
  actor->SetPickable(0);
  return actor;
}
} // namespace

VXRulerHandleRepresentation::VXRulerHandleRepresentation()
{
  this->buildRingAndCrosshair();
  this->buildDigitBadge();
  this->applyActorVisibilities();
}

VXRulerHandleRepresentation::~VXRulerHandleRepresentation()
{
  this->unregisterActorsFromRenderer();
}

void VXRulerHandleRepresentation::SetEndpointIndex(int index)
{
  if (index == m_EndpointIndex)
    return;
  m_EndpointIndex = index;
  m_Badge->SetInput(std::to_string(index).c_str());
  this->Modified();
}

void VXRulerHandleRepresentation::setHandleVisibility(bool visible)
{
  m_HandleVisible = visible;
  this->SetVisibility(visible ? 1 : 0);
  this->applyActorVisibilities();
  this->Modified();
}

void VXRulerHandleRepresentation::registerActorsWithRenderer(vtkRenderer* renderer)
{
  if (renderer == m_ActorRenderer.Get())
    return;
  this->unregisterActorsFromRenderer();
  if (renderer == nullptr)
    return;
  renderer->AddViewProp(m_Ring);
  renderer->AddViewProp(m_Crosshair);
  renderer->AddViewProp(m_Badge);
  m_ActorRenderer = renderer;
}

void VXRulerHandleRepresentation::unregisterActorsFromRenderer()
{
  if (vtkRenderer* renderer = m_ActorRenderer.Get())
  {
    renderer->RemoveViewProp(m_Ring);
    renderer->RemoveViewProp(m_Crosshair);
    renderer->RemoveViewProp(m_Badge);
  }
  m_ActorRenderer = nullptr;
}

int VXRulerHandleRepresentation::ComputeInteractionState(int X, int Y, int modify)
{
  const int state = this->Superclass::ComputeInteractionState(X, Y, modify);
  // a grabbed handle stays grabbed until Highlight lets it go
  if (m_HighlightState != 2)
    this->setHighlightState(state == vtkHandleRepresentation::Nearby ? 1 : 0);
  return state;
}

void VXRulerHandleRepresentation::Highlight(int highlight)
{
  this->Superclass::Highlight(highlight);
  this->setHighlightState(highlight != 0 ? 2 : 0);
}

void VXRulerHandleRepresentation::setHighlightState(int state)
{
  if (state == m_HighlightState)
    return;
  m_HighlightState = state;
  this->applyActorVisibilities();
  this->Modified();
}

void VXRulerHandleRepresentation::buildRingAndCrosshair()
{
  vtkNew<vtkPoints> ringPoints;
  vtkNew<vtkCellArray> ringLines;
  ringLines->InsertNextCell(k_RingSegments + 1);
  for (int i = 0; i <= k_RingSegments; ++i)
  {
    const double angle = 2.0 * std::numbers::pi * i / k_RingSegments;
    ringLines->InsertCellPoint(ringPoints->InsertNextPoint(k_RingRadius * std::cos(angle),
                                                           k_RingRadius * std::sin(angle), 0.0));
  }
  vtkNew<vtkPolyData> ring;
  ring->SetPoints(ringPoints);
  ring->SetLines(ringLines);
  m_Ring = pixelActorAt(ring, this->WorldPosition);

  vtkNew<vtkPoints> crossPoints;
  vtkNew<vtkCellArray> crossLines;
  const double dirs[4][2] = { { 1, 0 }, { -1, 0 }, { 0, 1 }, { 0, -1 } };
  for (const auto& d : dirs)
  {
    const vtkIdType a = crossPoints->InsertNextPoint(d[0] * k_CrossGap, d[1] * k_CrossGap, 0.0);
    const vtkIdType b = crossPoints->InsertNextPoint(d[0] * k_CrossReach, d[1] * k_CrossReach, 0.0);
    const vtkIdType line[2] = { a, b };
    crossLines->InsertNextCell(2, line);
  }
  vtkNew<vtkPolyData> cross;
  cross->SetPoints(crossPoints);
  cross->SetLines(crossLines);
  m_Crosshair = pixelActorAt(cross, this->WorldPosition);
  m_Crosshair->GetProperty()->SetColor(1.0, 1.0, 1.0);
  m_Crosshair->GetProperty()->SetLineWidth(1.0);
}

void VXRulerHandleRepresentation::buildDigitBadge()
{
  m_Badge = vtkSmartPointer<vtkTextActor>::New();
  m_Badge->SetInput(std::to_string(m_EndpointIndex).c_str());
  vtkTextProperty* text = m_Badge->GetTextProperty();
  text->SetFontSize(11);
  text->SetBold(1);
  text->SetColor(0.1, 0.1, 0.1);
  text->SetBackgroundColor(1.0, 0.85, 0.2);
  text->SetBackgroundOpacity(0.9);
  text->SetJustificationToLeft();
  text->SetVerticalJustificationToBottom();
  // up and to the right of the ring, in pixels, wherever the handle is
  m_Badge->GetPositionCoordinate()->SetCoordinateSystemToDisplay();
  m_Badge->GetPositionCoordinate()->SetReferenceCoordinate(this->WorldPosition);
  m_Badge->GetPositionCoordinate()->SetValue(k_RingRadius + 2.0, k_RingRadius - 2.0);
  m_Badge->SetPickable(0);
}

void VXRulerHandleRepresentation::applyActorVisibilities()
{
  const int state = m_HighlightState;
  m_Ring->SetVisibility(m_HandleVisible ? 1 : 0);
  m_Ring->GetProperty()->SetColor(k_StateColors[state][0], k_StateColors[state][1],
                                  k_StateColors[state][2]);
  m_Ring->GetProperty()->SetLineWidth(k_StateWidths[state]);
  // the crosshair helps aim while the handle is hovered or dragged
  m_Crosshair->SetVisibility(m_HandleVisible && state > 0 ? 1 : 0);
  m_Badge->SetVisibility(m_HandleVisible ? 1 : 0);
}
} // namespace voxelia::quadview::annotations
