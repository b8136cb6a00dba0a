#include "visualization/VXImageSliceUtilities.hpp"

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>
#include <vtkStreamingDemandDrivenPipeline.h>
#include <vtkStructuredData.h>

#include <algorithm>

namespace image_slice_utilities
{
vtkStandardNewMacro(VXImageSliceData);
vtkStandardNewMacro(VXImageSliceFilter);

vtkIdType VXImageSliceData::GetNumberOfCells()
{
  int extent[6];
  GetExtent(extent);
  for (int axis = 0; axis < 3; ++axis)
    extent[2 * axis + 1] += 1;
  return vtkStructuredData::GetNumberOfCells(extent);
}

namespace
{
bool HasCellArrays(vtkImageData* image)
{
  return image != nullptr && image->GetCellData()->GetNumberOfArrays() > 0;
}

/** The input's whole extent, each upper bound lowered by one when cells become points. */
void OutputExtent(vtkInformation* inInfo, bool cellsToPoints, int extent[6])
{
  inInfo->Get(vtkStreamingDemandDrivenPipeline::WHOLE_EXTENT(), extent);
  if (!cellsToPoints)
    return;
  for (int axis = 0; axis < 3; ++axis)
    extent[2 * axis + 1] = std::max(extent[2 * axis], extent[2 * axis + 1] - 1);
}
} // namespace

int VXImageSliceFilter::RequestInformation(vtkInformation*, vtkInformationVector** inputVector,
                                           vtkInformationVector* outputVector)
{
  vtkInformation* inInfo = inputVector[0]->GetInformationObject(0);
  vtkInformation* outInfo = outputVector->GetInformationObject(0);
  auto* input = vtkImageData::SafeDownCast(inInfo->Get(vtkDataObject::DATA_OBJECT()));
  int extent[6];
  OutputExtent(inInfo, HasCellArrays(input), extent);
  outInfo->Set(vtkStreamingDemandDrivenPipeline::WHOLE_EXTENT(), extent, 6);
  return 1;
}

int VXImageSliceFilter::RequestUpdateExtent(vtkInformation*, vtkInformationVector** inputVector,
                                            vtkInformationVector*)
{
  // the output shares the input's arrays whole, whatever piece is asked for
  vtkInformation* inInfo = inputVector[0]->GetInformationObject(0);
  int whole[6];
  inInfo->Get(vtkStreamingDemandDrivenPipeline::WHOLE_EXTENT(), whole);
  inInfo->Set(vtkStreamingDemandDrivenPipeline::UPDATE_EXTENT(), whole, 6);
  return 1;
}

int VXImageSliceFilter::RequestData(vtkInformation*, vtkInformationVector** inputVector,
                                    vtkInformationVector* outputVector)
{
  vtkInformation* inInfo = inputVector[0]->GetInformationObject(0);
  vtkInformation* outInfo = outputVector->GetInformationObject(0);
  auto* input = vtkImageData::SafeDownCast(inInfo->Get(vtkDataObject::DATA_OBJECT()));
  if (input == nullptr)
    return 0;
  const bool cellsToPoints = HasCellArrays(input);
  int extent[6];
  OutputExtent(inInfo, cellsToPoints, extent);

  vtkNew<VXImageSliceData> output;
  if (!cellsToPoints)
  {
    output->ShallowCopy(input);
  }
  else
  {
    output->SetExtent(extent);
    output->SetSpacing(input->GetSpacing());
    output->SetOrigin(input->GetOrigin());
    output->SetDirectionMatrix(input->GetDirectionMatrix());
    output->SetFieldData(input->GetFieldData());
    vtkCellData* cells = input->GetCellData();
    vtkPointData* points = output->GetPointData();
    for (int i = 0; i < cells->GetNumberOfArrays(); ++i)
      points->AddArray(cells->GetAbstractArray(i));
    vtkDataArray* scalars = cells->GetScalars();
    if (scalars == nullptr)
      scalars = cells->GetArray(0);
    if (scalars != nullptr && scalars->GetName() != nullptr)
      points->SetActiveScalars(scalars->GetName());
    else if (scalars != nullptr)
      points->SetScalars(scalars);
  }
  output->SetExtent(extent);
  outInfo->Set(vtkDataObject::DATA_OBJECT(), output);
  outInfo->Set(vtkStreamingDemandDrivenPipeline::WHOLE_EXTENT(), extent, 6);
  outInfo->Set(vtkStreamingDemandDrivenPipeline::UPDATE_EXTENT(), extent, 6);
  return 1;
}
} // namespace image_slice_utilities
