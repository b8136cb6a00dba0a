// Writing ".voxelia" files: WriteFile. The layout is described in
// docs/voxelia-format.md; names live in VoxeliaLayout.hpp.
#include "kxcore/VoxeliaFile.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/DataArray.hpp"
#include "kxcore/DataStore.hpp"
#include "kxcore/ImageGeom.hpp"
#include "kxcore/INodeGeometry3D.hpp"
#include "kxcore/RectGridGeom.hpp"

#include "HDF5Handle.hpp"
#include "PreflightDataStore.hpp"
#include "VoxeliaLayout.hpp"

#include <fmt/format.h>

#include <atomic>
#include <map>
#include <system_error>
#include <unistd.h>

namespace kx::core::VOXELIA
{
namespace
{
using HDF5::Handle;
using namespace Layout;

/** Thrown inside the writer and turned into an invalid Result at the API boundary. */
struct WriteFailure
{
  std::string message;
};

[[noreturn]] void fail(std::string message)
{
  throw WriteFailure{ std::move(message) };
}

std::string hdf5Detail()
{
  const std::string detail = HDF5::MostSpecificError();
  return detail.empty() ? std::string() : ": " + detail;
}

// ---------------------------------------------------------------------------
// Attributes

void writeAttribute(hid_t object, const char* name, hid_t fileType, hid_t memoryType,
                    const Handle& space, const void* data)
{
  const Handle attribute =
    Handle::Attribute(H5Acreate2(object, name, fileType, space.get(), H5P_DEFAULT, H5P_DEFAULT));
  if (!attribute.isValid() || H5Awrite(attribute.get(), memoryType, data) < 0)
    fail(fmt::format("The attribute '{}' could not be written{}.", name, hdf5Detail()));
}

void writeString(hid_t object, const char* name, const std::string& value)
{
  const Handle type = Handle::Datatype(H5Tcopy(H5T_C_S1));
  H5Tset_size(type.get(), std::max<usize>(value.size(), 1));
  H5Tset_strpad(type.get(), H5T_STR_NULLPAD);
  H5Tset_cset(type.get(), H5T_CSET_UTF8);
  const Handle space = Handle::Dataspace(H5Screate(H5S_SCALAR));
  writeAttribute(object, name, type.get(), type.get(), space, value.c_str());
}

void writeUInt64(hid_t object, const char* name, uint64 value)
{
  const Handle space = Handle::Dataspace(H5Screate(H5S_SCALAR));
  writeAttribute(object, name, H5T_STD_U64LE, H5T_NATIVE_UINT64, space, &value);
}

void writeUInt64s(hid_t object, const char* name, const std::vector<uint64>& values)
{
  const hsize_t count = values.size();
  const Handle space = Handle::Dataspace(H5Screate_simple(1, &count, nullptr));
  writeAttribute(object, name, H5T_STD_U64LE, H5T_NATIVE_UINT64, space, values.data());
}

void writeFloat3(hid_t object, const char* name, const FloatVec3& values)
{
  const hsize_t count = 3;
  const Handle space = Handle::Dataspace(H5Screate_simple(1, &count, nullptr));
  writeAttribute(object, name, H5T_IEEE_F32LE, H5T_NATIVE_FLOAT, space, values.data());
}

// ---------------------------------------------------------------------------
// The tree

/** Writes the objects of a DataStructure as HDF5 groups and datasets, one per object. */
class TreeWriter
{
public:
  TreeWriter(hid_t fileId, const DataStructure& ds)
    : m_FileId(fileId)
    , m_DataStructure(ds)
  {
  }

