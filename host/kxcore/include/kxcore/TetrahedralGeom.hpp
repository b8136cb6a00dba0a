#pragma once

#include "kxcore/INodeGeometry3D.hpp"

namespace kx::core
{
/** A volume mesh of tetrahedra. */
class KXCORE_EXPORT TetrahedralGeom : public INodeGeometry3D
{
public:
  static constexpr const char* k_TypeName = "TetrahedralGeom";

  static TetrahedralGeom* Create(DataStructure& ds, std::string name,
                                 std::optional<IdType> parentId = std::nullopt);
  static TetrahedralGeom* Import(DataStructure& ds, std::string name, IdType importId,
                                 std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Tetrahedral; }
  usize getNumberOfVerticesPerFace() const override { return 3; }
  usize getNumberOfVerticesPerCell() const override { return 4; }

protected:
  TetrahedralGeom(DataStructure& ds, std::string name, IdType id);
  TetrahedralGeom(const TetrahedralGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
