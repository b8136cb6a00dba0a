#pragma once

#include "bridge/Array.hpp"
#include "utils/ParallelHistogramFunctor.hpp"

#include <QtCore/QString>

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_group.h>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkDataArray.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace KXVtk::utils
{
/**
 * The values of @p array as one buffer of T when it keeps them so (VTK's
 * array-of-structures arrays and the adaptor over an in-memory host store),
 * otherwise null. Nothing is copied.
 */
template<typename T>
const T* ContiguousHistogramValues(vtkDataArray* array)
{
  if (array == nullptr || array->GetNumberOfValues() == 0)
    return nullptr;
  if (auto* aos = vtkAOSDataArrayTemplate<T>::FastDownCast(array))
    return aos->GetPointer(0);
  if constexpr (std::is_integral_v<T> && sizeof(T) == 8)
  {
    // VTK's 64-bit arrays hold long long, which may be another type than int64_t
    using Alias = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
    if constexpr (!std::is_same_v<Alias, T> && sizeof(Alias) == sizeof(T))
    {
      if (auto* aos = vtkAOSDataArrayTemplate<Alias>::FastDownCast(array))
        return reinterpret_cast<const T*>(aos->GetPointer(0));
    }
  }
  if (auto* adaptor = CV::Array<T>::SafeDownCast(array))
  {
    if (auto store = adaptor->GetDataStore())
      return store->data();
  }
  return nullptr;
}

/**
 * Counts the values of one component of an array in equal bins, in parallel.
 * Stateless; the call operator runs for the array's element type T, chosen by
 * ExecuteVtkDataFunctionNoBool. Bin arithmetic is in single precision; the
 * top edge of the range is exclusive; NaN, infinities and values outside the
 * range are left out of every bin.
 */
class GenerateHistogramFunctor
{
public:
  /**
   * @param useCustomRange false: the range is the array's finite range of @p component
   * @param range the range used when @p useCustomRange is true
   * @param binMinimums, binMaximums the edges of each bin
   * @param binMinimumLabels, binMaximumLabels the edges as text, six significant digits
   * @param histogram one count per bin
   * @param component the component; -1 the magnitude (the value itself for one component)
   * @throws std::out_of_range when the array has no such component
   */
  template<typename T>
  void operator()(vtkDataArray* array, bool useCustomRange, const std::array<double, 2>& range,
                  std::vector<double>& binMinimums, std::vector<double>& binMaximums,
                  std::vector<std::string>& binMinimumLabels,
                  std::vector<std::string>& binMaximumLabels, int numBins,
                  std::vector<double>& histogram, int component) const
  {
    if (numBins < 0)
      numBins = 0;
    const int numComponents = array != nullptr ? array->GetNumberOfComponents() : 1;
    if (component < 0 && numComponents == 1)
      component = 0;
    if (component >= numComponents)
      throw std::out_of_range("Component " + std::to_string(component) +
                              " is out of range for an array of " + std::to_string(numComponents) +
                              " components");

    double bounds[2] = { range[0], range[1] };
    if (!useCustomRange && array != nullptr)
      array->GetFiniteRange(bounds, component < 0 ? -1 : component);
    const T lowest = HistogramValueCast<T>(bounds[0]);
    const T highest = HistogramValueCast<T>(bounds[1]);

    float width;
    if constexpr (std::is_floating_point_v<T>)
      width = (static_cast<float>(bounds[1]) - static_cast<float>(bounds[0])) /
              static_cast<float>(numBins);
    else
      width = HistogramDifference(highest, lowest) / static_cast<float>(numBins);

    std::vector<T> edges(2 * static_cast<std::size_t>(numBins));
    if (numBins == 1)
    {
      edges[0] = lowest;
      edges[1] = highest;
    }
    else
    {
      for (int i = 0; i < numBins; i++)
      {
        edges[2 * i] = edgeAt(static_cast<float>(i) * width, lowest);
        edges[2 * i + 1] = edgeAt(static_cast<float>(i + 1) * width, lowest);
      }
    }

    histogram.assign(static_cast<std::size_t>(numBins), 0.0);

    using Functor = ParallelHistogramFunctor<T>;
    typename Functor::Bins bins(
      [numBins]() { return std::vector<std::size_t>(static_cast<std::size_t>(numBins), 0); });
    typename Functor::Rejected rejected([]() { return std::size_t{ 0 }; });

    const std::size_t tuples =
      array != nullptr ? static_cast<std::size_t>((array->GetMaxId() + 1) / numComponents) : 0;
    if (tuples > 0)
    {
      const Functor body(array, lowest, highest, width, numBins, component, bins, rejected,
                         ContiguousHistogramValues<T>(array));
      tbb::task_group_context context;
      tbb::parallel_for(tbb::blocked_range<std::size_t>(0, tuples, 1), body,
                        tbb::auto_partitioner(), context);
    }

    for (const std::vector<std::size_t>& counts : bins)
    {
      for (std::size_t i = 0; i < counts.size(); i++)
        histogram[i] += static_cast<double>(counts[i]);
    }
    std::atomic<std::size_t> rejectedTotal{ 0 };
    for (std::size_t count : rejected)
      rejectedTotal += count;

    const std::size_t n = static_cast<std::size_t>(numBins);
    binMinimums.resize(n);
    binMaximums.resize(n);
    binMinimumLabels.resize(n);
    binMaximumLabels.resize(n);
    for (std::size_t i = 0; i < n; i++)
    {
      binMinimums[i] = static_cast<double>(edges[2 * i]);
      binMaximums[i] = static_cast<double>(edges[2 * i + 1]);
      binMinimumLabels[i] = QString::number(binMinimums[i], 'g', 6).toStdString();
      binMaximumLabels[i] = QString::number(binMaximums[i], 'g', 6).toStdString();
    }
  }

private:
  /** lowest + offset: in T's arithmetic for integers, in single precision for floating types. */
  template<typename T>
  static T edgeAt(float offset, T lowest)
  {
    if constexpr (std::is_floating_point_v<T>)
      return static_cast<T>(offset + lowest);
    else if constexpr (sizeof(T) < 8)
      return HistogramValueCast<T>(static_cast<double>(
        static_cast<std::int64_t>(HistogramValueCast<T>(offset)) + std::int64_t{ lowest }));
    else
    {
      using U = std::make_unsigned_t<T>;
      return static_cast<T>(
        static_cast<U>(static_cast<U>(HistogramValueCast<T>(offset)) + static_cast<U>(lowest)));
    }
  }
};
} // namespace KXVtk::utils
