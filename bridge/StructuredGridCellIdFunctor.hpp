#pragma once

#include <vtkType.h>

namespace CV::VtkBridge
{
/**
 * Backend of an implicit array whose value at each cell of a structured grid
 * is the cell's own index: an "original index" array that costs no memory.
 */
struct StructuredGridCellIdFunctor
{
  int Dimensions[3] = { 0, 0, 0 };

  vtkIdType operator()(int index) const { return index; }
};
} // namespace CV::VtkBridge
