#include "ViewFrameCounter.hpp"

#include <visualization/QtWidgets/VXVisualizationWidget.hpp>

#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkRenderWindow.h>
#include <vtkSmartPointer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtCore/QStringList>

struct ViewFrameCounter::Watched
{
  QPointer<VXVisualizationWidget> view;
  vtkSmartPointer<vtkRenderWindow> window;
  vtkSmartPointer<vtkCallbackCommand> counter;
  int frames = 0;
};

ViewFrameCounter::ViewFrameCounter()
{
  QCoreApplication::instance()->installEventFilter(this);
}

ViewFrameCounter::~ViewFrameCounter()
{
  if (QCoreApplication::instance() != nullptr)
    QCoreApplication::instance()->removeEventFilter(this);
  for (const auto& watched : m_Views)
    watched->window->RemoveObserver(watched->counter);
}

QList<int> ViewFrameCounter::frames() const
{
  QList<int> counts;
  for (const auto& watched : m_Views)
  {
    // a view gone before the end (the first view, when a state file brings its own) is left out
    if (watched->view != nullptr)
      counts << watched->frames;
  }
  return counts;
}

int ViewFrameCounter::framesOf(const VXVisualizationWidget* view) const
{
  for (const auto& watched : m_Views)
  {
    if (watched->view == view)
      return watched->frames;
  }
  return -1;
}

QString ViewFrameCounter::summary() const
{
  QStringList counts;
  for (const int count : frames())
    counts << QString::number(count);
  return QStringLiteral("frames drawn: %1").arg(counts.join(' '));
}

bool ViewFrameCounter::eventFilter(QObject* watched, QEvent* event)
{
  // a view draws nothing before it is shown: its window has no OpenGL context yet
  if (event->type() == QEvent::Show)
  {
    if (auto* view = qobject_cast<VXVisualizationWidget*>(watched))
      watch(view);
  }
  return QObject::eventFilter(watched, event);
}

void ViewFrameCounter::watch(VXVisualizationWidget* view)
{
  if (view->renderWindow() == nullptr)
    return;
  for (const auto& known : m_Views)
  {
    if (known->view == view)
      return;
  }
  auto watched = std::make_unique<Watched>();
  watched->view = view;
  watched->window = view->renderWindow();
  watched->counter = vtkSmartPointer<vtkCallbackCommand>::New();
  watched->counter->SetClientData(&watched->frames);
  watched->counter->SetCallback([](vtkObject*, unsigned long, void* clientData, void*)
                                { ++*static_cast<int*>(clientData); });
  watched->window->AddObserver(vtkCommand::StartEvent, watched->counter);
  m_Views.push_back(std::move(watched));
}
