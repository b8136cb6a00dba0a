#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/AnnotationId.hpp"
#include "quadview/annotations/SliceGeometry.hpp"
#include "quadview/annotations/VXQuadViewAnnotation.hpp"

#include <QtCore/QJsonObject>
#include <QtCore/QPointF>
#include <QtCore/QPointer>
#include <QtCore/QString>

#include <optional>

class QVTKOpenGLNativeWidget;
class vtkBoundedPlanePointPlacer;
class vtkRenderer;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;

/**
 * The fields every ruler and mark has, in their order, and the pane helpers
 * both use: the pane's renderer, world to pane-local projection, the plane
 * placer and the common part of the saved record.
 */
struct KXVTKLIB_EXPORT AnnotationCommon
{
  AnnotationId id;
  SlicePaneRole role = SlicePaneRole::YZ;
  QString name;
  bool locked = false;
  int anchorSliceIndex = 0;
  SlicePlane anchorPlane;
  WorldBounds geomBounds;
  QPointer<QVTKOpenGLNativeWidget> pane;
  VXQuadViewAnnotationsController* controller = nullptr;

  /** The first renderer of the pane's window, or null. */
  vtkRenderer* paneRenderer() const;
  /** Whether the pane still has a window and an interactor. */
  bool paneReady() const;
  /** Pane-local widget position of world point @p p; nothing without a renderer. */
  std::optional<QPointF> worldToPaneLocal(const Vec3& p) const;
  /** The pane's height in device pixels, or 0. */
  int paneDeviceHeight() const;
  /** Renders the pane's window, if any. */
  void renderPane() const;
  /** The controller's current slice index, or anchorSliceIndex without one. */
  int currentSliceIndex() const;
  /** Whether a locked record shows on @p plane: its own slice with the same axes. */
  bool lockedVisibleOn(const SlicePlane& plane) const;
  /** Pins the controller's current plane and slice index, when there is a controller. */
  void pinToCurrentSlice();
  /** Writes "type", "id", "name", "locked", "anchorSliceIndex", then nothing more. */
  void serializeHead(QJsonObject& object, VXQuadViewAnnotation::Type type) const;
  /** Writes "anchorPlane" and "geomBounds". */
  void serializeTail(QJsonObject& object) const;
};

/**
 * Points @p placer at the oblique plane through @p plane with the plane's
 * normal, projecting along it and without bounding planes. Nothing happens
 * when the plane has no normal.
 */
KXVTKLIB_EXPORT void configurePlanePlacer(vtkBoundedPlanePointPlacer* placer,
                                          const SlicePlane& plane);
} // namespace voxelia::quadview::annotations
