#include "quadview/annotations/VXQuadViewMark.hpp"

#include "quadview/annotations/AnnotationJson.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"

#include <QVTKOpenGLNativeWidget.h>

#include <vtkBoundedPlanePointPlacer.h>
#include <vtkCallbackCommand.h>
#include <vtkCamera.h>
#include <vtkCommand.h>
#include <vtkCubeSource.h>
#include <vtkCursor3D.h>
#include <vtkHandleWidget.h>
#include <vtkPolyData.h>
#include <vtkPolygonalHandleRepresentation3D.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkSphereSource.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>

namespace voxelia::quadview::annotations
{
namespace
{
constexpr int k_MinHitRadius = 6;
constexpr int k_MinLabelFont = 8;
/** Gap in pixels between the mark's edge and its label. */
constexpr int k_LabelGap = 4;

/** A unit-sized copy of the polydata of @p shape, independent of its source. */
vtkSmartPointer<vtkPolyData> shapePolyData(MarkShape shape)
{
  auto out = vtkSmartPointer<vtkPolyData>::New();
  switch (shape)
  {
    case MarkShape::Cross:
    {
      vtkNew<vtkCursor3D> cursor;
      cursor->AllOff();
      cursor->AxesOn();
      cursor->SetModelBounds(-0.5, 0.5, -0.5, 0.5, -0.5, 0.5);
      cursor->SetFocalPoint(0.0, 0.0, 0.0);
      cursor->Update();
      out->DeepCopy(cursor->GetOutput());
      break;
    }
    case MarkShape::Square:
    {
      vtkNew<vtkCubeSource> cube;
      cube->SetCenter(0.0, 0.0, 0.0);
      cube->SetXLength(1.0);
      cube->SetYLength(1.0);
      cube->SetZLength(1.0);
      cube->Update();
      out->DeepCopy(cube->GetOutput());
      break;
    }
    case MarkShape::Sphere:
    default:
    {
      vtkNew<vtkSphereSource> sphere;
      sphere->SetCenter(0.0, 0.0, 0.0);
      sphere->SetRadius(0.5);
      sphere->SetThetaResolution(24);
      sphere->SetPhiResolution(16);
      sphere->Update();
      out->DeepCopy(sphere->GetOutput());
      break;
    }
  }
  return out;
}
} // namespace

VXQuadViewMark::VXQuadViewMark(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                               VXQuadViewAnnotationsController* controller, const QString& name,
                               int anchorSliceIndex, const SlicePlane& plane,
                               const WorldBounds& bounds, const std::array<double, 3>& anchor,
                               QObject* parent)
  : VXQuadViewPaneAnnotation(role, pane, controller, name, anchorSliceIndex, plane, bounds, true,
                             parent)
  , m_Anchor(anchor)
{
  if (!paneReady())
    return;

  m_Representation = vtkSmartPointer<vtkPolygonalHandleRepresentation3D>::New();
  m_Widget = vtkSmartPointer<vtkHandleWidget>::New();
  m_Widget->SetInteractor(pane->renderWindow()->GetInteractor());
  m_Widget->SetRepresentation(m_Representation);
  m_Widget->SetPriority(0.6f);
  m_Representation->SetPointPlacer(placer());
  rebuildHandleRepForShape();
  applyVisualSettings();
  m_Widget->SetEnabled(1);
  m_Representation->SetWorldPosition(m_Anchor.data());

  m_InteractionCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_InteractionCallback->SetClientData(this);
  m_InteractionCallback->SetCallback(&VXQuadViewMark::onInteraction);
  m_InteractionTag = m_Widget->AddObserver(vtkCommand::InteractionEvent, m_InteractionCallback);
  m_EndInteractionTag =
    m_Widget->AddObserver(vtkCommand::EndInteractionEvent, m_InteractionCallback);
  m_CameraCallback = vtkSmartPointer<vtkCallbackCommand>::New();
  m_CameraCallback->SetClientData(this);
  m_CameraCallback->SetCallback(&VXQuadViewMark::onCamera);
  observeCamera();
  updateLabelActor();
  renderPane();
}

VXQuadViewMark::~VXQuadViewMark()
{
  if (m_InteractionCallback)
    m_InteractionCallback->SetClientData(nullptr);
  if (m_CameraCallback)
    m_CameraCallback->SetClientData(nullptr);
  if (m_ObservedCamera != nullptr)
    m_ObservedCamera->RemoveObserver(m_CameraTag);
  if (m_Widget)
  {
    m_Widget->RemoveObserver(m_InteractionTag);
    m_Widget->RemoveObserver(m_EndInteractionTag);
    m_Widget->SetEnabled(0);
  }
  if (m_LabelAdded && paneRenderer() != nullptr)
    paneRenderer()->RemoveViewProp(m_Label);
}

void VXQuadViewMark::observeCamera()
{
  vtkRenderer* renderer = paneRenderer();
  vtkCamera* camera = renderer != nullptr ? renderer->GetActiveCamera() : nullptr;
  if (camera == nullptr || camera == m_ObservedCamera)
    return;
  if (m_ObservedCamera != nullptr)
    m_ObservedCamera->RemoveObserver(m_CameraTag);
  m_ObservedCamera = camera;
  m_CameraTag = camera->AddObserver(vtkCommand::ModifiedEvent, m_CameraCallback);
}

void VXQuadViewMark::onInteraction(vtkObject*, unsigned long eventId, void* clientData, void*)
{
  auto* self = static_cast<VXQuadViewMark*>(clientData);
  if (self == nullptr || !self->m_Representation)
    return;
  self->m_Representation->GetWorldPosition(self->m_Anchor.data());
  self->updateLabelActor();
  if (eventId == vtkCommand::EndInteractionEvent)
    self->notifyChanged();
}

void VXQuadViewMark::onCamera(vtkObject*, unsigned long, void* clientData, void*)
{
  if (auto* self = static_cast<VXQuadViewMark*>(clientData))
    self->onCameraModified();
}

void VXQuadViewMark::onNameChanged()
{
  updateLabelActor();
  renderPane();
}

VXQuadViewAnnotation::Type VXQuadViewMark::type() const
{
  return Type::Mark;
}

QString VXQuadViewMark::summaryText() const
{
  return markShapeLabel(m_Shape);
}

void VXQuadViewMark::onSliceChanged(const SlicePlane& plane)
{
  if (!m_Widget)
    return;
  if (locked())
  {
    setShown(lockedVisibleOn(plane));
    renderPane();
    return;
  }
  const auto normal = planeNormal(plane, k_PlaneNormalEps);
  if (!normal)
    return;
  const Vec3 moved = projectOntoPlane(anchor(), plane.origin, *normal);
  adoptPlane(plane);
  m_SuppressNotify = true;
  setAnchor(moved);
  m_SuppressNotify = false;
  setShown(true);
  updateLabelActor();
  renderPane();
  notifyChanged();
}

bool VXQuadViewMark::hitTestScreen(const QPoint& p) const
{
  if (!m_Widget || !m_Shown)
    return false;
  const auto centre = worldToPaneLocal(anchor());
  if (!centre)
    return false;
  const double dx = p.x() - centre->x();
  const double dy = p.y() - centre->y();
  const double r = hitRadius();
  if (dx * dx + dy * dy <= r * r)
    return true;
  if (!m_LabelVisible || !m_Label || !m_LabelAdded || m_Label->GetVisibility() == 0)
    return false;
  double size[2] = { 0.0, 0.0 };
  if (vtkRenderer* renderer = paneRenderer())
    m_Label->GetSize(renderer, size);
  const double ratio = paneWidget()->devicePixelRatioF();
  const QRectF label(centre->x() + m_SizeInPixels + k_LabelGap, centre->y() - size[1] / ratio,
                     size[0] / ratio, size[1] / ratio);
  return label.contains(QPointF(p));
}

void VXQuadViewMark::setSelectedVisual(bool on)
{
  if (m_Selected == on)
    return;
  m_Selected = on;
  applyVisualSettings();
  renderPane();
}

QRect VXQuadViewMark::screenBounds() const
{
  const auto centre = worldToPaneLocal(anchor());
  if (!centre)
    return {};
  const int r = hitRadius();
  return QRect(centre->toPoint() - QPoint(r, r), QSize(2 * r + 1, 2 * r + 1));
}

void VXQuadViewMark::serialize(QJsonObject& object) const
{
  serializeHead(object);
  object.insert(QStringLiteral("anchor"), vec3ToJson(anchor()));
  serializeTail(object);
  object.insert(QStringLiteral("color"), m_Color.name(QColor::HexArgb));
  object.insert(QStringLiteral("sizeInPixels"), m_SizeInPixels);
  object.insert(QStringLiteral("shape"), static_cast<int>(m_Shape));
  object.insert(QStringLiteral("labelVisible"), m_LabelVisible);
}

void VXQuadViewMark::deserialize(const QJsonObject& object)
{
  const QJsonValue color = object.value(QStringLiteral("color"));
  if (color.isString() && QColor(color.toString()).isValid())
    m_Color = QColor(color.toString());
  const QJsonValue size = object.value(QStringLiteral("sizeInPixels"));
  if (size.isDouble())
    m_SizeInPixels = std::clamp(size.toInt(), k_MinSize, k_MaxSize);
  const QJsonValue shape = object.value(QStringLiteral("shape"));
  if (shape.isDouble())
    m_Shape = markShapeFromInt(shape.toInt());
  const QJsonValue label = object.value(QStringLiteral("labelVisible"));
  if (label.isBool())
    m_LabelVisible = label.toBool();
  deserializeLocked(object);
  rebuildHandleRepForShape();
  updateLabelActor();
  renderPane();
}

void VXQuadViewMark::onAfterLoad()
{
  observeCamera();
  applyVisualSettings();
  updateLabelActor();
}

std::array<double, 3> VXQuadViewMark::anchor() const
{
  return m_Anchor;
}

void VXQuadViewMark::setAnchor(const std::array<double, 3>& p)
{
  m_Anchor = p;
  if (m_Representation)
  {
    m_Representation->SetWorldPosition(m_Anchor.data());
    updateLabelActor();
    renderPane();
  }
  notifyChanged();
}

QColor VXQuadViewMark::color() const
{
  return m_Color;
}

void VXQuadViewMark::setColor(const QColor& color)
{
  if (!color.isValid() || color == m_Color)
    return;
  m_Color = color;
  applyVisualSettings();
  updateLabelActor();
  renderPane();
  notifyChanged();
}

int VXQuadViewMark::sizeInPixels() const
{
  return m_SizeInPixels;
}

void VXQuadViewMark::setSizeInPixels(int size)
{
  size = std::clamp(size, k_MinSize, k_MaxSize);
  if (size == m_SizeInPixels)
    return;
  m_SizeInPixels = size;
  applyVisualSettings();
  updateLabelActor();
  renderPane();
  notifyChanged();
}

MarkShape VXQuadViewMark::shape() const
{
  return m_Shape;
}

void VXQuadViewMark::setShape(MarkShape shape)
{
  if (shape == m_Shape)
    return;
  m_Shape = shape;
  rebuildHandleRepForShape();
  renderPane();
  notifyChanged();
}

bool VXQuadViewMark::labelVisibleInViewport() const
{
  return m_LabelVisible;
}

void VXQuadViewMark::setLabelVisibleInViewport(bool visible)
{
  if (visible == m_LabelVisible)
    return;
  m_LabelVisible = visible;
  updateLabelActor();
  renderPane();
  notifyChanged();
}

void VXQuadViewMark::applyVisualSettings()
{
  if (!m_Representation)
    return;
  const double rgb[3] = { m_Color.redF(), m_Color.greenF(), m_Color.blueF() };
  for (vtkProperty* property :
       { m_Representation->GetProperty(), m_Representation->GetSelectedProperty() })
  {
    property->SetColor(rgb[0], rgb[1], rgb[2]);
    property->SetOpacity(m_Color.alphaF());
    property->LightingOff();
  }
  // world units per pixel keep the mark the same size on screen at any zoom
  double worldPerPixel = 1.0;
  vtkRenderer* renderer = paneRenderer();
  vtkCamera* camera = renderer != nullptr ? renderer->GetActiveCamera() : nullptr;
  const int height = renderer != nullptr ? renderer->GetSize()[1] : 0;
  if (camera != nullptr && height > 0)
    worldPerPixel = 2.0 * camera->GetParallelScale() / height;
  m_Representation->SetUniformScale(m_SizeInPixels * worldPerPixel * (m_Selected ? 1.5 : 1.0));
}

void VXQuadViewMark::updateLabelActor()
{
  vtkRenderer* renderer = paneRenderer();
  if (!m_LabelVisible)
  {
    if (m_LabelAdded && renderer != nullptr)
      renderer->RemoveViewProp(m_Label);
    m_LabelAdded = false;
    return;
  }
  if (renderer == nullptr)
    return;
  if (!m_Label)
    m_Label = vtkSmartPointer<vtkTextActor>::New();
  if (!m_LabelAdded)
  {
    renderer->AddViewProp(m_Label);
    m_LabelAdded = true;
  }
  vtkTextProperty* text = m_Label->GetTextProperty();
  text->SetColor(m_Color.redF(), m_Color.greenF(), m_Color.blueF());
  text->SetFontSize(labelFontSize());
  m_Label->SetInput(name().toUtf8().constData());
  m_Label->SetVisibility(m_Shown ? 1 : 0);
  const auto centre = worldToPaneLocal(anchor());
  if (!centre)
    return;
  const double ratio = paneWidget()->devicePixelRatioF();
  m_Label->SetDisplayPosition(
    static_cast<int>(std::lround((centre->x() + m_SizeInPixels + k_LabelGap) * ratio)),
    static_cast<int>(std::lround(paneDeviceHeight() - centre->y() * ratio)));
}

void VXQuadViewMark::rebuildHandleRepForShape()
{
  if (!m_Representation)
    return;
  m_Representation->SetHandle(shapePolyData(m_Shape));
  applyVisualSettings();
}

void VXQuadViewMark::onCameraModified()
{
  applyVisualSettings();
  updateLabelActor();
}

int VXQuadViewMark::hitRadius() const
{
  return std::max(k_MinHitRadius, m_SizeInPixels);
}

int VXQuadViewMark::labelFontSize() const
{
  return std::max(k_MinLabelFont, static_cast<int>(std::lround(m_SizeInPixels * 1.25)));
}

vtkHandleWidget* VXQuadViewMark::handleWidget() const
{
  return m_Widget.Get();
}

vtkPolygonalHandleRepresentation3D* VXQuadViewMark::handleRepresentation() const
{
  return m_Representation.Get();
}

vtkTextActor* VXQuadViewMark::labelActor() const
{
  return m_Label.Get();
}

bool VXQuadViewMark::isShown() const
{
  return m_Widget && m_Shown && m_Widget->GetEnabled() != 0;
}

void VXQuadViewMark::setShown(bool shown)
{
  if (!m_Widget)
    return;
  m_Shown = shown;
  m_Widget->SetEnabled(shown ? 1 : 0);
  if (m_Label)
    m_Label->SetVisibility(shown && m_LabelVisible ? 1 : 0);
}
} // namespace voxelia::quadview::annotations
