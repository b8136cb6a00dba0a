#include "StateTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXPlane.hpp>
#include <visualization/VXRepresentationPimpl.hpp>
#include <visualization/VXStateItemFactory.hpp>

#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkUnstructuredGrid.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

using namespace statetest;
using json = nlohmann::json;

namespace
{
json fileBridge(const std::filesystem::path& file, json children)
{
  return item("FileToVXBridge", { { "bridge_object_file_path", file.string() } },
              std::move(children));
}

json voxeliaSource(const std::string& path, json children = nullptr)
{
  return item("VXDataSource", { { "imported_data_path", path } }, std::move(children));
}

/** A file bridge that also makes a second, empty data source: a file of two data sets. */
class TwoSourceBridge : public FileToVXBridge
{
public:
  void read(const json& input, const QMap<int, VXAbstractViewWidget*>& views) override
  {
    FileToVXBridge::read(input, views);
    VXDataSource* second = addDataSource();
    second->setDataSet(vtkSmartPointer<vtkPolyData>::New());
    Q_EMIT dataSourceAdded(second);
  }
};

class LoadRulesFixture : public SampleStateFixture
{
protected:
  QStringList childTypes(const QModelIndex& parent) const
  {
    QStringList types;
    for (VXRepresentation* representation : representationsUnder(parent))
      types << representation->typeName();
    return types;
  }
};

const QString k_NotTopLevel = "Error reading state file; found VXBridgeObject item type %1 but the "
                              "model index for insertion is not at the top level of the tree.";
} // namespace

TEST_F(LoadRulesFixture, UnknownAndNotYetAvailableTypesUnderASourceAreReportedAndTheirSistersLoad)
{
  // volumes and glyphs come with their own classes; until then their names are unknown here
  const QStringList unknown = { "VXMystery", "VXDistanceSource", "VXFImageResample",
                                "VXFQuadricClustering" };
  json children = json::array();
  children.push_back(item("VXPointsRep"));
  for (const QString& type : unknown)
    children.push_back(
      item(type.toStdString(), json::object(), json::array({ item("VXSurfaceRep") })));
  // the image slice loads under both of its names, the newer one with its trailing blank
  children.push_back(item("VXImageSliceRep "));
  children.push_back(item("VXSliceRep"));
  children.push_back(item("VXOutlineRep"));
  load(stateWith(json::array(
    { fileBridge(m_Sample, json::array({ voxeliaSource("Microstructure", children) })) })));

  for (const QString& type : unknown)
    EXPECT_EQ(countOutput(k_NotTopLevel.arg(type)), 1) << type.toStdString();
  EXPECT_EQ(output.size(), unknown.size()) << output.join('\n').toStdString();

  // the unknown items' children never load; the known sisters do, in order
  const QModelIndex source = sourceNamed("Microstructure");
  ASSERT_TRUE(source.isValid());
  EXPECT_EQ(childTypes(source),
            (QStringList{ "VXPointsRep", "VXImageSliceRep ", "VXImageSliceRep ", "VXOutlineRep" }));
  // the sample's other geometries are not named by the state: they are gone
  EXPECT_EQ(dataSources().size(), 1);
}

TEST_F(LoadRulesFixture, AClipFilterLoadsWithItsToolAndTheDataViewUnderIt)
{
  json clip = item("VXFClip",
                   { { "clip_type", 0 },
                     { "clip_inverted", true },
                     { "clip_plane_normal_x", 0.0 },
                     { "clip_plane_normal_y", 0.0 },
                     { "clip_plane_normal_z", 1.0 },
                     { "clip_plane_origin_x", 1.0 },
                     { "clip_plane_origin_y", 1.0 },
                     { "clip_plane_origin_z", 3.5 },
                     { "filter_should_add_rep", false } },
                   json::array({ item("VXSurfaceRep") }));
  load(stateWith(json::array({ fileBridge(
    m_Sample, json::array({ voxeliaSource("Microstructure", json::array({ clip })) })) })));
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();

  const QModelIndex source = sourceNamed("Microstructure");
  ASSERT_TRUE(source.isValid());
  const QModelIndex filterIndex = model()->index(0, 1, source);
  auto* filter = qobject_cast<VXFClip*>(model()->getCoreObject(filterIndex));
  ASSERT_NE(filter, nullptr);
  EXPECT_EQ(filter->plane()->getOrigin(), (std::array<double, 3>{ 1.0, 1.0, 3.5 }));
  EXPECT_FALSE(filter->shouldAddRep());
  EXPECT_EQ(childTypes(model()->index(0, 0, source)), QStringList{ "VXSurfaceRep" });
  ASSERT_EQ(filter->findChildren<VXRepresentation*>().size(), 1);
  // the surface under it draws the cut: only what lies below z = 3.5
  filter->clipFilter()->Update();
  double bounds[6];
  filter->clipFilter()->GetOutput()->GetBounds(bounds);
  EXPECT_EQ(bounds[5], 3.5);
}

