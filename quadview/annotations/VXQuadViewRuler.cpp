#include "quadview/annotations/VXQuadViewRuler.hpp"

#include "quadview/annotations/AnnotationJson.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"
#include "quadview/annotations/VXRulerHandleRepresentation.hpp"

#include <QVTKOpenGLNativeWidget.h>

#include <vtkAxisActor2D.h>
#include <vtkBoundedPlanePointPlacer.h>
#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkDistanceRepresentation2D.h>
#include <vtkDistanceWidget.h>
#include <vtkProperty2D.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>

#include <algorithm>
#include <cmath>

namespace voxelia::quadview::annotations
{
namespace
{
/** How near, in pixels, the mouse must be to an end or the line. */
constexpr double k_HitPixels = 6.0;

double squaredDistance(const QPointF& a, const QPointF& b)
{
  const QPointF d = a - b;
  return d.x() * d.x() + d.y() * d.y();
}
} // namespace

VXQuadViewRuler::VXQuadViewRuler(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                                 VXQuadViewAnnotationsController* controller, const QString& name,
                                 int anchorSliceIndex, const SlicePlane& plane,
                                 const WorldBounds& bounds, const std::array<double, 3>& point1,
                                 const std::array<double, 3>& point2, QObject* parent)
  : VXQuadViewPaneAnnotation(role, pane, controller, name, anchorSliceIndex, plane, bounds, false,
                             parent)
  , m_Point1(point1)
  , m_Point2(point2)
{
  if (!paneReady())
    return;

  auto handleTemplate = vtkSmartPointer<VXRulerHandleRepresentation>::New();
  m_Representation = vtkSmartPointer<vtkDistanceRepresentation2D>::New();
  m_Representation->SetHandleRepresentation(handleTemplate);
  m_Widget = vtkSmartPointer<vtkDistanceWidget>::New();
  m_Widget->SetInteractor(pane->renderWindow()->GetInteractor());
  m_Widget->SetRepresentation(m_Representation);
  m_Widget->SetPriority(0.6f);
  m_Representation->InstantiateHandleRepresentation();
  m_Handle1 =
    VXRulerHandleRepresentation::SafeDownCast(m_Representation->GetPoint1Representation());
  m_Handle2 =
    VXRulerHandleRepresentation::SafeDownCast(m_Representation->GetPoint2Representation());
  int index = 1;
  for (VXRulerHandleRepresentation* handle : { m_Handle1.Get(), m_Handle2.Get() })
  {
    if (handle == nullptr)
      continue;
    handle->SetEndpointIndex(index++);
    handle->SetPointPlacer(placer());
    handle->registerActorsWithRenderer(paneRenderer());
  }
  m_HandleSizeNormal = m_Handle1 ? m_Handle1->GetHandleSize() : 0.0;
  m_HandleSizeSelected = 1.5 * m_HandleSizeNormal;
  m_LineWidthNormal = m_Representation->GetAxisProperty()->GetLineWidth();
  m_LineWidthSelected = m_LineWidthNormal + 2.0;
  m_Representation->SetLabelFormat("%.2f");

  m_Widget->SetEnabled(1);
  m_Widget->SetWidgetStateToManipulate();
  // enabled while still in its start state, the widget hid the line: both points exist already
  m_Representation->VisibilityOn();
  m_Representation->SetPoint1WorldPosition(m_Point1.data());
  m_Representation->SetPoint2WorldPosition(m_Point2.data());

  m_EndCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_EndCallback->SetClientData(this);
  m_EndCallback->SetCallback(&VXQuadViewRuler::onEndInteraction);
  m_EndTag = m_Widget->AddObserver(vtkCommand::EndInteractionEvent, m_EndCallback);
  renderPane();
}

VXQuadViewRuler::~VXQuadViewRuler()
{
  if (m_EndCallback)
    m_EndCallback->SetClientData(nullptr);
  if (m_Widget)
  {
    m_Widget->RemoveObserver(m_EndTag);
    m_Widget->SetEnabled(0);
  }
  for (VXRulerHandleRepresentation* handle : { m_Handle1.Get(), m_Handle2.Get() })
    if (handle != nullptr)
      handle->unregisterActorsFromRenderer();
}

void VXQuadViewRuler::onEndInteraction(vtkObject*, unsigned long, void* clientData, void*)
{
  if (auto* self = static_cast<VXQuadViewRuler*>(clientData))
    self->notifyChanged();
}

VXQuadViewAnnotation::Type VXQuadViewRuler::type() const
{
  return Type::Ruler;
}

QString VXQuadViewRuler::summaryText() const
{
  return QString::number(distance(), 'f', 2);
}

void VXQuadViewRuler::onSliceChanged(const SlicePlane& plane)
{
  if (!m_Widget)
    return;
  if (!slicePlaneIsAxisAligned(plane, k_AlignEps))
  {
    // rulers exist only on axis aligned slices
    setShown(false);
    renderPane();
    return;
  }
  if (locked())
  {
    setShown(lockedVisibleOn(plane));
    renderPane();
    return;
  }
  const auto normal = planeNormal(plane, k_PlaneNormalEps);
  if (!normal)
    return;
  m_SuppressNotify = true;
  const Vec3 p1 = projectOntoPlane(point1(), plane.origin, *normal);
  const Vec3 p2 = projectOntoPlane(point2(), plane.origin, *normal);
  adoptPlane(plane);
  setPoint1(p1);
  setPoint2(p2);
  m_SuppressNotify = false;
  setShown(true);
  renderPane();
  notifyChanged();
}

bool VXQuadViewRuler::hitTestScreen(const QPoint& p) const
{
  if (!m_Widget || m_Widget->GetInteractor() == nullptr || !isShown())
    return false;
  const auto a = worldToPaneLocal(point1());
  const auto b = worldToPaneLocal(point2());
  if (!a || !b)
    return false;
  const QPointF q(p);
  const double limit = k_HitPixels * k_HitPixels;
  if (squaredDistance(q, *a) <= limit || squaredDistance(q, *b) <= limit)
    return true;
  const double segment = squaredDistance(*a, *b);
  if (segment < 1.0)
    return false;
  const QPointF ab = *b - *a;
  const QPointF aq = q - *a;
  const double t = std::clamp((aq.x() * ab.x() + aq.y() * ab.y()) / segment, 0.0, 1.0);
  return squaredDistance(q, *a + t * ab) <= limit;
}

void VXQuadViewRuler::setSelectedVisual(bool on)
{
  if (!m_Widget)
    return;
  for (VXRulerHandleRepresentation* handle : { m_Handle1.Get(), m_Handle2.Get() })
    if (handle != nullptr)
      handle->SetHandleSize(on ? m_HandleSizeSelected : m_HandleSizeNormal);
  m_Representation->GetAxisProperty()->SetLineWidth(on ? m_LineWidthSelected : m_LineWidthNormal);
  renderPane();
}

QRect VXQuadViewRuler::screenBounds() const
{
  const auto a = worldToPaneLocal(point1());
  const auto b = worldToPaneLocal(point2());
  if (!a || !b)
    return {};
  return QRect(a->toPoint(), b->toPoint()).normalized();
}

void VXQuadViewRuler::serialize(QJsonObject& object) const
{
  serializeHead(object);
  object.insert(QStringLiteral("point1"), vec3ToJson(point1()));
  object.insert(QStringLiteral("point2"), vec3ToJson(point2()));
  serializeTail(object);
}

void VXQuadViewRuler::deserialize(const QJsonObject& object)
{
  // the rest went through the constructor
  deserializeLocked(object);
}

std::array<double, 3> VXQuadViewRuler::point1() const
{
  if (!m_Representation)
    return m_Point1;
  std::array<double, 3> p{};
  m_Representation->GetPoint1WorldPosition(p.data());
  return p;
}

std::array<double, 3> VXQuadViewRuler::point2() const
{
  if (!m_Representation)
    return m_Point2;
  std::array<double, 3> p{};
  m_Representation->GetPoint2WorldPosition(p.data());
  return p;
}

void VXQuadViewRuler::setPoint1(const std::array<double, 3>& p)
{
  m_Point1 = p;
  if (m_Representation)
  {
    m_Representation->SetPoint1WorldPosition(m_Point1.data());
    renderPane();
  }
  notifyChanged();
}

void VXQuadViewRuler::setPoint2(const std::array<double, 3>& p)
{
  m_Point2 = p;
  if (m_Representation)
  {
    m_Representation->SetPoint2WorldPosition(m_Point2.data());
    renderPane();
  }
  notifyChanged();
}

double VXQuadViewRuler::distance() const
{
  const auto a = point1();
  const auto b = point2();
  return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) +
                   (a[2] - b[2]) * (a[2] - b[2]));
}

vtkDistanceWidget* VXQuadViewRuler::distanceWidget() const
{
  return m_Widget.Get();
}

VXRulerHandleRepresentation* VXQuadViewRuler::handleRepresentation(int index) const
{
  return index == 1 ? m_Handle1.Get() : index == 2 ? m_Handle2.Get() : nullptr;
}

bool VXQuadViewRuler::isShown() const
{
  return m_Widget && m_Widget->GetEnabled() != 0 && m_Handle1 && m_Handle1->handleVisibility();
}

void VXQuadViewRuler::setShown(bool shown)
{
  if (!m_Widget)
    return;
  m_Widget->SetEnabled(shown ? 1 : 0);
  for (VXRulerHandleRepresentation* handle : { m_Handle1.Get(), m_Handle2.Get() })
    if (handle != nullptr)
      handle->setHandleVisibility(shown);
}
} // namespace voxelia::quadview::annotations
