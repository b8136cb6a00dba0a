// Fuzz target: any bytes, written as a state file and loaded into a shown
// module through VXVisualizationModuleWidget::loadState(path) (and, when they
// parse, through loadState(json&) as well), must leave a module that works:
// no crash, no undefined behaviour, the default data view type and the
// loading flag put back, at least one view. "@SAMPLE@" and "@DATA_DIR@" in
// the input stand for the generated sample file and the real data folder, so
// that seeds reach the readers of real data. Input that parses as JSON goes
// as well, as a record, to VXQuadView::loadState of a quad view showing a
// small image, which must stay shown and save a record again, with the rulers
// and marks it shows, each listed once in its annotations table.
//
// The entry points are libFuzzer's; StateLoadReplay.cpp drives the same
// target without libFuzzer, from seeds and seeded random mutations.
#include "../StatePlaceholders.hpp"

#include <quadview/VXQuadView.hpp>
#include <quadview/annotations/VXQuadViewAnnotationsController.hpp>
#include <quadview/annotations/VXQuadViewAnnotationsTableModel.hpp>
#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXInfoWidget.hpp>
#include <visualization/QtWidgets/VXViewGridWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <KXComponents/QtKXSettings.hpp>
#include <kxcore/VoxeliaFile.hpp>

#include <MicrostructureGenerator.hpp>

#include <nlohmann/json.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtWidgets/QApplication>

#include <vtkFloatArray.h>
#include <vtkCellData.h>
#include <vtkImageData.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{
struct Harness
{
  std::unique_ptr<QApplication> app;
  std::unique_ptr<VXVisualizationModuleWidget> module;
  std::unique_ptr<VXQuadView> quadView;
  vtkSmartPointer<vtkImageData> quadImage;
  std::filesystem::path folder;
  std::string samplePath;
  std::string dataDir;
  QString statePath;
};

Harness& harness()
{
  // never destroyed: the module and the application stay up until the process ends,
  // so no widget outlives its application in the static destructors
  static Harness* instance = new Harness;
  return *instance;
}

void pump()
{
  for (int i = 0; i < 3; ++i)
  {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }
}

void fail(const char* what)
{
  std::fprintf(stderr, "state load target: %s\n", what);
  std::abort();
}

using statetest::substitute;

/** Takes everything out of the tree, so that each input starts from the same module. */
void clearTree(VXVisualizationModuleWidget& module)
{
  VXInfoWidget* info = module.getInfoWidget();
  VXPipelineModel* model = module.pipelineModel();
  for (int guard = 0; model->rowCount(QModelIndex()) > 0 && guard < 100000; ++guard)
    info->removeItem(model->index(0, 0, QModelIndex()));
  pump();
}

