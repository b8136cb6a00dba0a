// The quad view as a whole: image preparation, the four panes in step, slice
// modes, overlays, colour controls, throttling, and pictures of all panes.
#include "QuadViewTestSupport.hpp"
#include "HostDataSupport.hpp"
#include "ImageCompare.hpp"
#include "QtTestSupport.hpp"
#include "TestSupport.hpp"

#include "../dataviews/DataViewTestSupport.hpp"

#include <quadview/VXQuadView.hpp>
#include <visualization/QtWidgets/VXViewActionsController.hpp>
#include <visualization/VXUserPrompt.hpp>
#include <quadview/VXResliceImageViewer.hpp>
#include <quadview/vtkResliceCursorCallback.hpp>
#include <visualization/QtWidgets/VXViewCubeWidget.hpp>

#include <QVTKOpenGLNativeWidget.h>
#include <QtCore/QElapsedTimer>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtWidgets/QMenu>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QGridLayout>

#include <vtkCallbackCommand.h>
#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkCornerAnnotation.h>
#include <vtkFloatArray.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkImageSlice.h>
#include <vtkMath.h>
#include <vtkPiecewiseFunction.h>
#include <vtkPlane.h>
#include <vtkPointData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTable.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorLineRepresentation.h>
#include <vtkResliceCursorWidget.h>
#include <vtkTable.h>
#include <vtkTextActor.h>
#include <vtkXMLImageDataReader.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace
{
vtkSmartPointer<vtkImageData> rampImage(int nx, int ny, int nz)
{
  // 0 at the first voxel, 100 at the last along x
  return kxtest::hostCellImage(
    nx, ny, nz, 1, [nx](int i, int, int, int)
    { return nx > 1 ? 100.0f * static_cast<float>(i) / (nx - 1) : 0.0f; });
}

/** hydrogen.vti's point samples made into the voxels of a host image. */
vtkSmartPointer<vtkImageData> hydrogenAsHostImage()
{
  vtkNew<vtkXMLImageDataReader> reader;
  reader->SetFileName(kxtest::DataFile("hydrogen.vti").string().c_str());
  reader->Update();
  vtkImageData* read = reader->GetOutput();
  int dims[3];
  read->GetDimensions(dims);
  EXPECT_EQ(dims[0], 64);
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(dims[0] + 1, dims[1] + 1, dims[2] + 1);
  image->SetOrigin(-0.5, -0.5, -0.5);
  image->GetCellData()->SetScalars(read->GetPointData()->GetArray("probability_density"));
  return image;
}

/** A shown quad view of 600 by 600 pixels. */
class Shown
{
public:
  Shown()
  {
    view.resize(600, 600);
    view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
  }

  void show(vtkImageData* image, VXDataSource* source = nullptr)
  {
    view.setGeometry(source, image);
    kxtest::pump(); // the first real size is known only now, and the panes frame themselves
  }

  std::string overlay(int index) const
  {
    vtkCornerAnnotation* corner = view.getCornerAnnotation(index);
    return corner != nullptr && corner->GetText(2) != nullptr ? corner->GetText(2) : "";
  }

  /**
   * The cursor back at rest, centred on @p center and turned by @p zDegrees about z,
   * announced through the cursor widget of slice pane 0 as a drag would be. The
   * cursor's planes are its truth: its axes are computed from their normals.
   */
  void setCursor(const double center[3], double zDegrees)
  {
    kxtest::setQuadViewCursor(view, center, zDegrees);
  }

  QImage picture()
  {
    kxtest::pump();
    return view.captureAllPanesComposite(false, QColor(Qt::black));
  }

  VXQuadView view;
};

std::string lastLine(const std::string& text)
{
  const auto cut = text.rfind('\n');
  return cut == std::string::npos ? text : text.substr(cut + 1);
}
} // namespace

