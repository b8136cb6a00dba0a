#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QObject>

#include <vtkSmartPointer.h>

#include <array>

class VXPlaneCallback;
class vtkImplicitPlaneRepresentation;
class vtkImplicitPlaneWidget2;
class vtkPlane;
class vtkRenderWindowInteractor;

/**
 * An interactive cutting plane in a render view: VTK's implicit plane widget placed over a
 * data set's bounds, starting through their centre with the x axis as its normal. Dragging it
 * in the view or setting it from the settings page changes the same plane; both report the
 * change through the signals. Clip and slice filters cut with it.
 */
class KXVTKLIB_EXPORT VXPlane : public QObject
{
  Q_OBJECT

public:
  VXPlane(std::array<double, 6> bounds, vtkRenderWindowInteractor* interactor,
          QObject* parent = nullptr);
  ~VXPlane() override;

  std::array<double, 3> getNormal() const;
  std::array<double, 3> getOrigin() const;
  void setNormal(const std::array<double, 3>& normal);
  void setNormal(double x, double y, double z);
  void setOrigin(const std::array<double, 3>& origin);
  void setOrigin(double x, double y, double z);
  /** Sets both and emits planeChanged, originChanged and normalsChanged. */
  void setValues(const std::array<double, 3>& normal, const std::array<double, 3>& origin);
  void drawPlaneOn();
  void drawPlaneOff();
  /** Shows the tool in its view; nothing without an interactor. */
  void enable();
  void disable();
  bool isEnabled() const;
  /** Hands the plane to the widget's representation. */
  void updateWidget();
  /** Places the tool over new bounds, keeping the normal and the origin when still inside. */
  void updateBounds(std::array<double, 6> bounds);
  std::array<double, 6> bounds() const { return m_Bounds; }
  /** Moves the tool to another view's interactor, keeping whether it is shown. */
  void setRenderWindowInteractor(vtkRenderWindowInteractor* interactor);
  vtkRenderWindowInteractor* renderWindowInteractor() const;
  vtkImplicitPlaneRepresentation* representation() const;

Q_SIGNALS:
  void planeChanged();
  void originChanged(std::array<double, 3> origin);
  void normalsChanged(std::array<double, 3> normal);

protected:
  /** The centre of the bounds. */
  std::array<double, 3> calculateGlobalOrigin() const;

private:
  std::array<double, 6> m_Bounds;
  vtkSmartPointer<vtkImplicitPlaneWidget2> m_Widget;
  vtkSmartPointer<vtkImplicitPlaneRepresentation> m_Representation;
  vtkSmartPointer<vtkPlane> m_Plane;
  vtkSmartPointer<VXPlaneCallback> m_Callback;
  bool m_Enabled = false;
};
