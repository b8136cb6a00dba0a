// The colour map editor of the points family: continuous maps edited point by point on the
// chart, categorical maps row by row, and what an edit means for the data view's settings.
#include "DataViewTestSupport.hpp"

#include <visualization/QtWidgets/VXColorMapEditorWidget.hpp>
#include <visualization/QtWidgets/VXLUTEditor.hpp>
#include <visualization/VXLookupTableModel.hpp>

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>

#include <vtkCellArray.h>
#include <vtkColorTransferControlPointsItem.h>
#include <vtkColorTransferFunction.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

#include <nlohmann/json.hpp>

using namespace dataviewtest;

namespace
{
/** Six vertices with a float "Height" 0..100 (the active scalars) and an int "Phase" of 1, 2, 7. */
vtkSmartPointer<vtkPolyData> makeHeightPhaseData()
{
  auto data = vtkSmartPointer<vtkPolyData>::New();
  vtkNew<vtkPoints> points;
  vtkNew<vtkCellArray> vertices;
  vtkNew<vtkFloatArray> height;
  height->SetName("Height");
  vtkNew<vtkIntArray> phase;
  phase->SetName("Phase");
  const float heights[] = { 0, 10, 20, 50, 80, 100 };
  const int phases[] = { 1, 1, 2, 2, 7, 7 };
  for (vtkIdType i = 0; i < 6; i++)
  {
    points->InsertNextPoint(double(i), double(i % 2), 0.0);
    vertices->InsertNextCell(1, &i);
    height->InsertNextValue(heights[i]);
    phase->InsertNextValue(phases[i]);
  }
  data->SetPoints(points);
  data->SetVerts(vertices);
  data->GetPointData()->SetScalars(height);
  data->GetPointData()->AddArray(phase);
  return data;
}

/** Opens the editor of a points data view with its button, as a user does. */
VXLUTEditor* OpenEditor(VXPointsRepPimpl* points)
{
  auto* button = points->control<QPushButton>("m_EditColorMapButton");
  EXPECT_NE(button, nullptr);
  if (button == nullptr)
    return nullptr;
  QTest::mouseClick(button, Qt::LeftButton);
  VXLUTEditor* editor = points->colorMapEditor();
  EXPECT_NE(editor, nullptr);
  if (editor != nullptr)
  {
    EXPECT_TRUE(QTest::qWaitForWindowExposed(editor));
  }
  return editor;
}

/** A user's double click on a cell: the first click, then the second one of the pair. */
void DoubleClick(QTableView* view, const QModelIndex& index)
{
  const QPoint at = view->visualRect(index).center();
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

/** Answers colour dialogs with one colour and counts them. */
struct AnsweredColors
{
  explicit AnsweredColors(QColor answer)
  {
    VXUserPrompt::setColorHandler(
      [this, answer](const QColor&, const QString& title)
      {
        titles.append(title);
        return answer;
      });
  }
  ~AnsweredColors() { VXUserPrompt::setColorHandler({}); }
  QStringList titles;
};

std::array<double, 6> Node(vtkColorTransferFunction* function, int index)
{
  std::array<double, 6> node{};
  function->GetNodeValue(index, node.data());
  return node;
}
} // namespace

TEST(ColorMapEditor, ChartEditsBecomeTheViewsOwnPresetAndSurviveTheState)
{
  ScopedSettings settings;
  Scene scene;
  auto* points = scene.add(scene.source(makeHeightPhaseData()), VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  QWidget* page = points->settingsWidget();
  page->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(page));
  ASSERT_EQ(points->activeArray(), "Height");
  ASSERT_TRUE(points->usingDefaultPreset());

  VXLUTEditor* editor = OpenEditor(points);
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(editor->windowTitle(), "Color Map Editor - Height");
  VXColorMapEditorWidget* chart = editor->colorMapWidget();
  ASSERT_TRUE(chart->isVisible());
  vtkColorTransferFunction* function = points->lookupTable()->getColorTransferFunction();
  ASSERT_EQ(chart->controlPoints()->GetColorTransferFunction(), function);
  const int nodes = 3;

  // a change made elsewhere (a preset) is not an edit of the user's
  QSignalSpy edited(chart, &VXColorMapEditorWidget::colorMapEdited);
  points->loadRGBPresetColors(ThreePointPreset());
  EXPECT_EQ(edited.size(), 0);
  ASSERT_EQ(function->GetSize(), 3);

  // a click at value 25 adds a point there with the colour the map had
  const QPoint at = ChartPosition(chart, 25.0, vtkAxis::LEFT, 0.5);
  double before[3];
  function->GetColor(25.0, before);
  QTest::mouseClick(chart->chartWidget(), Qt::LeftButton, Qt::NoModifier, at);
  ASSERT_EQ(function->GetSize(), nodes + 1);
  int added = 0;
  while (added < nodes && Node(function, added)[0] < 24.0)
    added++;
  EXPECT_NEAR(Node(function, added)[0], 25.0, 1.5);
  EXPECT_NEAR(Node(function, added)[1], before[0], 0.02);
  EXPECT_GE(edited.size(), 1);

  // a double click on it asks for its colour through the prompt
  {
    AnsweredColors colors(QColor(255, 0, 0));
    QTest::mouseDClick(chart->chartWidget(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(colors.titles, QStringList{ VXColorMapEditorWidget::k_PointColorTitle });
  }
  const auto red = Node(function, added);
  EXPECT_EQ((std::array<double, 3>{ red[1], red[2], red[3] }),
            (std::array<double, 3>{ 1.0, 0.0, 0.0 }));

  // the edited map is now this view's own preset, detached from the parent's colours
  EXPECT_FALSE(points->usingDefaultPreset());
  EXPECT_EQ(points->colorPreset().name, "Edited");
  EXPECT_EQ(points->colorPreset().rgbPoints.size(), 4u * (nodes + 1));
  auto* detach = points->control<QCheckBox>("m_DetachColorCheckBox");
  ASSERT_NE(detach, nullptr);
  EXPECT_TRUE(detach->isChecked());

  // inverted, saved and loaded into another data view: the same colours at the same values
  QTest::mouseClick(editor->findChild<QPushButton*>("m_InvertButton"), Qt::LeftButton);
  EXPECT_TRUE(points->colorMapInverted());
  nlohmann::json state;
  points->write(state);
  auto* copy = scene.add(scene.source(makeHeightPhaseData()), VXRepresentation::Points);
  ASSERT_NE(copy, nullptr);
  copy->read(state);
  vtkColorTransferFunction* restored = copy->lookupTable()->getColorTransferFunction();
  ASSERT_EQ(restored->GetSize(), nodes + 1);
  for (int i = 0; i <= nodes; ++i)
  {
    const auto a = Node(function, i);
    const auto b = Node(restored, i);
    for (int j = 0; j < 4; ++j)
      EXPECT_NEAR(a[j], b[j], 1e-6) << "node " << i << " value " << j;
  }
}

TEST(ColorMapEditor, CategoricalRowsEditTheMapAndBadValuesAreNamed)
{
  ScopedSettings settings;
  RecordedQuestions questions;
  Scene scene;
  auto* points = scene.add(scene.source(makeHeightPhaseData()), VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  QWidget* page = points->settingsWidget();
  page->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(page));
  points->setActiveArray("Phase");
  points->setInterpretValuesAsCategories(true);

  VXLUTEditor* editor = OpenEditor(points);
  ASSERT_NE(editor, nullptr);
  QTableView* rows = editor->tableView();
  ASSERT_TRUE(rows->isVisible());
  EXPECT_FALSE(editor->colorMapWidget()->isVisible());
  VXLookupTableModel* model = editor->tableModel();
  ASSERT_EQ(model->rowCount(), 3);
  EXPECT_EQ(model->data(model->index(2, VXLookupTableModel::k_ValueColumn)).toString(), "7");

  // double-clicking the colour of value 2 recolours it in the map the view draws with
  {
    AnsweredColors colors(QColor(0, 0, 255));
    DoubleClick(rows, model->index(1, VXLookupTableModel::k_ColorColumn));
    EXPECT_EQ(colors.titles.size(), 1);
  }
  const auto entries = points->lookupTable()->indexedColors();
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[1].value, 2.0);
  EXPECT_EQ(entries[1].color, QColor(0, 0, 255));
  EXPECT_EQ(points->indexedColorPreset().name, "Edited");
  EXPECT_EQ(points->indexedColorPreset().annotations.size(), 6u);

  // a new row takes the next whole value; a label typed in place reaches the map
  QTest::mouseClick(editor->findChild<QPushButton*>("m_AddValueButton"), Qt::LeftButton);
  ASSERT_EQ(model->rowCount(), 4);
  EXPECT_EQ(points->lookupTable()->indexedColors().back().value, 8.0);
  const QModelIndex label = model->index(0, VXLookupTableModel::k_AnnotationColumn);
  DoubleClick(rows, label);
  auto* field = rows->viewport()->findChild<QLineEdit*>();
  ASSERT_NE(field, nullptr);
  field->selectAll();
  QTest::keyClicks(field, "Matrix");
  QTest::keyClick(field, Qt::Key_Return);
  // the view commits a typed value once control returns to the event loop
  QCoreApplication::processEvents();
  EXPECT_EQ(points->lookupTable()->indexedColors().front().label, "Matrix");

  // a value that is not a number is left out, and the editor says which
  model->setData(model->index(3, VXLookupTableModel::k_ValueColumn), "eight");
  EXPECT_EQ(editor->message(),
            "Row 4: \"eight\" is not a number; the row is left out of the color map.");
  EXPECT_EQ(points->lookupTable()->indexedColors().size(), 3u);

  // "Remove Value" on the selected row takes it out of the map
  rows->selectRow(2);
  QTest::mouseClick(editor->findChild<QPushButton*>("m_RemoveValueButton"), Qt::LeftButton);
  EXPECT_EQ(model->rowCount(), 3);
  const auto left = points->lookupTable()->indexedColors();
  ASSERT_EQ(left.size(), 2u);
  EXPECT_EQ(left[1].value, 2.0);
}
