#pragma once

#include "kxcore/AbstractDataStore.hpp"

#include <algorithm>
#include <memory>
#include <optional>

namespace kx::core
{
/**
 * The in-memory store: one contiguous buffer, row-major, tuple by tuple.
 * Its buffer address lets callers that know the store is in memory read it
 * without a virtual call per element.
 */
template<typename T>
class DataStore : public AbstractDataStore<T>
{
public:
  DataStore(ShapeType tupleShape, ShapeType componentShape,
            std::optional<T> initValue = std::nullopt)
    : m_TupleShape(std::move(tupleShape))
    , m_ComponentShape(std::move(componentShape))
    , m_Size(IDataStore::Product(m_TupleShape) * IDataStore::Product(m_ComponentShape))
    // new T[] without value-initialisation: a large store is not touched twice
    , m_Buffer(m_Size > 0 ? new T[m_Size] : nullptr)
  {
    if (initValue.has_value())
      std::fill_n(m_Buffer.get(), m_Size, *initValue);
  }

  const ShapeType& getTupleShape() const override { return m_TupleShape; }
  const ShapeType& getComponentShape() const override { return m_ComponentShape; }

  T getValue(usize index) const override { return m_Buffer[index]; }
  void setValue(usize index, T value) override { m_Buffer[index] = value; }
  void fill(T value) override { std::fill_n(m_Buffer.get(), m_Size, value); }

  /** The buffer's address; null for an empty store. */
  T* data() { return m_Buffer.get(); }
  const T* data() const { return m_Buffer.get(); }

  T* begin() { return m_Buffer.get(); }
  T* end() { return m_Buffer.get() + m_Size; }
  const T* begin() const { return m_Buffer.get(); }
  const T* end() const { return m_Buffer.get() + m_Size; }

  T& operator[](usize index) { return m_Buffer[index]; }
  const T& operator[](usize index) const { return m_Buffer[index]; }

private:
  ShapeType m_TupleShape;
  ShapeType m_ComponentShape;
  usize m_Size = 0;
  std::unique_ptr<T[]> m_Buffer;
};
} // namespace kx::core
