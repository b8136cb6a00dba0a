#pragma once

#include "KXVtkLib_export.h"
#include "quadview/annotations/MarkShape.hpp"
#include "quadview/annotations/VXQuadViewPaneAnnotation.hpp"

#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtGui/QColor>

#include <vtkSmartPointer.h>

#include <array>
#include <optional>

class QVTKOpenGLNativeWidget;
class vtkBoundedPlanePointPlacer;
class vtkCallbackCommand;
class vtkHandleWidget;
class vtkObject;
class vtkPolygonalHandleRepresentation3D;
class vtkRenderer;
class vtkTextActor;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;

/**
 * A point pinned on one slice pane, drawn as a sphere, cross or square of a
 * constant size in pixels whatever the zoom, with an optional name label.
 * A new mark is locked: it shows only on its own slice.
 */
class KXVTKLIB_EXPORT VXQuadViewMark : public VXQuadViewPaneAnnotation
{
  Q_OBJECT

public:
  static constexpr int k_DefaultSize = 12;
  static constexpr int k_MinSize = 1;
  static constexpr int k_MaxSize = 100;

  /** A mark at @p anchor; without a pane window it has no widget. */
  VXQuadViewMark(SlicePaneRole role, QVTKOpenGLNativeWidget* pane,
                 VXQuadViewAnnotationsController* controller, const QString& name,
                 int anchorSliceIndex, const SlicePlane& plane, const WorldBounds& bounds,
                 const std::array<double, 3>& anchor, QObject* parent = nullptr);
  ~VXQuadViewMark() override;

  Type type() const override;
  QString summaryText() const override;
  void onSliceChanged(const SlicePlane& plane) override;
  bool hitTestScreen(const QPoint& p) const override;
  void setSelectedVisual(bool on) override;
  QRect screenBounds() const override;
  VXAnnotationHud* createHudWidget(QWidget* parent) override;
  void serialize(QJsonObject& object) const override;
  void deserialize(const QJsonObject& object) override;
  void onAfterLoad() override;

  /** The mark's position in world coordinates. */
  std::array<double, 3> anchor() const;
  void setAnchor(const std::array<double, 3>& p);
  QColor color() const;
  void setColor(const QColor& color);
  int sizeInPixels() const;
  /** Limited to k_MinSize to k_MaxSize. */
  void setSizeInPixels(int size);
  MarkShape shape() const;
  void setShape(MarkShape shape);
  bool labelVisibleInViewport() const;
  void setLabelVisibleInViewport(bool visible);
  /** Colour and constant pixel size on the representation. */
  void applyVisualSettings();
  /** Shows, moves and styles the name label, or removes it. */
  void updateLabelActor();
  /** Gives the handle the polydata of the current shape. */
  void rebuildHandleRepForShape();
  /** Keeps the pixel size and the label's place while the camera moves. */
  void onCameraModified();
  /** The hit radius in pixels: max(6, sizeInPixels). */
  int hitRadius() const;
  /** The label's font size: max(8, round(sizeInPixels * 1.25)). */
  int labelFontSize() const;
  vtkHandleWidget* handleWidget() const;
  vtkPolygonalHandleRepresentation3D* handleRepresentation() const;
  /** The label actor, null until first needed. */
  vtkTextActor* labelActor() const;
  /** Whether the mark is drawn now. */
  bool isShown() const override;

protected:
  void onNameChanged() override;

private:
  static void onInteraction(vtkObject* caller, unsigned long eventId, void* clientData,
                            void* callData);
  static void onCamera(vtkObject* caller, unsigned long eventId, void* clientData, void* callData);
  void observeCamera();
  void setShown(bool shown);

  QColor m_Color{ 255, 0, 255, 255 };
  int m_SizeInPixels = k_DefaultSize;
  MarkShape m_Shape = MarkShape::Sphere;
  bool m_LabelVisible = false;
  vtkSmartPointer<vtkHandleWidget> m_Widget;
  vtkSmartPointer<vtkPolygonalHandleRepresentation3D> m_Representation;
  vtkSmartPointer<vtkCallbackCommand> m_InteractionCallback;
  vtkSmartPointer<vtkCallbackCommand> m_CameraCallback;
  unsigned long m_InteractionTag = 0;
  unsigned long m_EndInteractionTag = 0;
  unsigned long m_CameraTag = 0;
  vtkObject* m_ObservedCamera = nullptr;
  vtkSmartPointer<vtkTextActor> m_Label;
  bool m_LabelAdded = false;
  bool m_Selected = false;
  bool m_Shown = true;
  std::array<double, 3> m_Anchor{};
};
} // namespace voxelia::quadview::annotations
