#pragma once

#include "KXVtkLib_export.h"

#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>

#include <vtkGenericDataArray.h>
#include <vtkInformationIntegerVectorKey.h>

#include <cstdint>
#include <memory>

namespace CV
{
/**
 * The information key, in each wrapped array's information, that holds the
 * host array's tuple shape narrowed to int (e.g. {z, y, x} for an image).
 */
KXVTKLIB_EXPORT vtkInformationIntegerVectorKey* TupleShapeKey();

/**
 * A VTK data array over a host store, without copying the elements.
 *
 * The array shares the store (not the host's DataArray), so it keeps working
 * after the host removes the array from its structure. Reads and writes go to
 * the host's memory until a resize, after which the array owns a private store
 * and the host's store is left as it was.
 *
 * The value ranges are computed once, in parallel, when a store is attached,
 * and stored where VTK's range queries look first, so that GetRange never
 * rescans a large array.
 */
template<typename T>
class KXVTKLIB_EXPORT Array : public vtkGenericDataArray<Array<T>, T>
{
public:
  using GenericBase = vtkGenericDataArray<Array<T>, T>;
  using Superclass = GenericBase;
  using ValueType = T;

  static constexpr const char* k_ClassName = "CV::Array<T>";

  static Array* New();

  // Type information: the same class name for every T, so VTK's name-based
  // checks treat every instantiation alike; casts must use SafeDownCast.
  static vtkTypeBool IsTypeOf(const char* type);
  vtkTypeBool IsA(const char* type) override;
  static vtkIdType GetNumberOfGenerationsFromBaseType(const char* type);
  vtkIdType GetNumberOfGenerationsFromBase(const char* type) override;
  static Array* SafeDownCast(vtkObjectBase* object);
  Array* NewInstance() const;

  /** The information key holding the host array's tuple shape; the same for every T. */
  static vtkInformationIntegerVectorKey* TupleShape() { return TupleShapeKey(); }

  /** Attaches the host array's store; does nothing for null or an out-of-core store. */
  void SetDataArray(const kx::core::DataArray<T>* dataArray);

  /** The store in use, empty before SetDataArray. */
  std::shared_ptr<kx::core::DataStore<T>> GetDataStore() const { return m_DataStore; }

  // vtkGenericDataArray's concept methods
  T GetValue(vtkIdType valueIdx) const;
  void SetValue(vtkIdType valueIdx, T value);
  void GetTypedTuple(vtkIdType tupleIdx, T* tuple) const;
  void SetTypedTuple(vtkIdType tupleIdx, const T* tuple);
  T GetTypedComponent(vtkIdType tupleIdx, int comp) const;
  void SetTypedComponent(vtkIdType tupleIdx, int comp, T value);
  bool AllocateTuples(vtkIdType numTuples);
  bool ReallocateTuples(vtkIdType numTuples);

  /** The element's address in the store's buffer, null without a store. */
  void* GetVoidPointer(vtkIdType valueIdx) override;

protected:
  Array();
  ~Array() override;

  const char* GetClassNameInternal() const override { return k_ClassName; }
  vtkObjectBase* NewInstanceInternal() const override;

private:
  Array(const Array&) = delete;
  void operator=(const Array&) = delete;

  void computeRanges();

  std::shared_ptr<kx::core::DataStore<T>> m_DataStore;
  // set when the ranges are computed; kept for parity with the host's bookkeeping
  bool m_RangesComputed = false;

  friend GenericBase;
};

extern template class Array<std::int8_t>;
extern template class Array<std::int16_t>;
extern template class Array<std::int32_t>;
extern template class Array<std::int64_t>;
extern template class Array<std::uint8_t>;
extern template class Array<std::uint16_t>;
extern template class Array<std::uint32_t>;
extern template class Array<std::uint64_t>;
extern template class Array<float>;
extern template class Array<double>;
} // namespace CV
