#include "kxcore/AttributeMatrix.hpp"

#include "kxcore/DataStructure.hpp"
#include "kxcore/IArray.hpp"

namespace kx::core
{
AttributeMatrix::AttributeMatrix(DataStructure& ds, std::string name, IdType id,
                                 ShapeType tupleShape)
  : BaseGroup(ds, std::move(name), id)
  , m_TupleShape(std::move(tupleShape))
{
}

AttributeMatrix* AttributeMatrix::Create(DataStructure& ds, std::string name, ShapeType tupleShape,
                                         std::optional<IdType> parentId)
{
  return Import(ds, std::move(name), ds.generateId(), std::move(tupleShape), parentId);
}

AttributeMatrix* AttributeMatrix::Import(DataStructure& ds, std::string name, IdType importId,
                                         ShapeType tupleShape, std::optional<IdType> parentId)
{
  std::shared_ptr<AttributeMatrix> matrix(
    new AttributeMatrix(ds, std::move(name), importId, std::move(tupleShape)));
  return ds.insert(matrix, parentId) ? matrix.get() : nullptr;
}

bool AttributeMatrix::canInsert(const DataObject& object) const
{
  if (!BaseGroup::canInsert(object))
    return false;
  const auto* array = dynamic_cast<const IArray*>(&object);
  return array != nullptr && array->getNumberOfTuples() == getNumberOfTuples();
}

std::shared_ptr<DataObject> AttributeMatrix::shallowCopy() const
{
  return std::shared_ptr<AttributeMatrix>(new AttributeMatrix(*this));
}
} // namespace kx::core
