#pragma once

#include "KXVtkLib_export.h"

#include <vtkSmartPointer.h>

#include <QtCore/QPointer>
#include <QtCore/QSharedPointer>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

class QAbstractTableModel;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QPushButton;
class QTableView;
class VXHistogramOpacityWidget;
class VXLookupTable;
class VXQuadView;
class vtkPiecewiseFunction;
class vtkTable;

/**
 * The control panel beside a quad view. Every control calls one slot of the
 * VXQuadView it drives (array and component, oblique reslice, thick slab and
 * its blend, legend, overlays, plane outlines, length units, reset, and the
 * volume pane's shading, light, SSAO, blend mode, global illumination reach
 * and scattering); the view keeps the settings record, and the panel shows it
 * again when the view announces new colour controls. The histogram with its
 * opacity curve edits the view's own opacity function. The annotations table
 * lists the view's rulers and marks: names and locks are edited in place, an
 * activated row brings its slice into view, and deleting asks first.
 */
class KXVTKLIB_EXPORT VXQuadViewControlWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXQuadViewControlWidget(QWidget* parent = nullptr);
  ~VXQuadViewControlWidget() override;

  /** Drives @p view from now on and shows its settings; null detaches. */
  void setQuadView(VXQuadView* view);
  VXQuadView* quadView() const;

  VXHistogramOpacityWidget* opacityEditor() const { return m_OpacityEditor; }

public Q_SLOTS:
  /** Shows the view's settings record in the controls, without calling the view back. */
  void syncFromControls();

private:
  void buildForm();
  void connectControls();
  void onColorControlsReady(QStringList arrayNames, QSharedPointer<VXLookupTable> lut,
                            vtkSmartPointer<vtkPiecewiseFunction> opacity,
                            vtkSmartPointer<vtkTable> histogram, QString activeArray);
  void onComponentListChanged(QStringList componentNames, int activeComponent);
  void onHistogramUpdated(vtkSmartPointer<vtkTable> histogram);
  void setAnnotationsModel(QAbstractTableModel* model);
  void deleteCurrentAnnotation();
  void deleteSelectedAnnotations();
  void clearAllAnnotations();

  QPointer<VXQuadView> m_View;
  QList<QMetaObject::Connection> m_ViewConnections;

  QComboBox* m_ArrayCombo = nullptr;
  QComboBox* m_ComponentCombo = nullptr;
  QCheckBox* m_ResliceCheck = nullptr;
  QCheckBox* m_ThickCheck = nullptr;
  QComboBox* m_BlendCombo = nullptr;
  QCheckBox* m_LegendCheck = nullptr;
  QCheckBox* m_AnnotationsCheck = nullptr;
  QCheckBox* m_PlaneWidgetsCheck = nullptr;
  QLineEdit* m_LengthUnitsEdit = nullptr;
  QPushButton* m_ResetButton = nullptr;
  QCheckBox* m_ShadingCheck = nullptr;
  QDoubleSpinBox* m_AmbientSpin = nullptr;
  QDoubleSpinBox* m_DiffuseSpin = nullptr;
  QDoubleSpinBox* m_SpecularSpin = nullptr;
  QDoubleSpinBox* m_SpecularPowerSpin = nullptr;
  QCheckBox* m_LightFollowsCameraCheck = nullptr;
  QCheckBox* m_SSAOCheck = nullptr;
  QComboBox* m_VolumeBlendCombo = nullptr;
  QDoubleSpinBox* m_GIReachSpin = nullptr;
  QDoubleSpinBox* m_ScatteringSpin = nullptr;
  VXHistogramOpacityWidget* m_OpacityEditor = nullptr;
  QTableView* m_AnnotationsTable = nullptr;
  QPushButton* m_DeleteAnnotationButton = nullptr;
  QPushButton* m_DeleteSelectedAnnotationsButton = nullptr;
  QPushButton* m_ClearAnnotationsButton = nullptr;
};
