#include "quadview/VXResliceCursorRepresentationBase.hpp"

#include "quadview/NormalizedViewport.hpp"

#include <vtkActor2D.h>
#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkCoordinate.h>
#include <vtkImageData.h>
#include <vtkMath.h>
#include <vtkPlane.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper2D.h>
#include <vtkProperty2D.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorPolyDataAlgorithm.h>

#include <algorithm>
#include <cmath>

namespace
{
using Rep = vtkResliceCursorRepresentation;

constexpr double k_ArrowOffset = 0.04;
constexpr double k_ArrowHalfSize = 0.02;
constexpr double k_ArrowHitRadius = 0.045;
using KXVtk::quadview::clipToUnitSquare;
using KXVtk::quadview::toNormalizedViewport;
constexpr double k_Parallel = KXVtk::quadview::k_ParallelEps;

/** The world point under display position @p e on the near plane; false at infinity. */
bool displayToWorld(vtkRenderer* renderer, const double e[2], double world[3])
{
  renderer->SetDisplayPoint(e[0], e[1], 0.0);
  renderer->DisplayToWorld();
  const double* w = renderer->GetWorldPoint();
  if (w[3] == 0.0)
    return false;
  for (int i = 0; i < 3; ++i)
    world[i] = w[i] / w[3];
  return true;
}

void clampToBounds(double point[3], const double bounds[6])
{
  for (int i = 0; i < 3; ++i)
    point[i] = std::clamp(point[i], bounds[2 * i], bounds[2 * i + 1]);
}
} // namespace

template<class T>
VXResliceCursorRepresentationBase<T>::VXResliceCursorRepresentationBase()
{
  createArrows();
}

template<class T>
VXResliceCursorRepresentationBase<T>::~VXResliceCursorRepresentationBase()
{
  removeActorsFromRenderer(m_ArrowRenderer);
}

template<class T>
void VXResliceCursorRepresentationBase<T>::createArrows()
{
  for (int i = 0; i < 4; ++i)
  {
    // fill and outline share the three corners, so one update moves both
    vtkNew<vtkPoints> points;
    points->SetNumberOfPoints(3);
    for (vtkIdType p = 0; p < 3; ++p)
      points->SetPoint(p, 0.0, 0.0, 0.0);

    vtkNew<vtkCellArray> triangle;
    const vtkIdType corners[3] = { 0, 1, 2 };
    triangle->InsertNextCell(3, corners);
    m_ArrowFillPolyData[i] = vtkSmartPointer<vtkPolyData>::New();
    m_ArrowFillPolyData[i]->SetPoints(points);
    m_ArrowFillPolyData[i]->SetPolys(triangle);

    vtkNew<vtkCellArray> edges;
    for (vtkIdType p = 0; p < 3; ++p)
    {
      const vtkIdType edge[2] = { p, (p + 1) % 3 };
      edges->InsertNextCell(2, edge);
    }
    m_ArrowOutlinePolyData[i] = vtkSmartPointer<vtkPolyData>::New();
    m_ArrowOutlinePolyData[i]->SetPoints(points);
    m_ArrowOutlinePolyData[i]->SetLines(edges);

    vtkNew<vtkCoordinate> coordinate;
    coordinate->SetCoordinateSystemToNormalizedViewport();

    m_ArrowFillMappers[i] = vtkSmartPointer<vtkPolyDataMapper2D>::New();
    m_ArrowFillMappers[i]->SetInputData(m_ArrowFillPolyData[i]);
    m_ArrowFillMappers[i]->SetTransformCoordinate(coordinate);
    m_ArrowFillActors[i] = vtkSmartPointer<vtkActor2D>::New();
    m_ArrowFillActors[i]->SetMapper(m_ArrowFillMappers[i]);
    m_ArrowFillActors[i]->GetProperty()->SetColor(0.0, 0.0, 0.0);
    m_ArrowFillActors[i]->VisibilityOff();

    m_ArrowOutlineMappers[i] = vtkSmartPointer<vtkPolyDataMapper2D>::New();
    m_ArrowOutlineMappers[i]->SetInputData(m_ArrowOutlinePolyData[i]);
    m_ArrowOutlineMappers[i]->SetTransformCoordinate(coordinate);
    m_ArrowOutlineActors[i] = vtkSmartPointer<vtkActor2D>::New();
    m_ArrowOutlineActors[i]->SetMapper(m_ArrowOutlineMappers[i]);
    m_ArrowOutlineActors[i]->GetProperty()->SetColor(1.0, 1.0, 1.0);
    m_ArrowOutlineActors[i]->GetProperty()->SetLineWidth(2.0);
    m_ArrowOutlineActors[i]->VisibilityOff();
  }
  m_ArrowsCreated = true;
}

