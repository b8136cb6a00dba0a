#include "quadview/annotations/VXAnnotationHud.hpp"

#include "quadview/annotations/VXQuadViewAnnotation.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsTableModel.hpp"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <QtCore/QTimer>

#include <algorithm>

namespace voxelia::quadview::annotations
{
namespace
{
constexpr double k_AxisEps = 1e-5;

QDoubleSpinBox* makeCoordinateSpin()
{
  auto* spin = new QDoubleSpinBox;
  // wide open: a value outside the geometry is typed, refused and reverted, never clamped
  spin->setRange(-1e12, 1e12);
  spin->setDecimals(4);
  spin->setKeyboardTracking(false);
  // the wide range would size the box for thirteen digits
  spin->setFixedWidth(88);
  return spin;
}

// the index of the third world axis when both in-plane axes are world axes, else -1
int crossPlaneIndex(const SlicePlane& plane)
{
  const int u = worldAxisIndexOf(plane.axisU, k_AxisEps);
  const int v = worldAxisIndexOf(plane.axisV, k_AxisEps);
  if (u < 0 || v < 0 || u == v)
    return -1;
  return 3 - u - v;
}
} // namespace

VXAnnotationHud::VXAnnotationHud(VXQuadViewAnnotationsController* controller, QWidget* parent)
  : QFrame(parent)
  , m_Controller(controller)
{
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setCursor(Qt::OpenHandCursor);
  m_Layout = new QVBoxLayout(this);
  m_Layout->setContentsMargins(8, 8, 8, 8);
  m_Layout->setSpacing(4);
  if (controller != nullptr)
  {
    // the annotation moves under the user's hand in the pane: the fields follow
    connect(controller, &VXQuadViewAnnotationsController::annotationChanged, this,
            [this](const AnnotationId& id)
            {
              const VXQuadViewAnnotation* a = annotation();
              if (a != nullptr && a->id() == id)
                refreshFromSource();
            });
  }
}

VXAnnotationHud::~VXAnnotationHud() = default;

VXQuadViewAnnotation* VXAnnotationHud::annotation() const
{
  return nullptr;
}

void VXAnnotationHud::refreshFromSource() {}

void VXAnnotationHud::addNameField()
{
  auto* form = new QFormLayout;
  m_NameEdit = new QLineEdit;
  form->addRow(QStringLiteral("Name:"), m_NameEdit);
  m_Layout->addLayout(form);
}

bool VXAnnotationHud::acceptPoint(const std::array<double, 3>& point, const WorldBounds& bounds)
{
  const bool inside = bounds.contains(point);
  if (!inside)
    showInlineError(QStringLiteral("Out of bounds — reverted"));
  return inside;
}

void VXAnnotationHud::applyName()
{
  VXQuadViewAnnotation* a = annotation();
  if (a == nullptr || m_NameEdit == nullptr)
    return;
  const QString name = m_NameEdit->text().trimmed();
  if (!name.isEmpty() && name != a->name())
  {
    a->setName(name);
    notifyChanged();
  }
  const QSignalBlocker blocker(m_NameEdit);
  m_NameEdit->setText(a->name());
}

void VXAnnotationHud::applyLocked(bool locked)
{
  VXQuadViewAnnotation* a = annotation();
  if (a == nullptr)
    return;
  if (a->locked() != locked)
  {
    a->setLocked(locked);
    notifyChanged();
  }
  refreshFromSource();
}

void VXAnnotationHud::deleteAnnotation()
{
  VXQuadViewAnnotation* a = annotation();
  if (a == nullptr || m_Controller == nullptr)
    return;
  // the question may move the focus away, and the controller then closes this editor:
  // nothing of it is touched after the answer
  const QPointer<VXQuadViewAnnotationsController> controller = m_Controller;
  const AnnotationId id = a->id();
  if (!VXQuadViewAnnotationsTableModel::confirmDeleteOne(parentWidget(), a->name()))
    return;
  if (controller != nullptr)
    controller->remove(id);
}

void VXAnnotationHud::closeEditor()
{
  if (m_Controller != nullptr)
    m_Controller->hideHud();
  else
    hide();
}

void VXAnnotationHud::notifyChanged()
{
  if (VXQuadViewAnnotation* a = annotation(); a != nullptr && m_Controller != nullptr)
    m_Controller->notifyAnnotationChanged(a->id());
}

bool VXAnnotationHud::isInteractiveAt(const QPoint& pos) const
{
  for (QWidget* w = childAt(pos); w != nullptr && w != this; w = w->parentWidget())
  {
    if (qobject_cast<QAbstractButton*>(w) != nullptr ||
        qobject_cast<QAbstractSpinBox*>(w) != nullptr || qobject_cast<QLineEdit*>(w) != nullptr ||
        qobject_cast<QComboBox*>(w) != nullptr)
      return true;
  }
  return false;
}

VXAnnotationHud::PointFields VXAnnotationHud::makePointFields(const QString& title,
                                                              const SlicePlane& plane)
{
  PointFields fields;
  fields.group = new QGroupBox(title);
  // U and V side by side, the cross-plane value below: the editor has to fit small panes
  auto* grid = new QGridLayout(fields.group);
  grid->setContentsMargins(6, 4, 6, 4);
  grid->setHorizontalSpacing(4);
  grid->setVerticalSpacing(2);
  QString u = worldAxisName(plane.axisU, k_AxisEps);
  QString v = worldAxisName(plane.axisV, k_AxisEps);
  const int third = crossPlaneIndex(plane);
  const bool aligned = slicePlaneIsAxisAligned(plane, k_AxisEps) && third >= 0;
  if (!aligned || u.isEmpty() || v.isEmpty())
  {
    u = QStringLiteral("U");
    v = QStringLiteral("V");
  }
  const QString normal = aligned ? QString(QChar(u'X' + third)) : QStringLiteral("Normal");
  fields.u = makeCoordinateSpin();
  fields.v = makeCoordinateSpin();
  fields.crossPlane = new QLabel;
  fields.crossPlane->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid->addWidget(new QLabel(u + QStringLiteral(":")), 0, 0);
  grid->addWidget(fields.u, 0, 1);
  grid->addWidget(new QLabel(v + QStringLiteral(":")), 0, 2);
  grid->addWidget(fields.v, 0, 3);
  grid->addWidget(new QLabel(normal + QStringLiteral(":")), 1, 0);
  grid->addWidget(fields.crossPlane, 1, 1, 1, 3);
  m_Layout->addWidget(fields.group);
  return fields;
}

void VXAnnotationHud::showPoint(const PointFields& fields, const SlicePlane& plane,
                                const std::array<double, 3>& point)
{
  double u = 0.0;
  double v = 0.0;
  double w = 0.0;
  const int third = crossPlaneIndex(plane);
  if (slicePlaneIsAxisAligned(plane, k_AxisEps) && third >= 0)
  {
    u = point[static_cast<size_t>(worldAxisIndexOf(plane.axisU, k_AxisEps))];
    v = point[static_cast<size_t>(worldAxisIndexOf(plane.axisV, k_AxisEps))];
    w = point[static_cast<size_t>(third)];
  }
  else
  {
    const auto uv = inPlaneFromWorld(plane, point);
    u = uv[0];
    v = uv[1];
    if (const auto n = planeNormal(plane, 1e-12))
      w = signedDistanceToPlane(point, plane.origin, *n);
  }
  const QSignalBlocker blockU(fields.u);
  const QSignalBlocker blockV(fields.v);
  fields.u->setValue(u);
  fields.v->setValue(v);
  fields.crossPlane->setText(QString::number(w, 'f', 4));
}

std::array<double, 3> VXAnnotationHud::pointFromFields(const PointFields& fields,
                                                       const SlicePlane& plane,
                                                       const std::array<double, 3>& current)
{
  // a field the user left alone shows the value rounded: keep the exact one behind it
  const auto exact = [](const QDoubleSpinBox* spin, double shown)
  {
    const double rounded = QString::number(shown, 'f', spin->decimals()).toDouble();
    return spin->value() == rounded ? shown : spin->value();
  };
  if (slicePlaneIsAxisAligned(plane, k_AxisEps) && crossPlaneIndex(plane) >= 0)
  {
    std::array<double, 3> point = current;
    const auto iu = static_cast<size_t>(worldAxisIndexOf(plane.axisU, k_AxisEps));
    const auto iv = static_cast<size_t>(worldAxisIndexOf(plane.axisV, k_AxisEps));
    point[iu] = exact(fields.u, current[iu]);
    point[iv] = exact(fields.v, current[iv]);
    return point;
  }
  const Vec2 uv = inPlaneFromWorld(plane, current);
  return worldFromInPlane(plane, { exact(fields.u, uv[0]), exact(fields.v, uv[1]) });
}

void VXAnnotationHud::addCommonControls()
{
  m_LockedCheck = new QCheckBox(QStringLiteral("Locked"));
  m_LockedCheck->setToolTip(
    QStringLiteral("A locked annotation stays on its slice and shows only there."));

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_LockedCheck);
  buttons->addStretch(1);
  m_DeleteButton = new QPushButton(QStringLiteral("Delete"));
  m_DeleteButton->setObjectName(QStringLiteral("hudDestructiveButton"));
  m_CloseButton = new QPushButton(QStringLiteral("Close"));
  m_CloseButton->setObjectName(QStringLiteral("hudPrimaryButton"));
  m_CloseButton->setToolTip(QStringLiteral("Close the editor (Esc)"));
  m_CloseButton->setDefault(true);
  buttons->addWidget(m_DeleteButton);
  buttons->addWidget(m_CloseButton);
  m_Layout->addLayout(buttons);

