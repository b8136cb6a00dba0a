// Pick texts of a real image file shown as a surface and as a slice, picked by keys and hover.
#include "RenderTestUtils.hpp"

#include "TestSupport.hpp"
#include "utils/DataSetReaders.hpp"
#include "utils/PipelineUtils.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"
#include "visualization/VXDataSource.hpp"

#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkFloatArray.h>
#include <vtkGeometryFilter.h>
#include <vtkImageData.h>
#include <vtkImageSlice.h>
#include <vtkImageSliceMapper.h>
#include <vtkIntArray.h>
#include <vtkPointData.h>
#include <vtkRenderWindow.h>
#include <vtkXMLImageDataWriter.h>

#include <QtWidgets/QToolTip>

#include <array>

using rendertest::displayOf;
using rendertest::key;
using rendertest::pump;

namespace
{
// 4 x 5 x 6 samples one unit apart: point p has "Density" 1000 + p, cell c has "Phase" 2 c
constexpr int k_Dims[3] = { 4, 5, 6 };

std::filesystem::path writeGrainMap(const kxtest::TempDir& dir)
{
  vtkNew<vtkImageData> image;
  image->SetDimensions(k_Dims[0], k_Dims[1], k_Dims[2]);
  vtkNew<vtkFloatArray> density;
  density->SetName("Density");
  for (vtkIdType p = 0; p < image->GetNumberOfPoints(); ++p)
    density->InsertNextValue(1000.0f + static_cast<float>(p));
  image->GetPointData()->SetScalars(density); // what a slice shows
  vtkNew<vtkIntArray> phase;
  phase->SetName("Phase");
  for (vtkIdType c = 0; c < image->GetNumberOfCells(); ++c)
    phase->InsertNextValue(static_cast<int>(2 * c));
  image->GetCellData()->AddArray(phase);
  const auto path = dir / "GrainMap.vti";
  vtkNew<vtkXMLImageDataWriter> writer;
  writer->SetInputData(image);
  writer->SetFileName(path.string().c_str());
  EXPECT_EQ(writer->Write(), 1);
  return path;
}

class Picking : public rendertest::ViewTest
{
protected:
  void SetUp() override
  {
    ViewTest::SetUp();
    m_Source.setDataSet(
      KXVtk::utils::ReadDataSetFile(QString::fromStdString(writeGrainMap(m_Dir).string())));
    ASSERT_NE(m_Source.getOutput(), nullptr);
  }
  /** Shows the image's outer surface, as a surface data view does. */
  void showSurface()
  {
    m_Surface->SetInputConnection(m_Source.outputPort());
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputConnection(m_Surface->GetOutputPort());
    m_Actor->SetMapper(mapper);
    m_View->addActor(m_Actor);
    lookDownZ();
  }
  /** A parallel camera above the image looking down -Z. */
  void lookDownZ()
  {
    pump();
    vtkCamera* camera = m_View->getRenderer()->GetActiveCamera();
    camera->ParallelProjectionOn();
    camera->SetFocalPoint(1.5, 2, 2.5);
    camera->SetPosition(1.5, 2, 30);
    camera->SetViewUp(0, 1, 0);
    camera->SetParallelScale(4);
    m_View->getRenderer()->ResetCameraClippingRange();
    m_View->renderWindow()->Render();
  }
  /** Holds key 1 with the cursor over the world point (x, y, z) and returns the pick text. */
  std::string keyPickAt(double x, double y, double z)
  {
    const auto at = displayOf(m_View->getRenderer(), x, y, z);
    key(m_View->getRenderWindowInteractor(), '1', true, at[0], at[1]);
    const QString text = m_View->getPickerCallback()->getPickedDataText();
    key(m_View->getRenderWindowInteractor(), '1', false, at[0], at[1]);
    return text.toStdString();
  }
  /** Rests the mouse over the world point (x, y, z) until the hover pick has run. */
  QString hoverAt(double x, double y, double z)
  {
    const auto at = displayOf(m_View->getRenderer(), x, y, z);
    m_View->getPickerCallback()->setPickedDataText(QString());
    QTest::mouseMove(m_View.get(), QPoint(at[0], m_View->height() - 1 - at[1]));
    for (int i = 0; i < 40 && m_View->getPickerCallback()->getPickedDataText().isEmpty(); ++i)
      QTest::qWait(50);
    return m_View->getPickerCallback()->getPickedDataText();
  }

  kxtest::TempDir m_Dir;
  VXDataSource m_Source;
  vtkNew<vtkGeometryFilter> m_Surface;
  vtkNew<vtkActor> m_Actor;
};
} // namespace

