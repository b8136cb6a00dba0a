// Cost of presenting a large host array to VTK: our zero-copy wrap against a
// raw parallel min/max over the same buffer (the machine's limit) and against
// VTK's own path (deep copy into a VTK array, then its range). All figures of
// one run are measured side by side, so the ratios hold on a noisy machine.
#include <bridge/VtkBridge.hpp>

#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/DataStructure.hpp>

#include "RecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_reduce.h>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkSmartPointer.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>
#include <unistd.h>

using namespace kx::core;

namespace
{
constexpr usize k_FloatCount = (usize{ 1 } << 30) / sizeof(float); // 1 GiB
constexpr usize k_ByteCount = usize{ 256 } << 20;                  // 256 Mi elements

template<typename T>
struct Fixture
{
  DataStructure ds;
  DataArray<T>* array = nullptr;
  std::shared_ptr<DataStore<T>> store;

  explicit Fixture(usize count)
  {
    store = std::make_shared<DataStore<T>>(ShapeType{ count }, ShapeType{ 1 });
    T* data = store->data();
    // fill in parallel: first touch places the pages, as a host pipeline would
    tbb::parallel_for(tbb::blocked_range<usize>(0, count),
                      [data](const tbb::blocked_range<usize>& r)
                      {
                        for (usize i = r.begin(); i < r.end(); i++)
                          data[i] = static_cast<T>((i * 2654435761u) % 251);
                      });
    array = DataArray<T>::Create(ds, "Values", store);
  }
};

template<typename T>
Fixture<T>& fixture()
{
  static Fixture<T> instance(std::is_same_v<T, float> ? k_FloatCount : k_ByteCount);
  return instance;
}

template<typename T>
void wrap(benchmark::State& state)
{
  auto& f = fixture<T>();
  for (auto _ : state)
  {
    vtkSmartPointer<vtkDataArray> wrapped = CV::VtkBridge::WrapDataArray(f.ds, f.array->getId());
    double range[2];
    wrapped->GetRange(range, 0);
    benchmark::DoNotOptimize(range[1]);
  }
  state.SetBytesProcessed(
    static_cast<int64_t>(state.iterations() * f.store->getSize() * sizeof(T)));
}

template<typename T>
void rawPass(benchmark::State& state)
{
  auto& f = fixture<T>();
  const T* data = f.store->data();
  const usize count = f.store->getSize();
  using MinMax = std::pair<T, T>;
  for (auto _ : state)
  {
    MinMax result = tbb::parallel_reduce(
      tbb::blocked_range<usize>(0, count),
      MinMax{ std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest() },
      [data](const tbb::blocked_range<usize>& r, MinMax acc)
      {
        for (usize i = r.begin(); i < r.end(); i++)
        {
          acc.first = data[i] < acc.first ? data[i] : acc.first;
          acc.second = data[i] > acc.second ? data[i] : acc.second;
        }
        return acc;
      },
      [](MinMax a, MinMax b)
      { return MinMax{ std::min(a.first, b.first), std::max(a.second, b.second) }; });
    benchmark::DoNotOptimize(result);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * count * sizeof(T)));
}

template<typename T>
vtkSmartPointer<vtkDataArray> vtkCopy(const Fixture<T>& f)
{
  // VTK's way in: a VTK array of its own that holds a copy of the host's data
  vtkSmartPointer<vtkDataArray> wrapped =
    CV::VtkBridge::WrapDataArray(const_cast<DataStructure&>(f.ds), f.array->getId());
  auto copy = vtkSmartPointer<vtkAOSDataArrayTemplate<T>>::New();
  copy->DeepCopy(wrapped);
  return copy;
}

template<typename T>
void vtkDeepCopy(benchmark::State& state)
{
  auto& f = fixture<T>();
  for (auto _ : state)
  {
    // the source is a plain VTK array, so only the copy and VTK's range are timed
    state.PauseTiming();
    auto source = vtkSmartPointer<vtkAOSDataArrayTemplate<T>>::New();
    source->SetArray(f.store->data(), static_cast<vtkIdType>(f.store->getSize()), 1);
    state.ResumeTiming();
    auto copy = vtkSmartPointer<vtkAOSDataArrayTemplate<T>>::New();
    copy->DeepCopy(source);
    double range[2];
    copy->GetRange(range, 0);
    benchmark::DoNotOptimize(range[1]);
  }
  state.SetBytesProcessed(
    static_cast<int64_t>(state.iterations() * f.store->getSize() * sizeof(T)));
}

BENCHMARK(wrap<float>)
  ->Name("wrap/float_1GiB")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(rawPass<float>)
  ->Name("raw_pass/float_1GiB")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(vtkDeepCopy<float>)
  ->Name("vtk_deepcopy/float_1GiB")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(3);
BENCHMARK(wrap<uint8>)
  ->Name("wrap/uint8_256Mi")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(rawPass<uint8>)
  ->Name("raw_pass/uint8_256Mi")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(vtkDeepCopy<uint8>)
  ->Name("vtk_deepcopy/uint8_256Mi")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(3);

/** Resident set size in bytes. */
long residentBytes()
{
  std::ifstream statm("/proc/self/statm");
  long pages = 0;
  long resident = 0;
  statm >> pages >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

} // namespace

int main(int argc, char** argv)
{
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  kxbench::RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::printf("\n");
  reporter.printRatio("wrap_vs_raw_pass_float", "wrap/float_1GiB", "raw_pass/float_1GiB", "1.5");
  reporter.printRatio("vtk_deepcopy_vs_wrap_float", "vtk_deepcopy/float_1GiB", "wrap/float_1GiB",
                      "-");
  reporter.printRatio("wrap_vs_raw_pass_uint8", "wrap/uint8_256Mi", "raw_pass/uint8_256Mi", "1.5");
  reporter.printRatio("vtk_deepcopy_vs_wrap_uint8", "vtk_deepcopy/uint8_256Mi", "wrap/uint8_256Mi",
                      "-");

  // memory a presentation adds, beyond the host's own 1 GiB
  auto& f = fixture<float>();
  const long before = residentBytes();
  vtkSmartPointer<vtkDataArray> wrapped = CV::VtkBridge::WrapDataArray(f.ds, f.array->getId());
  const long afterWrap = residentBytes();
  vtkSmartPointer<vtkDataArray> copy = vtkCopy(f);
  double range[2];
  copy->GetRange(range, 0);
  const long afterCopy = residentBytes();
  std::printf("MEMORY wrap_float_1GiB %ld\n", std::max(0L, afterWrap - before));
  std::printf("MEMORY vtk_deepcopy_float_1GiB %ld\n", std::max(0L, afterCopy - afterWrap));
  return 0;
}
