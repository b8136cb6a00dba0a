#include "kxcore/ColorPreset.hpp"

namespace kx::core::ColorTableUtilities
{
namespace
{
constexpr const char* k_Name = "Name";
constexpr const char* k_ColorSpace = "ColorSpace";
constexpr const char* k_NanColor = "NanColor";
constexpr const char* k_RGBPoints = "RGBPoints";
constexpr const char* k_IndexedColors = "IndexedColors";
constexpr const char* k_Annotations = "Annotations";

std::vector<float> readFloats(const nlohmann::json& json, const char* key)
{
  std::vector<float> values;
  auto iter = json.find(key);
  if (iter == json.end() || !iter->is_array())
    return values;
  for (const auto& element : *iter)
  {
    if (!element.is_number())
      return {};
    values.push_back(element.get<float>());
  }
  return values;
}
} // namespace

ColorPreset::ColorPreset(const nlohmann::json& json)
{
  if (!json.is_object())
    return;
  if (auto iter = json.find(k_Name); iter != json.end() && iter->is_string())
    name = iter->get<std::string>();
  if (auto iter = json.find(k_ColorSpace); iter != json.end() && iter->is_string())
    colorSpace = iter->get<std::string>();
  nanColor = readFloats(json, k_NanColor);
  rgbPoints = readFloats(json, k_RGBPoints);
  indexedColors = readFloats(json, k_IndexedColors);
  if (auto iter = json.find(k_Annotations); iter != json.end() && iter->is_array())
    annotations = *iter;
}

nlohmann::json ColorPreset::toJson() const
{
  nlohmann::json json = nlohmann::json::object();
  json[k_Name] = name;
  if (!colorSpace.empty())
    json[k_ColorSpace] = colorSpace;
  if (!nanColor.empty())
    json[k_NanColor] = nanColor;
  if (!rgbPoints.empty())
    json[k_RGBPoints] = rgbPoints;
  if (!indexedColors.empty())
    json[k_IndexedColors] = indexedColors;
  if (!annotations.is_null())
    json[k_Annotations] = annotations;
  return json;
}

std::string ColorPreset::toJsonString(int indent) const
{
  return toJson().dump(indent);
}

bool ColorPreset::operator==(const ColorPreset& other) const
{
  return name == other.name && colorSpace == other.colorSpace && nanColor == other.nanColor &&
         rgbPoints == other.rgbPoints && indexedColors == other.indexedColors &&
         annotations == other.annotations;
}

bool IsValidIndexedPreset(const ColorPreset& preset)
{
  return !preset.indexedColors.empty() && preset.indexedColors.size() % 3 == 0;
}
} // namespace kx::core::ColorTableUtilities
