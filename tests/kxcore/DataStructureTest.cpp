#include "KxcoreTestUtils.hpp"

#include "kxcore/AttributeMatrix.hpp"
#include "kxcore/DataGroup.hpp"
#include "kxcore/DataStructure.hpp"
#include "kxcore/ImageGeom.hpp"
#include "kxcore/TriangleGeom.hpp"

#include <gtest/gtest.h>

using namespace kx::core;
using kxtest::MakeArray;
using kxtest::PathStrings;
using Strings = std::vector<std::string>;

namespace
{
std::vector<IdType> Keys(const DataStructure& ds)
{
  std::vector<IdType> ids;
  for (const auto& [id, object] : ds)
  {
    EXPECT_EQ(id, object->getId());
    ids.push_back(id);
  }
  return ids;
}

/**
 * Zeta(1) { b(3), a(4) }, Alpha(2) { b(3), m(5) }: names out of identifier
 * order, and "b" held by two groups.
 */
class TwoParentTree : public ::testing::Test
{
protected:
  void SetUp() override
  {
    ASSERT_EQ(ds.getNextId(), 1u);
    zeta = DataGroup::Create(ds, "Zeta");
    alpha = DataGroup::Create(ds, "Alpha");
    b = MakeArray<float32>(ds, "b", { 4 }, { 1 }, zeta->getId());
    a = MakeArray<int32>(ds, "a", { 2 }, { 3 }, zeta->getId());
    m = DataGroup::Create(ds, "m", alpha->getId());
    ASSERT_NE(m, nullptr);
    ASSERT_TRUE(ds.setAdditionalParent(b->getId(), alpha->getId()));
  }

  DataStructure ds;
  DataGroup* zeta = nullptr;
  DataGroup* alpha = nullptr;
  Float32Array* b = nullptr;
  Int32Array* a = nullptr;
  DataGroup* m = nullptr;
};
} // namespace

TEST_F(TwoParentTree, IdentifiersStartAtOneAscendAndOrderIteration)
{
  EXPECT_EQ(zeta->getId(), 1u);
  EXPECT_EQ(alpha->getId(), 2u);
  EXPECT_EQ(b->getId(), 3u);
  EXPECT_EQ(a->getId(), 4u);
  EXPECT_EQ(m->getId(), 5u);
  EXPECT_EQ(ds.getNextId(), 6u);
  EXPECT_EQ(ds.getSize(), 5u);
  // iteration goes by ascending identifier, not by name
  EXPECT_EQ(Keys(ds), (std::vector<IdType>{ 1, 2 }));
  std::vector<std::string> names;
  for (const auto& [id, child] : *zeta)
    names.push_back(child->getName());
  EXPECT_EQ(names, (Strings{ "b", "a" }));
  EXPECT_EQ(zeta->getDataMap().getKeys(), (std::vector<IdType>{ 3, 4 }));
  EXPECT_EQ(alpha->getDataMap().getKeys(), (std::vector<IdType>{ 3, 5 }));
  EXPECT_EQ(DataGroup::Create(ds, "next")->getId(), 6u);
}

TEST_F(TwoParentTree, FindsObjectsByPathAndIdentifier)
{
  EXPECT_EQ(ds.getData(DataPath({ "Zeta", "a" })), a);
  EXPECT_EQ(ds.getData(DataPath({ "Alpha", "b" })), b);
  EXPECT_EQ(ds.getData(DataPath({ "Zeta", "b" })), b);
  EXPECT_EQ(ds.getData(DataPath({ "Alpha" })), alpha);
  EXPECT_EQ(ds.getData(DataPath({ "Alpha", "a" })), nullptr);
  EXPECT_EQ(ds.getData(DataPath({ "Zeta", "a", "deeper" })), nullptr);
  EXPECT_EQ(ds.getData(DataPath()), nullptr);
  EXPECT_EQ(ds.getId(DataPath({ "Alpha", "m" })), std::optional<IdType>(5));

  EXPECT_EQ(ds.getSharedData(4).get(), a);
  EXPECT_EQ(ds.getData(2), alpha);
  EXPECT_EQ(ds.getSharedData(0), nullptr);
  EXPECT_EQ(ds.getSharedData(6), nullptr);
  EXPECT_EQ(ds.getSharedDataAs<Int32Array>(4).get(), a);
  EXPECT_EQ(ds.getSharedDataAs<Float32Array>(4), nullptr);
}

TEST_F(TwoParentTree, ListsEveryPathDepthFirst)
{
  EXPECT_EQ(PathStrings(ds.getAllDataPaths()),
            (Strings{ "Zeta", "Zeta/b", "Zeta/a", "Alpha", "Alpha/b", "Alpha/m" }));
  EXPECT_EQ(PathStrings(b->getDataPaths()), (Strings{ "Zeta/b", "Alpha/b" }));
  EXPECT_EQ(b->getParentIds(), (std::vector<IdType>{ 1, 2 }));
  EXPECT_EQ(PathStrings(a->getDataPaths()), (Strings{ "Zeta/a" }));
  EXPECT_EQ(PathStrings(zeta->getDataPaths()), (Strings{ "Zeta" }));
}

