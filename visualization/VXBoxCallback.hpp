#pragma once

#include "KXVtkLib_export.h"

#include <vtkCommand.h>

class VXBox;

/** Passes the box the user dragged in a view on to its VXBox. */
class KXVTKLIB_EXPORT VXBoxCallback : public vtkCommand
{
public:
  static VXBoxCallback* New();
  vtkTypeMacro(VXBoxCallback, vtkCommand);

  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;
  void setBoxObject(VXBox* box) { m_Box = box; }

protected:
  VXBoxCallback() = default;

private:
  VXBox* m_Box = nullptr;
};
