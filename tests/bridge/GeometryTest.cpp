#include "BridgeTestUtils.hpp"

#include <bridge/Array.hpp>
#include <bridge/VtkBridge.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataGroup.hpp>
#include <kxcore/EdgeGeom.hpp>
#include <kxcore/FileDataStore.hpp>
#include <kxcore/HexahedralGeom.hpp>
#include <kxcore/ImageGeom.hpp>
#include <kxcore/QuadGeom.hpp>
#include <kxcore/RectGridGeom.hpp>
#include <kxcore/TetrahedralGeom.hpp>
#include <kxcore/TriangleGeom.hpp>
#include <kxcore/VertexGeom.hpp>

#include "TestSupport.hpp"

#include <vtkCellData.h>
#include <vtkCellTypes.h>
#include <vtkImageData.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkRectilinearGrid.h>
#include <vtkUnstructuredGrid.h>

#include <numeric>

using namespace kx::core;
namespace VB = CV::VtkBridge;

namespace
{
Float32Array* makeVertices(DataStructure& ds, IdType parent, usize count)
{
  std::vector<float> xyz(count * 3);
  for (usize i = 0; i < xyz.size(); i++)
    xyz[i] = static_cast<float>(i);
  return bridgetest::makeArray<float>(ds, "Vertices", xyz, { count }, { 3 }, parent);
}

UInt64Array* makeConnectivity(DataStructure& ds, IdType parent, const std::string& name,
                              usize cells, usize perCell, usize vertices)
{
  std::vector<uint64> ids(cells * perCell);
  for (usize i = 0; i < ids.size(); i++)
    ids[i] = i % vertices;
  return bridgetest::makeArray<uint64>(ds, name, ids, { cells }, { perCell }, parent);
}

template<typename Geom>
INodeGeometry0D* createNode(DataStructure& ds, const std::string& name)
{
  return Geom::Create(ds, name);
}

std::shared_ptr<IGeometry> shared(DataStructure& ds, const IGeometry* geometry)
{
  return ds.getSharedDataAs<IGeometry>(geometry->getId());
}

/** A surface whose faces claim five vertices each. */
class PentagonGeom : public TriangleGeom
{
public:
  static PentagonGeom* Create(DataStructure& ds, const std::string& name)
  {
    std::shared_ptr<PentagonGeom> geom(new PentagonGeom(ds, name, ds.generateId()));
    return ds.insert(geom, std::nullopt) ? geom.get() : nullptr;
  }
  usize getNumberOfVerticesPerFace() const override { return 5; }

protected:
  using TriangleGeom::TriangleGeom;
};
} // namespace

