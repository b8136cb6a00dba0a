#pragma once

#include "kxcore/IDataStore.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <type_traits>

namespace kx::core
{
/**
 * Typed element access over any storage, in memory or not. Every access is a
 * virtual call so that callers need not know where the elements live.
 */
template<typename T>
class AbstractDataStore : public IDataStore
{
public:
  using value_type = T;

  virtual T getValue(usize index) const = 0;
  virtual void setValue(usize index, T value) = 0;

  DataType getDataType() const override { return GetDataType<T>(); }

  virtual void fill(T value)
  {
    const usize count = getSize();
    for (usize i = 0; i < count; i++)
      setValue(i, value);
  }

  /** Checked read. */
  T at(usize index) const
  {
    if (index >= getSize())
      throw std::runtime_error(
        fmt::format("DataStore::at({}) is out of bounds. Size={}", index, getSize()));
    return getValue(index);
  }

  void bitwiseAND(usize index, T value)
  {
    applyIntegral(index, value, "bitwiseAND", [](auto a, auto b) { return a & b; });
  }
  void bitwiseOR(usize index, T value)
  {
    applyIntegral(index, value, "bitwiseOR", [](auto a, auto b) { return a | b; });
  }
  void bitwiseXOR(usize index, T value)
  {
    applyIntegral(index, value, "bitwiseXOR", [](auto a, auto b) { return a ^ b; });
  }
  void bitwiseLShift(usize index, T value)
  {
    applyIntegral(index, value, "bitwiseLShift", [](auto a, auto b) { return a << b; });
  }
  void bitwiseRShift(usize index, T value)
  {
    applyIntegral(index, value, "bitwiseRShift", [](auto a, auto b) { return a >> b; });
  }
  void rem(usize index, T value)
  {
    applyIntegral(index, value, "rem", [](auto a, auto b) { return a % b; });
  }

  /** Writes all elements, raw and in order, to a binary file. */
  void writeBinaryFile(const std::filesystem::path& path) const
  {
    std::FILE* file = std::fopen(path.string().c_str(), "wb");
    if (file == nullptr)
      throw std::runtime_error(
        fmt::format("File could not be opened for writing:\n  '{}'", path.string()));
    const usize count = getSize();
    bool ok = true;
    for (usize i = 0; i < count && ok; i++)
    {
      const T value = getValue(i);
      ok = std::fwrite(&value, sizeof(T), 1, file) == 1;
    }
    ok = (std::fclose(file) == 0) && ok;
    if (!ok)
      throw std::runtime_error(
        fmt::format("Error writing binary file:\n  Total Elements:'{}'\n", count));
  }

private:
  template<typename Op>
  void applyIntegral(usize index, T value, const char* name, Op op)
  {
    if constexpr (std::is_same_v<T, bool> || std::is_floating_point_v<T>)
    {
      throw std::runtime_error(
        fmt::format("DataStore::{}() invalid operator for bool or floating point", name));
    }
    else
    {
      setValue(index, static_cast<T>(op(getValue(index), value)));
    }
  }
};
} // namespace kx::core
