// The viewer's main window driven in-process: split and linked views, the
// composite screenshot, the host pipeline menu, the output dock and the frames
// a start and a screenshot draw.
#include "../dataviews/DataViewTestSupport.hpp"
#include "../module/ModuleTestSupport.hpp"

#include "ViewFrameCounter.hpp"
#include "ViewerApplication.hpp"
#include "ViewerMainWindow.hpp"

#include <visualization/KXToVXBridge.hpp>
#include <visualization/QtWidgets/VXFTransformFilterWidget.hpp>
#include <visualization/QtWidgets/VXInfoWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXGlobalSource.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/VXRepresentationPimpl.hpp>

#include <kxcore/DataArray.hpp>
#include <kxcore/DataPath.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/DataStructure.hpp>
#include <kxcore/VertexGeom.hpp>

#include <vtkCallbackCommand.h>
#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkDataArray.h>
#include <vtkDataSet.h>
#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace
{
using moduletest::pump;

/** The menu action with this text (mnemonics ignored), or null. */
QAction* menuAction(QMainWindow* window, const QString& menuTitle, const QString& text)
{
  for (QAction* menuEntry : window->menuBar()->actions())
  {
    if (menuEntry->menu() == nullptr || menuEntry->text().remove('&') != menuTitle)
      continue;
    for (QAction* action : menuEntry->menu()->actions())
    {
      if (action->text().remove('&') == text)
        return action;
    }
  }
  return nullptr;
}

/** A left-button drag across a render view from its centre, as the window system delivers it. */
void dragAcross(VXVisualizationWidget* view, int dx, int dy)
{
  const int* size = view->renderWindow()->GetSize();
  kxtest::drag(view->renderWindow()->GetInteractor(), size[0] / 2, size[1] / 2, size[0] / 2 + dx,
               size[1] / 2 + dy);
  pump();
}

std::array<double, 3> cameraPosition(VXAbstractViewWidget* view)
{
  std::array<double, 3> position{};
  view->getVisualizationWidget()->getRenderer()->GetActiveCamera()->GetPosition(position.data());
  return position;
}

/**
 * RMS difference (0..255) of two equally sized images, the smallest over
 * shifts of up to @p slack pixels: panes whose widths differ by a pixel put
 * the same scene half a pixel apart. The border of @p slack pixels is left out.
 */
double smallestShiftedDifference(const QImage& a, const QImage& b, int slack)
{
  const QImage first = a.convertToFormat(QImage::Format_RGB32);
  const QImage second = b.convertToFormat(QImage::Format_RGB32);
  double best = 255.0;
  for (int dy = -slack; dy <= slack; ++dy)
  {
    for (int dx = -slack; dx <= slack; ++dx)
    {
      double sum = 0.0;
      long count = 0;
      for (int y = slack; y < first.height() - slack; ++y)
      {
        for (int x = slack; x < first.width() - slack; ++x)
        {
          const QRgb p = first.pixel(x, y);
          const QRgb q = second.pixel(x + dx, y + dy);
          for (const int d : { qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q) })
            sum += double(d) * double(d);
          count += 3;
        }
      }
      best = std::min(best, std::sqrt(sum / double(count)));
    }
  }
  return best;
}

/** Compares a composite screenshot with tests/baselines/viewer/<name>.png. */
void compareWithBaseline(const QImage& screenshot, const std::string& name)
{
  EXPECT_GT(kxtest::ForegroundFraction(screenshot), 0.05) << name << ": nothing drawn";
  kxtest::CompareWithBaseline(screenshot, "viewer", name);
}

/** The viewer as its command line starts it, with settings and dialogs of the test's own. */
class ViewerFixture : public ::testing::Test
{
protected:
  void start(ViewerOptions options)
  {
    m_Viewer = std::make_unique<ViewerApplication>(std::move(options));
    ASSERT_TRUE(m_Viewer->load());
    m_Viewer->showWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window()));
    pump();
  }
  void TearDown() override { m_Viewer.reset(); }

  ViewerMainWindow* window() const { return m_Viewer->window(); }
  VXVisualizationModuleWidget* module() const { return window()->module(); }
  VXViewGridWidget* grid() const { return module()->getViewGridWidget(); }
  QString outputText() const { return window()->output()->toPlainText(); }

  dataviewtest::ScopedSettings m_Settings;
  moduletest::ScriptedDialogs m_Dialogs;
  kxtest::TempDir m_Dir;
  std::unique_ptr<ViewerApplication> m_Viewer;
};

