#pragma once

#include "kxcore/AbstractDataStore.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace kx::core
{
/**
 * An out-of-core store: the elements stay in a raw binary file and each access
 * reads or writes that file. Its storage format is not empty, which tells
 * callers that no buffer address exists.
 */
template<typename T>
class FileDataStore : public AbstractDataStore<T>
{
public:
  static constexpr const char* k_StorageFormat = "raw-file";

  /**
   * Opens (creating if asked) the file holding the elements. A created file is
   * sized to the shape and filled with zero bytes.
   */
  FileDataStore(std::filesystem::path path, ShapeType tupleShape, ShapeType componentShape,
                bool create)
    : m_Path(std::move(path))
    , m_TupleShape(std::move(tupleShape))
    , m_ComponentShape(std::move(componentShape))
  {
    if (create)
    {
      std::FILE* file = std::fopen(m_Path.string().c_str(), "wb");
      if (file == nullptr)
        throw std::runtime_error(
          fmt::format("File could not be opened for writing:\n  '{}'", m_Path.string()));
      const T zero{};
      for (usize i = 0; i < this->getSize(); i++)
        std::fwrite(&zero, sizeof(T), 1, file);
      std::fclose(file);
    }
    m_File.reset(std::fopen(m_Path.string().c_str(), "r+b"));
    if (!m_File)
      throw std::runtime_error(
        fmt::format("File could not be opened for reading:\n  '{}'", m_Path.string()));
  }

  std::string getStorageFormat() const override { return k_StorageFormat; }
  const ShapeType& getTupleShape() const override { return m_TupleShape; }
  const ShapeType& getComponentShape() const override { return m_ComponentShape; }

  T getValue(usize index) const override
  {
    T value{};
    std::fseek(m_File.get(), static_cast<long>(index * sizeof(T)), SEEK_SET);
    if (std::fread(&value, sizeof(T), 1, m_File.get()) != 1)
      return T{};
    return value;
  }

  void setValue(usize index, T value) override
  {
    std::fseek(m_File.get(), static_cast<long>(index * sizeof(T)), SEEK_SET);
    std::fwrite(&value, sizeof(T), 1, m_File.get());
    std::fflush(m_File.get());
  }

  const std::filesystem::path& getPath() const { return m_Path; }

private:
  struct FileCloser
  {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::filesystem::path m_Path;
  ShapeType m_TupleShape;
  ShapeType m_ComponentShape;
  std::unique_ptr<std::FILE, FileCloser> m_File;
};
} // namespace kx::core
