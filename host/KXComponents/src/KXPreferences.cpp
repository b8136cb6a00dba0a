#include "KXComponents/KXPreferences.hpp"

#include "KXComponents/KXColorPresets.hpp"
#include "KXComponents/QtKXSettings.hpp"

#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

using kx::core::ColorTableUtilities::ColorPreset;

namespace
{
ColorPreset BuiltInPreset(const QString& name)
{
  if (auto preset = KXColorPresets::Find(name))
  {
    return *preset;
  }
  // The resource is compiled in, so this only guards against a broken build:
  // callers still get a usable two-point map rather than an empty one.
  ColorPreset fallback;
  fallback.name = name.toStdString();
  fallback.colorSpace = "RGB";
  fallback.nanColor = { 1.0f, 1.0f, 0.0f };
  fallback.rgbPoints = { 0.0f, 0.23f, 0.30f, 0.75f, 1.0f, 0.71f, 0.02f, 0.15f };
  return fallback;
}

/** The preference values; static getters may be called from worker threads, hence the lock. */
struct PreferenceValues
{
  ColorPreset colorPreset;
  ColorPreset indexedColorPreset;
  QColor background;
  bool parallelProjection = false;
  QStringList orientationMarkerText;
  bool disableDecimation = false;
  bool allowTooManyIndexedValues = true;
  bool allowMoreValuesThanIndexedColors = true;

  static PreferenceValues Defaults()
  {
    PreferenceValues values;
    values.colorPreset = BuiltInPreset(KXPreferences::k_DefaultColorPresetName);
    values.indexedColorPreset = BuiltInPreset(KXPreferences::k_DefaultIndexedColorPresetName);
    values.background = KXPreferences::DefaultBackground();
    values.orientationMarkerText = KXPreferences::DefaultOrientationMarkerText();
    return values;
  }
};

QMutex s_Mutex;

PreferenceValues& Values()
{
  static PreferenceValues s_Values = PreferenceValues::Defaults();
  return s_Values;
}

template<typename T, typename Member>
T Get(Member member)
{
  QMutexLocker lock(&s_Mutex);
  return Values().*member;
}

template<typename T, typename Member>
void Set(Member member, const T& value)
{
  QMutexLocker lock(&s_Mutex);
  Values().*member = value;
}

/** A preset stored as JSON text; nullopt when the text is not a named preset. */
std::optional<ColorPreset> PresetFromText(const QString& text)
{
  const std::string utf8 = text.toStdString();
  const nlohmann::json json = nlohmann::json::parse(utf8, nullptr, false);
  if (!json.is_object())
  {
    return std::nullopt;
  }
  ColorPreset preset(json);
  if (preset.name.empty())
  {
    return std::nullopt;
  }
  return preset;
}
} // namespace

KXPreferences::KXPreferences() = default;

KXPreferences* KXPreferences::Instance()
{
  static KXPreferences s_Instance;
  return &s_Instance;
}

ColorPreset KXPreferences::getDefaultColorPreset()
{
  return Get<ColorPreset>(&PreferenceValues::colorPreset);
}

void KXPreferences::setDefaultColorPreset(const ColorPreset& preset)
{
  Set(&PreferenceValues::colorPreset, preset);
}

ColorPreset KXPreferences::getDefaultIndexedColorPreset()
{
  return Get<ColorPreset>(&PreferenceValues::indexedColorPreset);
}

void KXPreferences::setDefaultIndexedColorPreset(const ColorPreset& preset)
{
  Set(&PreferenceValues::indexedColorPreset, preset);
}

QColor KXPreferences::getDefaultRenderWindowBackground()
{
  return Get<QColor>(&PreferenceValues::background);
}

void KXPreferences::setDefaultRenderWindowBackground(const QColor& color)
{
  if (color.isValid())
  {
    Set(&PreferenceValues::background, color);
  }
}

bool KXPreferences::getCameraParallelProjDefault()
{
  return Get<bool>(&PreferenceValues::parallelProjection);
}

void KXPreferences::setCameraParallelProjDefault(bool parallel)
{
  Set(&PreferenceValues::parallelProjection, parallel);
}

QStringList KXPreferences::getOrientationMarkerText()
{
  return Get<QStringList>(&PreferenceValues::orientationMarkerText);
}

