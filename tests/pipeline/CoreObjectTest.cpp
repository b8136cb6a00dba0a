#include "PipelineTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipelineModel.hpp>

#include <QtTest/QSignalSpy>

using namespace pipelinetest;

TEST(CoreObject, NamesAndTheSmallestFreeSuffix)
{
  ScopedSettings settings;
  FileToVXBridge bridge;
  bridge.setName("grains.vti", 0);
  EXPECT_EQ(bridge.name(), "grains.vti");
  bridge.setNameSuffix(1);
  EXPECT_EQ(bridge.name(), "grains.vti (1)");

  auto* source = new VXDataSource(&bridge);
  EXPECT_EQ(source->name(), "Unnamed Geometry");
  source->setBaseName("Grains");
  source->setNameSuffixCounter(0);
  EXPECT_EQ(source->name(), "Grains");
  QSignalSpy pathSpy(source, &VXCoreObject::pathChanged);
  source->setNameSuffixCounter(2);
  EXPECT_EQ(source->name(), "Grains 2");
  ASSERT_EQ(pathSpy.count(), 1);
  EXPECT_EQ(pathSpy.at(0).at(0).toString(), "grains.vti (1) > Grains 2");
  source->setPathDelimeter("/");
  EXPECT_EQ(source->pathName(), "grains.vti (1)/Grains 2");

  // a new item takes the smallest free suffix of its name
  QObject owner;
  QList<VXCoreObject*> items;
  EXPECT_EQ(VXPipelineModel::GetNameSuffixCounter(items, "A"), 0);
  const std::vector<std::pair<QString, int>> existing = {
    { "A", 0 }, { "A", 1 }, { "A", 3 }, { "B", 2 }
  };
  for (const auto& [name, suffix] : existing)
  {
    auto* item = new VXDataSource(&owner);
    item->setBaseName(name);
    item->setNameSuffixCounter(suffix);
    items.append(item);
  }
  EXPECT_EQ(VXPipelineModel::GetNameSuffixCounter(items, "A"), 2); // the gap
  EXPECT_EQ(VXPipelineModel::GetNameSuffixCounter(items, "B"), 1);
  EXPECT_EQ(VXPipelineModel::GetNameSuffixCounter(items, "C"), 0);
}

TEST(CoreObject, VisibilityAndEnabledStatePerView)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  TestView viewA;
  TestView viewB;
  VXDataSource source;
  source.setPipeline(&pipeline);
  // no active view: no page and not visible
  EXPECT_FALSE(source.isVisible());
  EXPECT_EQ(source.settingsWidget(), nullptr);

  pipeline.setActiveViewWidget(&viewA);
  source.setVisibility(false); // a view the item wasn't in: added, then hidden
  EXPECT_TRUE(source.viewWidgets().contains(&viewA));
  EXPECT_FALSE(source.isVisible());
  pipeline.setActiveViewWidget(&viewB);
  source.setVisibility(true);
  EXPECT_TRUE(source.isVisible());
  pipeline.setActiveViewWidget(&viewA);
  EXPECT_FALSE(source.isVisible());
  EXPECT_EQ(source.viewWidgets().size(), 2);
  // with a view there is a page, titled by the item's name
  ASSERT_NE(source.settingsWidget(), nullptr);

  // an active view change reports the enabled state
  TestView otherView;
  pipeline.setActiveViewWidget(nullptr);
  QSignalSpy spy(&source, &VXCoreObject::enabledDisabledStateChanged);
  pipeline.setActiveViewWidget(&viewA);
  pipeline.setActiveViewWidget(&viewA); // same view: nothing
  pipeline.setActiveViewWidget(&otherView);
  pipeline.setActiveViewWidget(nullptr);
  ASSERT_EQ(spy.count(), 3);
  EXPECT_TRUE(spy.at(0).at(1).toBool());
  EXPECT_FALSE(spy.at(1).at(1).toBool());
  EXPECT_FALSE(spy.at(2).at(1).toBool());
}

TEST(CoreObject, StateKeysPerView)
{
  ScopedSettings settings;
  TestView viewA;
  TestView viewB;
  TestView unsaved;
  VXDataSource source;
  source.addViewWidget(&viewA);
  source.addViewWidget(&viewB);
  source.addViewWidget(&unsaved);
  nlohmann::json state;
  source.VXCoreObject::write(state, { { &viewA, 0 }, { &viewB, 1 } });
  ASSERT_TRUE(state["render_window_index"].is_array());
  ASSERT_EQ(state["render_window_index"].size(), 2u); // the view without an index is left out
  for (const auto& entry : state["render_window_index"])
  {
    EXPECT_TRUE(entry["render_window_index"].is_number());
    EXPECT_EQ(entry["core_object_visibility"], true);
  }

  VXDataSource restored;
  restored.addViewWidget(&viewA);
  nlohmann::json input = {
    { "render_window_index",
      { { { "render_window_index", 0 }, { "core_object_visibility", false } },
        { { "render_window_index", 7 }, { "core_object_visibility", false } } } }
  };
  restored.VXCoreObject::read(input, { { 0, &viewA }, { 1, &viewB } });
  EXPECT_FALSE(restored.viewWidgets().value(&viewA));
  EXPECT_EQ(restored.viewWidgets().size(), 1); // index 7 names no view

  nlohmann::json wrongType = {
    { "render_window_index",
      { { { "render_window_index", "zero" }, { "core_object_visibility", true } } } }
  };
  try
  {
    restored.VXCoreObject::read(wrongType, { { 0, &viewA } });
    FAIL() << "expected a type error";
  }
  catch (const nlohmann::json::type_error& error)
  {
    EXPECT_NE(std::string(error.what()).find("type must be number, but is string"),
              std::string::npos);
  }
}