TEST(QuadViewPreparation, CellArraysAreSharedOntoPointsAndOnlyOversizedAxesShrink)
{
  // 1 voxel along x: the prepared image is one sample thick there, not empty
  auto host =
    kxtest::hostCellImage(1, 4, 5, 1, [](int, int j, int k, int) { return float(j + 10 * k); });
  host->SetSpacing(2.0, 1.0, 0.5);
  host->SetOrigin(1.0, 2.0, 3.0);
  auto prepared = VXQuadView::makeCellCenteredImage(host);
  int extent[6];
  prepared->GetExtent(extent);
  EXPECT_EQ(std::vector<int>(extent, extent + 6), (std::vector<int>{ 0, 0, 0, 3, 0, 4 }));
  EXPECT_DOUBLE_EQ(prepared->GetOrigin()[0], 2.0);
  EXPECT_DOUBLE_EQ(prepared->GetOrigin()[2], 3.25);
  // the same array object, not a copy
  EXPECT_EQ(prepared->GetPointData()->GetArray("values"), host->GetCellData()->GetArray("values"));
  ASSERT_NE(prepared->GetPointData()->GetScalars(), nullptr);
  EXPECT_STREQ(prepared->GetPointData()->GetScalars()->GetName(), "values");
  EXPECT_EQ(VXQuadView::makeCellCenteredImage(nullptr), nullptr);
  // without active cell scalars the first array is shown
  auto unmarked = vtkSmartPointer<vtkImageData>::New();
  unmarked->SetDimensions(3, 3, 3);
  unmarked->GetCellData()->AddArray(host->GetCellData()->GetArray("values"));
  EXPECT_STREQ(VXQuadView::makeCellCenteredImage(unmarked)->GetPointData()->GetScalars()->GetName(),
               "values");
  EXPECT_EQ(VXQuadView::shrinkToTextureLimit(prepared, 2048), prepared);
  // values on the points (a .vti file) stay where they are, shared as well
  auto sampled = vtkSmartPointer<vtkImageData>::New();
  sampled->SetDimensions(3, 4, 5);
  sampled->SetOrigin(1.0, 2.0, 3.0);
  vtkNew<vtkFloatArray> density;
  density->SetName("density");
  density->SetNumberOfTuples(60);
  density->Fill(1.0);
  sampled->GetPointData()->SetScalars(density);
  auto asIs = VXQuadView::makeCellCenteredImage(sampled);
  asIs->GetExtent(extent);
  EXPECT_EQ(std::vector<int>(extent, extent + 6), (std::vector<int>{ 0, 2, 0, 3, 0, 4 }));
  EXPECT_DOUBLE_EQ(asIs->GetOrigin()[2], 3.0);
  EXPECT_EQ(asIs->GetPointData()->GetScalars(), density.Get());

  // 5000 samples along x with a 2048 limit: factor 3 on x only, every array averaged
  auto wide = vtkSmartPointer<vtkImageData>::New();
  wide->SetDimensions(5000, 2, 2);
  wide->SetSpacing(1.0, 1.0, 1.0);
  for (const char* name : { "a", "b" })
  {
    vtkNew<vtkFloatArray> array;
    array->SetName(name);
    array->SetNumberOfTuples(20000);
    for (vtkIdType id = 0; id < 20000; ++id)
      array->SetValue(id, static_cast<float>(id % 5000) * (name[0] == 'a' ? 1.0f : 2.0f));
    wide->GetPointData()->AddArray(array);
  }
  wide->GetPointData()->SetActiveScalars("b");
  auto shrunk = VXQuadView::shrinkToTextureLimit(wide, 2048);
  int dims[3];
  shrunk->GetDimensions(dims);
  EXPECT_EQ(dims[0], 1666);
  EXPECT_EQ(dims[1], 2);
  EXPECT_EQ(dims[2], 2);
  EXPECT_DOUBLE_EQ(shrunk->GetSpacing()[0], 3.0);
  EXPECT_DOUBLE_EQ(shrunk->GetSpacing()[1], 1.0);
  EXPECT_FLOAT_EQ(static_cast<float>(shrunk->GetPointData()->GetArray("a")->GetTuple1(0)), 1.0f);
  EXPECT_FLOAT_EQ(static_cast<float>(shrunk->GetPointData()->GetArray("b")->GetTuple1(0)), 2.0f);
  EXPECT_STREQ(shrunk->GetPointData()->GetScalars()->GetName(), "b");
  EXPECT_STREQ(wide->GetPointData()->GetScalars()->GetName(), "b");
}

TEST(QuadView, FormPanesAndSharedCursorOverTheHostArray)
{
  Shown shown;
  VXQuadView& view = shown.view;
  EXPECT_EQ(view.objectName(), "VXQuadView");
  EXPECT_EQ(view.windowTitle(), "Quad View");
  auto* grid = view.findChild<QGridLayout*>("gridLayout");
  ASSERT_NE(grid, nullptr);
  const char* names[4] = { "view3D", "viewXZ", "viewYZ", "viewXY" };
  const int cells[4][2] = { { 0, 0 }, { 0, 1 }, { 1, 1 }, { 1, 0 } };
  for (int ui = 0; ui < 4; ++ui)
  {
    EXPECT_EQ(grid->itemAtPosition(cells[ui][0], cells[ui][1])->widget()->objectName(), names[ui]);
    EXPECT_EQ(view.getPaneWidget(ui)->objectName(), names[ui]);
  }
  EXPECT_EQ(view.slicePaneIdxFromUiPaneIdx(1), 1);
  EXPECT_EQ(view.slicePaneIdxFromUiPaneIdx(2), 0);
  EXPECT_EQ(view.slicePaneIdxFromUiPaneIdx(3), 2);
  EXPECT_EQ(view.slicePaneIdxFromUiPaneIdx(0), -1);
  EXPECT_FALSE(view.isInitialized());

  // 1 voxel on x still gives three slice panes
  auto host = rampImage(1, 6, 7);
  shown.show(host);
  ASSERT_TRUE(view.isInitialized());
  EXPECT_EQ(view.getImageData()->GetPointData()->GetArray("values"),
            host->GetCellData()->GetArray("values"));
  for (int i = 0; i < 3; ++i)
  {
    ASSERT_NE(view.getViewer(i), nullptr);
    EXPECT_EQ(view.getViewer(i)->GetResliceCursor(), view.getViewer(0)->GetResliceCursor());
    EXPECT_TRUE(view.getImageSlice(i)->GetVisibility());
    EXPECT_FALSE(view.getViewer(i)->GetImageActor()->GetVisibility());
  }
  EXPECT_NE(view.getVolume(), nullptr);
  // the cursor's stock XZ plane faces -y, so its x axis, the cross product of the y and z
  // plane normals, points to -x
  EXPECT_EQ(view.computeSlicePlaneFor(2).axisU, (std::array<double, 3>{ -1.0, 0.0, 0.0 }));
  EXPECT_EQ(view.computeSlicePlaneFor(2).axisV, (std::array<double, 3>{ 0.0, 1.0, 0.0 }));
  EXPECT_EQ(view.computeSlicePlaneFor(3).axisU, (std::array<double, 3>{ 0.0, 0.0, 0.0 }));

  // the centre of the XY pane lies on its plane under the crosshair
  const auto world = view.worldFromPaneScreenPos(
    2, QPoint(view.getPaneWidget(3)->width() / 2, view.getPaneWidget(3)->height() / 2));
  ASSERT_TRUE(world.has_value());
  EXPECT_NEAR((*world)[2], view.getViewer(0)->GetResliceCursor()->GetCenter()[2], 1e-6);

  view.clearView();
  EXPECT_FALSE(view.isInitialized());
  EXPECT_EQ(view.getViewer(0), nullptr);
  EXPECT_EQ(view.getControls().m_LengthUnits, "mm");
}