TEST_F(TwoParentTree, RemovingAGroupDropsChildrenNoOtherParentHolds)
{
  const auto heldA = ds.getSharedData(a->getId());
  ASSERT_TRUE(ds.removeData(zeta->getId()));
  EXPECT_FALSE(ds.removeData(zeta->getId()));

  // "a" had only Zeta: it is gone, and the caller's copy is reached by no path
  EXPECT_EQ(ds.getSharedData(4), nullptr);
  EXPECT_TRUE(heldA->getDataPaths().empty());
  EXPECT_TRUE(heldA->getParentIds().empty());

  // "b" survives under Alpha
  ASSERT_EQ(ds.getData(3), b);
  EXPECT_EQ(PathStrings(b->getDataPaths()), (Strings{ "Alpha/b" }));
  EXPECT_EQ(b->getParentIds(), (std::vector<IdType>{ 2 }));
  EXPECT_EQ(PathStrings(ds.getAllDataPaths()), (Strings{ "Alpha", "Alpha/b", "Alpha/m" }));
  EXPECT_EQ(ds.getSize(), 3u);
  // identifiers are not reused before a reset
  EXPECT_EQ(ds.getNextId(), 6u);
}

TEST_F(TwoParentTree, InsertRefusesTakenIdentifiersAndSiblingNames)
{
  EXPECT_EQ(DataGroup::Import(ds, "Other", 3), nullptr);
  EXPECT_EQ(DataGroup::Create(ds, "Zeta"), nullptr);
  EXPECT_EQ(DataGroup::Create(ds, "a", zeta->getId()), nullptr);
  EXPECT_EQ(DataGroup::Create(ds, "x", 99), nullptr);
  // an array holds no children
  EXPECT_EQ(DataGroup::Create(ds, "x", a->getId()), nullptr);
  EXPECT_EQ(ds.getSize(), 5u);

  // the same name under another parent is fine
  auto* other = DataGroup::Create(ds, "a", alpha->getId());
  ASSERT_NE(other, nullptr);
  EXPECT_EQ(ds.getData(DataPath({ "Alpha", "a" })), other);

  auto* imported = DataGroup::Import(ds, "Far", 50);
  ASSERT_NE(imported, nullptr);
  EXPECT_EQ(ds.getNextId(), 51u);
}

TEST_F(TwoParentTree, AdditionalParentRefusesCyclesAndConflicts)
{
  auto* inner = DataGroup::Create(ds, "inner", m->getId()); // Alpha/m/inner
  ASSERT_NE(inner, nullptr);
  EXPECT_FALSE(ds.setAdditionalParent(alpha->getId(), inner->getId()));
  EXPECT_FALSE(ds.setAdditionalParent(m->getId(), inner->getId()));
  EXPECT_FALSE(ds.setAdditionalParent(m->getId(), m->getId()));
  // already a child, a name taken in the new parent, a parent that is not a group, a missing object
  EXPECT_FALSE(ds.setAdditionalParent(b->getId(), zeta->getId()));
  auto* otherB = DataGroup::Create(ds, "b", m->getId());
  ASSERT_NE(otherB, nullptr);
  EXPECT_FALSE(ds.setAdditionalParent(b->getId(), m->getId()));
  EXPECT_FALSE(ds.setAdditionalParent(m->getId(), a->getId()));
  EXPECT_FALSE(ds.setAdditionalParent(99, zeta->getId()));

  // a group may join a sibling branch
  ASSERT_TRUE(ds.setAdditionalParent(m->getId(), zeta->getId()));
  EXPECT_EQ(PathStrings(inner->getDataPaths()), (Strings{ "Zeta/m/inner", "Alpha/m/inner" }));
  // now Zeta is above inner too
  EXPECT_FALSE(ds.setAdditionalParent(zeta->getId(), inner->getId()));
}

