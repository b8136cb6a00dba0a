#include "StateTestSupport.hpp"

#include <visualization/VXFClip.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXPlane.hpp>
#include <visualization/VXPointsRepPimpl.hpp>
#include <visualization/VXSurfaceRepPimpl.hpp>

using namespace statetest;

namespace
{
class RoundTripFixture : public StateFixture
{
protected:
  /** Adds a data view of the type under the source, shown in the active view, and returns its
   * settings there. */
  VXPointsRepPimpl* addView(const QModelIndex& source, VXRepresentation::Type type)
  {
    const QModelIndex added = model()->addRepresentation(source, type);
    VXRepresentation* representation = model()->getRepresentation(added);
    if (representation == nullptr)
      return nullptr;
    return dynamic_cast<VXPointsRepPimpl*>(
      representation->implementation(m_Module->getActiveViewWidget()));
  }

  /**
   * Two views side by side with linked cameras; the sample's three geometries
   * and the hexahedra, with data views of non-default settings in both views.
   */
  void buildScene()
  {
    VXVisualizationModuleWidget* module = m_Module.get();
    // no data source gets a data view of its own: the test adds each one
    m_SavedDefault = VXPipeline::getDefaultRepType();
    VXPipeline::setDefaultRepType(VXRepresentation::None);
    const auto sample = pipelinetest::writeSample(m_Dir);
    const auto hexahedra = kxtest::DataFile("Hexahedron.vtu");
    ASSERT_TRUE(std::filesystem::exists(hexahedra));
    module->pipeline()->importFile(qpath(sample));
    module->pipeline()->importFile(qpath(hexahedra));
    pump();
    ASSERT_EQ(module->pipeline()->bridges().size(), 2);
    ASSERT_EQ(dataSources().size(), 4);

    VXAbstractViewWidget* left = grid()->allViews().front();
    grid()->addColumn(left);
    pump();
    ASSERT_EQ(grid()->viewCount(), 2);
    VXAbstractViewWidget* right = grid()->allViews().at(1);

    // left view: the image coloured by phases, the centroids as big points, the hexahedra
    // see-through and solid
    left->mousePressed();
    pump();
    ASSERT_EQ(module->getActiveViewWidget(), left);
    VXPointsRepPimpl* image = addView(sourceNamed("Microstructure"), VXRepresentation::Surface);
    ASSERT_NE(image, nullptr);
    image->setActiveArray("Phases");
    image->setOpacity(35);
    VXPointsRepPimpl* centroids = addView(sourceNamed("Grain Centroids"), VXRepresentation::Points);
    ASSERT_NE(centroids, nullptr);
    centroids->pointSizeEdited("9");
    centroids->setUseSolidColor(true);
    centroids->setSolidColor(QColor(250, 210, 20));
    VXPointsRepPimpl* hexahedron =
      addView(model()->helperIndex(module->pipeline()->bridges().at(1)->dataSources().front()),
              VXRepresentation::Surface);
    ASSERT_NE(hexahedron, nullptr);
    hexahedron->setUseSolidColor(true);
    hexahedron->setSolidColor(QColor(40, 200, 90));
    hexahedron->setOpacity(55);

    // right view: the boundaries as a wireframe coloured by face labels, the hexahedra in red
    right->mousePressed();
    pump();
    ASSERT_EQ(module->getActiveViewWidget(), right);
    VXPointsRepPimpl* boundaries =
      addView(sourceNamed("Grain Boundaries"), VXRepresentation::Wireframe);
    ASSERT_NE(boundaries, nullptr);
    boundaries->setActiveArray("FaceLabels");
    VXPointsRepPimpl* redHexahedron =
      addView(model()->helperIndex(module->pipeline()->bridges().at(1)->dataSources().front()),
              VXRepresentation::Surface);
    ASSERT_NE(redHexahedron, nullptr);
    redHexahedron->setUseSolidColor(true);
    redHexahedron->setSolidColor(QColor(255, 80, 80));

    // the left view is active when saved: it shows every data source
    left->mousePressed();
    pump();

    // one camera for both, turned away from the default
    module->linkAllViews();
    left->getVisualizationWidget()->getRenderer()->ResetCamera();
    camera(0)->Azimuth(35.0);
    camera(0)->Elevation(25.0);
    camera(0)->OrthogonalizeViewUp();
    left->getVisualizationWidget()->getRenderer()->ResetCameraClippingRange();
    module->renderAllViews();
    pump();
  }

