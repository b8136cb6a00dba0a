#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/SliceGeometry.hpp"

#include <QtCore/QJsonArray>
#include <QtCore/QString>

#include <functional>

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;

/**
 * Rebuilds the saved annotations of one slice pane into @p controller, which
 * gives role, pane widget and slice index. Each object of @p records is
 * repaired where it can be: degenerate bounds become @p currentBounds, end
 * points and anchors off their plane are snapped onto it, unknown types are
 * skipped and listed once at the end. Every report goes to @p print. Saved ids
 * are not kept: each record gets a fresh one. Returns the number of
 * annotations added.
 */
KXVTKLIB_EXPORT int restoreAnnotationRecords(VXQuadViewAnnotationsController& controller,
                                             const QJsonArray& records,
                                             const WorldBounds& currentBounds,
                                             const std::function<void(const QString&)>& print);
} // namespace voxelia::quadview::annotations
