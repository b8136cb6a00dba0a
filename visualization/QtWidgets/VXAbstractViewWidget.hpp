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
 */
class KXVTKLIB_EXPORT VXAbstractViewWidget : public QFrame
{
  Q_OBJECT
  Q_PROPERTY(bool Active READ isActive WRITE setActive)

public:
  explicit VXAbstractViewWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
  ~VXAbstractViewWidget() override;

  virtual bool isActive() const { return m_Active; }
  virtual void setActive(bool active);
  /** A new view that copies this one (camera included) for a split. */
  virtual VXAbstractViewWidget* clone() = 0;
  /** A fresh view of the same kind, without a copy of the camera. */
  virtual VXAbstractViewWidget* newInstance() = 0;
  /** Creates the render widget if there is none. */
  virtual void setupView();
  virtual void setSplitId(int id) { m_SplitId = id; }
  virtual int getSplitId() const { return m_SplitId; }

  VXVisualizationWidget* getVisualizationWidget() const { return m_VisualizationWidget; }
  bool isClosable() const { return m_Closable; }
  void setClosable(bool closable) { m_Closable = closable; }
  bool isRenderBlocked() const { return m_BlockRender; }

Q_SIGNALS:
  void markActive(QWidget* self);
  void requestSplitHorizontally(QWidget* self);
  void requestSplitVertically(QWidget* self);
  void requestClose(QWidget* self);
  void viewWidgetCreated(VXAbstractViewWidget* sourceViewWidget, VXAbstractViewWidget* splitViewWidget);
  void closingView();

public Q_SLOTS:
  void notifyClosingView();
  void notifyViewWidgetCreated(VXAbstractViewWidget* splitView);
  /** Asks the render widget for a frame, unless rendering is blocked. */
  void renderView();
  /** Blocks or unblocks rendering; a blocked view's renderer draws nothing whatever path asks it. */
  void setBlockRender(bool block);

protected:
  VXVisualizationWidget* m_VisualizationWidget = nullptr;
  bool m_Closable = false;
  bool m_BlockRender = false;
  bool m_Active = false;
  int m_SplitId = 1;
};
