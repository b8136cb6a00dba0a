#include "visualization/QtWidgets/VXVisualizationModuleWidget.hpp"

#include "ui_VXVisualizationModuleWidget.h"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXInfoWidget.hpp"
#include "visualization/QtWidgets/VXViewGridWidget.hpp"
#include "visualization/QtWidgets/VXViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXPipelineModel.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>
#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtCore/QSaveFile>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtWidgets/QMessageBox>

#include <optional>
#include <utility>
#include <vector>

namespace
{
const QString k_StateFileFilter = QStringLiteral("VOXELIA-KX State File (*.vlxstate)");
const QString k_ScreenshotFilter =
  QStringLiteral("PNG Image (*.png);;JPEG Image (*.jpg *.jpeg);;Bitmap Image (*.bmp)");

/** Restores the default data view type whatever way a load ends. */
/** Nesting a split view state may have; the grid's readers recurse over it. */
constexpr int k_MaxSplitStateDepth = 64;

class DefaultRepTypeScope
{
public:
  DefaultRepTypeScope()
    : m_Saved(VXPipeline::getDefaultRepType())
  {
    VXPipeline::setDefaultRepType(VXRepresentation::None);
  }
  ~DefaultRepTypeScope() { VXPipeline::setDefaultRepType(m_Saved); }
  DefaultRepTypeScope(const DefaultRepTypeScope&) = delete;
  DefaultRepTypeScope& operator=(const DefaultRepTypeScope&) = delete;

private:
  VXRepresentation::Type m_Saved;
};

const char* imageFormatFor(const QString& filePath)
{
  const QString suffix = QFileInfo(filePath).suffix().toLower();
  if (suffix == "jpg" || suffix == "jpeg")
    return "JPG";
  if (suffix == "bmp")
    return "BMP";
  return "PNG";
}
} // namespace

VXVisualizationModuleWidget::VXVisualizationModuleWidget(QWidget* parent)
  : QWidget(parent)
  , ui(std::make_shared<Ui::VXVisualizationModuleWidget>())
{
  ui->setupUi(this);
  setAcceptDrops(true);
  m_Pipeline = new VXPipeline(this);
  m_PipelineModel = new VXPipelineModel(m_Pipeline, m_Pipeline);
  m_ActiveView = nullptr;
  m_ActiveViewConnections.clear();

  ui->splitter->setStretchFactor(0, 1);
  ui->splitter->setStretchFactor(1, 0);
  QTimer::singleShot(0, this, [this] { applyDefaultSplitterSizes(); });

  ui->infoWidget->setObjectName("infoWidget");
  ui->infoWidget->setPipelineModel(m_PipelineModel);

  connect(ui->viewGridWidget, &VXViewGridWidget::activeViewChanged, this,
          &VXVisualizationModuleWidget::setActiveView);
  connect(ui->viewGridWidget, &VXViewGridWidget::viewCreated, this,
          &VXVisualizationModuleWidget::connectViewWidget);
  connect(ui->viewGridWidget, &VXViewGridWidget::viewClosed, this,
          &VXVisualizationModuleWidget::activeViewClosed);

  const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
  for (VXAbstractViewWidget* view : views)
    connectViewWidget(view);
  if (!views.isEmpty())
    setActiveView(views.front());

  m_Pipeline->setActiveViewWidget(m_ActiveView);
  readSettings();

  connect(m_Pipeline, &VXPipeline::sendOutputMessage, this,
          &VXVisualizationModuleWidget::printOutput);
  connect(m_Pipeline, &VXPipeline::sendPopupMessage, this,
          &VXVisualizationModuleWidget::popupMessage);
  connect(m_Pipeline, &VXPipeline::requestRenderAll, this,
          &VXVisualizationModuleWidget::renderAllViews);
  connect(m_Pipeline, &VXPipeline::createMultiThresholdObjectsFilter, this,
          &VXVisualizationModuleWidget::createMultiThresholdObjectsFilter);
  connect(m_Pipeline, &VXPipeline::linkingDataViews, this,
          &VXVisualizationModuleWidget::onLinkingDataViews);
  connect(m_Pipeline, &VXPipeline::createApplyTransformationGeometryFilter, this,
          &VXVisualizationModuleWidget::createApplyTransformationGeometryFilter);
  connect(ui->infoWidget, &VXInfoWidget::loadStateFileRequest, this,
          &VXVisualizationModuleWidget::loadStateRequested);
  connect(ui->infoWidget, &VXInfoWidget::createPresetRequest, this,
          &VXVisualizationModuleWidget::createPreset);
  connect(ui->infoWidget, &VXInfoWidget::applyPresetRequest, this,
          &VXVisualizationModuleWidget::applyPreset);
  connect(ui->infoWidget, &VXInfoWidget::exportPresets, this,
          &VXVisualizationModuleWidget::exportPresets);
  connect(ui->infoWidget, &VXInfoWidget::importPresets, this,
          &VXVisualizationModuleWidget::importPresets);
  connect(ui->infoWidget, &VXInfoWidget::importFileRequest, m_Pipeline, &VXPipeline::importFile);
  connect(ui->infoWidget, &VXInfoWidget::sendOutputMessage, this,
          &VXVisualizationModuleWidget::printOutput);
  connect(ui->infoWidget, &VXInfoWidget::clearAllRenderWindowHighlighters, this,
          &VXVisualizationModuleWidget::clearAllRenderWindowHighlighters);
  connect(m_Pipeline, &VXPipeline::pipelineOutputReloaded, ui->infoWidget,
          &VXInfoWidget::checkForValidSaveState);
  connect(ui->infoWidget, &VXInfoWidget::saveStateFileRequest, this,
          qOverload<>(&VXVisualizationModuleWidget::saveState));
}

