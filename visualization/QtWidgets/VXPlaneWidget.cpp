#include "visualization/QtWidgets/VXPlaneWidget.hpp"

#include "visualization/VXPlane.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <cfloat>

namespace
{
QDoubleSpinBox* MakeSpinBox(QWidget* parent, const QString& name, double limit)
{
  auto* box = new QDoubleSpinBox(parent);
  box->setObjectName(name);
  box->setDecimals(4);
  box->setRange(-limit, limit);
  box->setSingleStep(0.1);
  box->setKeyboardTracking(false);
  return box;
}
} // namespace

VXPlaneWidget::VXPlaneWidget(QWidget* parent)
  : QWidget(parent)
{
  setObjectName("VXPlaneWidget");
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  const char* axes[3] = { "X", "Y", "Z" };
  grid->addWidget(new QLabel("Normal:", this), 0, 0);
  grid->addWidget(new QLabel("Origin:", this), 1, 0);
  for (int axis = 0; axis < 3; ++axis)
  {
    m_Normal[axis] = MakeSpinBox(this, QString("normal%1SpinBox").arg(axes[axis]), 1.0);
    m_Origin[axis] = MakeSpinBox(this, QString("origin%1SpinBox").arg(axes[axis]), DBL_MAX);
    grid->addWidget(m_Normal[axis], 0, axis + 1);
    grid->addWidget(m_Origin[axis], 1, axis + 1);
    for (QDoubleSpinBox* box : { m_Normal[axis], m_Origin[axis] })
      connect(box, &QDoubleSpinBox::valueChanged, this, &VXPlaneWidget::spinBoxValueChanged);
  }
}

VXPlaneWidget::~VXPlaneWidget() = default;

std::array<double, 3> VXPlaneWidget::normal() const
{
  return { m_Normal[0]->value(), m_Normal[1]->value(), m_Normal[2]->value() };
}

std::array<double, 3> VXPlaneWidget::origin() const
{
  return { m_Origin[0]->value(), m_Origin[1]->value(), m_Origin[2]->value() };
}

void VXPlaneWidget::bindPlane(VXPlane* plane)
{
  if (plane == nullptr)
    return;
  updateNormalsSpinBoxes(plane->getNormal());
  updateOriginSpinBoxes(plane->getOrigin());
  connect(plane, &VXPlane::normalsChanged, this, &VXPlaneWidget::updateNormalsSpinBoxes);
  connect(plane, &VXPlane::originChanged, this, &VXPlaneWidget::updateOriginSpinBoxes);
  connect(this, &VXPlaneWidget::normalsChanged, plane,
          [plane](std::array<double, 3> normal) { plane->setNormal(normal); });
  connect(this, &VXPlaneWidget::originChanged, plane,
          [plane](std::array<double, 3> origin) { plane->setOrigin(origin); });
}

void VXPlaneWidget::spinBoxValueChanged()
{
  // only the changed triple goes out: the other one may be about to be refreshed by the plane
  const bool isNormal = std::find(m_Normal.begin(), m_Normal.end(), sender()) != m_Normal.end();
  if (isNormal || sender() == nullptr)
    Q_EMIT normalsChanged(normal());
  if (!isNormal)
    Q_EMIT originChanged(origin());
}

void VXPlaneWidget::updateNormalsSpinBoxes(std::array<double, 3> normal)
{
  for (int axis = 0; axis < 3; ++axis)
  {
    const QSignalBlocker blocker(m_Normal[axis]);
    m_Normal[axis]->setValue(normal[axis]);
  }
}

void VXPlaneWidget::updateOriginSpinBoxes(std::array<double, 3> origin)
{
  for (int axis = 0; axis < 3; ++axis)
  {
    const QSignalBlocker blocker(m_Origin[axis]);
    m_Origin[axis]->setValue(origin[axis]);
  }
}
