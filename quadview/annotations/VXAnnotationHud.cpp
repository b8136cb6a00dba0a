#include "quadview/annotations/VXAnnotationHud.hpp"

namespace voxelia::quadview::annotations
{
VXAnnotationHud::VXAnnotationHud(QWidget* parent)
  : QFrame(parent)
{
}

VXAnnotationHud::~VXAnnotationHud() = default;

bool VXAnnotationHud::userMoved() const
{
  return m_UserMoved;
}
} // namespace voxelia::quadview::annotations
