#include "visualization/VXGlobalSourcePimpl.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <vtkAbstractWidget.h>
#include <vtkCommand.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkProp.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkWidgetRepresentation.h>

VXGlobalSourcePimpl::VXGlobalSourcePimpl(VXAbstractViewWidget* view, nlohmann::json settings)
  : m_View(view)
  , m_Settings(std::move(settings))
{
  if (view != nullptr)
  {
    if (VXVisualizationWidget* widget = view->getVisualizationWidget())
      m_Renderer = widget->getRenderer();
  }
}

VXAbstractViewWidget* VXGlobalSourcePimpl::view() const
{
  return m_View;
}

VXGlobalSourcePimpl::~VXGlobalSourcePimpl()
{
  clear();
}

vtkRenderer* VXGlobalSourcePimpl::renderer() const
{
  return m_View.isNull() ? nullptr : m_Renderer.GetPointer();
}

vtkRenderWindowInteractor* VXGlobalSourcePimpl::interactor() const
{
  vtkRenderer* ren = renderer();
  if (ren == nullptr || ren->GetRenderWindow() == nullptr)
    return nullptr;
  return ren->GetRenderWindow()->GetInteractor();
}

void VXGlobalSourcePimpl::setVisible(bool visible)
{
  m_Visible = visible;
  for (const auto& prop : m_Props)
    prop->SetVisibility(visible);
  if (m_Widget != nullptr)
    m_Widget->SetEnabled(visible ? 1 : 0);
}

void VXGlobalSourcePimpl::addProp(vtkProp* prop)
{
  if (prop == nullptr)
    return;
  m_Props.emplace_back(prop);
  prop->SetVisibility(m_Visible);
  if (vtkRenderer* ren = renderer())
    ren->AddViewProp(prop);
}

void VXGlobalSourcePimpl::setWidget(vtkAbstractWidget* widget,
                                    std::function<void()> onInteractionEnd)
{
  vtkRenderWindowInteractor* iren = interactor();
  if (widget == nullptr || iren == nullptr)
    return;
  m_Widget = widget;
  m_Interactor = iren;
  m_OnInteractionEnd = std::move(onInteractionEnd);
  // the render widget stacks several renderers: the widget works in the data's
  widget->SetInteractor(iren);
  widget->SetCurrentRenderer(renderer());
  widget->SetDefaultRenderer(renderer());
  m_ObserverTag = widget->AddObserver(vtkCommand::EndInteractionEvent, this,
                                      &VXGlobalSourcePimpl::onInteractionEnd);
  widget->SetEnabled(m_Visible ? 1 : 0);
}

void VXGlobalSourcePimpl::onInteractionEnd(vtkObject*, unsigned long, void*)
{
  if (m_OnInteractionEnd)
    m_OnInteractionEnd();
}

void VXGlobalSourcePimpl::clear()
{
  vtkRenderer* ren = renderer();
  for (const auto& prop : m_Props)
  {
    if (ren != nullptr)
      ren->RemoveViewProp(prop);
  }
  m_Props.clear();
  if (m_Widget != nullptr)
  {
    m_Widget->RemoveObserver(m_ObserverTag);
    m_Widget->SetEnabled(0);
    if (vtkWidgetRepresentation* rep = m_Widget->GetRepresentation(); rep != nullptr && ren)
      ren->RemoveViewProp(rep);
    m_Widget = nullptr;
    m_Interactor = nullptr;
  }
  m_OnInteractionEnd = nullptr;
}

void VXGlobalSourcePimpl::setError(const QString& error)
{
  if (error != m_Error)
    m_ErrorReported = false;
  m_Error = error;
}