TEST(QuadView, UnmarkedArraysShowTheFirstAndImagesWithoutArraysAreRefused)
{
  Shown shown;
  auto unmarked = vtkSmartPointer<vtkImageData>::New();
  unmarked->SetDimensions(6, 5, 4);
  vtkNew<vtkFloatArray> values;
  values->SetName("values");
  values->SetNumberOfTuples(5 * 4 * 3);
  values->Fill(2.0);
  unmarked->GetCellData()->AddArray(values);
  shown.show(unmarked);
  ASSERT_TRUE(shown.view.isInitialized());
  EXPECT_EQ(shown.view.getActiveArrayName(), "values");
  EXPECT_FALSE(shown.picture().isNull());

  // nothing to colour: refused with a message, the view shown before stays
  auto empty = vtkSmartPointer<vtkImageData>::New();
  empty->SetDimensions(6, 5, 4);
  QSignalSpy messages(&shown.view, &VXQuadView::printOutput);
  shown.show(empty);
  ASSERT_EQ(messages.size(), 1);
  EXPECT_EQ(messages[0][0].toString(),
            "The image geometry has no arrays to show in the Quad View.");
  EXPECT_TRUE(shown.view.isInitialized());
  EXPECT_EQ(shown.view.getActiveArrayName(), "values");
}

TEST(QuadView, WindowLevelAndThickModeVisibility)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(11, 5, 5));
  for (int i = 0; i < 3; ++i)
  {
    EXPECT_DOUBLE_EQ(view.getViewer(i)->GetColorWindow(), 100.0);
    EXPECT_DOUBLE_EQ(view.getViewer(i)->GetColorLevel(), -50.0);
  }
  view.thickMode(1);
  for (int i = 0; i < 3; ++i)
  {
    EXPECT_FALSE(view.getImageSlice(i)->GetVisibility());
    auto* rep = vtkResliceCursorLineRepresentation::SafeDownCast(
      view.getViewer(i)->GetResliceCursorWidget()->GetRepresentation());
    ASSERT_NE(rep, nullptr);
    EXPECT_DOUBLE_EQ(rep->GetWindow(), 100.0);
    EXPECT_DOUBLE_EQ(rep->GetLevel(), -50.0);
  }
  view.thickMode(0);
  for (int i = 0; i < 3; ++i)
  {
    EXPECT_TRUE(view.getImageSlice(i)->GetVisibility());
    EXPECT_FALSE(view.getViewer(i)->GetImageActor()->GetVisibility());
    auto* rep = vtkResliceCursorLineRepresentation::SafeDownCast(
      view.getViewer(i)->GetResliceCursorWidget()->GetRepresentation());
    EXPECT_DOUBLE_EQ(rep->GetWindow(), 100.0);
    EXPECT_DOUBLE_EQ(rep->GetLevel(), -50.0);
  }
}

