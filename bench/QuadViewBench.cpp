// The quad view on a 256^3 float image and a 512^3 uint8 image, panes of 400 x 400:
// - a crosshair step (one IncrementSlice, the three slice panes drawn) against a bare VTK
//   setup of three vtkResliceImageViewer sharing one cursor over the same voxels;
// - a drag of the crosshair centre across the image, 50 moves and the release: time per event
//   and how often the volume pane draws (once, at the release);
// - the memory setGeometry adds for the host image, and how many arrays it copied.
#include <quadview/VXQuadView.hpp>
#include <quadview/VXResliceImageViewer.hpp>
#include <utils/GuiProcess.hpp>

#include "MedianRecordingReporter.hpp"
#include "ProcessMemory.hpp"

#include <benchmark/benchmark.h>

#include <QVTKOpenGLNativeWidget.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLayout>

#include <vtkCallbackCommand.h>
#include <vtkCellData.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageData.h>
#include <vtkPointData.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorActor.h>
#include <vtkResliceCursorPolyDataAlgorithm.h>
#include <vtkResliceCursorLineRepresentation.h>
#include <vtkResliceCursorWidget.h>
#include <vtkUnsignedCharArray.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

namespace
{
using kxbench::residentMiB;
constexpr int k_Pane = 400;
constexpr int k_Rounds = 5;
constexpr int k_StepsPerRound = 20;
constexpr int k_DragMoves = 50;

void settle()
{
  for (int i = 0; i < 10; ++i)
  {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
}

/** side^3 voxels: a ramp along z with a checker in x and y, as float or uint8. */
vtkSmartPointer<vtkDataArray> voxels(int side, bool asFloat)
{
  vtkSmartPointer<vtkDataArray> array;
  if (asFloat)
    array = vtkSmartPointer<vtkFloatArray>::New();
  else
    array = vtkSmartPointer<vtkUnsignedCharArray>::New();
  array->SetName("Density");
  array->SetNumberOfTuples(static_cast<vtkIdType>(side) * side * side);
  vtkIdType id = 0;
  for (int z = 0; z < side; ++z)
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
        array->SetComponent(id++, 0, (z / 2 + ((x / 16 + y / 16) % 2) * 64) % 256);
  return array;
}

/** The library: a quad view over the host image (cells), its panes 400 x 400. */
struct LibraryScene
{
  std::unique_ptr<VXQuadView> view = std::make_unique<VXQuadView>();
  double addedBySetGeometryMiB = 0.0;
  double addedByFirstFramesMiB = 0.0;
  int copiedArrays = 0;

  LibraryScene(int side, vtkDataArray* density)
  {
    const int spacing = view->layout() != nullptr ? view->layout()->spacing() : 0;
    view->resize(2 * k_Pane + spacing, 2 * k_Pane + spacing);
    view->show();
    settle();
    auto host = vtkSmartPointer<vtkImageData>::New();
    host->SetDimensions(side + 1, side + 1, side + 1);
    host->GetCellData()->SetScalars(density);
    const double before = residentMiB();
    view->setGeometry(nullptr, host);
    addedBySetGeometryMiB = residentMiB() - before;
    settle();
    addedByFirstFramesMiB = residentMiB() - before;
    vtkDataArray* shown = view->getImageData() != nullptr
                            ? view->getImageData()->GetPointData()->GetArray("Density")
                            : nullptr;
    copiedArrays =
      (shown != nullptr && shown->GetVoidPointer(0) == density->GetVoidPointer(0)) ? 0 : 1;
  }
  VXResliceImageViewer* viewer(int i) const { return view->getViewer(i); }
};

/** Bare VTK: three stock reslice viewers sharing the first one's cursor, over the same voxels. */
struct BareScene
{
  QWidget host;
  std::array<QVTKOpenGLNativeWidget*, 3> panes{};
  std::array<vtkSmartPointer<vtkResliceImageViewer>, 3> viewers;
  vtkNew<vtkImageData> image;

  BareScene(int side, vtkDataArray* density)
  {
    auto* layout = new QHBoxLayout(&host);
    image->SetDimensions(side, side, side);
    image->GetPointData()->SetScalars(density);
    for (int i = 0; i < 3; ++i)
    {
      panes[i] = new QVTKOpenGLNativeWidget(&host);
      panes[i]->setFixedSize(k_Pane, k_Pane);
      layout->addWidget(panes[i]);
      viewers[i] = vtkSmartPointer<vtkResliceImageViewer>::New();
      vtkNew<vtkGenericOpenGLRenderWindow> window;
      viewers[i]->SetRenderWindow(window);
      panes[i]->setRenderWindow(window.Get());
      viewers[i]->SetupInteractor(panes[i]->renderWindow()->GetInteractor());
    }
    for (int i = 0; i < 3; ++i)
    {
      viewers[i]->SetResliceCursor(viewers[0]->GetResliceCursor());
      auto* rep = vtkResliceCursorLineRepresentation::SafeDownCast(
        viewers[i]->GetResliceCursorWidget()->GetRepresentation());
      rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetReslicePlaneNormal(i);
      viewers[i]->SetInputData(image);
      viewers[i]->SetSliceOrientation(i);
      viewers[i]->SetResliceModeToAxisAligned();
      viewers[i]->SetSlice((side - 1) / 2);
      viewers[i]->GetResliceCursorWidget()->SetEnabled(1);
    }
    host.show();
    settle();
    for (auto& viewer : viewers)
    {
      viewer->GetRenderer()->ResetCamera();
      viewer->Render();
    }
  }
};

struct Case
{
  std::string name;
  int side;
  bool asFloat;
};

std::unique_ptr<LibraryScene> s_Library;
std::unique_ptr<BareScene> s_Bare;
int s_Side = 0;

void waitAll(const std::array<vtkRenderWindow*, 3>& windows)
{
  for (vtkRenderWindow* window : windows)
    window->WaitForCompletion();
}

void libraryStep(benchmark::State& state)
{
  int direction = 1;
  for (auto _ : state)
  {
    // the XY pane's wheel step: the callback draws the three slice panes
    vtkResliceCursor* cursor = s_Library->viewer(2)->GetResliceCursor();
    const double before = cursor->GetCenter()[2];
    s_Library->viewer(2)->IncrementSlice(direction);
    if (cursor->GetCenter()[2] == before)
    {
      direction = -direction;
      s_Library->viewer(2)->IncrementSlice(direction);
    }
    waitAll({ s_Library->viewer(0)->GetRenderWindow(), s_Library->viewer(1)->GetRenderWindow(),
              s_Library->viewer(2)->GetRenderWindow() });
  }
}

void bareStep(benchmark::State& state)
{
  int slice = s_Bare->viewers[2]->GetSlice();
  int direction = 1;
  for (auto _ : state)
  {
    if (slice + direction < 0 || slice + direction >= s_Side)
      direction = -direction;
    slice += direction;
    // the same visible result: the shared cursor and the XY slice move, three panes drawn
    vtkResliceCursor* cursor = s_Bare->viewers[0]->GetResliceCursor();
    double center[3];
    cursor->GetCenter(center);
    center[2] = slice;
    cursor->SetCenter(center);
    s_Bare->viewers[2]->SetSlice(slice);
    for (auto& viewer : s_Bare->viewers)
      viewer->Render();
    waitAll({ s_Bare->viewers[0]->GetRenderWindow(), s_Bare->viewers[1]->GetRenderWindow(),
              s_Bare->viewers[2]->GetRenderWindow() });
  }
}

/** One drag of the centre in the XY pane; returns the seconds per event. */
double dragCentre(VXQuadView* view, int* volumeRenders)
{
  vtkRenderWindowInteractor* interactor = view->getViewer(2)->GetInteractor();
  vtkRenderer* renderer = view->getViewer(2)->GetRenderer();
  const double* center = view->getViewer(2)->GetResliceCursor()->GetCenter();
  renderer->SetWorldPoint(center[0], center[1], center[2], 1.0);
  renderer->WorldToDisplay();
  const int x0 = static_cast<int>(renderer->GetDisplayPoint()[0]);
  const int y0 = static_cast<int>(renderer->GetDisplayPoint()[1]);

  vtkNew<vtkCallbackCommand> counter;
  counter->SetClientData(volumeRenders);
  counter->SetCallback([](vtkObject*, unsigned long, void* count, void*)
                       { ++*static_cast<int*>(count); });
  const unsigned long tag =
    view->getVolumeRenderWindow()->AddObserver(vtkCommand::EndEvent, counter);
  QElapsedTimer timer;
  timer.start();
  interactor->SetEventInformation(x0, y0, 0, 0);
  interactor->InvokeEvent(vtkCommand::LeftButtonPressEvent);
  for (int move = 1; move <= k_DragMoves; ++move)
  {
    // across the pane and back, through the image and past its edge
    const int dx = (move <= k_DragMoves / 2 ? move : k_DragMoves - move) * 6;
    interactor->SetEventInformation(x0 + dx, y0 + dx / 2, 0, 0);
    interactor->InvokeEvent(vtkCommand::MouseMoveEvent);
  }
  interactor->InvokeEvent(vtkCommand::LeftButtonReleaseEvent);
  view->getVolumeRenderWindow()->WaitForCompletion();
  const double seconds = timer.nsecsElapsed() * 1e-9 / (k_DragMoves + 2);
  view->getVolumeRenderWindow()->RemoveObserver(tag);
  return seconds;
}

/**
 * Seconds of the volume pane's frame that follows a step once the event loop is free, the
 * part of a step the slice panes do not wait for; the mean of a few steps.
 */
double interactiveVolumeFrame(LibraryScene* scene)
{
  QCoreApplication::processEvents();
  constexpr int k_Frames = 5;
  double seconds = 0.0;
  int direction = 1;
  for (int frame = 0; frame < k_Frames; ++frame)
  {
    vtkResliceCursor* cursor = scene->viewer(2)->GetResliceCursor();
    const double before = cursor->GetCenter()[2];
    scene->viewer(2)->IncrementSlice(direction);
    if (cursor->GetCenter()[2] == before)
    {
      direction = -direction;
      scene->viewer(2)->IncrementSlice(direction);
    }
    QElapsedTimer timer;
    timer.start();
    QCoreApplication::processEvents();
    scene->view->getVolumeRenderWindow()->WaitForCompletion();
    seconds += timer.nsecsElapsed() * 1e-9;
  }
  return seconds / k_Frames;
}

void libraryDrag(benchmark::State& state)
{
  for (auto _ : state)
  {
    int renders = 0;
    state.SetIterationTime(dragCentre(s_Library->view.get(), &renders) * (k_DragMoves + 2));
  }
  state.counters["events"] = k_DragMoves + 2;
}
} // namespace

int main(int argc, char** argv)
{
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);

