#include "PipelineTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>

#include <bridge/VtkBridge.hpp>

#include <vtkCellArray.h>
#include <vtkImageData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkRectilinearGrid.h>
#include <vtkStructuredGrid.h>
#include <vtkUnstructuredGrid.h>

#include <QtCore/QPointer>
#include <QtTest/QSignalSpy>

using namespace pipelinetest;

namespace
{
vtkSmartPointer<vtkPolyData> polyWith(int verts, int lines, int cellType)
{
  auto poly = vtkSmartPointer<vtkPolyData>::New();
  vtkNew<vtkPoints> points;
  for (int i = 0; i < 8; i++)
    points->InsertNextPoint(i & 1, (i >> 1) & 1, (i >> 2) & 1);
  poly->SetPoints(points);
  vtkNew<vtkCellArray> vertCells;
  for (vtkIdType i = 0; i < verts; i++)
    vertCells->InsertNextCell(1, &i);
  poly->SetVerts(vertCells);
  vtkNew<vtkCellArray> lineCells;
  for (int i = 0; i < lines; i++)
  {
    const vtkIdType ids[2] = { 0, 1 };
    lineCells->InsertNextCell(2, ids);
  }
  poly->SetLines(lineCells);
  if (cellType != 0)
  {
    vtkNew<vtkCellArray> polys;
    const vtkIdType ids[4] = { 0, 1, 3, 2 };
    polys->InsertNextCell(cellType == VTK_TRIANGLE ? 3 : 4, ids);
    poly->SetPolys(polys);
  }
  return poly;
}

vtkSmartPointer<vtkUnstructuredGrid> gridWith(int cellType)
{
  auto grid = vtkSmartPointer<vtkUnstructuredGrid>::New();
  vtkNew<vtkPoints> points;
  for (int i = 0; i < 8; i++)
    points->InsertNextPoint(i & 1, (i >> 1) & 1, (i >> 2) & 1);
  grid->SetPoints(points);
  const vtkIdType ids[8] = { 0, 1, 3, 2, 4, 5, 7, 6 };
  grid->InsertNextCell(cellType, cellType == VTK_TETRA ? 4 : (cellType == VTK_HEXAHEDRON ? 8 : 3),
                       ids);
  return grid;
}

/** Sets every default to a distinct type so the table's choice is visible, and restores them. */
class DistinctDefaults
{
public:
  DistinctDefaults()
  {
    VXPipeline::setDefaultImageGeomRepType(VXRepresentation::Volume);
    VXPipeline::setDefaultRectGridRepType(VXRepresentation::Surface);
    VXPipeline::setDefaultVertexRepType(VXRepresentation::Points);
    VXPipeline::setDefaultEdgeRepType(VXRepresentation::Wireframe);
    VXPipeline::setDefaultTriangleRepType(VXRepresentation::Glyph);
    VXPipeline::setDefaultQuadRepType(VXRepresentation::ImageSlice);
    VXPipeline::setDefaultTetRepType(VXRepresentation::Surface);
    VXPipeline::setDefaultHexRepType(VXRepresentation::Wireframe);
  }
  ~DistinctDefaults()
  {
    for (auto setter :
         { &VXPipeline::setDefaultImageGeomRepType, &VXPipeline::setDefaultRectGridRepType,
           &VXPipeline::setDefaultVertexRepType, &VXPipeline::setDefaultEdgeRepType,
           &VXPipeline::setDefaultTriangleRepType, &VXPipeline::setDefaultQuadRepType,
           &VXPipeline::setDefaultTetRepType, &VXPipeline::setDefaultHexRepType })
      setter(VXRepresentation::Outline);
  }
};
} // namespace

TEST(Pipeline, DefaultDataViewByDataSetType)
{
  DistinctDefaults defaults;
  using R = VXRepresentation;
  const std::vector<std::pair<vtkSmartPointer<vtkDataSet>, R::Type>> cases = {
    { vtkSmartPointer<vtkImageData>::New(), R::Volume },
    { vtkSmartPointer<vtkRectilinearGrid>::New(), R::Surface },
    { polyWith(2, 1, VTK_TRIANGLE), R::Points },
    { polyWith(0, 1, VTK_TRIANGLE), R::Wireframe },
    { polyWith(0, 0, VTK_TRIANGLE), R::Glyph },
    { polyWith(0, 0, VTK_QUAD), R::ImageSlice },
    { polyWith(0, 0, 0), R::Outline },
    { gridWith(VTK_TETRA), R::Surface },
    { gridWith(VTK_HEXAHEDRON), R::Wireframe },
    { gridWith(VTK_TRIANGLE), R::Outline },
    { vtkSmartPointer<vtkStructuredGrid>::New(), R::Outline },
    { nullptr, R::Outline }
  };
  for (size_t i = 0; i < cases.size(); i++)
    EXPECT_EQ(VXPipeline::DefaultRepresentationType(cases[i].first), cases[i].second)
      << "case " << i;

  // the choice reads the first polygon only: no cell map (a copy the size of the connectivity)
  // is built over a mesh that may hold millions of them
  for (const int type : { VTK_TRIANGLE, VTK_QUAD })
  {
    vtkSmartPointer<vtkPolyData> mesh = polyWith(0, 0, type);
    ASSERT_TRUE(mesh->NeedToBuildCells());
    EXPECT_EQ(VXPipeline::DefaultRepresentationType(mesh),
              type == VTK_TRIANGLE ? R::Glyph : R::ImageSlice);
    EXPECT_TRUE(mesh->NeedToBuildCells());
  }
}