TEST(QuadView, ReloadExchangesArraysInPlaceOrRebuildsKeepingSettings)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(8, 9, 10));
  vtkImageData* shownImage = view.getImageData();
  const double moved[3] = { 2.0, 3.0, 4.0 };
  shown.setCursor(moved, 0.0);
  vtkCamera* camera = view.getViewer(2)->GetRenderer()->GetActiveCamera();
  camera->Zoom(1.5);
  const double scale = camera->GetParallelScale();

  auto same = kxtest::hostCellImage(8, 9, 10, 1, [](int, int, int, int) { return 7.0f; });
  view.reload(same);
  EXPECT_EQ(view.getImageData(), shownImage);
  EXPECT_EQ(view.getImageData()->GetPointData()->GetArray("values"),
            same->GetCellData()->GetArray("values"));
  EXPECT_DOUBLE_EQ(view.getViewer(0)->GetResliceCursor()->GetCenter()[1], 3.0);
  EXPECT_DOUBLE_EQ(view.getViewer(2)->GetRenderer()->GetActiveCamera()->GetParallelScale(), scale);

  view.setLengthUnits("um");
  view.showPlaneWidgets(true);
  view.reload(rampImage(4, 5, 6));
  ASSERT_TRUE(view.isInitialized());
  int dims[3];
  view.getImageData()->GetDimensions(dims);
  EXPECT_EQ(dims[0], 4);
  EXPECT_EQ(dims[2], 6);
  EXPECT_EQ(view.getControls().m_LengthUnits, "um");
  EXPECT_TRUE(view.getPlaneOutlineActor(0)->GetVisibility());
  EXPECT_NE(shown.overlay(1).find("Physical Size: 4 x 6 um"), std::string::npos);
}

TEST(QuadView, OverlayTextsLineByLine)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(50, 60, 70));
  const double center[3] = { 10.5, 20.5, 30.5 };
  shown.setCursor(center, 0.0);
  EXPECT_EQ(shown.overlay(1), "Voxel Dims:  x: 50  {y: 60}  z: 70\n"
                              "Physical Size: 50 x 70 mm\n"
                              "Slice: 20\n"
                              "Range Min: 0  Max: 100\n"
                              "Yaw: 180.0 deg\nPitch: -0.0 deg\nRoll: 180.0 deg");
  EXPECT_EQ(shown.overlay(0).substr(0, 34), "Voxel Dims:  {x: 50}  y: 60  z: 70");
  // voxel (10, 20, 30) of the ramp: 100 * 10 / 49
  EXPECT_EQ(shown.overlay(3), "Voxel Dims:  x: 50  y: 60  z: 70\n"
                              "X: 10.5  Y: 20.5  Z: 30.5\n"
                              "values: 20.4082");
  // turned 45 degrees: the edge labels follow the crosshair ends and stay inside 0.03..0.97
  shown.setCursor(center, 45.0);
  EXPECT_NE(shown.overlay(2).find("Yaw: -135.0 deg"), std::string::npos);
  for (vtkTextActor* label : view.getResliceCursorCallback()->m_EdgeLabels)
  {
    const double* p = label->GetPosition();
    EXPECT_TRUE(p[0] >= 0.03 && p[0] <= 0.97 && p[1] >= 0.03 && p[1] <= 0.97)
      << label->GetInput() << " at " << p[0] << ", " << p[1];
  }
  EXPECT_GT(std::abs(view.getResliceCursorCallback()->m_EdgeLabels[8]->GetPosition()[1] - 0.5),
            0.1);

  // overlays off: the text stays as it was
  view.showAnnotations(false);
  const double other[3] = { 1.5, 1.5, 1.5 };
  shown.setCursor(other, 45.0);
  EXPECT_NE(shown.overlay(3).find("X: 10.5"), std::string::npos);
  EXPECT_FALSE(view.getCornerAnnotation(3)->GetVisibility());

  // six labels reach the view cube, five change nothing
  const QStringList six{ "R", "L", "A", "P", "S", "I" };
  QMetaObject::invokeMethod(&view, "setOrientationMarkerText", Q_ARG(QStringList, six));
  EXPECT_EQ(view.getViewCube()->faceLabels(), six);
  QMetaObject::invokeMethod(&view, "setOrientationMarkerText",
                            Q_ARG(QStringList, QStringList({ "a", "b", "c", "d", "e" })));
  EXPECT_EQ(view.getViewCube()->faceLabels(), six);
}

