#include "KXComponents/KXColorPresets.hpp"

#include <QtCore/QByteArray>
#include <QtCore/QFile>

using kx::core::ColorTableUtilities::ColorPreset;

QString KXColorPresets::BuiltInResourcePath()
{
  return QStringLiteral(":/KXComponents/presets/ColorPresets.json");
}

std::vector<ColorPreset> KXColorPresets::Parse(const QByteArray& jsonText)
{
  std::vector<ColorPreset> presets;
  const nlohmann::json document =
    nlohmann::json::parse(jsonText.constBegin(), jsonText.constEnd(), nullptr, false);
  if (!document.is_array())
  {
    return presets;
  }
  for (const nlohmann::json& entry : document)
  {
    if (!entry.is_object())
    {
      continue;
    }
    ColorPreset preset(entry);
    if (preset.name.empty())
    {
      continue;
    }
    presets.push_back(std::move(preset));
  }
  return presets;
}

const std::vector<ColorPreset>& KXColorPresets::LoadBuiltIn()
{
  // Function-local static: thread-safe, and the resource is read only once.
  static const std::vector<ColorPreset> s_Presets = []
  {
    QFile file(BuiltInResourcePath());
    if (!file.open(QIODevice::ReadOnly))
    {
      return std::vector<ColorPreset>{};
    }
    return Parse(file.readAll());
  }();
  return s_Presets;
}

std::optional<ColorPreset> KXColorPresets::Find(const QString& name)
{
  const std::string wanted = name.toStdString();
  for (const ColorPreset& preset : LoadBuiltIn())
  {
    if (preset.name == wanted)
    {
      return preset;
    }
  }
  return std::nullopt;
}

bool KXColorPresets::IsContinuous(const ColorPreset& preset)
{
  return !preset.rgbPoints.empty() && preset.indexedColors.empty();
}
