#pragma once

#include "KXVtkLib_export.h"

#include <QtGui/QColor>

#include <array>

class vtkGridAxesActor3D;
class vtkImageActor;

namespace KXVtk::utils
{
/**
 * Puts a freshly made grid axes actor into the look every view starts with:
 * ticks and edges on, interior grid off, labels pushed 10 pixels down, a
 * property of its own (so views never share one) and 18-point axis titles.
 */
KXVTKLIB_EXPORT void InitializeGridAxesActor(vtkGridAxesActor3D* actor);

/**
 * Colours the actor's lines, labels and titles with @p color at @p opacity.
 * With @p showLabels false the texts become fully transparent and no ticks are
 * generated, leaving plain edges (and grid lines if those are on).
 */
KXVTKLIB_EXPORT void ApplyGridAxesAppearance(vtkGridAxesActor3D* actor, const QColor& color,
                                             double opacity, bool showLabels);

/**
 * The bounds an image actor covers on screen: its display extent (the slice
 * shown, not the whole input) mapped through the input's origin and spacing and
 * the actor's matrix. Falls back to the actor's own bounds without input.
 */
KXVTKLIB_EXPORT std::array<double, 6> GetImageActorRenderedBounds(vtkImageActor* actor);
} // namespace KXVtk::utils