  void write()
  {
    const Handle root = Handle::Group(H5Gopen2(m_FileId, "/", H5P_DEFAULT));
    if (!root.isValid())
      fail(fmt::format("The root group could not be opened{}.", hdf5Detail()));
    const uint32_t version = k_FormatVersion;
    const Handle space = Handle::Dataspace(H5Screate(H5S_SCALAR));
    writeAttribute(root.get(), k_FormatVersionAttr, H5T_STD_U32LE, H5T_NATIVE_UINT32, space,
                   &version);

    const Handle top = Handle::Group(
      H5Gcreate2(root.get(), k_DataStructureGroup, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (!top.isValid())
      fail(
        fmt::format("The group '{}' could not be created{}.", k_DataStructureGroup, hdf5Detail()));
    writeMembers(top.get(), m_DataStructure.getDataMap(), std::string("/") + k_DataStructureGroup);
  }

private:
  void writeMembers(hid_t group, const DataMap& members, const std::string& path)
  {
    // ascending identifier, so that the first link of a shared object is the one the reader meets
    // first
    for (const auto& [id, object] : members)
      writeObject(group, *object, path);
  }

  void writeObject(hid_t group, const DataObject& object, const std::string& parentPath)
  {
    const std::string& name = object.getName();
    if (name.empty() || name == "." || name.find('/') != std::string::npos)
    {
      fail(fmt::format("The object name '{}' (ObjectId {}) cannot be stored: names must be "
                       "non-empty, not '.', and without '/'.",
                       name, object.getId()));
    }
    const std::string path = parentPath + "/" + name;
    if (auto written = m_Written.find(object.getId()); written != m_Written.end())
    {
      // a further parent of an object already written: one more hard link to it
      if (H5Lcreate_hard(m_FileId, written->second.c_str(), group, name.c_str(), H5P_DEFAULT,
                         H5P_DEFAULT) < 0)
        fail(fmt::format("The link '{}' to '{}' could not be created{}.", path, written->second,
                         hdf5Detail()));
      return;
    }
    m_Written.emplace(object.getId(), path);

    if (const auto* array = dynamic_cast<const IArray*>(&object))
    {
      writeArray(group, *array, path);
      return;
    }
    const auto* members = dynamic_cast<const BaseGroup*>(&object);
    if (members == nullptr)
      fail(
        fmt::format("'{}' is a {}, which this format cannot store.", path, object.getTypeName()));

    const Handle created =
      Handle::Group(H5Gcreate2(group, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (!created.isValid())
      fail(fmt::format("The group '{}' could not be created{}.", path, hdf5Detail()));
    writeUInt64(created.get(), k_ObjectIdAttr, object.getId());
    writeString(created.get(), k_ObjectTypeAttr, object.getTypeName());
    writeParameters(created.get(), object, path);
    writeMembers(created.get(), members->getDataMap(), path);
  }

  void writeParameters(hid_t group, const DataObject& object, const std::string& path)
  {
    if (const auto* matrix = dynamic_cast<const AttributeMatrix*>(&object))
    {
      if (matrix->getShape().empty())
        fail(fmt::format("AttributeMatrix '{}' has an empty tuple shape.", path));
      writeUInt64s(group, k_TupleShapeAttr, matrix->getShape());
      return;
    }
    const auto* geometry = dynamic_cast<const IGeometry*>(&object);
    if (geometry == nullptr)
      return;

    auto reference = [&](const char* attribute, const std::optional<IdType>& id, const char* role)
    {
      if (!id.has_value())
        return;
      // the reader accepts references to children only; refuse to write what it would refuse to
      // read
      if (!geometry->getDataMap().contains(*id))
      {
        fail(fmt::format(
          "Geometry '{}' refers to object {} as its {} but that object is not one of its children.",
          path, *id, role));
      }
      writeUInt64(group, attribute, *id);
    };

    if (const auto* grid = dynamic_cast<const IGridGeometry*>(geometry))
    {
      const SizeVec3 dims = grid->getDimensions();
      writeUInt64s(group, k_DimensionsAttr, { dims[0], dims[1], dims[2] });
      reference(k_CellDataIdAttr, grid->getCellDataId(), "cell data");
    }
    if (const auto* image = dynamic_cast<const ImageGeom*>(geometry))
    {
      writeFloat3(group, k_OriginAttr, image->getOrigin());
      writeFloat3(group, k_SpacingAttr, image->getSpacing());
    }
    if (const auto* rect = dynamic_cast<const RectGridGeom*>(geometry))
    {
      reference(k_XBoundsIdAttr, rect->getXBoundsId(), "x bounds");
      reference(k_YBoundsIdAttr, rect->getYBoundsId(), "y bounds");
      reference(k_ZBoundsIdAttr, rect->getZBoundsId(), "z bounds");
    }
    if (const auto* node = dynamic_cast<const INodeGeometry0D*>(geometry))
    {
      reference(k_VertexListIdAttr, node->getVertexListId(), "vertex list");
      reference(k_VertexAttributeMatrixIdAttr, node->getVertexAttributeMatrixId(),
                "vertex attribute matrix");
    }
    if (const auto* g1 = dynamic_cast<const INodeGeometry1D*>(geometry))
    {
      reference(k_EdgeListIdAttr, g1->getEdgeListId(), "edge list");
      reference(k_EdgeAttributeMatrixIdAttr, g1->getEdgeAttributeMatrixId(),
                "edge attribute matrix");
    }
    if (const auto* g2 = dynamic_cast<const INodeGeometry2D*>(geometry))
    {
      reference(k_FaceListIdAttr, g2->getFaceListId(), "face list");
      reference(k_FaceAttributeMatrixIdAttr, g2->getFaceAttributeMatrixId(),
                "face attribute matrix");
    }
    if (const auto* g3 = dynamic_cast<const INodeGeometry3D*>(geometry))
    {
      reference(k_PolyhedraListIdAttr, g3->getPolyhedraListId(), "polyhedra list");
      reference(k_PolyhedraAttributeMatrixIdAttr, g3->getPolyhedraAttributeMatrixId(),
                "polyhedra attribute matrix");
    }
  }

  void writeArray(hid_t group, const IArray& array, const std::string& path)
  {
    const ShapeType tupleShape = array.getTupleShape();
    const ShapeType componentShape = array.getComponentShape();
    if (tupleShape.empty() || componentShape.empty())
      fail(fmt::format("Array '{}' has an empty tuple or component shape.", path));
    if (array.getStorageFormat() == PreflightDataStore<int8>::k_StorageFormat)
      fail(fmt::format(
        "Array '{}' has no element data (it was imported by a preflight) and cannot be written.",
        path));

    std::vector<hsize_t> dims(tupleShape.begin(), tupleShape.end());
    dims.insert(dims.end(), componentShape.begin(), componentShape.end());
    const Handle space =
      Handle::Dataspace(H5Screate_simple(static_cast<int>(dims.size()), dims.data(), nullptr));
    const DataType type = array.getDataType();
    const Handle dataset =
      Handle::Dataset(H5Dcreate2(group, array.getName().c_str(), FileType(type), space.get(),
                                 H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (!space.isValid() || !dataset.isValid())
      fail(fmt::format("The dataset '{}' could not be created{}.", path, hdf5Detail()));

    DispatchDataType(
      type,
      [&]<typename T>()
      {
        const auto& typed = dynamic_cast<const DataArray<T>&>(array);
        const auto store = typed.getDataStore();
        const usize size = store->getSize();
        if (size == 0)
          return;
        const void* data = nullptr;
        std::vector<std::conditional_t<std::is_same_v<T, bool>, uint8, T>> copy;
        const auto* memory = dynamic_cast<const DataStore<T>*>(store.get());
        if (memory != nullptr && !std::is_same_v<T, bool>)
        {
          data = memory->data();
        }
        else
        {
          // bool goes out as uint8; stores that are not in memory are gathered element by element
          copy.resize(size);
          for (usize i = 0; i < size; i++)
            copy[i] = static_cast<typename decltype(copy)::value_type>(store->getValue(i));
          data = copy.data();
        }
        if (H5Dwrite(dataset.get(), MemoryType(type), H5S_ALL, H5S_ALL, H5P_DEFAULT, data) < 0)
          fail(fmt::format("The data of '{}' could not be written{}.", path, hdf5Detail()));
      });

    writeUInt64(dataset.get(), k_ObjectIdAttr, array.getId());
    writeString(dataset.get(), k_ObjectTypeAttr, array.getTypeName());
    writeString(dataset.get(), k_ElementTypeAttr, std::string(DataTypeToString(type)));
    writeUInt64s(dataset.get(), k_TupleShapeAttr, tupleShape);
    writeUInt64s(dataset.get(), k_ComponentShapeAttr, componentShape);
  }

  hid_t m_FileId;
  const DataStructure& m_DataStructure;
  /** Where each object was first written, for the hard links of its further parents. */
  std::map<IdType, std::string> m_Written;
};

std::atomic<unsigned> s_TempCounter{ 0 };
} // namespace

Result<void> WriteFile(const std::filesystem::path& filePath, const DataStructure& dataStructure)
{
  HDF5::SilenceErrorStack();
  auto error = [](std::string message)
  { return Result<void>(std::vector<Error>{ Error{ k_ErrWrite, std::move(message) } }); };
  if (filePath.empty() || !filePath.has_filename())
    return error(fmt::format("'{}' is not a file path.", filePath.string()));

  const std::filesystem::path directory =
    filePath.has_parent_path() ? filePath.parent_path() : std::filesystem::path(".");
  const std::filesystem::path tempPath =
    directory / fmt::format(".{}.{}-{}.tmp", filePath.filename().string(), ::getpid(),
                            s_TempCounter.fetch_add(1));
  std::error_code ec;
  try
  {
    {
      // the 1.8 file format: checksummed metadata, so damage is detected, and readable by any HDF5
      // since 1.8
      const Handle access = Handle::PropertyList(H5Pcreate(H5P_FILE_ACCESS));
      H5Pset_libver_bounds(access.get(), H5F_LIBVER_V18, H5F_LIBVER_V18);
      Handle file =
        Handle::File(H5Fcreate(tempPath.string().c_str(), H5F_ACC_EXCL, H5P_DEFAULT, access.get()));
      if (!file.isValid())
        fail(fmt::format("Cannot write '{}': the file '{}' could not be created{}.",
                         filePath.string(), tempPath.string(), hdf5Detail()));
      TreeWriter(file.get(), dataStructure).write();
      if (!file.close())
        fail(fmt::format("Cannot write '{}': the data could not be flushed to disk{}.",
                         filePath.string(), hdf5Detail()));
    }
    std::filesystem::rename(tempPath, filePath, ec);
    if (ec)
      fail(fmt::format("Cannot write '{}': the finished file could not replace it ({}).",
                       filePath.string(), ec.message()));
    return {};
  }
  catch (const WriteFailure& failure)
  {
    std::filesystem::remove(tempPath, ec);
    return error(failure.message);
  }
  catch (const std::bad_alloc&)
  {
    std::filesystem::remove(tempPath, ec);
    return error(fmt::format("Not enough memory to write '{}'.", filePath.string()));
  }
}
} // namespace kx::core::VOXELIA