TEST_F(LoadRulesFixture, ADataViewUnderADataViewIsRefusedWithItsChildren)
{
  json nested =
    item("VXPointsRep", json::object(), json::array({ item("VXOutlineRep"), item("VXMystery") }));
  json surface = item("VXSurfaceRep", json::object(), json::array({ nested }));
  load(stateWith(json::array({ fileBridge(
    m_Sample, json::array({ voxeliaSource(
                "Grain Boundaries", json::array({ surface, item("VXWireframeRep") })) })) })));

  EXPECT_EQ(output, QStringList{ "Error reading state file; found VXPointsRep representation item "
                                 "type must have a VXDataSource or VXFilter parent "
                                 "item." });
  const QModelIndex source = sourceNamed("Grain Boundaries");
  ASSERT_TRUE(source.isValid());
  EXPECT_EQ(childTypes(source), (QStringList{ "VXSurfaceRep", "VXWireframeRep" }));
  // the surface kept no child
  EXPECT_EQ(model()->rowCount(model()->index(0, 0, source)), 0);
}

TEST_F(LoadRulesFixture, VoxeliaSourcesAreMatchedByTheirPathInAnyOrder)
{
  // reversed against the file's order; each source is known by the data view under it
  json sources =
    json::array({ voxeliaSource("Grain Centroids", json::array({ item("VXPointsRep") })),
                  voxeliaSource("Grain Boundaries", json::array({ item("VXWireframeRep") })),
                  voxeliaSource("Microstructure", json::array({ item("VXOutlineRep") })),
                  voxeliaSource("No Such Geometry", json::array({ item("VXSurfaceRep") })),
                  item("VXDataSource", { { "render_window_index", json::array() } }) });
  load(stateWith(json::array({ fileBridge(m_Sample, sources) })));

  EXPECT_EQ(output, (QStringList{ "Error reading state file; found item type VXDataSource in state "
                                  "file but could not find a matching data source in "
                                  "the model.",
                                  "Error reading state file; found VOXELIA-KX file VXDataSource "
                                  "item type but missing the imported data path key." }));
  EXPECT_EQ(childTypes(sourceNamed("Grain Centroids")), QStringList{ "VXPointsRep" });
  EXPECT_EQ(childTypes(sourceNamed("Grain Boundaries")), QStringList{ "VXWireframeRep" });
  EXPECT_EQ(childTypes(sourceNamed("Microstructure")), QStringList{ "VXOutlineRep" });
  EXPECT_EQ(dataSources().size(), 3);
}

TEST_F(LoadRulesFixture, AnotherFileTakesItsOnlyDataSourceAndNoneOfTwo)
{
  const auto hexahedra = kxtest::DataFile("Hexahedron.vtu");
  ASSERT_TRUE(std::filesystem::exists(hexahedra));
  // any path is ignored: the only data source of the file is the one
  load(stateWith(json::array({ fileBridge(
    hexahedra, json::array({ item("VXDataSource", { { "imported_data_path", "Anything" } },
                                  json::array({ item("VXSurfaceRep") })) })) })));
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  ASSERT_EQ(dataSources().size(), 1);
  EXPECT_EQ(childTypes(model()->helperIndex(dataSources().front())), QStringList{ "VXSurfaceRep" });

  // no readable non-.voxelia file gives two data sets; a bridge that makes two stands for one
  ASSERT_TRUE(VXStateItemFactory::Register("FileToVXBridge", [](VXPipeline*) -> QObject*
                                           { return new TwoSourceBridge(); }));
  freshModule();
  load(stateWith(json::array(
    { fileBridge(hexahedra, json::array({ item("VXDataSource", json::object(),
                                               json::array({ item("VXSurfaceRep") })) })) })));
  ASSERT_TRUE(VXStateItemFactory::Register("FileToVXBridge", [](VXPipeline*) -> QObject*
                                           { return new FileToVXBridge(); }));
  EXPECT_EQ(output, QStringList{ "Error reading state file; found item type VXDataSource in state "
                                 "file but could not find a matching data source in "
                                 "the model." });
  // nothing matched, so neither data source of the loaded bridge is kept
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 1);
  EXPECT_TRUE(dataSources().isEmpty());
}

