#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/AnnotationId.hpp"
#include "quadview/annotations/SliceGeometry.hpp"
#include "quadview/annotations/VXQuadViewAnnotation.hpp"

#include <QtCore/QJsonArray>
#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QPointer>

#include <functional>
#include <memory>
#include <vector>

class QVTKOpenGLNativeWidget;
class QWidget;

namespace voxelia::quadview::annotations
{
class VXAnnotationHud;

/**
 * Owns the rulers and marks of one slice pane and handles their gestures on
 * the pane: hover tool tips, double click to edit in a floating editor, right
 * click, and left clicks with the M key held, which drop marks. The quad view
 * gives it the pane's current plane, bounds and slice index.
 */
class KXVTKLIB_EXPORT VXQuadViewAnnotationsController : public QObject
{
  Q_OBJECT

public:
  using PlaneProvider = std::function<SlicePlane()>;
  using BoundsProvider = std::function<WorldBounds()>;
  using SliceIndexProvider = std::function<int()>;

  /** Minimum width of a floating editor. */
  static constexpr int k_MinHudWidth = 180;
  /** Gap between a floating editor and the pane border. */
  static constexpr int k_HudMargin = 4;
  /** Gap between a floating editor and its annotation. */
  static constexpr int k_HudGap = 8;

  /**
   * Watches @p pane (and the application, for the M key), gives the pane
   * strong focus and mouse tracking.
   */
  VXQuadViewAnnotationsController(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                                  PlaneProvider plane, BoundsProvider bounds,
                                  SliceIndexProvider sliceIndex, QObject* parent = nullptr);
  ~VXQuadViewAnnotationsController() override;

  SlicePaneRole role() const;
  /** The pane widget, or null once it has gone. */
  QVTKOpenGLNativeWidget* pane() const;

  /** Takes @p annotation, appends it and emits annotationAdded; null does nothing. */
  void addAnnotation(std::unique_ptr<VXQuadViewAnnotation> annotation);
  /** Deletes the annotation @p id (closing its editor first) and emits annotationRemoved. */
  void remove(AnnotationId id);
  /** Deletes every annotation, newest first, each with annotationRemoved; renders once. */
  void clearAll();
  /** The annotation @p id, or null. */
  VXQuadViewAnnotation* annotationById(AnnotationId id) const;
  /** The newest annotation under pane-local @p p, or null. */
  VXQuadViewAnnotation* hitTest(QPoint p) const;
  /** The annotations in creation order. */
  const std::vector<std::unique_ptr<VXQuadViewAnnotation>>& annotations() const;
  int count() const;

  SlicePlane currentPlane() const;
  WorldBounds currentBounds() const;
  int currentSliceIndex() const;
  /** "Ruler 1", "Ruler 2", ...: one counter for every pane, never reset. */
  static QString nextRulerName();
  /** "Mark 1", "Mark 2", ...: one counter for every pane, never reset. */
  static QString nextMarkName();

  /** Gives every annotation the current plane; an editor not moved by hand follows. */
  void onSliceChanged();
  /** The records of all annotations, in creation order. */
  QJsonArray serialize() const;

  /** Opens the floating editor of @p annotation over the pane, closing any other. */
  void showHudFor(VXQuadViewAnnotation* annotation);
  /** Closes the floating editor, if open. */
  void hideHud();
  /** Places the open editor above its annotation, or below when there is no room. */
  void positionHud();
  /** Global position @p global in the pane's coordinates. */
  QPoint paneLocal(QPoint global) const;
  /** The open editor, or null. */
  VXAnnotationHud* hud() const;
  /** The annotation the open editor edits, or null. */
  VXQuadViewAnnotation* hudAnnotation() const;
  /** The annotation under the mouse, or null. */
  VXQuadViewAnnotation* hoveredAnnotation() const;
  /** Whether the M key is held, arming the mark gesture. */
  bool markKeyHeld() const;

  /** Re-emits annotationChanged for @p id. */
  void notifyAnnotationChanged(AnnotationId id);
  /** Re-emits navigateRequested for @p id. */
  void notifyNavigateRequested(AnnotationId id);

  bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
  void annotationAdded(voxelia::quadview::annotations::AnnotationId id);
  void annotationRemoved(voxelia::quadview::annotations::AnnotationId id);
  void annotationChanged(voxelia::quadview::annotations::AnnotationId id);
  void navigateRequested(voxelia::quadview::annotations::AnnotationId id);
  void rightClickedAt(QPoint paneLocalPos);
  void markClickGesture(QPoint paneLocalPos);

private:
  void onFocusChanged(QWidget* oldFocus, QWidget* newFocus);
  void setHovered(VXQuadViewAnnotation* annotation, QPoint globalPos);
  void renderPane() const;

  SlicePaneRole m_Role;
  QPointer<QVTKOpenGLNativeWidget> m_Pane;
  PlaneProvider m_PlaneProvider;
  BoundsProvider m_BoundsProvider;
  SliceIndexProvider m_SliceIndexProvider;
  std::vector<std::unique_ptr<VXQuadViewAnnotation>> m_Annotations;
  bool m_MarkKeyHeld = false;
  QPointer<VXAnnotationHud> m_Hud;
  VXQuadViewAnnotation* m_HudAnnotation = nullptr;
  VXQuadViewAnnotation* m_Hovered = nullptr;

  static int s_NextRulerNumber;
  static int s_NextMarkNumber;
};
} // namespace voxelia::quadview::annotations
