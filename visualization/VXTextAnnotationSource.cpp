#include "visualization/VXTextAnnotationSource.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <vtkCoordinate.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <array>

namespace
{
struct Placement
{
  const char* name;
  double x;
  double y;
  int justification; // 0 left, 1 centred, 2 right
  int vertical;      // 0 bottom, 1 centred, 2 top
};

// a small margin keeps the text off the view's frame
constexpr std::array<Placement, 7> k_Placements = { {
  { "Upper Left", 0.02, 0.98, 0, 2 },
  { "Upper Center", 0.5, 0.98, 1, 2 },
  { "Upper Right", 0.98, 0.98, 2, 2 },
  { "Lower Left", 0.02, 0.02, 0, 0 },
  { "Lower Center", 0.5, 0.02, 1, 0 },
  { "Lower Right", 0.98, 0.02, 2, 0 },
  { "Center", 0.5, 0.5, 1, 1 },
} };
} // namespace

VXTextAnnotationSource::VXTextAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Text";
}

VXTextAnnotationSource::~VXTextAnnotationSource() = default;

nlohmann::json VXTextAnnotationSource::defaultSettings() const
{
  return {
    { "text", "Text" },         { "placement", "Upper Left" }, { "position", { 0.1, 0.1 } },
    { "font_family", "Arial" }, { "font_size", 18 },           { "bold", false },
    { "italic", false },        { "shadow", false },           { "color", { 1.0, 1.0, 1.0 } },
    { "opacity", 1.0 }
  };
}

std::vector<VXGlobalSource::Field> VXTextAnnotationSource::fields() const
{
  QStringList placements;
  for (const Placement& placement : k_Placements)
    placements << placement.name;
  placements << "Free";
  return {
    { "text", "Text", Field::Type::MultiLineText },
    { "placement", "Placement", Field::Type::Choice, 0, 0, 0, placements },
    { "position", "Free Position", Field::Type::Point, 0, 1, 0.01 },
    { "font_family", "Font", Field::Type::Choice, 0, 0, 0, { "Arial", "Courier", "Times" } },
    { "font_size", "Font Size", Field::Type::Integer, 4, 200, 1 },
    { "bold", "Bold", Field::Type::Flag },
    { "italic", "Italic", Field::Type::Flag },
    { "shadow", "Shadow", Field::Type::Flag },
    { "color", "Color", Field::Type::Color },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

QString VXTextAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto actor = vtkSmartPointer<vtkTextActor>::New();
  actor->SetInput(settings.at("text").get<std::string>().c_str());
  actor->SetTextScaleModeToNone();
  vtkTextProperty* text = actor->GetTextProperty();
  const std::string family = settings.at("font_family").get<std::string>();
  text->SetFontFamilyAsString(family == "Courier" || family == "Times" ? family.c_str() : "Arial");
  text->SetFontSize(KXVtkModule::utils::StateInt(settings.at("font_size")));
  text->SetBold(settings.at("bold").get<bool>());
  text->SetItalic(settings.at("italic").get<bool>());
  text->SetShadow(settings.at("shadow").get<bool>());
  auto color = Triple(settings.at("color"));
  text->SetColor(color.data());
  text->SetOpacity(settings.at("opacity").get<double>());

  // a free place is the text's lower left corner; a preset also aligns the text to its corner
  Placement place = { "Free", settings.at("position").at(0).get<double>(),
                      settings.at("position").at(1).get<double>(), 0, 0 };
  const std::string wanted = settings.at("placement").get<std::string>();
  for (const Placement& preset : k_Placements)
  {
    if (wanted == preset.name)
      place = preset;
  }
  text->SetJustification(place.justification);
  text->SetVerticalJustification(place.vertical);
  actor->GetPositionCoordinate()->SetCoordinateSystemToNormalizedViewport();
  actor->GetPositionCoordinate()->SetValue(place.x, place.y);
  impl.addProp(actor);
  return {};
}
