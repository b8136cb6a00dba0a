#include "StateTestSupport.hpp"

#include <visualization/VXLookupTable.hpp>
#include <visualization/VXPointsRepPimpl.hpp>

#include <KXComponents/KXColorPresets.hpp>

#include <vtkColorTransferFunction.h>
#include <vtkMapper.h>

using namespace statetest;

namespace
{
/**
 * A state file saved by an earlier build, kept in the source tree. Its source
 * paths are placeholders: "@SAMPLE@" for the generated sample, "@DATA_DIR@"
 * for the folder of real data files.
 */
class StoredFileFixture : public StateFixture
{
protected:
  std::filesystem::path prepare(const std::string& name)
  {
    const std::string stored = ReadBytes(std::filesystem::path(KXVTK_STATE_FIXTURE_DIR) / name);
    EXPECT_FALSE(stored.empty()) << name;
    m_Stored = nlohmann::json::parse(stored);
    const auto sample = pipelinetest::writeSample(m_Dir);
    EXPECT_TRUE(std::filesystem::exists(kxtest::DataFile("Hexahedron.vtu")));
    std::string text = substitute(stored, "@SAMPLE@", sample.string());
    text = substitute(std::move(text), "@DATA_DIR@", kxtest::DataDir().string());
    const auto path = m_Dir / name;
    WriteBytes(path, text);
    return path;
  }

  /** A data view by its name under a source of the given name. */
  VXRepresentation* representation(const QString& source, const QString& name) const
  {
    for (VXDataSource* candidate : dataSources())
    {
      if (candidate->name() != source)
        continue;
      for (VXRepresentation* view : representationsUnder(model()->helperIndex(candidate)))
      {
        if (view->name() == name)
          return view;
      }
    }
    return nullptr;
  }

  VXPointsRepPimpl* settings(VXRepresentation* view, int window) const
  {
    return view != nullptr
             ? dynamic_cast<VXPointsRepPimpl*>(view->implementation(grid()->allViews().at(window)))
             : nullptr;
  }

  /** The colours at both ends of the view's table and its mapper's table are the preset's. */
  static void expectPresetColours(VXPointsRepPimpl* view, const QString& name)
  {
    const auto preset = KXColorPresets::Find(name);
    ASSERT_TRUE(preset.has_value()) << name.toStdString();
    const std::vector<float>& points = preset->rgbPoints;
    ASSERT_GE(points.size(), 8u);
    vtkColorTransferFunction* table = view->lookupTable()->getColorTransferFunction();
    EXPECT_EQ(view->mapper()->GetLookupTable(), table);
    const auto range = view->lookupTable()->getRange();
    double low[3];
    double high[3];
    table->GetColor(range[0], low);
    table->GetColor(range[1], high);
    const std::size_t last = points.size() - 4;
    for (int i = 0; i < 3; ++i)
    {
      EXPECT_NEAR(low[i], points[1 + i], 1e-6) << "low " << i;
      EXPECT_NEAR(high[i], points[last + 1 + i], 1e-6) << "high " << i;
    }
  }

  /** Every data view's implementations in a saved document, in tree order. */
  static void collectImplementations(const nlohmann::json& node, std::vector<nlohmann::json>& out)
  {
    if (node.is_object())
    {
      if (node.contains("rep_view_implementations"))
        out.push_back(node.at("rep_view_implementations"));
      for (const auto& item : node.items())
        collectImplementations(item.value(), out);
    }
    else if (node.is_array())
    {
      for (const auto& item : node)
        collectImplementations(item, out);
    }
  }

  nlohmann::json m_Stored;
};
} // namespace

