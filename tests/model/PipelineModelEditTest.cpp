#include "ModelTestSupport.hpp"

#include <QtTest/QSignalSpy>

using namespace modeltest;

namespace
{

QList<int> rolesOf(const QSignalSpy& spy, int emission)
{
  return spy.at(emission).at(2).value<QList<int>>();
}
} // namespace

TEST(PipelineModelCheckState, WithoutAnActiveViewThereIsNoCheckState)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  scene.pipeline->setActiveViewWidget(nullptr);
  QSignalSpy visibility(&model, &VXPipelineModel::itemVisibilityChanged);
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

  for (QObject* item :
       std::initializer_list<QObject*>{ scene.surfaceBridge, scene.surfaceSource, scene.filter,
                                        scene.surfaceView, scene.caption.data() })
    EXPECT_FALSE(
      model.data(model.helperIndex(item).siblingAtColumn(1), k_CheckStateRole).isValid());
  EXPECT_FALSE(model.setData(model.helperIndex(scene.surfaceView).siblingAtColumn(1), Qt::Unchecked,
                             k_CheckStateRole));
  EXPECT_FALSE(
    model.setData(model.helperIndex(scene.caption).siblingAtColumn(1), false, k_CheckStateRole));
  EXPECT_EQ(visibility.count(), 0);
  EXPECT_EQ(changed.count(), 0);

  // back in the view, the data view is as it was
  scene.pipeline->setActiveViewWidget(&scene.view);
  EXPECT_TRUE(scene.surfaceView->isVisible());
  EXPECT_EQ(model.data(model.helperIndex(scene.surfaceView), k_CheckStateRole).toInt(),
            Qt::Checked);
}

TEST(PipelineModelCheckState, UncheckingOrThePageButtonHidesTheItemAndTellsTheView)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  QSignalSpy visibility(&model, &VXPipelineModel::itemVisibilityChanged);
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

  // the data view under the filter: the filter is hidden with it
  const QModelIndex surfaceIndex = model.helperIndex(scene.surfaceView).siblingAtColumn(1);
  EXPECT_TRUE(scene.filter->isVisible());
  ASSERT_TRUE(model.setData(surfaceIndex, Qt::Unchecked, k_CheckStateRole));
  EXPECT_FALSE(scene.surfaceView->isVisible());
  EXPECT_FALSE(scene.filter->isVisible());
  EXPECT_EQ(model.data(surfaceIndex, k_CheckStateRole).toInt(), Qt::Unchecked);
  ASSERT_EQ(visibility.count(), 1);
  EXPECT_EQ(visibility.at(0).at(0).value<QModelIndex>(), surfaceIndex);
  EXPECT_FALSE(visibility.at(0).at(1).toBool());
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed.at(0).at(0).value<QModelIndex>().row(), surfaceIndex.row());
  EXPECT_EQ(rolesOf(changed, 0), QList<int>{ k_CheckStateRole });

  // the sister under the data source leaves its parent alone
  const QModelIndex outlineIndex = model.index(0, 1, model.helperIndex(scene.surfaceSource));
  VXRepresentation* outline = model.getRepresentation(outlineIndex);
  ASSERT_NE(outline, nullptr);
  ASSERT_TRUE(model.setData(outlineIndex, Qt::Unchecked, k_CheckStateRole));
  EXPECT_FALSE(outline->isVisible());
  EXPECT_TRUE(scene.surfaceSource->isVisible());
  ASSERT_TRUE(model.setData(outlineIndex, Qt::Checked, k_CheckStateRole));
  EXPECT_TRUE(outline->isVisible());
  EXPECT_EQ(model.data(outlineIndex, k_CheckStateRole).toInt(), Qt::Checked);

  // a global source, with a plain truth value as a settings page button sends it
  const QModelIndex captionIndex = model.helperIndex(scene.caption);
  ASSERT_TRUE(model.setData(captionIndex, false, k_CheckStateRole));
  EXPECT_FALSE(scene.caption->isVisible());
  EXPECT_EQ(model.data(captionIndex, k_CheckStateRole).toInt(), Qt::Unchecked);
  ASSERT_EQ(visibility.count(), 4);
  EXPECT_EQ(visibility.at(3).at(0).value<QModelIndex>(), captionIndex);

  // a bridge has nothing to show or hide
  EXPECT_FALSE(
    model.setData(model.helperIndex(scene.surfaceBridge), Qt::Unchecked, k_CheckStateRole));
  EXPECT_EQ(visibility.count(), 4);

  // the settings page's button goes through the model
  Q_EMIT scene.surfaceView->settingsWidgetVisibilityButtonClicked(true);
  EXPECT_TRUE(scene.surfaceView->isVisible());
  ASSERT_EQ(visibility.count(), 5);
  EXPECT_EQ(visibility.at(4).at(0).value<QModelIndex>(), model.helperIndex(scene.surfaceView));
  Q_EMIT scene.surfaceView->settingsWidgetVisibilityButtonClicked(false);
  EXPECT_FALSE(scene.surfaceView->isVisible());
}

