#pragma once

#include "kxcore/DataType.hpp"
#include "kxcore/Types.hpp"

#include <functional>
#include <numeric>
#include <string>
#include <vector>

namespace kx::core
{
using ShapeType = std::vector<usize>;

/**
 * The untyped face of an array's element storage: its shape, its element type
 * and where it lives. The elements are laid out tuple by tuple, component by
 * component.
 */
class IDataStore
{
public:
  virtual ~IDataStore() = default;

  virtual DataType getDataType() const = 0;
  virtual const ShapeType& getTupleShape() const = 0;
  virtual const ShapeType& getComponentShape() const = 0;

  /** Empty for a store in memory; a name of the storage for any other. */
  virtual std::string getStorageFormat() const { return {}; }

  usize getNumberOfTuples() const { return Product(getTupleShape()); }
  usize getNumberOfComponents() const { return Product(getComponentShape()); }
  usize getSize() const { return getNumberOfTuples() * getNumberOfComponents(); }
  usize size() const { return getSize(); }

  static usize Product(const ShapeType& shape)
  {
    return std::accumulate(shape.begin(), shape.end(), usize{ 1 }, std::multiplies<>());
  }

protected:
  IDataStore() = default;
  IDataStore(const IDataStore&) = default;
  IDataStore& operator=(const IDataStore&) = default;
};
} // namespace kx::core
