#pragma once

#include "KXVtkLib_export.h"

#include <kxcore/ColorPreset.hpp>

#include <vtkColorTransferFunction.h>
#include <vtkSmartPointer.h>

#include <nlohmann/json_fwd.hpp>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>

#include <array>
#include <functional>
#include <set>
#include <vector>

class QWidget;
class vtkDataArray;

/**
 * The program's one colour map object. It wraps a vtkColorTransferFunction and
 * keeps beside it what VTK does not: the preset rows as text, the NaN colour and
 * whether the map is inverted.
 *
 * A map is either continuous (the function interpolates between RGB points) or
 * indexed ("indexed lookup", categorical colouring: every distinct array value is
 * an annotated value with its own colour). A data source owns one table and its
 * data views and filters colour through it, so one preset change recolours them
 * all; a view that detaches its colours holds a deepCopy().
 *
 * Every operation that changes colours ends by handing the NaN colour to the
 * function as NaN, below-range and above-range colour and rebuilding it, so
 * values outside the range take the NaN colour as well.
 *
 * Questions to the user (missing annotated values, too many distinct values) go
 * through VXUserPrompt, so that tests and scripted hosts can answer them
 * without a modal dialog.
 */
class KXVTKLIB_EXPORT VXLookupTable : public QObject
{
  Q_OBJECT

public:
  /** A control point: normalised or absolute position, and a colour in 0..1. */
  struct RgbPos_t
  {
    double pos = 0.0;
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
  };

  /** A categorical entry: the value, its label and its colour. */
  struct IndexedColor
  {
    double value = 0.0;
    QString label;
    QColor color;
  };

  /** Which warning checkIndexedValueCount() showed. */
  enum class IndexedValueWarning
  {
    None,
    TooManyValues,
    MoreValuesThanColors
  };

  static inline const QString k_TypeName = QStringLiteral("VXLookupTable");
  /** The largest number of distinct values the default categorical palette tells apart. */
  static constexpr int k_MaxNumberIndexedColors = 32;
  /** The preset row that stands for "the default map". */
  static inline const QString k_DefaultPresetName = QStringLiteral("Default");
  /** The fallback continuous map, in normalised positions (cool to warm). */
  static const std::vector<RgbPos_t> m_DefaultRgbPosVec;
  /** The categorical palette: 32 colours once round the hue circle. */
  static const QList<QColor> m_DefaultIndexedColors;

  /** Titles, texts and buttons of the questions this class asks. */
  static inline const QString k_MissingValuesTitle =
    QStringLiteral("Missing annotated values in color map");
  static inline const QString k_MissingValuesText =
    QStringLiteral("Some of the data in the active data array does not appear in the selected "
                   "color map. Would you like to use the NaN color for the missing values, auto "
                   "generate new colors for the missing values, or cancel and select a new color "
                   "map?");
  static inline const QString k_UseNanColorButton = QStringLiteral("Use NaN Color");
  static inline const QString k_GenerateNewColorsButton = QStringLiteral("Generate New Colors");
  static inline const QString k_CancelButton = QStringLiteral("Cancel");
  static inline const QString k_TooManyValuesTitle =
    QStringLiteral("Too many discrete values to determine color map annotations");
  static inline const QString k_TooManyValuesText =
    QStringLiteral("More than %1 unique values were found in the active array (%2). Categorical "
                   "coloring may not be the best color map to use for this data set");
  static inline const QString k_MoreValuesThanColorsTitle =
    QStringLiteral("One or more colors mapping to multiple array values");
  static inline const QString k_MoreValuesThanColorsText =
    QStringLiteral("The number of unique array values (%1) is greater than the number of colors in "
                   "the selected preset (%2). This means that some colors may be mapped to more "
                   "than one array value. It is strongly recommended that you select a preset %3 "
                   "or more colors.");
  static inline const QString k_DoNotShowAgain = QStringLiteral("Do Not Show Again");

  /** Builds the default continuous map (createDefaultRgbColorTransferFunction). */
  explicit VXLookupTable(QObject* parent = nullptr);
  ~VXLookupTable() override;

  /** Adds a control point at @p x; no refresh, callers add several points then set the range. */
  void addRgbPoint(double x, double r, double g, double b);
  void addRgbPoint(double x, double rgb[3]);
  void addRgbPoint(RgbPos_t point);

  /**
   * Makes this map like @p other: indexed lookup flag, nodes, colour space, NaN
   * colour, inverted flag and colour preset rows. Annotations are not copied.
   */
  void copy(const VXLookupTable& other);
  /** A new, parentless table made by copy(); the caller owns it. */
  VXLookupTable* deepCopy() const;
  /**
   * Whether both functions have the same size, range and nodes (position and
   * colour). NaN colour and inversion are not compared; false for null.
   */
  bool equals(VXLookupTable* other) const;

  vtkColorTransferFunction* getColorTransferFunction() const;
  /** Adopts @p ctf (null is ignored) and refreshes it with this table's NaN colour. */
  void setColorTransferFunction(vtkColorTransferFunction* ctf);