/** The first data source whose name is @p name, in any bridge. */
VXDataSource* findSource(VXPipeline* pipeline, const QString& name)
{
  for (VXBridgeObject* bridge : pipeline->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      if (source->baseName() == name)
        return source;
    }
  }
  return nullptr;
}

std::array<double, 2> range(VXDataSource* source, const char* arrayName, int component)
{
  std::array<double, 2> values{ 0.0, 0.0 };
  vtkDataArray* array = source->getOutput()->GetCellData()->GetArray(arrayName);
  if (array != nullptr)
    array->GetRange(values.data(), component);
  return values;
}

/** The in-memory store of a host array; null when it lives elsewhere. */
template<typename T>
std::shared_ptr<kx::core::DataStore<T>> hostStore(kx::core::DataArray<T>* array)
{
  return std::dynamic_pointer_cast<kx::core::DataStore<T>>(array->getDataStore());
}

const kx::core::DataPath k_FeatureIdsPath({ "Microstructure", "Cell Data", "FeatureIds" });
const kx::core::DataPath k_EulerAnglesPath({ "Microstructure", "Cell Data", "EulerAngles" });
} // namespace

TEST_F(ViewerFixture, SplitViewsLinkedFollowARotationAndCompositeMatchesBaseline)
{
  ViewerOptions options;
  options.files << moduletest::qpath(pipelinetest::writeSample(m_Dir));
  options.size = QSize(600, 300);
  options.sizeGiven = true;
  options.representation = "Surface";
  options.colorBy = "FeatureIds";
  start(options);
  ASSERT_EQ(grid()->viewCount(), 1);
  EXPECT_EQ(grid()->size(), QSize(600, 300));

  // the frame's split button asks the grid for a second view beside it
  VXAbstractViewWidget* left = grid()->allViews().front();
  Q_EMIT left->requestSplitHorizontally(left);
  pump();
  ASSERT_EQ(grid()->viewCount(), 2);
  VXAbstractViewWidget* right = grid()->allViews().at(1);
  ASSERT_NE(right, left);
  EXPECT_NE(left->getVisualizationWidget()->getRenderer()->GetActiveCamera(),
            right->getVisualizationWidget()->getRenderer()->GetActiveCamera());

  module()->linkAllViews();
  pump();
  vtkCamera* shared = left->getVisualizationWidget()->getRenderer()->GetActiveCamera();
  EXPECT_EQ(right->getVisualizationWidget()->getRenderer()->GetActiveCamera(), shared);

  const std::array<double, 3> before = cameraPosition(left);
  kxtest::EventCounter rightFrames(right->getVisualizationWidget()->getRenderer(),
                                   vtkCommand::EndEvent);
  dragAcross(left->getVisualizationWidget(), 60, 0);
  const std::array<double, 3> after = cameraPosition(left);
  const double moved = std::hypot(after[0] - before[0], after[1] - before[1], after[2] - before[2]);
  EXPECT_GT(moved, 1.0) << "the drag did not rotate the left view";
  EXPECT_EQ(cameraPosition(right), after);
  // the right view drew a frame with the moved camera, not only shares it
  EXPECT_GT(rightFrames.count(), 0);

  m_Viewer->fitViewsToRequestedSize();
  module()->renderAllViews();
  pump();
  const QImage composite = module()->grabAllViewsImage();
  ASSERT_EQ(composite.size(), QSize(600, 300));
  compareWithBaseline(composite, "split_linked_rotated");

  // one camera, the same data views, panes of (almost) equal size: both show the same picture
  // (below left of the centre: the orientation marker in the top right corner follows the pane's
  // own width)
  const QRect probe(-120, -60, 160, 160);
  auto paneOf = [&](VXAbstractViewWidget* view)
  {
    VXVisualizationWidget* renderWidget = view->getVisualizationWidget();
    return composite.copy(
      probe.translated(renderWidget->mapTo(grid(), renderWidget->rect().center())));
  };
  // compared at a quarter of the size, so that one-pixel cell edges half a pixel apart do not count
  auto reduced = [](const QImage& pane)
  { return pane.scaled(pane.size() / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation); };
  EXPECT_LT(smallestShiftedDifference(reduced(paneOf(left)), reduced(paneOf(right)), 1),
            kxtest::k_ImageTolerance);
}

