#pragma once

#include <QtCore/QPointer>

#include <vtkCallbackCommand.h>

/**
 * Keeps a data view's dataset info current: attached to the end-of-execution
 * event of the filter that produces what the view shows, it asks the data view
 * of class T to refresh its info widget each time that filter runs.
 */
template<typename T>
class VXDataSetInfoWidgetUpdateCallback : public vtkCallbackCommand
{
public:
  static VXDataSetInfoWidgetUpdateCallback* New() { return new VXDataSetInfoWidgetUpdateCallback; }
  void setRepresentation(T* representation) { m_Representation = representation; }
  void Execute(vtkObject*, unsigned long, void*) override
  {
    if (m_Representation != nullptr)
      m_Representation->updateDataSetInfo();
  }

private:
  QPointer<T> m_Representation;
};

/** Calls a member of a data view implementation when a VTK event fires (decimation). */
template<typename T>
class VXMemberCallback : public vtkCallbackCommand
{
public:
  static VXMemberCallback* New() { return new VXMemberCallback; }
  void setTarget(T* target, void (T::*member)())
  {
    m_Target = target;
    m_Member = member;
  }
  void Execute(vtkObject*, unsigned long, void*) override
  {
    if (m_Target != nullptr && m_Member != nullptr)
      (m_Target->*m_Member)();
  }

private:
  QPointer<T> m_Target;
  void (T::*m_Member)() = nullptr;
};
