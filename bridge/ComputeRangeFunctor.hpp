#pragma once

#include <kxcore/AbstractDataStore.hpp>

#include <tbb/blocked_range.h>
#include <tbb/parallel_reduce.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

namespace CV
{
/**
 * Body of the parallel reduction that finds, in one pass over a store, the
 * range of each component and the range of the tuple magnitudes.
 *
 * Every store is readable element by element through the virtual getValue.
 * A store that lives in one buffer may also be given by that buffer; the pass
 * then reads it directly, which is several times faster, and gives the same
 * result as the element-by-element path.
 */
template <typename T>
class ComputeRangeFunctor
{
public:
  using Range = tbb::blocked_range<std::size_t>;

  /**
   * @param store the elements, read through getValue
   * @param buffer the same elements as one buffer, or null to read through the store
   */
  explicit ComputeRangeFunctor(const kx::core::AbstractDataStore<T>* store, const T* buffer = nullptr)
  : m_Store(store)
  , m_NumComponents(store != nullptr ? store->getNumberOfComponents() : 0)
  , m_Min(m_NumComponents, std::numeric_limits<T>::max())
  , m_Max(m_NumComponents, std::numeric_limits<T>::lowest())
  , m_Buffer(buffer)
  {
  }

  ComputeRangeFunctor(const ComputeRangeFunctor& other, tbb::split)
  : m_Store(other.m_Store)
  , m_NumComponents(other.m_NumComponents)
  , m_Min(m_NumComponents, std::numeric_limits<T>::max())
  , m_Max(m_NumComponents, std::numeric_limits<T>::lowest())
  , m_Buffer(other.m_Buffer)
  {
  }

  /** Runs the pass over all tuples, spread over the cores. */
  void run()
  {
    const std::size_t tuples = m_Store != nullptr ? m_Store->getNumberOfTuples() : 0;
    if(tuples > 0 && m_NumComponents > 0)
      tbb::parallel_reduce(Range(0, tuples, 1), *this, tbb::auto_partitioner());
  }

  void operator()(const Range& range)
  {
    if(m_Buffer != nullptr)
      scanBuffer(range.begin(), range.end());
    else
      scanStore(range.begin(), range.end());
  }

  void join(const ComputeRangeFunctor& other)
  {
    for(std::size_t c = 0; c < m_NumComponents; c++)
    {
      if(other.m_Min[c] < m_Min[c])
        m_Min[c] = other.m_Min[c];
      if(other.m_Max[c] > m_Max[c])
        m_Max[c] = other.m_Max[c];
    }
    if(other.m_MinMagnitude < m_MinMagnitude)
      m_MinMagnitude = other.m_MinMagnitude;
    if(other.m_MaxMagnitude > m_MaxMagnitude)
      m_MaxMagnitude = other.m_MaxMagnitude;
  }

  const std::vector<T>& minimum() const { return m_Min; }
  const std::vector<T>& maximum() const { return m_Max; }
  T minimumMagnitude() const { return m_MinMagnitude; }
  T maximumMagnitude() const { return m_MaxMagnitude; }
  std::size_t numberOfComponents() const { return m_NumComponents; }

private:
  /**
   * A magnitude as T. Clamped to T's range so that a magnitude beyond it (three
   * int8 components of 127 give 220) is not an undefined conversion. Monotone,
   * so the order of comparisons doesn't change the result.
   */
  static T toValueType(double magnitude)
  {
    if constexpr(std::is_integral_v<T>)
    {
      if(magnitude >= static_cast<double>(std::numeric_limits<T>::max()))
        return std::numeric_limits<T>::max();
      if(magnitude <= static_cast<double>(std::numeric_limits<T>::lowest()))
        return std::numeric_limits<T>::lowest();
    }
    else if constexpr(std::is_same_v<T, float>)
    {
      if(magnitude > static_cast<double>(std::numeric_limits<float>::max()))
        return std::numeric_limits<float>::infinity();
    }
    return static_cast<T>(magnitude);
  }

