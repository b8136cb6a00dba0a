// The floating editor each annotation opens. The two forms are built by the
// editor classes; until they exist here an annotation opens the bare frame.
#include "quadview/annotations/VXAnnotationHud.hpp"
#include "quadview/annotations/VXQuadViewMark.hpp"
#include "quadview/annotations/VXQuadViewRuler.hpp"

namespace voxelia::quadview::annotations
{
VXAnnotationHud* VXQuadViewRuler::createHudWidget(QWidget* parent)
{
  return new VXAnnotationHud(parent);
}

VXAnnotationHud* VXQuadViewMark::createHudWidget(QWidget* parent)
{
  return new VXAnnotationHud(parent);
}
} // namespace voxelia::quadview::annotations
