// Image capture, screenshot and background actions, and the pick text format.
#include "RenderTestUtils.hpp"

#include "visualization/QtWidgets/VXScreenshotOptionsDialog.hpp"
#include "visualization/QtWidgets/VXViewActionsController.hpp"
#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"
#include "visualization/QtWidgets/VXPickerCallback.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/KXPreferences.hpp>

#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkPlaneSource.h>
#include <vtkPointData.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtGui/QAction>

using rendertest::EventCounter;
using rendertest::pump;

namespace
{
class Capture : public rendertest::ViewTest
{
protected:
  VXViewActionsController* controller() const { return m_View->getViewActionsController(); }
  void TearDown() override
  {
    VXUserPrompt::resetHandlers();
    rendertest::ViewTest::TearDown();
  }

  /** A flat green plane covering the upper half of a camera looking down -Z at the origin. */
  void addUpperHalfPlane()
  {
    vtkNew<vtkPlaneSource> plane;
    plane->SetOrigin(-10, 0, 0);
    plane->SetPoint1(10, 0, 0);
    plane->SetPoint2(-10, 10, 0);
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputConnection(plane->GetOutputPort());
    m_Plane = vtkSmartPointer<vtkActor>::New();
    m_Plane->SetMapper(mapper);
    m_Plane->GetProperty()->SetColor(0, 1, 0);
    m_Plane->GetProperty()->SetAmbient(1.0);
    m_Plane->GetProperty()->SetDiffuse(0.0);
    m_Plane->GetProperty()->SetSpecular(0.0);
    m_View->addActor(m_Plane);
    pump();
    vtkCamera* camera = m_View->getRenderer()->GetActiveCamera();
    camera->SetParallelProjection(true);
    camera->SetFocalPoint(0, 0, 0);
    camera->SetPosition(0, 0, 10);
    camera->SetViewUp(0, 1, 0);
    camera->SetParallelScale(1.0);
    m_View->getRenderer()->ResetCameraClippingRange();
  }

  vtkSmartPointer<vtkActor> m_Plane;
};

/** Records what the capture sees from inside the frame it draws. */
struct CaptureObserver
{
  bool toolbarVisible = true;
  int outlineLayer = -1;
  int preserve = -1;
  int frames = 0;
};
} // namespace

TEST_F(Capture, ImageIsTopRowFirstOnTheGivenBackgroundOrTransparent)
{
  addUpperHalfPlane();
  const QImage image = m_View->captureViewImage(false, QColor(255, 0, 0));
  ASSERT_FALSE(image.isNull());
  EXPECT_EQ(image.format(), QImage::Format_RGB888);
  const qreal ratio = m_View->devicePixelRatioF();
  EXPECT_EQ(image.width(), qRound(300 * ratio));
  EXPECT_EQ(image.height(), qRound(300 * ratio));
  const QColor top = image.pixelColor(image.width() / 2, image.height() / 4);
  const QColor bottom = image.pixelColor(image.width() / 2, image.height() * 3 / 4);
  EXPECT_EQ(top, QColor(0, 255, 0));
  EXPECT_EQ(bottom, QColor(255, 0, 0));

  // the view keeps its own background
  const QColor background = KXPreferences::getDefaultRenderWindowBackground();
  double rgb[3];
  m_View->getRenderer()->GetBackground(rgb);
  EXPECT_NEAR(rgb[0], background.redF(), 1e-6);

  // a transparent image has an alpha channel
  const QImage transparent = m_View->captureViewImage(true, QColor());
  ASSERT_FALSE(transparent.isNull());
  EXPECT_EQ(transparent.format(), QImage::Format_RGBA8888);
  EXPECT_EQ(transparent.width(), qRound(300 * ratio));
}

TEST_F(Capture, HooksHideTheToolbarAndPutOutlinesOnLayerZero)
{
  CaptureObserver seen;
  vtkNew<vtkCallbackCommand> command;
  struct Context
  {
    CaptureObserver* seen;
    VXVisualizationWidget* view;
  } context{ &seen, m_View.get() };
  command->SetClientData(&context);
  command->SetCallback(
    [](vtkObject*, unsigned long, void* clientData, void*)
    {
      auto* c = static_cast<Context*>(clientData);
      // only the first frame of the capture is the one captured
      if (c->seen->frames++ > 0)
        return;
      c->seen->toolbarVisible = c->view->getToolbar()->isVisible();
      c->seen->outlineLayer = c->view->getOutlineRenderer()->GetLayer();
      c->seen->preserve = c->view->getOutlineRenderer()->GetPreserveColorBuffer();
    });
  m_View->getOutlineRenderer()->SetPreserveColorBuffer(true);
  const unsigned long tag = m_View->renderWindow()->AddObserver(vtkCommand::StartEvent, command);
  const QImage image = m_View->captureViewImage(false, QColor());
  m_View->renderWindow()->RemoveObserver(tag);

  ASSERT_FALSE(image.isNull());
  EXPECT_GE(seen.frames, 2);
  EXPECT_FALSE(seen.toolbarVisible);
  EXPECT_EQ(seen.outlineLayer, 0);
  EXPECT_EQ(seen.preserve, 0);
  // all restored afterwards
  EXPECT_TRUE(m_View->getToolbar()->isVisible());
  EXPECT_EQ(m_View->getOutlineRenderer()->GetLayer(), 1);
  EXPECT_TRUE(m_View->getOutlineRenderer()->GetPreserveColorBuffer());
}

