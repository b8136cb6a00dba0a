#pragma once

#include "visualization/VXFilter.hpp"

#include <QtCore/QPointer>

#include <vtkSmartPointer.h>

#include <array>
#include <optional>

class VXBox;
class VXFClipFilterWidget;
class VXPlane;
class vtkTableBasedClipDataSet;

/**
 * Cuts a data set by a plane or a box (vtkTableBasedClipDataSet: whole cells stay whole where
 * they can, cut cells are split). The plane and the box are tools in the active render view,
 * placed over the input's bounds; both follow the active view and a reload of the input. With
 * "Inverted" (the default) the part on the normal's side of the plane, or inside the box, is
 * kept. The cut runs when the user applies it.
 */
class KXVTKLIB_EXPORT VXFClip : public VXFilter
{
  Q_OBJECT

public:
  enum class ClipType : int32_t
  {
    Plane = 0,
    Box = 1
  };
  Q_ENUM(ClipType)

  static inline const QString k_TypeName = QStringLiteral("VXFClip");

  explicit VXFClip(QObject* parent = nullptr);
  ~VXFClip() override;

  QString humanTypeName() override { return QStringLiteral("Clip Filter Widget"); }
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

  ClipType clipType() const { return m_ClipType; }
  bool inverted() const { return m_Inverted; }
  bool showClipTool() const { return m_ShowClipTool; }
  VXPlane* plane() const;
  VXBox* box() const;
  vtkTableBasedClipDataSet* clipFilter() const;
  VXFClipFilterWidget* filterWidget() const;

public Q_SLOTS:
  void applyFilter() override;
  void receivePipelineOutputReloaded() override;
  void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                         VXAbstractViewWidget* currentActiveView) override;
  void setClipType(VXFClip::ClipType type);
  void setInverted(bool inverted);
  void setShowClipTool(bool show);
  /** Shows the tool of the clip type (when the filter is shown and the tool asked for). */
  void updateClipTool();

Q_SIGNALS:
  void clipTypeChanged(VXFClip::ClipType type);
  void invertedChanged(bool inverted);
  void showClipToolChanged(bool show);

private:
  /** Hands the current tool's function and the inversion to the clip algorithm. */
  void configureClip();
  void writeValues(nlohmann::json& output) const override;
  void readValues(const nlohmann::json& input) override;

  vtkSmartPointer<vtkTableBasedClipDataSet> m_ClipFilter;
  bool m_Inverted = true;
  ClipType m_ClipType = ClipType::Plane;
  bool m_ShowClipTool = true;
  QPointer<VXBox> m_Box;
  QPointer<VXPlane> m_Plane;
  /** Values read before the tools exist; setupFilter hands them over. */
  std::optional<nlohmann::json> m_PendingToolValues;
};
