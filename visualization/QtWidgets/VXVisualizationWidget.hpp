#pragma once

#include "visualization/QtWidgets/VXGLWidget.hpp"

#include <vtkSmartPointer.h>

class vtkGenericOpenGLRenderWindow;
class vtkProp;
class vtkRenderer;
class vtkRenderWindowInteractor;

/**
 * The widget that owns one view's VTK scene: the scene renderer (layer 0) and
 * the outline renderer (layer 1) on a layered render window. Nobody draws
 * directly: render() only asks for a frame, and any number of requests made
 * in one turn of the event loop give one frame.
 */
class KXVTKLIB_EXPORT VXVisualizationWidget : public VXGLWidget
{
  Q_OBJECT

public:
  explicit VXVisualizationWidget(QWidget* parent = nullptr, int numRenderLayers = 2);
  ~VXVisualizationWidget() override;

  vtkRenderer* getRenderer() const;
  vtkRenderer* getOutlineRenderer() const;
  vtkRenderWindowInteractor* getRenderWindowInteractor() const;
  /** Adds a prop to the scene. */
  void addActor(vtkProp* prop);
  void removeActor(vtkProp* prop);
  /** Frames drawn so far. */
  int frameCount() const { return m_FrameCount; }

public Q_SLOTS:
  /** Schedules one frame for the next turn of the event loop; repeated calls before it merge. */
  void render();
  virtual void resetCamera();

Q_SIGNALS:
  void mousePressed();
  void actorAdded(vtkProp* prop);
  void actorRemoved(vtkProp* prop);

private Q_SLOTS:
  void renderQueued();

private:
  vtkSmartPointer<vtkRenderer> m_Renderer;
  vtkSmartPointer<vtkRenderer> m_OutlineRenderer;
  int m_NumRenderLayers = 2;
  int m_RenderPending = 0;
  int m_FrameCount = 0;
};
