#include "quadview/VXResliceCursorThickLineRepresentation.hpp"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXResliceCursorThickLineRepresentation);
