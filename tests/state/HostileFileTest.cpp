#include "StateTestSupport.hpp"

#include <utils/KXVtkModuleUtils.hpp>

#include <climits>

using namespace statetest;
using json = nlohmann::json;

namespace
{
class HostileFixture : public SampleStateFixture
{
protected:
  json bridge(json children = json::array()) const
  {
    return item("FileToVXBridge", { { "bridge_object_file_path", m_Sample.string() } },
                std::move(children));
  }

  /** Writes the text as a state file and loads it through the path, answering Open. */
  void loadText(const std::string& text)
  {
    const auto path = m_Dir / "hostile.vlxstate";
    WriteBytes(path, text);
    m_Dialogs.answers = { QMessageBox::Open };
    m_Module->loadState(qpath(path));
    pump();
  }
};

const QString k_TypePrefix = "Error reading state file; ";
} // namespace

TEST_F(HostileFixture, WrongTypesAtTheTopLevelAreRefusedBeforeAnythingChanges)
{
  buildSomething();
  ASSERT_FALSE(HasFatalFailure());
  const QStringList lines = treeLines();
  const QList<int> ids = splitIds();
  const json good = stateWith(json::array());
  struct Case
  {
    json state;
    QString message;
  };
  const QString missing = "Error reading visualization state from state file; missing %1 key";
  const std::vector<Case> cases = {
    { json(nullptr), missing.arg("split_view_state") },
    { json("text"), missing.arg("split_view_state") },
    { json::array({ good }), missing.arg("split_view_state") },
    { json{ { "tree_view_state", json::array() } }, missing.arg("split_view_state") },
    { json{ { "split_view_state", good["split_view_state"] } }, missing.arg("tree_view_state") },
    { json{ { "split_view_state", 3 }, { "tree_view_state", json::array() } },
      "Error reading visualization state from state file; the split_view_state value must be a "
      "JSON object" },
    { json{ { "split_view_state", json::array() }, { "tree_view_state", json::array() } },
      "Error reading visualization state from state file; the split_view_state value must be a "
      "JSON object" },
    { json{ { "split_view_state", good["split_view_state"] },
            { "tree_view_state", json::object() } },
      "Error reading visualization state from state file; the tree_view_state value must be a JSON "
      "array" },
    { json{ { "split_view_state", good["split_view_state"] }, { "tree_view_state", "bridges" } },
      "Error reading visualization state from state file; the tree_view_state value must be a JSON "
      "array" },
  };
  for (const Case& entry : cases)
  {
    output.clear();
    json state = entry.state;
    m_Module->loadState(state);
    pump();
    EXPECT_EQ(output, QStringList{ entry.message }) << entry.state.dump();
    EXPECT_EQ(treeLines(), lines) << entry.state.dump();
    EXPECT_EQ(splitIds(), ids) << entry.state.dump();
  }
}

