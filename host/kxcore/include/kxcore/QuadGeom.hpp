#pragma once

#include "kxcore/INodeGeometry2D.hpp"

namespace kx::core
{
/** A surface of quadrilaterals. */
class KXCORE_EXPORT QuadGeom : public INodeGeometry2D
{
public:
  static constexpr const char* k_TypeName = "QuadGeom";

  static QuadGeom* Create(DataStructure& ds, std::string name,
                          std::optional<IdType> parentId = std::nullopt);
  static QuadGeom* Import(DataStructure& ds, std::string name, IdType importId,
                          std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Quad; }
  usize getNumberOfVerticesPerFace() const override { return 4; }

protected:
  QuadGeom(DataStructure& ds, std::string name, IdType id);
  QuadGeom(const QuadGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
