#include "ViewerMainWindow.hpp"

#include <KXComponents/QtKXSettings.hpp>

#include <quadview/VXGeometryTreeWidget.hpp>
#include <quadview/VXQuadViewWindow.hpp>
#include <visualization/FileToVXBridge.hpp>
#include <visualization/QtWidgets/VXInfoWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXFilter.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/VXStateItemFactory.hpp>
#include <visualization/VXRepresentationPimpl.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <vtkDataSet.h>
#include <vtkType.h>

#include <QtGui/QAction>
#include <QtGui/QKeySequence>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPlainTextEdit>

#include <utility>

namespace
{
using Getter = VXRepresentation::Type (*)();
using Setter = void (*)(VXRepresentation::Type);
// the pipeline's defaults by kind of data set, in one order for saving and restoring
const std::array<std::pair<Getter, Setter>, 9> k_Defaults = { {
  { &VXPipeline::getDefaultRepType, &VXPipeline::setDefaultRepType },
  { &VXPipeline::getDefaultImageGeomRepType, &VXPipeline::setDefaultImageGeomRepType },
  { &VXPipeline::getDefaultRectGridRepType, &VXPipeline::setDefaultRectGridRepType },
  { &VXPipeline::getDefaultVertexRepType, &VXPipeline::setDefaultVertexRepType },
  { &VXPipeline::getDefaultEdgeRepType, &VXPipeline::setDefaultEdgeRepType },
  { &VXPipeline::getDefaultTriangleRepType, &VXPipeline::setDefaultTriangleRepType },
  { &VXPipeline::getDefaultQuadRepType, &VXPipeline::setDefaultQuadRepType },
  { &VXPipeline::getDefaultTetRepType, &VXPipeline::setDefaultTetRepType },
  { &VXPipeline::getDefaultHexRepType, &VXPipeline::setDefaultHexRepType },
} };
} // namespace

ViewerMainWindow::ViewerMainWindow(QWidget* parent)
  : QMainWindow(parent)
{
  // before the module reads any setting: a 2 M-triangle mesh or a voxel surface drawn with its
  // cell edges is a black mass, so the viewer's default is off; a value the user saved stays
  {
    QtKXSettings settings;
    if (!settings.contains(k_SurfaceEdgesKey))
    {
      settings.setValue(k_SurfaceEdgesKey, false);
      settings.sync();
    }
  }
  setWindowTitle("KXVtk Viewer");
  setAcceptDrops(true);
  m_Module = new VXVisualizationModuleWidget(this);
  m_Module->setObjectName("visualizationModule");
  setCentralWidget(m_Module);

  auto* dock = new QDockWidget("Output", this);
  m_OutputDock = dock;
  dock->setObjectName("outputDock");
  m_Output = new QPlainTextEdit(dock);
  m_Output->setObjectName("outputText");
  m_Output->setReadOnly(true);
  m_Output->setMaximumBlockCount(5000);
  dock->setWidget(m_Output);
  addDockWidget(Qt::BottomDockWidgetArea, dock);

  connect(m_Module, &VXVisualizationModuleWidget::printOutput, this,
          &ViewerMainWindow::appendOutput);
  // the requests to the host: this host runs them in its sample pipeline
  connect(m_Module, &VXVisualizationModuleWidget::createMultiThresholdObjectsFilter, this,
          &ViewerMainWindow::createMultiThresholdObjectsFilter);
  connect(m_Module, &VXVisualizationModuleWidget::createApplyTransformationGeometryFilter, this,
          &ViewerMainWindow::createApplyTransformationGeometryFilter);

  for (std::size_t i = 0; i < k_Defaults.size(); ++i)
    m_PreviousDefaults[i] = k_Defaults[i].first();
  VXPipeline::setDefaultVertexRepType(VXRepresentation::Points);
  VXPipeline::setDefaultEdgeRepType(VXRepresentation::Wireframe);
  VXPipeline::setDefaultTriangleRepType(VXRepresentation::Surface);
  VXPipeline::setDefaultQuadRepType(VXRepresentation::Surface);
  VXPipeline::setDefaultTetRepType(VXRepresentation::Surface);
  VXPipeline::setDefaultHexRepType(VXRepresentation::Surface);
  // the pipeline announces a data source before it picks its data view
  connect(m_Module->pipeline(), &VXPipeline::dataSourceAdded, this,
          &ViewerMainWindow::chooseGridDataView);
  // the module asks its host to load state files; this host always agrees
  connect(m_Module, &VXVisualizationModuleWidget::loadStateRequested, m_Module,
          qOverload<QString>(&VXVisualizationModuleWidget::loadState));
  createMenus();
}

ViewerMainWindow::~ViewerMainWindow()
{
  for (std::size_t i = 0; i < k_Defaults.size(); ++i)
    k_Defaults[i].second(m_PreviousDefaults[i]);
}

