#include "quadview/vtkResliceCursorCallback.hpp"

#include "quadview/VXQuadView.hpp"
#include "quadview/NormalizedViewport.hpp"
#include "quadview/VXResliceImageViewer.hpp"
#include "visualization/QtWidgets/VXViewCubeRepresentation.hpp"

#include <vtkResliceCursorRepresentation.h>
#include <vtkCamera.h>
#include <vtkCoordinate.h>
#include <vtkMath.h>
#include <vtkObjectFactory.h>
#include <vtkPolyDataMapper2D.h>
#include <vtkProperty2D.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>

vtkStandardNewMacro(vtkResliceCursorCallback);

namespace
{
using KXVtk::quadview::clipToUnitSquare;
using KXVtk::quadview::toNormalizedViewport;

// the two in-plane cursor axes (a < b) of each slice pane
constexpr int k_InPlaneAxes[3][2] = { { 1, 2 }, { 0, 2 }, { 0, 1 } };

struct LabelSpec
{
  const char* text;
  double x;
  double y;
};

constexpr LabelSpec k_InitialLabels[3][4] = {
  { { "-Y", 0.02, 0.5 }, { "+Y", 0.98, 0.5 }, { "-Z", 0.5, 0.97 }, { "+Z", 0.5, 0.03 } },
  { { "+X", 0.02, 0.5 }, { "-X", 0.98, 0.5 }, { "-Z", 0.5, 0.97 }, { "+Z", 0.5, 0.03 } },
  { { "+X", 0.02, 0.5 }, { "-X", 0.98, 0.5 }, { "+Y", 0.5, 0.97 }, { "-Y", 0.5, 0.03 } },
};

enum class Edge
{
  Left,
  Right,
  Top,
  Bottom
};

void justify(vtkTextActor* label, Edge edge)
{
  vtkTextProperty* text = label->GetTextProperty();
  switch (edge)
  {
    case Edge::Left:
      text->SetJustificationToLeft();
      text->SetVerticalJustificationToCentered();
      break;
    case Edge::Right:
      text->SetJustificationToRight();
      text->SetVerticalJustificationToCentered();
      break;
    case Edge::Top:
      text->SetJustificationToCentered();
      text->SetVerticalJustificationToTop();
      break;
    case Edge::Bottom:
      text->SetJustificationToCentered();
      text->SetVerticalJustificationToBottom();
      break;
  }
}

void placeLabel(vtkTextActor* label, double x, double y)
{
  const double m = std::min({ x, 1.0 - x, y, 1.0 - y });
  if (m == x)
    justify(label, Edge::Left);
  else if (m == 1.0 - x)
    justify(label, Edge::Right);
  else if (m == 1.0 - y)
    justify(label, Edge::Top);
  else
    justify(label, Edge::Bottom);
  label->SetPosition(std::clamp(x, 0.03, 0.97), std::clamp(y, 0.03, 0.97));
}
} // namespace

vtkResliceCursorCallback::vtkResliceCursorCallback() = default;

vtkResliceCursorCallback::~vtkResliceCursorCallback() = default;

vtkResliceCursor* vtkResliceCursorCallback::cursor() const
{
  return m_Viewers[0] != nullptr ? m_Viewers[0]->GetResliceCursor() : nullptr;
}

void vtkResliceCursorCallback::setBounds(const double bounds[6])
{
  std::copy(bounds, bounds + 6, m_Bounds);
  m_CacheValid = false;
}

void vtkResliceCursorCallback::clear()
{
  m_QuadView = nullptr;
  m_VolumeRenderWindow = nullptr;
  m_Widgets = {};
  m_Viewers = {};
  m_Planes = {};
  m_CacheValid = false;
}

void vtkResliceCursorCallback::buildPaneOverlay(int pane, vtkRenderer* renderer)
{
  if (pane < 0 || pane > 2 || renderer == nullptr)
    return;
  for (int k = 0; k < 2; ++k)
  {
    const int line = 2 * pane + k;
    auto source = vtkSmartPointer<vtkLineSource>::New();
    vtkNew<vtkCoordinate> world;
    world->SetCoordinateSystemToWorld();
    vtkNew<vtkPolyDataMapper2D> mapper;
    mapper->SetInputConnection(source->GetOutputPort());
    mapper->SetTransformCoordinate(world);
    auto actor = vtkSmartPointer<vtkActor2D>::New();
    actor->SetMapper(mapper);
    actor->GetProperty()->SetLineWidth(1.0);
    // a line is coloured by the plane it stands for: line 2p lies in plane a, line 2p + 1 in b
    const auto color = VXViewCubeRepresentation::GetAxisColor(k_InPlaneAxes[pane][k]);
    actor->GetProperty()->SetColor(color[0], color[1], color[2]);
    renderer->AddViewProp(actor);
    m_LineSources[static_cast<size_t>(line)] = source;
    m_LineActors[static_cast<size_t>(line)] = actor;
  }
  for (int k = 0; k < 4; ++k)
  {
    const LabelSpec& spec = k_InitialLabels[pane][k];
    auto label = vtkSmartPointer<vtkTextActor>::New();
    label->SetInput(spec.text);
    vtkTextProperty* text = label->GetTextProperty();
    text->SetFontSize(14);
    text->BoldOn();
    text->ShadowOn();
    text->SetColor(1.0, 1.0, 1.0);
    label->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
    label->SetPosition(spec.x, spec.y);
    justify(label, k == 0 ? Edge::Left : k == 1 ? Edge::Right : k == 2 ? Edge::Top : Edge::Bottom);
    renderer->AddViewProp(label);
    m_EdgeLabels[static_cast<size_t>(4 * pane + k)] = label;
  }
}

