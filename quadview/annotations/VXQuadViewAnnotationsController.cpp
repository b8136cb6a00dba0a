#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"

#include "quadview/annotations/VXAnnotationHud.hpp"

#include <QVTKOpenGLNativeWidget.h>

#include <vtkRenderWindow.h>

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QTextEdit>
#include <QtWidgets/QToolTip>

#include <algorithm>
#include <functional>

namespace voxelia::quadview::annotations
{
int VXQuadViewAnnotationsController::s_NextRulerNumber = 1;
int VXQuadViewAnnotationsController::s_NextMarkNumber = 1;

namespace
{
/** Whether the user is typing text, so that an M key is a letter and not the gesture. */
bool typingInTextField()
{
  QWidget* focus = QApplication::focusWidget();
  return qobject_cast<QLineEdit*>(focus) != nullptr || qobject_cast<QTextEdit*>(focus) != nullptr ||
         qobject_cast<QPlainTextEdit*>(focus) != nullptr ||
         qobject_cast<QAbstractSpinBox*>(focus) != nullptr;
}

/**
 * Watches every key event of the application for the M key, which arms the
 * mark gesture wherever the keyboard focus is. Kept apart from the pane's
 * filter so that each pane event is handled once, and cheap: it only reads
 * the key code.
 */
class MarkKeyWatcher : public QObject
{
public:
  MarkKeyWatcher(std::function<void(bool)> onMarkKey, QObject* parent)
    : QObject(parent)
    , m_OnMarkKey(std::move(onMarkKey))
  {
  }

  bool eventFilter(QObject* /*watched*/, QEvent* event) override
  {
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
      return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_M && !key->isAutoRepeat() && !typingInTextField())
      m_OnMarkKey(type == QEvent::KeyPress);
    return false;
  }

private:
  std::function<void(bool)> m_OnMarkKey;
};
} // namespace

VXQuadViewAnnotationsController::VXQuadViewAnnotationsController(
  SlicePaneRole role, QVTKOpenGLNativeWidget* pane, PlaneProvider plane, BoundsProvider bounds,
  SliceIndexProvider sliceIndex, QObject* parent)
  : QObject(parent)
  , m_Role(role)
  , m_Pane(pane)
  , m_PlaneProvider(std::move(plane))
  , m_BoundsProvider(std::move(bounds))
  , m_SliceIndexProvider(std::move(sliceIndex))
{
  if (m_Pane)
  {
    m_Pane->installEventFilter(this);
    m_Pane->setFocusPolicy(Qt::StrongFocus);
    m_Pane->setMouseTracking(true);
  }
  if (auto* app = qobject_cast<QApplication*>(QCoreApplication::instance()))
  {
    app->installEventFilter(new MarkKeyWatcher([this](bool held) { m_MarkKeyHeld = held; }, this));
    connect(app, &QApplication::focusChanged, this,
            &VXQuadViewAnnotationsController::onFocusChanged);
  }
}

VXQuadViewAnnotationsController::~VXQuadViewAnnotationsController()
{
  // the editor points at a record that is about to go
  delete m_Hud.data();
  m_HudAnnotation = nullptr;
  m_Hovered = nullptr;
  m_Annotations.clear();
}

SlicePaneRole VXQuadViewAnnotationsController::role() const
{
  return m_Role;
}

QVTKOpenGLNativeWidget* VXQuadViewAnnotationsController::pane() const
{
  return m_Pane.data();
}

void VXQuadViewAnnotationsController::addAnnotation(
  std::unique_ptr<VXQuadViewAnnotation> annotation)
{
  if (!annotation)
    return;
  const AnnotationId id = annotation->id();
  m_Annotations.push_back(std::move(annotation));
  Q_EMIT annotationAdded(id);
}

void VXQuadViewAnnotationsController::remove(AnnotationId id)
{
  auto it = std::find_if(m_Annotations.begin(), m_Annotations.end(),
                         [&id](const auto& a) { return a->id() == id; });
  if (it == m_Annotations.end())
    return;
  if (m_HudAnnotation == it->get())
    hideHud();
  if (m_Hovered == it->get())
    m_Hovered = nullptr;
  m_Annotations.erase(it);
  renderPane();
  Q_EMIT annotationRemoved(id);
}

