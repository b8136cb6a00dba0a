#include "KxcoreTestUtils.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/EdgeGeom.hpp"
#include "kxcore/HexahedralGeom.hpp"
#include "kxcore/ImageGeom.hpp"
#include "kxcore/QuadGeom.hpp"
#include "kxcore/RectGridGeom.hpp"
#include "kxcore/TetrahedralGeom.hpp"
#include "kxcore/TriangleGeom.hpp"
#include "kxcore/VertexGeom.hpp"

#include <gtest/gtest.h>

#include <functional>

using namespace kx::core;
using kxtest::MakeArray;

namespace
{
IdType Vertices(DataStructure& ds, IdType geomId, usize count)
{
  return MakeArray<float32>(ds, "Vertices", { count }, { 3 }, geomId)->getId();
}

IdType Connectivity(DataStructure& ds, const std::string& name, IdType geomId, usize tuples,
                    usize perCell)
{
  return MakeArray<uint64>(ds, name, { tuples }, { perCell }, geomId)->getId();
}

template<typename Geom>
Geom* NodeGeom(DataStructure& ds, usize vertexCount)
{
  auto* geom = Geom::Create(ds, Geom::k_TypeName);
  geom->setVertexListId(Vertices(ds, geom->getId(), vertexCount));
  return geom;
}

struct GeometryCase
{
  const char* typeName;
  uint32 code;
  usize cells;
  std::function<IGeometry*(DataStructure&)> build;
};

const std::vector<GeometryCase>& Cases()
{
  static const std::vector<GeometryCase> cases{
    { "ImageGeom", 0, 24,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = ImageGeom::Create(ds, "ImageGeom");
        geom->setDimensions({ 2, 3, 4 });
        return geom;
      } },
    { "RectGridGeom", 1, 6,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = RectGridGeom::Create(ds, "RectGridGeom");
        geom->setDimensions({ 3, 2, 1 });
        geom->setBounds(MakeArray<float32>(ds, "X", { 4 }, { 1 }, geom->getId())->getId(),
                        MakeArray<float32>(ds, "Y", { 3 }, { 1 }, geom->getId())->getId(),
                        MakeArray<float32>(ds, "Z", { 2 }, { 1 }, geom->getId())->getId());
        return geom;
      } },
    { "VertexGeom", 2, 5,
      [](DataStructure& ds) -> IGeometry* { return NodeGeom<VertexGeom>(ds, 5); } },
    { "EdgeGeom", 3, 3,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = NodeGeom<EdgeGeom>(ds, 4);
        geom->setEdgeListId(Connectivity(ds, "Edges", geom->getId(), 3, 2));
        return geom;
      } },
    { "TriangleGeom", 4, 7,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = NodeGeom<TriangleGeom>(ds, 4);
        geom->setEdgeListId(Connectivity(ds, "Edges", geom->getId(), 9, 2));
        geom->setFaceListId(Connectivity(ds, "Faces", geom->getId(), 7, 3));
        return geom;
      } },
    { "QuadGeom", 5, 2,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = NodeGeom<QuadGeom>(ds, 6);
        geom->setFaceListId(Connectivity(ds, "Faces", geom->getId(), 2, 4));
        return geom;
      } },
    { "TetrahedralGeom", 6, 3,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = NodeGeom<TetrahedralGeom>(ds, 6);
        geom->setFaceListId(Connectivity(ds, "Faces", geom->getId(), 10, 3));
        geom->setPolyhedraListId(Connectivity(ds, "Tets", geom->getId(), 3, 4));
        return geom;
      } },
    { "HexahedralGeom", 7, 2,
      [](DataStructure& ds) -> IGeometry*
      {
        auto* geom = NodeGeom<HexahedralGeom>(ds, 12);
        geom->setPolyhedraListId(Connectivity(ds, "Hexes", geom->getId(), 2, 8));
        return geom;
      } },
  };
  return cases;
}

template<typename Interface>
bool Reaches(const std::shared_ptr<DataObject>& object)
{
  return std::dynamic_pointer_cast<Interface>(object) != nullptr;
}
} // namespace

TEST(Geometry, TypeCodesCellCountsAndInterfaces)
{
  for (const auto& c : Cases())
  {
    SCOPED_TRACE(c.typeName);
    DataStructure ds;
    const IGeometry* built = c.build(ds);
    ASSERT_NE(built, nullptr);
    const auto shared = ds.getSharedData(built->getId());
    const auto geom = std::dynamic_pointer_cast<IGeometry>(shared);
    ASSERT_NE(geom, nullptr);
    EXPECT_EQ(geom->getTypeName(), c.typeName);
    EXPECT_EQ(static_cast<uint32>(geom->getGeomType()), c.code);
    EXPECT_EQ(geom->getNumberOfCells(), c.cells);

    EXPECT_EQ(Reaches<IGridGeometry>(shared), c.code <= 1);
    EXPECT_EQ(Reaches<ImageGeom>(shared), c.code == 0);
    EXPECT_EQ(Reaches<RectGridGeom>(shared), c.code == 1);
    EXPECT_EQ(Reaches<INodeGeometry0D>(shared), c.code >= 2);
    EXPECT_EQ(Reaches<INodeGeometry1D>(shared), c.code >= 3);
    EXPECT_EQ(Reaches<INodeGeometry2D>(shared), c.code >= 4);
    EXPECT_EQ(Reaches<INodeGeometry3D>(shared), c.code >= 6);
    EXPECT_TRUE(Reaches<BaseGroup>(shared));
  }
}

