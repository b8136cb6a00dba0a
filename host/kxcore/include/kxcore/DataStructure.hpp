#pragma once

#include "kxcore/DataMap.hpp"
#include "kxcore/DataObject.hpp"
#include "kxcore/DataPath.hpp"
#include "kxcore/kxcore_export.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace kx::core
{
/**
 * The store of all objects of one data set collection, keyed by identifier and
 * organised as a tree of groups. Identifiers start at 1 and are never reused
 * until resetIds. Copies are independent trees whose arrays share their
 * element stores with the original.
 */
class KXCORE_EXPORT DataStructure
{
public:
  DataStructure();
  DataStructure(const DataStructure& other);
  DataStructure(DataStructure&& other) noexcept;
  DataStructure& operator=(const DataStructure& other);
  DataStructure& operator=(DataStructure&& other) noexcept;
  ~DataStructure();

  /** Top-level objects, ascending identifier. */
  DataMap::ConstIterator begin() const { return m_Root.begin(); }
  DataMap::ConstIterator end() const { return m_Root.end(); }
  const DataMap& getDataMap() const { return m_Root; }

  DataObject* getData(IdType id) const;
  DataObject* getData(const DataPath& path) const;
  std::shared_ptr<DataObject> getSharedData(IdType id) const;
  std::shared_ptr<DataObject> getSharedData(const DataPath& path) const;
  std::optional<IdType> getId(const DataPath& path) const;

  template<typename T>
  T* getDataAs(IdType id) const
  {
    return dynamic_cast<T*>(getData(id));
  }
  template<typename T>
  T* getDataAs(const DataPath& path) const
  {
    return dynamic_cast<T*>(getData(path));
  }
  template<typename T>
  std::shared_ptr<T> getSharedDataAs(IdType id) const
  {
    return std::dynamic_pointer_cast<T>(getSharedData(id));
  }

  /** Every path of every object: depth first, ascending identifier at each level. */
  std::vector<DataPath> getAllDataPaths() const;

  /** Number of objects. */
  usize getSize() const { return m_Objects.size(); }

  /** The identifier the next new object would get. */
  IdType getNextId() const { return m_NextId; }
  /** Takes the next identifier. */
  IdType generateId() { return m_NextId++; }

  /** Renumbers all objects from start on in their current order, keeping the tree. */
  void resetIds(IdType start);

  /**
   * Adds an object under a parent group, or at the top level without one.
   * Refused if the identifier is taken, the parent is missing or refuses it, or
   * a sibling has the same name.
   */
  bool insert(const std::shared_ptr<DataObject>& object, std::optional<IdType> parentId);

  /** Makes an existing object a child of one more group. */
  bool setAdditionalParent(IdType targetId, IdType parentId);

  /** Removes the object from everywhere, and its children that no other parent holds. */
  bool removeData(IdType id);

private:
  void copyFrom(const DataStructure& other);
  void adoptObjects();
  bool isAncestor(IdType candidateAncestor, IdType id) const;
  void collectPaths(const DataMap& map, const DataPath& prefix, std::vector<DataPath>& out) const;

  std::map<IdType, std::shared_ptr<DataObject>> m_Objects;
  DataMap m_Root;
  IdType m_NextId = 1;
};
} // namespace kx::core
