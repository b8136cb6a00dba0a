// The viewer as a user and a script run it: the data view the command line asks
// for on every kind of data set, requests it refuses, batch runs that answer
// every question themselves, the first data view the window picks as a host,
// and the icons of the render views.
#include "../dataviews/DataViewTestSupport.hpp"
#include "../module/ModuleTestSupport.hpp"

#include "HostDataSupport.hpp"
#include "ViewerApplication.hpp"
#include "ViewerMainWindow.hpp"

#include <visualization/QtWidgets/VXVisualizationToolbarWidget.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXOutlineRepPimpl.hpp>
#include <visualization/VXPointsRepPimpl.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <KXComponents/KXStyle.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <vtkCellArray.h>
#include <vtkCellData.h>
#include <vtkCellTypeSource.h>
#include <vtkDoubleArray.h>
#include <vtkImageData.h>
#include <vtkIntArray.h>
#include <vtkPlaneSource.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkProperty.h>
#include <vtkActor.h>
#include <vtkStripper.h>
#include <vtkStructuredGrid.h>
#include <vtkTriangleFilter.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLImageDataWriter.h>
#include <vtkXMLPolyDataWriter.h>
#include <vtkXMLStructuredGridWriter.h>
#include <vtkXMLUnstructuredGridWriter.h>

#include <nlohmann/json.hpp>

#include <QtCore/QDirIterator>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtGui/QImage>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QToolButton>

#include <cmath>
#include <tuple>

namespace
{
using moduletest::pump;
using moduletest::qpath;

struct ViewerRun
{
  int exitCode = -1;
  QString output;
};

/** Runs the viewer program with its own settings folder; a run that hangs is killed and fails. */
ViewerRun runViewer(const QStringList& arguments, const kxtest::TempDir& dir)
{
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_CONFIG_HOME", qpath(dir / "config"));
  process.setProcessEnvironment(environment);
  process.start(QStringLiteral(KXVTK_VIEWER_EXECUTABLE), arguments);
  ViewerRun run;
  if (!process.waitForFinished(60000))
  {
    process.kill();
    process.waitForFinished();
    run.output = "the viewer did not finish within 60 s";
    return run;
  }
  run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
  run.output =
    QString::fromLocal8Bit(process.readAllStandardOutput() + process.readAllStandardError());
  return run;
}

/**
 * The share of a picture's pixels with a clear hue, below the view's title bar and left of the
 * orientation marker (the two things in a view that are coloured without any data). The
 * background and an outline box are grey.
 */
double colouredShare(const QImage& picture)
{
  const QImage image = picture.convertToFormat(QImage::Format_RGB32);
  const QRect measured(0, image.height() / 5, image.width() * 3 / 5, image.height() * 4 / 5);
  int coloured = 0;
  for (int y = measured.top(); y <= measured.bottom(); ++y)
    for (int x = measured.left(); x <= measured.right(); ++x)
    {
      const QRgb p = image.pixel(x, y);
      const int spread =
        std::max({ qRed(p), qGreen(p), qBlue(p) }) - std::min({ qRed(p), qGreen(p), qBlue(p) });
      coloured += spread > 60 ? 1 : 0;
    }
  return static_cast<double>(coloured) / (measured.width() * measured.height());
}

/** A point array "Height" from each point's coordinates, so that colours vary across the data. */
void addHeight(vtkDataSet* data)
{
  vtkNew<vtkDoubleArray> height;
  height->SetName("Height");
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i)
  {
    double point[3];
    data->GetPoint(i, point);
    height->InsertNextValue(point[0] + point[1] + point[2]);
  }
  data->GetPointData()->AddArray(height);
}

/** Writes the data set with a VTK XML writer, in the test's folder. */
template<typename Writer>
QString writeData(vtkDataObject* data, const kxtest::TempDir& dir, const std::string& name)
{
  const QString path = qpath(dir / name);
  vtkNew<Writer> writer;
  writer->SetInputData(data);
  writer->SetFileName(path.toLocal8Bit().constData());
  EXPECT_EQ(writer->Write(), 1);
  return path;
}

/** A bent block of hexahedral cells on a curvilinear grid. */
QString writeStructuredGrid(const kxtest::TempDir& dir)
{
  vtkNew<vtkStructuredGrid> grid;
  grid->SetDimensions(9, 7, 5);
  vtkNew<vtkPoints> points;
  for (int k = 0; k < 5; ++k)
    for (int j = 0; j < 7; ++j)
      for (int i = 0; i < 9; ++i)
        points->InsertNextPoint(i, j + 0.4 * std::sin(i * 0.7), k);
  grid->SetPoints(points);
  addHeight(grid);
  return writeData<vtkXMLStructuredGridWriter>(grid, dir, "bent.vts");
}