TEST(PipelineModelCheckState, AnotherActiveViewReportsEachItemsState)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  TestView other;
  QSignalSpy visibility(&model, &VXPipelineModel::itemVisibilityChanged);
  scene.pipeline->setActiveViewWidget(&other);

  // every core object of the tree, and the global source, knows only the first view
  const QList<VXCoreObject*> coreObjects = model.getAllCoreObjects();
  QList<QObject*> objects(coreObjects.cbegin(), coreObjects.cend());
  objects.append(scene.caption.data());
  ASSERT_EQ(visibility.count(), objects.size());
  QList<QModelIndex> reported;
  for (const QList<QVariant>& emission : visibility)
  {
    reported.append(emission.at(0).value<QModelIndex>());
    EXPECT_FALSE(emission.at(1).toBool());
  }
  for (QObject* object : objects)
    EXPECT_TRUE(reported.contains(model.helperIndex(object)));

  // the data view has no instance in the new view yet: checking it makes one
  const QModelIndex surfaceIndex = model.helperIndex(scene.surfaceView);
  EXPECT_EQ(model.data(surfaceIndex, k_CheckStateRole).toInt(), Qt::Unchecked);
  QSignalSpy instances(&model, &VXPipelineModel::representationViewInstanceAdded);
  ASSERT_TRUE(model.setData(surfaceIndex, Qt::Checked, k_CheckStateRole));
  EXPECT_EQ(instances.count(), 1);
  EXPECT_TRUE(scene.surfaceView->isVisible());
  EXPECT_NE(scene.surfaceView->implementation(&other), nullptr);

  scene.pipeline->setActiveViewWidget(&scene.view);
}

TEST(PipelineModelRename, SisterNamesAreRefused)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  const QModelIndex sourceIndex = model.helperIndex(scene.surfaceSource);
  const QModelIndex secondIndex =
    model.addRepresentation(sourceIndex, VXRepresentation::Outline).siblingAtColumn(1);
  ASSERT_TRUE(secondIndex.isValid());
  VXRepresentation* second = model.getRepresentation(secondIndex);
  EXPECT_EQ(second->name(), "Outline View 1");
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

  EXPECT_TRUE(model.itemNameIsDuplicate(secondIndex, "Outline View"));
  EXPECT_FALSE(model.setData(secondIndex, "Outline View", Qt::EditRole));
  EXPECT_EQ(second->name(), "Outline View 1");
  EXPECT_EQ(model.data(secondIndex, Qt::DisplayRole).toString(), "Outline View 1");
  // names are unique over the whole tree, not only among sisters
  EXPECT_FALSE(model.setData(secondIndex, "Surface View", Qt::DisplayRole));
  EXPECT_FALSE(model.setData(secondIndex, "Pass Filter", Qt::EditRole));
  EXPECT_FALSE(model.setData(secondIndex, "   ", Qt::EditRole));
  // the name lives in column 1 only
  EXPECT_FALSE(model.setData(secondIndex.siblingAtColumn(0), "Edges", Qt::EditRole));
  EXPECT_EQ(changed.count(), 0);

  // comparison is exact
  EXPECT_FALSE(model.itemNameIsDuplicate(secondIndex, "outline view"));
  ASSERT_TRUE(model.setData(secondIndex, "Edges", Qt::EditRole));
  EXPECT_EQ(second->name(), "Edges");
  EXPECT_EQ(second->baseName(), "Edges");
  EXPECT_EQ(second->getNameSuffixCounter(), 0);
  EXPECT_EQ(model.data(secondIndex, Qt::DisplayRole).toString(), "Edges");
  EXPECT_EQ(model.data(secondIndex, Qt::ToolTipRole).toString(),
            "Name: Edges\nType: Data View\nClick on the parent of this item in the tree to add "
            "another DataView or additional Visual "
            "Filters.");
  bool sawNameChange = false;
  for (int i = 0; i < changed.count(); i++)
  {
    const QList<int> roles = rolesOf(changed, i);
    if (roles.contains(Qt::EditRole) && roles.contains(Qt::DisplayRole))
      sawNameChange = changed.at(i).at(0).value<QModelIndex>().row() == secondIndex.row();
  }
  EXPECT_TRUE(sawNameChange);
}

