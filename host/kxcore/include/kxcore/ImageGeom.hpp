#pragma once

#include "kxcore/IGridGeometry.hpp"

namespace kx::core
{
/** A uniform grid of cells with an origin and a spacing. */
class KXCORE_EXPORT ImageGeom : public IGridGeometry
{
public:
  static constexpr const char* k_TypeName = "ImageGeom";

  static ImageGeom* Create(DataStructure& ds, std::string name,
                           std::optional<IdType> parentId = std::nullopt);
  static ImageGeom* Import(DataStructure& ds, std::string name, IdType importId,
                           std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Image; }

  FloatVec3 getOrigin() const { return m_Origin; }
  void setOrigin(const FloatVec3& origin) { m_Origin = origin; }
  FloatVec3 getSpacing() const { return m_Spacing; }
  void setSpacing(const FloatVec3& spacing) { m_Spacing = spacing; }

protected:
  ImageGeom(DataStructure& ds, std::string name, IdType id);
  ImageGeom(const ImageGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;

private:
  FloatVec3 m_Origin{ 0.0f, 0.0f, 0.0f };
  FloatVec3 m_Spacing{ 1.0f, 1.0f, 1.0f };
};
} // namespace kx::core
