#include "visualization/VXDistanceAnnotationSource.hpp"

#include "visualization/VXSlicePlanePointPlacer.hpp"

#include <QtCore/QRegularExpression>

#include <vtkAxisActor2D.h>
#include <vtkDistanceRepresentation2D.h>
#include <vtkDistanceWidget.h>
#include <vtkFocalPlanePointPlacer.h>
#include <vtkImageSlice.h>
#include <vtkPointHandleRepresentation3D.h>
#include <vtkProp.h>
#include <vtkPropCollection.h>
#include <vtkProperty.h>
#include <vtkProperty2D.h>
#include <vtkRenderer.h>
#include <vtkTextProperty.h>
#include <vtkMath.h>

#include <cmath>

namespace
{
/** The first visible image slice the renderer shows, or null. */
vtkImageSlice* shownPicture(vtkRenderer* renderer)
{
  vtkPropCollection* props = renderer->GetViewProps();
  vtkCollectionSimpleIterator iter;
  props->InitTraversal(iter);
  while (vtkProp* prop = props->GetNextProp(iter))
  {
    if (auto* slice = vtkImageSlice::SafeDownCast(prop); slice != nullptr && slice->GetVisibility())
      return slice;
  }
  return nullptr;
}
} // namespace

VXDistanceAnnotationSource::VXDistanceAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Ruler";
}

VXDistanceAnnotationSource::~VXDistanceAnnotationSource() = default;

nlohmann::json VXDistanceAnnotationSource::defaultSettings() const
{
  return { { "point1", { 0.0, 0.0, 0.0 } },
           { "point2", { 1.0, 0.0, 0.0 } },
           { "color", { 1.0, 1.0, 0.3 } },
           { "label_format", "%-#6.3g" },
           { "snap_to_pixel_corner", true } };
}

std::vector<VXGlobalSource::Field> VXDistanceAnnotationSource::fields() const
{
  return {
    { "point1", "Point 1", Field::Type::Point, 0, 0, 1.0 },
    { "point2", "Point 2", Field::Type::Point, 0, 0, 1.0 },
    { "color", "Color", Field::Type::Color },
    { "label_format", "Label Format", Field::Type::Text },
    { "snap_to_pixel_corner", "Snap to Pixel Corners", Field::Type::Flag },
  };
}

void VXDistanceAnnotationSource::fitToBounds(const double bounds[6])
{
  // along the bottom front edge of what is shown
  setInitialSettings({ { "point1", { bounds[0], bounds[2], bounds[4] } },
                       { "point2", { bounds[1], bounds[2], bounds[4] } } });
}

QString VXDistanceAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  vtkRenderer* renderer = impl.renderer();
  if (renderer == nullptr || impl.interactor() == nullptr)
    return {};
  const nlohmann::json& settings = impl.settings();

  // on an image picture the handles sit on its pixels; elsewhere they move in the plane through
  // the camera's focal point, square to the view direction
  vtkSmartPointer<vtkPointPlacer> placer;
  if (vtkImageSlice* picture = shownPicture(renderer))
  {
    auto slicePlacer = vtkSmartPointer<VXSlicePlanePointPlacer>::New();
    slicePlacer->setPicture(renderer, picture);
    slicePlacer->setSnapToPixelCorner(settings.at("snap_to_pixel_corner").get<bool>());
    placer = slicePlacer;
  }
  else
  {
    placer = vtkSmartPointer<vtkFocalPlanePointPlacer>::New();
  }

  auto color = Triple(settings.at("color"));
  auto handle = vtkSmartPointer<vtkPointHandleRepresentation3D>::New();
  handle->SetPointPlacer(placer);
  handle->GetProperty()->SetColor(color.data());
  handle->SetHandleSize(12);
  auto rep = vtkSmartPointer<vtkDistanceRepresentation2D>::New();
  rep->SetHandleRepresentation(handle);
  rep->InstantiateHandleRepresentation();
  for (vtkHandleRepresentation* end :
       { rep->GetPoint1Representation(), rep->GetPoint2Representation() })
  {
    end->SetPointPlacer(placer);
    // a handle goes to the point under the pointer, not to where it was plus the pointer's step:
    // steps snapped one by one would drift from the pointer (the copy of the template above does
    // not carry this)
    if (auto* point = vtkPointHandleRepresentation3D::SafeDownCast(end))
      point->SmoothMotionOff();
  }
  // the format goes to printf with one number: anything else would read memory that is not there
  static const QRegularExpression numberFormat(
    R"(^(?:[^%]|%%){0,40}%[-+ #0]{0,5}[0-9]{0,2}(?:\.[0-9]{1,2})?[eEfFgG](?:[^%]|%%){0,40}$)");
  const QString format = QString::fromStdString(settings.at("label_format").get<std::string>());
  QString error;
  if (numberFormat.match(format).hasMatch())
    rep->SetLabelFormat(format.toUtf8().constData());
  else
    error =
      QString("The label format '%1' of the ruler '%2' is not a format for one number such as "
              "%-#6.3g; the default format is used.")
        .arg(format, name());
  rep->GetAxisProperty()->SetColor(color.data());
  rep->GetAxis()->GetTitleTextProperty()->SetColor(color.data());
  rep->GetAxis()->GetLabelTextProperty()->SetColor(color.data());

  auto widget = vtkSmartPointer<vtkDistanceWidget>::New();
  widget->SetRepresentation(rep);
  VXGlobalSourcePimpl* target = &impl;
  vtkDistanceRepresentation2D* shown = rep;
  impl.setWidget(widget,
                 [this, target, shown]()
                 {
                   double p1[3];
                   double p2[3];
                   shown->GetPoint1WorldPosition(p1);
                   shown->GetPoint2WorldPosition(p2);
                   storeInteraction(*target, { { "point1", { p1[0], p1[1], p1[2] } },
                                               { "point2", { p2[0], p2[1], p2[2] } } });
                 });
  // placed from the settings, not by clicks
  widget->SetWidgetStateToManipulate();
  auto p1 = Triple(settings.at("point1"));
  auto p2 = Triple(settings.at("point2"));
  rep->SetPoint1WorldPosition(p1.data());
  rep->SetPoint2WorldPosition(p2.data());
  rep->BuildRepresentation();
  return error;
}

double VXDistanceAnnotationSource::distance(VXAbstractViewWidget* view) const
{
  VXGlobalSourcePimpl* impl = implementation(view);
  if (impl == nullptr)
    return 0.0;
  auto p1 = Triple(impl->settings().at("point1"));
  auto p2 = Triple(impl->settings().at("point2"));
  return std::sqrt(vtkMath::Distance2BetweenPoints(p1.data(), p2.data()));
}
