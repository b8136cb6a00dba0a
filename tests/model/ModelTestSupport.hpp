#pragma once

#include "HostDataSupport.hpp"
#include "VXTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/KXToVXBridge.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXFilter.hpp>
#include <visualization/VXGlobalSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPipelineModel.hpp>
#include <visualization/VXRepresentation.hpp>

#include <KX/IPipelineController.hpp>
#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkXMLPolyDataWriter.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace modeltest
{
using kxtest::FakeController;
using kxtest::hostResult;
using kxtest::TestView;
using kxtest::writeSample;

/** The model's role for a row's check box, as the delegate reads it. */
constexpr int k_CheckStateRole = 10;

/** A pass-through visual filter: its output is its input. */
class PassFilter : public VXFilter
{
public:
  PassFilter() { m_BaseName = "Pass Filter"; }
  QString humanTypeName() override { return "Pass Filter"; }
  QString typeName() override { return "PassFilter"; }
  vtkAlgorithmOutput* outputPort() override { return m_InputPort; }
  void initializeSettingsWidget() override {}
  QIcon getIcon() override { return KXStyle::generateThemeIconFromName("Filter"); }
  void copyActiveSettings() const override {}
  void pasteToActiveSettings() override {}
  void receivePipelineOutputReloaded() override {}
  void writeSettings() override {}
  void readSettings() override {}
  void writeValues(nlohmann::json&) const override {}
  void readValues(const nlohmann::json&) override {}
  void setupFilter() override { initialized = true; }
  void openHelpLink() override {}
  void applyFilter() override {}

  bool initialized = false;
};

/** An annotation without an icon of its own; each settings page it builds is counted. */
class CaptionSource : public VXGlobalSource
{
public:
  CaptionSource() { m_BaseName = "Caption"; }
  QString humanTypeName() override { return "Caption"; }
  QString typeName() override { return "CaptionSource"; }
  void initializeSettingsWidget() override
  {
    // pages hang from a holder of this object, so a dropped page is still freed
    m_SettingsWidget = new QWidget(&m_PageHolder);
    pagesBuilt++;
  }
  QIcon getIcon() override { return {}; }
  nlohmann::json defaultSettings() const override { return nlohmann::json::object(); }
  std::vector<Field> fields() const override { return {}; }

  int pagesBuilt = 0;

protected:
  QString build(VXGlobalSourcePimpl&) override { return {}; }

private:
  QWidget m_PageHolder;
};

using kxtest::ScopedSettings;

using kxtest::qpath;

/** Writes a poly data file of two triangles. */
inline std::filesystem::path writeTriangles(const kxtest::TempDir& dir,
                                            const std::string& name = "surface.vtp")
{
  vtkNew<vtkPoints> points;
  points->InsertNextPoint(0, 0, 0);
  points->InsertNextPoint(1, 0, 0);
  points->InsertNextPoint(1, 1, 0);
  points->InsertNextPoint(0, 1, 0);
  vtkNew<vtkCellArray> triangles;
  const vtkIdType first[3] = { 0, 1, 2 };
  const vtkIdType second[3] = { 0, 2, 3 };
  triangles->InsertNextCell(3, first);
  triangles->InsertNextCell(3, second);
  vtkNew<vtkPolyData> poly;
  poly->SetPoints(points);
  poly->SetPolys(triangles);
  const auto path = dir / name;
  vtkNew<vtkXMLPolyDataWriter> writer;
  writer->SetFileName(path.string().c_str());
  writer->SetInputData(poly);
  EXPECT_EQ(writer->Write(), 1) << "could not write " << path;
  return path;
}

using kxtest::waitFor;

/** Lets the deferred deletes of removed items happen. */
inline void flushDeletes()
{
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/** The index of the row reached by following @p rows from the top (column as given). */
inline QModelIndex indexAt(const QAbstractItemModel& model, const std::vector<int>& rows,
                           int column = 0)
{
  QModelIndex index;
  for (size_t i = 0; i < rows.size(); i++)
    index = model.index(rows[i], i + 1 == rows.size() ? column : 0, index);
  return index;
}

/**
 * A pipeline with one active view and the model over it, as the module makes
 * them: the model is a child of the pipeline.
 */
class Scene
{
public:
  Scene()
  {
    pipeline = std::make_unique<VXPipeline>();
    model = new VXPipelineModel(pipeline.get(), pipeline.get());
    pipeline->setActiveViewWidget(&view);
  }
  ~Scene()
  {
    // a global source has no QObject parent: the code that made it frees it
    delete caption.data();
    pipeline.reset();
  }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  /**
   * The tree the tests look at:
   *   0 surface.vtp               (file bridge)
   *     0 surface                 (data source, named after the file)
   *       0 Outline View          (its default data view)
   *       1 Pass Filter
   *         0 Surface View
   *   1 Caption                   (global source)
   */
  void buildSurfaceTree()
  {
    surfaceFile = writeTriangles(dir);
    pipeline->importFile(qpath(surfaceFile));
    surfaceBridge = qobject_cast<FileToVXBridge*>(pipeline->bridges().last());
    ASSERT_NE(surfaceBridge, nullptr);
    ASSERT_EQ(surfaceBridge->dataSources().size(), 1);
    surfaceSource = surfaceBridge->dataSources().first();
    filter = new PassFilter();
    const QModelIndex filterIndex = model->addFilter(model->helperIndex(surfaceSource), filter);
    ASSERT_TRUE(filterIndex.isValid());
    const QModelIndex surfaceIndex =
      model->addRepresentation(filterIndex, VXRepresentation::Surface);
    ASSERT_TRUE(surfaceIndex.isValid());
    surfaceView = model->getRepresentation(surfaceIndex);
    caption = new CaptionSource();
    ASSERT_TRUE(model->addGlobalSource(caption).isValid());
  }

  kxtest::TempDir dir;
  ScopedSettings settings;
  TestView view;
  std::unique_ptr<VXPipeline> pipeline;
  VXPipelineModel* model = nullptr;

  std::filesystem::path surfaceFile;
  FileToVXBridge* surfaceBridge = nullptr;
  VXDataSource* surfaceSource = nullptr;
  PassFilter* filter = nullptr;
  VXRepresentation* surfaceView = nullptr;
  QPointer<CaptionSource> caption;
};
} // namespace modeltest
