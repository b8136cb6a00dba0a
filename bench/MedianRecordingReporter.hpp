#pragma once

#include "RecordingReporter.hpp"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace kxbench
{
/**
 * Records the median over the rounds of a benchmark as its time, so that the
 * printed ratio compares medians rather than whichever round came last.
 */
class MedianRecordingReporter : public RecordingReporter
{
public:
  void ReportRuns(const std::vector<Run>& runs) override
  {
    std::vector<Run> forwarded;
    for (const Run& run : runs)
    {
      if (run.run_type == Run::RT_Iteration)
      {
        // shown, but not recorded: only the median stands for the benchmark
        ConsoleReporter::ReportRuns({ run });
        continue;
      }
      if (run.aggregate_name != "median")
        continue;
      Run median = run;
      median.run_type = Run::RT_Iteration;
      forwarded.push_back(median);
      if (run.iterations > 0)
        m_CpuSeconds[run.run_name.function_name] =
          run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }
    if (!forwarded.empty())
      RecordingReporter::ReportRuns(forwarded);
  }

  /**
   * The same ratio over the process's CPU time, renderer threads included:
   * steadier than wall time while other work shares the machine.
   */
  void printCpuRatio(const char* name, const std::string& numerator,
                     const std::string& denominator) const
  {
    auto top = m_CpuSeconds.find(numerator);
    auto bottom = m_CpuSeconds.find(denominator);
    if (top != m_CpuSeconds.end() && bottom != m_CpuSeconds.end() && bottom->second > 0.0)
      std::printf("CPU_RATIO %s %.2f\n", name, top->second / bottom->second);
  }

private:
  std::map<std::string, double> m_CpuSeconds;
};
} // namespace kxbench
