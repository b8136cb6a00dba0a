#pragma once

#include "kxcore/DataArray.hpp"
#include "kxcore/IGeometry.hpp"

namespace kx::core
{
/** A geometry made of vertices: a list of 3-component float coordinates. */
class KXCORE_EXPORT INodeGeometry0D : public IGeometry
{
public:
  ~INodeGeometry0D() override;

  /** The vertex coordinates, 3 components; null if there are none. */
  Float32Array* getVertices() const;
  std::optional<IdType> getVertexListId() const { return m_VertexListId; }
  void setVertexListId(std::optional<IdType> id) { m_VertexListId = id; }
  usize getNumberOfVertices() const;

  AttributeMatrix* getVertexAttributeMatrix() const
  {
    return attributeMatrix(m_VertexAttributeMatrixId);
  }
  std::optional<IdType> getVertexAttributeMatrixId() const { return m_VertexAttributeMatrixId; }
  void setVertexAttributeMatrixId(std::optional<IdType> id) { m_VertexAttributeMatrixId = id; }

protected:
  INodeGeometry0D(DataStructure& ds, std::string name, IdType id);
  INodeGeometry0D(const INodeGeometry0D&) = default;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

  /** Tuple count of a connectivity list, 0 if it is missing. */
  usize connectivityTuples(const std::optional<IdType>& id) const;
  UInt64Array* connectivity(const std::optional<IdType>& id) const;

private:
  std::optional<IdType> m_VertexListId;
  std::optional<IdType> m_VertexAttributeMatrixId;
};
} // namespace kx::core
