#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QList>
#include <QtCore/QString>

class VXBridgeObject;
class VXCoreObject;

/**
 * The item model over a pipeline's tree. Its name rules are shared by the
 * pipeline: two items with the same base name are told apart by a suffix.
 */
class KXVTKLIB_EXPORT VXPipelineModel
{
public:
  /** The smallest free suffix for the base name among the bridges: 0 if unused, else the first gap from 1. */
  static int GetNameSuffixCounter(const QList<VXBridgeObject*>& items, const QString& baseName);
  static int GetNameSuffixCounter(const QList<VXCoreObject*>& items, const QString& baseName);
};
