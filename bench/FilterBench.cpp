// Visual filters on a 256^3 float volume handed over by the host: clip by a plane, slice and
// threshold run through the tree (the filter's own apply) against the bare VTK algorithm on
// the same input with the same parameters, measured side by side in shuffled rounds. Also
// checks that the filter reads the host's array itself, not a copy.
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXFSlice.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPlane.hpp>

#include "HostVolume.hpp"
#include "MedianRecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <vtkAlgorithmOutput.h>
#include <vtkCellData.h>
#include <vtkCutter.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkPlane.h>
#include <vtkTableBasedClipDataSet.h>
#include <vtkThreshold.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{
/** The tree: the host's volume imported, with a clip, a slice and a threshold under it. */
struct Tree
{
  kxbench::BenchView view;
  VXPipeline pipeline;
  kxbench::BenchController controller;
  VXDataSource* source = nullptr;
  VXFClip* clip = nullptr;
  VXFSlice* slice = nullptr;
  VXFThreshold* threshold = nullptr;
  vtkDataSet* input = nullptr;

  explicit Tree(std::shared_ptr<kx::core::DataStructure>& structure)
  {
    view.setupView();
    view.resize(300, 300);
    view.show();
    QCoreApplication::processEvents();
    pipeline.setActiveViewWidget(&view);
    // the filters alone are measured: no data view draws the volume or the results
    VXPipeline::setDefaultImageGeomRepType(VXRepresentation::None);
    pipeline.importPipelineOutput(&controller, structure);
    source = pipeline.bridges().front()->dataSources().front();
    clip = new VXFClip();
    slice = new VXFSlice();
    threshold = new VXFThreshold();
    for (VXFilter* filter : std::initializer_list<VXFilter*>{ clip, slice, threshold })
    {
      pipeline.addFilter(source, filter);
      filter->setShouldAddRep(false);
    }
    input = clip->inputDataSet();
    // an eighth of the volume stays: x below 32
    clip->plane()->setValues({ 1.0, 0.0, 0.0 }, { 32.0, 128.0, 128.0 });
    slice->plane()->setValues({ 0.0, 0.0, 1.0 }, { 128.0, 128.0, 100.5 });
    threshold->setActiveArrayInfoIndex(0);
    threshold->setUserRange(150.0, 200.0);
  }
};

/** The same algorithms, set up by hand on the same data set. */
struct Bare
{
  vtkNew<vtkTableBasedClipDataSet> clip;
  vtkNew<vtkCutter> slice;
  vtkNew<vtkThreshold> threshold;

  explicit Bare(vtkDataSet* input)
  {
    vtkNew<vtkPlane> clipPlane;
    clipPlane->SetNormal(1.0, 0.0, 0.0);
    clipPlane->SetOrigin(32.0, 128.0, 128.0);
    clip->SetInputData(input);
    clip->SetClipFunction(clipPlane);
    clip->SetInsideOut(true);
    vtkNew<vtkPlane> slicePlane;
    slicePlane->SetNormal(0.0, 0.0, 1.0);
    slicePlane->SetOrigin(128.0, 128.0, 100.5);
    slice->SetInputData(input);
    slice->SetCutFunction(slicePlane);
    threshold->SetInputData(input);
    threshold->SetLowerThreshold(150.0);
    threshold->SetUpperThreshold(200.0);
    threshold->SetThresholdFunction(vtkThreshold::THRESHOLD_BETWEEN);
    threshold->SetComponentModeToUseSelected();
    threshold->SetSelectedComponent(0);
    threshold->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS_THEN_CELLS,
                                      "Density");
  }
};

std::unique_ptr<Tree> s_Tree;
std::unique_ptr<Bare> s_Bare;

template<typename Run>
void measure(benchmark::State& state, vtkAlgorithm* algorithm, Run run)
{
  for (auto _ : state)
  {
    // each round runs the algorithm again, as a changed parameter would
    algorithm->Modified();
    run();
  }
}

void treeClip(benchmark::State& state)
{
  measure(state, s_Tree->clip->clipFilter(), [] { s_Tree->clip->applyFilter(); });
}
void bareClip(benchmark::State& state)
{
  measure(state, s_Bare->clip, [] { s_Bare->clip->Update(); });
}
void treeSlice(benchmark::State& state)
{
  measure(state, s_Tree->slice->cutter(), [] { s_Tree->slice->applyFilter(); });
}
void bareSlice(benchmark::State& state)
{
  measure(state, s_Bare->slice, [] { s_Bare->slice->Update(); });
}
void treeThreshold(benchmark::State& state)
{
  measure(state, s_Tree->threshold->thresholdFilter(), [] { s_Tree->threshold->applyFilter(); });
}
void bareThreshold(benchmark::State& state)
{
  measure(state, s_Bare->threshold, [] { s_Bare->threshold->Update(); });
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
  s_Tree = std::make_unique<Tree>(structure);
  vtkDataArray* density =
    s_Tree->input != nullptr ? s_Tree->input->GetCellData()->GetArray("Density") : nullptr;
  if (density == nullptr)
  {
    std::fprintf(stderr, "the host volume did not reach the filters\n");
    return 1;
  }
  std::printf("SHARED filter_input_shares_host_array %s\n",
              density->GetVoidPointer(0) == values ? "yes" : "no");
  s_Bare = std::make_unique<Bare>(s_Tree->input);

  const std::vector<std::pair<const char*, void (*)(benchmark::State&)>> runs = {
    { "filter/tree_clip_256", &treeClip },
    { "filter/bare_clip_256", &bareClip },
    { "filter/tree_slice_256", &treeSlice },
    { "filter/bare_slice_256", &bareSlice },
    { "filter/tree_threshold_256", &treeThreshold },
    { "filter/bare_threshold_256", &bareThreshold },
  };
  for (const auto& [name, function] : runs)
  {
    benchmark::RegisterBenchmark(name, function)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime()
      ->MeasureProcessCPUTime()
      ->Iterations(1)
      ->Repetitions(9);
  }
  kxbench::MedianRecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  for (const char* name : { "clip", "slice", "threshold" })
  {
    const std::string tree = std::string("filter/tree_") + name + "_256";
    const std::string bare = std::string("filter/bare_") + name + "_256";
    const std::string ratio = std::string(name) + "_vs_bare_vtk";
    reporter.printRatio(ratio.c_str(), tree, bare, "1.05");
  }
  s_Bare.reset();
  s_Tree.reset();
  return 0;
}