TEST_F(HostileFixture, WrongTypesInsideItemsGiveAMessageAndEndOnlyThatItem)
{
  // every item kind with values of the wrong type where its readers look
  json sources = json::array({
    item("VXDataSource", { { "imported_data_path", 12 } }),
    item("VXDataSource", { { "imported_data_path", json::array({ "Microstructure" }) } }),
    item("VXDataSource",
         { { "imported_data_path", "Grain Centroids" }, { "render_window_index", "first" } }),
    item("VXDataSource",
         { { "imported_data_path", "Grain Boundaries" },
           { "render_window_index", json::array({ { { "render_window_index", "zero" } } }) } },
         json::array({ item("VXSurfaceRep") })),
    item("VXDataSource", "not an object"),
    item("VXDataSource", { { "imported_data_path", "Microstructure" } },
         json::array({
           item("VXSurfaceRep", { { "render_window_index", 4 } }),
           item("VXPointsRep", { { "rep_view_implementations", "none" } }),
           item("VXWireframeRep",
                { { "rep_view_implementations", json::array({ 7, "x", nullptr }) } }),
           item("VXOutlineRep", json::array({ 1, 2 })),
           json(5),
           json::array(),
           json{ { "item_type", 42 }, { "item_data", json::object() } },
           json{ { "item_type", nullptr }, { "item_data", json::object() } },
           item("VXPointsRep", json::object(), "children as text"),
           item("VXOutlineRep"),
         })),
  });
  json tree = json::array({
    item("FileToVXBridge", { { "bridge_object_file_path", 17 } }),
    item("FileToVXBridge",
         { { "bridge_object_file_path", json::array() }, { "render_window_index", "one" } }),
    item("FileToVXBridge", "not an object"),
    item("KXToVXBridge", { { "bridge_object_file_path", false }, { "bridge_object_uuid", 3 } }),
    bridge(sources),
  });
  json state = stateWith(tree);
  m_Module->loadState(state);
  pump();

  // each bad value is reported, in the loader's words or the reader's
  ASSERT_FALSE(output.isEmpty());
  EXPECT_GE(countOutput(k_TypePrefix), 10) << output.join('\n').toStdString();
  EXPECT_EQ(countOutput("Error reading state file; tree view item is missing the 'item_type' key"),
            2);
  EXPECT_EQ(countOutput("Error reading state file; the tree view items must be a list"), 1);
  EXPECT_EQ(countOutput("Error reading state file; found VOXELIA-KX file VXDataSource item type "
                        "but missing the imported data path key."),
            1);
  // the last data view under the good source still loaded, after all its bad sisters
  VXDataSource* microstructure = nullptr;
  for (VXDataSource* source : dataSources())
  {
    if (source->name() == "Microstructure")
      microstructure = source;
  }
  ASSERT_NE(microstructure, nullptr);
  const QList<VXRepresentation*> views = representationsUnder(model()->helperIndex(microstructure));
  ASSERT_FALSE(views.isEmpty());
  EXPECT_EQ(views.back()->typeName(), "VXOutlineRep");
  // every bridge item made a bridge: only the reader of the file path decides what it reads
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 5);
}

TEST_F(HostileFixture, WrongTypesInTheSplitViewStateGiveAMessage)
{
  const json good = stateWith(json::array({ bridge(
    json::array({ item("VXDataSource", { { "imported_data_path", "Microstructure" } }) })) }));
  std::vector<std::pair<std::string, json>> changes = {
    { "grid_rows", "two" },
    { "grid_cols", json::array() },
    { "col_widths", "wide" },
    { "row_heights", json::object() },
  };
  for (const auto& [key, value] : changes)
  {
    freshModule();
    json state = good;
    state["split_view_state"][key] = value;
    load(state);
    ASSERT_FALSE(output.isEmpty()) << key;
    EXPECT_TRUE(output.front().startsWith("Error reading visualization state from state file; "))
      << key << ": " << output.front().toStdString();
    EXPECT_GE(grid()->viewCount(), 1);
  }
  // cells that are no list or hold garbage: the views stay as a reset left them
  for (json cells : { json(5), json::array({ 1, "x", nullptr, json::array() }),
                      json::array({ { { "view_state", { { "camera_pos_x", "far" } } } } }) })
  {
    freshModule();
    json state = good;
    state["split_view_state"]["grid_cells"] = cells;
    load(state);
    EXPECT_GE(grid()->viewCount(), 1) << cells.dump();
  }
  // a grid far too large is refused: one view, and the tree loads into it
  freshModule();
  json huge = good;
  huge["split_view_state"]["grid_rows"] = 100000;
  huge["split_view_state"]["grid_cols"] = 100000;
  load(huge);
  EXPECT_EQ(grid()->viewCount(), 1);
  EXPECT_EQ(dataSources().size(), 1);
}

