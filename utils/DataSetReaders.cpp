#include "utils/DataSetReaders.hpp"

#include <vtkAlgorithm.h>
#include <vtkBMPReader.h>
#include <vtkCallbackCommand.h>
#include <vtkCellArray.h>
#include <vtkCommand.h>
#include <vtkDataSetReader.h>
#include <vtkExecutive.h>
#include <vtkImageData.h>
#include <vtkImageReader2.h>
#include <vtkJPEGReader.h>
#include <vtkNew.h>
#include <vtkPNGReader.h>
#include <vtkPolyData.h>
#include <vtkSTLReader.h>
#include <vtkTIFFReader.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLImageDataReader.h>
#include <vtkXMLPolyDataReader.h>
#include <vtkXMLRectilinearGridReader.h>
#include <vtkXMLStructuredGridReader.h>
#include <vtkXMLUnstructuredGridReader.h>

#include <QtCore/QFileInfo>

namespace KXVtk::utils
{
namespace
{
/**
 * Runs a reader with its error reports caught instead of printed; a reader
 * that reported an error has failed even if it produced something.
 */
vtkSmartPointer<vtkDataSet> runReader(vtkAlgorithm* reader)
{
  bool failed = false;
  vtkNew<vtkCallbackCommand> onError;
  onError->SetClientData(&failed);
  onError->SetCallback([](vtkObject*, unsigned long, void* clientData, void*)
                       { *static_cast<bool*>(clientData) = true; });
  reader->AddObserver(vtkCommand::ErrorEvent, onError);
  reader->GetExecutive()->AddObserver(vtkCommand::ErrorEvent, onError);
  reader->Update();
  if (failed)
    return nullptr;
  vtkSmartPointer<vtkDataSet> output = vtkDataSet::SafeDownCast(reader->GetOutputDataObject(0));
  return output;
}

template<typename Reader>
vtkSmartPointer<vtkDataSet> readXml(const std::string& path)
{
  vtkNew<Reader> reader;
  if (reader->CanReadFile(path.c_str()) == 0)
    return nullptr;
  reader->SetFileName(path.c_str());
  return runReader(reader);
}

vtkSmartPointer<vtkDataSet> readLegacy(const std::string& path)
{
  vtkNew<vtkDataSetReader> reader;
  reader->SetFileName(path.c_str());
  reader->ReadAllScalarsOn();
  reader->ReadAllVectorsOn();
  reader->ReadAllNormalsOn();
  reader->ReadAllTensorsOn();
  reader->ReadAllColorScalarsOn();
  reader->ReadAllTCoordsOn();
  reader->ReadAllFieldsOn();
  if (reader->OpenVTKFile() == 0 || reader->ReadHeader() == 0)
  {
    reader->CloseVTKFile();
    return nullptr;
  }
  reader->CloseVTKFile();
  return runReader(reader);
}

vtkSmartPointer<vtkDataSet> readStl(const std::string& path)
{
  vtkNew<vtkSTLReader> reader;
  reader->SetFileName(path.c_str());
  auto output = runReader(reader);
  // an unreadable file gives an empty surface rather than an error
  if (output && output->GetNumberOfPoints() == 0)
    return nullptr;
  return output;
}

template<typename Reader>
vtkSmartPointer<vtkDataSet> readImage(const std::string& path)
{
  vtkNew<Reader> reader;
  if (reader->CanReadFile(path.c_str()) == 0)
    return nullptr;
  reader->SetFileName(path.c_str());
  return runReader(reader);
}

/** Readers give 64-bit cell connectivity; ids that fit in 32 bits take half the memory there. */
void compactCellStorage(vtkDataSet* dataSet)
{
  const auto compact = [](vtkCellArray* cells)
  {
    if (cells != nullptr && cells->IsStorage64Bit() && cells->CanConvertTo32BitStorage())
      cells->ConvertTo32BitStorage();
  };
  if (auto* poly = vtkPolyData::SafeDownCast(dataSet))
  {
    for (vtkCellArray* cells :
         { poly->GetVerts(), poly->GetLines(), poly->GetPolys(), poly->GetStrips() })
      compact(cells);
  }
  else if (auto* grid = vtkUnstructuredGrid::SafeDownCast(dataSet))
    compact(grid->GetCells());
}
} // namespace

const QStringList& DataSetSuffixes()
{
  static const QStringList suffixes = { "vti", "vtr", "vts", "vtu", "vtp", "vtk", "stl" };
  return suffixes;
}

const QStringList& ImageSuffixes()
{
  static const QStringList suffixes = { "jpeg", "jpg", "png", "tif", "tiff", "bmp" };
  return suffixes;
}

vtkSmartPointer<vtkDataSet> ReadDataSetFile(const QString& filePath, bool isImage)
{
  const QFileInfo info(filePath);
  if (!info.isFile())
    return nullptr;
  const QString suffix = info.suffix().toLower();
  const std::string path = filePath.toStdString();
  vtkSmartPointer<vtkDataSet> result;
  if (isImage)
  {
    if (suffix == "jpeg" || suffix == "jpg")
      result = readImage<vtkJPEGReader>(path);
    else if (suffix == "png")
      result = readImage<vtkPNGReader>(path);
    else if (suffix == "tif" || suffix == "tiff")
      result = readImage<vtkTIFFReader>(path);
    else if (suffix == "bmp")
      result = readImage<vtkBMPReader>(path);
  }
  else if (suffix == "vti")
    result = readXml<vtkXMLImageDataReader>(path);
  else if (suffix == "vtr")
    result = readXml<vtkXMLRectilinearGridReader>(path);
  else if (suffix == "vts")
    result = readXml<vtkXMLStructuredGridReader>(path);
  else if (suffix == "vtu")
    result = readXml<vtkXMLUnstructuredGridReader>(path);
  else if (suffix == "vtp")
    result = readXml<vtkXMLPolyDataReader>(path);
  else if (suffix == "vtk")
    result = readLegacy(path);
  else if (suffix == "stl")
    result = readStl(path);

  if (result)
  {
    result->SetObjectName(info.completeBaseName().toStdString());
    compactCellStorage(result);
  }
  return result;
}
} // namespace KXVtk::utils
