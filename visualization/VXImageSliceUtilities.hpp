#pragma once

#include "KXVtkLib_export.h"

#include <vtkImageAlgorithm.h>
#include <vtkImageData.h>

/**
 * The image slice data view draws with vtkImageActor, which maps point
 * scalars, while the host's images carry their values on cells. These two
 * classes present an image of cell values as an image of point values, one
 * point per input cell, sharing the arrays (nothing is copied).
 */
namespace image_slice_utilities
{
/** An image whose points stand for the cells of another; it still reports that image's cells. */
class KXVTKLIB_EXPORT VXImageSliceData : public vtkImageData
{
public:
  static VXImageSliceData* New();
  vtkTypeMacro(VXImageSliceData, vtkImageData);

  /** The cells of the extent enlarged by one at each upper bound: the cells the points stand for.
   */
  vtkIdType GetNumberOfCells() override;

protected:
  VXImageSliceData() = default;
  ~VXImageSliceData() override = default;

private:
  VXImageSliceData(const VXImageSliceData&) = delete;
  void operator=(const VXImageSliceData&) = delete;
};

/**
 * Cell data in, the same arrays as point data out, on an extent one smaller at
 * each upper bound. An image with no cell arrays is passed on as it is (its
 * values already stand on points).
 */
class KXVTKLIB_EXPORT VXImageSliceFilter : public vtkImageAlgorithm
{
public:
  static VXImageSliceFilter* New();
  vtkTypeMacro(VXImageSliceFilter, vtkImageAlgorithm);

protected:
  VXImageSliceFilter() = default;
  ~VXImageSliceFilter() override = default;

  int RequestInformation(vtkInformation* request, vtkInformationVector** inputVector,
                         vtkInformationVector* outputVector) override;
  int RequestUpdateExtent(vtkInformation* request, vtkInformationVector** inputVector,
                          vtkInformationVector* outputVector) override;
  int RequestData(vtkInformation* request, vtkInformationVector** inputVector,
                  vtkInformationVector* outputVector) override;

private:
  VXImageSliceFilter(const VXImageSliceFilter&) = delete;
  void operator=(const VXImageSliceFilter&) = delete;
};
} // namespace image_slice_utilities