TEST(PipelineModelRename, BridgesCompareAmongBridges)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  scene.pipeline->importFile(qpath(scene.surfaceFile));
  VXBridgeObject* again = scene.pipeline->bridges().last();
  ASSERT_NE(again, scene.surfaceBridge);
  const QModelIndex againIndex = model.helperIndex(again).siblingAtColumn(1);
  EXPECT_EQ(model.data(againIndex, Qt::DisplayRole).toString(), "surface.vtp (1)");

  EXPECT_FALSE(model.setData(againIndex, "surface.vtp", Qt::EditRole));
  EXPECT_EQ(again->name(), "surface.vtp (1)");
  // a global source's name does not stand in a bridge's way
  EXPECT_FALSE(model.itemNameIsDuplicate(againIndex, "Caption"));
  // global sources are told apart among themselves, with a bridge's " (n)"
  auto* second = new CaptionSource();
  const QModelIndex secondIndex = model.addGlobalSource(second).siblingAtColumn(1);
  EXPECT_EQ(model.data(secondIndex, Qt::DisplayRole).toString(), "Caption (1)");
  EXPECT_FALSE(model.setData(secondIndex, "Caption", Qt::EditRole));
  ASSERT_TRUE(model.setData(secondIndex, "Legend", Qt::EditRole));
  EXPECT_EQ(second->name(), "Legend");
  EXPECT_EQ(model.data(secondIndex, Qt::ToolTipRole).toString(),
            "Name: Legend\nType: Global Source");

  VXDataSource* source = again->dataSources().first();
  QSignalSpy paths(source, &VXCoreObject::pathChanged);
  ASSERT_TRUE(model.setData(againIndex, "mesh", Qt::EditRole));
  EXPECT_EQ(again->name(), "mesh");
  EXPECT_EQ(again->getNameSuffixCounter(), 0);
  EXPECT_EQ(model.data(againIndex, Qt::DisplayRole).toString(), "mesh");
  EXPECT_EQ(model.data(againIndex, Qt::ToolTipRole).toString(),
            "Name: mesh\nType: Pipeline or File");
  // the data source's path follows its bridge
  ASSERT_GE(paths.count(), 1);
  EXPECT_EQ(paths.last().at(0).toString(), "mesh > surface");
  EXPECT_EQ(model.getDataSource("mesh > surface"), source);
}

TEST(PipelineModelFlags, ItemsUnderAVanishedFileShowLightRed)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
  const QList<QObject*> subtree = {
    scene.surfaceBridge, scene.surfaceSource, scene.filter, scene.surfaceView,
    model.getRepresentation(model.index(0, 0, model.helperIndex(scene.surfaceSource)))
  };

  for (QObject* item : subtree)
    EXPECT_EQ(model.data(model.helperIndex(item), Qt::ForegroundRole).value<QColor>(),
              KXStyle::getDefaultTextColor());

  std::filesystem::remove(scene.surfaceFile);
  ASSERT_TRUE(waitFor([&] { return scene.surfaceBridge->autoReloadFlagged(); }));

  for (QObject* item : subtree)
    EXPECT_EQ(
      model.data(model.helperIndex(item).siblingAtColumn(1), Qt::ForegroundRole).value<QColor>(),
      KXStyle::getLightRedColor())
      << model.data(model.helperIndex(item).siblingAtColumn(1)).toString().toStdString();
  EXPECT_TRUE(scene.surfaceSource->autoReloadFlagged());
  EXPECT_TRUE(scene.surfaceView->autoReloadFlagged());
  // the global source has nothing to do with the file
  EXPECT_EQ(model.data(model.helperIndex(scene.caption), Qt::ForegroundRole).value<QColor>(),
            KXStyle::getDefaultTextColor());
  int foregroundChanges = 0;
  for (int i = 0; i < changed.count(); i++)
    foregroundChanges += rolesOf(changed, i).contains(Qt::ForegroundRole) ? 1 : 0;
  EXPECT_EQ(foregroundChanges, subtree.size());

  // a located file clears the flag down the tree
  model.onFileObjectFlagged(scene.surfaceBridge, false);
  for (QObject* item : subtree.mid(1))
    EXPECT_EQ(model.data(model.helperIndex(item), Qt::ForegroundRole).value<QColor>(),
              KXStyle::getDefaultTextColor());
}
