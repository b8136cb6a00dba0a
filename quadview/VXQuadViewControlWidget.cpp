#include "quadview/VXQuadViewControlWidget.hpp"

#include "quadview/VXQuadView.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsTableModel.hpp"
#include "visualization/QtWidgets/VXHistogramOpacityWidget.hpp"
#include "visualization/VXLookupTable.hpp"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <vtkPiecewiseFunction.h>
#include <vtkTable.h>

#include <algorithm>

using voxelia::quadview::annotations::VXQuadViewAnnotationsTableModel;

namespace
{
QCheckBox* addCheck(QFormLayout* form, const QString& text, const QString& name)
{
  auto* check = new QCheckBox(text);
  check->setObjectName(name);
  form->addRow(check);
  return check;
}

QDoubleSpinBox* addSpin(QFormLayout* form, const QString& label, const QString& name, double max,
                        double step)
{
  auto* spin = new QDoubleSpinBox;
  spin->setObjectName(name);
  spin->setRange(0.0, max);
  spin->setSingleStep(step);
  spin->setDecimals(2);
  form->addRow(label, spin);
  return spin;
}

QComboBox* addCombo(QFormLayout* form, const QString& label, const QString& name,
                    const QStringList& items)
{
  auto* combo = new QComboBox;
  combo->setObjectName(name);
  combo->addItems(items);
  form->addRow(label, combo);
  return combo;
}
} // namespace

VXQuadViewControlWidget::VXQuadViewControlWidget(QWidget* parent)
  : QWidget(parent)
{
  setObjectName("VXQuadViewControlWidget");
  buildForm();
  connectControls();
  setEnabled(false);
}

VXQuadViewControlWidget::~VXQuadViewControlWidget()
{
  for (const auto& connection : m_ViewConnections)
    disconnect(connection);
}

void VXQuadViewControlWidget::buildForm()
{
  auto* layout = new QVBoxLayout(this);
  const auto section = [layout](const QString& title)
  {
    auto* box = new QGroupBox(title);
    auto* form = new QFormLayout(box);
    layout->addWidget(box);
    return form;
  };

  QFormLayout* data = section(tr("Data"));
  m_ArrayCombo = addCombo(data, tr("Array"), "arrayCombo", {});
  m_ComponentCombo = addCombo(data, tr("Component"), "componentCombo", {});
  m_OpacityEditor = new VXHistogramOpacityWidget(this);
  data->addRow(m_OpacityEditor);

  QFormLayout* slices = section(tr("Slices"));
  m_ResliceCheck = addCheck(slices, tr("Oblique Reslice"), "resliceCheck");
  m_ThickCheck = addCheck(slices, tr("Thick Slab"), "thickCheck");
  // indices follow VXQuadView::setBlendMode: 0 minimum, 1 maximum, 2 mean
  m_BlendCombo =
    addCombo(slices, tr("Slab Blend"), "blendCombo", { tr("Minimum"), tr("Maximum"), tr("Mean") });
  m_LegendCheck = addCheck(slices, tr("Color Legend"), "colorLegendCheck");
  m_AnnotationsCheck = addCheck(slices, tr("Annotations"), "annotationsCheck");
  m_PlaneWidgetsCheck = addCheck(slices, tr("Plane Outlines in 3D"), "planeWidgetsCheck");
  m_LengthUnitsEdit = new QLineEdit;
  m_LengthUnitsEdit->setObjectName("lengthUnitsEdit");
  slices->addRow(tr("Length Units"), m_LengthUnitsEdit);
  m_ResetButton = new QPushButton(tr("Reset"));
  m_ResetButton->setObjectName("resetButton");
  m_ResetButton->setToolTip(
    tr("Cursor back to the image centre, cameras and colour window reset."));
  slices->addRow(m_ResetButton);

  QFormLayout* volume = section(tr("Volume"));
  m_ShadingCheck = addCheck(volume, tr("Shading"), "shadingCheck");
  m_AmbientSpin = addSpin(volume, tr("Ambient"), "ambientSpin", 1.0, 0.05);
  m_DiffuseSpin = addSpin(volume, tr("Diffuse"), "diffuseSpin", 1.0, 0.05);
  m_SpecularSpin = addSpin(volume, tr("Specular"), "specularSpin", 1.0, 0.05);
  m_SpecularPowerSpin = addSpin(volume, tr("Specular Power"), "specularPowerSpin", 128.0, 1.0);
  m_LightFollowsCameraCheck =
    addCheck(volume, tr("Light Follows Camera"), "lightFollowsCameraCheck");
  m_SSAOCheck = addCheck(volume, tr("Ambient Occlusion (SSAO)"), "ssaoCheck");
  m_SSAOCheck->setToolTip(tr("Ambient occlusion darkens the volume by its shading: it needs "
                             "\"Shading\" on."));
  // indices follow VXQuadView::setVolumeBlendMode: 0 composite, 1 maximum, 2 minimum
  m_VolumeBlendCombo =
    addCombo(volume, tr("Blend Mode"), "volumeBlendCombo",
             { tr("Composite"), tr("Maximum Intensity"), tr("Minimum Intensity") });
  m_GIReachSpin = addSpin(volume, tr("GI Reach"), "giReachSpin", 1.0, 0.05);
  m_ScatteringSpin = addSpin(volume, tr("Volumetric Scattering"), "scatteringSpin", 1.0, 0.05);

  QFormLayout* annotations = section(tr("Annotations"));
  m_AnnotationsTable = new QTableView;
  m_AnnotationsTable->setObjectName("annotationsTable");
  m_AnnotationsTable->setSelectionBehavior(QAbstractItemView::SelectRows);
  m_AnnotationsTable->setSelectionMode(QAbstractItemView::ExtendedSelection);
  // a double click goes to the annotation's slice; names are edited with F2 or a second click
  m_AnnotationsTable->setEditTriggers(QAbstractItemView::EditKeyPressed |
                                      QAbstractItemView::SelectedClicked);
  m_AnnotationsTable->verticalHeader()->hide();
  m_AnnotationsTable->horizontalHeader()->setStretchLastSection(true);
  m_AnnotationsTable->setMinimumHeight(120);
  annotations->addRow(m_AnnotationsTable);
  auto* buttons = new QHBoxLayout;
  const auto addButton = [buttons](const QString& text, const QString& name, const QString& tip)
  {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(tip);
    buttons->addWidget(button);
    return button;
  };
  m_DeleteAnnotationButton = addButton(tr("Delete"), "deleteAnnotationButton",
                                       tr("Deletes the annotation of the current row."));
  m_DeleteSelectedAnnotationsButton =
    addButton(tr("Delete Selected"), "deleteSelectedAnnotationsButton",
              tr("Deletes every selected annotation."));
  m_ClearAnnotationsButton =
    addButton(tr("Clear All"), "clearAnnotationsButton",
              tr("Deletes every ruler and mark of the three slice panes."));
  annotations->addRow(buttons);
  layout->addStretch(1);
}

