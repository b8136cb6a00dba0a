#include "quadview/annotations/AnnotationId.hpp"

namespace voxelia::quadview::annotations
{
AnnotationId::AnnotationId()
  : m_Uuid(QUuid::createUuid())
{
}

AnnotationId AnnotationId::fromUuid(const QUuid& uuid)
{
  AnnotationId id;
  id.m_Uuid = uuid;
  return id;
}

QString AnnotationId::toString() const
{
  return m_Uuid.toString(QUuid::WithoutBraces);
}
} // namespace voxelia::quadview::annotations
