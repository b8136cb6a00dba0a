#pragma once

#include "kxcore/DataObject.hpp"
#include "kxcore/kxcore_export.h"

#include <map>
#include <memory>
#include <vector>

namespace kx::core
{
/** The children of a group, keyed and iterated by ascending identifier. */
class KXCORE_EXPORT DataMap
{
public:
  using MapType = std::map<IdType, std::shared_ptr<DataObject>>;
  using ConstIterator = MapType::const_iterator;
  using Iterator = MapType::iterator;

  std::vector<IdType> getKeys() const;
  usize size() const { return m_Map.size(); }
  bool empty() const { return m_Map.empty(); }
  bool contains(IdType id) const { return m_Map.count(id) > 0; }
  /** The child of that name, or null. */
  std::shared_ptr<DataObject> getByName(const std::string& name) const;
  std::shared_ptr<DataObject> get(IdType id) const;

  bool insert(const std::shared_ptr<DataObject>& object);
  bool remove(IdType id);
  void clear() { m_Map.clear(); }

  ConstIterator begin() const { return m_Map.begin(); }
  ConstIterator end() const { return m_Map.end(); }

private:
  MapType m_Map;
};
} // namespace kx::core
