#pragma once

#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/VXPipeline.hpp>

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

/** What the viewer was asked to do, from its command line. */
struct ViewerOptions
{
  QStringList files;
  QString screenshotPath;
  QSize size = QSize(800, 600);
  QString representation;
  QString colorBy;
};

/** The render view frame of the viewer: one view, no splits. */
class ViewerViewFrame : public VXAbstractViewWidget
{
  Q_OBJECT

public:
  using VXAbstractViewWidget::VXAbstractViewWidget;
  VXAbstractViewWidget* clone() override { return new ViewerViewFrame(); }
  VXAbstractViewWidget* newInstance() override { return new ViewerViewFrame(); }
};

/**
 * Loads files into a pipeline shown in one render view; either keeps the
 * window open or renders once to a PNG and quits.
 */
class ViewerApplication
{
public:
  explicit ViewerApplication(ViewerOptions options);
  ~ViewerApplication();

  /** Loads every file; false (with the reason on stderr) when one can't be loaded. */
  bool load();
  /** Renders the scene and writes the PNG; false on failure. */
  bool saveScreenshot();
  ViewerViewFrame* view() const { return m_View.get(); }

private:
  bool applyRepresentation();
  bool applyColoring();

  ViewerOptions m_Options;
  std::unique_ptr<ViewerViewFrame> m_View;
  std::unique_ptr<VXPipeline> m_Pipeline;
  QStringList m_Errors;
};
