// Writing a structure and reading it back gives the same structure, and the
// file has the documented layout when read with plain HDF5.
#include "RawHdf5File.hpp"
#include "VoxeliaTestData.hpp"

#include "kxcore/HDF5/ReadStatistics.hpp"
#include "kxcore/VoxeliaFile.hpp"

#include "TestSupport.hpp"

using namespace kx::core;
using namespace kxtest;

namespace
{
DataStructure ReadBack(const std::filesystem::path& path, bool preflight)
{
  const auto file = HDF5::FileIO::ReadFile(path);
  EXPECT_TRUE(file.isValid()) << file.getErrorMessage();
  auto result = VOXELIA::ImportDataStructureFromFile(file, preflight);
  EXPECT_TRUE(result.isValid()) << (result.errors().empty() ? std::string()
                                                            : result.errors().front().message);
  return result.isValid() ? std::move(result.value()) : DataStructure();
}

std::filesystem::path WriteEveryKind(const TempDir& dir, const DataStructure& ds)
{
  const auto path = dir / "every-kind.voxelia";
  const auto written = VOXELIA::WriteFile(path, ds);
  EXPECT_TRUE(written.isValid()) << (written.errors().empty() ? std::string()
                                                              : written.errors().front().message);
  return path;
}
} // namespace

TEST(VoxeliaRoundTrip, EveryObjectComesBackWithIdNameTypeParentsShapeAndValues)
{
  TempDir dir;
  const DataStructure original = MakeEveryKindStructure();
  ASSERT_EQ(original.getSize(), 62u);
  const DataStructure read = ReadBack(WriteEveryKind(dir, original), false);

  ExpectSameStructure(original, read, true);

  // a few values spelled out, so that a comparison that compares nothing cannot pass
  const auto* int64s = read.getDataAs<Int64Array>(ids::k_FirstTyped + 6);
  ASSERT_NE(int64s, nullptr);
  EXPECT_EQ((*int64s)[0], std::numeric_limits<int64>::min());
  EXPECT_EQ((*int64s)[1], std::numeric_limits<int64>::max());
  const auto* floats = read.getDataAs<Float32Array>(ids::k_FirstTyped + 8);
  ASSERT_NE(floats, nullptr);
  EXPECT_TRUE(std::isnan((*floats)[2]));
  EXPECT_TRUE(std::signbit((*floats)[4]));
  const auto* bools = read.getDataAs<BoolArray>(ids::k_FirstTyped + 10);
  ASSERT_NE(bools, nullptr);
  EXPECT_EQ(std::vector<bool>({ (*bools)[0], (*bools)[1], (*bools)[2], (*bools)[3] }),
            std::vector<bool>({ true, false, false, true }));
  const auto* matrix = read.getDataAs<Float64Array>(ids::k_Matrix);
  ASSERT_NE(matrix, nullptr);
  EXPECT_EQ(matrix->getComponentShape(), ShapeType({ 2, 3 }));
  EXPECT_EQ((*matrix)[11], 12.0);
  const auto* empty = read.getDataAs<Float32Array>(ids::k_Empty);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->getTupleShape(), ShapeType({ 0 }));
  EXPECT_EQ(empty->getNumberOfComponents(), 3u);
  // the data arrive in memory, where the bridge can wrap them
  EXPECT_EQ(int64s->getStorageFormat(), "");
}

