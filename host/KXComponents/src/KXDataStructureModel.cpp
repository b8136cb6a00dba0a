#include "KXComponents/KXDataStructureModel.hpp"

#include <kxcore/BaseGroup.hpp>

#include <vector>

using kx::core::BaseGroup;
using kx::core::DataMap;
using kx::core::DataObject;
using kx::core::DataPath;

/**
 * One row: the object reached through this branch of the tree. Nodes are a
 * snapshot of the structure, so a model index never points into kxcore's own
 * containers, which may change under the model.
 */
struct KXDataStructureModel::Node
{
  Node* parent = nullptr;
  int row = 0;
  kx::core::IdType id = 0;
  QString name;
  QString typeName;
  std::vector<std::unique_ptr<Node>> children;
};

KXDataStructureModel::KXDataStructureModel(QObject* parent)
  : QAbstractItemModel(parent)
  , m_Root(std::make_unique<Node>())
{
}

KXDataStructureModel::~KXDataStructureModel() = default;

std::shared_ptr<kx::core::DataStructure> KXDataStructureModel::getDataStructure() const
{
  return m_DataStructure;
}

void KXDataStructureModel::setDataStructure(std::shared_ptr<kx::core::DataStructure> dataStructure)
{
  beginResetModel();
  m_DataStructure = std::move(dataStructure);
  buildNodes();
  endResetModel();
}

void KXDataStructureModel::refresh()
{
  beginResetModel();
  buildNodes();
  endResetModel();
}

void KXDataStructureModel::buildNodes()
{
  m_Root = std::make_unique<Node>();
  if (!m_DataStructure)
  {
    return;
  }
  // Depth-first over the group maps; a group cannot contain its own ancestor
  // (DataStructure refuses such links), so the recursion ends.
  const auto addChildren = [](auto& self, Node* parentNode, const DataMap& map) -> void
  {
    for (const auto& [id, object] : map)
    {
      if (!object)
      {
        continue;
      }
      auto node = std::make_unique<Node>();
      node->parent = parentNode;
      node->row = static_cast<int>(parentNode->children.size());
      node->id = id;
      node->name = QString::fromStdString(object->getName());
      node->typeName = QString::fromStdString(object->getTypeName());
      if (const auto* group = dynamic_cast<const BaseGroup*>(object.get()))
      {
        self(self, node.get(), group->getDataMap());
      }
      parentNode->children.push_back(std::move(node));
    }
  };
  addChildren(addChildren, m_Root.get(), m_DataStructure->getDataMap());
}

DataPath KXDataStructureModel::dataPath(const QModelIndex& index) const
{
  std::vector<std::string> names;
  for (auto* node = static_cast<Node*>(index.internalPointer());
       index.isValid() && node != nullptr && node != m_Root.get(); node = node->parent)
  {
    names.insert(names.begin(), node->name.toStdString());
  }
  return DataPath(std::move(names));
}

QModelIndex KXDataStructureModel::indexFromPath(const DataPath& path) const
{
  const Node* node = m_Root.get();
  QModelIndex result;
  for (const std::string& name : path.getPathVector())
  {
    const QString wanted = QString::fromStdString(name);
    const Node* next = nullptr;
    for (const auto& child : node->children)
    {
      if (child->name == wanted)
      {
        next = child.get();
        break;
      }
    }
    if (next == nullptr)
    {
      return QModelIndex();
    }
    node = next;
    result = createIndex(node->row, 0, const_cast<Node*>(node));
  }
  return result;
}

QModelIndex KXDataStructureModel::index(int row, int column, const QModelIndex& parent) const
{
  if (column != 0 || row < 0 || (parent.isValid() && parent.column() != 0))
  {
    return QModelIndex();
  }
  const Node* parentNode =
    parent.isValid() ? static_cast<Node*>(parent.internalPointer()) : m_Root.get();
  if (static_cast<size_t>(row) >= parentNode->children.size())
  {
    return QModelIndex();
  }
  return createIndex(row, 0, parentNode->children[static_cast<size_t>(row)].get());
}

QModelIndex KXDataStructureModel::parent(const QModelIndex& child) const
{
  if (!child.isValid())
  {
    return QModelIndex();
  }
  const Node* parentNode = static_cast<Node*>(child.internalPointer())->parent;
  if (parentNode == nullptr || parentNode == m_Root.get())
  {
    return QModelIndex();
  }
  return createIndex(parentNode->row, 0, const_cast<Node*>(parentNode));
}

int KXDataStructureModel::rowCount(const QModelIndex& parent) const
{
  if (parent.isValid() && parent.column() != 0)
  {
    return 0;
  }
  const Node* node = parent.isValid() ? static_cast<Node*>(parent.internalPointer()) : m_Root.get();
  return static_cast<int>(node->children.size());
}

int KXDataStructureModel::columnCount(const QModelIndex& /*parent*/) const
{
  return 1;
}

QVariant KXDataStructureModel::data(const QModelIndex& index, int role) const
{
  if (!index.isValid())
  {
    return QVariant();
  }
  const Node* node = static_cast<Node*>(index.internalPointer());
  switch (role)
  {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
      return node->name;
    case IdRole:
      return QVariant::fromValue<qulonglong>(node->id);
    case TypeNameRole:
      return node->typeName;
    case PathRole:
      return QString::fromStdString(dataPath(index).toString());
    default:
      return QVariant();
  }
}

QVariant KXDataStructureModel::headerData(int section, Qt::Orientation orientation, int role) const
{
  if (section == 0 && orientation == Qt::Horizontal && role == Qt::DisplayRole)
  {
    return tr("Name");
  }
  return QVariant();
}
