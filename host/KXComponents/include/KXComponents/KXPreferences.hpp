#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>

/**
 * The host's application preferences that the visualization reads. One
 * instance per process; the getters are static so callers may use either
 * KXPreferences::getX() or KXPreferences::Instance()->getX(). Values persist
 * through QtKXSettings (group "Preferences") on writeSettings().
 */
class KXCOMPONENTS_EXPORT KXPreferences : public QObject
{
  Q_OBJECT

public:
  /** The process-wide instance; created on first use. */
  static KXPreferences* Instance();

  /** The continuous colour map used when none is chosen ("Cool to Warm" unless changed). */
  static kx::core::ColorTableUtilities::ColorPreset getDefaultColorPreset();
  static void setDefaultColorPreset(const kx::core::ColorTableUtilities::ColorPreset& preset);
  /** The indexed (categorical) colour map used when none is chosen. */
  static kx::core::ColorTableUtilities::ColorPreset getDefaultIndexedColorPreset();
  static void setDefaultIndexedColorPreset(
    const kx::core::ColorTableUtilities::ColorPreset& preset);

  static QColor getDefaultRenderWindowBackground();
  static void setDefaultRenderWindowBackground(const QColor& color);
  static bool getCameraParallelProjDefault();
  static void setCameraParallelProjDefault(bool parallel);

  /** Orientation marker axis labels, six texts for +X, -X, +Y, -Y, +Z, -Z ("X", "-X", ...). */
  static QStringList getOrientationMarkerText();
  /** Ignored unless exactly six texts; emits orientationMarkerTextChanged when they differ. */
  static void setOrientationMarkerText(const QStringList& texts);

  static bool getDisableDecimation();
  static void setDisableDecimation(bool disable);

  /** Whether to warn when an array has too many distinct values for categorical colouring. */
  static bool getAllowTooManyIndexedValues();
  static void setAllowTooManyIndexedValues(bool allow);
  /** Whether to warn when an array has more distinct values than the indexed preset has colours. */
  static bool getAllowMoreValuesThanIndexedColors();
  static void setAllowMoreValuesThanIndexedColors(bool allow);

  /**
   * Takes the values stored under the settings group "Preferences"; a key that
   * is missing or unreadable leaves the current value in place.
   */
  static void readSettings();
  /** Stores every value under the settings group "Preferences". */
  static void writeSettings();
  /** Puts every value back to its built-in default (the settings file is untouched). */
  static void resetToDefaults();

  /** Settings group and keys, for callers that inspect the store directly. */
  static inline const QString k_Group = QStringLiteral("Preferences");
  static inline const QString k_ColorPresetKey = QStringLiteral("default_color_preset");
  static inline const QString k_IndexedColorPresetKey =
    QStringLiteral("default_indexed_color_preset");
  static inline const QString k_BackgroundKey = QStringLiteral("default_render_window_background");
  static inline const QString k_ParallelProjectionKey =
    QStringLiteral("camera_parallel_projection");
  static inline const QString k_OrientationMarkerTextKey =
    QStringLiteral("orientation_marker_text");
  static inline const QString k_DisableDecimationKey = QStringLiteral("disable_decimation");
  static inline const QString k_AllowTooManyIndexedValuesKey =
    QStringLiteral("allow_too_many_indexed_values");
  static inline const QString k_AllowMoreValuesThanIndexedColorsKey =
    QStringLiteral("allow_more_values_than_indexed_colors");

  /** Built-in defaults. */
  static inline const QString k_DefaultColorPresetName = QStringLiteral("Cool to Warm");
  static inline const QString k_DefaultIndexedColorPresetName = QStringLiteral("Distinct 12");
  /** A dark blue-grey: light data and white axis labels stay readable on it. */
  static QColor DefaultBackground() { return QColor(52, 57, 68); }
  static QStringList DefaultOrientationMarkerText() { return { "X", "-X", "Y", "-Y", "Z", "-Z" }; }

Q_SIGNALS:
  /** The six orientation marker texts changed (by a setter or readSettings). */
  void orientationMarkerTextChanged(QStringList texts);

private:
  KXPreferences();
};