TEST_F(HostileFixture, DeepTreesAndHugeListsEndInMessages)
{
  // ten thousand data views, each under the one before
  json deepest = item("VXPointsRep");
  for (int level = 0; level < 10000; ++level)
    deepest = item("VXSurfaceRep", json::object(), json::array({ std::move(deepest) }));
  json tree = json::array(
    { bridge(json::array({ item("VXDataSource", { { "imported_data_path", "Microstructure" } },
                                json::array({ std::move(deepest) })) })) });
  const std::string text = stateWith(tree).dump();
  tree = nullptr;
  loadText(text);
  EXPECT_EQ(output, QStringList{ "Error reading state file; found VXSurfaceRep representation item "
                                 "type must have a VXDataSource or VXFilter "
                                 "parent item." });
  ASSERT_EQ(dataSources().size(), 1);
  EXPECT_EQ(representationsUnder(model()->helperIndex(dataSources().front())).size(), 1);

  // item data nested ten thousand deep
  freshModule();
  json nested = "bottom";
  for (int level = 0; level < 10000; ++level)
    nested = json::array({ std::move(nested) });
  json sources =
    json::array({ item("VXDataSource", { { "imported_data_path", std::move(nested) } }),
                  item("VXDataSource", { { "imported_data_path", "Grain Centroids" } }) });
  loadText(stateWith(json::array({ bridge(sources) })).dump());
  EXPECT_EQ(
    output,
    QStringList{
      "Error reading state file; the item data of VXDataSource is nested deeper than 64 levels" });
  ASSERT_EQ(dataSources().size(), 1);
  EXPECT_EQ(dataSources().front()->name(), "Grain Centroids");

  // a split view state nested ten thousand deep
  freshModule();
  json deepSplit = json::object();
  for (int level = 0; level < 10000; ++level)
    deepSplit =
      json{ { "split_view_index", 1 }, { "children", json::array({ std::move(deepSplit) }) } };
  json state = stateWith(json::array({ bridge(
    json::array({ item("VXDataSource", { { "imported_data_path", "Microstructure" } }) })) }));
  state["split_view_state"]["grid_cells"] =
    json::array({ { { "view_state", std::move(deepSplit) } } });
  loadText(state.dump());
  EXPECT_EQ(output, QStringList{ "Error reading visualization state from state file; the "
                                 "split_view_state value is nested deeper than 64 levels" });
  EXPECT_TRUE(info()->modelIsEmpty());
  EXPECT_EQ(grid()->viewCount(), 1);

  // a million items of garbage: reported, but not a million times
  freshModule();
  std::string garbage =
    "{\"split_view_state\": " + stateWith(json::array())["split_view_state"].dump() +
    ", \"tree_view_state\": [";
  for (int i = 0; i < 1000000; ++i)
    garbage += i == 0 ? "7" : ",7";
  garbage += "]}";
  loadText(garbage);
  EXPECT_EQ(countOutput("Error reading state file; tree view item is missing the 'item_type' key"),
            VXInfoWidget::k_MaxReportedStateErrors);
  EXPECT_EQ(output.back(), QString("Error reading state file; %1 more errors not shown")
                             .arg(1000000 - VXInfoWidget::k_MaxReportedStateErrors));
  EXPECT_TRUE(info()->modelIsEmpty());
}

TEST_F(HostileFixture, FilesThatAreNotStateFilesGiveTheMalformedMessage)
{
  buildSomething();
  ASSERT_FALSE(HasFatalFailure());
  const QStringList lines = treeLines();
  const std::string good = stateWith(json::array({ bridge() })).dump(2, ' ');
  std::string binary;
  for (int i = 0; i < 4096; ++i)
    binary.push_back(static_cast<char>((i * 7919) & 0xff));
  const std::vector<std::string> texts = {
    "",
    "this is not JSON",
    binary,
    good.substr(0, good.size() / 2),
    good.substr(0, good.size() - 1),
    "{\"split_view_state\": {}, \"tree_view_state\": []} trailing",
    "\xEF\xBB\xBF\xFF\xFE{}",
  };
  const QString path = qpath(m_Dir / "hostile.vlxstate");
  for (const std::string& text : texts)
  {
    output.clear();
    loadText(text);
    ASSERT_EQ(output.size(), 1) << text.substr(0, 40);
    EXPECT_TRUE(
      output[0].startsWith(QString("Error loading state from '%1': malformed JSON (").arg(path)))
      << output[0].toStdString();
    EXPECT_TRUE(output[0].endsWith("). The file may be corrupt.")) << output[0].toStdString();
    EXPECT_EQ(treeLines(), lines);
    EXPECT_EQ(grid()->viewCount(), 2);
  }
}

TEST(StateNumbers, WholeNumbersPastIntsRangeClampAndRealsTruncate)
{
  using KXVtkModule::utils::StateInt;
  EXPECT_EQ(StateInt(json(1e300)), INT_MAX);
  EXPECT_EQ(StateInt(json(-1e300)), INT_MIN);
  EXPECT_EQ(StateInt(json(3e9)), INT_MAX);
  EXPECT_EQ(StateInt(json(-3.9)), -3);
  EXPECT_EQ(StateInt(json(std::int64_t{ -5'000'000'000 })), INT_MIN);
  EXPECT_EQ(StateInt(json(std::uint64_t{ 18'000'000'000'000'000'000u })), INT_MAX);
  EXPECT_EQ(StateInt(json(42)), 42);
  EXPECT_THROW(StateInt(json("7")), nlohmann::json::type_error);
}
