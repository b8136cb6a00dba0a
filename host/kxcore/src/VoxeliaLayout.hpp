#pragma once

#include "kxcore/DataType.hpp"
#include "kxcore/Types.hpp"

#include <hdf5.h>

#include <cstdint>
#include <string_view>

/**
 * Names and numbers of the ".voxelia" layout shared by the reader and the
 * writer; docs/voxelia-format.md describes them for other implementations.
 */
namespace kx::core::VOXELIA::Layout
{
/** The version this code writes and the only one it reads. */
inline constexpr std::uint32_t k_FormatVersion = 1;

inline constexpr const char* k_FormatVersionAttr = "VoxeliaFormatVersion";
/** The group under the file's root that holds the top-level objects. */
inline constexpr const char* k_DataStructureGroup = "DataStructure";

inline constexpr const char* k_ObjectIdAttr = "ObjectId";
inline constexpr const char* k_ObjectTypeAttr = "ObjectType";

inline constexpr const char* k_ElementTypeAttr = "ElementType";
inline constexpr const char* k_TupleShapeAttr = "TupleShape";
inline constexpr const char* k_ComponentShapeAttr = "ComponentShape";

inline constexpr const char* k_DimensionsAttr = "Dimensions";
inline constexpr const char* k_OriginAttr = "Origin";
inline constexpr const char* k_SpacingAttr = "Spacing";
inline constexpr const char* k_CellDataIdAttr = "CellDataId";
inline constexpr const char* k_XBoundsIdAttr = "XBoundsId";
inline constexpr const char* k_YBoundsIdAttr = "YBoundsId";
inline constexpr const char* k_ZBoundsIdAttr = "ZBoundsId";
inline constexpr const char* k_VertexListIdAttr = "VertexListId";
inline constexpr const char* k_VertexAttributeMatrixIdAttr = "VertexAttributeMatrixId";
inline constexpr const char* k_EdgeListIdAttr = "EdgeListId";
inline constexpr const char* k_EdgeAttributeMatrixIdAttr = "EdgeAttributeMatrixId";
inline constexpr const char* k_FaceListIdAttr = "FaceListId";
inline constexpr const char* k_FaceAttributeMatrixIdAttr = "FaceAttributeMatrixId";
inline constexpr const char* k_PolyhedraListIdAttr = "PolyhedraListId";
inline constexpr const char* k_PolyhedraAttributeMatrixIdAttr = "PolyhedraAttributeMatrixId";

/** Longest shape (tuple or component) the reader accepts; deeper shapes are corrupt. */
inline constexpr usize k_MaxShapeRank = 16;
/** Deepest group nesting the reader follows. */
inline constexpr usize k_MaxDepth = 128;

/** Error codes of the file layer. */
enum ErrorCode : int
{
  k_ErrFileNotOpen = -19000,
  k_ErrVersion = -19001,
  k_ErrLayout = -19002,
  k_ErrObjectType = -19003,
  k_ErrAttribute = -19004,
  k_ErrShape = -19005,
  k_ErrElementType = -19006,
  k_ErrGeometry = -19007,
  k_ErrConnectivity = -19008,
  k_ErrInsert = -19009,
  k_ErrReadData = -19010,
  k_ErrWrite = -19011,
  k_ErrPath = -19012,
};

/** The little-endian file type an element type is stored as; bool as uint8. */
inline hid_t FileType(DataType type)
{
  switch (type)
  {
    case DataType::int8:
      return H5T_STD_I8LE;
    case DataType::uint8:
      return H5T_STD_U8LE;
    case DataType::int16:
      return H5T_STD_I16LE;
    case DataType::uint16:
      return H5T_STD_U16LE;
    case DataType::int32:
      return H5T_STD_I32LE;
    case DataType::uint32:
      return H5T_STD_U32LE;
    case DataType::int64:
      return H5T_STD_I64LE;
    case DataType::uint64:
      return H5T_STD_U64LE;
    case DataType::float32:
      return H5T_IEEE_F32LE;
    case DataType::float64:
      return H5T_IEEE_F64LE;
    case DataType::boolean:
      return H5T_STD_U8LE;
  }
  return H5I_INVALID_HID;
}

/** The native memory type matching an element type; bool goes through uint8. */
inline hid_t MemoryType(DataType type)
{
  switch (type)
  {
    case DataType::int8:
      return H5T_NATIVE_INT8;
    case DataType::uint8:
      return H5T_NATIVE_UINT8;
    case DataType::int16:
      return H5T_NATIVE_INT16;
    case DataType::uint16:
      return H5T_NATIVE_UINT16;
    case DataType::int32:
      return H5T_NATIVE_INT32;
    case DataType::uint32:
      return H5T_NATIVE_UINT32;
    case DataType::int64:
      return H5T_NATIVE_INT64;
    case DataType::uint64:
      return H5T_NATIVE_UINT64;
    case DataType::float32:
      return H5T_NATIVE_FLOAT;
    case DataType::float64:
      return H5T_NATIVE_DOUBLE;
    case DataType::boolean:
      return H5T_NATIVE_UINT8;
  }
  return H5I_INVALID_HID;
}

/** Calls func.template operator()<T>() with the element type T of the runtime type. */
template<typename Func>
decltype(auto) DispatchDataType(DataType type, Func&& func)
{
  switch (type)
  {
    case DataType::int8:
      return func.template operator()<int8>();
    case DataType::uint8:
      return func.template operator()<uint8>();
    case DataType::int16:
      return func.template operator()<int16>();
    case DataType::uint16:
      return func.template operator()<uint16>();
    case DataType::int32:
      return func.template operator()<int32>();
    case DataType::uint32:
      return func.template operator()<uint32>();
    case DataType::int64:
      return func.template operator()<int64>();
    case DataType::uint64:
      return func.template operator()<uint64>();
    case DataType::float32:
      return func.template operator()<float32>();
    case DataType::float64:
      return func.template operator()<float64>();
    case DataType::boolean:
      break;
  }
  return func.template operator()<bool>();
}
} // namespace kx::core::VOXELIA::Layout
