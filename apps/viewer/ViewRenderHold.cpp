#include "ViewRenderHold.hpp"

#include <visualization/QtWidgets/VXVisualizationWidget.hpp>

#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkRenderWindowInteractor.h>

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
  for (const QPointer<VXVisualizationWidget>& view : std::as_const(m_Held))
  {
    if (view == nullptr)
      continue;
    disconnect(view, nullptr, this, nullptr);
    // a window gets its OpenGL context with the view's first show; before that it can't draw
    if (auto* window = vtkGenericOpenGLRenderWindow::SafeDownCast(view->renderWindow());
        window != nullptr && view->isValid())
      window->SetReadyForRendering(true);
    if (view->getRenderWindowInteractor() != nullptr)
      view->getRenderWindowInteractor()->EnableRenderOn();
    if (drawNow)
    {
      view->render();
      view->update();
    }
  }
  m_Held.clear();
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
