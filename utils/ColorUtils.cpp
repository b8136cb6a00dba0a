#include "utils/ColorUtils.hpp"

#include <QtCore/QRandomGenerator>

namespace KXVtk::utils
{
namespace
{
// The top bits of a 32-bit draw are the best mixed ones.
int RandomChannel()
{
  return static_cast<int>(QRandomGenerator::global()->generate() >> 24);
}
} // namespace

QColor GenerateRandomColor()
{
  const int red = RandomChannel();
  const int green = RandomChannel();
  const int blue = RandomChannel();
  return QColor(red, green, blue, 255);
}

vtkColor3d GetVtkColor3dFromQColor(const QColor& color)
{
  // QColor's own F accessors return float; go through the 16-bit channels in
  // double so that 8-bit colours map to exactly c / 255
  const QRgba64 rgba = color.rgba64();
  return vtkColor3d(rgba.red() / 65535.0, rgba.green() / 65535.0, rgba.blue() / 65535.0);
}
} // namespace KXVtk::utils
