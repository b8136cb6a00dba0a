#include "visualization/VXPlane.hpp"

#include "visualization/VXPlaneCallback.hpp"

#include <vtkImplicitPlaneRepresentation.h>
#include <vtkImplicitPlaneWidget2.h>
#include <vtkPlane.h>
#include <vtkRenderWindowInteractor.h>

VXPlane::VXPlane(std::array<double, 6> bounds, vtkRenderWindowInteractor* interactor,
                 QObject* parent)
  : QObject(parent)
  , m_Bounds(bounds)
  , m_Widget(vtkSmartPointer<vtkImplicitPlaneWidget2>::New())
  , m_Representation(vtkSmartPointer<vtkImplicitPlaneRepresentation>::New())
  , m_Plane(vtkSmartPointer<vtkPlane>::New())
  , m_Callback(vtkSmartPointer<VXPlaneCallback>::New())
{
  m_Representation->SetPlaceFactor(1.0);
  m_Representation->PlaceWidget(m_Bounds.data());
  // the outline marks the bounds the plane may move in; it does not move the data
  m_Representation->OutlineTranslationOff();
  const auto centre = calculateGlobalOrigin();
  m_Plane->SetOrigin(centre.data());
  m_Plane->SetNormal(1.0, 0.0, 0.0);
  updateWidget();
  m_Widget->SetRepresentation(m_Representation);
  m_Callback->setViewPlane(m_Plane);
  m_Callback->setPlaneObject(this);
  m_Widget->AddObserver(vtkCommand::InteractionEvent, m_Callback);
  m_Widget->SetInteractor(interactor);
}

VXPlane::~VXPlane()
{
  m_Widget->Off();
  m_Widget->SetInteractor(nullptr);
}

std::array<double, 3> VXPlane::getNormal() const
{
  std::array<double, 3> normal{};
  m_Plane->GetNormal(normal.data());
  return normal;
}

std::array<double, 3> VXPlane::getOrigin() const
{
  std::array<double, 3> origin{};
  m_Plane->GetOrigin(origin.data());
  return origin;
}

void VXPlane::setNormal(const std::array<double, 3>& normal)
{
  setValues(normal, getOrigin());
}

void VXPlane::setNormal(double x, double y, double z)
{
  setNormal({ x, y, z });
}

void VXPlane::setOrigin(const std::array<double, 3>& origin)
{
  setValues(getNormal(), origin);
}

void VXPlane::setOrigin(double x, double y, double z)
{
  setOrigin({ x, y, z });
}

void VXPlane::setValues(const std::array<double, 3>& normal, const std::array<double, 3>& origin)
{
  // a zero normal has no direction: keep the one the plane has
  if (normal[0] != 0.0 || normal[1] != 0.0 || normal[2] != 0.0)
    m_Plane->SetNormal(normal.data());
  m_Plane->SetOrigin(origin.data());
  updateWidget();
  Q_EMIT planeChanged();
  Q_EMIT originChanged(getOrigin());
  Q_EMIT normalsChanged(getNormal());
}

void VXPlane::drawPlaneOn()
{
  m_Representation->DrawPlaneOn();
}

void VXPlane::drawPlaneOff()
{
  m_Representation->DrawPlaneOff();
}

void VXPlane::enable()
{
  m_Enabled = true;
  if (m_Widget->GetInteractor() != nullptr)
    m_Widget->On();
}

void VXPlane::disable()
{
  m_Enabled = false;
  if (m_Widget->GetInteractor() != nullptr)
    m_Widget->Off();
}

bool VXPlane::isEnabled() const
{
  return m_Enabled && m_Widget->GetEnabled() != 0;
}

void VXPlane::updateWidget()
{
  m_Representation->SetNormal(m_Plane->GetNormal());
  m_Representation->SetOrigin(m_Plane->GetOrigin());
}

void VXPlane::updateBounds(std::array<double, 6> bounds)
{
  m_Bounds = bounds;
  const auto origin = getOrigin();
  m_Representation->PlaceWidget(m_Bounds.data());
  bool inside = true;
  for (int axis = 0; axis < 3; ++axis)
    inside = inside && origin[axis] >= bounds[2 * axis] && origin[axis] <= bounds[2 * axis + 1];
  if (!inside)
    m_Plane->SetOrigin(calculateGlobalOrigin().data());
  updateWidget();
}

std::array<double, 3> VXPlane::calculateGlobalOrigin() const
{
  return { 0.5 * (m_Bounds[0] + m_Bounds[1]), 0.5 * (m_Bounds[2] + m_Bounds[3]),
           0.5 * (m_Bounds[4] + m_Bounds[5]) };
}

void VXPlane::setRenderWindowInteractor(vtkRenderWindowInteractor* interactor)
{
  if (m_Widget->GetInteractor() == interactor)
    return;
  const bool enabled = m_Enabled;
  m_Widget->Off();
  m_Widget->SetInteractor(interactor);
  if (enabled && interactor != nullptr)
    m_Widget->On();
}

vtkRenderWindowInteractor* VXPlane::renderWindowInteractor() const
{
  return m_Widget->GetInteractor();
}

vtkImplicitPlaneRepresentation* VXPlane::representation() const
{
  return m_Representation;
}
