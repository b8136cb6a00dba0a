#include "visualization/VXWireframeRep.hpp"

#include "visualization/VXWireframeRepPimpl.hpp"

#include <KXComponents/KXStyle.hpp>

VXWireframeRep::VXWireframeRep(VXPipeline* pipeline, QObject* parent)
  : VXWireframeRep(pipeline, "Wireframe View", parent)
{
}

VXWireframeRep::VXWireframeRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent)
  : VXPointsRep(pipeline, defaultName, parent)
{
}

VXWireframeRep::~VXWireframeRep() = default;

QIcon VXWireframeRep::getIcon()
{
  return KXStyle::generateThemeIconFromName("Wireframe");
}

std::shared_ptr<VXRepresentationPimpl> VXWireframeRep::createImplementation(
  VXAbstractViewWidget* view)
{
  return std::make_shared<VXWireframeRepPimpl>(view, this);
}

bool VXWireframeRep::isOwnImplementation(VXRepresentationPimpl* implementation) const
{
  return dynamic_cast<VXWireframeRepPimpl*>(implementation) != nullptr;
}
