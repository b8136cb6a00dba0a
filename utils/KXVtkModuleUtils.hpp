#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QMap>

#include <cstdint>
#include <limits>

class QFrame;
class QElidedLabel;
class VXAbstractViewWidget;
class QScrollArea;
class QWidget;
class QString;

namespace KXVtkModule::utils
{
/**
 * The page an item shows in the info panel: its title frame stacked above a
 * scroll area that holds the item's settings. The caller keeps both parts.
 */
KXVTKLIB_EXPORT QWidget* CreateSettingsWidget(QFrame* titleFrame, QScrollArea* scrollArea);
/**
 * Lays out a page's title frame: the item's name label (returned, for the
 * caller to fill and keep current), then the buttons that are given.
 */
KXVTKLIB_EXPORT QElidedLabel* AddSettingsTitle(QFrame* titleFrame, QWidget* primaryButton,
                                               QWidget* secondaryButton);
/** The clipboard's text as a JSON object, or null when it holds no object. */
KXVTKLIB_EXPORT nlohmann::json ClipboardSettings();

/**
 * A whole-number setting of a state file as an int. A real is taken toward
 * zero and anything past int's range is clamped to it, where nlohmann's
 * get<int>() is undefined for reals out of range; a value that is not a number
 * throws nlohmann's type_error, as get<int>() does.
 */
inline int StateInt(const nlohmann::json& value)
{
  constexpr int low = std::numeric_limits<int>::min();
  constexpr int high = std::numeric_limits<int>::max();
  if (value.is_number_float())
  {
    const double real = value.get<double>();
    return real <= low ? low : real >= high ? high : static_cast<int>(real);
  }
  if (value.is_number_unsigned())
    return value.get<std::uint64_t>() > static_cast<std::uint64_t>(high) ? high : value.get<int>();
  if (value.is_number_integer())
  {
    const std::int64_t whole = value.get<std::int64_t>();
    return whole < low ? low : whole > high ? high : static_cast<int>(whole);
  }
  return value.get<int>();
}

/** Wraps a tooltip text in the rich-text frame used throughout the module. */
KXVTKLIB_EXPORT QString HtmlToolTip(const QString& text);
/** The view that a state file's window index names, or null when no view has it. */
KXVTKLIB_EXPORT VXAbstractViewWidget* GetViewWidget(
  const QMap<VXAbstractViewWidget*, int>& viewIndices, int index);
} // namespace KXVtkModule::utils
