// Pictures of the outline, points, wireframe and surface data views on real
// files, compared against reviewed baselines.
#include "DataViewTestSupport.hpp"

#include <visualization/VXSurfaceRepPimpl.hpp>

#include "HostDataSupport.hpp"

#include <gtest/gtest.h>

#include <vtkActor.h>
#include <vtkProperty.h>

using namespace dataviewtest;

namespace
{
class DataViewImage : public ::testing::Test
{
protected:
  ScopedSettings m_Settings;
  Scene scene;
};
} // namespace

TEST_F(DataViewImage, OutlineOfBunny)
{
  VXDataSource* source = scene.import(kxtest::DataFile("Bunny.vtp"));
  auto* outline = scene.add<VXOutlineRepPimpl>(source, VXRepresentation::Outline);
  ASSERT_NE(outline, nullptr);
  ASSERT_TRUE(scene.renderer()->HasViewProp(outline->actor()));
  outline->setSolidColor(QColor(255, 200, 0));
  outline->lineSizeEdited("3");
  FrameCamera(scene);
  CompareWithBaseline(scene, "outline_bunny");
}

TEST_F(DataViewImage, PointsOfDiskColouredByTemperature)
{
  VXDataSource* source = scene.import(kxtest::DataFile("disk_out_ref_surface.vtp"));
  auto* points = scene.add(source, VXRepresentation::Points);
  ASSERT_NE(points, nullptr);
  points->setActiveArray("Temp");
  points->pointSizeEdited("3");
  EXPECT_EQ(points->legendTitle(), "Temp");
  FrameCamera(scene);
  CompareWithBaseline(scene, "points_disk_temp");
}

TEST_F(DataViewImage, WireframeOfDiskColouredByVelocityComponentWithLegend)
{
  VXDataSource* source = scene.import(kxtest::DataFile("disk_out_ref_surface.vtp"));
  auto* wireframe = scene.add(source, VXRepresentation::Wireframe);
  ASSERT_NE(wireframe, nullptr);
  wireframe->setActiveArray("V");
  wireframe->setActiveComponent(2);
  wireframe->setScalarBarVisibility(true);
  EXPECT_EQ(wireframe->legendTitle(), "V\n(Comp 2)");
  EXPECT_EQ(wireframe->actor()->GetProperty()->GetRepresentation(), VTK_WIREFRAME);
  FrameCamera(scene);
  CompareWithBaseline(scene, "wireframe_disk_v_comp2_legend");
}

TEST_F(DataViewImage, SurfaceOfDiskColouredByVelocityMagnitudeWithLegendAndGrid)
{
  VXDataSource* source = scene.import(kxtest::DataFile("disk_out_ref_surface.vtp"));
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setActiveArray("V");
  surface->setActiveComponent(-1);
  surface->setScalarBarVisibility(true);
  surface->setDataGridVisibility(true);
  EXPECT_EQ(surface->legendTitle(), "V\nMagnitude");
  ASSERT_NE(surface->gridAxes(), nullptr);
  EXPECT_TRUE(scene.renderer()->HasViewProp(surface->gridAxes()));
  FrameCamera(scene, 20.0, 30.0);
  scene.renderer()->GetActiveCamera()->Zoom(0.8);
  CompareWithBaseline(scene, "surface_disk_v_magnitude_legend_grid");
}

TEST_F(DataViewImage, SurfaceOfBunnyInSolidColour)
{
  VXDataSource* source = scene.import(kxtest::DataFile("Bunny.vtp"));
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setUseSolidColor(true);
  surface->setSolidColor(QColor(80, 200, 120));
  EXPECT_EQ(surface->activeArray(), "");
  EXPECT_FALSE(surface->mapper()->GetScalarVisibility());
  FrameCamera(scene, 0.0, 0.0);
  CompareWithBaseline(scene, "surface_bunny_solid_green");
}

TEST_F(DataViewImage, SurfaceOfHexahedronWithItsSingleMaterialCategory)
{
  RecordedQuestions questions;
  VXDataSource* source = scene.import(kxtest::DataFile("Hexahedron.vtu"));
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setActiveArray("material");
  surface->setInterpretValuesAsCategories(true);
  surface->setScalarBarVisibility(true);
  EXPECT_TRUE(surface->lookupTable()->getColorTransferFunction()->GetIndexedLookup());
  FrameCamera(scene, 35.0, 25.0);
  CompareWithBaseline(scene, "surface_hexahedron_material_single_category");
}

TEST_F(DataViewImage, SurfaceOfHydrogenImageByScalars)
{
  VXDataSource* source = scene.import(kxtest::DataFile("hydrogen.vti"));
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  EXPECT_FALSE(surface->activeArray().isEmpty());
  surface->setScalarBarVisibility(true);
  FrameCamera(scene);
  CompareWithBaseline(scene, "surface_hydrogen_scalars_legend");
}

TEST_F(DataViewImage, SurfaceOfGeneratedMicrostructureWithCategoricalPhases)
{
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 24), "Microstructure");
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(source->baseName(), "Microstructure");
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  surface->setActiveArray("Phases");
  surface->setInterpretValuesAsCategories(true);
  surface->setScalarBarVisibility(true);
  EXPECT_EQ(surface->legendTitle(), "Phases");
  EXPECT_TRUE(surface->lookupTable()->getColorTransferFunction()->GetIndexedLookup());
  FrameCamera(scene);
  CompareWithBaseline(scene, "surface_sample_phases_categories");
}
