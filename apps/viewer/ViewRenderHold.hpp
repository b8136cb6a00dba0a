#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>

class VXVisualizationWidget;

/**
 * Holds back the frames of every render view of the application while the
 * window is put together (shown, sized, filled with data, coloured, framed):
 * a view asked to draw in that time draws nothing and paints nothing, so that
 * none of those frames costs a full render of a large scene nobody sees. On
 * release the views draw again: a capture draws the first frame, or each view
 * asks for one.
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

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void hold(VXVisualizationWidget* view);
  void stopDrawing(VXVisualizationWidget* view);

  QList<QPointer<VXVisualizationWidget>> m_Held;
  bool m_Holding = true;
};
