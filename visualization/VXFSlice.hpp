#pragma once

#include "visualization/VXFilter.hpp"

#include <QtCore/QPointer>

#include <optional>

class VXFSliceFilterWidget;
class VXPlane;
class vtkCutter;

/**
 * Cuts a data set with one plane (vtkCutter) and shows the cut: the polygons where the plane
 * meets the cells, coloured by the data interpolated onto them. The plane is the same tool as
 * the clip filter's and is stored under the clip filter's keys, so a plane saved by one reads
 * the same in the other.
 */
class KXVTKLIB_EXPORT VXFSlice : public VXFilter
{
  Q_OBJECT

public:
  static inline const QString k_TypeName = QStringLiteral("VXFSlice");

  explicit VXFSlice(QObject* parent = nullptr);
  ~VXFSlice() override;

  QString humanTypeName() override { return QStringLiteral("Slice Filter Widget"); }
  QString typeName() override { return k_TypeName; }
  vtkAlgorithmOutput* outputPort() override;
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

  bool showPlaneTool() const { return m_ShowPlaneTool; }
  VXPlane* plane() const;
  vtkCutter* cutter() const;

public Q_SLOTS:
  void applyFilter() override;
  void receivePipelineOutputReloaded() override;
  void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                         VXAbstractViewWidget* currentActiveView) override;
  void setShowPlaneTool(bool show);

Q_SIGNALS:
  void showPlaneToolChanged(bool show);

private:
  void updatePlaneTool();
  void writeValues(nlohmann::json& output) const override;
  void readValues(const nlohmann::json& input) override;

  vtkSmartPointer<vtkCutter> m_Cutter;
  bool m_ShowPlaneTool = true;
  QPointer<VXPlane> m_Plane;
  std::optional<nlohmann::json> m_PendingToolValues;
};
