#include "kxcore/INodeGeometry2D.hpp"

namespace kx::core
{
INodeGeometry2D::INodeGeometry2D(DataStructure& ds, std::string name, IdType id)
  : INodeGeometry1D(ds, std::move(name), id)
{
}

INodeGeometry2D::~INodeGeometry2D() = default;

void INodeGeometry2D::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  INodeGeometry1D::remapIds(oldToNew);
  remapId(m_FaceListId, oldToNew);
  remapId(m_FaceAttributeMatrixId, oldToNew);
}
} // namespace kx::core
