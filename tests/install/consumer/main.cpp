// A host-side program: builds a small image geometry and shows it through the library.
#include <bridge/VtkBridge.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/ImageGeom.hpp>

#include <vtkCellData.h>

#include <cstdio>

int main()
{
  using namespace kx::core;
  auto ds = std::make_shared<DataStructure>();
  auto* image = ImageGeom::Create(*ds, "Image");
  image->setDimensions({ 4, 3, 2 });
  auto* cells = AttributeMatrix::Create(*ds, "Cell Data", { 2, 3, 4 }, image->getId());
  image->setCellData(cells->getId());
  auto store = std::make_shared<DataStore<int32>>(ShapeType{ 2, 3, 4 }, ShapeType{ 1 });
  for (usize i = 0; i < 24; i++)
    store->setValue(i, static_cast<int32>(i));
  Int32Array::Create(*ds, "FeatureIds", store, cells->getId());

  auto wrapped = CV::VtkBridge::WrapGeometry(CV::VtkBridge::FindGeometry(ds, "Image"));
  if (!wrapped->DataSet)
    return 1;
  double range[2];
  wrapped->DataSet->GetCellData()->GetArray("FeatureIds")->GetRange(range, 0);
  std::printf("consumer: %lld cells, FeatureIds range %g %g\n",
              static_cast<long long>(wrapped->DataSet->GetNumberOfCells()), range[0], range[1]);
  return 0;
}
