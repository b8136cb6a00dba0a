#include "visualization/QtWidgets/VXDatasetInfoWidget.hpp"

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>

#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace
{
void addArrays(QTreeWidgetItem* parent, vtkDataSetAttributes* attributes)
{
  for (int i = 0; i < attributes->GetNumberOfArrays(); i++)
  {
    vtkDataArray* array = attributes->GetArray(i);
    if (array == nullptr)
      continue;
    QStringList ranges;
    for (int c = 0; c < array->GetNumberOfComponents(); c++)
    {
      double range[2];
      array->GetRange(range, c);
      ranges << QString("[%1, %2]").arg(range[0], 0, 'g', 6).arg(range[1], 0, 'g', 6);
    }
    new QTreeWidgetItem(
      parent,
      { QString::fromUtf8(array->GetName() != nullptr ? array->GetName() : ""),
        QString("%1 x %2").arg(array->GetDataTypeAsString()).arg(array->GetNumberOfComponents()),
        ranges.join(" ") });
  }
}
} // namespace

VXDatasetInfoWidget::VXDatasetInfoWidget(QWidget* parent)
  : QWidget(parent)
  , m_Tree(new QTreeWidget(this))
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_Tree);
  m_Tree->setHeaderLabels({ "Name", "Type", "Ranges" });
  m_Tree->header()->setStretchLastSection(true);
}

VXDatasetInfoWidget::~VXDatasetInfoWidget() = default;

void VXDatasetInfoWidget::updateDatasetInfo(vtkDataSet* dataSet)
{
  m_Tree->clear();
  if (dataSet == nullptr)
    return;
  double bounds[6];
  dataSet->GetBounds(bounds);
  new QTreeWidgetItem(m_Tree, { "Type", QString::fromUtf8(dataSet->GetClassName()) });
  new QTreeWidgetItem(m_Tree, { "Points", QString::number(dataSet->GetNumberOfPoints()) });
  new QTreeWidgetItem(m_Tree, { "Cells", QString::number(dataSet->GetNumberOfCells()) });
  new QTreeWidgetItem(m_Tree, { "Bounds", QString("[%1, %2] [%3, %4] [%5, %6]")
                                            .arg(bounds[0], 0, 'g', 6)
                                            .arg(bounds[1], 0, 'g', 6)
                                            .arg(bounds[2], 0, 'g', 6)
                                            .arg(bounds[3], 0, 'g', 6)
                                            .arg(bounds[4], 0, 'g', 6)
                                            .arg(bounds[5], 0, 'g', 6) });
  auto* pointItem = new QTreeWidgetItem(m_Tree, { "Point Data" });
  addArrays(pointItem, dataSet->GetPointData());
  auto* cellItem = new QTreeWidgetItem(m_Tree, { "Cell Data" });
  addArrays(cellItem, dataSet->GetCellData());
  m_Tree->expandAll();
}
