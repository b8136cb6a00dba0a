#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QWidget>

#include <vtkSmartPointer.h>

class QVTKOpenGLNativeWidget;
class vtkGenericOpenGLRenderWindow;
class vtkRenderer;

/**
 * The render widget of one view: a VTK render window in a Qt widget. Nobody
 * draws directly: render() only asks for a frame, and any number of requests
 * made in one turn of the event loop give one frame.
 */
class KXVTKLIB_EXPORT VXVisualizationWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXVisualizationWidget(QWidget* parent = nullptr, int numberOfLayers = 2);
  ~VXVisualizationWidget() override;

  vtkRenderer* getRenderer() const;
  vtkGenericOpenGLRenderWindow* getRenderWindow() const;
  QVTKOpenGLNativeWidget* getOpenGLWidget() const { return m_OpenGLWidget; }
  /** Frames drawn so far. */
  int frameCount() const { return m_FrameCount; }

public Q_SLOTS:
  /** Schedules one frame for the next turn of the event loop; repeated calls before it merge. */
  void render();
  /** Draws now. */
  void renderNow();

private:
  QVTKOpenGLNativeWidget* m_OpenGLWidget = nullptr;
  vtkSmartPointer<vtkGenericOpenGLRenderWindow> m_RenderWindow;
  vtkSmartPointer<vtkRenderer> m_Renderer;
  bool m_RenderPending = false;
  int m_FrameCount = 0;
};