  /** The rows of the continuous preset, each "x/r/g/b". */
  QList<QString> getColorPresetArray() const;
  /** The rows of the indexed preset, each "value/r/g/b", or "Default" for a generated palette. */
  QList<QString> getIndexedPresetArray() const;

  QColor getNANColor() const;
  /**
   * Stores the NaN colour and hands it to the function without rebuilding; callers request a
   * render.
   */
  void setNANColor(QColor color);
  void setNANColor(const double color[3]);

  /** The lowest and highest node position of the function. */
  std::array<double, 2> getRange() const;
  /**
   * Stretches a continuous map onto [min, max], keeping the relative positions of
   * its control points. Does nothing in indexed mode or when min > max. With
   * min == max the map becomes a constant two-point function of the colour at its
   * low end; a collapsed function falls back to the default map.
   */
  void setRange(double min, double max);
  void setRange(double range[2]);

  /** Reverses the colours of the nodes while keeping their positions; flips isInverted(). */
  void invert();
  bool isInverted() const;

  /** Loads continuous preset rows "x/r/g/b"; an empty list or "Default" loads the default map. */
  void parseRgbArray(const QList<QString>& rows);
  /** Loads a continuous preset, stretched onto the range the map had. */
  void parseRgbJson(const kx::core::ColorTableUtilities::ColorPreset& preset);
  /**
   * Loads indexed preset rows "value/r/g/b"; an empty list or a first row
   * "Default" generates the default palette over the rows' values.
   */
  void parseIndexedArray(const QList<QString>& rows);
  /**
   * Loads an indexed preset. With annotations, they give the values and labels;
   * without, the current annotated values keep their labels and take the
   * preset's colours in turn.
   */
  void parseIndexedJson(const kx::core::ColorTableUtilities::ColorPreset& preset);
  /**
   * Applies an indexed preset to the distinct values of real data. Values the
   * preset's annotations do not know are resolved by asking the user (NaN colour,
   * new random colours, or cancel). Emits syncIndexedColorMap() when colours were
   * generated. An empty @p uniqueValues falls back to parseIndexedJson(preset).
   */
  void parseIndexedJson(const kx::core::ColorTableUtilities::ColorPreset& preset,
                        const std::set<double>& uniqueValues);
  /**
   * Makes a categorical map of @p values with the default palette, stepping
   * 32 / n colours (integer division) round it; with more than 32 values every
   * value takes the first colour.
   */
  void generateDefaultIndexedColors(const std::set<double>& values);
  /** Replaces the map by the default continuous map of the preferences. */
  void createDefaultRgbColorTransferFunction();

  /** The categorical entries in value order; empty for a continuous map. */
  std::vector<IndexedColor> indexedColors() const;
  /**
   * Makes the map categorical with exactly @p entries (a repeated value keeps its last
   * entry). The NaN colour and the inverted flag stay as they were.
   */
  void setIndexedColors(std::vector<IndexedColor> entries);
  /**
   * The map as a preset named @p name, with colours as they are before inversion: a view that
   * keeps a preset and an inverted flag restores this map by loading the preset and inverting
   * it when the flag is set. Continuous maps give their points at their positions, categorical
   * maps their colours and annotations in value order.
   */
  kx::core::ColorTableUtilities::ColorPreset toColorPreset(const QString& name) const;

  /** Takes the keys present in @p json (see write()); missing keys leave their property. */
  void read(const nlohmann::json& json);
  /**
   * Writes "indexed_lookup", "rgb_pos_vector", "color_space", "lut_is_inverted",
   * "lut_nan_color_r/g/b" and "lut_color_preset".
   */
  void write(nlohmann::json& json) const;

  /**
   * Warns, before an indexed preset is applied, when @p uniqueValueCount is
   * outside 1..32 or exceeds @p presetColorCount, unless the user switched the
   * warning off in the preferences. The message names @p arrayName.
   */
  static IndexedValueWarning checkIndexedValueCount(int uniqueValueCount, int presetColorCount,
                                                    const QString& arrayName);

  /**
   * The distinct values of @p component of @p array; component -1 is the
   * magnitude (the value itself for a one-component array).
   */
  static std::set<double> computeUniqueValues(vtkDataArray* array, int component);

  /** The preset row text of a point: "x/r/g/b", each number with 6 significant digits. */
  static QString presetRow(double x, double r, double g, double b);

Q_SIGNALS:
  /** Colours were generated for unknown values; views showing the map as a table take them over. */
  void syncIndexedColorMap(vtkSmartPointer<vtkColorTransferFunction> ctf);

private:
  /** Hands the NaN colour to the function as NaN, below- and above-range colour, then builds. */
  void refresh();
  /** Replaces the map by continuous points, stretched onto the range the map had. */
  void setRgbPoints(const std::vector<RgbPos_t>& points);
  void applyNanColorToFunction();
  std::vector<std::array<double, 6>> nodes() const;

  bool m_IsInverted = false;
  double m_NanColor[3] = { 0.5, 0.75, 0.0 };
  QList<QString> m_ColorPresetArray;
  QList<QString> m_IndexedPresetArray;
  vtkSmartPointer<vtkColorTransferFunction> m_ColorTransferFunction;
};
