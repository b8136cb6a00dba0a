#pragma once

#include "kxcore/INodeGeometry0D.hpp"

namespace kx::core
{
/** A cloud of points; each vertex is a cell. */
class KXCORE_EXPORT VertexGeom : public INodeGeometry0D
{
public:
  static constexpr const char* k_TypeName = "VertexGeom";

  static VertexGeom* Create(DataStructure& ds, std::string name,
                            std::optional<IdType> parentId = std::nullopt);
  static VertexGeom* Import(DataStructure& ds, std::string name, IdType importId,
                            std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Vertex; }
  usize getNumberOfCells() const override { return getNumberOfVertices(); }

protected:
  VertexGeom(DataStructure& ds, std::string name, IdType id);
  VertexGeom(const VertexGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
