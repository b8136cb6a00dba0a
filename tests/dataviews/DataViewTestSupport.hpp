#pragma once

#include "TestSupport.hpp"

#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXLookupTable.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPointsRepPimpl.hpp>
#include <visualization/VXRepresentation.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <vtkCamera.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageData.h>
#include <vtkPNGReader.h>
#include <vtkPNGWriter.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>
#include <vtkWindowToImageFilter.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace dataviewtest
{
/** A render view frame with a real render widget, shown as a 300x300 top-level window. */
class RenderView : public VXAbstractViewWidget
{
public:
  RenderView()
  {
    setFrameShape(QFrame::NoFrame);
    setupView();
    setFixedSize(300, 300);
  }
  VXAbstractViewWidget* clone() override { return new RenderView(); }
  VXAbstractViewWidget* newInstance() override { return new RenderView(); }
};

/** Settings and preferences of the test's own, so that defaults on the machine don't leak in. */
class ScopedSettings
{
public:
  ScopedSettings()
    : m_Previous(QtKXSettings::FilePath())
  {
    QtKXSettings::SetFilePath(QString::fromStdString((m_Dir / "settings.ini").string()));
    KXPreferences::resetToDefaults();
  }
  ~ScopedSettings()
  {
    QtKXSettings::SetFilePath(m_Previous);
    KXPreferences::resetToDefaults();
  }
  const kxtest::TempDir& dir() const { return m_Dir; }

private:
  kxtest::TempDir m_Dir;
  QString m_Previous;
};

/** Records the questions of the lookup table (categorical warnings) and answers them. */
class RecordedQuestions
{
public:
  RecordedQuestions()
  {
    VXUserPrompt::setChoiceHandler(
      [this](const VXUserPrompt::Choice& question)
      {
        asked.push_back(question);
        VXUserPrompt::ChoiceAnswer answer;
        answer.button = 0;
        answer.checkBoxChecked = checkDoNotShowAgain;
        return answer;
      });
  }
  ~RecordedQuestions() { VXUserPrompt::setChoiceHandler({}); }
  std::vector<VXUserPrompt::Choice> asked;
  bool checkDoNotShowAgain = false;
};

/** A pipeline with one shown render view and the data sources of one imported file. */
class Scene
{
public:
  Scene()
  {
    view = std::make_unique<RenderView>();
    view->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(view.get()));
  }
  ~Scene()
  {
    pipeline.reset();
    view.reset();
  }

  /** Imports a file before any view is active, so that no default data view is made. */
  VXDataSource* import(const std::filesystem::path& file, const QString& preferredName = QString())
  {
    EXPECT_TRUE(std::filesystem::exists(file)) << "missing test data: " << file;
    pipeline->importFile(QString::fromStdString(file.string()));
    VXDataSource* found = nullptr;
    for (VXBridgeObject* bridge : pipeline->bridges())
    {
      for (VXDataSource* source : bridge->dataSources())
      {
        if (found == nullptr || (!preferredName.isEmpty() && source->baseName() == preferredName))
          found = source;
      }
    }
    EXPECT_NE(found, nullptr) << "no data source from " << file;
    pipeline->setActiveViewWidget(view.get());
    return found;
  }

  /** A data source over an in-memory data set, owned by the pipeline object. */
  VXDataSource* source(vtkDataSet* dataSet)
  {
    auto* created = new VXDataSource(pipeline.get());
    created->setBaseName("Synthetic");
    created->setDataSet(dataSet);
    pipeline->setActiveViewWidget(view.get());
    return created;
  }

  /** Adds a data view of @p type under @p parent and gives back its implementation in the view. */
  template<typename PimplT = VXPointsRepPimpl>
  PimplT* add(VXDataSource* parent, VXRepresentation::Type type)
  {
    if (parent == nullptr)
      return nullptr;
    const int before = static_cast<int>(parent->findChildren<VXRepresentation*>().size());
    EXPECT_TRUE(pipeline->addRepresentation(parent, type));
    const auto reps = parent->findChildren<VXRepresentation*>();
    EXPECT_EQ(reps.size(), before + 1);
    if (reps.isEmpty())
      return nullptr;
    lastRep = reps.last();
    return dynamic_cast<PimplT*>(lastRep->implementation(view.get()));
  }

  vtkRenderer* renderer() const { return view->getVisualizationWidget()->getRenderer(); }

  /** Lets queued renders run and draws one frame. */
  void settle()
  {
    for (int i = 0; i < 5; i++)
      QCoreApplication::processEvents();
    view->getVisualizationWidget()->renderWindow()->Render();
  }

  std::unique_ptr<RenderView> view;
  std::unique_ptr<VXPipeline> pipeline = std::make_unique<VXPipeline>();
  VXRepresentation* lastRep = nullptr;
};

inline std::filesystem::path BaselineDir()
{
  return std::filesystem::path(KXVTK_BASELINE_DIR) / "dataviews";
}

inline std::filesystem::path FailedDir()
{
  return std::filesystem::path(KXVTK_TEST_TMP_DIR) / "failed";
}

