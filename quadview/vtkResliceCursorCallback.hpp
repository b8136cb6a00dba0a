#pragma once

#include "KXVtkLib_export.h"

#include <vtkActor2D.h>
#include <vtkCommand.h>
#include <vtkLineSource.h>
#include <vtkPlane.h>
#include <vtkRenderWindow.h>
#include <vtkResliceCursorWidget.h>
#include <vtkSmartPointer.h>
#include <vtkTextActor.h>

#include <array>

class VXQuadView;
class VXResliceImageViewer;
class vtkResliceCursor;
class vtkRenderer;

/**
 * The one observer that keeps the quad view's panes in step with the shared
 * reslice cursor. Every cursor widget and viewer reports here; the callback
 * moves the crosshair lines and edge labels drawn over the slice panes, the
 * quad view's slice planes, outlines and overlays, and renders. During a drag
 * (InteractionEvent) the slow volume pane is left alone until the drag ends.
 */
class KXVTKLIB_EXPORT vtkResliceCursorCallback : public vtkCommand
{
public:
  static vtkResliceCursorCallback* New();
  vtkTypeMacro(vtkResliceCursorCallback, vtkCommand);

  void Execute(vtkObject* caller, unsigned long event, void* data) override;

  /**
   * Moves the crosshair lines to the cursor; returns at once when the cursor's
   * centre and axes are exactly those of the last call.
   */
  void syncCrosshair();
  /** Keeps each pane's edge labels at the ends of its crosshair lines, inside 0.03..0.97. */
  void updateEdgeLabels();
  /**
   * In oblique mode turns every slice pane's camera that no longer looks along its cursor
   * plane's normal to face that plane: centred on the cursor, view up the in-plane cursor
   * axis nearest the old one, distance and parallel scale kept. Returns whether a camera moved.
   */
  bool alignObliqueCameras();
  /** Copies the cursor's planes into the quad view's slice planes. */
  void syncSlicePlanes();
  /** Creates slice pane @p pane's two crosshair lines and four edge labels in @p renderer. */
  void buildPaneOverlay(int pane, vtkRenderer* renderer);
  /** Takes the image bounds the crosshair lines are sized by. */
  void setBounds(const double bounds[6]);
  /** Forgets the last crosshair, so that the next syncCrosshair redraws. */
  void invalidateCache() { m_CacheValid = false; }
  /** Drops every reference to the quad view's objects. */
  void clear();

  vtkSmartPointer<vtkRenderWindow> m_VolumeRenderWindow;
  std::array<vtkSmartPointer<vtkResliceCursorWidget>, 3> m_Widgets;
  std::array<vtkSmartPointer<VXResliceImageViewer>, 3> m_Viewers;
  std::array<vtkSmartPointer<vtkPlane>, 3> m_Planes;
  std::array<vtkSmartPointer<vtkLineSource>, 6> m_LineSources;
  std::array<vtkSmartPointer<vtkActor2D>, 6> m_LineActors;
  std::array<vtkSmartPointer<vtkTextActor>, 12> m_EdgeLabels;
  double m_Bounds[6] = { 0.0, 0.0, 0.0, 0.0, 0.0, 0.0 };
  /** Null after VXQuadView::clearView; Execute then does nothing. */
  VXQuadView* m_QuadView = nullptr;
  bool m_CacheValid = false;
  double m_CachedCenter[3] = { 0.0, 0.0, 0.0 };
  double m_CachedAxes[3][3] = { { 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 } };

protected:
  vtkResliceCursorCallback();
  ~vtkResliceCursorCallback() override;

private:
  vtkResliceCursorCallback(const vtkResliceCursorCallback&) = delete;
  void operator=(const vtkResliceCursorCallback&) = delete;

  vtkResliceCursor* cursor() const;
  void renderWidgets();
};
