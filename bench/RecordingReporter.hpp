#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace kxbench
{
/**
 * The console reporter that also keeps each benchmark's real time per
 * iteration, so a program can print the ratios between benchmarks of one run.
 */
class RecordingReporter : public benchmark::ConsoleReporter
{
public:
  void ReportRuns(const std::vector<Run>& runs) override
  {
    for (const Run& run : runs)
    {
      if (run.run_type == Run::RT_Iteration && run.iterations > 0)
        m_Seconds[run.run_name.function_name] =
          run.real_accumulated_time / static_cast<double>(run.iterations);
    }
    ConsoleReporter::ReportRuns(runs);
  }

  double seconds(const std::string& name) const
  {
    auto iter = m_Seconds.find(name);
    return iter == m_Seconds.end() ? 0.0 : iter->second;
  }

  /** Prints "RATIO name value target" when both benchmarks ran. */
  void printRatio(const char* name, const std::string& numerator, const std::string& denominator,
                  const char* target) const
  {
    const double top = seconds(numerator);
    const double bottom = seconds(denominator);
    if (top > 0.0 && bottom > 0.0)
      std::printf("RATIO %s %.2f %s\n", name, top / bottom, target);
  }

private:
  std::map<std::string, double> m_Seconds;
};
} // namespace kxbench