TEST(Pipeline, DataSourcesGetTheirDefaultDataView)
{
  ScopedSettings settings;
  registerRecordingViews();
  DistinctDefaults defaults;
  VXPipeline pipeline;
  TestView view;
  pipeline.setActiveViewWidget(&view);
  QSignalSpy added(&pipeline, &VXPipeline::representationAdded);
  QStringList order;
  QObject::connect(&pipeline, &VXPipeline::dataSourceAdded,
                   [&](VXDataSource*) { order << "source"; });
  QObject::connect(&pipeline, &VXPipeline::representationAdded,
                   [&](VXRepresentation*) { order << "view"; });

  pipeline.importFile(qpath(kxtest::DataFile("hydrogen.vti")));
  ASSERT_EQ(added.count(), 1);
  EXPECT_EQ(order, (QStringList{ "source", "view" })); // the model has the source before its view
  auto* rep = dynamic_cast<RecordingRep*>(added.at(0).at(0).value<VXRepresentation*>());
  ASSERT_NE(rep, nullptr);
  EXPECT_EQ(rep->type(), VXRepresentation::Volume);
  VXDataSource* source = pipeline.bridges().first()->dataSources().first();
  EXPECT_EQ(rep->parent(), source);
  EXPECT_EQ(rep->initializedWith, source->outputPort());
  EXPECT_EQ(rep->pathName(), "hydrogen.vti > hydrogen > Volume View");
  EXPECT_TRUE(source->viewWidgets().contains(&view));
  EXPECT_EQ(source->pipeline(), &pipeline);

  // reloads reach the data view
  Q_EMIT pipeline.pipelineOutputReloaded();
  EXPECT_EQ(rep->reloads, 1);
}

TEST(Pipeline, NoViewDataOnlyAndStateLoadSuppressDataViews)
{
  ScopedSettings settings;
  registerRecordingViews();
  const QString file = qpath(kxtest::DataFile("Bunny.vtp"));
  {
    VXPipeline pipeline; // no active view
    QSignalSpy added(&pipeline, &VXPipeline::representationAdded);
    pipeline.importFile(file);
    EXPECT_EQ(added.count(), 0);
    VXDataSource* source = pipeline.bridges().first()->dataSources().first();
    EXPECT_TRUE(source->children().isEmpty());
    EXPECT_EQ(source->pipeline(), &pipeline);
  }
  {
    VXPipeline pipeline;
    TestView view;
    pipeline.setActiveViewWidget(&view);
    pipeline.setDataOnlyMode(true);
    QSignalSpy added(&pipeline, &VXPipeline::representationAdded);
    pipeline.importFile(file);
    EXPECT_EQ(added.count(), 0);
    VXDataSource* source = pipeline.bridges().first()->dataSources().first();
    EXPECT_EQ(source->pipeline(), nullptr);
    EXPECT_TRUE(source->viewWidgets().isEmpty());
  }
  {
    VXPipeline pipeline;
    TestView view;
    pipeline.setActiveViewWidget(&view);
    QSignalSpy added(&pipeline, &VXPipeline::representationAdded);
    {
      VXPipeline::StateLoadScope outer(pipeline);
      {
        VXPipeline::StateLoadScope inner(pipeline);
      }
      EXPECT_TRUE(pipeline.isLoadingState()); // scopes nest
      pipeline.importFile(file);
    }
    EXPECT_FALSE(pipeline.isLoadingState());
    EXPECT_EQ(added.count(), 0);
    pipeline.importFile(file);
    EXPECT_EQ(added.count(), 1);
  }
}

