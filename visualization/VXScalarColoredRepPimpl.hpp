#pragma once

#include "visualization/VXRepresentationPimpl.hpp"
#include "visualization/VXScalarColoring.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QPointer>
#include <QtGui/QColor>
#include <QtWidgets/QWidget> // control<W>() searches the page

#include <vtkSmartPointer.h>

#include <functional>

class KXColorButton;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QPushButton;
class QSlider;
class VXArrayHistogramWidget;
class VXDataSource;
class vtkActor;
class vtkDataArray;
class vtkProp3D;

/**
 * A data view coloured by a point array through its own lookup table (VXScalarColoring), with
 * the colour controls of its settings page: the slots, widgets and parent colour links that such
 * views share. A view supplies how the table, the solid colour and the opacity reach what it
 * draws (applyColoring, applyOpacity), how an array or component is taken up, and the histogram.
 */
class KXVTKLIB_EXPORT VXScalarColoredRepPimpl
  : public VXRepresentationPimpl
  , public VXScalarColoring
{
  Q_OBJECT

public:
  using ColorPreset = VXScalarColoring::ColorPreset;

  VXScalarColoredRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXScalarColoredRepPimpl() override;

  void connectParentColorSignals(bool trigger) override;
  void disconnectParentColorSignals() override;
  /** The colouring settings, opacity and solid colour on top of the common fields. */
  void write(nlohmann::json& output) const override;
  void copySettingsToClipboard() override;
  void pasteSettingsFromClipboard() override;
  void bounds(double bounds[6]) override;
  void setVisibility(bool visible) override;
  void setHighlighted(bool highlighted) override;
  bool isVisible() const override { return m_Visible; }
  bool isInitialized() const override { return m_Initialized; }
  // these views have no coarse copy to switch to
  void useFullGeometry() override {}
  void useDecimatedGeometry() override {}

  QColor solidColor() const { return m_SolidColor; }
  double opacity() const { return m_Opacity; }
  VXLookupTable* lookupTable() const { return m_LookupTable.data(); }
  VXArrayHistogramWidget* histogramWidget() const;

  /** A control of the settings page by object name (for hosts and tests). */
  template<typename W>
  W* control(const QString& name) const
  {
    return m_SettingsWidget != nullptr ? m_SettingsWidget->template findChild<W*>(name) : nullptr;
  }

public Q_SLOTS:
  virtual void setActiveArray(const QString& arrayName) = 0;
  virtual void setActiveComponent(int component) = 0;
  virtual void setUseSolidColor(bool checked) = 0;
  /** "Map Scalars :". */
  virtual void updateColorMode(int index) = 0;
  void arrayNameComboIndexChanged(int index);
  void arrayComponentComboChanged(int index);
  void loadRGBPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void loadIndexedPresetColors(kx::core::ColorTableUtilities::ColorPreset preset);
  void restoreDefaultRgbPresetColors();
  void restoreDefaultIndexedPresetColors();
  void setColorMapInverted(bool inverted);
  void rescaleToDataRange();
  void rescaleToCustomRange(double min, double max);
  void openCustomRangeDialog();
  void setSolidColor(QColor color);
  void setNanColor(QColor color);
  void setInterpretValuesAsCategories(bool categories);
  /** "Edit Color Map": opens the colour map editor on this view's table. */
  void editColorsButtonClicked();
  /** The edited map becomes this view's own preset, as in the points family. */
  void onColorMapEdited();
  void setScalarBarVisibility(bool visible);
  void setOpacity(int percent);
  void onDetachColorSettings(bool checked);
  void onSyncColorMapToParentGeometry() override;
  void applyTransform() override;
  void decimateGeometry() override {}

Q_SIGNALS:
  /** The data of the histogram changed: the array, its component and the range in use. */
  void histogramDataChanged(vtkDataArray* array, int component, bool usingCustomRange,
                            double rangeMin, double rangeMax);

protected:
  VXDataSource* parentDataSource() const;
  /** The point array of the active name in coloringDataSet, or null. */
  vtkDataArray* activeDataArray() const;
  /** The lookup table or the solid colour onto what the view draws. */
  virtual void applyColoring() = 0;
  /** m_Opacity onto what the view draws. */
  virtual void applyOpacity() = 0;
  /** What the view draws: bounds, visibility and transform follow it and the outline. */
  virtual vtkProp3D* coloredProp() const = 0;
  void setupScalarBar();
  /** The legend's place from the colouring settings, once the legend exists. */
  void applyLegendPosition();
  /** After read() on a set-up view: preset, array, component and categories as read. */
  void applyReadColoring();
  void refillComponentCombo();
  void updateArrayColoringChoices();
  void coloringTableChanged() override;
  void coloringHistogramChanged() override;
  void coloringRender() override;
  /** The "Coloring", "Styling", "Annotations" and "Transform" sections of the settings page. */
  void addColoringSections(const std::function<QFormLayout*(const QString&)>& section);
  /** The controls of addColoringSections to this view's slots. */
  void connectColoringControls();
  /** Tooltips of the colour controls but the opacity slider. */
  void updateColoringToolTips();

  QColor m_SolidColor = Qt::white;
  double m_Opacity = 1.0;
  QList<QMetaObject::Connection> m_ParentColorConnections;
  bool m_Initialized = false;
  bool m_Highlighted = false;
  /** The outline shown while the view is highlighted. */
  vtkSmartPointer<vtkActor> m_HighlightActor;

  QPointer<QWidget> m_PageContent;
  QPointer<QCheckBox> m_DetachColorCheckBox;
  QPointer<KXColorButton> m_SolidColorButton;
  QPointer<QComboBox> m_ArrayCombo;
  QPointer<QComboBox> m_ComponentCombo;
  QPointer<QCheckBox> m_SolidColorCheckBox;
  QPointer<QCheckBox> m_CategoriesCheckBox;
  QPointer<QPushButton> m_ColorPresetButton;
  QPointer<QPushButton> m_InvertColorBtn;
  QPointer<QPushButton> m_EditColorMapButton;
  QPointer<QComboBox> m_ScalarMappingCombo;
  QPointer<QPushButton> m_ScaleToDataButton;
  QPointer<QPushButton> m_CustomRangeButton;
  QPointer<QSlider> m_OpacitySlider;
  QPointer<QCheckBox> m_LegendCheckBox;
  QPointer<VXArrayHistogramWidget> m_HistogramWidget;
};
