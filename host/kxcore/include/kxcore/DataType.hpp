#pragma once

#include "kxcore/Types.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace kx::core
{
/** Element type of an array or store. */
enum class DataType : uint8
{
  int8 = 0,
  uint8,
  int16,
  uint16,
  int32,
  uint32,
  int64,
  uint64,
  float32,
  float64,
  boolean
};

template<typename T>
constexpr DataType GetDataType()
{
  if constexpr (std::is_same_v<T, bool>)
    return DataType::boolean;
  else if constexpr (std::is_same_v<T, int8>)
    return DataType::int8;
  else if constexpr (std::is_same_v<T, uint8>)
    return DataType::uint8;
  else if constexpr (std::is_same_v<T, int16>)
    return DataType::int16;
  else if constexpr (std::is_same_v<T, uint16>)
    return DataType::uint16;
  else if constexpr (std::is_same_v<T, int32>)
    return DataType::int32;
  else if constexpr (std::is_same_v<T, uint32>)
    return DataType::uint32;
  else if constexpr (std::is_same_v<T, int64>)
    return DataType::int64;
  else if constexpr (std::is_same_v<T, uint64>)
    return DataType::uint64;
  else if constexpr (std::is_same_v<T, float32>)
    return DataType::float32;
  else
  {
    static_assert(std::is_same_v<T, float64>, "unsupported element type");
    return DataType::float64;
  }
}

/** "int8", "uint16", "float32", "boolean" and so on. */
constexpr std::string_view DataTypeToString(DataType type)
{
  switch (type)
  {
    case DataType::int8:
      return "int8";
    case DataType::uint8:
      return "uint8";
    case DataType::int16:
      return "int16";
    case DataType::uint16:
      return "uint16";
    case DataType::int32:
      return "int32";
    case DataType::uint32:
      return "uint32";
    case DataType::int64:
      return "int64";
    case DataType::uint64:
      return "uint64";
    case DataType::float32:
      return "float32";
    case DataType::float64:
      return "float64";
    case DataType::boolean:
      return "boolean";
  }
  return "unknown";
}

inline std::optional<DataType> StringToDataType(std::string_view text)
{
  for (int i = 0; i <= static_cast<int>(DataType::boolean); i++)
  {
    auto type = static_cast<DataType>(i);
    if (DataTypeToString(type) == text)
      return type;
  }
  return std::nullopt;
}

constexpr usize GetDataTypeSize(DataType type)
{
  switch (type)
  {
    case DataType::int8:
    case DataType::uint8:
    case DataType::boolean:
      return 1;
    case DataType::int16:
    case DataType::uint16:
      return 2;
    case DataType::int32:
    case DataType::uint32:
    case DataType::float32:
      return 4;
    case DataType::int64:
    case DataType::uint64:
    case DataType::float64:
      return 8;
  }
  return 0;
}
} // namespace kx::core