TEST(VoxeliaRoundTrip, GeometriesKeepTheirParametersAndResolveTheirLists)
{
  TempDir dir;
  const DataStructure read = ReadBack(WriteEveryKind(dir, MakeEveryKindStructure()), false);

  struct Expected
  {
    IdType id;
    IGeometry::Type type;
    usize cells;
  };
  const std::vector<Expected> geometries = {
    { ids::k_Image, IGeometry::Type::Image, 24 },
    { ids::k_Rect, IGeometry::Type::RectGrid, 6 },
    { ids::k_Points, IGeometry::Type::Vertex, 5 },
    { ids::k_Edges, IGeometry::Type::Edge, 3 },
    { ids::k_Triangles, IGeometry::Type::Triangle, 2 },
    { ids::k_Quads, IGeometry::Type::Quad, 2 },
    { ids::k_Tets, IGeometry::Type::Tetrahedral, 2 },
    { ids::k_Hexes, IGeometry::Type::Hexahedral, 2 },
  };
  for (const auto& expected : geometries)
  {
    const auto* geometry = read.getDataAs<IGeometry>(expected.id);
    ASSERT_NE(geometry, nullptr) << expected.id;
    EXPECT_EQ(geometry->getGeomType(), expected.type) << geometry->getName();
    EXPECT_EQ(geometry->getNumberOfCells(), expected.cells) << geometry->getName();
  }

  const auto* image = read.getDataAs<ImageGeom>(ids::k_Image);
  EXPECT_EQ(image->getDimensions(), SizeVec3(4, 3, 2));
  EXPECT_EQ(image->getOrigin(), FloatVec3(1.5f, -2.0f, 0.25f));
  EXPECT_EQ(image->getSpacing(), FloatVec3(0.5f, 1.0f, 2.0f));
  ASSERT_NE(image->getCellData(), nullptr);
  EXPECT_EQ(image->getCellData()->getName(), "Cell Data");

  const auto* rect = read.getDataAs<RectGridGeom>(ids::k_Rect);
  ASSERT_NE(rect->getSharedYBounds(), nullptr);
  EXPECT_EQ(rect->getSharedYBounds()->getNumberOfTuples(), 4u);
  EXPECT_EQ((*rect->getSharedYBounds())[3], 4.0f);

  const auto* triangles = read.getDataAs<TriangleGeom>(ids::k_Triangles);
  ASSERT_NE(triangles->getVertices(), nullptr);
  ASSERT_NE(triangles->getFaces(), nullptr);
  EXPECT_EQ((*triangles->getFaces())[5], 3u);
  ASSERT_NE(triangles->getFaceAttributeMatrix(), nullptr);
  EXPECT_EQ(triangles->getFaceAttributeMatrix()->getSize(), 2u);

  const auto* tets = read.getDataAs<TetrahedralGeom>(ids::k_Tets);
  ASSERT_NE(tets->getFaces(), nullptr);
  EXPECT_EQ(tets->getFaces()->getNumberOfComponents(), 3u);
  EXPECT_EQ(tets->getPolyhedra()->getNumberOfComponents(), 4u);
  EXPECT_EQ(read.getDataAs<HexahedralGeom>(ids::k_Hexes)->getPolyhedra()->getNumberOfComponents(),
            8u);
}

TEST(VoxeliaRoundTrip, SharedObjectsKeepAllTheirParentsAndChildrenStayInIdentifierOrder)
{
  TempDir dir;
  const DataStructure read = ReadBack(WriteEveryKind(dir, MakeEveryKindStructure()), false);

  const DataObject* shared = read.getData(ids::k_SharedValues);
  ASSERT_NE(shared, nullptr);
  EXPECT_EQ(shared->getParentIds(), std::vector<IdType>({ ids::k_SharedGroup, ids::k_GroupA }));
  auto paths = shared->getDataPaths();
  std::sort(paths.begin(), paths.end());
  EXPECT_EQ(paths, (std::vector<DataPath>{
                     DataPath({ "Group A", "Nested", "Shared Group", "Shared Values" }),
                     DataPath({ "Group A", "Shared Values" }),
                     DataPath({ "Shared Group", "Shared Values" }) }));
  // top level and inside a group at once
  const DataObject* sharedGroup = read.getData(ids::k_SharedGroup);
  EXPECT_TRUE(read.getDataMap().contains(ids::k_SharedGroup));
  EXPECT_EQ(sharedGroup->getParentIds(), std::vector<IdType>({ ids::k_Nested }));
  EXPECT_EQ(sharedGroup->getDataPaths().size(), 2u);
  const DataObject* lateTop = read.getData(ids::k_LateTop);
  ASSERT_NE(lateTop, nullptr);
  EXPECT_TRUE(read.getDataMap().contains(ids::k_LateTop));
  EXPECT_EQ(lateTop->getParentIds(), std::vector<IdType>({ ids::k_GroupA }));

  // names sort the other way round from the identifiers: the order must follow the identifiers
  const auto* groupA = read.getDataAs<BaseGroup>(ids::k_GroupA);
  std::vector<IdType> expectedKeys = { ids::k_SharedValues, ids::k_Nested };
  for (IdType id = ids::k_FirstTyped; id < ids::k_FirstTyped + 11; id++)
    expectedKeys.push_back(id);
  expectedKeys.push_back(ids::k_LateTop);
  EXPECT_EQ(groupA->getDataMap().getKeys(), expectedKeys);
  std::vector<std::string> names;
  for (const auto& [id, child] : *groupA)
    names.push_back(child->getName());
  std::vector<std::string> expectedNames = { "Shared Values", "Nested" };
  for (const auto& name : TypedArrayNames())
    expectedNames.push_back(name);
  expectedNames.push_back("Late Top");
  EXPECT_EQ(names, expectedNames);
  EXPECT_EQ(read.getDataMap().getKeys(),
            (std::vector<IdType>{ ids::k_SharedGroup, ids::k_GroupA, ids::k_LateTop, ids::k_Image,
                                  ids::k_Rect, ids::k_Points, ids::k_Edges, ids::k_Triangles,
                                  ids::k_Quads, ids::k_Tets, ids::k_Hexes }));
  // new objects continue after the highest identifier read
  EXPECT_EQ(read.getNextId(), 175u);
}

