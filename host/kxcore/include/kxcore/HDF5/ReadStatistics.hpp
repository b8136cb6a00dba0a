#pragma once

#include "kxcore/kxcore_export.h"

#include <cstdint>

namespace kx::core::HDF5
{
/**
 * Counts the datasets whose element data the file layer has read since the
 * last reset (attributes and metadata are not counted). Lets callers check
 * that a selective import touches only what it selected.
 */
KXCORE_EXPORT std::uint64_t GetDatasetReadCount();
KXCORE_EXPORT void ResetDatasetReadCount();
} // namespace kx::core::HDF5
