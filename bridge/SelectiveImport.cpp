#include "bridge/VtkBridge.hpp"

#include <kxcore/HDF5/FileIO.hpp>
#include <kxcore/VoxeliaFile.hpp>

#include <filesystem>

namespace CV::VtkBridge
{
namespace
{
/** Whether the geometry path leads to (or is) the path. */
bool isPrefixOf(const kx::core::DataPath& prefix, const kx::core::DataPath& path)
{
  if (path.getLength() < prefix.getLength())
    return false;
  for (kx::core::usize depth = 0; depth < prefix.getLength(); depth++)
  {
    if (prefix[depth] != path[depth])
      return false;
  }
  return true;
}
} // namespace

std::shared_ptr<kx::core::DataStructure> selectivelyImportGeometryData(const QString& filePath,
                                                                       QString* errorMessage)
{
  namespace VOXELIA = kx::core::VOXELIA;
  const std::string utf8Path = filePath.toStdString();
  const kx::core::HDF5::FileIO file = kx::core::HDF5::FileIO::ReadFile(
    std::filesystem::path(std::u8string(utf8Path.begin(), utf8Path.end())));

  // the preflight reads the tree and geometry parameters, no array data
  kx::core::Result<kx::core::DataStructure> preflight =
    VOXELIA::ImportDataStructureFromFile(file, true);
  if (!preflight.isValid())
  {
    if (errorMessage != nullptr)
      *errorMessage = QString("The file '%1' could not be read as a VOXELIA file.").arg(filePath);
    return nullptr;
  }

  auto preflightStructure = std::make_shared<kx::core::DataStructure>(std::move(preflight.value()));
  const auto geometries = FindGeometry(preflightStructure);
  if (geometries.empty())
  {
    if (errorMessage != nullptr)
      *errorMessage =
        QString("The file '%1' was read successfully but contains no geometries to visualize.")
          .arg(filePath);
    return nullptr;
  }

  std::vector<kx::core::DataPath> geometryPaths;
  for (const auto& geometry : geometries)
  {
    for (const auto& path : geometry->getDataPaths())
      geometryPaths.push_back(path);
  }

  std::vector<kx::core::DataPath> kept;
  for (const auto& path : preflightStructure->getAllDataPaths())
  {
    for (const auto& geometryPath : geometryPaths)
    {
      if (isPrefixOf(geometryPath, path))
      {
        kept.push_back(path);
        break;
      }
    }
  }
  kept = VOXELIA::ExpandSelectedPathsToAncestors(kept);

  kx::core::DataStructure target;
  preflightStructure->resetIds(target.getNextId());
  for (const auto& path : kept)
    VOXELIA::FinishImportingObject(*preflightStructure, target, path, file, false);

  return std::make_shared<kx::core::DataStructure>(std::move(target));
}
} // namespace CV::VtkBridge
