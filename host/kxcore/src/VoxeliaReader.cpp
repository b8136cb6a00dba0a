// Reading ".voxelia" files: ImportDataStructureFromFile, FinishImportingObject
// and ExpandSelectedPathsToAncestors. The layout is described in
// docs/voxelia-format.md; names live in VoxeliaLayout.hpp.
#include "kxcore/VoxeliaFile.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/DataArray.hpp"
#include "kxcore/DataGroup.hpp"
#include "kxcore/DataStore.hpp"
#include "kxcore/EdgeGeom.hpp"
#include "kxcore/HexahedralGeom.hpp"
#include "kxcore/ImageGeom.hpp"
#include "kxcore/QuadGeom.hpp"
#include "kxcore/RectGridGeom.hpp"
#include "kxcore/TetrahedralGeom.hpp"
#include "kxcore/TriangleGeom.hpp"
#include "kxcore/VertexGeom.hpp"

#include "HDF5DatasetReads.hpp"
#include "HDF5Handle.hpp"
#include "PreflightDataStore.hpp"
#include "VoxeliaLayout.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace kx::core::VOXELIA
{
namespace
{
using HDF5::Handle;
using namespace Layout;

/** Thrown inside the reader and turned into an invalid Result at the API boundary. */
struct Failure
{
  int code = 0;
  std::string message;
};

[[noreturn]] void fail(int code, std::string message)
{
  throw Failure{ code, std::move(message) };
}

std::string shapeText(const ShapeType& shape)
{
  return fmt::format("[{}]", fmt::join(shape, ", "));
}

/** Arrays above this size must be backed by stored bytes; stops a corrupt shape from exhausting
 * memory. */
constexpr uint64 k_UnverifiedBytes = uint64{ 64 } << 20;
/** Largest ratio of declared to stored bytes accepted for big arrays (compressed chunks, fill
 * values). */
constexpr uint64 k_MaxExpansion = 1024;

// ---------------------------------------------------------------------------
// Attributes

bool hasAttribute(hid_t object, const char* name, const std::string& where)
{
  const htri_t exists = H5Aexists(object, name);
  if (exists < 0)
    fail(k_ErrAttribute, fmt::format("The attributes of {} could not be read.", where));
  return exists > 0;
}

Handle openAttribute(hid_t object, const char* name, const std::string& where)
{
  if (!hasAttribute(object, name, where))
    fail(k_ErrAttribute, fmt::format("{} has no '{}' attribute.", where, name));
  Handle attribute = Handle::Attribute(H5Aopen(object, name, H5P_DEFAULT));
  if (!attribute.isValid())
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be opened.", name, where));
  return attribute;
}

/** Element count of a scalar or one-dimensional attribute. */
usize attributeCount(hid_t attribute, const char* name, const std::string& where)
{
  const Handle space = Handle::Dataspace(H5Aget_space(attribute));
  const H5S_class_t spaceClass =
    space.isValid() ? H5Sget_simple_extent_type(space.get()) : H5S_NO_CLASS;
  if (spaceClass == H5S_SCALAR)
    return 1;
  if (spaceClass == H5S_SIMPLE && H5Sget_simple_extent_ndims(space.get()) == 1)
  {
    const hssize_t count = H5Sget_simple_extent_npoints(space.get());
    if (count >= 0)
      return static_cast<usize>(count);
  }
  fail(k_ErrAttribute,
       fmt::format("The '{}' attribute of {} must be a scalar or a list.", name, where));
}

std::vector<uint64> readUInt64s(hid_t object, const char* name, const std::string& where,
                                usize minCount, usize maxCount)
{
  const Handle attribute = openAttribute(object, name, where);
  const Handle type = Handle::Datatype(H5Aget_type(attribute.get()));
  if (!type.isValid() || H5Tget_class(type.get()) != H5T_INTEGER)
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} must be an integer.", name, where));
  const usize count = attributeCount(attribute.get(), name, where);
  if (count < minCount || count > maxCount)
  {
    fail(k_ErrAttribute,
         minCount == maxCount
           ? fmt::format("The '{}' attribute of {} must have {} values, found {}.", name, where,
                         minCount, count)
           : fmt::format("The '{}' attribute of {} must have {} to {} values, found {}.", name,
                         where, minCount, maxCount, count));
  }
  std::vector<uint64> values(count);
  if (H5Tget_sign(type.get()) == H5T_SGN_2)
  {
    // a writer using signed integers (numpy's default) is fine as long as nothing is negative
    std::vector<int64> signedValues(count);
    if (H5Aread(attribute.get(), H5T_NATIVE_INT64, signedValues.data()) < 0)
      fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
    for (usize i = 0; i < count; i++)
    {
      if (signedValues[i] < 0)
        fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} holds the negative value {}.",
                                         name, where, signedValues[i]));
      values[i] = static_cast<uint64>(signedValues[i]);
    }
  }
  else if (H5Aread(attribute.get(), H5T_NATIVE_UINT64, values.data()) < 0)
  {
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
  }
  return values;
}

uint64 readUInt64(hid_t object, const char* name, const std::string& where)
{
  return readUInt64s(object, name, where, 1, 1).front();
}

std::optional<IdType> readOptionalId(hid_t object, const char* name, const std::string& where)
{
  if (!hasAttribute(object, name, where))
    return std::nullopt;
  return readUInt64(object, name, where);
}

FloatVec3 readFloat3(hid_t object, const char* name, const std::string& where)
{
  const Handle attribute = openAttribute(object, name, where);
  const Handle type = Handle::Datatype(H5Aget_type(attribute.get()));
  if (!type.isValid() || H5Tget_class(type.get()) != H5T_FLOAT)
    fail(k_ErrAttribute,
         fmt::format("The '{}' attribute of {} must be floating point.", name, where));
  const usize count = attributeCount(attribute.get(), name, where);
  if (count != 3)
    fail(k_ErrAttribute,
         fmt::format("The '{}' attribute of {} must have 3 values, found {}.", name, where, count));
  float values[3] = {};
  if (H5Aread(attribute.get(), H5T_NATIVE_FLOAT, values) < 0)
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
  return { values[0], values[1], values[2] };
}

