#pragma once

#include "visualization/VXBridgeObject.hpp"

#include <string_view>

namespace KX
{
class IPipelineController;
}

/**
 * A bridge over the output of one of the host's pipelines. The data are the
 * host's own stores, shared; each later run of the same pipeline (same
 * identifier) updates the data sources in place.
 */
class KXVTKLIB_EXPORT KXToVXBridge : public VXBridgeObject
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "KXToVXBridge";

  explicit KXToVXBridge(QObject* parent = nullptr);
  ~KXToVXBridge() override;

  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  QString sourceName() override;
  QIcon getIcon() override;
  /** The pipeline's file, or the one saved in a state file when there is no controller. */
  QString filePath() const override;

  void importPipelineOutput(KX::IPipelineController* controller,
                            std::shared_ptr<kx::core::DataStructure>& structure);
  void reloadPipelineOutput(KX::IPipelineController* controller,
                            std::shared_ptr<kx::core::DataStructure>& structure);
  /** The pipeline's identifier, or the saved one when there is no controller. */
  QString getPipelineUuid() const;
  KX::IPipelineController* kxPipeline() const { return m_PipelineController; }

private:
  KX::IPipelineController* m_PipelineController = nullptr;
  QString m_SavedFilePath;
  QString m_SavedUuid;
};
