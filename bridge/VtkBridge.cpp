#include "bridge/VtkBridge.hpp"

#include "bridge/Array.hpp"
#include "bridge/StructuredGridCellIdFunctor.hpp"

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/EdgeGeom.hpp>
#include <kxcore/HexahedralGeom.hpp>
#include <kxcore/ImageGeom.hpp>
#include <kxcore/QuadGeom.hpp>
#include <kxcore/RectGridGeom.hpp>
#include <kxcore/TetrahedralGeom.hpp>
#include <kxcore/TriangleGeom.hpp>
#include <kxcore/VertexGeom.hpp>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkImageData.h>
#include <vtkImplicitArray.h>
#include <vtkInformation.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkRectilinearGrid.h>
#include <vtkUnstructuredGrid.h>

#include <iostream>
#include <type_traits>

namespace CV::VtkBridge
{
namespace
{
using namespace kx::core;

template<typename T>
vtkSmartPointer<vtkDataArray> wrapTyped(const std::shared_ptr<DataObject>& object,
                                        const std::vector<int>& tupleShape, bool& matched)
{
  auto typed = std::dynamic_pointer_cast<DataArray<T>>(object);
  if (!typed)
    return nullptr;
  matched = true;
  if (!typed->getStorageFormat().empty())
    return nullptr;
  auto array = vtkSmartPointer<Array<T>>::New();
  array->SetDataArray(typed.get());
  array->GetInformation()->Set(TupleShapeKey(), const_cast<int*>(tupleShape.data()),
                               static_cast<int>(tupleShape.size()));
  return array;
}

/** Connectivity as VTK's 64-bit cell storage: a serial copy, uint64 to int64. */
vtkSmartPointer<vtkAOSDataArrayTemplate<vtkTypeInt64>> copyConnectivity(const UInt64Array& list)
{
  const auto& store = list.getDataStoreRefTyped();
  const usize count = store.getSize();
  auto array = vtkSmartPointer<vtkAOSDataArrayTemplate<vtkTypeInt64>>::New();
  array->SetNumberOfComponents(1);
  array->SetNumberOfValues(static_cast<vtkIdType>(count));
  for (usize i = 0; i < count; i++)
    array->SetValue(static_cast<vtkIdType>(i), static_cast<vtkTypeInt64>(store.getValue(i)));
  return array;
}

vtkSmartPointer<vtkCellArray> newCellArray()
{
  auto cells = vtkSmartPointer<vtkCellArray>::New();
  cells->Use64BitStorage();
  return cells;
}

bool inMemory(const IArray* array)
{
  return array != nullptr && array->getStorageFormat().empty();
}

/** Adds the arrays whose tuple count equals the expected count; reports the others. */
void addAttributeArrays(const std::vector<uint64>& ids, DataStructure& structure,
                        vtkDataSetAttributes* attributes, usize expected, const char* kind,
                        const char* countWord)
{
  for (uint64 id : ids)
  {
    vtkSmartPointer<vtkDataArray> array = WrapDataArray(structure.getSharedData(id));
    if (!array)
      continue;
    const int components = array->GetNumberOfComponents();
    const vtkIdType tuples = (array->GetMaxId() + 1) / (components > 0 ? components : 1);
    const std::string name = array->GetName() != nullptr ? array->GetName() : "";
    if (static_cast<usize>(tuples) == expected)
    {
      attributes->AddArray(array);
      if (components == 1)
        attributes->SetActiveScalars(name.c_str());
      else if (components == 3)
        attributes->SetActiveVectors(name.c_str());
    }
    else
    {
      std::cout << kind << " Array '" << name << "' has Tuple Count of " << tuples
                << " but the Geometry " << countWord << " count is " << expected << "\n";
    }
  }
}

std::vector<uint64> childIds(const AttributeMatrix* matrix)
{
  return matrix != nullptr ? matrix->getDataMap().getKeys() : std::vector<uint64>{};
}

void collectGeometries(const DataMap& map, std::vector<std::shared_ptr<IGeometry>>& out)
{
  for (const auto& [id, object] : map)
  {
    if (auto geometry = std::dynamic_pointer_cast<IGeometry>(object))
      out.push_back(geometry);
    else if (auto group = std::dynamic_pointer_cast<BaseGroup>(object))
      collectGeometries(group->getDataMap(), out);
  }
}

template<typename G>
bool tryWrap(const std::shared_ptr<IGeometry>& geometry, WrappedGeometry& wrapped)
{
  auto typed = std::dynamic_pointer_cast<G>(geometry);
  if (!typed)
    return false;
  wrapped.DataSet = CreateFromGeom<G>(typed);
  return true;
}
} // namespace

vtkSmartPointer<vtkDataArray> WrapDataArray(const std::shared_ptr<DataObject>& object)
{
  auto array = std::dynamic_pointer_cast<IArray>(object);
  if (!array)
    return nullptr;
  std::vector<int> tupleShape;
  for (usize extent : array->getTupleShape())
    tupleShape.push_back(static_cast<int>(extent));

  bool matched = false;
  vtkSmartPointer<vtkDataArray> result;
  auto attempt = [&](auto tag)
  {
    using T = decltype(tag);
    if (!matched)
      result = wrapTyped<T>(object, tupleShape, matched);
  };
  attempt(int8{});
  attempt(int16{});
  attempt(int32{});
  attempt(int64{});
  attempt(uint8{});
  attempt(uint16{});
  attempt(uint32{});
  attempt(uint64{});
  attempt(float32{});
  attempt(float64{});
  return result;
}

vtkSmartPointer<vtkDataArray> WrapDataArray(DataStructure& dataStructure, std::uint64_t id)
{
  return WrapDataArray(dataStructure.getSharedData(id));
}

template<typename G>
vtkSmartPointer<vtkDataSet> CreateFromGeom(const std::shared_ptr<G>& input)
{
  if (!input)
    return nullptr;
  const std::shared_ptr<IGeometry> geometry = input;
  const std::string& name = geometry->getName();
  vtkSmartPointer<vtkDataSet> result;
  usize cellCount = 0;
  usize pointCount = 0;

  if (auto image = std::dynamic_pointer_cast<ImageGeom>(geometry))
  {
    auto imageData = vtkSmartPointer<vtkImageData>::New();
    imageData->SetObjectName(name);
    const SizeVec3 dims = image->getDimensions();
    // the extent ends at the cell count, so each host tuple is one cell
    imageData->SetExtent(0, static_cast<int>(dims[0]), 0, static_cast<int>(dims[1]), 0,
                         static_cast<int>(dims[2]));
    const FloatVec3 spacing = image->getSpacing();
    const FloatVec3 origin = image->getOrigin();
    imageData->SetSpacing(spacing[0], spacing[1], spacing[2]);
    imageData->SetOrigin(origin[0], origin[1], origin[2]);
    cellCount = image->getNumberOfCells();
    result = imageData;
  }
  else if (auto rect = std::dynamic_pointer_cast<RectGridGeom>(geometry))
  {
    auto grid = vtkSmartPointer<vtkRectilinearGrid>::New();
    grid->SetObjectName(name);
    const SizeVec3 dims = rect->getDimensions();
    grid->SetExtent(0, static_cast<int>(dims[0]), 0, static_cast<int>(dims[1]), 0,
                    static_cast<int>(dims[2]));
    cellCount = rect->getNumberOfCells();
    const std::shared_ptr<Float32Array> bounds[3] = { rect->getSharedXBounds(),
                                                      rect->getSharedYBounds(),
                                                      rect->getSharedZBounds() };
    const char* names[3] = { "X Bounds CV Array", "Y Bounds CV Array", "Z Bounds CV Array" };
    vtkSmartPointer<Array<float>> coordinates[3];
    for (int axis = 0; axis < 3; axis++)
    {
      coordinates[axis] = vtkSmartPointer<Array<float>>::New();
      coordinates[axis]->SetDataArray(bounds[axis].get());
      coordinates[axis]->SetObjectName(names[axis]);
    }
    grid->SetXCoordinates(coordinates[0]);
    grid->SetYCoordinates(coordinates[1]);
    grid->SetZCoordinates(coordinates[2]);
    result = grid;
  }

  auto unstructured = vtkSmartPointer<vtkUnstructuredGrid>::New();
  auto poly = vtkSmartPointer<vtkPolyData>::New();
  unstructured->SetObjectName(name);
  poly->SetObjectName(name);

  if (auto node0 = std::dynamic_pointer_cast<INodeGeometry0D>(geometry))
  {
    const Float32Array* vertices = node0->getVertices();
    if (vertices != nullptr && inMemory(vertices))
    {
      auto coordinates = vtkSmartPointer<Array<float>>::New();
      coordinates->SetDataArray(vertices);
      vtkNew<vtkPoints> points;
      points->SetData(coordinates);
      unstructured->SetPoints(points);
      poly->SetPoints(points);

      const usize count = vertices->getNumberOfTuples();
      auto ids = vtkSmartPointer<vtkAOSDataArrayTemplate<vtkTypeInt64>>::New();
      ids->SetNumberOfValues(static_cast<vtkIdType>(count));
      for (usize i = 0; i < count; i++)
        ids->SetValue(static_cast<vtkIdType>(i), static_cast<vtkTypeInt64>(i));
      auto cells = newCellArray();
      cells->SetData(1, ids);
      unstructured->SetCells(VTK_VERTEX, cells);
      pointCount = count;
      if constexpr (std::is_same_v<G, VertexGeom>)
        poly->SetVerts(cells);
    }
    result = poly;
  }
  if (auto node1 = std::dynamic_pointer_cast<INodeGeometry1D>(geometry))
  {
    const UInt64Array* edges = node1->getEdges();
    if (edges != nullptr && inMemory(edges))
    {
      auto cells = newCellArray();
      cells->SetData(2, copyConnectivity(*edges));
      unstructured->SetCells(VTK_LINE, cells);
      poly->SetLines(cells);
      cellCount = edges->getNumberOfTuples();
    }
  }
  if (auto node2 = std::dynamic_pointer_cast<INodeGeometry2D>(geometry))
  {
    const UInt64Array* faces = node2->getFaces();
    if (faces != nullptr && inMemory(faces))
    {
      auto connectivity = copyConnectivity(*faces);
      auto cells = newCellArray();
      const usize perFace = node2->getNumberOfVerticesPerFace();
      if (perFace == 3)
      {
        cells->SetData(3, connectivity);
        unstructured->SetCells(VTK_TRIANGLE, cells);
      }
      else if (perFace == 4)
      {
        cells->SetData(4, connectivity);
        unstructured->SetCells(VTK_QUAD, cells);
      }
      poly->SetPolys(cells);
      cellCount = faces->getNumberOfTuples();
    }
  }
  if (auto node3 = std::dynamic_pointer_cast<INodeGeometry3D>(geometry))
  {
    const UInt64Array* polyhedra = node3->getPolyhedra();
    if (polyhedra != nullptr && inMemory(polyhedra))
    {
      auto connectivity = copyConnectivity(*polyhedra);
      auto cells = newCellArray();
      const usize perCell = node3->getNumberOfVerticesPerCell();
      if (perCell == 4)
      {
        cells->SetData(4, connectivity);
        unstructured->SetCells(VTK_TETRA, cells);
      }
      else if (perCell == 8)
      {
        cells->SetData(8, connectivity);
        unstructured->SetCells(VTK_HEXAHEDRON, cells);
      }
      cellCount = polyhedra->getNumberOfTuples();
    }
    result = unstructured;
  }

  if (result && geometry->getDataStructure() != nullptr)
  {
    DataStructure& structure = *geometry->getDataStructure();
    const auto [cellIds, pointIds] = GetCellAndPointDataIds(geometry);
    addAttributeArrays(cellIds, structure, result->GetCellData(), cellCount, "Cell", "cell");
    addAttributeArrays(pointIds, structure, result->GetPointData(), pointCount, "Point", "Point");
  }
  return result;
}

std::shared_ptr<WrappedGeometry> WrapGeometry(const std::shared_ptr<IGeometry>& geometry)
{
  auto wrapped = std::make_shared<WrappedGeometry>();
  if (!geometry)
    return wrapped;
  const std::vector<DataPath> paths = geometry->getDataPaths();
  if (paths.size() == 1)
  {
    wrapped->Path = paths.front();
  }
  else if (paths.size() >= 2)
  {
    std::cout << "Kxcore Geometry has multiple parents. This is not a supported configuration.\n";
    return wrapped;
  }
  else
  {
    std::cout << "Kxcore Geometry does not have a parent path? This cannot be good.\n";
    return wrapped;
  }
  tryWrap<ImageGeom>(geometry, *wrapped) || tryWrap<RectGridGeom>(geometry, *wrapped) ||
    tryWrap<VertexGeom>(geometry, *wrapped) || tryWrap<EdgeGeom>(geometry, *wrapped) ||
    tryWrap<TriangleGeom>(geometry, *wrapped) || tryWrap<QuadGeom>(geometry, *wrapped) ||
    tryWrap<TetrahedralGeom>(geometry, *wrapped) || tryWrap<HexahedralGeom>(geometry, *wrapped);
  return wrapped;
}

std::pair<std::vector<std::uint64_t>, std::vector<std::uint64_t>> GetCellAndPointDataIds(
  const std::shared_ptr<IGeometry>& geometry)
{
  if (!geometry)
    return {};
  switch (static_cast<uint32>(geometry->getGeomType()))
  {
    case 0:
    case 1:
    {
      const auto* grid = dynamic_cast<const IGridGeometry*>(geometry.get());
      return { childIds(grid != nullptr ? grid->getCellData() : nullptr), {} };
    }
    case 2:
    {
      const auto* node0 = dynamic_cast<const INodeGeometry0D*>(geometry.get());
      return { {}, childIds(node0 != nullptr ? node0->getVertexAttributeMatrix() : nullptr) };
    }
    case 3:
    {
      const auto* node1 = dynamic_cast<const INodeGeometry1D*>(geometry.get());
      if (node1 == nullptr)
        return {};
      return { childIds(node1->getEdgeAttributeMatrix()),
               childIds(node1->getVertexAttributeMatrix()) };
    }
    case 4:
    case 5:
    {
      const auto* node2 = dynamic_cast<const INodeGeometry2D*>(geometry.get());
      if (node2 == nullptr)
        return {};
      return { childIds(node2->getFaceAttributeMatrix()),
               childIds(node2->getVertexAttributeMatrix()) };
    }
    case 6:
    case 7:
    {
      const auto* node3 = dynamic_cast<const INodeGeometry3D*>(geometry.get());
      if (node3 == nullptr)
        return {};
      return { childIds(node3->getPolyhedraAttributeMatrix()),
               childIds(node3->getVertexAttributeMatrix()) };
    }
    default:
      return {};
  }
}

std::vector<std::shared_ptr<IGeometry>> FindGeometry(std::shared_ptr<DataStructure>& dataStructure)
{
  std::vector<std::shared_ptr<IGeometry>> geometries;
  if (dataStructure)
    collectGeometries(dataStructure->getDataMap(), geometries);
  return geometries;
}

std::shared_ptr<IGeometry> FindGeometry(std::shared_ptr<DataStructure>& dataStructure,
                                        const std::string& name)
{
  for (auto& geometry : FindGeometry(dataStructure))
  {
    if (geometry->getName() == name)
      return geometry;
  }
  return nullptr;
}

void AddOriginalCellIdsArray(vtkDataSet* dataSet)
{
  int dims[3] = { 0, 0, 0 };
  if (auto* image = vtkImageData::SafeDownCast(dataSet))
    image->GetDimensions(dims);
  else if (auto* grid = vtkRectilinearGrid::SafeDownCast(dataSet))
    grid->GetDimensions(dims);
  else
    return;
  vtkNew<vtkImplicitArray<StructuredGridCellIdFunctor>> ids;
  ids->ConstructBackend(StructuredGridCellIdFunctor{ { dims[0], dims[1], dims[2] } });
  ids->SetName("Original Cell Index");
  ids->SetNumberOfComponents(1);
  ids->SetNumberOfTuples(dataSet->GetNumberOfCells());
  dataSet->GetCellData()->AddArray(ids);
}

template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<ImageGeom>(
  const std::shared_ptr<ImageGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<RectGridGeom>(
  const std::shared_ptr<RectGridGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<VertexGeom>(
  const std::shared_ptr<VertexGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<EdgeGeom>(
  const std::shared_ptr<EdgeGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<TriangleGeom>(
  const std::shared_ptr<TriangleGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<QuadGeom>(
  const std::shared_ptr<QuadGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<TetrahedralGeom>(
  const std::shared_ptr<TetrahedralGeom>&);
template KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom<HexahedralGeom>(
  const std::shared_ptr<HexahedralGeom>&);
} // namespace CV::VtkBridge