TEST_F(Capture, SaveScreenshotWritesTheChosenFile)
{
  const QString folder = QStringLiteral(KXVTK_TEST_TMP_DIR);
  QDir().mkpath(folder);
  const QString fileName = folder + QStringLiteral("/render_widget_screenshot.png");
  QFile::remove(fileName);
  QString askedTitle;
  QString askedFilter;
  VXUserPrompt::setSaveFileHandler(
    [&](const QString& title, const QString& filter)
    {
      askedTitle = title;
      askedFilter = filter;
      return fileName;
    });
  QColor offeredColor;
  QString colorTitle;
  VXUserPrompt::setColorHandler(
    [&](const QColor&, const QString& title)
    {
      colorTitle = title;
      return QColor(0, 0, 255);
    });
  // the options dialog is answered as a user would: a click on its colour button, then OK
  VXUserPrompt::setDialogHandler(
    [&](QDialog& dialog)
    {
      auto* options = qobject_cast<VXScreenshotOptionsDialog*>(&dialog);
      if (options == nullptr)
        return int(QDialog::Rejected);
      offeredColor = options->backgroundColor();
      QTest::mouseClick(options->colorButton(), Qt::LeftButton);
      return int(QDialog::Accepted);
    });
  QSignalSpy output(m_View.get(), &VXVisualizationWidget::printOutput);
  m_View->setRenderWindowBackgroundColor(QColor(255, 255, 0));
  controller()->getSaveScreenshotAction()->trigger();

  EXPECT_EQ(askedTitle, QStringLiteral("Save Screenshot"));
  EXPECT_EQ(askedFilter,
            QStringLiteral("PNG Image (*.png);;JPEG Image (*.jpg *.jpeg);;Bitmap Image (*.bmp)"));
  EXPECT_EQ(offeredColor, QColor(255, 255, 0));
  EXPECT_EQ(colorTitle, QStringLiteral("Select Background Color"));
  EXPECT_EQ(output.count(), 0);
  QImage written(fileName);
  ASSERT_FALSE(written.isNull());
  EXPECT_EQ(written.pixelColor(written.width() / 2, written.height() / 2), QColor(0, 0, 255));
  QFile::remove(fileName);
}

TEST_F(Capture, UnwritableScreenshotIsReportedAndCancelledDialogsWriteNothing)
{
  const QString fileName = QStringLiteral("/nonexistent-folder-of-kxvtk/shot.png");
  VXUserPrompt::setSaveFileHandler([&](const QString&, const QString&) { return fileName; });
  VXUserPrompt::setDialogHandler([](QDialog&) { return int(QDialog::Accepted); });
  QSignalSpy output(m_View.get(), &VXVisualizationWidget::printOutput);
  controller()->saveScreenshot();
  ASSERT_EQ(output.count(), 1);
  EXPECT_EQ(
    output.at(0).at(0).toString(),
    QStringLiteral("Failed to write screenshot to '/nonexistent-folder-of-kxvtk/shot.png'."));

  // cancelled dialogs write nothing: no file asks no options, rejected options write none
  output.clear();
  int optionsAsked = 0;
  VXUserPrompt::setSaveFileHandler([](const QString&, const QString&) { return QString(); });
  VXUserPrompt::setDialogHandler(
    [&](QDialog&)
    {
      ++optionsAsked;
      return int(QDialog::Rejected);
    });
  controller()->saveScreenshot();
  EXPECT_EQ(optionsAsked, 0);

  const QString cancelled = QStringLiteral(KXVTK_TEST_TMP_DIR "/cancelled_shot.png");
  QFile::remove(cancelled);
  VXUserPrompt::setSaveFileHandler([&](const QString&, const QString&) { return cancelled; });
  controller()->saveScreenshot();
  EXPECT_EQ(optionsAsked, 1);
  EXPECT_FALSE(QFileInfo::exists(cancelled));
  EXPECT_EQ(output.count(), 0);
}