TEST(OriginalPipelineInput, IsTheDataSetAtTheStartOfTheChain)
{
  vtkNew<vtkImageData> image;
  image->SetDimensions(2, 2, 2);
  VXDataSource source;
  source.setDataSet(image);
  vtkNew<vtkGeometryFilter> surface;
  surface->SetInputConnection(source.outputPort());
  vtkNew<vtkGeometryFilter> again;
  again->SetInputConnection(surface->GetOutputPort());
  vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputConnection(again->GetOutputPort());
  EXPECT_EQ(KXVtk::utils::FindOriginalPipelineInput(mapper->GetInputAlgorithm()), image.Get());
  EXPECT_EQ(KXVtk::utils::FindOriginalPipelineInput(mapper), image.Get());
  EXPECT_EQ(KXVtk::utils::FindOriginalPipelineInput(nullptr), nullptr);
  vtkNew<vtkPolyData> direct;
  vtkNew<vtkPolyDataMapper> directMapper;
  directMapper->SetInputData(direct);
  EXPECT_EQ(KXVtk::utils::FindOriginalPipelineInput(directMapper->GetInputAlgorithm()),
            direct.Get());
}

TEST_F(Picking, SurfacePointAndCellTextsNameTheSourceAndUseTheImagesIdsAndValues)
{
  showSurface();
  // the sample (2, 3, 5) on the top face: image point 2 + 3 * 4 + 5 * 20 = 114
  EXPECT_EQ(keyPickAt(2, 3, 5), std::string("GrainMap\n"
                                            "    Point Id: 114\n"
                                            "    Coords: (2, 3, 5)\n"
                                            "    Density: 1114\n"));
  int index[3];
  m_View->getPickerCallback()->getLastImageDataIndex(index);
  EXPECT_EQ((std::array<int, 3>{ index[0], index[1], index[2] }), (std::array<int, 3>{ 2, 3, 5 }));
  EXPECT_EQ(m_View->getPickerCallback()->getLastImageData(), m_Source.getOutput());

  // the top face of voxel (2, 3, 4): image cell 2 + 3 * 3 + 4 * 12 = 59, found by resting the mouse
  m_View->toggleHoverCells(true);
  const QStringList lines = hoverAt(2.5, 3.5, 5).split('\n');
  ASSERT_GE(lines.size(), 4) << lines.join('\n').toStdString();
  EXPECT_EQ(lines[0], QStringLiteral("GrainMap"));
  EXPECT_EQ(lines[1], QStringLiteral("    Cell Id: 59"));
  EXPECT_TRUE(lines[2].startsWith(QStringLiteral("    Coords: (")));
  EXPECT_EQ(lines[3], QStringLiteral("    Phase: 118"));
  EXPECT_TRUE(m_View->getPickerCallback()->getCellHighlightActor()->GetVisibility());
  m_View->toggleHoverCells(false);
}

TEST_F(Picking, SlicePicksStayOnTheDisplayedSlice)
{
  vtkNew<vtkImageSliceMapper> mapper;
  mapper->SetInputConnection(m_Source.outputPort());
  mapper->SetOrientationToZ();
  mapper->SetSliceNumber(2);
  vtkNew<vtkImageSlice> slice;
  slice->SetMapper(mapper);
  m_View->addActor(slice);
  lookDownZ();

  // sample (1, 2) of slice 2: image point 1 + 2 * 4 + 2 * 20 = 49, though samples of the slices
  // above lie on the same line of sight
  EXPECT_EQ(keyPickAt(1, 2, 2), std::string("GrainMap\n"
                                            "    Point Id: 49\n"
                                            "    Coords: (1, 2, 2)\n"
                                            "    Density: 1049\n"));
  int index[3];
  m_View->getPickerCallback()->getLastImageDataIndex(index);
  EXPECT_EQ((std::array<int, 3>{ index[0], index[1], index[2] }), (std::array<int, 3>{ 1, 2, 2 }));

  // a cell on the slice: cell (1, 2, 2) = 1 + 2 * 3 + 2 * 12 = 31
  m_View->toggleHoverCells(true);
  const QStringList lines = hoverAt(1.5, 2.5, 2).split('\n');
  ASSERT_GE(lines.size(), 4) << lines.join('\n').toStdString();
  EXPECT_EQ(lines[1], QStringLiteral("    Cell Id: 31"));
  EXPECT_TRUE(lines[2].startsWith(QStringLiteral("    Coords: (")));
  EXPECT_EQ(lines[3], QStringLiteral("    Phase: 62"));
  m_View->toggleHoverCells(false);
}
