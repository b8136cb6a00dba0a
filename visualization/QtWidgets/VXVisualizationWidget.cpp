#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <QVTKOpenGLNativeWidget.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkRenderer.h>

#include <QtCore/QTimer>
#include <QtWidgets/QVBoxLayout>

VXVisualizationWidget::VXVisualizationWidget(QWidget* parent, int numberOfLayers)
: QWidget(parent)
, m_OpenGLWidget(new QVTKOpenGLNativeWidget(this))
, m_RenderWindow(vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New())
, m_Renderer(vtkSmartPointer<vtkRenderer>::New())
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_OpenGLWidget);
  m_RenderWindow->SetNumberOfLayers(numberOfLayers > 0 ? numberOfLayers : 1);
  m_RenderWindow->AddRenderer(m_Renderer);
  m_OpenGLWidget->setRenderWindow(m_RenderWindow);
}

VXVisualizationWidget::~VXVisualizationWidget() = default;

vtkRenderer* VXVisualizationWidget::getRenderer() const
{
  return m_Renderer;
}

vtkGenericOpenGLRenderWindow* VXVisualizationWidget::getRenderWindow() const
{
  return m_RenderWindow;
}

void VXVisualizationWidget::render()
{
  if(m_RenderPending)
    return;
  m_RenderPending = true;
  QTimer::singleShot(0, this, &VXVisualizationWidget::renderNow);
}

void VXVisualizationWidget::renderNow()
{
  m_RenderPending = false;
  m_FrameCount++;
  m_RenderWindow->Render();
}
