#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QMap>

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

/** Wraps a tooltip text in the rich-text frame used throughout the module. */
KXVTKLIB_EXPORT QString HtmlToolTip(const QString& text);
/** The view that a state file's window index names, or null when no view has it. */
KXVTKLIB_EXPORT VXAbstractViewWidget* GetViewWidget(
  const QMap<VXAbstractViewWidget*, int>& viewIndices, int index);
} // namespace KXVtkModule::utils