TEST_F(TwoParentTree, CopyKeepsEveryPathOfSharedObjects)
{
  // a top-level object may also sit in a group
  auto* top = DataGroup::Create(ds, "Top");
  ASSERT_TRUE(ds.setAdditionalParent(top->getId(), zeta->getId()));
  EXPECT_EQ(PathStrings(top->getDataPaths()), (Strings{ "Top", "Zeta/Top" }));

  const DataStructure copy(ds);
  EXPECT_EQ(copy.getAllDataPaths(), ds.getAllDataPaths());
  EXPECT_EQ(PathStrings(copy.getData(b->getId())->getDataPaths()),
            (Strings{ "Zeta/b", "Alpha/b" }));
  EXPECT_EQ(PathStrings(copy.getData(top->getId())->getDataPaths()),
            (Strings{ "Top", "Zeta/Top" }));
  // both parents in the copy hold the same copied object
  EXPECT_EQ(copy.getDataAs<BaseGroup>(1)->getDataMap().get(3), copy.getSharedData(3));
  EXPECT_EQ(copy.getDataAs<BaseGroup>(2)->getDataMap().get(3), copy.getSharedData(3));
  EXPECT_NE(copy.getSharedData(3).get(), b);
}

TEST(AttributeMatrix, AcceptsOnlyArraysOfItsTupleCount)
{
  DataStructure ds;
  auto* matrix = AttributeMatrix::Create(ds, "Cell Data", { 2, 3 });
  ASSERT_NE(matrix, nullptr);
  EXPECT_EQ(matrix->getNumberOfTuples(), 6u);
  EXPECT_EQ(matrix->getShape(), (ShapeType{ 2, 3 }));
  const IdType id = matrix->getId();

  EXPECT_NE(MakeArray<int32>(ds, "flat", { 6 }, { 1 }, id), nullptr);
  EXPECT_NE(MakeArray<float32>(ds, "shaped", { 3, 2 }, { 3 }, id), nullptr);
  EXPECT_EQ(MakeArray<int32>(ds, "short", { 5 }, { 1 }, id), nullptr);
  EXPECT_EQ(MakeArray<int32>(ds, "long", { 6, 2 }, { 1 }, id), nullptr);
  EXPECT_EQ(MakeArray<int32>(ds, "flat", { 6 }, { 1 }, id), nullptr);
  EXPECT_EQ(DataGroup::Create(ds, "group", id), nullptr);
  const IdType elsewhere = MakeArray<int32>(ds, "elsewhere", { 5 }, { 1 }, std::nullopt)->getId();
  EXPECT_FALSE(ds.setAdditionalParent(elsewhere, id));

  Strings names;
  for (const auto& [childId, child] : *matrix)
    names.push_back(child->getName());
  EXPECT_EQ(names, (Strings{ "flat", "shaped" }));
}

TEST(DataStructure, ResetIdsRenumbersInOrderKeepingTreeAndGeometryReferences)
{
  DataStructure ds;
  const IdType gap1 = DataGroup::Create(ds, "gap1")->getId();
  auto* image = ImageGeom::Create(ds, "Image");
  const IdType gap2 = DataGroup::Create(ds, "gap2")->getId();
  image->setDimensions({ 2, 2, 1 });
  auto* cellData = AttributeMatrix::Create(ds, "Cell Data", { 4 }, image->getId());
  image->setCellData(cellData->getId());
  auto* phases = MakeArray<int32>(ds, "Phases", { 4 }, { 1 }, cellData->getId(), 7);
  auto* mesh = TriangleGeom::Create(ds, "Mesh");
  auto* vertices = MakeArray<float32>(ds, "Vertices", { 3 }, { 3 }, mesh->getId());
  auto* faces = MakeArray<uint64>(ds, "Faces", { 1 }, { 3 }, mesh->getId());
  mesh->setVertexListId(vertices->getId());
  mesh->setFaceListId(faces->getId());
  auto* shared = DataGroup::Create(ds, "Shared");
  ASSERT_TRUE(ds.setAdditionalParent(phases->getId(), shared->getId()));
  ASSERT_TRUE(ds.removeData(gap1));
  ASSERT_TRUE(ds.removeData(gap2));
  EXPECT_EQ(ds.getNextId(), 10u);
  const auto pathsBefore = ds.getAllDataPaths();

  ds.resetIds(20);

  // old order 2,4,5,6,7,8,9 becomes 20..26
  EXPECT_EQ((std::vector<IdType>{ image->getId(), cellData->getId(), phases->getId(), mesh->getId(),
                                  vertices->getId(), faces->getId(), shared->getId() }),
            (std::vector<IdType>{ 20, 21, 22, 23, 24, 25, 26 }));
  EXPECT_EQ(ds.getNextId(), 27u);
  for (IdType id = 20; id <= 26; id++)
    EXPECT_EQ(ds.getData(id)->getId(), id);
  EXPECT_EQ(ds.getData(2), nullptr);

  EXPECT_EQ(ds.getAllDataPaths(), pathsBefore);
  EXPECT_EQ(Keys(ds), (std::vector<IdType>{ 20, 23, 26 }));
  EXPECT_EQ(mesh->getDataMap().getKeys(), (std::vector<IdType>{ 24, 25 }));
  EXPECT_EQ(phases->getParentIds(), (std::vector<IdType>{ 21, 26 }));
  EXPECT_EQ(PathStrings(phases->getDataPaths()),
            (Strings{ "Image/Cell Data/Phases", "Shared/Phases" }));

  EXPECT_EQ(image->getCellDataId(), std::optional<IdType>(21));
  EXPECT_EQ(image->getCellData(), cellData);
  EXPECT_EQ(mesh->getVertices(), vertices);
  EXPECT_EQ(mesh->getFaces(), faces);
  EXPECT_EQ(mesh->getNumberOfCells(), 1u);

  EXPECT_EQ(DataGroup::Create(ds, "after")->getId(), 27u);
}

