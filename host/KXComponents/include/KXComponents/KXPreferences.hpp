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
  static KXPreferences* Instance();

  /** The continuous colour map used when none is chosen ("Cool to Warm" unless changed). */
  static kx::core::ColorTableUtilities::ColorPreset getDefaultColorPreset();
  static void setDefaultColorPreset(const kx::core::ColorTableUtilities::ColorPreset& preset);
  /** The indexed (categorical) colour map used when none is chosen. */
  static kx::core::ColorTableUtilities::ColorPreset getDefaultIndexedColorPreset();
  static void setDefaultIndexedColorPreset(const kx::core::ColorTableUtilities::ColorPreset& preset);

  static QColor getDefaultRenderWindowBackground();
  static void setDefaultRenderWindowBackground(const QColor& color);
  static bool getCameraParallelProjDefault();
  static void setCameraParallelProjDefault(bool parallel);

  /** Orientation marker axis labels, six texts for +X, -X, +Y, -Y, +Z, -Z ("X", "-X", ...). */
  static QStringList getOrientationMarkerText();
  static void setOrientationMarkerText(const QStringList& texts);

  static bool getDisableDecimation();
  static void setDisableDecimation(bool disable);

  /** Whether to warn when an array has too many distinct values for categorical colouring. */
  static bool getAllowTooManyIndexedValues();
  static void setAllowTooManyIndexedValues(bool allow);
  /** Whether to warn when an array has more distinct values than the indexed preset has colours. */
  static bool getAllowMoreValuesThanIndexedColors();
  static void setAllowMoreValuesThanIndexedColors(bool allow);

  static void readSettings();
  static void writeSettings();

Q_SIGNALS:
  void orientationMarkerTextChanged(QStringList texts);

private:
  KXPreferences();
};
