#pragma once

#include "KXVtkLib_export.h"

#include <vtkPointPlacer.h>
#include <vtkWeakPointer.h>

class vtkImageSlice;
class vtkRenderer;

/**
 * Places handles on an image picture shown in a render view: a display position
 * goes to the world point of the picture under it, and, with the snap on, to
 * the nearest corner of the picture's pixels, so a ruler measures whole pixels.
 * A position off the picture is refused. The picture is a `vtkImageSlice` over
 * axis-aligned image data.
 */
class KXVTKLIB_EXPORT VXSlicePlanePointPlacer : public vtkPointPlacer
{
public:
  static VXSlicePlanePointPlacer* New();
  vtkTypeMacro(VXSlicePlanePointPlacer, vtkPointPlacer);

  /** The picture to place on and the renderer that shows it; the two in-plane axes follow from the
   * picture's bounds (the flattest axis is the normal). */
  void setPicture(vtkRenderer* renderer, vtkImageSlice* picture);
  vtkImageSlice* picture() const { return m_Picture; }
  int inPlaneAxis(int which) const { return which == 0 ? m_AxisU : m_AxisV; }

  bool getSnapToPixelCorner() const { return m_SnapToPixelCorner; }
  void setSnapToPixelCorner(bool snap) { m_SnapToPixelCorner = snap; }

  int ComputeWorldPosition(vtkRenderer* ren, double displayPos[2], double worldPos[3],
                           double worldOrient[9]) override;
  int ComputeWorldPosition(vtkRenderer* ren, double displayPos[2], double refWorldPos[3],
                           double worldPos[3], double worldOrient[9]) override;
  int ValidateWorldPosition(double worldPos[3]) override;
  int ValidateWorldPosition(double worldPos[3], double worldOrient[9]) override;

protected:
  VXSlicePlanePointPlacer() = default;
  ~VXSlicePlanePointPlacer() override = default;

private:
  VXSlicePlanePointPlacer(const VXSlicePlanePointPlacer&) = delete;
  void operator=(const VXSlicePlanePointPlacer&) = delete;

  /** Moves the in-plane coordinates of @p point to the nearest pixel corner. */
  void snap(double point[3]) const;

  vtkWeakPointer<vtkRenderer> m_Renderer;
  vtkWeakPointer<vtkImageSlice> m_Picture;
  int m_AxisU = 0;
  int m_AxisV = 1;
  bool m_SnapToPixelCorner = true;
};
