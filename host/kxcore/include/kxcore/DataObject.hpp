#pragma once

#include "kxcore/DataPath.hpp"
#include "kxcore/Types.hpp"
#include "kxcore/kxcore_export.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kx::core
{
class DataStructure;

/**
 * Base of every object in a DataStructure: an identifier, a name and the
 * identifiers of its parent groups. An object reached from the root directly
 * is a top-level object; one object may sit under several groups.
 */
class KXCORE_EXPORT DataObject
{
public:
  virtual ~DataObject();

  /** Name of the concrete type as stored in files: "ImageGeom", "DataArray", ... */
  virtual std::string getTypeName() const = 0;

  IdType getId() const { return m_Id; }
  const std::string& getName() const { return m_Name; }
  DataStructure* getDataStructure() const { return m_DataStructure; }

  /** Identifiers of the groups holding this object, ascending. Top level is not listed. */
  const std::vector<IdType>& getParentIds() const { return m_ParentIds; }

  /** One path for each way of reaching this object from the root. */
  std::vector<DataPath> getDataPaths() const;

protected:
  DataObject(DataStructure& dataStructure, std::string name, IdType id);
  DataObject(const DataObject&) = default;

  /** A copy of this object for another structure; arrays share their store. */
  virtual std::shared_ptr<DataObject> shallowCopy() const = 0;

  /** Renumbers identifiers this object keeps of other objects. */
  virtual void remapIds(const std::map<IdType, IdType>& oldToNew);

private:
  friend class DataStructure;

  DataStructure* m_DataStructure = nullptr;
  IdType m_Id = 0;
  std::string m_Name;
  std::vector<IdType> m_ParentIds;
};
} // namespace kx::core
