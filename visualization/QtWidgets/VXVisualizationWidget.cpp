#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include "utils/ColorUtils.hpp"
#include "visualization/QtWidgets/VXViewActionsController.hpp"
#include "visualization/QtWidgets/VXViewCubeWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"
#include "visualization/QtWidgets/VXFrameRateCallback.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <vtkActor.h>
#include <vtkAnnotatedCubeActor.h>
#include <vtkCamera.h>
#include <vtkCameraOrientationRepresentation.h>
#include <vtkCommand.h>
#include <vtkCursor3D.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkGridAxesActor3D.h>
#include <vtkHoverWidget.h>
#include <vtkNew.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkOrientationMarkerWidget.h>
#include <vtkOutlineGlowPass.h>
#include <vtkPolyDataMapper.h>
#include <vtkProp.h>
#include <vtkProperty.h>
#include <vtkRenderStepsPass.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkTextureObject.h>

#include <QtCore/QTimer>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>

#include <algorithm>
#include <cmath>

VXVisualizationWidget* VXVisualizationWidget::m_LinkingWidget = nullptr;

namespace
{
bool validBounds(const std::array<double, 6>& b)
{
  return b[0] <= b[1] && b[2] <= b[3] && b[4] <= b[5];
}

/** Whether all three keys hold numbers: triples are applied whole or not at all. */
bool allPresent(const nlohmann::json& input, const char* a, const char* b, const char* c)
{
  auto ok = [&input](const char* key) { return input.contains(key) && input.at(key).is_number(); };
  return ok(a) && ok(b) && ok(c);
}
} // namespace

VXVisualizationWidget::VXVisualizationWidget(QWidget* parent, int numRenderLayers)
  : VXGLWidget(parent)
  , m_NumRenderLayers(numRenderLayers > 0 ? numRenderLayers : 1)
{
  setupGui();
}

VXVisualizationWidget::~VXVisualizationWidget()
{
  unlinkCamera();
  if (m_LinkingWidget == this)
    m_LinkingWidget = nullptr;
  m_ViewActions.reset();
  if (renderWindow() != nullptr && m_WindowStartObserver != 0)
    renderWindow()->RemoveObserver(m_WindowStartObserver);
  // the widgets observe the interactor, which goes away with the window
  if (m_HoverWidget != nullptr)
    m_HoverWidget->SetEnabled(0);
  if (m_CameraOrientationWidget != nullptr)
    m_CameraOrientationWidget->SetEnabled(0);
  if (m_OrientationWidget != nullptr)
    m_OrientationWidget->SetEnabled(0);
}

// ---------------------------------------------------------------------------
// Construction

void VXVisualizationWidget::setupGui()
{
  initializeRendererAndAxes();

  m_ViewActions = std::make_unique<VXViewActionsController>(m_Renderer, this, this);
  connect(m_ViewActions.get(), &VXViewActionsController::printOutput, this,
          &VXVisualizationWidget::printOutput);
  m_ViewActions->setPreCaptureHook(
    [this]()
    {
      if (m_Toolbar != nullptr)
        m_Toolbar->hide();
      if (m_OutlineRenderer != nullptr)
      {
        // the outline layer must land in the captured buffer, so draw it first and keep nothing
        m_OutlineRenderer->SetLayer(0);
        m_SavedPreserveColorBuffer = m_OutlineRenderer->GetPreserveColorBuffer() != 0;
        m_OutlineRenderer->SetPreserveColorBuffer(false);
      }
    });
  m_ViewActions->setPostCaptureHook(
    [this]()
    {
      if (m_Toolbar != nullptr)
        m_Toolbar->show();
      if (m_OutlineRenderer != nullptr)
      {
        m_OutlineRenderer->SetPreserveColorBuffer(m_SavedPreserveColorBuffer);
        m_OutlineRenderer->SetLayer(1);
      }
    });
  m_ViewActions->setBackgroundChangedHook(
    [this](const QColor& color)
    {
      if (m_OutlineRenderer != nullptr)
        m_OutlineRenderer->SetBackground(color.redF(), color.greenF(), color.blueF());
    });
  m_ViewActions->setDefaultBackgroundProvider(
    []() { return KXPreferences::getDefaultRenderWindowBackground(); });

  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->SetInteractionModeToImage3D();

  m_Toolbar = new VXVisualizationToolbarWidget(this);
  recenterToolbar();
  m_Toolbar->show();

  connect(this, &VXVisualizationWidget::pickEvent, this,
          [this](double* pickPos, bool pick1ModeOn, bool pick2ModeOn)
          {
            if (m_InteractorStyle == nullptr || !m_InteractorStyle->cellPickModeOn())
              return;
            updateCenterOfRotation(pickPos, pick1ModeOn, pick2ModeOn, true);
            m_Toolbar->releaseCenterOfRotationButton();
          });
  connect(KXPreferences::Instance(), &KXPreferences::orientationMarkerTextChanged, this,
          &VXVisualizationWidget::setOrientationMarkerText);
}

