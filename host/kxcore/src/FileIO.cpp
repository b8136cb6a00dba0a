#include "kxcore/HDF5/FileIO.hpp"

#include "HDF5Handle.hpp"

#include <fmt/format.h>

#include <system_error>

namespace kx::core::HDF5
{
FileIO::FileIO() = default;

FileIO::FileIO(std::int64_t id, std::filesystem::path filePath)
  : m_Id(id)
  , m_FilePath(std::move(filePath))
{
}

FileIO::FileIO(FileIO&& other) noexcept
  : m_Id(std::exchange(other.m_Id, -1))
  , m_FilePath(std::move(other.m_FilePath))
  , m_ErrorMessage(std::move(other.m_ErrorMessage))
{
}

FileIO& FileIO::operator=(FileIO&& other) noexcept
{
  if (this != &other)
  {
    close();
    m_Id = std::exchange(other.m_Id, -1);
    m_FilePath = std::move(other.m_FilePath);
    m_ErrorMessage = std::move(other.m_ErrorMessage);
  }
  return *this;
}

FileIO::~FileIO()
{
  close();
}

void FileIO::close()
{
  if (m_Id >= 0)
    H5Fclose(static_cast<hid_t>(m_Id));
  m_Id = -1;
}

FileIO FileIO::ReadFile(const std::filesystem::path& filePath)
{
  SilenceErrorStack();
  FileIO file;
  file.m_FilePath = filePath;
  const std::string name = filePath.string();

  // Cheap checks first, so that the usual mistakes get a precise message
  // instead of HDF5's generic "unable to open file".
  std::error_code ec;
  const auto status = std::filesystem::status(filePath, ec);
  if (ec || !std::filesystem::exists(status))
  {
    file.m_ErrorMessage = fmt::format("The file '{}' does not exist.", name);
    return file;
  }
  if (std::filesystem::is_directory(status))
  {
    file.m_ErrorMessage = fmt::format("'{}' is a directory, not a file.", name);
    return file;
  }
  const auto size = std::filesystem::file_size(filePath, ec);
  if (!ec && size == 0)
  {
    file.m_ErrorMessage = fmt::format("The file '{}' is empty.", name);
    return file;
  }
  if (H5Fis_accessible(name.c_str(), H5P_DEFAULT) == 0)
  {
    file.m_ErrorMessage = fmt::format("The file '{}' is not an HDF5 file.", name);
    return file;
  }

  const hid_t id = H5Fopen(name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  if (id < 0)
  {
    const std::string detail = MostSpecificError();
    file.m_ErrorMessage =
      fmt::format("The file '{}' could not be opened as HDF5, it may be truncated or damaged{}{}.",
                  name, detail.empty() ? "" : ": ", detail);
    return file;
  }
  file.m_Id = id;
  return file;
}
} // namespace kx::core::HDF5