/** A triangulated plane, as triangles or (@p strips) as the triangle strips a stripper makes. */
QString writeTrianglePlane(const kxtest::TempDir& dir, bool strips)
{
  vtkNew<vtkPlaneSource> plane;
  plane->SetResolution(12, 12);
  vtkNew<vtkTriangleFilter> triangles;
  triangles->SetInputConnection(plane->GetOutputPort());
  vtkNew<vtkStripper> stripper;
  stripper->SetInputConnection(triangles->GetOutputPort());
  vtkAlgorithm* last = strips ? static_cast<vtkAlgorithm*>(stripper) : triangles;
  last->Update();
  vtkPolyData* surface = vtkPolyData::SafeDownCast(last->GetOutputDataObject(0));
  EXPECT_EQ(surface->GetNumberOfStrips() > 0, strips);
  EXPECT_EQ(surface->GetNumberOfPolys() > 0, !strips);
  addHeight(surface);
  return writeData<vtkXMLPolyDataWriter>(surface, dir, strips ? "strips.vtp" : "triangles.vtp");
}

/** A mesh of wedges: neither tetrahedra nor hexahedra. */
QString writeWedgeMesh(const kxtest::TempDir& dir)
{
  vtkNew<vtkCellTypeSource> source;
  source->SetCellType(VTK_WEDGE);
  source->SetBlocksDimensions(4, 4, 4);
  source->Update();
  vtkUnstructuredGrid* mesh = source->GetOutput();
  EXPECT_EQ(mesh->GetCellType(0), VTK_WEDGE);
  addHeight(mesh);
  return writeData<vtkXMLUnstructuredGridWriter>(mesh, dir, "wedges.vtu");
}

/** An image of @p side points a side with a cell array "Grain" of @p grains distinct values. */
QString writeImage(const kxtest::TempDir& dir, const std::string& name, int side, int grains)
{
  vtkNew<vtkImageData> image;
  image->SetDimensions(side, side, side);
  vtkNew<vtkIntArray> grain;
  grain->SetName("Grain");
  for (vtkIdType i = 0; i < image->GetNumberOfCells(); ++i)
    grain->InsertNextValue(static_cast<int>(i % grains));
  image->GetCellData()->AddArray(grain);
  return writeData<vtkXMLImageDataWriter>(image, dir, name);
}

/** The types of the data views under a data source. */
QList<VXRepresentation::Type> dataViewTypes(VXDataSource* source)
{
  QList<VXRepresentation::Type> types;
  for (QObject* child : source->children())
  {
    if (auto* representation = qobject_cast<VXRepresentation*>(child))
      types << representation->type();
  }
  return types;
}

QImage render16(const QIcon& icon)
{
  return icon.pixmap(QSize(16, 16)).toImage().convertToFormat(QImage::Format_ARGB32);
}

class ViewerCommandLine : public ::testing::Test
{
protected:
  kxtest::TempDir m_Dir;
};
} // namespace

TEST_F(ViewerCommandLine, ChosenDataViewIsDrawnOnEveryKindOfDataSet)
{
  const QStringList files = { writeStructuredGrid(m_Dir), writeTrianglePlane(m_Dir, true),
                              writeWedgeMesh(m_Dir) };
  for (const QString& file : files)
  {
    SCOPED_TRACE(file.toStdString());
    const QString shot = file + ".png";
    const ViewerRun run = runViewer({ "--screenshot", shot, "--size", "320x240", "--representation",
                                      "Surface", "--color-by", "Height", file },
                                    m_Dir);
    ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
    const QImage picture(shot);
    ASSERT_EQ(picture.size(), QSize(320, 240));
    // a coloured surface fills a good part of the picture; an outline box is a few grey lines
    EXPECT_GT(colouredShare(picture), 0.03);
  }

  // an image as a volume, coloured by its array
  const QString volumeShot = qpath(m_Dir / "volume.png");
  ViewerRun run = runViewer({ "--screenshot", volumeShot, "--size", "320x240", "--representation",
                              "Volume", "--color-by", "probability_density",
                              QStringLiteral(KXVTK_DATA_DIR "/hydrogen.vti") },
                            m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  EXPECT_GT(colouredShare(QImage(volumeShot)), 0.03);

  // arrows along the grid's momentum, coloured by its density
  const QString glyphShot = qpath(m_Dir / "glyphs.png");
  run = runViewer({ "--screenshot", glyphShot, "--size", "320x240", "--representation", "Glyph",
                    "--color-by", "Density", QStringLiteral(KXVTK_DATA_DIR "/StructuredGrid.vts") },
                  m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  EXPECT_GT(colouredShare(QImage(glyphShot)), 0.03);

  // requests that cannot be honoured fail with the reason, and write nothing
  const QString never = qpath(m_Dir / "never.png");
  run = runViewer({ "--screenshot", never, "--representation", "Volume", files[0] }, m_Dir);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.output.contains("cannot show 'bent' as Volume: it is not image data"))
    << run.output.toStdString();
  run = runViewer(
    { "--screenshot", never, "--representation", "Outline", "--color-by", "Height", files[1] },
    m_Dir);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.output.contains("cannot colour by 'Height'")) << run.output.toStdString();
  EXPECT_FALSE(QFileInfo::exists(never));
}

