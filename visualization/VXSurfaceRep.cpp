#include "visualization/VXSurfaceRep.hpp"

#include "visualization/VXSurfaceRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

VXSurfaceRep::VXSurfaceRep(VXPipeline* pipeline, QObject* parent)
  : VXSurfaceRep(pipeline, "Surface View", parent)
{
}

VXSurfaceRep::VXSurfaceRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent)
  : VXWireframeRep(pipeline, defaultName, parent)
{
}

VXSurfaceRep::~VXSurfaceRep() = default;

QIcon VXSurfaceRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("TriangleGeometry");
}

std::shared_ptr<VXRepresentationPimpl> VXSurfaceRep::createImplementation(
  VXAbstractViewWidget* view)
{
  return std::make_shared<VXSurfaceRepPimpl>(view, this);
}

bool VXSurfaceRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXSurfaceRepPimpl*>(implementation) != nullptr;
}
