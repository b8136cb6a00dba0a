#include "quadview/annotations/MarkShape.hpp"

namespace voxelia::quadview::annotations
{
QString markShapeLabel(MarkShape shape)
{
  switch (shape)
  {
    case MarkShape::Sphere:
      return QStringLiteral("Sphere");
    case MarkShape::Cross:
      return QStringLiteral("Cross");
    case MarkShape::Square:
      return QStringLiteral("Square");
  }
  return {};
}

MarkShape markShapeFromInt(int value)
{
  return value >= 0 && value <= 2 ? static_cast<MarkShape>(value) : MarkShape::Sphere;
}
} // namespace voxelia::quadview::annotations