TEST_F(ViewerCommandLine, QuadViewScreenshotHoldsItsFourPanesTwoByTwo)
{
  const QString sample = qpath(kxtest::writeSample(m_Dir, "grains.voxelia", 16));
  const QString shot = qpath(m_Dir / "quad.png");
  ViewerRun run =
    runViewer({ "--quad-view", "--screenshot", shot, "--size", "400x300", sample }, m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  const QImage picture = QImage(shot).convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(picture.size(), QSize(400, 300));
  // each pane is a quarter and each drew the grains in colour
  for (const QRect quarter : { QRect(0, 0, 200, 150), QRect(200, 0, 200, 150),
                               QRect(0, 150, 200, 150), QRect(200, 150, 200, 150) })
  {
    int coloured = 0;
    for (int y = quarter.top(); y <= quarter.bottom(); ++y)
      for (int x = quarter.left(); x <= quarter.right(); ++x)
      {
        const QRgb p = picture.pixel(x, y);
        coloured +=
          std::max({ qRed(p), qGreen(p), qBlue(p) }) - std::min({ qRed(p), qGreen(p), qBlue(p) }) >
              60
            ? 1
            : 0;
      }
    EXPECT_GT(coloured, quarter.width() * quarter.height() / 20)
      << quarter.x() << "," << quarter.y();
  }

  // a surface has no image geometry to show
  const QString never = qpath(m_Dir / "never.png");
  run =
    runViewer({ "--quad-view", "--screenshot", never, writeTrianglePlane(m_Dir, false) }, m_Dir);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.output.contains("--quad-view: no image geometry in the files given"))
    << run.output.toStdString();
  EXPECT_FALSE(QFileInfo::exists(never));
}

TEST_F(ViewerCommandLine, QuadViewRecordIsSavedRestoredAndPictured)
{
  const QString sample = qpath(kxtest::writeSample(m_Dir, "grains.voxelia", 16));
  const QString first = qpath(m_Dir / "first.json");
  ViewerRun run = runViewer({ "--quad-view", "--save-quad-state", first, sample }, m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  QFile firstFile(first);
  ASSERT_TRUE(firstFile.open(QIODevice::ReadOnly));
  nlohmann::json record = nlohmann::json::parse(firstFile.readAll().toStdString());
  ASSERT_TRUE(record["geometry_path"].is_string());
  EXPECT_EQ(record["perPaneViewActionState"].size(), 4u);

  // the bottom right pane (YZ) in pure green, as a slab
  record["perPaneViewActionState"][2]["background"] = { 0.0, 1.0, 0.0 };
  record["thick_mode"] = true;
  const QString edited = qpath(m_Dir / "edited.json");
  {
    QFile file(edited);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(record.dump()));
  }
  const QString again = qpath(m_Dir / "again.json");
  const QString shot = qpath(m_Dir / "restored.png");
  run = runViewer({ "--quad-view", "--quad-state", edited, "--save-quad-state", again,
                    "--screenshot", shot, "--size", "400x300", sample },
                  m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  QFile againFile(again);
  ASSERT_TRUE(againFile.open(QIODevice::ReadOnly));
  const nlohmann::json restored = nlohmann::json::parse(againFile.readAll().toStdString());
  EXPECT_EQ(restored["thick_mode"], true);
  EXPECT_EQ(restored["perPaneViewActionState"][2]["background"], nlohmann::json({ 0.0, 1.0, 0.0 }));
  const QImage picture = QImage(shot).convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(picture.size(), QSize(400, 300));
  int green = 0;
  for (int y = 150; y < 300; ++y)
    for (int x = 200; x < 400; ++x)
      green += picture.pixel(x, y) == qRgb(0, 255, 0) ? 1 : 0;
  EXPECT_GT(green, 200 * 150 / 10);
  EXPECT_EQ(picture.pixel(10, 10) == qRgb(0, 255, 0), false);

  // a record for a geometry the viewer did not open
  record["geometry_path"] = "nowhere";
  {
    QFile file(edited);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray::fromStdString(record.dump()));
  }
  run =
    runViewer({ "--quad-view", "--quad-state", edited, "--save-quad-state", again, sample }, m_Dir);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.output.contains(
    "Could not load Quad View state: geometry 'nowhere' was not loaded by any handler."))
    << run.output.toStdString();
}

