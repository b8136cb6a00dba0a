#pragma once

#include "KXVtkLib_export.h"

#include <vtkResliceImageViewer.h>

/**
 * The reslice viewer of one slice pane of the quad view. The three panes share
 * one vtkResliceCursor; the only change to the stock viewer is the slice step,
 * which in axis aligned mode moves that shared cursor instead of the viewer's
 * own slice number, so the mouse wheel in one pane moves the crosshair in the
 * other two as well.
 */
class KXVTKLIB_EXPORT VXResliceImageViewer : public vtkResliceImageViewer
{
public:
  static VXResliceImageViewer* New();
  vtkTypeMacro(VXResliceImageViewer, vtkResliceImageViewer);

  /**
   * Moves the shared cursor by @p n slices (times SliceScrollFactor) along the
   * viewer's slice orientation, clamped to the image's extent. When the slice
   * changes, raises SliceChangedEvent and then InteractionEvent on the viewer;
   * at either end of the image it does nothing and raises nothing. In oblique
   * mode the stock step applies.
   */
  void IncrementSlice(int n) override;

protected:
  VXResliceImageViewer() = default;
  ~VXResliceImageViewer() override = default;

private:
  VXResliceImageViewer(const VXResliceImageViewer&) = delete;
  void operator=(const VXResliceImageViewer&) = delete;
};