template<class T>
void VXResliceCursorRepresentationBase<T>::updateArrowPositions()
{
  vtkRenderer* renderer = this->Renderer;
  if (!m_ArrowsCreated || renderer == nullptr)
    return;
  const bool anyShown = std::any_of(m_ArrowFillActors.begin(), m_ArrowFillActors.end(),
                                    [](const auto& actor) { return actor->GetVisibility() != 0; });
  vtkResliceCursor* cursor = this->GetResliceCursor();
  if (!anyShown || cursor == nullptr)
    return;

  double center[3];
  cursor->GetCenter(center);
  double c[2];
  if (!toNormalizedViewport(renderer, center, c))
    return;

  vtkResliceCursorPolyDataAlgorithm* algorithm = this->GetCursorAlgorithm();
  for (int group = 0; group < 2; ++group)
  {
    // each group sits on the line it turns: group 0 on the line along plane axis 2
    const int axisIndex = group == 0 ? algorithm->GetPlaneAxis2() : algorithm->GetPlaneAxis1();
    const double* axis = cursor->GetAxis(axisIndex);
    const double tip[3] = { center[0] + axis[0], center[1] + axis[1], center[2] + axis[2] };
    double p[2];
    toNormalizedViewport(renderer, tip, p);
    double d[2] = { p[0] - c[0], p[1] - c[1] };
    const double length = std::hypot(d[0], d[1]);
    if (length > k_Parallel)
    {
      d[0] /= length;
      d[1] /= length;
    }
    double t0 = 0.0;
    double t1 = 0.0;
    if (!clipToUnitSquare(c, d, t0, t1))
      continue;
    const double n[2] = { -d[1], d[0] };
    for (int k = 0; k < 2; ++k)
    {
      const double t = t0 + (k + 1) * (t1 - t0) / 3.0;
      const double b[2] = { c[0] + t * d[0] + k_ArrowOffset * n[0],
                            c[1] + t * d[1] + k_ArrowOffset * n[1] };
      vtkPoints* points = m_ArrowFillPolyData[group * 2 + k]->GetPoints();
      const double h = k_ArrowHalfSize;
      points->SetPoint(0, b[0] - h * n[0], b[1] - h * n[1], 0.0);
      points->SetPoint(1, b[0] + h * n[0] + h * d[0], b[1] + h * n[1] + h * d[1], 0.0);
      points->SetPoint(2, b[0] + h * n[0] - h * d[0], b[1] + h * n[1] - h * d[1], 0.0);
      points->Modified();
      m_ArrowFillPolyData[group * 2 + k]->Modified();
      m_ArrowOutlinePolyData[group * 2 + k]->Modified();
    }
  }
}

template<class T>
bool VXResliceCursorRepresentationBase<T>::hitTestArrows(int x, int y, int& group) const
{
  vtkRenderer* renderer = this->Renderer;
  if (!m_ArrowsCreated || renderer == nullptr || renderer->GetRenderWindow() == nullptr)
    return false;
  const int* size = renderer->GetSize();
  if (size[0] <= 0 || size[1] <= 0)
    return false;
  const int* origin = renderer->GetOrigin();
  const double event[2] = { static_cast<double>(x - origin[0]) / size[0],
                            static_cast<double>(y - origin[1]) / size[1] };
  for (int i = 0; i < 4; ++i)
  {
    if (m_ArrowFillActors[i]->GetVisibility() == 0)
      continue;
    vtkPoints* points = m_ArrowFillPolyData[i]->GetPoints();
    double mean[2] = { 0.0, 0.0 };
    for (vtkIdType p = 0; p < 3; ++p)
    {
      const double* point = points->GetPoint(p);
      mean[0] += point[0] / 3.0;
      mean[1] += point[1] / 3.0;
    }
    if (std::hypot(event[0] - mean[0], event[1] - mean[1]) < k_ArrowHitRadius)
    {
      group = i >= 2 ? 1 : 0;
      return true;
    }
  }
  return false;
}

