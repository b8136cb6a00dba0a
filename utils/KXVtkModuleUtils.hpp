#pragma once

#include "KXVtkLib_export.h"

class QFrame;
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

/** Wraps a tooltip text in the rich-text frame used throughout the module. */
KXVTKLIB_EXPORT QString HtmlToolTip(const QString& text);
} // namespace KXVtkModule::utils