TEST(Geometry, VerticesPerFaceAndCell)
{
  DataStructure ds;
  EXPECT_EQ(TriangleGeom::Create(ds, "tri")->getNumberOfVerticesPerFace(), 3u);
  EXPECT_EQ(QuadGeom::Create(ds, "quad")->getNumberOfVerticesPerFace(), 4u);
  auto* tet = TetrahedralGeom::Create(ds, "tet");
  EXPECT_EQ(tet->getNumberOfVerticesPerFace(), 3u);
  EXPECT_EQ(tet->getNumberOfVerticesPerCell(), 4u);
  auto* hex = HexahedralGeom::Create(ds, "hex");
  EXPECT_EQ(hex->getNumberOfVerticesPerFace(), 4u);
  EXPECT_EQ(hex->getNumberOfVerticesPerCell(), 8u);
}

TEST(Geometry, NodeAccessorsResolveListsAndMatrices)
{
  DataStructure ds;
  auto* hex = NodeGeom<HexahedralGeom>(ds, 12);
  const IdType id = hex->getId();
  auto* vertexData = AttributeMatrix::Create(ds, "Vertex Data", { 12 }, id);
  auto* edges = MakeArray<uint64>(ds, "Edges", { 20 }, { 2 }, id);
  auto* edgeData = AttributeMatrix::Create(ds, "Edge Data", { 20 }, id);
  auto* faces = MakeArray<uint64>(ds, "Faces", { 11 }, { 4 }, id);
  auto* faceData = AttributeMatrix::Create(ds, "Face Data", { 11 }, id);
  auto* hexes = MakeArray<uint64>(ds, "Hexes", { 2 }, { 8 }, id, 9);
  auto* cellData = AttributeMatrix::Create(ds, "Cell Data", { 2 }, id);
  hex->setVertexAttributeMatrixId(vertexData->getId());
  hex->setEdgeListId(edges->getId());
  hex->setEdgeAttributeMatrixId(edgeData->getId());
  hex->setFaceListId(faces->getId());
  hex->setFaceAttributeMatrixId(faceData->getId());
  hex->setPolyhedraListId(hexes->getId());
  hex->setPolyhedraAttributeMatrixId(cellData->getId());

  ASSERT_NE(hex->getVertices(), nullptr);
  EXPECT_EQ(hex->getVertices()->getName(), "Vertices");
  EXPECT_EQ(hex->getVertices()->getNumberOfComponents(), 3u);
  EXPECT_EQ(hex->getNumberOfVertices(), 12u);
  EXPECT_EQ(hex->getVertexAttributeMatrix(), vertexData);
  EXPECT_EQ(hex->getEdges(), edges);
  EXPECT_EQ(hex->getEdgeAttributeMatrix(), edgeData);
  EXPECT_EQ(hex->getFaces(), faces);
  EXPECT_EQ(hex->getFaceAttributeMatrix(), faceData);
  EXPECT_EQ(hex->getPolyhedra(), hexes);
  EXPECT_EQ((*hex->getPolyhedra())[15], 9u);
  EXPECT_EQ(hex->getPolyhedraAttributeMatrix(), cellData);
  EXPECT_EQ(hex->getNumberOfCells(), 2u);
}