std::string readString(hid_t object, const char* name, const std::string& where)
{
  const Handle attribute = openAttribute(object, name, where);
  const Handle type = Handle::Datatype(H5Aget_type(attribute.get()));
  if (!type.isValid() || H5Tget_class(type.get()) != H5T_STRING)
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} must be a string.", name, where));
  if (attributeCount(attribute.get(), name, where) != 1)
    fail(k_ErrAttribute,
         fmt::format("The '{}' attribute of {} must be a single string.", name, where));

  const htri_t variable = H5Tis_variable_str(type.get());
  if (variable < 0)
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
  if (variable > 0)
  {
    const Handle memoryType = Handle::Datatype(H5Tcopy(H5T_C_S1));
    H5Tset_size(memoryType.get(), H5T_VARIABLE);
    H5Tset_cset(memoryType.get(), H5Tget_cset(type.get()));
    char* text = nullptr;
    if (H5Aread(attribute.get(), memoryType.get(), &text) < 0)
      fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
    std::string value = text != nullptr ? text : "";
    const Handle space = Handle::Dataspace(H5Aget_space(attribute.get()));
    H5Treclaim(memoryType.get(), space.get(), H5P_DEFAULT, &text);
    return value;
  }
  const usize size = H5Tget_size(type.get());
  if (size == 0 || size > 65536)
    fail(k_ErrAttribute,
         fmt::format("The '{}' attribute of {} has an invalid string size {}.", name, where, size));
  std::vector<char> buffer(size + 1, '\0');
  if (H5Aread(attribute.get(), type.get(), buffer.data()) < 0)
    fail(k_ErrAttribute, fmt::format("The '{}' attribute of {} could not be read.", name, where));
  return std::string(buffer.data());
}

// ---------------------------------------------------------------------------
// Arrays

/** What the attributes and the dataset of an array declare. */
struct ArrayHeader
{
  DataType type = DataType::int8;
  ShapeType tupleShape;
  ShapeType componentShape;
  usize elements = 0;
};

std::string describeStoredType(hid_t type)
{
  const H5T_class_t typeClass = H5Tget_class(type);
  const usize size = H5Tget_size(type);
  if (typeClass == H5T_FLOAT)
    return fmt::format("float{}", size * 8);
  if (typeClass == H5T_INTEGER)
    return fmt::format("{}int{}", H5Tget_sign(type) == H5T_SGN_NONE ? "u" : "", size * 8);
  return "a non-numeric type";
}

bool storedTypeMatches(hid_t type, DataType expected)
{
  const H5T_class_t typeClass = H5Tget_class(type);
  const usize size = H5Tget_size(type);
  if (expected == DataType::float32 || expected == DataType::float64)
    return typeClass == H5T_FLOAT && size == GetDataTypeSize(expected);
  if (typeClass != H5T_INTEGER || size != GetDataTypeSize(expected))
    return false;
  if (expected == DataType::boolean)
    return true;
  const bool isSigned = H5Tget_sign(type) == H5T_SGN_2;
  const bool wantSigned = expected == DataType::int8 || expected == DataType::int16 ||
                          expected == DataType::int32 || expected == DataType::int64;
  return isSigned == wantSigned;
}

ArrayHeader readArrayHeader(hid_t dataset, const std::string& where)
{
  ArrayHeader header;
  const std::string typeText = readString(dataset, k_ElementTypeAttr, where);
  const auto type = StringToDataType(typeText);
  if (!type.has_value())
    fail(k_ErrElementType, fmt::format("{} has the unknown element type '{}'.", where, typeText));
  header.type = *type;
  header.tupleShape = readUInt64s(dataset, k_TupleShapeAttr, where, 1, k_MaxShapeRank);
  header.componentShape = readUInt64s(dataset, k_ComponentShapeAttr, where, 1, k_MaxShapeRank);

  const Handle storedType = Handle::Datatype(H5Dget_type(dataset));
  if (!storedType.isValid())
    fail(k_ErrElementType, fmt::format("The element type of {} could not be read.", where));
  if (!storedTypeMatches(storedType.get(), header.type))
  {
    fail(k_ErrElementType, fmt::format("{} declares ElementType '{}' but its dataset holds {}.",
                                       where, typeText, describeStoredType(storedType.get())));
  }

  ShapeType expectedDims = header.tupleShape;
  expectedDims.insert(expectedDims.end(), header.componentShape.begin(),
                      header.componentShape.end());
  const Handle space = Handle::Dataspace(H5Dget_space(dataset));
  ShapeType dims;
  if (space.isValid() && H5Sget_simple_extent_type(space.get()) == H5S_SIMPLE)
  {
    const int rank = H5Sget_simple_extent_ndims(space.get());
    if (rank > 0 && rank <= H5S_MAX_RANK)
    {
      std::vector<hsize_t> stored(static_cast<usize>(rank));
      if (H5Sget_simple_extent_dims(space.get(), stored.data(), nullptr) == rank)
        dims.assign(stored.begin(), stored.end());
    }
  }
  if (dims != expectedDims)
  {
    fail(k_ErrShape,
         fmt::format(
           "{} has TupleShape {} and ComponentShape {} but its dataset has dimensions {}.", where,
           shapeText(header.tupleShape), shapeText(header.componentShape), shapeText(dims)));
  }

  uint64 elements = 1;
  uint64 bytes = 0;
  for (uint64 dim : expectedDims)
  {
    if (__builtin_mul_overflow(elements, dim, &elements))
      fail(k_ErrShape, fmt::format("{} has a shape too large to address.", where));
  }
  if (__builtin_mul_overflow(elements, GetDataTypeSize(header.type), &bytes) ||
      bytes > (uint64{ 1 } << 62))
    fail(k_ErrShape, fmt::format("{} has a shape too large to address.", where));
  header.elements = elements;
  return header;
}

