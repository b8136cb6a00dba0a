#pragma once

#include "kxcore/INodeGeometry1D.hpp"

namespace kx::core
{
/** A surface geometry: faces of 3 or 4 vertex indices. */
class KXCORE_EXPORT INodeGeometry2D : public INodeGeometry1D
{
public:
  ~INodeGeometry2D() override;

  UInt64Array* getFaces() const { return connectivity(m_FaceListId); }
  std::optional<IdType> getFaceListId() const { return m_FaceListId; }
  void setFaceListId(std::optional<IdType> id) { m_FaceListId = id; }

  AttributeMatrix* getFaceAttributeMatrix() const
  {
    return attributeMatrix(m_FaceAttributeMatrixId);
  }
  std::optional<IdType> getFaceAttributeMatrixId() const { return m_FaceAttributeMatrixId; }
  void setFaceAttributeMatrixId(std::optional<IdType> id) { m_FaceAttributeMatrixId = id; }

  virtual usize getNumberOfVerticesPerFace() const = 0;
  usize getNumberOfCells() const override { return connectivityTuples(m_FaceListId); }

protected:
  INodeGeometry2D(DataStructure& ds, std::string name, IdType id);
  INodeGeometry2D(const INodeGeometry2D&) = default;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

private:
  std::optional<IdType> m_FaceListId;
  std::optional<IdType> m_FaceAttributeMatrixId;
};
} // namespace kx::core
