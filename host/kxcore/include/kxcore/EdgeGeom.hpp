#pragma once

#include "kxcore/INodeGeometry1D.hpp"

namespace kx::core
{
/** A network of line segments. */
class KXCORE_EXPORT EdgeGeom : public INodeGeometry1D
{
public:
  static constexpr const char* k_TypeName = "EdgeGeom";

  static EdgeGeom* Create(DataStructure& ds, std::string name,
                          std::optional<IdType> parentId = std::nullopt);
  static EdgeGeom* Import(DataStructure& ds, std::string name, IdType importId,
                          std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }
  Type getGeomType() const override { return Type::Edge; }
  usize getNumberOfCells() const override { return connectivityTuples(getEdgeListId()); }

protected:
  EdgeGeom(DataStructure& ds, std::string name, IdType id);
  EdgeGeom(const EdgeGeom&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core
