#include "visualization/VXRepresentationUtils.hpp"

#include "visualization/VXLookupTable.hpp"
#include "visualization/VXRepresentation.hpp"

#include <vtkActor.h>
#include <vtkCellData.h>
#include <vtkColorTransferFunction.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkImageData.h>
#include <vtkImageMapToColors.h>
#include <vtkImageMapper3D.h>
#include <vtkImageProperty.h>
#include <vtkImageSlice.h>
#include <vtkMapper.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkTexture.h>

namespace KXVtkModule::utils
{
vtkDataArray* GetActiveDataArray(vtkDataSet* dataSet, const QString& arrayName)
{
  if (dataSet == nullptr || arrayName.isEmpty())
    return nullptr;
  const std::string name = arrayName.toStdString();
  if (vtkDataArray* array = dataSet->GetPointData()->GetArray(name.c_str()))
    return array;
  return dataSet->GetCellData()->GetArray(name.c_str());
}

vtkDataArray* GetActiveCellArray(vtkDataSet* dataSet)
{
  return dataSet != nullptr ? dataSet->GetCellData()->GetScalars() : nullptr;
}

vtkDataArray* GetActivePointArray(vtkDataSet* dataSet)
{
  return dataSet != nullptr ? dataSet->GetPointData()->GetScalars() : nullptr;
}

bool IsColorArray(vtkDataArray* array)
{
  // a 4-component (RGBA) array deliberately does not count: it goes through the table
  return array != nullptr && array->GetNumberOfComponents() == 3 &&
         QString::fromUtf8(array->GetDataTypeAsString()) == "unsigned char";
}

void UpdateColorMode(int mode, VXRepresentation* representation, vtkActor* actor, vtkMapper* mapper,
                     const QString& arrayName, int* storedMode, bool updateTexture)
{
  if (mapper == nullptr)
    return;
  vtkDataArray* array = GetActiveDataArray(mapper->GetInput(), arrayName);
  if (array == nullptr)
    return;
  if (mode == 0 || (mode == 1 && !IsColorArray(array)))
    mapper->SetColorModeToMapScalars();
  else
    mapper->SetColorModeToDirectScalars();
  if (storedMode != nullptr)
    *storedMode = mode;
  mapper->Update();
  if (updateTexture)
    UpdateTexture(representation, actor, mapper, arrayName);
}

void UpdateColorMode(int mode, VXRepresentation*, vtkImageSlice* slice, const QString& arrayName,
                     int* storedMode)
{
  if (slice == nullptr || slice->GetMapper() == nullptr)
    return;
  vtkDataArray* array = GetActiveDataArray(slice->GetMapper()->GetInput(), arrayName);
  if (array == nullptr)
    return;
  if (!(mode == 0 || (mode == 1 && !IsColorArray(array))))
    slice->GetProperty()->SetLookupTable(nullptr);
  if (storedMode != nullptr)
    *storedMode = mode;
}

void UpdateTexture(VXRepresentation* representation, vtkActor* actor, vtkMapper* mapper,
                   const QString& arrayName)
{
  if (actor == nullptr || mapper == nullptr)
    return;
  auto* image = vtkImageData::SafeDownCast(mapper->GetInput());
  if (image == nullptr || image->GetPointData() == nullptr || image->GetCellData() == nullptr)
    return;
  if (image->GetPointData()->GetNumberOfArrays() + image->GetCellData()->GetNumberOfArrays() == 0)
    return;
  if (arrayName.isEmpty())
  {
    actor->SetTexture(nullptr);
    return;
  }
  VXLookupTable* table = representation != nullptr ? representation->lookupTable() : nullptr;
  if (table == nullptr)
    return;
  vtkNew<vtkImageData> copy;
  copy->ShallowCopy(image);
  const std::string name = arrayName.toStdString();
  copy->GetPointData()->SetActiveScalars(name.c_str());
  vtkNew<vtkImageMapToColors> colors;
  colors->SetInputData(copy);
  colors->SetLookupTable(table->getColorTransferFunction());
  colors->Update();
  vtkNew<vtkTexture> texture;
  texture->SetInputConnection(colors->GetOutputPort());
  actor->SetTexture(texture);
}
} // namespace KXVtkModule::utils
