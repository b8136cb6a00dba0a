#include "visualization/QtWidgets/VXArrayHistogramWidget.hpp"

#include "utils/ExecuteVtkDataFunction.hpp"
#include "utils/GenerateHistogramFunctor.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <vtkAxis.h>
#include <vtkChartXY.h>
#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkPlotBar.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string>
#include <vector>

VXArrayHistogramWidget::VXArrayHistogramWidget(QWidget* parent)
  : VXChartWidget("m_ChartWidget", 220, parent)
{
  setObjectName(k_TypeName);
  histogramPlot()->SetColor(70, 110, 170, 255);
  chart()->GetTitleProperties()->SetFontSize(14);

  m_MessageLabel = new QLabel(this);
  m_MessageLabel->setObjectName("m_MessageLabel");
  m_MessageLabel->setWordWrap(true);
  m_MessageLabel->hide();
  controlsLayout()->addWidget(m_MessageLabel);

  m_LogScaleCheckBox = new QCheckBox("Log Scale", this);
  m_LogScaleCheckBox->setObjectName("m_LogScaleCheckBox");
  m_LogScaleCheckBox->setToolTip("Show the counts on a logarithmic axis");
  connect(m_LogScaleCheckBox, &QCheckBox::toggled, this, &VXArrayHistogramWidget::setLogScale);
  controlsLayout()->addWidget(m_LogScaleCheckBox);
}

VXArrayHistogramWidget::~VXArrayHistogramWidget() = default;

bool VXArrayHistogramWidget::logScale() const
{
  return chart()->GetAxis(vtkAxis::LEFT)->GetLogScale();
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
    chart()->SetTitle(name.toStdString());
    showMessage(QString("No histogram of \"%1\" (%2): %3")
                  .arg(name, QString(array->GetDataTypeAsString()), QString(error.what())));
    return;
  }

  const vtkIdType bins = static_cast<vtkIdType>(histogram.size());
  vtkDataArray* centres = vtkArrayDownCast<vtkDataArray>(histogramTable()->GetColumn(0));
  vtkDataArray* counts = vtkArrayDownCast<vtkDataArray>(histogramTable()->GetColumn(1));
  histogramTable()->SetNumberOfRows(bins);
  for (vtkIdType i = 0; i < bins; i++)
  {
    const std::size_t bin = static_cast<std::size_t>(i);
    centres->SetTuple1(i, 0.5 * (minimums[bin] + maximums[bin]));
    counts->SetTuple1(i, histogram[bin]);
  }
  histogramTable()->Modified();
  const double width = bins > 0 ? maximums[0] - minimums[0] : 0.0;
  histogramPlot()->SetWidth(width > 0.0 ? static_cast<float>(width) : 1.0f);
  chart()->SetTitle(name.toStdString());
  chart()->GetAxis(vtkAxis::BOTTOM)->SetTitle(name.isEmpty() ? "Value" : name.toStdString());
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
  vtkAxis* axis = chart()->GetAxis(vtkAxis::LEFT);
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
  chart()->RecalculateBounds();
}

void VXArrayHistogramWidget::clear()
{
  histogramTable()->SetNumberOfRows(0);
  histogramTable()->Modified();
  m_MaxCount = 0.0;
  applyCountAxis();
  chart()->SetTitle("");
  showMessage(QString());
  render();
}

void VXArrayHistogramWidget::showMessage(const QString& text)
{
  m_MessageLabel->setText(text);
  m_MessageLabel->setVisible(!text.isEmpty());
}
