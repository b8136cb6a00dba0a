#include "kxcore/VertexGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
VertexGeom::VertexGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry0D(ds, std::move(name), id)
{
}

VertexGeom* VertexGeom::Create(DataStructure& ds, std::string name, std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

VertexGeom* VertexGeom::Import(DataStructure& ds, std::string name, IdType importId,
                               std::optional<IdType> parentId)
{
  std::shared_ptr<VertexGeom> geom(new VertexGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> VertexGeom::shallowCopy() const
{
  return std::shared_ptr<VertexGeom>(new VertexGeom(*this));
}
} // namespace kx::core
