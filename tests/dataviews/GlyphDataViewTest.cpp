// The glyph data view: how many glyphs each sampling draws and what it copies, the orientation and
// scale choices as the mapper sees them, state and split copies, and arrows of a real grid.
#include "DataViewTestSupport.hpp"

#include <visualization/VXGlyphRep.hpp>
#include <visualization/VXGlyphRepPimpl.hpp>

#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include <vtkConeSource.h>
#include <vtkFloatArray.h>
#include <vtkInformation.h>
#include <vtkPointData.h>
#include <vtkSphereSource.h>

namespace
{
using dataviewtest::RenderView;
using dataviewtest::Scene;
using dataviewtest::ScopedSettings;

/** 100^3 = 1e6 points with a vector "Velocity", a scalar "Speed" and an array no glyph uses. */
vtkSmartPointer<vtkImageData> MillionPoints()
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(100, 100, 100);
  const vtkIdType n = image->GetNumberOfPoints();
  vtkNew<vtkFloatArray> velocity;
  velocity->SetName("Velocity");
  velocity->SetNumberOfComponents(3);
  velocity->SetNumberOfTuples(n);
  vtkNew<vtkFloatArray> speed;
  speed->SetName("Speed");
  speed->SetNumberOfTuples(n);
  vtkNew<vtkFloatArray> unused;
  unused->SetName("Unused");
  unused->SetNumberOfTuples(n);
  for (vtkIdType i = 0; i < n; i++)
  {
    velocity->SetTuple3(i, 1.0, static_cast<double>(i % 7), 0.0);
    speed->SetValue(i, static_cast<float>(i % 5));
    unused->SetValue(i, 0.0f);
  }
  image->GetPointData()->SetVectors(velocity);
  image->GetPointData()->SetScalars(speed);
  image->GetPointData()->AddArray(unused);
  return image;
}

/** The array name the mapper reads for one of its inputs (orientation, scale). */
std::string ArrayName(vtkGlyph3DMapper* mapper, int which)
{
  const char* name = mapper->GetInputArrayInformation(which)->Get(vtkDataObject::FIELD_NAME());
  return name != nullptr ? name : "";
}

/** The algorithm that makes the glyph's shape. */
vtkAlgorithm* Shape(vtkGlyph3DMapper* mapper)
{
  return mapper->GetInputConnection(1, 0)->GetProducer();
}
} // namespace

TEST(GlyphDataView, SamplingDrawsEveryNthPointARandomSubsetOrAllWithoutCopyingMore)
{
  ScopedSettings settings;
  Scene scene;
  vtkSmartPointer<vtkImageData> data = MillionPoints();
  auto* glyphs = scene.add<VXGlyphRepPimpl>(scene.source(data), VXRepresentation::Glyph);
  ASSERT_NE(glyphs, nullptr);
  EXPECT_EQ(scene.lastRep->typeName(), "VXGlyphRep");
  EXPECT_EQ(scene.lastRep->defaultName(), "Glyph View");

  // a fresh data view thins a large data set to a uniform random subset of 5000
  EXPECT_EQ(glyphs->samplingMode(), VXGlyphRepPimpl::UniformRandomSubset);
  EXPECT_EQ(glyphs->glyphCount(), 5000);

  glyphs->settingsWidget();
  glyphs->control<QComboBox>("m_SamplingCombo")->setCurrentIndex(VXGlyphRepPimpl::EveryNthPoint);
  glyphs->control<QSpinBox>("m_StrideSpinBox")->setValue(10);
  EXPECT_FALSE(glyphs->control<QSpinBox>("m_MaximumCountSpinBox")->isEnabled());
  EXPECT_EQ(glyphs->glyphCount(), 100000);
  // the mask copied the sampled tuples of the arrays in use, nothing else
  vtkPointData* sampled = glyphs->glyphedDataSet()->GetPointData();
  EXPECT_EQ(sampled->GetNumberOfArrays(), 2);
  EXPECT_EQ(sampled->GetArray("Velocity")->GetNumberOfTuples(), 100000);
  EXPECT_EQ(sampled->GetArray("Speed")->GetNumberOfTuples(), 100000);
  EXPECT_EQ(sampled->GetArray("Unused"), nullptr);
  // point 10 is the second glyph
  EXPECT_EQ(sampled->GetArray("Velocity")->GetComponent(1, 1), 10 % 7);

  glyphs->setSamplingMode(VXGlyphRepPimpl::UniformRandomSubset);
  glyphs->control<QSpinBox>("m_MaximumCountSpinBox")->setValue(1234);
  EXPECT_EQ(glyphs->glyphCount(), 1234);

  // a cap above the point count, and all points: the mapper reads the parent's arrays themselves
  for (const auto& [mode, cap] : { std::pair{ VXGlyphRepPimpl::UniformRandomSubset, 2000000 },
                                   std::pair{ VXGlyphRepPimpl::AllPoints, 10 } })
  {
    glyphs->setMaximumCount(cap);
    glyphs->setSamplingMode(mode);
    EXPECT_EQ(glyphs->glyphCount(), 1000000);
    EXPECT_EQ(glyphs->glyphedDataSet()->GetPointData()->GetArray("Velocity"),
              data->GetPointData()->GetArray("Velocity"));
    EXPECT_EQ(glyphs->glyphedDataSet()->GetPointData()->GetArray("Unused"), nullptr);
  }
  // every Nth with N = 1 is every point
  glyphs->setSamplingMode(VXGlyphRepPimpl::EveryNthPoint);
  glyphs->setStride(0);
  EXPECT_EQ(glyphs->stride(), 1);
  EXPECT_EQ(glyphs->glyphCount(), 1000000);
  glyphs->setStride(10);
}