void VXVisualizationWidget::initializeRendererAndAxes()
{
  if (m_Renderer == nullptr)
  {
    vtkOpenGLRenderWindow::SetGlobalMaximumNumberOfMultiSamples(8);

    m_Renderer = vtkSmartPointer<vtkRenderer>::New();
    m_Renderer->SetLayer(0);
    m_OutlineRenderer = vtkSmartPointer<vtkRenderer>::New();
    m_OutlineRenderer->SetLayer(1);

    m_FrameRateCallback = vtkSmartPointer<VXFrameRateCallback>::New();
    m_FrameRateCallback->setVisualizationWidget(this);
    m_Renderer->AddObserver(vtkCommand::EndEvent, m_FrameRateCallback);

    const vtkColor3d background =
      KXVtk::utils::GetVtkColor3dFromQColor(KXPreferences::getDefaultRenderWindowBackground());
    m_Renderer->SetBackground(background.GetData());
    m_OutlineRenderer->SetBackground(background.GetData());
    render();

    auto window = vtkSmartPointer<vtkGenericOpenGLRenderWindow>::New();
    window->SetMultiSamples(8);
    setRenderWindow(window);
    window->SetSize(width(), height());
    window->SetPosition(x(), y());
    window->SetNumberOfLayers(m_NumRenderLayers);
    window->AddRenderer(m_OutlineRenderer);
    window->AddRenderer(m_Renderer);

    vtkNew<vtkRenderStepsPass> steps;
    vtkNew<vtkOutlineGlowPass> glow;
    glow->SetDelegatePass(steps);
    m_OutlineRenderer->SetPass(glow);
    // The glow pass blurs and blends whole frame buffers even with nothing to
    // outline, which costs a large scene about a tenth of its frame time; the
    // layer is therefore switched on only for frames that have outlines.
    m_WindowStartObserver = window->AddObserver(vtkCommand::StartEvent, this,
                                                &VXVisualizationWidget::onWindowStartRender);

    vtkRenderWindowInteractor* interactor = window->GetInteractor();
    m_HoverWidget = vtkSmartPointer<vtkHoverWidget>::New();
    m_HoverWidget->SetInteractor(interactor);
    m_HoverWidget->SetTimerDuration(250);
    // VTK's 'i' key would switch the widget on behind the hover buttons' back
    m_HoverWidget->KeyPressActivationOff();

    m_PickerCallback = vtkSmartPointer<VXPickerCallback>::New();
    m_PickerCallback->setRenderer(m_Renderer);
    m_PickerCallback->setRenderWindow(window);
    m_PickerCallback->setPickFunction([this](double* pickPos, bool pick1ModeOn, bool pick2ModeOn)
                                      { Q_EMIT pickEvent(pickPos, pick1ModeOn, pick2ModeOn); });
    m_PickerCallback->setRenderFunction([this]() { render(); });
    m_PickerCallback->setupHighlightActors();
    m_HoverWidget->AddObserver(vtkCommand::TimerEvent, m_PickerCallback);
    m_HoverWidget->AddObserver(vtkCommand::EndInteractionEvent, m_PickerCallback);

    vtkNew<VXInteractorStyleCamera> style;
    if (interactor != nullptr)
      interactor->SetInteractorStyle(style);
    style->SetDefaultRenderer(m_Renderer);
    style->AddObserver(vtkCommand::PickEvent, m_PickerCallback);
    style->AddObserver(VXInteractorStyleCamera::k_KeyPressEvent, m_PickerCallback);
    style->AddObserver(VXInteractorStyleCamera::k_KeyReleaseEvent, m_PickerCallback);
    // the interactor keeps the style alive; the field is a plain pointer
    m_InteractorStyle = interactor != nullptr ? style.GetPointer() : nullptr;
    if (interactor == nullptr)
      style->RemoveAllObservers();

    m_CenterOfRotationActor = vtkSmartPointer<vtkActor>::New();
    m_CenterOfRotationActor->PickableOff();
    m_CenterOfRotationActor->GetProperty()->SetColor(0.0, 0.0, 0.0);
    m_CenterOfRotationCursor = vtkSmartPointer<vtkCursor3D>::New();
    m_CenterOfRotationCursor->AllOff();
    m_CenterOfRotationCursor->AxesOn();
    m_CenterOfRotationCursor->TranslationModeOn();
    syncCenterOfRotationCursor(visiblePropBounds());
    vtkNew<vtkPolyDataMapper> cursorMapper;
    cursorMapper->SetInputConnection(m_CenterOfRotationCursor->GetOutputPort());
    m_CenterOfRotationActor->SetMapper(cursorMapper);
    m_CenterOfRotationActor->SetVisibility(false);
    // the cross must never widen the bounds it is sized from
    m_CenterOfRotationActor->UseBoundsOff();
    m_CenterOfRotationActor->GetProperty()->SetLineWidth(2.0f);
    m_Renderer->AddActor(m_CenterOfRotationActor);
  }

  initializeCameraOrientationWidget();
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  camera->SetParallelProjection(KXPreferences::getCameraParallelProjDefault());
  m_Camera = camera;
  m_OutlineRenderer->SetActiveCamera(camera);
  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->setCenterOfRotation(camera->GetFocalPoint());
}

void VXVisualizationWidget::initializeCameraOrientationWidget()
{
  if (m_CameraOrientationWidget != nullptr || m_Renderer == nullptr)
    return;
  m_CameraOrientationWidget = vtkSmartPointer<VXViewCubeWidget>::New();
  m_CameraOrientationWidget->SetParentRenderer(m_Renderer);
  m_CameraOrientationWidget->KeyPressActivationOff();
  // The gizmo is rebuilt in every frame that turns the camera and is drawn a
  // few dozen pixels wide: coarser tubes and discs look the same there and
  // keep it from adding to the frame time of large scenes.
  if (auto* rep = vtkCameraOrientationRepresentation::SafeDownCast(
        m_CameraOrientationWidget->GetRepresentation()))
  {
    rep->SetShaftResolution(6);
    rep->SetHandleCircumferentialResolution(16);
    rep->SetContainerCircumferentialResolution(16);
  }
  m_CameraOrientationWidget->On();
  m_CameraOrientationWidget->setFaceLabels(KXPreferences::getOrientationMarkerText());
}

void VXVisualizationWidget::initializeOrientationWidget()
{
  if (m_OrientationWidget != nullptr || getRenderWindowInteractor() == nullptr)
    return;
  vtkNew<vtkAnnotatedCubeActor> cube;
  m_OrientationWidget = vtkSmartPointer<vtkOrientationMarkerWidget>::New();
  m_OrientationWidget->SetOrientationMarker(cube);
  m_OrientationWidget->KeyPressActivationOff();
  m_OrientationWidget->SetInteractor(getRenderWindowInteractor());
  m_OrientationWidget->SetViewport(0.0, 0.0, 0.2, 0.2);
  m_OrientationWidget->SetEnabled(1);
  m_OrientationWidget->InteractiveOff();
  setOrientationMarkerText(KXPreferences::getOrientationMarkerText());
}

// ---------------------------------------------------------------------------
// Accessors

vtkRenderer* VXVisualizationWidget::getRenderer() const
{
  return m_Renderer;
}

vtkRenderer* VXVisualizationWidget::getOutlineRenderer() const
{
  return m_OutlineRenderer;
}

vtkRenderWindowInteractor* VXVisualizationWidget::getRenderWindowInteractor() const
{
  return renderWindow() != nullptr ? renderWindow()->GetInteractor() : nullptr;
}

VXPickerCallback* VXVisualizationWidget::getPickerCallback() const
{
  return m_PickerCallback;
}

VXViewCubeWidget* VXVisualizationWidget::getCameraOrientationWidget() const
{
  return m_CameraOrientationWidget;
}

vtkOrientationMarkerWidget* VXVisualizationWidget::getOrientationWidget() const
{
  return m_OrientationWidget;
}

vtkActor* VXVisualizationWidget::getCenterOfRotationActor() const
{
  return m_CenterOfRotationActor;
}

vtkCursor3D* VXVisualizationWidget::getCenterOfRotationCursor() const
{
  return m_CenterOfRotationCursor;
}

std::array<double, 3> VXVisualizationWidget::getCenterOfRotation() const
{
  std::array<double, 3> center = { 0.0, 0.0, 0.0 };
  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->getCenterOfRotation(center.data());
  else if (m_Renderer != nullptr)
    m_Renderer->GetActiveCamera()->GetFocalPoint(center.data());
  return center;
}

bool VXVisualizationWidget::hoverCellsModeOn() const
{
  return m_PickerCallback != nullptr && m_PickerCallback->hoverCellsOn();
}