void VXQuadViewAnnotationsController::clearAll()
{
  hideHud();
  m_Hovered = nullptr;
  while (!m_Annotations.empty())
  {
    const AnnotationId id = m_Annotations.back()->id();
    m_Annotations.pop_back();
    Q_EMIT annotationRemoved(id);
  }
  renderPane();
}

VXQuadViewAnnotation* VXQuadViewAnnotationsController::annotationById(AnnotationId id) const
{
  for (const auto& a : m_Annotations)
    if (a->id() == id)
      return a.get();
  return nullptr;
}

VXQuadViewAnnotation* VXQuadViewAnnotationsController::hitTest(QPoint p) const
{
  for (auto it = m_Annotations.rbegin(); it != m_Annotations.rend(); ++it)
    if ((*it)->hitTestScreen(p))
      return it->get();
  return nullptr;
}

const std::vector<std::unique_ptr<VXQuadViewAnnotation>>&
VXQuadViewAnnotationsController::annotations() const
{
  return m_Annotations;
}

int VXQuadViewAnnotationsController::count() const
{
  return static_cast<int>(m_Annotations.size());
}

SlicePlane VXQuadViewAnnotationsController::currentPlane() const
{
  return m_PlaneProvider ? m_PlaneProvider() : SlicePlane{};
}

WorldBounds VXQuadViewAnnotationsController::currentBounds() const
{
  return m_BoundsProvider ? m_BoundsProvider() : WorldBounds{};
}

int VXQuadViewAnnotationsController::currentSliceIndex() const
{
  return m_SliceIndexProvider ? m_SliceIndexProvider() : 0;
}

QString VXQuadViewAnnotationsController::nextRulerName()
{
  return QStringLiteral("Ruler %1").arg(s_NextRulerNumber++);
}

QString VXQuadViewAnnotationsController::nextMarkName()
{
  return QStringLiteral("Mark %1").arg(s_NextMarkNumber++);
}

void VXQuadViewAnnotationsController::onSliceChanged()
{
  const SlicePlane plane = currentPlane();
  for (const auto& a : m_Annotations)
    a->onSliceChanged(plane);
  if (m_Hud && !m_Hud->userMoved())
    positionHud();
}

QJsonArray VXQuadViewAnnotationsController::serialize() const
{
  QJsonArray records;
  for (const auto& a : m_Annotations)
  {
    QJsonObject object;
    a->serialize(object);
    records.append(object);
  }
  return records;
}

void VXQuadViewAnnotationsController::showHudFor(VXQuadViewAnnotation* annotation)
{
  if (annotation == nullptr || !m_Pane)
    return;
  hideHud();
  VXAnnotationHud* hud = annotation->createHudWidget(m_Pane);
  if (hud == nullptr)
    return;
  m_Hud = hud;
  m_HudAnnotation = annotation;
  annotation->setSelectedVisual(true);
  hud->adjustSize();
  if (hud->width() < k_MinHudWidth)
  {
    hud->setFixedWidth(k_MinHudWidth);
    hud->adjustSize();
  }
  positionHud();
  hud->show();
  hud->raise();
  hud->setFocus();
}

void VXQuadViewAnnotationsController::hideHud()
{
  // clear the references first: hiding moves the focus, which calls back here
  QPointer<VXAnnotationHud> hud = m_Hud;
  VXQuadViewAnnotation* annotation = m_HudAnnotation;
  m_Hud = nullptr;
  m_HudAnnotation = nullptr;
  if (annotation != nullptr)
    annotation->setSelectedVisual(false);
  if (hud)
  {
    hud->hide();
    hud->deleteLater();
  }
}

void VXQuadViewAnnotationsController::positionHud()
{
  if (!m_Hud || !m_Pane || m_HudAnnotation == nullptr)
    return;
  const QRect r = m_HudAnnotation->screenBounds();
  if (r.isEmpty())
    return;
  const QRect pane = m_Pane->rect();
  const int w = m_Hud->width();
  const int h = m_Hud->height();
  const auto limit = [](int value, int low, int high)
  { return std::max(low, std::min(value, high)); };
  const int x =
    limit(r.center().x() - w / 2, pane.left() + k_HudMargin, pane.right() - k_HudMargin - w);
  int y = r.top() - k_HudGap - h;
  if (y < pane.top() + k_HudMargin)
    y = r.bottom() + k_HudGap;
  y = limit(y, pane.top() + k_HudMargin, pane.bottom() - k_HudMargin - h);
  m_Hud->move(x, y);
}

