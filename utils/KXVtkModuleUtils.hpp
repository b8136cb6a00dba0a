#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QMap>

class QFrame;
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

/** Wraps a tooltip text in the rich-text frame used throughout the module. */
KXVTKLIB_EXPORT QString HtmlToolTip(const QString& text);
/** The view that a state file's window index names, or null when no view has it. */
KXVTKLIB_EXPORT VXAbstractViewWidget* GetViewWidget(
  const QMap<VXAbstractViewWidget*, int>& viewIndices, int index);
} // namespace KXVtkModule::utils