VXVisualizationModuleWidget::~VXVisualizationModuleWidget()
{
  for (const QMetaObject::Connection& connection : m_ActiveViewConnections)
    disconnect(connection);
  // the tree goes first: its items still talk to the views while they are removed
  ui->infoWidget->setPipelineModel(nullptr);
  delete m_Pipeline;
  m_Pipeline = nullptr;
}

VXInfoWidget* VXVisualizationModuleWidget::getInfoWidget() const
{
  return ui->infoWidget;
}

VXViewGridWidget* VXVisualizationModuleWidget::getViewGridWidget() const
{
  return ui->viewGridWidget;
}

QList<VXAbstractViewWidget*> VXVisualizationModuleWidget::getAllViewWidgets() const
{
  return ui->viewGridWidget->allViews();
}

bool VXVisualizationModuleWidget::canSaveState() const
{
  return ui->infoWidget != nullptr && !ui->infoWidget->modelIsEmpty() &&
         ui->infoWidget->hasValidSaveState();
}

// ---------------------------------------------------------------------------
// Views

void VXVisualizationModuleWidget::setActiveView(VXAbstractViewWidget* viewWidget)
{
  if (viewWidget == m_ActiveView)
    return;
  if (m_ActiveView != nullptr)
  {
    m_ActiveView->setActive(false);
    for (const QMetaObject::Connection& connection : m_ActiveViewConnections)
      disconnect(connection);
    m_ActiveViewConnections.clear();
  }
  m_ActiveView = viewWidget;
  m_Pipeline->setActiveViewWidget(viewWidget);
  Q_EMIT changedActiveView(viewWidget);
  if (ui->infoWidget != nullptr)
    ui->infoWidget->onActiveViewChanged();
  if (viewWidget != nullptr)
  {
    viewWidget->setActive(true);
    if (VXVisualizationWidget* renderWidget = viewWidget->getVisualizationWidget())
      m_ActiveViewConnections.push_back(connect(renderWidget, &VXVisualizationWidget::printOutput,
                                                this, &VXVisualizationModuleWidget::printOutput));
  }
}