TEST(GlyphDataView, OrientationAndScaleChoicesReachTheMapper)
{
  ScopedSettings settings;
  Scene scene;
  auto* glyphs = scene.add<VXGlyphRepPimpl>(scene.import(kxtest::DataFile("StructuredGrid.vts")),
                                            VXRepresentation::Glyph);
  ASSERT_NE(glyphs, nullptr);
  vtkGlyph3DMapper* mapper = glyphs->glyphMapper();
  double b[6];
  glyphs->inputDataSet()->GetBounds(b);
  const double extent = std::max({ b[1] - b[0], b[3] - b[2], b[5] - b[4] });

  // the data's vectors orient, nothing scales, the glyphs are a tenth of the data's extent
  EXPECT_EQ(glyphs->glyphCount(), 648);
  EXPECT_EQ(glyphs->orientationArray(), "Momentum");
  EXPECT_TRUE(mapper->GetOrient());
  EXPECT_EQ(ArrayName(mapper, vtkGlyph3DMapper::ORIENTATION), "Momentum");
  EXPECT_EQ(mapper->GetScaleMode(), vtkGlyph3DMapper::NO_DATA_SCALING);
  EXPECT_DOUBLE_EQ(mapper->GetScaleFactor(), 0.1 * extent);
  EXPECT_EQ(glyphs->activeArray(), "Density");
  EXPECT_TRUE(mapper->GetScalarVisibility());

  glyphs->settingsWidget();
  auto* orientation = glyphs->control<QComboBox>("m_OrientationCombo");
  auto* scaleMode = glyphs->control<QComboBox>("m_ScaleModeCombo");
  auto* scaleArray = glyphs->control<QComboBox>("m_ScaleArrayCombo");
  EXPECT_EQ(orientation->count(), 2);
  EXPECT_EQ(orientation->itemText(0), VXGlyphRepPimpl::k_NoOrientation);
  EXPECT_FALSE(scaleArray->isEnabled());

  // by the vector's magnitude: the longest arrow stays a tenth of the extent
  scaleMode->setCurrentIndex(VXGlyphRepPimpl::ScaleByVectorMagnitude);
  EXPECT_EQ(glyphs->scaleArray(), "Momentum");
  EXPECT_EQ(mapper->GetScaleMode(), vtkGlyph3DMapper::SCALE_BY_MAGNITUDE);
  EXPECT_EQ(ArrayName(mapper, vtkGlyph3DMapper::SCALE), "Momentum");
  double magnitudes[2];
  glyphs->inputDataSet()->GetPointData()->GetArray("Momentum")->GetFiniteRange(magnitudes, -1);
  EXPECT_NEAR(magnitudes[1], 382.3, 0.1);
  EXPECT_DOUBLE_EQ(mapper->GetScaleFactor(), 0.1 * extent / magnitudes[1]);

  // by a scalar: the scalar arrays are offered
  scaleMode->setCurrentIndex(VXGlyphRepPimpl::ScaleByScalar);
  EXPECT_EQ(scaleArray->count(), 2);
  scaleArray->setCurrentIndex(scaleArray->findText("Density"));
  EXPECT_EQ(ArrayName(mapper, vtkGlyph3DMapper::SCALE), "Density");
  EXPECT_NEAR(mapper->GetScaleFactor(), 0.1 * extent / 0.710, 1e-3 * extent);

  // a factor typed by the user stays when the array changes; Reset takes the data's again
  glyphs->control<QDoubleSpinBox>("m_ScaleFactorSpinBox")->setValue(2.5);
  scaleMode->setCurrentIndex(VXGlyphRepPimpl::ScaleOff);
  EXPECT_DOUBLE_EQ(mapper->GetScaleFactor(), 2.5);
  EXPECT_FALSE(glyphs->scaleFactorFromData());
  glyphs->control<QPushButton>("resetScaleFactorButton")->click();
  EXPECT_DOUBLE_EQ(mapper->GetScaleFactor(), 0.1 * extent);

  orientation->setCurrentIndex(0);
  EXPECT_TRUE(glyphs->orientationArray().isEmpty());
  EXPECT_FALSE(mapper->GetOrient());
  glyphs->control<QComboBox>("m_GlyphTypeCombo")->setCurrentText("Sphere");
  EXPECT_EQ(glyphs->glyphType(), VXGlyphRepPimpl::Sphere);
  EXPECT_TRUE(vtkSphereSource::SafeDownCast(Shape(mapper)));
}

