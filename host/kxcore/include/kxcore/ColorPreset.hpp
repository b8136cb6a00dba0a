#pragma once

#include "kxcore/kxcore_export.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace kx::core::ColorTableUtilities
{
/**
 * A named colour map. Continuous maps give "RGBPoints" (position, red, green,
 * blue per point); indexed maps give "IndexedColors" (red, green, blue per
 * colour) and optional "Annotations" (value, label, value, label, ...).
 * Colours are in 0..1.
 */
class KXCORE_EXPORT ColorPreset
{
public:
  std::string name;
  std::string colorSpace;
  std::vector<float> nanColor;
  std::vector<float> rgbPoints;
  std::vector<float> indexedColors;
  nlohmann::json annotations;

  ColorPreset() = default;
  /** Reads the known members; members that are missing or of another type stay empty. */
  explicit ColorPreset(const nlohmann::json& json);

  nlohmann::json toJson() const;
  std::string toJsonString(int indent = -1) const;

  bool operator==(const ColorPreset& other) const;
  bool operator!=(const ColorPreset& other) const { return !(*this == other); }
};

/** Whether the preset can colour indexed (categorical) data: a whole number of RGB colours. */
KXCORE_EXPORT bool IsValidIndexedPreset(const ColorPreset& preset);
} // namespace kx::core::ColorTableUtilities
