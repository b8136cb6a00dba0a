#pragma once

#include "KXVtkLib_export.h"
#include "visualization/VXColoringSettings.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSharedPointer>
#include <QtGui/QColor>

#include <KXComponents/ColorPresetsDialog.hpp>

#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkSmartPointer.h>

#include <map>
#include <set>

#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"
#include "visualization/QtWidgets/VXLUTEditor.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXLookupTable.hpp"

class QComboBox;
class vtkDataArray;
class vtkDataSet;

class vtkScalarsToColors;

/**
 * Colouring by an array through a view's own lookup table: the part that the points family and
 * the image slice view share. It holds the colouring settings, the table, the preset, custom
 * range and colour map dialogs and the legend, and does everything that only touches those:
 * component and vector mode, ranges, presets, categories, inversion, the edited colour map and
 * the legend's look. The data view supplies the data (coloringDataSet, coloringArray) and reacts
 * to changes (coloringTableChanged, coloringHistogramChanged, coloringRender); how the table
 * reaches its mapper or image property stays with it.
 */
class KXVTKLIB_EXPORT VXScalarColoring
{
public:
  using ColorPreset = kx::core::ColorTableUtilities::ColorPreset;
  /** Distinct values by array name, then by component (-1 the magnitude). */
  using UniqueValueCache = std::map<QString, std::map<int, std::set<double>>>;

  /** Every colouring field as the state file and the default settings see it. */
  const VXColoringSettings& coloringSettings() const { return m_Coloring; }
  QString activeArray() const { return m_Coloring.activeArray; }
  int activeComponent() const { return m_Coloring.activeComponent; }
  int scalarMapping() const { return m_Coloring.scalarMapping; }
  QString legendTitle() const { return m_LegendTitle; }
  bool showLegend() const { return m_Coloring.showLegend; }
  bool useSolidColor() const { return m_Coloring.useSolidColor; }
  bool valuesAsCategories() const { return m_Coloring.valuesAsCategories; }
  bool usingCustomRange() const { return m_Coloring.usingCustomRange; }
  std::array<double, 2> customRange() const { return m_Coloring.customRange; }
  bool colorMapInverted() const { return m_Coloring.colorMapInverted; }
  ColorPreset colorPreset() const { return m_Coloring.colorPreset; }
  ColorPreset indexedColorPreset() const { return m_Coloring.indexedColorPreset; }
  bool usingDefaultPreset() const { return m_Coloring.usingDefaultPreset; }
  bool usingDefaultIndexedPreset() const { return m_Coloring.usingDefaultIndexedPreset; }
  bool generateHistogram() const { return m_Coloring.generateHistogram; }
  const UniqueValueCache& uniqueValues() const { return m_UniqueValues; }
  VXCustomRangeDialog* customRangeDialog() const { return m_CustomRangeDialog.data(); }
  ColorPresetsDialog* colorPresetsDialog() const { return m_ColorPresetsDialog.data(); }
  /** The colour map editor, null until "Edit Color Map" first opens it. */
  VXLUTEditor* colorMapEditor() const { return m_LUTEditor.data(); }
  vtkScalarBarWidget* scalarBarWidget() const { return m_ScalarBarWidget; }
  vtkScalarBarRepresentation* scalarBarRepresentation() const { return m_ScalarBarRepresentation; }
  /** The name under which an edited colour map is kept as this view's preset. */
  static inline const QString k_EditedPresetName = QStringLiteral("Edited");
  /** The tooltip of the "Map Scalars :" combo. */
  static const QString k_MapScalarsToolTip;

  /**
   * The distinct values of an array's component, computed once and cached; a
   * walk that passes the categorical colour limit leaves an empty set.
   */
  std::set<double> computeUniqueValues(const QString& arrayName, int component);

protected:
  VXScalarColoring();
  virtual ~VXScalarColoring();

  /** The data set coloured, where arrays are looked up by name. */
  virtual vtkDataSet* coloringDataSet() const = 0;
  /** The array of the active name in coloringDataSet, or null. */
  vtkDataArray* coloringArray() const;
  /** The table's colours or mode changed in a way the view must hand on. */
  virtual void coloringTableChanged() {}
  /** The array, component or range changed: the histogram follows. */
  virtual void coloringHistogramChanged() = 0;
  virtual void coloringRender() = 0;

