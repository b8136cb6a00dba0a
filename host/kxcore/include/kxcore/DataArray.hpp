#pragma once

#include "kxcore/AbstractDataStore.hpp"
#include "kxcore/DataStructure.hpp"
#include "kxcore/IArray.hpp"

#include <memory>
#include <optional>

namespace kx::core
{
/**
 * An array of elements of type T held in a store. Copies of the array (for
 * example in a copied DataStructure) share the store.
 */
template<typename T>
class DataArray : public IArray
{
public:
  using value_type = T;
  using store_type = AbstractDataStore<T>;
  static constexpr const char* k_TypeName = "DataArray";

  static DataArray* Create(DataStructure& ds, std::string name, std::shared_ptr<store_type> store,
                           std::optional<IdType> parentId = std::nullopt)
  {
    return Import(ds, std::move(name), ds.generateId(), std::move(store), parentId);
  }

  static DataArray* Import(DataStructure& ds, std::string name, IdType importId,
                           std::shared_ptr<store_type> store,
                           std::optional<IdType> parentId = std::nullopt)
  {
    if (!store)
      return nullptr;
    std::shared_ptr<DataArray> array(
      new DataArray(ds, std::move(name), importId, std::move(store)));
    return ds.insert(array, parentId) ? array.get() : nullptr;
  }

  std::string getTypeName() const override { return k_TypeName; }
  DataType getDataType() const override { return GetDataType<T>(); }
  ShapeType getTupleShape() const override { return m_Store->getTupleShape(); }
  ShapeType getComponentShape() const override { return m_Store->getComponentShape(); }
  usize getNumberOfTuples() const override { return m_Store->getNumberOfTuples(); }
  usize getNumberOfComponents() const override { return m_Store->getNumberOfComponents(); }
  usize getSize() const override { return m_Store->getSize(); }
  std::string getStorageFormat() const override { return m_Store->getStorageFormat(); }
  std::weak_ptr<IDataStore> getDataStoreRef() const override { return m_Store; }

  store_type& getDataStoreRefTyped() { return *m_Store; }
  const store_type& getDataStoreRefTyped() const { return *m_Store; }
  std::shared_ptr<store_type> getDataStore() const { return m_Store; }

  T operator[](usize index) const { return m_Store->getValue(index); }
  T at(usize index) const { return m_Store->at(index); }

protected:
  DataArray(DataStructure& ds, std::string name, IdType id, std::shared_ptr<store_type> store)
    : IArray(ds, std::move(name), id)
    , m_Store(std::move(store))
  {
  }
  DataArray(const DataArray&) = default;

  std::shared_ptr<DataObject> shallowCopy() const override
  {
    return std::shared_ptr<DataArray>(new DataArray(*this));
  }

private:
  std::shared_ptr<store_type> m_Store;
};

using Int8Array = DataArray<int8>;
using UInt8Array = DataArray<uint8>;
using Int16Array = DataArray<int16>;
using UInt16Array = DataArray<uint16>;
using Int32Array = DataArray<int32>;
using UInt32Array = DataArray<uint32>;
using Int64Array = DataArray<int64>;
using UInt64Array = DataArray<uint64>;
using Float32Array = DataArray<float32>;
using Float64Array = DataArray<float64>;
using BoolArray = DataArray<bool>;
} // namespace kx::core