TEST(VoxeliaLayout, ArraysAreDatasetsOfTheirElementTypeWithTupleThenComponentDimensions)
{
  TempDir dir;
  const auto path = WriteEveryKind(dir, MakeEveryKindStructure());
  RawHdf5File raw(path, false);

  struct Expected
  {
    std::string name;
    H5T_class_t typeClass;
    size_t size;
    H5T_sign_t sign;
    std::string elementType;
  };
  const std::vector<Expected> table = {
    { "k int8", H5T_INTEGER, 1, H5T_SGN_2, "int8" },
    { "j uint8", H5T_INTEGER, 1, H5T_SGN_NONE, "uint8" },
    { "i int16", H5T_INTEGER, 2, H5T_SGN_2, "int16" },
    { "h uint16", H5T_INTEGER, 2, H5T_SGN_NONE, "uint16" },
    { "g int32", H5T_INTEGER, 4, H5T_SGN_2, "int32" },
    { "f uint32", H5T_INTEGER, 4, H5T_SGN_NONE, "uint32" },
    { "e int64", H5T_INTEGER, 8, H5T_SGN_2, "int64" },
    { "d uint64", H5T_INTEGER, 8, H5T_SGN_NONE, "uint64" },
    { "c float32", H5T_FLOAT, 4, H5T_SGN_ERROR, "float32" },
    { "b float64", H5T_FLOAT, 8, H5T_SGN_ERROR, "float64" },
    { "a bool", H5T_INTEGER, 1, H5T_SGN_NONE, "boolean" },
  };
  for (const auto& expected : table)
  {
    SCOPED_TRACE(expected.name);
    const std::string dataset = "/DataStructure/Group A/" + expected.name;
    const hid_t id = H5Dopen2(raw.id(), dataset.c_str(), H5P_DEFAULT);
    ASSERT_GE(id, 0);
    const hid_t type = H5Dget_type(id);
    EXPECT_EQ(H5Tget_class(type), expected.typeClass);
    EXPECT_EQ(H5Tget_size(type), expected.size);
    if (expected.typeClass == H5T_INTEGER)
    {
      EXPECT_EQ(H5Tget_sign(type), expected.sign);
    }
    H5Tclose(type);
    H5Dclose(id);
    EXPECT_EQ(raw.readString(dataset, "ElementType"), expected.elementType);
    EXPECT_EQ(raw.readString(dataset, "ObjectType"), "DataArray");
  }

  EXPECT_EQ(raw.datasetDims("/DataStructure/Group A/k int8"), (std::vector<hsize_t>{ 3, 2, 1 }));
  EXPECT_EQ(raw.datasetDims("/DataStructure/Group A/g int32"),
            (std::vector<hsize_t>{ 1, 2, 3, 1 }));
  EXPECT_EQ(raw.datasetDims("/DataStructure/Group A/Nested/Matrix"),
            (std::vector<hsize_t>{ 2, 2, 3 }));
  EXPECT_EQ(raw.datasetDims("/DataStructure/Image/Cell Data/EulerAngles"),
            (std::vector<hsize_t>{ 2, 3, 4, 3 }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Group A/Nested/Matrix", "TupleShape"),
            std::vector<std::uint64_t>({ 2 }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Group A/Nested/Matrix", "ComponentShape"),
            std::vector<std::uint64_t>({ 2, 3 }));
  EXPECT_EQ(raw.readDataset<std::uint8_t>("/DataStructure/Group A/a bool", H5T_NATIVE_UINT8),
            (std::vector<std::uint8_t>{ 1, 0, 0, 1, 1, 0 }));
  EXPECT_EQ(
    raw.readDataset<std::int32_t>("/DataStructure/Image/Cell Data/Phases", H5T_NATIVE_INT32)[4], 2);
}

TEST(VoxeliaLayout, ObjectsAndGeometryParametersAreAttributes)
{
  TempDir dir;
  const auto path = WriteEveryKind(dir, MakeEveryKindStructure());
  RawHdf5File raw(path, false);

  EXPECT_EQ(raw.readUInt64s("/", "VoxeliaFormatVersion"), std::vector<std::uint64_t>({ 1 }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Image", "ObjectId"),
            std::vector<std::uint64_t>({ ids::k_Image }));
  EXPECT_EQ(raw.readString("/DataStructure/Image", "ObjectType"), "ImageGeom");
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Image", "Dimensions"),
            std::vector<std::uint64_t>({ 4, 3, 2 }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Image", "CellDataId"),
            std::vector<std::uint64_t>({ ids::k_ImageCellData }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Image/Cell Data", "TupleShape"),
            std::vector<std::uint64_t>({ 2, 3, 4 }));
  EXPECT_EQ(raw.readString("/DataStructure/Image/Cell Data", "ObjectType"), "AttributeMatrix");
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Rect", "XBoundsId"),
            std::vector<std::uint64_t>({ 111 }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Triangles", "VertexListId"),
            std::vector<std::uint64_t>({ ids::k_TriangleVertices }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Triangles", "FaceListId"),
            std::vector<std::uint64_t>({ ids::k_TriangleFaces }));
  EXPECT_EQ(raw.readUInt64s("/DataStructure/Tets", "PolyhedraAttributeMatrixId"),
            std::vector<std::uint64_t>({ 164 }));
  // what a geometry lacks is absent, not zero
  EXPECT_EQ(H5Aexists_by_name(raw.id(), "/DataStructure/Triangles", "EdgeListId", H5P_DEFAULT), 0);

  // an object with several parents is one HDF5 object with one hard link per parent
  H5O_info2_t first;
  H5O_info2_t second;
  ASSERT_GE(H5Oget_info_by_name3(raw.id(), "/DataStructure/Shared Group/Shared Values", &first,
                                 H5O_INFO_BASIC, H5P_DEFAULT),
            0);
  ASSERT_GE(H5Oget_info_by_name3(raw.id(), "/DataStructure/Group A/Shared Values", &second,
                                 H5O_INFO_BASIC, H5P_DEFAULT),
            0);
  int comparison = 1;
  H5Otoken_cmp(raw.id(), &first.token, &second.token, &comparison);
  EXPECT_EQ(comparison, 0);
  EXPECT_EQ(first.rc, 2u);
  ASSERT_GE(H5Oget_info_by_name3(raw.id(), "/DataStructure/Shared Group", &first, H5O_INFO_BASIC,
                                 H5P_DEFAULT),
            0);
  EXPECT_EQ(first.rc, 2u);
}

TEST(VoxeliaRoundTrip, ReadingLeavesNoHdf5ObjectOpen)
{
  TempDir dir;
  const auto path = WriteEveryKind(dir, MakeEveryKindStructure());
  EXPECT_EQ(OpenHdf5Objects(), 0);
  {
    const auto file = HDF5::FileIO::ReadFile(path);
    ASSERT_TRUE(VOXELIA::ImportDataStructureFromFile(file, false).isValid());
    ASSERT_TRUE(VOXELIA::ImportDataStructureFromFile(file, true).isValid());
    EXPECT_EQ(OpenHdf5Objects(), 1); // the file itself
  }
  EXPECT_EQ(OpenHdf5Objects(), 0);
}