TEST_F(ViewerFixture, HostPipelineMenuShowsHostMemoryAndRerunUpdatesInPlace)
{
  start(ViewerOptions());
  QAction* run = menuAction(window(), "Host Pipeline", "Run Sample Pipeline");
  QAction* rerun = menuAction(window(), "Host Pipeline", "Run Again with New Values");
  ASSERT_NE(run, nullptr);
  ASSERT_NE(rerun, nullptr);

  run->trigger();
  pump();
  ASSERT_EQ(module()->pipeline()->bridges().size(), 1);
  auto* bridge = qobject_cast<KXToVXBridge*>(module()->pipeline()->bridges().first());
  ASSERT_NE(bridge, nullptr);
  EXPECT_EQ(bridge->name(), "Sample Microstructure Pipeline");
  const QList<VXDataSource*> sources = bridge->dataSources();
  ASSERT_EQ(sources.size(), 3);
  VXDataSource* volume = findSource(module()->pipeline(), "Microstructure");
  ASSERT_NE(volume, nullptr);

  // zero copy: the arrays VTK reads are the host's own buffers
  std::shared_ptr<kx::core::DataStructure> firstRun = window()->hostData();
  ASSERT_NE(firstRun, nullptr);
  auto* hostIds = firstRun->getDataAs<kx::core::Int32Array>(k_FeatureIdsPath);
  auto* hostEuler = firstRun->getDataAs<kx::core::Float32Array>(k_EulerAnglesPath);
  ASSERT_NE(hostIds, nullptr);
  ASSERT_NE(hostEuler, nullptr);
  vtkDataArray* shownIds = volume->getOutput()->GetCellData()->GetArray("FeatureIds");
  vtkDataArray* shownEuler = volume->getOutput()->GetCellData()->GetArray("EulerAngles");
  ASSERT_NE(shownIds, nullptr);
  ASSERT_NE(shownEuler, nullptr);
  ASSERT_NE(hostStore(hostIds), nullptr);
  ASSERT_NE(hostStore(hostEuler), nullptr);
  EXPECT_EQ(shownIds->GetVoidPointer(0), static_cast<void*>(hostStore(hostIds)->data()));
  EXPECT_EQ(shownEuler->GetVoidPointer(0), static_cast<void*>(hostStore(hostEuler)->data()));
  const std::array<double, 2> firstRange = range(volume, "EulerAngles", 0);

  auto* centroids =
    firstRun->getDataAs<kx::core::VertexGeom>(kx::core::DataPath({ "Grain Centroids" }));
  ASSERT_NE(centroids, nullptr);
  const QString grains = QString::number(centroids->getNumberOfVertices());
  EXPECT_TRUE(outputText().contains(
    QString("Sample Microstructure Pipeline: %1 grains shown from memory").arg(grains)))
    << outputText().toStdString();

  rerun->trigger();
  pump();
  // the same tree items show the new run
  ASSERT_EQ(module()->pipeline()->bridges().size(), 1);
  EXPECT_EQ(module()->pipeline()->bridges().first(), bridge);
  EXPECT_EQ(bridge->dataSources(), sources);
  std::shared_ptr<kx::core::DataStructure> secondRun = window()->hostData();
  ASSERT_NE(secondRun, firstRun);
  auto* newEuler = secondRun->getDataAs<kx::core::Float32Array>(k_EulerAnglesPath);
  ASSERT_NE(newEuler, nullptr);
  vtkDataArray* reloadedEuler = volume->getOutput()->GetCellData()->GetArray("EulerAngles");
  ASSERT_NE(reloadedEuler, nullptr);
  const auto store = hostStore(newEuler);
  ASSERT_NE(store, nullptr);
  EXPECT_EQ(reloadedEuler->GetVoidPointer(0), static_cast<void*>(store->data()));
  const std::array<double, 2> secondRange = range(volume, "EulerAngles", 0);
  EXPECT_NE(secondRange, firstRange);
  // the range is that of the new host values (first component of each tuple)
  float smallest = (*store)[0];
  for (const float* value = store->begin(); value < store->end(); value += 3)
    smallest = std::min(smallest, *value);
  EXPECT_FLOAT_EQ(static_cast<float>(secondRange[0]), smallest);
  EXPECT_TRUE(outputText().contains("Sample Microstructure Pipeline: run 2,"))
    << outputText().toStdString();
}