TEST_F(LoadRulesFixture, TheDefaultDataViewTypeIsPutBackAndLoadedSourcesGetNoDataViewOfTheirOwn)
{
  const VXRepresentation::Type saved = VXPipeline::getDefaultRepType();
  VXPipeline::setDefaultRepType(VXRepresentation::Surface);
  // a clean load, a load with bad items, a load whose split view state throws
  load(stateWith(
    json::array({ fileBridge(m_Sample, json::array({ voxeliaSource("Microstructure"),
                                                     voxeliaSource("Grain Boundaries") })) })));
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(VXPipeline::getDefaultRepType(), VXRepresentation::Surface);
  ASSERT_EQ(dataSources().size(), 2);
  for (VXDataSource* source : dataSources())
    EXPECT_EQ(model()->rowCount(model()->helperIndex(source)), 0) << source->name().toStdString();

  freshModule();
  load(stateWith(json::array(
    { item("VXMystery"), fileBridge(m_Sample, json::array({ item("VXPointsRep") })) })));
  EXPECT_FALSE(output.isEmpty());
  EXPECT_EQ(VXPipeline::getDefaultRepType(), VXRepresentation::Surface);

  freshModule();
  json broken = stateWith(json::array({ fileBridge(m_Sample, json::array()) }));
  broken["split_view_state"]["grid_rows"] = "two";
  load(broken);
  EXPECT_FALSE(output.isEmpty());
  EXPECT_EQ(VXPipeline::getDefaultRepType(), VXRepresentation::Surface);

  // outside a load the default applies again
  m_Module->pipeline()->importFile(qpath(m_Sample));
  pump();
  ASSERT_FALSE(dataSources().isEmpty());
  EXPECT_GT(model()->rowCount(model()->helperIndex(dataSources().back())), 0);
  VXPipeline::setDefaultRepType(saved);
}

TEST_F(LoadRulesFixture, WithoutAViewNothingIsAdded)
{
  QSignalSpy messages(info(), &VXInfoWidget::sendOutputMessage);
  info()->loadState(json::array({ fileBridge(m_Sample, json::array()) }),
                    QMap<VXAbstractViewWidget*, int>());
  ASSERT_EQ(messages.count(), 1);
  EXPECT_EQ(messages.at(0).at(0).toString(),
            "Error reading state file; could not find a view widget to add items to");
  EXPECT_TRUE(info()->modelIsEmpty());
  output.clear();

  // a top-level item bound to a window that the split views don't have
  json bridge = fileBridge(m_Sample, json::array());
  bridge["item_data"]["render_window_index"] = 7;
  json other = bridge;
  other["item_data"]["render_window_index"] = -1;
  load(stateWith(json::array({ bridge, other })));
  EXPECT_EQ(output, QStringList{
                      "Error reading state file; could not find a view widget to add items to" });
  // the sister bound to -1 goes to the first view
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 1);
}

TEST_F(LoadRulesFixture, TopLevelItemsMustBeBridgesAndSourcesMustHangUnderAFileBridge)
{
  json tree = json::array({
    voxeliaSource("Microstructure"),
    item("VXPointsRep"),
    // a data source under a data source
    fileBridge(m_Sample, json::array({ voxeliaSource(
                           "Microstructure", json::array({ voxeliaSource("Microstructure") })) })),
    // a host pipeline's bridge has no file to match sources in
    item("KXToVXBridge", json::object(), json::array({ voxeliaSource("Microstructure") })),
  });
  load(stateWith(tree));
  const QString topLevel = "Error reading state file; found item type %1 but top level tree view "
                           "items must be of type VXBridgeObject";
  EXPECT_EQ(output, (QStringList{
                      topLevel.arg("VXDataSource"),
                      topLevel.arg("VXPointsRep"),
                      "Error reading state file; found item type VXDataSource but the parent item "
                      "is not a VXBridgeObject type.",
                      "Error: Cannot read in state file to a visualization pipeline sourced from a "
                      "VOXELIA-KX pipeline, state files must be read in to "
                      "visualization pipelines sourced from a file.",
                      "Error reading state file; cannot load the data source because the parent "
                      "pipeline object does not have an associated .voxelia "
                      "file.",
                    }));
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 2);
}

