#include "quadview/annotations/VXQuadViewRulerHUD.hpp"

#include "quadview/annotations/VXQuadViewRuler.hpp"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace voxelia::quadview::annotations
{
VXQuadViewRulerHUD::VXQuadViewRulerHUD(VXQuadViewRuler* ruler,
                                       VXQuadViewAnnotationsController* controller, QWidget* parent)
  : VXAnnotationHud(controller, parent)
  , m_Ruler(ruler)
{
  setupUi();
  refreshFromSource();
}

VXQuadViewRulerHUD::~VXQuadViewRulerHUD() = default;

VXQuadViewAnnotation* VXQuadViewRulerHUD::annotation() const
{
  return m_Ruler.data();
}

void VXQuadViewRulerHUD::setupUi()
{
  setObjectName(QStringLiteral("rulerHud"));
  addNameField();
  m_LengthLabel = new QLabel;
  m_LengthLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* length = new QFormLayout;
  length->addRow(QStringLiteral("Length:"), m_LengthLabel);
  m_Layout->addLayout(length);
  const SlicePlane plane = m_Ruler != nullptr ? m_Ruler->anchorPlane() : SlicePlane{};
  m_End1 = makePointFields(QStringLiteral("Endpoint 1"), plane);
  m_End2 = makePointFields(QStringLiteral("Endpoint 2"), plane);
  addCommonControls();

  connect(m_NameEdit, &QLineEdit::editingFinished, this, &VXQuadViewRulerHUD::onNameEdited);
  for (QDoubleSpinBox* spin : { m_End1.u, m_End1.v })
    connect(spin, &QDoubleSpinBox::valueChanged, this, &VXQuadViewRulerHUD::onEndpoint1UvEdited);
  for (QDoubleSpinBox* spin : { m_End2.u, m_End2.v })
    connect(spin, &QDoubleSpinBox::valueChanged, this, &VXQuadViewRulerHUD::onEndpoint2UvEdited);
  connect(m_LockedCheck, &QCheckBox::toggled, this, &VXQuadViewRulerHUD::onLockedToggled);
  connect(m_DeleteButton, &QPushButton::clicked, this, &VXQuadViewRulerHUD::onDeleteClicked);
  connect(m_CloseButton, &QPushButton::clicked, this, &VXQuadViewRulerHUD::onCloseClicked);
}

void VXQuadViewRulerHUD::onNameEdited()
{
  applyName();
}

void VXQuadViewRulerHUD::onEndpoint1UvEdited()
{
  applyEndpoint(1);
}

void VXQuadViewRulerHUD::onEndpoint2UvEdited()
{
  applyEndpoint(2);
}

void VXQuadViewRulerHUD::applyEndpoint(int end)
{
  if (m_Ruler == nullptr)
    return;
  const PointFields& fields = end == 1 ? m_End1 : m_End2;
  const std::array<double, 3> current = end == 1 ? m_Ruler->point1() : m_Ruler->point2();
  const std::array<double, 3> point = pointFromFields(fields, m_Ruler->anchorPlane(), current);
  if (acceptPoint(point, m_Ruler->geomBounds()))
  {
    if (end == 1)
      m_Ruler->setPoint1(point);
    else
      m_Ruler->setPoint2(point);
    m_Ruler->notifyChanged();
  }
  refreshFromSource();
}

void VXQuadViewRulerHUD::onLockedToggled(bool locked)
{
  applyLocked(locked);
}

void VXQuadViewRulerHUD::onDeleteClicked()
{
  deleteAnnotation();
}

void VXQuadViewRulerHUD::onCloseClicked()
{
  closeEditor();
}

void VXQuadViewRulerHUD::refreshFromSource()
{
  if (m_Ruler == nullptr)
    return;
  if (!m_NameEdit->hasFocus())
  {
    const QSignalBlocker blocker(m_NameEdit);
    m_NameEdit->setText(m_Ruler->name());
  }
  m_LengthLabel->setText(m_Ruler->summaryText());
  showPoint(m_End1, m_Ruler->anchorPlane(), m_Ruler->point1());
  showPoint(m_End2, m_Ruler->anchorPlane(), m_Ruler->point2());
  const QSignalBlocker blocker(m_LockedCheck);
  m_LockedCheck->setChecked(m_Ruler->locked());
}
} // namespace voxelia::quadview::annotations
