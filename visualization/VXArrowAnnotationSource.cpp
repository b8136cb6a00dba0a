#include "visualization/VXArrowAnnotationSource.hpp"

#include <vtkActor.h>
#include <vtkArrowSource.h>
#include <vtkMath.h>
#include <vtkMatrix4x4.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

#include <algorithm>

VXArrowAnnotationSource::VXArrowAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Arrow";
}

VXArrowAnnotationSource::~VXArrowAnnotationSource() = default;

nlohmann::json VXArrowAnnotationSource::defaultSettings() const
{
  return { { "start_point", { 0.0, 0.0, 0.0 } },
           { "end_point", { 1.0, 0.0, 0.0 } },
           { "tip_length", 0.25 },
           { "tip_radius", 0.08 },
           { "shaft_radius", 0.025 },
           { "color", { 1.0, 0.85, 0.2 } },
           { "opacity", 1.0 } };
}

std::vector<VXGlobalSource::Field> VXArrowAnnotationSource::fields() const
{
  return {
    { "start_point", "Start", Field::Type::Point, 0, 0, 1.0 },
    { "end_point", "End (Tip)", Field::Type::Point, 0, 0, 1.0 },
    { "tip_length", "Tip Length", Field::Type::Real, 0.01, 0.9, 0.01 },
    { "tip_radius", "Tip Radius", Field::Type::Real, 0.001, 0.5, 0.01 },
    { "shaft_radius", "Shaft Radius", Field::Type::Real, 0.001, 0.5, 0.005 },
    { "color", "Color", Field::Type::Color },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

void VXArrowAnnotationSource::fitToBounds(const double bounds[6])
{
  // from outside the upper right corner to the middle of what is shown
  const double centre[3] = { (bounds[0] + bounds[1]) / 2, (bounds[2] + bounds[3]) / 2,
                             (bounds[4] + bounds[5]) / 2 };
  const double dx = bounds[1] - bounds[0];
  const double dy = bounds[3] - bounds[2];
  setInitialSettings({ { "start_point", { bounds[1] + 0.3 * dx, bounds[3] + 0.3 * dy, centre[2] } },
                       { "end_point", { centre[0], centre[1], centre[2] } } });
}

QString VXArrowAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto start = Triple(settings.at("start_point"));
  auto end = Triple(settings.at("end_point"));
  double axis[3] = { end[0] - start[0], end[1] - start[1], end[2] - start[2] };
  const double length = vtkMath::Normalize(axis);
  if (!(length > 0.0))
    return QString("The arrow '%1' has the same start and end point; it is not shown.").arg(name());

  auto arrow = vtkSmartPointer<vtkArrowSource>::New();
  arrow->SetTipResolution(32);
  arrow->SetShaftResolution(32);
  arrow->SetTipLength(settings.at("tip_length").get<double>());
  arrow->SetTipRadius(settings.at("tip_radius").get<double>());
  arrow->SetShaftRadius(
    std::min(settings.at("shaft_radius").get<double>(), settings.at("tip_radius").get<double>()));

  // the source points along x with length 1: turn x onto the axis and scale all three by the length
  double normal[3];
  double binormal[3];
  vtkMath::Perpendiculars(axis, normal, binormal, 0.0);
  auto placement = vtkSmartPointer<vtkMatrix4x4>::New();
  for (int row = 0; row < 3; row++)
  {
    placement->SetElement(row, 0, axis[row] * length);
    placement->SetElement(row, 1, normal[row] * length);
    placement->SetElement(row, 2, binormal[row] * length);
    placement->SetElement(row, 3, start[row]);
  }
  auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  mapper->SetInputConnection(arrow->GetOutputPort());
  auto actor = vtkSmartPointer<vtkActor>::New();
  actor->SetMapper(mapper);
  actor->SetUserMatrix(placement);
  auto color = Triple(settings.at("color"));
  actor->GetProperty()->SetColor(color.data());
  actor->GetProperty()->SetOpacity(settings.at("opacity").get<double>());
  // the side of the tip that faces away from the light keeps its colour instead of going black
  actor->GetProperty()->SetAmbient(0.3);
  impl.addProp(actor);
  return {};
}
