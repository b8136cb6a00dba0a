#include "visualization/VXStateItemFactory.hpp"

#include "visualization/FileToVXBridge.hpp"
#include "visualization/KXToVXBridge.hpp"
#include "visualization/VXArrowAnnotationSource.hpp"
#include "visualization/VXBuildPlateAnnotationSource.hpp"
#include "visualization/VXCaptionAnnotationSource.hpp"
#include "visualization/VXCornerAnnotationSource.hpp"
#include "visualization/VXDistanceAnnotationSource.hpp"
#include "visualization/VXEllipseAnnotationSource.hpp"
#include "visualization/VXImageAnnotationSource.hpp"
#include "visualization/VXTextAnnotationSource.hpp"
#include "visualization/VXFClip.hpp"
#include "visualization/VXFSlice.hpp"
#include "visualization/VXFThreshold.hpp"
#include "visualization/VXRepresentation.hpp"

#include <vector>

namespace
{
using Kind = VXStateItemFactory::Kind;

VXStateItemFactory::Maker representationMaker(VXRepresentation::Type type)
{
  // Data views come from the data view registry, so a type registered there
  // later (volume, image slice, glyph) loads without a change here.
  return
    [type](VXPipeline* pipeline) -> QObject* { return VXRepresentation::Create(type, pipeline); };
}

std::vector<VXStateItemFactory::Entry>& table()
{
  static std::vector<VXStateItemFactory::Entry> entries = []
  {
    std::vector<VXStateItemFactory::Entry> list = {
      { "FileToVXBridge", Kind::Bridge,
        [](VXPipeline*) -> QObject* { return new FileToVXBridge(); } },
      { "KXToVXBridge", Kind::Bridge, [](VXPipeline*) -> QObject* { return new KXToVXBridge(); } },
      { "VXCornerAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXCornerAnnotationSource(); } },
      { "VXImageAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXImageAnnotationSource(); } },
      { "VXBuildPlateAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXBuildPlateAnnotationSource(); } },
      { "VXCaptionAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXCaptionAnnotationSource(); } },
      { "VXTextAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXTextAnnotationSource(); } },
      { "VXArrowAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXArrowAnnotationSource(); } },
      { "VXEllipseAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXEllipseAnnotationSource(); } },
      { "VXDistanceAnnotationSource", Kind::GlobalSource,
        [](VXPipeline*) -> QObject* { return new VXDistanceAnnotationSource(); } },
      { "VXDataSource", Kind::DataSource, {} },
      { "VXFClip", Kind::Filter, [](VXPipeline*) -> QObject* { return new VXFClip(); } },
      { "VXFSlice", Kind::Filter, [](VXPipeline*) -> QObject* { return new VXFSlice(); } },
      { "VXFThreshold", Kind::Filter, [](VXPipeline*) -> QObject* { return new VXFThreshold(); } },
      { "VXOutlineRep", Kind::Representation, representationMaker(VXRepresentation::Outline),
        VXRepresentation::Outline },
      { "VXPointsRep", Kind::Representation, representationMaker(VXRepresentation::Points),
        VXRepresentation::Points },
      { "VXWireframeRep", Kind::Representation, representationMaker(VXRepresentation::Wireframe),
        VXRepresentation::Wireframe },
      { "VXSurfaceRep", Kind::Representation, representationMaker(VXRepresentation::Surface),
        VXRepresentation::Surface },
      { "VXVolumeRep", Kind::Representation, representationMaker(VXRepresentation::Volume),
        VXRepresentation::Volume },
      // The image slice's type name ends in a blank; files carry it that way.
      { "VXImageSliceRep ", Kind::Representation, representationMaker(VXRepresentation::ImageSlice),
        VXRepresentation::ImageSlice },
      // The older name of the same data view.
      { "VXSliceRep", Kind::Representation, representationMaker(VXRepresentation::ImageSlice),
        VXRepresentation::ImageSlice },
      { "VXGlyphRep", Kind::Representation, representationMaker(VXRepresentation::Glyph),
        VXRepresentation::Glyph },
    };
    return list;
  }();
  return entries;
}

bool isAvailable(const VXStateItemFactory::Entry& entry)
{
  if (entry.kind == Kind::DataSource)
    return true;
  if (!entry.make)
    return false;
  if (entry.kind == Kind::Representation)
    return VXRepresentation::IsRegistered(
      static_cast<VXRepresentation::Type>(entry.representationType));
  return true;
}
} // namespace

QStringList VXStateItemFactory::KnownItemTypes()
{
  QStringList names;
  for (const Entry& entry : table())
    names.push_back(entry.itemType);
  return names;
}

const VXStateItemFactory::Entry* VXStateItemFactory::Find(const QString& itemType)
{
  for (const Entry& entry : table())
  {
    if (entry.itemType == itemType)
      return isAvailable(entry) ? &entry : nullptr;
  }
  return nullptr;
}

bool VXStateItemFactory::Register(const QString& itemType, Maker maker)
{
  for (Entry& entry : table())
  {
    if (entry.itemType == itemType && entry.kind != Kind::DataSource)
    {
      entry.make = std::move(maker);
      return true;
    }
  }
  return false;
}