/**
 * Reads all elements of a dataset into a buffer of the memory type. The one
 * place where element data are read, hence where reads are counted.
 */
void readElements(hid_t dataset, hid_t memoryType, void* buffer, usize count,
                  const std::string& where)
{
  HDF5::NoteDatasetRead();
  if (count == 0)
    return;
  if (H5Dread(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, buffer) < 0)
  {
    const std::string detail = HDF5::MostSpecificError();
    fail(k_ErrReadData, fmt::format("The data of {} could not be read{}{}.", where,
                                    detail.empty() ? "" : ": ", detail));
  }
}

template<typename T>
std::shared_ptr<AbstractDataStore<T>> readStore(hid_t dataset, const ArrayHeader& header,
                                                const std::string& where)
{
  const uint64 bytes = header.elements * GetDataTypeSize(header.type);
  if (bytes > k_UnverifiedBytes)
  {
    const uint64 stored = H5Dget_storage_size(dataset);
    if (bytes / k_MaxExpansion > stored)
      fail(k_ErrReadData,
           fmt::format("{} declares {} bytes of data but the file stores only {} bytes for it.",
                       where, bytes, stored));
  }
  auto store = std::make_shared<DataStore<T>>(header.tupleShape, header.componentShape);
  if constexpr (std::is_same_v<T, bool>)
  {
    std::vector<uint8> raw(header.elements);
    readElements(dataset, MemoryType(DataType::boolean), raw.data(), raw.size(), where);
    for (usize i = 0; i < raw.size(); i++)
      store->setValue(i, raw[i] != 0);
  }
  else
  {
    readElements(dataset, MemoryType(GetDataType<T>()), store->data(), header.elements, where);
  }
  return store;
}

// ---------------------------------------------------------------------------
// Geometries

std::string describeObject(const DataObject& object)
{
  if (const auto* array = dynamic_cast<const IArray*>(&object))
    return fmt::format("an array of {}", DataTypeToString(array->getDataType()));
  return fmt::format("an object of type {}", object.getTypeName());
}

/** Fails when a connectivity list names a vertex the geometry does not have. */
void checkConnectivityValues(const std::string& geometryName, usize vertexCount,
                             const AbstractDataStore<uint64>& store, const std::string& listName,
                             const char* role)
{
  if (store.getStorageFormat() == PreflightDataStore<uint64>::k_StorageFormat)
    return;
  const usize size = store.getSize();
  const usize components = std::max<usize>(store.getNumberOfComponents(), 1);
  for (usize i = 0; i < size; i++)
  {
    const uint64 value = store.getValue(i);
    if (value >= vertexCount)
    {
      fail(k_ErrConnectivity,
           fmt::format("The {} '{}' of geometry '{}' refers to vertex {} (tuple {}) but the "
                       "geometry has {} vertices.",
                       role, listName, geometryName, value, i / components, vertexCount));
    }
  }
}

/** Which connectivity list of the geometry the array is, or null. */
const char* connectivityRole(const DataObject& geometry, IdType arrayId)
{
  if (const auto* g3 = dynamic_cast<const INodeGeometry3D*>(&geometry);
      g3 != nullptr && g3->getPolyhedraListId() == arrayId)
    return "polyhedra list";
  if (const auto* g2 = dynamic_cast<const INodeGeometry2D*>(&geometry);
      g2 != nullptr && g2->getFaceListId() == arrayId)
    return "face list";
  if (const auto* g1 = dynamic_cast<const INodeGeometry1D*>(&geometry);
      g1 != nullptr && g1->getEdgeListId() == arrayId)
    return "edge list";
  return nullptr;
}

/**
 * Checks that what a geometry refers to is one of its children and of the
 * right kind and shape; with checkValues, also the connectivity values.
 */