  void takeMagnitude(double magnitude)
  {
    if(magnitude < static_cast<double>(m_MinMagnitude))
      m_MinMagnitude = toValueType(magnitude);
    if(magnitude > static_cast<double>(m_MaxMagnitude))
      m_MaxMagnitude = toValueType(magnitude);
  }

  /** The reference path: one virtual read per element. */
  void scanStore(std::size_t begin, std::size_t end)
  {
    const std::size_t nc = m_NumComponents;
    for(std::size_t tuple = begin; tuple < end; tuple++)
    {
      double sum = 0.0;
      for(std::size_t c = 0; c < nc; c++)
      {
        const T value = m_Store->getValue(tuple * nc + c);
        sum += static_cast<double>(value) * static_cast<double>(value);
        if(value < m_Min[c])
          m_Min[c] = value;
        if(value > m_Max[c])
          m_Max[c] = value;
      }
      takeMagnitude(std::sqrt(sum));
    }
  }

  /**
   * The buffer path. The square root is monotone, so the extreme magnitudes are
   * the roots of the extreme sums of squares and only two roots are taken per
   * range. For one component of a type whose square is exact in double (8- and
   * 16-bit integers, float), the magnitude is exactly |v| and no square is
   * needed at all, which keeps the loop as cheap as a plain min/max.
   */
  void scanBuffer(std::size_t begin, std::size_t end)
  {
    constexpr bool exactAbs = std::is_same_v<T, float> || (std::is_integral_v<T> && sizeof(T) <= 2);
    if constexpr(exactAbs)
    {
      if(m_NumComponents == 1)
      {
        scanSingleComponentExact(begin, end);
        return;
      }
    }
    const std::size_t nc = m_NumComponents;
    double minSum = std::numeric_limits<double>::infinity();
    double maxSum = -1.0;
    for(std::size_t tuple = begin; tuple < end; tuple++)
    {
      const T* values = m_Buffer + tuple * nc;
      double sum = 0.0;
      for(std::size_t c = 0; c < nc; c++)
      {
        const T value = values[c];
        sum += static_cast<double>(value) * static_cast<double>(value);
        m_Min[c] = value < m_Min[c] ? value : m_Min[c];
        m_Max[c] = value > m_Max[c] ? value : m_Max[c];
      }
      minSum = sum < minSum ? sum : minSum;
      maxSum = sum > maxSum ? sum : maxSum;
    }
    if(maxSum >= 0.0)
    {
      takeMagnitude(std::sqrt(minSum));
      takeMagnitude(std::sqrt(maxSum));
    }
  }

  void scanSingleComponentExact(std::size_t begin, std::size_t end)
  {
    // |v| of an 8- or 16-bit integer may not fit T itself (|-128|), so widen
    using Abs = std::conditional_t<std::is_same_v<T, float>, float, int>;
    T lo = m_Min[0];
    T hi = m_Max[0];
    Abs absLo = std::numeric_limits<Abs>::max();
    Abs absHi = -1;
    const T* values = m_Buffer;
    for(std::size_t i = begin; i < end; i++)
    {
      const T value = values[i];
      lo = value < lo ? value : lo;
      hi = value > hi ? value : hi;
      Abs absValue;
      if constexpr(std::is_same_v<T, float>)
        absValue = std::fabs(value);
      else
        absValue = value < 0 ? -static_cast<int>(value) : static_cast<int>(value);
      absLo = absValue < absLo ? absValue : absLo;
      absHi = absValue > absHi ? absValue : absHi;
    }
    m_Min[0] = lo;
    m_Max[0] = hi;
    if(absHi >= 0)
    {
      takeMagnitude(static_cast<double>(absLo));
      takeMagnitude(static_cast<double>(absHi));
    }
  }

  const kx::core::AbstractDataStore<T>* m_Store = nullptr;
  std::size_t m_NumComponents = 0;
  std::vector<T> m_Min;
  std::vector<T> m_Max;
  T m_MinMagnitude = std::numeric_limits<T>::max();
  // min(), not lowest(): for float and double the smallest positive normal
  T m_MaxMagnitude = std::numeric_limits<T>::min();
  const T* m_Buffer = nullptr;
};
} // namespace CV
