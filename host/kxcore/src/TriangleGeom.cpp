#include "kxcore/TriangleGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
TriangleGeom::TriangleGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry2D(ds, std::move(name), id)
{
}

TriangleGeom* TriangleGeom::Create(DataStructure& ds, std::string name,
                                   std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

TriangleGeom* TriangleGeom::Import(DataStructure& ds, std::string name, IdType importId,
                                   std::optional<IdType> parentId)
{
  std::shared_ptr<TriangleGeom> geom(new TriangleGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> TriangleGeom::shallowCopy() const
{
  return std::shared_ptr<TriangleGeom>(new TriangleGeom(*this));
}
} // namespace kx::core
