#pragma once

#include "kxcore/INodeGeometry0D.hpp"

namespace kx::core
{
/** A geometry with edges, pairs of vertex indices. */
class KXCORE_EXPORT INodeGeometry1D : public INodeGeometry0D
{
public:
  ~INodeGeometry1D() override;

  /** The edge list, 2 components; null if there is none. */
  UInt64Array* getEdges() const { return connectivity(m_EdgeListId); }
  std::optional<IdType> getEdgeListId() const { return m_EdgeListId; }
  void setEdgeListId(std::optional<IdType> id) { m_EdgeListId = id; }

  AttributeMatrix* getEdgeAttributeMatrix() const
  {
    return attributeMatrix(m_EdgeAttributeMatrixId);
  }
  std::optional<IdType> getEdgeAttributeMatrixId() const { return m_EdgeAttributeMatrixId; }
  void setEdgeAttributeMatrixId(std::optional<IdType> id) { m_EdgeAttributeMatrixId = id; }

protected:
  INodeGeometry1D(DataStructure& ds, std::string name, IdType id);
  INodeGeometry1D(const INodeGeometry1D&) = default;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

private:
  std::optional<IdType> m_EdgeListId;
  std::optional<IdType> m_EdgeAttributeMatrixId;
};
} // namespace kx::core