bool VXVisualizationWidget::hoverPointsModeOn() const
{
  return m_PickerCallback != nullptr && m_PickerCallback->hoverPointsOn();
}

bool VXVisualizationWidget::pickCenterOfRotationModeOn() const
{
  return m_InteractorStyle != nullptr && m_InteractorStyle->cellPickModeOn();
}

std::array<double, 6> VXVisualizationWidget::visiblePropBounds() const
{
  std::array<double, 6> bounds = { 0, 0, 0, 0, 0, 0 };
  if (m_Renderer != nullptr)
    m_Renderer->ComputeVisiblePropBounds(bounds.data());
  return bounds;
}

// ---------------------------------------------------------------------------
// Rendering

void VXVisualizationWidget::render()
{
  if (m_RenderPending != 0)
    return;
  m_RenderPending = 1;
  QMetaObject::invokeMethod(this, &VXVisualizationWidget::renderQueued, Qt::QueuedConnection);
}

void VXVisualizationWidget::renderQueued()
{
  // a frame drawn since the request (a paint after a resize, a camera snap, a capture) already
  // shows everything asked for
  if (m_RenderPending == 0)
    return;
  m_RenderPending = 0;
  if (renderWindow() != nullptr && renderWindow()->GetInteractor() != nullptr)
  {
    renderWindow()->GetInteractor()->Render();
    ++m_FrameCount;
  }
  QWidget::update();
}

void VXVisualizationWidget::onWindowStartRender(vtkObject*, unsigned long, void*)
{
  // whatever path draws this frame, it answers the requests made so far
  m_RenderPending = 0;
  if (m_OutlineRenderer != nullptr)
    m_OutlineRenderer->SetDraw(m_OutlineRenderer->VisibleActorCount() > 0);
}

void VXVisualizationWidget::renderNow()
{
  if (renderWindow() != nullptr && renderWindow()->GetInteractor() != nullptr)
    renderWindow()->GetInteractor()->Render();
}

bool VXVisualizationWidget::event(QEvent* event)
{
  switch (event->type())
  {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
      // touch gestures would reach VTK as mouse presses with no release
      event->accept();
      return true;
    case QEvent::DevicePixelRatioChange:
      QTimer::singleShot(0, this, &VXVisualizationWidget::render);
      break;
    default:
      break;
  }
  return VXGLWidget::event(event);
}

void VXVisualizationWidget::setRenderWindowBackgroundColor(QColor color)
{
  if (m_Renderer == nullptr || !color.isValid())
    return;
  const vtkColor3d rgb = KXVtk::utils::GetVtkColor3dFromQColor(color);
  m_Renderer->SetBackground(rgb.GetData());
  m_OutlineRenderer->SetBackground(rgb.GetData());
  render();
}

void VXVisualizationWidget::setOrientationMarkerText(QStringList faceLabels)
{
  if (faceLabels.size() != 6)
    return;
  if (m_CameraOrientationWidget != nullptr)
    m_CameraOrientationWidget->setFaceLabels(faceLabels);
  if (m_OrientationWidget != nullptr)
  {
    if (auto* cube =
          vtkAnnotatedCubeActor::SafeDownCast(m_OrientationWidget->GetOrientationMarker()))
    {
      cube->SetXPlusFaceText(faceLabels.at(0).toUtf8().constData());
      cube->SetXMinusFaceText(faceLabels.at(1).toUtf8().constData());
      cube->SetYPlusFaceText(faceLabels.at(2).toUtf8().constData());
      cube->SetYMinusFaceText(faceLabels.at(3).toUtf8().constData());
      cube->SetZPlusFaceText(faceLabels.at(4).toUtf8().constData());
      cube->SetZMinusFaceText(faceLabels.at(5).toUtf8().constData());
    }
  }
  render();
}

// ---------------------------------------------------------------------------
// Camera

std::array<double, 4> VXVisualizationWidget::getCameraFocalPointAndDistance() const
{
  if (m_Renderer == nullptr)
    return { 0.0, 0.0, 0.0, 0.0 };
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  double focal[3];
  double position[3];
  camera->GetFocalPoint(focal);
  camera->GetPosition(position);
  const double distance = std::sqrt((position[0] - focal[0]) * (position[0] - focal[0]) +
                                    (position[1] - focal[1]) * (position[1] - focal[1]) +
                                    (position[2] - focal[2]) * (position[2] - focal[2]));
  return { focal[0], focal[1], focal[2], distance };
}

void VXVisualizationWidget::placeCamera(double dx, double dy, double dz, double upX, double upY,
                                        double upZ)
{
  if (m_Renderer == nullptr)
    return;
  resetCamera();
  const std::array<double, 4> fd = getCameraFocalPointAndDistance();
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  camera->SetPosition(fd[0] + dx * fd[3], fd[1] + dy * fd[3], fd[2] + dz * fd[3]);
  camera->SetViewUp(upX, upY, upZ);
  renderNow();
}

void VXVisualizationWidget::setCameraView(CameraPosition position)
{
  switch (position)
  {
    case CameraPosition::XPlus:
      placeCamera(-1, 0, 0, 0, 0, 1);
      break;
    case CameraPosition::YPlus:
      placeCamera(0, -1, 0, 0, 0, 1);
      break;
    case CameraPosition::ZPlus:
      placeCamera(0, 0, -1, 0, 1, 0);
      break;
    case CameraPosition::XMinus:
      placeCamera(1, 0, 0, 0, 0, 1);
      break;
    case CameraPosition::YMinus:
      placeCamera(0, 1, 0, 0, 0, 1);
      break;
    case CameraPosition::ZMinus:
      placeCamera(0, 0, 1, 0, 1, 0);
      break;
  }
}

void VXVisualizationWidget::camXPlus()
{
  setCameraView(CameraPosition::XPlus);
}

void VXVisualizationWidget::camYPlus()
{
  setCameraView(CameraPosition::YPlus);
}

void VXVisualizationWidget::camZPlus()
{
  setCameraView(CameraPosition::ZPlus);
}

void VXVisualizationWidget::camXMinus()
{
  setCameraView(CameraPosition::XMinus);
}

void VXVisualizationWidget::camYMinus()
{
  setCameraView(CameraPosition::YMinus);
}

void VXVisualizationWidget::camZMinus()
{
  setCameraView(CameraPosition::ZMinus);
}

void VXVisualizationWidget::camImageView()
{
  // looking along +Z with the view up flipped puts image row 0 at the top
  placeCamera(0, 0, -1, 0, -1, 0);
}

void VXVisualizationWidget::rotateCamClockwise()
{
  if (m_Renderer == nullptr)
    return;
  m_Renderer->GetActiveCamera()->Roll(-90.0);
  renderNow();
}

void VXVisualizationWidget::rotateCamCounterClockwise()
{
  if (m_Renderer == nullptr)
    return;
  m_Renderer->GetActiveCamera()->Roll(90.0);
  renderNow();
}