TEST_F(ViewerCommandLine, BatchRunAnswersTheCategoricalWarningItself)
{
  // settings of the test's own (their folder is the test's folder: made first)
  dataviewtest::ScopedSettings settings;
  // a state whose categorical colouring has more values than the palette has colours
  const QString data = writeImage(m_Dir, "grains.vti", 12, 40);
  const QString state = qpath(m_Dir / "grains.vlxstate");
  {
    dataviewtest::RecordedQuestions questions;
    moduletest::ScriptedDialogs dialogs;
    dialogs.saveAnswer = state;
    ViewerMainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    VXPipeline* pipeline = window.module()->pipeline();
    pipeline->importFile(data);
    pump();
    ASSERT_EQ(pipeline->bridges().size(), 1);
    VXDataSource* source = pipeline->bridges().front()->dataSources().value(0);
    ASSERT_NE(source, nullptr) << window.output()->toPlainText().toStdString();
    ASSERT_EQ(dataViewTypes(source), QList{ VXRepresentation::Surface });
    auto* surface = source->findChild<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_NE(surface, nullptr);
    auto* colours = dynamic_cast<VXPointsRepPimpl*>(surface->activeImplementation());
    ASSERT_NE(colours, nullptr);
    colours->setActiveArray("Grain");
    colours->setInterpretValuesAsCategories(true);
    ASSERT_EQ(questions.asked.size(), 1u);
    window.module()->saveState();
    pump();
    ASSERT_TRUE(QFileInfo::exists(state));
  }

  const QString shot = qpath(m_Dir / "grains.png");
  const ViewerRun run = runViewer({ "--state", state, "--screenshot", shot }, m_Dir);
  ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
  EXPECT_TRUE(run.output.contains("Too many discrete values to determine color map annotations"))
    << run.output.toStdString();
  EXPECT_EQ(QImage(shot).size(), QSize(800, 600));
}

TEST(ViewerWindow, OpensMeshesAndSmallGridsAsSurfacesAndLargeGridsAsOutlines)
{
  dataviewtest::ScopedSettings settings;
  moduletest::ScriptedDialogs dialogs;
  kxtest::TempDir dir;
  const VXRepresentation::Type hexDefault = VXPipeline::getDefaultHexRepType();
  {
    ViewerMainWindow window;
    window.resize(1280, 800);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    pump();
    // the output dock keeps to a few lines: the pipeline browser and its settings get the height
    auto* output = window.findChild<QDockWidget*>("outputDock");
    ASSERT_NE(output, nullptr);
    EXPECT_LT(output->height(), window.height() / 5);
    VXPipeline* pipeline = window.module()->pipeline();
    const std::vector<std::pair<QString, VXRepresentation::Type>> expected = {
      { writeTrianglePlane(dir, false), VXRepresentation::Surface },
      { writeTrianglePlane(dir, true), VXRepresentation::Surface },
      { writeWedgeMesh(dir), VXRepresentation::Surface },
      { writeStructuredGrid(dir), VXRepresentation::Surface },
      { QStringLiteral(KXVTK_DATA_DIR "/Hexahedron.vtu"), VXRepresentation::Surface },
      { writeImage(dir, "small.vti", 20, 5), VXRepresentation::Surface },
      { writeImage(dir, "large.vti", 66, 5), VXRepresentation::Outline },
    };
    for (const auto& [file, type] : expected)
    {
      SCOPED_TRACE(file.toStdString());
      ASSERT_TRUE(QFileInfo::exists(file));
      pipeline->importFile(file);
      pump();
      VXDataSource* source = pipeline->bridges().last()->dataSources().value(0);
      ASSERT_NE(source, nullptr);
      EXPECT_EQ(dataViewTypes(source), QList{ type });
    }
  }
  // the window leaves the pipeline's defaults as it found them
  EXPECT_EQ(VXPipeline::getDefaultHexRepType(), hexDefault);
}

