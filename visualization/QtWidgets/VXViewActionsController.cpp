#include "visualization/QtWidgets/VXViewActionsController.hpp"

#include "utils/GridAxesUtils.hpp"
#include "visualization/QtWidgets/VXScreenshotOptionsDialog.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <vtkAbstractVolumeMapper.h>
#include <vtkBoundingBox.h>
#include <vtkCamera.h>
#include <vtkGridAxesActor3D.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPropCollection.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkUnsignedCharArray.h>
#include <vtkVolume.h>
#include <vtkWindowToImageFilter.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QAction>
#include <QtWidgets/QWidget>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

VXViewActionsController::VXViewActionsController(vtkRenderer* renderer, QWidget* viewWidget,
                                                 QObject* parent)
  : QObject(parent)
  , m_Renderer(renderer)
  , m_ViewWidget(viewWidget)
{
}

VXViewActionsController::~VXViewActionsController()
{
  delete m_GridAxesWidget.data();
}

vtkRenderWindow* VXViewActionsController::renderWindow() const
{
  return m_Renderer != nullptr ? m_Renderer->GetRenderWindow() : nullptr;
}

void VXViewActionsController::renderWindowNow() const
{
  if (vtkRenderWindow* window = renderWindow())
    window->Render();
}

// ---------------------------------------------------------------------------
// Capture

