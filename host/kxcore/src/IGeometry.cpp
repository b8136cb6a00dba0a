#include "kxcore/IGeometry.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/DataStructure.hpp"

namespace kx::core
{
IGeometry::IGeometry(DataStructure& ds, std::string name, IdType id)
  : BaseGroup(ds, std::move(name), id)
{
}

IGeometry::~IGeometry() = default;

AttributeMatrix* IGeometry::attributeMatrix(const std::optional<IdType>& id) const
{
  if (!id.has_value() || getDataStructure() == nullptr)
    return nullptr;
  return getDataStructure()->getDataAs<AttributeMatrix>(*id);
}

void IGeometry::remapId(std::optional<IdType>& id, const std::map<IdType, IdType>& oldToNew)
{
  if (!id.has_value())
    return;
  auto iter = oldToNew.find(*id);
  // a reference to an object that is gone is dropped: after renumbering its old
  // identifier may belong to another object, which the geometry must not adopt
  if (iter != oldToNew.end())
    id = iter->second;
  else
    id.reset();
}
} // namespace kx::core
