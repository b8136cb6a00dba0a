#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

/** What the viewer was asked to do, from its command line. */
struct ViewerOptions
{
  QStringList files;
  QString stateFile;
  QString saveStatePath;
  QString screenshotPath;
  QSize size = QSize(1280, 800);
  bool sizeGiven = false;
  QString representation;
  QString colorBy;
  /**
   * Visual filters, each under the one before, on every data set: "Clip[:x|y|z]",
   * "Clip:box[:SCALE]", "Slice[:x|y|z]", "Threshold:ARRAY:MIN:MAX".
   */
  QStringList filters;
  /** The image slice to show, "DIR:N" with DIR one of XY, YZ, XZ; empty keeps the views' own. */
  QString slice;
  /** Faces without their cell edges (a voxel surface otherwise shows a moire of edges). */
  bool hideEdges = false;
  /** Shows the first image geometry in the quad view window; a screenshot is then its four panes.
   */
  bool quadView = false;
  /** A quad view record (JSON) to apply once the files are open; needs quadView. */
  QString quadStateFile;
  /** Where to write the quad view's record; needs quadView. */
  QString saveQuadStatePath;

  /** Runs that end by themselves answer every question without a dialog. */
  bool isBatch() const
  {
    return !screenshotPath.isEmpty() || !saveStatePath.isEmpty() || !saveQuadStatePath.isEmpty();
  }
};
