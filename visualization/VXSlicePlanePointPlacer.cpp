#include "visualization/VXSlicePlanePointPlacer.hpp"

#include <vtkCellPicker.h>
#include <vtkImageData.h>
#include <vtkImageMapper3D.h>
#include <vtkImageSlice.h>
#include <vtkObjectFactory.h>
#include <vtkRenderer.h>

#include <cmath>

vtkStandardNewMacro(VXSlicePlanePointPlacer);

void VXSlicePlanePointPlacer::setPicture(vtkRenderer* renderer, vtkImageSlice* picture)
{
  m_Renderer = renderer;
  m_Picture = picture;
  if (picture == nullptr)
    return;
  double bounds[6];
  picture->GetBounds(bounds);
  int normal = 2;
  for (int axis = 0; axis < 3; axis++)
  {
    if (bounds[2 * axis + 1] - bounds[2 * axis] < bounds[2 * normal + 1] - bounds[2 * normal])
      normal = axis;
  }
  m_AxisU = normal == 0 ? 1 : 0;
  m_AxisV = normal == 2 ? 1 : 2;
  Modified();
}

int VXSlicePlanePointPlacer::ComputeWorldPosition(vtkRenderer* ren, double displayPos[2],
                                                  double worldPos[3], double worldOrient[9])
{
  vtkRenderer* renderer = ren != nullptr ? ren : m_Renderer.GetPointer();
  if (renderer == nullptr || m_Picture == nullptr)
    return 0;
  vtkNew<vtkCellPicker> picker;
  picker->PickFromListOn();
  picker->AddPickList(m_Picture);
  if (picker->Pick(displayPos[0], displayPos[1], 0.0, renderer) == 0)
    return 0;
  picker->GetPickPosition(worldPos);
  if (m_SnapToPixelCorner)
    snap(worldPos);
  // handles keep the world's orientation
  for (int i = 0; i < 9; i++)
    worldOrient[i] = (i % 4 == 0) ? 1.0 : 0.0;
  return 1;
}

int VXSlicePlanePointPlacer::ComputeWorldPosition(vtkRenderer* ren, double displayPos[2], double*,
                                                  double worldPos[3], double worldOrient[9])
{
  return ComputeWorldPosition(ren, displayPos, worldPos, worldOrient);
}

int VXSlicePlanePointPlacer::ValidateWorldPosition(double*)
{
  return 1;
}

int VXSlicePlanePointPlacer::ValidateWorldPosition(double*, double*)
{
  return 1;
}

void VXSlicePlanePointPlacer::snap(double point[3]) const
{
  vtkImageMapper3D* mapper = m_Picture->GetMapper();
  vtkImageData* image = mapper != nullptr ? mapper->GetInput() : nullptr;
  if (image == nullptr)
    return;
  double origin[3];
  double spacing[3];
  image->GetOrigin(origin);
  image->GetSpacing(spacing);
  // pixel centres sit at origin + i * spacing, so corners sit half a pixel off them
  for (int axis : { m_AxisU, m_AxisV })
  {
    if (spacing[axis] == 0.0)
      continue;
    const double corner = std::round((point[axis] - origin[axis]) / spacing[axis] + 0.5) - 0.5;
    point[axis] = origin[axis] + corner * spacing[axis];
  }
}