TEST_F(LoadRulesFixture, LoadingFromAPathAsksFirstAndReportsUnreadableFiles)
{
  const json state = stateWith(
    json::array({ fileBridge(m_Sample, json::array({ voxeliaSource("Grain Centroids") })) }));
  const auto good = m_Dir / "good.vlxstate";
  WriteBytes(good, state.dump(2, ' '));

  // the wrong suffix or no path: nothing happens and nothing is said
  WriteBytes(m_Dir / "good.json", state.dump());
  m_Module->loadState(qpath(m_Dir / "good.json"));
  m_Module->loadState(QString());
  EXPECT_TRUE(output.isEmpty());
  EXPECT_TRUE(m_Dialogs.asked.empty());
  EXPECT_TRUE(info()->modelIsEmpty());

  // an empty model loads without a question
  m_Module->loadState(qpath(good));
  pump();
  EXPECT_TRUE(m_Dialogs.asked.empty());
  EXPECT_EQ(dataSources().size(), 1);

  // now there is something to lose: Cancel keeps everything
  grid()->addColumn(grid()->allViews().front());
  pump();
  const QStringList lines = treeLines();
  const QList<int> ids = splitIds();
  m_Dialogs.answers = { QMessageBox::Cancel };
  m_Module->loadState(qpath(good));
  pump();
  ASSERT_EQ(m_Dialogs.asked.size(), 1u);
  const VXUserPrompt::Question& question = m_Dialogs.asked[0];
  EXPECT_EQ(question.title, "Possible Loss of Data");
  EXPECT_EQ(question.text,
            "The existing render window split view state will be cleared while loading the state "
            "file. This may result in a loss of "
            "existing data.\n\nWould you like to continue loading the state anyway?");
  EXPECT_EQ(question.buttons, QMessageBox::Open | QMessageBox::Cancel);
  EXPECT_EQ(question.defaultButton, QMessageBox::Cancel);
  EXPECT_EQ(question.icon, QMessageBox::Warning);
  EXPECT_EQ(treeLines(), lines);
  EXPECT_EQ(splitIds(), ids);

  // Open goes on: the split views are cleared to the state's one view and the tree gets a second
  // bridge
  m_Dialogs.answers = { QMessageBox::Open };
  m_Module->loadState(qpath(good));
  pump();
  EXPECT_EQ(grid()->viewCount(), 1);
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 2);
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();

  // unreadable and malformed files, answered with Open
  freshModule();
  const QString missing = qpath(m_Dir / "missing.vlxstate");
  m_Module->loadState(missing);
  EXPECT_EQ(
    output,
    QStringList{ QString("Error opening visualization state from state file %1").arg(missing) });
  std::filesystem::create_directories(m_Dir / "folder.vlxstate");
  output.clear();
  m_Module->loadState(qpath(m_Dir / "folder.vlxstate"));
  EXPECT_EQ(output, QStringList{ QString("Error opening visualization state from state file %1")
                                   .arg(qpath(m_Dir / "folder.vlxstate")) });

  const auto malformed = m_Dir / "malformed.vlxstate";
  WriteBytes(malformed, "{\"split_view_state\": {}, \"tree_view_state\": [");
  output.clear();
  m_Module->loadState(qpath(malformed));
  ASSERT_EQ(output.size(), 1);
  const QString prefix =
    QString("Error loading state from '%1': malformed JSON (").arg(qpath(malformed));
  EXPECT_TRUE(output[0].startsWith(prefix)) << output[0].toStdString();
  EXPECT_TRUE(output[0].endsWith("). The file may be corrupt.")) << output[0].toStdString();
  // the parser's own words sit between the brackets
  EXPECT_TRUE(output[0].contains("parse error")) << output[0].toStdString();
  EXPECT_TRUE(info()->modelIsEmpty());
  EXPECT_EQ(grid()->viewCount(), 1);
}

