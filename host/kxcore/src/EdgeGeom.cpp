#include "kxcore/EdgeGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
EdgeGeom::EdgeGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry1D(ds, std::move(name), id)
{
}

EdgeGeom* EdgeGeom::Create(DataStructure& ds, std::string name, std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

EdgeGeom* EdgeGeom::Import(DataStructure& ds, std::string name, IdType importId,
                           std::optional<IdType> parentId)
{
  std::shared_ptr<EdgeGeom> geom(new EdgeGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> EdgeGeom::shallowCopy() const
{
  return std::shared_ptr<EdgeGeom>(new EdgeGeom(*this));
}
} // namespace kx::core
