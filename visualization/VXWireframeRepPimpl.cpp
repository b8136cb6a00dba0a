#include "visualization/VXWireframeRepPimpl.hpp"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include <vtkActor.h>
#include <vtkProperty.h>

VXWireframeRepPimpl::VXWireframeRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXPointsRepPimpl(view, owner)
{
  m_HelpAnchor = "#wireframe-representation";
}

VXWireframeRepPimpl::~VXWireframeRepPimpl() = default;

bool VXWireframeRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  const bool blocked = blockSignals(true);
  const bool result = VXPointsRepPimpl::initialize(port);
  blockSignals(blocked);
  m_Actor->GetProperty()->SetRepresentationToWireframe();
  requestRender();
  return result;
}

void VXWireframeRepPimpl::buildSettingsPage()
{
  VXPointsRepPimpl::buildSettingsPage();
}

void VXWireframeRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXPointsRepPimpl::copyFrom(other);
}

void VXWireframeRepPimpl::pasteSettingsFromClipboard()
{
  VXPointsRepPimpl::pasteSettingsFromClipboard();
}

void VXWireframeRepPimpl::updateToolTips()
{
  VXPointsRepPimpl::updateToolTips();
}

void VXWireframeRepPimpl::openHelp()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl + m_HelpAnchor));
}
