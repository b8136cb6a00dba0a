#include "PipelineTestSupport.hpp"

#include <visualization/KXToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>

#include <kxcore/DataGroup.hpp>

#include <vtkCellData.h>
#include <vtkImageData.h>

#include <QtTest/QSignalSpy>

using namespace pipelinetest;
using namespace kx::core;

TEST(HostBridge, RunsOfOnePipelineUpdateOneBridge)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  FakeController run("Segmentation", "uuid-1");
  auto first = hostResult(1, true);
  pipeline.reloadPipelineOutput(&run, first);
  ASSERT_EQ(pipeline.bridges().size(), 1);
  auto* bridge = qobject_cast<KXToVXBridge*>(pipeline.bridges().first());
  ASSERT_NE(bridge, nullptr);
  EXPECT_EQ(bridge->name(), "Segmentation");
  EXPECT_EQ(bridge->getPipelineUuid(), "uuid-1");
  ASSERT_EQ(bridge->dataSources().size(), 2);
  VXDataSource* grains = bridge->dataSources().first();
  // zero copy: the data source shows the host's memory
  EXPECT_EQ(grains->getOutput()->GetCellData()->GetArray("FeatureIds")->GetComponent(0, 0), 1.0);

  QSignalSpy reloaded(&pipeline, &VXPipeline::pipelineOutputReloaded);
  auto second = hostResult(7, true);
  pipeline.reloadPipelineOutput(&run, second);
  EXPECT_EQ(pipeline.bridges().size(), 1);
  EXPECT_EQ(reloaded.count(), 1);
  EXPECT_EQ(bridge->dataSources().first(), grains); // same item, new data
  EXPECT_EQ(grains->getOutput()->GetCellData()->GetArray("FeatureIds")->GetComponent(5, 0), 7.0);

  FakeController other("Meshing", "uuid-2");
  auto third = hostResult(3, true);
  pipeline.reloadPipelineOutput(&other, third);
  ASSERT_EQ(pipeline.bridges().size(), 2);
  EXPECT_EQ(pipeline.bridges().last()->name(), "Meshing");
}

TEST(HostBridge, UnnamedRunsNeverMatch)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  auto data = hostResult(1, false);
  pipeline.reloadPipelineOutput(nullptr, data);
  pipeline.reloadPipelineOutput(nullptr, data);
  ASSERT_EQ(pipeline.bridges().size(), 2);
  EXPECT_EQ(pipeline.bridges()[0]->name(), "UntitledPipeline");
  EXPECT_EQ(pipeline.bridges()[1]->name(), "UntitledPipeline (1)");
}

TEST(HostBridge, VanishedGeometryTakesItsDataSource)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  FakeController run("Run", "u");
  auto first = hostResult(1, true);
  pipeline.importPipelineOutput(&run, first);
  auto* bridge = pipeline.bridges().first();
  VXDataSource* seeds = bridge->dataSources().last();
  QSignalSpy removed(&pipeline, &VXPipeline::removeDataSource);
  auto second = hostResult(2, false);
  pipeline.reloadPipelineOutput(&run, second);
  ASSERT_EQ(removed.count(), 1);
  EXPECT_EQ(removed.at(0).at(0).value<VXDataSource*>(), seeds);
  EXPECT_EQ(bridge->dataSources().size(), 1);
  EXPECT_EQ(bridge->dataSourceNames(), QStringList{ "Grains" });
}

TEST(HostBridge, GeometryWithTwoParentsIsReportedAndSkipped)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  FakeController run("Run", "u");
  auto first = hostResult(1, false);
  pipeline.importPipelineOutput(&run, first);
  VXDataSource* grains = pipeline.bridges().first()->dataSources().first();
  vtkDataSet* oldData = grains->getOutput();

  // the next run puts the image under a second group too
  auto second = hostResult(5, false);
  auto* folder = DataGroup::Create(*second, "Folder");
  ASSERT_TRUE(
    second->setAdditionalParent(second->getId(DataPath({ "Grains" })).value(), folder->getId()));
  QSignalSpy popups(&pipeline, &VXPipeline::sendPopupMessage);
  QSignalSpy output(&pipeline, &VXPipeline::sendOutputMessage);
  pipeline.reloadPipelineOutput(&run, second);
  const QString text =
    "The geometry named Grains has multiple parents but the visualization currently does not "
    "support "
    "multiple parenting. This geometry will NOT be added to your visualization pipeline.";
  ASSERT_GE(popups.count(), 1);
  EXPECT_EQ(popups.at(0).at(0).toString(), "Geometry Not Loaded");
  EXPECT_EQ(popups.at(0).at(1).toString(), text);
  ASSERT_GE(output.count(), 1);
  EXPECT_EQ(output.at(0).at(0).toString(), text);
  // the old data source keeps the old data
  ASSERT_EQ(pipeline.bridges().first()->dataSources().size(), 1);
  EXPECT_EQ(grains->getOutput(), oldData);

  // a geometry new to this run, with two parents, is skipped the same way
  auto third = hostResult(7, true);
  auto* other = DataGroup::Create(*third, "Folder");
  ASSERT_TRUE(
    third->setAdditionalParent(third->getId(DataPath({ "Seeds" })).value(), other->getId()));
  popups.clear();
  output.clear();
  QSignalSpy sourcesAdded(&pipeline, &VXPipeline::dataSourceAdded);
  pipeline.reloadPipelineOutput(&run, third);
  const QString seedsText = QString(text).replace("Grains", "Seeds");
  ASSERT_GE(popups.count(), 1);
  ASSERT_EQ(output.count(), popups.count());
  for (int i = 0; i < popups.count(); ++i)
  {
    EXPECT_EQ(popups.at(i).at(1).toString(), seedsText);
    EXPECT_EQ(output.at(i).at(0).toString(), seedsText);
  }
  EXPECT_EQ(sourcesAdded.count(), 0);
  EXPECT_EQ(pipeline.bridges().first()->dataSourceNames(), QStringList{ "Grains" });
  EXPECT_NE(grains->getOutput(), oldData);
}

TEST(HostBridge, StateKeysAndFallbackOnRead)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  const auto sample = writeSample(dir);
  FakeController run("Run", "uuid-9", qpath(sample));
  KXToVXBridge bridge;
  auto data = hostResult(1, false);
  bridge.importPipelineOutput(&run, data);
  nlohmann::json state;
  bridge.write(state, {});
  EXPECT_EQ(state["bridge_object_uuid"], "uuid-9");
  EXPECT_EQ(state["bridge_object_file_path"], sample.string());
  EXPECT_EQ(state["bridge_object_item_name"], "Run");

  KXToVXBridge restored;
  QSignalSpy output(&restored, &VXBridgeObject::sendOutputMessage);
  restored.read(state, {});
  ASSERT_EQ(output.count(), 1);
  EXPECT_EQ(output.at(0).at(0).toString(),
            "Error: Cannot read in state file to a visualization pipeline sourced from a "
            "VOXELIA-KX pipeline, state files "
            "must be read in to visualization pipelines sourced from a file.");
  // falls back on the pipeline's output file
  EXPECT_EQ(restored.dataSources().size(), 3);
  EXPECT_EQ(restored.getPipelineUuid(), "uuid-9");
  EXPECT_EQ(restored.filePath(), qpath(sample));
  EXPECT_EQ(restored.name(), "Run");
}
