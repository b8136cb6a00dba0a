// The sample generator writes the polycrystal that demos and manual checks use.
#include "MicrostructureGenerator.hpp"
#include "VoxeliaTestData.hpp"

#include "kxcore/VoxeliaFile.hpp"

#include "TestSupport.hpp"

#include <cstdlib>
#include <set>

using namespace kx::core;
using namespace kxtest;
using kxvtk::sample::MicrostructureGenerator;

namespace
{
DataStructure WriteAndRead(const DataStructure& ds, const std::filesystem::path& path)
{
  EXPECT_TRUE(VOXELIA::WriteFile(path, ds).isValid());
  const auto file = HDF5::FileIO::ReadFile(path);
  auto result = VOXELIA::ImportDataStructureFromFile(file, false);
  EXPECT_TRUE(result.isValid()) << (result.errors().empty() ? "" : result.errors().front().message);
  return result.isValid() ? std::move(result.value()) : DataStructure();
}

void ExpectSample(const DataStructure& ds, usize size)
{
  const usize cells = size * size * size;
  EXPECT_EQ(ds.getDataMap().size(), 3u);

  const auto* image = ds.getDataAs<ImageGeom>(DataPath({ "Microstructure" }));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->getDimensions(), SizeVec3(size, size, size));
  ASSERT_NE(image->getCellData(), nullptr);
  EXPECT_EQ(image->getCellData()->getName(), "Cell Data");
  EXPECT_EQ(image->getCellData()->getNumberOfTuples(), cells);

  struct ArraySpec
  {
    std::string name;
    DataType type;
    usize components;
  };
  for (const auto& spec : std::vector<ArraySpec>{ { "FeatureIds", DataType::int32, 1 },
                                                  { "Phases", DataType::int32, 1 },
                                                  { "EulerAngles", DataType::float32, 3 },
                                                  { "Confidence", DataType::float32, 1 } })
  {
    SCOPED_TRACE(spec.name);
    const auto* array =
      ds.getDataAs<IArray>(DataPath({ "Microstructure", "Cell Data", spec.name }));
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->getDataType(), spec.type);
    EXPECT_EQ(array->getNumberOfComponents(), spec.components);
    EXPECT_EQ(array->getNumberOfTuples(), cells);
  }
  const auto& featureIds =
    *ds.getDataAs<Int32Array>(DataPath({ "Microstructure", "Cell Data", "FeatureIds" }));
  std::set<int32> grains;
  for (usize i = 0; i < cells; i++)
    grains.insert(featureIds[i]);
  EXPECT_GT(grains.size(), 1u);
  EXPECT_GT(*grains.begin(), 0);
  const auto& confidence =
    *ds.getDataAs<Float32Array>(DataPath({ "Microstructure", "Cell Data", "Confidence" }));
  usize nans = 0;
  for (usize i = 0; i < cells; i++)
    nans += std::isnan(confidence[i]) ? 1 : 0;
  EXPECT_GT(nans, 0u);
  EXPECT_LT(nans, cells / 50);

  const auto* surface = ds.getDataAs<TriangleGeom>(DataPath({ "Grain Boundaries" }));
  ASSERT_NE(surface, nullptr);
  ASSERT_NE(surface->getFaces(), nullptr);
  ASSERT_NE(surface->getVertices(), nullptr);
  const usize triangles = surface->getFaces()->getNumberOfTuples();
  EXPECT_GT(triangles, 0u);
  EXPECT_EQ(triangles % 2, 0u); // two per voxel face
  ASSERT_NE(surface->getFaceAttributeMatrix(), nullptr);
  const auto* labels =
    ds.getDataAs<Int32Array>(DataPath({ "Grain Boundaries", "Face Data", "FaceLabels" }));
  const auto* normals =
    ds.getDataAs<Float64Array>(DataPath({ "Grain Boundaries", "Face Data", "FaceNormals" }));
  ASSERT_NE(labels, nullptr);
  ASSERT_NE(normals, nullptr);
  EXPECT_EQ(labels->getNumberOfComponents(), 2u);
  EXPECT_EQ(normals->getNumberOfComponents(), 3u);
  EXPECT_EQ(labels->getNumberOfTuples(), triangles);
  for (usize t = 0; t < triangles; t++)
  {
    ASSERT_NE((*labels)[t * 2], (*labels)[t * 2 + 1]) << "triangle " << t;
    ASSERT_EQ(grains.count((*labels)[t * 2]), 1u);
    const double length = std::abs((*normals)[t * 3]) + std::abs((*normals)[t * 3 + 1]) +
                          std::abs((*normals)[t * 3 + 2]);
    ASSERT_EQ(length, 1.0) << "triangle " << t;
  }
  // shared corners are stored once: fewer vertices than triangle corners
  EXPECT_LT(surface->getNumberOfVertices(), triangles * 3 / 2);

  const auto* centroids = ds.getDataAs<VertexGeom>(DataPath({ "Grain Centroids" }));
  ASSERT_NE(centroids, nullptr);
  EXPECT_EQ(centroids->getNumberOfVertices(), grains.size());
  ASSERT_NE(centroids->getVertexAttributeMatrix(), nullptr);
  const auto* centroidIds =
    ds.getDataAs<Int32Array>(DataPath({ "Grain Centroids", "Vertex Data", "FeatureIds" }));
  ASSERT_NE(centroidIds, nullptr);
  std::set<int32> centroidGrains;
  for (usize i = 0; i < centroidIds->getNumberOfTuples(); i++)
    centroidGrains.insert((*centroidIds)[i]);
  EXPECT_EQ(centroidGrains, grains);
}
} // namespace

