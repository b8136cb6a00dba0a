#include "utils/GridAxesUtils.hpp"

#include <vtkBoundingBox.h>
#include <vtkGridAxesActor3D.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkProperty.h>
#include <vtkTextProperty.h>

namespace KXVtk::utils
{
void InitializeGridAxesActor(vtkGridAxesActor3D* actor)
{
  if (actor == nullptr)
    return;
  actor->SetGenerateTicks(true);
  actor->SetGenerateGrid(false);
  actor->SetGenerateEdges(true);
  actor->SetLabelDisplayOffset(0, -10);
  vtkNew<vtkProperty> property;
  actor->SetProperty(property);
  for (int axis = 0; axis < 3; ++axis)
  {
    if (vtkTextProperty* title = actor->GetTitleTextProperty(axis))
      title->SetFontSize(18);
  }
}

void ApplyGridAxesAppearance(vtkGridAxesActor3D* actor, const QColor& color, double opacity,
                             bool showLabels)
{
  if (actor == nullptr)
    return;
  const double textOpacity = showLabels ? opacity : 0.0;
  const double rgb[3] = { color.redF(), color.greenF(), color.blueF() };
  if (vtkProperty* property = actor->GetProperty())
  {
    property->SetColor(rgb[0], rgb[1], rgb[2]);
    property->SetOpacity(opacity);
  }
  for (int axis = 0; axis < 3; ++axis)
  {
    for (vtkTextProperty* text :
         { actor->GetLabelTextProperty(axis), actor->GetTitleTextProperty(axis) })
    {
      if (text == nullptr)
        continue;
      text->SetColor(rgb[0], rgb[1], rgb[2]);
      text->SetOpacity(textOpacity);
    }
  }
  actor->SetGenerateTicks(showLabels);
}

std::array<double, 6> GetImageActorRenderedBounds(vtkImageActor* actor)
{
  std::array<double, 6> result = { 0, 0, 0, 0, 0, 0 };
  if (actor == nullptr)
    return result;
  vtkImageData* input = actor->GetInput();
  if (input == nullptr)
  {
    const double* own = actor->GetBounds();
    if (own != nullptr)
      std::copy(own, own + 6, result.begin());
    return result;
  }
  int extent[6];
  actor->GetDisplayExtent(extent);
  // an unset display extent (min > max) means the whole input is shown
  if (extent[0] > extent[1] || extent[2] > extent[3] || extent[4] > extent[5])
    input->GetExtent(extent);
  vtkBoundingBox box;
  vtkMatrix4x4* matrix = actor->GetMatrix();
  for (int corner = 0; corner < 8; ++corner)
  {
    const int ijk[3] = { extent[(corner & 1) != 0 ? 1 : 0], extent[(corner & 2) != 0 ? 3 : 2],
                         extent[(corner & 4) != 0 ? 5 : 4] };
    // index to physical space through the image's origin, spacing and direction
    double point[4] = { 0, 0, 0, 1 };
    double index[3] = { static_cast<double>(ijk[0]), static_cast<double>(ijk[1]),
                        static_cast<double>(ijk[2]) };
    input->TransformContinuousIndexToPhysicalPoint(index, point);
    double world[4];
    matrix->MultiplyPoint(point, world);
    box.AddPoint(world[0] / world[3], world[1] / world[3], world[2] / world[3]);
  }
  box.GetBounds(result.data());
  return result;
}
} // namespace KXVtk::utils