QImage VXViewActionsController::captureViewImage(bool transparent, const QColor& background)
{
  vtkRenderWindow* window = renderWindow();
  if (m_Renderer == nullptr || window == nullptr)
    return {};

  double savedBackground[3];
  m_Renderer->GetBackground(savedBackground);
  const double savedAlpha = m_Renderer->GetBackgroundAlpha();
  const vtkTypeBool savedAlphaPlanes = window->GetAlphaBitPlanes();
  if (!transparent && background.isValid())
    m_Renderer->SetBackground(background.redF(), background.greenF(), background.blueF());
  if (transparent)
  {
    // the alpha channel only carries the transparency when the background has none
    window->SetAlphaBitPlanes(1);
    m_Renderer->SetBackgroundAlpha(0.0);
  }

  vtkNew<vtkWindowToImageFilter> filter;
  if (transparent)
    filter->SetInputBufferTypeToRGBA();
  else
    filter->SetInputBufferTypeToRGB();

  if (m_PreCaptureHook)
    m_PreCaptureHook();
  window->Render();
  // the frame just drawn is the one to read: the filter must not draw another
  filter->ShouldRerenderOff();
  filter->SetInput(window);
  filter->Update();

  QImage image;
  vtkImageData* output = filter->GetOutput();
  if (output != nullptr && output->GetPointData() != nullptr &&
      output->GetPointData()->GetScalars() != nullptr)
  {
    int dims[3];
    output->GetDimensions(dims);
    auto* pixels = static_cast<const unsigned char*>(output->GetScalarPointer());
    const int channels = transparent ? 4 : 3;
    if (pixels != nullptr && dims[0] > 0 && dims[1] > 0)
    {
      const size_t rowSize = static_cast<size_t>(dims[0]) * static_cast<size_t>(channels);
      image =
        QImage(dims[0], dims[1], transparent ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
      // VTK's first row is the lowest one of the picture
      for (int row = 0; row < dims[1]; ++row)
        std::memcpy(image.scanLine(row), pixels + static_cast<size_t>(dims[1] - 1 - row) * rowSize,
                    rowSize);
    }
  }

  m_Renderer->SetBackground(savedBackground);
  m_Renderer->SetBackgroundAlpha(savedAlpha);
  window->SetAlphaBitPlanes(savedAlphaPlanes);
  window->Render();
  if (m_PostCaptureHook)
    m_PostCaptureHook();
  return image;
}

void VXViewActionsController::saveScreenshot()
{
  const QString title = QStringLiteral("Save Screenshot");
  const QString filter =
    QStringLiteral("PNG Image (*.png);;JPEG Image (*.jpg *.jpeg);;Bitmap Image (*.bmp)");
  const QString fileName = VXUserPrompt::getSaveFileName(m_ViewWidget, title, filter);
  if (fileName.isEmpty())
    return;

  VXScreenshotOptionsDialog dialog(backgroundColor(), m_ViewWidget);
  if (VXUserPrompt::execDialog(dialog) != QDialog::Accepted)
    return;
  const bool transparent = dialog.transparentBackground();
  const QColor color = dialog.backgroundColor();

  const QImage image = captureViewImage(transparent, color);
  if (image.isNull())
  {
    Q_EMIT printOutput(
      QStringLiteral(
        "Failed to capture screenshot for '%1' — render window returned no image data.")
        .arg(fileName));
    return;
  }
  if (!image.save(fileName))
    Q_EMIT printOutput(QStringLiteral("Failed to write screenshot to '%1'.").arg(fileName));
}

void VXViewActionsController::copyScreenshot()
{
  const QImage image = captureViewImage(false, QColor());
  if (!image.isNull())
    QGuiApplication::clipboard()->setImage(image);
}

// ---------------------------------------------------------------------------
// Actions

QAction* VXViewActionsController::getSaveScreenshotAction()
{
  if (m_SaveScreenshotAction == nullptr)
  {
    m_SaveScreenshotAction = new QAction(QStringLiteral("Save Screenshot ..."), this);
    connect(m_SaveScreenshotAction, &QAction::triggered, this,
            &VXViewActionsController::saveScreenshot);
  }
  return m_SaveScreenshotAction;
}

QAction* VXViewActionsController::getCopyScreenshotAction()
{
  if (m_CopyScreenshotAction == nullptr)
  {
    m_CopyScreenshotAction = new QAction(QStringLiteral("Copy Screenshot"), this);
    connect(m_CopyScreenshotAction, &QAction::triggered, this,
            &VXViewActionsController::copyScreenshot);
  }
  return m_CopyScreenshotAction;
}

QAction* VXViewActionsController::getChangeBackgroundColorAction()
{
  if (m_ChangeBackgroundAction == nullptr)
  {
    m_ChangeBackgroundAction = new QAction(QStringLiteral("Change Background Color"), this);
    connect(m_ChangeBackgroundAction, &QAction::triggered, this,
            &VXViewActionsController::changeBackgroundColor);
  }
  return m_ChangeBackgroundAction;
}

QAction* VXViewActionsController::getRestoreDefaultBackgroundColorAction()
{
  if (m_RestoreBackgroundAction == nullptr)
  {
    m_RestoreBackgroundAction =
      new QAction(QStringLiteral("Restore Default Background Color"), this);
    connect(m_RestoreBackgroundAction, &QAction::triggered, this,
            &VXViewActionsController::restoreDefaultBackgroundColor);
  }
  return m_RestoreBackgroundAction;
}

QAction* VXViewActionsController::getGridAxesAction()
{
  if (m_GridAxesAction == nullptr)
  {
    m_GridAxesAction = new QAction(QStringLiteral("Axes Grid"), this);
    m_GridAxesAction->setCheckable(true);
    m_GridAxesAction->setChecked(gridAxesEnabled());
    // triggered, not toggled: setGridAxesEnabled sets the check state itself
    connect(m_GridAxesAction, &QAction::triggered, this,
            &VXViewActionsController::setGridAxesEnabled);
  }
  return m_GridAxesAction;
}

QAction* VXViewActionsController::getEditGridAxesAction()
{
  if (m_EditGridAxesAction == nullptr)
  {
    m_EditGridAxesAction = new QAction(QStringLiteral("Edit Axes Grid"), this);
    connect(m_EditGridAxesAction, &QAction::triggered, this,
            &VXViewActionsController::editGridAxes);
  }
  return m_EditGridAxesAction;
}

// ---------------------------------------------------------------------------
// Background

QColor VXViewActionsController::backgroundColor() const
{
  if (m_Renderer == nullptr)
    return {};
  double rgb[3];
  m_Renderer->GetBackground(rgb);
  return QColor::fromRgbF(static_cast<float>(rgb[0]), static_cast<float>(rgb[1]),
                          static_cast<float>(rgb[2]));
}

void VXViewActionsController::setBackgroundColor(const QColor& color)
{
  if (m_Renderer == nullptr || !color.isValid())
    return;
  m_Renderer->SetBackground(color.redF(), color.greenF(), color.blueF());
  if (m_BackgroundChangedHook)
    m_BackgroundChangedHook(color);
  renderWindowNow();
  if (m_ViewWidget != nullptr)
    m_ViewWidget->update();
}

void VXViewActionsController::setBackgroundColorComponents(std::array<double, 3> rgb)
{
  for (double& component : rgb)
  {
    if (component < 0.0 || component > 1.0 || std::isnan(component))
    {
      Q_EMIT printOutput(
        QStringLiteral("Background color component %1 out of range; clamped to [0, 1].")
          .arg(component));
      component = std::isnan(component) ? 0.0 : std::clamp(component, 0.0, 1.0);
    }
  }
  setBackgroundColor(QColor::fromRgbF(static_cast<float>(rgb[0]), static_cast<float>(rgb[1]),
                                      static_cast<float>(rgb[2])));
}

void VXViewActionsController::changeBackgroundColor()
{
  const QString title = QStringLiteral("Select Background Color");
  const QColor color = VXUserPrompt::getColor(m_ViewWidget, backgroundColor(), title);
  if (color.isValid())
    setBackgroundColor(color);
}

void VXViewActionsController::restoreDefaultBackgroundColor()
{
  if (m_DefaultBackground)
    setBackgroundColor(m_DefaultBackground());
}

// ---------------------------------------------------------------------------
// Axes grid

vtkGridAxesActor3D* VXViewActionsController::getGridAxesActor() const
{
  return m_GridAxesActor;
}

bool VXViewActionsController::gridAxesEnabled() const
{
  return m_GridAxesActor != nullptr && m_GridAxesActor->GetVisibility() != 0;
}

void VXViewActionsController::ensureGridAxesActor()
{
  if (m_GridAxesActor != nullptr || m_Renderer == nullptr)
    return;
  m_GridAxesActor = vtkSmartPointer<vtkGridAxesActor3D>::New();
  KXVtk::utils::InitializeGridAxesActor(m_GridAxesActor);
  m_GridAxesActor->SetVisibility(false);
  m_Renderer->AddViewProp(m_GridAxesActor);
  recomputeGridAxesBounds();
}

void VXViewActionsController::recomputeGridAxesBounds()
{
  if (m_Renderer == nullptr || m_GridAxesActor == nullptr)
    return;
  // the grid must not measure itself
  m_Renderer->RemoveViewProp(m_GridAxesActor);
  vtkBoundingBox box;
  vtkPropCollection* props = m_Renderer->GetViewProps();
  vtkCollectionSimpleIterator it;
  props->InitTraversal(it);
  while (vtkProp* prop = props->GetNextProp(it))
  {
    if (prop->GetVisibility() == 0 || !prop->GetUseBounds())
      continue;
    if (auto* image = vtkImageActor::SafeDownCast(prop))
    {
      const std::array<double, 6> bounds = KXVtk::utils::GetImageActorRenderedBounds(image);
      box.AddBounds(bounds.data());
    }
    else if (const double* bounds = prop->GetBounds())
    {
      box.AddBounds(bounds);
    }
  }
  double gridBounds[6] = { 0, 0, 0, 0, 0, 0 };
  if (box.IsValid())
    box.GetBounds(gridBounds);
  m_GridAxesActor->SetGridBounds(gridBounds);
  m_Renderer->AddViewProp(m_GridAxesActor);
  applyCachedConfigToActor();
}

void VXViewActionsController::applyCachedConfigToActor()
{
  if (m_GridAxesActor == nullptr)
    return;
  const double* bounds = m_GridAxesActor->GetGridBounds();
  for (int axis = 0; axis < 3; ++axis)
  {
    const size_t a = static_cast<size_t>(axis);
    const double spacing = m_GridConfig.spacing[a];
    const bool custom = spacing != 0.0;
    m_GridAxesActor->SetUseCustomLabels(axis, custom);
    m_AppliedCustom[a] = custom;
    m_AppliedLabels[a].clear();
    if (!custom)
      continue;
    const double min = bounds[2 * axis];
    const double max = bounds[2 * axis + 1];
    const double steps = std::floor((max - min) / spacing);
    // a negative spacing or inverted bounds still give the label at the minimum
    const vtkIdType count =
      std::isfinite(steps) && steps >= 0.0 ? static_cast<vtkIdType>(steps) + 1 : 1;
    m_GridAxesActor->SetNumberOfLabels(axis, count);
    double value = min;
    for (vtkIdType k = 0; k < count; ++k)
    {
      m_GridAxesActor->SetLabel(axis, k, value);
      m_AppliedLabels[a].push_back(value);
      value += spacing;
    }
  }
  KXVtk::utils::ApplyGridAxesAppearance(m_GridAxesActor, m_GridConfig.color, m_GridConfig.opacity,
                                        m_GridConfig.showLabels);
  for (int axis = 0; axis < 3; ++axis)
    m_GridAxesActor->SetTitle(axis, m_GridConfig.titles[static_cast<size_t>(axis)].toStdString());
  m_GridAxesActor->SetGenerateGrid(m_GridConfig.showGrid);

  // a volume without input would make the window render fail
  if (m_Renderer != nullptr)
  {
    vtkPropCollection* props = m_Renderer->GetViewProps();
    vtkCollectionSimpleIterator it;
    props->InitTraversal(it);
    while (vtkProp* prop = props->GetNextProp(it))
    {
      auto* volume = vtkVolume::SafeDownCast(prop);
      if (volume != nullptr && volume->GetVisibility() != 0 &&
          (volume->GetMapper() == nullptr || volume->GetMapper()->GetDataSetInput() == nullptr))
        return;
    }
  }
  renderWindowNow();
}

void VXViewActionsController::setGridAxesEnabled(bool enabled)
{
  ensureGridAxesActor();
  if (m_GridAxesActor == nullptr)
    return;
  if (enabled)
    recomputeGridAxesBounds();
  m_GridAxesActor->SetVisibility(enabled);
  getGridAxesAction()->setChecked(enabled);
  renderWindowNow();
}

void VXViewActionsController::setGridAxesConfig(std::array<double, 3> spacing, bool showGrid,
                                                const QColor& color, double opacity,
                                                bool showLabels, std::array<QString, 3> titles)
{
  m_GridConfig.spacing = spacing;
  m_GridConfig.showGrid = showGrid;
  m_GridConfig.color = color;
  m_GridConfig.opacity = opacity;
  m_GridConfig.showLabels = showLabels;
  m_GridConfig.titles = std::move(titles);
  if (m_GridAxesWidget != nullptr)
    m_GridAxesWidget->loadConfig(m_GridConfig);
  applyCachedConfigToActor();
}

void VXViewActionsController::editGridAxes()
{
  if (m_GridAxesWidget == nullptr)
  {
    m_GridAxesWidget = new VXGridAxesWidget(m_ViewWidget);
    connect(m_GridAxesWidget, &VXGridAxesWidget::applyRequested, this,
            &VXViewActionsController::applyGridAxesEdits);
  }
  m_GridAxesWidget->loadConfig(m_GridConfig);
  m_GridAxesWidget->show();
  m_GridAxesWidget->raise();
}

void VXViewActionsController::applyGridAxesEdits()
{
  if (m_GridAxesWidget == nullptr)
    return;
  m_GridConfig = m_GridAxesWidget->config();
  applyCachedConfigToActor();
}

// ---------------------------------------------------------------------------
// State

namespace
{
nlohmann::json vector3(const double v[3])
{
  return nlohmann::json::array({ v[0], v[1], v[2] });
}

// three finite numbers, or nothing
bool readVector3(const nlohmann::json& state, const char* key, double out[3])
{
  const auto it = state.find(key);
  if (it == state.end() || !it->is_array() || it->size() != 3)
    return false;
  for (size_t i = 0; i < 3; ++i)
  {
    if (!(*it)[i].is_number() || !std::isfinite((*it)[i].get<double>()))
      return false;
  }
  for (size_t i = 0; i < 3; ++i)
    out[i] = (*it)[i].get<double>();
  return true;
}
} // namespace

void VXViewActionsController::saveState(nlohmann::json& state) const
{
  state = nlohmann::json::object();
  if (m_Renderer == nullptr)
    return;
  double background[3];
  m_Renderer->GetBackground(background);
  state["background"] = vector3(background);
  state["grid_axes"] = gridAxesEnabled();
  vtkCamera* camera = m_Renderer->GetActiveCamera();
  state["camera"] = { { "position", vector3(camera->GetPosition()) },
                      { "focal_point", vector3(camera->GetFocalPoint()) },
                      { "view_up", vector3(camera->GetViewUp()) },
                      { "parallel_scale", camera->GetParallelScale() },
                      { "parallel_projection", camera->GetParallelProjection() != 0 } };
}

void VXViewActionsController::restoreState(const nlohmann::json& state)
{
  if (m_Renderer == nullptr || !state.is_object())
    return;
  double v[3];
  if (readVector3(state, "background", v))
    setBackgroundColorComponents({ v[0], v[1], v[2] });
  if (const auto it = state.find("grid_axes"); it != state.end() && it->is_boolean())
    setGridAxesEnabled(it->get<bool>());
  const auto cam = state.find("camera");
  if (cam != state.end() && cam->is_object())
  {
    vtkCamera* camera = m_Renderer->GetActiveCamera();
    if (readVector3(*cam, "position", v))
      camera->SetPosition(v);
    if (readVector3(*cam, "focal_point", v))
      camera->SetFocalPoint(v);
    if (readVector3(*cam, "view_up", v))
      camera->SetViewUp(v);
    if (const auto it = cam->find("parallel_scale"); it != cam->end() && it->is_number() &&
                                                     std::isfinite(it->get<double>()) &&
                                                     it->get<double>() > 0.0)
      camera->SetParallelScale(it->get<double>());
    if (const auto it = cam->find("parallel_projection"); it != cam->end() && it->is_boolean())
      camera->SetParallelProjection(it->get<bool>() ? 1 : 0);
    m_Renderer->ResetCameraClippingRange();
  }
  renderWindowNow();
}
