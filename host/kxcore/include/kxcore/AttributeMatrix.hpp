#pragma once

#include "kxcore/BaseGroup.hpp"
#include "kxcore/IDataStore.hpp"

#include <optional>

namespace kx::core
{
/**
 * A group of arrays that share one tuple shape, e.g. one value per cell of a
 * geometry. Arrays whose tuple count differs are refused.
 */
class KXCORE_EXPORT AttributeMatrix : public BaseGroup
{
public:
  static constexpr const char* k_TypeName = "AttributeMatrix";

  static AttributeMatrix* Create(DataStructure& ds, std::string name, ShapeType tupleShape,
                                 std::optional<IdType> parentId = std::nullopt);
  static AttributeMatrix* Import(DataStructure& ds, std::string name, IdType importId,
                                 ShapeType tupleShape,
                                 std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }

  const ShapeType& getShape() const { return m_TupleShape; }
  usize getNumberOfTuples() const { return IDataStore::Product(m_TupleShape); }

  bool canInsert(const DataObject& object) const override;

protected:
  AttributeMatrix(DataStructure& ds, std::string name, IdType id, ShapeType tupleShape);
  AttributeMatrix(const AttributeMatrix&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;

private:
  ShapeType m_TupleShape;
};
} // namespace kx::core
