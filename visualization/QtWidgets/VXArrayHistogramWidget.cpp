#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"

#include "utils/ExecuteVtkDataFunction.hpp"
#include "utils/GenerateHistogramFunctor.hpp"
#include "visualization/QtWidgets/VXGLWidget.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkContextScene.h>
#include <vtkContextView.h>
#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkPlotBar.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string>
#include <vector>

VXArrayHistogramWidget::VXArrayHistogramWidget(QWidget* parent)
  : QWidget(parent)
  , m_View(vtkSmartPointer<vtkContextView>::New())
  , m_Chart(vtkSmartPointer<vtkChartXY>::New())
  , m_Table(vtkSmartPointer<vtkTable>::New())
{
  setObjectName(k_TypeName);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);

  m_ChartWidget = new VXGLWidget(this);
  m_ChartWidget->setObjectName("m_ChartWidget");
  m_ChartWidget->setMinimumHeight(220);
  vtkNew<vtkGenericOpenGLRenderWindow> window;
  m_ChartWidget->setRenderWindow(window);
  m_View->SetRenderWindow(window);
  m_View->SetInteractor(m_ChartWidget->interactor());
  m_View->GetRenderer()->SetBackground(1.0, 1.0, 1.0);
  m_View->GetScene()->AddItem(m_Chart);
  layout->addWidget(m_ChartWidget, 1);

  vtkNew<vtkDoubleArray> centres;
  centres->SetName("Value");
  vtkNew<vtkDoubleArray> counts;
  counts->SetName("Count");
  m_Table->AddColumn(centres);
  m_Table->AddColumn(counts);
  m_Plot = vtkPlotBar::SafeDownCast(m_Chart->AddPlot(vtkChart::BAR));
  m_Plot->SetInputData(m_Table, 0, 1);
  m_Plot->SetColor(70, 110, 170, 255);
  m_Chart->GetAxis(vtkAxis::LEFT)->SetTitle("Count");
  m_Chart->GetAxis(vtkAxis::BOTTOM)->SetTitle("Value");
  m_Chart->GetTitleProperties()->SetFontSize(14);
  m_Chart->SetShowLegend(false);

  m_MessageLabel = new QLabel(this);
  m_MessageLabel->setObjectName("m_MessageLabel");
  m_MessageLabel->setWordWrap(true);
  m_MessageLabel->hide();
  layout->addWidget(m_MessageLabel);

  m_LogScaleCheckBox = new QCheckBox("Log Scale", this);
  m_LogScaleCheckBox->setObjectName("m_LogScaleCheckBox");
  m_LogScaleCheckBox->setToolTip("Show the counts on a logarithmic axis");
  connect(m_LogScaleCheckBox, &QCheckBox::toggled, this, &VXArrayHistogramWidget::setLogScale);
  layout->addWidget(m_LogScaleCheckBox);
}

VXArrayHistogramWidget::~VXArrayHistogramWidget() = default;

vtkChartXY* VXArrayHistogramWidget::chart() const
{
  return m_Chart;
}

vtkTable* VXArrayHistogramWidget::table() const
{
  return m_Table;
}

bool VXArrayHistogramWidget::logScale() const
{
  return m_Chart->GetAxis(vtkAxis::LEFT)->GetLogScale();
}

QString VXArrayHistogramWidget::message() const
{
  return m_MessageLabel->isHidden() ? QString() : m_MessageLabel->text();
}

void VXArrayHistogramWidget::setArray(vtkDataArray* array, int component, bool useCustomRange,
                                      double rangeMin, double rangeMax)
{
  if (array == nullptr)
  {
    clear();
    return;
  }
  const QString name = array->GetName() != nullptr ? QString(array->GetName()) : QString();
  if (component == -1 && array->GetNumberOfComponents() == 1)
    component = 0;

  std::vector<double> minimums, maximums, histogram;
  std::vector<std::string> minimumLabels, maximumLabels;
  try
  {
    KXVtk::utils::ExecuteVtkDataFunctionNoBool(
      KXVtk::utils::GenerateHistogramFunctor(), array->GetDataType(), array, useCustomRange,
      std::array<double, 2>{ rangeMin, rangeMax }, minimums, maximums, minimumLabels, maximumLabels,
      k_NumberOfBins, histogram, component);
  }
  catch (const std::exception& error)
  {
    clear();
    m_Chart->SetTitle(name.toStdString());
    showMessage(QString("No histogram of \"%1\" (%2): %3")
                  .arg(name, QString(array->GetDataTypeAsString()), QString(error.what())));
    return;
  }

  const vtkIdType bins = static_cast<vtkIdType>(histogram.size());
  vtkDataArray* centres = vtkArrayDownCast<vtkDataArray>(m_Table->GetColumn(0));
  vtkDataArray* counts = vtkArrayDownCast<vtkDataArray>(m_Table->GetColumn(1));
  m_Table->SetNumberOfRows(bins);
  for (vtkIdType i = 0; i < bins; i++)
  {
    const std::size_t bin = static_cast<std::size_t>(i);
    centres->SetTuple1(i, 0.5 * (minimums[bin] + maximums[bin]));
    counts->SetTuple1(i, histogram[bin]);
  }
  m_Table->Modified();
  const double width = bins > 0 ? maximums[0] - minimums[0] : 0.0;
  m_Plot->SetWidth(width > 0.0 ? static_cast<float>(width) : 1.0f);
  m_Chart->SetTitle(name.toStdString());
  m_Chart->GetAxis(vtkAxis::BOTTOM)->SetTitle(name.isEmpty() ? "Value" : name.toStdString());
  m_MaxCount = histogram.empty() ? 0.0 : *std::max_element(histogram.begin(), histogram.end());
  applyCountAxis();
  showMessage(QString());
  render();
}

void VXArrayHistogramWidget::setLogScale(bool logScale)
{
  if (m_LogScaleCheckBox->isChecked() != logScale)
  {
    const QSignalBlocker blocker(m_LogScaleCheckBox);
    m_LogScaleCheckBox->setChecked(logScale);
  }
  applyCountAxis();
  render();
}

void VXArrayHistogramWidget::applyCountAxis()
{
  vtkAxis* axis = m_Chart->GetAxis(vtkAxis::LEFT);
  const bool logScale = m_LogScaleCheckBox->isChecked();
  axis->SetLogScale(logScale);
  if (logScale)
  {
    // empty bins have no logarithm: the axis starts below one count so that it can be logarithmic
    axis->SetBehavior(vtkAxis::FIXED);
    axis->SetUnscaledRange(0.5, std::max(1.0, m_MaxCount) * 2.0);
  }
  else
    axis->SetBehavior(vtkAxis::AUTO);
  m_Chart->RecalculateBounds();
}

void VXArrayHistogramWidget::clear()
{
  m_Table->SetNumberOfRows(0);
  m_Table->Modified();
  m_MaxCount = 0.0;
  applyCountAxis();
  m_Chart->SetTitle("");
  showMessage(QString());
  render();
}

void VXArrayHistogramWidget::showMessage(const QString& text)
{
  m_MessageLabel->setText(text);
  m_MessageLabel->setVisible(!text.isEmpty());
}

void VXArrayHistogramWidget::render()
{
  // a hidden widget has no surface to draw on; it draws when it is shown
  if (m_ChartWidget != nullptr && m_ChartWidget->isVisible())
    m_ChartWidget->renderWindow()->Render();
  else if (m_ChartWidget != nullptr)
    m_ChartWidget->update();
}