void VXQuadViewControlWidget::connectControls()
{
  // each control calls the view only when the user acts: syncFromControls blocks signals
  const auto view = [this]() { return m_View.data(); };
  connect(m_ArrayCombo, &QComboBox::currentTextChanged, this,
          [view](const QString& name)
          {
            if (view() && !name.isEmpty())
              view()->onArrayChanged(name);
          });
  connect(m_ComponentCombo, &QComboBox::currentIndexChanged, this,
          [view](int index)
          {
            if (view() && index >= 0)
              view()->onComponentChanged(index);
          });
  const auto checkTo = [this, view](QCheckBox* check, auto slot)
  {
    connect(check, &QCheckBox::toggled, this,
            [view, slot](bool on)
            {
              if (view())
                slot(view(), on);
            });
  };
  checkTo(m_ResliceCheck, [](VXQuadView* v, bool on) { v->resliceMode(on ? 2 : 0); });
  checkTo(m_ThickCheck, [](VXQuadView* v, bool on) { v->thickMode(on ? 2 : 0); });
  checkTo(m_LegendCheck, [](VXQuadView* v, bool on) { v->showColorLegend(on); });
  checkTo(m_AnnotationsCheck, [](VXQuadView* v, bool on) { v->showAnnotations(on); });
  checkTo(m_PlaneWidgetsCheck, [](VXQuadView* v, bool on) { v->showPlaneWidgets(on); });
  checkTo(m_ShadingCheck, [](VXQuadView* v, bool on) { v->setShadingEnabled(on); });
  checkTo(m_LightFollowsCameraCheck, [](VXQuadView* v, bool on) { v->setLightFollowsCamera(on); });
  checkTo(m_SSAOCheck, [](VXQuadView* v, bool on) { v->setSSAOEnabled(on); });
  connect(m_ShadingCheck, &QCheckBox::toggled, m_SSAOCheck, &QWidget::setEnabled);

  const auto spinTo = [this, view](QDoubleSpinBox* spin, void (VXQuadView::*slot)(double))
  {
    connect(spin, &QDoubleSpinBox::valueChanged, this,
            [view, slot](double value)
            {
              if (view())
                (view()->*slot)(value);
            });
  };
  spinTo(m_AmbientSpin, &VXQuadView::setAmbient);
  spinTo(m_DiffuseSpin, &VXQuadView::setDiffuse);
  spinTo(m_SpecularSpin, &VXQuadView::setSpecular);
  spinTo(m_SpecularPowerSpin, &VXQuadView::setSpecularPower);
  spinTo(m_GIReachSpin, &VXQuadView::setGIReach);
  spinTo(m_ScatteringSpin, &VXQuadView::setVolumetricScattering);

  connect(m_BlendCombo, &QComboBox::currentIndexChanged, this,
          [view](int index)
          {
            if (view())
              view()->setBlendMode(index);
          });
  connect(m_VolumeBlendCombo, &QComboBox::currentIndexChanged, this,
          [view](int index)
          {
            if (view())
              view()->setVolumeBlendMode(index);
          });
  connect(m_LengthUnitsEdit, &QLineEdit::editingFinished, this,
          [this, view]()
          {
            if (view())
              view()->setLengthUnits(m_LengthUnitsEdit->text());
          });
  connect(m_ResetButton, &QPushButton::clicked, this,
          [view]()
          {
            if (view())
              view()->resetViews();
          });
  connect(m_DeleteAnnotationButton, &QPushButton::clicked, this,
          &VXQuadViewControlWidget::deleteCurrentAnnotation);
  connect(m_DeleteSelectedAnnotationsButton, &QPushButton::clicked, this,
          &VXQuadViewControlWidget::deleteSelectedAnnotations);
  connect(m_ClearAnnotationsButton, &QPushButton::clicked, this,
          &VXQuadViewControlWidget::clearAllAnnotations);
  connect(m_AnnotationsTable, &QTableView::activated, this,
          [this](const QModelIndex& index)
          {
            if (auto* model =
                  qobject_cast<VXQuadViewAnnotationsTableModel*>(m_AnnotationsTable->model()))
              model->navigateToRow(index.row());
          });
  connect(m_OpacityEditor, &VXHistogramOpacityWidget::opacityFunctionEdited, this,
          [view]()
          {
            if (view())
              view()->render();
          });
}

