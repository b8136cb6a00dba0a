// The image slice data view on a 512^3 uint8 image: one slice step (the number changed, the actor
// updated, one frame drawn) against a bare vtkImageActor over the same voxels doing the same,
// side by side in one run, each in a render view of the library's own kind.
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXImageSliceRepPimpl.hpp>
#include <visualization/VXPipeline.hpp>

#include "HostVolume.hpp"
#include "MedianRecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <vtkCellData.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkImageMapper3D.h>
#include <vtkImageProperty.h>
#include <vtkPointData.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkUnsignedCharArray.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

namespace
{
constexpr int k_Side = 512;
constexpr int k_Size = 600;
constexpr int k_Rounds = 5;
constexpr int k_StepsPerRound = 20;

/** 512^3 cells of uint8 "Density": a ramp along z with rings in x and y. */
vtkSmartPointer<vtkUnsignedCharArray> Voxels()
{
  auto density = vtkSmartPointer<vtkUnsignedCharArray>::New();
  density->SetName("Density");
  density->SetNumberOfTuples(static_cast<vtkIdType>(k_Side) * k_Side * k_Side);
  unsigned char* out = density->GetPointer(0);
  for (int z = 0; z < k_Side; ++z)
    for (int y = 0; y < k_Side; ++y)
      for (int x = 0; x < k_Side; ++x)
        *out++ = static_cast<unsigned char>((z / 2 + ((x / 16 + y / 16) % 2) * 64) % 256);
  return density;
}

/** The library's path: a data source over the image, shown as an image slice. */
struct LibraryScene
{
  kxbench::BenchView view;
  VXPipeline pipeline;
  VXImageSliceRepPimpl* slice = nullptr;

  explicit LibraryScene(vtkUnsignedCharArray* density)
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    QCoreApplication::processEvents();
    vtkNew<vtkImageData> image;
    image->SetDimensions(k_Side + 1, k_Side + 1, k_Side + 1);
    image->GetCellData()->SetScalars(density);
    auto* source = new VXDataSource(&pipeline);
    source->setBaseName("Slices");
    source->setDataSet(image);
    pipeline.setActiveViewWidget(&view);
    pipeline.addRepresentation(source, VXRepresentation::ImageSlice);
    for (VXRepresentation* representation : source->findChildren<VXRepresentation*>())
      slice = dynamic_cast<VXImageSliceRepPimpl*>(representation->implementation(&view));
    view.getVisualizationWidget()->getRenderer()->ResetCamera();
    window()->Render();
  }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
};

/**
 * A bare vtkImageActor over the same voxels (shared, not copied), in a render view of its own of
 * the same kind: the same layers and multisampling, so that the two sides differ only by the data
 * view's work (the render widget's own cost is RenderBench's subject).
 */
struct BareScene
{
  kxbench::BenchView view;
  vtkNew<vtkImageActor> actor;
  vtkNew<vtkImageData> image;

  BareScene(vtkUnsignedCharArray* density, vtkImageProperty* reference)
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    QCoreApplication::processEvents();
    image->SetDimensions(k_Side, k_Side, k_Side);
    image->GetPointData()->SetScalars(density);
    actor->GetMapper()->SetInputData(image);
    if (reference != nullptr)
      actor->GetProperty()->DeepCopy(reference);
    actor->SetDisplayExtent(0, k_Side - 1, 0, k_Side - 1, 0, 0);
    renderer()->AddViewProp(actor);
    renderer()->ResetCamera();
    window()->Render();
  }
  vtkRenderer* renderer() { return view.getVisualizationWidget()->getRenderer(); }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
};

std::unique_ptr<LibraryScene> s_Library;
std::unique_ptr<BareScene> s_Bare;

void librarySliceStep(benchmark::State& state)
{
  int number = 0;
  for (auto _ : state)
  {
    number = (number + 1) % k_Side;
    s_Library->slice->sliceSpinBoxValueChanged(number);
    s_Library->window()->Render();
    s_Library->window()->WaitForCompletion();
  }
}

void bareSliceStep(benchmark::State& state)
{
  int number = 0;
  for (auto _ : state)
  {
    number = (number + 1) % k_Side;
    s_Bare->actor->SetDisplayExtent(0, k_Side - 1, 0, k_Side - 1, number, number);
    s_Bare->window()->Render();
    s_Bare->window()->WaitForCompletion();
  }
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

  vtkSmartPointer<vtkUnsignedCharArray> density = Voxels();
  s_Library = std::make_unique<LibraryScene>(density);
  if (s_Library->slice == nullptr)
  {
    std::fprintf(stderr, "the image was not shown as an image slice\n");
    return 1;
  }
  s_Bare = std::make_unique<BareScene>(density, s_Library->slice->imageActor()->GetProperty());

  for (auto [name, function] : { std::pair{ "slice_step/library_512", &librarySliceStep },
                                 std::pair{ "slice_step/bare_vtk_512", &bareSliceStep } })
  {
    benchmark::RegisterBenchmark(name, function)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime()
      ->MeasureProcessCPUTime()
      ->Iterations(k_StepsPerRound)
      ->Repetitions(k_Rounds);
  }
  kxbench::MedianRecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatio("slice_step_vs_bare_vtk", "slice_step/library_512", "slice_step/bare_vtk_512",
                      "1.1");
  reporter.printCpuRatio("slice_step_vs_bare_vtk", "slice_step/library_512",
                         "slice_step/bare_vtk_512");
  s_Bare.reset();
  s_Library.reset();
  return 0;
}
