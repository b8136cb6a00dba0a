#pragma once

#include <kxcore/AbstractDataStore.hpp>

#include <tbb/blocked_range.h>
#include <tbb/parallel_reduce.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cmath>
#include <cstddef>
#include <cstdint>
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
template<typename T>
class ComputeRangeFunctor
{
public:
  using Range = tbb::blocked_range<std::size_t>;

  /**
   * @param store the elements, read through getValue
   * @param buffer the same elements as one buffer, or null to read through the store
   */
  explicit ComputeRangeFunctor(const kx::core::AbstractDataStore<T>* store,
                               const T* buffer = nullptr)
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
    if (tuples > 0 && m_NumComponents > 0)
      tbb::parallel_reduce(Range(0, tuples, 1), *this, tbb::auto_partitioner());
  }

  void operator()(const Range& range)
  {
    if (m_Buffer != nullptr)
      scanBuffer(range.begin(), range.end());
    else
      scanStore(range.begin(), range.end());
  }

  void join(const ComputeRangeFunctor& other)
  {
    for (std::size_t c = 0; c < m_NumComponents; c++)
    {
      if (other.m_Min[c] < m_Min[c])
        m_Min[c] = other.m_Min[c];
      if (other.m_Max[c] > m_Max[c])
        m_Max[c] = other.m_Max[c];
    }
    if (other.m_MinMagnitude < m_MinMagnitude)
      m_MinMagnitude = other.m_MinMagnitude;
    if (other.m_MaxMagnitude > m_MaxMagnitude)
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
    if constexpr (std::is_integral_v<T>)
    {
      if (magnitude >= static_cast<double>(std::numeric_limits<T>::max()))
        return std::numeric_limits<T>::max();
      if (magnitude <= static_cast<double>(std::numeric_limits<T>::lowest()))
        return std::numeric_limits<T>::lowest();
    }
    else if constexpr (std::is_same_v<T, float>)
    {
      if (magnitude > static_cast<double>(std::numeric_limits<float>::max()))
        return std::numeric_limits<float>::infinity();
    }
    return static_cast<T>(magnitude);
  }

  void takeMagnitude(double magnitude)
  {
    if (magnitude < static_cast<double>(m_MinMagnitude))
      m_MinMagnitude = toValueType(magnitude);
    if (magnitude > static_cast<double>(m_MaxMagnitude))
      m_MaxMagnitude = toValueType(magnitude);
  }

  /** The reference path: one virtual read per element. */
  void scanStore(std::size_t begin, std::size_t end)
  {
    const std::size_t nc = m_NumComponents;
    for (std::size_t tuple = begin; tuple < end; tuple++)
    {
      double sum = 0.0;
      for (std::size_t c = 0; c < nc; c++)
      {
        const T value = m_Store->getValue(tuple * nc + c);
        sum += static_cast<double>(value) * static_cast<double>(value);
        if (value < m_Min[c])
          m_Min[c] = value;
        if (value > m_Max[c])
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
    if constexpr (exactAbs)
    {
      if (m_NumComponents == 1)
      {
        scanSingleComponentExact(begin, end);
        return;
      }
    }
    const std::size_t nc = m_NumComponents;
    double minSum = std::numeric_limits<double>::infinity();
    double maxSum = -1.0;
    for (std::size_t tuple = begin; tuple < end; tuple++)
    {
      const T* values = m_Buffer + tuple * nc;
      double sum = 0.0;
      for (std::size_t c = 0; c < nc; c++)
      {
        const T value = values[c];
        sum += static_cast<double>(value) * static_cast<double>(value);
        m_Min[c] = value < m_Min[c] ? value : m_Min[c];
        m_Max[c] = value > m_Max[c] ? value : m_Max[c];
      }
      minSum = sum < minSum ? sum : minSum;
      maxSum = sum > maxSum ? sum : maxSum;
    }
    if (maxSum >= 0.0)
    {
      takeMagnitude(std::sqrt(minSum));
      takeMagnitude(std::sqrt(maxSum));
    }
  }

  void scanSingleComponentExact(std::size_t begin, std::size_t end)
  {
#if defined(__SSE2__)
    if constexpr (std::is_same_v<T, float> || std::is_same_v<T, std::uint8_t>)
    {
      scanSingleComponentSse(begin, end);
      return;
    }
#endif
    // |v| of an 8- or 16-bit integer may not fit T itself (|-128|), so widen
    using Abs = std::conditional_t<std::is_same_v<T, float>, float, int>;
    T lo = m_Min[0];
    T hi = m_Max[0];
    Abs absLo = std::numeric_limits<Abs>::max();
    Abs absHi = -1;
    const T* values = m_Buffer;
    for (std::size_t i = begin; i < end; i++)
    {
      const T value = values[i];
      lo = value < lo ? value : lo;
      hi = value > hi ? value : hi;
      Abs absValue;
      if constexpr (std::is_same_v<T, float>)
        absValue = std::fabs(value);
      else
        absValue = value < 0 ? -static_cast<int>(value) : static_cast<int>(value);
      absLo = absValue < absLo ? absValue : absLo;
      absHi = absValue > absHi ? absValue : absHi;
    }
    m_Min[0] = lo;
    m_Max[0] = hi;
    if (absHi >= 0)
    {
      takeMagnitude(static_cast<double>(absLo));
      takeMagnitude(static_cast<double>(absHi));
    }
  }

#if defined(__SSE2__)
  /**
   * Sixteen bytes at a time. minps(v, m) is exactly "v < m ? v : m", so a NaN
   * never replaces the running value, as in the scalar loop; for uint8 the
   * magnitude is the value itself.
   */
  void scanSingleComponentSse(std::size_t begin, std::size_t end)
  {
    constexpr std::size_t lanes = 16 / sizeof(T);
    const T* values = m_Buffer;
    std::size_t i = begin;
    T lo = m_Min[0];
    T hi = m_Max[0];
    if constexpr (std::is_same_v<T, float>)
    {
      float absLo = std::numeric_limits<float>::max();
      float absHi = -1.0f;
      if (end - begin >= 4 * lanes)
      {
        const __m128 signMask = _mm_set1_ps(-0.0f);
        __m128 vLo = _mm_set1_ps(lo), vHi = _mm_set1_ps(hi);
        __m128 vAbsLo = _mm_set1_ps(absLo), vAbsHi = _mm_set1_ps(absHi);
        for (; i + lanes <= end; i += lanes)
        {
          const __m128 v = _mm_loadu_ps(values + i);
          const __m128 a = _mm_andnot_ps(signMask, v);
          vLo = _mm_min_ps(v, vLo);
          vHi = _mm_max_ps(v, vHi);
          vAbsLo = _mm_min_ps(a, vAbsLo);
          vAbsHi = _mm_max_ps(a, vAbsHi);
        }
        alignas(16) float l[4], h[4], al[4], ah[4];
        _mm_store_ps(l, vLo);
        _mm_store_ps(h, vHi);
        _mm_store_ps(al, vAbsLo);
        _mm_store_ps(ah, vAbsHi);
        for (std::size_t k = 0; k < 4; k++)
        {
          lo = l[k] < lo ? l[k] : lo;
          hi = h[k] > hi ? h[k] : hi;
          absLo = al[k] < absLo ? al[k] : absLo;
          absHi = ah[k] > absHi ? ah[k] : absHi;
        }
      }
      for (; i < end; i++)
      {
        const float v = values[i];
        const float a = std::fabs(v);
        lo = v < lo ? v : lo;
        hi = v > hi ? v : hi;
        absLo = a < absLo ? a : absLo;
        absHi = a > absHi ? a : absHi;
      }
      m_Min[0] = lo;
      m_Max[0] = hi;
      if (absHi >= 0.0f)
      {
        takeMagnitude(static_cast<double>(absLo));
        takeMagnitude(static_cast<double>(absHi));
      }
    }
    else
    {
      if (end - begin >= 4 * lanes)
      {
        __m128i vLo = _mm_set1_epi8(static_cast<char>(lo)),
                vHi = _mm_set1_epi8(static_cast<char>(hi));
        for (; i + lanes <= end; i += lanes)
        {
          const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(values + i));
          vLo = _mm_min_epu8(v, vLo);
          vHi = _mm_max_epu8(v, vHi);
        }
        alignas(16) std::uint8_t l[16], h[16];
        _mm_store_si128(reinterpret_cast<__m128i*>(l), vLo);
        _mm_store_si128(reinterpret_cast<__m128i*>(h), vHi);
        for (std::size_t k = 0; k < 16; k++)
        {
          lo = l[k] < lo ? l[k] : lo;
          hi = h[k] > hi ? h[k] : hi;
        }
      }
      bool any = i > begin;
      for (; i < end; i++)
      {
        lo = values[i] < lo ? values[i] : lo;
        hi = values[i] > hi ? values[i] : hi;
        any = true;
      }
      m_Min[0] = lo;
      m_Max[0] = hi;
      if (any)
      {
        // the chunk's own extremes bound its magnitudes; lo and hi may carry
        // earlier chunks' values, which were taken into account then
        takeMagnitude(static_cast<double>(lo));
        takeMagnitude(static_cast<double>(hi));
      }
    }
  }
#endif

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
