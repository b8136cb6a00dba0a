#include "visualization/VXImageAnnotationSource.hpp"

#include <QtCore/QFileInfo>
#include <QtGui/QImage>
#include <QtGui/QImageReader>

#include <vtkImageData.h>
#include <vtkLogoRepresentation.h>
#include <vtkLogoWidget.h>
#include <vtkProperty2D.h>

#include <algorithm>
#include <cstring>

VXImageAnnotationSource::VXImageAnnotationSource(QObject* parent)
  : VXGlobalSource(parent)
{
  m_BaseName = "Image";
}

VXImageAnnotationSource::~VXImageAnnotationSource() = default;

nlohmann::json VXImageAnnotationSource::defaultSettings() const
{
  return { { "file_path", "" },
           { "position", { 0.78, 0.02 } },
           { "size", { 0.2, 0.2 } },
           { "opacity", 1.0 } };
}

std::vector<VXGlobalSource::Field> VXImageAnnotationSource::fields() const
{
  return {
    { "file_path", "Image File", Field::Type::ImageFile },
    { "position", "Position", Field::Type::Point, 0, 1, 0.01 },
    { "size", "Size", Field::Type::Point, 0, 1, 0.01 },
    { "opacity", "Opacity", Field::Type::Real, 0, 1, 0.05 },
  };
}

QString VXImageAnnotationSource::build(VXGlobalSourcePimpl& impl)
{
  const nlohmann::json& settings = impl.settings();
  const QString path = QString::fromStdString(settings.at("file_path").get<std::string>());
  if (path.isEmpty())
    return {};
  if (!QFileInfo(path).isFile())
    return QString("Cannot show the image '%1': the file does not exist.").arg(path);

  // Qt decodes the file: it refuses a broken one with an error, where VTK's PNG reader brings the
  // process down
  QImageReader reader(path);
  reader.setAutoTransform(true);
  const QImage decoded = reader.read();
  if (decoded.isNull())
    return QString(
             "Cannot show the image '%1': the file is not a PNG, JPEG, BMP or TIFF image that "
             "can be read.")
      .arg(path);
  const QImage rgba = decoded.convertToFormat(QImage::Format_RGBA8888);
  auto picture = vtkSmartPointer<vtkImageData>::New();
  picture->SetDimensions(rgba.width(), rgba.height(), 1);
  picture->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
  auto* pixels = static_cast<unsigned char*>(picture->GetScalarPointer());
  const auto rowBytes = static_cast<std::size_t>(rgba.width()) * 4;
  // VTK's rows run bottom up
  for (int row = 0; row < rgba.height(); row++)
    std::memcpy(pixels + static_cast<std::size_t>(row) * rowBytes,
                rgba.constScanLine(rgba.height() - 1 - row), rowBytes);

  auto rep = vtkSmartPointer<vtkLogoRepresentation>::New();
  rep->SetImage(picture);
  rep->GetImageProperty()->SetOpacity(settings.at("opacity").get<double>());
  rep->SetShowBorderToActive();
  const double x = std::clamp(settings.at("position").at(0).get<double>(), 0.0, 1.0);
  const double y = std::clamp(settings.at("position").at(1).get<double>(), 0.0, 1.0);
  rep->SetPosition(x, y);
  rep->SetPosition2(std::clamp(settings.at("size").at(0).get<double>(), 0.01, 1.0),
                    std::clamp(settings.at("size").at(1).get<double>(), 0.01, 1.0));
  rep->SetRenderer(impl.renderer());

  if (impl.interactor() == nullptr)
  {
    impl.addProp(rep);
    return {};
  }
  auto widget = vtkSmartPointer<vtkLogoWidget>::New();
  widget->SetRepresentation(rep);
  widget->SelectableOff();
  widget->ResizableOn();
  vtkLogoRepresentation* shown = rep;
  VXGlobalSourcePimpl* target = &impl;
  // a drag or a resize moves the logo: the settings keep where it went
  impl.setWidget(widget,
                 [this, shown, target]()
                 {
                   const double* position = shown->GetPosition();
                   const double* size = shown->GetPosition2();
                   storeInteraction(*target, { { "position", { position[0], position[1] } },
                                               { "size", { size[0], size[1] } } });
                 });
  return {};
}
