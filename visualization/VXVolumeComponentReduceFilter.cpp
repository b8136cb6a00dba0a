#include "visualization/VXVolumeComponentReduceFilter.hpp"

#include "utils/ExecuteVtkDataFunction.hpp"

#include <vtkAOSDataArrayTemplate.h>
#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkDoubleArray.h>
#include <vtkImageData.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>
#include <vtkSMPTools.h>
#include <vtkSmartPointer.h>

#include <algorithm>
#include <cmath>
#include <vector>

vtkStandardNewMacro(VXVolumeComponentReduceFilter);

namespace
{
/** One scalar per tuple: component c in the array's own type, or the magnitude as double. */
struct ReduceComponents
{
  template<typename T>
  vtkSmartPointer<vtkDataArray> operator()(vtkDataArray* input, int component) const
  {
    const int n = input->GetNumberOfComponents();
    const vtkIdType tuples = input->GetNumberOfTuples();
    vtkSmartPointer<vtkDataArray> output;
    if (component >= 0)
    {
      const int c = std::min(component, n - 1);
      auto typed = vtkSmartPointer<vtkAOSDataArrayTemplate<T>>::New();
      typed->SetNumberOfTuples(tuples);
      T* values = typed->GetPointer(0);
      vtkSMPTools::For(0, tuples,
                       [&](vtkIdType begin, vtkIdType end)
                       {
                         std::vector<double> tuple(n);
                         for (vtkIdType t = begin; t < end; ++t)
                         {
                           input->GetTuple(t, tuple.data());
                           values[t] = static_cast<T>(tuple[c]);
                         }
                       });
      output = typed;
    }
    else
    {
      auto magnitude = vtkSmartPointer<vtkDoubleArray>::New();
      magnitude->SetNumberOfTuples(tuples);
      double* values = magnitude->GetPointer(0);
      vtkSMPTools::For(0, tuples,
                       [&](vtkIdType begin, vtkIdType end)
                       {
                         std::vector<double> tuple(n);
                         for (vtkIdType t = begin; t < end; ++t)
                         {
                           input->GetTuple(t, tuple.data());
                           double sum = 0.0;
                           for (double v : tuple)
                             sum += v * v;
                           values[t] = std::sqrt(sum);
                         }
                       });
      output = magnitude;
    }
    return output;
  }
};
} // namespace

int VXVolumeComponentReduceFilter::RequestData(vtkInformation*, vtkInformationVector** inputVector,
                                               vtkInformationVector* outputVector)
{
  vtkImageData* input = vtkImageData::GetData(inputVector[0]);
  vtkImageData* output = vtkImageData::GetData(outputVector);
  if (input == nullptr || output == nullptr)
    return 0;
  output->ShallowCopy(input);
  if (this->ArrayName.empty())
    return 1;
  vtkDataSetAttributes* target = output->GetPointData();
  vtkDataArray* array = input->GetPointData()->GetArray(this->ArrayName.c_str());
  if (array == nullptr)
  {
    array = input->GetCellData()->GetArray(this->ArrayName.c_str());
    target = output->GetCellData();
  }
  if (array == nullptr || array->GetNumberOfComponents() <= 1)
    return 1;
  vtkSmartPointer<vtkDataArray> reduced = KXVtk::utils::ExecuteVtkDataFunctionNoBool(
    ReduceComponents{}, array->GetDataType(), array, this->Component);
  reduced->SetName(k_ReducedArrayName);
  target->AddArray(reduced);
  target->SetActiveScalars(k_ReducedArrayName);
  return 1;
}
