#pragma once

#include "KXVtkLib_export.h"

#include "visualization/QtWidgets/VXChartWidget.hpp"

#include <QtCore/QPointer>

class QCheckBox;
class QLabel;
class vtkDataArray;

/**
 * The histogram of a data view's active array: 50 bins of one component (or
 * the magnitude) over the array's finite range or a custom range, drawn as a
 * bar chart titled with the array's name, with a "Log Scale" switch for the
 * count axis. The points-family settings page shows it in its "Array
 * Histogram" section and feeds it from VXPointsRepPimpl::histogramDataChanged.
 */
class KXVTKLIB_EXPORT VXArrayHistogramWidget : public VXChartWidget
{
  Q_OBJECT

public:
  static constexpr const char* k_TypeName = "VXArrayHistogramWidget";
  static constexpr int k_NumberOfBins = 50;

  explicit VXArrayHistogramWidget(QWidget* parent = nullptr);
  ~VXArrayHistogramWidget() override;

  /** What is plotted: "Value", the bin centres, and "Count". */
  vtkTable* table() const { return histogramTable(); }
  /** Whether the count axis is asked to be logarithmic ("Log Scale"). */
  bool logScale() const;
  /** Why nothing is plotted, or empty. */
  QString message() const;

public Q_SLOTS:
  /**
   * Counts @p array in 50 bins and plots them. Component -1 on a
   * one-component array is component 0, on more components the magnitude.
   * With @p useCustomRange the bins span [rangeMin, rangeMax), otherwise the
   * finite range of the component. A null array clears the plot.
   */
  void setArray(vtkDataArray* array, int component, bool useCustomRange, double rangeMin,
                double rangeMax);
  void setLogScale(bool logScale);
  /** Empties the plot and its title. */
  void clear();

private:
  void showMessage(const QString& text);
  /** The count axis: linear and automatic, or logarithmic from below one count. */
  void applyCountAxis();

  QPointer<QCheckBox> m_LogScaleCheckBox;
  QPointer<QLabel> m_MessageLabel;
  double m_MaxCount = 0.0;
};
