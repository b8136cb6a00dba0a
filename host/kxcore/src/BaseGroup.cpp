#include "kxcore/BaseGroup.hpp"

namespace kx::core
{
BaseGroup::BaseGroup(DataStructure& dataStructure, std::string name, IdType id)
  : DataObject(dataStructure, std::move(name), id)
{
}

BaseGroup::~BaseGroup() = default;

bool BaseGroup::canInsert(const DataObject& object) const
{
  return !m_DataMap.contains(object.getId()) && !m_DataMap.getByName(object.getName());
}
} // namespace kx::core