void checkModule(VXVisualizationModuleWidget& module, VXRepresentation::Type defaultType)
{
  if (VXPipeline::getDefaultRepType() != defaultType)
    fail("the default data view type was not put back");
  if (module.pipeline()->isLoadingState())
    fail("the pipeline still says it is loading a state");
  if (module.getViewGridWidget()->viewCount() < 1)
    fail("the module has no view left");
  if (module.getActiveViewWidget() == nullptr)
    fail("the module has no active view");
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
  Harness& h = harness();
  qputenv("QT_SCALE_FACTOR", "1");
  KXVtk::utils::PrepareGuiProcess();
  h.app = std::make_unique<QApplication>(*argc, *argv);

  h.folder =
    std::filesystem::temp_directory_path() / ("kxvtk-state-fuzz-" + std::to_string(::getpid()));
  std::filesystem::create_directories(h.folder);
  QtKXSettings::SetFilePath(QString::fromStdString((h.folder / "settings.ini").string()));
  kxvtk::sample::MicrostructureGenerator generator(8);
  kx::core::DataStructure structure = generator.generate();
  const auto sample = h.folder / "sample.voxelia";
  if (!kx::core::VOXELIA::WriteFile(sample, structure).isValid())
    fail("cannot write the sample file");
  h.samplePath = sample.string();
  const char* data = std::getenv("KXVTK_DATA_DIR");
  h.dataDir = data != nullptr ? data : "";
  h.statePath = QString::fromStdString((h.folder / "input.vlxstate").string());

  // every question is answered at once: go on where asked, cancel every file dialog
  VXUserPrompt::setAskHandler(
    [](const VXUserPrompt::Question& question)
    { return (question.buttons & QMessageBox::Open) ? QMessageBox::Open : QMessageBox::No; });
  VXUserPrompt::setOpenFileHandler([](const QString&, const QString&) { return QString(); });
  VXUserPrompt::setSaveFileHandler([](const QString&, const QString&) { return QString(); });
  VXUserPrompt::setTextHandler([](const QString&, const QString&, const QString&)
                               { return QString(); });
  VXUserPrompt::setBoxHandler([](QMessageBox&) { return int(QMessageBox::No); });

  h.module = std::make_unique<VXVisualizationModuleWidget>();
  h.module->resize(640, 400);
  h.module->show();

  // four by three by two voxels, two arrays, one of them with three components
  h.quadImage = vtkSmartPointer<vtkImageData>::New();
  h.quadImage->SetDimensions(5, 4, 3);
  for (int components : { 1, 3 })
  {
    vtkNew<vtkFloatArray> array;
    array->SetName(components == 1 ? "values" : "vec");
    array->SetNumberOfComponents(components);
    array->SetNumberOfTuples(24);
    for (vtkIdType t = 0; t < 24; ++t)
      for (int c = 0; c < components; ++c)
        array->SetComponent(t, c, static_cast<double>(t * (c + 1)));
    h.quadImage->GetCellData()->AddArray(array);
  }
  h.quadImage->GetCellData()->SetActiveScalars("values"); // as a host hands an image over
  h.quadView = std::make_unique<VXQuadView>();
  h.quadView->resize(300, 300);
  h.quadView->show();
  QObject::connect(h.quadView.get(), &VXQuadView::loadGeometryRequested, h.quadView.get(),
                   [](const QString&, VXQuadView* view)
                   { view->setGeometry(nullptr, harness().quadImage); });
  h.quadView->setGeometry(nullptr, h.quadImage);
  pump();
  std::atexit(
    []
    {
      std::error_code ignored;
      std::filesystem::remove_all(harness().folder, ignored);
    });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  Harness& h = harness();
  VXVisualizationModuleWidget& module = *h.module;
  std::string text(reinterpret_cast<const char*>(data), size);
  text = substitute(std::move(text), "@SAMPLE@", h.samplePath);
  text = substitute(std::move(text), "@DATA_DIR@", h.dataDir);
  const VXRepresentation::Type defaultType = VXPipeline::getDefaultRepType();

  // through the file, as a user loads it
  {
    QFile file(h.statePath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
      fail("cannot write the input file");
    file.write(text.data(), static_cast<qint64>(text.size()));
  }
  module.loadState(h.statePath);
  pump();
  checkModule(module, defaultType);
  clearTree(module);

  // straight through the JSON entry, when the bytes parse
  nlohmann::json state = nlohmann::json::parse(text, nullptr, false);
  if (!state.is_discarded())
  {
    module.loadState(state);
    pump();
    checkModule(module, defaultType);
    // what loaded can be saved again
    nlohmann::json saved;
    module.saveState(saved);
    if (!saved.contains("split_view_state") || !saved.contains("tree_view_state"))
      fail("a loaded module saved no state");
    clearTree(module);

    VXQuadView& quad = *h.quadView;
    quad.loadState(state);
    pump();
    if (!quad.isInitialized() || quad.getImageData() == nullptr)
      fail("a quad view record left the quad view empty");
    nlohmann::json record;
    quad.saveState(record);
    if (!record.contains("geometry_path") || !record.contains("cursor_center"))
      fail("a loaded quad view saved no record");
    // the rulers and marks a record brought are written back, one record each
    const nlohmann::json& texts = record["perPaneAnnotations"];
    for (int pane = 0; pane < 3; ++pane)
    {
      const voxelia::quadview::annotations::VXQuadViewAnnotationsController* controller =
        quad.annotationsController(pane);
      if (controller == nullptr)
        fail("a quad view slice pane has no annotation controller");
      const std::string text = texts.is_array() && texts.size() == 3 && texts[pane].is_string()
                                 ? texts[pane].get<std::string>()
                                 : std::string();
      const QJsonArray saved = QJsonDocument::fromJson(QByteArray::fromStdString(text)).array();
      if (static_cast<std::size_t>(saved.size()) != controller->annotations().size())
        fail("a quad view saved other annotations than it shows");
    }
    if (quad.annotationsTableModel() == nullptr ||
        quad.annotationsTableModel()->rowCount() !=
          static_cast<int>(quad.annotationsController(0)->annotations().size() +
                           quad.annotationsController(1)->annotations().size() +
                           quad.annotationsController(2)->annotations().size()))
      fail("the annotations table does not list the annotations shown");
  }
  return 0;
}