void VXVisualizationModuleWidget::activeViewClosed(VXAbstractViewWidget* closedView)
{
  m_ViewIndexMap.remove(closedView);
  if (closedView != m_ActiveView)
    return;
  // the closing view must not stay the pipeline's target
  for (const QMetaObject::Connection& connection : m_ActiveViewConnections)
    disconnect(connection);
  m_ActiveViewConnections.clear();
  m_ActiveView = nullptr;
  VXAbstractViewWidget* next = nullptr;
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
  {
    if (view != closedView)
    {
      next = view;
      break;
    }
  }
  setActiveView(next);
}

void VXVisualizationModuleWidget::connectViewWidget(VXAbstractViewWidget* viewWidget)
{
  if (viewWidget == nullptr)
    return;
  connect(m_Pipeline, &VXPipeline::pipelineOutputReloaded, viewWidget,
          &VXAbstractViewWidget::onPipelineOutputReloaded, Qt::UniqueConnection);
  VXVisualizationWidget* renderWidget = viewWidget->getVisualizationWidget();
  if (renderWidget == nullptr)
    return;
  connect(renderWidget, &VXVisualizationWidget::requestSaveAllViewsScreenshot, this,
          &VXVisualizationModuleWidget::saveAllViewsScreenshot, Qt::UniqueConnection);
  connect(renderWidget, &VXVisualizationWidget::requestCopyAllViewsToClipboard, this,
          &VXVisualizationModuleWidget::copyAllViewsToClipboard, Qt::UniqueConnection);
  connect(renderWidget, &VXVisualizationWidget::requestLinkAllCameras, this,
          &VXVisualizationModuleWidget::linkAllViews, Qt::UniqueConnection);
  connect(renderWidget, &VXVisualizationWidget::requestUnlinkAllCameras, this,
          &VXVisualizationModuleWidget::unlinkAllViews, Qt::UniqueConnection);
  connect(renderWidget, &VXVisualizationWidget::requestEqualizeViewWidths, this,
          &VXVisualizationModuleWidget::equalizeViewWidths, Qt::UniqueConnection);
  connect(renderWidget, &VXVisualizationWidget::requestEqualizeViewHeights, this,
          &VXVisualizationModuleWidget::equalizeViewHeights, Qt::UniqueConnection);
  renderWidget->setAnyViewLinkedQuery([this] { return anyViewLinked(); });
}

bool VXVisualizationModuleWidget::anyViewLinked() const
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
  {
    if (view->getVisualizationWidget() != nullptr && view->getVisualizationWidget()->isLinked())
      return true;
  }
  return false;
}

void VXVisualizationModuleWidget::renderActiveView()
{
  if (m_ActiveView != nullptr)
    m_ActiveView->renderView();
}

void VXVisualizationModuleWidget::renderAllViews()
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
    view->renderView();
}

void VXVisualizationModuleWidget::setBlockRender(bool block)
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
    view->setBlockRender(block);
}

void VXVisualizationModuleWidget::equalizeViewWidths()
{
  ui->viewGridWidget->equalizeColumnWidths();
}

void VXVisualizationModuleWidget::equalizeViewHeights()
{
  ui->viewGridWidget->equalizeRowHeights();
}

void VXVisualizationModuleWidget::linkAllViews()
{
  const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
  if (views.size() < 2)
    return;
  VXAbstractViewWidget* target =
    m_ActiveView != nullptr && views.contains(m_ActiveView) ? m_ActiveView : views.front();
  for (VXAbstractViewWidget* other : views)
  {
    if (other == target || other->getVisualizationWidget() == nullptr ||
        target->getVisualizationWidget() == nullptr)
      continue;
    other->getVisualizationWidget()->linkCameraWith(target->getVisualizationWidget());
  }
  renderAllViews();
}

void VXVisualizationModuleWidget::unlinkAllViews()
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
    view->unlinkCamera();
}

void VXVisualizationModuleWidget::onLinkingDataViews(bool isLinking)
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
  {
    if (auto* viewWidget = qobject_cast<VXViewWidget*>(view))
      viewWidget->setLinkingDataViews(isLinking);
  }
}

void VXVisualizationModuleWidget::clearAllRenderWindowHighlighters()
{
  for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
  {
    VXVisualizationWidget* renderWidget = view->getVisualizationWidget();
    if (renderWidget == nullptr || renderWidget->getPickerCallback() == nullptr)
      continue;
    renderWidget->getPickerCallback()->toggleHighlightersVisibility(false);
    renderWidget->render();
  }
}

