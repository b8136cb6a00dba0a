// VTK's own filters and writers run on wrapped host data as on any VTK array.
#include "BridgeTestUtils.hpp"

#include <bridge/VtkBridge.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/ImageGeom.hpp>

#include "TestSupport.hpp"

#include <vtkCellData.h>
#include <vtkCellDataToPointData.h>
#include <vtkContourFilter.h>
#include <vtkImageData.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkThreshold.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLImageDataReader.h>
#include <vtkXMLImageDataWriter.h>

#include <cmath>

using namespace kx::core;

namespace
{
/** An 8 x 6 x 4 image with cell arrays "Index" (0..191) and "Distance" from the centre. */
vtkSmartPointer<vtkDataSet> makeWrappedImage(DataStructure& ds)
{
  auto* image = ImageGeom::Create(ds, "Image");
  image->setDimensions({ 8, 6, 4 });
  auto* cells = AttributeMatrix::Create(ds, "Cell Data", { 4, 6, 8 }, image->getId());
  image->setCellData(cells->getId());
  std::vector<int32> index(192);
  std::vector<float> distance(192);
  for (int z = 0; z < 4; z++)
  {
    for (int y = 0; y < 6; y++)
    {
      for (int x = 0; x < 8; x++)
      {
        const int i = (z * 6 + y) * 8 + x;
        index[i] = i;
        distance[i] =
          std::sqrt((x - 3.5f) * (x - 3.5f) + (y - 2.5f) * (y - 2.5f) + (z - 1.5f) * (z - 1.5f));
      }
    }
  }
  bridgetest::makeArray<int32>(ds, "Index", index, { 4, 6, 8 }, { 1 }, cells->getId());
  bridgetest::makeArray<float>(ds, "Distance", distance, { 4, 6, 8 }, { 1 }, cells->getId());
  return CV::VtkBridge::CreateFromGeom(ds.getSharedDataAs<ImageGeom>(image->getId()));
}
} // namespace

TEST(VtkFilters, ThresholdSelectsHostCells)
{
  DataStructure ds;
  auto image = makeWrappedImage(ds);
  vtkNew<vtkThreshold> threshold;
  threshold->SetInputData(image);
  threshold->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_CELLS, "Index");
  threshold->SetLowerThreshold(40);
  threshold->SetUpperThreshold(49);
  threshold->SetThresholdFunction(vtkThreshold::THRESHOLD_BETWEEN);
  threshold->Update();
  vtkUnstructuredGrid* output = threshold->GetOutput();
  ASSERT_EQ(output->GetNumberOfCells(), 10);
  vtkDataArray* kept = output->GetCellData()->GetArray("Index");
  ASSERT_NE(kept, nullptr);
  for (vtkIdType i = 0; i < 10; i++)
    EXPECT_EQ(kept->GetComponent(i, 0), 40.0 + static_cast<double>(i));
  // the filter built its output array from the wrapped array's type
  EXPECT_STREQ(kept->GetClassName(), "CV::Array<T>");
}

TEST(VtkFilters, ContourOfInterpolatedHostData)
{
  DataStructure ds;
  auto image = makeWrappedImage(ds);
  vtkNew<vtkCellDataToPointData> toPoints;
  toPoints->SetInputData(image);
  vtkNew<vtkContourFilter> contour;
  contour->SetInputConnection(toPoints->GetOutputPort());
  contour->SetInputArrayToProcess(0, 0, 0, vtkDataObject::FIELD_ASSOCIATION_POINTS, "Distance");
  contour->SetValue(0, 1.8);
  contour->Update();
  vtkPolyData* surface = contour->GetOutput();
  ASSERT_GT(surface->GetNumberOfPolys(), 20);
  // a closed shell around the centre of the image
  double bounds[6];
  surface->GetBounds(bounds);
  EXPECT_NEAR((bounds[0] + bounds[1]) / 2.0, 4.0, 0.05);
  EXPECT_NEAR((bounds[2] + bounds[3]) / 2.0, 3.0, 0.05);
  EXPECT_NEAR((bounds[4] + bounds[5]) / 2.0, 2.0, 0.05);
}

TEST(VtkFilters, XmlWriterRoundTripsWrappedImage)
{
  DataStructure ds;
  auto image = makeWrappedImage(ds);
  kxtest::TempDir tmp;
  const std::string path = (tmp / "wrapped.vti").string();
  vtkNew<vtkXMLImageDataWriter> writer;
  writer->SetInputData(image);
  writer->SetFileName(path.c_str());
  ASSERT_EQ(writer->Write(), 1);

  vtkNew<vtkXMLImageDataReader> reader;
  reader->SetFileName(path.c_str());
  reader->Update();
  vtkImageData* read = reader->GetOutput();
  ASSERT_EQ(read->GetNumberOfCells(), 192);
  for (const char* name : { "Index", "Distance" })
  {
    vtkDataArray* original = image->GetCellData()->GetArray(name);
    vtkDataArray* back = read->GetCellData()->GetArray(name);
    ASSERT_NE(back, nullptr) << name;
    EXPECT_EQ(back->GetDataType(), original->GetDataType()) << name;
    for (vtkIdType i = 0; i < 192; i++)
      ASSERT_EQ(back->GetComponent(i, 0), original->GetComponent(i, 0)) << name << " at " << i;
  }
}
