#pragma once

// Host data for tests: the sample microstructure as a file, and a small host result.
#include "TestSupport.hpp"

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/ImageGeom.hpp>
#include <kxcore/VertexGeom.hpp>
#include <kxcore/VoxeliaFile.hpp>

#include <MicrostructureGenerator.hpp>

#include <memory>
#include <string>

namespace kxtest
{
/** Writes the sample microstructure (image, grain boundaries, centroids), @p size voxels a side. */
inline std::filesystem::path writeSample(const TempDir& dir,
                                         const std::string& name = "sample.voxelia", int size = 12)
{
  kxvtk::sample::MicrostructureGenerator generator(size);
  const auto path = dir / name;
  kx::core::DataStructure ds = generator.generate();
  EXPECT_TRUE(kx::core::VOXELIA::WriteFile(path, ds).isValid());
  return path;
}

/** A host result: an image "Grains" whose cell array "FeatureIds" holds @p fill and, optionally,
 * a point cloud "Seeds". */
inline std::shared_ptr<kx::core::DataStructure> hostResult(int fill, bool withSeeds)
{
  using namespace kx::core;
  auto ds = std::make_shared<DataStructure>();
  auto* image = ImageGeom::Create(*ds, "Grains");
  image->setDimensions({ 3, 2, 1 });
  auto* cells = AttributeMatrix::Create(*ds, "Cell Data", { 1, 2, 3 }, image->getId());
  image->setCellData(cells->getId());
  auto store = std::make_shared<DataStore<int32>>(ShapeType{ 1, 2, 3 }, ShapeType{ 1 }, fill);
  Int32Array::Create(*ds, "FeatureIds", store, cells->getId());
  if (withSeeds)
  {
    auto* seeds = VertexGeom::Create(*ds, "Seeds");
    auto xyz = std::make_shared<DataStore<float>>(ShapeType{ 2 }, ShapeType{ 3 }, 0.5f);
    seeds->setVertexListId(Float32Array::Create(*ds, "Vertices", xyz, seeds->getId())->getId());
  }
  return ds;
}
} // namespace kxtest
