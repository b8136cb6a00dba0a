#pragma once

namespace KXVtkModule::constants
{
/**
 * The plane an image slice shows. The value is what state files store; the
 * slice number runs along z for XY, along x for YZ and along y for XZ.
 */
enum SliceDirection : int
{
  XY = 0,
  YZ = 1,
  XZ = 2
};
} // namespace KXVtkModule::constants
