#pragma once

#include <array>
#include <cstdint>
#include <cstddef>

namespace kx::core
{
using int8 = std::int8_t;
using int16 = std::int16_t;
using int32 = std::int32_t;
using int64 = std::int64_t;
using uint8 = std::uint8_t;
using uint16 = std::uint16_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;
using usize = std::size_t;
using float32 = float;
using float64 = double;

/** Identifier of an object inside a DataStructure. */
using IdType = uint64;

/** Three values along x, y and z. */
template<typename T>
class Vec3 : public std::array<T, 3>
{
public:
  constexpr Vec3()
    : std::array<T, 3>{ T{}, T{}, T{} }
  {
  }
  constexpr Vec3(T x, T y, T z)
    : std::array<T, 3>{ x, y, z }
  {
  }

  constexpr T getX() const { return (*this)[0]; }
  constexpr T getY() const { return (*this)[1]; }
  constexpr T getZ() const { return (*this)[2]; }
};

using FloatVec3 = Vec3<float32>;
using SizeVec3 = Vec3<usize>;
} // namespace kx::core