void VXVisualizationModuleWidget::clearSplitViewState()
{
  m_ViewIndexMap.clear();
  ui->viewGridWidget->reset();
  const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
  if (views.isEmpty())
    return;
  if (views.front() != m_ActiveView)
    setActiveView(views.front());
  if (VXVisualizationWidget* renderWidget = views.front()->getVisualizationWidget())
    Q_EMIT renderWidget->hideAll();
}

void VXVisualizationModuleWidget::fillViewIndexMap()
{
  m_ViewIndexMap.clear();
  const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
  for (int index = 0; index < views.size(); ++index)
  {
    if (qobject_cast<VXViewWidget*>(views[index]) != nullptr)
      m_ViewIndexMap[views[index]] = index;
  }
}

// ---------------------------------------------------------------------------
// Screenshots

QImage VXVisualizationModuleWidget::grabAllViewsImage()
{
  VXViewGridWidget* grid = ui->viewGridWidget;
  // the scenes first: each capture draws its view, and the widget grab below then finds the
  // views drawn instead of drawing each once more
  std::vector<std::pair<QRect, QImage>> panes;
  for (VXAbstractViewWidget* view : grid->allViews())
  {
    VXVisualizationWidget* renderWidget = view->getVisualizationWidget();
    if (renderWidget == nullptr)
      continue;
    // each pane goes where its render area stands inside the grid
    const QRect target(renderWidget->mapTo(grid, QPoint(0, 0)), renderWidget->size());
    panes.emplace_back(target, renderWidget->captureViewImage(false, QColor()));
  }
  // the frames (status strips, buttons) as Qt paints them; the scenes go on top,
  // since an OpenGL surface does not show in a widget grab
  QImage image = grid->grab().toImage().convertToFormat(QImage::Format_RGB32);
  if (image.size() != grid->size())
    image = image.scaled(grid->size());
  QPainter painter(&image);
  for (const auto& [target, pane] : panes)
  {
    if (!pane.isNull())
      painter.drawImage(target, pane);
  }
  painter.end();
  return image;
}

void VXVisualizationModuleWidget::saveAllViewsScreenshot()
{
  const QString filePath =
    VXUserPrompt::getSaveFileName(this, "Save Screenshot of All Views", k_ScreenshotFilter);
  if (filePath.isEmpty())
    return;
  const QImage image = grabAllViewsImage();
  QSaveFile file(filePath);
  const bool saved =
    file.open(QIODevice::WriteOnly) && image.save(&file, imageFormatFor(filePath)) && file.commit();
  if (!saved)
  {
    file.cancelWriting();
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Warning;
    question.title = "Save Failed";
    question.text = QString("Failed to save the screenshot to:\n%1\nCheck that the file path is "
                            "valid and you have write permissions.")
                      .arg(filePath);
    VXUserPrompt::ask(this, question);
  }
}

void VXVisualizationModuleWidget::copyAllViewsToClipboard()
{
  if (QClipboard* clipboard = QGuiApplication::clipboard())
    clipboard->setImage(grabAllViewsImage());
}

void VXVisualizationModuleWidget::popupMessage(QString title, QString message)
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Information;
  question.title = title;
  question.text = message;
  VXUserPrompt::ask(this, question);
}

// ---------------------------------------------------------------------------
// Drag and drop, first show

void VXVisualizationModuleWidget::dragEnterEvent(QDragEnterEvent* event)
{
  if (event->mimeData() != nullptr && event->mimeData()->hasUrls())
    event->acceptProposedAction();
}

void VXVisualizationModuleWidget::dropEvent(QDropEvent* event)
{
  if (event->mimeData() == nullptr || !event->mimeData()->hasUrls())
    return;
  for (const QUrl& url : event->mimeData()->urls())
  {
    const QString path = QDir::toNativeSeparators(url.toLocalFile());
    if (QFileInfo(path).suffix() == "vlxstate")
    {
      Q_EMIT loadStateRequested(path);
      continue;
    }
    if (ui->infoWidget == nullptr || !ui->infoWidget->checkForExistingFile(path))
      m_Pipeline->importFile(path);
  }
  event->acceptProposedAction();
}

