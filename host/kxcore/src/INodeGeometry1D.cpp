#include "kxcore/INodeGeometry1D.hpp"

namespace kx::core
{
INodeGeometry1D::INodeGeometry1D(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry0D(ds, std::move(name), id)
{
}

INodeGeometry1D::~INodeGeometry1D() = default;

void INodeGeometry1D::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  INodeGeometry0D::remapIds(oldToNew);
  remapId(m_EdgeListId, oldToNew);
  remapId(m_EdgeAttributeMatrixId, oldToNew);
}
} // namespace kx::core
