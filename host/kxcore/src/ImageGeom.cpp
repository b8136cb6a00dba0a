#include "kxcore/ImageGeom.hpp"

#include "kxcore/DataStructure.hpp"

namespace kx::core
{
ImageGeom::ImageGeom(DataStructure& ds, std::string name, IdType id)
  : IGridGeometry(ds, std::move(name), id)
{
}

ImageGeom* ImageGeom::Create(DataStructure& ds, std::string name, std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

ImageGeom* ImageGeom::Import(DataStructure& ds, std::string name, IdType importId,
                             std::optional<IdType> parentId)
{
  std::shared_ptr<ImageGeom> geom(new ImageGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<DataObject> ImageGeom::shallowCopy() const
{
  return std::shared_ptr<ImageGeom>(new ImageGeom(*this));
}
} // namespace kx::core
