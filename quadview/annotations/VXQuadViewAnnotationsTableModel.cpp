#include "quadview/annotations/VXQuadViewAnnotationsTableModel.hpp"

#include "quadview/annotations/VXQuadViewAnnotation.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace voxelia::quadview::annotations
{
namespace
{
const char* const k_Headers[] = { "Type", "Name", "Pane", "Slice", "Length / Shape", "Locked" };

// one question with the question icon, Cancel as default and @p accept as the only way to yes
bool confirm(QWidget* parent, const QString& title, const QString& text, const QString& accept)
{
  QMessageBox box(parent);
  box.setIcon(QMessageBox::Question);
  box.setWindowTitle(title);
  box.setText(text);
  box.setInformativeText(QStringLiteral("This cannot be undone."));
  QPushButton* acceptButton = box.addButton(accept, QMessageBox::AcceptRole);
  box.addButton(QMessageBox::Cancel);
  box.setDefaultButton(QMessageBox::Cancel);
  VXUserPrompt::exec(box);
  return box.clickedButton() == acceptButton;
}
} // namespace

VXQuadViewAnnotationsTableModel::VXQuadViewAnnotationsTableModel(
  const std::array<VXQuadViewAnnotationsController*, 3>& controllers, QObject* parent)
  : QAbstractTableModel(parent)
  , m_Controllers(controllers)
{
  for (int pane = 0; pane < 3; ++pane)
  {
    VXQuadViewAnnotationsController* controller = m_Controllers[static_cast<size_t>(pane)];
    if (controller == nullptr)
      continue;
    for (const auto& annotation : controller->annotations())
      m_Rows.push_back({ pane, annotation->id() });
    connect(controller, &VXQuadViewAnnotationsController::annotationAdded, this,
            &VXQuadViewAnnotationsTableModel::onAnnotationAdded);
    connect(controller, &VXQuadViewAnnotationsController::annotationRemoved, this,
            &VXQuadViewAnnotationsTableModel::onAnnotationRemoved);
    connect(controller, &VXQuadViewAnnotationsController::annotationChanged, this,
            &VXQuadViewAnnotationsTableModel::onAnnotationChanged);
  }
}

VXQuadViewAnnotationsTableModel::~VXQuadViewAnnotationsTableModel() = default;

int VXQuadViewAnnotationsTableModel::rowCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : static_cast<int>(m_Rows.size());
}

int VXQuadViewAnnotationsTableModel::columnCount(const QModelIndex& parent) const
{
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant VXQuadViewAnnotationsTableModel::data(const QModelIndex& index, int role) const
{
  const VXQuadViewAnnotation* a = annotationAt(index.row());
  if (a == nullptr || !index.isValid())
    return {};
  if (index.column() == LockedColumn)
  {
    if (role == Qt::CheckStateRole)
      return a->locked() ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::EditRole)
      return a->locked();
    return {};
  }
  if (role != Qt::DisplayRole && role != Qt::EditRole)
    return {};
  switch (index.column())
  {
    case TypeColumn:
      return VXQuadViewAnnotation::typeName(a->type());
    case NameColumn:
      return a->name();
    case PaneColumn:
      return slicePaneName(a->role());
    case SliceColumn:
      return a->displaySliceIndex();
    case SummaryColumn:
      return a->summaryText();
    default:
      return {};
  }
}

QVariant VXQuadViewAnnotationsTableModel::headerData(int section, Qt::Orientation orientation,
                                                     int role) const
{
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
      section >= ColumnCount)
    return QAbstractTableModel::headerData(section, orientation, role);
  return QString::fromLatin1(k_Headers[section]);
}

Qt::ItemFlags VXQuadViewAnnotationsTableModel::flags(const QModelIndex& index) const
{
  if (!index.isValid())
    return Qt::NoItemFlags;
  Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (index.column() == NameColumn)
    f |= Qt::ItemIsEditable;
  if (index.column() == LockedColumn)
    f |= Qt::ItemIsUserCheckable;
  return f;
}

bool VXQuadViewAnnotationsTableModel::setData(const QModelIndex& index, const QVariant& value,
                                              int role)
{
  VXQuadViewAnnotation* a = annotationAt(index.row());
  if (a == nullptr)
    return false;
  if (index.column() == NameColumn && role == Qt::EditRole)
  {
    const QString name = value.toString().trimmed();
    if (name.isEmpty() || name == a->name())
      return false;
    a->setName(name);
    Q_EMIT dataChanged(index, index);
    return true;
  }
  if (index.column() == LockedColumn && role == Qt::CheckStateRole)
  {
    const bool locked = value.toInt() == Qt::Checked;
    if (locked == a->locked())
      return false;
    a->setLocked(locked);
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), ColumnCount - 1));
    return true;
  }
  return false;
}

