#include "visualization/VXPointsRep.hpp"

#include "visualization/VXPointsRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

VXPointsRep::VXPointsRep(VXPipeline* pipeline, QObject* parent)
  : VXPointsRep(pipeline, "Points View", parent)
{
}

VXPointsRep::VXPointsRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent)
  : VXOutlineRep(pipeline, defaultName, parent)
{
}

VXPointsRep::~VXPointsRep() = default;

QIcon VXPointsRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("VertexGeometry");
}

std::shared_ptr<VXRepresentationPimpl> VXPointsRep::createImplementation(VXAbstractViewWidget* view)
{
  return std::make_shared<VXPointsRepPimpl>(view, this);
}

bool VXPointsRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXPointsRepPimpl*>(implementation) != nullptr;
}
