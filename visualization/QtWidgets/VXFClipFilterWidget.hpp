#pragma once

#include "KXVtkLib_export.h"

#include "visualization/VXFClip.hpp"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

class QCheckBox;
class QComboBox;
class QPushButton;
class QStackedWidget;
class VXBoxWidget;
class VXPlaneWidget;

/**
 * The settings page of a clip filter: "Clip Type:", the plane's or the box's values, "Show
 * Plane", "Inverted", the data view to add and "Apply". The page and the tools in the view
 * edit the same plane and box, so each shows the other's changes.
 */
class KXVTKLIB_EXPORT VXFClipFilterWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXFClipFilterWidget(VXFClip* filter, QWidget* parent = nullptr);
  ~VXFClipFilterWidget() override;

  VXPlaneWidget* planeWidget() const;
  VXBoxWidget* boxWidget() const;

public Q_SLOTS:
  void setClipType(int index);
  void updateInvertedCheckBox(bool inverted);
  void updateShowClipToolCheckBox(bool show);
  void updateClipTypeComboBox(VXFClip::ClipType type);

private:
  QPointer<VXFClip> m_Filter;
  QPointer<QComboBox> m_ClipTypeCombo;
  QPointer<QStackedWidget> m_ToolPages;
  QPointer<VXPlaneWidget> m_PlaneWidget;
  QPointer<VXBoxWidget> m_BoxWidget;
  QPointer<QCheckBox> m_ShowToolCheckBox;
  QPointer<QCheckBox> m_InvertedCheckBox;
  QPointer<QPushButton> m_ApplyButton;
};
