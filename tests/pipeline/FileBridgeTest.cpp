#include "PipelineTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>

#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>

#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkUnstructuredGrid.h>

#include <QtCore/QFile>
#include <QtCore/QSaveFile>
#include <QtTest/QSignalSpy>

#include <fstream>

using namespace pipelinetest;

namespace
{
struct Expected
{
  std::string file;
  std::string className;
  vtkIdType points;
  vtkIdType cells;
  std::string pointArray; // empty: none checked
  std::string cellArray;
  int firstPointArrayComponents = 0; // 0: not checked
};

/** Imports one file into a pipeline with an active view and gives its bridge. */
FileToVXBridge* importInto(VXPipeline& pipeline, const std::filesystem::path& path)
{
  pipeline.importFile(qpath(path));
  return qobject_cast<FileToVXBridge*>(pipeline.bridges().last());
}
} // namespace

// Every real sample file goes through the pipeline and gives one data source
// holding what the file holds.
TEST(FileBridge, RealFilesBecomeDataSources)
{
  ScopedSettings settings;
  const std::vector<Expected> files = {
    { "hydrogen.vti", "vtkImageData", 262144, 250047, "probability_density", "" },
    { "chombo3d_1.vti", "vtkImageData", 4913, 4096, "", "phi" },
    { "RectilinearGrid.vtr", "vtkRectilinearGrid", 545025, 524288, "", "Pressure" },
    { "StructuredGrid.vts", "vtkStructuredGrid", 648, 440, "Momentum", "" },
    { "Tetrahedron.vtu", "vtkUnstructuredGrid", 35, 96, "DistanceToCenter", "" },
    { "Hexahedron.vtu", "vtkUnstructuredGrid", 26, 7, "", "material" },
    { "ex-blow_5_0_2.vtu", "vtkUnstructuredGrid", 96, 116, "THICKNESS", "ObjectId" },
    { "Bunny.vtp", "vtkPolyData", 872, 1502, "Normals", "" },
    { "disk_out_ref_surface.vtp", "vtkPolyData", 1990, 1988, "Temp", "GlobalElementId" },
    { "plate.vtk", "vtkPolyData", 315, 312, "mode8", "" },
    { "faults.vtk", "vtkPolyData", 1933, 78, "", "" },
    { "matrix.vtk", "vtkStructuredPoints", 50, 36, "values", "" },
    { "uGridEx.vtk", "vtkUnstructuredGrid", 27, 12, "scalars", "" },
    { "office.binary.vtk", "vtkStructuredGrid", 8400, 7220, "vectors", "" },
    { "greatWhite.stl", "vtkPolyData", 3155, 6264, "", "" },
    { "InterpolatingOnSTL_final.stl", "vtkPolyData", 2669, 5131, "", "" },
    { "TestPattern.png", "vtkImageData", 65536, 65025, "", "", 1 },
    { "alphachannel.png", "vtkImageData", 126000, 125281, "", "", 4 },
    { "beach.jpg", "vtkImageData", 40000, 39601, "", "", 3 },
    { "beach.tif", "vtkImageData", 40000, 39601, "", "", 3 },
    { "masonry.bmp", "vtkImageData", 65536, 65025, "", "", 3 },
  };
  VXPipeline pipeline;
  QSignalSpy popups(&pipeline, &VXPipeline::sendPopupMessage);
  for (const Expected& expected : files)
  {
    SCOPED_TRACE(expected.file);
    FileToVXBridge* bridge = importInto(pipeline, kxtest::DataFile(expected.file));
    ASSERT_NE(bridge, nullptr);
    EXPECT_EQ(bridge->name().toStdString(), expected.file);
    ASSERT_EQ(bridge->dataSources().size(), 1);
    VXDataSource* source = bridge->dataSources().first();
    EXPECT_EQ(source->parent(), bridge);
    EXPECT_EQ(source->name().toStdString(),
              QFileInfo(QString::fromStdString(expected.file)).completeBaseName().toStdString());
    EXPECT_TRUE(source->importedDataPath().empty());
    vtkDataSet* dataSet = source->getOutput();
    ASSERT_NE(dataSet, nullptr);
    EXPECT_EQ(std::string(dataSet->GetClassName()), expected.className);
    EXPECT_EQ(dataSet->GetNumberOfPoints(), expected.points);
    EXPECT_EQ(dataSet->GetNumberOfCells(), expected.cells);
    EXPECT_TRUE(expected.pointArray.empty() ||
                dataSet->GetPointData()->GetAbstractArray(expected.pointArray.c_str()) != nullptr)
      << expected.pointArray;
    EXPECT_TRUE(expected.cellArray.empty() ||
                dataSet->GetCellData()->GetAbstractArray(expected.cellArray.c_str()) != nullptr)
      << expected.cellArray;
    // mesh cells take 32-bit ids, half the memory of the 64 bit the readers give
    if (auto* poly = vtkPolyData::SafeDownCast(dataSet))
    {
      for (vtkCellArray* cells :
           { poly->GetVerts(), poly->GetLines(), poly->GetPolys(), poly->GetStrips() })
      {
        EXPECT_FALSE(cells->IsStorage64Bit());
      }
    }
    if (auto* grid = vtkUnstructuredGrid::SafeDownCast(dataSet))
    {
      EXPECT_FALSE(grid->GetCells()->IsStorage64Bit());
    }
    if (expected.firstPointArrayComponents > 0)
    {
      ASSERT_GT(dataSet->GetPointData()->GetNumberOfArrays(), 0);
      EXPECT_EQ(dataSet->GetPointData()->GetArray(0)->GetNumberOfComponents(),
                expected.firstPointArrayComponents);
    }
  }
  EXPECT_EQ(popups.count(), 0);
}