  m_InlineError = new QLabel;
  m_InlineError->setObjectName(QStringLiteral("hudInlineError"));
  m_InlineError->setStyleSheet(QStringLiteral("color: #d03030;"));
  m_InlineError->setWordWrap(true);
  m_InlineError->hide();
  m_Layout->addWidget(m_InlineError);
  m_InlineErrorTimer = new QTimer(this);
  m_InlineErrorTimer->setSingleShot(true);
  m_InlineErrorTimer->setInterval(k_InlineErrorMs);
  connect(m_InlineErrorTimer, &QTimer::timeout, m_InlineError,
          [this]()
          {
            m_InlineError->clear();
            m_InlineError->hide();
          });
}

void VXAnnotationHud::showInlineError(const QString& message)
{
  if (m_InlineError == nullptr)
    return;
  m_InlineError->setText(message);
  m_InlineError->show();
  m_InlineErrorTimer->start();
}

void VXAnnotationHud::mousePressEvent(QMouseEvent* event)
{
  if (event->button() == Qt::LeftButton && !isInteractiveAt(event->position().toPoint()))
  {
    m_Dragging = true;
    m_PressGlobalPos = event->globalPosition().toPoint();
    m_PosAtPress = pos();
    setCursor(Qt::ClosedHandCursor);
    event->accept();
    return;
  }
  QFrame::mousePressEvent(event);
}

void VXAnnotationHud::mouseMoveEvent(QMouseEvent* event)
{
  if (!m_Dragging)
  {
    QFrame::mouseMoveEvent(event);
    return;
  }
  QPoint target = m_PosAtPress + (event->globalPosition().toPoint() - m_PressGlobalPos);
  if (const QWidget* parent = parentWidget())
  {
    const QRect area = parent->rect();
    const int maxX = std::max(area.left() + k_DragMargin, area.right() - k_DragMargin - width());
    const int maxY = std::max(area.top() + k_DragMargin, area.bottom() - k_DragMargin - height());
    target.setX(std::clamp(target.x(), area.left() + k_DragMargin, maxX));
    target.setY(std::clamp(target.y(), area.top() + k_DragMargin, maxY));
  }
  if (target != pos())
  {
    move(target);
    m_UserMoved = true;
  }
  event->accept();
}

void VXAnnotationHud::mouseReleaseEvent(QMouseEvent* event)
{
  if (m_Dragging && event->button() == Qt::LeftButton)
  {
    m_Dragging = false;
    setCursor(Qt::OpenHandCursor);
    event->accept();
    return;
  }
  QFrame::mouseReleaseEvent(event);
}
} // namespace voxelia::quadview::annotations