inline void WritePng(vtkImageData* image, const std::filesystem::path& path)
{
  std::filesystem::create_directories(path.parent_path());
  vtkNew<vtkPNGWriter> writer;
  writer->SetFileName(path.string().c_str());
  writer->SetInputData(image);
  writer->Write();
}

/**
 * Root mean square difference of two RGB images in 0..255, or a negative value
 * when the sizes differ.
 */
inline double RmsDifference(vtkImageData* a, vtkImageData* b)
{
  int da[3];
  int db[3];
  a->GetDimensions(da);
  b->GetDimensions(db);
  if (da[0] != db[0] || da[1] != db[1])
    return -1.0;
  const int ca = a->GetNumberOfScalarComponents();
  const int cb = b->GetNumberOfScalarComponents();
  double sum = 0.0;
  long count = 0;
  for (int y = 0; y < da[1]; y++)
  {
    for (int x = 0; x < da[0]; x++)
    {
      auto* pa = static_cast<unsigned char*>(a->GetScalarPointer(x, y, 0));
      auto* pb = static_cast<unsigned char*>(b->GetScalarPointer(x, y, 0));
      for (int c = 0; c < 3; c++)
      {
        const double d = double(pa[std::min(c, ca - 1)]) - double(pb[std::min(c, cb - 1)]);
        sum += d * d;
        count++;
      }
    }
  }
  return std::sqrt(sum / double(count));
}

/** Share of pixels that differ from the image's corner (background) colour. */
inline double ForegroundFraction(vtkImageData* image)
{
  int d[3];
  image->GetDimensions(d);
  auto* corner = static_cast<unsigned char*>(image->GetScalarPointer(0, 0, 0));
  const int comps = image->GetNumberOfScalarComponents();
  long differing = 0;
  for (int y = 0; y < d[1]; y++)
  {
    for (int x = 0; x < d[0]; x++)
    {
      auto* p = static_cast<unsigned char*>(image->GetScalarPointer(x, y, 0));
      for (int c = 0; c < std::min(3, comps); c++)
      {
        if (std::abs(int(p[c]) - int(corner[c])) > 8)
        {
          differing++;
          break;
        }
      }
    }
  }
  return double(differing) / double(d[0] * d[1]);
}

/** The view's current frame as RGB. */
inline vtkSmartPointer<vtkImageData> Capture(Scene& scene)
{
  // only the data views' two layers are compared: overlays of the render widget have tests of their
  // own
  VXVisualizationWidget* widget = scene.view->getVisualizationWidget();
  vtkRendererCollection* renderers = widget->renderWindow()->GetRenderers();
  renderers->InitTraversal();
  while (vtkRenderer* renderer = renderers->GetNextItem())
  {
    if (renderer != widget->getRenderer() && renderer != widget->getOutlineRenderer())
      renderer->DrawOff();
  }
  scene.settle();
  vtkNew<vtkWindowToImageFilter> grabber;
  grabber->SetInput(scene.view->getVisualizationWidget()->renderWindow());
  grabber->SetInputBufferTypeToRGB();
  grabber->ReadFrontBufferOff();
  grabber->Update();
  auto image = vtkSmartPointer<vtkImageData>::New();
  image->DeepCopy(grabber->GetOutput());
  return image;
}

/** Largest RMS difference (0..255 scale) that still counts as the same picture. */
constexpr double k_ImageTolerance = 6.0;

/**
 * Compares the view against tests/baselines/dataviews/<name>.png. A missing
 * baseline fails; KXVTK_UPDATE_BASELINES=1 writes the baseline and fails too,
 * so that no baseline is ever accepted without a person looking at it. A
 * failing image goes to tests/tmp/failed/<name>.png in the build tree.
 */
inline void CompareWithBaseline(Scene& scene, const std::string& name)
{
  vtkSmartPointer<vtkImageData> image = Capture(scene);
  int dims[3];
  image->GetDimensions(dims);
  EXPECT_EQ(dims[0], 300);
  EXPECT_EQ(dims[1], 300);
  // a blank frame would match a blank baseline: make sure something was drawn
  EXPECT_GT(ForegroundFraction(image), 0.01) << name << ": nothing drawn";
  const std::filesystem::path baseline = BaselineDir() / (name + ".png");
  const char* update = std::getenv("KXVTK_UPDATE_BASELINES");
  if (update != nullptr && std::string(update) == "1")
  {
    WritePng(image, baseline);
    ADD_FAILURE() << "baseline written, look at it before committing: " << baseline;
    return;
  }
  if (!std::filesystem::exists(baseline))
  {
    WritePng(image, FailedDir() / (name + ".png"));
    ADD_FAILURE() << "missing baseline " << baseline << "; image written to "
                  << FailedDir() / (name + ".png");
    return;
  }
  vtkNew<vtkPNGReader> reader;
  reader->SetFileName(baseline.string().c_str());
  reader->Update();
  const double rms = RmsDifference(image, reader->GetOutput());
  if (rms < 0.0 || rms > k_ImageTolerance)
  {
    WritePng(image, FailedDir() / (name + ".png"));
    ADD_FAILURE() << name << ": RMS difference " << rms << " above " << k_ImageTolerance
                  << "; image written to " << FailedDir() / (name + ".png");
  }
}
} // namespace dataviewtest
