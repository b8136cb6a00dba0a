#include "visualization/QtWidgets/VXBoxWidget.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

#include <cfloat>

VXBoxWidget::VXBoxWidget(QWidget* parent)
  : QWidget(parent)
{
  setObjectName("VXBoxWidget");
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  const char* axes[3] = { "X", "Y", "Z" };
  struct Row
  {
    const char* label;
    const char* name;
    std::array<QDoubleSpinBox*, 3>* boxes;
    double minimum;
    double maximum;
    double value;
  };
  const Row rows[3] = { { "Translate:", "translate", &m_Translation, -DBL_MAX, DBL_MAX, 0.0 },
                        { "Rotate:", "rotate", &m_Rotation, -360.0, 360.0, 0.0 },
                        { "Scale:", "scale", &m_Scale, 1e-6, DBL_MAX, 1.0 } };
  for (int row = 0; row < 3; ++row)
  {
    grid->addWidget(new QLabel(rows[row].label, this), row, 0);
    for (int axis = 0; axis < 3; ++axis)
    {
      auto* box = new QDoubleSpinBox(this);
      box->setObjectName(QString("%1%2SpinBox").arg(rows[row].name, axes[axis]));
      box->setDecimals(4);
      box->setRange(rows[row].minimum, rows[row].maximum);
      box->setValue(rows[row].value);
      box->setKeyboardTracking(false);
      (*rows[row].boxes)[axis] = box;
      grid->addWidget(box, row, axis + 1);
    }
  }
  for (auto* boxes : { &m_Translation, &m_Rotation, &m_Scale })
  {
    for (QDoubleSpinBox* box : *boxes)
    {
      connect(box, &QDoubleSpinBox::valueChanged, this,
              [this, boxes]()
              {
                if (boxes == &m_Translation)
                  Q_EMIT translationChanged(translation());
                else if (boxes == &m_Rotation)
                  Q_EMIT rotationChanged(rotation());
                else
                  Q_EMIT scaleChanged(scale());
                Q_EMIT transformChanged(translation(), rotation(), scale());
              });
    }
  }
}

VXBoxWidget::~VXBoxWidget() = default;

std::array<double, 3> VXBoxWidget::values(const std::array<QDoubleSpinBox*, 3>& boxes)
{
  return { boxes[0]->value(), boxes[1]->value(), boxes[2]->value() };
}

std::array<double, 3> VXBoxWidget::translation() const
{
  return values(m_Translation);
}

std::array<double, 3> VXBoxWidget::rotation() const
{
  return values(m_Rotation);
}

std::array<double, 3> VXBoxWidget::scale() const
{
  return values(m_Scale);
}

void VXBoxWidget::setValues(std::array<double, 3> translation, std::array<double, 3> rotation,
                            std::array<double, 3> scale)
{
  for (int axis = 0; axis < 3; ++axis)
  {
    for (auto [boxes, value] :
         { std::pair{ &m_Translation, translation[axis] }, std::pair{ &m_Rotation, rotation[axis] },
           std::pair{ &m_Scale, scale[axis] } })
    {
      const QSignalBlocker blocker((*boxes)[axis]);
      (*boxes)[axis]->setValue(value);
    }
  }
}
