// The quad view's control panel, module widget and window, driven by clicks and
// keys: each control changes the view's settings record, and the window opens
// an image geometry of the pipeline and lets it go when the pipeline drops it.
#include "HostDataSupport.hpp"
#include "QuadViewTestSupport.hpp"
#include "VXTestSupport.hpp"

#include <quadview/VXGeometryTreeWidget.hpp>
#include <quadview/VXQuadView.hpp>
#include <quadview/VXQuadViewControlWidget.hpp>
#include <quadview/VXQuadViewModuleWidget.hpp>
#include <quadview/VXQuadViewWindow.hpp>
#include <visualization/QtWidgets/VXHistogramOpacityWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <QtGui/QAction>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <vtkRendererCollection.h>
#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkFloatArray.h>
#include <vtkTable.h>

#include <gtest/gtest.h>

namespace
{
template<class T>
T* control(QWidget* panel, const char* name)
{
  auto* widget = panel->findChild<T*>(name);
  EXPECT_NE(widget, nullptr) << name;
  return widget;
}

/** Voxels counted by a histogram table's count column. */
double voxelsCounted(vtkTable* histogram, int column)
{
  double sum = 0.0;
  auto* counts =
    histogram != nullptr ? vtkDataArray::SafeDownCast(histogram->GetColumn(column)) : nullptr;
  for (vtkIdType i = 0; counts != nullptr && i < counts->GetNumberOfTuples(); ++i)
    sum += counts->GetTuple1(i);
  return sum;
}

void click(QWidget* panel, const char* name)
{
  QWidget* widget = control<QWidget>(panel, name);
  QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2));
}
} // namespace

TEST(QuadViewControls, EveryControlChangesTheViewsRecord)
{
  kxtest::ScopedSettings settings;
  VXQuadViewModuleWidget module;
  module.resize(1400, 900);
  module.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&module));
  auto image =
    kxtest::hostCellImage(12, 10, 8, 1, [](int i, int, int, int) { return float(i); }, "values");
  vtkNew<vtkFloatArray> vectors;
  vectors->SetName("vectors");
  vectors->SetNumberOfComponents(3);
  vectors->SetNumberOfTuples(12 * 10 * 8);
  vectors->Fill(1.0);
  image->GetCellData()->AddArray(vectors);
  VXQuadView* view = module.quadView();
  view->setGeometry(nullptr, image);
  kxtest::pump();
  ASSERT_TRUE(view->isInitialized());
  QWidget* panel = module.controlWidget();
  const VXQuadViewControls& record = view->getControls();

  auto* arrays = control<QComboBox>(panel, "arrayCombo");
  ASSERT_EQ(arrays->count(), 2);
  EXPECT_EQ(arrays->currentText(), "values");
  // the panel shows the view's histogram: 960 voxels less the 80 at the maximum, whose top
  // edge is exclusive
  EXPECT_EQ(voxelsCounted(module.controlWidget()->opacityEditor()->histogramTable(), 1), 880.0);

  click(panel, "resliceCheck");
  EXPECT_TRUE(record.m_ResliceMode);
  EXPECT_EQ(view->getViewer(0)->GetResliceMode(), 1);
  click(panel, "thickCheck");
  EXPECT_TRUE(record.m_ThickMode);
  QTest::keyClick(control<QComboBox>(panel, "blendCombo"), Qt::Key_Down); // maximum to mean
  EXPECT_TRUE(record.m_MeanBlend);
  EXPECT_FALSE(record.m_MaxBlend);
  click(panel, "colorLegendCheck");
  EXPECT_FALSE(record.m_ShowColorLegend);
  click(panel, "annotationsCheck");
  EXPECT_FALSE(record.m_ShowAnnotations);
  click(panel, "planeWidgetsCheck");
  EXPECT_TRUE(record.m_ShowPlaneWidgets);
  auto* units = control<QLineEdit>(panel, "lengthUnitsEdit");
  EXPECT_EQ(units->text(), "mm");
  units->selectAll();
  QTest::keyClicks(units, "um");
  QTest::keyClick(units, Qt::Key_Return);
  EXPECT_EQ(record.m_LengthUnits, "um");

  click(panel, "shadingCheck");
  EXPECT_TRUE(record.m_ShadingEnabled);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "ambientSpin"), Qt::Key_Up);
  EXPECT_DOUBLE_EQ(record.m_Ambient, 0.25);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "diffuseSpin"), Qt::Key_Down);
  EXPECT_DOUBLE_EQ(record.m_Diffuse, 0.75);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "specularSpin"), Qt::Key_Up);
  EXPECT_DOUBLE_EQ(record.m_Specular, 0.25);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "specularPowerSpin"), Qt::Key_Up);
  EXPECT_DOUBLE_EQ(record.m_SpecularPower, 21.0);
  click(panel, "lightFollowsCameraCheck");
  EXPECT_FALSE(record.m_LightFollowsCamera);
  click(panel, "ssaoCheck");
  EXPECT_TRUE(record.m_SSAOEnabled);
  // ambient occlusion works through the shading: without it VTK refuses the volume each frame
  vtkRenderer* volumeRenderer = view->getVolumeRenderWindow()->GetRenderers()->GetFirstRenderer();
  EXPECT_TRUE(volumeRenderer->GetUseSSAO());
  click(panel, "shadingCheck");
  EXPECT_FALSE(volumeRenderer->GetUseSSAO());
  EXPECT_FALSE(control<QCheckBox>(panel, "ssaoCheck")->isEnabled());
  EXPECT_TRUE(record.m_SSAOEnabled);
  click(panel, "shadingCheck");
  EXPECT_TRUE(volumeRenderer->GetUseSSAO());
  QTest::keyClick(control<QComboBox>(panel, "volumeBlendCombo"), Qt::Key_Down);
  EXPECT_EQ(record.m_VolumeBlendMode, 1);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "giReachSpin"), Qt::Key_Up);
  EXPECT_DOUBLE_EQ(record.m_GIReach, 0.05);
  QTest::keyClick(control<QDoubleSpinBox>(panel, "scatteringSpin"), Qt::Key_Up);
  EXPECT_DOUBLE_EQ(record.m_VolumetricScattering, 0.05);

  // the vector array: its components with the magnitude first
  QTest::keyClick(arrays, Qt::Key_Down);
  EXPECT_EQ(record.m_ActiveArray, "vectors");
  auto* components = control<QComboBox>(panel, "componentCombo");
  ASSERT_EQ(components->count(), 4);
  EXPECT_EQ(components->itemText(0), "Magnitude");
  EXPECT_EQ(components->currentIndex(), 0);
  QTest::keyClick(components, Qt::Key_Down);
  EXPECT_EQ(record.m_ActiveComponent, 0);
  EXPECT_GT(voxelsCounted(module.controlWidget()->opacityEditor()->histogramTable(), 1), 0.0);

  // Reset puts the cursor back on the image's centre
  auto* cursor = view->getViewer(0)->GetResliceCursor();
  const double centre[3] = { cursor->GetCenter()[0], cursor->GetCenter()[1],
                             cursor->GetCenter()[2] };
  cursor->SetCenter(centre[0] + 2.0, centre[1] + 1.0, centre[2]);
  click(panel, "resetButton");
  EXPECT_DOUBLE_EQ(cursor->GetCenter()[0], centre[0]);
  EXPECT_DOUBLE_EQ(cursor->GetCenter()[1], centre[1]);
}

