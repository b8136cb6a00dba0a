#pragma once

#include "kxcore/DataArray.hpp"
#include "kxcore/IGridGeometry.hpp"

namespace kx::core
{
/** A grid of cells between three lists of plane positions (bounds). */
class KXCORE_EXPORT RectGridGeom : public IGridGeometry
{
public:
  static constexpr const char* k_TypeName = "RectGridGeom";

  static RectGridGeom* Create(DataStructure& ds, std::string name,
                              std::optional<IdType> parentId = std::nullopt);
  static RectGridGeom* Import(DataStructure& ds, std::string name, IdType importId,
                              std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::RectGrid; }

  /** Bounds along each axis, one more value than cells; may be empty. */
  std::shared_ptr<Float32Array> getSharedXBounds() const;
  std::shared_ptr<Float32Array> getSharedYBounds() const;
  std::shared_ptr<Float32Array> getSharedZBounds() const;

  std::optional<IdType> getXBoundsId() const { return m_BoundsIds[0]; }
  std::optional<IdType> getYBoundsId() const { return m_BoundsIds[1]; }
  std::optional<IdType> getZBoundsId() const { return m_BoundsIds[2]; }
  /** Sets the three bounds arrays; the cell dimensions are set apart, by setDimensions. */
  void setBounds(std::optional<IdType> xId, std::optional<IdType> yId, std::optional<IdType> zId);

protected:
  RectGridGeom(DataStructure& ds, std::string name, IdType id);
  RectGridGeom(const RectGridGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

private:
  std::shared_ptr<Float32Array> bounds(int axis) const;
  std::optional<IdType> m_BoundsIds[3];
};
} // namespace kx::core
