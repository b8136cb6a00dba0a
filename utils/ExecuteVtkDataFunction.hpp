#pragma once

#include <vtkType.h>

#include <cstdint>
#include <stdexcept>
#include <utility>

/**
 * Calls func.template operator()<T>(args...) with the element type T of a VTK data type
 * constant. Ten types are handled; bool-like and platform-sized types (VTK_CHAR, VTK_LONG,
 * VTK_UNSIGNED_LONG, VTK_ID_TYPE, ...) throw std::runtime_error.
 */
template<typename FuncT, typename DataType, typename... ArgsT>
auto ExecuteVtkDataFunctionNoBool(FuncT&& func, DataType dataType, ArgsT&&... args)
{
  switch (static_cast<int>(dataType))
  {
    case VTK_UNSIGNED_CHAR:
      return func.template operator()<uint8_t>(std::forward<ArgsT>(args)...);
    case VTK_SHORT:
      return func.template operator()<int16_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_SHORT:
      return func.template operator()<uint16_t>(std::forward<ArgsT>(args)...);
    case VTK_INT:
      return func.template operator()<int32_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_INT:
      return func.template operator()<uint32_t>(std::forward<ArgsT>(args)...);
    case VTK_FLOAT:
      return func.template operator()<float>(std::forward<ArgsT>(args)...);
    case VTK_DOUBLE:
      return func.template operator()<double>(std::forward<ArgsT>(args)...);
    case VTK_SIGNED_CHAR:
      return func.template operator()<int8_t>(std::forward<ArgsT>(args)...);
    case VTK_LONG_LONG:
      return func.template operator()<int64_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_LONG_LONG:
      return func.template operator()<uint64_t>(std::forward<ArgsT>(args)...);
    default:
      throw std::runtime_error("ExecuteVtkDataFunctionNoBool<...>(FuncT&& func, DataType "
                               "dataType, ArgsT&&... args). Error: Invalid DataType");
  }
}
