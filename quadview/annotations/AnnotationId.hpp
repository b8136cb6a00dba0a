#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QUuid>

namespace voxelia::quadview::annotations
{
/**
 * The identity of one annotation: a fresh random QUuid made at construction,
 * compared by value. Saved files keep it as text but a load gives new ids.
 */
class KXVTKLIB_EXPORT AnnotationId
{
public:
  /** A new, unique id. */
  AnnotationId();
  /** The id of @p uuid, for lookups of an id held as text or QUuid. */
  static AnnotationId fromUuid(const QUuid& uuid);

  const QUuid& uuid() const { return m_Uuid; }
  /** The uuid without braces, as saved. */
  QString toString() const;

  friend bool operator==(const AnnotationId& a, const AnnotationId& b)
  {
    return a.m_Uuid == b.m_Uuid;
  }
  friend bool operator!=(const AnnotationId& a, const AnnotationId& b) { return !(a == b); }
  friend bool operator<(const AnnotationId& a, const AnnotationId& b)
  {
    return a.m_Uuid < b.m_Uuid;
  }
  friend size_t qHash(const AnnotationId& id, size_t seed = 0) noexcept
  {
    return qHash(id.m_Uuid, seed);
  }

private:
  QUuid m_Uuid;
};
} // namespace voxelia::quadview::annotations

Q_DECLARE_METATYPE(voxelia::quadview::annotations::AnnotationId)
