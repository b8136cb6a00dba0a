#pragma once

#include "KXVtkLib_export.h"

#include "quadview/annotations/VXAnnotationHud.hpp"

#include <QtCore/QPointer>
#include <QtGui/QColor>

class KXColorButton;
class QComboBox;
class QSpinBox;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;
class VXQuadViewMark;

/**
 * The floating editor of a mark ("markHud"): its name, the in-plane
 * coordinates of its anchor, its colour, shape, size in pixels and label, the
 * lock, Delete and Close. An anchor moved outside the geometry's bounds is
 * refused and the fields show the mark again.
 */
class KXVTKLIB_EXPORT VXQuadViewMarkHUD : public VXAnnotationHud
{
  Q_OBJECT

public:
  VXQuadViewMarkHUD(VXQuadViewMark* mark, VXQuadViewAnnotationsController* controller,
                    QWidget* parent = nullptr);
  ~VXQuadViewMarkHUD() override;

  VXQuadViewAnnotation* annotation() const override;

  const PointFields& anchorFields() const { return m_Anchor; }
  KXColorButton* colorButton() const { return m_ColorButton; }
  QComboBox* shapeCombo() const { return m_ShapeCombo; }
  QSpinBox* sizeSpin() const { return m_SizeSpin; }
  QCheckBox* labelCheck() const { return m_LabelCheck; }

public Q_SLOTS:
  void onNameEdited();
  void onAnchorUvEdited();
  void onColorChanged(QColor color);
  void onShapeChanged(int shape);
  void onSizeChanged(int size);
  void onLabelVisibleToggled(bool visible);
  void onLockedToggled(bool locked);
  void onDeleteClicked();
  void onCloseClicked();
  /** Shows the mark's values again, emitting nothing. */
  void refreshFromSource() override;

private:
  void setupUi();

  QPointer<VXQuadViewMark> m_Mark;
  PointFields m_Anchor;
  KXColorButton* m_ColorButton = nullptr;
  QComboBox* m_ShapeCombo = nullptr;
  QSpinBox* m_SizeSpin = nullptr;
  QCheckBox* m_LabelCheck = nullptr;
};
} // namespace voxelia::quadview::annotations