  /** Vector mode and legend title for a component of @p array; below -1 counts as -1. */
  void applyComponent(vtkScalarsToColors* table, vtkDataArray* array, int component);
  /** After an array or component change: the custom range if one is in use, else the data's. */
  void applyRangeOfActiveComponent(vtkDataArray* array);
  /** The finite range of the active component (or the data set's scalar range) to the table. */
  void rescaleColoringToData();
  void rescaleColoringToCustom(double min, double max);
  /** The stored RGB preset (or the default one) onto the table, inverted if asked. */
  void applyRgbPreset();
  /** The stored categorical preset with the distinct values of the active component. */
  void applyIndexedPreset();
  /** @p preset, or the preferences' default when null, as the continuous or categorical map. */
  void chooseRgbPreset(const ColorPreset* preset);
  void chooseIndexedPreset(const ColorPreset* preset);
  /** Whatever kind of map is shown: categorical presets when values are categories. */
  void choosePreset(const ColorPreset* preset);
  /** Flips the table when @p inverted differs from the stored flag; false when nothing changed. */
  bool invertColoring(bool inverted);
  /** Categories on or off: preset and range follow, then coloringTableChanged. */
  void applyCategories(bool categories);
  void setNanColorOfTable(const QColor& color);
  /** Hands the NaN colour of the colouring settings to the lookup table. */
  void applyNanColor();
  /**
   * The table as edited in the colour map editor becomes this view's own preset; a continuous
   * map whose ends moved off the data range keeps its range as the custom range.
   */
  void recordEditedColorMap();
  /** Creates the legend's representation on first use and sets the text side. */
  void setupScalarBarRepresentation();
  /** Puts the legend's text on the side of the bar that faces into the view. */
  void updateLegendTextSide();
  void setScalarBarTitle(const QString& title);
  /** The data source's arrays, the active one chosen; signals blocked. */
  void fillArrayCombo(QComboBox* combo, VXDataSource* source) const;
  /** The active array's components ("Magnitude" first for vectors), the active one chosen. */
  void fillComponentCombo(QComboBox* combo, VXDataSource* source) const;
  /** The colouring settings with the NaN colour and legend place of the table and the bar. */
  VXColoringSettings currentColoringSettings() const;

  /** Routes the dialogs' choices to the view's slots. */
  template<typename View>
  void connectColoringDialogs(View* view)
  {
    QObject::connect(m_ColorPresetsDialog.data(), &ColorPresetsDialog::presetSelected, view,
                     [this](const ColorPreset& preset)
                     {
                       choosePreset(&preset);
                       coloringRender();
                     });
    QObject::connect(m_CustomRangeDialog.data(), &VXCustomRangeDialog::rangeAccepted, view,
                     &View::rescaleToCustomRange);
  }

  /** "Edit Color Map": the editor on this view's table, created on first use. */
  template<typename View>
  void openColorMapEditor(View* view)
  {
    if (m_LUTEditor == nullptr)
    {
      m_LUTEditor = QSharedPointer<VXLUTEditor>(new VXLUTEditor(), &QObject::deleteLater);
      QObject::connect(m_LUTEditor.data(), &VXLUTEditor::colorMapEdited, view,
                       &View::onColorMapEdited);
      QObject::connect(m_LUTEditor.data(), &VXLUTEditor::invertRequested, view,
                       [view, this]() { view->setColorMapInverted(!m_Coloring.colorMapInverted); });
      QObject::connect(m_LUTEditor.data(), &VXLUTEditor::presetsRequested, view,
                       [this]()
                       {
                         m_ColorPresetsDialog->show();
                         m_ColorPresetsDialog->raise();
                       });
      QObject::connect(m_LUTEditor.data(), &VXLUTEditor::nanColorChanged, view, &View::setNanColor);
    }
    m_LUTEditor->setLookupTable(m_LookupTable.data(), m_Coloring.activeArray);
    m_LUTEditor->show();
    m_LUTEditor->raise();
  }

  /** The data source's colour signals to the view's setters, as one list of connections. */
  template<typename View>
  void connectParentColoring(View* view, VXDataSource* source,
                             QList<QMetaObject::Connection>& connections)
  {
    connections.append(
      QObject::connect(source, &VXDataSource::nanColorChanged, view, &View::setNanColor));
    connections.append(QObject::connect(source, &VXDataSource::loadPresetColors, view,
                                        [this](const ColorPreset& preset)
                                        {
                                          choosePreset(&preset);
                                          coloringRender();
                                        }));
    connections.append(QObject::connect(source, &VXDataSource::restoreDefaultPresetColors, view,
                                        [this]()
                                        {
                                          choosePreset(nullptr);
                                          coloringRender();
                                        }));
    connections.append(
      QObject::connect(source, &VXDataSource::invertColorMap, view, &View::setColorMapInverted));
  }

  /** Array, component, presets, range, legend: declared once in VXColoringSettings. */
  VXColoringSettings m_Coloring;
  QSharedPointer<VXLookupTable> m_LookupTable;
  QSharedPointer<ColorPresetsDialog> m_ColorPresetsDialog;
  QSharedPointer<VXCustomRangeDialog> m_CustomRangeDialog;
  QSharedPointer<VXLUTEditor> m_LUTEditor;
  vtkSmartPointer<vtkScalarBarWidget> m_ScalarBarWidget;
  vtkSmartPointer<vtkScalarBarRepresentation> m_ScalarBarRepresentation;
  UniqueValueCache m_UniqueValues;
  QString m_LegendTitle;
  /** Set while a change of array or component rescales, so the histogram is sent once. */
  bool m_BlockHistogram = false;
};
