#include "visualization/VXColoringSettings.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <type_traits>

namespace
{
using S = VXColoringSettings;
using Defaults = VXColoringSettings::Defaults;

template<typename T>
constexpr bool IsArray = std::is_same_v<T, S::Pair> || std::is_same_v<T, S::Triple>;

bool HasAllKeys(const nlohmann::json& input, const std::vector<const char*>& keys)
{
  for (const char* key : keys)
  {
    if (!input.contains(key))
      return false;
  }
  return true;
}

bool HasAllKeys(const QtKXSettings& settings, const std::vector<const char*>& keys)
{
  for (const char* key : keys)
  {
    if (!settings.contains(key))
      return false;
  }
  return true;
}
} // namespace

VXColoringSettings::VXColoringSettings()
  : colorPreset(KXPreferences::getDefaultColorPreset())
  , indexedColorPreset(KXPreferences::getDefaultIndexedColorPreset())
{
}

const std::vector<VXColoringSettings::Field>& VXColoringSettings::fields()
{
  static const std::vector<Field> table = {
    { { "scalar_bar_visible" }, &S::showLegend, Defaults::LoadSave, { true } },
    { { "active_array" }, &S::activeArray, Defaults::None, {} },
    { { "active_component" }, &S::activeComponent, Defaults::None, {} },
    { { "scalar_mapping" }, &S::scalarMapping, Defaults::LoadSave, { 1 } },
    { { "color_map_inverted" }, &S::colorMapInverted, Defaults::LoadSave, { false } },
    { { "color_preset" }, &S::colorPreset, Defaults::None, {} },
    { { "indexed_color_preset" }, &S::indexedColorPreset, Defaults::None, {} },
    { { "using_default_preset" }, &S::usingDefaultPreset, Defaults::LoadSave, { true } },
    { { "using_default_indexed_preset" },
      &S::usingDefaultIndexedPreset,
      Defaults::LoadSave,
      { true } },
    { { "using_custom_range" }, &S::usingCustomRange, Defaults::LoadOnly, { false } },
    { { "custom_range_min", "custom_range_max" },
      &S::customRange,
      Defaults::LoadOnly,
      { 0.0, 1.0 } },
    { { "using_solid_color" }, &S::useSolidColor, Defaults::LoadSave, { false } },
    { { "values_as_categories" }, &S::valuesAsCategories, Defaults::LoadSave, { false } },
    { { "generate_histogram_data" }, &S::generateHistogram, Defaults::LoadSave, { false } },
    { { "nan_color_r", "nan_color_g", "nan_color_b" },
      &S::nanColor,
      Defaults::LoadSave,
      { 0.5, 0.75, 1.0 } },
    { { "source_position_x", "source_position_y" }, &S::legendPosition, Defaults::None, {}, true },
    { { "source_position2_x", "source_position2_y" },
      &S::legendPosition2,
      Defaults::None,
      {},
      true },
  };
  return table;
}

void VXColoringSettings::write(nlohmann::json& output) const
{
  for (const Field& field : fields())
  {
    if (field.legendOnly && !legendPlaced)
      continue;
    std::visit(
      [&](auto member)
      {
        using T = std::remove_cvref_t<decltype(this->*member)>;
        const T& value = this->*member;
        if constexpr (IsArray<T>)
        {
          for (std::size_t i = 0; i < field.keys.size(); ++i)
            output[field.keys[i]] = value[i];
        }
        else if constexpr (std::is_same_v<T, QString>)
          output[field.keys[0]] = value.toStdString();
        else if constexpr (std::is_same_v<T, ColorPreset>)
          output[field.keys[0]] = value.toJson();
        else
          output[field.keys[0]] = value;
      },
      field.member);
  }
}

void VXColoringSettings::read(const nlohmann::json& input)
{
  for (const Field& field : fields())
  {
    if (!HasAllKeys(input, field.keys))
      continue;
    std::visit(
      [&](auto member)
      {
        using T = std::remove_cvref_t<decltype(this->*member)>;
        T& value = this->*member;
        if constexpr (IsArray<T>)
        {
          for (std::size_t i = 0; i < field.keys.size(); ++i)
            value[i] = input.at(field.keys[i]).template get<double>();
        }
        else if constexpr (std::is_same_v<T, QString>)
          value = QString::fromStdString(input.at(field.keys[0]).template get<std::string>());
        else if constexpr (std::is_same_v<T, ColorPreset>)
          value = ColorPreset(input.at(field.keys[0]));
        else if constexpr (std::is_same_v<T, int>)
          value = KXVtkModule::utils::StateInt(input.at(field.keys[0]));
        else
          value = input.at(field.keys[0]).template get<T>();
      },
      field.member);
  }
}

// The default settings hold the same values as a state file under the same keys:
// both directions go through the state file's own read and write.
void VXColoringSettings::loadDefaults(const QtKXSettings& settings)
{
  nlohmann::json values = nlohmann::json::object();
  for (const Field& field : fields())
  {
    if (field.defaults == Defaults::None || !HasAllKeys(settings, field.keys))
      continue;
    for (std::size_t i = 0; i < field.keys.size(); ++i)
    {
      const QVariant& fallback = field.settingsDefaults.at(i);
      const QVariant stored = settings.value(field.keys[i], fallback);
      // the stored text ("true", "3") is read as the type of the declared default
      if (fallback.typeId() == QMetaType::Bool)
        values[field.keys[i]] = stored.toBool();
      else if (fallback.typeId() == QMetaType::Int)
        values[field.keys[i]] = stored.toInt();
      else
        values[field.keys[i]] = stored.toDouble();
    }
  }
  read(values);
}

void VXColoringSettings::saveDefaults(QtKXSettings& settings) const
{
  nlohmann::json values = nlohmann::json::object();
  write(values);
  for (const Field& field : fields())
  {
    if (field.defaults != Defaults::LoadSave)
      continue;
    for (const char* key : field.keys)
    {
      const nlohmann::json& value = values.at(key);
      if (value.is_boolean())
        settings.setValue(key, value.get<bool>());
      else if (value.is_number_integer())
        settings.setValue(key, KXVtkModule::utils::StateInt(value));
      else
        settings.setValue(key, value.get<double>());
    }
  }
}
