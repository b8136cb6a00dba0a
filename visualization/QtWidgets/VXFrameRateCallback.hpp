#pragma once

#include "KXVtkLib_export.h"

#include <vtkCommand.h>

class VXVisualizationWidget;

/**
 * Observer of the scene renderer's EndEvent: the place where a frame-rate
 * measurement of a view hooks in. It knows its view and otherwise does nothing,
 * so it costs nothing per frame until someone needs the numbers.
 */
class KXVTKLIB_EXPORT VXFrameRateCallback : public vtkCommand
{
public:
  static VXFrameRateCallback* New();
  vtkTypeMacro(VXFrameRateCallback, vtkCommand);

  /** Sets the view whose frames are observed. */
  void setVisualizationWidget(VXVisualizationWidget* widget) { m_VisualizationWidget = widget; }
  /** The view whose frames are observed. */
  VXVisualizationWidget* getVisualizationWidget() const { return m_VisualizationWidget; }

  /** Called after each frame of the renderer; only checks that the caller is a renderer. */
  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;

protected:
  VXFrameRateCallback() = default;
  ~VXFrameRateCallback() override = default;

private:
  VXVisualizationWidget* m_VisualizationWidget = nullptr;
};
