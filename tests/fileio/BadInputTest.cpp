// Files that are not .voxelia files, or damaged ones, give an invalid Result
// with a message saying what is wrong: never a crash, never an open HDF5 object.
#include "RawHdf5File.hpp"
#include "VoxeliaTestData.hpp"

#include "kxcore/VoxeliaFile.hpp"

#include "TestSupport.hpp"

#include <fstream>
#include <functional>
#include <iterator>

using namespace kx::core;
using namespace kxtest;

namespace
{
std::string ReadError(const std::filesystem::path& path, bool preflight)
{
  const auto file = HDF5::FileIO::ReadFile(path);
  const auto result = VOXELIA::ImportDataStructureFromFile(file, preflight);
  if (result.isValid())
    return "<valid>";
  return result.errors().empty() ? std::string("<no message>") : result.errors().front().message;
}

/** A small file with one image and one triangle surface. */
DataStructure MakeSmallStructure()
{
  DataStructure ds;
  auto* image = ImageGeom::Import(ds, "Image", 1);
  image->setDimensions(SizeVec3(4, 3, 2));
  AttributeMatrix::Import(ds, "Cell Data", 2, { 2, 3, 4 }, 1);
  image->setCellData(2);
  std::vector<int32> phases(24, 1);
  AddArray<int32>(ds, "Phases", 3, { 2, 3, 4 }, { 1 }, phases, 2);
  auto* surface = TriangleGeom::Import(ds, "Surface", 10);
  AddArray<float32>(ds, "Vertices", 11, { 4 }, { 3 }, { 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 }, 10);
  AddArray<uint64>(ds, "Faces", 12, { 2 }, { 3 }, { 0, 1, 2, 0, 2, 3 }, 10);
  surface->setVertexListId(11);
  surface->setFaceListId(12);
  DataGroup::Import(ds, "Other", 20);
  AddArray<float32>(ds, "Loose", 21, { 4 }, { 3 }, std::vector<float32>(12, 0.5f), 20);
  return ds;
}

class BadInput : public ::testing::Test
{
protected:
  void SetUp() override
  {
    m_Path = m_Dir / "small.voxelia";
    ASSERT_TRUE(VOXELIA::WriteFile(m_Path, MakeSmallStructure()).isValid());
    ASSERT_EQ(ReadError(m_Path, false), "<valid>");
  }
  void TearDown() override { EXPECT_EQ(OpenHdf5Objects(), 0) << "an HDF5 object was left open"; }

  TempDir m_Dir;
  std::filesystem::path m_Path;
};
} // namespace

TEST_F(BadInput, FilesThatAreNotHdf5AreRejectedWithTheReason)
{
  const auto text = m_Dir / "notes.voxelia";
  WriteBytes(text, "FeatureIds,Phases\n1,2\n3,4\n");
  EXPECT_EQ(ReadError(text, true),
            fmt::format("The file '{}' is not an HDF5 file.", text.string()));

  const auto empty = m_Dir / "empty.voxelia";
  WriteBytes(empty, "");
  EXPECT_EQ(ReadError(empty, true), fmt::format("The file '{}' is empty.", empty.string()));

  const auto missing = m_Dir / "missing.voxelia";
  EXPECT_EQ(ReadError(missing, true),
            fmt::format("The file '{}' does not exist.", missing.string()));

  EXPECT_EQ(ReadError(m_Dir.path(), true),
            fmt::format("'{}' is a directory, not a file.", m_Dir.path().string()));
}

TEST_F(BadInput, TruncatedFilesAreRejectedAtEveryCut)
{
  const std::string bytes = ReadBytes(m_Path);
  ASSERT_GT(bytes.size(), 2000u);
  const auto cut = m_Dir / "cut.voxelia";
  std::vector<usize> offsets = { 1, 4, 7, 8, 12, 40, 96, 200, 512, 800, 1024, 1500 };
  for (usize step = 1; step < 16; step++)
    offsets.push_back(bytes.size() * step / 16);
  offsets.push_back(bytes.size() - 1);
  for (usize offset : offsets)
  {
    SCOPED_TRACE(offset);
    WriteBytes(cut, bytes.substr(0, offset));
    for (bool preflight : { true, false })
    {
      const std::string error = ReadError(cut, preflight);
      if (offset < 8)
        EXPECT_EQ(error, fmt::format("The file '{}' is not an HDF5 file.",
                                     cut.string())); // no complete signature
      else
        EXPECT_NE(error.find(fmt::format(
                    "The file '{}' could not be opened as HDF5, it may be truncated or damaged",
                    cut.string())),
                  std::string::npos)
          << error;
    }
  }
}

