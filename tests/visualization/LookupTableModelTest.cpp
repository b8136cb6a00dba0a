// The table model of an indexed colour map's rows.
#include "visualization/VXLookupTableModel.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>

namespace
{
class LookupTableModelTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    m_Model.addRow(QColor(255, 0, 0), "1", "Ferrite");
    m_Model.addRow(QColor(0, 255, 0), "2", "Austenite");
    m_Model.addRow(QColor(0, 0, 255), "3", "Pore");
  }
  void TearDown() override { VXUserPrompt::setColorHandler({}); }

  VXLookupTableModel m_Model;
};
} // namespace

TEST_F(LookupTableModelTest, HeadersColumnsCellsAndRowChanges)
{
  EXPECT_EQ(m_Model.columnCount(), 3);
  EXPECT_EQ(m_Model.rowCount(), 3);
  EXPECT_EQ(m_Model.rowCount(m_Model.index(0, 0)), 0);
  EXPECT_EQ(m_Model.headerData(VXLookupTableModel::k_ColorColumn, Qt::Horizontal).toString(),
            "Color");
  EXPECT_EQ(m_Model.headerData(VXLookupTableModel::k_ValueColumn, Qt::Horizontal).toString(),
            "Value");
  EXPECT_EQ(m_Model.headerData(VXLookupTableModel::k_AnnotationColumn, Qt::Horizontal).toString(),
            "Annotation");

  for (const int role : { int(Qt::DisplayRole), int(Qt::EditRole) })
  {
    EXPECT_EQ(m_Model.data(m_Model.index(1, 0), role).value<QColor>(), QColor(0, 255, 0));
    EXPECT_EQ(m_Model.data(m_Model.index(1, 1), role).toString(), "2");
    EXPECT_EQ(m_Model.data(m_Model.index(1, 2), role).toString(), "Austenite");
  }
  EXPECT_FALSE(m_Model.data(m_Model.index(1, 2), Qt::ToolTipRole).isValid());
  EXPECT_FALSE(m_Model.data(m_Model.index(1, 2), Qt::DecorationRole).isValid());

  for (int column = 0; column < 3; ++column)
  {
    EXPECT_TRUE(m_Model.flags(m_Model.index(2, column)).testFlag(Qt::ItemIsEditable));
    EXPECT_TRUE(m_Model.flags(m_Model.index(2, column)).testFlag(Qt::ItemIsSelectable));
  }
  EXPECT_FALSE(m_Model.flags(QModelIndex()).testFlag(Qt::ItemIsEditable));

  // rows are removed, replaced and cleared
  QSignalSpy resets(&m_Model, &QAbstractItemModel::modelReset);
  m_Model.removeRow(m_Model.index(1, 2));
  ASSERT_EQ(m_Model.rowCount(), 2);
  EXPECT_EQ(m_Model.data(m_Model.index(1, 1)).toString(), "3");
  m_Model.removeRow(QModelIndex());
  EXPECT_EQ(m_Model.rowCount(), 2);
  m_Model.setTable({ { QColor(Qt::white), "0.5", "Half" } });
  EXPECT_EQ(m_Model.rowCount(), 1);
  EXPECT_EQ(m_Model.data(m_Model.index(0, 2)).toString(), "Half");
  m_Model.clearTable();
  EXPECT_EQ(m_Model.rowCount(), 0);
  EXPECT_EQ(resets.count(), 2);
}

TEST_F(LookupTableModelTest, EditingAValueSignalsValueChangedOnlyForTheValueColumn)
{
  QSignalSpy values(&m_Model, &VXLookupTableModel::valueChanged);
  QSignalSpy changed(&m_Model, &QAbstractItemModel::dataChanged);

  EXPECT_TRUE(m_Model.setData(m_Model.index(0, VXLookupTableModel::k_ValueColumn), "10"));
  EXPECT_TRUE(
    m_Model.setData(m_Model.index(0, VXLookupTableModel::k_AnnotationColumn), "Martensite"));
  EXPECT_TRUE(
    m_Model.setData(m_Model.index(0, VXLookupTableModel::k_ColorColumn), QColor(Qt::yellow)));
  EXPECT_FALSE(
    m_Model.setData(m_Model.index(0, VXLookupTableModel::k_ValueColumn), "11", Qt::DisplayRole));

  ASSERT_EQ(values.count(), 1);
  EXPECT_EQ(values.at(0).at(0).value<QModelIndex>(),
            m_Model.index(0, VXLookupTableModel::k_ValueColumn));
  EXPECT_EQ(changed.count(), 3);
  const auto row = m_Model.table().at(0);
  EXPECT_EQ(row.value, "10");
  EXPECT_EQ(row.annotation, "Martensite");
  EXPECT_EQ(row.color, QColor(Qt::yellow));
}

TEST_F(LookupTableModelTest, ColourButtonTakesThePickedColourAndKeepsTheOldOnCancel)
{
  QString title;
  QColor initial;
  QColor answer(10, 20, 30);
  VXUserPrompt::setColorHandler(
    [&](const QColor& start, const QString& dialogTitle)
    {
      initial = start;
      title = dialogTitle;
      return answer;
    });
  QSignalSpy changed(&m_Model, &QAbstractItemModel::dataChanged);

  m_Model.colorButtonClicked(m_Model.index(2, VXLookupTableModel::k_AnnotationColumn));
  EXPECT_EQ(title, "Select Color");
  EXPECT_EQ(initial, QColor(0, 0, 255));
  EXPECT_EQ(m_Model.table().at(2).color, QColor(10, 20, 30));

  answer = QColor();
  m_Model.colorButtonClicked(m_Model.index(2, VXLookupTableModel::k_ColorColumn));
  EXPECT_EQ(m_Model.table().at(2).color, QColor(10, 20, 30));
  EXPECT_EQ(changed.count(), 2);
}
