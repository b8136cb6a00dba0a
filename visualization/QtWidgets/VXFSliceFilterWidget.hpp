#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

class QCheckBox;
class VXFSlice;
class VXPlaneWidget;

/** The settings page of a slice filter: the plane, "Show Plane", the data view to add, "Apply". */
class KXVTKLIB_EXPORT VXFSliceFilterWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXFSliceFilterWidget(VXFSlice* filter, QWidget* parent = nullptr);
  ~VXFSliceFilterWidget() override;

  VXPlaneWidget* planeWidget() const;

private:
  QPointer<VXPlaneWidget> m_PlaneWidget;
  QPointer<QCheckBox> m_ShowToolCheckBox;
};