TEST_F(BadInput, DamagedContentIsRejectedWithASpecificMessage)
{
  using Tamper = std::function<void(RawHdf5File&)>;
  struct Case
  {
    std::string name;
    Tamper tamper;
    std::string expected;
    bool preflightFails;
  };
  const std::vector<Case> cases = {
    { "missing version", [](RawHdf5File& f) { f.deleteAttribute("/", "VoxeliaFormatVersion"); },
      "The file has no 'VoxeliaFormatVersion' attribute at its root: it is not a .voxelia file.",
      true },
    { "newer version",
      [](RawHdf5File& f) { f.setUInt64s("/", "VoxeliaFormatVersion", { 2 }, true); },
      "The file has format version 2; this reader supports version 1 only.", true },
    { "version as text", [](RawHdf5File& f) { f.setString("/", "VoxeliaFormatVersion", "1"); },
      "The 'VoxeliaFormatVersion' attribute of the file's root group must be an integer.", true },
    { "no structure group", [](RawHdf5File& f)
      { H5Lmove(f.id(), "/DataStructure", f.id(), "/Elsewhere", H5P_DEFAULT, H5P_DEFAULT); },
      "The file has no '/DataStructure' group.", true },
    { "unknown object type",
      [](RawHdf5File& f) { f.setString("/DataStructure/Other", "ObjectType", "SphereGeom"); },
      "'/DataStructure/Other' has the unknown ObjectType 'SphereGeom'.", true },
    { "group claiming to be an array",
      [](RawHdf5File& f) { f.setString("/DataStructure/Other", "ObjectType", "DataArray"); },
      "'/DataStructure/Other' has ObjectType 'DataArray' but is a group; arrays are datasets.",
      true },
    { "missing object id",
      [](RawHdf5File& f) { f.deleteAttribute("/DataStructure/Other/Loose", "ObjectId"); },
      "'/DataStructure/Other/Loose' has no 'ObjectId' attribute.", true },
    { "duplicate object id",
      [](RawHdf5File& f) { f.setUInt64s("/DataStructure/Other/Loose", "ObjectId", { 11 }, true); },
      "'/DataStructure/Surface/Vertices' and '/DataStructure/Other/Loose' are different objects "
      "with the same ObjectId 11.",
      true },
    { "unknown element type",
      [](RawHdf5File& f) { f.setString("/DataStructure/Other/Loose", "ElementType", "int128"); },
      "Array '/DataStructure/Other/Loose' has the unknown element type 'int128'.", true },
    { "element type disagreeing with the dataset", [](RawHdf5File& f)
      { f.setString("/DataStructure/Image/Cell Data/Phases", "ElementType", "int16"); },
      "Array '/DataStructure/Image/Cell Data/Phases' declares ElementType 'int16' but its dataset "
      "holds int32.",
      true },
    { "tuple shape disagreeing with the dataset",
      [](RawHdf5File& f) { f.setUInt64s("/DataStructure/Other/Loose", "TupleShape", { 2, 2 }); },
      "Array '/DataStructure/Other/Loose' has TupleShape [2, 2] and ComponentShape [3] but its "
      "dataset has dimensions [4, 3].",
      true },
    { "attribute matrix shape disagreeing with its arrays",
      [](RawHdf5File& f) { f.setUInt64s("/DataStructure/Image/Cell Data", "TupleShape", { 5 }); },
      "Array '/DataStructure/Image/Cell Data/Phases' has 24 tuples but its AttributeMatrix 'Cell "
      "Data' has TupleShape [5] (5 tuples).",
      true },
    { "image dimensions of two values",
      [](RawHdf5File& f) { f.setUInt64s("/DataStructure/Image", "Dimensions", { 4, 3 }); },
      "The 'Dimensions' attribute of '/DataStructure/Image' must have 3 values, found 2.", true },
    { "vertices stored as float64",
      [](RawHdf5File& f)
      {
        f.replaceDataset<double>("/DataStructure/Surface/Vertices", H5T_IEEE_F64LE,
                                 H5T_NATIVE_DOUBLE, { 4, 3 }, std::vector<double>(12, 0.0),
                                 "float64", { 4 }, { 3 });
      },
      "Geometry 'Surface': its vertex list 'Vertices' must be a float32 array, found an array of "
      "float64.",
      true },
    { "connectivity stored as int64",
      [](RawHdf5File& f)
      {
        f.replaceDataset<std::int64_t>("/DataStructure/Surface/Faces", H5T_STD_I64LE,
                                       H5T_NATIVE_INT64, { 2, 3 }, { 0, 1, 2, 0, 2, 3 }, "int64",
                                       { 2 }, { 3 });
      },
      "Geometry 'Surface': its face list 'Faces' must be a uint64 array, found an array of int64.",
      true },
    { "triangles with four corners",
      [](RawHdf5File& f)
      {
        f.replaceDataset<std::uint64_t>("/DataStructure/Surface/Faces", H5T_STD_U64LE,
                                        H5T_NATIVE_UINT64, { 2, 4 }, { 0, 1, 2, 3, 0, 2, 3, 1 },
                                        "uint64", { 2 }, { 4 });
      },
      "Geometry 'Surface': its face list 'Faces' must have 3 components, found 4.", true },
    { "reference to an object that is not a child",
      [](RawHdf5File& f) { f.setUInt64s("/DataStructure/Surface", "VertexListId", { 21 }, true); },
      "Geometry 'Surface' refers to object 21 as its vertex list but that object is not one of its "
      "children.",
      true },
    { "cell data that is an array",
      [](RawHdf5File& f)
      {
        H5Lcreate_hard(f.id(), "/DataStructure/Other/Loose", f.id(), "/DataStructure/Image/Loose",
                       H5P_DEFAULT, H5P_DEFAULT);
        f.setUInt64s("/DataStructure/Image", "CellDataId", { 21 }, true);
      },
      "Geometry 'Image': its cell data 'Loose' is an array of float32, not an AttributeMatrix.",
      true },
    { "connectivity past the vertex count",
      [](RawHdf5File& f)
      {
        f.writeDataset<std::uint64_t>("/DataStructure/Surface/Faces", H5T_NATIVE_UINT64,
                                      { 0, 1, 2, 0, 2, 99 });
      },
      "The face list 'Faces' of geometry 'Surface' refers to vertex 99 (tuple 1) but the geometry "
      "has 4 vertices.",
      false },
    { "soft link",
      [](RawHdf5File& f)
      {
        H5Lcreate_soft("/DataStructure/Other", f.id(), "/DataStructure/Alias", H5P_DEFAULT,
                       H5P_DEFAULT);
      },
      "'/DataStructure/Alias' is a soft or external link; objects are joined by hard links only.",
      true },
    { "one object under two names",
      [](RawHdf5File& f)
      {
        H5Lcreate_hard(f.id(), "/DataStructure/Other/Loose", f.id(), "/DataStructure/Image/Renamed",
                       H5P_DEFAULT, H5P_DEFAULT);
      },
      "'/DataStructure/Image/Renamed' and '/DataStructure/Other/Loose' link to one object under "
      "two names; an object has one name.",
      true },
  };

  const std::string pristine = ReadBytes(m_Path);
  const auto damaged = m_Dir / "damaged.voxelia";
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    WriteBytes(damaged, pristine);
    {
      RawHdf5File raw(damaged, true);
      c.tamper(raw);
    }
    EXPECT_EQ(ReadError(damaged, false), c.expected);
    EXPECT_EQ(ReadError(damaged, true), c.preflightFails ? c.expected : std::string("<valid>"));
  }
}

