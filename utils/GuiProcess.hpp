#pragma once

#include "KXVtkLib_export.h"

namespace KXVtk::utils
{
/**
 * Prepares a process for VTK rendering in Qt widgets. Call once, before the
 * QApplication is made: the OpenGL surface format must be the default before
 * any window exists. The viewer and every GUI test start through here.
 */
KXVTKLIB_EXPORT void PrepareGuiProcess();
} // namespace KXVtk::utils
