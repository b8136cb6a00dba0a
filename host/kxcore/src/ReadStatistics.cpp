#include "kxcore/HDF5/ReadStatistics.hpp"

#include "HDF5DatasetReads.hpp"

#include <atomic>

namespace kx::core::HDF5
{
namespace
{
std::atomic<std::uint64_t> s_DatasetReads{ 0 };
} // namespace

void NoteDatasetRead()
{
  s_DatasetReads.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t GetDatasetReadCount()
{
  return s_DatasetReads.load(std::memory_order_relaxed);
}

void ResetDatasetReadCount()
{
  s_DatasetReads.store(0, std::memory_order_relaxed);
}
} // namespace kx::core::HDF5