void ViewerMainWindow::showEvent(QShowEvent* event)
{
  QMainWindow::showEvent(event);
  if (m_DocksSized)
    return;
  m_DocksSized = true;
  // messages are few: five lines of output leave the pipeline browser and its settings the height
  resizeDocks({ m_OutputDock }, { m_Output->fontMetrics().lineSpacing() * 5 + 24 }, Qt::Vertical);
}

void ViewerMainWindow::setDataViewForAll(VXRepresentation::Type type)
{
  m_GridDataViewBySize = false;
  for (const auto& [getter, setter] : k_Defaults)
    setter(type);
}

void ViewerMainWindow::chooseGridDataView(VXDataSource* source)
{
  if (!m_GridDataViewBySize || source == nullptr)
    return;
  vtkDataSet* data = source->getOutput();
  if (data == nullptr)
    return;
  const VXRepresentation::Type type = data->GetNumberOfCells() > k_LargeGridCells
                                        ? VXRepresentation::Outline
                                        : VXRepresentation::Surface;
  const int kind = data->GetDataObjectType();
  if (kind == VTK_IMAGE_DATA)
    VXPipeline::setDefaultImageGeomRepType(type);
  else if (kind == VTK_RECTILINEAR_GRID)
    VXPipeline::setDefaultRectGridRepType(type);
  // No default setter reaches structured grids, strips and polygons, or meshes of other cells:
  // once the pipeline has shown them as outlines, the window puts a surface in the outline's place.
  const bool meshLike = kind == VTK_POLY_DATA || kind == VTK_UNSTRUCTURED_GRID;
  const bool smallGrid = kind == VTK_STRUCTURED_GRID && type == VXRepresentation::Surface;
  VXPipeline* pipeline = m_Module->pipeline();
  if ((!meshLike && !smallGrid) || pipeline->isLoadingState() ||
      VXPipeline::DefaultRepresentationType(data) != VXRepresentation::Outline)
    return;
  QMetaObject::invokeMethod(
    source,
    [source, pipeline]()
    {
      const QList<VXRepresentation*> views =
        source->findChildren<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly);
      if (views.size() != 1 || views.front()->type() != VXRepresentation::Outline)
        return;
      if (pipeline->addRepresentation(source, VXRepresentation::Surface))
        views.front()->removeModule();
    },
    Qt::QueuedConnection);
}

