#include "visualization/VXCornerAnnotationSource.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <vtkCornerAnnotation.h>
#include <vtkTextProperty.h>

VXCornerAnnotationSource::VXCornerAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Corner Annotation";
}

VXCornerAnnotationSource::~VXCornerAnnotationSource() = default;

nlohmann::json VXCornerAnnotationSource::defaultSettings() const
{
  return { { "upper_left_text", "" },  { "upper_right_text", "" }, { "lower_left_text", "" },
           { "lower_right_text", "" }, { "font_size", 14 },        { "color", { 1.0, 1.0, 1.0 } },
           { "opacity", 1.0 } };
}

std::vector<VXGlobalSource::Field> VXCornerAnnotationSource::fields() const
{
  return {
    { "upper_left_text", "Upper Left", Field::Type::MultiLineText },
    { "upper_right_text", "Upper Right", Field::Type::MultiLineText },
    { "lower_left_text", "Lower Left", Field::Type::MultiLineText },
    { "lower_right_text", "Lower Right", Field::Type::MultiLineText },
    { "font_size", "Font Size", Field::Type::Integer, 4, 200, 1 },
    { "color", "Color", Field::Type::Color },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

QString VXCornerAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto corners = vtkSmartPointer<vtkCornerAnnotation>::New();
  corners->SetText(vtkCornerAnnotation::LowerLeft,
                   settings.at("lower_left_text").get<std::string>().c_str());
  corners->SetText(vtkCornerAnnotation::LowerRight,
                   settings.at("lower_right_text").get<std::string>().c_str());
  corners->SetText(vtkCornerAnnotation::UpperLeft,
                   settings.at("upper_left_text").get<std::string>().c_str());
  corners->SetText(vtkCornerAnnotation::UpperRight,
                   settings.at("upper_right_text").get<std::string>().c_str());
  // the annotation scales its text with the view unless both limits hold it to one size
  const int size = KXVtkModule::utils::StateInt(settings.at("font_size"));
  corners->SetMinimumFontSize(size);
  corners->SetMaximumFontSize(size);
  corners->SetLinearFontScaleFactor(1.0);
  corners->SetNonlinearFontScaleFactor(1.0);
  auto color = Triple(settings.at("color"));
  corners->GetTextProperty()->SetColor(color.data());
  corners->GetTextProperty()->SetOpacity(settings.at("opacity").get<double>());
  impl.addProp(corners);
  return {};
}
