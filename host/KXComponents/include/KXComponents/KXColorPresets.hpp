#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <kxcore/ColorPreset.hpp>

#include <QtCore/QString>

#include <optional>
#include <vector>

/**
 * The colour maps shipped with KXComponents, read from the JSON collection
 * compiled into the library's resources. The preset dialog lists them and
 * KXPreferences takes its defaults from them. Continuous maps carry RGBPoints,
 * indexed (categorical) maps IndexedColors.
 */
class KXCOMPONENTS_EXPORT KXColorPresets
{
public:
  /** Resource path of the built-in collection. */
  static QString BuiltInResourcePath();

  /** All built-in presets in the collection's order; parsed once per process. */
  static const std::vector<kx::core::ColorTableUtilities::ColorPreset>& LoadBuiltIn();

  /**
   * Parses a JSON array of preset objects. Entries that are not objects or have
   * no name are skipped; malformed text gives an empty list.
   */
  static std::vector<kx::core::ColorTableUtilities::ColorPreset> Parse(const QByteArray& jsonText);

  /** The built-in preset of that exact name, if any. */
  static std::optional<kx::core::ColorTableUtilities::ColorPreset> Find(const QString& name);

  /** Whether the preset is a continuous map: RGBPoints and no IndexedColors. */
  static bool IsContinuous(const kx::core::ColorTableUtilities::ColorPreset& preset);
};