void validateGeometry(const DataStructure& ds, const IGeometry& geometry, bool checkValues)
{
  const std::string where = fmt::format("Geometry '{}'", geometry.getName());
  auto child = [&](const std::optional<IdType>& id, const char* role) -> const DataObject*
  {
    if (!id.has_value())
      return nullptr;
    if (!geometry.getDataMap().contains(*id))
      fail(
        k_ErrGeometry,
        fmt::format("{} refers to object {} as its {} but that object is not one of its children.",
                    where, *id, role));
    return ds.getData(*id);
  };
  auto attributeMatrix = [&](const std::optional<IdType>& id, const char* role)
  {
    const DataObject* object = child(id, role);
    if (object != nullptr && dynamic_cast<const AttributeMatrix*>(object) == nullptr)
      fail(k_ErrGeometry, fmt::format("{}: its {} '{}' is {}, not an AttributeMatrix.", where, role,
                                      object->getName(), describeObject(*object)));
  };

  if (const auto* grid = dynamic_cast<const IGridGeometry*>(&geometry))
    attributeMatrix(grid->getCellDataId(), "cell data");

  if (const auto* rect = dynamic_cast<const RectGridGeom*>(&geometry))
  {
    const std::optional<IdType> ids[3] = { rect->getXBoundsId(), rect->getYBoundsId(),
                                           rect->getZBoundsId() };
    const char* roles[3] = { "x bounds", "y bounds", "z bounds" };
    for (int axis = 0; axis < 3; axis++)
    {
      const DataObject* object = child(ids[axis], roles[axis]);
      if (object == nullptr)
        continue;
      const auto* bounds = dynamic_cast<const Float32Array*>(object);
      if (bounds == nullptr)
        fail(k_ErrElementType,
             fmt::format("{}: its {} '{}' must be a float32 array, found {}.", where, roles[axis],
                         object->getName(), describeObject(*object)));
      const usize expected = rect->getDimensions()[axis] + 1;
      if (bounds->getNumberOfComponents() != 1 || bounds->getNumberOfTuples() != expected)
      {
        fail(k_ErrShape, fmt::format("{}: its {} '{}' must hold {} values in 1 component (cells "
                                     "along the axis + 1), found {} tuples of {} components.",
                                     where, roles[axis], object->getName(), expected,
                                     bounds->getNumberOfTuples(), bounds->getNumberOfComponents()));
      }
    }
  }

  const auto* node = dynamic_cast<const INodeGeometry0D*>(&geometry);
  if (node == nullptr)
    return;
  if (const DataObject* object = child(node->getVertexListId(), "vertex list"))
  {
    const auto* vertices = dynamic_cast<const Float32Array*>(object);
    if (vertices == nullptr)
      fail(k_ErrElementType,
           fmt::format("{}: its vertex list '{}' must be a float32 array, found {}.", where,
                       object->getName(), describeObject(*object)));
    if (vertices->getNumberOfComponents() != 3)
      fail(k_ErrShape, fmt::format("{}: its vertex list '{}' must have 3 components, found {}.",
                                   where, object->getName(), vertices->getNumberOfComponents()));
  }
  attributeMatrix(node->getVertexAttributeMatrixId(), "vertex attribute matrix");

  auto connectivity = [&](const std::optional<IdType>& id, const char* role, usize components)
  {
    const DataObject* object = child(id, role);
    if (object == nullptr)
      return;
    const auto* list = dynamic_cast<const UInt64Array*>(object);
    if (list == nullptr)
      fail(k_ErrElementType, fmt::format("{}: its {} '{}' must be a uint64 array, found {}.", where,
                                         role, object->getName(), describeObject(*object)));
    if (list->getNumberOfComponents() != components)
    {
      fail(k_ErrShape,
           fmt::format("{}: its {} '{}' must have {} components, found {}.", where, role,
                       object->getName(), components, list->getNumberOfComponents()));
    }
    if (checkValues)
      checkConnectivityValues(geometry.getName(), node->getNumberOfVertices(),
                              list->getDataStoreRefTyped(), list->getName(), role);
  };
  if (const auto* g1 = dynamic_cast<const INodeGeometry1D*>(node))
  {
    connectivity(g1->getEdgeListId(), "edge list", 2);
    attributeMatrix(g1->getEdgeAttributeMatrixId(), "edge attribute matrix");
  }
  if (const auto* g2 = dynamic_cast<const INodeGeometry2D*>(node))
  {
    connectivity(g2->getFaceListId(), "face list", g2->getNumberOfVerticesPerFace());
    attributeMatrix(g2->getFaceAttributeMatrixId(), "face attribute matrix");
  }
  if (const auto* g3 = dynamic_cast<const INodeGeometry3D*>(node))
  {
    connectivity(g3->getPolyhedraListId(), "polyhedra list", g3->getNumberOfVerticesPerCell());
    attributeMatrix(g3->getPolyhedraAttributeMatrixId(), "polyhedra attribute matrix");
  }
}

void readGridParameters(hid_t object, IGridGeometry& grid, const std::string& where)
{
  const auto dims = readUInt64s(object, k_DimensionsAttr, where, 3, 3);
  grid.setDimensions(SizeVec3(dims[0], dims[1], dims[2]));
  grid.setCellData(readOptionalId(object, k_CellDataIdAttr, where));
}

void readNodeParameters(hid_t object, INodeGeometry0D& node, const std::string& where)
{
  node.setVertexListId(readOptionalId(object, k_VertexListIdAttr, where));
  node.setVertexAttributeMatrixId(readOptionalId(object, k_VertexAttributeMatrixIdAttr, where));
  if (auto* g1 = dynamic_cast<INodeGeometry1D*>(&node))
  {
    g1->setEdgeListId(readOptionalId(object, k_EdgeListIdAttr, where));
    g1->setEdgeAttributeMatrixId(readOptionalId(object, k_EdgeAttributeMatrixIdAttr, where));
  }
  if (auto* g2 = dynamic_cast<INodeGeometry2D*>(&node))
  {
    g2->setFaceListId(readOptionalId(object, k_FaceListIdAttr, where));
    g2->setFaceAttributeMatrixId(readOptionalId(object, k_FaceAttributeMatrixIdAttr, where));
  }
  if (auto* g3 = dynamic_cast<INodeGeometry3D*>(&node))
  {
    g3->setPolyhedraListId(readOptionalId(object, k_PolyhedraListIdAttr, where));
    g3->setPolyhedraAttributeMatrixId(
      readOptionalId(object, k_PolyhedraAttributeMatrixIdAttr, where));
  }
}

/** Fails unless an object may sit in the group: attribute matrices hold arrays of their tuple count
 * only. */
void checkFitsParent(const DataStructure& ds, std::optional<IdType> parentId, bool isArray,
                     usize tuples, const std::string& where)
{
  if (!parentId.has_value())
    return;
  const auto* matrix = ds.getDataAs<AttributeMatrix>(*parentId);
  if (matrix == nullptr)
    return;
  if (!isArray)
    fail(
      k_ErrObjectType,
      fmt::format("{} is not an array but sits in AttributeMatrix '{}', which holds arrays only.",
                  where, matrix->getName()));
  if (tuples != matrix->getNumberOfTuples())
  {
    fail(k_ErrShape,
         fmt::format("{} has {} tuples but its AttributeMatrix '{}' has TupleShape {} ({} tuples).",
                     where, tuples, matrix->getName(), shapeText(matrix->getShape()),
                     matrix->getNumberOfTuples()));
  }
}

