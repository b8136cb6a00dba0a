#include "visualization/QtWidgets/VXColorMapEditorWidget.hpp"

#include "visualization/VXLookupTable.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkColorTransferControlPointsItem.h>
#include <vtkColorTransferFunction.h>
#include <vtkColorTransferFunctionItem.h>
#include <vtkCommand.h>
#include <vtkPlotBar.h>

VXColorMapEditorWidget::VXColorMapEditorWidget(QWidget* parent)
  : VXChartWidget("m_ColorMapChartWidget", 90, parent)
{
  setObjectName("VXColorMapEditorWidget");
  histogramPlot()->SetVisible(false);
  chart()->GetAxis(vtkAxis::LEFT)->SetVisible(false);
  chart()->GetAxis(vtkAxis::LEFT)->SetBehavior(vtkAxis::FIXED);
  chart()->GetAxis(vtkAxis::LEFT)->SetRange(0.0, 1.0);
  // the mouse edits the control points, not the chart's zoom and pan
  chart()->SetActionToButton(vtkChart::PAN, -1);
  chart()->SetActionToButton(vtkChart::ZOOM, -1);
  chart()->SetActionToButton(vtkChart::SELECT, -1);
}

VXColorMapEditorWidget::~VXColorMapEditorWidget()
{
  detach();
}

VXLookupTable* VXColorMapEditorWidget::lookupTable() const
{
  return m_Table;
}

vtkColorTransferControlPointsItem* VXColorMapEditorWidget::controlPoints() const
{
  return m_ControlPoints;
}

void VXColorMapEditorWidget::detach()
{
  if (m_ControlPoints != nullptr)
  {
    for (unsigned long observer : { m_EditObserver, m_DragObserver, m_PointEditObserver })
      m_ControlPoints->RemoveObserver(observer);
    chart()->RemovePlotInstance(m_ControlPoints);
    chart()->RemovePlotInstance(m_FunctionItem);
    m_ControlPoints = nullptr;
    m_FunctionItem = nullptr;
  }
  QObject::disconnect(m_TableDestroyed);
  m_Table = nullptr;
}

void VXColorMapEditorWidget::setLookupTable(VXLookupTable* table)
{
  detach();
  vtkColorTransferFunction* function =
    table != nullptr ? table->getColorTransferFunction() : nullptr;
  if (function == nullptr || function->GetIndexedLookup() != 0)
  {
    render();
    return;
  }
  m_Table = table;
  m_TableDestroyed =
    connect(table, &QObject::destroyed, this, [this]() { setLookupTable(nullptr); });
  m_FunctionItem = vtkSmartPointer<vtkColorTransferFunctionItem>::New();
  m_FunctionItem->SetColorTransferFunction(function);
  m_FunctionItem->SetSelectable(false);
  m_ControlPoints = vtkSmartPointer<vtkColorTransferControlPointsItem>::New();
  m_ControlPoints->SetColorTransferFunction(function);
  m_ControlPoints->SetEndPointsXMovable(true);
  m_ControlPoints->SetColorFill(true);
  chart()->AddPlot(m_FunctionItem);
  chart()->AddPlot(m_ControlPoints);
  // the points item brackets the user's changes (add, move, delete) with start and end events
  // and reports each step of a drag; changes made to the function elsewhere are not edits
  m_EditObserver = m_ControlPoints->AddObserver(vtkCommand::EndEvent, this,
                                                &VXColorMapEditorWidget::colorMapEdited);
  m_DragObserver = m_ControlPoints->AddObserver(vtkCommand::InteractionEvent, this,
                                                &VXColorMapEditorWidget::colorMapEdited);
  m_PointEditObserver =
    m_ControlPoints->AddObserver(vtkControlPointsItem::CurrentPointEditEvent, this,
                                 &VXColorMapEditorWidget::editCurrentPointColor);
  chart()->RecalculateBounds();
  render();
}

void VXColorMapEditorWidget::editCurrentPointColor()
{
  if (m_ControlPoints == nullptr || m_SettingColor)
    return;
  const vtkIdType index = m_ControlPoints->GetCurrentPoint();
  vtkColorTransferFunction* function = m_ControlPoints->GetColorTransferFunction();
  if (index < 0 || index >= function->GetSize())
    return;
  double node[6];
  function->GetNodeValue(static_cast<int>(index), node);
  const QColor chosen = VXUserPrompt::getColor(this,
                                               QColor::fromRgbF(static_cast<float>(node[1]),
                                                                static_cast<float>(node[2]),
                                                                static_cast<float>(node[3])),
                                               k_PointColorTitle);
  if (!chosen.isValid())
    return;
  // the colour dialog may deliver mouse releases to the chart: guard against a second dialog
  m_SettingColor = true;
  node[1] = chosen.redF();
  node[2] = chosen.greenF();
  node[3] = chosen.blueF();
  function->SetNodeValue(static_cast<int>(index), node);
  m_SettingColor = false;
  render();
  Q_EMIT colorMapEdited();
}
