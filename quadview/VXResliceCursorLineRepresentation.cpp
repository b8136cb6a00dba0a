#include "quadview/VXResliceCursorLineRepresentation.hpp"

#include <vtkDataArray.h>
#include <vtkImageAlgorithm.h>
#include <vtkImageData.h>
#include <vtkImageMapToColors.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>

vtkStandardNewMacro(VXResliceCursorLineRepresentation);

VXResliceCursorLineRepresentation::VXResliceCursorLineRepresentation()
  : m_PlaceholderImage(vtkSmartPointer<vtkImageData>::New())
{
  ShowReslicedImageOff();
  m_PlaceholderImage->SetDimensions(1, 1, 1);
  m_PlaceholderImage->AllocateScalars(VTK_UNSIGNED_CHAR, 3);
  m_PlaceholderImage->GetPointData()->GetScalars()->Fill(0.0);
  if (Reslice != nullptr)
    Reslice->SetInputDataObject(m_PlaceholderImage);
  // the stock class wires its colour map to the reslice only when it shows a resliced image,
  // yet its pipeline still asks the map for information: without an input, each ask is an error
  ColorMap->SetInputData(m_PlaceholderImage);
}
