#include "QtPrinters.hpp"

#include <KXComponents/KXDataStructureModel.hpp>

#include <kxcore/DataGroup.hpp>

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

#include <gtest/gtest.h>

using kx::core::DataGroup;
using kx::core::DataPath;
using kx::core::DataStructure;

namespace
{
/** Small tree: "Geometry" { "Cell Data" { "Phases" } }, "Ensemble" */
std::shared_ptr<DataStructure> MakeStructure()
{
  auto ds = std::make_shared<DataStructure>();
  DataGroup* geometry = DataGroup::Create(*ds, "Geometry");
  DataGroup* cellData = DataGroup::Create(*ds, "Cell Data", geometry->getId());
  DataGroup::Create(*ds, "Phases", cellData->getId());
  DataGroup::Create(*ds, "Ensemble");
  return ds;
}
} // namespace

TEST(KXDataStructureModel, EmptyWithoutAStructure)
{
  KXDataStructureModel model;
  EXPECT_EQ(model.getDataStructure(), nullptr);
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 1);
  EXPECT_FALSE(model.index(0, 0).isValid());
}

TEST(KXDataStructureModel, RowsFollowTheTree)
{
  KXDataStructureModel model;
  QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
  const auto ds = MakeStructure();
  model.setDataStructure(ds);
  EXPECT_EQ(reset.count(), 1);
  EXPECT_EQ(model.getDataStructure(), ds);

  ASSERT_EQ(model.rowCount(), 2);
  const QModelIndex geometry = model.index(0, 0);
  EXPECT_EQ(geometry.data().toString(), "Geometry");
  EXPECT_EQ(model.index(1, 0).data().toString(), "Ensemble");
  EXPECT_EQ(model.rowCount(model.index(1, 0)), 0);

  ASSERT_EQ(model.rowCount(geometry), 1);
  const QModelIndex cellData = model.index(0, 0, geometry);
  EXPECT_EQ(cellData.data().toString(), "Cell Data");
  EXPECT_EQ(model.parent(cellData), geometry);
  ASSERT_EQ(model.rowCount(cellData), 1);
  const QModelIndex phases = model.index(0, 0, cellData);
  EXPECT_EQ(phases.data().toString(), "Phases");
  EXPECT_EQ(phases.data(KXDataStructureModel::PathRole).toString(), "Geometry/Cell Data/Phases");
  EXPECT_EQ(phases.data(KXDataStructureModel::TypeNameRole).toString(), "DataGroup");
  EXPECT_EQ(phases.data(KXDataStructureModel::IdRole).toULongLong(), 3u);
  EXPECT_EQ(model.dataPath(phases), DataPath({ "Geometry", "Cell Data", "Phases" }));
  EXPECT_EQ(model.indexFromPath(DataPath({ "Geometry", "Cell Data", "Phases" })), phases);
  EXPECT_FALSE(model.indexFromPath(DataPath({ "Geometry", "Nope" })).isValid());
  EXPECT_FALSE(model.parent(geometry).isValid());
}

TEST(KXDataStructureModel, SharedChildrenAppearUnderEachParent)
{
  KXDataStructureModel model;
  const auto ds = MakeStructure();
  const auto phasesId = ds->getId(DataPath({ "Geometry", "Cell Data", "Phases" }));
  const auto ensembleId = ds->getId(DataPath({ "Ensemble" }));
  ASSERT_TRUE(phasesId && ensembleId);
  ASSERT_TRUE(ds->setAdditionalParent(*phasesId, *ensembleId));
  model.setDataStructure(ds);
  const QModelIndex ensemble = model.index(1, 0);
  ASSERT_EQ(model.rowCount(ensemble), 1);
  EXPECT_EQ(model.index(0, 0, ensemble).data().toString(), "Phases");
  EXPECT_EQ(model.index(0, 0, ensemble).data(KXDataStructureModel::PathRole).toString(),
            "Ensemble/Phases");
}

TEST(KXDataStructureModel, RefreshShowsLaterChanges)
{
  KXDataStructureModel model;
  const auto ds = MakeStructure();
  model.setDataStructure(ds);
  DataGroup::Create(*ds, "Added Later");
  EXPECT_EQ(model.rowCount(), 2);
  model.refresh();
  ASSERT_EQ(model.rowCount(), 3);
  EXPECT_EQ(model.index(2, 0).data().toString(), "Added Later");
  model.setDataStructure(nullptr);
  EXPECT_EQ(model.rowCount(), 0);
}
