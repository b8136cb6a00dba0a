// The volume data view on a 256^3 float volume handed over by the host: the
// frame time against a bare vtkSmartVolumeMapper drawing the same voxels with
// the same volume property and multisampling, measured side by side, and the
// memory that showing the wrapped host volume adds against what the bare
// pipeline adds for the same data.
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXVolumeRepPimpl.hpp>

#include "HostVolume.hpp"
#include "MedianRecordingReporter.hpp"
#include "ProcessMemory.hpp"

#include <benchmark/benchmark.h>

#include <QVTKOpenGLNativeWidget.h>
#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkFloatArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageData.h>
#include <vtkRenderer.h>
#include <vtkSmartVolumeMapper.h>
#include <vtkVolume.h>
#include <vtkVolumeProperty.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QApplication>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

namespace
{
using kxbench::residentMiB;
constexpr int k_Side = kxbench::k_VolumeSide;
constexpr int k_Size = 600;
constexpr int k_Rounds = 9;
constexpr int k_FramesPerRound = 3;

using kxbench::BenchController;
using kxbench::BenchView;

/** The library's path: the host's structure imported into a pipeline, shown as a volume. */
struct LibraryScene
{
  BenchView view;
  VXPipeline pipeline;
  BenchController controller;
  VXVolumeRepPimpl* volume = nullptr;

  void show()
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    QCoreApplication::processEvents();
  }

  void import(std::shared_ptr<kx::core::DataStructure>& structure)
  {
    pipeline.setActiveViewWidget(&view);
    VXPipeline::setDefaultImageGeomRepType(VXRepresentation::Volume);
    pipeline.importPipelineOutput(&controller, structure);
    QCoreApplication::processEvents();
    for (VXBridgeObject* bridge : pipeline.bridges())
      for (VXDataSource* source : bridge->dataSources())
        for (VXRepresentation* representation : source->findChildren<VXRepresentation*>())
          if (auto* pimpl = dynamic_cast<VXVolumeRepPimpl*>(representation->implementation(&view)))
            volume = pimpl;
    view.getVisualizationWidget()->getRenderer()->ResetCamera();
    window()->Render();
  }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
  vtkCamera* camera() { return view.getVisualizationWidget()->getRenderer()->GetActiveCamera(); }
};

/** VTK alone over the same voxels (wrapped, not copied): one mapper, one volume, one renderer. */
struct BareScene
{
  QVTKOpenGLNativeWidget widget;
  vtkNew<vtkGenericOpenGLRenderWindow> renderWindow;
  vtkNew<vtkRenderer> renderer;
  vtkNew<vtkSmartVolumeMapper> mapper;
  vtkNew<vtkVolume> volume;

  BareScene(float* values, vtkVolumeProperty* reference)
  {
    vtkNew<vtkImageData> image;
    image->SetDimensions(k_Side + 1, k_Side + 1, k_Side + 1);
    vtkNew<vtkFloatArray> density;
    density->SetName("Density");
    density->SetVoidArray(values, static_cast<vtkIdType>(k_Side) * k_Side * k_Side, 1);
    image->GetCellData()->SetScalars(density);
    renderWindow->SetMultiSamples(8);
    widget.setRenderWindow(renderWindow);
    renderWindow->AddRenderer(renderer);
    mapper->SetInputData(image);
    volume->SetMapper(mapper);
    if (reference != nullptr)
      volume->GetProperty()->DeepCopy(reference);
    renderer->AddVolume(volume);
    widget.resize(k_Size, k_Size);
    widget.show();
    QCoreApplication::processEvents();
    renderer->ResetCamera();
    renderWindow->Render();
  }
};

std::unique_ptr<LibraryScene> s_Library;
std::unique_ptr<BareScene> s_Bare;

void frameLoop(benchmark::State& state, vtkRenderWindow* window, vtkCamera* camera)
{
  for (auto _ : state)
  {
    camera->Azimuth(1.0);
    window->Render();
    window->WaitForCompletion();
  }
}

void libraryFrame(benchmark::State& state)
{
  frameLoop(state, s_Library->window(), s_Library->camera());
}

void bareFrame(benchmark::State& state)
{
  frameLoop(state, s_Bare->renderWindow, s_Bare->renderer->GetActiveCamera());
}
} // namespace

int main(int argc, char** argv)
{
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, interleave.data());
  int argumentCount = static_cast<int>(arguments.size());
  benchmark::Initialize(&argumentCount, arguments.data());

  float* values = nullptr;
  auto structure = kxbench::HostVolume(values);
  const double dataMiB = static_cast<double>(k_Side) * k_Side * k_Side * sizeof(float) / 1048576.0;

  // each side's memory is what its first frame adds, the windows already shown
  s_Library = std::make_unique<LibraryScene>();
  s_Library->show();
  const double beforeLibrary = residentMiB();
  s_Library->import(structure);
  const double libraryMiB = residentMiB() - beforeLibrary;
  if (s_Library->volume == nullptr)
  {
    std::fprintf(stderr, "the host volume was not shown as a volume\n");
    return 1;
  }
  const double beforeBare = residentMiB();
  s_Bare = std::make_unique<BareScene>(values, s_Library->volume->volumeProperty());
  const double bareMiB = residentMiB() - beforeBare;
  std::printf("MEMORY volume_view_added_mib %.1f (data %.1f MiB, bare VTK added %.1f MiB)\n",
              libraryMiB, dataMiB, bareMiB);
  if (bareMiB > 0.0)
    std::printf("RATIO volume_memory_vs_bare_vtk %.2f\n", libraryMiB / bareMiB);

  for (auto [name, function] : { std::pair{ "frame/library_volume_256", &libraryFrame },
                                 std::pair{ "frame/bare_vtk_volume_256", &bareFrame } })
  {
    benchmark::RegisterBenchmark(name, function)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime()
      ->MeasureProcessCPUTime()
      ->Iterations(k_FramesPerRound)
      ->Repetitions(k_Rounds);
  }
  kxbench::MedianRecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatio("volume_frame_vs_bare_vtk", "frame/library_volume_256",
                      "frame/bare_vtk_volume_256", "1.05");
  reporter.printCpuRatio("volume_frame_vs_bare_vtk", "frame/library_volume_256",
                         "frame/bare_vtk_volume_256");
  s_Bare.reset();
  s_Library.reset();
  return 0;
}
