#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QString>
#include <QtWidgets/QFrame>

class VXVisualizationWidget;

/**
 * The frame of one render view: everything outside the render views names a
 * view by this class. It holds the render widget, the block-render gate and
 * the active flag (the "Active" property the style sheet highlights).
 *
 * A frame lives in a VXViewGridWidget, which it asks for splits and its own
 * closing through signals; a split's new frame comes from clone(). Tree items
 * that show in a frame hear viewWidgetCreated and copy themselves into the
 * new frame.
 */
class KXVTKLIB_EXPORT VXAbstractViewWidget : public QFrame
{
  Q_OBJECT
  Q_PROPERTY(bool Active READ isActive WRITE setActive)

public:
  static constexpr const char* k_BlockRenderKey = "block_render";
  static constexpr const char* k_ActiveViewKey = "active_view";

  explicit VXAbstractViewWidget(QWidget* parent = nullptr,
                                Qt::WindowFlags flags = Qt::WindowFlags());
  ~VXAbstractViewWidget() override;

  virtual bool isActive() const { return m_Active; }
  /** Stores the flag and re-polishes, so the style sheet's rule on Active applies at once. */
  virtual void setActive(bool active);
  /** A new view that copies this one (camera included) for a split. */
  virtual VXAbstractViewWidget* clone() = 0;
  /** A fresh view of the same kind, without a copy of the camera. */
  virtual VXAbstractViewWidget* newInstance() = 0;
  /** Creates the render widget if there is none, wires it to this frame and puts it in the layout.
   */
  virtual void setupView();
  /** The number that tells split views apart; this frame has none and ignores it. */
  virtual void setSplitId(int id);
  virtual int getSplitId() const;
  /** Shows or hides the "which view is which" overlay; this frame has none. */
  virtual void setSplitIdOverlayHintVisibility(bool visible);

  VXVisualizationWidget* getVisualizationWidget() const { return m_VisualizationWidget; }
  bool isClosable() const { return m_Closable; }
  /** Stores whether the view may close and shows it through updateClosable. */
  void setClosable(bool closable);
  bool isRenderBlocked() const { return m_BlockRender; }

Q_SIGNALS:
  void markActive(QWidget* self);
  void requestSplitHorizontally(QWidget* self);
  void requestSplitVertically(QWidget* self);
  void requestClose(QWidget* self);
  void viewWidgetCreated(VXAbstractViewWidget* sourceViewWidget,
                         VXAbstractViewWidget* splitViewWidget);
  void closingView();

public Q_SLOTS:
  void notifyClosingView();
  void notifyViewWidgetCreated(VXAbstractViewWidget* splitView);
  /** Asks the render widget for a frame, unless rendering is blocked. */
  void renderView();
  /** Fits the camera to the scene, unless rendering is blocked. */
  void resetCamera();
  /** Gives the view its own camera back, unless rendering is blocked. */
  void unlinkCamera();
  /** A frame and a camera fit, unless rendering is blocked. */
  void updateScene();
  /** Blocks or unblocks rendering; a blocked view's renderer draws nothing whatever path asks it.
   */
  void setBlockRender(bool block);
  /** Lets the axes grid follow new data, in the linked views too. */
  void onPipelineOutputReloaded();
  /** A click in the render view: this frame becomes active and says so with markActive. */
  virtual void mousePressed();
  /** A status text of the render widget; this frame shows none. */
  virtual void updateStatusMessage(QString status);
  /** Writes "block_render", "active_view", then the render widget's keys. */
  virtual void saveState(nlohmann::json& output);
  /** Reads the keys of saveState; a key of the wrong type throws nlohmann's type_error. */
  virtual void loadState(nlohmann::json input);
  /** Shows the closable flag; this frame has nothing to show. */
  virtual void updateClosable();

protected:
  VXVisualizationWidget* m_VisualizationWidget = nullptr;
  bool m_Closable = false;
  bool m_BlockRender = false;
  bool m_Active = false;
};