void VXVisualizationWidget::resetCamera()
{
  if (m_Renderer == nullptr)
    return;
  m_Renderer->ResetCamera();
  if (!m_CenterOfRotationLocked && m_InteractorStyle != nullptr)
  {
    m_InteractorStyle->setCenterOfRotation(m_Renderer->GetActiveCamera()->GetFocalPoint());
    syncCenterOfRotationCursor(visiblePropBounds());
  }
  render();
}

void VXVisualizationWidget::toggleParallelProjection()
{
  if (m_Renderer == nullptr)
    return;
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  const bool parallel = camera->GetParallelProjection() == 0;
  camera->SetParallelProjection(parallel);
  getParallelProjectionAction()->setChecked(parallel);
  renderNow();
}

QString VXVisualizationWidget::addCustomCameraPosPreset()
{
  if (m_Renderer == nullptr)
    return {};
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  CameraPreset preset{};
  camera->GetPosition(preset.position.data());
  camera->GetFocalPoint(preset.focalPoint.data());
  camera->GetViewUp(preset.viewUp.data());
  preset.viewAngle = camera->GetViewAngle();
  preset.parallelScale = camera->GetParallelScale();
  preset.parallel = camera->GetParallelProjection() != 0;
  int index = m_CameraPresets.size() + 1;
  QString name = QStringLiteral("Camera Position %1").arg(index);
  while (m_CameraPresets.contains(name))
    name = QStringLiteral("Camera Position %1").arg(++index);
  m_CameraPresets.insert(name, preset);
  return name;
}

void VXVisualizationWidget::applyCustomCameraPosPreset(QString presetName)
{
  if (m_Renderer == nullptr || !m_CameraPresets.contains(presetName))
    return;
  const CameraPreset preset = m_CameraPresets.value(presetName);
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  camera->SetPosition(preset.position.data());
  camera->SetFocalPoint(preset.focalPoint.data());
  camera->SetViewUp(preset.viewUp.data());
  camera->SetViewAngle(preset.viewAngle);
  camera->SetParallelScale(preset.parallelScale);
  camera->SetParallelProjection(preset.parallel);
  getParallelProjectionAction()->setChecked(preset.parallel);
  m_Renderer->ResetCameraClippingRange();
  render();
}

// ---------------------------------------------------------------------------
// Props and outlines

void VXVisualizationWidget::addActor(vtkProp* prop)
{
  if (m_Renderer == nullptr || prop == nullptr)
    return;
  m_Renderer->AddViewProp(prop);
  Q_EMIT actorAdded(prop);
  if (!m_CenterOfRotationLocked && !m_CenterResetPending)
  {
    m_CenterResetPending = true;
    QMetaObject::invokeMethod(
      this,
      [this]()
      {
        m_CenterResetPending = false;
        if (!m_CenterOfRotationLocked)
          resetCenterOfRotation(true);
      },
      Qt::QueuedConnection);
  }
}

void VXVisualizationWidget::removeActor(vtkProp* prop)
{
  if (m_Renderer == nullptr || prop == nullptr)
    return;
  Q_EMIT actorRemoved(prop);
  m_Renderer->RemoveViewProp(prop);
  if (!m_CenterOfRotationLocked && !m_CenterResetPending)
  {
    m_CenterResetPending = true;
    QMetaObject::invokeMethod(
      this,
      [this]()
      {
        m_CenterResetPending = false;
        if (!m_CenterOfRotationLocked)
          resetCenterOfRotation(true);
      },
      Qt::QueuedConnection);
  }
}

bool VXVisualizationWidget::isDataViewActor(vtkProp* prop) const
{
  if (prop == nullptr || m_Renderer == nullptr || prop->GetVisibility() == 0 ||
      !m_Renderer->HasViewProp(prop))
    return false;
  if (m_ViewActions != nullptr && prop == m_ViewActions->getGridAxesActor())
    return false;
  if (m_PickerCallback != nullptr && (prop == m_PickerCallback->getPointHighlightActor() ||
                                      prop == m_PickerCallback->getCellHighlightActor()))
    return false;
  return true;
}

void VXVisualizationWidget::addOutline(vtkProp* prop) const
{
  if (m_OutlineRenderer != nullptr && prop != nullptr && !m_OutlineRenderer->HasViewProp(prop))
    m_OutlineRenderer->AddViewProp(prop);
}

void VXVisualizationWidget::removeOutline(vtkProp* prop) const
{
  if (m_OutlineRenderer != nullptr && prop != nullptr && m_OutlineRenderer->HasViewProp(prop))
    m_OutlineRenderer->RemoveViewProp(prop);
}

bool VXVisualizationWidget::hasOutlineActor(vtkProp* prop) const
{
  return m_OutlineRenderer != nullptr && prop != nullptr && m_OutlineRenderer->HasViewProp(prop);
}

void VXVisualizationWidget::clearOutlines() const
{
  if (m_OutlineRenderer != nullptr)
    m_OutlineRenderer->RemoveAllViewProps();
}

void VXVisualizationWidget::hideAllRepresentations()
{
  Q_EMIT hideAll();
}

void VXVisualizationWidget::clearRenderWindow()
{
  if (m_CameraOrientationWidget != nullptr)
  {
    m_CameraOrientationWidget->Off();
    m_CameraOrientationWidget = nullptr;
  }
  if (m_Renderer == nullptr)
    return;
  m_Renderer->RemoveAllViewProps();
  renderNow();
  m_Renderer->ResetCamera();
  if (!m_CenterOfRotationLocked && m_InteractorStyle != nullptr)
  {
    m_InteractorStyle->setCenterOfRotation(m_Renderer->GetActiveCamera()->GetFocalPoint());
    syncCenterOfRotationCursor(visiblePropBounds());
  }
}

void VXVisualizationWidget::copy(const VXVisualizationWidget* other)
{
  if (other == nullptr || other->m_Renderer == nullptr || m_Renderer == nullptr)
    return;
  vtkCamera* source = other->m_Renderer->GetActiveCamera();
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  camera->SetPosition(source->GetPosition());
  camera->SetFocalPoint(source->GetFocalPoint());
  camera->SetViewUp(source->GetViewUp());
  if (m_InteractorStyle != nullptr && other->m_InteractorStyle != nullptr)
  {
    double center[3];
    other->m_InteractorStyle->getCenterOfRotation(center);
    m_InteractorStyle->setCenterOfRotation(center);
    m_CenterOfRotationLocked = other->m_CenterOfRotationLocked;
    syncCenterOfRotationCursor(visiblePropBounds());
  }
  render();
}

QImage VXVisualizationWidget::captureViewImage(bool transparent, const QColor& background)
{
  return m_ViewActions != nullptr ? m_ViewActions->captureViewImage(transparent, background)
                                  : QImage();
}

