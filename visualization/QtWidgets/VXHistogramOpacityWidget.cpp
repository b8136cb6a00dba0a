#include "visualization/QtWidgets/VXHistogramOpacityWidget.hpp"

#include "visualization/QtWidgets/VXGLWidget.hpp"

#include <QtWidgets/QVBoxLayout>

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDataArray.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkIntArray.h>
#include <vtkPiecewiseControlPointsItem.h>
#include <vtkPiecewiseFunction.h>
#include <vtkCompositeTransferFunctionItem.h>
#include <vtkPlotBar.h>
#include <vtkRenderer.h>
#include <vtkTable.h>

VXHistogramOpacityWidget::VXHistogramOpacityWidget(QWidget* parent)
  : QWidget(parent)
  , m_View(vtkSmartPointer<vtkContextView>::New())
  , m_Chart(vtkSmartPointer<vtkChartXY>::New())
  , m_Histogram(vtkSmartPointer<vtkTable>::New())
{
  setObjectName("VXHistogramOpacityWidget");
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_ChartWidget = new VXGLWidget(this);
  m_ChartWidget->setObjectName("m_OpacityChartWidget");
  m_ChartWidget->setMinimumHeight(200);
  vtkNew<vtkGenericOpenGLRenderWindow> window;
  m_ChartWidget->setRenderWindow(window);
  m_View->SetRenderWindow(window);
  m_View->SetInteractor(m_ChartWidget->interactor());
  m_View->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
  m_View->GetScene()->AddItem(m_Chart);
  layout->addWidget(m_ChartWidget, 1);

  vtkNew<vtkFloatArray> centres;
  centres->SetName("Value");
  vtkNew<vtkIntArray> counts;
  counts->SetName("Count");
  m_Histogram->AddColumn(centres);
  m_Histogram->AddColumn(counts);
  m_Bars = vtkPlotBar::SafeDownCast(m_Chart->AddPlot(vtkChart::BAR));
  m_Bars->SetInputData(m_Histogram, 0, 1);
  m_Bars->SetColor(170, 170, 170, 255);
  m_Bars->SetSelectable(false);
  m_Chart->SetShowLegend(false);
  m_Chart->GetAxis(vtkAxis::LEFT)->SetTitle("Count");
  m_Chart->GetAxis(vtkAxis::BOTTOM)->SetTitle("Value");
  // the opacity lives on the right axis, always 0 to 1
  vtkAxis* right = m_Chart->GetAxis(vtkAxis::RIGHT);
  right->SetTitle("Opacity");
  right->SetBehavior(vtkAxis::FIXED);
  right->SetRange(0.0, 1.0);
  // the mouse edits the control points, not the chart's zoom and pan
  m_Chart->SetActionToButton(vtkChart::PAN, -1);
  m_Chart->SetActionToButton(vtkChart::ZOOM, -1);
  m_Chart->SetActionToButton(vtkChart::SELECT, -1);
}

VXHistogramOpacityWidget::~VXHistogramOpacityWidget()
{
  setFunctions(nullptr, nullptr);
}

vtkChartXY* VXHistogramOpacityWidget::chart() const
{
  return m_Chart;
}

vtkContextView* VXHistogramOpacityWidget::contextView() const
{
  return m_View;
}

vtkPlotBar* VXHistogramOpacityWidget::histogramPlot() const
{
  return m_Bars;
}

vtkPiecewiseControlPointsItem* VXHistogramOpacityWidget::controlPoints() const
{
  return m_ControlPoints;
}

void VXHistogramOpacityWidget::setHistogram(vtkTable* histogram, const char* countColumn)
{
  vtkDataArray* centres =
    histogram != nullptr ? vtkArrayDownCast<vtkDataArray>(histogram->GetColumn(0)) : nullptr;
  vtkDataArray* counts = histogram != nullptr && countColumn != nullptr
                           ? vtkArrayDownCast<vtkDataArray>(histogram->GetColumnByName(countColumn))
                           : nullptr;
  const vtkIdType bins = centres != nullptr && counts != nullptr
                           ? std::min(centres->GetNumberOfTuples(), counts->GetNumberOfTuples())
                           : 0;
  m_Histogram->SetNumberOfRows(bins);
  for (vtkIdType i = 0; i < bins; ++i)
  {
    m_Histogram->GetColumn(0)->SetVariantValue(i, centres->GetTuple1(i));
    m_Histogram->GetColumn(1)->SetVariantValue(i, counts->GetTuple1(i));
  }
  m_Histogram->Modified();
  render();
}

void VXHistogramOpacityWidget::setFunctions(vtkPiecewiseFunction* opacity,
                                            vtkColorTransferFunction* colors)
{
  if (m_ControlPoints != nullptr)
  {
    if (vtkPiecewiseFunction* old = m_ControlPoints->GetPiecewiseFunction())
      old->RemoveObserver(m_EditObserver);
    m_Chart->RemovePlotInstance(m_ControlPoints);
    m_Chart->RemovePlotInstance(m_FunctionItem);
    m_ControlPoints = nullptr;
    m_FunctionItem = nullptr;
  }
  if (opacity == nullptr)
  {
    render();
    return;
  }
  // the area under the curve shows the colours the volume draws with
  m_FunctionItem = vtkSmartPointer<vtkCompositeTransferFunctionItem>::New();
  m_FunctionItem->SetOpacityFunction(opacity);
  if (colors != nullptr)
    m_FunctionItem->SetColorTransferFunction(colors);
  m_FunctionItem->SetMaskAboveCurve(true);
  m_FunctionItem->SetSelectable(false);
  m_ControlPoints = vtkSmartPointer<vtkPiecewiseControlPointsItem>::New();
  m_ControlPoints->SetPiecewiseFunction(opacity);
  m_ControlPoints->SetEndPointsXMovable(true);
  m_Chart->AddPlot(m_FunctionItem);
  m_Chart->AddPlot(m_ControlPoints);
  m_Chart->SetPlotCorner(m_FunctionItem, 1);
  m_Chart->SetPlotCorner(m_ControlPoints, 1);
  m_EditObserver = opacity->AddObserver(vtkCommand::ModifiedEvent, this,
                                        &VXHistogramOpacityWidget::opacityFunctionEdited);
  render();
}

void VXHistogramOpacityWidget::render()
{
  if (m_ChartWidget != nullptr && m_ChartWidget->isVisible())
    m_View->Render();
}