TEST_F(StoredFileFixture, TwoFilesInTwoViewsLoadAsSaved)
{
  const auto path = prepare("two_files_two_views.vlxstate");
  ASSERT_FALSE(HasFailure());
  m_Module->loadState(qpath(path));
  pump();
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();

  // two views with the stored ids, the first one active
  ASSERT_EQ(grid()->viewCount(), 2);
  EXPECT_EQ(splitIds(), (QList<int>{ 1, 2 }));
  EXPECT_EQ(m_Module->getActiveViewWidget(), grid()->allViews().front());

  // bridges, data sources, data views with their names and where each shows
  EXPECT_EQ(treeLines(), (QStringList{
                           "FileToVXBridge sample.voxelia",
                           "  VXDataSource Microstructure [on,-]",
                           "    VXOutlineRep Outline View [on,on]",
                           "    VXSurfaceRep Surface View [on,-]",
                           "  VXDataSource Grain Boundaries [on,-]",
                           "    VXOutlineRep Outline View 1 [on,on]",
                           "    VXWireframeRep Wireframe View [-,on]",
                           "  VXDataSource Grain Centroids [on,-]",
                           "    VXOutlineRep Outline View 2 [on,on]",
                           "    VXPointsRep Points View [on,-]",
                           "FileToVXBridge Hexahedron.vtu",
                           "  VXDataSource Hexahedron [on,-]",
                           "    VXOutlineRep Outline View 3 [on,off]",
                           "    VXSurfaceRep Surface View 1 [on,-]",
                           "    VXSurfaceRep Red Hexahedra [-,on]",
                         }));
  ASSERT_EQ(m_Module->pipeline()->bridges().size(), 2);
  EXPECT_EQ(m_Module->pipeline()->bridges().at(1)->filePath(),
            qpath(kxtest::DataDir() / "Hexahedron.vtu"));

  // the settings of the data views
  VXPointsRepPimpl* phases = settings(representation("Microstructure", "Surface View"), 0);
  ASSERT_NE(phases, nullptr);
  EXPECT_EQ(phases->activeArray(), "Phases");
  EXPECT_NEAR(phases->opacity(), 0.35, 1e-9);
  VXPointsRepPimpl* centroids = settings(representation("Grain Centroids", "Points View"), 0);
  ASSERT_NE(centroids, nullptr);
  EXPECT_EQ(centroids->pointSize(), 9);
  EXPECT_TRUE(centroids->useSolidColor());
  EXPECT_EQ(centroids->solidColor(), QColor(250, 210, 20));
  VXPointsRepPimpl* red = settings(representation("Hexahedron", "Red Hexahedra"), 1);
  ASSERT_NE(red, nullptr);
  EXPECT_EQ(red->solidColor(), QColor(255, 80, 80));
  VXPointsRepPimpl* green = settings(representation("Hexahedron", "Surface View 1"), 0);
  ASSERT_NE(green, nullptr);
  EXPECT_EQ(green->solidColor(), QColor(40, 200, 90));
  EXPECT_NEAR(green->opacity(), 0.55, 1e-9);
  EXPECT_EQ(settings(representation("Grain Boundaries", "Wireframe View"), 1)->activeArray(),
            "FaceLabels");

  // each view looks through the stored camera, not one fitted to the data
  for (int view = 0; view < 2; ++view)
  {
    const nlohmann::json& stored =
      m_Stored["split_view_state"]["grid_cells"][view]["widget_state"]["view_state"];
    double position[3];
    double focal[3];
    camera(view)->GetPosition(position);
    camera(view)->GetFocalPoint(focal);
    EXPECT_NEAR(position[0], stored["camera_pos_x"].get<double>(), 1e-9) << view;
    EXPECT_NEAR(position[1], stored["camera_pos_y"].get<double>(), 1e-9) << view;
    EXPECT_NEAR(position[2], stored["camera_pos_z"].get<double>(), 1e-9) << view;
    EXPECT_NEAR(focal[0], stored["camera_focal_pt_x"].get<double>(), 1e-9) << view;
    EXPECT_NEAR(camera(view)->GetViewAngle(), stored["camera_view_angle"].get<double>(), 1e-9)
      << view;
  }

  // saved again, it keeps the shape of the stored document
  nlohmann::json saved;
  m_Module->saveState(saved);
  EXPECT_EQ(saved["split_view_state"]["grid_rows"], 1);
  EXPECT_EQ(saved["split_view_state"]["grid_cols"], 2);
  EXPECT_EQ(saved["tree_view_state"].size(), m_Stored["tree_view_state"].size());
  EXPECT_EQ(saved["tree_view_state"][1]["item_children"][0]["item_children"].size(), 3u);
}

TEST_F(StoredFileFixture, DataViewSettingsSaveAsStoredAndAPresetSurvivesLoadAndPaste)
{
  const auto path = prepare("two_files_two_views.vlxstate");
  ASSERT_FALSE(HasFailure());
  m_Module->loadState(qpath(path));
  pump();
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();

  // every data view writes back exactly what was stored
  nlohmann::json saved;
  m_Module->saveState(saved);
  std::vector<nlohmann::json> stored;
  std::vector<nlohmann::json> written;
  collectImplementations(m_Stored, stored);
  collectImplementations(saved, written);
  ASSERT_EQ(written.size(), stored.size());
  for (std::size_t i = 0; i < stored.size(); ++i)
    EXPECT_EQ(written[i].dump(2), stored[i].dump(2)) << "data view " << i;

  // the wireframe was saved with a preset of its own
  VXPointsRepPimpl* faces = settings(representation("Grain Boundaries", "Wireframe View"), 1);
  ASSERT_NE(faces, nullptr);
  EXPECT_FALSE(faces->usingDefaultPreset());
  EXPECT_EQ(faces->colorPreset().name, "Viridis");
  expectPresetColours(faces, "Viridis");

  // pasted onto a data view that shows the default map, the preset comes along
  VXPointsRepPimpl* phases = settings(representation("Microstructure", "Surface View"), 0);
  ASSERT_NE(phases, nullptr);
  expectPresetColours(phases, "Cool to Warm");
  faces->copySettingsToClipboard();
  phases->pasteSettingsFromClipboard();
  EXPECT_FALSE(phases->usingDefaultPreset());
  expectPresetColours(phases, "Viridis");
}