bool VXVisualizationWidget::areDimensionsValid(int x, int y, int z, int& maxSize) const
{
  maxSize = 0;
  if (auto* window = vtkOpenGLRenderWindow::SafeDownCast(renderWindow()))
    maxSize = vtkTextureObject::GetMaximumTextureSize3D(window);
  // without a context the query fails; 2048 is what every desktop driver offers
  if (maxSize < 1)
    maxSize = 2048;
  if (m_MaximumTextureSize > 0)
    maxSize = std::min(maxSize, m_MaximumTextureSize);
  return x <= maxSize && y <= maxSize && z <= maxSize;
}

// ---------------------------------------------------------------------------
// Centre of rotation

void VXVisualizationWidget::resetCenterOfRotation(bool shouldLink)
{
  if (m_Renderer == nullptr || m_CenterOfRotationCursor == nullptr ||
      m_CenterOfRotationActor == nullptr)
    return;
  const std::array<double, 6> bounds = visiblePropBounds();
  m_CenterOfRotationLocked = false;
  double center[3];
  if (validBounds(bounds))
  {
    for (int i = 0; i < 3; ++i)
      center[i] = (bounds[2 * i + 1] - bounds[2 * i]) * 0.5 + bounds[2 * i];
  }
  else
  {
    // nothing visible: the midpoint of uninitialised bounds is not a number
    m_Renderer->GetActiveCamera()->GetFocalPoint(center);
  }
  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->setCenterOfRotation(center);
  syncCenterOfRotationCursor(bounds);
  render();
  if (!shouldLink)
    return;
  for (VXVisualizationWidget* linked : m_LinkedWidgets)
  {
    if (linked == this || linked->m_Renderer == nullptr ||
        linked->m_CenterOfRotationCursor == nullptr || linked->m_CenterOfRotationActor == nullptr)
      continue;
    linked->m_CenterOfRotationLocked = false;
    if (linked->m_InteractorStyle != nullptr)
      linked->m_InteractorStyle->setCenterOfRotation(center);
    linked->syncCenterOfRotationCursor(linked->visiblePropBounds());
    linked->render();
  }
}

void VXVisualizationWidget::updateCenterOfRotation(double pickPos[3], bool pick1ModeOn,
                                                   bool pick2ModeOn, bool shouldLink)
{
  if (m_Renderer == nullptr || m_CenterOfRotationCursor == nullptr ||
      m_CenterOfRotationActor == nullptr)
    return;
  m_CenterOfRotationLocked = pick1ModeOn || pick2ModeOn;
  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->setCenterOfRotation(pickPos);
  syncCenterOfRotationCursor(visiblePropBounds());
  render();
  if (!shouldLink)
    return;
  for (VXVisualizationWidget* linked : m_LinkedWidgets)
  {
    if (linked != this)
      linked->updateCenterOfRotation(pickPos, pick1ModeOn, pick2ModeOn, false);
  }
}

void VXVisualizationWidget::syncCenterOfRotationCursor()
{
  syncCenterOfRotationCursor(visiblePropBounds());
}

void VXVisualizationWidget::syncCenterOfRotationCursor(std::array<double, 6> bounds)
{
  if (m_CenterOfRotationCursor == nullptr || m_Renderer == nullptr)
    return;
  const std::array<double, 3> center = getCenterOfRotation();
  double r =
    0.25 * std::max({ bounds[1] - bounds[0], bounds[3] - bounds[2], bounds[5] - bounds[4] });
  if (r < 0.0 || !std::isfinite(r))
    r = 1.0;
  m_CenterOfRotationCursor->SetFocalPoint(center[0], center[1], center[2]);
  m_CenterOfRotationCursor->SetModelBounds(center[0] - r, center[0] + r, center[1] - r,
                                           center[1] + r, center[2] - r, center[2] + r);
}

void VXVisualizationWidget::toggleCenterOfRotationVisibility(bool visible)
{
  if (m_CenterOfRotationActor == nullptr)
    return;
  m_CenterOfRotationActor->SetVisibility(visible);
  renderNow();
}

void VXVisualizationWidget::toggleCenterOfRotationPicking(bool checked)
{
  if (m_InteractorStyle != nullptr)
    m_InteractorStyle->setCellPickMode(checked);
  toggleHoverCells(checked);
}

// ---------------------------------------------------------------------------
// Hover

void VXVisualizationWidget::toggleHoverPoints(bool checked)
{
  if (m_PickerCallback == nullptr || m_HoverWidget == nullptr)
    return;
  if (getRenderWindowInteractor() != nullptr)
    m_HoverWidget->SetEnabled(checked ? 1 : 0);
  m_PickerCallback->setHoverCells(false);
  m_PickerCallback->setHoverPoints(checked);
  if (!checked)
  {
    m_PickerCallback->toggleHighlightersVisibility(false);
    render();
  }
  if (m_Toolbar != nullptr)
    m_Toolbar->syncHoverButtons();
}

void VXVisualizationWidget::toggleHoverPoints()
{
  toggleHoverPoints(!hoverPointsModeOn());
}

void VXVisualizationWidget::toggleHoverCells(bool checked)
{
  if (m_PickerCallback == nullptr || m_HoverWidget == nullptr)
    return;
  if (getRenderWindowInteractor() != nullptr)
    m_HoverWidget->SetEnabled(checked ? 1 : 0);
  m_PickerCallback->setHoverPoints(false);
  m_PickerCallback->setHoverCells(checked);
  if (!checked)
  {
    m_PickerCallback->toggleHighlightersVisibility(false);
    render();
  }
  if (m_Toolbar != nullptr)
    m_Toolbar->syncHoverButtons();
}

void VXVisualizationWidget::toggleHoverCells()
{
  toggleHoverCells(!hoverCellsModeOn());
}

void VXVisualizationWidget::enableDisableHoverFeatures(int allowHover)
{
  if (m_Toolbar != nullptr)
    m_Toolbar->enableDisableHoverFeatures(allowHover);
}

// ---------------------------------------------------------------------------
// Linking

void VXVisualizationWidget::startLinkCameras()
{
  m_LinkingWidget = this;
}

void VXVisualizationWidget::linkCameraWith(VXVisualizationWidget* other)
{
  if (other == nullptr || m_Renderer == nullptr)
    return;
  vtkCamera* shared = m_Renderer->GetActiveCamera();
  std::set<VXVisualizationWidget*> merged = m_LinkedWidgets;
  merged.insert(other->m_LinkedWidgets.begin(), other->m_LinkedWidgets.end());
  merged.insert(this);
  merged.insert(other);
  m_LinkedWidgets = merged;
  double center[3];
  const std::array<double, 3> ownCenter = getCenterOfRotation();
  std::copy(ownCenter.begin(), ownCenter.end(), center);
  for (VXVisualizationWidget* member : merged)
  {
    if (member == this || member->m_Renderer == nullptr)
      continue;
    member->m_Renderer->SetActiveCamera(shared);
    member->m_OutlineRenderer->SetActiveCamera(shared);
    member->m_LinkedWidgets = merged;
    if (member->m_InteractorStyle != nullptr)
      member->m_InteractorStyle->setCenterOfRotation(center);
    member->m_CenterOfRotationLocked = m_CenterOfRotationLocked;
    member->syncCenterOfRotationCursor(member->visiblePropBounds());
    member->render();
  }
  m_LinkingWidget = nullptr;
}