TEST_F(ViewerFixture, OutputDockShowsModuleMessages)
{
  start(ViewerOptions());
  QAction* exportPresets = menuAction(window(), "Presets", "Export Presets...");
  ASSERT_NE(exportPresets, nullptr);
  const QString path = moduletest::qpath(m_Dir / "presets.json");
  m_Dialogs.saveAnswer = path;
  exportPresets->trigger();
  pump();
  EXPECT_TRUE(QFileInfo(path).isFile());
  EXPECT_TRUE(
    outputText().contains(QString("Presets successfully written to file at '%1'").arg(path)))
    << outputText().toStdString();

  // an unreadable state file is reported in the dock too
  const QString broken = moduletest::qpath(m_Dir / "broken.vlxstate");
  QFile file(broken);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("{ not json");
  file.close();
  module()->loadState(broken);
  pump();
  EXPECT_TRUE(
    outputText().contains(QString("Error loading state from '%1': malformed JSON").arg(broken)))
    << outputText().toStdString();
}

TEST_F(ViewerFixture, PictureCostsOneFrameAndAStartDrawsEachViewOnce)
{
  const QString data = moduletest::qpath(pipelinetest::writeSample(m_Dir));
  // a state of two split views, saved from the window as a user would
  const QString splitState = moduletest::qpath(m_Dir / "split.vlxstate");
  {
    ViewerOptions options;
    options.files << data;
    start(options);
    VXAbstractViewWidget* left = grid()->allViews().front();
    Q_EMIT left->requestSplitHorizontally(left);
    pump();
    ASSERT_EQ(grid()->viewCount(), 2);
    m_Dialogs.saveAnswer = splitState;
    module()->saveState();
    pump();
    ASSERT_TRUE(QFileInfo::exists(splitState));
    m_Viewer.reset();
  }

  // a batch screenshot: each view draws once for the capture and once more at most
  for (const bool split : { false, true })
  {
    SCOPED_TRACE(split ? "two split views" : "one view");
    ViewerOptions options;
    if (split)
      options.stateFile = splitState;
    else
      options.files << data;
    options.representation = split ? QString() : QStringLiteral("Surface");
    options.colorBy = "FeatureIds";
    options.screenshotPath = moduletest::qpath(m_Dir / (split ? "split.png" : "one.png"));
    options.size = QSize(640, 360);
    options.sizeGiven = true;
    ViewFrameCounter counter;
    ViewerApplication viewer(options);
    ASSERT_TRUE(viewer.load());
    ASSERT_TRUE(viewer.saveScreenshot());
    EXPECT_EQ(viewer.window()->module()->getViewGridWidget()->viewCount(), split ? 2 : 1);
    const QImage picture = QImage(options.screenshotPath).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(picture.size(), QSize(640, 360));
    // the captured frame shows the data, coloured, in the middle of each pane
    for (VXAbstractViewWidget* view : viewer.window()->module()->getAllViewWidgets())
    {
      VXVisualizationWidget* pane = view->getVisualizationWidget();
      const QPoint centre =
        pane->mapTo(viewer.window()->module()->getViewGridWidget(), pane->rect().center());
      int coloured = 0;
      for (int dy = -10; dy <= 10; ++dy)
        for (int dx = -10; dx <= 10; ++dx)
        {
          const QRgb p = picture.pixel(centre + QPoint(dx, dy));
          coloured += std::max({ qRed(p), qGreen(p), qBlue(p) }) -
                        std::min({ qRed(p), qGreen(p), qBlue(p) }) >
                      60;
        }
      EXPECT_GT(coloured, 21 * 21 / 2) << "the pane's capture does not show the data";
    }
    for (VXAbstractViewWidget* view : viewer.window()->module()->getAllViewWidgets())
    {
      const int drawn = counter.framesOf(view->getVisualizationWidget());
      EXPECT_GE(drawn, 1) << counter.summary().toStdString();
      EXPECT_LE(drawn, 2) << counter.summary().toStdString();
    }
  }

  // an interactive start: window shown, files loaded, colours applied, camera reset; then the
  // views wait for the user, drawing nothing more
  for (const bool split : { false, true })
  {
    SCOPED_TRACE(split ? "two split views" : "one view");
    ViewerOptions options;
    if (split)
      options.stateFile = splitState;
    else
      options.files << data;
    options.colorBy = "FeatureIds";
    options.size = QSize(640, 360);
    options.sizeGiven = true;
    ViewFrameCounter counter;
    start(options);
    QTest::qWait(300);
    pump();
    ASSERT_EQ(grid()->viewCount(), split ? 2 : 1);
    for (VXAbstractViewWidget* view : grid()->allViews())
      EXPECT_EQ(counter.framesOf(view->getVisualizationWidget()), 1)
        << counter.summary().toStdString();
    m_Viewer.reset();
  }
}

