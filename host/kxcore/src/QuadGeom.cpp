#include "kxcore/QuadGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
QuadGeom::QuadGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry2D(ds, std::move(name), id)
{
}

QuadGeom* QuadGeom::Create(DataStructure& ds, std::string name, std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

QuadGeom* QuadGeom::Import(DataStructure& ds, std::string name, IdType importId,
                           std::optional<IdType> parentId)
{
  std::shared_ptr<QuadGeom> geom(new QuadGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> QuadGeom::shallowCopy() const
{
  return std::shared_ptr<QuadGeom>(new QuadGeom(*this));
}
} // namespace kx::core