// ---------------------------------------------------------------------------
// The tree

/**
 * Walks the HDF5 groups of a file and builds the DataStructure: every object
 * with its identifier, name and parents; arrays with their data unless this is
 * a preflight.
 */
class TreeReader
{
public:
  TreeReader(hid_t fileId, DataStructure& ds, bool preflight)
    : m_FileId(fileId)
    , m_DataStructure(ds)
    , m_Preflight(preflight)
  {
  }

  void read()
  {
    const Handle root = Handle::Group(H5Gopen2(m_FileId, "/", H5P_DEFAULT));
    if (!root.isValid())
      fail(k_ErrLayout, "The root group of the file could not be opened.");
    if (!hasAttribute(root.get(), k_FormatVersionAttr, "the file's root group"))
      fail(k_ErrVersion,
           fmt::format("The file has no '{}' attribute at its root: it is not a .voxelia file.",
                       k_FormatVersionAttr));
    const uint64 version = readUInt64(root.get(), k_FormatVersionAttr, "the file's root group");
    if (version != k_FormatVersion)
      fail(k_ErrVersion,
           fmt::format("The file has format version {}; this reader supports version {} only.",
                       version, k_FormatVersion));

    const std::string topPath = std::string("/") + k_DataStructureGroup;
    if (H5Lexists(root.get(), k_DataStructureGroup, H5P_DEFAULT) <= 0)
      fail(k_ErrLayout, fmt::format("The file has no '{}' group.", topPath));
    H5O_info2_t info;
    const Handle top = Handle::Object(H5Oopen(root.get(), k_DataStructureGroup, H5P_DEFAULT));
    if (!top.isValid() || H5Oget_info3(top.get(), &info, H5O_INFO_BASIC) < 0 ||
        info.type != H5O_TYPE_GROUP)
      fail(k_ErrLayout, fmt::format("'{}' in the file is not a group.", topPath));

    readGroup(top.get(), std::nullopt, topPath, 0);

    for (const auto& [id, visit] : m_Visited)
    {
      if (const auto* geometry = m_DataStructure.getDataAs<IGeometry>(id))
        validateGeometry(m_DataStructure, *geometry, !m_Preflight);
    }
  }

private:
  struct Entry
  {
    std::string name;
    std::string path;
    Handle object;
    H5O_type_t kind = H5O_TYPE_UNKNOWN;
    H5O_token_t token{};
    IdType id = 0;
    std::string typeName;
  };

  struct Visit
  {
    H5O_token_t token{};
    std::string name;
    std::string path;
  };

  std::vector<std::string> listLinks(hid_t group, const std::string& path)
  {
    struct Listing
    {
      std::vector<std::string> names;
      std::string notHard;
    } listing;
    auto visit = [](hid_t, const char* name, const H5L_info2_t* info, void* data) -> herr_t
    {
      auto* out = static_cast<Listing*>(data);
      try
      {
        if (info->type != H5L_TYPE_HARD)
        {
          out->notHard = name;
          return 1;
        }
        out->names.emplace_back(name);
        return 0;
      }
      catch (...)
      {
        return -1;
      }
    };
    hsize_t index = 0;
    if (H5Literate2(group, H5_INDEX_NAME, H5_ITER_NATIVE, &index, visit, &listing) < 0)
      fail(k_ErrLayout, fmt::format("The members of '{}' could not be listed.", path));
    if (!listing.notHard.empty())
      fail(k_ErrLayout,
           fmt::format("'{}/{}' is a soft or external link; objects are joined by hard links only.",
                       path, listing.notHard));
    return listing.names;
  }

  Entry openEntry(hid_t group, const std::string& name, const std::string& path)
  {
    Entry entry;
    entry.name = name;
    entry.path = path;
    const std::string where = fmt::format("'{}'", path);
    entry.object = Handle::Object(H5Oopen(group, name.c_str(), H5P_DEFAULT));
    H5O_info2_t info;
    if (!entry.object.isValid() || H5Oget_info3(entry.object.get(), &info, H5O_INFO_BASIC) < 0)
      fail(k_ErrLayout, fmt::format("The object {} could not be opened.", where));
    if (info.type != H5O_TYPE_GROUP && info.type != H5O_TYPE_DATASET)
      fail(k_ErrLayout, fmt::format("The object {} is neither a group nor a dataset.", where));
    entry.kind = info.type;
    entry.token = info.token;
    entry.id = readUInt64(entry.object.get(), k_ObjectIdAttr, where);
    entry.typeName = readString(entry.object.get(), k_ObjectTypeAttr, where);
    return entry;
  }

