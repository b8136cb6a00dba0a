#pragma once

#include <QtCore/QString>

namespace KX
{
/**
 * One run of one of the host's pipelines, as the visualization sees it. The
 * host implements it; the identifier tells whether a new run belongs to a
 * pipeline already shown.
 */
class IPipelineController
{
public:
  virtual ~IPipelineController() = default;

  /** The pipeline's display name. */
  virtual QString getPipelineName() const = 0;
  /** The path of the pipeline's file. */
  virtual QString getPipelineFilePath() const = 0;
  /** The pipeline's identifier as text. */
  virtual QString getPipelineUuid() const = 0;
};
} // namespace KX
