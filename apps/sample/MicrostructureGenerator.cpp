#include "MicrostructureGenerator.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/DataArray.hpp"
#include "kxcore/DataStore.hpp"
#include "kxcore/ImageGeom.hpp"
#include "kxcore/TriangleGeom.hpp"
#include "kxcore/VertexGeom.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace kx::core;

namespace kxvtk::sample
{
namespace
{
template<typename T>
std::shared_ptr<DataStore<T>> makeStore(usize tuples, usize components)
{
  return std::make_shared<DataStore<T>>(ShapeType{ tuples }, ShapeType{ components });
}

/** Seeds on a jittered lattice: one per block, so the nearest seed is always in a neighbouring
 * block. */
struct SeedLattice
{
  usize blocks = 1;
  usize blockSize = 1;
  std::vector<std::array<float, 3>> seeds;

  std::size_t blockIndex(usize bx, usize by, usize bz) const
  {
    return (bz * blocks + by) * blocks + bx;
  }
};
} // namespace

MicrostructureGenerator::MicrostructureGenerator(usize size, std::uint32_t seed)
  : m_Size(std::max<usize>(size, 2))
  , m_Seed(seed)
{
}

DataStructure MicrostructureGenerator::generate()
{
  const usize n = m_Size;
  const usize cells = n * n * n;
  std::mt19937 random(m_Seed);
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);

  // about 8 grains along each axis whatever the size
  SeedLattice lattice;
  lattice.blockSize = std::max<usize>(4, n / 8);
  lattice.blocks = (n + lattice.blockSize - 1) / lattice.blockSize;
  const usize grainCount = lattice.blocks * lattice.blocks * lattice.blocks;
  lattice.seeds.resize(grainCount);
  for (usize bz = 0; bz < lattice.blocks; bz++)
    for (usize by = 0; by < lattice.blocks; by++)
      for (usize bx = 0; bx < lattice.blocks; bx++)
      {
        auto& seed = lattice.seeds[lattice.blockIndex(bx, by, bz)];
        seed = { (static_cast<float>(bx) + unit(random)) * static_cast<float>(lattice.blockSize),
                 (static_cast<float>(by) + unit(random)) * static_cast<float>(lattice.blockSize),
                 (static_cast<float>(bz) + unit(random)) * static_cast<float>(lattice.blockSize) };
      }

  // grain properties: phase 2 for about a fifth of the grains, random orientations
  std::vector<int32> grainPhase(grainCount + 1, 0);
  std::vector<std::array<float, 3>> grainEuler(grainCount + 1, { 0.0f, 0.0f, 0.0f });
  constexpr float k_TwoPi = 2.0f * std::numbers::pi_v<float>;
  for (usize g = 1; g <= grainCount; g++)
  {
    grainPhase[g] = unit(random) < 0.2f ? 2 : 1;
    grainEuler[g] = { unit(random) * k_TwoPi, std::acos(1.0f - 2.0f * unit(random)),
                      unit(random) * k_TwoPi };
  }

  DataStructure ds;
  auto* image = ImageGeom::Create(ds, k_ImageName);
  image->setDimensions(SizeVec3(n, n, n));
  image->setOrigin(FloatVec3(0.0f, 0.0f, 0.0f));
  image->setSpacing(FloatVec3(1.0f, 1.0f, 1.0f));
  auto* cellData =
    AttributeMatrix::Create(ds, k_CellDataName, ShapeType{ n, n, n }, image->getId());
  image->setCellData(cellData->getId());

  auto featureIds = std::make_shared<DataStore<int32>>(ShapeType{ n, n, n }, ShapeType{ 1 });
  auto phases = std::make_shared<DataStore<int32>>(ShapeType{ n, n, n }, ShapeType{ 1 });
  auto euler = std::make_shared<DataStore<float32>>(ShapeType{ n, n, n }, ShapeType{ 3 });
  auto confidence = std::make_shared<DataStore<float32>>(ShapeType{ n, n, n }, ShapeType{ 1 });

