#include "ModelTestSupport.hpp"

#include <QtTest/QSignalSpy>

using namespace modeltest;

namespace
{
/** Records, for each row about to go, its name and how many children it still has. */
class RemovalLog
{
public:
  explicit RemovalLog(VXPipelineModel& model)
  {
    QObject::connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, &m_Context,
                     [this, &model](const QModelIndex& parent, int first, int last)
                     {
                       for (int row = first; row <= last; row++)
                       {
                         const QModelIndex index = model.index(row, 1, parent);
                         names.append(model.data(index, Qt::DisplayRole).toString());
                         childrenLeft.append(model.rowCount(index.siblingAtColumn(0)));
                       }
                     });
  }
  QStringList names;
  QList<int> childrenLeft;

private:
  QObject m_Context;
};
} // namespace

TEST(PipelineModelRemoval, ChildrenGoBeforeTheirParent)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  RemovalLog log(model);
  QSignalSpy aboutToBeRemoved(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
  QSignalSpy removedSources(scene.pipeline.get(), &VXPipeline::dataSourceRemoved);
  QPointer<VXDataSource> source = scene.surfaceSource;
  QPointer<VXRepresentation> surfaceView = scene.surfaceView;

  model.removeItem(model.helperIndex(scene.surfaceSource));

  EXPECT_EQ(aboutToBeRemoved.count(), 4);
  EXPECT_EQ(log.names, (QStringList{ "Outline View", "Surface View", "Pass Filter", "surface" }));
  EXPECT_EQ(log.childrenLeft, (QList<int>{ 0, 0, 0, 0 }));
  EXPECT_EQ(model.rowCount(model.helperIndex(scene.surfaceBridge)), 0);
  EXPECT_FALSE(model.helperIndex(scene.surfaceView).isValid());
  // the bridge forgets the source and the pipeline announces it
  EXPECT_TRUE(scene.surfaceBridge->dataSources().isEmpty());
  ASSERT_EQ(removedSources.count(), 1);
  EXPECT_EQ(removedSources.at(0).at(0).value<VXDataSource*>(), source.data());

  // the objects go once the event loop lets them
  EXPECT_FALSE(source.isNull());
  flushDeletes();
  EXPECT_TRUE(source.isNull());
  EXPECT_TRUE(surfaceView.isNull());
}

TEST(PipelineModelRemoval, AListMayHoldAParentAndItsChild)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  RemovalLog log(model);

  // the filter first: the data view below it is gone by the time its turn comes
  model.removeItems({ model.helperIndex(scene.filter), model.helperIndex(scene.surfaceView),
                      model.helperIndex(scene.caption) });
  EXPECT_EQ(log.names, (QStringList{ "Surface View", "Pass Filter", "Caption" }));
  EXPECT_EQ(model.rowCount(), 1);
  EXPECT_EQ(model.rowCount(model.helperIndex(scene.surfaceSource)), 1);
  EXPECT_TRUE(scene.pipeline->globalSources().isEmpty());

  // the child first, then its parent
  const QModelIndex outline = model.index(0, 0, model.helperIndex(scene.surfaceSource));
  log.names.clear();
  model.removeItems({ outline, model.helperIndex(scene.surfaceSource) });
  EXPECT_EQ(log.names, (QStringList{ "Outline View", "surface" }));
  EXPECT_EQ(model.rowCount(model.helperIndex(scene.surfaceBridge)), 0);
  flushDeletes();
}

TEST(PipelineModelRemoval, ADataViewAsksForItsOwnRemoval)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  QPointer<VXRepresentation> view = scene.surfaceView;
  QSignalSpy render(scene.pipeline.get(), &VXPipeline::requestRenderAll);

  scene.surfaceView->removeModule();

  EXPECT_FALSE(model.helperIndex(view).isValid());
  EXPECT_EQ(model.rowCount(model.helperIndex(scene.filter)), 0);
  EXPECT_EQ(model.getAllRepresentations().size(), 1);
  EXPECT_GE(render.count(), 1);
  flushDeletes();
  EXPECT_TRUE(view.isNull());
}

