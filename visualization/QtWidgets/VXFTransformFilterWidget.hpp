#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <array>

class QCheckBox;
class QPushButton;
class VXBox;
class VXBoxWidget;
class VXRepresentationPimpl;
class vtkMatrix4x4;

/**
 * The "Transform" section of a data view's page: the data view's local translation, rotation
 * (degrees) and scale as spin boxes, a box tool in the view that moves the data by its handles,
 * a reset, and the button that hands the transform to the host as a pipeline step.
 *
 * The values live in the data view's implementation; this widget shows them and sends changes
 * there. While the box tool exists, the data view takes the box's transform, which is built from
 * the same values, so the spin boxes, the box and the picture always agree.
 */
class KXVTKLIB_EXPORT VXFTransformFilterWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXFTransformFilterWidget(VXRepresentationPimpl* representation,
                                    QWidget* parent = nullptr);
  ~VXFTransformFilterWidget() override;

  /** The box tool, null until it is first shown. */
  VXBox* box() const;
  VXBoxWidget* boxWidget() const { return m_BoxWidget; }
  QCheckBox* showBoxCheckBox() const { return m_ShowBoxCheckBox; }
  QPushButton* hostButton() const { return m_HostButton; }

  /**
   * Shows the data view's values in the spin boxes and puts the box over @p dataBounds with
   * them, all without signals: the data view calls it before it takes the box's transform.
   */
  void followRepresentation(const std::array<double, 6>& dataBounds);

  /** A VTK matrix as rows of four. */
  static std::array<std::array<double, 4>, 4> MatrixRows(vtkMatrix4x4* matrix);

public Q_SLOTS:
  /** Shows the box tool in the data view's render view (creating it on first use) or hides it. */
  void setShowBoxTool(bool show);
  /** Back to no translation, no rotation and unit scale. */
  void resetTransform();

private:
  /** The user moved the box in the view: the data view takes its values. */
  void takeBoxValues();
  /** The user edited a spin box. */
  void takeSpinBoxValues();

  QPointer<VXRepresentationPimpl> m_Representation;
  QPointer<VXBox> m_Box;
  VXBoxWidget* m_BoxWidget = nullptr;
  QCheckBox* m_ShowBoxCheckBox = nullptr;
  QPushButton* m_ResetButton = nullptr;
  QPushButton* m_HostButton = nullptr;
};
