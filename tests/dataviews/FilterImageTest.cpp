// Pictures of the visual filters on real data: clips of the hydrogen orbital by a plane and by a
// box, a slice of the grain map in its grain colours, one phase of the sample by a threshold and
// a clip with a threshold under it, compared against reviewed baselines.
#include "DataViewTestSupport.hpp"
#include "HostDataSupport.hpp"

#include <visualization/VXBox.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXFSlice.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXPlane.hpp>

#include <gtest/gtest.h>

#include <vtkCellData.h>
#include <vtkCutter.h>
#include <vtkPolyData.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkUnstructuredGrid.h>

using namespace dataviewtest;

namespace
{
class FilterImage : public ::testing::Test
{
protected:
  /** Adds @p filter under @p parent as the tree's menu does, and hides what @p parent shows. */
  template<typename FilterT>
  FilterT* add(VXCoreObject* parent, FilterT* filter)
  {
    EXPECT_TRUE(scene.pipeline->addFilter(parent, filter));
    for (VXRepresentation* shown :
         parent->findChildren<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly))
      shown->setVisibility(false);
    return filter;
  }

  /** The data view that the first apply of @p filter added, in the scene's view. */
  VXPointsRepPimpl* viewOf(VXFilter* filter)
  {
    const auto views =
      filter->findChildren<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly);
    EXPECT_EQ(views.size(), 1);
    return views.isEmpty()
             ? nullptr
             : dynamic_cast<VXPointsRepPimpl*>(views.first()->implementation(scene.view.get()));
  }

  /** Selects the record of @p name on @p threshold and keeps [@p minimum, @p maximum]. */
  static void keep(VXFThreshold* threshold, const QString& name, double minimum, double maximum)
  {
    const auto& infos = threshold->activeArrayInfos();
    for (size_t i = 0; i < infos.size(); ++i)
    {
      if (infos[i].displayName == name)
        threshold->setActiveArrayInfoIndex(i);
    }
    threshold->setUserRange(minimum, maximum);
  }

  ScopedSettings m_Settings;
  // the grain map has more grains than a colour table holds: the question is answered
  RecordedQuestions m_Questions;
  Scene scene;
};
} // namespace

TEST_F(FilterImage, HydrogenClippedByAPlaneAndByABox)
{
  VXDataSource* source = scene.import(kxtest::DataFile("hydrogen.vti"));
  ASSERT_NE(source, nullptr);
  auto* clip = add(source, new VXFClip());
  clip->setShowClipTool(false);
  // the plane through the centre across y keeps the half behind it: the orbital's cross-section
  clip->plane()->setValues({ 0.0, 1.0, 0.0 }, { 31.5, 31.5, 31.5 });
  clip->applyFilter();
  VXPointsRepPimpl* surface = viewOf(clip);
  ASSERT_NE(surface, nullptr);
  surface->setActiveArray("probability_density");
  EXPECT_EQ(surface->legendTitle(), "probability_density");
  double bounds[6];
  clip->clipFilter()->GetOutput()->GetBounds(bounds);
  EXPECT_DOUBLE_EQ(bounds[3], 31.5);
  FrameCamera(scene, 30.0, 35.0);
  CompareWithBaseline(scene, "filter_clip_plane_hydrogen");

  // a box over the near upper corner, not inverted, takes that corner out
  clip->setClipType(VXFClip::ClipType::Box);
  clip->setInverted(false);
  clip->box()->setValues({ 16.0, 16.0, 16.0 }, { 0.0, 0.0, 0.0 }, { 0.5, 0.5, 0.5 });
  clip->applyFilter();
  clip->clipFilter()->GetOutput()->GetBounds(bounds);
  EXPECT_EQ(
    (std::array<double, 6>{ bounds[0], bounds[1], bounds[2], bounds[3], bounds[4], bounds[5] }),
    (std::array<double, 6>{ 0, 63, 0, 63, 0, 63 }));
  // the corner's cells are gone: fewer cells than the 63^3 of the input
  EXPECT_LT(clip->clipFilter()->GetOutput()->GetNumberOfCells(), 63 * 63 * 63 - 15 * 15 * 15);
  FrameCamera(scene, 30.0, 35.0);
  CompareWithBaseline(scene, "filter_clip_box_hydrogen");
}

TEST_F(FilterImage, GrainMapSlicedThresholdedAndClippedThenThresholded)
{
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 16), "Microstructure");
  ASSERT_NE(source, nullptr);

  // a slice across z through the middle, in the grains' own colours
  auto* slice = add(source, new VXFSlice());
  slice->setShowPlaneTool(false);
  slice->plane()->setValues({ 0.0, 0.0, 1.0 }, { 8.0, 8.0, 8.5 });
  slice->applyFilter();
  VXPointsRepPimpl* cut = viewOf(slice);
  ASSERT_NE(cut, nullptr);
  cut->setActiveArray("FeatureIds");
  cut->setInterpretValuesAsCategories(true);
  EXPECT_TRUE(cut->lookupTable()->getColorTransferFunction()->GetIndexedLookup());
  vtkPolyData* polygons = slice->cutter()->GetOutput();
  EXPECT_GT(polygons->GetNumberOfPolys(), 0);
  ASSERT_NE(polygons->GetCellData()->GetArray("FeatureIds"), nullptr);
  FrameCamera(scene, 0.0, 0.0);
  CompareWithBaseline(scene, "filter_slice_sample_feature_ids");
  slice->setVisibility(false);
  cut->setVisibility(false);

  // the threshold keeps the cells of phase 2 only
  auto* threshold = add(source, new VXFThreshold());
  keep(threshold, "Phases", 2.0, 2.0);
  threshold->applyFilter();
  VXPointsRepPimpl* phase = viewOf(threshold);
  ASSERT_NE(phase, nullptr);
  phase->setActiveArray("Phases");
  vtkDataArray* kept =
    vtkDataSet::SafeDownCast(threshold->outputPort()->GetProducer()->GetOutputDataObject(0))
      ->GetCellData()
      ->GetArray("Phases");
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(kept->GetRange()[0], 2.0);
  EXPECT_EQ(kept->GetRange()[1], 2.0);
  FrameCamera(scene);
  CompareWithBaseline(scene, "filter_threshold_sample_phase_2");
  phase->setVisibility(false);

  // a clip with a threshold of phase 1 under it: the clip's own view goes, the chain's end shows
  auto* clip = add(source, new VXFClip());
  clip->setShowClipTool(false);
  clip->plane()->setValues({ 1.0, 0.0, 0.0 }, { 8.0, 8.0, 8.0 });
  clip->applyFilter();
  auto* chained = add(clip, new VXFThreshold());
  keep(chained, "Phases", 1.0, 1.0);
  chained->applyFilter();
  VXPointsRepPimpl* end = viewOf(chained);
  ASSERT_NE(end, nullptr);
  end->setActiveArray("FeatureIds");
  double bounds[6];
  vtkDataSet::SafeDownCast(chained->outputPort()->GetProducer()->GetOutputDataObject(0))
    ->GetBounds(bounds);
  EXPECT_LE(bounds[1], 8.0);
  FrameCamera(scene);
  CompareWithBaseline(scene, "filter_chain_clip_threshold_sample");
}