  void readGroup(hid_t group, std::optional<IdType> parentId, const std::string& path, usize depth)
  {
    if (depth > k_MaxDepth)
      fail(k_ErrLayout, fmt::format("'{}' is nested deeper than {} groups.", path, k_MaxDepth));

    const std::vector<std::string> names = listLinks(group, path);
    std::vector<Entry> entries;
    entries.reserve(names.size());
    for (const std::string& name : names)
      entries.push_back(openEntry(group, name, path + "/" + name));
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.id < b.id; });

    // All members first, groups' content after: an object that is both top
    // level and inside a group must enter the structure at the top level
    // first, since a top-level link cannot be added afterwards.
    std::vector<Entry*> created;
    for (Entry& entry : entries)
    {
      auto visited = m_Visited.find(entry.id);
      if (visited == m_Visited.end())
      {
        create(entry, parentId);
        m_Visited.emplace(entry.id, Visit{ entry.token, entry.name, entry.path });
        if (entry.kind == H5O_TYPE_GROUP)
          created.push_back(&entry);
      }
      else
      {
        linkAgain(entry, visited->second, parentId);
      }
    }
    for (Entry* entry : created)
      readGroup(entry->object.get(), entry->id, entry->path, depth + 1);
  }

  /** One more link to an object already read: it gains a parent. */
  void linkAgain(const Entry& entry, const Visit& first, std::optional<IdType> parentId)
  {
    int comparison = 0;
    if (H5Otoken_cmp(m_FileId, &entry.token, &first.token, &comparison) < 0 || comparison != 0)
      fail(k_ErrLayout,
           fmt::format("'{}' and '{}' are different objects with the same ObjectId {}.", first.path,
                       entry.path, entry.id));
    if (entry.name != first.name)
      fail(k_ErrLayout,
           fmt::format("'{}' and '{}' link to one object under two names; an object has one name.",
                       first.path, entry.path));
    if (!parentId.has_value())
      fail(k_ErrLayout, fmt::format("'{}' is linked twice at the top level.", entry.path));
    const DataObject* object = m_DataStructure.getData(entry.id);
    const auto* array = dynamic_cast<const IArray*>(object);
    checkFitsParent(m_DataStructure, parentId, array != nullptr,
                    array != nullptr ? array->getNumberOfTuples() : 0,
                    fmt::format("'{}'", entry.path));
    if (!m_DataStructure.setAdditionalParent(entry.id, *parentId))
      fail(
        k_ErrInsert,
        fmt::format("'{}' could not be added to its parent: it would contain itself.", entry.path));
  }

  void create(Entry& entry, std::optional<IdType> parentId)
  {
    const std::string where = fmt::format("'{}'", entry.path);
    const hid_t object = entry.object.get();
    DataStructure& ds = m_DataStructure;
    const std::string& name = entry.name;
    const IdType id = entry.id;

    if (entry.typeName == DataArray<int8>::k_TypeName)
    {
      if (entry.kind != H5O_TYPE_DATASET)
        fail(k_ErrObjectType,
             fmt::format("{} has ObjectType '{}' but is a group; arrays are datasets.", where,
                         entry.typeName));
      createArray(entry, parentId);
      return;
    }
    if (entry.kind != H5O_TYPE_GROUP)
    {
      fail(
        k_ErrObjectType,
        fmt::format("{} is a dataset but has ObjectType '{}'; only DataArray objects are datasets.",
                    where, entry.typeName));
    }

    const std::string& type = entry.typeName;
    const bool known = type == DataGroup::k_TypeName || type == AttributeMatrix::k_TypeName ||
                       type == ImageGeom::k_TypeName || type == RectGridGeom::k_TypeName ||
                       type == VertexGeom::k_TypeName || type == EdgeGeom::k_TypeName ||
                       type == TriangleGeom::k_TypeName || type == QuadGeom::k_TypeName ||
                       type == TetrahedralGeom::k_TypeName || type == HexahedralGeom::k_TypeName;
    if (!known)
      fail(k_ErrObjectType, fmt::format("{} has the unknown ObjectType '{}'.", where, type));
    checkFitsParent(ds, parentId, false, 0, where);

    DataObject* created = nullptr;
    if (type == DataGroup::k_TypeName)
    {
      created = DataGroup::Import(ds, name, id, parentId);
    }
    else if (type == AttributeMatrix::k_TypeName)
    {
      created = AttributeMatrix::Import(
        ds, name, id, readUInt64s(object, k_TupleShapeAttr, where, 1, k_MaxShapeRank), parentId);
    }
    else if (type == ImageGeom::k_TypeName)
    {
      const FloatVec3 origin = readFloat3(object, k_OriginAttr, where);
      const FloatVec3 spacing = readFloat3(object, k_SpacingAttr, where);
      if (auto* image = ImageGeom::Import(ds, name, id, parentId))
      {
        readGridParameters(object, *image, where);
        image->setOrigin(origin);
        image->setSpacing(spacing);
        created = image;
      }
    }
    else if (type == RectGridGeom::k_TypeName)
    {
      if (auto* rect = RectGridGeom::Import(ds, name, id, parentId))
      {
        readGridParameters(object, *rect, where);
        rect->setBounds(readOptionalId(object, k_XBoundsIdAttr, where),
                        readOptionalId(object, k_YBoundsIdAttr, where),
                        readOptionalId(object, k_ZBoundsIdAttr, where));
        created = rect;
      }
    }
    else
    {
      INodeGeometry0D* node = nullptr;
      if (type == VertexGeom::k_TypeName)
        node = VertexGeom::Import(ds, name, id, parentId);
      else if (type == EdgeGeom::k_TypeName)
        node = EdgeGeom::Import(ds, name, id, parentId);
      else if (type == TriangleGeom::k_TypeName)
        node = TriangleGeom::Import(ds, name, id, parentId);
      else if (type == QuadGeom::k_TypeName)
        node = QuadGeom::Import(ds, name, id, parentId);
      else if (type == TetrahedralGeom::k_TypeName)
        node = TetrahedralGeom::Import(ds, name, id, parentId);
      else
        node = HexahedralGeom::Import(ds, name, id, parentId);
      if (node != nullptr)
        readNodeParameters(object, *node, where);
      created = node;
    }
    if (created == nullptr)
      fail(k_ErrInsert,
           fmt::format(
             "{} could not be added to the structure (ObjectId {} is taken or the name clashes).",
             where, id));
  }

  void createArray(const Entry& entry, std::optional<IdType> parentId)
  {
    const std::string where = fmt::format("Array '{}'", entry.path);
    const ArrayHeader header = readArrayHeader(entry.object.get(), where);
    checkFitsParent(m_DataStructure, parentId, true, IDataStore::Product(header.tupleShape), where);
    const bool inserted =
      DispatchDataType(header.type,
                       [&]<typename T>()
                       {
                         std::shared_ptr<AbstractDataStore<T>> store;
                         if (m_Preflight)
                           store = std::make_shared<PreflightDataStore<T>>(
                             header.tupleShape, header.componentShape, entry.path);
                         else
                           store = readStore<T>(entry.object.get(), header, where);
                         return DataArray<T>::Import(m_DataStructure, entry.name, entry.id,
                                                     std::move(store), parentId) != nullptr;
                       });
    if (!inserted)
      fail(k_ErrInsert,
           fmt::format(
             "{} could not be added to the structure (ObjectId {} is taken or the name clashes).",
             where, entry.id));
  }

  hid_t m_FileId;
  DataStructure& m_DataStructure;
  bool m_Preflight;
  std::map<IdType, Visit> m_Visited;
};

