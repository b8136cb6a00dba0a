#include "visualization/QtWidgets/VXFClipFilterWidget.hpp"

#include "visualization/QtWidgets/VXBoxWidget.hpp"
#include "visualization/QtWidgets/VXPlaneWidget.hpp"
#include "visualization/VXBox.hpp"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

VXFClipFilterWidget::VXFClipFilterWidget(VXFClip* filter, QWidget* parent)
  : QWidget(parent)
  , m_Filter(filter)
{
  setObjectName("VXFClipFilterWidget");
  auto* form = new QFormLayout(this);
  m_ClipTypeCombo = new QComboBox(this);
  m_ClipTypeCombo->setObjectName("m_ClipTypeCombo");
  m_ClipTypeCombo->addItems({ "Plane", "Box" });
  form->addRow("Clip Type:", m_ClipTypeCombo);

  m_ToolPages = new QStackedWidget(this);
  m_PlaneWidget = new VXPlaneWidget(m_ToolPages);
  m_BoxWidget = new VXBoxWidget(m_ToolPages);
  m_ToolPages->addWidget(m_PlaneWidget);
  m_ToolPages->addWidget(m_BoxWidget);
  form->addRow(m_ToolPages);

  m_ShowToolCheckBox = new QCheckBox("Show Plane", this);
  m_ShowToolCheckBox->setObjectName("m_ShowToolCheckBox");
  m_InvertedCheckBox = new QCheckBox("Inverted", this);
  m_InvertedCheckBox->setObjectName("m_InvertedCheckBox");
  form->addRow(m_ShowToolCheckBox);
  form->addRow(m_InvertedCheckBox);
  if (filter != nullptr)
    form->addRow("Add Representation:", filter->addRepresentationTypeCombo(this));
  m_ApplyButton = new QPushButton("Apply", this);
  m_ApplyButton->setObjectName("m_ApplyButton");
  form->addRow(m_ApplyButton);
  if (filter == nullptr)
    return;

  updateClipTypeComboBox(filter->clipType());
  updateInvertedCheckBox(filter->inverted());
  updateShowClipToolCheckBox(filter->showClipTool());
  connect(m_ClipTypeCombo, &QComboBox::currentIndexChanged, this,
          &VXFClipFilterWidget::setClipType);
  connect(m_InvertedCheckBox, &QCheckBox::toggled, filter, &VXFClip::setInverted);
  connect(m_ShowToolCheckBox, &QCheckBox::toggled, filter, &VXFClip::setShowClipTool);
  connect(m_ApplyButton, &QPushButton::clicked, filter, &VXFClip::applyFilter);
  connect(filter, &VXFClip::clipTypeChanged, this, &VXFClipFilterWidget::updateClipTypeComboBox);
  connect(filter, &VXFClip::invertedChanged, this, &VXFClipFilterWidget::updateInvertedCheckBox);
  connect(filter, &VXFClip::showClipToolChanged, this,
          &VXFClipFilterWidget::updateShowClipToolCheckBox);

  m_PlaneWidget->bindPlane(filter->plane());
  if (VXBox* box = filter->box())
  {
    auto show = [this, box]()
    { m_BoxWidget->setValues(box->getTranslation(), box->getRotation(), box->getScale()); };
    show();
    connect(box, &VXBox::transformChanged, m_BoxWidget, show);
    connect(m_BoxWidget, &VXBoxWidget::transformChanged, box,
            [box](std::array<double, 3> translation, std::array<double, 3> rotation,
                  std::array<double, 3> scale) { box->setValues(translation, rotation, scale); });
  }
}

VXFClipFilterWidget::~VXFClipFilterWidget() = default;

VXPlaneWidget* VXFClipFilterWidget::planeWidget() const
{
  return m_PlaneWidget;
}

VXBoxWidget* VXFClipFilterWidget::boxWidget() const
{
  return m_BoxWidget;
}

void VXFClipFilterWidget::setClipType(int index)
{
  if (m_Filter != nullptr && (index == 0 || index == 1))
    m_Filter->setClipType(static_cast<VXFClip::ClipType>(index));
}

void VXFClipFilterWidget::updateInvertedCheckBox(bool inverted)
{
  const QSignalBlocker blocker(m_InvertedCheckBox);
  m_InvertedCheckBox->setChecked(inverted);
}

void VXFClipFilterWidget::updateShowClipToolCheckBox(bool show)
{
  const QSignalBlocker blocker(m_ShowToolCheckBox);
  m_ShowToolCheckBox->setChecked(show);
}

void VXFClipFilterWidget::updateClipTypeComboBox(VXFClip::ClipType type)
{
  const int index = static_cast<int>(type);
  {
    const QSignalBlocker blocker(m_ClipTypeCombo);
    m_ClipTypeCombo->setCurrentIndex(index);
  }
  m_ToolPages->setCurrentIndex(index);
  m_ShowToolCheckBox->setText(type == VXFClip::ClipType::Box ? "Show Box" : "Show Plane");
}