void VXVisualizationWidget::removeLinkedWidget(VXVisualizationWidget* widget)
{
  m_LinkedWidgets.erase(widget);
  // a set of one is no link at all
  if (m_LinkedWidgets.size() == 1 && m_LinkedWidgets.count(this) == 1)
    m_LinkedWidgets.clear();
}

void VXVisualizationWidget::unlinkCamera()
{
  if (m_Renderer != nullptr && !m_LinkedWidgets.empty())
  {
    if (m_Camera == nullptr)
      m_Camera = m_Renderer->MakeCamera();
    vtkCamera* shared = m_Renderer->GetActiveCamera();
    if (m_Camera == shared)
    {
      // the others keep the camera they share: this view takes a copy of it as its own
      auto own = vtkSmartPointer<vtkCamera>::New();
      own->DeepCopy(shared);
      m_Camera = own;
    }
    m_Renderer->SetActiveCamera(m_Camera);
    m_OutlineRenderer->SetActiveCamera(m_Camera);
  }
  const std::set<VXVisualizationWidget*> members = m_LinkedWidgets;
  for (VXVisualizationWidget* member : members)
  {
    if (member != this)
      member->removeLinkedWidget(this);
  }
  m_LinkedWidgets.clear();
}

// ---------------------------------------------------------------------------
// Grid axes

void VXVisualizationWidget::updateGridAxesBounds(bool propagate)
{
  if (m_Renderer == nullptr)
    return;
  if (m_ViewActions != nullptr)
    m_ViewActions->recomputeGridAxesBounds();
  if (!m_CenterOfRotationLocked && m_CenterOfRotationActor != nullptr &&
      m_CenterOfRotationCursor != nullptr)
  {
    m_Renderer->RemoveActor(m_CenterOfRotationActor);
    syncCenterOfRotationCursor(visiblePropBounds());
    m_CenterOfRotationCursor->Update();
    m_Renderer->AddActor(m_CenterOfRotationActor);
  }
  render();
  if (!propagate)
    return;
  for (VXVisualizationWidget* linked : m_LinkedWidgets)
  {
    if (linked != this)
      linked->updateGridAxesBounds(false);
  }
}

// ---------------------------------------------------------------------------
// Toolbar, mouse and context menu

void VXVisualizationWidget::recenterToolbar()
{
  if (m_Toolbar == nullptr)
    return;
  const int parentHeight = height();
  const int y = parentHeight / 2 > m_Toolbar->height() ? parentHeight / 4 : 20;
  m_Toolbar->move(0, y);
}

void VXVisualizationWidget::resizeEvent(QResizeEvent* event)
{
  recenterToolbar();
  VXGLWidget::resizeEvent(event);
}

void VXVisualizationWidget::mousePressEvent(QMouseEvent* event)
{
  VXGLWidget::mousePressEvent(event);
  m_CheckContextMenu = event->button() == Qt::RightButton;
  if (hoverPointsModeOn() || hoverCellsModeOn())
  {
    // the display text is indented by runs of four blanks; the clipboard gets it flat
    QString text = m_PickerCallback->getPickedDataText();
    text.remove(QStringLiteral("    "));
    QGuiApplication::clipboard()->setText(text);
    Q_EMIT printOutput(QStringLiteral("Picked item data copied to clipboard"));
  }
  Q_EMIT mousePressed();
}

void VXVisualizationWidget::mouseMoveEvent(QMouseEvent* event)
{
  VXGLWidget::mouseMoveEvent(event);
  // a right drag zooms; it must not end in a context menu
  m_CheckContextMenu = false;
}

void VXVisualizationWidget::mouseReleaseEvent(QMouseEvent* event)
{
  VXGLWidget::mouseReleaseEvent(event);
  if (m_CheckContextMenu)
  {
    m_CheckContextMenu = false;
    showContextMenu(event->position().toPoint());
  }
}

void VXVisualizationWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
  VXGLWidget::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton)
    Q_EMIT doubleClicked(event->position().toPoint());
}

void VXVisualizationWidget::focusInEvent(QFocusEvent* event)
{
  if (m_LinkingWidget != nullptr && m_LinkingWidget != this)
    m_LinkingWidget->linkCameraWith(this);
  m_LinkingWidget = nullptr;
  VXGLWidget::focusInEvent(event);
}

void VXVisualizationWidget::showContextMenu(QPoint pos)
{
  if (!m_OwnContextMenu)
    return;
  std::unique_ptr<QMenu> menu(getContextMenu());
  const QPoint globalPos = mapToGlobal(pos);
  if (m_ContextMenuExecutor)
    m_ContextMenuExecutor(menu.get(), globalPos);
  else
    menu->exec(globalPos);
}

QAction* VXVisualizationWidget::makeAction(QAction*& slot, const QString& text)
{
  if (slot == nullptr)
    slot = new QAction(text, this);
  return slot;
}

QAction* VXVisualizationWidget::getShowAllAction()
{
  if (m_ShowAllAction == nullptr)
    connect(makeAction(m_ShowAllAction, QStringLiteral("Show All Geometries")), &QAction::triggered,
            this, &VXVisualizationWidget::showAll);
  return m_ShowAllAction;
}

QAction* VXVisualizationWidget::getHideAllAction()
{
  if (m_HideAllAction == nullptr)
    connect(makeAction(m_HideAllAction, QStringLiteral("Hide All Geometries")), &QAction::triggered,
            this, &VXVisualizationWidget::hideAll);
  return m_HideAllAction;
}

QAction* VXVisualizationWidget::getLinkCamerasAction()
{
  if (m_LinkCamerasAction == nullptr)
    connect(makeAction(m_LinkCamerasAction, QStringLiteral("Link Cameras")), &QAction::triggered,
            this, &VXVisualizationWidget::startLinkCameras);
  return m_LinkCamerasAction;
}

QAction* VXVisualizationWidget::getLinkAllCamerasAction()
{
  if (m_LinkAllCamerasAction == nullptr)
    connect(makeAction(m_LinkAllCamerasAction, QStringLiteral("Link All Cameras")),
            &QAction::triggered, this, &VXVisualizationWidget::requestLinkAllCameras);
  return m_LinkAllCamerasAction;
}

QAction* VXVisualizationWidget::getUnlinkCamerasAction()
{
  if (m_UnlinkCamerasAction == nullptr)
    connect(makeAction(m_UnlinkCamerasAction, QStringLiteral("Unlink Cameras")),
            &QAction::triggered, this, &VXVisualizationWidget::unlinkCamera);
  return m_UnlinkCamerasAction;
}