void KXPreferences::setOrientationMarkerText(const QStringList& texts)
{
  if (texts.size() != 6)
  {
    return;
  }
  {
    QMutexLocker lock(&s_Mutex);
    if (Values().orientationMarkerText == texts)
    {
      return;
    }
    Values().orientationMarkerText = texts;
  }
  // Emitted outside the lock: a receiver may call the getters.
  Q_EMIT Instance()->orientationMarkerTextChanged(texts);
}

bool KXPreferences::getDisableDecimation()
{
  return Get<bool>(&PreferenceValues::disableDecimation);
}

void KXPreferences::setDisableDecimation(bool disable)
{
  Set(&PreferenceValues::disableDecimation, disable);
}

bool KXPreferences::getAllowTooManyIndexedValues()
{
  return Get<bool>(&PreferenceValues::allowTooManyIndexedValues);
}

void KXPreferences::setAllowTooManyIndexedValues(bool allow)
{
  Set(&PreferenceValues::allowTooManyIndexedValues, allow);
}

bool KXPreferences::getAllowMoreValuesThanIndexedColors()
{
  return Get<bool>(&PreferenceValues::allowMoreValuesThanIndexedColors);
}

void KXPreferences::setAllowMoreValuesThanIndexedColors(bool allow)
{
  Set(&PreferenceValues::allowMoreValuesThanIndexedColors, allow);
}

void KXPreferences::readSettings()
{
  QtKXSettings settings;
  settings.beginGroup(k_Group);

  if (auto preset = PresetFromText(settings.value(k_ColorPresetKey).toString()))
  {
    setDefaultColorPreset(*preset);
  }
  if (auto preset = PresetFromText(settings.value(k_IndexedColorPresetKey).toString()))
  {
    setDefaultIndexedColorPreset(*preset);
  }
  if (settings.contains(k_BackgroundKey))
  {
    setDefaultRenderWindowBackground(
      QColor::fromString(settings.value(k_BackgroundKey).toString()));
  }
  const auto readBool = [&settings](const QString& key, void (*setter)(bool))
  {
    if (settings.contains(key))
    {
      setter(settings.value(key).toBool());
    }
  };
  readBool(k_ParallelProjectionKey, &KXPreferences::setCameraParallelProjDefault);
  readBool(k_DisableDecimationKey, &KXPreferences::setDisableDecimation);
  readBool(k_AllowTooManyIndexedValuesKey, &KXPreferences::setAllowTooManyIndexedValues);
  readBool(k_AllowMoreValuesThanIndexedColorsKey,
           &KXPreferences::setAllowMoreValuesThanIndexedColors);
  if (settings.contains(k_OrientationMarkerTextKey))
  {
    setOrientationMarkerText(settings.value(k_OrientationMarkerTextKey).toStringList());
  }
  settings.endGroup();
}

void KXPreferences::writeSettings()
{
  QtKXSettings settings;
  settings.beginGroup(k_Group);
  settings.setValue(k_ColorPresetKey,
                    QString::fromStdString(getDefaultColorPreset().toJsonString()));
  settings.setValue(k_IndexedColorPresetKey,
                    QString::fromStdString(getDefaultIndexedColorPreset().toJsonString()));
  // Stored as "#aarrggbb" text so the INI file stays readable and keeps alpha.
  settings.setValue(k_BackgroundKey, getDefaultRenderWindowBackground().name(QColor::HexArgb));
  settings.setValue(k_ParallelProjectionKey, getCameraParallelProjDefault());
  settings.setValue(k_OrientationMarkerTextKey, getOrientationMarkerText());
  settings.setValue(k_DisableDecimationKey, getDisableDecimation());
  settings.setValue(k_AllowTooManyIndexedValuesKey, getAllowTooManyIndexedValues());
  settings.setValue(k_AllowMoreValuesThanIndexedColorsKey, getAllowMoreValuesThanIndexedColors());
  settings.endGroup();
  settings.sync();
}

void KXPreferences::resetToDefaults()
{
  const PreferenceValues defaults = PreferenceValues::Defaults();
  {
    QMutexLocker lock(&s_Mutex);
    // The marker texts go through their setter below so listeners hear of it.
    PreferenceValues& values = Values();
    const QStringList current = values.orientationMarkerText;
    values = defaults;
    values.orientationMarkerText = current;
  }
  setOrientationMarkerText(defaults.orientationMarkerText);
}