  void TearDown() override
  {
    VXPipeline::setDefaultRepType(m_SavedDefault);
    StateFixture::TearDown();
  }

  VXRepresentation::Type m_SavedDefault = VXRepresentation::None;
};

/**
 * Equal documents, where numbers may differ in their last bits: a camera's
 * view-up is normalised again when it is read.
 */
bool sameDocument(const nlohmann::json& a, const nlohmann::json& b)
{
  if (a.is_number() && b.is_number())
  {
    // a parsed count is unsigned, the same count in memory signed
    if (!a.is_number_float() && !b.is_number_float())
      return a == b;
    const double x = a.get<double>();
    const double y = b.get<double>();
    return std::abs(x - y) <= 1e-12 * std::max({ 1.0, std::abs(x), std::abs(y) });
  }
  if (a.type() != b.type() || a.size() != b.size())
    return false;
  if (a.is_object())
  {
    for (auto iter = a.begin(); iter != a.end(); ++iter)
    {
      if (!b.contains(iter.key()) || !sameDocument(iter.value(), b.at(iter.key())))
        return false;
    }
    return true;
  }
  if (a.is_array())
  {
    for (std::size_t i = 0; i < a.size(); ++i)
    {
      if (!sameDocument(a[i], b[i]))
        return false;
    }
    return true;
  }
  return a == b;
}

/** Where two documents differ, one JSON pointer a line. */
std::string differingPaths(const nlohmann::json& a, const nlohmann::json& b)
{
  std::string paths;
  for (const auto& op : nlohmann::json::diff(a, b))
    paths += op["op"].get<std::string>() + " " + op["path"].get<std::string>() + "\n";
  return paths;
}

QImage settledImage(VXVisualizationModuleWidget* module)
{
  module->renderAllViews();
  pump();
  return module->grabAllViewsImage();
}
} // namespace

TEST_F(RoundTripFixture, SavedSceneLoadsIntoAFreshModuleAndSavesTheSameDocumentAndPicture)
{
  buildScene();
  ASSERT_FALSE(HasFatalFailure());
  const QStringList linesBefore = treeLines();
  const QList<int> idsBefore = splitIds();
  const QImage before = settledImage(m_Module.get());

  // through the dialog into a file, as a user saves
  const auto path = m_Dir / "scene.vlxstate";
  m_Dialogs.saveAnswer = qpath(path);
  m_Module->saveState();
  ASSERT_EQ(m_Dialogs.saveTitles.back(), "Save State File");
  EXPECT_EQ(m_Dialogs.saveFilters.back(), "VOXELIA-KX State File (*.vlxstate)");
  const std::string written = ReadBytes(path);
  const nlohmann::json first = nlohmann::json::parse(written);
  // indent of two blanks
  EXPECT_EQ(written, first.dump(2, ' '));
  ASSERT_TRUE(first.contains("split_view_state"));
  ASSERT_EQ(first["tree_view_state"].size(), 2u);
  EXPECT_EQ(first["tree_view_state"][0]["item_type"], "FileToVXBridge");
  EXPECT_EQ(first["tree_view_state"][1]["item_type"], "FileToVXBridge");

  // a fresh module reads it; the model was empty, so nothing is asked
  freshModule();
  output.clear();
  m_Module->loadState(qpath(path));
  pump();
  EXPECT_TRUE(m_Dialogs.asked.empty());
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(treeLines(), linesBefore);
  EXPECT_EQ(splitIds(), idsBefore);
  ASSERT_EQ(grid()->viewCount(), 2);
  // the views were linked when saved: they load with the same camera values
  double a[3];
  double b[3];
  camera(0)->GetPosition(a);
  camera(1)->GetPosition(b);
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(a[i], b[i], 1e-9);

  nlohmann::json second;
  m_Module->saveState(second);
  EXPECT_TRUE(sameDocument(second, first)) << differingPaths(first, second);

  const QImage after = settledImage(m_Module.get());
  ASSERT_EQ(after.size(), before.size());
  EXPECT_LT(RmsDifference(before, after), 2.0);
  compareWithBaseline(after, "round_trip_two_views");
}