  const std::array<Case, 2> cases = { Case{ "float256", 256, true },
                                      Case{ "uint8_512", 512, false } };
  for (const Case& item : cases)
  {
    s_Side = item.side;
    vtkSmartPointer<vtkDataArray> density = voxels(item.side, item.asFloat);
    const double hostMiB = density->GetNumberOfValues() * density->GetDataTypeSize() / 1048576.0;
    s_Library = std::make_unique<LibraryScene>(item.side, density);
    if (!s_Library->view->isInitialized())
    {
      std::fprintf(stderr, "the quad view did not take the %s image\n", item.name.c_str());
      return 1;
    }
    s_Bare = std::make_unique<BareScene>(item.side, density);

    const std::string library = "QuadView/crosshair_step/library_" + item.name;
    const std::string bare = "QuadView/crosshair_step/bare_vtk_" + item.name;
    const std::string drag = "QuadView/crosshair_drag/library_" + item.name;
    benchmark::ClearRegisteredBenchmarks();
    for (const auto& [name, function] :
         { std::pair{ library, &libraryStep }, std::pair{ bare, &bareStep } })
    {
      benchmark::RegisterBenchmark(name.c_str(), function)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MeasureProcessCPUTime()
        ->Iterations(k_StepsPerRound)
        ->Repetitions(k_Rounds);
    }
    benchmark::RegisterBenchmark(drag.c_str(), libraryDrag)
      ->Unit(benchmark::kMillisecond)
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(3);
    kxbench::MedianRecordingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio(("crosshair_step_vs_bare_vtk_" + item.name).c_str(), library, bare, "1.1");
    reporter.printCpuRatio(("crosshair_step_vs_bare_vtk_" + item.name).c_str(), library, bare);

    std::printf("TIME crosshair_step_volume_frame_ms_%s %.2f\n", item.name.c_str(),
                interactiveVolumeFrame(s_Library.get()) * 1e3);

    int volumeRenders = 0;
    const double perEvent = dragCentre(s_Library->view.get(), &volumeRenders);
    std::printf("TIME crosshair_drag_per_event_ms_%s %.2f\n", item.name.c_str(), perEvent * 1e3);
    std::printf("FRAMES crosshair_drag_volume_renders_%s %d\n", item.name.c_str(), volumeRenders);
    std::printf("MEMORY quadview_setgeometry_added_mib_%s %.1f (host image %.1f MiB; after the "
                "first frames %.1f MiB)\n",
                item.name.c_str(), s_Library->addedBySetGeometryMiB, hostMiB,
                s_Library->addedByFirstFramesMiB);
    std::printf("COPIES quadview_setgeometry_voxel_copies_%s %d\n", item.name.c_str(),
                s_Library->copiedArrays);
    s_Bare.reset();
    s_Library.reset();
  }
  return 0;
}
