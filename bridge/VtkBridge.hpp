#pragma once

#include "KXVtkLib_export.h"
#include "bridge/WrappedGeometry.hpp"

#include <kxcore/DataObject.hpp>
#include <kxcore/DataStructure.hpp>
#include <kxcore/IGeometry.hpp>

#include <QtCore/QString>

#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkSmartPointer.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/**
 * Presents the host's arrays and geometries to VTK. Attribute arrays and vertex
 * coordinates are shared with the host (no copy); connectivity is copied once
 * into VTK's 64-bit cell storage.
 */
namespace CV::VtkBridge
{
/**
 * A VTK array over the object's store, or empty when the object is not an
 * array of a presentable element type or its store is not in memory.
 */
KXVTKLIB_EXPORT vtkSmartPointer<vtkDataArray> WrapDataArray(
  const std::shared_ptr<kx::core::DataObject>& object);
/** Looks the object up by identifier, then as above. */
KXVTKLIB_EXPORT vtkSmartPointer<vtkDataArray> WrapDataArray(kx::core::DataStructure& dataStructure,
                                                            std::uint64_t id);

/**
 * The VTK data set for one geometry: image data, rectilinear grid, poly data
 * or unstructured grid by geometry type, with the geometry's attribute arrays
 * whose tuple count fits as cell or point data. Empty for an empty input.
 */
template<typename G>
KXVTKLIB_EXPORT vtkSmartPointer<vtkDataSet> CreateFromGeom(const std::shared_ptr<G>& geometry);

/** The data set and the geometry's only path; an empty data set for a geometry with none or several
 * paths. */
KXVTKLIB_EXPORT std::shared_ptr<WrappedGeometry> WrapGeometry(
  const std::shared_ptr<kx::core::IGeometry>& geometry);

/** Identifiers of the geometry's cell arrays and point arrays, ascending. */
KXVTKLIB_EXPORT std::pair<std::vector<std::uint64_t>, std::vector<std::uint64_t>>
GetCellAndPointDataIds(const std::shared_ptr<kx::core::IGeometry>& geometry);

/** All geometries of the structure, depth first; a geometry inside a geometry is not searched. */
KXVTKLIB_EXPORT std::vector<std::shared_ptr<kx::core::IGeometry>> FindGeometry(
  std::shared_ptr<kx::core::DataStructure>& dataStructure);
/** The first geometry of that exact name, or empty. */
KXVTKLIB_EXPORT std::shared_ptr<kx::core::IGeometry> FindGeometry(
  std::shared_ptr<kx::core::DataStructure>& dataStructure, const std::string& name);

/** Adds an "Original Cell Index" cell array to image data and rectilinear grids, without per-cell
 * memory. */
KXVTKLIB_EXPORT void AddOriginalCellIdsArray(vtkDataSet* dataSet);

/**
 * Reads only the geometries of a host data file, with the objects below and
 * above them; nothing else in the file is read from disk. On failure returns
 * empty and, if errorMessage is given, says why.
 */
KXVTKLIB_EXPORT std::shared_ptr<kx::core::DataStructure> selectivelyImportGeometryData(
  const QString& filePath, QString* errorMessage);
} // namespace CV::VtkBridge