TEST(GeometryConversion, ImageGeomBecomesImageDataWithCellArrays)
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "Volume");
  image->setDimensions({ 10, 20, 30 });
  image->setOrigin({ 1.5f, -2.0f, 0.25f });
  image->setSpacing({ 0.5f, 0.5f, 2.0f });
  auto* cells = AttributeMatrix::Create(ds, "Cell Data", { 30, 20, 10 }, image->getId());
  image->setCellData(cells->getId());
  std::vector<int32> ids(6000);
  std::iota(ids.begin(), ids.end(), 0);
  bridgetest::makeArray<int32>(ds, "FeatureIds", ids, { 30, 20, 10 }, { 1 }, cells->getId());
  bridgetest::makeArray<float>(ds, "Euler", std::vector<float>(18000, 1.0f), { 30, 20, 10 }, { 3 },
                               cells->getId());
  // a matrix whose arrays are one short of the geometry's cells
  auto* shortMatrix = AttributeMatrix::Create(ds, "Short", { 5999 }, image->getId());
  bridgetest::makeArray<float>(ds, "TooShort", std::vector<float>(5999, 0.0f), { 5999 }, { 1 },
                               shortMatrix->getId());

  auto dataSet = VB::CreateFromGeom(ds.getSharedDataAs<ImageGeom>(image->getId()));
  auto* imageData = vtkImageData::SafeDownCast(dataSet);
  ASSERT_NE(imageData, nullptr);
  EXPECT_EQ(imageData->GetObjectName(), "Volume");
  EXPECT_EQ(imageData->GetNumberOfCells(), 6000);
  std::array<int, 3> dims;
  imageData->GetDimensions(dims.data());
  EXPECT_EQ(dims, (std::array<int, 3>{ 11, 21, 31 }));
  EXPECT_DOUBLE_EQ(imageData->GetOrigin()[0], 1.5);
  EXPECT_DOUBLE_EQ(imageData->GetSpacing()[2], 2.0);

  vtkCellData* cellData = imageData->GetCellData();
  ASSERT_EQ(cellData->GetNumberOfArrays(), 2);
  EXPECT_STREQ(cellData->GetScalars()->GetName(), "FeatureIds");
  EXPECT_STREQ(cellData->GetVectors()->GetName(), "Euler");
  EXPECT_EQ(cellData->GetArray("FeatureIds")->GetComponent(5999, 0), 5999.0);

  // the short array isn't in the cell data since the image's cell matrix is not its parent;
  // pointing the geometry at it reports the mismatch
  image->setCellData(shortMatrix->getId());
  ::testing::internal::CaptureStdout();
  auto mismatched = VB::CreateFromGeom(ds.getSharedDataAs<ImageGeom>(image->getId()));
  const std::string output = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(mismatched->GetCellData()->GetNumberOfArrays(), 0);
  EXPECT_EQ(output,
            "Cell Array 'TooShort' has Tuple Count of 5999 but the Geometry cell count is 6000\n");
}

TEST(GeometryConversion, VectorArrayGetsActiveVectorsNotScalars)
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "Img");
  image->setDimensions({ 10, 20, 30 });
  auto* cells = AttributeMatrix::Create(ds, "Cells", { 6000 }, image->getId());
  image->setCellData(cells->getId());
  bridgetest::makeArray<double>(ds, "Velocity", std::vector<double>(18000, 2.0), { 6000 }, { 3 },
                                cells->getId());
  auto dataSet = VB::CreateFromGeom(ds.getSharedDataAs<ImageGeom>(image->getId()));
  ASSERT_NE(dataSet->GetCellData()->GetVectors(), nullptr);
  EXPECT_STREQ(dataSet->GetCellData()->GetVectors()->GetName(), "Velocity");
  EXPECT_EQ(dataSet->GetCellData()->GetScalars(), nullptr);
}

TEST(GeometryConversion, RectGridSharesBounds)
{
  DataStructure ds;
  auto* rect = RectGridGeom::Create(ds, "Grid");
  rect->setDimensions({ 2, 1, 3 });
  auto* x =
    bridgetest::makeArray<float>(ds, "X", { 0.0f, 1.0f, 3.0f }, { 3 }, { 1 }, rect->getId());
  auto* y = bridgetest::makeArray<float>(ds, "Y", { 0.0f, 2.0f }, { 2 }, { 1 }, rect->getId());
  auto* z =
    bridgetest::makeArray<float>(ds, "Z", { 0.0f, 1.0f, 2.0f, 4.0f }, { 4 }, { 1 }, rect->getId());
  rect->setBounds(x->getId(), y->getId(), z->getId());
  vtkSmartPointer<vtkDataSet> dataSet =
    VB::CreateFromGeom(ds.getSharedDataAs<RectGridGeom>(rect->getId()));
  auto* grid = vtkRectilinearGrid::SafeDownCast(dataSet);
  ASSERT_NE(grid, nullptr);
  EXPECT_EQ(grid->GetNumberOfCells(), 6);
  EXPECT_EQ(grid->GetXCoordinates()->GetObjectName(), "X Bounds CV Array");
  EXPECT_EQ(grid->GetZCoordinates()->GetObjectName(), "Z Bounds CV Array");
  EXPECT_EQ(
    grid->GetXCoordinates()->GetVoidPointer(0),
    static_cast<void*>(std::dynamic_pointer_cast<DataStore<float>>(x->getDataStore())->data()));
  double bounds[6];
  grid->GetBounds(bounds);
  EXPECT_EQ(bounds[1], 3.0);
  EXPECT_EQ(bounds[5], 4.0);
}

