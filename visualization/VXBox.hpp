#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QObject>

#include <vtkSmartPointer.h>

#include <array>

class VXBoxCallback;
class vtkBoxRepresentation;
class vtkBoxWidget2;
class vtkMatrix4x4;
class vtkPlanes;
class vtkRenderWindowInteractor;
class vtkTransform;

/**
 * An interactive box in a render view: VTK's box widget placed over a data set's bounds, moved,
 * turned and stretched by its handles or by the settings page. Its translation, rotation (in
 * degrees, VTK's Z-X-Y order) and scale are relative to the placed box. The clip filter cuts by
 * its six planes; a data view's transform follows it.
 */
class KXVTKLIB_EXPORT VXBox : public QObject
{
  Q_OBJECT

public:
  VXBox(std::array<double, 6> bounds, vtkRenderWindowInteractor* interactor,
        QObject* parent = nullptr);
  ~VXBox() override;

  void enable();
  void disable();
  bool isEnabled() const;
  /** The six planes of the box as it stands, normals pointing out. */
  vtkSmartPointer<vtkPlanes> getPlanes() const;
  std::array<double, 3> getRotation() const;
  std::array<double, 3> getScale() const;
  std::array<double, 3> getTranslation() const;
  vtkTransform* getTransform() const;
  vtkMatrix4x4* getTransformMatrix() const;
  /** Places the box over @p bounds with no transform. */
  void placeWidget(std::array<double, 6> bounds);
  void setRenderWindowInteractor(vtkRenderWindowInteractor* interactor);
  vtkRenderWindowInteractor* renderWindowInteractor() const;
  void setRotation(const std::array<double, 3>& rotation);
  void setScale(const std::array<double, 3>& scale);
  void setTranslation(const std::array<double, 3>& translation);
  /** Sets all three at once and emits the change signals once. */
  void setValues(const std::array<double, 3>& translation, const std::array<double, 3>& rotation,
                 const std::array<double, 3>& scale);
  /** Places the box over new bounds, keeping its transform. */
  void updateBounds(std::array<double, 6> bounds);
  std::array<double, 6> bounds() const { return m_Bounds; }
  /** Takes the box as the user left it in the view (the callback calls it) and tells so. */
  void takeWidgetTransform();

  /**
   * Fills @p transform with the box's kind of transform: scale and rotation (Z, X, then Y) about
   * @p centre, then the translation. Data views build their local transform the same way, so
   * the stored values and the box in the view always move the data alike.
   */
  static void ComposeTransform(vtkTransform* transform, const std::array<double, 3>& centre,
                               const std::array<double, 3>& translation,
                               const std::array<double, 3>& rotation,
                               const std::array<double, 3>& scale);

public Q_SLOTS:
  /** Hands the transform to the widget's representation. */
  void updateWidget();
  void setBounds(std::array<double, 6> bounds);

Q_SIGNALS:
  void scaleChanged(std::array<double, 3> scale);
  void translationChanged(std::array<double, 3> translation);
  void rotationChanged(std::array<double, 3> rotation);
  void transformChanged();

private:
  void emitTransformChanged();
  std::array<double, 3> centre() const;
  void rebuildTransform(const std::array<double, 3>& translation,
                        const std::array<double, 3>& rotation, const std::array<double, 3>& scale);

  std::array<double, 6> m_Bounds;
  vtkSmartPointer<vtkBoxWidget2> m_Widget;
  vtkSmartPointer<vtkBoxRepresentation> m_Representation;
  vtkSmartPointer<vtkTransform> m_Transform;
  vtkSmartPointer<VXBoxCallback> m_Callback;
  std::array<double, 3> m_Translation{ 0.0, 0.0, 0.0 };
  std::array<double, 3> m_Rotation{ 0.0, 0.0, 0.0 };
  std::array<double, 3> m_Scale{ 1.0, 1.0, 1.0 };
  bool m_Enabled = false;
};
