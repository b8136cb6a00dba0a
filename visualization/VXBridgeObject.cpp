#include "visualization/VXBridgeObject.hpp"

#include "bridge/VtkBridge.hpp"
#include "visualization/VXDataSource.hpp"

#include <kxcore/IGeometry.hpp>

namespace
{
QString multipleParentsText(const std::shared_ptr<kx::core::IGeometry>& geometry)
{
  return QString("The geometry named %1 has multiple parents but the visualization currently does "
                 "not support multiple "
                 "parenting. This geometry will NOT be added to your visualization pipeline.")
    .arg(QString::fromStdString(geometry->getName()));
}
} // namespace

VXBridgeObject::VXBridgeObject(QObject* parent)
  : QObject(parent)
{
}

VXBridgeObject::~VXBridgeObject() = default;

QString VXBridgeObject::name() const
{
  if (m_NameSuffixCounter <= 0)
    return m_BaseName;
  return QString("%1 (%2)").arg(m_BaseName).arg(m_NameSuffixCounter);
}

void VXBridgeObject::setName(const QString& baseName, int suffix)
{
  m_BaseName = baseName;
  m_NameSuffixCounter = suffix;
  Q_EMIT nameChanged(name());
}

void VXBridgeObject::setNameSuffix(int suffix)
{
  m_NameSuffixCounter = suffix;
  Q_EMIT nameChanged(name());
}

QString VXBridgeObject::filePath() const
{
  return {};
}

QStringList VXBridgeObject::dataSourceNames() const
{
  QStringList names;
  for (const VXDataSource* source : m_DataSources)
    names.append(source->name());
  return names;
}

void VXBridgeObject::write(nlohmann::json&, const QMap<VXAbstractViewWidget*, int>&) const {}

void VXBridgeObject::onDataSourceRemoved(VXDataSource* source)
{
  m_DataSources.removeOne(source);
}

void VXBridgeObject::clear()
{
  // taken off the list first: without a model nothing else would forget them
  const QList<VXDataSource*> sources = m_DataSources;
  m_DataSources.clear();
  for (VXDataSource* source : sources)
    delete source;
}

VXDataSource* VXBridgeObject::addDataSource()
{
  auto* source = new VXDataSource(this);
  m_DataSources.append(source);
  return source;
}

void VXBridgeObject::importDataStructure(std::shared_ptr<kx::core::DataStructure>& structure)
{
  for (const auto& geometry : CV::VtkBridge::FindGeometry(structure))
  {
    if (geometry->getDataPaths().size() < 2)
    {
      auto wrapped = CV::VtkBridge::WrapGeometry(geometry);
      if (wrapped)
      {
        VXDataSource* source = addDataSource();
        source->setWrappedGeometry(wrapped);
        Q_EMIT dataSourceAdded(source);
      }
    }
    else
    {
      const QString text = multipleParentsText(geometry);
      Q_EMIT sendPopupMessage("Geometry Not Loaded", text);
      Q_EMIT sendOutputMessage(text);
    }
  }
}

void VXBridgeObject::reloadDataStructure(std::shared_ptr<kx::core::DataStructure>& structure)
{
  std::vector<std::shared_ptr<kx::core::IGeometry>> remaining =
    CV::VtkBridge::FindGeometry(structure);
  const QList<VXDataSource*> sources = m_DataSources;
  for (VXDataSource* source : sources)
  {
    const kx::core::DataPath path = source->importedDataPath();
    if (!path.empty() && dynamic_cast<kx::core::IGeometry*>(structure->getData(path)) == nullptr)
    {
      // the geometry is gone: its data source takes its subtree with it
      m_DataSources.removeOne(source);
      Q_EMIT removeDataSource(source);
      continue;
    }
    for (auto iter = remaining.begin(); iter != remaining.end();)
    {
      const std::vector<kx::core::DataPath> paths = (*iter)->getDataPaths();
      if (paths.size() >= 2)
      {
        const QString text = multipleParentsText(*iter);
        Q_EMIT sendPopupMessage("Geometry Not Loaded", text);
        Q_EMIT sendOutputMessage(text);
        iter = remaining.erase(iter);
        continue;
      }
      if (paths.size() == 1 && paths.front() == path)
      {
        auto wrapped = CV::VtkBridge::WrapGeometry(*iter);
        if (wrapped)
          source->setWrappedGeometry(wrapped);
        remaining.erase(iter);
        break;
      }
      ++iter;
    }
  }
  for (const auto& geometry : remaining)
  {
    if (geometry->getDataPaths().size() >= 2)
    {
      const QString text = multipleParentsText(geometry);
      Q_EMIT sendPopupMessage("Geometry Not Loaded", text);
      Q_EMIT sendOutputMessage(text);
      continue;
    }
    auto wrapped = CV::VtkBridge::WrapGeometry(geometry);
    if (wrapped)
    {
      VXDataSource* source = addDataSource();
      source->setWrappedGeometry(wrapped);
      Q_EMIT dataSourceAdded(source);
    }
  }
  Q_EMIT pipelineOutputReloaded();
}
