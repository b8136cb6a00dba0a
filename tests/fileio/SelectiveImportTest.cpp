// Preflight reads the tree without array data; FinishImportingObject then
// reads exactly the objects selected, as the bridge's selective import does.
#include "RawHdf5File.hpp"
#include "VoxeliaTestData.hpp"

#include "kxcore/HDF5/ReadStatistics.hpp"
#include "kxcore/VoxeliaFile.hpp"

#include "TestSupport.hpp"

using namespace kx::core;
using namespace kxtest;

namespace
{
class SelectiveImport : public ::testing::Test
{
protected:
  void SetUp() override
  {
    m_Original = MakeEveryKindStructure();
    m_Path = m_Dir / "selective.voxelia";
    ASSERT_TRUE(VOXELIA::WriteFile(m_Path, m_Original).isValid());
    m_File = HDF5::FileIO::ReadFile(m_Path);
    ASSERT_TRUE(m_File.isValid()) << m_File.getErrorMessage();
  }

  DataStructure preflight()
  {
    auto result = VOXELIA::ImportDataStructureFromFile(m_File, true);
    EXPECT_TRUE(result.isValid());
    return result.isValid() ? std::move(result.value()) : DataStructure();
  }

  /** Every path at or below the prefix, in the structure's order. */
  static std::vector<DataPath> PathsUnder(const DataStructure& ds, const DataPath& prefix)
  {
    std::vector<DataPath> selected;
    for (const DataPath& path : ds.getAllDataPaths())
    {
      const auto& names = path.getPathVector();
      if (names.size() >= prefix.getLength() &&
          std::equal(prefix.getPathVector().begin(), prefix.getPathVector().end(), names.begin()))
        selected.push_back(path);
    }
    return selected;
  }

  static std::string FirstError(const Result<void>& result)
  {
    return result.errors().empty() ? std::string() : result.errors().front().message;
  }

  TempDir m_Dir;
  DataStructure m_Original;
  std::filesystem::path m_Path;
  HDF5::FileIO m_File;
};
} // namespace

TEST_F(SelectiveImport, PreflightBuildsTheWholeTreeWithoutReadingArrayData)
{
  HDF5::ResetDatasetReadCount();
  const DataStructure tree = preflight();
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 0u);

  ExpectSameStructure(m_Original, tree, false);
  const std::set<IdType> arrays = ArrayIds(tree);
  EXPECT_EQ(arrays.size(), 41u);
  for (IdType id : arrays)
  {
    const auto* array = tree.getDataAs<IArray>(id);
    EXPECT_EQ(array->getStorageFormat(), "preflight") << array->getName();
  }
  // the shape is there, the data are not
  const auto* phases = tree.getDataAs<Int32Array>(102);
  ASSERT_NE(phases, nullptr);
  EXPECT_EQ(phases->getNumberOfTuples(), 24u);
  EXPECT_EQ((*phases)[4], 0);

  // a full import reads each array once, a shared one included
  HDF5::ResetDatasetReadCount();
  ASSERT_TRUE(VOXELIA::ImportDataStructureFromFile(m_File, false).isValid());
  EXPECT_EQ(HDF5::GetDatasetReadCount(), arrays.size());
}

TEST_F(SelectiveImport, FinishingTheObjectsOfOneGeometryReadsOnlyTheirArrays)
{
  DataStructure tree = preflight();
  const auto selected =
    VOXELIA::ExpandSelectedPathsToAncestors(PathsUnder(tree, DataPath({ "Triangles" })));
  ASSERT_EQ(selected.size(), 6u);

  DataStructure target;
  HDF5::ResetDatasetReadCount();
  for (const DataPath& path : selected)
  {
    const auto result = VOXELIA::FinishImportingObject(tree, target, path, m_File, false);
    EXPECT_TRUE(result.isValid()) << path.toString() << ": " << FirstError(result);
  }
  // vertices, faces and the two face arrays
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 4u);

  EXPECT_EQ(AllIds(target), (std::set<IdType>{ ids::k_Triangles, ids::k_TriangleVertices,
                                               ids::k_TriangleFaces, 143, 144, 145 }));
  EXPECT_EQ(target.getDataMap().getKeys(), std::vector<IdType>({ ids::k_Triangles }));
  const auto* triangles = target.getDataAs<TriangleGeom>(ids::k_Triangles);
  ASSERT_NE(triangles, nullptr);
  ASSERT_NE(triangles->getVertices(), nullptr);
  ASSERT_NE(triangles->getFaces(), nullptr);
  EXPECT_EQ(triangles->getFaces()->getStorageFormat(), "");
  for (IdType id : { ids::k_TriangleVertices, ids::k_TriangleFaces, IdType{ 144 }, IdType{ 145 } })
  {
    SCOPED_TRACE(id);
    ExpectSameArrayValues(*m_Original.getDataAs<IArray>(id), *target.getDataAs<IArray>(id));
  }
  EXPECT_EQ((*target.getDataAs<Int32Array>(144))[3], 3);
}