TEST(FileBridge, HostFileGivesOneDataSourcePerGeometryKeptOnReload)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  const auto path = writeSample(dir);
  VXPipeline pipeline;
  FileToVXBridge* bridge = importInto(pipeline, path);
  ASSERT_EQ(bridge->dataSources().size(), 3);
  EXPECT_EQ(bridge->dataSourceNames(),
            (QStringList{ "Microstructure", "Grain Boundaries", "Grain Centroids" }));
  VXDataSource* image = bridge->dataSources().first();
  EXPECT_EQ(image->importedDataPath(), kx::core::DataPath({ "Microstructure" }));
  EXPECT_EQ(image->quadViewDisplayText(), "Microstructure");
  EXPECT_TRUE(image->isImageGeometrySource());
  EXPECT_EQ(image->getOutput()->GetNumberOfCells(), 12 * 12 * 12);
  EXPECT_TRUE(image->getImportedArrayNames().contains("FeatureIds"));
  EXPECT_FALSE(bridge->dataSources()[1]->isImageGeometrySource());

  // a reload keeps the data sources and announces twice, with new VTK objects: a reload never
  // writes into a live one
  bridge->setWatchFile(false);
  const QList<VXDataSource*> before = bridge->dataSources();
  vtkDataSet* oldImage = image->getOutput();
  QSignalSpy reloaded(&pipeline, &VXPipeline::pipelineOutputReloaded);
  bridge->reload();
  EXPECT_EQ(reloaded.count(), 2);
  EXPECT_EQ(bridge->dataSources(), before);
  EXPECT_NE(image->getOutput(), oldImage);
}

TEST(FileBridge, FailuresAreReportedAndLeaveNoChildren)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  kx::core::DataStructure tableOnly;
  auto store = std::make_shared<kx::core::DataStore<int>>(kx::core::ShapeType{ 3 },
                                                          kx::core::ShapeType{ 1 }, 1);
  kx::core::DataArray<int>::Create(tableOnly, "Counts", store);
  const auto noGeometry = dir / "table.voxelia";
  ASSERT_TRUE(kx::core::VOXELIA::WriteFile(noGeometry, tableOnly).isValid());
  const auto parallel = dir / "grid.pvti";
  std::ofstream(parallel) << "<VTKFile/>";
  const auto brokenXml = dir / "broken.vtp";
  std::ofstream(brokenXml) << "<VTKFile type=\"PolyData\"><garbage";

  VXPipeline pipeline;
  QSignalSpy popups(&pipeline, &VXPipeline::sendPopupMessage);
  FileToVXBridge* tableBridge = importInto(pipeline, noGeometry);
  EXPECT_TRUE(tableBridge->dataSources().isEmpty());
  FileToVXBridge* pvtiBridge = importInto(pipeline, parallel);
  EXPECT_TRUE(pvtiBridge->dataSources().isEmpty());
  FileToVXBridge* brokenBridge = importInto(pipeline, brokenXml);
  EXPECT_TRUE(brokenBridge->dataSources().isEmpty());

  ASSERT_EQ(popups.count(), 2); // a file that fails to read as a VTK file says nothing
  EXPECT_EQ(popups.at(0).at(0).toString(), "Load File Error");
  EXPECT_EQ(popups.at(0).at(1).toString(),
            QString("The file '%1' was read successfully but contains no geometries to visualize.")
              .arg(qpath(noGeometry)));
  EXPECT_EQ(popups.at(1).at(1).toString(),
            QString("Invalid file type for file at '%1'. Cannot load the file for visualization")
              .arg(qpath(parallel)));
  EXPECT_TRUE(FileToVXBridge::FileFilterList().contains("*.pvti"));
  EXPECT_TRUE(FileToVXBridge::FileFilterList().startsWith("All Supported Files (*.voxelia *.vti"));
  EXPECT_TRUE(FileToVXBridge::FileFilterList().contains(";;VOXELIA-KX Files (*.voxelia);;"));
}