// Each node geometry: the data set type, its cells and the cell type.
TEST(GeometryConversion, NodeGeometriesBecomePolyDataOrUnstructuredGrids)
{
  struct Case
  {
    std::string name;
    int cellType;
    usize perCell;
    bool polyData;
    INodeGeometry0D* (*create)(DataStructure&, const std::string&);
  };
  const std::vector<Case> cases = {
    { "Vertex", VTK_VERTEX, 1, true, &createNode<VertexGeom> },
    { "Edge", VTK_LINE, 2, true, &createNode<EdgeGeom> },
    { "Triangle", VTK_TRIANGLE, 3, true, &createNode<TriangleGeom> },
    { "Quad", VTK_QUAD, 4, true, &createNode<QuadGeom> },
    { "Tet", VTK_TETRA, 4, false, &createNode<TetrahedralGeom> },
    { "Hex", VTK_HEXAHEDRON, 8, false, &createNode<HexahedralGeom> }
  };
  for (const Case& c : cases)
  {
    SCOPED_TRACE(c.name);
    DataStructure ds;
    const usize vertices = 12;
    const usize cellCount = 5;
    INodeGeometry0D* geom = c.create(ds, c.name);
    geom->setVertexListId(makeVertices(ds, geom->getId(), vertices)->getId());
    auto* list = makeConnectivity(ds, geom->getId(), "Cells", cellCount, c.perCell, vertices);
    if (auto* g1 = dynamic_cast<INodeGeometry1D*>(geom); g1 != nullptr && c.perCell == 2)
      g1->setEdgeListId(list->getId());
    if (auto* g2 = dynamic_cast<INodeGeometry2D*>(geom);
        g2 != nullptr && (c.name == "Triangle" || c.name == "Quad"))
      g2->setFaceListId(list->getId());
    if (auto* g3 = dynamic_cast<INodeGeometry3D*>(geom))
      g3->setPolyhedraListId(list->getId());

    auto wrapped = VB::WrapGeometry(shared(ds, geom));
    ASSERT_NE(wrapped->DataSet, nullptr);
    EXPECT_EQ(wrapped->Path, DataPath({ c.name }));
    EXPECT_EQ(wrapped->DataSet->GetObjectName(), c.name);
    EXPECT_EQ(wrapped->DataSet->GetNumberOfPoints(), static_cast<vtkIdType>(vertices));
    // the vertices are shared, not copied
    auto* points = vtkPointSet::SafeDownCast(wrapped->DataSet)->GetPoints();
    EXPECT_EQ(
      points->GetData()->GetVoidPointer(0),
      static_cast<void*>(
        std::dynamic_pointer_cast<DataStore<float>>(geom->getVertices()->getDataStore())->data()));
    const vtkIdType expectedCells =
      c.name == "Vertex" ? static_cast<vtkIdType>(vertices) : static_cast<vtkIdType>(cellCount);
    if (c.polyData)
    {
      auto* poly = vtkPolyData::SafeDownCast(wrapped->DataSet);
      ASSERT_NE(poly, nullptr);
      EXPECT_EQ(poly->GetNumberOfCells(), expectedCells);
      EXPECT_EQ(poly->GetNumberOfVerts(),
                c.name == "Vertex" ? static_cast<vtkIdType>(vertices) : 0);
    }
    else
    {
      ASSERT_NE(vtkUnstructuredGrid::SafeDownCast(wrapped->DataSet), nullptr);
      EXPECT_EQ(wrapped->DataSet->GetNumberOfCells(), expectedCells);
    }
    EXPECT_EQ(wrapped->DataSet->GetCellType(0), c.cellType);
    vtkNew<vtkIdList> ids;
    wrapped->DataSet->GetCellPoints(expectedCells - 1, ids);
    ASSERT_EQ(ids->GetNumberOfIds(), static_cast<vtkIdType>(c.perCell));
    EXPECT_EQ(ids->GetId(0), static_cast<vtkIdType>(((expectedCells - 1) * c.perCell) % vertices));
  }
}

