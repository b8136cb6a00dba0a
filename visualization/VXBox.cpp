#include "visualization/VXBox.hpp"

#include "visualization/VXBoxCallback.hpp"

#include <vtkBoxRepresentation.h>
#include <vtkBoxWidget2.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkPlanes.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkTransform.h>

VXBox::VXBox(std::array<double, 6> bounds, vtkRenderWindowInteractor* interactor, QObject* parent)
  : QObject(parent)
  , m_Bounds(bounds)
  , m_Widget(vtkSmartPointer<vtkBoxWidget2>::New())
  , m_Representation(vtkSmartPointer<vtkBoxRepresentation>::New())
  , m_Transform(vtkSmartPointer<vtkTransform>::New())
  , m_Callback(vtkSmartPointer<VXBoxCallback>::New())
{
  m_Representation->SetPlaceFactor(1.0);
  m_Representation->PlaceWidget(m_Bounds.data());
  m_Widget->SetRepresentation(m_Representation);
  m_Callback->setBoxObject(this);
  m_Widget->AddObserver(vtkCommand::InteractionEvent, m_Callback);
  m_Widget->SetInteractor(interactor);
}

VXBox::~VXBox()
{
  m_Widget->Off();
  m_Widget->SetInteractor(nullptr);
}

void VXBox::enable()
{
  m_Enabled = true;
  if (m_Widget->GetInteractor() != nullptr)
    m_Widget->On();
}

void VXBox::disable()
{
  m_Enabled = false;
  if (m_Widget->GetInteractor() != nullptr)
    m_Widget->Off();
}

bool VXBox::isEnabled() const
{
  return m_Enabled && m_Widget->GetEnabled() != 0;
}

vtkSmartPointer<vtkPlanes> VXBox::getPlanes() const
{
  auto planes = vtkSmartPointer<vtkPlanes>::New();
  m_Representation->GetPlanes(planes);
  return planes;
}

std::array<double, 3> VXBox::getRotation() const
{
  return m_Rotation;
}

std::array<double, 3> VXBox::getScale() const
{
  return m_Scale;
}

std::array<double, 3> VXBox::getTranslation() const
{
  return m_Translation;
}

vtkTransform* VXBox::getTransform() const
{
  return m_Transform;
}

vtkMatrix4x4* VXBox::getTransformMatrix() const
{
  return m_Transform->GetMatrix();
}

void VXBox::placeWidget(std::array<double, 6> bounds)
{
  m_Bounds = bounds;
  rebuildTransform({ 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 }, { 1.0, 1.0, 1.0 });
}

void VXBox::setRenderWindowInteractor(vtkRenderWindowInteractor* interactor)
{
  if (m_Widget->GetInteractor() == interactor)
    return;
  const bool enabled = m_Enabled;
  m_Widget->Off();
  m_Widget->SetInteractor(interactor);
  if (enabled && interactor != nullptr)
    m_Widget->On();
}

vtkRenderWindowInteractor* VXBox::renderWindowInteractor() const
{
  return m_Widget->GetInteractor();
}

std::array<double, 3> VXBox::centre() const
{
  return { 0.5 * (m_Bounds[0] + m_Bounds[1]), 0.5 * (m_Bounds[2] + m_Bounds[3]),
           0.5 * (m_Bounds[4] + m_Bounds[5]) };
}

void VXBox::rebuildTransform(const std::array<double, 3>& translation,
                             const std::array<double, 3>& rotation,
                             const std::array<double, 3>& scale)
{
  m_Translation = translation;
  m_Rotation = rotation;
  for (int axis = 0; axis < 3; ++axis)
    m_Scale[axis] = scale[axis] > 0.0 ? scale[axis] : 1.0;
  ComposeTransform(m_Transform, centre(), translation, rotation, m_Scale);
  updateWidget();
}

void VXBox::ComposeTransform(vtkTransform* transform, const std::array<double, 3>& centre,
                             const std::array<double, 3>& translation,
                             const std::array<double, 3>& rotation,
                             const std::array<double, 3>& scale)
{
  // the box turns and stretches about its own centre, as the widget's handles do; the rotation
  // is VTK's: z first, then x, then y
  const auto& c = centre;
  transform->Identity();
  transform->PreMultiply();
  transform->Translate(c[0] + translation[0], c[1] + translation[1], c[2] + translation[2]);
  transform->RotateY(rotation[1]);
  transform->RotateX(rotation[0]);
  transform->RotateZ(rotation[2]);
  transform->Scale(scale.data());
  transform->Translate(-c[0], -c[1], -c[2]);
}

void VXBox::takeWidgetTransform()
{
  vtkNew<vtkTransform> dragged;
  m_Representation->GetTransform(dragged);
  const auto c = centre();
  double moved[3];
  dragged->TransformPoint(c.data(), moved);
  std::array<double, 3> rotation{};
  std::array<double, 3> scale{};
  dragged->GetOrientation(rotation.data());
  dragged->GetScale(scale.data());
  m_Translation = { moved[0] - c[0], moved[1] - c[1], moved[2] - c[2] };
  m_Rotation = rotation;
  m_Scale = scale;
  m_Transform->DeepCopy(dragged);
  emitTransformChanged();
}

void VXBox::setRotation(const std::array<double, 3>& rotation)
{
  setValues(getTranslation(), rotation, getScale());
}

void VXBox::setScale(const std::array<double, 3>& scale)
{
  setValues(getTranslation(), getRotation(), scale);
}

void VXBox::setTranslation(const std::array<double, 3>& translation)
{
  setValues(translation, getRotation(), getScale());
}

void VXBox::setValues(const std::array<double, 3>& translation,
                      const std::array<double, 3>& rotation, const std::array<double, 3>& scale)
{
  rebuildTransform(translation, rotation, scale);
  emitTransformChanged();
}

void VXBox::updateWidget()
{
  m_Representation->PlaceWidget(m_Bounds.data());
  m_Representation->SetTransform(m_Transform);
}

void VXBox::setBounds(std::array<double, 6> bounds)
{
  updateBounds(bounds);
}

void VXBox::updateBounds(std::array<double, 6> bounds)
{
  m_Bounds = bounds;
  rebuildTransform(m_Translation, m_Rotation, m_Scale);
}

void VXBox::emitTransformChanged()
{
  Q_EMIT translationChanged(getTranslation());
  Q_EMIT rotationChanged(getRotation());
  Q_EMIT scaleChanged(getScale());
  Q_EMIT transformChanged();
}
