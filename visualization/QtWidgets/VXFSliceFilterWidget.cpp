#include "visualization/QtWidgets/VXFSliceFilterWidget.hpp"

#include "visualization/QtWidgets/VXPlaneWidget.hpp"
#include "visualization/VXFSlice.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QPushButton>

VXFSliceFilterWidget::VXFSliceFilterWidget(VXFSlice* filter, QWidget* parent)
  : QWidget(parent)
{
  setObjectName("VXFSliceFilterWidget");
  auto* form = new QFormLayout(this);
  m_PlaneWidget = new VXPlaneWidget(this);
  form->addRow(m_PlaneWidget);
  m_ShowToolCheckBox = new QCheckBox("Show Plane", this);
  m_ShowToolCheckBox->setObjectName("m_ShowToolCheckBox");
  form->addRow(m_ShowToolCheckBox);
  if (filter == nullptr)
    return;
  form->addRow("Add Representation:", filter->addRepresentationTypeCombo(this));
  auto* apply = new QPushButton("Apply", this);
  apply->setObjectName("m_ApplyButton");
  form->addRow(apply);

  m_PlaneWidget->bindPlane(filter->plane());
  m_ShowToolCheckBox->setChecked(filter->showPlaneTool());
  connect(m_ShowToolCheckBox, &QCheckBox::toggled, filter, &VXFSlice::setShowPlaneTool);
  connect(filter, &VXFSlice::showPlaneToolChanged, this,
          [this](bool show)
          {
            const QSignalBlocker blocker(m_ShowToolCheckBox);
            m_ShowToolCheckBox->setChecked(show);
          });
  connect(apply, &QPushButton::clicked, filter, &VXFSlice::applyFilter);
}

VXFSliceFilterWidget::~VXFSliceFilterWidget() = default;

VXPlaneWidget* VXFSliceFilterWidget::planeWidget() const
{
  return m_PlaneWidget;
}