TEST_F(Capture, ChangeBackgroundColourAsksAndColoursBothRenderersAndLoadedComponentsAreClamped)
{
  QString askedTitle;
  VXUserPrompt::setColorHandler(
    [&](const QColor&, const QString& title)
    {
      askedTitle = title;
      return QColor(0, 0, 255);
    });
  EventCounter frames(m_View->renderWindow(), vtkCommand::StartEvent);
  controller()->getChangeBackgroundColorAction()->trigger();
  EXPECT_EQ(askedTitle, QStringLiteral("Select Background Color"));
  double scene[3];
  double outline[3];
  m_View->getRenderer()->GetBackground(scene);
  m_View->getOutlineRenderer()->GetBackground(outline);
  EXPECT_DOUBLE_EQ(scene[2], 1.0);
  EXPECT_DOUBLE_EQ(scene[0], 0.0);
  EXPECT_DOUBLE_EQ(outline[2], 1.0);
  EXPECT_GE(frames.count(), 1);

  // a cancelled dialog changes nothing
  VXUserPrompt::setColorHandler([](const QColor&, const QString&) { return QColor(); });
  controller()->changeBackgroundColor();
  m_View->getRenderer()->GetBackground(scene);
  EXPECT_DOUBLE_EQ(scene[2], 1.0);

  controller()->getRestoreDefaultBackgroundColorAction()->trigger();
  m_View->getRenderer()->GetBackground(scene);
  EXPECT_NEAR(scene[0], KXPreferences::getDefaultRenderWindowBackground().redF(), 1e-6);

  // loaded components are clamped with a message
  QSignalSpy output(m_View.get(), &VXVisualizationWidget::printOutput);
  controller()->setBackgroundColorComponents({ 1.5, 0.25, -0.5 });
  ASSERT_EQ(output.count(), 2);
  EXPECT_EQ(output.at(0).at(0).toString(),
            QStringLiteral("Background color component 1.5 out of range; clamped to [0, 1]."));
  EXPECT_EQ(output.at(1).at(0).toString(),
            QStringLiteral("Background color component -0.5 out of range; clamped to [0, 1]."));
  m_View->getRenderer()->GetBackground(scene);
  EXPECT_DOUBLE_EQ(scene[0], 1.0);
  // QColor keeps 16 bits a channel
  EXPECT_NEAR(scene[1], 0.25, 1e-4);
  EXPECT_DOUBLE_EQ(scene[2], 0.0);
}

TEST(ScreenshotOptionsDialog, GivesTheFlagAndColour)
{
  VXScreenshotOptionsDialog dialog(QColor(10, 20, 30));
  EXPECT_FALSE(dialog.transparentBackground());
  EXPECT_EQ(dialog.backgroundColor(), QColor(10, 20, 30));
  dialog.setTransparentBackground(true);
  EXPECT_TRUE(dialog.transparentBackground());
  EXPECT_FALSE(dialog.colorButton()->isEnabled());
}

TEST(PickText, PointValuesListIdsCoordsThenArrays)
{
  vtkNew<vtkPointData> data;
  vtkNew<vtkDoubleArray> vectors;
  vectors->SetName("Velocity");
  vectors->SetNumberOfComponents(3);
  vectors->InsertNextTuple3(0.5, 1, 2);
  vectors->InsertNextTuple3(3, 4, 5.25);
  vtkNew<vtkIntArray> original;
  original->SetName("vtkOriginalPointIds");
  original->InsertNextValue(40);
  original->InsertNextValue(41);
  vtkNew<vtkIntArray> shortArray;
  shortArray->SetName("Phase");
  shortArray->InsertNextValue(7);
  data->AddArray(vectors);
  data->AddArray(original);
  data->AddArray(shortArray);

  const std::string text =
    VXPickerCallback::printDataValues(data, 1, "Point", "", "(1, 2, 3)", "\n");
  EXPECT_EQ(text, "Unnamed Geometry\n"
                  "    Point Id: 1\n"
                  "    vtkOriginalPointIds: 41\n"
                  "    Coords: (1, 2, 3)\n"
                  "    Velocity[0]: 3\n"
                  "    Velocity[1]: 4\n"
                  "    Velocity[2]: 5.25\n"
                  "    Phase: Idx = 1 - Not Valid Max = 0\n");
  EXPECT_EQ(VXPickerCallback::printDataValues(data, -1, "Cell", "Grains", "", "\n"), "Idx = -1");
}
