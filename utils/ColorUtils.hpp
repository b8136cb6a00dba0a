#pragma once

#include "KXVtkLib_export.h"

#include <vtkColor.h>

#include <QtGui/QColor>

namespace KXVtk::utils
{
/**
 * A colour with red, green and blue drawn independently from the process-wide
 * random generator, fully opaque. Used to give categorical values that a colour
 * map does not know a colour of their own.
 */
KXVTKLIB_EXPORT QColor GenerateRandomColor();

/** The red, green and blue of @p color as VTK's 0..1 triple; alpha is dropped. */
KXVTKLIB_EXPORT vtkColor3d GetVtkColor3dFromQColor(const QColor& color);
} // namespace KXVtk::utils
