#pragma once

#include "KXVtkLib_export.h"

#include <vtkCameraOrientationWidget.h>

#include <QtCore/QStringList>

/**
 * The camera orientation widget in a corner of every render view: an axes
 * gizmo whose handles snap the camera to an axis when clicked. It only adds the
 * view's face labels (the six orientation marker texts of the preferences) to
 * VTK's camera orientation widget.
 */
class KXVTKLIB_EXPORT VXViewCubeWidget : public vtkCameraOrientationWidget
{
public:
  static VXViewCubeWidget* New();
  vtkTypeMacro(VXViewCubeWidget, vtkCameraOrientationWidget);

  /**
   * Sets the handle labels from six texts in the order +X, -X, +Y, -Y, +Z, -Z.
   * Other counts are ignored.
   */
  void setFaceLabels(const QStringList& labels);
  /** The six handle labels, in the order of setFaceLabels. */
  QStringList faceLabels();

  /** Installs a VXViewCubeRepresentation, which carries the library's axis colours. */
  void CreateDefaultRepresentation() override;

protected:
  VXViewCubeWidget();
  ~VXViewCubeWidget() override;

private:
  VXViewCubeWidget(const VXViewCubeWidget&) = delete;
  void operator=(const VXViewCubeWidget&) = delete;
};
