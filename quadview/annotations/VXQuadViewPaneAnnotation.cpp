#include "quadview/annotations/VXQuadViewPaneAnnotation.hpp"

#include "quadview/annotations/AnnotationJson.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"

#include <QVTKOpenGLNativeWidget.h>

#include <vtkBoundedPlanePointPlacer.h>
#include <vtkNew.h>
#include <vtkPlane.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>

namespace voxelia::quadview::annotations
{
VXQuadViewPaneAnnotation::VXQuadViewPaneAnnotation(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                                                   VXQuadViewAnnotationsController* controller,
                                                   const QString& name, int anchorSliceIndex,
                                                   const SlicePlane& plane,
                                                   const WorldBounds& bounds, bool locked,
                                                   QObject* parent)
  : QObject(parent)
  , m_Role(role)
  , m_Name(name)
  , m_Locked(locked)
  , m_AnchorSliceIndex(anchorSliceIndex)
  , m_AnchorPlane(plane)
  , m_GeomBounds(bounds)
  , m_Pane(pane)
  , m_Controller(controller)
  , m_Placer(vtkSmartPointer<vtkBoundedPlanePointPlacer>::New())
{
  configurePlacerForCurrentPlane(plane);
}

VXQuadViewPaneAnnotation::~VXQuadViewPaneAnnotation() = default;

AnnotationId VXQuadViewPaneAnnotation::id() const
{
  return m_Id;
}

SlicePaneRole VXQuadViewPaneAnnotation::role() const
{
  return m_Role;
}

QString VXQuadViewPaneAnnotation::name() const
{
  return m_Name;
}

void VXQuadViewPaneAnnotation::setName(const QString& name)
{
  if (name == m_Name)
    return;
  m_Name = name;
  onNameChanged();
  notifyChanged();
}

void VXQuadViewPaneAnnotation::onNameChanged() {}

bool VXQuadViewPaneAnnotation::locked() const
{
  return m_Locked;
}

void VXQuadViewPaneAnnotation::setLocked(bool locked)
{
  if (locked == m_Locked)
    return;
  if (locked && m_Controller != nullptr)
  {
    // the lock pins the slice shown now
    m_AnchorPlane = m_Controller->currentPlane();
    m_AnchorSliceIndex = m_Controller->currentSliceIndex();
  }
  m_Locked = locked;
  if (m_Controller != nullptr)
    onSliceChanged(m_Controller->currentPlane());
  // unlocking went through the following branch of onSliceChanged, which has told already
  if (locked && m_Controller != nullptr)
    m_Controller->notifyAnnotationChanged(m_Id);
}

int VXQuadViewPaneAnnotation::anchorSliceIndex() const
{
  return m_AnchorSliceIndex;
}

int VXQuadViewPaneAnnotation::displaySliceIndex() const
{
  return !m_Locked && m_Controller != nullptr ? m_Controller->currentSliceIndex()
                                              : m_AnchorSliceIndex;
}

void VXQuadViewPaneAnnotation::navigateTo()
{
  if (m_Controller != nullptr)
    m_Controller->notifyNavigateRequested(m_Id);
}

void VXQuadViewPaneAnnotation::configurePlacerForCurrentPlane(const SlicePlane& plane)
{
  const auto normal = planeNormal(plane, k_PlaneNormalEps);
  if (!normal)
    return;
  vtkNew<vtkPlane> oblique;
  oblique->SetOrigin(plane.origin.data());
  oblique->SetNormal(normal->data());
  m_Placer->SetObliquePlane(oblique);
  m_Placer->SetProjectionNormalToOblique();
  m_Placer->RemoveAllBoundingPlanes();
}

vtkRenderer* VXQuadViewPaneAnnotation::paneRenderer() const
{
  if (!m_Pane || m_Pane->renderWindow() == nullptr)
    return nullptr;
  return m_Pane->renderWindow()->GetRenderers()->GetFirstRenderer();
}

std::optional<QPointF> VXQuadViewPaneAnnotation::worldToPaneLocal(
  const std::array<double, 3>& p) const
{
  vtkRenderer* renderer = paneRenderer();
  if (renderer == nullptr)
    return std::nullopt;
  renderer->SetWorldPoint(p[0], p[1], p[2], 1.0);
  renderer->WorldToDisplay();
  const double* d = renderer->GetDisplayPoint();
  // display pixels count from the bottom in device pixels; widgets from the top in logical ones
  const double ratio = m_Pane->devicePixelRatioF();
  return QPointF(d[0] / ratio, (paneDeviceHeight() - d[1]) / ratio);
}

void VXQuadViewPaneAnnotation::notifyChanged()
{
  if (!m_SuppressNotify && m_Controller != nullptr)
    m_Controller->notifyAnnotationChanged(m_Id);
}

const SlicePlane& VXQuadViewPaneAnnotation::anchorPlane() const
{
  return m_AnchorPlane;
}

const WorldBounds& VXQuadViewPaneAnnotation::geomBounds() const
{
  return m_GeomBounds;
}

VXQuadViewAnnotationsController* VXQuadViewPaneAnnotation::controller() const
{
  return m_Controller;
}

QVTKOpenGLNativeWidget* VXQuadViewPaneAnnotation::paneWidget() const
{
  return m_Pane.data();
}

bool VXQuadViewPaneAnnotation::paneReady() const
{
  return m_Pane && m_Pane->renderWindow() != nullptr &&
         m_Pane->renderWindow()->GetInteractor() != nullptr && paneRenderer() != nullptr;
}

int VXQuadViewPaneAnnotation::paneDeviceHeight() const
{
  if (!m_Pane || m_Pane->renderWindow() == nullptr)
    return 0;
  return m_Pane->renderWindow()->GetSize()[1];
}

void VXQuadViewPaneAnnotation::renderPane() const
{
  if (m_Pane && m_Pane->renderWindow() != nullptr)
    m_Pane->renderWindow()->Render();
}

int VXQuadViewPaneAnnotation::currentSliceIndex() const
{
  return m_Controller != nullptr ? m_Controller->currentSliceIndex() : m_AnchorSliceIndex;
}

bool VXQuadViewPaneAnnotation::lockedVisibleOn(const SlicePlane& plane) const
{
  const bool onSlice =
    m_Controller == nullptr || m_Controller->currentSliceIndex() == m_AnchorSliceIndex;
  return onSlice && slicePlaneAxesMatch(m_AnchorPlane, plane, k_AlignEps);
}

void VXQuadViewPaneAnnotation::adoptPlane(const SlicePlane& plane)
{
  // saved, the record says where it was last seen, so that a load finds it on its plane
  m_AnchorPlane = plane;
  m_AnchorSliceIndex = currentSliceIndex();
  configurePlacerForCurrentPlane(plane);
}

void VXQuadViewPaneAnnotation::serializeHead(QJsonObject& object) const
{
  object.insert(QStringLiteral("type"), typeName(type()));
  object.insert(QStringLiteral("id"), m_Id.toString());
  object.insert(QStringLiteral("name"), m_Name);
  object.insert(QStringLiteral("locked"), m_Locked);
  object.insert(QStringLiteral("anchorSliceIndex"), m_AnchorSliceIndex);
}

void VXQuadViewPaneAnnotation::serializeTail(QJsonObject& object) const
{
  object.insert(QStringLiteral("anchorPlane"), planeToJson(m_AnchorPlane));
  object.insert(QStringLiteral("geomBounds"), boundsToJson(m_GeomBounds));
}

void VXQuadViewPaneAnnotation::deserializeLocked(const QJsonObject& object)
{
  const QJsonValue locked = object.value(QStringLiteral("locked"));
  if (locked.isBool())
    m_Locked = locked.toBool();
}

vtkBoundedPlanePointPlacer* VXQuadViewPaneAnnotation::placer() const
{
  return m_Placer.Get();
}
} // namespace voxelia::quadview::annotations
