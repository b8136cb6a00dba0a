#pragma once

#include "KXVtkLib_export.h"

#include "quadview/annotations/SliceGeometry.hpp"

#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QFrame>

#include <array>

class QCheckBox;
class QDoubleSpinBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class QVBoxLayout;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotation;
class VXQuadViewAnnotationsController;

/**
 * The small floating editor of one annotation, a child of the slice pane it
 * belongs to. The controller places it beside its annotation; the user can
 * drag it by any spot that is not a control, inside the pane with a margin of
 * 4 pixels, and from then on it stays where the user put it.
 *
 * The two forms (ruler and mark) share the parts built here: the name, the
 * group of in-plane coordinates of one point, the lock box, the Delete and
 * Close buttons and the inline error line, and what they do. A form shows its
 * annotation again whenever the controller says it changed.
 */
class KXVTKLIB_EXPORT VXAnnotationHud : public QFrame
{
  Q_OBJECT

public:
  /** Distance kept from the parent's edges while dragging. */
  static constexpr int k_DragMargin = 4;
  /** How long the inline error stays, in milliseconds. */
  static constexpr int k_InlineErrorMs = 2500;

  /** An editor over @p parent for an annotation of @p controller; null is allowed. */
  explicit VXAnnotationHud(VXQuadViewAnnotationsController* controller = nullptr,
                           QWidget* parent = nullptr);
  ~VXAnnotationHud() override;

  /** The annotation edited, or null (none, or gone). */
  virtual VXQuadViewAnnotation* annotation() const;

  /** True once the user has dragged the editor: the controller no longer places it. */
  bool userMoved() const { return m_UserMoved; }
  /** True while a drag runs. */
  bool dragging() const { return m_Dragging; }
  /** The inline error line, empty and hidden when there is nothing to say. */
  QLabel* inlineErrorLabel() const { return m_InlineError; }
  QLineEdit* nameEdit() const { return m_NameEdit; }
  QCheckBox* lockedCheck() const { return m_LockedCheck; }
  QPushButton* deleteButton() const { return m_DeleteButton; }
  QPushButton* closeButton() const { return m_CloseButton; }

public Q_SLOTS:
  /** Shows the annotation's values again, emitting nothing; forms override it. */
  virtual void refreshFromSource();

protected:
  /** The controls of one point: two in-plane coordinates and the read-only cross-plane value. */
  struct PointFields
  {
    QGroupBox* group = nullptr;
    QDoubleSpinBox* u = nullptr;
    QDoubleSpinBox* v = nullptr;
    QLabel* crossPlane = nullptr;
  };

  /** Whether @p pos (widget coordinates) lies on a control that takes the mouse itself. */
  virtual bool isInteractiveAt(const QPoint& pos) const;

  /** The "Name:" line. */
  void addNameField();
  /** A titled group with the U, V and cross-plane fields of one point, labelled for @p plane. */
  PointFields makePointFields(const QString& title, const SlicePlane& plane);
  /** Shows @p point in @p fields, relative to @p plane, without emitting anything. */
  static void showPoint(const PointFields& fields, const SlicePlane& plane,
                        const std::array<double, 3>& point);
  /**
   * The point the fields stand for: on an axis aligned plane @p current with its two in-plane
   * world coordinates replaced, otherwise the plane's point at (u, v).
   */
  static std::array<double, 3> pointFromFields(const PointFields& fields, const SlicePlane& plane,
                                               const std::array<double, 3>& current);
  /** The "Locked" box, the Delete and Close buttons and the inline error line, added to the
   * form's layout. */
  void addCommonControls();
  /** Shows @p message in the inline error line for k_InlineErrorMs. */
  void showInlineError(const QString& message);
  /**
   * Whether @p point lies inside @p bounds; if not, says "Out of bounds — reverted". Either
   * way the fields show the annotation again afterwards.
   */
  bool acceptPoint(const std::array<double, 3>& point, const WorldBounds& bounds);

  /** The name line's text, trimmed, to the annotation; an empty text puts the name back. */
  void applyName();
  /** Locks or unlocks the annotation. */
  void applyLocked(bool locked);
  /** Asks, then deletes the annotation through its controller. */
  void deleteAnnotation();
  /** Closes this editor through the controller. */
  void closeEditor();
  /** Tells the controller's table that the annotation changed. */
  void notifyChanged();

  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

  QPointer<VXQuadViewAnnotationsController> m_Controller;
  QVBoxLayout* m_Layout = nullptr;
  QLineEdit* m_NameEdit = nullptr;
  QCheckBox* m_LockedCheck = nullptr;
  QPushButton* m_DeleteButton = nullptr;
  QPushButton* m_CloseButton = nullptr;

private:
  bool m_Dragging = false;
  QPoint m_PressGlobalPos;
  QPoint m_PosAtPress;
  bool m_UserMoved = false;
  QLabel* m_InlineError = nullptr;
  QTimer* m_InlineErrorTimer = nullptr;
};
} // namespace voxelia::quadview::annotations
