#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QWidget>

class QToolButton;
class VXVisualizationWidget;

/**
 * The small vertical tool strip on the left edge of a render view: the six
 * axis snaps, the image view, roll left and right, reset camera, and the
 * checkable hover and centre-of-rotation pick modes. Each button calls a slot
 * of its VXVisualizationWidget; the widget tells the strip when a pick ended
 * (releaseCenterOfRotationButton) and whether hover is allowed.
 */
class KXVTKLIB_EXPORT VXVisualizationToolbarWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXVisualizationToolbarWidget(VXVisualizationWidget* view);
  ~VXVisualizationToolbarWidget() override;

  QToolButton* centerOfRotationButton() const { return m_CenterOfRotationButton; }
  QToolButton* hoverPointsButton() const { return m_HoverPointsButton; }
  QToolButton* hoverCellsButton() const { return m_HoverCellsButton; }
  /** The button that runs @p text ("+X", "-Y", "Reset", ...); null if there is none. */
  QToolButton* button(const QString& text) const;

public Q_SLOTS:
  /** Unchecks the centre-of-rotation pick button, which ends the view's pick mode. */
  void releaseCenterOfRotationButton();
  /** Checks the hover buttons of the modes the view is in, and only those. */
  void syncHoverButtons();
  /** Enables the hover buttons when @p allowHover is non-zero; disabling also unchecks them. */
  void enableDisableHoverFeatures(int allowHover);

private:
  QToolButton* addButton(const QString& text, const QString& toolTip, bool checkable = false);

  VXVisualizationWidget* m_View = nullptr;
  QToolButton* m_CenterOfRotationButton = nullptr;
  QToolButton* m_HoverPointsButton = nullptr;
  QToolButton* m_HoverCellsButton = nullptr;
};
