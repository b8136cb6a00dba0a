#include "visualization/QtWidgets/VXFThresholdFilterWidget.hpp"

#include "visualization/VXFThreshold.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

#include <cfloat>

VXFThresholdFilterWidget::VXFThresholdFilterWidget(VXFThreshold* filter, QWidget* parent)
  : QWidget(parent)
  , m_Filter(filter)
{
  setObjectName("VXFThresholdFilterWidget");
  auto* form = new QFormLayout(this);
  m_Arrays = new QListWidget(this);
  m_Arrays->setObjectName("m_ArrayList");
  form->addRow("Array:", m_Arrays);
  m_DataRange = new QLabel(this);
  m_DataRange->setObjectName("m_DataRangeLabel");
  form->addRow("Data Range:", m_DataRange);
  for (auto* box : { &m_Minimum, &m_Maximum })
  {
    *box = new QDoubleSpinBox(this);
    (*box)->setRange(-DBL_MAX, DBL_MAX);
    (*box)->setDecimals(6);
    (*box)->setKeyboardTracking(false);
  }
  m_Minimum->setObjectName("m_MinimumSpinBox");
  m_Maximum->setObjectName("m_MaximumSpinBox");
  form->addRow("Minimum:", m_Minimum);
  form->addRow("Maximum:", m_Maximum);
  if (filter == nullptr)
    return;
  form->addRow("Add Representation:", filter->addRepresentationTypeCombo(this));
  auto* apply = new QPushButton("Apply", this);
  apply->setObjectName("m_ApplyButton");
  form->addRow(apply);
  auto* host = new QPushButton("Create Multi-Threshold Objects Filter", this);
  host->setObjectName("m_CreateMultiThresholdButton");
  host->setToolTip("Add a Multi-Threshold Objects filter with this range to the host pipeline "
                   "that made the data");
  form->addRow(host);

  connect(m_Arrays, &QListWidget::currentRowChanged, this,
          [this](int row)
          {
            if (row < 0)
              return;
            m_Filter->setActiveArrayInfoIndex(static_cast<size_t>(row));
            showActiveRecord();
          });
  auto setRange = [this]() { m_Filter->setUserRange(m_Minimum->value(), m_Maximum->value()); };
  connect(m_Minimum, &QDoubleSpinBox::valueChanged, this, setRange);
  connect(m_Maximum, &QDoubleSpinBox::valueChanged, this, setRange);
  connect(apply, &QPushButton::clicked, filter, &VXFThreshold::applyFilter);
  connect(host, &QPushButton::clicked, filter, &VXFThreshold::createMultiThresholdObjectsFilter);
  connect(filter, &VXFThreshold::activeArrayInfosChanged, this, &VXFThresholdFilterWidget::refresh);
  refresh();
}

VXFThresholdFilterWidget::~VXFThresholdFilterWidget() = default;

void VXFThresholdFilterWidget::refresh()
{
  if (m_Filter == nullptr)
    return;
  const QSignalBlocker blocker(m_Arrays);
  m_Arrays->clear();
  for (const VXFThreshold::ActiveArrayInfo& info : m_Filter->activeArrayInfos())
    m_Arrays->addItem(info.displayName);
  m_Arrays->setCurrentRow(static_cast<int>(m_Filter->activeArrayInfoIndex()));
  showActiveRecord();
}

void VXFThresholdFilterWidget::showActiveRecord()
{
  const auto& infos = m_Filter->activeArrayInfos();
  const size_t index = m_Filter->activeArrayInfoIndex();
  const bool valid = index < infos.size();
  m_Minimum->setEnabled(valid);
  m_Maximum->setEnabled(valid);
  if (!valid)
  {
    m_DataRange->clear();
    return;
  }
  const VXFThreshold::ActiveArrayInfo& info = infos[index];
  m_DataRange->setText(
    QString("%1 to %2").arg(info.dataMin, 0, 'g', 6).arg(info.dataMax, 0, 'g', 6));
  const QSignalBlocker minimumBlocker(m_Minimum);
  const QSignalBlocker maximumBlocker(m_Maximum);
  m_Minimum->setValue(info.userMin);
  m_Maximum->setValue(info.userMax);
}
