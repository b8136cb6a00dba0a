#pragma once

#include "KXVtkLib_export.h"

#include <vtkImageAlgorithm.h>

#include <string>

/**
 * Reduces a multi-component array of an image to the one scalar a volume mapper can draw: one
 * component (clamped to the last one) in the array's own type, or the magnitude as doubles for a
 * negative component. The output shares everything else with the input; the reduced array is
 * added as "__VXVolumeReducedScalar__" and made the active scalars. A one-component array, an
 * empty name or a missing array leave the output a plain shallow copy.
 */
class KXVTKLIB_EXPORT VXVolumeComponentReduceFilter : public vtkImageAlgorithm
{
public:
  static constexpr const char* k_ReducedArrayName = "__VXVolumeReducedScalar__";

  static VXVolumeComponentReduceFilter* New();
  vtkTypeMacro(VXVolumeComponentReduceFilter, vtkImageAlgorithm);

  vtkSetStdStringFromCharMacro(ArrayName);
  vtkGetCharFromStdStringMacro(ArrayName);
  vtkSetMacro(Component, int);
  vtkGetMacro(Component, int);

protected:
  VXVolumeComponentReduceFilter() = default;
  ~VXVolumeComponentReduceFilter() override = default;

  int RequestData(vtkInformation* request, vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  VXVolumeComponentReduceFilter(const VXVolumeComponentReduceFilter&) = delete;
  void operator=(const VXVolumeComponentReduceFilter&) = delete;

  std::string ArrayName;
  int Component = -1;
};