TEST_F(ViewerFixture, FiltersMenuAndHostRequestsRoundTripThroughTheSamplePipeline)
{
  // a file has no host pipeline behind it: its request is only reported
  ViewerOptions options;
  options.files << moduletest::qpath(pipelinetest::writeSample(m_Dir));
  start(options);
  VXDataSource* fileVolume = findSource(module()->pipeline(), "Microstructure");
  ASSERT_NE(fileVolume, nullptr);
  QAction* thresholdAction = menuAction(window(), "Filters", "Threshold");
  ASSERT_NE(thresholdAction, nullptr);
  ASSERT_NE(menuAction(window(), "Filters", "Clip"), nullptr);
  ASSERT_NE(menuAction(window(), "Filters", "Slice"), nullptr);
  // nothing selected: the menu says what it needs
  module()->getInfoWidget()->setCurrentIndex(QModelIndex());
  thresholdAction->trigger();
  EXPECT_TRUE(outputText().contains("Select a data source or a filter in the pipeline browser"));
  module()->getInfoWidget()->setCurrentIndex(module()->pipelineModel()->helperIndex(fileVolume));
  auto* fileThreshold = qobject_cast<VXFThreshold*>(window()->addFilterToSelection("VXFThreshold"));
  ASSERT_NE(fileThreshold, nullptr);
  EXPECT_EQ(fileThreshold->parent(), fileVolume);
  EXPECT_EQ(module()->getInfoWidget()->currentIndex().siblingAtColumn(0),
            module()->pipelineModel()->helperIndex(fileThreshold));
  EXPECT_EQ(fileThreshold->findChildren<VXRepresentation*>().size(), 1);
  fileThreshold->createMultiThresholdObjectsFilter();
  pump();
  EXPECT_TRUE(outputText().contains("Multi-Threshold Objects filter requested on Microstructure"))
    << outputText().toStdString();
  EXPECT_TRUE(outputText().contains("No host pipeline holds this geometry"));

  // the sample pipeline marks the cells of phase 2 in a mask, and the module shows it
  menuAction(window(), "Host Pipeline", "Run Sample Pipeline")->trigger();
  pump();
  auto* bridge = qobject_cast<KXToVXBridge*>(module()->pipeline()->bridges().last());
  ASSERT_NE(bridge, nullptr);
  VXDataSource* volume = nullptr;
  VXDataSource* boundaries = nullptr;
  for (VXDataSource* source : bridge->dataSources())
  {
    if (source->baseName() == "Microstructure")
      volume = source;
    if (source->baseName() == "Grain Boundaries")
      boundaries = source;
  }
  ASSERT_NE(volume, nullptr);
  ASSERT_NE(boundaries, nullptr);
  module()->getInfoWidget()->setCurrentIndex(module()->pipelineModel()->helperIndex(volume));
  thresholdAction->trigger();
  pump();
  VXFThreshold* threshold = volume->findChild<VXFThreshold*>();
  ASSERT_NE(threshold, nullptr);
  const auto& infos = threshold->activeArrayInfos();
  for (size_t i = 0; i < infos.size(); ++i)
  {
    if (infos[i].displayName == "Phases")
      threshold->setActiveArrayInfoIndex(i);
  }
  threshold->setUserRange(2.0, 2.0);
  threshold->applyFilter();
  const vtkIdType shownCells =
    vtkDataSet::SafeDownCast(threshold->outputPort()->GetProducer()->GetOutputDataObject(0))
      ->GetNumberOfCells();
  ASSERT_GT(shownCells, 0);
  threshold->createMultiThresholdObjectsFilter();
  pump();
  auto* mask = window()->hostData()->getDataAs<kx::core::UInt8Array>(
    kx::core::DataPath({ "Microstructure", "Cell Data", "Mask" }));
  ASSERT_NE(mask, nullptr);
  auto* phases = window()->hostData()->getDataAs<kx::core::Int32Array>(
    kx::core::DataPath({ "Microstructure", "Cell Data", "Phases" }));
  ASSERT_NE(phases, nullptr);
  vtkIdType marked = 0;
  for (kx::core::usize i = 0; i < mask->getNumberOfTuples(); ++i)
  {
    EXPECT_EQ((*mask)[i] == 1, (*phases)[i] == 2);
    marked += (*mask)[i];
  }
  // the host marked exactly the cells that the visual threshold kept
  EXPECT_EQ(marked, shownCells);
  vtkDataArray* shownMask = volume->getOutput()->GetCellData()->GetArray("Mask");
  ASSERT_NE(shownMask, nullptr);
  EXPECT_EQ(shownMask->GetRange()[1], 1.0);
  EXPECT_TRUE(outputText().contains(
    QString("Sample Microstructure Pipeline: added Multi-Threshold Objects on Microstructure "
            "(Phases in [2, 2]): %1 of 110592 tuples marked in \"Mask\".")
      .arg(marked)))
    << outputText().toStdString();
  // the tree stays, and the threshold can now pick the mask
  EXPECT_EQ(volume->findChild<VXFThreshold*>(), threshold);
  EXPECT_TRUE(std::any_of(threshold->activeArrayInfos().begin(),
                          threshold->activeArrayInfos().end(),
                          [](const auto& info) { return info.displayName == "Mask"; }));

  // the surface moves by its data view's transform; the data view drops it once the host has it
  auto* surface = boundaries->findChild<VXRepresentation*>();
  ASSERT_NE(surface, nullptr);
  VXRepresentationPimpl* split = surface->getDataViewSplits().front();
  const float before = window()
                         ->hostData()
                         ->getDataAs<kx::core::Float32Array>(
                           kx::core::DataPath({ "Grain Boundaries", "SharedVertexList" }))
                         ->at(2);
  const double top = boundaries->getOutput()->GetBounds()[5];
  split->setTranslation({ 0.0, 0.0, 10.0 });
  split->transformWidget()->hostButton()->click();
  pump();
  auto* vertices = window()->hostData()->getDataAs<kx::core::Float32Array>(
    kx::core::DataPath({ "Grain Boundaries", "SharedVertexList" }));
  ASSERT_NE(vertices, nullptr);
  EXPECT_FLOAT_EQ(vertices->at(2), before + 10.0f);
  EXPECT_EQ(split->translation(), (std::array<double, 3>{ 0.0, 0.0, 0.0 }));
  EXPECT_DOUBLE_EQ(boundaries->getOutput()->GetBounds()[5], top + 10.0);
  EXPECT_TRUE(outputText().contains("added Apply Transformation on Grain Boundaries"));

  // a grid can't turn: the host refuses and keeps its steps
  VXRepresentationPimpl* volumeView =
    volume->findChild<VXRepresentation*>()->getDataViewSplits().front();
  volumeView->setRotation({ 0.0, 0.0, 30.0 });
  volumeView->createApplyTransformationGeometryFilter();
  pump();
  EXPECT_TRUE(outputText().contains("the step was not added. Apply Transformation: Microstructure "
                                    "is an image grid, which can be moved and scaled along its "
                                    "axes but not rotated."))
    << outputText().toStdString();

  // a new run keeps both steps
  menuAction(window(), "Host Pipeline", "Run Again with New Values")->trigger();
  pump();
  ASSERT_NE(window()->hostData()->getDataAs<kx::core::UInt8Array>(
              kx::core::DataPath({ "Microstructure", "Cell Data", "Mask" })),
            nullptr);
  EXPECT_DOUBLE_EQ(boundaries->getOutput()->GetBounds()[5], top + 10.0);
}

TEST_F(ViewerFixture, AnnotationsMenuAddsToTheActiveViewAsTheBrowserDoes)
{
  ViewerOptions options;
  options.files << moduletest::qpath(pipelinetest::writeSample(m_Dir));
  start(options);
  for (const auto& [itemType, label] : VXInfoWidget::AnnotationKinds())
    ASSERT_NE(menuAction(window(), "Annotations", label), nullptr) << label.toStdString();
  menuAction(window(), "Annotations", "Arrow")->trigger();
  pump();
  ASSERT_EQ(module()->pipeline()->globalSources().size(), 1);
  VXGlobalSource* arrow = module()->pipeline()->globalSources().front();
  EXPECT_EQ(arrow->typeName(), "VXArrowAnnotationSource");
  // placed from outside the shown sample's corner to its middle, not at the unit default
  VXGlobalSourcePimpl* shown = arrow->implementation(module()->getActiveViewWidget());
  ASSERT_NE(shown, nullptr);
  EXPECT_NE(shown->settings().at("end_point"), arrow->defaultSettings().at("end_point"));
  EXPECT_EQ(module()->getInfoWidget()->currentIndex().siblingAtColumn(0),
            module()->pipelineModel()->helperIndex(arrow));
}