void VXVisualizationModuleWidget::showEvent(QShowEvent* event)
{
  QWidget::showEvent(event);
  if (m_SplitterRestored)
    return;
  m_SplitterRestored = true;
  if (!m_SplitterState.isEmpty())
    ui->splitter->restoreState(m_SplitterState);
  else
    applyDefaultSplitterSizes();
  Q_EMIT visualizationActive();
}

void VXVisualizationModuleWidget::applyDefaultSplitterSizes()
{
  const int width = ui->splitter->width();
  if (width < 1)
    return;
  ui->splitter->setSizes({ width * 3 / 4, width / 4 });
}

// ---------------------------------------------------------------------------
// Render-window settings

void VXVisualizationModuleWidget::readSettings()
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("RenderWindowSettings");
  if (settings.contains("info_splitter_state"))
    m_SplitterState = settings.value("info_splitter_state").toByteArray();
  if (settings.contains("split_view_state"))
  {
    const std::string text = settings.value("split_view_state").toString().toStdString();
    try
    {
      const nlohmann::json state = nlohmann::json::parse(text);
      const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
      if (!views.isEmpty() && qobject_cast<VXViewWidget*>(views.front()) != nullptr)
        ui->viewGridWidget->loadState(state);
    }
    catch (const nlohmann::json::exception& exception)
    {
      // a broken default layout must not stop the module from opening
      qDebug() << "VXVisualizationModuleWidget: corrupt render-window settings detected; resetting "
                  "to default layout.";
      qDebug() << "Parse error:" << exception.what();
      qDebug() << "To fix manually, delete the" << "split_view_state"
               << "key from your preferences file.";
      settings.remove("split_view_state");
      ui->viewGridWidget->reset();
    }
  }
  settings.endGroup();
  settings.endGroup();
}

void VXVisualizationModuleWidget::writeSettings()
{
  QMessageBox box(this);
  box.setWindowTitle("Save Default Render Window Settings");
  box.setText("Do you want to save the current render window state as the default?");
  box.setIcon(QMessageBox::Information);
  box.setStandardButtons(QMessageBox::Save | QMessageBox::No | QMessageBox::Reset);
  box.setDefaultButton(QMessageBox::Save);
  box.addButton("Save", QMessageBox::YesRole);
  box.addButton("Don't Save", QMessageBox::RejectRole);
  box.addButton("Reset to Default", QMessageBox::ResetRole);
  const int result = VXUserPrompt::exec(box);
  if (result == QMessageBox::No)
    return;

  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("RenderWindowSettings");
  if (result == QMessageBox::Yes)
  {
    nlohmann::json state;
    ui->viewGridWidget->saveState(state);
    settings.setValue("split_view_state", QString::fromStdString(state.dump(2, ' ')));
    settings.setValue("info_splitter_state", ui->splitter->saveState());
  }
  else if (result == QMessageBox::Reset)
  {
    settings.clearGroup();
    settings.remove("info_splitter_state");
  }
  settings.endGroup();
  settings.endGroup();
  settings.sync();
}

// ---------------------------------------------------------------------------
// State files

void VXVisualizationModuleWidget::saveState()
{
  const QString filePath =
    VXUserPrompt::getSaveFileName(this, "Save State File", k_StateFileFilter);
  if (filePath.isEmpty())
    return;
  nlohmann::json state;
  saveState(state);
  const QByteArray text = QByteArray::fromStdString(state.dump(2, ' '));
  QSaveFile file(filePath);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
  {
    Q_EMIT printOutput(QString("Failed to open state file '%1'").arg(filePath));
    return;
  }
  if (file.write(text) < text.size())
  {
    file.cancelWriting();
    Q_EMIT printOutput(QString("Failed to write out state file for '%1'").arg(filePath));
    return;
  }
  if (!file.commit())
    Q_EMIT printOutput(QString("Failed to commit state file '%1'").arg(filePath));
}

