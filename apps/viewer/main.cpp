// kxvtk-viewer: shows data files and state files in split 3D views, or renders
// them to a PNG / saves their state without a window.
//
//   kxvtk-viewer [--state FILE] [--save-state FILE] [--screenshot OUT.png] [--size WxH]
//                [--representation NAME] [--color-by ARRAY] [--filter SPEC]... [--slice DIR:N]
//                [--no-edges] [--print-frames] [--quad-view]
//                [--quad-state RECORD.json] [--save-quad-state OUT.json] FILE...
#include "ViewFrameCounter.hpp"
#include "ViewerApplication.hpp"

#include <utils/GuiProcess.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  QApplication::setApplicationName("kxvtk-viewer");

  QCommandLineParser parser;
  parser.setApplicationDescription("Shows data files in split 3D views, or renders them to a PNG.");
  parser.addHelpOption();
  const QCommandLineOption state("state", "Load this state file (.vlxstate) after the files.",
                                 "FILE");
  const QCommandLineOption saveState("save-state",
                                     "After loading, save the state to FILE and exit.", "FILE");
  const QCommandLineOption screenshot("screenshot", "Render all views once to OUT.png and exit.",
                                      "OUT.png");
  const QCommandLineOption size("size", "Size of the render area, e.g. 800x600.", "WxH");
  const QCommandLineOption representation(
    "representation", "Data view for every data set: Outline, Points, Wireframe, Surface, ...",
    "NAME");
  const QCommandLineOption colorBy("color-by", "Colour by this point or cell array.", "ARRAY");
  const QCommandLineOption filter(
    "filter",
    "Add a visual filter under every data set; repeat to chain, each under the one before: "
    "Clip[:x|y|z] (plane through the centre), Clip:box[:SCALE] (keeps a box of SCALE times "
    "the data about its centre, 0.5 if not given), Slice[:x|y|z], Threshold:ARRAY:MIN:MAX. "
    "Only the end of the chain is shown.",
    "SPEC");
  const QCommandLineOption slice(
    "slice",
    "Image slice to show: DIR:N, DIR one of XY, YZ, XZ (with --representation ImageSlice).",
    "DIR:N");
  const QCommandLineOption noEdges("no-edges", "Draw surfaces without their cell edges.");
  const QCommandLineOption printFrames(
    "print-frames", "Before exiting, print how many frames each view drew (to stderr).");
  const QCommandLineOption quadView(
    "quad-view", "Open the first image geometry of the files in the quad view window; with "
                 "--screenshot, the picture holds its four panes, 2 by 2, of --size in all.");
  const QCommandLineOption quadState(
    "quad-state", "With --quad-view: apply this quad view record (JSON) once the files are open.",
    "RECORD.json");
  const QCommandLineOption saveQuadState(
    "save-quad-state", "With --quad-view: write the quad view's record (JSON) to OUT and exit.",
    "OUT.json");
  parser.addOptions({ state, saveState, screenshot, size, representation, colorBy, filter, slice,
                      noEdges, printFrames, quadView, quadState, saveQuadState });
  parser.addPositionalArgument("FILE", "Data files (.voxelia, VTK files, images).", "[FILE...]");
  parser.process(app);

  ViewerOptions options;
  options.files = parser.positionalArguments();
  options.stateFile = parser.value(state);
  options.saveStatePath = parser.value(saveState);
  options.screenshotPath = parser.value(screenshot);
  options.representation = parser.value(representation);
  options.colorBy = parser.value(colorBy);
  options.filters = parser.values(filter);
  options.slice = parser.value(slice);
  options.hideEdges = parser.isSet(noEdges);
  options.quadView = parser.isSet(quadView);
  options.quadStateFile = parser.value(quadState);
  options.saveQuadStatePath = parser.value(saveQuadState);
  if (!options.quadView && (parser.isSet(quadState) || parser.isSet(saveQuadState)))
  {
    std::fprintf(stderr, "kxvtk-viewer: --quad-state and --save-quad-state need --quad-view\n");
    return 2;
  }
  if (parser.isSet(size))
  {
    const QStringList dims = parser.value(size).split('x');
    bool okWidth = false;
    bool okHeight = false;
    if (dims.size() == 2)
      options.size = QSize(dims[0].toInt(&okWidth), dims[1].toInt(&okHeight));
    if (!okWidth || !okHeight || options.size.width() <= 0 || options.size.height() <= 0)
    {
      std::fprintf(stderr, "kxvtk-viewer: invalid --size '%s', expected WxH\n",
                   qPrintable(parser.value(size)));
      return 2;
    }
    options.sizeGiven = true;
  }
  else if (options.isBatch())
  {
    options.size = QSize(800, 600);
  }
  if (options.isBatch() && options.files.isEmpty() && options.stateFile.isEmpty())
  {
    std::fprintf(stderr, "kxvtk-viewer: no file given\n%s", qPrintable(parser.helpText()));
    return 2;
  }

  std::unique_ptr<ViewFrameCounter> frames;
  if (parser.isSet(printFrames))
    frames = std::make_unique<ViewFrameCounter>();
  const auto reportFrames = [&frames]()
  {
    if (frames != nullptr)
      std::fprintf(stderr, "%s\n", qPrintable(frames->summary()));
  };
  ViewerApplication viewer(options);
  if (!viewer.load())
    return 1;
  if (options.isBatch())
  {
    if (!options.saveStatePath.isEmpty() && !viewer.saveState())
      return 1;
    if (!options.saveQuadStatePath.isEmpty() && !viewer.saveQuadState())
      return 1;
    if (!options.screenshotPath.isEmpty() && !viewer.saveScreenshot())
      return 1;
    reportFrames();
    return 0;
  }
  viewer.showWindow();
  QObject::connect(&app, &QCoreApplication::aboutToQuit, reportFrames);
  return QApplication::exec();
}
