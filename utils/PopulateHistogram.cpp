#include "utils/PopulateHistogram.hpp"

#include "utils/ExecuteVtkDataFunction.hpp"
#include "utils/GenerateHistogramFunctor.hpp"

#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkFloatArray.h>
#include <vtkIntArray.h>
#include <vtkPointData.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace
{
constexpr int k_NumberOfBins = 200;

/** The table's column of that name and array type, or a new one. */
template<typename ArrayT>
vtkSmartPointer<ArrayT> TakeOrCreateColumn(vtkTable* table, const std::string& name)
{
  vtkSmartPointer<ArrayT> column = ArrayT::SafeDownCast(table->GetColumnByName(name.c_str()));
  if (column == nullptr)
  {
    column = vtkSmartPointer<ArrayT>::New();
    column->SetName(name.c_str());
  }
  column->SetNumberOfComponents(1);
  column->SetNumberOfTuples(k_NumberOfBins);
  return column;
}

/** A count as int; counts beyond int's range stop at its largest value. */
int CountAsInt(double count)
{
  if (count >= static_cast<double>(std::numeric_limits<int>::max()))
    return std::numeric_limits<int>::max();
  return static_cast<int>(count);
}
} // namespace

namespace fliozi
{
void PopulateHistogram(vtkDataSet* input, const std::string& arrayName,
                       const std::string& countColumnName, vtkTable* output)
{
  if (input == nullptr || output == nullptr)
    return;
  vtkDataArray* array = input->GetPointData()->GetArray(arrayName.c_str());
  if (array == nullptr)
    array = input->GetCellData()->GetArray(arrayName.c_str());
  if (array == nullptr)
    return;

  double range[2] = { 0.0, 1.0 };
  array->GetFiniteRange(range, -1);
  if (range[0] == range[1])
    range[1] = range[0] + 1.0;
  const double step = (range[1] - range[0]) / (k_NumberOfBins - 1.0);

  // counted before any column is touched, so a failure leaves the table as it was
  std::vector<double> binMinimums, binMaximums, histogram;
  std::vector<std::string> minimumLabels, maximumLabels;
  KXVtk::utils::ExecuteVtkDataFunctionNoBool(
    KXVtk::utils::GenerateHistogramFunctor(), array->GetDataType(), array, false,
    std::array<double, 2>{ 0.0, 0.0 }, binMinimums, binMaximums, minimumLabels, maximumLabels,
    k_NumberOfBins, histogram, 0);

  vtkSmartPointer<vtkFloatArray> centres = TakeOrCreateColumn<vtkFloatArray>(output, arrayName);
  for (vtkIdType i = 0; i < k_NumberOfBins; i++)
    centres->SetValue(i,
                      static_cast<float>(static_cast<double>(i) * step + (range[0] + step / 2.0)));
  vtkSmartPointer<vtkIntArray> counts = TakeOrCreateColumn<vtkIntArray>(output, countColumnName);
  for (vtkIdType i = 0; i < k_NumberOfBins; i++)
    counts->SetValue(i, CountAsInt(histogram[static_cast<std::size_t>(i)]));
  centres->Modified();
  counts->Modified();

  // a column of the same name but another type gives way to the new one; a reused column keeps
  // its place
  if (output->GetColumnByName(arrayName.c_str()) != centres)
    output->RemoveColumnByName(arrayName.c_str());
  if (output->GetColumnByName(countColumnName.c_str()) != counts)
    output->RemoveColumnByName(countColumnName.c_str());
  output->AddColumn(centres);
  output->AddColumn(counts);
}
} // namespace fliozi

namespace KXVtkModule::utils
{
void ComputeArrayHistogram(vtkDataSet* input, const std::string& arrayName,
                           const std::string& countColumnName, vtkTable* output)
{
  fliozi::PopulateHistogram(input, arrayName, countColumnName, output);
}
} // namespace KXVtkModule::utils
