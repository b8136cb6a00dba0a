#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <functional>

class QObject;
class VXPipeline;

/**
 * The item types a state file may hold, and how the loader makes each one.
 *
 * The table of known names is fixed (files written by every version must keep
 * loading); the classes behind some names arrive with their own code, which
 * registers a maker here. A name whose class is not registered reads as an
 * unknown item, so a file naming it loads everything else.
 */
class KXVTKLIB_EXPORT VXStateItemFactory
{
public:
  enum class Kind
  {
    Bridge,
    GlobalSource,
    DataSource,
    Filter,
    Representation
  };

  using Maker = std::function<QObject*(VXPipeline* pipeline)>;

  struct Entry
  {
    QString itemType;
    Kind kind = Kind::Bridge;
    /** Empty for data sources (found, never made) and for classes not registered yet. */
    Maker make;
    /** For data views: the data view type whose class must be registered. */
    std::uint32_t representationType = 0;
  };

  /** The known names in the order the loader tests them. */
  static QStringList KnownItemTypes();
  /** The entry for a name, or null when the name is unknown or its class is not available. */
  static const Entry* Find(const QString& itemType);
  /** Gives a known name its maker; false for a name outside the table. */
  static bool Register(const QString& itemType, Maker maker);
  /** True for the names that stand at the top of the tree (bridges and global sources). */
  static bool IsTopLevelKind(Kind kind)
  {
    return kind == Kind::Bridge || kind == Kind::GlobalSource;
  }
};
