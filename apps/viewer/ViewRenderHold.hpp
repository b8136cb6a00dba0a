#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPair>
#include <QtCore/QPointer>

class VXVisualizationWidget;
class vtkObject;

/**
 * Holds back the frames of every render view of the application while the
 * window is put together (shown, sized, filled with data, coloured, framed):
 * a view asked to draw in that time draws nothing and paints nothing, so that
 * none of those frames costs a full render of a large scene nobody sees. On
 * release the views draw again: a capture draws the first frame, or each view
 * asks for one. A batch run lets each view draw in full only the frame its
 * capture reads: the frame that puts the view back on screen after the
 * capture is for nobody either, and leaves the scene out.
 */
class ViewRenderHold : public QObject
{
public:
  /** Holds every render view that exists or is shown from now on. */
  ViewRenderHold();
  /** Lets the views draw again (without asking them to). */
  ~ViewRenderHold() override;

  /** Lets every held view draw again; with @p drawNow each asks for one frame. */
  void release(bool drawNow);
  /** Lets every held view draw its next frame in full; the frames after it leave the scene out
   * until the release. */
  void allowOneFrame();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void hold(VXVisualizationWidget* view);
  void stopDrawing(VXVisualizationWidget* view);
  void letDraw(VXVisualizationWidget* view);
  void onFrameEnd(vtkObject* caller, unsigned long event, void* callData);

  QList<QPointer<VXVisualizationWidget>> m_Held;
  /** Views allowed one frame, with the tag of the observer that holds them again after it. */
  QList<QPair<QPointer<VXVisualizationWidget>, unsigned long>> m_OneFrame;
  /** Views whose scene renderer was switched off after their one frame. */
  QList<QPointer<VXVisualizationWidget>> m_SceneLeftOut;
  bool m_Holding = true;
};
