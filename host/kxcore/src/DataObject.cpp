#include "kxcore/DataObject.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
DataObject::DataObject(DataStructure& dataStructure, std::string name, IdType id)
  : m_DataStructure(&dataStructure)
  , m_Id(id)
  , m_Name(std::move(name))
{
}

DataObject::~DataObject() = default;

void DataObject::remapIds(const std::map<IdType, IdType>&) {}

std::vector<DataPath> DataObject::getDataPaths() const
{
  std::vector<DataPath> paths;
  if (m_DataStructure == nullptr)
    return paths;
  if (m_DataStructure->getDataMap().contains(m_Id))
    paths.emplace_back(std::vector<std::string>{ m_Name });
  for (IdType parentId : m_ParentIds)
  {
    const DataObject* parent = m_DataStructure->getData(parentId);
    if (parent == nullptr)
      continue;
    for (const DataPath& parentPath : parent->getDataPaths())
      paths.push_back(parentPath.createChildPath(m_Name));
  }
  return paths;
}
} // namespace kx::core
