#include "kxcore/DataMap.hpp"

namespace kx::core
{
std::vector<IdType> DataMap::getKeys() const
{
  std::vector<IdType> keys;
  keys.reserve(m_Map.size());
  for (const auto& [id, object] : m_Map)
    keys.push_back(id);
  return keys;
}

std::shared_ptr<DataObject> DataMap::getByName(const std::string& name) const
{
  for (const auto& [id, object] : m_Map)
  {
    if (object->getName() == name)
      return object;
  }
  return nullptr;
}

std::shared_ptr<DataObject> DataMap::get(IdType id) const
{
  auto iter = m_Map.find(id);
  return iter == m_Map.end() ? nullptr : iter->second;
}

bool DataMap::insert(const std::shared_ptr<DataObject>& object)
{
  if (!object || m_Map.count(object->getId()) > 0 || getByName(object->getName()))
    return false;
  m_Map.emplace(object->getId(), object);
  return true;
}

bool DataMap::remove(IdType id)
{
  return m_Map.erase(id) > 0;
}
} // namespace kx::core
