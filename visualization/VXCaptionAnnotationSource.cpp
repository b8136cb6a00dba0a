#include "visualization/VXCaptionAnnotationSource.hpp"

#include <vtkCaptionActor2D.h>
#include <vtkProperty2D.h>
#include <vtkTextActor.h>
#include <vtkTextProperty.h>

#include <algorithm>

VXCaptionAnnotationSource::VXCaptionAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Caption";
}

VXCaptionAnnotationSource::~VXCaptionAnnotationSource() = default;

nlohmann::json VXCaptionAnnotationSource::defaultSettings() const
{
  return { { "caption", "Caption" },
           { "attachment_point", { 0.0, 0.0, 0.0 } },
           { "offset", { 20.0, 20.0 } },
           { "size", { 0.25, 0.08 } },
           { "border", true },
           { "leader", true },
           { "color", { 1.0, 1.0, 1.0 } },
           { "opacity", 1.0 } };
}

std::vector<VXGlobalSource::Field> VXCaptionAnnotationSource::fields() const
{
  return {
    { "caption", "Caption", Field::Type::MultiLineText },
    { "attachment_point", "Attached To", Field::Type::Point, 0, 0, 1.0 },
    { "offset", "Offset (Pixels)", Field::Type::Point, 0, 0, 5.0 },
    { "size", "Box Size", Field::Type::Point, 0, 1, 0.01 },
    { "border", "Border", Field::Type::Flag },
    { "leader", "Leader Line", Field::Type::Flag },
    { "color", "Color", Field::Type::Color },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

void VXCaptionAnnotationSource::fitToBounds(const double bounds[6])
{
  // the caption points at the top of the middle of what is shown
  setInitialSettings(
    { { "attachment_point",
        { (bounds[0] + bounds[1]) / 2, (bounds[2] + bounds[3]) / 2, bounds[5] } } });
}

QString VXCaptionAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto caption = vtkSmartPointer<vtkCaptionActor2D>::New();
  caption->SetCaption(settings.at("caption").get<std::string>().c_str());
  auto point = Triple(settings.at("attachment_point"));
  caption->SetAttachmentPoint(point[0], point[1], point[2]);
  // the position is the box's offset from the attachment point, in pixels
  caption->SetPosition(settings.at("offset").at(0).get<double>(),
                       settings.at("offset").at(1).get<double>());
  caption->GetPosition2Coordinate()->SetCoordinateSystemToNormalizedViewport();
  caption->SetPosition2(std::clamp(settings.at("size").at(0).get<double>(), 0.01, 1.0),
                        std::clamp(settings.at("size").at(1).get<double>(), 0.01, 1.0));
  caption->SetBorder(settings.at("border").get<bool>());
  caption->SetLeader(settings.at("leader").get<bool>());
  caption->ThreeDimensionalLeaderOff();
  caption->SetPadding(4);
  auto color = Triple(settings.at("color"));
  const double opacity = settings.at("opacity").get<double>();
  caption->GetProperty()->SetColor(color.data());
  caption->GetProperty()->SetOpacity(opacity);
  vtkTextProperty* text = caption->GetCaptionTextProperty();
  text->SetColor(color.data());
  text->SetOpacity(opacity);
  text->SetShadow(false);
  text->SetBold(false);
  text->SetItalic(false);
  impl.addProp(caption);
  return {};
}
