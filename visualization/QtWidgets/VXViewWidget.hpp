#pragma once

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"

class QGraphicsBlurEffect;
class QGraphicsOpacityEffect;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

/**
 * The render view frame of the module's split grid: a strip with the status
 * text and the split horizontal, split vertical and close buttons above one
 * VXVisualizationWidget, and a split number ("Split View %1") that an overlay
 * can show over the blurred view so the user can tell the views apart.
 *
 * Split numbers: the first view is 1; each clone takes s_NextSplitViewId and
 * advances it, so s_NextSplitViewId is always the number the next split gets.
 * A grid that loads views moves it past the largest number it loaded.
 */
class KXVTKLIB_EXPORT VXViewWidget : public VXAbstractViewWidget
{
  Q_OBJECT

public:
  static constexpr const char* k_SplitViewIndexKey = "split_view_index";
  /** The split number the next clone takes. */
  static int s_NextSplitViewId;

  explicit VXViewWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
  /** A view that starts with @p other's camera and centre of rotation; it keeps split number 1
   * until set. */
  explicit VXViewWidget(const VXViewWidget& other);
  VXViewWidget& operator=(const VXViewWidget&) = delete;
  ~VXViewWidget() override;

  /** A copy for a split, numbered with s_NextSplitViewId (which then advances). */
  VXAbstractViewWidget* clone() override;
  /** A fresh view with the same parent and window flags: own camera, split number 1. */
  VXAbstractViewWidget* newInstance() override;
  void setupView() override;
  void setSplitId(int id) override;
  int getSplitId() const override { return m_SplitId; }
  /** Shows the split number over the view (the view blurred) or hides it. */
  void setSplitIdOverlayHintVisibility(bool visible) override;

  /**
   * Turns the linking of data views across frames on or off: while image slice
   * data views of several views follow each other, the strip shows a link mark.
   */
  virtual void setLinkingDataViews(bool isLinking);
  bool isLinkingDataViews() const { return m_LinkingDataViews; }

  QLabel* statusLabel() const { return m_Form.statusLabel; }
  /** The link mark of the strip; null until the views first link. */
  QLabel* linkIndicator() const { return m_LinkIndicator; }
  QPushButton* splitHorizontalButton() const { return m_Form.splitHorizontalButton; }
  QPushButton* splitVerticalButton() const { return m_Form.splitVerticalButton; }
  QPushButton* closeButton() const { return m_Form.closeButton; }
  QLabel* overlayHintLabel() const { return m_MoveChartOverlayHint; }
  QLabel* overlayBackgroundLabel() const { return m_MoveChartOverlayBackground; }
  QGraphicsBlurEffect* viewBlurEffect() const { return m_BlurEffect; }

public Q_SLOTS:
  void splitHorizontally();
  void splitVertically();
  void closeView();
  /** The frame's keys and "split_view_index". */
  void saveState(nlohmann::json& output) override;
  /** Reads the frame's keys; "split_view_index" goes through setSplitId. */
  void loadState(nlohmann::json input) override;
  /** Shows @p status in the strip, and as its tooltip. */
  void updateStatusMessage(QString status) override;
  /** Enables the close button, with a tooltip that says why when it is off. */
  void updateClosable() override;

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  /** The strip and the layout around the render widget. */
  struct Form
  {
    QVBoxLayout* mainLayout = nullptr;
    QWidget* buttonRow = nullptr;
    QHBoxLayout* buttonLayout = nullptr;
    QLabel* statusLabel = nullptr;
    QPushButton* splitHorizontalButton = nullptr;
    QPushButton* splitVerticalButton = nullptr;
    QPushButton* closeButton = nullptr;
  };

  void setupForm();
  void setupOverlay();
  void setupGui();
  void connectSlots();

  Form m_Form;
  int m_SplitId = 1;
  QLabel* m_MoveChartOverlayHint = nullptr;
  QLabel* m_MoveChartOverlayBackground = nullptr;
  QGraphicsBlurEffect* m_BlurEffect = nullptr;
  QGraphicsOpacityEffect* m_OpacityEffect = nullptr;
  bool m_LinkingDataViews = false;
  /** The link mark in the strip, shown while image slices are linked between views. */
  QLabel* m_LinkIndicator = nullptr;
};