void ViewerMainWindow::createMenus()
{
  QMenu* file = menuBar()->addMenu("&File");
  QAction* open = file->addAction("&Open...", this, &ViewerMainWindow::openFiles);
  open->setShortcut(QKeySequence::Open);
  file->addAction("&Import State...", m_Module,
                  qOverload<>(&VXVisualizationModuleWidget::loadState));
  file->addAction("&Save State...", m_Module, qOverload<>(&VXVisualizationModuleWidget::saveState));
  file->addSeparator();
  file->addAction("Save Screenshot of &All Views...", m_Module,
                  &VXVisualizationModuleWidget::saveAllViewsScreenshot);
  file->addAction("&Copy All Views to Clipboard", m_Module,
                  &VXVisualizationModuleWidget::copyAllViewsToClipboard);
  file->addSeparator();
  QAction* quit = file->addAction("&Quit", qApp, &QApplication::closeAllWindows);
  quit->setShortcut(QKeySequence::Quit);

  QMenu* view = menuBar()->addMenu("&View");
  view->addAction("&Link All Cameras", m_Module, &VXVisualizationModuleWidget::linkAllViews);
  view->addAction("&Unlink All Cameras", m_Module, &VXVisualizationModuleWidget::unlinkAllViews);
  view->addAction("Equalize View &Widths", m_Module,
                  &VXVisualizationModuleWidget::equalizeViewWidths);
  view->addAction("Equalize View &Heights", m_Module,
                  &VXVisualizationModuleWidget::equalizeViewHeights);
  view->addSeparator();
  view->addAction("Save Current Layout as &Default...", m_Module,
                  &VXVisualizationModuleWidget::writeSettings);

  QMenu* presets = menuBar()->addMenu("&Presets");
  presets->addAction(
    "&Save Preset of Selected Data Source...", this,
    [this]
    {
      const QModelIndex index = m_Module->getInfoWidget()->currentIndex();
      if (!m_Module->pipelineModel()->isDataSource(index))
      {
        appendOutput(
          "Select a data source in the pipeline browser to save its data views as a preset.");
        return;
      }
      const QString name =
        VXUserPrompt::getText(this, "Create Visualization Preset", "Preset name:").trimmed();
      if (!name.isEmpty())
        m_Module->createPreset(index, name, false);
    });
  QMenu* apply = presets->addMenu("&Apply Preset to Selected Data Source");
  connect(apply, &QMenu::aboutToShow, this,
          [this, apply]
          {
            apply->clear();
            for (const QString& name : VXInfoWidget::PresetNames())
            {
              apply->addAction(
                name, this,
                [this, name]
                {
                  const QModelIndex index = m_Module->getInfoWidget()->currentIndex();
                  if (m_Module->pipelineModel()->isDataSource(index))
                    m_Module->applyPreset(index, name);
                  else
                    appendOutput(
                      "Select a data source in the pipeline browser to apply a preset to it.");
                });
            }
          });
  presets->addSeparator();
  presets->addAction("&Export Presets...", this,
                     [this]
                     {
                       const QString path = VXUserPrompt::getSaveFileName(
                         this, "Export Visualization Presets", "JSON File (*.json)");
                       if (!path.isEmpty())
                         m_Module->exportPresets(path, VXInfoWidget::PresetNames());
                     });
  presets->addAction("&Import Presets...", this,
                     [this]
                     {
                       const QString path = VXUserPrompt::getOpenFileName(
                         this, "Import Visualization Presets", "JSON File (*.json)");
                       if (!path.isEmpty())
                         m_Module->importPresets(path);
                     });

  QMenu* filters = menuBar()->addMenu("F&ilters");
  for (const auto& [label, typeName] :
       { std::pair{ "&Clip", "VXFClip" }, std::pair{ "&Slice", "VXFSlice" },
         std::pair{ "&Threshold", "VXFThreshold" } })
  {
    const QString type = typeName;
    filters->addAction(label, this, [this, type] { addFilterToSelection(type); });
  }

  // the same entries as the pipeline browser's "Add Annotation" menu, for the active view
  QMenu* annotations = menuBar()->addMenu("&Annotations");
  for (const auto& [itemType, label] : VXInfoWidget::AnnotationKinds())
  {
    const QString type = itemType;
    annotations->addAction(label, this,
                           [this, type] { m_Module->getInfoWidget()->addGlobalSource(type); });
  }

  QMenu* host = menuBar()->addMenu("&Host Pipeline");
  host->addAction("&Run Sample Pipeline", this, &ViewerMainWindow::runHostPipeline);
  host->addAction("Run Again with &New Values", this, &ViewerMainWindow::rerunHostPipeline);

  QMenu* quad = menuBar()->addMenu("&Quad View");
  QAction* openQuad =
    quad->addAction("Open Image Geometry in &Quad View", this, &ViewerMainWindow::openQuadView);
  openQuad->setObjectName("openQuadViewAction");
}

VXQuadViewWindow* ViewerMainWindow::openQuadView()
{
  VXPipelineModel* model = m_Module->pipelineModel();
  auto* source =
    qobject_cast<VXDataSource*>(model->getCoreObject(m_Module->getInfoWidget()->currentIndex()));
  if (!VXGeometryTreeWidget::isImageGeometry(source))
  {
    source = nullptr;
    for (VXDataSource* candidate : model->getAllDataSources())
    {
      if (VXGeometryTreeWidget::isImageGeometry(candidate))
      {
        source = candidate;
        break;
      }
    }
  }
  if (source == nullptr)
  {
    appendOutput("The quad view shows an image geometry: open an image file or run the host "
                 "pipeline first.");
    return nullptr;
  }
  if (m_QuadViewWindow == nullptr)
  {
    m_QuadViewWindow = new VXQuadViewWindow(model, this);
    m_QuadViewWindow->setWindowFlag(Qt::Window);
    m_QuadViewWindow->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_QuadViewWindow, &VXQuadViewWindow::printOutput, this,
            &ViewerMainWindow::appendOutput);
  }
  m_QuadViewWindow->show();
  if (!m_QuadViewWindow->openGeometry(source))
    return nullptr;
  m_QuadViewWindow->raise();
  return m_QuadViewWindow;
}

VXFilter* ViewerMainWindow::addFilterToSelection(const QString& typeName)
{
  VXInfoWidget* tree = m_Module->getInfoWidget();
  VXPipelineModel* model = m_Module->pipelineModel();
  const QModelIndex index = tree->currentIndex();
  const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(typeName);
  if (!model->canAddFilter(index) || entry == nullptr)
  {
    appendOutput("Select a data source or a filter in the pipeline browser to add a filter under "
                 "it.");
    return nullptr;
  }
  auto* filter = qobject_cast<VXFilter*>(entry->make(m_Module->pipeline()));
  const QModelIndex added = filter != nullptr ? model->addFilter(index, filter) : QModelIndex();
  if (!added.isValid())
  {
    delete filter;
    appendOutput(QString("The %1 could not be added.").arg(typeName));
    return nullptr;
  }
  // the menu shows the result at once; the filter's page changes it from there
  filter->applyFilter();
  tree->setCurrentIndex(added);
  return filter;
}

