#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

class QDoubleSpinBox;
class QLabel;
class QListWidget;
class VXFThreshold;

/**
 * The settings page of a threshold filter: the components of the input's arrays by name, the
 * kept range of the chosen one (with its data range beside), the data view to add, "Apply",
 * and the hand-over to the host as a "Multi-Threshold Objects" filter.
 */
class KXVTKLIB_EXPORT VXFThresholdFilterWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXFThresholdFilterWidget(VXFThreshold* filter, QWidget* parent = nullptr);
  ~VXFThresholdFilterWidget() override;

public Q_SLOTS:
  /** Lists the filter's records again and shows the active one. */
  void refresh();

private:
  void showActiveRecord();

  QPointer<VXFThreshold> m_Filter;
  QPointer<QListWidget> m_Arrays;
  QPointer<QDoubleSpinBox> m_Minimum;
  QPointer<QDoubleSpinBox> m_Maximum;
  QPointer<QLabel> m_DataRange;
};