template<class T>
void VXResliceCursorRepresentationBase<T>::setArrowsVisible(int group, bool visible)
{
  const int shown = (visible && m_ObliqueMode) ? 1 : 0;
  for (int i = group * 2; i < group * 2 + 2; ++i)
  {
    m_ArrowFillActors[i]->SetVisibility(shown);
    m_ArrowOutlineActors[i]->SetVisibility(shown);
  }
}

template<class T>
int VXResliceCursorRepresentationBase<T>::ComputeInteractionState(int x, int y, int modify)
{
  int group = 0;
  if (m_ObliqueMode && hitTestArrows(x, y, group))
  {
    m_Rotating = true;
    m_ActiveArrowGroup = group;
    this->InteractionState = group == 0 ? Rep::OnAxis1 : Rep::OnAxis2;
    return this->InteractionState;
  }
  m_Rotating = false;
  const int state = T::ComputeInteractionState(x, y, modify);

  const bool group0 = state == Rep::NearAxis1 || state == Rep::OnAxis1;
  const bool group1 = state == Rep::NearAxis2 || state == Rep::OnAxis2;
  if (group0 != m_Group0Hovered)
  {
    m_Group0Hovered = group0;
    setArrowsVisible(0, group0);
  }
  if (group1 != m_Group1Hovered)
  {
    m_Group1Hovered = group1;
    setArrowsVisible(1, group1);
  }
  return state;
}

template<class T>
void VXResliceCursorRepresentationBase<T>::WidgetInteraction(double e[2])
{
  vtkResliceCursorPolyDataAlgorithm* algorithm = this->GetCursorAlgorithm();
  const int mode = this->GetManipulationMode();
  if (m_Rotating && m_ObliqueMode)
  {
    this->RotateAxis(e, m_ActiveArrowGroup == 0 ? algorithm->GetPlaneAxis1()
                                                : algorithm->GetPlaneAxis2());
  }
  else if (mode == Rep::RotateBothAxes)
  {
    // turning both lines at once is not offered
  }
  else if (mode == Rep::ResizeThickness || mode == Rep::WindowLevelling)
  {
    // the slab thickness keeps VTK's right-button drag
    T::WidgetInteraction(e);
    return;
  }
  else if (this->InteractionState == Rep::OnAxis1)
    clampedTranslateAxis(e, algorithm->GetPlaneAxis1());
  else if (this->InteractionState == Rep::OnAxis2)
    clampedTranslateAxis(e, algorithm->GetPlaneAxis2());
  else if (this->InteractionState == Rep::OnCenter)
    clampedTranslateCenter(e);
  else
  {
    T::WidgetInteraction(e);
    return;
  }
  this->LastEventPosition[0] = e[0];
  this->LastEventPosition[1] = e[1];
}

template<class T>
void VXResliceCursorRepresentationBase<T>::clampedTranslateCenter(double e[2])
{
  vtkRenderer* renderer = this->Renderer;
  vtkResliceCursor* cursor = this->GetResliceCursor();
  if (renderer == nullptr || cursor == nullptr || cursor->GetImage() == nullptr)
    return;
  double world[3];
  if (!displayToWorld(renderer, e, world))
    return;
  double delta[3];
  vtkMath::Subtract(world, this->StartPickPosition, delta);
  // only the move across the screen counts, not the depth of the near plane
  double projection[3];
  renderer->GetActiveCamera()->GetDirectionOfProjection(projection);
  vtkMath::Normalize(projection);
  const double along = vtkMath::Dot(delta, projection);
  double center[3];
  for (int i = 0; i < 3; ++i)
    center[i] = this->StartCenterPosition[i] + delta[i] - along * projection[i];
  clampToBounds(center, cursor->GetImage()->GetBounds());
  cursor->SetCenter(center);
}

