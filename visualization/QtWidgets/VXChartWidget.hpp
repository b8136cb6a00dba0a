#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <vtkSmartPointer.h>

class QVBoxLayout;
class VXGLWidget;
class vtkChartXY;
class vtkContextView;
class vtkPlotBar;
class vtkTable;

/**
 * A VTK chart in an OpenGL widget: the common frame of the histogram and transfer function
 * editors. It owns the context view, one vtkChartXY on a white background and, below the chart,
 * a vertical layout where subclasses add their controls. A histogram can be drawn as bars from
 * a two-column table (bin centres "Value", counts "Count").
 */
class KXVTKLIB_EXPORT VXChartWidget : public QWidget
{
  Q_OBJECT

public:
  /** @p chartObjectName names the OpenGL widget (tests find it by name). */
  VXChartWidget(const QString& chartObjectName, int minimumHeight, QWidget* parent = nullptr);
  ~VXChartWidget() override;

  vtkChartXY* chart() const;
  vtkContextView* contextView() const;
  VXGLWidget* chartWidget() const;
  /** The bar plot of the histogram (created with the widget, empty until filled). */
  vtkPlotBar* histogramPlot() const;
  /** What the bars show: "Value", the bin centres, and "Count". */
  vtkTable* histogramTable() const;

  /**
   * Copies a histogram into the bars: bin centres from column 0 of @p histogram, counts from
   * @p countColumn. A null table or a missing column empties the bars.
   */
  void setHistogram(vtkTable* histogram, const char* countColumn);
  /** Draws now when shown; a hidden widget draws when it is shown. */
  void render();

protected:
  /** The layout under the chart, for the subclass's controls. */
  QVBoxLayout* controlsLayout() const;

private:
  QPointer<VXGLWidget> m_ChartWidget;
  QPointer<QVBoxLayout> m_Layout;
  vtkSmartPointer<vtkContextView> m_View;
  vtkSmartPointer<vtkChartXY> m_Chart;
  vtkSmartPointer<vtkPlotBar> m_Bars;
  vtkSmartPointer<vtkTable> m_Histogram;
};
