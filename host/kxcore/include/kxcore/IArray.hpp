#pragma once

#include "kxcore/DataObject.hpp"
#include "kxcore/IDataStore.hpp"

#include <memory>

namespace kx::core
{
/** Base of all arrays: a shape and a store. */
class KXCORE_EXPORT IArray : public DataObject
{
public:
  ~IArray() override;

  virtual DataType getDataType() const = 0;
  virtual ShapeType getTupleShape() const = 0;
  virtual ShapeType getComponentShape() const = 0;
  virtual usize getNumberOfTuples() const = 0;
  virtual usize getNumberOfComponents() const = 0;
  virtual usize getSize() const = 0;
  /** Empty for an array whose store lives in memory. */
  virtual std::string getStorageFormat() const = 0;
  /** The store, for the caller to lock. */
  virtual std::weak_ptr<IDataStore> getDataStoreRef() const = 0;

protected:
  IArray(DataStructure& ds, std::string name, IdType id);
  IArray(const IArray&) = default;
};
} // namespace kx::core
