#pragma once

#include <KX/ArrayThresholdRange.hpp>
#include <KX/IPipelineController.hpp>
#include <kxcore/DataPath.hpp>
#include <kxcore/DataStructure.hpp>
#include <kxcore/Types.hpp>

#include <QtCore/QString>

#include <array>
#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

/**
 * Stands in for a pipeline of the host application: the viewer's "Host
 * Pipeline" menu runs the sample microstructure generator in memory and hands
 * its output over the same way the host hands over its own pipelines.
 *
 * Like a host pipeline it grows by steps that the visualization asks for: a
 * "Multi-Threshold Objects" step marks the cells (or vertices) of a geometry
 * whose values lie inside all of its ranges in a new 0/1 mask array, and an
 * "Apply Transformation" step moves a geometry by a 4x4 matrix. Every run
 * builds the sample again and runs the steps in order, so the steps also hold
 * for a run with a new grain layout.
 */
class SamplePipelineController : public KX::IPipelineController
{
public:
  using Matrix = std::array<std::array<double, 4>, 4>;

  struct MultiThresholdStep
  {
    kx::core::DataPath geometry;
    std::vector<KX::ArrayThresholdRange> ranges;
  };
  struct TransformStep
  {
    kx::core::DataPath geometry;
    Matrix matrix{};
  };
  using Step = std::variant<MultiThresholdStep, TransformStep>;

  /** The mask array's name; a second mask on the same data gets " 2", and so on. */
  static constexpr const char* k_MaskName = "Mask";

  QString getPipelineName() const override { return "Sample Microstructure Pipeline"; }
  QString getPipelineFilePath() const override { return "sample-microstructure.kxpipe"; }
  QString getPipelineUuid() const override { return "{5a3c1d2e-0b7f-4e58-9a61-2f4d8c7b9e10}"; }

  /** What a run made: the data and, for each step, whether it ran and what it did. */
  struct Output
  {
    kx::core::DataStructure data;
    /** Grains of the generated microstructure. */
    kx::core::usize grains = 0;
    /** One line per step: what it did, or why it did nothing. */
    std::vector<QString> messages;
    std::vector<bool> succeeded;
  };

  /** Builds the sample of @p size cells a side with the grain layout of @p run (0 the first) and
   * runs every step on it, in order. */
  Output execute(kx::core::usize size, std::uint32_t run) const;

  void addStep(Step step) { m_Steps.push_back(std::move(step)); }
  void removeLastStep()
  {
    if (!m_Steps.empty())
      m_Steps.pop_back();
  }
  const std::vector<Step>& steps() const { return m_Steps; }

  /** Runs one step on @p data; false (with the reason in @p message) when it did nothing. */
  static bool RunStep(const Step& step, kx::core::DataStructure& data, QString* message);

private:
  std::vector<Step> m_Steps;
};
