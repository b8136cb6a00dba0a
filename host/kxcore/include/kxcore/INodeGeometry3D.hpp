#pragma once

#include "kxcore/INodeGeometry2D.hpp"

namespace kx::core
{
/** A volume geometry: cells of 4 or 8 vertex indices. */
class KXCORE_EXPORT INodeGeometry3D : public INodeGeometry2D
{
public:
  ~INodeGeometry3D() override;

  UInt64Array* getPolyhedra() const { return connectivity(m_PolyhedraListId); }
  std::optional<IdType> getPolyhedraListId() const { return m_PolyhedraListId; }
  void setPolyhedraListId(std::optional<IdType> id) { m_PolyhedraListId = id; }

  AttributeMatrix* getPolyhedraAttributeMatrix() const
  {
    return attributeMatrix(m_PolyhedraAttributeMatrixId);
  }
  std::optional<IdType> getPolyhedraAttributeMatrixId() const
  {
    return m_PolyhedraAttributeMatrixId;
  }
  void setPolyhedraAttributeMatrixId(std::optional<IdType> id)
  {
    m_PolyhedraAttributeMatrixId = id;
  }

  virtual usize getNumberOfVerticesPerCell() const = 0;
  usize getNumberOfCells() const override { return connectivityTuples(m_PolyhedraListId); }

protected:
  INodeGeometry3D(DataStructure& ds, std::string name, IdType id);
  INodeGeometry3D(const INodeGeometry3D&) = default;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

private:
  std::optional<IdType> m_PolyhedraListId;
  std::optional<IdType> m_PolyhedraAttributeMatrixId;
};
} // namespace kx::core
