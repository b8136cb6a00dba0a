// Cost of the histogram's counting pass: our functor on a VTK array against a
// plain parallel kernel with thread-local bins over the same buffer (the
// machine's limit), and VTK's image histogram filters on the same values as
// an image. All figures of one run are measured side by side, so the ratios
// hold on a noisy machine.
#include <utils/ExecuteVtkDataFunction.hpp>
#include <utils/GenerateHistogramFunctor.hpp>

#include "RecordingReporter.hpp"

#include <benchmark/benchmark.h>

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>

#include <vtkFloatArray.h>
#include <vtkImageAccumulate.h>
#include <vtkImageData.h>
#include <vtkImageHistogram.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedCharArray.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace
{
constexpr int k_Bins = 200;
constexpr vtkIdType k_FloatCount = 250'000'000;           // 1000 x 1000 x 250
constexpr vtkIdType k_ByteCount = vtkIdType{ 256 } << 20; // 1024 x 1024 x 256

/** One array, allocated and filled once, shared by every benchmark of its type. */
template<typename ArrayT>
struct Fixture
{
  using T = typename ArrayT::ValueType;
  vtkNew<ArrayT> array;
  vtkNew<vtkImageData> image;
  double range[2] = { 0.0, 0.0 };

  Fixture(vtkIdType count, int nz)
  {
    array->SetName("Values");
    array->SetNumberOfValues(count);
    T* data = array->GetPointer(0);
    // fill in parallel: first touch places the pages, as a producing filter would
    tbb::parallel_for(tbb::blocked_range<vtkIdType>(0, count),
                      [data](const tbb::blocked_range<vtkIdType>& r)
                      {
                        for (vtkIdType i = r.begin(); i < r.end(); i++)
                        {
                          const auto mixed = static_cast<std::uint64_t>(i) * 2654435761u;
                          if constexpr (std::is_floating_point_v<T>)
                            data[i] = static_cast<T>(mixed % 100003) * 0.01f;
                          else
                            data[i] = static_cast<T>(mixed % 256);
                        }
                      });
    // the finite range is computed once and cached by the array, as in a session
    array->GetFiniteRange(range, 0);
    const int nxy = static_cast<int>(std::sqrt(static_cast<double>(count / nz)));
    image->SetDimensions(nxy, nxy, nz);
    image->GetPointData()->SetScalars(array);
  }
};

Fixture<vtkFloatArray>& floats()
{
  static Fixture<vtkFloatArray> instance(k_FloatCount, 250);
  return instance;
}

Fixture<vtkUnsignedCharArray>& bytes()
{
  static Fixture<vtkUnsignedCharArray> instance(k_ByteCount, 256);
  return instance;
}

template<typename F>
F& fixture()
{
  if constexpr (std::is_same_v<F, Fixture<vtkFloatArray>>)
    return floats();
  else
    return bytes();
}

/** PopulateHistogram's counting pass: the functor, dispatched on the array's type. */
template<typename F>
void ours(benchmark::State& state)
{
  auto& f = fixture<F>();
  std::vector<double> minimums, maximums, histogram;
  std::vector<std::string> minimumLabels, maximumLabels;
  for (auto _ : state)
  {
    KXVtk::utils::ExecuteVtkDataFunctionNoBool(
      KXVtk::utils::GenerateHistogramFunctor(), f.array->GetDataType(), f.array.Get(), false,
      std::array<double, 2>{ 0.0, 0.0 }, minimums, maximums, minimumLabels, maximumLabels, k_Bins,
      histogram, 0);
    benchmark::DoNotOptimize(histogram.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * f.array->GetNumberOfValues() *
                          f.array->GetDataTypeSize());
}

/** The same binning written straight over the buffer: the machine's limit. */
template<typename F>
void rawKernel(benchmark::State& state)
{
  auto& f = fixture<F>();
  using T = typename F::T;
  const T* data = f.array->GetPointer(0);
  const std::size_t count = static_cast<std::size_t>(f.array->GetNumberOfValues());
  const T lowest = static_cast<T>(f.range[0]);
  float width;
  if constexpr (std::is_floating_point_v<T>)
    width = (static_cast<float>(f.range[1]) - static_cast<float>(f.range[0])) / k_Bins;
  else
    width = static_cast<float>(static_cast<T>(f.range[1]) - lowest) / k_Bins;
  std::vector<double> histogram(k_Bins);
  for (auto _ : state)
  {
    tbb::enumerable_thread_specific<std::vector<std::size_t>> bins(
      []() { return std::vector<std::size_t>(k_Bins, 0); });
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count),
                      [&](const tbb::blocked_range<std::size_t>& r)
                      {
                        std::size_t* counts = bins.local().data();
                        for (std::size_t i = r.begin(); i < r.end(); i++)
                        {
                          const float position = static_cast<float>(data[i] - lowest) / width;
                          if (position >= 0.0f && position < static_cast<float>(k_Bins))
                            counts[static_cast<int>(position)]++;
                        }
                      });
    std::fill(histogram.begin(), histogram.end(), 0.0);
    for (const auto& counts : bins)
      for (int b = 0; b < k_Bins; b++)
        histogram[b] += static_cast<double>(counts[b]);
    benchmark::DoNotOptimize(histogram.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * f.array->GetNumberOfValues() *
                          f.array->GetDataTypeSize());
}

/** VTK's way over an image: vtkImageHistogram with the same 200 bins. */
void vtkHistogram(benchmark::State& state)
{
  auto& f = floats();
  vtkNew<vtkImageHistogram> filter;
  filter->SetInputData(f.image);
  filter->AutomaticBinningOff();
  filter->SetNumberOfBins(k_Bins);
  filter->SetBinOrigin(f.range[0]);
  filter->SetBinSpacing((f.range[1] - f.range[0]) / k_Bins);
  for (auto _ : state)
  {
    filter->Modified();
    filter->Update();
    benchmark::DoNotOptimize(filter->GetTotal());
  }
}

/** VTK's older way: vtkImageAccumulate with the same 200 bins. */
void vtkAccumulate(benchmark::State& state)
{
  auto& f = floats();
  vtkNew<vtkImageAccumulate> filter;
  filter->SetInputData(f.image);
  filter->SetComponentExtent(0, k_Bins - 1, 0, 0, 0, 0);
  filter->SetComponentOrigin(f.range[0], 0.0, 0.0);
  filter->SetComponentSpacing((f.range[1] - f.range[0]) / k_Bins, 0.0, 0.0);
  for (auto _ : state)
  {
    filter->Modified();
    filter->Update();
    benchmark::DoNotOptimize(filter->GetVoxelCount());
  }
}

BENCHMARK(ours<Fixture<vtkFloatArray>>)
  ->Name("Histogram/ours_float_250M")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(rawKernel<Fixture<vtkFloatArray>>)
  ->Name("Histogram/raw_kernel_float_250M")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(vtkHistogram)
  ->Name("Histogram/vtkImageHistogram_float_250M")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(3);
BENCHMARK(vtkAccumulate)
  ->Name("Histogram/vtkImageAccumulate_float_250M")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(3);
BENCHMARK(ours<Fixture<vtkUnsignedCharArray>>)
  ->Name("Histogram/ours_uint8_256Mi")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
BENCHMARK(rawKernel<Fixture<vtkUnsignedCharArray>>)
  ->Name("Histogram/raw_kernel_uint8_256Mi")
  ->Unit(benchmark::kMillisecond)
  ->UseRealTime()
  ->Iterations(5);
} // namespace

int main(int argc, char** argv)
{
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  kxbench::RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  std::printf("\n");
  reporter.printRatio("histogram_vs_raw_kernel_float", "Histogram/ours_float_250M",
                      "Histogram/raw_kernel_float_250M", "1.3");
  reporter.printRatio("histogram_vs_raw_kernel_uint8", "Histogram/ours_uint8_256Mi",
                      "Histogram/raw_kernel_uint8_256Mi", "1.3");
  reporter.printRatio("vtk_image_histogram_vs_histogram_float",
                      "Histogram/vtkImageHistogram_float_250M", "Histogram/ours_float_250M", "-");
  reporter.printRatio("vtk_image_accumulate_vs_histogram_float",
                      "Histogram/vtkImageAccumulate_float_250M", "Histogram/ours_float_250M", "-");
  return 0;
}
