#include "kxcore/RectGridGeom.hpp"

namespace kx::core
{
RectGridGeom::RectGridGeom(DataStructure& ds, std::string name, IdType id)
  : IGridGeometry(ds, std::move(name), id)
{
}

RectGridGeom* RectGridGeom::Create(DataStructure& ds, std::string name,
                                   std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), parentId);
}

RectGridGeom* RectGridGeom::Import(DataStructure& ds, std::string name, IdType importId,
                                   std::optional<IdType> parentId)
{
  std::shared_ptr<RectGridGeom> geom(new RectGridGeom(ds, std::move(name), importId));
  return ds.insert(geom, parentId) ? geom.get() : nullptr;
}

std::shared_ptr<Float32Array> RectGridGeom::bounds(int axis) const
{
  if (!m_BoundsIds[axis].has_value() || getDataStructure() == nullptr)
    return nullptr;
  return getDataStructure()->getSharedDataAs<Float32Array>(*m_BoundsIds[axis]);
}

std::shared_ptr<Float32Array> RectGridGeom::getSharedXBounds() const
{
  return bounds(0);
}

std::shared_ptr<Float32Array> RectGridGeom::getSharedYBounds() const
{
  return bounds(1);
}

std::shared_ptr<Float32Array> RectGridGeom::getSharedZBounds() const
{
  return bounds(2);
}

void RectGridGeom::setBounds(std::optional<IdType> xId, std::optional<IdType> yId,
                             std::optional<IdType> zId)
{
  m_BoundsIds[0] = xId;
  m_BoundsIds[1] = yId;
  m_BoundsIds[2] = zId;
}

void RectGridGeom::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  IGridGeometry::remapIds(oldToNew);
  for (auto& id : m_BoundsIds)
    remapId(id, oldToNew);
}

std::shared_ptr<DataObject> RectGridGeom::shallowCopy() const
{
  return std::shared_ptr<RectGridGeom>(new RectGridGeom(*this));
}
} // namespace kx::core
