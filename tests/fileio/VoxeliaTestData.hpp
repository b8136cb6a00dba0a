#pragma once

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

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>

namespace kxtest
{
using namespace kx::core;

template<typename T>
std::shared_ptr<DataStore<T>> MakeStore(ShapeType tupleShape, ShapeType componentShape,
                                        const std::vector<T>& values)
{
  auto store = std::make_shared<DataStore<T>>(std::move(tupleShape), std::move(componentShape));
  EXPECT_EQ(store->getSize(), values.size());
  for (usize i = 0; i < std::min(values.size(), store->getSize()); i++)
    store->setValue(i, values[i]);
  return store;
}

template<typename T>
DataArray<T>* AddArray(DataStructure& ds, const std::string& name, IdType id, ShapeType tuples,
                       ShapeType components, const std::vector<T>& values,
                       std::optional<IdType> parent)
{
  auto* array = DataArray<T>::Import(
    ds, name, id, MakeStore<T>(std::move(tuples), std::move(components), values), parent);
  EXPECT_NE(array, nullptr) << name;
  return array;
}

/** Eleven element types with their extremes; the names sort against their identifiers on purpose.
 */
template<typename T>
std::vector<T> ExtremeValues()
{
  if constexpr (std::is_same_v<T, bool>)
    return { true, false, false, true, true, false };
  else if constexpr (std::is_floating_point_v<T>)
    return { std::numeric_limits<T>::lowest(),
             std::numeric_limits<T>::max(),
             std::numeric_limits<T>::quiet_NaN(),
             -std::numeric_limits<T>::infinity(),
             T(-0.0),
             std::numeric_limits<T>::denorm_min() };
  else
    return { std::numeric_limits<T>::min(),       std::numeric_limits<T>::max(), T(0), T(1), T(42),
             T(std::numeric_limits<T>::max() - 1) };
}

/** Identifiers of objects the tests look at, as MakeEveryKindStructure gives them. */
namespace ids
{
constexpr IdType k_SharedGroup = 5;
constexpr IdType k_SharedValues = 6;
constexpr IdType k_GroupA = 10;
constexpr IdType k_Nested = 12;
constexpr IdType k_FirstTyped = 20; // 20..30: one array of each element type, bool last
constexpr IdType k_Empty = 31;
constexpr IdType k_Matrix = 32;
constexpr IdType k_LateTop = 40; // top level and in "Group A", whose identifier is lower
constexpr IdType k_Image = 100;
constexpr IdType k_ImageCellData = 101;
constexpr IdType k_Rect = 110;
constexpr IdType k_Points = 120;
constexpr IdType k_Edges = 130;
constexpr IdType k_Triangles = 140;
constexpr IdType k_TriangleVertices = 141;
constexpr IdType k_TriangleFaces = 142;
constexpr IdType k_Quads = 150;
constexpr IdType k_Tets = 160;
constexpr IdType k_Hexes = 170;
} // namespace ids

/** Names of the eleven typed arrays under "Group A", in identifier order. */
inline std::vector<std::string> TypedArrayNames()
{
  return { "k int8",  "j uint8",  "i int16",   "h uint16",  "g int32", "f uint32",
           "e int64", "d uint64", "c float32", "b float64", "a bool" };
}

/**
 * One structure with every kind of object: groups, an object with three paths,
 * groups both top level and inside another group, arrays of the eleven element types, an empty
 * array, a two-dimensional component shape and the eight geometries with their lists and attribute
 * matrices. Identifiers are explicit and sparse.
 */
inline DataStructure MakeEveryKindStructure()
{
  DataStructure ds;
  DataGroup::Import(ds, "Shared Group", ids::k_SharedGroup);
  AddArray<int32>(ds, "Shared Values", ids::k_SharedValues, { 3 }, { 1 }, { 7, -8, 9 },
                  ids::k_SharedGroup);
  DataGroup::Import(ds, "Group A", ids::k_GroupA);
  DataGroup::Import(ds, "Nested", ids::k_Nested, ids::k_GroupA);
  EXPECT_TRUE(ds.setAdditionalParent(ids::k_SharedValues, ids::k_GroupA));
  EXPECT_TRUE(ds.setAdditionalParent(ids::k_SharedGroup, ids::k_Nested));
  DataGroup::Import(ds, "Late Top", ids::k_LateTop);
  EXPECT_TRUE(ds.setAdditionalParent(ids::k_LateTop, ids::k_GroupA));

  const auto names = TypedArrayNames();
  IdType id = ids::k_FirstTyped;
  AddArray<int8>(ds, names[0], id++, { 3, 2 }, { 1 }, ExtremeValues<int8>(), ids::k_GroupA);
  AddArray<uint8>(ds, names[1], id++, { 3 }, { 2 }, ExtremeValues<uint8>(), ids::k_GroupA);
  AddArray<int16>(ds, names[2], id++, { 2 }, { 3 }, ExtremeValues<int16>(), ids::k_GroupA);
  AddArray<uint16>(ds, names[3], id++, { 6 }, { 1 }, ExtremeValues<uint16>(), ids::k_GroupA);
  AddArray<int32>(ds, names[4], id++, { 1, 2, 3 }, { 1 }, ExtremeValues<int32>(), ids::k_GroupA);
  AddArray<uint32>(ds, names[5], id++, { 2 }, { 3 }, ExtremeValues<uint32>(), ids::k_GroupA);
  AddArray<int64>(ds, names[6], id++, { 3 }, { 2 }, ExtremeValues<int64>(), ids::k_GroupA);
  AddArray<uint64>(ds, names[7], id++, { 6 }, { 1 }, ExtremeValues<uint64>(), ids::k_GroupA);
  AddArray<float32>(ds, names[8], id++, { 2 }, { 3 }, ExtremeValues<float32>(), ids::k_GroupA);
  AddArray<float64>(ds, names[9], id++, { 3 }, { 2 }, ExtremeValues<float64>(), ids::k_GroupA);
  AddArray<bool>(ds, names[10], id++, { 2, 3 }, { 1 }, ExtremeValues<bool>(), ids::k_GroupA);
  AddArray<float32>(ds, "Empty", ids::k_Empty, { 0 }, { 3 }, {}, ids::k_Nested);
  AddArray<float64>(ds, "Matrix", ids::k_Matrix, { 2 }, { 2, 3 },
                    { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 }, ids::k_Nested);

  auto* image = ImageGeom::Import(ds, "Image", ids::k_Image);
  image->setDimensions(SizeVec3(4, 3, 2));
  image->setOrigin(FloatVec3(1.5f, -2.0f, 0.25f));
  image->setSpacing(FloatVec3(0.5f, 1.0f, 2.0f));
  AttributeMatrix::Import(ds, "Cell Data", ids::k_ImageCellData, { 2, 3, 4 }, ids::k_Image);
  image->setCellData(ids::k_ImageCellData);
  std::vector<int32> phases(24);
  std::vector<float32> euler(72);
  std::vector<bool> mask(24);
  for (usize i = 0; i < 24; i++)
  {
    phases[i] = static_cast<int32>(i % 3) + 1;
    mask[i] = i % 5 == 0;
    for (usize c = 0; c < 3; c++)
      euler[i * 3 + c] = 0.25f * static_cast<float32>(i) + static_cast<float32>(c);
  }
  AddArray<int32>(ds, "Phases", 102, { 2, 3, 4 }, { 1 }, phases, ids::k_ImageCellData);
  AddArray<float32>(ds, "EulerAngles", 103, { 2, 3, 4 }, { 3 }, euler, ids::k_ImageCellData);
  AddArray<bool>(ds, "Mask", 104, { 2, 3, 4 }, { 1 }, mask, ids::k_ImageCellData);

  auto* rect = RectGridGeom::Import(ds, "Rect", ids::k_Rect);
  rect->setDimensions(SizeVec3(2, 3, 1));
  AddArray<float32>(ds, "X Bounds", 111, { 3 }, { 1 }, { 0.0f, 1.0f, 3.0f }, ids::k_Rect);
  AddArray<float32>(ds, "Y Bounds", 112, { 4 }, { 1 }, { -1.0f, 0.0f, 0.5f, 4.0f }, ids::k_Rect);
  AddArray<float32>(ds, "Z Bounds", 113, { 2 }, { 1 }, { 10.0f, 20.0f }, ids::k_Rect);
  rect->setBounds(111, 112, 113);
  AttributeMatrix::Import(ds, "Cell Data", 114, { 1, 3, 2 }, ids::k_Rect);
  rect->setCellData(114);
  AddArray<float64>(ds, "Density", 115, { 1, 3, 2 }, { 1 }, { 1.5, 2.5, 3.5, 4.5, 5.5, 6.5 }, 114);

  auto vertices = [](usize count)
  {
    std::vector<float32> coords(count * 3);
    for (usize i = 0; i < coords.size(); i++)
      coords[i] = static_cast<float32>(i) * 0.5f - 1.0f;
    return coords;
  };

  auto* points = VertexGeom::Import(ds, "Points", ids::k_Points);
  AddArray<float32>(ds, "Vertices", 121, { 5 }, { 3 }, vertices(5), ids::k_Points);
  points->setVertexListId(121);
  AttributeMatrix::Import(ds, "Vertex Data", 122, { 5 }, ids::k_Points);
  points->setVertexAttributeMatrixId(122);
  AddArray<float64>(ds, "Mass", 123, { 5 }, { 1 }, { 1.0, 2.0, 3.0, 4.0, 5.0 }, 122);

  auto* edges = EdgeGeom::Import(ds, "Edges", ids::k_Edges);
  AddArray<float32>(ds, "Vertices", 131, { 4 }, { 3 }, vertices(4), ids::k_Edges);
  AddArray<uint64>(ds, "Edges", 132, { 3 }, { 2 }, { 0, 1, 1, 2, 2, 3 }, ids::k_Edges);
  AttributeMatrix::Import(ds, "Edge Data", 133, { 3 }, ids::k_Edges);
  AddArray<float32>(ds, "Length", 134, { 3 }, { 1 }, { 1.0f, 2.0f, 3.0f }, 133);
  AttributeMatrix::Import(ds, "Vertex Data", 135, { 4 }, ids::k_Edges);
  AddArray<int64>(ds, "Ids", 136, { 4 }, { 1 }, { -4, 3, -2, 1 }, 135);
  edges->setVertexListId(131);
  edges->setEdgeListId(132);
  edges->setEdgeAttributeMatrixId(133);
  edges->setVertexAttributeMatrixId(135);

  auto* triangles = TriangleGeom::Import(ds, "Triangles", ids::k_Triangles);
  AddArray<float32>(ds, "Vertices", ids::k_TriangleVertices, { 4 }, { 3 }, vertices(4),
                    ids::k_Triangles);
  AddArray<uint64>(ds, "Faces", ids::k_TriangleFaces, { 2 }, { 3 }, { 0, 1, 2, 0, 2, 3 },
                   ids::k_Triangles);
  AttributeMatrix::Import(ds, "Face Data", 143, { 2 }, ids::k_Triangles);
  AddArray<int32>(ds, "Labels", 144, { 2 }, { 2 }, { 1, 2, 2, 3 }, 143);
  AddArray<float64>(ds, "Normals", 145, { 2 }, { 3 }, { 0.0, 0.0, 1.0, 0.0, 1.0, 0.0 }, 143);
  triangles->setVertexListId(ids::k_TriangleVertices);
  triangles->setFaceListId(ids::k_TriangleFaces);
  triangles->setFaceAttributeMatrixId(143);

  auto* quads = QuadGeom::Import(ds, "Quads", ids::k_Quads);
  AddArray<float32>(ds, "Vertices", 151, { 6 }, { 3 }, vertices(6), ids::k_Quads);
  AddArray<uint64>(ds, "Faces", 152, { 2 }, { 4 }, { 0, 1, 4, 3, 1, 2, 5, 4 }, ids::k_Quads);
  AttributeMatrix::Import(ds, "Face Data", 153, { 2 }, ids::k_Quads);
  AddArray<float32>(ds, "Area", 154, { 2 }, { 1 }, { 0.5f, 0.75f }, 153);
  quads->setVertexListId(151);
  quads->setFaceListId(152);
  quads->setFaceAttributeMatrixId(153);

  auto* tets = TetrahedralGeom::Import(ds, "Tets", ids::k_Tets);
  AddArray<float32>(ds, "Vertices", 161, { 5 }, { 3 }, vertices(5), ids::k_Tets);
  AddArray<uint64>(ds, "Tetrahedra", 162, { 2 }, { 4 }, { 0, 1, 2, 3, 1, 2, 3, 4 }, ids::k_Tets);
  AddArray<uint64>(ds, "Faces", 163, { 1 }, { 3 }, { 1, 2, 3 }, ids::k_Tets);
  AttributeMatrix::Import(ds, "Cell Data", 164, { 2 }, ids::k_Tets);
  AddArray<float32>(ds, "Volume", 165, { 2 }, { 1 }, { 0.125f, 0.25f }, 164);
  tets->setVertexListId(161);
  tets->setPolyhedraListId(162);
  tets->setFaceListId(163);
  tets->setPolyhedraAttributeMatrixId(164);

  auto* hexes = HexahedralGeom::Import(ds, "Hexes", ids::k_Hexes);
  AddArray<float32>(ds, "Vertices", 171, { 12 }, { 3 }, vertices(12), ids::k_Hexes);
  AddArray<uint64>(ds, "Hexahedra", 172, { 2 }, { 8 },
                   { 0, 1, 4, 3, 6, 7, 10, 9, 1, 2, 5, 4, 7, 8, 11, 10 }, ids::k_Hexes);
  AttributeMatrix::Import(ds, "Cell Data", 173, { 2 }, ids::k_Hexes);
  AddArray<uint16>(ds, "Grain", 174, { 2 }, { 1 }, { 65535, 3 }, 173);
  hexes->setVertexListId(171);
  hexes->setPolyhedraListId(172);
  hexes->setPolyhedraAttributeMatrixId(173);
  return ds;
}

/** Every identifier reached by some path. */
inline std::set<IdType> AllIds(const DataStructure& ds)
{
  std::set<IdType> all;
  for (const DataPath& path : ds.getAllDataPaths())
    all.insert(*ds.getId(path));
  return all;
}

/** Identifiers of the arrays among the objects. */
inline std::set<IdType> ArrayIds(const DataStructure& ds)
{
  std::set<IdType> arrays;
  for (IdType id : AllIds(ds))
  {
    if (ds.getDataAs<IArray>(id) != nullptr)
      arrays.insert(id);
  }
  return arrays;
}

template<typename T>
void ExpectSameValues(const IArray& expected, const IArray& actual)
{
  const auto& a = dynamic_cast<const DataArray<T>&>(expected);
  const auto& b = dynamic_cast<const DataArray<T>&>(actual);
  ASSERT_EQ(a.getSize(), b.getSize()) << a.getName();
  for (usize i = 0; i < a.getSize(); i++)
  {
    const T x = a[i];
    const T y = b[i];
    // bitwise for floating point: NaN equals NaN, -0 differs from +0
    EXPECT_EQ(std::memcmp(&x, &y, sizeof(T)), 0)
      << a.getName() << "[" << i << "]: " << +x << " vs " << +y;
  }
}

template<typename... T>
void ExpectSameValuesOfType(const IArray& expected, const IArray& actual)
{
  ((dynamic_cast<const DataArray<T>*>(&expected) != nullptr ? ExpectSameValues<T>(expected, actual)
                                                            : void()),
   ...);
}

inline void ExpectSameArrayValues(const IArray& expected, const IArray& actual)
{
  ExpectSameValuesOfType<int8, uint8, int16, uint16, int32, uint32, int64, uint64, float32, float64,
                         bool>(expected, actual);
}

/**
 * Compares two structures object by object: identifiers, names, types,
 * parents, paths, children, shapes, geometry parameters and, if asked, every
 * element value.
 */
inline void ExpectSameStructure(const DataStructure& expected, const DataStructure& actual,
                                bool compareValues)
{
  ASSERT_EQ(AllIds(expected), AllIds(actual));
  EXPECT_EQ(expected.getSize(), actual.getSize());
  EXPECT_EQ(expected.getDataMap().getKeys(), actual.getDataMap().getKeys());
  for (IdType id : AllIds(expected))
  {
    SCOPED_TRACE("object " + std::to_string(id));
    const DataObject* a = expected.getData(id);
    const DataObject* b = actual.getData(id);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(a->getTypeName(), b->getTypeName());
    EXPECT_EQ(a->getName(), b->getName());
    EXPECT_EQ(a->getParentIds(), b->getParentIds());
    auto pathsA = a->getDataPaths();
    auto pathsB = b->getDataPaths();
    std::sort(pathsA.begin(), pathsA.end());
    std::sort(pathsB.begin(), pathsB.end());
    EXPECT_EQ(pathsA, pathsB);

    if (const auto* group = dynamic_cast<const BaseGroup*>(a))
    {
      const auto* other = dynamic_cast<const BaseGroup*>(b);
      ASSERT_NE(other, nullptr);
      EXPECT_EQ(group->getDataMap().getKeys(), other->getDataMap().getKeys());
    }
    if (const auto* matrix = dynamic_cast<const AttributeMatrix*>(a))
    {
      EXPECT_EQ(matrix->getShape(), dynamic_cast<const AttributeMatrix&>(*b).getShape());
    }
    if (const auto* array = dynamic_cast<const IArray*>(a))
    {
      const auto& other = dynamic_cast<const IArray&>(*b);
      EXPECT_EQ(array->getDataType(), other.getDataType());
      EXPECT_EQ(array->getTupleShape(), other.getTupleShape());
      EXPECT_EQ(array->getComponentShape(), other.getComponentShape());
      if (compareValues)
      {
        ExpectSameArrayValues(*array, other);
      }
    }
    if (const auto* grid = dynamic_cast<const IGridGeometry*>(a))
    {
      const auto& other = dynamic_cast<const IGridGeometry&>(*b);
      EXPECT_EQ(grid->getDimensions(), other.getDimensions());
      EXPECT_EQ(grid->getCellDataId(), other.getCellDataId());
    }
    if (const auto* image = dynamic_cast<const ImageGeom*>(a))
    {
      EXPECT_EQ(image->getOrigin(), dynamic_cast<const ImageGeom&>(*b).getOrigin());
      EXPECT_EQ(image->getSpacing(), dynamic_cast<const ImageGeom&>(*b).getSpacing());
    }
    if (const auto* rect = dynamic_cast<const RectGridGeom*>(a))
    {
      const auto& other = dynamic_cast<const RectGridGeom&>(*b);
      EXPECT_EQ(rect->getXBoundsId(), other.getXBoundsId());
      EXPECT_EQ(rect->getYBoundsId(), other.getYBoundsId());
      EXPECT_EQ(rect->getZBoundsId(), other.getZBoundsId());
    }
    if (const auto* node = dynamic_cast<const INodeGeometry0D*>(a))
    {
      const auto& other = dynamic_cast<const INodeGeometry0D&>(*b);
      EXPECT_EQ(node->getVertexListId(), other.getVertexListId());
      EXPECT_EQ(node->getVertexAttributeMatrixId(), other.getVertexAttributeMatrixId());
    }
    if (const auto* g1 = dynamic_cast<const INodeGeometry1D*>(a))
    {
      const auto& other = dynamic_cast<const INodeGeometry1D&>(*b);
      EXPECT_EQ(g1->getEdgeListId(), other.getEdgeListId());
      EXPECT_EQ(g1->getEdgeAttributeMatrixId(), other.getEdgeAttributeMatrixId());
    }
    if (const auto* g2 = dynamic_cast<const INodeGeometry2D*>(a))
    {
      const auto& other = dynamic_cast<const INodeGeometry2D&>(*b);
      EXPECT_EQ(g2->getFaceListId(), other.getFaceListId());
      EXPECT_EQ(g2->getFaceAttributeMatrixId(), other.getFaceAttributeMatrixId());
    }
    if (const auto* g3 = dynamic_cast<const INodeGeometry3D*>(a))
    {
      const auto& other = dynamic_cast<const INodeGeometry3D&>(*b);
      EXPECT_EQ(g3->getPolyhedraListId(), other.getPolyhedraListId());
      EXPECT_EQ(g3->getPolyhedraAttributeMatrixId(), other.getPolyhedraAttributeMatrixId());
    }
  }
}
} // namespace kxtest