QAction* VXVisualizationWidget::getUnlinkAllCamerasAction()
{
  if (m_UnlinkAllCamerasAction == nullptr)
    connect(makeAction(m_UnlinkAllCamerasAction, QStringLiteral("Unlink All Cameras")),
            &QAction::triggered, this, &VXVisualizationWidget::requestUnlinkAllCameras);
  return m_UnlinkAllCamerasAction;
}

QAction* VXVisualizationWidget::getParallelProjectionAction()
{
  if (m_ParallelProjectionAction == nullptr)
  {
    makeAction(m_ParallelProjectionAction, QStringLiteral("Camera Parallel Projection"));
    m_ParallelProjectionAction->setCheckable(true);
    if (m_Renderer != nullptr)
      m_ParallelProjectionAction->setChecked(
        m_Renderer->GetActiveCamera()->GetParallelProjection() != 0);
    connect(m_ParallelProjectionAction, &QAction::triggered, this,
            &VXVisualizationWidget::toggleParallelProjection);
  }
  return m_ParallelProjectionAction;
}

QAction* VXVisualizationWidget::getSplitHorizontallyAction()
{
  if (m_SplitHorizontallyAction == nullptr)
    connect(makeAction(m_SplitHorizontallyAction, QStringLiteral("Split View Horizontally")),
            &QAction::triggered, this, &VXVisualizationWidget::requestSplitHorizontally);
  return m_SplitHorizontallyAction;
}

QAction* VXVisualizationWidget::getSplitVerticallyAction()
{
  if (m_SplitVerticallyAction == nullptr)
    connect(makeAction(m_SplitVerticallyAction, QStringLiteral("Split View Vertically")),
            &QAction::triggered, this, &VXVisualizationWidget::requestSplitVertically);
  return m_SplitVerticallyAction;
}

QAction* VXVisualizationWidget::getSaveAllViewsScreenshotAction()
{
  if (m_SaveAllViewsScreenshotAction == nullptr)
    connect(makeAction(m_SaveAllViewsScreenshotAction, QStringLiteral("Save Screenshot ...")),
            &QAction::triggered, this, &VXVisualizationWidget::requestSaveAllViewsScreenshot);
  return m_SaveAllViewsScreenshotAction;
}

QAction* VXVisualizationWidget::getCopyAllViewsToClipboardAction()
{
  if (m_CopyAllViewsToClipboardAction == nullptr)
    connect(makeAction(m_CopyAllViewsToClipboardAction, QStringLiteral("Copy to Clipboard")),
            &QAction::triggered, this, &VXVisualizationWidget::requestCopyAllViewsToClipboard);
  return m_CopyAllViewsToClipboardAction;
}

QAction* VXVisualizationWidget::getEqualizeViewWidthsAction()
{
  if (m_EqualizeViewWidthsAction == nullptr)
    connect(makeAction(m_EqualizeViewWidthsAction, QStringLiteral("Equalize View Widths")),
            &QAction::triggered, this, &VXVisualizationWidget::requestEqualizeViewWidths);
  return m_EqualizeViewWidthsAction;
}

QAction* VXVisualizationWidget::getEqualizeViewHeightsAction()
{
  if (m_EqualizeViewHeightsAction == nullptr)
    connect(makeAction(m_EqualizeViewHeightsAction, QStringLiteral("Equalize View Heights")),
            &QAction::triggered, this, &VXVisualizationWidget::requestEqualizeViewHeights);
  return m_EqualizeViewHeightsAction;
}

QAction* VXVisualizationWidget::getSaveScreenshotAction()
{
  return m_ViewActions->getSaveScreenshotAction();
}

QAction* VXVisualizationWidget::getCopyScreenshotAction()
{
  return m_ViewActions->getCopyScreenshotAction();
}

QAction* VXVisualizationWidget::getChangeBackgroundColorAction()
{
  return m_ViewActions->getChangeBackgroundColorAction();
}

QAction* VXVisualizationWidget::getRestoreDefaultBackgroundColorAction()
{
  return m_ViewActions->getRestoreDefaultBackgroundColorAction();
}

QAction* VXVisualizationWidget::getGridAxesAction()
{
  return m_ViewActions->getGridAxesAction();
}

QAction* VXVisualizationWidget::getEditGridAxesAction()
{
  return m_ViewActions->getEditGridAxesAction();
}

QMenu* VXVisualizationWidget::getContextMenu()
{
  auto* menu = new QMenu(QStringLiteral("Visualization"));
  menu->setTitle(QStringLiteral("Visualization"));
  menu->addAction(getShowAllAction());
  menu->addAction(getHideAllAction());
  menu->addSeparator();

  menu->addAction(getLinkCamerasAction());
  menu->addAction(getLinkAllCamerasAction());
  if (!m_LinkedWidgets.empty())
    menu->addAction(getUnlinkCamerasAction());
  const bool anyLinked = m_AnyViewLinkedQuery ? m_AnyViewLinkedQuery() : !m_LinkedWidgets.empty();
  if (anyLinked)
    menu->addAction(getUnlinkAllCamerasAction());
  QAction* parallel = getParallelProjectionAction();
  if (m_Renderer != nullptr)
    parallel->setChecked(m_Renderer->GetActiveCamera()->GetParallelProjection() != 0);
  menu->addAction(parallel);
  menu->addSeparator();

  QMenu* current = menu->addMenu(QStringLiteral("Current View"));
  current->addAction(getSplitHorizontallyAction());
  current->addAction(getSplitVerticallyAction());
  current->addAction(getSaveScreenshotAction());
  current->addAction(getCopyScreenshotAction());

  QMenu* all = menu->addMenu(QStringLiteral("All Views"));
  all->addAction(getSaveAllViewsScreenshotAction());
  all->addAction(getCopyAllViewsToClipboardAction());

  QMenu* equalize = menu->addMenu(QStringLiteral("Equalize Views"));
  equalize->addAction(getEqualizeViewWidthsAction());
  equalize->addAction(getEqualizeViewHeightsAction());

  menu->addSeparator();
  menu->addAction(getChangeBackgroundColorAction());
  menu->addAction(getRestoreDefaultBackgroundColorAction());
  menu->addSeparator();
  menu->addAction(getGridAxesAction());
  menu->addAction(getEditGridAxesAction());
  return menu;
}

// ---------------------------------------------------------------------------
// State