TEST(GeometryConversion, QuadVertexArraysBecomePointData)
{
  DataStructure ds;
  auto* quad = QuadGeom::Create(ds, "Quads");
  quad->setVertexListId(makeVertices(ds, quad->getId(), 4)->getId());
  quad->setFaceListId(makeConnectivity(ds, quad->getId(), "Faces", 1, 4, 4)->getId());
  auto* vertexData = AttributeMatrix::Create(ds, "Vertex Data", { 4 }, quad->getId());
  quad->setVertexAttributeMatrixId(vertexData->getId());
  bridgetest::makeArray<float>(ds, "Temperature", { 1.0f, 2.0f, 3.0f, 4.0f }, { 4 }, { 1 },
                               vertexData->getId());
  auto* faceData = AttributeMatrix::Create(ds, "Face Data", { 1 }, quad->getId());
  quad->setFaceAttributeMatrixId(faceData->getId());
  bridgetest::makeArray<int32>(ds, "Label", { 7 }, { 1 }, { 1 }, faceData->getId());

  const auto [cellIds, pointIds] = VB::GetCellAndPointDataIds(shared(ds, quad));
  EXPECT_EQ(cellIds.size(), 1u);
  EXPECT_EQ(pointIds.size(), 1u);
  auto dataSet = VB::CreateFromGeom(ds.getSharedDataAs<QuadGeom>(quad->getId()));
  ASSERT_NE(dataSet->GetPointData()->GetArray("Temperature"), nullptr);
  EXPECT_EQ(dataSet->GetPointData()->GetArray("Temperature")->GetComponent(3, 0), 4.0);
  EXPECT_STREQ(dataSet->GetPointData()->GetScalars()->GetName(), "Temperature");
  EXPECT_EQ(dataSet->GetCellData()->GetArray("Label")->GetComponent(0, 0), 7.0);
}

TEST(GeometryConversion, UnsupportedFaceSizesOutOfCoreVerticesAndNoGeometryGiveNoCells)
{
  DataStructure ds;
  auto* pentagons = PentagonGeom::Create(ds, "Pentagons");
  pentagons->setVertexListId(makeVertices(ds, pentagons->getId(), 5)->getId());
  pentagons->setFaceListId(makeConnectivity(ds, pentagons->getId(), "Faces", 2, 5, 5)->getId());
  vtkSmartPointer<vtkDataSet> dataSet =
    VB::CreateFromGeom(ds.getSharedDataAs<TriangleGeom>(pentagons->getId()));
  auto* poly = vtkPolyData::SafeDownCast(dataSet);
  ASSERT_NE(poly, nullptr);
  EXPECT_EQ(poly->GetNumberOfPoints(), 5);
  EXPECT_EQ(poly->GetNumberOfPolys(), 0);

  // out-of-core vertices give no points but keep the name
  kxtest::TempDir tmp;
  auto* vertexGeom = VertexGeom::Create(ds, "Cloud");
  auto store =
    std::make_shared<FileDataStore<float>>(tmp / "xyz.raw", ShapeType{ 3 }, ShapeType{ 3 }, true);
  vertexGeom->setVertexListId(
    Float32Array::Create(ds, "Vertices", store, vertexGeom->getId())->getId());
  dataSet = VB::CreateFromGeom(ds.getSharedDataAs<VertexGeom>(vertexGeom->getId()));
  ASSERT_NE(dataSet, nullptr);
  EXPECT_EQ(dataSet->GetObjectName(), "Cloud");
  EXPECT_EQ(dataSet->GetNumberOfPoints(), 0);
  EXPECT_EQ(dataSet->GetNumberOfCells(), 0);

  EXPECT_EQ(VB::CreateFromGeom(std::shared_ptr<ImageGeom>()), nullptr);
  EXPECT_EQ(VB::CreateFromGeom(std::shared_ptr<HexahedralGeom>()), nullptr);
}