TEST(Geometry, AccessorsGiveNullForMissingOrMistypedObjects)
{
  DataStructure ds;
  auto* hex = HexahedralGeom::Create(ds, "hex");
  EXPECT_EQ(hex->getVertices(), nullptr);
  EXPECT_EQ(hex->getNumberOfVertices(), 0u);
  EXPECT_EQ(hex->getVertexAttributeMatrix(), nullptr);
  EXPECT_EQ(hex->getEdges(), nullptr);
  EXPECT_EQ(hex->getEdgeAttributeMatrix(), nullptr);
  EXPECT_EQ(hex->getFaces(), nullptr);
  EXPECT_EQ(hex->getFaceAttributeMatrix(), nullptr);
  EXPECT_EQ(hex->getPolyhedra(), nullptr);
  EXPECT_EQ(hex->getPolyhedraAttributeMatrix(), nullptr);
  EXPECT_EQ(hex->getNumberOfCells(), 0u);

  // identifiers of objects of the wrong kind, or of none at all
  const IdType floats = MakeArray<float32>(ds, "floats", { 2 }, { 8 }, hex->getId())->getId();
  const IdType ints = MakeArray<uint64>(ds, "ints", { 2 }, { 3 }, hex->getId())->getId();
  hex->setVertexListId(ints);
  hex->setPolyhedraListId(floats);
  hex->setPolyhedraAttributeMatrixId(ints);
  hex->setFaceAttributeMatrixId(999);
  EXPECT_EQ(hex->getVertices(), nullptr);
  EXPECT_EQ(hex->getPolyhedra(), nullptr);
  EXPECT_EQ(hex->getNumberOfCells(), 0u);
  EXPECT_EQ(hex->getPolyhedraAttributeMatrix(), nullptr);
  EXPECT_EQ(hex->getFaceAttributeMatrix(), nullptr);

  auto* image = ImageGeom::Create(ds, "image");
  EXPECT_EQ(image->getCellData(), nullptr);
  EXPECT_EQ(image->getNumberOfCells(), 0u);
  image->setCellData(floats);
  EXPECT_EQ(image->getCellData(), nullptr);

  auto* grid = RectGridGeom::Create(ds, "grid");
  EXPECT_EQ(grid->getSharedXBounds(), nullptr);
  grid->setBounds(floats, ints, std::nullopt);
  EXPECT_EQ(grid->getSharedXBounds().get(), ds.getData(floats));
  EXPECT_EQ(grid->getSharedYBounds(), nullptr);
  EXPECT_EQ(grid->getSharedZBounds(), nullptr);
}

TEST(Geometry, ImageOriginSpacingAndCellData)
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "image");
  EXPECT_EQ(image->getOrigin(), FloatVec3(0.0f, 0.0f, 0.0f));
  EXPECT_EQ(image->getSpacing(), FloatVec3(1.0f, 1.0f, 1.0f));
  image->setOrigin({ -1.5f, 2.0f, 0.25f });
  image->setSpacing({ 0.5f, 0.5f, 2.0f });
  image->setDimensions({ 4, 3, 2 });
  EXPECT_EQ(image->getOrigin().getX(), -1.5f);
  EXPECT_EQ(image->getOrigin().getZ(), 0.25f);
  EXPECT_EQ(image->getSpacing().getZ(), 2.0f);
  EXPECT_EQ(image->getDimensions(), SizeVec3(4, 3, 2));
  EXPECT_EQ(image->getNumberOfCells(), 24u);

  auto* cellData = AttributeMatrix::Create(ds, "Cell Data", { 2, 3, 4 }, image->getId());
  image->setCellData(cellData->getId());
  const ImageGeom* constImage = image;
  EXPECT_EQ(constImage->getCellData(), cellData);
  EXPECT_EQ(constImage->getCellData()->getNumberOfTuples(), image->getNumberOfCells());
}

TEST(Geometry, RectGridBoundsHoldOneMoreValueThanCells)
{
  DataStructure ds;
  auto* grid = RectGridGeom::Create(ds, "grid");
  grid->setDimensions({ 3, 2, 1 });
  const std::vector<std::vector<float32>> values{ { 0.0f, 1.0f, 3.0f, 6.0f },
                                                  { -1.0f, 0.0f, 1.0f },
                                                  { 10.0f, 12.5f } };
  std::vector<IdType> ids;
  for (usize axis = 0; axis < 3; axis++)
  {
    auto* bounds = MakeArray<float32>(ds, std::string(1, static_cast<char>('X' + axis)),
                                      { values[axis].size() }, { 1 }, grid->getId());
    for (usize i = 0; i < values[axis].size(); i++)
      bounds->getDataStoreRefTyped().setValue(i, values[axis][i]);
    ids.push_back(bounds->getId());
  }
  grid->setBounds(ids[0], ids[1], ids[2]);
  EXPECT_EQ(grid->getXBoundsId(), std::optional<IdType>(ids[0]));

  const std::shared_ptr<Float32Array> axes[3] = { grid->getSharedXBounds(),
                                                  grid->getSharedYBounds(),
                                                  grid->getSharedZBounds() };
  for (usize axis = 0; axis < 3; axis++)
  {
    ASSERT_NE(axes[axis], nullptr) << axis;
    EXPECT_EQ(axes[axis].get(), ds.getData(ids[axis]));
    ASSERT_EQ(axes[axis]->getNumberOfTuples(), grid->getDimensions()[axis] + 1) << axis;
    for (usize i = 0; i < values[axis].size(); i++)
      EXPECT_EQ((*axes[axis])[i], values[axis][i]) << axis << "," << i;
  }
  EXPECT_EQ(grid->getNumberOfCells(), 6u);
}