void VXVisualizationWidget::saveState(nlohmann::json& output)
{
  if (m_Renderer == nullptr)
    return;
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  output["parallel_projection"] = camera->GetParallelProjection();

  const VXGridAxesConfig& grid = m_ViewActions->gridAxesConfig();
  output["global_grid_axes"] = m_ViewActions->gridAxesEnabled();
  output["global_grid_axes_spacingx"] = grid.spacing[0];
  output["global_grid_axes_spacingy"] = grid.spacing[1];
  output["global_grid_axes_spacingz"] = grid.spacing[2];
  output["global_grid_axes_show_grid_lines"] = grid.showGrid;
  output["global_grid_axes_color"] = { grid.color.redF(), grid.color.greenF(), grid.color.blueF() };
  output["global_grid_axes_opacity"] = grid.opacity;
  output["global_grid_axes_show_labels"] = grid.showLabels;
  output["global_grid_axes_title_x"] = grid.titles[0].toStdString();
  output["global_grid_axes_title_y"] = grid.titles[1].toStdString();
  output["global_grid_axes_title_z"] = grid.titles[2].toStdString();

  output["own_context_menu"] = m_OwnContextMenu;
  output["check_context_menu"] = m_CheckContextMenu;
  output["num_render_layers"] = m_NumRenderLayers;

  double v[3];
  camera->GetPosition(v);
  output["camera_pos_x"] = v[0];
  output["camera_pos_y"] = v[1];
  output["camera_pos_z"] = v[2];
  camera->GetViewUp(v);
  output["camera_view_up_x"] = v[0];
  output["camera_view_up_y"] = v[1];
  output["camera_view_up_z"] = v[2];
  camera->GetFocalPoint(v);
  output["camera_focal_pt_x"] = v[0];
  output["camera_focal_pt_y"] = v[1];
  output["camera_focal_pt_z"] = v[2];
  output["camera_view_angle"] = camera->GetViewAngle();
  output["camera_parallel_scale"] = camera->GetParallelScale();
  if (m_InteractorStyle != nullptr)
  {
    m_InteractorStyle->getCenterOfRotation(v);
    output["camera_center_of_rotation_x"] = v[0];
    output["camera_center_of_rotation_y"] = v[1];
    output["camera_center_of_rotation_z"] = v[2];
  }
}

void VXVisualizationWidget::loadState(nlohmann::json input)
{
  if (m_Renderer == nullptr || !input.is_object())
    return;
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  auto number = [&input](const char* key) { return input.at(key).get<double>(); };
  auto hasNumber = [&input](const char* key)
  { return input.contains(key) && input.at(key).is_number(); };
  auto hasBool = [&input](const char* key)
  { return input.contains(key) && input.at(key).is_boolean(); };

  if (input.contains("parallel_projection") &&
      (input.at("parallel_projection").is_number() || input.at("parallel_projection").is_boolean()))
  {
    const auto& value = input.at("parallel_projection");
    const bool parallel = value.is_boolean() ? value.get<bool>() : value.get<double>() != 0.0;
    camera->SetParallelProjection(parallel);
    getParallelProjectionAction()->setChecked(parallel);
  }

  if (hasBool("global_grid_axes"))
    m_ViewActions->setGridAxesEnabled(input.at("global_grid_axes").get<bool>());

  // the grid keys change a copy of the current settings, so a file naming only some keeps the rest
  VXGridAxesConfig grid = m_ViewActions->gridAxesConfig();
  if (allPresent(input, "global_grid_axes_spacingx", "global_grid_axes_spacingy",
                 "global_grid_axes_spacingz"))
    grid.spacing = { number("global_grid_axes_spacingx"), number("global_grid_axes_spacingy"),
                     number("global_grid_axes_spacingz") };
  if (hasBool("global_grid_axes_show_grid_lines"))
    grid.showGrid = input.at("global_grid_axes_show_grid_lines").get<bool>();
  if (input.contains("global_grid_axes_color") && input.at("global_grid_axes_color").is_array() &&
      input.at("global_grid_axes_color").size() == 3)
  {
    const auto& color = input.at("global_grid_axes_color");
    if (color[0].is_number() && color[1].is_number() && color[2].is_number())
    {
      auto clamp01 = [](double value)
      { return std::isnan(value) ? 0.0 : std::clamp(value, 0.0, 1.0); };
      grid.color = QColor::fromRgbF(static_cast<float>(clamp01(color[0].get<double>())),
                                    static_cast<float>(clamp01(color[1].get<double>())),
                                    static_cast<float>(clamp01(color[2].get<double>())));
    }
  }
  if (hasNumber("global_grid_axes_opacity"))
    grid.opacity = number("global_grid_axes_opacity");
  if (hasBool("global_grid_axes_show_labels"))
    grid.showLabels = input.at("global_grid_axes_show_labels").get<bool>();
  const char* titleKeys[3] = { "global_grid_axes_title_x", "global_grid_axes_title_y",
                               "global_grid_axes_title_z" };
  for (size_t axis = 0; axis < 3; ++axis)
  {
    if (input.contains(titleKeys[axis]) && input.at(titleKeys[axis]).is_string())
      grid.titles[axis] = QString::fromStdString(input.at(titleKeys[axis]).get<std::string>());
  }
  m_ViewActions->setGridAxesConfig(grid.spacing, grid.showGrid, grid.color, grid.opacity,
                                   grid.showLabels, grid.titles);

  if (hasBool("own_context_menu"))
    m_OwnContextMenu = input.at("own_context_menu").get<bool>();
  if (hasBool("check_context_menu"))
    m_CheckContextMenu = input.at("check_context_menu").get<bool>();
  if (hasNumber("num_render_layers"))
    m_NumRenderLayers = static_cast<int>(number("num_render_layers"));

  if (allPresent(input, "camera_pos_x", "camera_pos_y", "camera_pos_z"))
    camera->SetPosition(number("camera_pos_x"), number("camera_pos_y"), number("camera_pos_z"));
  if (allPresent(input, "camera_view_up_x", "camera_view_up_y", "camera_view_up_z"))
    camera->SetViewUp(number("camera_view_up_x"), number("camera_view_up_y"),
                      number("camera_view_up_z"));
  if (allPresent(input, "camera_focal_pt_x", "camera_focal_pt_y", "camera_focal_pt_z"))
    camera->SetFocalPoint(number("camera_focal_pt_x"), number("camera_focal_pt_y"),
                          number("camera_focal_pt_z"));
  if (hasNumber("camera_view_angle"))
    camera->SetViewAngle(number("camera_view_angle"));
  if (hasNumber("camera_parallel_scale"))
    camera->SetParallelScale(number("camera_parallel_scale"));

  if (m_InteractorStyle != nullptr)
  {
    double center[3];
    camera->GetFocalPoint(center);
    if (allPresent(input, "camera_center_of_rotation_x", "camera_center_of_rotation_y",
                   "camera_center_of_rotation_z"))
    {
      center[0] = number("camera_center_of_rotation_x");
      center[1] = number("camera_center_of_rotation_y");
      center[2] = number("camera_center_of_rotation_z");
    }
    m_InteractorStyle->setCenterOfRotation(center);
    syncCenterOfRotationCursor(visiblePropBounds());
  }

  updateGridAxesBounds(true);
  render();
}