// ---------------------------------------------------------------------------
// Copying one object out of a preflight tree

template<typename Geometry>
Geometry* importGeometry(const DataObject& source, DataStructure& to,
                         std::optional<IdType> parentId)
{
  return Geometry::Import(to, source.getName(), source.getId(), parentId);
}

/** A copy of a non-array object (its parameters and references, not its children) in the target. */
DataObject* importShell(const DataObject& source, DataStructure& to, std::optional<IdType> parentId)
{
  if (dynamic_cast<const DataGroup*>(&source) != nullptr)
    return DataGroup::Import(to, source.getName(), source.getId(), parentId);
  if (const auto* matrix = dynamic_cast<const AttributeMatrix*>(&source))
    return AttributeMatrix::Import(to, source.getName(), source.getId(), matrix->getShape(),
                                   parentId);

  if (const auto* image = dynamic_cast<const ImageGeom*>(&source))
  {
    auto* copy = importGeometry<ImageGeom>(source, to, parentId);
    if (copy != nullptr)
    {
      copy->setDimensions(image->getDimensions());
      copy->setCellData(image->getCellDataId());
      copy->setOrigin(image->getOrigin());
      copy->setSpacing(image->getSpacing());
    }
    return copy;
  }
  if (const auto* rect = dynamic_cast<const RectGridGeom*>(&source))
  {
    auto* copy = importGeometry<RectGridGeom>(source, to, parentId);
    if (copy != nullptr)
    {
      copy->setDimensions(rect->getDimensions());
      copy->setCellData(rect->getCellDataId());
      copy->setBounds(rect->getXBoundsId(), rect->getYBoundsId(), rect->getZBoundsId());
    }
    return copy;
  }

  const auto* node = dynamic_cast<const INodeGeometry0D*>(&source);
  if (node == nullptr)
    return nullptr;
  INodeGeometry0D* copy = nullptr;
  if (dynamic_cast<const VertexGeom*>(&source) != nullptr)
    copy = importGeometry<VertexGeom>(source, to, parentId);
  else if (dynamic_cast<const EdgeGeom*>(&source) != nullptr)
    copy = importGeometry<EdgeGeom>(source, to, parentId);
  else if (dynamic_cast<const TriangleGeom*>(&source) != nullptr)
    copy = importGeometry<TriangleGeom>(source, to, parentId);
  else if (dynamic_cast<const QuadGeom*>(&source) != nullptr)
    copy = importGeometry<QuadGeom>(source, to, parentId);
  else if (dynamic_cast<const TetrahedralGeom*>(&source) != nullptr)
    copy = importGeometry<TetrahedralGeom>(source, to, parentId);
  else if (dynamic_cast<const HexahedralGeom*>(&source) != nullptr)
    copy = importGeometry<HexahedralGeom>(source, to, parentId);
  if (copy == nullptr)
    return nullptr;
  copy->setVertexListId(node->getVertexListId());
  copy->setVertexAttributeMatrixId(node->getVertexAttributeMatrixId());
  if (const auto* g1 = dynamic_cast<const INodeGeometry1D*>(node))
  {
    auto* c1 = dynamic_cast<INodeGeometry1D*>(copy);
    c1->setEdgeListId(g1->getEdgeListId());
    c1->setEdgeAttributeMatrixId(g1->getEdgeAttributeMatrixId());
  }
  if (const auto* g2 = dynamic_cast<const INodeGeometry2D*>(node))
  {
    auto* c2 = dynamic_cast<INodeGeometry2D*>(copy);
    c2->setFaceListId(g2->getFaceListId());
    c2->setFaceAttributeMatrixId(g2->getFaceAttributeMatrixId());
  }
  if (const auto* g3 = dynamic_cast<const INodeGeometry3D*>(node))
  {
    auto* c3 = dynamic_cast<INodeGeometry3D*>(copy);
    c3->setPolyhedraListId(g3->getPolyhedraListId());
    c3->setPolyhedraAttributeMatrixId(g3->getPolyhedraAttributeMatrixId());
  }
  return copy;
}

