// The floating editor each annotation opens: the ruler's and the mark's own forms.
#include "quadview/annotations/VXQuadViewMark.hpp"
#include "quadview/annotations/VXQuadViewMarkHUD.hpp"
#include "quadview/annotations/VXQuadViewRuler.hpp"
#include "quadview/annotations/VXQuadViewRulerHUD.hpp"

namespace voxelia::quadview::annotations
{
VXAnnotationHud* VXQuadViewRuler::createHudWidget(QWidget* parent)
{
  return new VXQuadViewRulerHUD(this, controller(), parent);
}

VXAnnotationHud* VXQuadViewMark::createHudWidget(QWidget* parent)
{
  return new VXQuadViewMarkHUD(this, controller(), parent);
}
} // namespace voxelia::quadview::annotations