VXQuadView* VXQuadViewControlWidget::quadView() const
{
  return m_View;
}

void VXQuadViewControlWidget::setQuadView(VXQuadView* view)
{
  for (const auto& connection : m_ViewConnections)
    disconnect(connection);
  m_ViewConnections.clear();
  m_View = view;
  setEnabled(view != nullptr);
  setAnnotationsModel(view != nullptr ? view->annotationsTableModel() : nullptr);
  if (view == nullptr)
    return;
  m_ViewConnections << connect(view, &VXQuadView::colorControlsReady, this,
                               [this](QStringList names, QSharedPointer<VXLookupTable> lut,
                                      vtkSmartPointer<vtkPiecewiseFunction> opacity,
                                      vtkSmartPointer<vtkTable> histogram, QString active, double,
                                      double)
                               { onColorControlsReady(names, lut, opacity, histogram, active); })
                    << connect(view, &VXQuadView::componentListChanged, this,
                               &VXQuadViewControlWidget::onComponentListChanged)
                    << connect(view, &VXQuadView::histogramUpdated, this,
                               [this](vtkSmartPointer<vtkTable> histogram, QString)
                               { onHistogramUpdated(histogram); })
                    << connect(view, &VXQuadView::viewCleared, this,
                               &VXQuadViewControlWidget::syncFromControls)
                    << connect(view, &VXQuadView::annotationsTableModelReady, this,
                               &VXQuadViewControlWidget::setAnnotationsModel);
  syncFromControls();
  if (view->isInitialized())
  {
    onColorControlsReady(view->getAvailableArrayNames(), view->getLookupTable(),
                         view->getOpacityFunction(), view->getHistogram(),
                         view->getActiveArrayName());
    onComponentListChanged(view->getComponentNames(view->getActiveArrayName()),
                           view->getControls().m_ActiveComponent);
  }
}

