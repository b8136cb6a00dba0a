#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QIcon>

/**
 * The host's look: theme icons by name and a few shared colours and sizes.
 * Icons are drawn with QPainter at run time from a small table of shapes,
 * colours and letters, so they need no image plugin and scale cleanly; every
 * name the visualization asks for is in iconNames(). An unknown name gives a
 * conspicuous magenta "?" square rather than an empty icon, so a typo shows.
 */
class KXCOMPONENTS_EXPORT KXStyle
{
public:
  KXStyle() = delete;

  /**
   * The theme icon of that name (case-sensitive), drawn at 16, 24, 32 and 64
   * pixels; the fallback icon for unknown names. Icons are cached per name.
   */
  static QIcon generateThemeIconFromName(const QString& name);
  /** Whether the name has an icon of its own (not the fallback). */
  static bool hasThemeIcon(const QString& name);
  /** Every theme icon name, in table order. */
  static QStringList iconNames();
  /** The icon given for names that have none. */
  static QIcon fallbackIcon();

  /** Size of icons on tool buttons and in item views. */
  static QSize getIconSize();
  /** Background of flagged items (e.g. a data source whose file is missing). */
  static QColor getLightRedColor();
  /** Text colour of ordinary items. */
  static QColor getDefaultTextColor();
};
