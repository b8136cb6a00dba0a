#pragma once

#include "KXVtkLib_export.h"

#include <vtkDataSet.h>
#include <vtkSmartPointer.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace KXVtk::utils
{
/**
 * Reads a data file into one VTK data set, choosing the reader by the file's
 * lower-case suffix. Without isImage: "vti", "vtr", "vts", "vtu", "vtp" (VTK
 * XML), "vtk" (legacy) and "stl". With isImage: "jpeg", "jpg", "png", "tif",
 * "tiff" and "bmp", giving a one-slice vtkImageData whose pixels are point data.
 * The data set's object name is the file's base name; the cells of meshes are
 * kept in 32-bit storage where the point ids fit. Null when the suffix is not
 * one of these or the file can't be read; readers' errors are not printed.
 */
KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> ReadDataSetFile(const QString& filePath,
                                                            bool isImage = false);

/** Suffixes (lower case, no dot) that ReadDataSetFile reads without and with isImage. */
KXVTKLIB_EXPORT const QStringList& DataSetSuffixes();
KXVTKLIB_EXPORT const QStringList& ImageSuffixes();
} // namespace KXVtk::utils
