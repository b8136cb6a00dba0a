#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QWidget>

class QTreeWidget;
class vtkDataSet;

/**
 * A summary of one data set for the info panel: its type, point and cell
 * counts, bounds, and each array with its type, components and ranges.
 */
class KXVTKLIB_EXPORT VXDatasetInfoWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXDatasetInfoWidget(QWidget* parent = nullptr);
  ~VXDatasetInfoWidget() override;

  /** Shows the data set's summary; empty for null. */
  void updateDatasetInfo(vtkDataSet* dataSet);
  QTreeWidget* tree() const { return m_Tree; }

private:
  QTreeWidget* m_Tree = nullptr;
};
