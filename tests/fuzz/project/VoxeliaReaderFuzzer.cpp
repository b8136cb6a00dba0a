// libFuzzer target: any bytes, read as a .voxelia file, must give a valid or
// an invalid Result; never a crash, undefined behaviour, a leak or an HDF5
// object left open. Valid preflights are also imported object by object.
#include "kxcore/HDF5/FileIO.hpp"
#include "kxcore/VoxeliaFile.hpp"

#include <hdf5.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace
{
const std::filesystem::path& inputPath()
{
  static const std::filesystem::path path =
    std::filesystem::temp_directory_path() /
    ("voxelia-fuzz-" + std::to_string(::getpid()) + ".voxelia");
  return path;
}

void checkNothingOpen(const char* when)
{
  const ssize_t open = H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL);
  if (open != 0)
  {
    std::fprintf(stderr, "%zd HDF5 objects left open %s\n", open, when);
    std::abort();
  }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  {
    std::ofstream out(inputPath(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  {
    const auto file = kx::core::HDF5::FileIO::ReadFile(inputPath());
    auto preflight = kx::core::VOXELIA::ImportDataStructureFromFile(file, true);
    auto full = kx::core::VOXELIA::ImportDataStructureFromFile(file, false);
    if (preflight.isValid())
    {
      kx::core::DataStructure target;
      preflight.value().resetIds(target.getNextId());
      for (const auto& path :
           kx::core::VOXELIA::ExpandSelectedPathsToAncestors(preflight.value().getAllDataPaths()))
        kx::core::VOXELIA::FinishImportingObject(preflight.value(), target, path, file, false);
    }
  }
  checkNothingOpen("after reading");
  return 0;
}
