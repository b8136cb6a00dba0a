// kxvtk-sample OUT.voxelia [--size N]: writes a synthetic polycrystal (see
// MicrostructureGenerator) as a .voxelia file.
#include "MicrostructureGenerator.hpp"

#include "kxcore/VoxeliaFile.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

namespace
{
constexpr kx::core::usize k_DefaultSize = 96;
constexpr kx::core::usize k_MinSize = 2;
constexpr kx::core::usize k_MaxSize = 512;

int usage(const std::string& problem)
{
  fmt::print(stderr,
             "kxvtk-sample: {}\nusage: kxvtk-sample OUT.voxelia [--size N]   (N from {} to {}, "
             "default {})\n",
             problem, k_MinSize, k_MaxSize, k_DefaultSize);
  return 2;
}
} // namespace

int main(int argc, char** argv)
{
  std::string output;
  kx::core::usize size = k_DefaultSize;
  for (int i = 1; i < argc; i++)
  {
    const std::string_view arg = argv[i];
    if (arg == "--size")
    {
      if (i + 1 >= argc)
        return usage("--size needs a value");
      const std::string_view value = argv[++i];
      kx::core::usize parsed = 0;
      const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), parsed);
      if (ec != std::errc() || end != value.data() + value.size() || parsed < k_MinSize ||
          parsed > k_MaxSize)
        return usage(fmt::format("invalid size '{}'", value));
      size = parsed;
    }
    else if (arg == "-h" || arg == "--help")
    {
      return usage("writes a synthetic polycrystal microstructure");
    }
    else if (!arg.empty() && arg.front() == '-')
    {
      return usage(fmt::format("unknown option '{}'", arg));
    }
    else if (output.empty())
    {
      output = arg;
    }
    else
    {
      return usage(fmt::format("unexpected argument '{}'", arg));
    }
  }
  if (output.empty())
    return usage("no output file given");

  kxvtk::sample::MicrostructureGenerator generator(size);
  const kx::core::DataStructure ds = generator.generate();
  const auto result = kx::core::VOXELIA::WriteFile(output, ds);
  if (!result.isValid())
  {
    fmt::print(stderr, "kxvtk-sample: {}\n",
               result.errors().empty() ? std::string("writing failed")
                                       : result.errors().front().message);
    return 1;
  }
  const auto& summary = generator.summary();
  fmt::print(
    "Wrote {}: {}^3 cells, {} grains, {} boundary triangles on {} vertices, {} grain centroids\n",
    output, size, summary.grains, summary.boundaryTriangles, summary.boundaryVertices,
    summary.grains);
  return 0;
}
