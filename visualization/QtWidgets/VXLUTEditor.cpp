#include "visualization/QtWidgets/VXLUTEditor.hpp"

#include "visualization/QtWidgets/VXColorMapEditorWidget.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXLookupTableModel.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <vtkColorTransferFunction.h>
#include <vtkCommand.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace
{
QPushButton* AddButton(QHBoxLayout* layout, const QString& text, const QString& name,
                       const QString& tip)
{
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setToolTip(tip);
  layout->addWidget(button);
  return button;
}
} // namespace

VXLUTEditor::VXLUTEditor(QWidget* parent)
  : QDialog(parent)
{
  setObjectName("VXLUTEditor");
  setWindowTitle(k_Title);
  resize(520, 360);
  auto* layout = new QVBoxLayout(this);
  m_ArrayLabel = new QLabel(this);
  m_ArrayLabel->setObjectName("m_ArrayLabel");
  layout->addWidget(m_ArrayLabel);

  m_Pages = new QStackedWidget(this);
  m_ColorMapWidget = new VXColorMapEditorWidget(m_Pages);
  connect(m_ColorMapWidget, &VXColorMapEditorWidget::colorMapEdited, this,
          &VXLUTEditor::colorMapEdited);
  m_Pages->addWidget(m_ColorMapWidget);

  auto* rowsPage = new QWidget(m_Pages);
  auto* rowsLayout = new QVBoxLayout(rowsPage);
  rowsLayout->setContentsMargins(0, 0, 0, 0);
  m_Model = new VXLookupTableModel(this);
  m_TableView = new QTableView(rowsPage);
  m_TableView->setObjectName("m_TableView");
  m_TableView->setModel(m_Model);
  m_TableView->setSelectionBehavior(QAbstractItemView::SelectRows);
  // colours are chosen in the colour dialog, values and labels edited in place
  m_TableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_TableView->horizontalHeader()->setStretchLastSection(true);
  connect(m_TableView, &QTableView::doubleClicked, this, &VXLUTEditor::onCellDoubleClicked);
  rowsLayout->addWidget(m_TableView, 1);
  m_MessageLabel = new QLabel(rowsPage);
  m_MessageLabel->setObjectName("m_MessageLabel");
  m_MessageLabel->setWordWrap(true);
  m_MessageLabel->hide();
  rowsLayout->addWidget(m_MessageLabel);
  auto* rowButtons = new QHBoxLayout();
  connect(AddButton(rowButtons, "Add Value", "m_AddValueButton",
                    "Add a value with its own color to the categorical color map"),
          &QPushButton::clicked, this, &VXLUTEditor::addRow);
  connect(AddButton(rowButtons, "Remove Value", "m_RemoveValueButton",
                    "Remove the selected values from the categorical color map"),
          &QPushButton::clicked, this, &VXLUTEditor::removeSelectedRows);
  rowButtons->addStretch(1);
  rowsLayout->addLayout(rowButtons);
  m_Pages->addWidget(rowsPage);
  layout->addWidget(m_Pages, 1);
  connect(m_Model, &QAbstractItemModel::dataChanged, this, &VXLUTEditor::applyRows);
  connect(m_Model, &QAbstractItemModel::rowsRemoved, this, &VXLUTEditor::applyRows);

  auto* mapButtons = new QHBoxLayout();
  connect(AddButton(mapButtons, "Presets...", "m_PresetsButton", "Choose a preset color map"),
          &QPushButton::clicked, this, &VXLUTEditor::presetsRequested);
  connect(AddButton(mapButtons, "Invert", "m_InvertButton", "Invert the color map"),
          &QPushButton::clicked, this, &VXLUTEditor::invertRequested);
  mapButtons->addStretch(1);
  mapButtons->addWidget(new QLabel("NaN Color", this));
  m_NanColorButton = new KXColorButton(this);
  m_NanColorButton->setObjectName("m_NanColorButton");
  m_NanColorButton->setToolTip("The color of values that are not a number or lie outside the map");
  VXUserPrompt::routeColorButton(m_NanColorButton, QStringLiteral("Select NaN Color"));
  connect(m_NanColorButton, &KXColorButton::changedColor, this, &VXLUTEditor::nanColorChanged);
  mapButtons->addWidget(m_NanColorButton);
  auto* close = AddButton(mapButtons, "Close", "m_CloseButton", QString());
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  layout->addLayout(mapButtons);
}

VXLUTEditor::~VXLUTEditor()
{
  observe(nullptr);
}

void VXLUTEditor::observe(vtkColorTransferFunction* function)
{
  if (m_Function != nullptr)
    m_Function->RemoveObserver(m_ModifiedObserver);
  m_Function = function;
  if (function != nullptr)
    m_ModifiedObserver =
      function->AddObserver(vtkCommand::ModifiedEvent, this, &VXLUTEditor::onFunctionModified);
}

