#include "visualization/QtWidgets/VXFTransformFilterWidget.hpp"

#include "visualization/QtWidgets/VXBoxWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXBox.hpp"
#include "visualization/VXRepresentationPimpl.hpp"

#include <vtkMatrix4x4.h>

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

VXFTransformFilterWidget::VXFTransformFilterWidget(VXRepresentationPimpl* representation,
                                                   QWidget* parent)
  : QWidget(parent)
  , m_Representation(representation)
{
  setObjectName("Transform Filter Widget");
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_BoxWidget = new VXBoxWidget(this);
  layout->addWidget(m_BoxWidget);

  auto* row = new QHBoxLayout();
  m_ShowBoxCheckBox = new QCheckBox("Show Box Tool", this);
  m_ShowBoxCheckBox->setObjectName("m_ShowBoxCheckBox");
  m_ShowBoxCheckBox->setToolTip("Move, turn and stretch the data view with a box in the view");
  row->addWidget(m_ShowBoxCheckBox);
  m_ResetButton = new QPushButton("Reset", this);
  m_ResetButton->setObjectName("m_ResetTransformButton");
  m_ResetButton->setToolTip("No translation, no rotation and unit scale");
  row->addWidget(m_ResetButton);
  layout->addLayout(row);
  m_HostButton = new QPushButton("Create Apply Transformation Filter", this);
  m_HostButton->setObjectName("m_ApplyTransformationButton");
  m_HostButton->setToolTip("Hand this transform to the host as an Apply Transformation step of "
                           "its pipeline, so that the host moves its own geometry");
  layout->addWidget(m_HostButton);

  if (representation != nullptr)
  {
    m_BoxWidget->setValues(representation->translation(), representation->rotation(),
                           representation->scale());
    m_ShowBoxCheckBox->setChecked(representation->showBoxTool());
    connect(m_ShowBoxCheckBox, &QCheckBox::toggled, representation,
            &VXRepresentationPimpl::setShowBoxTool);
    connect(representation, &VXRepresentationPimpl::showTransformBoxChanged, this,
            [this](bool shown)
            {
              const QSignalBlocker blocker(m_ShowBoxCheckBox);
              m_ShowBoxCheckBox->setChecked(shown);
            });
    connect(m_HostButton, &QPushButton::clicked, representation,
            &VXRepresentationPimpl::createApplyTransformationGeometryFilter);
  }
  connect(m_BoxWidget, &VXBoxWidget::transformChanged, this,
          &VXFTransformFilterWidget::takeSpinBoxValues);
  connect(m_ResetButton, &QPushButton::clicked, this, &VXFTransformFilterWidget::resetTransform);
}

VXFTransformFilterWidget::~VXFTransformFilterWidget() = default;

VXBox* VXFTransformFilterWidget::box() const
{
  return m_Box;
}

void VXFTransformFilterWidget::followRepresentation(const std::array<double, 6>& dataBounds)
{
  if (m_Representation == nullptr)
    return;
  m_BoxWidget->setValues(m_Representation->translation(), m_Representation->rotation(),
                         m_Representation->scale());
  if (m_Box == nullptr)
    return;
  const QSignalBlocker blocker(m_Box);
  if (m_Box->bounds() != dataBounds)
    m_Box->updateBounds(dataBounds);
  if (m_Box->getTranslation() != m_Representation->translation() ||
      m_Box->getRotation() != m_Representation->rotation() ||
      m_Box->getScale() != m_Representation->scale())
    m_Box->setValues(m_Representation->translation(), m_Representation->rotation(),
                     m_Representation->scale());
}

std::array<std::array<double, 4>, 4> VXFTransformFilterWidget::MatrixRows(vtkMatrix4x4* matrix)
{
  std::array<std::array<double, 4>, 4> rows{};
  for (int i = 0; i < 4; ++i)
  {
    for (int j = 0; j < 4; ++j)
      rows[i][j] = matrix != nullptr ? matrix->GetElement(i, j) : (i == j ? 1.0 : 0.0);
  }
  return rows;
}

void VXFTransformFilterWidget::setShowBoxTool(bool show)
{
  if (m_Representation == nullptr)
    return;
  {
    const QSignalBlocker blocker(m_ShowBoxCheckBox);
    m_ShowBoxCheckBox->setChecked(show);
  }
  VXVisualizationWidget* view = m_Representation->visualizationWidget();
  if (show && m_Box == nullptr && view != nullptr)
  {
    m_Box = new VXBox(m_Representation->inputBounds(), view->getRenderWindowInteractor(), this);
    connect(m_Box, &VXBox::transformChanged, this, &VXFTransformFilterWidget::takeBoxValues);
    // from now on the data view takes the box's transform
    m_Representation->applyTransform();
  }
  if (m_Box == nullptr)
    return;
  if (show)
    m_Box->enable();
  else
    m_Box->disable();
  if (view != nullptr)
    view->render();
}

void VXFTransformFilterWidget::resetTransform()
{
  if (m_Representation != nullptr)
    m_Representation->setTransform({ 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 }, { 1.0, 1.0, 1.0 });
}

void VXFTransformFilterWidget::takeBoxValues()
{
  if (m_Representation != nullptr && m_Box != nullptr)
    m_Representation->setTransform(m_Box->getTranslation(), m_Box->getRotation(),
                                   m_Box->getScale());
}

void VXFTransformFilterWidget::takeSpinBoxValues()
{
  if (m_Representation != nullptr)
    m_Representation->setTransform(m_BoxWidget->translation(), m_BoxWidget->rotation(),
                                   m_BoxWidget->scale());
}
