#pragma once

#include "KXVtkLib_export.h"

#include <vtkCommand.h>

class VXPlane;
class vtkPlane;

/** Passes the plane the user dragged in a view on to its VXPlane. */
class KXVTKLIB_EXPORT VXPlaneCallback : public vtkCommand
{
public:
  static VXPlaneCallback* New();
  vtkTypeMacro(VXPlaneCallback, vtkCommand);

  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;
  /** The plane the representation's plane is copied into. */
  void setViewPlane(vtkPlane* plane) { m_Plane = plane; }
  void setPlaneObject(VXPlane* owner) { m_Owner = owner; }

protected:
  VXPlaneCallback() = default;

private:
  vtkPlane* m_Plane = nullptr;
  VXPlane* m_Owner = nullptr;
};
