#pragma once

#include "kxcore/IGeometry.hpp"

namespace kx::core
{
/** A geometry on a regular lattice of cells: image or rectilinear grid. */
class KXCORE_EXPORT IGridGeometry : public IGeometry
{
public:
  ~IGridGeometry() override;

  /** Cell counts along x, y and z. */
  SizeVec3 getDimensions() const { return m_Dimensions; }
  void setDimensions(const SizeVec3& dims) { m_Dimensions = dims; }

  usize getNumberOfCells() const override
  {
    return m_Dimensions[0] * m_Dimensions[1] * m_Dimensions[2];
  }

  const AttributeMatrix* getCellData() const;
  AttributeMatrix* getCellData();
  std::optional<IdType> getCellDataId() const { return m_CellDataId; }
  void setCellData(std::optional<IdType> id) { m_CellDataId = id; }

protected:
  IGridGeometry(DataStructure& ds, std::string name, IdType id);
  IGridGeometry(const IGridGeometry&) = default;
  void remapIds(const std::map<IdType, IdType>& oldToNew) override;

private:
  SizeVec3 m_Dimensions;
  std::optional<IdType> m_CellDataId;
};
} // namespace kx::core
