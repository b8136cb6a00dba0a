#pragma once

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>

#include <vtkDataArray.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace KXVtk::utils
{
/**
 * A double as T: integers saturate at T's limits (NaN gives 0) instead of an
 * undefined conversion, floating types convert as usual.
 */
template<typename T>
T HistogramValueCast(double value)
{
  if constexpr (std::is_integral_v<T>)
  {
    if (!(value == value))
      return T(0);
    if (value >= static_cast<double>(std::numeric_limits<T>::max()))
      return std::numeric_limits<T>::max();
    if (value <= static_cast<double>(std::numeric_limits<T>::lowest()))
      return std::numeric_limits<T>::lowest();
  }
  return static_cast<T>(value);
}

/**
 * a - b as float. For integers the difference is exact before the conversion
 * (64-bit integers in their unsigned counterpart, so the widest ranges don't
 * overflow); for floating types it is taken in T.
 */
template<typename T>
float HistogramDifference(T a, T b)
{
  if constexpr (std::is_floating_point_v<T>)
    return static_cast<float>(a - b);
  else if constexpr (sizeof(T) < 8)
    return static_cast<float>(static_cast<std::int64_t>(a) - static_cast<std::int64_t>(b));
  else
  {
    using U = std::make_unsigned_t<T>;
    if (a >= b)
      return static_cast<float>(static_cast<U>(static_cast<U>(a) - static_cast<U>(b)));
    return -static_cast<float>(static_cast<U>(static_cast<U>(b) - static_cast<U>(a)));
  }
}

/**
 * Body of the parallel counting loop of GenerateHistogramFunctor, copied per
 * task. Each thread counts into its own bins and its own rejected count, so
 * the loop has no locks and no atomics; the caller merges afterwards.
 *
 * Every array is read through the virtual GetComponent. An array whose values
 * lie in one buffer may also be given by that buffer, which the loop then
 * reads directly; both paths convert a value the same way, so they count the
 * same.
 */
template<typename T>
class ParallelHistogramFunctor
{
public:
  using Bins = tbb::enumerable_thread_specific<std::vector<std::size_t>>;
  using Rejected = tbb::enumerable_thread_specific<std::size_t>;

  /**
   * @param component the component counted; below 0 the tuple's magnitude
   * @param highest the upper bound; only used when @p binWidth is 0
   * @param buffer the array's values in one buffer, or null to read through GetComponent
   */
  ParallelHistogramFunctor(vtkDataArray* array, T lowest, T highest, float binWidth, int numBins,
                           int component, Bins& bins, Rejected& rejected, const T* buffer = nullptr)
    : m_Array(array)
    , m_Lowest(lowest)
    , m_Highest(highest)
    , m_BinWidth(binWidth)
    , m_NumBins(numBins)
    , m_Component(component)
    , m_NumComponents(array->GetNumberOfComponents())
    , m_Bins(bins)
    , m_Rejected(rejected)
    , m_Buffer(buffer)
  {
  }

  void operator()(const tbb::blocked_range<std::size_t>& range) const
  {
    std::size_t* counts = m_Bins.local().data();
    std::size_t rejected = 0;
    const std::size_t begin = range.begin();
    const std::size_t end = range.end();
    const std::size_t nc = static_cast<std::size_t>(m_NumComponents);
    if (m_Buffer != nullptr && m_Component >= 0 && nc == 1)
      scan(begin, end, counts, rejected,
           [values = m_Buffer](std::size_t t) { return fromBuffer(values[t]); });
    else if (m_Buffer != nullptr && m_Component >= 0)
      scan(begin, end, counts, rejected, [values = m_Buffer + m_Component, nc](std::size_t t)
           { return fromBuffer(values[t * nc]); });
    else if (m_Buffer != nullptr)
      scan(begin, end, counts, rejected,
           [values = m_Buffer, nc](std::size_t t)
           {
             double sum = 0.0;
             for (std::size_t c = 0; c < nc; c++)
             {
               const double value = static_cast<double>(values[t * nc + c]);
               sum += value * value;
             }
             return HistogramValueCast<T>(std::sqrt(sum));
           });
    else if (m_Component >= 0)
      scan(begin, end, counts, rejected,
           [array = m_Array, component = m_Component](std::size_t t)
           {
             return HistogramValueCast<T>(
               array->GetComponent(static_cast<vtkIdType>(t), component));
           });
    else
      scan(begin, end, counts, rejected,
           [array = m_Array, components = m_NumComponents](std::size_t t)
           {
             double sum = 0.0;
             for (int c = 0; c < components; c++)
             {
               const double value = array->GetComponent(static_cast<vtkIdType>(t), c);
               sum += value * value;
             }
             return HistogramValueCast<T>(std::sqrt(sum));
           });
    m_Rejected.local() += rejected;
  }

private:
  /** A buffer value as the virtual path sees it: through double, which only 64-bit integers feel.
   */
  static T fromBuffer(T value)
  {
    if constexpr (std::is_integral_v<T> && sizeof(T) == 8)
      return HistogramValueCast<T>(static_cast<double>(value));
    else
      return value;
  }

  /**
   * Counts the values that @p read gives for tuples [begin, end). A value's bin is
   * truncate((v - lowest) / width) in single precision; the top edge is exclusive, and NaN and
   * infinities fall outside every bin. Every read path goes through here, so they count alike.
   */
  template<typename Read>
  void scan(std::size_t begin, std::size_t end, std::size_t* counts, std::size_t& rejected,
            Read read) const
  {
    std::size_t outside = 0;
    if (m_BinWidth == 0.0f)
    {
      // a collapsed range: everything on it is in the one bin there is
      for (std::size_t t = begin; t < end; t++)
      {
        const T value = read(t);
        if (m_NumBins > 0 && value >= m_Lowest && value <= m_Highest)
          counts[0]++;
        else
          outside++;
      }
    }
    else
    {
      const T lowest = m_Lowest;
      const float width = m_BinWidth;
      const float bins = static_cast<float>(m_NumBins);
      for (std::size_t t = begin; t < end; t++)
      {
        const float position = HistogramDifference(read(t), lowest) / width;
        if (position >= 0.0f && position < bins)
          counts[static_cast<int>(position)]++;
        else
          outside++;
      }
    }
    rejected += outside;
  }

  vtkDataArray* m_Array = nullptr;
  T m_Lowest;
  T m_Highest;
  float m_BinWidth = 0.0f;
  int m_NumBins = 0;
  int m_Component = 0;
  int m_NumComponents = 1;
  Bins& m_Bins;
  Rejected& m_Rejected;
  const T* m_Buffer = nullptr;
};
} // namespace KXVtk::utils