TEST(FileBridge, SameFileTwiceGetsASuffixKeptInTheState)
{
  ScopedSettings settings;
  VXPipeline pipeline;
  const auto path = kxtest::DataFile("Hexahedron.vtu");
  importInto(pipeline, path);
  importInto(pipeline, path);
  importInto(pipeline, path);
  ASSERT_EQ(pipeline.bridges().size(), 3);
  EXPECT_EQ(pipeline.bridges()[0]->name(), "Hexahedron.vtu");
  EXPECT_EQ(pipeline.bridges()[1]->name(), "Hexahedron.vtu (1)");
  EXPECT_EQ(pipeline.bridges()[2]->name(), "Hexahedron.vtu (2)");

  // the state keeps the name with its suffix and the path; the stored name becomes the base name
  nlohmann::json state;
  pipeline.bridges()[2]->write(state, {});
  EXPECT_EQ(state["bridge_object_item_name"], "Hexahedron.vtu (2)");
  EXPECT_EQ(state["bridge_object_file_path"], path.string());
  FileToVXBridge restored;
  restored.read(state, {});
  EXPECT_EQ(restored.dataSources().size(), 1);
  EXPECT_EQ(restored.baseName(), "Hexahedron.vtu (2)");
  EXPECT_EQ(restored.getNameSuffixCounter(), 0);
}

// The watcher on a real file: a rewrite reloads without a word, a rename or a
// delete flags the item once, and watching again after the file is back reloads it.
TEST(FileBridge, WatchedFileFollowsRewriteRenameAndDelete)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  const auto path = dir / "mesh.vtu";
  std::filesystem::copy_file(kxtest::DataFile("Hexahedron.vtu"), path);
  VXPipeline pipeline;
  FileToVXBridge* bridge = importInto(pipeline, path);
  ASSERT_EQ(bridge->dataSources().size(), 1);
  EXPECT_TRUE(bridge->isWatchingFile());
  QSignalSpy reloaded(bridge, &VXBridgeObject::pipelineOutputReloaded);
  QSignalSpy output(&pipeline, &VXPipeline::sendOutputMessage);
  QSignalSpy popups(&pipeline, &VXPipeline::sendPopupMessage);
  QSignalSpy flags(bridge, &FileToVXBridge::autoReloadFlagChanged);

  // rewrite in place with another mesh
  {
    std::ifstream in(kxtest::DataFile("Tetrahedron.vtu"), std::ios::binary);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << in.rdbuf();
  }
  ASSERT_TRUE(waitFor([&] { return reloaded.count() >= 1; }));
  EXPECT_EQ(bridge->dataSources().first()->getOutput()->GetNumberOfCells(), 96);
  EXPECT_EQ(output.count(), 0);
  EXPECT_EQ(popups.count(), 0);
  EXPECT_FALSE(bridge->autoReloadFlagged());

  // renamed away: flagged, told once
  const auto moved = dir / "moved.vtu";
  std::filesystem::rename(path, moved);
  ASSERT_TRUE(waitFor([&] { return bridge->autoReloadFlagged(); }));
  QCoreApplication::processEvents();
  ASSERT_EQ(output.count(), 1);
  EXPECT_TRUE(output.at(0).at(0).toString().startsWith(
    QString("File item mesh.vtu is no longer auto reloading because the source file at path %1 was "
            "renamed or deleted.\n")
      .arg(qpath(path))));
  ASSERT_GE(flags.count(), 1);
  EXPECT_TRUE(flags.last().at(1).toBool());
  EXPECT_FALSE(bridge->isWatchingFile());
  // the data in memory stay usable
  EXPECT_EQ(bridge->dataSources().first()->getOutput()->GetNumberOfCells(), 96);

  // renamed back; watching again clears the flag and reloads
  std::filesystem::rename(moved, path);
  const int reloadsBefore = reloaded.count();
  bridge->setWatchFile(true);
  EXPECT_FALSE(bridge->autoReloadFlagged());
  EXPECT_TRUE(bridge->isWatchingFile());
  EXPECT_EQ(reloaded.count(), reloadsBefore + 1);
  EXPECT_EQ(output.count(), 1);

  // and a delete is told once too
  std::filesystem::remove(path);
  ASSERT_TRUE(waitFor([&] { return bridge->autoReloadFlagged(); }));
  QCoreApplication::processEvents();
  EXPECT_EQ(output.count(), 2);
}