void VXVisualizationModuleWidget::saveState(nlohmann::json& output)
{
  m_ViewIndexMap.clear();
  nlohmann::json splitState;
  ui->viewGridWidget->saveState(splitState);
  fillViewIndexMap();
  nlohmann::json treeState = nlohmann::json::array();
  if (ui->infoWidget != nullptr)
    ui->infoWidget->saveState(treeState, m_ViewIndexMap);
  output["split_view_state"] = splitState;
  output["tree_view_state"] = treeState;
}

void VXVisualizationModuleWidget::loadState()
{
  const QString filePath =
    VXUserPrompt::getOpenFileName(this, "Load State File", k_StateFileFilter);
  loadState(filePath);
}

void VXVisualizationModuleWidget::loadState(QString filePath)
{
  if (filePath.isEmpty() || QFileInfo(filePath).suffix() != "vlxstate")
    return;
  if (ui->infoWidget != nullptr && !ui->infoWidget->modelIsEmpty())
  {
    VXUserPrompt::Question question;
    question.icon = QMessageBox::Warning;
    question.title = "Possible Loss of Data";
    question.text = "The existing render window split view state will be cleared while loading the "
                    "state file. This may result in a loss of "
                    "existing data.\n\nWould you like to continue loading the state anyway?";
    question.buttons = QMessageBox::Open | QMessageBox::Cancel;
    question.defaultButton = QMessageBox::Cancel;
    if (VXUserPrompt::ask(this, question) != QMessageBox::Open)
      return;
  }
  QFile file(filePath);
  if (!file.open(QIODevice::ReadOnly))
  {
    Q_EMIT printOutput(
      QString("Error opening visualization state from state file %1").arg(filePath));
    return;
  }
  nlohmann::json state;
  try
  {
    state = nlohmann::json::parse(file.readAll().toStdString());
  }
  catch (const nlohmann::json::exception& exception)
  {
    Q_EMIT printOutput(
      QString("Error loading state from '%1': malformed JSON (%2). The file may be corrupt.")
        .arg(filePath, QString::fromUtf8(exception.what())));
    return;
  }
  loadState(state);
}

void VXVisualizationModuleWidget::loadState(nlohmann::json& input)
{
  // the key and shape checks come before anything changes
  for (const char* key : { "split_view_state", "tree_view_state" })
  {
    if (!input.is_object() || !input.contains(key))
    {
      Q_EMIT printOutput(
        QString("Error reading visualization state from state file; missing %1 key").arg(key));
      return;
    }
  }
  if (!input.at("split_view_state").is_object())
  {
    Q_EMIT printOutput("Error reading visualization state from state file; the split_view_state "
                       "value must be a JSON object");
    return;
  }
  if (!input.at("tree_view_state").is_array())
  {
    Q_EMIT printOutput("Error reading visualization state from state file; the tree_view_state "
                       "value must be a JSON array");
    return;
  }
  // the split views' readers recurse: a real layout is a few levels deep
  if (VXInfoWidget::JsonNestingExceeds(input.at("split_view_state"), k_MaxSplitStateDepth))
  {
    Q_EMIT printOutput(QString("Error reading visualization state from state file; the "
                               "split_view_state value is nested deeper than %1 levels")
                         .arg(k_MaxSplitStateDepth));
    return;
  }
  clearSplitViewState();
  DefaultRepTypeScope defaultRepType;
  try
  {
    const QList<VXAbstractViewWidget*> views = ui->viewGridWidget->allViews();
    if (!views.isEmpty() && qobject_cast<VXViewWidget*>(views.front()) != nullptr)
      ui->viewGridWidget->loadState(input["split_view_state"]);
    fillViewIndexMap();
    // a data view fits its view's camera to itself when it first shows; the state brings
    // its own cameras, so they are kept aside and put back once the tree has loaded
    std::vector<std::pair<QPointer<VXVisualizationWidget>, nlohmann::json>> cameras;
    for (VXAbstractViewWidget* view : ui->viewGridWidget->allViews())
    {
      if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
      {
        nlohmann::json camera = nlohmann::json::object();
        renderWidget->saveState(camera);
        cameras.emplace_back(renderWidget, std::move(camera));
      }
    }
    if (ui->infoWidget != nullptr)
      ui->infoWidget->loadState(input["tree_view_state"], m_ViewIndexMap);
    for (auto& [renderWidget, camera] : cameras)
    {
      if (renderWidget != nullptr)
        renderWidget->loadState(std::move(camera));
    }
  }
  catch (const std::exception& exception)
  {
    Q_EMIT printOutput(QString("Error reading visualization state from state file; %1")
                         .arg(QString::fromUtf8(exception.what())));
  }
  renderAllViews();
}

