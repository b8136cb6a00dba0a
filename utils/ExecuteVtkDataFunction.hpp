#pragma once

#include <vtkType.h>

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace KXVtk::utils
{
/**
 * Calls func.operator()<T>(args...) with the element type T that belongs to
 * the VTK type constant @p dataType, for the ten numeric types whose width is
 * the same on every platform. Every other constant (char, long, id type, bit,
 * string) throws std::runtime_error, so a caller can't silently run over an
 * array of a type it wasn't written for.
 */
template<typename FuncT, typename DataType, typename... ArgsT>
auto ExecuteVtkDataFunctionNoBool(FuncT&& func, DataType dataType, ArgsT&&... args)
{
  switch (static_cast<int>(dataType))
  {
    case VTK_UNSIGNED_CHAR:
      return func.template operator()<std::uint8_t>(std::forward<ArgsT>(args)...);
    case VTK_SHORT:
      return func.template operator()<std::int16_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_SHORT:
      return func.template operator()<std::uint16_t>(std::forward<ArgsT>(args)...);
    case VTK_INT:
      return func.template operator()<std::int32_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_INT:
      return func.template operator()<std::uint32_t>(std::forward<ArgsT>(args)...);
    case VTK_FLOAT:
      return func.template operator()<float>(std::forward<ArgsT>(args)...);
    case VTK_DOUBLE:
      return func.template operator()<double>(std::forward<ArgsT>(args)...);
    case VTK_SIGNED_CHAR:
      return func.template operator()<std::int8_t>(std::forward<ArgsT>(args)...);
    case VTK_LONG_LONG:
      return func.template operator()<std::int64_t>(std::forward<ArgsT>(args)...);
    case VTK_UNSIGNED_LONG_LONG:
      return func.template operator()<std::uint64_t>(std::forward<ArgsT>(args)...);
    default:
      throw std::runtime_error("ExecuteVtkDataFunctionNoBool<...>(FuncT&& func, DataType dataType, "
                               "ArgsT&&... args). Error: Invalid DataType");
  }
}
} // namespace KXVtk::utils
