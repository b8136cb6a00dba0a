#include "BridgeTestUtils.hpp"

#include <bridge/VtkBridge.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataGroup.hpp>
#include <kxcore/HDF5/ReadStatistics.hpp>
#include <kxcore/ImageGeom.hpp>
#include <kxcore/TriangleGeom.hpp>
#include <kxcore/VoxeliaFile.hpp>

#include "TestSupport.hpp"

#include <vtkCellData.h>

#include <fstream>

using namespace kx::core;
namespace VB = CV::VtkBridge;

namespace
{
/**
 * A file with one image geometry inside a group, and a large array plus a
 * group of arrays outside every geometry.
 */
std::filesystem::path writeMixedFile(const kxtest::TempDir& tmp)
{
  DataStructure ds;
  auto* folder = DataGroup::Create(ds, "Results");
  auto* image = ImageGeom::Create(ds, "Grains", folder->getId());
  image->setDimensions({ 4, 3, 2 });
  auto* cells = AttributeMatrix::Create(ds, "Cell Data", { 2, 3, 4 }, image->getId());
  image->setCellData(cells->getId());
  std::vector<int32> ids(24);
  for (int i = 0; i < 24; i++)
    ids[i] = i % 5;
  bridgetest::makeArray<int32>(ds, "FeatureIds", ids, { 2, 3, 4 }, { 1 }, cells->getId());
  bridgetest::makeArray<float>(ds, "Big Table", std::vector<float>(1 << 20, 3.0f), { 1 << 20 });
  auto* stats = DataGroup::Create(ds, "Statistics");
  bridgetest::makeArray<double>(ds, "Sizes", { 1.0, 2.0, 3.0 }, { 3 }, { 1 }, stats->getId());
  const auto path = tmp / "mixed.voxelia";
  auto written = VOXELIA::WriteFile(path, ds);
  EXPECT_TRUE(written.isValid());
  return path;
}
} // namespace

TEST(SelectiveImport, ReadsGeometriesAndTheirAncestorsOnly)
{
  kxtest::TempDir tmp;
  const auto path = writeMixedFile(tmp);
  HDF5::ResetDatasetReadCount();
  QString error;
  auto structure = VB::selectivelyImportGeometryData(QString::fromStdString(path.string()), &error);
  ASSERT_NE(structure, nullptr) << error.toStdString();
  EXPECT_TRUE(error.isEmpty());
  // only the geometry's one array was read from disk
  EXPECT_EQ(HDF5::GetDatasetReadCount(), 1u);

  EXPECT_NE(structure->getData(DataPath({ "Results" })), nullptr);
  EXPECT_NE(structure->getData(DataPath({ "Results", "Grains", "Cell Data", "FeatureIds" })),
            nullptr);
  EXPECT_EQ(structure->getData(DataPath({ "Big Table" })), nullptr);
  EXPECT_EQ(structure->getData(DataPath({ "Statistics" })), nullptr);

  auto geometry = VB::FindGeometry(structure, "Grains");
  ASSERT_NE(geometry, nullptr);
  auto wrapped = VB::WrapGeometry(geometry);
  ASSERT_NE(wrapped->DataSet, nullptr);
  EXPECT_EQ(wrapped->Path, DataPath({ "Results", "Grains" }));
  vtkDataArray* featureIds = wrapped->DataSet->GetCellData()->GetArray("FeatureIds");
  ASSERT_NE(featureIds, nullptr);
  EXPECT_EQ(featureIds->GetComponent(23, 0), 3.0);
  double range[2];
  featureIds->GetRange(range, 0);
  EXPECT_EQ(range[1], 4.0);
}

TEST(SelectiveImport, ReportsUnreadableFilesAndFilesWithoutGeometries)
{
  kxtest::TempDir tmp;
  const auto notHdf5 = tmp / "notes.voxelia";
  std::ofstream(notHdf5) << "just some text, not a data file";
  const auto empty = tmp / "empty.voxelia";
  std::ofstream{ empty };
  for (const auto& path : { notHdf5, empty, tmp / "missing.voxelia" })
  {
    QString error;
    const QString qpath = QString::fromStdString(path.string());
    EXPECT_EQ(VB::selectivelyImportGeometryData(qpath, &error), nullptr);
    EXPECT_EQ(error, QString("The file '%1' could not be read as a VOXELIA file.").arg(qpath));
  }

  // a good file cut short anywhere
  const auto good = writeMixedFile(tmp);
  const auto size = std::filesystem::file_size(good);
  for (double fraction : { 0.1, 0.5, 0.9, 0.999 })
  {
    const auto cut =
      tmp / ("cut_" + std::to_string(static_cast<int>(fraction * 1000)) + ".voxelia");
    std::filesystem::copy_file(good, cut);
    std::filesystem::resize_file(cut,
                                 static_cast<std::uintmax_t>(static_cast<double>(size) * fraction));
    QString error;
    const QString qpath = QString::fromStdString(cut.string());
    EXPECT_EQ(VB::selectivelyImportGeometryData(qpath, &error), nullptr) << fraction;
    EXPECT_EQ(error, QString("The file '%1' could not be read as a VOXELIA file.").arg(qpath))
      << fraction;
  }

  DataStructure noGeometry;
  bridgetest::makeArray<int32>(noGeometry, "Numbers", { 1, 2, 3 }, { 3 });
  const auto tablePath = tmp / "table.voxelia";
  ASSERT_TRUE(VOXELIA::WriteFile(tablePath, noGeometry).isValid());
  QString error;
  const QString qpath = QString::fromStdString(tablePath.string());
  EXPECT_EQ(VB::selectivelyImportGeometryData(qpath, &error), nullptr);
  EXPECT_EQ(error,
            QString("The file '%1' was read successfully but contains no geometries to visualize.")
              .arg(qpath));
  // the message is optional
  EXPECT_EQ(VB::selectivelyImportGeometryData(qpath, nullptr), nullptr);
}