TEST(QuadView, ComponentsMagnitudeAndHistogramCache)
{
  Shown shown;
  VXQuadView& view = shown.view;
  QSignalSpy components(&view, &VXQuadView::componentListChanged);
  QSignalSpy histograms(&view, &VXQuadView::histogramUpdated);
  // (3, 4, 12) in every voxel: magnitude 13
  shown.show(kxtest::hostCellImage(
    4, 4, 4, 3, [](int, int, int, int c) { return c == 0   ? 3.0f
                                                  : c == 1 ? 4.0f
                                                           : 12.0f; }, "vec"));
  ASSERT_EQ(components.count(), 1);
  EXPECT_EQ(components.at(0).at(0).toStringList(),
            QStringList({ "Magnitude", "Component 0", "Component 1", "Component 2" }));
  EXPECT_EQ(components.at(0).at(1).toInt(), -1);
  const double center[3] = { 1.5, 1.5, 1.5 };
  shown.setCursor(center, 0.0);
  EXPECT_EQ(lastLine(shown.overlay(3)), "vec (mag): 13");
  double min = 0.0;
  double max = 0.0;
  view.getTrueDataRange(min, max);
  EXPECT_DOUBLE_EQ(min, 13.0);
  EXPECT_DOUBLE_EQ(max, 14.0); // a constant array gets a range of one

  view.onComponentChanged(2); // the third entry, "Component 1"
  EXPECT_EQ(view.getControls().m_ActiveComponent, 1);
  EXPECT_EQ(lastLine(shown.overlay(3)), "vec [1]: 4");
  EXPECT_EQ(view.getViewer(0)->GetResliceCursor()->GetImage()->GetNumberOfScalarComponents(), 1);
  view.onComponentChanged(6); // beyond the components: the magnitude form again
  EXPECT_EQ(lastLine(shown.overlay(3)), "vec (mag): 13");

  // a second histogram of the same array and component is the cached table
  view.onComponentChanged(2);
  const int before = static_cast<int>(histograms.count());
  const auto first = view.getHistogram();
  view.onComponentChanged(2);
  EXPECT_EQ(histograms.count(), before + 1);
  EXPECT_EQ(view.getHistogram(), first);

  // one component: the plain form whatever the index
  Shown scalar;
  scalar.show(rampImage(4, 4, 4));
  scalar.setCursor(center, 0.0);
  scalar.view.onComponentChanged(4);
  EXPECT_EQ(lastLine(scalar.overlay(3)), "values: 33.3333");
  EXPECT_EQ(scalar.view.getComponentNames("values"), QStringList({ "Scalar" }));
}

TEST(QuadView, RangeOpacityAndColourMapSignals)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(11, 3, 3));
  vtkPiecewiseFunction* opacity = view.getOpacityFunction();
  ASSERT_NE(opacity, nullptr);
  opacity->AddPoint(25.0, 0.5);
  QSignalSpy ranges(&view, &VXQuadView::rangeChanged);
  QSignalSpy modified(&view, &VXQuadView::colorMapModified);

  QTest::qWait(40); // past the overlay throttle
  view.onCustomRangeChanged(100.0, 300.0);
  double node[4];
  opacity->GetNodeValue(1, node);
  EXPECT_DOUBLE_EQ(node[0], 150.0); // a quarter of the way, as before
  EXPECT_DOUBLE_EQ(node[1], 0.5);
  EXPECT_DOUBLE_EQ(view.getViewer(1)->GetColorWindow(), 200.0);
  EXPECT_DOUBLE_EQ(view.getViewer(1)->GetColorLevel(), 0.0);
  EXPECT_NE(shown.overlay(0).find("Range Min: 100  Max: 300"), std::string::npos);

  QTest::qWait(40); // past the overlay throttle
  view.onRangeReset();
  ASSERT_EQ(ranges.count(), 1);
  EXPECT_DOUBLE_EQ(ranges.at(0).at(1).toDouble(), 100.0);
  opacity->GetNodeValue(1, node);
  EXPECT_DOUBLE_EQ(node[0], 25.0);

  const double* before = view.getLookupTable()->getColorTransferFunction()->GetColor(0.0);
  const std::array<double, 3> low{ before[0], before[1], before[2] };
  view.onColorMapInverted(true);
  const double* after = view.getLookupTable()->getColorTransferFunction()->GetColor(100.0);
  EXPECT_NEAR(after[0], low[0], 1e-9);
  EXPECT_NEAR(after[2], low[2], 1e-9);
  view.onColorMapInverted(true); // no change: the map is not flipped back
  EXPECT_NEAR(view.getLookupTable()->getColorTransferFunction()->GetColor(100.0)[0], low[0], 1e-9);
  EXPECT_EQ(modified.count(), 2);
}

TEST(QuadView, RenderThrottleKeepsDrawsApartAndLosesNoCall)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(2, 2, 2));
  QTest::qWait(100);
  std::vector<qint64> draws;
  QElapsedTimer clock;
  clock.start();
  struct Log
  {
    std::vector<qint64>* draws;
    QElapsedTimer* clock;
  } log{ &draws, &clock };
  vtkNew<vtkCallbackCommand> count;
  count->SetClientData(&log);
  count->SetCallback(
    [](vtkObject*, unsigned long, void* data, void*)
    {
      auto* l = static_cast<Log*>(data);
      l->draws->push_back(l->clock->elapsed());
    });
  view.getVolumeRenderWindow()->AddObserver(vtkCommand::StartEvent, count);

  // calls faster than the pause: draws start at least 33 ms apart, whatever a draw costs
  qint64 lastCall = 0;
  for (int k = 0; k < 12; ++k)
  {
    lastCall = clock.elapsed();
    view.render();
    QTest::qWait(4);
  }
  QTest::qWait(150);
  ASSERT_GE(draws.size(), 2u);
  for (size_t k = 1; k < draws.size(); ++k)
    EXPECT_GE(draws[k] - draws[k - 1], VXQuadView::k_ThrottleMs - 2) << "draw " << k;
  // the last call is drawn, by the deferred timer if need be, and only once
  EXPECT_GE(draws.back(), lastCall);
  const size_t settled = draws.size();
  QTest::qWait(100);
  EXPECT_EQ(draws.size(), settled);
}

