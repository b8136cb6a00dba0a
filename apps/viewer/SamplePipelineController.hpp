#pragma once

#include <KX/IPipelineController.hpp>

/**
 * Stands in for a pipeline of the host application: the viewer's "Host
 * Pipeline" menu runs the sample microstructure generator in memory and hands
 * its output over the same way the host hands over its own pipelines.
 */
class SamplePipelineController : public KX::IPipelineController
{
public:
  QString getPipelineName() const override { return "Sample Microstructure Pipeline"; }
  QString getPipelineFilePath() const override { return "sample-microstructure.kxpipe"; }
  QString getPipelineUuid() const override { return "{5a3c1d2e-0b7f-4e58-9a61-2f4d8c7b9e10}"; }
};
