#include "ViewRenderHold.hpp"

#include <visualization/QtWidgets/VXVisualizationWidget.hpp>

#include <vtkCommand.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>

ViewRenderHold::ViewRenderHold()
{
  for (QWidget* widget : QApplication::allWidgets())
  {
    if (auto* view = qobject_cast<VXVisualizationWidget*>(widget))
      hold(view);
  }
  QCoreApplication::instance()->installEventFilter(this);
}

ViewRenderHold::~ViewRenderHold()
{
  release(false);
}

void ViewRenderHold::release(bool drawNow)
{
  if (!m_Holding)
    return;
  m_Holding = false;
  if (QCoreApplication::instance() != nullptr)
    QCoreApplication::instance()->removeEventFilter(this);
  for (const auto& [view, tag] : std::as_const(m_OneFrame))
  {
    if (view != nullptr && view->renderWindow() != nullptr)
      view->renderWindow()->RemoveObserver(tag);
  }
  m_OneFrame.clear();
  for (const QPointer<VXVisualizationWidget>& view : std::as_const(m_SceneLeftOut))
  {
    if (view != nullptr && view->getRenderer() != nullptr)
      view->getRenderer()->DrawOn();
  }
  m_SceneLeftOut.clear();
  for (const QPointer<VXVisualizationWidget>& view : std::as_const(m_Held))
  {
    if (view == nullptr)
      continue;
    disconnect(view, nullptr, this, nullptr);
    letDraw(view);
    if (drawNow)
    {
      view->render();
      view->update();
    }
  }
  m_Held.clear();
}

void ViewRenderHold::allowOneFrame()
{
  if (!m_Holding)
    return;
  for (const QPointer<VXVisualizationWidget>& view : std::as_const(m_Held))
  {
    if (view == nullptr || view->renderWindow() == nullptr)
      continue;
    letDraw(view);
    m_OneFrame.append({ view, view->renderWindow()->AddObserver(vtkCommand::EndEvent, this,
                                                                &ViewRenderHold::onFrameEnd) });
  }
}

void ViewRenderHold::onFrameEnd(vtkObject* caller, unsigned long, void*)
{
  for (qsizetype i = 0; i < m_OneFrame.size(); ++i)
  {
    VXVisualizationWidget* view = m_OneFrame[i].first;
    if (view == nullptr || view->renderWindow() != caller)
      continue;
    view->renderWindow()->RemoveObserver(m_OneFrame[i].second);
    m_OneFrame.removeAt(i);
    // the frames after it (the capture puts the view back on screen) leave the scene out: the
    // capture has read the frame it needs, and nobody looks at the window
    vtkRenderer* scene = view->getRenderer();
    if (scene != nullptr && scene->GetDraw() != 0)
    {
      scene->DrawOff();
      m_SceneLeftOut << view;
    }
    return;
  }
}

void ViewRenderHold::letDraw(VXVisualizationWidget* view)
{
  // a window gets its OpenGL context with the view's first show; before that it can't draw
  if (auto* window = vtkGenericOpenGLRenderWindow::SafeDownCast(view->renderWindow());
      window != nullptr && view->isValid())
    window->SetReadyForRendering(true);
  if (view->getRenderWindowInteractor() != nullptr)
    view->getRenderWindowInteractor()->EnableRenderOn();
}

bool ViewRenderHold::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::Show)
  {
    // views made while holding (split views of a state file) are held before their first paint
    if (auto* view = qobject_cast<VXVisualizationWidget*>(watched))
      hold(view);
  }
  else if (event->type() == QEvent::Paint)
  {
    // a held view's paint would draw (after a show or a resize) or show a frame never drawn
    if (auto* view = qobject_cast<VXVisualizationWidget*>(watched);
        view != nullptr && m_Held.contains(view))
    {
      stopDrawing(view);
      return true;
    }
  }
  return QObject::eventFilter(watched, event);
}

void ViewRenderHold::hold(VXVisualizationWidget* view)
{
  if (m_Held.contains(view))
    return;
  m_Held << view;
  stopDrawing(view);
  // the first show gives the window its context, which makes it ready to draw again
  connect(view, &QOpenGLWidget::resized, this, [this, view]() { stopDrawing(view); });
}

void ViewRenderHold::stopDrawing(VXVisualizationWidget* view)
{
  if (!m_Holding)
    return;
  // queued renders, paints and camera snaps go through the interactor; background and grid
  // changes and captures draw through the window itself
  if (view->getRenderWindowInteractor() != nullptr)
    view->getRenderWindowInteractor()->EnableRenderOff();
  if (auto* window = vtkGenericOpenGLRenderWindow::SafeDownCast(view->renderWindow()))
    window->SetReadyForRendering(false);
}
