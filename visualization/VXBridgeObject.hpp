#pragma once

#include "KXVtkLib_export.h"

#include <kxcore/DataStructure.hpp>

#include <nlohmann/json.hpp>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QIcon>

#include <memory>

#include "visualization/VXDataSource.hpp"

class VXAbstractViewWidget;

/**
 * Base of the top-level items of a pipeline: where data come from (a file, a
 * host pipeline). A bridge makes one data source per geometry or read data set
 * and keeps them, in order of arrival, as its QObject children.
 */
class KXVTKLIB_EXPORT VXBridgeObject : public QObject
{
  Q_OBJECT

public:
  explicit VXBridgeObject(QObject* parent = nullptr);
  ~VXBridgeObject() override;

  virtual void write(nlohmann::json& output,
                     const QMap<VXAbstractViewWidget*, int>& viewIndices) const;
  virtual void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) = 0;
  virtual QString typeName() = 0;
  virtual QString sourceName() = 0;
  virtual QIcon getIcon() = 0;
  virtual QString filePath() const;
  /** Forgets a data source that is going away. */
  virtual void onDataSourceRemoved(VXDataSource* source);

  QString baseName() const { return m_BaseName; }
  /** The base name, then " (n)" when the suffix counter n is above 0. */
  QString name() const;
  void setName(const QString& baseName, int suffix);
  void setNameSuffix(int suffix);
  int getNameSuffixCounter() const { return m_NameSuffixCounter; }
  QList<VXDataSource*> dataSources() const { return m_DataSources; }
  QStringList dataSourceNames() const;
  /** Takes every data source off the list and deletes it. */
  void clear();
  void setActive(bool active) { m_Active = active; }
  bool isActive() const { return m_Active; }

Q_SIGNALS:
  void dataSourceAdded(VXDataSource* source);
  void removeDataSource(VXDataSource* source);
  void sendOutputMessage(QString message);
  void sendPopupMessage(QString title, QString message);
  void pipelineOutputReloaded();
  void nameChanged(QString name);

protected:
  /** Makes a data source for each geometry of the structure. */
  void importDataStructure(std::shared_ptr<kx::core::DataStructure>& structure);
  /** Matches the structure's geometries to the data sources by path; removes the vanished, adds the
   * new. */
  void reloadDataStructure(std::shared_ptr<kx::core::DataStructure>& structure);
  /** Makes a data source, child of this bridge, and announces it. */
  VXDataSource* addDataSource();

  QList<VXDataSource*> m_DataSources;
  int m_NameSuffixCounter = 0;
  QString m_BaseName;
  bool m_Active = false;
};
