#pragma once

#include "visualization/VXColoringSettings.hpp"
#include "visualization/VXScalarColoredRepPimpl.hpp"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QStringList>
#include <QtWidgets/QWidget> // control<W>() searches the page

#include <vtkActor.h>
#include <vtkGlyph3DMapper.h>
#include <vtkMaskPoints.h>
#include <vtkSmartPointer.h>

#include <array>

class KXColorButton;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QPushButton;
class QSlider;
class QSpinBox;
class VXArrayHistogramWidget;
class VXDataSource;
class vtkDataArray;
class vtkDataSet;
class vtkPassSelectedArrays;
class vtkPolyDataAlgorithm;

/**
 * The glyph data view in one render view: a vtkGlyph3DMapper draws one shape per shown point,
 * turned along a vector array (or not turned), sized by nothing, a scalar or a vector's magnitude
 * times a factor, and coloured through this view's lookup table like the points family
 * (VXColoringSettings, same keys and defaults). Before the mapper, a shallow pass keeps only the
 * point arrays the glyphs use, and a large data set is thinned to every Nth point or to a uniform
 * random subset of at most a given count, so the mask copies only the sampled tuples of those
 * arrays. Where no thinning is needed the mapper reads the parent's data itself.
 */
class KXVTKLIB_EXPORT VXGlyphRepPimpl : public VXScalarColoredRepPimpl
{
  Q_OBJECT

public:
  enum GlyphType
  {
    Arrow = 0,
    Cone = 1,
    Sphere = 2,
    Cube = 3,
    Line = 4
  };
  enum ScaleMode
  {
    ScaleOff = 0,
    ScaleByScalar = 1,
    ScaleByVectorMagnitude = 2
  };
  enum SamplingMode
  {
    AllPoints = 0,
    EveryNthPoint = 1,
    UniformRandomSubset = 2
  };
  /** The combo texts, in enum order. */
  static const QStringList k_GlyphTypeNames;
  static const QStringList k_ScaleModeNames;
  static const QStringList k_SamplingModeNames;
  /** The orientation combo's first entry: glyphs keep the shape's own direction. */
  static inline const QString k_NoOrientation = QStringLiteral("No Orientation");
  /** The largest glyph of a factor taken from the data spans this share of the data's extent. */
  static constexpr double k_DefaultSizeOfExtent = 0.1;

  VXGlyphRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXGlyphRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  bool finalize() override;
  void write(nlohmann::json& output) const override;
  void read(const nlohmann::json& input) override;
  /** The points glyphs are drawn at: the mask's output, or the array pass where nothing is masked.
   */
  vtkAlgorithmOutput* outputPort() override;
  vtkAlgorithmOutput* inputPort() override;
  void buildSettingsPage() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void updateToolTips() override;

  vtkActor* actor() const { return m_Actor; }
  vtkGlyph3DMapper* glyphMapper() const { return m_Mapper; }
  vtkMaskPoints* maskPoints() const { return m_Mask; }
  /** The parent's data set that the glyphs are taken from. */
  vtkDataSet* inputDataSet() const;
  /** The data set the mapper draws: one glyph per point. */
  vtkDataSet* glyphedDataSet() const;
  /** How many glyphs the mapper draws. */
  vtkIdType glyphCount() const;

  GlyphType glyphType() const { return m_GlyphType; }
  QString orientationArray() const { return m_OrientationArray; }
  ScaleMode scaleMode() const { return m_ScaleMode; }
  QString scaleArray() const { return m_ScaleArray; }
  double scaleFactor() const { return m_ScaleFactor; }
  /** Whether the factor still follows the data (no factor was given by the user or a file). */
  bool scaleFactorFromData() const { return m_ScaleFactorFromData; }
  SamplingMode samplingMode() const { return m_SamplingMode; }
  int stride() const { return m_Stride; }
  int maximumCount() const { return m_MaximumCount; }
  /**
   * The factor a scientist expects: the largest glyph spans a tenth of the data's largest extent,
   * whatever the scale array's values.
   */
  double defaultScaleFactor() const;
  /** Point arrays of the parent's data fit to orient glyphs (three components). */
  QStringList orientationArrayChoices() const;
  /** Point arrays fit for a scale mode: one component for a scalar, more for a vector. */
  QStringList scaleArrayChoices(ScaleMode mode) const;

public Q_SLOTS:
  void receivePipelineOutputReloaded() override;
  void setGlyphType(int type);
  /** An empty name or k_NoOrientation turns orientation off. */
  void setOrientationArray(const QString& arrayName);
  /** A mode whose array is missing takes the first fitting array. */
  void setScaleMode(int mode);
  void setScaleArray(const QString& arrayName);
  /** A factor the user gives; the data no longer moves it. */
  void setScaleFactor(double factor);
  /** Back to the factor taken from the data. */
  void resetScaleFactor();
  void setSamplingMode(int mode);
  /** N of "Every Nth Point", at least 1. */
  void setStride(int stride);
  /** The most glyphs "Uniform Random Subset" draws, at least 1. */
  void setMaximumCount(int count);
  void setActiveArray(const QString& arrayName) override;
  void setActiveComponent(int component) override;
  void setUseSolidColor(bool checked) override;
  /** "Map Scalars :"; as in the points family the choice lands in the active component field. */
  void updateColorMode(int index) override;
  void setGenerateHistogram(bool generate);
  void updateHistogram() override;

private:
  /** Shape source of the glyph type. */
  void applyGlyphType();
  /** Orientation, scale mode, array and factor onto the mapper. */
  void applyOrientationAndScale();
  /** Keeps the arrays in use, and masks or not by the sampling mode. */
  void applySampling();
  /** Arrays not chosen yet get the data's: its vectors to orient, no scaling. */
  void chooseDefaultArrays();
  /** Solid colour or the table onto the mapper and the actor's property. */
  void applyColoring() override;
  void applyOpacity() override;
  vtkProp3D* coloredProp() const override;
  void refillGlyphCombos();
  void syncControls();
  vtkDataSet* coloringDataSet() const override;
  void loadGlyphDefaults(QtKXSettings& settings);

  vtkSmartPointer<vtkActor> m_Actor;
  vtkSmartPointer<vtkGlyph3DMapper> m_Mapper;
  vtkSmartPointer<vtkPassSelectedArrays> m_ArrayPass;
  vtkSmartPointer<vtkMaskPoints> m_Mask;
  vtkSmartPointer<vtkPolyDataAlgorithm> m_GlyphSource;

  GlyphType m_GlyphType = Arrow;
  QString m_OrientationArray;
  ScaleMode m_ScaleMode = ScaleOff;
  QString m_ScaleArray;
  double m_ScaleFactor = 1.0;
  bool m_ScaleFactorFromData = true;
  /** False until arrays were taken from the data, a file, the user or another view. */
  bool m_ArraysChosen = false;
  SamplingMode m_SamplingMode = UniformRandomSubset;
  int m_Stride = 10;
  int m_MaximumCount = 5000;

  QPointer<QComboBox> m_GlyphTypeCombo;
  QPointer<QComboBox> m_OrientationCombo;
  QPointer<QComboBox> m_ScaleModeCombo;
  QPointer<QComboBox> m_ScaleArrayCombo;
  QPointer<QDoubleSpinBox> m_ScaleFactorSpinBox;
  QPointer<QPushButton> m_ResetScaleFactorButton;
  QPointer<QComboBox> m_SamplingCombo;
  QPointer<QSpinBox> m_StrideSpinBox;
  QPointer<QSpinBox> m_MaximumCountSpinBox;
  QPointer<QCheckBox> m_HistogramCheckBox;
};
