#pragma once

#include <string>

namespace KX
{
/** One array and the closed range of its values that a host threshold filter keeps. */
struct ArrayThresholdRange
{
  std::string arrayPath;
  double lowerBound = 0.0;
  double upperBound = 0.0;
};
} // namespace KX