TEST(QuadViewWindow, OpensTheChosenGeometryAndLetsItGoWithThePipeline)
{
  kxtest::ScopedSettings settings;
  kxtest::TestView testView;
  VXPipeline pipeline;
  auto* model = new VXPipelineModel(&pipeline, &pipeline);
  pipeline.setActiveViewWidget(&testView);
  kxtest::FakeController run("Run", "run-1");
  auto result = kxtest::hostResult(1, true);
  ASSERT_TRUE(pipeline.importPipelineOutput(&run, result));

  VXQuadViewWindow window(model);
  window.resize(1200, 800);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  QString offered;
  VXUserPrompt::setDialogHandler(
    [&offered](QDialog& dialog)
    {
      auto* tree = dialog.findChild<VXGeometryTreeWidget*>();
      kxtest::pump();
      if (tree == nullptr || tree->dataSources().isEmpty())
        return int(QDialog::Rejected);
      offered = VXGeometryTreeWidget::geometryPath(tree->dataSources().first());
      tree->selectDataSource(tree->dataSources().first());
      return int(QDialog::Accepted);
    });
  auto* open = window.findChild<QAction*>("openGeometryAction");
  ASSERT_NE(open, nullptr);
  open->trigger();
  VXUserPrompt::resetHandlers();
  kxtest::pump();

  VXQuadView* view = window.moduleWidget()->quadView();
  EXPECT_TRUE(offered.endsWith("/Grains")) << offered.toStdString();
  ASSERT_TRUE(view->isInitialized());
  EXPECT_EQ(window.windowTitle(), "Quad View - " + offered);
  EXPECT_EQ(view->getControls().m_GeometryPath, offered);

  // the pipeline drops the geometry: the view lets it go
  QSignalSpy cleared(view, &VXQuadView::viewCleared);
  VXDataSource* grains = nullptr;
  for (VXDataSource* source : model->getAllDataSources())
    grains = source->name() == "Grains" ? source : grains;
  ASSERT_NE(grains, nullptr);
  model->removeItem(model->helperIndex(grains));
  kxtest::pump();
  EXPECT_EQ(cleared.count(), 1);
  EXPECT_FALSE(view->isInitialized());
  EXPECT_EQ(window.windowTitle(), "Quad View");
}
