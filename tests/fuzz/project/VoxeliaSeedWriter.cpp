// Writes small valid .voxelia files, one per geometry kind plus groups and
// shared objects, as the fuzzer's starting corpus.
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
#include "kxcore/VoxeliaFile.hpp"

#include <cstdio>
#include <filesystem>
#include <numeric>

using namespace kx::core;

namespace
{
template<typename T>
IdType addArray(DataStructure& ds, const std::string& name, usize tuples, usize components,
                IdType parent, T step = T(1))
{
  auto store = std::make_shared<DataStore<T>>(ShapeType{ tuples }, ShapeType{ components });
  for (usize i = 0; i < store->getSize(); i++)
    store->setValue(i, static_cast<T>(static_cast<T>(i % 4) * step));
  return DataArray<T>::Create(ds, name, store, parent)->getId();
}

DataStructure groups()
{
  DataStructure ds;
  auto* top = DataGroup::Create(ds, "Top");
  auto* inner = DataGroup::Create(ds, "Inner", top->getId());
  const IdType shared = addArray<int32>(ds, "Shared", 3, 1, inner->getId());
  ds.setAdditionalParent(shared, top->getId());
  addArray<bool>(ds, "Flags", 4, 1, top->getId(), true);
  addArray<int8>(ds, "Bytes", 2, 2, top->getId());
  addArray<uint16>(ds, "Shorts", 2, 1, inner->getId());
  addArray<float64>(ds, "Doubles", 1, 3, inner->getId(), 0.5);
  return ds;
}

DataStructure grids()
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "Image");
  image->setDimensions(SizeVec3(2, 2, 1));
  auto* cells = AttributeMatrix::Create(ds, "Cell Data", { 1, 2, 2 }, image->getId());
  image->setCellData(cells->getId());
  addArray<int32>(ds, "Phases", 4, 1, cells->getId());
  auto* rect = RectGridGeom::Create(ds, "Rect");
  rect->setDimensions(SizeVec3(1, 2, 1));
  const IdType x = addArray<float32>(ds, "X", 2, 1, rect->getId());
  const IdType y = addArray<float32>(ds, "Y", 3, 1, rect->getId());
  const IdType z = addArray<float32>(ds, "Z", 2, 1, rect->getId());
  rect->setBounds(x, y, z);
  return ds;
}

template<typename Geometry>
DataStructure nodes(const std::string& name, usize listComponents, bool polyhedra)
{
  DataStructure ds;
  auto* geometry = Geometry::Create(ds, name);
  const usize vertexCount = 8;
  geometry->setVertexListId(addArray<float32>(ds, "Vertices", vertexCount, 3, geometry->getId()));
  auto* vertexData = AttributeMatrix::Create(ds, "Vertex Data", { vertexCount }, geometry->getId());
  geometry->setVertexAttributeMatrixId(vertexData->getId());
  addArray<uint32>(ds, "Ids", vertexCount, 1, vertexData->getId());
  if constexpr (std::is_base_of_v<INodeGeometry1D, Geometry>)
  {
    const IdType list = addArray<uint64>(ds, "Connectivity", 2, listComponents, geometry->getId());
    auto* data = AttributeMatrix::Create(ds, "Element Data", { 2 }, geometry->getId());
    addArray<int64>(ds, "Labels", 2, 2, data->getId());
    if (polyhedra)
    {
      if constexpr (std::is_base_of_v<INodeGeometry3D, Geometry>)
      {
        geometry->setPolyhedraListId(list);
        geometry->setPolyhedraAttributeMatrixId(data->getId());
      }
    }
    else if (listComponents == 2)
    {
      geometry->setEdgeListId(list);
      geometry->setEdgeAttributeMatrixId(data->getId());
    }
    else if constexpr (std::is_base_of_v<INodeGeometry2D, Geometry>)
    {
      geometry->setFaceListId(list);
      geometry->setFaceAttributeMatrixId(data->getId());
    }
  }
  return ds;
}
} // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
  {
    std::fprintf(stderr, "usage: voxelia_seed_writer CORPUS_DIR\n");
    return 2;
  }
  const std::filesystem::path dir = argv[1];
  const std::vector<std::pair<std::string, DataStructure>> seeds = {
    { "groups", groups() },
    { "grids", grids() },
    { "vertex", nodes<VertexGeom>("Points", 0, false) },
    { "edge", nodes<EdgeGeom>("Edges", 2, false) },
    { "triangle", nodes<TriangleGeom>("Triangles", 3, false) },
    { "quad", nodes<QuadGeom>("Quads", 4, false) },
    { "tetrahedral", nodes<TetrahedralGeom>("Tets", 4, true) },
    { "hexahedral", nodes<HexahedralGeom>("Hexes", 8, true) },
  };
  for (const auto& [name, ds] : seeds)
  {
    const auto result = VOXELIA::WriteFile(dir / (name + ".voxelia"), ds);
    if (!result.isValid())
    {
      std::fprintf(stderr, "seed %s: %s\n", name.c_str(), result.errors().front().message.c_str());
      return 1;
    }
  }
  return 0;
}
