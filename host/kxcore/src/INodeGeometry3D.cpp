#include "kxcore/INodeGeometry3D.hpp"

namespace kx::core
{
INodeGeometry3D::INodeGeometry3D(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry2D(ds, std::move(name), id)
{
}

INodeGeometry3D::~INodeGeometry3D() = default;

void INodeGeometry3D::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  INodeGeometry2D::remapIds(oldToNew);
  remapId(m_PolyhedraListId, oldToNew);
  remapId(m_PolyhedraAttributeMatrixId, oldToNew);
}
} // namespace kx::core
