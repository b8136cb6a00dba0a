#pragma once

#include "kxcore/DataPath.hpp"
#include "kxcore/DataStructure.hpp"
#include "kxcore/HDF5/FileIO.hpp"
#include "kxcore/Result.hpp"
#include "kxcore/kxcore_export.h"

#include <filesystem>
#include <vector>

/** Reading and writing ".voxelia" files: a DataStructure stored in HDF5. */
namespace kx::core::VOXELIA
{
/**
 * Builds the tree of the file. With preflight true, every object comes with its
 * name, type, shape and geometry parameters but arrays get no element data
 * (their stores hold zeros). Invalid if the file is not of this format.
 */
KXCORE_EXPORT Result<DataStructure> ImportDataStructureFromFile(const HDF5::FileIO& file,
                                                                bool preflight);

/** The paths with all their ancestors, once each, parents before children. */
KXCORE_EXPORT std::vector<DataPath> ExpandSelectedPathsToAncestors(
  const std::vector<DataPath>& paths);

/**
 * Copies the object at the path from a preflight tree into the target, with
 * its identifier, under the parent at the same path in the target, reading its
 * element data from the file unless preflight is true. An object already in the
 * target (one reached by several paths) gains the extra parent.
 */
KXCORE_EXPORT Result<void> FinishImportingObject(DataStructure& from, DataStructure& to,
                                                 const DataPath& path, const HDF5::FileIO& file,
                                                 bool preflight);

/**
 * Writes the structure to a file. The file is written under a temporary name
 * and renamed over the target only when complete, so a failed write never
 * destroys an existing file.
 */
KXCORE_EXPORT Result<void> WriteFile(const std::filesystem::path& filePath,
                                     const DataStructure& dataStructure);
} // namespace kx::core::VOXELIA
