#pragma once

#include "kxcore/BaseGroup.hpp"

#include <optional>

namespace kx::core
{
class AttributeMatrix;

/**
 * Base of the eight geometries. A geometry keeps the identifiers of the arrays
 * and attribute matrices that make it up; they are its children.
 */
class KXCORE_EXPORT IGeometry : public BaseGroup
{
public:
  enum class Type : uint32
  {
    Image = 0,
    RectGrid = 1,
    Vertex = 2,
    Edge = 3,
    Triangle = 4,
    Quad = 5,
    Tetrahedral = 6,
    Hexahedral = 7
  };

  ~IGeometry() override;

  virtual Type getGeomType() const = 0;
  virtual usize getNumberOfCells() const = 0;

protected:
  IGeometry(DataStructure& ds, std::string name, IdType id);
  IGeometry(const IGeometry&) = default;

  /** The attribute matrix with that identifier in this geometry's structure, or null. */
  AttributeMatrix* attributeMatrix(const std::optional<IdType>& id) const;
  static void remapId(std::optional<IdType>& id, const std::map<IdType, IdType>& oldToNew);
};
} // namespace kx::core