TEST(DataStructure, ResetIdsDoesNotRetargetReferencesToRemovedObjects)
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "Image");
  auto* cellData = AttributeMatrix::Create(ds, "Cell Data", { 1 }, image->getId());
  auto* other = AttributeMatrix::Create(ds, "Other", { 1 }, image->getId());
  image->setCellData(cellData->getId());
  ASSERT_TRUE(ds.removeData(cellData->getId()));
  EXPECT_EQ(image->getCellData(), nullptr);

  ds.resetIds(1);

  // "Other" now has the number the removed matrix had; the image must not adopt it
  ASSERT_EQ(other->getId(), 2u);
  EXPECT_EQ(image->getCellData(), nullptr);
}

namespace
{
/** Image(1) { Cell Data(2) { Phases(3) } }, Group(4). */
DataStructure MakeImageTree()
{
  DataStructure ds;
  auto* image = ImageGeom::Create(ds, "Image");
  image->setDimensions({ 3, 1, 1 });
  auto* cellData = AttributeMatrix::Create(ds, "Cell Data", { 3 }, image->getId());
  image->setCellData(cellData->getId());
  MakeArray<int32>(ds, "Phases", { 3 }, { 1 }, cellData->getId(), 5);
  DataGroup::Create(ds, "Group");
  return ds;
}

void ExpectOwnedBy(const DataStructure& ds)
{
  for (IdType id = 1; id <= 4; id++)
  {
    ASSERT_NE(ds.getData(id), nullptr) << id;
    EXPECT_EQ(ds.getData(id)->getDataStructure(), &ds) << id;
  }
  const auto* image = ds.getDataAs<ImageGeom>(1);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->getCellData(), ds.getData(2));
  EXPECT_EQ(PathStrings(ds.getData(3)->getDataPaths()), (Strings{ "Image/Cell Data/Phases" }));
}
} // namespace

TEST(DataStructure, CopyIsAnIndependentTreeSharingStoresAndMoveKeepsTheObjects)
{
  const DataStructure original = MakeImageTree();
  DataStructure copy(original);
  ExpectOwnedBy(copy);
  ExpectOwnedBy(original);
  EXPECT_EQ(copy.getAllDataPaths(), original.getAllDataPaths());
  EXPECT_EQ(copy.getNextId(), original.getNextId());
  EXPECT_NE(copy.getData(3), original.getData(3));

  auto* copyPhases = copy.getDataAs<Int32Array>(3);
  auto* originalPhases = original.getDataAs<Int32Array>(3);
  EXPECT_EQ(copyPhases->getDataStore(), originalPhases->getDataStore());
  copyPhases->getDataStoreRefTyped().setValue(1, 42);
  EXPECT_EQ((*originalPhases)[1], 42);

  ASSERT_TRUE(copy.removeData(4));
  ASSERT_TRUE(copy.removeData(2));
  copy.resetIds(100);
  DataGroup::Create(copy, "OnlyInCopy");
  EXPECT_EQ(PathStrings(copy.getAllDataPaths()), (Strings{ "Image", "OnlyInCopy" }));
  EXPECT_EQ(PathStrings(original.getAllDataPaths()),
            (Strings{ "Image", "Image/Cell Data", "Image/Cell Data/Phases", "Group" }));
  EXPECT_EQ(original.getNextId(), 5u);
  ExpectOwnedBy(original);

  DataStructure assigned;
  DataGroup::Create(assigned, "Dropped");
  assigned = original;
  ExpectOwnedBy(assigned);
  EXPECT_EQ(assigned.getAllDataPaths(), original.getAllDataPaths());

  // a move keeps the objects, pointing at the new structure
  DataStructure source = MakeImageTree();
  const DataObject* phases = source.getData(3);
  DataStructure moved(std::move(source));
  ExpectOwnedBy(moved);
  EXPECT_EQ(moved.getData(3), phases);
  EXPECT_EQ(source.getSize(), 0u);
  EXPECT_EQ(source.getNextId(), 1u);

  auto shared = std::make_shared<DataStructure>();
  *shared = std::move(moved);
  ExpectOwnedBy(*shared);
  EXPECT_EQ(shared->getData(3), phases);
  EXPECT_EQ(shared->getNextId(), 5u);
}