TEST(Pipeline, AddRepresentationMessagesAndTheActiveViewSignalBeforeTheChange)
{
  ScopedSettings settings;
  registerRecordingViews();
  VXPipeline pipeline;
  QSignalSpy output(&pipeline, &VXPipeline::sendOutputMessage);
  VXDataSource source;
  EXPECT_FALSE(pipeline.addRepresentation(nullptr, VXRepresentation::Surface));
  EXPECT_FALSE(pipeline.addRepresentation(&source, VXRepresentation::Surface));
  ASSERT_EQ(output.count(), 2);
  EXPECT_EQ(output.at(0).at(0).toString(),
            "Cannot add representation view because the selected parent item does not exist!");
  EXPECT_EQ(output.at(1).at(0).toString(),
            "Cannot add representation view because no active render window is selected!");

  TestView view;
  pipeline.setActiveViewWidget(&view);
  EXPECT_FALSE(pipeline.addRepresentation(&source, VXRepresentation::None));
  EXPECT_TRUE(pipeline.addRepresentation(&source, static_cast<VXRepresentation::Type>(9)));
  EXPECT_TRUE(source.children().isEmpty());
  EXPECT_TRUE(pipeline.addRepresentation(&source, VXRepresentation::Points));
  EXPECT_EQ(source.children().size(), 1);

  // the active view signal comes before the change
  TestView first;
  TestView second;
  pipeline.setActiveViewWidget(&first);
  VXAbstractViewWidget* seenDuringSignal = nullptr;
  QObject::connect(&pipeline, &VXPipeline::activeViewChanged,
                   [&](VXAbstractViewWidget*, VXAbstractViewWidget*)
                   { seenDuringSignal = pipeline.activeViewWidget(); });
  QSignalSpy spy(&pipeline, &VXPipeline::activeViewChanged);
  pipeline.setActiveViewWidget(&second);
  ASSERT_EQ(spy.count(), 1);
  EXPECT_EQ(seenDuringSignal, &first);
  EXPECT_EQ(pipeline.activeViewWidget(), &second);
}

// Calls with nothing to work on are refused and leave the tree as it was; a bridge used on its
// own, without a model, replaces its data sources cleanly.
TEST(Pipeline, CallsWithoutDataAreRefusedAndChangeNothing)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  VXPipeline pipeline;
  QSignalSpy added(&pipeline, &VXPipeline::pipelineBridgeAdded);
  QSignalSpy popups(&pipeline, &VXPipeline::sendPopupMessage);
  FakeController run("Run", "u");
  std::shared_ptr<kx::core::DataStructure> none;
  EXPECT_FALSE(pipeline.importFile(""));
  EXPECT_FALSE(pipeline.importPipelineOutput(&run, none));
  EXPECT_FALSE(pipeline.reloadPipelineOutput(&run, none));
  EXPECT_FALSE(pipeline.reloadPipelineOutput(nullptr, none));
  EXPECT_EQ(added.count(), 0);
  EXPECT_TRUE(pipeline.bridges().isEmpty());

  // a run in place: a null reload of it keeps its data sources and announces nothing
  QString error;
  auto structure = CV::VtkBridge::selectivelyImportGeometryData(qpath(writeSample(dir)), &error);
  ASSERT_TRUE(structure) << error.toStdString();
  ASSERT_TRUE(pipeline.importPipelineOutput(&run, structure));
  ASSERT_EQ(pipeline.bridges().size(), 1);
  const QList<VXDataSource*> sources = pipeline.bridges().first()->dataSources();
  ASSERT_EQ(sources.size(), 3);
  QSignalSpy reloaded(&pipeline, &VXPipeline::pipelineOutputReloaded);
  EXPECT_FALSE(pipeline.reloadPipelineOutput(&run, none));
  EXPECT_EQ(pipeline.bridges().size(), 1);
  EXPECT_EQ(pipeline.bridges().first()->dataSources(), sources);
  EXPECT_EQ(reloaded.count(), 0);
  EXPECT_EQ(popups.count(), 0);

  // without a model nothing else takes a deleted data source off the bridge's list
  const auto hexahedra = kxtest::DataFile("Hexahedron.vtu");
  const auto tetrahedra = kxtest::DataFile("Tetrahedron.vtu");
  ASSERT_TRUE(std::filesystem::exists(hexahedra) && std::filesystem::exists(tetrahedra));
  FileToVXBridge loose;
  loose.import(qpath(hexahedra));
  ASSERT_EQ(loose.dataSources().size(), 1);
  QPointer<VXDataSource> first = loose.dataSources().first();
  loose.import(qpath(tetrahedra));
  EXPECT_TRUE(first.isNull());
  ASSERT_EQ(loose.dataSources().size(), 1);
  EXPECT_EQ(loose.dataSources().first()->getOutput()->GetNumberOfCells(), 96);
  loose.clear();
  EXPECT_TRUE(loose.dataSources().isEmpty());
  EXPECT_TRUE(loose.dataSourceNames().isEmpty());
}