VXQuadViewAnnotation* VXQuadViewAnnotationsTableModel::annotationAt(int row) const
{
  if (row < 0 || row >= static_cast<int>(m_Rows.size()))
    return nullptr;
  const Row& r = m_Rows[static_cast<size_t>(row)];
  VXQuadViewAnnotationsController* controller = m_Controllers[static_cast<size_t>(r.pane)];
  return controller != nullptr ? controller->annotationById(r.id) : nullptr;
}

int VXQuadViewAnnotationsTableModel::findRow(const AnnotationId& id) const
{
  const auto it =
    std::find_if(m_Rows.begin(), m_Rows.end(), [&id](const Row& r) { return r.id == id; });
  return it == m_Rows.end() ? -1 : static_cast<int>(it - m_Rows.begin());
}

int VXQuadViewAnnotationsTableModel::rowFor(const AnnotationId& id) const
{
  return findRow(id);
}

int VXQuadViewAnnotationsTableModel::paneOfRow(int row) const
{
  if (row < 0 || row >= static_cast<int>(m_Rows.size()))
    return -1;
  return m_Rows[static_cast<size_t>(row)].pane;
}

void VXQuadViewAnnotationsTableModel::navigateToRow(int row)
{
  if (VXQuadViewAnnotation* a = annotationAt(row))
    a->navigateTo();
}

void VXQuadViewAnnotationsTableModel::removeAnnotationByRow(int row)
{
  removeAnnotationsByRows({ row });
}

void VXQuadViewAnnotationsTableModel::removeAnnotationsByRows(QList<int> rows)
{
  std::vector<Row> targets;
  for (int row : rows)
  {
    if (row >= 0 && row < static_cast<int>(m_Rows.size()))
      targets.push_back(m_Rows[static_cast<size_t>(row)]);
  }
  for (const Row& target : targets)
  {
    if (VXQuadViewAnnotationsController* controller =
          m_Controllers[static_cast<size_t>(target.pane)])
      controller->remove(target.id);
  }
}

void VXQuadViewAnnotationsTableModel::clearAllAnnotations()
{
  for (VXQuadViewAnnotationsController* controller : m_Controllers)
  {
    if (controller != nullptr)
      controller->clearAll();
  }
}

bool VXQuadViewAnnotationsTableModel::confirmDeleteOne(QWidget* parent, const QString& name)
{
  return confirm(parent, QStringLiteral("Delete Annotation"),
                 QStringLiteral("Delete \"%1\"?").arg(name), QStringLiteral("Delete"));
}

bool VXQuadViewAnnotationsTableModel::confirmDeleteMany(QWidget* parent, int count)
{
  const QString text = count == 1 ? QStringLiteral("Delete 1 annotation?")
                                  : QStringLiteral("Delete %1 annotations?").arg(count);
  return confirm(parent, QStringLiteral("Delete Annotations"), text, QStringLiteral("Delete"));
}

bool VXQuadViewAnnotationsTableModel::confirmClearAll(QWidget* parent, QString scope)
{
  return confirm(parent, QStringLiteral("Clear Annotations"),
                 QStringLiteral("Clear all annotations in %1?").arg(scope),
                 QStringLiteral("Clear All"));
}

void VXQuadViewAnnotationsTableModel::onAnnotationAdded(const AnnotationId& id)
{
  const int pane = paneIdxOfSender();
  if (pane < 0 || findRow(id) >= 0)
    return;
  const int row = static_cast<int>(m_Rows.size());
  beginInsertRows(QModelIndex(), row, row);
  m_Rows.push_back({ pane, id });
  endInsertRows();
}

void VXQuadViewAnnotationsTableModel::onAnnotationRemoved(const AnnotationId& id)
{
  const int row = findRow(id);
  if (row < 0)
    return;
  beginRemoveRows(QModelIndex(), row, row);
  m_Rows.erase(m_Rows.begin() + row);
  endRemoveRows();
}

void VXQuadViewAnnotationsTableModel::onAnnotationChanged(const AnnotationId& id)
{
  const int row = findRow(id);
  if (row >= 0)
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int VXQuadViewAnnotationsTableModel::paneIdxOfSender() const
{
  const auto it = std::find(m_Controllers.begin(), m_Controllers.end(), sender());
  return it == m_Controllers.end() ? -1 : static_cast<int>(it - m_Controllers.begin());
}
} // namespace voxelia::quadview::annotations