// ---------------------------------------------------------------------------
// Presets

void VXVisualizationModuleWidget::createPreset(QModelIndex dataSourceIndex, QString presetName,
                                               bool saveSplitViewState)
{
  if (ui->infoWidget == nullptr)
  {
    Q_EMIT printOutput("Failed to create visualization preset because no info widget has been set");
    return;
  }
  if (m_ActiveView == nullptr)
  {
    Q_EMIT printOutput(
      "Failed to create visualization preset because there is no active render window");
    return;
  }
  nlohmann::json preset = nlohmann::json::object();
  if (!saveSplitViewState)
  {
    m_ViewIndexMap[m_ActiveView] = -1;
  }
  else
  {
    m_ViewIndexMap.clear();
    nlohmann::json splitState;
    ui->viewGridWidget->saveState(splitState);
    fillViewIndexMap();
    preset["split_view_state"] = splitState;
  }
  nlohmann::json treeState = nlohmann::json::array();
  ui->infoWidget->saveState(dataSourceIndex, treeState, m_ViewIndexMap);
  preset["tree_view_state"] = treeState;
  addPresetToSettings(presetName, preset);
}

void VXVisualizationModuleWidget::addPresetToSettings(const QString& presetName,
                                                      const nlohmann::json& preset)
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  QJsonObject presets = settings.value("VisualizationPresets").toJsonObject();
  presets[presetName] = QString::fromStdString(preset.dump(2, ' '));
  settings.setValue("VisualizationPresets", presets);
  settings.endGroup();
  settings.sync();
  Q_EMIT presetAdded(presetName);
  Q_EMIT printOutput(
    QString("Successfully saved preset %1 to the visualization presets").arg(presetName));
}

nlohmann::json VXVisualizationModuleWidget::getPresetJson(const QString& presetName)
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  const QJsonObject presets = settings.value("VisualizationPresets").toJsonObject();
  settings.endGroup();
  if (!presets.contains(presetName))
  {
    Q_EMIT printOutput(
      QString("Error reading visualization presets; missing %1 key").arg(presetName));
    return nullptr;
  }
  const QJsonValue value = presets.value(presetName);
  if (!value.isString())
  {
    Q_EMIT printOutput(
      QString("Error reading visualization preset %1. Expected json formatted string not found.")
        .arg(presetName));
    return nullptr;
  }
  const QString text = value.toString();
  if (text.isEmpty())
  {
    Q_EMIT printOutput(
      QString("Error reading visualization preset %1. No json formatted strings found.")
        .arg(presetName));
    return nullptr;
  }
  try
  {
    return nlohmann::json::parse(text.toStdString());
  }
  catch (const nlohmann::json::exception& exception)
  {
    Q_EMIT printOutput(QString("Error reading visualization preset '%1': malformed JSON (%2). "
                               "Delete the preset and recreate it.")
                         .arg(presetName, QString::fromUtf8(exception.what())));
    return nullptr;
  }
}

