#include "visualization/VXPlaneCallback.hpp"

#include "visualization/VXPlane.hpp"

#include <vtkImplicitPlaneRepresentation.h>
#include <vtkImplicitPlaneWidget2.h>
#include <vtkObjectFactory.h>
#include <vtkPlane.h>

vtkStandardNewMacro(VXPlaneCallback);

void VXPlaneCallback::Execute(vtkObject* caller, unsigned long, void*)
{
  auto* widget = vtkImplicitPlaneWidget2::SafeDownCast(caller);
  auto* representation =
    widget != nullptr ? vtkImplicitPlaneRepresentation::SafeDownCast(widget->GetRepresentation())
                      : nullptr;
  if (representation == nullptr || m_Plane == nullptr)
    return;
  representation->GetPlane(m_Plane);
  if (m_Owner != nullptr)
  {
    std::array<double, 3> normal{};
    std::array<double, 3> origin{};
    m_Plane->GetNormal(normal.data());
    m_Plane->GetOrigin(origin.data());
    m_Owner->setValues(normal, origin);
  }
}
