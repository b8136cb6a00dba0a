#pragma once

namespace kx::core::HDF5
{
/** Counts one dataset whose element data the file layer read (see ReadStatistics.hpp). */
void NoteDatasetRead();
} // namespace kx::core::HDF5