TEST(ViewerWindow, EveryIconTheLibraryAsksForIsDrawnAndTheToolStripShowsIcons)
{
  // the names in the library's sources: theme icons, icon buttons and settings page buttons
  const QRegularExpression asked(
    R"re((?:generateThemeIconFromName\(\s*(?:QStringLiteral\()?|KXIconPushButton\(|addPageButton\(\s*\w+,)\s*"([^"]+)")re");
  QStringList names;
  QDirIterator files(QStringLiteral(KXVTK_SOURCE_DIR "/visualization"), { "*.cpp", "*.hpp" },
                     QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext())
  {
    QFile file(files.next());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    for (const QRegularExpressionMatch& match : asked.globalMatch(text))
      names << match.captured(1);
  }
  names.removeDuplicates();
  EXPECT_TRUE(names.contains("Edit"));
  EXPECT_GE(names.size(), 20);
  const QImage placeholder = render16(KXStyle::fallbackIcon());
  for (const QString& name : names)
  {
    SCOPED_TRACE(name.toStdString());
    EXPECT_TRUE(KXStyle::hasThemeIcon(name));
    const QIcon icon = KXStyle::generateThemeIconFromName(name);
    ASSERT_FALSE(icon.isNull());
    EXPECT_NE(render16(icon), placeholder);
  }

  // the render view's tool strip: icons with tool tips, all different, none the placeholder
  dataviewtest::ScopedSettings settings;
  VXVisualizationWidget view(nullptr, 2);
  view.resize(400, 400);
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  auto* strip = view.findChild<VXVisualizationToolbarWidget*>();
  ASSERT_NE(strip, nullptr);
  const QList<QToolButton*> buttons = strip->findChildren<QToolButton*>();
  EXPECT_EQ(buttons.size(), 13);
  QSet<QByteArray> pictures;
  for (QToolButton* button : buttons)
  {
    SCOPED_TRACE(button->objectName().toStdString());
    EXPECT_EQ(button->toolButtonStyle(), Qt::ToolButtonIconOnly);
    EXPECT_FALSE(button->toolTip().isEmpty());
    ASSERT_FALSE(button->icon().isNull());
    const QImage picture = render16(button->icon());
    EXPECT_NE(picture, placeholder);
    pictures.insert(
      QByteArray(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes()));
  }
  EXPECT_EQ(pictures.size(), buttons.size());
}

TEST(ViewerWindow, SurfacesOpenWithoutCellEdgesUnlessTheUserSavedThem)
{
  dataviewtest::ScopedSettings settings;
  moduletest::ScriptedDialogs dialogs;
  const QString edgesKey = ViewerMainWindow::k_SurfaceEdgesKey;
  // the viewer's own default; a value the user saved; --no-edges over the user's value
  for (const auto& [saved, hide, expected] :
       { std::tuple{ QVariant(), false, false }, std::tuple{ QVariant(true), false, true },
         std::tuple{ QVariant(true), true, false } })
  {
    SCOPED_TRACE(saved.isValid() ? (hide ? "saved on, --no-edges" : "saved on") : "default");
    {
      QtKXSettings user;
      if (saved.isValid())
        user.setValue(edgesKey, saved);
      else
        user.remove(edgesKey);
    }
    ViewerOptions options;
    options.files << QStringLiteral(KXVTK_DATA_DIR "/Hexahedron.vtu");
    options.representation = "Surface";
    options.hideEdges = hide;
    {
      ViewerApplication viewer(options);
      ASSERT_TRUE(viewer.load());
      VXDataSource* source =
        viewer.window()->module()->pipeline()->bridges().front()->dataSources().value(0);
      ASSERT_NE(source, nullptr);
      auto* surface = source->findChild<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly);
      ASSERT_NE(surface, nullptr);
      ASSERT_EQ(surface->type(), VXRepresentation::Surface);
      auto* drawn = dynamic_cast<VXOutlineRepPimpl*>(surface->activeImplementation());
      ASSERT_NE(drawn, nullptr);
      EXPECT_EQ(drawn->edgeVisibility(), expected);
      EXPECT_EQ(drawn->actor()->GetProperty()->GetEdgeVisibility() != 0, expected);
    }
    // the viewer's default went into its settings only where the user had saved nothing
    QtKXSettings after;
    EXPECT_TRUE(after.contains(edgesKey));
    EXPECT_EQ(after.value(edgesKey).toBool(), saved.isValid() && saved.toBool());
  }
}
