#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/AnnotationId.hpp"
#include "quadview/annotations/SliceGeometry.hpp"

#include <QtCore/QJsonObject>
#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QString>

class QWidget;

namespace voxelia::quadview::annotations
{
class VXAnnotationHud;
class VXQuadViewRulerHUD;
class VXQuadViewMarkHUD;

/**
 * One ruler or mark placed on a slice pane. The pane's controller owns it and
 * talks to it only through these operations; the table lists it by them.
 */
class KXVTKLIB_EXPORT VXQuadViewAnnotation
{
public:
  /** The kind of record, saved as "Ruler" or "Mark". */
  enum class Type : int
  {
    Ruler = 0,
    Mark = 1
  };

  virtual ~VXQuadViewAnnotation();
  virtual AnnotationId id() const = 0;
  virtual Type type() const = 0;
  virtual SlicePaneRole role() const = 0;
  virtual QString name() const = 0;
  virtual void setName(const QString& name) = 0;
  virtual bool locked() const = 0;
  virtual void setLocked(bool locked) = 0;
  /** The slice index when placed, or when it last followed the slice. */
  virtual int anchorSliceIndex() const = 0;
  /** The slice index the table shows: the current one while unlocked. */
  virtual int displaySliceIndex() const = 0;
  /** The length of a ruler with two decimals, or the shape of a mark. */
  virtual QString summaryText() const = 0;
  /** Asks the controller to bring the annotation into view. */
  virtual void navigateTo() = 0;
  /** The pane's slice is now @p plane: follow it, or hide off the anchor slice when locked. */
  virtual void onSliceChanged(const SlicePlane& plane) = 0;
  /** Whether pane-local position @p p is on the annotation. */
  virtual bool hitTestScreen(const QPoint& p) const = 0;
  /** Draws the annotation as selected or not. */
  virtual void setSelectedVisual(bool on) = 0;
  /** The pane-local rectangle the annotation covers on screen; empty when unknown. */
  virtual QRect screenBounds() const = 0;
  /** A new floating editor of this annotation, child of @p parent. */
  virtual VXAnnotationHud* createHudWidget(QWidget* parent) = 0;
  /** Writes the record's fields into @p object, in the saved order. */
  virtual void serialize(QJsonObject& object) const = 0;
  /** Reads what the constructor did not take from @p object. */
  virtual void deserialize(const QJsonObject& object) = 0;
  /** Called once a load is complete and the pane's camera is ready. */
  virtual void onAfterLoad();

  /** "Ruler" or "Mark". */
  static QString typeName(Type type);
};
} // namespace voxelia::quadview::annotations
