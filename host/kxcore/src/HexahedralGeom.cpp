#include "kxcore/HexahedralGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
HexahedralGeom::HexahedralGeom(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry3D(ds, std::move(name), id)
{
}

HexahedralGeom* HexahedralGeom::Create(DataStructure& ds, std::string name,
                                       std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

HexahedralGeom* HexahedralGeom::Import(DataStructure& ds, std::string name, IdType importId,
                                       std::optional<IdType> parentId)
{
  std::shared_ptr<HexahedralGeom> geom(new HexahedralGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> HexahedralGeom::shallowCopy() const
{
  return std::shared_ptr<HexahedralGeom>(new HexahedralGeom(*this));
}
} // namespace kx::core
