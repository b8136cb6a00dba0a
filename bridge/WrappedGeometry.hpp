#pragma once

#include <kxcore/DataPath.hpp>

#include <vtkDataSet.h>
#include <vtkSmartPointer.h>

namespace CV::VtkBridge
{
/** A host geometry presented to VTK, with the path it was found at. */
struct WrappedGeometry
{
  vtkSmartPointer<vtkDataSet> DataSet;
  kx::core::DataPath Path;
};
} // namespace CV::VtkBridge
