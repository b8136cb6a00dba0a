#include "kxcore/IGridGeometry.hpp"

#include "kxcore/AttributeMatrix.hpp"

namespace kx::core
{
IGridGeometry::IGridGeometry(DataStructure& ds, std::string name, IdType id)
  : IGeometry(ds, std::move(name), id)
{
}

IGridGeometry::~IGridGeometry() = default;

const AttributeMatrix* IGridGeometry::getCellData() const
{
  return attributeMatrix(m_CellDataId);
}

AttributeMatrix* IGridGeometry::getCellData()
{
  return attributeMatrix(m_CellDataId);
}

void IGridGeometry::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  remapId(m_CellDataId, oldToNew);
}
} // namespace kx::core
