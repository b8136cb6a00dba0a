#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>

namespace voxelia::quadview::annotations
{
/** The glyph of a mark, saved as its number. */
enum class MarkShape : int
{
  Sphere = 0,
  Cross = 1,
  Square = 2
};

/** "Sphere", "Cross" or "Square"; an empty string for anything else. */
KXVTKLIB_EXPORT QString markShapeLabel(MarkShape shape);
/** The shape numbered @p value, or Sphere when out of range. */
KXVTKLIB_EXPORT MarkShape markShapeFromInt(int value);
} // namespace voxelia::quadview::annotations