TEST_F(RoundTripFixture, FilterChainWithDataViewsInTwoViewsLoadsAsSaved)
{
  VXVisualizationModuleWidget* module = m_Module.get();
  m_SavedDefault = VXPipeline::getDefaultRepType();
  VXPipeline::setDefaultRepType(VXRepresentation::None);
  module->pipeline()->importFile(qpath(pipelinetest::writeSample(m_Dir)));
  pump();
  VXAbstractViewWidget* left = grid()->allViews().front();
  grid()->addColumn(left);
  pump();
  ASSERT_EQ(grid()->viewCount(), 2);
  VXAbstractViewWidget* right = grid()->allViews().at(1);
  left->mousePressed();
  pump();

  // a clip across y, and under it a threshold that keeps phase 1, each shown in the left view
  auto* clip = new VXFClip();
  const QModelIndex clipIndex = model()->addFilter(sourceNamed("Microstructure"), clip);
  ASSERT_TRUE(clipIndex.isValid());
  clip->setShowClipTool(false);
  clip->plane()->setValues({ 0.0, 1.0, 0.0 }, { 6.0, 6.0, 6.0 });
  clip->applyFilter();
  auto* threshold = new VXFThreshold();
  const QModelIndex thresholdIndex = model()->addFilter(clipIndex, threshold);
  ASSERT_TRUE(thresholdIndex.isValid());
  const auto& infos = threshold->activeArrayInfos();
  for (size_t i = 0; i < infos.size(); ++i)
  {
    if (infos[i].displayName == "Phases")
      threshold->setActiveArrayInfoIndex(i);
  }
  threshold->setUserRange(1.0, 1.0);
  threshold->applyFilter();
  auto* leftView = dynamic_cast<VXPointsRepPimpl*>(
    threshold->findChild<VXRepresentation*>()->implementation(left));
  ASSERT_NE(leftView, nullptr);
  leftView->setActiveArray("FeatureIds");
  leftView->setTranslation({ 0.0, 3.0, 0.0 });
  clip->findChild<VXRepresentation*>()->setVisibility(false);

  // the right view shows the threshold's result as a wireframe of its own
  right->mousePressed();
  pump();
  VXPointsRepPimpl* rightView = addView(thresholdIndex, VXRepresentation::Wireframe);
  ASSERT_NE(rightView, nullptr);
  rightView->setActiveArray("Phases");
  left->mousePressed();
  pump();
  // both views look at the whole scene from the same oblique side
  for (int view = 0; view < 2; ++view)
  {
    vtkRenderer* renderer = grid()->allViews().at(view)->getVisualizationWidget()->getRenderer();
    renderer->ResetCamera();
    camera(view)->Azimuth(35.0);
    camera(view)->Elevation(25.0);
    camera(view)->OrthogonalizeViewUp();
    renderer->ResetCamera();
  }
  const QStringList linesBefore = treeLines();
  const QImage before = settledImage(module);

  const auto path = m_Dir / "chain.vlxstate";
  m_Dialogs.saveAnswer = qpath(path);
  module->saveState();
  const nlohmann::json first = nlohmann::json::parse(ReadBytes(path));

  freshModule();
  m_Module->loadState(qpath(path));
  pump();
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(treeLines(), linesBefore);
  VXFThreshold* loaded = m_Module->pipeline()->findChild<VXFThreshold*>();
  ASSERT_NE(loaded, nullptr);
  auto* loadedClip = qobject_cast<VXFClip*>(loaded->parent());
  ASSERT_NE(loadedClip, nullptr);
  EXPECT_EQ(loadedClip->plane()->getNormal(), (std::array<double, 3>{ 0.0, 1.0, 0.0 }));
  EXPECT_EQ(loaded->activeArrayInfos().at(loaded->activeArrayInfoIndex()).displayName, "Phases");
  EXPECT_EQ(loaded->activeArrayInfos().at(loaded->activeArrayInfoIndex()).userMax, 1.0);
  // both views of the threshold's data view come back, each with its own settings
  const auto splits = loaded->findChildren<VXRepresentation*>();
  ASSERT_EQ(splits.size(), 2);
  nlohmann::json second;
  m_Module->saveState(second);
  EXPECT_TRUE(sameDocument(second, first)) << differingPaths(first, second);
  const QImage after = settledImage(m_Module.get());
  ASSERT_EQ(after.size(), before.size());
  EXPECT_LT(RmsDifference(before, after), 2.0);
  compareWithBaseline(after, "round_trip_filter_chain_two_views");
}
