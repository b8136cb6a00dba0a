#pragma once

// Helpers for tests of the pipeline and its views: a frame without a render
// widget and VTK event counting.
#include "QtPrinters.hpp"
#include "QtTestSupport.hpp"

#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>

#include <vtkCallbackCommand.h>
#include <vtkNew.h>
#include <vtkObject.h>
#include <vtkRenderWindowInteractor.h>

#include <memory>

namespace kxtest
{
/** A render view frame without a render widget: enough for the tree logic. */
class TestView : public VXAbstractViewWidget
{
public:
  using VXAbstractViewWidget::VXAbstractViewWidget;
  VXAbstractViewWidget* clone() override { return new TestView(); }
  VXAbstractViewWidget* newInstance() override { return new TestView(); }
};

/** Counts one VTK event of one object for as long as it lives. */
class EventCounter
{
public:
  EventCounter(vtkObject* object, unsigned long event)
    : m_Object(object)
  {
    m_Command->SetClientData(&m_Count);
    m_Command->SetCallback([](vtkObject*, unsigned long, void* clientData, void*)
                           { ++*static_cast<int*>(clientData); });
    m_Tag = object->AddObserver(event, m_Command);
  }
  ~EventCounter() { m_Object->RemoveObserver(m_Tag); }
  EventCounter(const EventCounter&) = delete;
  EventCounter& operator=(const EventCounter&) = delete;

  int count() const { return m_Count; }
  void reset() { m_Count = 0; }

private:
  vtkObject* m_Object;
  vtkNew<vtkCallbackCommand> m_Command;
  unsigned long m_Tag = 0;
  int m_Count = 0;
};

/** A button drag from (x0, y0) to (x1, y1) in four moves. */
inline void drag(vtkRenderWindowInteractor* interactor, int x0, int y0, int x1, int y1,
                 unsigned long press = vtkCommand::LeftButtonPressEvent)
{
  interactor->SetEventInformation(x0, y0, 0, 0);
  interactor->InvokeEvent(press);
  for (int step = 1; step <= 4; ++step)
  {
    interactor->SetEventInformation(x0 + (x1 - x0) * step / 4, y0 + (y1 - y0) * step / 4, 0, 0);
    interactor->InvokeEvent(vtkCommand::MouseMoveEvent);
  }
  interactor->InvokeEvent(press + 1);
}

} // namespace kxtest
