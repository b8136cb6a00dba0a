#include "kxcore/INodeGeometry0D.hpp"

namespace kx::core
{
INodeGeometry0D::INodeGeometry0D(DataStructure& ds, std::string name, IdType id)
  : IGeometry(ds, std::move(name), id)
{
}

INodeGeometry0D::~INodeGeometry0D() = default;

Float32Array* INodeGeometry0D::getVertices() const
{
  if (!m_VertexListId.has_value() || getDataStructure() == nullptr)
    return nullptr;
  return getDataStructure()->getDataAs<Float32Array>(*m_VertexListId);
}

usize INodeGeometry0D::getNumberOfVertices() const
{
  const Float32Array* vertices = getVertices();
  return vertices == nullptr ? 0 : vertices->getNumberOfTuples();
}

UInt64Array* INodeGeometry0D::connectivity(const std::optional<IdType>& id) const
{
  if (!id.has_value() || getDataStructure() == nullptr)
    return nullptr;
  return getDataStructure()->getDataAs<UInt64Array>(*id);
}

usize INodeGeometry0D::connectivityTuples(const std::optional<IdType>& id) const
{
  const UInt64Array* list = connectivity(id);
  return list == nullptr ? 0 : list->getNumberOfTuples();
}

void INodeGeometry0D::remapIds(const std::map<IdType, IdType>& oldToNew)
{
  remapId(m_VertexListId, oldToNew);
  remapId(m_VertexAttributeMatrixId, oldToNew);
}
} // namespace kx::core
