#pragma once

#include "kxcore/INodeGeometry3D.hpp"

namespace kx::core
{
/** A volume mesh of hexahedra. */
class KXCORE_EXPORT HexahedralGeom : public INodeGeometry3D
{
public:
  static constexpr const char* k_TypeName = "HexahedralGeom";

  static HexahedralGeom* Create(DataStructure& ds, std::string name,
                                std::optional<IdType> parentId = std::nullopt);
  static HexahedralGeom* Import(DataStructure& ds, std::string name, IdType importId,
                                std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Hexahedral; }
  usize getNumberOfVerticesPerFace() const override { return 4; }
  usize getNumberOfVerticesPerCell() const override { return 8; }

protected:
  HexahedralGeom(DataStructure& ds, std::string name, IdType id);
  HexahedralGeom(const HexahedralGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