void VXQuadViewControlWidget::syncFromControls()
{
  if (m_View == nullptr)
    return;
  const VXQuadViewControls& controls = m_View->getControls();
  const QList<QWidget*> all = { m_ResliceCheck,
                                m_ThickCheck,
                                m_BlendCombo,
                                m_LegendCheck,
                                m_AnnotationsCheck,
                                m_PlaneWidgetsCheck,
                                m_LengthUnitsEdit,
                                m_ShadingCheck,
                                m_AmbientSpin,
                                m_DiffuseSpin,
                                m_SpecularSpin,
                                m_SpecularPowerSpin,
                                m_LightFollowsCameraCheck,
                                m_SSAOCheck,
                                m_VolumeBlendCombo,
                                m_GIReachSpin,
                                m_ScatteringSpin };
  for (QWidget* widget : all)
    widget->blockSignals(true);
  m_ResliceCheck->setChecked(controls.m_ResliceMode);
  m_ThickCheck->setChecked(controls.m_ThickMode);
  m_BlendCombo->setCurrentIndex(controls.m_MeanBlend ? 2 : (controls.m_MinBlend ? 0 : 1));
  m_LegendCheck->setChecked(controls.m_ShowColorLegend);
  m_AnnotationsCheck->setChecked(controls.m_ShowAnnotations);
  m_PlaneWidgetsCheck->setChecked(controls.m_ShowPlaneWidgets);
  m_LengthUnitsEdit->setText(controls.m_LengthUnits);
  m_ShadingCheck->setChecked(controls.m_ShadingEnabled);
  m_AmbientSpin->setValue(controls.m_Ambient);
  m_DiffuseSpin->setValue(controls.m_Diffuse);
  m_SpecularSpin->setValue(controls.m_Specular);
  m_SpecularPowerSpin->setValue(controls.m_SpecularPower);
  m_LightFollowsCameraCheck->setChecked(controls.m_LightFollowsCamera);
  m_SSAOCheck->setChecked(controls.m_SSAOEnabled);
  m_SSAOCheck->setEnabled(controls.m_ShadingEnabled);
  m_VolumeBlendCombo->setCurrentIndex(std::clamp(controls.m_VolumeBlendMode, 0, 2));
  m_GIReachSpin->setValue(controls.m_GIReach);
  m_ScatteringSpin->setValue(controls.m_VolumetricScattering);
  for (QWidget* widget : all)
    widget->blockSignals(false);
}

void VXQuadViewControlWidget::onColorControlsReady(QStringList arrayNames,
                                                   QSharedPointer<VXLookupTable> lut,
                                                   vtkSmartPointer<vtkPiecewiseFunction> opacity,
                                                   vtkSmartPointer<vtkTable> histogram,
                                                   QString activeArray)
{
  {
    const QSignalBlocker blocker(m_ArrayCombo);
    m_ArrayCombo->clear();
    m_ArrayCombo->addItems(arrayNames);
    m_ArrayCombo->setCurrentIndex(std::max(0, static_cast<int>(arrayNames.indexOf(activeArray))));
  }
  m_OpacityEditor->setFunctions(opacity,
                                lut != nullptr ? lut->getColorTransferFunction() : nullptr);
  onHistogramUpdated(histogram);
  syncFromControls();
}

void VXQuadViewControlWidget::onComponentListChanged(QStringList componentNames,
                                                     int activeComponent)
{
  const QSignalBlocker blocker(m_ComponentCombo);
  m_ComponentCombo->clear();
  m_ComponentCombo->addItems(componentNames);
  // the view names its component (-1 for magnitude); the list starts with "Magnitude"
  int row = activeComponent;
  if (componentNames.size() > 1)
    row = activeComponent < 0 ? 0 : activeComponent + 1;
  m_ComponentCombo->setCurrentIndex(
    std::clamp(row, 0, std::max(0, int(componentNames.size()) - 1)));
  m_ComponentCombo->setEnabled(componentNames.size() > 1);
}

void VXQuadViewControlWidget::onHistogramUpdated(vtkSmartPointer<vtkTable> histogram)
{
  m_OpacityEditor->setHistogram(histogram, "image_pops");
  m_OpacityEditor->render();
}

void VXQuadViewControlWidget::setAnnotationsModel(QAbstractTableModel* model)
{
  if (m_AnnotationsTable->model() == model)
    return;
  m_AnnotationsTable->setModel(model);
}

void VXQuadViewControlWidget::deleteCurrentAnnotation()
{
  auto* model = qobject_cast<VXQuadViewAnnotationsTableModel*>(m_AnnotationsTable->model());
  const int row = m_AnnotationsTable->currentIndex().row();
  if (model == nullptr || model->annotationAt(row) == nullptr)
    return;
  const QString name =
    model->index(row, VXQuadViewAnnotationsTableModel::NameColumn).data().toString();
  if (VXQuadViewAnnotationsTableModel::confirmDeleteOne(this, name))
    model->removeAnnotationByRow(row);
}

void VXQuadViewControlWidget::deleteSelectedAnnotations()
{
  auto* model = qobject_cast<VXQuadViewAnnotationsTableModel*>(m_AnnotationsTable->model());
  if (model == nullptr)
    return;
  QList<int> rows;
  for (const QModelIndex& index : m_AnnotationsTable->selectionModel()->selectedRows())
    rows.append(index.row());
  if (rows.isEmpty())
    return;
  if (VXQuadViewAnnotationsTableModel::confirmDeleteMany(this, static_cast<int>(rows.size())))
    model->removeAnnotationsByRows(rows);
}

void VXQuadViewControlWidget::clearAllAnnotations()
{
  auto* model = qobject_cast<VXQuadViewAnnotationsTableModel*>(m_AnnotationsTable->model());
  if (model == nullptr || model->rowCount() == 0)
    return;
  if (VXQuadViewAnnotationsTableModel::confirmClearAll(this, tr("all slice panes")))
    model->clearAllAnnotations();
}
