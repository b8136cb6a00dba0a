#pragma once

#include "visualization/VXFilter.hpp"

#include <KX/ArrayThresholdRange.hpp>

#include <QtCore/QPointer>

#include <vector>

class VXFThresholdFilterWidget;
class vtkThreshold;

/**
 * Keeps the cells whose value of one array component lies within a range (vtkThreshold,
 * between). Every component of every array of the input is a choice, point arrays first; each
 * keeps its own range while the user moves between them. A chain of thresholds can go back to
 * the host as one "Multi-Threshold Objects" filter of its own pipeline.
 */
class KXVTKLIB_EXPORT VXFThreshold : public VXFilter
{
  Q_OBJECT

public:
  /** One component of one array of the input, with its data range and the user's range. */
  struct ActiveArrayInfo
  {
    QString arrayName;
    QString displayName;
    int components = 1;
    int component = 0;
    double dataMin = 0.0;
    double dataMax = 0.0;
    double userMin = 0.0;
    double userMax = 0.0;
  };

  static inline const QString k_TypeName = QStringLiteral("VXFThreshold");
  static inline const QString k_NoGeometryTitle =
    QStringLiteral("Cannot Create Multi-Threshold Objects Filter");
  static inline const QString k_NoGeometryText =
    QStringLiteral("Cannot create Multi-Threshold Objects filter from VXFThreshold filter because "
                   "no parent geometry could be found.");
  static inline const QString k_ChainTitle =
    QStringLiteral("Create Multi-Threshold Objects Filter");
  static inline const QString k_ChainText = QStringLiteral(
    "This threshold filter has one or more parent/child threshold filters. Would you like to "
    "include all parent/child filters when creating your Multi-Threshold Objects filter, or just "
    "use this one?");
  static inline const QString k_MultiComponentText =
    QStringLiteral("Creating Multi-Threshold Objects filter from VXFThreshold filter currently "
                   "does not support multi component arrays.");

  explicit VXFThreshold(QObject* parent = nullptr);
  ~VXFThreshold() override;

  QString humanTypeName() override { return QStringLiteral("Threshold Filter Widget"); }
  QString typeName() override { return k_TypeName; }
  vtkAlgorithmOutput* outputPort() override;
  /** Also rebuilds the records from the new input. */
  void setInputPort(vtkAlgorithmOutput* port) override;
  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  void initializeSettingsWidget() override;
  void setVisibility(bool visible) override;
  void writeSettings() override;
  void readSettings() override;
  void setupFilter() override;
  void openHelpLink() override;

  const std::vector<ActiveArrayInfo>& activeArrayInfos() const { return m_ActiveArrayInfos; }
  size_t activeArrayInfoIndex() const { return m_ActiveArrayInfoIndex; }
  /** Chooses the record; an index past the end is reported and chooses the first. */
  void setActiveArrayInfoIndex(size_t index);
  /** Sets the user range of the active record. */
  void setUserRange(double minimum, double maximum);
  vtkThreshold* thresholdFilter() const;

public Q_SLOTS:
  void applyFilter() override;
  void receivePipelineOutputReloaded() override;
  /**
   * Hands this filter, and on request its parent and child thresholds, to the host as one
   * "Multi-Threshold Objects" filter of the parent geometry.
   */
  void createMultiThresholdObjectsFilter();

Q_SIGNALS:
  /** The records were rebuilt (new input or reload). */
  void activeArrayInfosChanged();

private:
  void rebuildActiveArrayInfos();
  /** Hands the active record's range, component and array to the algorithm; false without one. */
  bool configureThreshold();
  void writeValues(nlohmann::json& output) const override;
  void readValues(const nlohmann::json& input) override;

  vtkSmartPointer<vtkThreshold> m_Threshold;
  std::vector<ActiveArrayInfo> m_ActiveArrayInfos;
  size_t m_ActiveArrayInfoIndex = 0;
};
