#include "visualization/VXRepresentation.hpp"

#include <map>

namespace
{
std::map<VXRepresentation::Type, VXRepresentation::Factory>& registry()
{
  static std::map<VXRepresentation::Type, VXRepresentation::Factory> factories;
  return factories;
}
} // namespace

const QMap<QString, VXRepresentation::Type> VXRepresentation::k_RepresentationStringToType = {
  {"None", None},       {"Outline", Outline}, {"Points", Points}, {"Wireframe", Wireframe},
  {"Surface", Surface}, {"Volume", Volume},   {"Glyph", Glyph},   {"2D Image/Slice", ImageSlice}};

const QMap<VXRepresentation::Type, QString> VXRepresentation::k_RepresentationTypeToString = {
  {None, "None"},       {Outline, "Outline"}, {Points, "Points"}, {Wireframe, "Wireframe"},
  {Surface, "Surface"}, {Volume, "Volume"},   {Glyph, "Glyph"},   {ImageSlice, "2D Image/Slice"}};

void VXRepresentation::RegisterType(Type type, Factory factory)
{
  registry()[type] = std::move(factory);
}

VXRepresentation* VXRepresentation::Create(Type type, VXPipeline* pipeline)
{
  auto iter = registry().find(type);
  return iter == registry().end() ? nullptr : iter->second(pipeline);
}

bool VXRepresentation::IsRegistered(Type type)
{
  return registry().count(type) > 0;
}

VXRepresentation::VXRepresentation(VXPipeline* pipeline, const QString& defaultName, QObject* parent)
: VXCoreObject(parent)
, m_DefaultName(defaultName)
{
  m_BaseName = defaultName;
  m_Pipeline = pipeline;
}

VXRepresentation::~VXRepresentation() = default;

void VXRepresentation::setParentSource(VXCoreObject* parent)
{
  m_ParentSource = parent;
  setParent(parent);
}

void VXRepresentation::initializeViewWidgetSplits(VXAbstractViewWidget*, bool)
{
}