TEST(GlyphDataView, StateRoundTripsEveryKeyAndSplitsCopyThenStayApart)
{
  ScopedSettings settings;
  Scene scene;
  VXDataSource* source = scene.source(MillionPoints());
  auto* glyphs = scene.add<VXGlyphRepPimpl>(source, VXRepresentation::Glyph);
  ASSERT_NE(glyphs, nullptr);
  VXRepresentation* rep = scene.lastRep;
  glyphs->setGlyphType(VXGlyphRepPimpl::Cone);
  glyphs->setScaleMode(VXGlyphRepPimpl::ScaleByScalar);
  glyphs->setScaleFactor(0.25);
  glyphs->setOrientationArray(VXGlyphRepPimpl::k_NoOrientation);
  glyphs->setSamplingMode(VXGlyphRepPimpl::EveryNthPoint);
  glyphs->setStride(40);
  glyphs->setMaximumCount(777);
  glyphs->setSolidColor(QColor(10, 20, 30));
  glyphs->setOpacity(40);

  nlohmann::json state;
  glyphs->write(state);
  EXPECT_EQ(state.at("glyph_type"), 1);
  EXPECT_EQ(state.at("glyph_orientation_array"), "");
  EXPECT_EQ(state.at("glyph_scale_mode"), 1);
  EXPECT_EQ(state.at("glyph_scale_array"), "Speed");
  EXPECT_EQ(state.at("glyph_scale_factor"), 0.25);
  EXPECT_EQ(state.at("glyph_sampling_mode"), 1);
  EXPECT_EQ(state.at("glyph_stride"), 40);
  EXPECT_EQ(state.at("glyph_maximum_count"), 777);
  EXPECT_EQ(state.at("opacity_percent"), 40.0);
  EXPECT_EQ(state.at("active_array"), "Speed");

  auto* other = scene.add<VXGlyphRepPimpl>(source, VXRepresentation::Glyph);
  ASSERT_NE(other, nullptr);
  other->read(state);
  nlohmann::json again;
  other->write(again);
  state.erase("rep_split_id");
  again.erase("rep_split_id");
  EXPECT_EQ(again, state);
  EXPECT_EQ(other->glyphCount(), 25000);
  EXPECT_EQ(other->glyphMapper()->GetScaleFactor(), 0.25);
  EXPECT_FALSE(other->glyphMapper()->GetOrient());
  EXPECT_TRUE(vtkConeSource::SafeDownCast(Shape(other->glyphMapper())));

  // a split copies every setting; afterwards the two are apart
  RenderView second;
  second.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&second));
  scene.view->notifyViewWidgetCreated(&second);
  auto* copy = dynamic_cast<VXGlyphRepPimpl*>(rep->implementation(&second));
  ASSERT_NE(copy, nullptr);
  nlohmann::json copied;
  copy->write(copied);
  copied.erase("rep_split_id");
  EXPECT_EQ(copied, state);
  EXPECT_EQ(copy->glyphCount(), 25000);
  EXPECT_TRUE(second.getVisualizationWidget()->getRenderer()->HasViewProp(copy->actor()));
  copy->setStride(100);
  copy->setGlyphType(VXGlyphRepPimpl::Line);
  EXPECT_EQ(copy->glyphCount(), 10000);
  EXPECT_EQ(glyphs->glyphCount(), 25000);
  EXPECT_EQ(glyphs->glyphType(), VXGlyphRepPimpl::Cone);
  rep->removeModuleInstance(&second);
}

TEST(GlyphDataView, MomentumArrowsOfTheStructuredGrid)
{
  ScopedSettings settings;
  Scene scene;
  auto* glyphs = scene.add<VXGlyphRepPimpl>(scene.import(kxtest::DataFile("StructuredGrid.vts")),
                                            VXRepresentation::Glyph);
  ASSERT_NE(glyphs, nullptr);
  // arrows of one size along the momentum, coloured by density
  EXPECT_EQ(glyphs->glyphType(), VXGlyphRepPimpl::Arrow);
  EXPECT_EQ(glyphs->orientationArray(), "Momentum");
  dataviewtest::FrameCamera(scene);
  dataviewtest::CompareWithBaseline(scene, "glyph_structuredgrid_momentum");
}
