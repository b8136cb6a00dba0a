#pragma once

#include "ImageCompare.hpp"
#include "QtTestSupport.hpp"

#include "TestSupport.hpp"

#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXChartWidget.hpp>
#include <visualization/QtWidgets/VXGLWidget.hpp>
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

#include <vtkAxis.h>
#include <vtkCamera.h>
#include <vtkChartXY.h>
#include <vtkContextView.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageData.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>
#include <vtkVector.h>
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

using kxtest::ScopedSettings;

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

/** Blue, white, red: points far enough apart that a click between them adds one. */
inline kx::core::ColorTableUtilities::ColorPreset ThreePointPreset()
{
  kx::core::ColorTableUtilities::ColorPreset preset;
  preset.name = "Three";
  preset.colorSpace = "RGB";
  preset.rgbPoints = { 0, 0, 0, 1, 0.5f, 1, 1, 1, 1, 1, 0, 0 };
  return preset;
}

/**
 * Where a user clicks a chart to hit value @p x on its bottom axis and @p y on @p yAxis: widget
 * coordinates of the chart's OpenGL widget, from the axes as last drawn.
 */
inline QPoint ChartPosition(VXChartWidget* widget, double x, int yAxis, double y)
{
  widget->contextView()->Render();
  auto toScene = [](vtkAxis* axis, double value)
  {
    const float* p1 = axis->GetPoint1();
    const float* p2 = axis->GetPoint2();
    const double t = (value - axis->GetMinimum()) / (axis->GetMaximum() - axis->GetMinimum());
    return vtkVector2d(p1[0] + t * (p2[0] - p1[0]), p1[1] + t * (p2[1] - p1[1]));
  };
  const double sceneX = toScene(widget->chart()->GetAxis(vtkAxis::BOTTOM), x).GetX();
  const double sceneY = toScene(widget->chart()->GetAxis(yAxis), y).GetY();
  VXGLWidget* chart = widget->chartWidget();
  const double ratio = chart->devicePixelRatioF();
  return QPoint(qRound(sceneX / ratio), chart->height() - qRound(sceneY / ratio));
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

/** A VTK RGB(A) image as a QImage, top row first. */
inline QImage ToQImage(vtkImageData* image)
{
  int dims[3];
  image->GetDimensions(dims);
  const int comps = image->GetNumberOfScalarComponents();
  QImage result(dims[0], dims[1], QImage::Format_RGB32);
  for (int y = 0; y < dims[1]; y++)
  {
    auto* line = reinterpret_cast<QRgb*>(result.scanLine(dims[1] - 1 - y));
    for (int x = 0; x < dims[0]; x++)
    {
      auto* p = static_cast<unsigned char*>(image->GetScalarPointer(x, y, 0));
      line[x] = qRgb(p[0], p[std::min(1, comps - 1)], p[std::min(2, comps - 1)]);
    }
  }
  return result;
}

/** Compares the view against tests/baselines/dataviews/<name>.png. */
/** A fixed, slightly oblique camera on everything in the view. */
inline void FrameCamera(Scene& scene, double azimuth = 30.0, double elevation = 20.0)
{
  vtkRenderer* renderer = scene.renderer();
  renderer->GetActiveCamera()->SetPosition(0, 0, 1);
  renderer->GetActiveCamera()->SetFocalPoint(0, 0, 0);
  renderer->GetActiveCamera()->SetViewUp(0, 1, 0);
  renderer->GetActiveCamera()->Azimuth(azimuth);
  renderer->GetActiveCamera()->Elevation(elevation);
  renderer->ResetCamera();
}

inline void CompareWithBaseline(Scene& scene, const std::string& name)
{
  const QImage image = ToQImage(Capture(scene));
  EXPECT_EQ(image.width(), 300);
  EXPECT_EQ(image.height(), 300);
  // a blank frame would match a blank baseline: make sure something was drawn
  EXPECT_GT(kxtest::ForegroundFraction(image), 0.01) << name << ": nothing drawn";
  kxtest::CompareWithBaseline(image, "dataviews", name);
}
} // namespace dataviewtest