  std::vector<std::array<double, 3>> centroidSum(grainCount + 1, { 0.0, 0.0, 0.0 });
  std::vector<usize> grainCells(grainCount + 1, 0);
  const auto blockCount = static_cast<std::ptrdiff_t>(lattice.blocks);
  for (usize z = 0; z < n; z++)
    for (usize y = 0; y < n; y++)
      for (usize x = 0; x < n; x++)
      {
        const float px = static_cast<float>(x) + 0.5f;
        const float py = static_cast<float>(y) + 0.5f;
        const float pz = static_cast<float>(z) + 0.5f;
        const auto bx = static_cast<std::ptrdiff_t>(x / lattice.blockSize);
        const auto by = static_cast<std::ptrdiff_t>(y / lattice.blockSize);
        const auto bz = static_cast<std::ptrdiff_t>(z / lattice.blockSize);
        float best = std::numeric_limits<float>::max();
        float second = std::numeric_limits<float>::max();
        usize bestGrain = 0;
        for (std::ptrdiff_t dz = -1; dz <= 1; dz++)
          for (std::ptrdiff_t dy = -1; dy <= 1; dy++)
            for (std::ptrdiff_t dx = -1; dx <= 1; dx++)
            {
              const std::ptrdiff_t cx = bx + dx;
              const std::ptrdiff_t cy = by + dy;
              const std::ptrdiff_t cz = bz + dz;
              if (cx < 0 || cy < 0 || cz < 0 || cx >= blockCount || cy >= blockCount ||
                  cz >= blockCount)
                continue;
              const usize index = lattice.blockIndex(static_cast<usize>(cx), static_cast<usize>(cy),
                                                     static_cast<usize>(cz));
              const auto& s = lattice.seeds[index];
              const float d =
                (s[0] - px) * (s[0] - px) + (s[1] - py) * (s[1] - py) + (s[2] - pz) * (s[2] - pz);
              if (d < best)
              {
                second = best;
                best = d;
                bestGrain = index + 1;
              }
              else if (d < second)
              {
                second = d;
              }
            }
        const usize cell = (z * n + y) * n + x;
        const auto grain = static_cast<int32>(bestGrain);
        featureIds->setValue(cell, grain);
        phases->setValue(cell, grainPhase[bestGrain]);
        for (usize c = 0; c < 3; c++)
          euler->setValue(cell * 3 + c, grainEuler[bestGrain][c]);
        // lower confidence near boundaries, where the two nearest seeds are about as close
        const float margin = std::sqrt(second) - std::sqrt(best);
        float value = std::min(1.0f, 0.35f + 0.25f * margin + 0.1f * unit(random));
        if (cell % 397 == 11)
          value = std::numeric_limits<float>::quiet_NaN(); // unindexed points, as a real scan has
        confidence->setValue(cell, value);
        centroidSum[bestGrain][0] += px;
        centroidSum[bestGrain][1] += py;
        centroidSum[bestGrain][2] += pz;
        grainCells[bestGrain]++;
      }
  Int32Array::Create(ds, "FeatureIds", featureIds, cellData->getId());
  Int32Array::Create(ds, "Phases", phases, cellData->getId());
  Float32Array::Create(ds, "EulerAngles", euler, cellData->getId());
  Float32Array::Create(ds, "Confidence", confidence, cellData->getId());

