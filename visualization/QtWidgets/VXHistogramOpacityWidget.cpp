#include "visualization/QtWidgets/VXHistogramOpacityWidget.hpp"

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>
#include <vtkPiecewiseControlPointsItem.h>
#include <vtkPiecewiseFunction.h>
#include <vtkCompositeTransferFunctionItem.h>
#include <vtkPlotBar.h>

VXHistogramOpacityWidget::VXHistogramOpacityWidget(QWidget* parent)
  : VXChartWidget("m_OpacityChartWidget", 200, parent)
{
  setObjectName("VXHistogramOpacityWidget");
  histogramPlot()->SetColor(170, 170, 170, 255);
  // the opacity lives on the right axis, always 0 to 1
  vtkAxis* right = chart()->GetAxis(vtkAxis::RIGHT);
  right->SetTitle("Opacity");
  right->SetBehavior(vtkAxis::FIXED);
  right->SetRange(0.0, 1.0);
  // the mouse edits the control points, not the chart's zoom and pan
  chart()->SetActionToButton(vtkChart::PAN, -1);
  chart()->SetActionToButton(vtkChart::ZOOM, -1);
  chart()->SetActionToButton(vtkChart::SELECT, -1);
}

VXHistogramOpacityWidget::~VXHistogramOpacityWidget()
{
  setFunctions(nullptr, nullptr);
}

vtkPiecewiseControlPointsItem* VXHistogramOpacityWidget::controlPoints() const
{
  return m_ControlPoints;
}

void VXHistogramOpacityWidget::setFunctions(vtkPiecewiseFunction* opacity,
                                            vtkColorTransferFunction* colors)
{
  if (m_ControlPoints != nullptr)
  {
    if (vtkPiecewiseFunction* old = m_ControlPoints->GetPiecewiseFunction())
      old->RemoveObserver(m_EditObserver);
    chart()->RemovePlotInstance(m_ControlPoints);
    chart()->RemovePlotInstance(m_FunctionItem);
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
  chart()->AddPlot(m_FunctionItem);
  chart()->AddPlot(m_ControlPoints);
  chart()->SetPlotCorner(m_FunctionItem, 1);
  chart()->SetPlotCorner(m_ControlPoints, 1);
  m_EditObserver = opacity->AddObserver(vtkCommand::ModifiedEvent, this,
                                        &VXHistogramOpacityWidget::opacityFunctionEdited);
  render();
}
