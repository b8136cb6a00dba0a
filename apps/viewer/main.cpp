// kxvtk-viewer: shows data files in a render view, or renders them to a PNG.
//
//   kxvtk-viewer [--screenshot OUT.png] [--size WxH] [--representation NAME] [--color-by ARRAY] FILE...
#include "ViewerApplication.hpp"

#include <utils/GuiProcess.hpp>

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
  KXVtk::utils::PrepareGuiProcess();
  QApplication app(argc, argv);
  QApplication::setApplicationName("kxvtk-viewer");

  QCommandLineParser parser;
  parser.setApplicationDescription("Shows data files in a 3D view, or renders them to a PNG.");
  parser.addHelpOption();
  const QCommandLineOption screenshot("screenshot", "Render once to OUT.png and exit.", "OUT.png");
  const QCommandLineOption size("size", "Image or window size, e.g. 800x600.", "WxH", "800x600");
  const QCommandLineOption representation("representation", "Data view for every data set: Outline, Points, Wireframe, Surface, ...",
                                          "NAME");
  const QCommandLineOption colorBy("color-by", "Colour by this point or cell array.", "ARRAY");
  parser.addOptions({screenshot, size, representation, colorBy});
  parser.addPositionalArgument("FILE", "Data files (.voxelia, VTK files, images).", "FILE...");
  parser.process(app);

  ViewerOptions options;
  options.files = parser.positionalArguments();
  options.screenshotPath = parser.value(screenshot);
  options.representation = parser.value(representation);
  options.colorBy = parser.value(colorBy);
  const QStringList dims = parser.value(size).split('x');
  bool okWidth = false;
  bool okHeight = false;
  if(dims.size() == 2)
    options.size = QSize(dims[0].toInt(&okWidth), dims[1].toInt(&okHeight));
  if(!okWidth || !okHeight || options.size.width() <= 0 || options.size.height() <= 0)
  {
    std::fprintf(stderr, "kxvtk-viewer: invalid --size '%s', expected WxH\n", qPrintable(parser.value(size)));
    return 2;
  }
  if(options.files.isEmpty())
  {
    std::fprintf(stderr, "kxvtk-viewer: no file given\n%s", qPrintable(parser.helpText()));
    return 2;
  }

  ViewerApplication viewer(options);
  if(!viewer.load())
    return 1;
  if(!options.screenshotPath.isEmpty())
    return viewer.saveScreenshot() ? 0 : 1;
  viewer.view()->show();
  return QApplication::exec();
}
