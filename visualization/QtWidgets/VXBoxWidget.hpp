#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QWidget>

#include <array>

class QDoubleSpinBox;

/** The translation, rotation (degrees) and scale of a box as nine spin boxes. */
class KXVTKLIB_EXPORT VXBoxWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXBoxWidget(QWidget* parent = nullptr);
  ~VXBoxWidget() override;

  std::array<double, 3> translation() const;
  std::array<double, 3> rotation() const;
  std::array<double, 3> scale() const;

public Q_SLOTS:
  /** Shows the box's values without emitting anything. */
  void setValues(std::array<double, 3> translation, std::array<double, 3> rotation,
                 std::array<double, 3> scale);

Q_SIGNALS:
  void transformChanged(std::array<double, 3> translation, std::array<double, 3> rotation,
                        std::array<double, 3> scale);
  void translationChanged(std::array<double, 3> translation);
  void rotationChanged(std::array<double, 3> rotation);
  void scaleChanged(std::array<double, 3> scale);

private:
  static std::array<double, 3> values(const std::array<QDoubleSpinBox*, 3>& boxes);

  std::array<QDoubleSpinBox*, 3> m_Translation{};
  std::array<QDoubleSpinBox*, 3> m_Rotation{};
  std::array<QDoubleSpinBox*, 3> m_Scale{};
};