  // Grain boundaries: two triangles for each cell face between different grains,
  // vertices shared through the lattice point they sit on.
  const usize points = n + 1;
  std::vector<int64> vertexOfPoint(points * points * points, -1);
  std::vector<float32> vertices;
  std::vector<uint64> triangles;
  std::vector<int32> labels;
  std::vector<float64> normals;
  auto vertexAt = [&](usize i, usize j, usize k) -> uint64
  {
    int64& slot = vertexOfPoint[(k * points + j) * points + i];
    if (slot < 0)
    {
      slot = static_cast<int64>(vertices.size() / 3);
      vertices.insert(vertices.end(), { static_cast<float32>(i), static_cast<float32>(j),
                                        static_cast<float32>(k) });
    }
    return static_cast<uint64>(slot);
  };
  const std::array<std::array<usize, 3>, 3> steps = { { { 1, 0, 0 }, { 0, 1, 0 }, { 0, 0, 1 } } };
  for (usize z = 0; z < n; z++)
    for (usize y = 0; y < n; y++)
      for (usize x = 0; x < n; x++)
      {
        const int32 here = featureIds->getValue((z * n + y) * n + x);
        for (usize axis = 0; axis < 3; axis++)
        {
          const usize nx = x + steps[axis][0];
          const usize ny = y + steps[axis][1];
          const usize nz = z + steps[axis][2];
          if (nx >= n || ny >= n || nz >= n)
            continue;
          const int32 there = featureIds->getValue((nz * n + ny) * n + nx);
          if (there == here)
            continue;
          // the shared face lies in the plane axis = (coordinate + 1); its corners,
          // counter-clockwise seen along +axis
          std::array<uint64, 4> corner{};
          if (axis == 0)
            corner = { vertexAt(x + 1, y, z), vertexAt(x + 1, y + 1, z),
                       vertexAt(x + 1, y + 1, z + 1), vertexAt(x + 1, y, z + 1) };
          else if (axis == 1)
            corner = { vertexAt(x, y + 1, z), vertexAt(x, y + 1, z + 1),
                       vertexAt(x + 1, y + 1, z + 1), vertexAt(x + 1, y + 1, z) };
          else
            corner = { vertexAt(x, y, z + 1), vertexAt(x + 1, y, z + 1),
                       vertexAt(x + 1, y + 1, z + 1), vertexAt(x, y + 1, z + 1) };
          triangles.insert(triangles.end(),
                           { corner[0], corner[1], corner[2], corner[0], corner[2], corner[3] });
          for (int t = 0; t < 2; t++)
          {
            labels.insert(labels.end(), { here, there });
            normals.insert(normals.end(),
                           { axis == 0 ? 1.0 : 0.0, axis == 1 ? 1.0 : 0.0, axis == 2 ? 1.0 : 0.0 });
          }
        }
      }

  const usize vertexCount = vertices.size() / 3;
  const usize triangleCount = triangles.size() / 3;
  auto* surface = TriangleGeom::Create(ds, k_SurfaceName);
  auto vertexStore = makeStore<float32>(vertexCount, 3);
  std::copy(vertices.begin(), vertices.end(), vertexStore->begin());
  surface->setVertexListId(
    Float32Array::Create(ds, k_VertexListName, vertexStore, surface->getId())->getId());
  auto triangleStore = makeStore<uint64>(triangleCount, 3);
  std::copy(triangles.begin(), triangles.end(), triangleStore->begin());
  surface->setFaceListId(
    UInt64Array::Create(ds, k_TriangleListName, triangleStore, surface->getId())->getId());
  auto* faceData =
    AttributeMatrix::Create(ds, k_FaceDataName, ShapeType{ triangleCount }, surface->getId());
  surface->setFaceAttributeMatrixId(faceData->getId());
  auto labelStore = makeStore<int32>(triangleCount, 2);
  std::copy(labels.begin(), labels.end(), labelStore->begin());
  Int32Array::Create(ds, "FaceLabels", labelStore, faceData->getId());
  auto normalStore = makeStore<float64>(triangleCount, 3);
  std::copy(normals.begin(), normals.end(), normalStore->begin());
  Float64Array::Create(ds, "FaceNormals", normalStore, faceData->getId());

  // Grain centroids: one vertex per grain that owns cells
  std::vector<usize> present;
  for (usize g = 1; g <= grainCount; g++)
  {
    if (grainCells[g] > 0)
      present.push_back(g);
  }
  auto* centroids = VertexGeom::Create(ds, k_CentroidsName);
  auto centroidStore = makeStore<float32>(present.size(), 3);
  auto centroidIds = makeStore<int32>(present.size(), 1);
  for (usize i = 0; i < present.size(); i++)
  {
    const usize g = present[i];
    for (usize c = 0; c < 3; c++)
      centroidStore->setValue(
        i * 3 + c, static_cast<float32>(centroidSum[g][c] / static_cast<double>(grainCells[g])));
    centroidIds->setValue(i, static_cast<int32>(g));
  }
  centroids->setVertexListId(
    Float32Array::Create(ds, k_VertexListName, centroidStore, centroids->getId())->getId());
  auto* vertexData =
    AttributeMatrix::Create(ds, k_VertexDataName, ShapeType{ present.size() }, centroids->getId());
  centroids->setVertexAttributeMatrixId(vertexData->getId());
  Int32Array::Create(ds, "FeatureIds", centroidIds, vertexData->getId());

  m_Summary = Summary{ cells, present.size(), triangleCount, vertexCount };
  return ds;
}
} // namespace kxvtk::sample
