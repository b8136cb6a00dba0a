#pragma once

// The resident memory of the benchmark's own process, for the MEMORY lines.
#include <fstream>
#include <string>

namespace kxbench
{
/** The resident memory of this process in MiB (VmRSS). */
inline double residentMiB()
{
  std::ifstream status("/proc/self/status");
  std::string key;
  while (status >> key)
  {
    if (key == "VmRSS:")
    {
      double kib = 0.0;
      status >> kib;
      return kib / 1024.0;
    }
    status.ignore(1 << 12, '\n');
  }
  return 0.0;
}
} // namespace kxbench
