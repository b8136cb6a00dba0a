// WriteFile replaces a file only with a complete new one: a failed write
// leaves what was there byte for byte and leaves no temporary file behind.
#include "VoxeliaTestData.hpp"

#include "kxcore/VoxeliaFile.hpp"

#include "TestSupport.hpp"

#include <fstream>
#include <iterator>

using namespace kx::core;
using namespace kxtest;

namespace
{
std::vector<std::string> FolderContent(const std::filesystem::path& dir)
{
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(dir))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

DataStructure OneArray(float value)
{
  DataStructure ds;
  DataGroup::Import(ds, "Group", 1);
  AddArray<float32>(ds, "Values", 2, { 3 }, { 1 }, { value, value, value }, 1);
  return ds;
}

std::string FirstError(const Result<void>& result)
{
  return result.errors().empty() ? std::string("<valid>") : result.errors().front().message;
}
} // namespace

TEST(VoxeliaWriteFile, ASuccessfulWriteReplacesTheFileAndLeavesNothingElse)
{
  TempDir dir;
  const auto path = dir / "data.voxelia";
  ASSERT_TRUE(VOXELIA::WriteFile(path, OneArray(1.0f)).isValid());
  const std::string first = ReadBytes(path);
  ASSERT_TRUE(VOXELIA::WriteFile(path, OneArray(2.0f)).isValid());
  EXPECT_NE(ReadBytes(path), first);
  EXPECT_EQ(FolderContent(dir.path()), std::vector<std::string>({ "data.voxelia" }));

  const auto file = HDF5::FileIO::ReadFile(path);
  auto read = VOXELIA::ImportDataStructureFromFile(file, false);
  ASSERT_TRUE(read.isValid());
  EXPECT_EQ((*read.value().getDataAs<Float32Array>(2))[2], 2.0f);
}

TEST(VoxeliaWriteFile, AFailedWriteLeavesTheExistingFileIntact)
{
  TempDir dir;
  const auto path = dir / "data.voxelia";
  ASSERT_TRUE(VOXELIA::WriteFile(path, OneArray(1.0f)).isValid());
  const std::string before = ReadBytes(path);

  // structures the format cannot hold fail after writing has started
  DataStructure badName = OneArray(3.0f);
  DataGroup::Import(badName, "a/b", 7);
  DataStructure strayReference = OneArray(3.0f);
  auto* points = VertexGeom::Import(strayReference, "Points", 8);
  points->setVertexListId(2); // an array of another group
  DataStructure noData;
  {
    const auto file = HDF5::FileIO::ReadFile(path);
    noData = std::move(VOXELIA::ImportDataStructureFromFile(file, true).value());
  }

  struct Case
  {
    std::string name;
    const DataStructure* ds;
    std::string expected;
  };
  const std::vector<Case> cases = {
    { "name with a slash", &badName,
      "The object name 'a/b' (ObjectId 7) cannot be stored: names must be non-empty, not '.', and "
      "without '/'." },
    { "reference to a non-child", &strayReference,
      "Geometry '/DataStructure/Points' refers to object 2 as its vertex list but that object is "
      "not one of its children." },
    { "arrays without data", &noData,
      "Array '/DataStructure/Group/Values' has no element data (it was imported by a preflight) "
      "and cannot be written." },
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(FirstError(VOXELIA::WriteFile(path, *c.ds)), c.expected);
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_EQ(FolderContent(dir.path()), std::vector<std::string>({ "data.voxelia" }));
  }
}

TEST(VoxeliaWriteFile, AnUnreachableFolderFailsWithTheTargetInTheMessage)
{
  TempDir dir;
  const auto plainFile = dir / "plain.txt";
  std::ofstream(plainFile) << "not a folder";
  const std::vector<std::filesystem::path> targets = { dir / "missing" / "data.voxelia",
                                                       plainFile / "data.voxelia" };
  for (const auto& target : targets)
  {
    SCOPED_TRACE(target.string());
    const std::string error = FirstError(VOXELIA::WriteFile(target, OneArray(1.0f)));
    EXPECT_EQ(error.rfind(fmt::format("Cannot write '{}': the file '", target.string()), 0), 0u)
      << error;
    EXPECT_NE(error.find("could not be created"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(target));
  }
  EXPECT_EQ(ReadBytes(plainFile), "not a folder");
  EXPECT_EQ(FolderContent(dir.path()), std::vector<std::string>({ "plain.txt" }));
}
