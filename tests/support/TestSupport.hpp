#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace kxtest
{
/** A fresh folder under the build tree, removed when the test ends. */
class TempDir
{
public:
  TempDir()
  {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name =
      info != nullptr ? std::string(info->test_suite_name()) + "_" + info->name() : "tmp";
    for (char& c : name)
    {
      if (c == '/')
        c = '_';
    }
    m_Path = std::filesystem::path(KXVTK_TEST_TMP_DIR) / (name + "_" + std::to_string(::getpid()));
    std::filesystem::remove_all(m_Path);
    std::filesystem::create_directories(m_Path);
  }
  ~TempDir() { std::filesystem::remove_all(m_Path); }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return m_Path; }
  std::filesystem::path operator/(const std::string& name) const { return m_Path / name; }

private:
  std::filesystem::path m_Path;
};

/**
 * The folder of real sample files. A test that needs it fails (never skips)
 * when it is missing.
 */
inline std::filesystem::path DataDir()
{
  const char* env = std::getenv("KXVTK_DATA_DIR");
  std::filesystem::path dir = (env != nullptr && *env != '\0') ? env : KXVTK_DATA_DIR;
  return dir;
}

/** The bytes of a file; empty when it can't be read. */
inline std::string ReadBytes(const std::filesystem::path& path)
{
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

/** Replaces a file's content with the bytes. */
inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes)
{
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

inline std::filesystem::path DataFile(const std::string& name)
{
  const auto path = DataDir() / name;
  EXPECT_TRUE(std::filesystem::exists(path)) << "sample data file missing: " << path;
  return path;
}
} // namespace kxtest