TEST(QuadView, ARunOfWheelStepsDrawsOneInteractiveVolumeFrameThenOneFull)
{
  Shown shown;
  VXQuadView& view = shown.view;
  shown.show(rampImage(4, 4, 12));
  QTest::qWait(100);
  vtkRenderWindow* window = view.getVolumeRenderWindow();
  const double stillRate = window->GetDesiredUpdateRate();
  ASSERT_LT(stillRate, VXQuadView::k_InteractiveVolumeRate);
  std::vector<double> rates;
  vtkNew<vtkCallbackCommand> record;
  record->SetClientData(&rates);
  record->SetCallback(
    [](vtkObject* caller, unsigned long, void* data, void*)
    {
      static_cast<std::vector<double>*>(data)->push_back(
        static_cast<vtkRenderWindow*>(caller)->GetDesiredUpdateRate());
    });
  window->AddObserver(vtkCommand::StartEvent, record);

  vtkRenderWindowInteractor* interactor = view.getViewer(2)->GetInteractor();
  for (int step = 0; step < 3; ++step)
  {
    interactor->SetEventInformation(20, 20, 0, 0);
    interactor->InvokeEvent(vtkCommand::MouseWheelForwardEvent);
  }
  // the steps came in one run: the volume pane draws once, when the event loop is free
  EXPECT_EQ(rates.size(), 0u);
  QCoreApplication::processEvents();
  ASSERT_EQ(rates.size(), 1u);
  EXPECT_DOUBLE_EQ(rates[0], VXQuadView::k_InteractiveVolumeRate);
  EXPECT_DOUBLE_EQ(window->GetDesiredUpdateRate(), stillRate);

  // once the steps pause, one full-quality frame
  QTest::qWait(VXQuadView::k_StillVolumeDelayMs + 200);
  ASSERT_EQ(rates.size(), 2u);
  EXPECT_DOUBLE_EQ(rates.back(), stillRate);
}

/**
 * Pictures of all panes as shown, then oblique with the cursor turned 30 degrees about z
 * at @p center, then back to axis aligned as a slab of @p thickness with max blend.
 */
static void compareThreeModes(Shown& shown, const std::string& prefix, const double center[3],
                              double thickness)
{
  VXQuadView& view = shown.view;
  kxtest::CompareWithBaseline(shown.picture(), "quadview", prefix + "_axis_aligned");

  view.resliceMode(1);
  shown.setCursor(center, 30.0);
  // every pane faces its turned plane; the XZ and YZ panes keep +Z upward
  vtkResliceCursor* cursor = view.getViewer(0)->GetResliceCursor();
  for (int i = 0; i < 3; ++i)
  {
    vtkCamera* camera = view.getViewer(i)->GetRenderer()->GetActiveCamera();
    double normal[3];
    cursor->GetPlane(i)->GetNormal(normal);
    vtkMath::Normalize(normal);
    EXPECT_NEAR(std::abs(vtkMath::Dot(camera->GetDirectionOfProjection(), normal)), 1.0, 1e-9)
      << "pane " << i;
    EXPECT_NEAR(camera->GetViewUp()[2], i == 2 ? 0.0 : 1.0, 1e-9) << "pane " << i;
  }
  kxtest::CompareWithBaseline(shown.picture(), "quadview", prefix + "_oblique");

  view.resliceMode(0);
  view.resetViews();
  view.getViewer(0)->GetResliceCursor()->SetThickness(thickness, thickness, thickness);
  view.thickMode(1);
  view.setBlendMode(1);
  kxtest::CompareWithBaseline(shown.picture(), "quadview", prefix + "_max_slab");
}

TEST(QuadViewImage, HydrogenAxisAlignedObliqueAndMaxSlab)
{
  Shown shown;
  shown.show(hydrogenAsHostImage());
  shown.view.showPlaneWidgets(true);
  const double center[3] = { 31.5, 31.5, 31.5 };
  compareThreeModes(shown, "hydrogen", center, 8.0);
}

TEST(QuadViewImage, SampleAxisAlignedObliqueAndMaxSlab)
{
  kxtest::ScopedSettings settings;
  dataviewtest::Scene scene;
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 24), "Microstructure");
  ASSERT_NE(source, nullptr);
  Shown shown;
  shown.show(vtkImageData::SafeDownCast(source->getOutput()), source);
  ASSERT_TRUE(shown.view.isInitialized());
  shown.view.onArrayChanged("FeatureIds");
  const double center[3] = { 12.0, 12.0, 12.0 };
  compareThreeModes(shown, "sample", center, 4.0);
}

// ---------------------------------------------------------------------------
// State, pane menu, drag and drop