void VXVisualizationModuleWidget::applyPreset(QModelIndex parentIndex, QString presetName)
{
  nlohmann::json preset = getPresetJson(presetName);
  if (preset.is_null() || preset.empty())
    return;
  QMap<VXAbstractViewWidget*, int> viewIndices;
  try
  {
    if (preset.is_object() && preset.contains("split_view_state"))
    {
      if (ui->infoWidget != nullptr && !ui->infoWidget->modelIsEmpty())
      {
        VXUserPrompt::Question question;
        question.icon = QMessageBox::Question;
        question.title = "Loading Preset Possible Loss of Data";
        question.text =
          QString("The existing render window split view state will be cleared while loading "
                  "preset '%1'. This may result in a loss of "
                  "existing data.\n\n Would you like to continue opening the preset?)")
            .arg(presetName);
        question.buttons = QMessageBox::Open | QMessageBox::Cancel;
        question.defaultButton = QMessageBox::Cancel;
        if (VXUserPrompt::ask(this, question) != QMessageBox::Open)
          return;
      }
      clearSplitViewState();
      ui->viewGridWidget->loadState(preset["split_view_state"]);
      fillViewIndexMap();
      viewIndices = m_ViewIndexMap;
    }
    else if (m_ActiveView != nullptr)
    {
      // items of a preset without views carry the index -1: the active window
      viewIndices[m_ActiveView] = -1;
    }
    if (ui->infoWidget != nullptr && preset.is_object() && preset.contains("tree_view_state"))
    {
      QList<VXDataSource*> loadedSources;
      QList<VXBridgeObject*> loadedBridges;
      ui->infoWidget->loadState(parentIndex, preset["tree_view_state"], viewIndices, loadedSources,
                                loadedBridges);
    }
  }
  catch (const nlohmann::json::exception& exception)
  {
    Q_EMIT printOutput(QString("Error reading visualization preset '%1': %2")
                         .arg(presetName, QString::fromUtf8(exception.what())));
  }
  renderAllViews();
}

void VXVisualizationModuleWidget::exportPresets(QString filePath, QStringList presetNames)
{
  nlohmann::json presets = nlohmann::json::object();
  for (const QString& name : presetNames)
  {
    nlohmann::json preset = getPresetJson(name);
    if (!preset.is_null())
      presets[name.toStdString()] = preset;
  }
  const QByteArray text = QByteArray::fromStdString(presets.dump(2, ' '));
  QSaveFile file(filePath);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
  {
    Q_EMIT printOutput(QString("Failed to open preset export file '%1'").arg(filePath));
    return;
  }
  if (file.write(text) < text.size())
  {
    file.cancelWriting();
    Q_EMIT printOutput(QString("Failed to write out preset export file for '%1'").arg(filePath));
    return;
  }
  if (!file.commit())
  {
    Q_EMIT printOutput(QString("Failed to commit preset export file '%1'").arg(filePath));
    return;
  }
  Q_EMIT printOutput(QString("Presets successfully written to file at '%1'").arg(filePath));
}

void VXVisualizationModuleWidget::importPresets(QString filePath)
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  QJsonObject presets = settings.value("VisualizationPresets").toJsonObject();
  QFile file(filePath);
  if (!file.open(QIODevice::ReadOnly))
  {
    Q_EMIT printOutput(QString("Error opening visualization preset file %1").arg(filePath));
    return;
  }
  nlohmann::json imported;
  try
  {
    imported = nlohmann::json::parse(file.readAll().toStdString());
  }
  catch (const nlohmann::json::exception& exception)
  {
    Q_EMIT printOutput(QString("Error importing presets from '%1': malformed JSON (%2). The file "
                               "may be corrupt or not a valid preset file.")
                         .arg(filePath, QString::fromUtf8(exception.what())));
    return;
  }
  if (!imported.is_object())
  {
    Q_EMIT printOutput(QString("Error importing presets from '%1': malformed JSON (%2). The file "
                               "may be corrupt or not a valid preset file.")
                         .arg(filePath, "the top level is not an object"));
    return;
  }
  for (auto iter = imported.begin(); iter != imported.end(); ++iter)
    presets[QString::fromStdString(iter.key())] = QString::fromStdString(iter.value().dump(2, ' '));
  settings.setValue("VisualizationPresets", presets);
  settings.endGroup();
  settings.sync();
  Q_EMIT printOutput(QString("Successfully imported preset(s) from file %1").arg(filePath));
}
