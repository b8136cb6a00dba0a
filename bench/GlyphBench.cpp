// The glyph data view on one million points, thinned to every 10th point: one frame (the camera
// turned a little, the frame drawn) against a bare vtkGlyph3DMapper over the same points with the
// same mask, shape, orientation, scale and colours, side by side in one run, each in a render view
// of the library's own kind.
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXGlyphRepPimpl.hpp>
#include <visualization/VXPipeline.hpp>

#include "HostVolume.hpp"
#include "MedianRecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <vtkActor.h>
#include <vtkArrowSource.h>
#include <vtkCamera.h>
#include <vtkFloatArray.h>
#include <vtkGlyph3DMapper.h>
#include <vtkImageData.h>
#include <vtkMaskPoints.h>
#include <vtkPointData.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QApplication>

#include <cmath>
#include <cstdio>
#include <memory>

namespace
{
constexpr int k_Side = 100; // 100^3 = one million points
constexpr int k_Stride = 10;
constexpr int k_Size = 600;
constexpr int k_Rounds = 5;
constexpr int k_FramesPerRound = 10;

/** One million points with a swirling "Velocity" and its "Speed". */
vtkSmartPointer<vtkImageData> Points()
{
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->SetDimensions(k_Side, k_Side, k_Side);
  const vtkIdType n = image->GetNumberOfPoints();
  vtkNew<vtkFloatArray> velocity;
  velocity->SetName("Velocity");
  velocity->SetNumberOfComponents(3);
  velocity->SetNumberOfTuples(n);
  vtkNew<vtkFloatArray> speed;
  speed->SetName("Speed");
  speed->SetNumberOfTuples(n);
  for (vtkIdType i = 0; i < n; ++i)
  {
    double p[3];
    image->GetPoint(i, p);
    const double vx = -(p[1] - 50.0);
    const double vy = p[0] - 50.0;
    const double vz = 0.2 * (p[2] - 50.0);
    velocity->SetTuple3(i, vx, vy, vz);
    speed->SetValue(i, static_cast<float>(std::sqrt(vx * vx + vy * vy + vz * vz)));
  }
  image->GetPointData()->SetVectors(velocity);
  image->GetPointData()->SetScalars(speed);
  return image;
}

/** The library's path: a data source over the points, shown as glyphs of every 10th point. */
struct LibraryScene
{
  kxbench::BenchView view;
  VXPipeline pipeline;
  VXGlyphRepPimpl* glyphs = nullptr;

  explicit LibraryScene(vtkImageData* points)
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    QCoreApplication::processEvents();
    auto* source = new VXDataSource(&pipeline);
    source->setBaseName("Points");
    source->setDataSet(points);
    pipeline.setActiveViewWidget(&view);
    pipeline.addRepresentation(source, VXRepresentation::Glyph);
    for (VXRepresentation* representation : source->findChildren<VXRepresentation*>())
      glyphs = dynamic_cast<VXGlyphRepPimpl*>(representation->implementation(&view));
    if (glyphs == nullptr)
      return;
    glyphs->setSamplingMode(VXGlyphRepPimpl::EveryNthPoint);
    glyphs->setStride(k_Stride);
    renderer()->ResetCamera();
    window()->Render();
  }
  vtkRenderer* renderer() { return view.getVisualizationWidget()->getRenderer(); }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
};

/**
 * A bare vtkGlyph3DMapper behind a vtkMaskPoints over the same points (shared, not copied) with
 * the library's settings, in a render view of its own of the same kind: the same layers and
 * multisampling, so that the two sides differ only by the data view's work.
 */
struct BareScene
{
  kxbench::BenchView view;
  vtkNew<vtkMaskPoints> mask;
  vtkNew<vtkArrowSource> arrow;
  vtkNew<vtkGlyph3DMapper> mapper;
  vtkNew<vtkActor> actor;

  BareScene(vtkImageData* points, vtkGlyph3DMapper* reference)
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    QCoreApplication::processEvents();
    mask->SetInputData(points);
    mask->SetOnRatio(k_Stride);
    mask->SetMaximumNumberOfPoints(VTK_ID_MAX);
    mask->RandomModeOff();
    mapper->SetInputConnection(mask->GetOutputPort());
    mapper->SetSourceConnection(arrow->GetOutputPort());
    mapper->SetOrientationArray("Velocity");
    mapper->SetOrientationModeToDirection();
    mapper->SetScaleModeToNoDataScaling();
    mapper->SetScaleFactor(reference->GetScaleFactor());
    mapper->SetScalarModeToUsePointFieldData();
    mapper->ColorByArrayComponent("Speed", -1);
    mapper->SetLookupTable(reference->GetLookupTable());
    mapper->SetUseLookupTableScalarRange(true);
    actor->SetMapper(mapper);
    renderer()->AddViewProp(actor);
    renderer()->ResetCamera();
    window()->Render();
  }
  vtkRenderer* renderer() { return view.getVisualizationWidget()->getRenderer(); }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
};

std::unique_ptr<LibraryScene> s_Library;
std::unique_ptr<BareScene> s_Bare;

template<typename Scene>
void frame(benchmark::State& state, Scene& scene)
{
  for (auto _ : state)
  {
    scene.renderer()->GetActiveCamera()->Azimuth(2.0);
    scene.window()->Render();
    scene.window()->WaitForCompletion();
  }
}

void libraryFrame(benchmark::State& state)
{
  frame(state, *s_Library);
}

void bareFrame(benchmark::State& state)
{
  frame(state, *s_Bare);
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

  vtkSmartPointer<vtkImageData> points = Points();
  s_Library = std::make_unique<LibraryScene>(points);
  if (s_Library->glyphs == nullptr || s_Library->glyphs->glyphCount() != 100000)
  {
    std::fprintf(stderr, "the points were not shown as 100000 glyphs\n");
    return 1;
  }
  s_Bare = std::make_unique<BareScene>(points, s_Library->glyphs->glyphMapper());

  for (auto [name, function] : { std::pair{ "glyph_frame/library_1M_every_10th", &libraryFrame },
                                 std::pair{ "glyph_frame/bare_vtk_1M_every_10th", &bareFrame } })
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
  reporter.printRatio("glyph_frame_vs_bare_vtk", "glyph_frame/library_1M_every_10th",
                      "glyph_frame/bare_vtk_1M_every_10th", "1.1");
  reporter.printCpuRatio("glyph_frame_vs_bare_vtk", "glyph_frame/library_1M_every_10th",
                         "glyph_frame/bare_vtk_1M_every_10th");
  s_Bare.reset();
  s_Library.reset();
  return 0;
}
