#pragma once

#include "kxcore/DataStructure.hpp"
#include "kxcore/Types.hpp"

#include <cstdint>

namespace kxvtk::sample
{
/**
 * Builds a synthetic polycrystal: a cubic ImageGeom "Microstructure" whose
 * cells belong to Voronoi grains around random seeds, the grain-boundary
 * surfaces as a TriangleGeom "Grain Boundaries" and the grain centroids as a
 * VertexGeom "Grain Centroids". The same size and seed always give the same
 * structure, so the result can serve as test input.
 */
class MicrostructureGenerator
{
public:
  /** Names of what generate() builds. */
  static constexpr const char* k_ImageName = "Microstructure";
  static constexpr const char* k_CellDataName = "Cell Data";
  static constexpr const char* k_SurfaceName = "Grain Boundaries";
  static constexpr const char* k_FaceDataName = "Face Data";
  static constexpr const char* k_CentroidsName = "Grain Centroids";
  static constexpr const char* k_VertexDataName = "Vertex Data";
  static constexpr const char* k_VertexListName = "SharedVertexList";
  static constexpr const char* k_TriangleListName = "SharedTriList";

  /** What the last generate() made, for a summary. */
  struct Summary
  {
    kx::core::usize cells = 0;
    kx::core::usize grains = 0;
    kx::core::usize boundaryTriangles = 0;
    kx::core::usize boundaryVertices = 0;
  };

  /** A cube of size^3 cells (size at least 2); seed picks the grain layout. */
  explicit MicrostructureGenerator(kx::core::usize size, std::uint32_t seed = 20240611u);

  /** Builds the structure. */
  kx::core::DataStructure generate();

  const Summary& summary() const { return m_Summary; }

private:
  kx::core::usize m_Size;
  std::uint32_t m_Seed;
  Summary m_Summary;
};
} // namespace kxvtk::sample
