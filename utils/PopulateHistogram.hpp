#pragma once

#include "KXVtkLib_export.h"

#include <string>

class vtkDataSet;
class vtkTable;

namespace fliozi
{
/**
 * Fills @p output with the 200-bin histogram of the named array (point data
 * first, then cell data) that the colour map editor, the volume data view and
 * the quad view show: a float column of bin centres named @p arrayName, over
 * the array's finite magnitude range, and an int column of counts named
 * @p countColumnName, from component 0's own range. Columns of those names
 * and types already in the table are reused.
 *
 * An array that isn't found leaves the table untouched. An element type that
 * can't be counted throws std::runtime_error and leaves the table as it was.
 */
KXVTKLIB_EXPORT void PopulateHistogram(vtkDataSet* input, const std::string& arrayName,
                                       const std::string& countColumnName, vtkTable* output);
} // namespace fliozi

namespace KXVtkModule::utils
{
/** The module's name for fliozi::PopulateHistogram, to which it forwards its arguments. */
KXVTKLIB_EXPORT void ComputeArrayHistogram(vtkDataSet* input, const std::string& arrayName,
                                           const std::string& countColumnName, vtkTable* output);
} // namespace KXVtkModule::utils
