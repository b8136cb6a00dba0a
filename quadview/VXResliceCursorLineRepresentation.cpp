#include "quadview/VXResliceCursorLineRepresentation.hpp"

#include <vtkDataArray.h>
#include <vtkImageAlgorithm.h>
#include <vtkImageData.h>
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
}
