#include "kxcore/TetrahedralGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
TetrahedralGeom::TetrahedralGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry3D(ds, std::move(name), id)
{
}

TetrahedralGeom* TetrahedralGeom::Create(DataStructure& ds, std::string name,
                                         std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

TetrahedralGeom* TetrahedralGeom::Import(DataStructure& ds, std::string name, IdType importId,
                                         std::optional<IdType> parentId)
{
  std::shared_ptr<TetrahedralGeom> geom(new TetrahedralGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> TetrahedralGeom::shallowCopy() const
{
  return std::shared_ptr<TetrahedralGeom>(new TetrahedralGeom(*this));
}
} // namespace kx::core
