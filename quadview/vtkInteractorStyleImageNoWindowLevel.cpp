#include "quadview/vtkInteractorStyleImageNoWindowLevel.hpp"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(vtkInteractorStyleImageNoWindowLevel);
