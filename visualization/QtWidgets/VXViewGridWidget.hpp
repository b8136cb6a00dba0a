#pragma once

#include "KXVtkLib_export.h"

#include <KXComponents/AbstractKXGridSplitterWidget.hpp>

#include <nlohmann/json.hpp>

#include <QtCore/QList>

class VXAbstractViewWidget;

/**
 * The module's render area: VXViewWidget frames in a grid of rows and
 * columns. A frame's split buttons add a column beside it (horizontal) or a
 * row below it (vertical); the new frame is the source's clone and every tree
 * item shown in the source copies itself into it. The last frame can't close.
 * Exactly one frame is active; activeViewChanged tells the module which.
 *
 * State: the grid's own format (version, shape, sizes, cells), each cell's
 * frame state under "view_state" in its widget state. An older format without
 * a version, a binary tree of splits, still loads.
 */
class KXVTKLIB_EXPORT VXViewGridWidget : public AbstractKXGridSplitterWidget
{
  Q_OBJECT

public:
  static constexpr const char* k_ViewStateKey = "view_state";

  /** A grid with one view. */
  explicit VXViewGridWidget(QWidget* parent = nullptr);
  ~VXViewGridWidget() override;

  VXAbstractViewWidget* activeView() const;
  /** The views in row-major order of their top-left cell. */
  QList<VXAbstractViewWidget*> allViews() const;
  int viewCount() const;
  /** Back to one view, the active one. */
  void reset();

  void saveState(nlohmann::json& output) const;
  /**
   * Replaces the views by those of @p input; new views come from @p prototype's
   * newInstance (from the first view when null). Input without a grid version
   * is read as the older split tree. Wrong JSON types throw nlohmann's
   * type_error; a grid shape below 1 x 1 or without a list of cells leaves the
   * grid as it was.
   */
  void loadState(const nlohmann::json& input, VXAbstractViewWidget* prototype = nullptr);

  /** Whether any view shares its camera with another. */
  bool anyViewLinked() const;
  /** Links every view's camera to the active view's (the first's when none is active). */
  void linkAllViews();
  /** Gives every view its own camera back. */
  void unlinkAllViews();

Q_SIGNALS:
  void activeViewChanged(VXAbstractViewWidget* view);
  void viewCreated(VXAbstractViewWidget* view);
  void viewClosed(VXAbstractViewWidget* view);

protected:
  QWidget* createSplitWidget(QWidget* source) override;
  void saveWidgetState(QWidget* widget, nlohmann::json& widgetState) const override;
  void loadWidgetState(QWidget* widget, const nlohmann::json& widgetState) override;
  void setWidgetClosable(QWidget* widget, bool closable) override;
  void onWidgetCreated(QWidget* source, QWidget* created) override;
  void onWidgetClosing(QWidget* widget) override;
  void onActiveWidgetChanged(QWidget* previous, QWidget* current) override;
  void connectWidget(QWidget* widget) override;

private:
  /** Reads the split tree of the older format into a grid of one view upward. */
  void loadLegacyState(const nlohmann::json& input);
  /** Loads @p node into @p view, splitting it for inner nodes; returns the largest split number
   * seen. */
  int traverseLegacyNode(VXAbstractViewWidget* view, const nlohmann::json& node);
  /** Moves the next split number past @p largest unless it is beyond already. */
  static void advanceNextSplitViewId(int largest);
};
