#include "kxcore/DataGroup.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
DataGroup::DataGroup(DataStructure& ds, std::string name, IdType id)
  : BaseGroup(ds, std::move(name), id)
{
}

DataGroup* DataGroup::Create(DataStructure& ds, std::string name, std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

DataGroup* DataGroup::Import(DataStructure& ds, std::string name, IdType importId,
                             std::optional<IdType> parentId)
{
  std::shared_ptr<DataGroup> group(new DataGroup(ds, std::move(name), importId));
  return ds.insert(group, parentId) ? group.get() : nullptr;
}

std::shared_ptr<DataObject> DataGroup::shallowCopy() const
{
  return std::shared_ptr<DataGroup>(new DataGroup(*this));
}
} // namespace kx::core