QPoint VXQuadViewAnnotationsController::paneLocal(QPoint global) const
{
  return m_Pane ? m_Pane->mapFromGlobal(global) : global;
}

VXAnnotationHud* VXQuadViewAnnotationsController::hud() const
{
  return m_Hud.data();
}

VXQuadViewAnnotation* VXQuadViewAnnotationsController::hudAnnotation() const
{
  return m_HudAnnotation;
}

VXQuadViewAnnotation* VXQuadViewAnnotationsController::hoveredAnnotation() const
{
  return m_Hovered;
}

bool VXQuadViewAnnotationsController::markKeyHeld() const
{
  return m_MarkKeyHeld;
}

void VXQuadViewAnnotationsController::notifyAnnotationChanged(AnnotationId id)
{
  Q_EMIT annotationChanged(id);
}

void VXQuadViewAnnotationsController::notifyNavigateRequested(AnnotationId id)
{
  Q_EMIT navigateRequested(id);
}

bool VXQuadViewAnnotationsController::eventFilter(QObject* watched, QEvent* event)
{
  // the M key is followed application-wide by the key watcher; here only the pane's own events
  const QEvent::Type type = event->type();
  if (watched != m_Pane.data() || !m_Pane)
    return false;

  switch (type)
  {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    {
      const auto* mouse = static_cast<QMouseEvent*>(event);
      const QPoint pos = mouse->position().toPoint();
      if (m_Hud && !QRect(m_Hud->mapToGlobal(QPoint(0, 0)), m_Hud->size())
                      .contains(mouse->globalPosition().toPoint()))
        hideHud();
      if (type == QEvent::MouseButtonDblClick)
      {
        if (mouse->button() != Qt::LeftButton)
          return false;
        VXQuadViewAnnotation* hit = hitTest(pos);
        if (hit == nullptr)
          return false;
        showHudFor(hit);
        return true;
      }
      if (mouse->button() == Qt::LeftButton && m_MarkKeyHeld)
      {
        Q_EMIT markClickGesture(pos);
        return true;
      }
      if (mouse->button() == Qt::RightButton)
        Q_EMIT rightClickedAt(pos);
      return false;
    }
    case QEvent::MouseMove:
    {
      const auto* mouse = static_cast<QMouseEvent*>(event);
      setHovered(hitTest(mouse->position().toPoint()), mouse->globalPosition().toPoint());
      return false;
    }
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && m_Hud)
      {
        hideHud();
        return true;
      }
      return false;
    case QEvent::FocusOut:
      m_MarkKeyHeld = false;
      return false;
    case QEvent::Leave:
      setHovered(nullptr, QPoint());
      return false;
    default:
      return false;
  }
}

void VXQuadViewAnnotationsController::onFocusChanged(QWidget* /*oldFocus*/, QWidget* newFocus)
{
  if (!m_Hud || !m_Pane)
    return;
  if (newFocus == m_Pane.data() || (newFocus != nullptr && m_Pane->isAncestorOf(newFocus)))
    return;
  hideHud();
}

void VXQuadViewAnnotationsController::setHovered(VXQuadViewAnnotation* annotation, QPoint globalPos)
{
  if (annotation == m_Hovered)
    return;
  m_Hovered = annotation;
  if (annotation != nullptr)
  {
    QToolTip::showText(globalPos, annotation->summaryText(), m_Pane);
    m_Pane->setCursor(Qt::PointingHandCursor);
  }
  else
  {
    QToolTip::hideText();
    if (m_Pane)
      m_Pane->unsetCursor();
  }
}

void VXQuadViewAnnotationsController::renderPane() const
{
  if (m_Pane && m_Pane->renderWindow() != nullptr)
    m_Pane->renderWindow()->Render();
}
} // namespace voxelia::quadview::annotations
