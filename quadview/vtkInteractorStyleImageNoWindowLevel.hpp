#pragma once

#include "KXVtkLib_export.h"

#include <vtkInteractorStyleImage.h>

/**
 * The image style of the quad view's slice panes without window and level
 * and without roll: both live in the quad view's colour controls alone, so the
 * right button does neither.
 */
class KXVTKLIB_EXPORT vtkInteractorStyleImageNoWindowLevel : public vtkInteractorStyleImage
{
public:
  static vtkInteractorStyleImageNoWindowLevel* New();
  vtkTypeMacro(vtkInteractorStyleImageNoWindowLevel, vtkInteractorStyleImage);

  void WindowLevel() override {}
  void StartWindowLevel() override {}
  void EndWindowLevel() override {}
  void Spin() override {}
  void StartSpin() override {}
  void EndSpin() override {}

protected:
  vtkInteractorStyleImageNoWindowLevel() = default;
  ~vtkInteractorStyleImageNoWindowLevel() override = default;

private:
  vtkInteractorStyleImageNoWindowLevel(const vtkInteractorStyleImageNoWindowLevel&) = delete;
  void operator=(const vtkInteractorStyleImageNoWindowLevel&) = delete;
};