namespace
{
/** A shown view that answers loadGeometryRequested with @p image. */
struct Answering : Shown
{
  explicit Answering(vtkImageData* image)
  {
    QObject::connect(&view, &VXQuadView::loadGeometryRequested, &view,
                     [this, image](const QString&, VXQuadView*) { show(image); });
  }
};

QStringList messagesOf(VXQuadView& view, const std::function<void()>& act)
{
  QStringList messages;
  auto connection = QObject::connect(&view, &VXQuadView::printOutput,
                                     [&messages](const QString& m) { messages << m; });
  act();
  QObject::disconnect(connection);
  return messages;
}
} // namespace

TEST(QuadViewState, RoundTripGivesTheSamePictureAndRecord)
{
  auto image = kxtest::hostCellImage(
    8, 6, 5, 3,
    [](int i, int j, int k, int c) { return static_cast<float>((c + 1) * i + 3 * j + k); }, "vec");
  Shown a;
  a.show(image);
  VXQuadView& view = a.view;
  view.onComponentChanged(2); // "Component 1"
  view.onCustomRangeChanged(2.0, 20.0);
  view.getOpacityFunction()->AddPoint(0.1 + 0.2 + 7.0, 0.1 + 0.2);
  kx::core::ColorTableUtilities::ColorPreset twoTone;
  twoTone.name = "TwoTone";
  twoTone.rgbPoints = { 0, 0.1f, 0.6f, 0.2f, 1, 0.9f, 0.3f, 0.8f };
  view.onColorPresetSelected(twoTone);
  view.onColorMapInverted(true);
  view.thickMode(1);
  view.setBlendMode(2);
  const double center[3] = { 2.5, 1.5, 3.5 };
  a.setCursor(center, 0.0);
  view.getViewActionsController(1)->setBackgroundColor(QColor(40, 80, 120));
  view.getViewActionsController(0)->setGridAxesEnabled(true);
  nlohmann::json record;
  view.saveState(record);
  record["geometry_path"] = "Data/vec";
  const QImage before = a.picture();

  Answering b(image);
  ASSERT_TRUE(b.view.loadState(record));
  kxtest::pump();
  const QImage after = b.picture();
  EXPECT_LE(kxtest::RmsDifference(before, after), kxtest::k_ImageTolerance);
  nlohmann::json again;
  b.view.saveState(again);
  again["geometry_path"] = "Data/vec";
  EXPECT_EQ(again.dump(2), record.dump(2));
  EXPECT_EQ(again["active_component"], 1);
  EXPECT_EQ(again["mean_blend"], true);
  EXPECT_EQ(again["cursor_center"], nlohmann::json({ 2.5, 1.5, 3.5 }));
  EXPECT_NEAR(again["perPaneViewActionState"][1]["background"][0].get<double>() * 255.0, 40.0,
              1e-4);
  EXPECT_TRUE(again["perPaneViewActionState"][0]["grid_axes"].get<bool>());

  // opacity points come back bit for bit
  QStringList messages;
  const VXQuadViewControls read = VXQuadViewControls::read(record, messages);
  EXPECT_TRUE(messages.isEmpty());
  double node[4];
  const vtkPiecewiseFunction* restored = read.m_ArrayOpacityFunctions.value("vec");
  ASSERT_NE(restored, nullptr);
  const_cast<vtkPiecewiseFunction*>(restored)->GetNodeValue(1, node);
  EXPECT_EQ(node[0], 0.1 + 0.2 + 7.0);
  EXPECT_EQ(node[1], 0.1 + 0.2);
}

TEST(QuadViewState, HostileRecordsKeepTheViewUsable)
{
  auto image = rampImage(6, 4, 3);
  Answering shown(image);
  shown.show(image);
  VXQuadView& view = shown.view;

  // nobody answers: the view keeps what it shows
  QObject::disconnect(&view, &VXQuadView::loadGeometryRequested, nullptr, nullptr);
  QStringList messages =
    messagesOf(view, [&view]() { view.loadState({ { "geometry_path", "nowhere" } }); });
  EXPECT_EQ(messages, QStringList("Could not load Quad View state: geometry 'nowhere' was not "
                                  "loaded by any handler."));
  EXPECT_FALSE(view.loadState(nlohmann::json::array({ 1, 2 })));

  // wrong types everywhere, a gone array, malformed points
  QObject::connect(&view, &VXQuadView::loadGeometryRequested, &view,
                   [&shown, image](const QString&, VXQuadView*) { shown.show(image); });
  nlohmann::json record = { { "geometry_path", "Data/ramp" },
                            { "thick_mode", "yes" },
                            { "ambient", "bright" },
                            { "active_component", 1.5 },
                            { "active_array", "gone" },
                            { "array_lut_fct", { { "values", 7 } } },
                            { "array_scalar_opacity_fct",
                              { { "values", { "1 0.5", "1e400 1", "2", 3, "4 0.5 junk" } } } },
                            { "perPaneViewActionState", { 1, "x", { { "camera", 2 } }, nullptr } },
                            { "perPaneAnnotations", { "not json", 5 } },
                            { "cursor_center", { "a" } } };
  messages = messagesOf(view, [&]() { EXPECT_TRUE(view.loadState(record)); });
  for (const char* expected :
       { "Quad View state: 'thick_mode' has the wrong type; kept the default.",
         "Quad View state: 'ambient' has the wrong type; kept the default.",
         "Quad View state: 'active_component' has the wrong type; kept the default.",
         "Quad View state: array 'gone' does not exist; showing 'values'.",
         "Skipped malformed opacity control point '1e400 1' for array 'values' while loading "
         "state.",
         "Skipped malformed opacity control point '2' for array 'values' while loading state.",
         "Skipped malformed opacity control point '3' for array 'values' while loading state.",
         "Skipped malformed opacity control point '4 0.5 junk' for array 'values' while loading "
         "state.",
         "Quad View state: the annotations of pane 0 are not a JSON array.",
         "Quad View state: 'cursor_center' is not three numbers; the cursor stays where it is." })
    EXPECT_TRUE(messages.contains(expected)) << expected;
  EXPECT_TRUE(view.isInitialized());
  EXPECT_EQ(view.getActiveArrayName(), "values");
  EXPECT_EQ(view.getOpacityFunction()->GetSize(), 1);
  EXPECT_FALSE(shown.picture().isNull());
}