TEST(GeometryConversion, WrapGeometryRefusesSeveralOrNoParents)
{
  DataStructure ds;
  auto* groupA = DataGroup::Create(ds, "A");
  auto* groupB = DataGroup::Create(ds, "B");
  auto* image = ImageGeom::Create(ds, "Img", groupA->getId());
  image->setDimensions({ 2, 2, 2 });
  ASSERT_TRUE(ds.setAdditionalParent(image->getId(), groupB->getId()));

  auto imageShared = shared(ds, image);
  ::testing::internal::CaptureStdout();
  auto wrapped = VB::WrapGeometry(imageShared);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "Kxcore Geometry has multiple parents. This is not a supported configuration.\n");
  EXPECT_EQ(wrapped->DataSet, nullptr);
  EXPECT_TRUE(wrapped->Path.empty());

  ds.removeData(groupA->getId());
  ds.removeData(groupB->getId());
  ::testing::internal::CaptureStdout();
  auto orphan = VB::WrapGeometry(imageShared);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "Kxcore Geometry does not have a parent path? This cannot be good.\n");
  EXPECT_EQ(orphan->DataSet, nullptr);
}

TEST(GeometryConversion, FindGeometrySearchesGroupsButNotGeometries)
{
  auto ds = std::make_shared<DataStructure>();
  ImageGeom::Create(*ds, "Top");
  auto* outer = DataGroup::Create(*ds, "Outer");
  auto* inner = DataGroup::Create(*ds, "Inner", outer->getId());
  TriangleGeom::Create(*ds, "Deep", inner->getId());
  auto* cloud = VertexGeom::Create(*ds, "Cloud");
  ImageGeom::Create(*ds, "Hidden", cloud->getId());
  RectGridGeom::Create(*ds, "Later", outer->getId());

  const auto found = VB::FindGeometry(ds);
  std::vector<std::string> names;
  for (const auto& geometry : found)
    names.push_back(geometry->getName());
  // depth first, ascending identifier at each level
  EXPECT_EQ(names, (std::vector<std::string>{ "Top", "Deep", "Later", "Cloud" }));

  EXPECT_EQ(VB::FindGeometry(ds, "Deep")->getName(), "Deep");
  EXPECT_EQ(VB::FindGeometry(ds, "Hidden"), nullptr);
  EXPECT_EQ(VB::FindGeometry(ds, "deep"), nullptr);
}

TEST(GeometryConversion, OriginalCellIdsAreImplicit)
{
  vtkNew<vtkImageData> image;
  image->SetExtent(0, 40, 0, 30, 0, 20);
  VB::AddOriginalCellIdsArray(image);
  vtkDataArray* ids = image->GetCellData()->GetArray("Original Cell Index");
  ASSERT_NE(ids, nullptr);
  EXPECT_EQ(ids->GetNumberOfTuples(), 24000);
  EXPECT_EQ(ids->GetNumberOfComponents(), 1);
  EXPECT_EQ(ids->GetComponent(12345, 0), 12345.0);
  EXPECT_EQ(ids->GetComponent(23999, 0), 23999.0);
  // no per-cell storage: far below the 24000 x 8 bytes an explicit array needs
  EXPECT_LT(ids->GetActualMemorySize(), 8u);

  vtkNew<vtkPolyData> poly;
  VB::AddOriginalCellIdsArray(poly);
  EXPECT_EQ(poly->GetCellData()->GetNumberOfArrays(), 0);
}
