#include "visualization/VXBuildPlateAnnotationSource.hpp"

#include <vtkActor.h>
#include <vtkCubeSource.h>
#include <vtkPlaneSource.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

#include <algorithm>
#include <cmath>

VXBuildPlateAnnotationSource::VXBuildPlateAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Build Plate";
}

VXBuildPlateAnnotationSource::~VXBuildPlateAnnotationSource() = default;

nlohmann::json VXBuildPlateAnnotationSource::defaultSettings() const
{
  return { { "center", { 0.0, 0.0, 0.0 } },
           { "width", 100.0 },
           { "depth", 100.0 },
           { "thickness", 2.0 },
           { "color", { 0.62, 0.64, 0.68 } },
           { "opacity", 1.0 },
           { "show_grid", true },
           { "grid_spacing", 10.0 } };
}

std::vector<VXGlobalSource::Field> VXBuildPlateAnnotationSource::fields() const
{
  return {
    { "center", "Top Center", Field::Type::Point, 0, 0, 1.0 },
    { "width", "Width (X)", Field::Type::Real, 1e-6, 1e9, 1.0 },
    { "depth", "Depth (Y)", Field::Type::Real, 1e-6, 1e9, 1.0 },
    { "thickness", "Thickness (Z)", Field::Type::Real, 1e-6, 1e9, 0.5 },
    { "color", "Color", Field::Type::Color },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
    { "show_grid", "Show Grid", Field::Type::Flag },
    { "grid_spacing", "Grid Spacing", Field::Type::Real, 1e-6, 1e9, 1.0 },
  };
}

void VXBuildPlateAnnotationSource::fitToBounds(const double bounds[6])
{
  // the part stands on the plate: its top face at the part's lowest z, with a margin around it
  const double dx = bounds[1] - bounds[0];
  const double dy = bounds[3] - bounds[2];
  const double size = std::max({ dx, dy, 1e-3 });
  setInitialSettings(
    { { "center", { (bounds[0] + bounds[1]) / 2, (bounds[2] + bounds[3]) / 2, bounds[4] } },
      { "width", std::max(dx, size * 0.2) * 1.5 },
      { "depth", std::max(dy, size * 0.2) * 1.5 },
      { "thickness", size * 0.03 },
      { "grid_spacing", size / 10.0 } });
}

QString VXBuildPlateAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  auto top = Triple(settings.at("center"));
  const double width = settings.at("width").get<double>();
  const double depth = settings.at("depth").get<double>();
  const double thickness = settings.at("thickness").get<double>();
  auto color = Triple(settings.at("color"));
  const double opacity = settings.at("opacity").get<double>();

  auto slab = vtkSmartPointer<vtkCubeSource>::New();
  slab->SetCenter(top[0], top[1], top[2] - thickness / 2);
  slab->SetXLength(width);
  slab->SetYLength(depth);
  slab->SetZLength(thickness);
  auto slabMapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  slabMapper->SetInputConnection(slab->GetOutputPort());
  auto slabActor = vtkSmartPointer<vtkActor>::New();
  slabActor->SetMapper(slabMapper);
  slabActor->GetProperty()->SetColor(color.data());
  slabActor->GetProperty()->SetOpacity(opacity);
  slabActor->PickableOff();
  impl.addProp(slabActor);

  if (!settings.at("show_grid").get<bool>())
    return {};
  // a grid of at most 200 cells a side: a finer one would be a grey blur
  const double spacing = settings.at("grid_spacing").get<double>();
  // clamped as doubles: a huge plate over a tiny spacing does not fit an int
  const auto cells = [spacing](double length)
  {
    const double count = std::ceil(length / spacing);
    return count >= 200 ? 200 : count >= 1 ? static_cast<int>(count) : 1;
  };
  const int columns = cells(width);
  const int rows = cells(depth);
  // lifted a little so the lines are not lost in the top face
  const double lift = std::max(width, depth) * 1e-3;
  auto grid = vtkSmartPointer<vtkPlaneSource>::New();
  grid->SetOrigin(top[0] - width / 2, top[1] - depth / 2, top[2] + lift);
  grid->SetPoint1(top[0] + width / 2, top[1] - depth / 2, top[2] + lift);
  grid->SetPoint2(top[0] - width / 2, top[1] + depth / 2, top[2] + lift);
  grid->SetResolution(columns, rows);
  auto gridMapper = vtkSmartPointer<vtkPolyDataMapper>::New();
  gridMapper->SetInputConnection(grid->GetOutputPort());
  auto gridActor = vtkSmartPointer<vtkActor>::New();
  gridActor->SetMapper(gridMapper);
  gridActor->GetProperty()->SetRepresentationToWireframe();
  gridActor->GetProperty()->SetColor(color[0] * 0.6, color[1] * 0.6, color[2] * 0.6);
  gridActor->GetProperty()->SetOpacity(opacity);
  gridActor->GetProperty()->LightingOff();
  gridActor->PickableOff();
  impl.addProp(gridActor);
  return {};
}