TEST_F(SelectiveImport, RenumberedPreflightTreeImportsUnderNewIdentifiersWithWorkingReferences)
{
  DataStructure tree = preflight();
  DataStructure target;
  DataGroup::Create(target, "Already There");
  tree.resetIds(target.getNextId());

  for (const DataPath& path :
       VOXELIA::ExpandSelectedPathsToAncestors(PathsUnder(tree, DataPath({ "Quads" }))))
    ASSERT_TRUE(VOXELIA::FinishImportingObject(tree, target, path, m_File, false).isValid())
      << path.toString();

  const auto* quads = target.getDataAs<QuadGeom>(DataPath({ "Quads" }));
  ASSERT_NE(quads, nullptr);
  EXPECT_EQ(quads->getId(), tree.getId(DataPath({ "Quads" })));
  EXPECT_NE(quads->getId(), ids::k_Quads);
  ASSERT_NE(quads->getFaces(), nullptr);
  EXPECT_EQ(quads->getFaces()->getName(), "Faces");
  EXPECT_EQ((*quads->getFaces())[6], 5u);
  ASSERT_NE(quads->getFaceAttributeMatrix(), nullptr);
  EXPECT_EQ((*target.getDataAs<Float32Array>(DataPath({ "Quads", "Face Data", "Area" })))[1],
            0.75f);
}

TEST_F(SelectiveImport, AnObjectSelectedThroughTwoParentsIsReadOnceAndGainsBothParents)
{
  DataStructure tree = preflight();
  const std::vector<DataPath> selected = VOXELIA::ExpandSelectedPathsToAncestors(
    { DataPath({ "Shared Group", "Shared Values" }), DataPath({ "Group A", "Shared Values" }) });
  DataStructure target;
  HDF5::ResetDatasetReadCount();
  for (const DataPath& path : selected)
    ASSERT_TRUE(VOXELIA::FinishImportingObject(tree, target, path, m_File, false).isValid())
      << path.toString();
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 1u);

  const DataObject* shared = target.getData(ids::k_SharedValues);
  ASSERT_NE(shared, nullptr);
  EXPECT_EQ(shared->getParentIds(), std::vector<IdType>({ ids::k_SharedGroup, ids::k_GroupA }));
  EXPECT_EQ(shared->getDataPaths().size(), 2u);
  EXPECT_EQ((*target.getDataAs<Int32Array>(ids::k_SharedValues))[1], -8);
  // importing a path again changes nothing
  EXPECT_TRUE(VOXELIA::FinishImportingObject(tree, target, DataPath({ "Group A", "Shared Values" }),
                                             m_File, false)
                .isValid());
  EXPECT_EQ(shared->getParentIds().size(), 2u);
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 1u);
}

TEST_F(SelectiveImport, FinishingWithThePreflightFlagCopiesShapesButReadsNothing)
{
  DataStructure tree = preflight();
  DataStructure target;
  HDF5::ResetDatasetReadCount();
  for (const DataPath& path :
       VOXELIA::ExpandSelectedPathsToAncestors(PathsUnder(tree, DataPath({ "Image" }))))
    ASSERT_TRUE(VOXELIA::FinishImportingObject(tree, target, path, m_File, true).isValid())
      << path.toString();
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 0u);
  const auto* euler = target.getDataAs<Float32Array>(103);
  ASSERT_NE(euler, nullptr);
  EXPECT_EQ(euler->getStorageFormat(), "preflight");
  EXPECT_EQ(euler->getNumberOfComponents(), 3u);
  EXPECT_EQ(target.getDataAs<ImageGeom>(ids::k_Image)->getSpacing(), FloatVec3(0.5f, 1.0f, 2.0f));
}

TEST_F(SelectiveImport, FinishingFailsWithAReasonForMissingObjectsAndParents)
{
  DataStructure tree = preflight();
  DataStructure target;
  const auto missing =
    VOXELIA::FinishImportingObject(tree, target, DataPath({ "Nope" }), m_File, false);
  EXPECT_FALSE(missing.isValid());
  EXPECT_EQ(FirstError(missing), "There is no object at 'Nope' in the structure to import from.");

  const auto orphan =
    VOXELIA::FinishImportingObject(tree, target, DataPath({ "Image", "Cell Data" }), m_File, false);
  EXPECT_FALSE(orphan.isValid());
  EXPECT_EQ(FirstError(orphan),
            "The parent 'Image' of 'Image/Cell Data' has not been imported yet.");
  EXPECT_EQ(target.getSize(), 0u);
}

TEST(ExpandSelectedPathsToAncestors, AddsEachAncestorOnceBeforeItsChildren)
{
  struct Case
  {
    std::string name;
    std::vector<std::string> input;
    std::vector<std::string> expected;
  };
  const std::vector<Case> cases = {
    { "empty", {}, {} },
    { "one deep path", { "A/B/C" }, { "A", "A/B", "A/B/C" } },
    { "shared ancestors once", { "A/B/C", "A/D", "A/B" }, { "A", "A/B", "A/B/C", "A/D" } },
    { "input order kept", { "Z/Y", "A" }, { "Z", "Z/Y", "A" } },
    { "duplicates collapse", { "A", "A", "A/B", "A/B" }, { "A", "A/B" } },
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    std::vector<DataPath> input;
    for (const auto& text : c.input)
      input.push_back(*DataPath::FromString(text));
    std::vector<std::string> output;
    for (const DataPath& path : VOXELIA::ExpandSelectedPathsToAncestors(input))
      output.push_back(path.toString());
    EXPECT_EQ(output, c.expected);
  }
}
