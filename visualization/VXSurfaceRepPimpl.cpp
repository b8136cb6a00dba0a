#include "visualization/VXSurfaceRepPimpl.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/VXRepresentationCallbacks.hpp"
#include "visualization/VXSurfaceRep.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFormLayout>

#include <vtkActor.h>
#include <vtkCommand.h>
#include <vtkGeometryFilter.h>
#include <vtkProperty.h>

VXSurfaceRepPimpl::VXSurfaceRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner)
  : VXWireframeRepPimpl(view, owner)
{
  m_HelpAnchor = "#surface-representation";
  if (owner != nullptr)
  {
    QtKXSettings settings;
    BeginSettingsGroup(settings, owner->typeName());
    if (settings.contains("back_face_culling"))
      m_BackFaceCulling = settings.value("back_face_culling", false).toBool();
  }
}

VXSurfaceRepPimpl::~VXSurfaceRepPimpl() = default;

bool VXSurfaceRepPimpl::initialize(vtkAlgorithmOutput* port)
{
  const bool blocked = blockSignals(true);
  const bool result = VXWireframeRepPimpl::initialize(port);
  blockSignals(blocked);
  m_Actor->GetProperty()->SetRepresentationToSurface();
  m_Actor->GetProperty()->SetBackfaceCulling(m_BackFaceCulling);
  if (result && m_GeometryFilter != nullptr)
  {
    if (auto* surfaceRep = qobject_cast<VXSurfaceRep*>(m_Owner))
    {
      vtkNew<VXDataSetInfoWidgetUpdateCallback<VXSurfaceRep>> callback;
      callback->setRepresentation(surfaceRep);
      m_GeometryFilter->AddObserver(vtkCommand::EndEvent, callback);
    }
  }
  requestRender();
  return result;
}

void VXSurfaceRepPimpl::bounds(double bounds[6])
{
  const double* b = m_Actor->GetBounds();
  for (int i = 0; i < 6; i++)
    bounds[i] = b[i];
}

void VXSurfaceRepPimpl::setBackFaceCulling(bool culling)
{
  m_BackFaceCulling = culling;
  m_Actor->GetProperty()->SetBackfaceCulling(culling);
  if (m_CullingCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_CullingCheckBox);
    m_CullingCheckBox->setChecked(culling);
  }
  requestRender();
}

void VXSurfaceRepPimpl::write(nlohmann::json& output) const
{
  VXWireframeRepPimpl::write(output);
  output["back_face_culling"] = m_BackFaceCulling;
}

void VXSurfaceRepPimpl::read(const nlohmann::json& input)
{
  VXWireframeRepPimpl::read(input);
  if (input.contains("back_face_culling"))
    setBackFaceCulling(input.at("back_face_culling").get<bool>());
}

void VXSurfaceRepPimpl::copyFrom(VXRepresentationPimpl* other)
{
  VXWireframeRepPimpl::copyFrom(other);
  if (auto* source = dynamic_cast<VXSurfaceRepPimpl*>(other))
    m_BackFaceCulling = source->m_BackFaceCulling;
}

void VXSurfaceRepPimpl::pasteSettingsFromClipboard()
{
  VXWireframeRepPimpl::pasteSettingsFromClipboard();
}

void VXSurfaceRepPimpl::loadDefaultSettings()
{
  VXWireframeRepPimpl::loadDefaultSettings();
  if (m_Owner == nullptr)
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  if (settings.contains("back_face_culling"))
    m_BackFaceCulling = settings.value("back_face_culling", false).toBool();
}

void VXSurfaceRepPimpl::saveDefaultSettings()
{
  if (m_Owner == nullptr || !askSaveDefaults())
    return;
  QtKXSettings settings;
  BeginSettingsGroup(settings, m_Owner->typeName());
  saveBaseDefaults(settings);
  saveOutlineDefaults(settings);
  savePointsDefaults(settings);
  settings.setValue("back_face_culling", m_BackFaceCulling);
  settings.sync();
}

void VXSurfaceRepPimpl::buildSettingsPage()
{
  VXWireframeRepPimpl::buildSettingsPage();
  m_CullingCheckBox = new QCheckBox("Back Face Culling", m_PageContent);
  m_CullingCheckBox->setObjectName("m_CullingCheckBox");
  m_CullingCheckBox->setChecked(m_BackFaceCulling);
  connect(m_CullingCheckBox, &QCheckBox::toggled, this, &VXSurfaceRepPimpl::setBackFaceCulling);
  sectionForm("Styling")->addRow(m_CullingCheckBox);
}

void VXSurfaceRepPimpl::syncControls()
{
  VXWireframeRepPimpl::syncControls();
  if (m_CullingCheckBox != nullptr)
  {
    const QSignalBlocker blocker(m_CullingCheckBox);
    m_CullingCheckBox->setChecked(m_BackFaceCulling);
  }
}

void VXSurfaceRepPimpl::updateToolTips()
{
  VXWireframeRepPimpl::updateToolTips();
  if (m_CullingCheckBox != nullptr)
    m_CullingCheckBox->setToolTip(
      KXVtkModule::utils::HtmlToolTip("When checked turns on fast culling of polygons based on "
                                      "orientation of normal with respect to camera so that "
                                      "polygons facing away from camera are not drawn"));
}

void VXSurfaceRepPimpl::openHelp()
{
  QDesktopServices::openUrl(QUrl::fromUserInput(m_HelpUrl + m_HelpAnchor));
}
