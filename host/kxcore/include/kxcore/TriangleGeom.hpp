#pragma once

#include "kxcore/INodeGeometry2D.hpp"

namespace kx::core
{
/** A triangulated surface. */
class KXCORE_EXPORT TriangleGeom : public INodeGeometry2D
{
public:
  static constexpr const char* k_TypeName = "TriangleGeom";

  static TriangleGeom* Create(DataStructure& ds, std::string name,
                              std::optional<IdType> parentId = std::nullopt);
  static TriangleGeom* Import(DataStructure& ds, std::string name, IdType importId,
                              std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Triangle; }
  usize getNumberOfVerticesPerFace() const override { return 3; }

protected:
  TriangleGeom(DataStructure& ds, std::string name, IdType id);
  TriangleGeom(const TriangleGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