void vtkResliceCursorCallback::syncCrosshair()
{
  vtkResliceCursor* rc = cursor();
  if (rc == nullptr)
    return;
  double center[3];
  rc->GetCenter(center);
  double axes[3][3];
  for (int i = 0; i < 3; ++i)
    std::copy_n(rc->GetAxis(i), 3, axes[i]);

  if (m_CacheValid && std::equal(center, center + 3, m_CachedCenter) &&
      std::equal(&axes[0][0], &axes[0][0] + 9, &m_CachedAxes[0][0]))
    return;
  std::copy(center, center + 3, m_CachedCenter);
  std::copy(&axes[0][0], &axes[0][0] + 9, &m_CachedAxes[0][0]);
  m_CacheValid = true;

  // long enough to cross the pane at any zoom the user is likely to reach
  const double length = 500.0 * ((m_Bounds[1] - m_Bounds[0]) + (m_Bounds[3] - m_Bounds[2]) +
                                 (m_Bounds[5] - m_Bounds[4]));
  for (int pane = 0; pane < 3; ++pane)
  {
    const int along[2] = { k_InPlaneAxes[pane][1], k_InPlaneAxes[pane][0] };
    for (int k = 0; k < 2; ++k)
    {
      vtkLineSource* source = m_LineSources[static_cast<size_t>(2 * pane + k)];
      if (source == nullptr)
        continue;
      const double* axis = axes[along[k]];
      source->SetPoint1(center[0] - length * axis[0], center[1] - length * axis[1],
                        center[2] - length * axis[2]);
      source->SetPoint2(center[0] + length * axis[0], center[1] + length * axis[1],
                        center[2] + length * axis[2]);
    }
  }
  updateEdgeLabels();
}

void vtkResliceCursorCallback::updateEdgeLabels()
{
  vtkResliceCursor* rc = cursor();
  if (rc == nullptr)
    return;
  double center[3];
  rc->GetCenter(center);
  for (int pane = 0; pane < 3; ++pane)
  {
    VXResliceImageViewer* viewer = m_Viewers[static_cast<size_t>(pane)];
    vtkRenderer* renderer = viewer != nullptr ? viewer->GetRenderer() : nullptr;
    if (renderer == nullptr || renderer->GetRenderWindow() == nullptr)
      continue;
    double c[2];
    if (!toNormalizedViewport(renderer, center, c))
      continue;
    const int along[2] = { k_InPlaneAxes[pane][1], k_InPlaneAxes[pane][0] };
    for (int k = 0; k < 2; ++k)
    {
      double axis[3];
      std::copy_n(rc->GetAxis(along[k]), 3, axis);
      const double tip[3] = { center[0] + axis[0], center[1] + axis[1], center[2] + axis[2] };
      double t[2];
      toNormalizedViewport(renderer, tip, t);
      double d[2] = { t[0] - c[0], t[1] - c[1] };
      const double length = std::hypot(d[0], d[1]);
      if (length < KXVtk::quadview::k_ParallelEps)
        continue;
      d[0] /= length;
      d[1] /= length;
      double t0 = 0.0;
      double t1 = 0.0;
      if (!clipToUnitSquare(c, d, t0, t1))
        continue;
      vtkTextActor* endLabel = m_EdgeLabels[static_cast<size_t>(4 * pane + (k == 0 ? 2 : 1))];
      vtkTextActor* startLabel = m_EdgeLabels[static_cast<size_t>(4 * pane + (k == 0 ? 3 : 0))];
      if (endLabel != nullptr)
        placeLabel(endLabel, c[0] + t1 * d[0], c[1] + t1 * d[1]);
      if (startLabel != nullptr)
        placeLabel(startLabel, c[0] + t0 * d[0], c[1] + t0 * d[1]);
    }
  }
}

