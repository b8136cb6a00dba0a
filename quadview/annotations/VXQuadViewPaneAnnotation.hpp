#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/AnnotationId.hpp"
#include "quadview/annotations/SliceGeometry.hpp"
#include "quadview/annotations/VXQuadViewAnnotation.hpp"

#include <QtCore/QJsonObject>
#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QPointer>
#include <QtCore/QString>

#include <vtkSmartPointer.h>

#include <array>
#include <optional>

class QVTKOpenGLNativeWidget;
class vtkBoundedPlanePointPlacer;
class vtkRenderer;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;

/**
 * What rulers and marks share: the fields of a record placed on a slice pane
 * (id, pane, name, lock, anchor slice and plane, bounds), the placer that keeps
 * a VTK handle on the plane, the pane's projection and the lock rule. The
 * drawing is left to the two kinds.
 */
class KXVTKLIB_EXPORT VXQuadViewPaneAnnotation
  : public QObject
  , public VXQuadViewAnnotation
{
  Q_OBJECT

public:
  ~VXQuadViewPaneAnnotation() override;

  AnnotationId id() const override;
  SlicePaneRole role() const override;
  QString name() const override;
  void setName(const QString& name) override;
  bool locked() const override;
  /**
   * Locking pins the controller's current plane and slice index; either way the
   * record then takes the current plane, and the controller hears of the change.
   */
  void setLocked(bool locked) override;
  int anchorSliceIndex() const override;
  int displaySliceIndex() const override;
  void navigateTo() override;

  /** Keeps the handles on @p plane; nothing when the plane has no normal. */
  void configurePlacerForCurrentPlane(const SlicePlane& plane);
  /** The first renderer of the pane's window, or null. */
  vtkRenderer* paneRenderer() const;
  /** Pane-local widget position of world point @p p, if the pane can project. */
  std::optional<QPointF> worldToPaneLocal(const std::array<double, 3>& p) const;
  /** Tells the controller the record changed, unless the record is moving itself. */
  void notifyChanged();

  /** The plane the record was placed, pinned or last moved on. */
  const SlicePlane& anchorPlane() const;
  /** The geometry's bounds when placed. */
  const WorldBounds& geomBounds() const;
  VXQuadViewAnnotationsController* controller() const;
  QVTKOpenGLNativeWidget* paneWidget() const;
  /** Whether the record is drawn now. */
  virtual bool isShown() const = 0;

protected:
  VXQuadViewPaneAnnotation(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                           VXQuadViewAnnotationsController* controller, const QString& name,
                           int anchorSliceIndex, const SlicePlane& plane, const WorldBounds& bounds,
                           bool locked, QObject* parent);

  /** Called after the name changed, before the controller hears of it. */
  virtual void onNameChanged();
  /** Whether the pane has a window, an interactor and a renderer. */
  bool paneReady() const;
  /** The pane's height in device pixels, or 0. */
  int paneDeviceHeight() const;
  /** Renders the pane's window, if any. */
  void renderPane() const;
  /** The controller's slice index, or the anchor's without a controller. */
  int currentSliceIndex() const;
  /** Whether a locked record shows on @p plane: its own slice, seen with the same axes. */
  bool lockedVisibleOn(const SlicePlane& plane) const;
  /** Makes @p plane and the current slice index the record's own, and aims the placer at it. */
  void adoptPlane(const SlicePlane& plane);
  /** Writes "type", "id", "name", "locked" and "anchorSliceIndex". */
  void serializeHead(QJsonObject& object) const;
  /** Writes "anchorPlane" and "geomBounds". */
  void serializeTail(QJsonObject& object) const;
  /** Reads "locked" when present. */
  void deserializeLocked(const QJsonObject& object);

  vtkBoundedPlanePointPlacer* placer() const;
  /** Set while the record moves itself, so that one change is told once. */
  bool m_SuppressNotify = false;

private:
  AnnotationId m_Id;
  SlicePaneRole m_Role;
  QString m_Name;
  bool m_Locked;
  int m_AnchorSliceIndex;
  SlicePlane m_AnchorPlane;
  WorldBounds m_GeomBounds;
  QPointer<QVTKOpenGLNativeWidget> m_Pane;
  VXQuadViewAnnotationsController* m_Controller;
  vtkSmartPointer<vtkBoundedPlanePointPlacer> m_Placer;
};
} // namespace voxelia::quadview::annotations