void ViewerMainWindow::openFiles()
{
  const QStringList paths =
    QFileDialog::getOpenFileNames(this, "Open", QString(), FileToVXBridge::FileFilterList());
  for (const QString& path : paths)
  {
    if (!m_Module->getInfoWidget()->checkForExistingFile(path))
      m_Module->pipeline()->importFile(path);
  }
}

void ViewerMainWindow::runHostPipeline()
{
  m_HostRun = 0;
  SamplePipelineController::Output output = m_Controller.execute(k_HostSampleSize, m_HostRun);
  m_HostData = std::make_shared<kx::core::DataStructure>(std::move(output.data));
  if (m_Module->pipeline()->importPipelineOutput(&m_Controller, m_HostData))
    appendOutput(QString("%1: %2 grains shown from memory")
                   .arg(m_Controller.getPipelineName())
                   .arg(output.grains));
}

void ViewerMainWindow::rerunHostPipeline()
{
  if (!m_HostData)
  {
    runHostPipeline();
    return;
  }
  // same geometry names, new grain layout: the shown data sources are updated in place
  ++m_HostRun;
  SamplePipelineController::Output output = m_Controller.execute(k_HostSampleSize, m_HostRun);
  m_HostData = std::make_shared<kx::core::DataStructure>(std::move(output.data));
  if (m_Module->pipeline()->reloadPipelineOutput(&m_Controller, m_HostData))
    appendOutput(QString("%1: run %2, %3 grains")
                   .arg(m_Controller.getPipelineName())
                   .arg(m_HostRun + 1)
                   .arg(output.grains));
}

bool ViewerMainWindow::hostHolds(const kx::core::DataPath& path) const
{
  return m_HostData && !path.empty() && m_HostData->getData(path) != nullptr;
}

bool ViewerMainWindow::runHostStep(SamplePipelineController::Step step)
{
  m_Controller.addStep(std::move(step));
  SamplePipelineController::Output output = m_Controller.execute(k_HostSampleSize, m_HostRun);
  const QString message = output.messages.back();
  if (!output.succeeded.back())
  {
    m_Controller.removeLastStep();
    appendOutput(
      QString("%1: the step was not added. %2").arg(m_Controller.getPipelineName(), message));
    return false;
  }
  m_HostData = std::make_shared<kx::core::DataStructure>(std::move(output.data));
  m_Module->pipeline()->reloadPipelineOutput(&m_Controller, m_HostData);
  appendOutput(QString("%1: added %2").arg(m_Controller.getPipelineName(), message));
  return true;
}

void ViewerMainWindow::createMultiThresholdObjectsFilter(
  kx::core::DataPath geometryPath, std::vector<KX::ArrayThresholdRange> ranges)
{
  if (!hostHolds(geometryPath))
  {
    QStringList texts;
    for (const KX::ArrayThresholdRange& range : ranges)
      texts << QString("%1 in [%2, %3]")
                 .arg(QString::fromStdString(range.arrayPath))
                 .arg(range.lowerBound)
                 .arg(range.upperBound);
    appendOutput(QString("Multi-Threshold Objects filter requested on %1 (%2). No host pipeline "
                         "holds this geometry, so the viewer only reports the request.")
                   .arg(QString::fromStdString(geometryPath.toString("/")), texts.join(", ")));
    return;
  }
  runHostStep(SamplePipelineController::MultiThresholdStep{ geometryPath, std::move(ranges) });
}

void ViewerMainWindow::createApplyTransformationGeometryFilter(
  kx::core::DataPath geometryPath, const std::array<std::array<double, 4>, 4>& matrix)
{
  if (!hostHolds(geometryPath))
  {
    QStringList rows;
    for (const auto& row : matrix)
      rows << QString("%1 %2 %3 %4").arg(row[0]).arg(row[1]).arg(row[2]).arg(row[3]);
    appendOutput(QString("Apply Transformation filter requested on %1 with the matrix [%2]. No "
                         "host pipeline holds this geometry, so the viewer only reports the "
                         "request.")
                   .arg(QString::fromStdString(geometryPath.toString("/")), rows.join("; ")));
    return;
  }
  if (!runHostStep(SamplePipelineController::TransformStep{ geometryPath, matrix }))
    return;
  // the data has moved: the data views that showed the move drop it, or it would count twice
  for (VXDataSource* source : m_Module->pipeline()->findChildren<VXDataSource*>())
  {
    if (source->importedDataPath() != geometryPath)
      continue;
    for (VXRepresentation* view : source->findChildren<VXRepresentation*>())
    {
      for (VXRepresentationPimpl* split : view->getDataViewSplits())
        split->setTransform({ 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 }, { 1.0, 1.0, 1.0 });
    }
  }
}

void ViewerMainWindow::appendOutput(const QString& message)
{
  m_Output->appendPlainText(message);
  Q_EMIT outputAppended(message);
}
