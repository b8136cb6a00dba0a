#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

#include <memory>
#include <vector>

class VXVisualizationWidget;

/**
 * Counts the frames every render view of the application draws: from the
 * moment a view is first shown, each render of its window counts one, whatever
 * asked for it (a queued render, a paint after a resize, a capture).
 */
class ViewFrameCounter : public QObject
{
public:
  /** Watches every render view shown from now on, in the whole application. */
  ViewFrameCounter();
  ~ViewFrameCounter() override;

  /** Frames drawn by each view that still exists, in the order the views were first shown. */
  QList<int> frames() const;
  /** Frames drawn by @p view; -1 when it was never shown. */
  int framesOf(const VXVisualizationWidget* view) const;
  /** "frames drawn: N" with one number per view, e.g. "frames drawn: 2 2". */
  QString summary() const;

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  struct Watched;
  void watch(VXVisualizationWidget* view);

  std::vector<std::unique_ptr<Watched>> m_Views;
};