/** Copies an array, reading its data from the file when its source has none. */
bool importArray(const DataStructure& from, const IArray& source, DataStructure& to,
                 std::optional<IdType> parentId, const HDF5::FileIO& file, bool preflight,
                 const std::string& pathText)
{
  return DispatchDataType(
    source.getDataType(),
    [&]<typename T>()
    {
      const auto& typed = dynamic_cast<const DataArray<T>&>(source);
      std::shared_ptr<AbstractDataStore<T>> store = typed.getDataStore();
      const auto* pending = dynamic_cast<const PreflightDataStore<T>*>(store.get());
      if (!preflight && pending != nullptr)
      {
        if (!file.isValid())
          fail(k_ErrFileNotOpen, file.getErrorMessage().empty()
                                   ? std::string("The file is not open.")
                                   : file.getErrorMessage());
        const std::string where = fmt::format("Array '{}'", pending->getDatasetPath());
        const Handle dataset = Handle::Dataset(H5Dopen2(
          static_cast<hid_t>(file.getId()), pending->getDatasetPath().c_str(), H5P_DEFAULT));
        if (!dataset.isValid())
          fail(k_ErrReadData, fmt::format("The dataset '{}' of '{}' is not in the file.",
                                          pending->getDatasetPath(), pathText));
        const ArrayHeader header = readArrayHeader(dataset.get(), where);
        if (header.type != source.getDataType() || header.tupleShape != pending->getTupleShape() ||
            header.componentShape != pending->getComponentShape())
          fail(k_ErrShape,
               fmt::format("{} no longer matches the structure it was preflighted into.", where));
        store = readStore<T>(dataset.get(), header, where);

        if constexpr (std::is_same_v<T, uint64>)
        {
          // the values just read, against the vertex count the preflight knows
          for (IdType geometryId : source.getParentIds())
          {
            const auto* geometry = from.getDataAs<INodeGeometry0D>(geometryId);
            const char* role =
              geometry != nullptr ? connectivityRole(*geometry, source.getId()) : nullptr;
            if (role != nullptr)
              checkConnectivityValues(geometry->getName(), geometry->getNumberOfVertices(), *store,
                                      source.getName(), role);
          }
        }
      }
      return DataArray<T>::Import(to, source.getName(), source.getId(), std::move(store),
                                  parentId) != nullptr;
    });
}

template<typename T>
Result<T> failureResult(const Failure& failure)
{
  return MakeErrorResult<T>(failure.code, failure.message);
}
} // namespace

Result<DataStructure> ImportDataStructureFromFile(const HDF5::FileIO& file, bool preflight)
{
  HDF5::SilenceErrorStack();
  if (!file.isValid())
  {
    return MakeErrorResult<DataStructure>(
      k_ErrFileNotOpen, file.getErrorMessage().empty()
                          ? fmt::format("The file '{}' is not open.", file.getFilePath().string())
                          : file.getErrorMessage());
  }
  try
  {
    DataStructure ds;
    TreeReader reader(static_cast<hid_t>(file.getId()), ds, preflight);
    reader.read();
    return Result<DataStructure>(std::move(ds));
  }
  catch (const Failure& failure)
  {
    return failureResult<DataStructure>(failure);
  }
  catch (const std::bad_alloc&)
  {
    return MakeErrorResult<DataStructure>(
      k_ErrReadData, fmt::format("Not enough memory to read '{}'.", file.getFilePath().string()));
  }
}

std::vector<DataPath> ExpandSelectedPathsToAncestors(const std::vector<DataPath>& paths)
{
  std::vector<DataPath> expanded;
  std::set<DataPath> seen;
  for (const DataPath& path : paths)
  {
    const auto& names = path.getPathVector();
    for (usize length = 1; length <= names.size(); length++)
    {
      DataPath prefix(std::vector<std::string>(
        names.begin(), names.begin() + static_cast<std::ptrdiff_t>(length)));
      if (seen.insert(prefix).second)
        expanded.push_back(std::move(prefix));
    }
  }
  return expanded;
}

Result<void> FinishImportingObject(DataStructure& from, DataStructure& to, const DataPath& path,
                                   const HDF5::FileIO& file, bool preflight)
{
  HDF5::SilenceErrorStack();
  const std::string pathText = path.toString("/");
  try
  {
    const std::shared_ptr<DataObject> source = from.getSharedData(path);
    if (!source)
      fail(k_ErrPath,
           fmt::format("There is no object at '{}' in the structure to import from.", pathText));

    std::optional<IdType> parentId;
    const DataPath parentPath = path.getParent();
    if (!parentPath.empty())
    {
      parentId = to.getId(parentPath);
      if (!parentId.has_value())
        fail(k_ErrPath, fmt::format("The parent '{}' of '{}' has not been imported yet.",
                                    parentPath.toString("/"), pathText));
    }

    if (const DataObject* existing = to.getData(source->getId()))
    {
      if (existing->getTypeName() != source->getTypeName() ||
          existing->getName() != source->getName())
      {
        fail(k_ErrInsert,
             fmt::format("Cannot import '{}': its identifier {} is taken by '{}' in the target.",
                         pathText, source->getId(), existing->getName()));
      }
      const auto& parents = existing->getParentIds();
      const bool linked = parentId.has_value()
                            ? std::find(parents.begin(), parents.end(), *parentId) != parents.end()
                            : to.getDataMap().contains(existing->getId());
      if (linked)
        return {};
      if (!parentId.has_value())
        fail(k_ErrInsert,
             fmt::format(
               "'{}' is already inside a group of the target and cannot become top level as well.",
               pathText));
      if (!to.setAdditionalParent(existing->getId(), *parentId))
        fail(k_ErrInsert, fmt::format("'{}' could not be added to '{}' as a further parent.",
                                      pathText, parentPath.toString("/")));
      return {};
    }

    bool inserted = false;
    if (const auto* array = dynamic_cast<const IArray*>(source.get()))
      inserted = importArray(from, *array, to, parentId, file, preflight, pathText);
    else
      inserted = importShell(*source, to, parentId) != nullptr;
    if (!inserted)
    {
      fail(k_ErrInsert, fmt::format("'{}' could not be added to the target (a sibling has its name "
                                    "or its parent refuses it).",
                                    pathText));
    }
    return {};
  }
  catch (const Failure& failure)
  {
    return Result<void>(std::vector<Error>{ Error{ failure.code, failure.message } });
  }
  catch (const std::bad_alloc&)
  {
    return Result<void>(std::vector<Error>{
      Error{ k_ErrReadData, fmt::format("Not enough memory to read '{}'.", pathText) } });
  }
}
} // namespace kx::core::VOXELIA
