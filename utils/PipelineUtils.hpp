#pragma once

#include "KXVtkLib_export.h"

class vtkAlgorithm;
class vtkDataSet;

namespace KXVtk::utils
{
/**
 * The data set at the start of the pipeline that feeds @p algorithm: follows the
 * first connection of the first input port upstream until an algorithm without
 * inputs (a data source's producer, a reader) and returns its output data set.
 * Ids and values of a picked surface, slice or glyph refer to this data set.
 * @p algorithm itself is the answer when it has no inputs; null when there is
 * no algorithm, the chain loops or the start holds no data set.
 */
KXVTKLIB_EXPORT vtkDataSet* FindOriginalPipelineInput(vtkAlgorithm* algorithm);
} // namespace KXVtk::utils
