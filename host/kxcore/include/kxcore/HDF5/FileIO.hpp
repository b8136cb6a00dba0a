#pragma once

#include "kxcore/kxcore_export.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace kx::core::HDF5
{
/**
 * An open HDF5 file. Move-only; closes the file when destroyed. A handle whose
 * open failed is unusable: isValid() is false and every read through it fails.
 */
class KXCORE_EXPORT FileIO
{
public:
  /** Opens an existing file for reading; an unusable handle if that fails. */
  static FileIO ReadFile(const std::filesystem::path& filePath);

  FileIO();
  FileIO(FileIO&& other) noexcept;
  FileIO& operator=(FileIO&& other) noexcept;
  FileIO(const FileIO&) = delete;
  FileIO& operator=(const FileIO&) = delete;
  ~FileIO();

  bool isValid() const { return m_Id >= 0; }
  /** The HDF5 file identifier (hid_t), negative when unusable. */
  std::int64_t getId() const { return m_Id; }
  const std::filesystem::path& getFilePath() const { return m_FilePath; }
  /** Why the open failed (missing, empty, not HDF5, damaged); empty for a usable handle. */
  const std::string& getErrorMessage() const { return m_ErrorMessage; }

private:
  FileIO(std::int64_t id, std::filesystem::path filePath);
  void close();

  std::int64_t m_Id = -1;
  std::filesystem::path m_FilePath;
  std::string m_ErrorMessage;
};
} // namespace kx::core::HDF5
