#pragma once

#include "kxcore/AbstractDataStore.hpp"

#include <string>

namespace kx::core::VOXELIA
{
/**
 * The store of an array imported without its data: it has the array's shape
 * but no buffer, reads as zeros and ignores writes, so that a preflight of a
 * file with huge arrays costs no memory. It remembers where its dataset lies in
 * the file so that FinishImportingObject can read the data later. Its storage
 * format is "preflight", which keeps callers that need a buffer away from it.
 */
template<typename T>
class PreflightDataStore : public AbstractDataStore<T>
{
public:
  static constexpr const char* k_StorageFormat = "preflight";

  PreflightDataStore(ShapeType tupleShape, ShapeType componentShape, std::string datasetPath)
    : m_TupleShape(std::move(tupleShape))
    , m_ComponentShape(std::move(componentShape))
    , m_DatasetPath(std::move(datasetPath))
  {
  }

  std::string getStorageFormat() const override { return k_StorageFormat; }
  const ShapeType& getTupleShape() const override { return m_TupleShape; }
  const ShapeType& getComponentShape() const override { return m_ComponentShape; }
  T getValue(usize) const override { return T{}; }
  void setValue(usize, T) override {}
  void fill(T) override {}

  /** Absolute HDF5 path of the dataset holding the elements. */
  const std::string& getDatasetPath() const { return m_DatasetPath; }

private:
  ShapeType m_TupleShape;
  ShapeType m_ComponentShape;
  std::string m_DatasetPath;
};
} // namespace kx::core::VOXELIA
