#pragma once

#include <QtCore/QPointer>

#include <vtkCallbackCommand.h>

class VXRepresentationPimpl;

/**
 * Keeps a data view's histogram current: attached to the end-of-execution
 * event of the filter that produces what the view shows, it asks the data
 * view implementation to update its histogram each time that filter runs.
 */
class VXUpdateHistogramCallback : public vtkCallbackCommand
{
public:
  static VXUpdateHistogramCallback* New();
  vtkTypeMacro(VXUpdateHistogramCallback, vtkCallbackCommand);

  /** The implementation to refresh; guarded, so a released one is not called. */
  void setRepresentationPimpl(VXRepresentationPimpl* pimpl);
  VXRepresentationPimpl* representationPimpl() const;

  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;

protected:
  VXUpdateHistogramCallback() = default;
  ~VXUpdateHistogramCallback() override = default;

private:
  VXUpdateHistogramCallback(const VXUpdateHistogramCallback&) = delete;
  void operator=(const VXUpdateHistogramCallback&) = delete;

  QPointer<VXRepresentationPimpl> m_Pimpl;
};
