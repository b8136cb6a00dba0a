// Rendering costs of a view: how many frames a burst of render requests costs
// (the answer must be one), and the frame time of a surface data view of a
// one-million-triangle mesh against a bare VTK pipeline drawing the same mesh
// with the same actor settings and multisampling, measured side by side.
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXOutlineRepPimpl.hpp>
#include <visualization/VXPipeline.hpp>

#include "MedianRecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <QVTKOpenGLNativeWidget.h>
#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkPlaneSource.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderer.h>
#include <vtkTriangleFilter.h>
#include <vtkXMLPolyDataWriter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{
constexpr int k_Size = 600;
constexpr int k_Rounds = 7;
constexpr int k_FramesPerRound = 3;

class BenchView : public VXAbstractViewWidget
{
public:
  using VXAbstractViewWidget::VXAbstractViewWidget;
  VXAbstractViewWidget* clone() override { return new BenchView(); }
  VXAbstractViewWidget* newInstance() override { return new BenchView(); }
};

/** The library's path: a file imported into a pipeline, shown as a surface. */
struct LibraryScene
{
  BenchView view;
  VXPipeline pipeline;
  vtkActor* actor = nullptr;

  explicit LibraryScene(const QString& meshFile)
  {
    view.setupView();
    view.resize(k_Size, k_Size);
    view.show();
    pipeline.setActiveViewWidget(&view);
    VXPipeline::setDefaultTriangleRepType(VXRepresentation::Surface);
    pipeline.importFile(meshFile);
    QCoreApplication::processEvents();
    for (QObject* child : pipeline.bridges().first()->dataSources().first()->children())
    {
      if (auto* representation = qobject_cast<VXRepresentation*>(child))
      {
        if (auto* pimpl = dynamic_cast<VXOutlineRepPimpl*>(representation->implementation(&view)))
          actor = pimpl->actor();
      }
    }
    view.getVisualizationWidget()->getRenderer()->ResetCamera();
  }
  vtkRenderWindow* window() { return view.getVisualizationWidget()->renderWindow(); }
  vtkCamera* camera() { return view.getVisualizationWidget()->getRenderer()->GetActiveCamera(); }
};

/** VTK alone: one renderer, one mapper and actor, the same window settings. */
struct BareScene
{
  QVTKOpenGLNativeWidget widget;
  vtkNew<vtkGenericOpenGLRenderWindow> renderWindow;
  vtkNew<vtkRenderer> renderer;
  vtkNew<vtkPolyDataMapper> mapper;
  vtkNew<vtkActor> actor;

  BareScene(vtkPolyData* mesh, vtkActor* reference)
  {
    renderWindow->SetMultiSamples(8);
    widget.setRenderWindow(renderWindow);
    renderWindow->AddRenderer(renderer);
    mapper->SetInputData(mesh);
    mapper->ScalarVisibilityOff();
    actor->SetMapper(mapper);
    if (reference != nullptr)
      actor->GetProperty()->DeepCopy(reference->GetProperty());
    renderer->AddActor(actor);
    widget.resize(k_Size, k_Size);
    widget.show();
    QCoreApplication::processEvents();
    renderer->ResetCamera();
  }
};

std::unique_ptr<LibraryScene> s_Library;
std::unique_ptr<BareScene> s_Bare;

void frameLoop(benchmark::State& state, vtkRenderWindow* window, vtkCamera* camera)
{
  window->Render();
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
  // the rounds of the two scenes alternate in random order unless asked otherwise
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, interleave.data());
  int argumentCount = static_cast<int>(arguments.size());
  benchmark::Initialize(&argumentCount, arguments.data());

  // a burst of requests in one turn of the event loop
  {
    BenchView view;
    view.setupView();
    view.resize(300, 300);
    view.show();
    QCoreApplication::processEvents();
    VXVisualizationWidget* widget = view.getVisualizationWidget();
    QCoreApplication::processEvents();
    const int before = widget->frameCount();
    constexpr int k_Requests = 1000;
    for (int i = 0; i < k_Requests; i++)
      widget->render();
    QCoreApplication::processEvents();
    std::printf("FRAMES render_requests_%d %d\n", k_Requests, widget->frameCount() - before);
  }

  // a plane of 708 x 708 quads, split: 1,002,528 triangles
  vtkNew<vtkPlaneSource> plane;
  plane->SetResolution(708, 708);
  vtkNew<vtkTriangleFilter> triangles;
  triangles->SetInputConnection(plane->GetOutputPort());
  triangles->Update();
  QTemporaryDir dir;
  const QString meshFile = QDir(dir.path()).filePath("mesh.vtp");
  vtkNew<vtkXMLPolyDataWriter> writer;
  writer->SetInputData(triangles->GetOutput());
  writer->SetFileName(meshFile.toStdString().c_str());
  writer->Write();
  std::printf("mesh: %lld triangles\n",
              static_cast<long long>(triangles->GetOutput()->GetNumberOfPolys()));

  s_Library = std::make_unique<LibraryScene>(meshFile);
  s_Bare = std::make_unique<BareScene>(triangles->GetOutput(), s_Library->actor);
  // Both scenes draw the same number of frames in rounds taken in shuffled
  // order, so that a change of machine load hits both; the ratio is formed
  // from each side's median round.
  for (auto [name, function] : { std::pair{ "frame/library_surface_1M", &libraryFrame },
                                 std::pair{ "frame/bare_vtk_1M", &bareFrame } })
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
  reporter.printRatio("surface_frame_vs_bare_vtk", "frame/library_surface_1M", "frame/bare_vtk_1M",
                      "1.05");
  reporter.printCpuRatio("surface_frame_vs_bare_vtk", "frame/library_surface_1M",
                         "frame/bare_vtk_1M");
  s_Bare.reset();
  s_Library.reset();
  return 0;
}
