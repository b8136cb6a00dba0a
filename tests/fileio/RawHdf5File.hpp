#pragma once

#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace kxtest
{
/**
 * A written .voxelia file opened with the plain HDF5 C API, to check the
 * layout as a third-party reader sees it and to damage it on purpose.
 */
class RawHdf5File
{
public:
  RawHdf5File(const std::filesystem::path& path, bool writable)
  {
    m_Id = H5Fopen(path.string().c_str(), writable ? H5F_ACC_RDWR : H5F_ACC_RDONLY, H5P_DEFAULT);
    EXPECT_GE(m_Id, 0) << "cannot open " << path;
  }
  ~RawHdf5File()
  {
    if (m_Id >= 0)
      H5Fclose(m_Id);
  }
  RawHdf5File(const RawHdf5File&) = delete;
  RawHdf5File& operator=(const RawHdf5File&) = delete;

  hid_t id() const { return m_Id; }

  void deleteAttribute(const std::string& object, const std::string& name)
  {
    ASSERT_GE(H5Adelete_by_name(m_Id, object.c_str(), name.c_str(), H5P_DEFAULT), 0)
      << object << " @" << name;
  }

  void setString(const std::string& object, const std::string& name, const std::string& value)
  {
    removeIfPresent(object, name);
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, value.size());
    const hid_t space = H5Screate(H5S_SCALAR);
    const hid_t attr = H5Acreate_by_name(m_Id, object.c_str(), name.c_str(), type, space,
                                         H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_GE(H5Awrite(attr, type, value.c_str()), 0);
    H5Aclose(attr);
    H5Sclose(space);
    H5Tclose(type);
  }

  /** A list attribute of unsigned 64-bit values; scalar if asked. */
  void setUInt64s(const std::string& object, const std::string& name,
                  const std::vector<std::uint64_t>& values, bool scalar = false)
  {
    removeIfPresent(object, name);
    const hsize_t count = values.size();
    const hid_t space = scalar ? H5Screate(H5S_SCALAR) : H5Screate_simple(1, &count, nullptr);
    const hid_t attr = H5Acreate_by_name(m_Id, object.c_str(), name.c_str(), H5T_STD_U64LE, space,
                                         H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_GE(H5Awrite(attr, H5T_NATIVE_UINT64, values.data()), 0);
    H5Aclose(attr);
    H5Sclose(space);
  }

  std::vector<std::uint64_t> readUInt64s(const std::string& object, const std::string& name)
  {
    const hid_t attr =
      H5Aopen_by_name(m_Id, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_GE(attr, 0) << object << " @" << name;
    const hid_t space = H5Aget_space(attr);
    std::vector<std::uint64_t> values(
      static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
    EXPECT_GE(H5Aread(attr, H5T_NATIVE_UINT64, values.data()), 0);
    H5Sclose(space);
    H5Aclose(attr);
    return values;
  }

  std::string readString(const std::string& object, const std::string& name)
  {
    const hid_t attr =
      H5Aopen_by_name(m_Id, object.c_str(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT);
    EXPECT_GE(attr, 0) << object << " @" << name;
    const hid_t type = H5Aget_type(attr);
    std::string value(H5Tget_size(type), '\0');
    EXPECT_GE(H5Aread(attr, type, value.data()), 0);
    H5Tclose(type);
    H5Aclose(attr);
    return value.substr(0, value.find('\0'));
  }

  std::vector<hsize_t> datasetDims(const std::string& path)
  {
    const hid_t dataset = H5Dopen2(m_Id, path.c_str(), H5P_DEFAULT);
    EXPECT_GE(dataset, 0) << path;
    const hid_t space = H5Dget_space(dataset);
    std::vector<hsize_t> dims(
      static_cast<std::size_t>(std::max(0, H5Sget_simple_extent_ndims(space))));
    H5Sget_simple_extent_dims(space, dims.data(), nullptr);
    H5Sclose(space);
    H5Dclose(dataset);
    return dims;
  }

  /** Reads a whole dataset converted to the memory type. */
  template<typename T>
  std::vector<T> readDataset(const std::string& path, hid_t memoryType)
  {
    const hid_t dataset = H5Dopen2(m_Id, path.c_str(), H5P_DEFAULT);
    EXPECT_GE(dataset, 0) << path;
    const hid_t space = H5Dget_space(dataset);
    std::vector<T> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space)));
    EXPECT_GE(H5Dread(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    H5Sclose(space);
    H5Dclose(dataset);
    return values;
  }

  /** Overwrites all elements of an existing dataset. */
  template<typename T>
  void writeDataset(const std::string& path, hid_t memoryType, const std::vector<T>& values)
  {
    const hid_t dataset = H5Dopen2(m_Id, path.c_str(), H5P_DEFAULT);
    ASSERT_GE(dataset, 0) << path;
    EXPECT_GE(H5Dwrite(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    H5Dclose(dataset);
  }

  /**
   * Replaces a dataset by one of another file type and dimensions, carrying
   * over its ObjectId and ObjectType and setting the array attributes given.
   */
  template<typename T>
  void replaceDataset(const std::string& path, hid_t fileType, hid_t memoryType,
                      const std::vector<hsize_t>& dims, const std::vector<T>& values,
                      const std::string& elementType, const std::vector<std::uint64_t>& tupleShape,
                      const std::vector<std::uint64_t>& componentShape)
  {
    const auto objectId = readUInt64s(path, "ObjectId");
    const std::string objectType = readString(path, "ObjectType");
    ASSERT_GE(H5Ldelete(m_Id, path.c_str(), H5P_DEFAULT), 0) << path;
    const hid_t space = H5Screate_simple(static_cast<int>(dims.size()), dims.data(), nullptr);
    const hid_t dataset =
      H5Dcreate2(m_Id, path.c_str(), fileType, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(dataset, 0) << path;
    EXPECT_GE(H5Dwrite(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    H5Dclose(dataset);
    H5Sclose(space);
    setUInt64s(path, "ObjectId", objectId, true);
    setString(path, "ObjectType", objectType);
    setString(path, "ElementType", elementType);
    setUInt64s(path, "TupleShape", tupleShape);
    setUInt64s(path, "ComponentShape", componentShape);
  }

private:
  void removeIfPresent(const std::string& object, const std::string& name)
  {
    if (H5Aexists_by_name(m_Id, object.c_str(), name.c_str(), H5P_DEFAULT) > 0)
      H5Adelete_by_name(m_Id, object.c_str(), name.c_str(), H5P_DEFAULT);
  }

  hid_t m_Id = H5I_INVALID_HID;
};

/** Number of HDF5 files and objects still open in the process. */
inline ssize_t OpenHdf5Objects()
{
  return H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL);
}
} // namespace kxtest
