// The histogram of the active array on a points-family settings page: shown
// by its check box, refreshed when the array, the range or the data changes.
#include "DataViewTestSupport.hpp"

#include <visualization/QtWidgets/VXArrayHistogramWidget.hpp>

#include <gtest/gtest.h>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QPushButton>

#include <vtkAxis.h>
#include <vtkCellArray.h>
#include <vtkChartXY.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkPlot.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkTable.h>

#include <map>

using namespace dataviewtest;

namespace
{
/** Eight points with a float "Height" (the active scalars) and an int "Index". */
vtkSmartPointer<vtkPolyData> makeHeightIndexData()
{
  auto data = vtkSmartPointer<vtkPolyData>::New();
  vtkNew<vtkPoints> points;
  vtkNew<vtkCellArray> vertices;
  vtkNew<vtkFloatArray> height;
  height->SetName("Height");
  vtkNew<vtkIntArray> index;
  index->SetName("Index");
  const float heights[] = { 0, 1, 2, 2, 3, 10, 49.5f, 50 };
  const int indices[] = { 0, 0, 0, 5, 5, 20, 99, 100 };
  for (vtkIdType i = 0; i < 8; i++)
  {
    points->InsertNextPoint(double(i), double(i % 3), 0.0);
    vertices->InsertNextCell(1, &i);
    height->InsertNextValue(heights[i]);
    index->InsertNextValue(indices[i]);
  }
  data->SetPoints(points);
  data->SetVerts(vertices);
  data->GetPointData()->SetScalars(height);
  data->GetPointData()->AddArray(index);
  return data;
}

/** The non-empty bars the chart's plot draws, bin centre to count. */
std::map<double, double> Bars(VXArrayHistogramWidget* widget)
{
  std::map<double, double> bars;
  vtkTable* table = widget->chart()->GetPlot(0)->GetInput();
  for (vtkIdType row = 0; row < table->GetNumberOfRows(); row++)
  {
    const double count = table->GetValue(row, 1).ToDouble();
    if (count != 0.0)
      bars[table->GetValue(row, 0).ToDouble()] = count;
  }
  return bars;
}

/** Clicks a check box on its indicator, where a user clicks it. */
void Click(QCheckBox* box)
{
  QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
}

/** Chooses an entry of a combo box with the keyboard, as a user would. */
void ChooseWithKeys(QComboBox* combo, const QString& text)
{
  const int target = combo->findText(text);
  ASSERT_GE(target, 0) << text.toStdString();
  combo->setFocus();
  while (combo->currentIndex() != target)
    QTest::keyClick(combo, combo->currentIndex() < target ? Qt::Key_Down : Qt::Key_Up);
}
} // namespace

TEST(ArrayHistogram, CheckBoxShowsTheActiveArrayAndFollowsItsChanges)
{
  ScopedSettings settings;
  Scene scene;
  auto data = makeHeightIndexData();
  auto* points = scene.add(scene.source(data), VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  QWidget* page = scene.lastRep->settingsWidget();
  ASSERT_NE(page, nullptr);
  page->resize(400, 900);
  page->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(page));

  VXArrayHistogramWidget* histogram = points->histogramWidget();
  auto* box = points->control<QCheckBox>("m_HistogramCheckBox");
  ASSERT_NE(histogram, nullptr);
  ASSERT_NE(box, nullptr);
  EXPECT_FALSE(histogram->isVisible());
  EXPECT_EQ(histogram->table()->GetNumberOfRows(), 0);

  Click(box);
  EXPECT_TRUE(points->generateHistogram());
  EXPECT_TRUE(histogram->isVisible());
  EXPECT_EQ(histogram->chart()->GetTitle(), "Height");
  EXPECT_EQ(histogram->table()->GetNumberOfRows(), 50);
  // range 0..50 in 50 bins of 1; the top value 50 is outside the last bin
  EXPECT_EQ(Bars(histogram),
            (std::map<double, double>{
              { 0.5, 1 }, { 1.5, 1 }, { 2.5, 2 }, { 3.5, 1 }, { 10.5, 1 }, { 49.5, 1 } }));

  // a custom range narrows the bins: 0..25 in bins of 0.5
  points->rescaleToCustomRange(0.0, 25.0);
  EXPECT_EQ(Bars(histogram), (std::map<double, double>{
                               { 0.25, 1 }, { 1.25, 1 }, { 2.25, 2 }, { 3.25, 1 }, { 10.25, 1 } }));
  QTest::mouseClick(points->control<QPushButton>("scaleToDataBtn"), Qt::LeftButton);

  // another array: 0..100 in bins of 2
  auto* arrays = points->control<QComboBox>("m_ArrayCombo");
  ASSERT_NE(arrays, nullptr);
  ChooseWithKeys(arrays, "Index");
  EXPECT_EQ(points->activeArray(), "Index");
  EXPECT_EQ(histogram->chart()->GetTitle(), "Index");
  EXPECT_EQ(Bars(histogram),
            (std::map<double, double>{ { 1, 3 }, { 5, 2 }, { 21, 1 }, { 99, 1 } }));

  // new values in the data reach the histogram when the data view's filter runs again
  auto* index = vtkIntArray::SafeDownCast(data->GetPointData()->GetArray("Index"));
  index->SetValue(0, 2);
  index->Modified();
  data->Modified();
  scene.settle();
  EXPECT_EQ(Bars(histogram),
            (std::map<double, double>{ { 1, 2 }, { 3, 1 }, { 5, 2 }, { 21, 1 }, { 99, 1 } }));

  // the counts can go on a log axis
  auto* logScale = histogram->findChild<QCheckBox*>("m_LogScaleCheckBox");
  ASSERT_NE(logScale, nullptr);
  EXPECT_EQ(logScale->text(), "Log Scale");
  Click(logScale);
  EXPECT_TRUE(histogram->logScale());
  histogram->repaint();
  EXPECT_TRUE(histogram->chart()->GetAxis(vtkAxis::LEFT)->GetLogScaleActive());

  // unchecking hides it again
  Click(box);
  EXPECT_FALSE(points->generateHistogram());
  EXPECT_FALSE(histogram->isVisible());
}

TEST(ArrayHistogram, OneComponentAsMagnitudeAndUncountableTypes)
{
  VXArrayHistogramWidget widget;
  widget.resize(300, 300);
  widget.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));

  // -1 on one component is the component itself, negative values included
  vtkNew<vtkFloatArray> values;
  values->SetName("Signed");
  for (float v : { -4.0f, -4.0f, 1.0f, 21.0f })
    values->InsertNextValue(v);
  widget.setArray(values, -1, false, 0.0, 0.0);
  EXPECT_EQ(widget.chart()->GetTitle(), "Signed");
  EXPECT_EQ(Bars(&widget), (std::map<double, double>{ { -3.75, 2 }, { 1.25, 1 } }));
  EXPECT_TRUE(widget.message().isEmpty());

  // an id array can't be counted: an empty plot and a message instead of an exception
  vtkNew<vtkIdTypeArray> ids;
  ids->SetName("Ids");
  ids->InsertNextValue(3);
  widget.setArray(ids, 0, false, 0.0, 0.0);
  EXPECT_TRUE(Bars(&widget).empty());
  EXPECT_TRUE(widget.message().contains("Invalid DataType")) << widget.message().toStdString();
}
