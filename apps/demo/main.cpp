// Opens a host data file and prints what the library presents to VTK: each
// geometry's data set, its cells and points, and its arrays with their ranges.
#include <bridge/VtkBridge.hpp>

#include <kxcore/IGeometry.hpp>

#include <vtkCellData.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>

#include <fmt/format.h>

#include <QtCore/QString>

#include <cstdio>

namespace
{
void printArrays(const char* association, vtkDataSetAttributes* attributes)
{
  for (int i = 0; i < attributes->GetNumberOfArrays(); i++)
  {
    vtkDataArray* array = attributes->GetArray(i);
    if (array == nullptr)
      continue;
    std::string ranges;
    for (int c = 0; c < array->GetNumberOfComponents(); c++)
    {
      double range[2];
      array->GetRange(range, c);
      ranges += fmt::format("{}[{:g}, {:g}]", c > 0 ? " " : "", range[0], range[1]);
    }
    std::printf("    %s array \"%s\": %s, %lld tuples x %d, range %s\n", association,
                array->GetName(), array->GetDataTypeAsString(),
                static_cast<long long>(array->GetNumberOfTuples()), array->GetNumberOfComponents(),
                ranges.c_str());
  }
}
} // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
  {
    std::fprintf(stderr, "usage: kxvtk-demo FILE.voxelia\n");
    return 2;
  }
  QString error;
  auto structure =
    CV::VtkBridge::selectivelyImportGeometryData(QString::fromLocal8Bit(argv[1]), &error);
  if (!structure)
  {
    std::fprintf(stderr, "%s\n", error.toLocal8Bit().constData());
    return 1;
  }
  for (const auto& geometry : CV::VtkBridge::FindGeometry(structure))
  {
    auto wrapped = CV::VtkBridge::WrapGeometry(geometry);
    if (!wrapped->DataSet)
      continue;
    vtkDataSet* dataSet = wrapped->DataSet;
    double bounds[6];
    dataSet->GetBounds(bounds);
    std::printf("%s -> %s: %lld points, %lld cells, bounds [%g %g] [%g %g] [%g %g]\n",
                wrapped->Path.toString("/").c_str(), dataSet->GetClassName(),
                static_cast<long long>(dataSet->GetNumberOfPoints()),
                static_cast<long long>(dataSet->GetNumberOfCells()), bounds[0], bounds[1],
                bounds[2], bounds[3], bounds[4], bounds[5]);
    printArrays("cell", dataSet->GetCellData());
    printArrays("point", dataSet->GetPointData());
  }
  return 0;
}
