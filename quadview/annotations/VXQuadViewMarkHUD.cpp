#include "quadview/annotations/VXQuadViewMarkHUD.hpp"

#include "quadview/annotations/VXQuadViewMark.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QVBoxLayout>

namespace voxelia::quadview::annotations
{
VXQuadViewMarkHUD::VXQuadViewMarkHUD(VXQuadViewMark* mark,
                                     VXQuadViewAnnotationsController* controller, QWidget* parent)
  : VXAnnotationHud(controller, parent)
  , m_Mark(mark)
{
  setupUi();
  refreshFromSource();
}

VXQuadViewMarkHUD::~VXQuadViewMarkHUD() = default;

VXQuadViewAnnotation* VXQuadViewMarkHUD::annotation() const
{
  return m_Mark.data();
}

void VXQuadViewMarkHUD::setupUi()
{
  setObjectName(QStringLiteral("markHud"));
  addNameField();
  const SlicePlane plane = m_Mark != nullptr ? m_Mark->anchorPlane() : SlicePlane{};
  m_Anchor = makePointFields(QStringLiteral("Anchor"), plane);

  auto* appearance = new QGroupBox(QStringLiteral("Appearance"));
  auto* grid = new QGridLayout(appearance);
  grid->setContentsMargins(6, 4, 6, 4);
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(2);
  m_ColorButton = new KXColorButton;
  // the swatch grows with the button: keep it small
  m_ColorButton->setFixedSize(48, 22);
  VXUserPrompt::routeColorButton(m_ColorButton, QStringLiteral("Mark Color"));
  grid->addWidget(new QLabel(QStringLiteral("Color:")), 0, 0);
  grid->addWidget(m_ColorButton, 0, 1);
  m_ShapeCombo = new QComboBox;
  for (MarkShape shape : { MarkShape::Sphere, MarkShape::Cross, MarkShape::Square })
    m_ShapeCombo->addItem(markShapeLabel(shape));
  grid->addWidget(new QLabel(QStringLiteral("Shape:")), 0, 2);
  grid->addWidget(m_ShapeCombo, 0, 3);
  m_SizeSpin = new QSpinBox;
  m_SizeSpin->setRange(VXQuadViewMark::k_MinSize, VXQuadViewMark::k_MaxSize);
  m_SizeSpin->setSuffix(QStringLiteral(" px"));
  m_SizeSpin->setKeyboardTracking(false);
  grid->addWidget(new QLabel(QStringLiteral("Size:")), 1, 0);
  grid->addWidget(m_SizeSpin, 1, 1);
  m_LabelCheck = new QCheckBox(QStringLiteral("Show Label in Viewport"));
  grid->addWidget(m_LabelCheck, 2, 0, 1, 4);
  m_Layout->addWidget(appearance);
  addCommonControls();

  connect(m_NameEdit, &QLineEdit::editingFinished, this, &VXQuadViewMarkHUD::onNameEdited);
  for (QDoubleSpinBox* spin : { m_Anchor.u, m_Anchor.v })
    connect(spin, &QDoubleSpinBox::valueChanged, this, &VXQuadViewMarkHUD::onAnchorUvEdited);
  connect(m_ColorButton, &KXColorButton::changedColor, this, &VXQuadViewMarkHUD::onColorChanged);
  connect(m_ShapeCombo, &QComboBox::currentIndexChanged, this, &VXQuadViewMarkHUD::onShapeChanged);
  connect(m_SizeSpin, &QSpinBox::valueChanged, this, &VXQuadViewMarkHUD::onSizeChanged);
  connect(m_LabelCheck, &QCheckBox::toggled, this, &VXQuadViewMarkHUD::onLabelVisibleToggled);
  connect(m_LockedCheck, &QCheckBox::toggled, this, &VXQuadViewMarkHUD::onLockedToggled);
  connect(m_DeleteButton, &QPushButton::clicked, this, &VXQuadViewMarkHUD::onDeleteClicked);
  connect(m_CloseButton, &QPushButton::clicked, this, &VXQuadViewMarkHUD::onCloseClicked);
}

void VXQuadViewMarkHUD::onNameEdited()
{
  applyName();
  // the label in the pane shows the name
  if (m_Mark != nullptr)
    m_Mark->updateLabelActor();
}

void VXQuadViewMarkHUD::onAnchorUvEdited()
{
  if (m_Mark == nullptr)
    return;
  const std::array<double, 3> point =
    pointFromFields(m_Anchor, m_Mark->anchorPlane(), m_Mark->anchor());
  if (acceptPoint(point, m_Mark->geomBounds()))
  {
    m_Mark->setAnchor(point);
    m_Mark->notifyChanged();
  }
  refreshFromSource();
}

void VXQuadViewMarkHUD::onColorChanged(QColor color)
{
  if (m_Mark == nullptr || !color.isValid())
    return;
  m_Mark->setColor(color);
  notifyChanged();
}

void VXQuadViewMarkHUD::onShapeChanged(int shape)
{
  if (m_Mark == nullptr || shape < 0)
    return;
  m_Mark->setShape(markShapeFromInt(shape));
  notifyChanged();
}

void VXQuadViewMarkHUD::onSizeChanged(int size)
{
  if (m_Mark == nullptr)
    return;
  m_Mark->setSizeInPixels(size);
  notifyChanged();
}

void VXQuadViewMarkHUD::onLabelVisibleToggled(bool visible)
{
  if (m_Mark == nullptr)
    return;
  m_Mark->setLabelVisibleInViewport(visible);
  notifyChanged();
}

void VXQuadViewMarkHUD::onLockedToggled(bool locked)
{
  applyLocked(locked);
}

void VXQuadViewMarkHUD::onDeleteClicked()
{
  deleteAnnotation();
}

void VXQuadViewMarkHUD::onCloseClicked()
{
  closeEditor();
}

void VXQuadViewMarkHUD::refreshFromSource()
{
  if (m_Mark == nullptr)
    return;
  if (!m_NameEdit->hasFocus())
  {
    const QSignalBlocker blocker(m_NameEdit);
    m_NameEdit->setText(m_Mark->name());
  }
  showPoint(m_Anchor, m_Mark->anchorPlane(), m_Mark->anchor());
  m_ColorButton->setColor(m_Mark->color());
  const QSignalBlocker blockShape(m_ShapeCombo);
  m_ShapeCombo->setCurrentIndex(static_cast<int>(m_Mark->shape()));
  const QSignalBlocker blockSize(m_SizeSpin);
  m_SizeSpin->setValue(m_Mark->sizeInPixels());
  const QSignalBlocker blockLabel(m_LabelCheck);
  m_LabelCheck->setChecked(m_Mark->labelVisibleInViewport());
  const QSignalBlocker blockLocked(m_LockedCheck);
  m_LockedCheck->setChecked(m_Mark->locked());
}
} // namespace voxelia::quadview::annotations
