#include "visualization/VXEllipseAnnotationSource.hpp"

#include <vtkActor.h>
#include <vtkEllipseArcSource.h>
#include <vtkMath.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

#include <algorithm>

VXEllipseAnnotationSource::VXEllipseAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Ellipse";
}

VXEllipseAnnotationSource::~VXEllipseAnnotationSource() = default;

nlohmann::json VXEllipseAnnotationSource::defaultSettings() const
{
  return { { "center", { 0.0, 0.0, 0.0 } },
           { "normal", { 0.0, 0.0, 1.0 } },
           { "major_radius_vector", { 1.0, 0.0, 0.0 } },
           { "ratio", 0.5 },
           { "color", { 0.2, 1.0, 0.4 } },
           { "line_width", 2.0 },
           { "opacity", 1.0 } };
}

std::vector<VXGlobalSource::Field> VXEllipseAnnotationSource::fields() const
{
  return {
    { "center", "Center", Field::Type::Point, 0, 0, 1.0 },
    { "normal", "Normal", Field::Type::Point, 0, 0, 0.1 },
    { "major_radius_vector", "Major Radius Vector", Field::Type::Point, 0, 0, 1.0 },
    { "ratio", "Minor/Major Ratio", Field::Type::Real, 0.001, 1.0, 0.05 },
    { "color", "Color", Field::Type::Color },
    { "line_width", "Line Width", Field::Type::Real, 0.5, 20.0, 0.5 },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

void VXEllipseAnnotationSource::fitToBounds(const double bounds[6])
{
  // around what is shown, in the plane of its middle
  const double dx = bounds[1] - bounds[0];
  const double dy = bounds[3] - bounds[2];
  const double major = std::max(dx, dy) * 0.6;
  setInitialSettings(
    { { "center",
        { (bounds[0] + bounds[1]) / 2, (bounds[2] + bounds[3]) / 2, (bounds[4] + bounds[5]) / 2 } },
      { "major_radius_vector",
        dx >= dy ? nlohmann::json{ major, 0.0, 0.0 } : nlohmann::json{ 0.0, major, 0.0 } },
      { "ratio", major > 0.0 ? std::clamp(std::min(dx, dy) * 0.6 / major, 0.05, 1.0) : 0.5 } });
}

QString VXEllipseAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto normal = Triple(settings.at("normal"));
  auto major = Triple(settings.at("major_radius_vector"));
  double across[3];
  vtkMath::Cross(normal.data(), major.data(), across);
  // the major axis must lie across the normal, or the ellipse has no plane
  if (vtkMath::Norm(across) <= 1e-12 * std::max(1.0, vtkMath::Norm(major.data())))
    return QString("The ellipse '%1' needs a non-zero normal and a major radius vector that is not "
                   "parallel to it; it is not shown.")
      .arg(name());

  auto center = Triple(settings.at("center"));
  auto ellipse = vtkSmartPointer<vtkEllipseArcSource>::New();
  ellipse->SetCenter(center.data());
  ellipse->SetNormal(normal.data());
  ellipse->SetMajorRadiusVector(major.data());
  ellipse->SetRatio(settings.at("ratio").get<double>());
  ellipse->SetStartAngle(0.0);
  ellipse->SetSegmentAngle(360.0);
  ellipse->SetResolution(180);
  ellipse->SetClose(true);
  auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  mapper->SetInputConnection(ellipse->GetOutputPort());
  auto actor = vtkSmartPointer<vtkActor>::New();
  actor->SetMapper(mapper);
  auto color = Triple(settings.at("color"));
  actor->GetProperty()->SetColor(color.data());
  actor->GetProperty()->SetLineWidth(settings.at("line_width").get<double>());
  actor->GetProperty()->SetOpacity(settings.at("opacity").get<double>());
  actor->GetProperty()->LightingOff();
  impl.addProp(actor);
  return {};
}
