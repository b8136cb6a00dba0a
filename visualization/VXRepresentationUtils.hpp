#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>

class VXRepresentation;
class vtkActor;
class vtkDataArray;
class vtkDataSet;
class vtkImageSlice;
class vtkMapper;

/**
 * Colour helpers shared by the data views that colour by array: finding the
 * array a view colours by and choosing between lookup-table and direct colours.
 */
namespace KXVtkModule::utils
{
/** The point array of that name, else the cell array of that name, else null. */
KXVTKLIB_EXPORT vtkDataArray* GetActiveDataArray(vtkDataSet* dataSet, const QString& arrayName);
/** The active cell scalars of the data set, else null. */
KXVTKLIB_EXPORT vtkDataArray* GetActiveCellArray(vtkDataSet* dataSet);
/** The active point scalars of the data set, else null. */
KXVTKLIB_EXPORT vtkDataArray* GetActivePointArray(vtkDataSet* dataSet);
/** Whether the array holds direct colours: exactly 3 components of unsigned char. */
KXVTKLIB_EXPORT bool IsColorArray(vtkDataArray* array);
/**
 * Applies a scalar mapping mode (0 always, 1 non-colours, 2 never) to the mapper
 * for the named array of its input, stores the mode through @p storedMode and
 * updates the mapper. Nothing happens when the array is not in the input.
 */
KXVTKLIB_EXPORT void UpdateColorMode(int mode, VXRepresentation* representation, vtkActor* actor,
                                     vtkMapper* mapper, const QString& arrayName, int* storedMode,
                                     bool updateTexture);
/**
 * The same for an image slice. Its mapper has no colour mode: mapping means the slice's image
 * property keeps its lookup table, direct colours mean it has none, so that VTK shows unsigned
 * char RGB data as its own colours (and other data as grey levels).
 */
KXVTKLIB_EXPORT void UpdateColorMode(int mode, VXRepresentation* representation,
                                     vtkImageSlice* slice, const QString& arrayName,
                                     int* storedMode);
/**
 * Maps an image input through the representation's colour map and sets the
 * result as the actor's texture; clears it for an empty array name.
 */
KXVTKLIB_EXPORT void UpdateTexture(VXRepresentation* representation, vtkActor* actor,
                                   vtkMapper* mapper, const QString& arrayName);
} // namespace KXVtkModule::utils