template<class T>
double VXResliceCursorRepresentationBase<T>::clampedTranslateAxis(double e[2], int axis)
{
  vtkRenderer* renderer = this->Renderer;
  vtkResliceCursor* cursor = this->GetResliceCursor();
  if (renderer == nullptr || cursor == nullptr || cursor->GetImage() == nullptr)
    return 0.0;
  double world[3];
  if (!displayToWorld(renderer, e, world))
    return 0.0;
  double delta[3];
  vtkMath::Subtract(world, this->StartCenterPosition, delta);
  double normal[3];
  cursor->GetPlane(axis)->GetNormal(normal);
  vtkMath::Normalize(normal);
  const double distance = vtkMath::Dot(delta, normal);
  double center[3];
  for (int i = 0; i < 3; ++i)
    center[i] = this->StartCenterPosition[i] + distance * normal[i];
  clampToBounds(center, cursor->GetImage()->GetBounds());
  cursor->SetCenter(center);
  return distance;
}

template<class T>
void VXResliceCursorRepresentationBase<T>::BuildRepresentation()
{
  T::BuildRepresentation();
  vtkRenderer* renderer = this->Renderer;
  if (m_ArrowsCreated && renderer != m_ArrowRenderer.GetPointer())
  {
    removeActorsFromRenderer(m_ArrowRenderer);
    if (renderer != nullptr)
    {
      for (const auto& actor : m_ArrowOutlineActors)
        renderer->AddViewProp(actor);
      for (const auto& actor : m_ArrowFillActors)
        renderer->AddViewProp(actor);
    }
    m_ArrowRenderer = renderer;
  }
  updateArrowPositions();
}

template<class T>
void VXResliceCursorRepresentationBase<T>::removeActorsFromRenderer(vtkRenderer* renderer)
{
  if (renderer == nullptr)
    return;
  for (int i = 0; i < 4; ++i)
  {
    renderer->RemoveViewProp(m_ArrowOutlineActors[i]);
    renderer->RemoveViewProp(m_ArrowFillActors[i]);
  }
  if (m_ArrowRenderer.GetPointer() == renderer)
    m_ArrowRenderer = nullptr;
}

template<class T>
int VXResliceCursorRepresentationBase<T>::RenderOverlay(vtkViewport* viewport)
{
  int count = T::RenderOverlay(viewport);
  for (const auto& actor : m_ArrowOutlineActors)
  {
    if (actor->GetVisibility())
      count += actor->RenderOverlay(viewport);
  }
  for (const auto& actor : m_ArrowFillActors)
  {
    if (actor->GetVisibility())
      count += actor->RenderOverlay(viewport);
  }
  return count;
}

template<class T>
void VXResliceCursorRepresentationBase<T>::ReleaseGraphicsResources(vtkWindow* window)
{
  for (int i = 0; i < 4; ++i)
  {
    m_ArrowOutlineActors[i]->ReleaseGraphicsResources(window);
    m_ArrowFillActors[i]->ReleaseGraphicsResources(window);
  }
  T::ReleaseGraphicsResources(window);
}

template<class T>
void VXResliceCursorRepresentationBase<T>::setObliqueMode(bool on)
{
  m_ObliqueMode = on;
  if (!on && m_ArrowsCreated)
  {
    for (int i = 0; i < 4; ++i)
    {
      m_ArrowFillActors[i]->VisibilityOff();
      m_ArrowOutlineActors[i]->VisibilityOff();
    }
  }
  m_Group0Hovered = false;
  m_Group1Hovered = false;
}

template class VXResliceCursorRepresentationBase<vtkResliceCursorLineRepresentation>;
template class VXResliceCursorRepresentationBase<vtkResliceCursorThickLineRepresentation>;
