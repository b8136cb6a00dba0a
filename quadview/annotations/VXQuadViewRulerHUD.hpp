#pragma once

#include "KXVtkLib_export.h"

#include "quadview/annotations/VXAnnotationHud.hpp"

#include <QtCore/QPointer>

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;
class VXQuadViewRuler;

/**
 * The floating editor of a ruler ("rulerHud"): its name, its length, the
 * in-plane coordinates of both ends, the lock, Delete and Close. An end moved
 * outside the geometry's bounds is refused and the fields show the ruler
 * again. The fields follow the ruler while it is dragged in the pane.
 */
class KXVTKLIB_EXPORT VXQuadViewRulerHUD : public VXAnnotationHud
{
  Q_OBJECT

public:
  VXQuadViewRulerHUD(VXQuadViewRuler* ruler, VXQuadViewAnnotationsController* controller,
                     QWidget* parent = nullptr);
  ~VXQuadViewRulerHUD() override;

  VXQuadViewAnnotation* annotation() const override;

  QLabel* lengthLabel() const { return m_LengthLabel; }
  const PointFields& endpoint1Fields() const { return m_End1; }
  const PointFields& endpoint2Fields() const { return m_End2; }

public Q_SLOTS:
  void onNameEdited();
  void onEndpoint1UvEdited();
  void onEndpoint2UvEdited();
  void onLockedToggled(bool locked);
  void onDeleteClicked();
  void onCloseClicked();
  /** Shows the ruler's values again, emitting nothing. */
  void refreshFromSource() override;

private:
  void setupUi();
  void applyEndpoint(int end);

  QPointer<VXQuadViewRuler> m_Ruler;
  QLabel* m_LengthLabel = nullptr;
  PointFields m_End1;
  PointFields m_End2;
};
} // namespace voxelia::quadview::annotations
