#include "visualization/QtWidgets/VXChartWidget.hpp"

#include "visualization/QtWidgets/VXGLWidget.hpp"

#include <QtWidgets/QVBoxLayout>

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkPlotBar.h>
#include <vtkRenderer.h>
#include <vtkTable.h>

#include <algorithm>

VXChartWidget::VXChartWidget(const QString& chartObjectName, int minimumHeight, QWidget* parent)
  : QWidget(parent)
  , m_View(vtkSmartPointer<vtkContextView>::New())
  , m_Chart(vtkSmartPointer<vtkChartXY>::New())
  , m_Histogram(vtkSmartPointer<vtkTable>::New())
{
  m_Layout = new QVBoxLayout(this);
  m_Layout->setContentsMargins(0, 0, 0, 0);
  m_ChartWidget = new VXGLWidget(this);
  m_ChartWidget->setObjectName(chartObjectName);
  m_ChartWidget->setMinimumHeight(minimumHeight);
  vtkNew<vtkGenericOpenGLRenderWindow> window;
  m_ChartWidget->setRenderWindow(window);
  m_View->SetRenderWindow(window);
  m_View->SetInteractor(m_ChartWidget->interactor());
  m_View->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
  m_View->GetScene()->AddItem(m_Chart);
  m_Layout->addWidget(m_ChartWidget, 1);

  vtkNew<vtkDoubleArray> centres;
  centres->SetName("Value");
  vtkNew<vtkDoubleArray> counts;
  counts->SetName("Count");
  m_Histogram->AddColumn(centres);
  m_Histogram->AddColumn(counts);
  m_Bars = vtkPlotBar::SafeDownCast(m_Chart->AddPlot(vtkChart::BAR));
  m_Bars->SetInputData(m_Histogram, 0, 1);
  m_Bars->SetSelectable(false);
  m_Chart->SetShowLegend(false);
  m_Chart->GetAxis(vtkAxis::LEFT)->SetTitle("Count");
  m_Chart->GetAxis(vtkAxis::BOTTOM)->SetTitle("Value");
}

VXChartWidget::~VXChartWidget() = default;

vtkChartXY* VXChartWidget::chart() const
{
  return m_Chart;
}

vtkContextView* VXChartWidget::contextView() const
{
  return m_View;
}

VXGLWidget* VXChartWidget::chartWidget() const
{
  return m_ChartWidget;
}

vtkPlotBar* VXChartWidget::histogramPlot() const
{
  return m_Bars;
}

vtkTable* VXChartWidget::histogramTable() const
{
  return m_Histogram;
}

QVBoxLayout* VXChartWidget::controlsLayout() const
{
  return m_Layout;
}

void VXChartWidget::setHistogram(vtkTable* histogram, const char* countColumn)
{
  vtkDataArray* centres =
    histogram != nullptr ? vtkArrayDownCast<vtkDataArray>(histogram->GetColumn(0)) : nullptr;
  vtkDataArray* counts = histogram != nullptr && countColumn != nullptr
                           ? vtkArrayDownCast<vtkDataArray>(histogram->GetColumnByName(countColumn))
                           : nullptr;
  const vtkIdType bins = centres != nullptr && counts != nullptr
                           ? std::min(centres->GetNumberOfTuples(), counts->GetNumberOfTuples())
                           : 0;
  vtkDataArray* ownCentres = vtkArrayDownCast<vtkDataArray>(m_Histogram->GetColumn(0));
  vtkDataArray* ownCounts = vtkArrayDownCast<vtkDataArray>(m_Histogram->GetColumn(1));
  m_Histogram->SetNumberOfRows(bins);
  for (vtkIdType i = 0; i < bins; ++i)
  {
    ownCentres->SetTuple1(i, centres->GetTuple1(i));
    ownCounts->SetTuple1(i, counts->GetTuple1(i));
  }
  m_Histogram->Modified();
  // bars as wide as a bin, so that the histogram reads as a continuous area
  const double width = bins > 1 ? ownCentres->GetTuple1(1) - ownCentres->GetTuple1(0) : 0.0;
  m_Bars->SetWidth(width > 0.0 ? static_cast<float>(width) : 1.0f);
  render();
}

void VXChartWidget::render()
{
  if (m_ChartWidget == nullptr)
    return;
  if (m_ChartWidget->isVisible())
    m_ChartWidget->renderWindow()->Render();
  else
    m_ChartWidget->update();
}