TEST(QuadViewState, PaneMenuAndDrops)
{
  Shown shown;
  shown.show(rampImage(6, 4, 3));
  VXQuadView& view = shown.view;
  QMenu* menu = view.buildPaneContextMenu(0, QPoint(10, 10)); // the volume pane
  ASSERT_NE(menu, nullptr);
  QStringList titles;
  for (QAction* action : menu->actions())
    titles << action->text();
  EXPECT_EQ(titles, QStringList({ "Current View", "All Views" }));
  const QStringList entries{ "Save Screenshot ...", "Copy Screenshot", "Axes Grid",
                             "Change Background Color", "Restore Default Background Color" };
  for (QAction* sub : menu->actions())
  {
    QStringList texts;
    for (QAction* action : sub->menu()->actions())
    {
      texts << action->text();
      EXPECT_FALSE(action->toolTip().isEmpty());
    }
    EXPECT_EQ(texts, entries);
  }
  VXUserPrompt::setColorHandler([](const QColor&, const QString&) { return QColor(0, 255, 0); });
  menu->actions().at(1)->menu()->actions().at(3)->trigger();
  VXUserPrompt::resetHandlers();
  for (int ui = 0; ui < 4; ++ui)
    EXPECT_EQ(view.getViewActionsController(ui)->backgroundColor(), QColor(0, 255, 0));
  menu->actions().at(0)->menu()->actions().at(2)->trigger(); // this pane's grid only
  EXPECT_TRUE(view.getViewActionsController(0)->gridAxesEnabled());
  EXPECT_FALSE(view.getViewActionsController(1)->gridAxesEnabled());
  delete menu;

  QSignalSpy states(&view, &VXQuadView::loadStateRequested);
  QSignalSpy files(&view, &VXQuadView::loadFileRequested);
  QSignalSpy geometries(&view, &VXQuadView::loadGeometryRequested);
  // the handlers as a drag over the view calls them (a synthetic drop has no drag behind it)
  struct Handlers : VXQuadView
  {
    using VXQuadView::dragEnterEvent;
    using VXQuadView::dropEvent;
  };
  const auto drop = [&view](QMimeData* mime)
  {
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    (view.*(&Handlers::dragEnterEvent))(&enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
    (view.*(&Handlers::dropEvent))(&event);
    delete mime;
  };
  const auto urls = [](QList<QUrl> list)
  {
    auto* mime = new QMimeData;
    mime->setUrls(list);
    return mime;
  };
  drop(urls({ QUrl::fromLocalFile("/tmp/a.vlxstate") }));
  drop(urls({ QUrl::fromLocalFile("/tmp/b.voxelia") }));
  drop(urls({ QUrl::fromLocalFile("/tmp/c.png") }));
  drop(urls({ QUrl::fromLocalFile("/tmp/a.vlxstate"), QUrl::fromLocalFile("/tmp/d.vlxstate") }));
  auto* item = new QMimeData;
  item->setData("QuadViewItem", R"({"geometry_path": "Data/ramp"})");
  drop(item);
  ASSERT_EQ(states.count(), 1);
  EXPECT_EQ(states.at(0).at(0).toString(), "/tmp/a.vlxstate");
  ASSERT_EQ(files.count(), 1);
  EXPECT_EQ(files.at(0).at(0).toString(), "/tmp/b.voxelia");
  ASSERT_EQ(geometries.count(), 1);
  EXPECT_EQ(geometries.at(0).at(0).toString(), "Data/ramp");

  // a right click on a pane opens the menu at once
  QTest::mousePress(view.getPaneWidget(3), Qt::RightButton, {}, QPoint(20, 20));
  auto* open = view.findChild<QMenu*>("quadViewPaneMenu");
  ASSERT_NE(open, nullptr);
  EXPECT_TRUE(open->isVisible());
  open->close();
}
