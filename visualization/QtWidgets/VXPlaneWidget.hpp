#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QWidget>

#include <array>

class QDoubleSpinBox;
class VXPlane;

/** The normal and origin of a cutting plane as six spin boxes. */
class KXVTKLIB_EXPORT VXPlaneWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXPlaneWidget(QWidget* parent = nullptr);
  ~VXPlaneWidget() override;

  std::array<double, 3> normal() const;
  std::array<double, 3> origin() const;
  /** Shows @p plane and edits it: each follows the other's changes. */
  void bindPlane(VXPlane* plane);

public Q_SLOTS:
  /** A box changed: emits the signal of its triple (both without a sender). */
  void spinBoxValueChanged();
  void updateNormalsSpinBoxes(std::array<double, 3> normal);
  void updateOriginSpinBoxes(std::array<double, 3> origin);

Q_SIGNALS:
  void normalsChanged(std::array<double, 3> normal);
  void originChanged(std::array<double, 3> origin);

private:
  std::array<QDoubleSpinBox*, 3> m_Normal{};
  std::array<QDoubleSpinBox*, 3> m_Origin{};
};
