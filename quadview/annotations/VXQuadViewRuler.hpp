#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/VXQuadViewPaneAnnotation.hpp"

#include <QtCore/QObject>
#include <QtCore/QPointF>

#include <vtkNew.h>
#include <vtkSmartPointer.h>

#include <array>
#include <optional>

class QVTKOpenGLNativeWidget;
class vtkBoundedPlanePointPlacer;
class vtkCallbackCommand;
class vtkDistanceRepresentation2D;
class vtkDistanceWidget;
class vtkObject;
class vtkRenderer;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;
class VXRulerHandleRepresentation;

/**
 * A distance measured between two points of one slice pane, drawn by a VTK
 * distance widget whose end points stay on the pane's slice plane. Unlocked,
 * the ruler follows the slice keeping its in-plane coordinates; locked, it
 * shows only on the slice it was pinned to. It exists only on axis aligned
 * slices: oblique, it hides.
 */
class KXVTKLIB_EXPORT VXQuadViewRuler : public VXQuadViewPaneAnnotation
{
  Q_OBJECT

public:
  /** A ruler from @p point1 to @p point2; without a pane window it has no widget. */
  VXQuadViewRuler(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                  VXQuadViewAnnotationsController* controller, const QString& name,
                  int anchorSliceIndex, const SlicePlane& plane, const WorldBounds& bounds,
                  const std::array<double, 3>& point1, const std::array<double, 3>& point2,
                  QObject* parent = nullptr);
  ~VXQuadViewRuler() override;

  Type type() const override;
  QString summaryText() const override;
  void onSliceChanged(const SlicePlane& plane) override;
  bool hitTestScreen(const QPoint& p) const override;
  void setSelectedVisual(bool on) override;
  QRect screenBounds() const override;
  VXAnnotationHud* createHudWidget(QWidget* parent) override;
  void serialize(QJsonObject& object) const override;
  void deserialize(const QJsonObject& object) override;

  /** End point 1 in world coordinates (the widget's when it has one). */
  std::array<double, 3> point1() const;
  std::array<double, 3> point2() const;
  void setPoint1(const std::array<double, 3>& p);
  void setPoint2(const std::array<double, 3>& p);
  /** Euclidean distance of the end points in world units. */
  double distance() const;
  /** The widget, or null without a pane window. */
  vtkDistanceWidget* distanceWidget() const;
  /** End @p index (1 or 2), or null. */
  VXRulerHandleRepresentation* handleRepresentation(int index) const;
  /** Whether the ruler is drawn now: widget enabled and handles visible. */
  bool isShown() const override;

private:
  static void onEndInteraction(vtkObject* caller, unsigned long eventId, void* clientData,
                               void* callData);
  void setShown(bool shown);

  vtkSmartPointer<vtkDistanceWidget> m_Widget;
  vtkSmartPointer<vtkDistanceRepresentation2D> m_Representation;
  vtkSmartPointer<VXRulerHandleRepresentation> m_Handle1;
  vtkSmartPointer<VXRulerHandleRepresentation> m_Handle2;
  vtkSmartPointer<vtkCallbackCommand> m_EndCallback;
  unsigned long m_EndTag = 0;
  double m_HandleSizeNormal = 0.0;
  double m_HandleSizeSelected = 0.0;
  double m_LineWidthNormal = 1.0;
  double m_LineWidthSelected = 3.0;
  /** End points kept when there is no widget. */
  std::array<double, 3> m_Point1{};
  std::array<double, 3> m_Point2{};
};
} // namespace voxelia::quadview::annotations
