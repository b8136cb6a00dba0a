#include "quadview/annotations/VXQuadViewAnnotation.hpp"

namespace voxelia::quadview::annotations
{
VXQuadViewAnnotation::~VXQuadViewAnnotation() = default;

void VXQuadViewAnnotation::onAfterLoad() {}

QString VXQuadViewAnnotation::typeName(Type type)
{
  return type == Type::Ruler ? QStringLiteral("Ruler") : QStringLiteral("Mark");
}
} // namespace voxelia::quadview::annotations