TEST_F(BadInput, ConnectivityPastTheVertexCountFailsWhenFinishingTheObjectWithData)
{
  {
    RawHdf5File raw(m_Path, true);
    raw.writeDataset<std::uint64_t>("/DataStructure/Surface/Faces", H5T_NATIVE_UINT64,
                                    { 0, 1, 2, 4, 2, 3 });
  }
  const auto file = HDF5::FileIO::ReadFile(m_Path);
  auto tree = VOXELIA::ImportDataStructureFromFile(file, true);
  ASSERT_TRUE(tree.isValid());
  DataStructure target;
  ASSERT_TRUE(
    VOXELIA::FinishImportingObject(tree.value(), target, DataPath({ "Surface" }), file, false)
      .isValid());
  ASSERT_TRUE(VOXELIA::FinishImportingObject(tree.value(), target,
                                             DataPath({ "Surface", "Vertices" }), file, false)
                .isValid());
  const auto faces = VOXELIA::FinishImportingObject(tree.value(), target,
                                                    DataPath({ "Surface", "Faces" }), file, false);
  ASSERT_FALSE(faces.isValid());
  EXPECT_EQ(faces.errors().front().message, "The face list 'Faces' of geometry 'Surface' refers to "
                                            "vertex 4 (tuple 1) but the geometry has 4 vertices.");
  EXPECT_EQ(target.getData(12), nullptr);
  // without data nothing is checked, and nothing read
  EXPECT_TRUE(VOXELIA::FinishImportingObject(tree.value(), target, DataPath({ "Surface", "Faces" }),
                                             file, true)
                .isValid());
}

TEST_F(BadInput, ADeclaredShapeFarLargerThanTheStoredDataIsRefusedBeforeAllocating)
{
  // a corrupt shape must not make the reader allocate terabytes
  {
    RawHdf5File raw(m_Path, true);
    const hsize_t dims[2] = { hsize_t{ 1 } << 36, 3 };
    const hid_t space = H5Screate_simple(2, dims, nullptr);
    const hid_t dataset = H5Dcreate2(raw.id(), "/DataStructure/Other/Huge", H5T_IEEE_F32LE, space,
                                     H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(dataset, 0);
    H5Dclose(dataset);
    H5Sclose(space);
    raw.setUInt64s("/DataStructure/Other/Huge", "ObjectId", { 22 }, true);
    raw.setString("/DataStructure/Other/Huge", "ObjectType", "DataArray");
    raw.setString("/DataStructure/Other/Huge", "ElementType", "float32");
    raw.setUInt64s("/DataStructure/Other/Huge", "TupleShape", { std::uint64_t{ 1 } << 36 });
    raw.setUInt64s("/DataStructure/Other/Huge", "ComponentShape", { 3 });
  }
  // a preflight is fine: it allocates nothing
  EXPECT_EQ(ReadError(m_Path, true), "<valid>");
  EXPECT_EQ(ReadError(m_Path, false), "Array '/DataStructure/Other/Huge' declares 824633720832 "
                                      "bytes of data but the file stores only 0 bytes for it.");
}