TEST_F(LoadRulesFixture, CapitalSuffixAndPerViewSourceVisibilityLoadAsSaved)
{
  // a host file named in capitals is still matched by path
  const auto capitals = m_Dir / "SAMPLE.VOXELIA";
  std::filesystem::copy_file(m_Sample, capitals);
  load(stateWith(json::array({ fileBridge(
    capitals,
    json::array({ voxeliaSource("Grain Centroids", json::array({ item("VXPointsRep") })) })) })));
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  ASSERT_EQ(dataSources().size(), 1);
  EXPECT_EQ(childTypes(sourceNamed("Grain Centroids")), QStringList{ "VXPointsRep" });

  // two views; the second file arrives while the right one is active, and the left's file is
  // hidden there: the active view doesn't show every data source
  freshModule();
  const auto hexahedra = kxtest::DataFile("Hexahedron.vtu");
  const auto tetrahedra = kxtest::DataFile("Tetrahedron.vtu");
  ASSERT_TRUE(std::filesystem::exists(hexahedra) && std::filesystem::exists(tetrahedra));
  m_Module->pipeline()->importFile(qpath(hexahedra));
  grid()->addColumn(grid()->allViews().front());
  pump();
  VXAbstractViewWidget* right = grid()->allViews().at(1);
  right->mousePressed();
  pump();
  ASSERT_EQ(m_Module->getActiveViewWidget(), right);
  m_Module->pipeline()->importFile(qpath(tetrahedra));
  pump();
  const QStringList before = treeLines();
  ASSERT_EQ(before.size(), 6) << before.join('\n').toStdString();
  EXPECT_EQ(before.at(1).toStdString(), "  VXDataSource Hexahedron [on,-]");
  EXPECT_EQ(before.at(4).toStdString(), "  VXDataSource Tetrahedron [-,on]");
  json saved;
  m_Module->saveState(saved);
  freshModule();
  load(saved);
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(treeLines(), before);
}

TEST_F(LoadRulesFixture, PastedSettingsOfTheWrongShapeAreReportedAndChangeNothing)
{
  m_Module->pipeline()->importFile(qpath(kxtest::DataFile("Hexahedron.vtu")));
  pump();
  ASSERT_EQ(dataSources().size(), 1);
  VXDataSource* source = dataSources().front();
  const QList<VXRepresentation*> views = representationsUnder(model()->helperIndex(source));
  ASSERT_EQ(views.size(), 1);
  VXRepresentation* view = views.front();
  VXAbstractViewWidget* active = m_Module->getActiveViewWidget();
  ASSERT_TRUE(view->isVisible());
  ASSERT_TRUE(source->isVisible());
  auto stateOf = [&](auto* item)
  {
    json state;
    item->write(state, QMap<VXAbstractViewWidget*, int>{ { active, 0 } });
    return state;
  };
  const json sourceBefore = stateOf(source);
  const json viewBefore = stateOf(view);
  // each text with the number of the two items (source, data view) that find it malformed
  const std::vector<std::pair<const char*, int>> texts = {
    { "not json at all", 2 },
    { "[1, 2]", 2 },
    { R"({"data_source_solid_color_r": "ten", "data_source_solid_color_g": 20,)"
      R"( "data_source_solid_color_b": 30})",
      1 },
    { R"({"detach_color_settings": false, "data_grid_visible": "yes"})", 1 },
  };
  for (const auto& [text, reports] : texts)
  {
    SCOPED_TRACE(text);
    output.clear();
    QGuiApplication::clipboard()->setText(text);
    source->pasteToActiveSettings();
    view->pasteToActiveSettings();
    ASSERT_EQ(output.size(), reports) << output.join('\n').toStdString();
    for (const QString& line : output)
      EXPECT_TRUE(line.startsWith("Cannot paste settings to ")) << line.toStdString();
    EXPECT_EQ(stateOf(source), sourceBefore);
    EXPECT_EQ(stateOf(view), viewBefore);
  }

  // settings that fit are taken, but never the visibility
  output.clear();
  QGuiApplication::clipboard()->setText(
    R"({"data_source_solid_color_r": 10, "data_source_solid_color_g": 20,)"
    R"( "data_source_solid_color_b": 30, "data_source_visibility": false,)"
    R"( "render_window_index": [{"render_window_index": 0, "core_object_visibility": false}]})");
  source->pasteToActiveSettings();
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(source->getSolidColor(), QColor(10, 20, 30));
  EXPECT_TRUE(source->isVisible());
  json hidden = viewBefore["rep_view_implementations"][0];
  hidden["representation_visible"] = false;
  hidden["data_grid_visible"] = true;
  QGuiApplication::clipboard()->setText(QString::fromStdString(hidden.dump()));
  view->pasteToActiveSettings();
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_TRUE(view->activeImplementation()->isDataGridVisible());
  EXPECT_TRUE(view->isVisible());
}
