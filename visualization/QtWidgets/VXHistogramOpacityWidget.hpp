#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <vtkSmartPointer.h>

class VXGLWidget;
class vtkChartXY;
class vtkColorTransferFunction;
class vtkContextView;
class vtkPiecewiseControlPointsItem;
class vtkPiecewiseFunction;
class vtkCompositeTransferFunctionItem;
class vtkPlotBar;
class vtkTable;

/**
 * The opacity editor of the volume data view: the array's histogram as bars with the opacity
 * function drawn over it (right axis, 0 to 1). A click on an empty spot adds a control point, a
 * drag moves one, the Delete key removes the current one; every edit changes the function the
 * volume draws with, so the view follows at once.
 */
class KXVTKLIB_EXPORT VXHistogramOpacityWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXHistogramOpacityWidget(QWidget* parent = nullptr);
  ~VXHistogramOpacityWidget() override;

  /** Plots the histogram: bin centres in column 0, counts in @p countColumn. */
  void setHistogram(vtkTable* histogram, const char* countColumn);
  /** Edits @p opacity; @p colors tints the area under the curve. Null clears the editor. */
  void setFunctions(vtkPiecewiseFunction* opacity, vtkColorTransferFunction* colors);

  vtkChartXY* chart() const;
  vtkContextView* contextView() const;
  vtkPlotBar* histogramPlot() const;
  /** The editable points of the current opacity function; null without one. */
  vtkPiecewiseControlPointsItem* controlPoints() const;
  VXGLWidget* chartWidget() const { return m_ChartWidget; }

Q_SIGNALS:
  /** The user changed the opacity function. */
  void opacityFunctionEdited();

private:
  void render();

  QPointer<VXGLWidget> m_ChartWidget;
  vtkSmartPointer<vtkContextView> m_View;
  vtkSmartPointer<vtkChartXY> m_Chart;
  vtkSmartPointer<vtkPlotBar> m_Bars;
  vtkSmartPointer<vtkTable> m_Histogram;
  vtkSmartPointer<vtkCompositeTransferFunctionItem> m_FunctionItem;
  vtkSmartPointer<vtkPiecewiseControlPointsItem> m_ControlPoints;
  unsigned long m_EditObserver = 0;
};
