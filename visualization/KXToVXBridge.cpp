#include "visualization/KXToVXBridge.hpp"

#include "bridge/VtkBridge.hpp"

#include <KX/IPipelineController.hpp>
#include <KXComponents/KXStyle.hpp>

#include <QtCore/QFileInfo>

KXToVXBridge::KXToVXBridge(QObject* parent)
  : VXBridgeObject(parent)
{
}

KXToVXBridge::~KXToVXBridge() = default;

QString KXToVXBridge::sourceName()
{
  return m_PipelineController != nullptr ? m_PipelineController->getPipelineName() : baseName();
}

QIcon KXToVXBridge::getIcon()
{
  return KXStyle::generateThemeIconFromName("PipelineFileBridgeObj");
}

QString KXToVXBridge::filePath() const
{
  return m_PipelineController != nullptr ? m_PipelineController->getPipelineFilePath()
                                         : m_SavedFilePath;
}

QString KXToVXBridge::getPipelineUuid() const
{
  return m_PipelineController != nullptr ? m_PipelineController->getPipelineUuid() : m_SavedUuid;
}

void KXToVXBridge::importPipelineOutput(KX::IPipelineController* controller,
                                        std::shared_ptr<kx::core::DataStructure>& structure)
{
  m_PipelineController = controller;
  setName(controller != nullptr ? controller->getPipelineName() : QString("UntitledPipeline"), 0);
  if (!m_DataSources.isEmpty())
    clear();
  importDataStructure(structure);
}

void KXToVXBridge::reloadPipelineOutput(KX::IPipelineController*,
                                        std::shared_ptr<kx::core::DataStructure>& structure)
{
  reloadDataStructure(structure);
}

void KXToVXBridge::write(nlohmann::json& output,
                         const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXBridgeObject::write(output, viewIndices);
  output["bridge_object_file_path"] = filePath().toStdString();
  output["bridge_object_uuid"] = getPipelineUuid().toStdString();
  output["bridge_object_item_name"] = name().toStdString();
}

void KXToVXBridge::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>&)
{
  Q_EMIT sendOutputMessage("Error: Cannot read in state file to a visualization pipeline sourced "
                           "from a VOXELIA-KX pipeline, state "
                           "files must be read in to visualization pipelines sourced from a file.");
  if (!input.is_object())
    return;
  if (auto iter = input.find("bridge_object_file_path"); iter != input.end() && iter->is_string())
  {
    m_SavedFilePath = QString::fromStdString(iter->get<std::string>());
    // a state saved from a host pipeline falls back on that pipeline's output file
    if (QFileInfo(m_SavedFilePath).suffix().toLower() == "voxelia")
    {
      QString error;
      auto structure = CV::VtkBridge::selectivelyImportGeometryData(m_SavedFilePath, &error);
      if (!structure)
        Q_EMIT sendPopupMessage("Load Pipeline State Error", error);
      else
        importDataStructure(structure);
    }
  }
  if (auto iter = input.find("bridge_object_item_name"); iter != input.end() && iter->is_string())
    setName(QString::fromStdString(iter->get<std::string>()), 0);
  if (auto iter = input.find("bridge_object_uuid"); iter != input.end() && iter->is_string())
    m_SavedUuid = QString::fromStdString(iter->get<std::string>());
}