TEST(SampleMicrostructure, GeneratedStructureSurvivesTheFileWithItsGrainsAndBoundaries)
{
  TempDir dir;
  MicrostructureGenerator generator(16);
  const DataStructure ds = WriteAndRead(generator.generate(), dir / "sample.voxelia");
  ExpectSample(ds, 16);
  EXPECT_EQ(generator.summary().cells, 4096u);
  EXPECT_EQ(generator.summary().grains,
            ds.getDataAs<VertexGeom>(DataPath({ "Grain Centroids" }))->getNumberOfVertices());
}

TEST(SampleMicrostructure, SameSizeAndSeedGiveTheSameGrains)
{
  MicrostructureGenerator first(12, 7u);
  MicrostructureGenerator second(12, 7u);
  MicrostructureGenerator other(12, 8u);
  const DataStructure a = first.generate();
  const DataStructure b = second.generate();
  const DataStructure c = other.generate();
  const DataPath ids({ "Microstructure", "Cell Data", "FeatureIds" });
  ExpectSameArrayValues(*a.getDataAs<IArray>(ids), *b.getDataAs<IArray>(ids));
  usize differing = 0;
  for (usize i = 0; i < 12 * 12 * 12; i++)
    differing += (*a.getDataAs<Int32Array>(ids))[i] != (*c.getDataAs<Int32Array>(ids))[i] ? 1 : 0;
  EXPECT_GT(differing, 0u);
}

#ifdef KXVTK_SAMPLE_EXE
TEST(SampleMicrostructure, CommandLineWritesAReadableFileAndRefusesBadArguments)
{
  TempDir dir;
  const auto out = dir / "cli.voxelia";
  const std::string exe = KXVTK_SAMPLE_EXE;
  auto run = [&](const std::string& args)
  {
    const int status =
      std::system((exe + " " + args + " > " + (dir / "log.txt").string() + " 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  };
  EXPECT_EQ(run("'" + out.string() + "' --size 10"), 0);
  const auto file = HDF5::FileIO::ReadFile(out);
  auto result = VOXELIA::ImportDataStructureFromFile(file, false);
  ASSERT_TRUE(result.isValid());
  ExpectSample(result.value(), 10);

  EXPECT_EQ(run(""), 2);
  EXPECT_EQ(run("'" + out.string() + "' --size 0"), 2);
  EXPECT_EQ(run("'" + out.string() + "' --size ten"), 2);
  EXPECT_EQ(run("'" + out.string() + "' --bogus"), 2);
  EXPECT_EQ(run("'" + (dir / "missing" / "x.voxelia").string() + "' --size 4"), 1);
}
#endif
