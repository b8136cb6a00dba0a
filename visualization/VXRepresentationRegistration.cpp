#include "visualization/VXGlyphRep.hpp"
#include "visualization/VXImageSliceRep.hpp"
#include "visualization/VXOutlineRep.hpp"
#include "visualization/VXPointsRep.hpp"
#include "visualization/VXSurfaceRep.hpp"
#include "visualization/VXVolumeRep.hpp"
#include "visualization/VXWireframeRep.hpp"

void VXRepresentation::RegisterBuiltInRepresentations()
{
  RegisterType(Outline, [](VXPipeline* pipeline) { return new VXOutlineRep(pipeline); });
  RegisterType(Points, [](VXPipeline* pipeline) { return new VXPointsRep(pipeline); });
  RegisterType(Wireframe, [](VXPipeline* pipeline) { return new VXWireframeRep(pipeline); });
  RegisterType(Surface, [](VXPipeline* pipeline) { return new VXSurfaceRep(pipeline); });
  RegisterType(Volume, [](VXPipeline* pipeline) { return new VXVolumeRep(pipeline); });
  RegisterType(ImageSlice, [](VXPipeline* pipeline) { return new VXImageSliceRep(pipeline); });
  RegisterType(Glyph, [](VXPipeline* pipeline) { return new VXGlyphRep(pipeline); });
}

namespace
{
// runs when the library is loaded, so every process that can make a pipeline has the built-in data
// views; hosts and tests may register their own classes over them afterwards
[[maybe_unused]] const bool s_BuiltInRepresentationsRegistered = []()
{
  VXRepresentation::RegisterBuiltInRepresentations();
  return true;
}();
} // namespace
