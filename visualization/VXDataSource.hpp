#pragma once

#include "bridge/WrappedGeometry.hpp"
#include "visualization/VXCoreObject.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QList>
#include <QtCore/QSharedPointer>
#include <QtGui/QColor>
#include <QtGui/QPixmap>

#include <memory>
#include <string_view>

class ColorPresetsDialog;
class KXColorButton;
class QPushButton;
class VXDatasetInfoWidget;
class vtkTrivialProducer;

/**
 * One geometry of a host structure, or one data set read from a file, as an
 * item of the pipeline tree. Its producer feeds every filter and data view
 * below it; it keeps the colours (solid, NaN, preset, inversion) that its
 * children follow until they separate from it.
 */
class KXVTKLIB_EXPORT VXDataSource : public VXCoreObject
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXDataSource";
  static constexpr const char* k_DefaultBaseName = "Unnamed Geometry";

  explicit VXDataSource(QObject* parent = nullptr);
  ~VXDataSource() override;

  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  QString humanTypeName() override { return "Data Source"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  void setBaseName(const QString& name) override;
  vtkAlgorithmOutput* outputPort() override;
  void initializeSettingsWidget() override;
  /** The colour map this data source and the children that follow it share. */
  VXLookupTable* lookupTable() override { return m_LookupTable; }
  void setVisibility(bool visible) override;
  QIcon getIcon() override;
  void copyActiveSettings() const override;
  void pasteToActiveSettings() override;
  void receivePipelineOutputReloaded() override {}
  void addViewWidgetCopy(VXAbstractViewWidget*, VXAbstractViewWidget*) override {}

  /** Takes a wrapped host geometry: its data set becomes this item's output. */
  void setWrappedGeometry(std::shared_ptr<CV::VtkBridge::WrappedGeometry> wrapped);
  /** Takes a data set that has no host path (read from a VTK or image file). */
  void setDataSet(vtkSmartPointer<vtkDataSet> dataSet);
  vtkDataSet* getOutput() const;
  std::shared_ptr<CV::VtkBridge::WrappedGeometry> wrappedGeometry() const
  {
    return m_WrappedGeometry;
  }
  /** The geometry's path in the host structure; empty for a file data set. */
  kx::core::DataPath importedDataPath() const;
  /** Array names with their icons: point arrays, then cell arrays. */
  QMap<QString, QIcon> getImportedArrayNames() const;
  /** Names of the components of an array, with "Magnitude" for vectors. */
  QList<QString> getComponentNames(const QString& arrayName) const;
  bool isImageGeometrySource() const { return m_IsImageGeometrySource; }
  QString quadViewDisplayText() const { return m_QuadViewDisplayText; }

  QColor getSolidColor() const { return m_SolidColor; }
  QColor getNanColor() const { return m_NanColor; }
  kx::core::ColorTableUtilities::ColorPreset getCurrentPreset() const { return m_CurrentPreset; }
  bool isUsingDefaultPreset() const { return m_UsingDefaultPreset; }
  bool getIsInverted() const { return m_ColorsInverted; }
  ColorPresetsDialog* colorPresetsDialog() const;

  void readSettings();
  void writeSettings();
  VXDatasetInfoWidget* getDataSetInfoWidget();
  void showDataSetInfoWidget();
  void updateDataSetInfoWidget();

public Q_SLOTS:
  void setSolidColor(const QColor& color);
  void setNanColor(const QColor& color);
  /** Toggles the inversion of the colour map. */
  void setColorsInverted();
  void setRestoreDefaultPreset();
  void applyPreset(const kx::core::ColorTableUtilities::ColorPreset& preset,
                   const QPixmap& pixmap = QPixmap());
  /** Replays the whole colour state to the children. */
  void triggerColorSettingsChange();

Q_SIGNALS:
  void solidColorChanged(QColor newColor);
  void nanColorChanged(QColor newColor);
  void loadPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void restoreDefaultPresetColors();
  void invertColorMap(bool isInverted);
  void goToParentColorSettings();
  void syncChildColorMaps();
  void presetApplied(QString presetName);

private:
  void initializeDataSetInfoWidget();
  void takeDataSet(vtkDataSet* dataSet);

  std::shared_ptr<CV::VtkBridge::WrappedGeometry> m_WrappedGeometry;
  vtkTrivialProducer* m_OutputAlgorithm = nullptr;
  QPointer<KXColorButton> m_SolidColorButton;
  QPointer<QPushButton> m_ColorPresetButton;
  QPointer<QPushButton> m_InvertColorButton;
  QPointer<QPushButton> m_SyncButton;
  QPointer<ColorPresetsDialog> m_ColorPresetsDialog;
  QColor m_SolidColor = QColor(255, 255, 255, 255);
  QColor m_NanColor = QColor::fromRgbF(0.5, 0.75, 0.0, 1.0);
  bool m_UsingDefaultPreset = true;
  kx::core::ColorTableUtilities::ColorPreset m_CurrentPreset;
  bool m_ColorsInverted = false;
  QSharedPointer<VXDatasetInfoWidget> m_DataSetInfoWidget;
  QString m_QuadViewDisplayText;
  bool m_IsImageGeometrySource = false;
  VXLookupTable* m_LookupTable = nullptr;
};
