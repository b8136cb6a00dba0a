#include "visualization/QtWidgets/VXViewCubeWidget.hpp"

#include "visualization/QtWidgets/VXViewCubeRepresentation.hpp"

#include <vtkCameraOrientationRepresentation.h>
#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXViewCubeWidget);

VXViewCubeWidget::VXViewCubeWidget()
{
  CreateDefaultRepresentation();
  // a jump of the camera should be immediate: views render on demand, not by animation timers
  AnimateOff();
}

VXViewCubeWidget::~VXViewCubeWidget() = default;

void VXViewCubeWidget::CreateDefaultRepresentation()
{
  if (WidgetRep == nullptr)
    SetRepresentation(vtkSmartPointer<VXViewCubeRepresentation>::New());
}

void VXViewCubeWidget::setFaceLabels(const QStringList& labels)
{
  if (labels.size() != 6)
    return;
  auto* rep = vtkCameraOrientationRepresentation::SafeDownCast(GetRepresentation());
  if (rep == nullptr)
    return;
  rep->SetXPlusLabelText(labels.at(0).toStdString());
  rep->SetXMinusLabelText(labels.at(1).toStdString());
  rep->SetYPlusLabelText(labels.at(2).toStdString());
  rep->SetYMinusLabelText(labels.at(3).toStdString());
  rep->SetZPlusLabelText(labels.at(4).toStdString());
  rep->SetZMinusLabelText(labels.at(5).toStdString());
  rep->Modified();
}

QStringList VXViewCubeWidget::faceLabels()
{
  auto* rep = vtkCameraOrientationRepresentation::SafeDownCast(GetRepresentation());
  if (rep == nullptr)
    return {};
  return { QString::fromStdString(rep->GetXPlusLabelText()),
           QString::fromStdString(rep->GetXMinusLabelText()),
           QString::fromStdString(rep->GetYPlusLabelText()),
           QString::fromStdString(rep->GetYMinusLabelText()),
           QString::fromStdString(rep->GetZPlusLabelText()),
           QString::fromStdString(rep->GetZMinusLabelText()) };
}
