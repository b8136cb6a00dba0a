#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <vtkCamera.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkProp.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

VXVisualizationWidget::VXVisualizationWidget(QWidget* parent, int numRenderLayers)
: VXGLWidget(parent)
, m_NumRenderLayers(numRenderLayers > 0 ? numRenderLayers : 1)
{
  m_Renderer = vtkSmartPointer<vtkRenderer>::New();
  m_Renderer->SetLayer(0);
  m_OutlineRenderer = vtkSmartPointer<vtkRenderer>::New();
  m_OutlineRenderer->SetLayer(1);
  const QColor background = KXPreferences::getDefaultRenderWindowBackground();
  m_Renderer->SetBackground(background.redF(), background.greenF(), background.blueF());
  m_OutlineRenderer->SetBackground(background.redF(), background.greenF(), background.blueF());

  auto window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
  window->SetMultiSamples(8);
  setRenderWindow(window);
  window->SetNumberOfLayers(m_NumRenderLayers);
  window->AddRenderer(m_OutlineRenderer);
  window->AddRenderer(m_Renderer);
  m_Renderer->GetActiveCamera()->SetParallelProjection(KXPreferences::getCameraParallelProjDefault());
  // both renderers look through one camera
  m_OutlineRenderer->SetActiveCamera(m_Renderer->GetActiveCamera());
}

VXVisualizationWidget::~VXVisualizationWidget() = default;

vtkRenderer* VXVisualizationWidget::getRenderer() const
{
  return m_Renderer;
}

vtkRenderer* VXVisualizationWidget::getOutlineRenderer() const
{
  return m_OutlineRenderer;
}

vtkRenderWindowInteractor* VXVisualizationWidget::getRenderWindowInteractor() const
{
  return renderWindow() != nullptr ? renderWindow()->GetInteractor() : nullptr;
}

void VXVisualizationWidget::addActor(vtkProp* prop)
{
  m_Renderer->AddViewProp(prop);
  Q_EMIT actorAdded(prop);
}

void VXVisualizationWidget::removeActor(vtkProp* prop)
{
  Q_EMIT actorRemoved(prop);
  m_Renderer->RemoveViewProp(prop);
}

void VXVisualizationWidget::render()
{
  if(m_RenderPending != 0)
    return;
  m_RenderPending = 1;
  QMetaObject::invokeMethod(this, &VXVisualizationWidget::renderQueued, Qt::QueuedConnection);
}

void VXVisualizationWidget::renderQueued()
{
  m_RenderPending = 0;
  m_FrameCount++;
  if(renderWindow() != nullptr && renderWindow()->GetInteractor() != nullptr)
    renderWindow()->GetInteractor()->Render();
  update();
}

void VXVisualizationWidget::resetCamera()
{
  m_Renderer->ResetCamera();
  render();
}