bool vtkResliceCursorCallback::alignObliqueCameras()
{
  // Our addition to the stock classes: their oblique mode turns the cursor planes but leaves
  // each pane's camera where it was, so a turned plane would be seen edge-on or skewed.
  vtkResliceCursor* rc = cursor();
  if (rc == nullptr)
    return false;
  double center[3];
  rc->GetCenter(center);
  bool moved = false;
  for (int pane = 0; pane < 3; ++pane)
  {
    VXResliceImageViewer* viewer = m_Viewers[static_cast<size_t>(pane)];
    if (viewer == nullptr || viewer->GetResliceMode() != vtkResliceImageViewer::RESLICE_OBLIQUE)
      continue;
    vtkRenderer* renderer = viewer->GetRenderer();
    vtkPlane* plane = rc->GetPlane(pane);
    if (renderer == nullptr || plane == nullptr)
      continue;
    vtkCamera* camera = renderer->GetActiveCamera();
    double normal[3];
    plane->GetNormal(normal);
    if (vtkMath::Normalize(normal) < KXVtk::quadview::k_ParallelEps)
      continue;
    double projection[3];
    camera->GetDirectionOfProjection(projection);
    const double facing = vtkMath::Dot(projection, normal);
    // the pane being turned in already faces its plane and keeps pan and roll
    if (std::abs(facing) >= 1.0 - 1e-9)
      continue;
    const double sign = facing < 0.0 ? -1.0 : 1.0;

    // of the two in-plane axes, the one nearest the old view up, so the picture barely rolls
    double oldUp[3];
    camera->GetViewUp(oldUp);
    double up[3] = { 0.0, 0.0, 0.0 };
    double best = -1.0;
    for (const int a : k_InPlaneAxes[pane])
    {
      double axis[3];
      std::copy_n(rc->GetAxis(a), 3, axis);
      const double along = vtkMath::Dot(axis, normal);
      for (int c = 0; c < 3; ++c)
        axis[c] -= along * normal[c];
      if (vtkMath::Normalize(axis) < KXVtk::quadview::k_ParallelEps)
        continue;
      const double match = vtkMath::Dot(axis, oldUp);
      if (std::abs(match) > best)
      {
        best = std::abs(match);
        const double s = match < 0.0 ? -1.0 : 1.0;
        for (int c = 0; c < 3; ++c)
          up[c] = s * axis[c];
      }
    }
    if (best < 0.0)
      continue;

    const double distance = camera->GetDistance();
    camera->SetFocalPoint(center);
    camera->SetPosition(center[0] - sign * distance * normal[0],
                        center[1] - sign * distance * normal[1],
                        center[2] - sign * distance * normal[2]);
    camera->SetViewUp(up);
    camera->OrthogonalizeViewUp();
    renderer->ResetCameraClippingRange();
    moved = true;
  }
  return moved;
}

void vtkResliceCursorCallback::syncSlicePlanes()
{
  vtkResliceCursor* rc = cursor();
  if (rc == nullptr)
    return;
  for (int i = 0; i < 3; ++i)
  {
    vtkPlane* target = m_Planes[static_cast<size_t>(i)];
    vtkPlane* source = rc->GetPlane(i);
    if (target == nullptr || source == nullptr)
      continue;
    target->SetOrigin(source->GetOrigin());
    target->SetNormal(source->GetNormal());
  }
}

void vtkResliceCursorCallback::renderWidgets()
{
  for (auto& widget : m_Widgets)
  {
    if (widget != nullptr)
      widget->Render();
  }
}

void vtkResliceCursorCallback::Execute(vtkObject* caller, unsigned long event, void* /*data*/)
{
  if (m_QuadView == nullptr)
    return;
  VXQuadView* view = m_QuadView;

  if (event == vtkCommand::EndInteractionEvent)
  {
    // not through the cache or the throttle: the end of a drag always shows the final state
    if (alignObliqueCameras())
      updateEdgeLabels();
    view->restartAnnotationTimer();
    for (int pane = 0; pane < 3; ++pane)
      view->updateAnnotations(pane);
    view->updateVolumeAnnotation();
    view->updatePlaneOutlines();
    syncSlicePlanes();
    renderWidgets();
    if (m_VolumeRenderWindow != nullptr)
      m_VolumeRenderWindow->Render();
    return;
  }

  // before the crosshair, whose edge labels are placed through the cameras
  if (alignObliqueCameras())
    invalidateCache();
  syncCrosshair();
  view->updateAllAnnotations(false);
  view->updatePlaneOutlines();
  if (event != vtkResliceCursorWidget::ResliceThicknessChangedEvent)
    view->notifyAnnotationsSliceChanged();
  syncSlicePlanes();
  renderWidgets();
  // during a drag the volume pane, the slow one, waits for the end of the drag; VTK's cursor
  // widget follows each move with ResliceAxesChangedEvent as well, while its representation is
  // still being manipulated
  bool dragging = event == vtkCommand::InteractionEvent;
  if (event == vtkResliceCursorWidget::ResliceAxesChangedEvent)
  {
    auto* widget = vtkResliceCursorWidget::SafeDownCast(caller);
    auto* rep = widget != nullptr
                  ? vtkResliceCursorRepresentation::SafeDownCast(widget->GetRepresentation())
                  : nullptr;
    dragging = rep != nullptr && rep->GetManipulationMode() != vtkResliceCursorRepresentation::None;
  }
  if (dragging || m_VolumeRenderWindow == nullptr)
    return;
  // a wheel or key step comes in runs: the volume pane keeps up at an interactive rate
  if (event == vtkResliceImageViewer::SliceChangedEvent)
    view->renderVolumeWindowInteractive();
  else
    m_VolumeRenderWindow->Render();
}