// Most tools save by writing a temporary file and renaming it over the old one: that reloads
// like a rewrite in place, also in a quick burst, and only a file that stays away flags the item.
TEST(FileBridge, AtomicSavesReloadAndOnlyAFileThatStaysAwayFlags)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  const auto path = dir / "cloud.vtk";
  // a cloud of n points, saved through a temporary file renamed over the old one
  auto save = [&](int n)
  {
    QByteArray text = "# vtk DataFile Version 3.0\ncloud\nASCII\nDATASET POLYDATA\nPOINTS " +
                      QByteArray::number(n) + " float\n";
    for (int i = 0; i < n; ++i)
      text += QByteArray::number(i) + " 0 0\n";
    QSaveFile file(qpath(path));
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
  };
  ASSERT_TRUE(save(1));
  VXPipeline pipeline;
  FileToVXBridge* bridge = importInto(pipeline, path);
  ASSERT_EQ(bridge->dataSources().size(), 1);
  auto points = [&] { return bridge->dataSources().first()->getOutput()->GetNumberOfPoints(); };
  ASSERT_EQ(points(), 1);
  QSignalSpy output(&pipeline, &VXPipeline::sendOutputMessage);

  ASSERT_TRUE(save(2));
  ASSERT_TRUE(waitFor([&] { return points() == 2; }));
  EXPECT_TRUE(bridge->isWatchingFile());

  for (int n = 3; n <= 52; ++n)
    ASSERT_TRUE(save(n));
  ASSERT_TRUE(waitFor([&] { return points() == 52; }));
  // late notices of the burst change nothing
  waitFor([] { return false; }, 500);
  EXPECT_EQ(points(), 52);
  EXPECT_TRUE(bridge->isWatchingFile());
  EXPECT_FALSE(bridge->autoReloadFlagged());
  EXPECT_EQ(output.count(), 0);

  // renamed away for good: flagged and told once
  std::filesystem::rename(path, dir / "moved.vtk");
  ASSERT_TRUE(waitFor([&] { return bridge->autoReloadFlagged(); }));
  waitFor([] { return false; }, 300);
  ASSERT_EQ(output.count(), 1);
  EXPECT_TRUE(output.at(0).at(0).toString().startsWith(
    "File item cloud.vtk is no longer auto reloading because the source file at path"));
  EXPECT_FALSE(bridge->isWatchingFile());
  EXPECT_EQ(points(), 52);
}

TEST(FileBridge, ReloadOfMissingFileAsksFirstAndWithoutDataIsNone)
{
  ScopedSettings settings;
  kxtest::TempDir dir;
  const auto path = dir / "cells.vtu";
  std::filesystem::copy_file(kxtest::DataFile("Hexahedron.vtu"), path);
  VXPipeline pipeline;
  FileToVXBridge* bridge = importInto(pipeline, path);
  bridge->setWatchFile(false);
  std::filesystem::remove(path);

  ScriptedPrompts prompts;
  prompts.answers = { QMessageBox::No };
  QSignalSpy reloaded(bridge, &VXBridgeObject::pipelineOutputReloaded);
  bridge->reload();
  ASSERT_EQ(prompts.asked.size(), 1u);
  EXPECT_EQ(prompts.asked[0].title, "Source File Missing");
  EXPECT_EQ(prompts.asked[0].defaultButton, QMessageBox::No);
  EXPECT_TRUE(prompts.asked[0].text.startsWith(
    QString("The source file (%1) has been renamed or deleted.").arg(qpath(path))));
  EXPECT_EQ(reloaded.count(), 0);

  // located elsewhere: reads that file into the same data source
  prompts.answers = { QMessageBox::Yes };
  prompts.fileAnswer = qpath(kxtest::DataFile("Tetrahedron.vtu"));
  bridge->reload();
  ASSERT_EQ(prompts.fileTitles.size(), 1u);
  EXPECT_EQ(prompts.fileTitles[0], "Locate File To Reload");
  EXPECT_EQ(reloaded.count(), 1);
  EXPECT_EQ(bridge->filePath(), prompts.fileAnswer);
  EXPECT_EQ(bridge->dataSources().first()->getOutput()->GetNumberOfCells(), 96);

  // a bridge without data is not reloaded
  FileToVXBridge empty;
  QSignalSpy output(&empty, &VXBridgeObject::sendOutputMessage);
  empty.reload();
  ASSERT_EQ(output.count(), 1);
  EXPECT_EQ(output.at(0).at(0).toString(),
            "The pipeline object doesn't have any data defined; not a reload.");
}
