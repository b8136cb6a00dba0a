#pragma once

#include "ViewerMainWindow.hpp"
#include "ViewerOptions.hpp"

#include <QtCore/QPointer>
#include <QtCore/QStringList>

#include <memory>

class QImage;
class ViewRenderHold;
class VXQuadViewWindow;

/**
 * Runs the viewer's command line: opens the files and the state file in the
 * main window, then either leaves the window to the user or, in a batch run,
 * saves the state and/or a screenshot of all views and quits.
 */
class ViewerApplication
{
public:
  explicit ViewerApplication(ViewerOptions options);
  ~ViewerApplication();

  /** Loads every file and the state file; false (with the reason on stderr) when one can't be
   * loaded. */
  bool load();
  /** Writes the state file asked for; false on failure. */
  bool saveState();
  /** Captures all views (a batch run draws nothing before) and writes the PNG; false on failure.
   */
  bool saveScreenshot();
  /** Writes the quad view's record to the --save-quad-state path. */
  bool saveQuadState();
  /** Shows the window; a size given on the command line is the size of the render area. Each
   * view draws its first frame once the window is laid out. */
  void showWindow();
  /** Gives the render area the requested size (the pipeline browser keeps its own width). */
  void fitViewsToRequestedSize();
  ViewerMainWindow* window() const { return m_Window.get(); }

  /** One --filter value, read. */
  struct FilterRequest
  {
    /** "VXFClip", "VXFSlice" or "VXFThreshold". */
    QString typeName;
    /** Plane normal axis (0 x, 1 y, 2 z) of a plane clip or a slice. */
    int axis = 0;
    /** A box clip: the box about the centre of the data, each side SCALE of the data's. */
    bool box = false;
    double boxScale = 0.5;
    QString array;
    double minimum = 0.0;
    double maximum = 0.0;
  };
  /** Reads a --filter value; false with the reason in @p error when it is not one. */
  static bool ParseFilter(const QString& text, FilterRequest* request, QString* error);

private:
  bool applyRepresentation();
  /** Gives every data source the data view asked for, replacing the default where it differs. */
  bool applyRequestedDataView();
  /** Turns the cell edges of every data view off. */
  void hideEdges();
  bool applyColoring();
  /** Adds the --filter chain under every data set and applies it; the data sets' own data views
   * are hidden so that the filtered result shows. */
  bool applyFilters();
  /** Shows the slice of --slice in every image slice data view, the camera facing it. */
  bool applySlice();
  bool openQuadView();
  bool saveQuadViewScreenshot();
  /** Writes the picture to the --screenshot path; false (and a message) when it can't. */
  bool writeScreenshot(const QImage& image) const;
  /** Points every view's camera obliquely at the whole scene. */
  void frameViews();

  ViewerOptions m_Options;
  /** Keeps the views from drawing while the window is put together. */
  std::unique_ptr<ViewRenderHold> m_Hold;
  std::unique_ptr<ViewerMainWindow> m_Window;
  QStringList m_Errors;
  QPointer<VXQuadViewWindow> m_QuadViewWindow;
};
