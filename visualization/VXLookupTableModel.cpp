#include "visualization/VXLookupTableModel.hpp"

#include "visualization/VXUserPrompt.hpp"

#include <QtWidgets/QApplication>

VXLookupTableModel::VXLookupTableModel(QObject* parent)
  : QAbstractTableModel(parent)
{
}

VXLookupTableModel::~VXLookupTableModel() = default;

void VXLookupTableModel::addRow(const QColor& color, const QString& value,
                                const QString& annotation)
{
  const int row = static_cast<int>(m_Table.size());
  beginInsertRows(QModelIndex(), row, row);
  m_Table.append({ color, value, annotation });
  endInsertRows();
}

void VXLookupTableModel::removeRow(const QModelIndex& index)
{
  if (!index.isValid() || index.model() != this)
  {
    return;
  }
  removeRows(index.row(), 1);
}

bool VXLookupTableModel::removeRows(int row, int count, const QModelIndex& parent)
{
  if (parent.isValid() || row < 0 || count < 1 || row + count > m_Table.size())
  {
    return false;
  }
  beginRemoveRows(QModelIndex(), row, row + count - 1);
  m_Table.remove(row, count);
  endRemoveRows();
  return true;
}

void VXLookupTableModel::clearTable()
{
  beginResetModel();
  m_Table.clear();
  endResetModel();
}

void VXLookupTableModel::setTable(const QList<LUTEntry>& table)
{
  beginResetModel();
  m_Table = table;
  endResetModel();
}

QList<VXLookupTableModel::LUTEntry> VXLookupTableModel::table() const
{
  return m_Table;
}

int VXLookupTableModel::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : static_cast<int>(m_Table.size());
}

int VXLookupTableModel::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : 3;
}

QVariant VXLookupTableModel::data(const QModelIndex& index, int role) const
{
  if (!index.isValid() || index.row() >= m_Table.size())
  {
    return {};
  }
  const LUTEntry& entry = m_Table[index.row()];
  // the colour column shows a swatch beside the colour's name
  if (role == Qt::DecorationRole && index.column() == k_ColorColumn)
  {
    return entry.color;
  }
  if (role != Qt::DisplayRole && role != Qt::EditRole)
  {
    return {};
  }
  switch (index.column())
  {
    case k_ColorColumn:
      return entry.color;
    case k_ValueColumn:
      return entry.value;
    case k_AnnotationColumn:
      return entry.annotation;
    default:
      return {};
  }
}

bool VXLookupTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
  if (!index.isValid() || role != Qt::EditRole || index.row() >= m_Table.size())
  {
    return false;
  }
  LUTEntry& entry = m_Table[index.row()];
  switch (index.column())
  {
    case k_ColorColumn:
      entry.color = value.value<QColor>();
      break;
    case k_ValueColumn:
      entry.value = value.toString();
      Q_EMIT valueChanged(index);
      break;
    case k_AnnotationColumn:
      entry.annotation = value.toString();
      break;
    default:
      return false;
  }
  Q_EMIT dataChanged(index, index, { Qt::DisplayRole, Qt::EditRole });
  return true;
}

Qt::ItemFlags VXLookupTableModel::flags(const QModelIndex& index) const
{
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  if (index.isValid())
  {
    flags |= Qt::ItemIsEditable;
  }
  return flags;
}

QVariant VXLookupTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
  {
    switch (section)
    {
      case k_ColorColumn:
        return QStringLiteral("Color");
      case k_ValueColumn:
        return QStringLiteral("Value");
      case k_AnnotationColumn:
        return QStringLiteral("Annotation");
      default:
        return {};
    }
  }
  return QAbstractTableModel::headerData(section, orientation, role);
}

void VXLookupTableModel::colorButtonClicked(QModelIndex index)
{
  if (!index.isValid() || index.row() >= m_Table.size())
  {
    return;
  }
  const QColor oldColor = m_Table[index.row()].color;
  const QColor color =
    VXUserPrompt::getColor(QApplication::activeWindow(), oldColor, k_ColorDialogTitle);
  const QModelIndex colorIndex = this->index(index.row(), k_ColorColumn);
  setData(colorIndex, color.isValid() ? color : oldColor, Qt::EditRole);
}