void VXLUTEditor::onFunctionModified()
{
  // the editor's own row edits are already shown; a preset fires many modifications at once
  if (m_Applying || m_RefreshQueued)
    return;
  m_RefreshQueued = true;
  QMetaObject::invokeMethod(
    this,
    [this]()
    {
      m_RefreshQueued = false;
      refresh();
    },
    Qt::QueuedConnection);
}

VXLookupTable* VXLUTEditor::lookupTable() const
{
  return m_Table;
}

VXColorMapEditorWidget* VXLUTEditor::colorMapWidget() const
{
  return m_ColorMapWidget;
}

VXLookupTableModel* VXLUTEditor::tableModel() const
{
  return m_Model;
}

QTableView* VXLUTEditor::tableView() const
{
  return m_TableView;
}

QString VXLUTEditor::message() const
{
  return m_MessageLabel->isHidden() ? QString() : m_MessageLabel->text();
}

void VXLUTEditor::setLookupTable(VXLookupTable* table, const QString& arrayName)
{
  m_Table = table;
  observe(table != nullptr ? table->getColorTransferFunction() : nullptr);
  setWindowTitle(arrayName.isEmpty() ? k_Title : QString("%1 - %2").arg(k_Title, arrayName));
  m_ArrayLabel->setText(arrayName);
  refresh();
}

void VXLUTEditor::refresh()
{
  if (m_Table == nullptr && m_Function != nullptr)
    observe(nullptr);
  const bool categorical =
    m_Table != nullptr && m_Table->getColorTransferFunction()->GetIndexedLookup() != 0;
  // the chart follows its function by itself: rebuilding it would end a drag in progress
  if (categorical || m_ColorMapWidget->lookupTable() != m_Table.data())
    m_ColorMapWidget->setLookupTable(categorical ? nullptr : m_Table.data());
  m_Pages->setCurrentIndex(categorical ? 1 : 0);
  if (!categorical)
    m_MessageLabel->hide();
  setEnabled(m_Table != nullptr);
  QList<VXLookupTableModel::LUTEntry> rows;
  if (categorical)
  {
    for (const VXLookupTable::IndexedColor& entry : m_Table->indexedColors())
      rows.append({ entry.color, QString::number(entry.value, 'g', 17), entry.label });
  }
  m_Filling = true;
  m_Model->setTable(rows);
  m_Filling = false;
  if (m_Table != nullptr)
  {
    const QSignalBlocker blocker(m_NanColorButton);
    m_NanColorButton->setColor(m_Table->getNANColor());
  }
}

void VXLUTEditor::applyRows()
{
  if (m_Filling || m_Table == nullptr)
    return;
  std::vector<VXLookupTable::IndexedColor> entries;
  QStringList problems;
  const QList<VXLookupTableModel::LUTEntry> rows = m_Model->table();
  for (int row = 0; row < rows.size(); ++row)
  {
    bool ok = false;
    const double value = rows[row].value.trimmed().toDouble(&ok);
    if (!ok)
    {
      problems.append(k_NotANumberMessage.arg(row + 1).arg(rows[row].value));
      continue;
    }
    entries.push_back({ value, rows[row].annotation, rows[row].color });
  }
  m_MessageLabel->setText(problems.join('\n'));
  m_MessageLabel->setVisible(!problems.isEmpty());
  m_Applying = true;
  m_Table->setIndexedColors(entries);
  m_Applying = false;
  Q_EMIT colorMapEdited();
}

void VXLUTEditor::addRow()
{
  if (m_Table == nullptr)
    return;
  // the next whole value after the largest one, in the palette's next colour
  double next = 0.0;
  for (const VXLookupTableModel::LUTEntry& row : m_Model->table())
  {
    bool ok = false;
    const double value = row.value.toDouble(&ok);
    if (ok)
      next = std::max(next, std::floor(value) + 1.0);
  }
  const QList<QColor>& palette = VXLookupTable::m_DefaultIndexedColors;
  const QColor color = palette[m_Model->rowCount() % palette.size()];
  m_Model->addRow(color, QString::number(next, 'g', 17), QString::number(next, 'g', 6));
  applyRows();
}

void VXLUTEditor::removeSelectedRows()
{
  std::set<int> rows;
  for (const QModelIndex& index : m_TableView->selectionModel()->selectedIndexes())
    rows.insert(index.row());
  if (rows.empty())
    return;
  m_Filling = true;
  for (auto it = rows.rbegin(); it != rows.rend(); ++it)
    m_Model->removeRows(*it, 1);
  m_Filling = false;
  applyRows();
}

void VXLUTEditor::onCellDoubleClicked(const QModelIndex& index)
{
  if (index.column() == VXLookupTableModel::k_ColorColumn)
    m_Model->colorButtonClicked(index);
  else
    m_TableView->edit(index);
}