TEST(PipelineModelRemoval, AVanishedHostGeometryTakesItsRowsAndARemovedHostBridgeIsAnnounced)
{
  Scene scene;
  VXPipelineModel& model = *scene.model;
  FakeController run("Run", "run-1");
  auto first = hostResult(1, true);
  scene.pipeline->importPipelineOutput(&run, first);
  ASSERT_EQ(scene.pipeline->bridges().size(), 1);
  QPointer<VXBridgeObject> bridge = scene.pipeline->bridges().first();
  ASSERT_EQ(model.rowCount(model.helperIndex(bridge)), 2);
  QPointer<VXDataSource> seeds = bridge->dataSources().last();
  RemovalLog log(model);
  QSignalSpy removedSources(scene.pipeline.get(), &VXPipeline::dataSourceRemoved);

  auto second = hostResult(1, false);
  scene.pipeline->reloadPipelineOutput(&run, second);
  EXPECT_EQ(log.names, (QStringList{ "Outline View 1", "Seeds" }));
  ASSERT_EQ(model.rowCount(model.helperIndex(bridge)), 1);
  EXPECT_EQ(model.data(model.index(0, 1, model.helperIndex(bridge))).toString(), "Grains");
  EXPECT_EQ(removedSources.count(), 1);
  flushDeletes();
  EXPECT_TRUE(seeds.isNull());

  QSignalSpy hostRemoved(&model, &VXPipelineModel::kxToVXBridgeObjectRemoved);
  log.names.clear();
  model.removePipeline(bridge);
  EXPECT_EQ(hostRemoved.count(), 1);
  EXPECT_EQ(removedSources.count(), 2);
  EXPECT_EQ(log.names, (QStringList{ "Outline View", "Grains", "Run" }));
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_TRUE(scene.pipeline->bridges().isEmpty());
  flushDeletes();
  EXPECT_TRUE(bridge.isNull());
}

TEST(PipelineModelRemoval, ReimportReplacesTheRowsOfDeletedDataSources)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  const std::filesystem::path sample = writeSample(scene.dir);
  QPointer<VXDataSource> old = scene.surfaceSource;
  RemovalLog log(model);

  // the bridge deletes its data sources itself; their rows go with them
  scene.surfaceBridge->import(qpath(sample));

  EXPECT_TRUE(old.isNull());
  // the rows below go while their objects still live; the dying data source's own row answers
  // nothing
  EXPECT_EQ(log.names, (QStringList{ "Outline View", "Surface View", "Pass Filter", "" }));
  const QModelIndex bridgeIndex = model.helperIndex(scene.surfaceBridge);
  ASSERT_EQ(model.rowCount(bridgeIndex), 3);
  EXPECT_EQ(model.getChildDataSources(bridgeIndex), scene.surfaceBridge->dataSources());
  EXPECT_EQ(model.getAllFilters().size(), 0);
  EXPECT_EQ(model.data(bridgeIndex.siblingAtColumn(1)).toString(), "sample.voxelia");
}

TEST(PipelineModelRemoval, AModelOutlivingItsPipelineEmpties)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  TestView view;
  auto pipeline = std::make_unique<VXPipeline>();
  VXPipelineModel model(pipeline.get());
  pipeline->setActiveViewWidget(&view);
  pipeline->importFile(qpath(writeTriangles(dir)));
  ASSERT_EQ(model.rowCount(), 1);
  QSignalSpy aboutToBeRemoved(&model, &QAbstractItemModel::rowsAboutToBeRemoved);

  pipeline.reset();

  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.pipeline(), nullptr);
  EXPECT_EQ(aboutToBeRemoved.count(), 3);
  EXPECT_FALSE(model.addRepresentation(QModelIndex(), VXRepresentation::Outline).isValid());
}
