#pragma once

#include "KXVtkLib_export.h"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <nlohmann/json.hpp>

#include <array>
#include <variant>
#include <vector>

class QtKXSettings;

/**
 * How a data view colours its data by an array: active array and component,
 * scalar mapping, presets, inversion, custom range, solid colour, categories,
 * histogram, NaN colour and the legend's flag and place.
 *
 * Every field is declared once, in fields(): its state key (or the keys of a
 * pair or triple, read all or none), the member it lands in, and its settings
 * default when it belongs to the default settings. That one table drives the
 * state file (write, read), the default settings (loadDefaults, saveDefaults),
 * and therefore copy and paste. The points family and the image slice view
 * each hold one of these and apply it to their own lookup table and legend.
 */
struct KXVTKLIB_EXPORT VXColoringSettings
{
  using ColorPreset = kx::core::ColorTableUtilities::ColorPreset;
  using Pair = std::array<double, 2>;
  using Triple = std::array<double, 3>;

  bool showLegend = false;
  QString activeArray;
  int activeComponent = -1;
  int scalarMapping = 1;
  bool colorMapInverted = false;
  /** The continuous and the categorical preset; the defaults come from the preferences. */
  ColorPreset colorPreset;
  ColorPreset indexedColorPreset;
  bool usingDefaultPreset = true;
  bool usingDefaultIndexedPreset = true;
  bool usingCustomRange = false;
  Pair customRange = { 0.0, 1.0 };
  bool useSolidColor = false;
  bool valuesAsCategories = false;
  bool generateHistogram = false;
  Triple nanColor = { 0.5, 0.75, 1.0 };
  /** Where a legend first stands: at the right edge, below the view cube. */
  static constexpr Pair k_DefaultLegendPosition = { 0.9, 0.175 };
  static constexpr Pair k_DefaultLegendPosition2 = { 0.1, 0.5 };
  /** The legend's two corners in normalized display coordinates. */
  Pair legendPosition = k_DefaultLegendPosition;
  Pair legendPosition2 = k_DefaultLegendPosition2;
  /** The legend positions are written only once a legend exists. */
  bool legendPlaced = false;

  using Member = std::variant<bool VXColoringSettings::*, int VXColoringSettings::*,
                              QString VXColoringSettings::*, ColorPreset VXColoringSettings::*,
                              Pair VXColoringSettings::*, Triple VXColoringSettings::*>;

  /** Where a field is kept besides the state file. */
  enum class Defaults
  {
    None,     ///< data specific or per view: state file only
    LoadOnly, ///< read from the default settings, never written there (data specific)
    LoadSave  ///< read from and written to the default settings
  };

  struct Field
  {
    /** One key, or the keys of a pair or triple in member order. */
    std::vector<const char*> keys;
    Member member;
    Defaults defaults = Defaults::None;
    /** The value a settings key falls back to (one per key). */
    std::vector<QVariant> settingsDefaults = {};
    /** Written only when legendPlaced is set. */
    bool legendOnly = false;
  };

  /** The presets from the preferences; every other field keeps its initializer. */
  VXColoringSettings();

  /** The one declaration of all colouring fields, in state file order. */
  static const std::vector<Field>& fields();

  /** Adds every field to a state object. */
  void write(nlohmann::json& output) const;
  /** Takes only the keys that exist; pairs and triples all or none. */
  void read(const nlohmann::json& input);
  /** Takes the settings keys that exist in the current group. */
  void loadDefaults(const QtKXSettings& settings);
  /** Writes the fields that are not data specific to the current group. */
  void saveDefaults(QtKXSettings& settings) const;

  bool operator==(const VXColoringSettings& other) const = default;
};
