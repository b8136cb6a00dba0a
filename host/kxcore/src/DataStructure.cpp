#include "kxcore/DataStructure.hpp"

#include "kxcore/BaseGroup.hpp"

#include <algorithm>

namespace kx::core
{
DataStructure::DataStructure() = default;

DataStructure::DataStructure(const DataStructure& other)
{
  copyFrom(other);
}

DataStructure::DataStructure(DataStructure&& other) noexcept
  : m_Objects(std::move(other.m_Objects))
  , m_Root(std::move(other.m_Root))
  , m_NextId(other.m_NextId)
{
  other.m_Objects.clear();
  other.m_Root.clear();
  other.m_NextId = 1;
  adoptObjects();
}

DataStructure& DataStructure::operator=(const DataStructure& other)
{
  if (this != &other)
  {
    m_Objects.clear();
    m_Root.clear();
    copyFrom(other);
  }
  return *this;
}

DataStructure& DataStructure::operator=(DataStructure&& other) noexcept
{
  if (this != &other)
  {
    m_Objects = std::move(other.m_Objects);
    m_Root = std::move(other.m_Root);
    m_NextId = other.m_NextId;
    other.m_Objects.clear();
    other.m_Root.clear();
    other.m_NextId = 1;
    adoptObjects();
  }
  return *this;
}

DataStructure::~DataStructure() = default;

void DataStructure::adoptObjects()
{
  for (auto& [id, object] : m_Objects)
    object->m_DataStructure = this;
}

void DataStructure::copyFrom(const DataStructure& other)
{
  m_NextId = other.m_NextId;
  for (const auto& [id, object] : other.m_Objects)
  {
    auto copy = object->shallowCopy();
    copy->m_DataStructure = this;
    m_Objects.emplace(id, std::move(copy));
  }
  // the copied groups still point at the other structure's children
  for (auto& [id, object] : m_Objects)
  {
    auto* group = dynamic_cast<BaseGroup*>(object.get());
    if (group == nullptr)
      continue;
    const std::vector<IdType> keys = group->m_DataMap.getKeys();
    group->m_DataMap.clear();
    for (IdType key : keys)
      group->m_DataMap.insert(m_Objects.at(key));
  }
  for (IdType key : other.m_Root.getKeys())
    m_Root.insert(m_Objects.at(key));
}

DataObject* DataStructure::getData(IdType id) const
{
  auto iter = m_Objects.find(id);
  return iter == m_Objects.end() ? nullptr : iter->second.get();
}

std::shared_ptr<DataObject> DataStructure::getSharedData(IdType id) const
{
  auto iter = m_Objects.find(id);
  return iter == m_Objects.end() ? nullptr : iter->second;
}

std::shared_ptr<DataObject> DataStructure::getSharedData(const DataPath& path) const
{
  if (path.empty())
    return nullptr;
  const DataMap* map = &m_Root;
  std::shared_ptr<DataObject> object;
  for (usize depth = 0; depth < path.getLength(); depth++)
  {
    if (map == nullptr)
      return nullptr;
    object = map->getByName(path[depth]);
    if (!object)
      return nullptr;
    const auto* group = dynamic_cast<const BaseGroup*>(object.get());
    map = group != nullptr ? &group->getDataMap() : nullptr;
  }
  return object;
}

DataObject* DataStructure::getData(const DataPath& path) const
{
  return getSharedData(path).get();
}

std::optional<IdType> DataStructure::getId(const DataPath& path) const
{
  const DataObject* object = getData(path);
  return object == nullptr ? std::nullopt : std::optional<IdType>(object->getId());
}

void DataStructure::collectPaths(const DataMap& map, const DataPath& prefix,
                                 std::vector<DataPath>& out) const
{
  for (const auto& [id, object] : map)
  {
    DataPath path = prefix.createChildPath(object->getName());
    out.push_back(path);
    if (const auto* group = dynamic_cast<const BaseGroup*>(object.get()))
      collectPaths(group->getDataMap(), path, out);
  }
}

std::vector<DataPath> DataStructure::getAllDataPaths() const
{
  std::vector<DataPath> paths;
  collectPaths(m_Root, DataPath(), paths);
  return paths;
}

void DataStructure::resetIds(IdType start)
{
  std::map<IdType, IdType> oldToNew;
  IdType next = start;
  for (const auto& [id, object] : m_Objects)
    oldToNew.emplace(id, next++);

  std::map<IdType, std::shared_ptr<DataObject>> renumbered;
  for (auto& [id, object] : m_Objects)
  {
    object->m_Id = oldToNew.at(id);
    for (IdType& parentId : object->m_ParentIds)
      parentId = oldToNew.at(parentId);
    std::sort(object->m_ParentIds.begin(), object->m_ParentIds.end());
    object->remapIds(oldToNew);
    renumbered.emplace(object->m_Id, object);
  }
  m_Objects = std::move(renumbered);

  // maps are keyed by identifier: rebuild them with the new keys
  auto rekey = [](DataMap& map)
  {
    std::vector<std::shared_ptr<DataObject>> children;
    for (const auto& [id, child] : map)
      children.push_back(child);
    map.clear();
    for (auto& child : children)
      map.insert(child);
  };
  for (auto& [id, object] : m_Objects)
  {
    if (auto* group = dynamic_cast<BaseGroup*>(object.get()))
      rekey(group->m_DataMap);
  }
  rekey(m_Root);
  m_NextId = next;
}

bool DataStructure::insert(const std::shared_ptr<DataObject>& object,
                           std::optional<IdType> parentId)
{
  if (!object || m_Objects.count(object->getId()) > 0 || object->m_DataStructure != this)
    return false;
  if (parentId.has_value())
  {
    auto* parent = getDataAs<BaseGroup>(*parentId);
    if (parent == nullptr || !parent->canInsert(*object))
      return false;
    parent->m_DataMap.insert(object);
    object->m_ParentIds = { *parentId };
  }
  else if (!m_Root.insert(object))
  {
    return false;
  }
  m_Objects.emplace(object->getId(), object);
  m_NextId = std::max(m_NextId, object->getId() + 1);
  return true;
}

bool DataStructure::isAncestor(IdType candidateAncestor, IdType id) const
{
  const DataObject* object = getData(id);
  if (object == nullptr)
    return false;
  for (IdType parentId : object->m_ParentIds)
  {
    if (parentId == candidateAncestor || isAncestor(candidateAncestor, parentId))
      return true;
  }
  return false;
}

bool DataStructure::setAdditionalParent(IdType targetId, IdType parentId)
{
  auto target = getSharedData(targetId);
  auto* parent = getDataAs<BaseGroup>(parentId);
  if (!target || parent == nullptr || targetId == parentId || isAncestor(targetId, parentId))
    return false;
  if (!parent->canInsert(*target))
    return false;
  parent->m_DataMap.insert(target);
  target->m_ParentIds.push_back(parentId);
  std::sort(target->m_ParentIds.begin(), target->m_ParentIds.end());
  return true;
}

bool DataStructure::removeData(IdType id)
{
  auto object = getSharedData(id);
  if (!object)
    return false;
  m_Root.remove(id);
  for (IdType parentId : object->m_ParentIds)
  {
    if (auto* parent = getDataAs<BaseGroup>(parentId))
      parent->m_DataMap.remove(id);
  }
  m_Objects.erase(id);
  if (auto* group = dynamic_cast<BaseGroup*>(object.get()))
  {
    for (IdType childId : group->m_DataMap.getKeys())
    {
      auto child = getSharedData(childId);
      if (!child)
        continue;
      auto& parents = child->m_ParentIds;
      parents.erase(std::remove(parents.begin(), parents.end(), id), parents.end());
      if (parents.empty() && !m_Root.contains(childId))
        removeData(childId);
    }
    group->m_DataMap.clear();
  }
  object->m_ParentIds.clear();
  return true;
}
} // namespace kx::core
