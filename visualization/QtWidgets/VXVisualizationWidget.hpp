#pragma once

#include "visualization/QtWidgets/VXGLWidget.hpp"

#include <nlohmann/json.hpp>

#include <vtkSmartPointer.h>

#include <QtCore/QMap>
#include <QtCore/QPoint>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <array>
#include <functional>
#include <memory>
#include <set>

class QAction;
class QMenu;
class vtkActor;
class vtkCursor3D;
class vtkHoverWidget;
class vtkObject;
class vtkOrientationMarkerWidget;
class vtkProp;
class vtkRenderer;
class vtkRenderWindowInteractor;
class vtkCamera;
class VXFrameRateCallback;
class VXInteractorStyleCamera;
class VXPickerCallback;
class VXViewActionsController;
class VXViewCubeWidget;
class VXVisualizationToolbarWidget;

/**
 * The widget that owns one view's VTK scene: the scene renderer (layer 0) and
 * the outline renderer (layer 1, selection outlines with a glow pass) on a
 * layered render window, both looking through one camera; the interactor
 * style with its centre of rotation and the cross that marks it; the hover and
 * pick machinery; the camera orientation widget; the tool strip; and the
 * per-view actions (VXViewActionsController). A VXAbstractViewWidget frames
 * one of these and adds the block-render gate.
 *
 * Nobody draws directly: render() only asks for a frame, and any number of
 * requests made in one turn of the event loop give one frame. Camera snaps and
 * rolls draw at once, since the user waits for them.
 */
class KXVTKLIB_EXPORT VXVisualizationWidget : public VXGLWidget
{
  Q_OBJECT

public:
  /** The six axis snaps, named by the axis the viewer looks along. */
  enum class CameraPosition
  {
    XPlus,
    YPlus,
    ZPlus,
    XMinus,
    YMinus,
    ZMinus
  };
  Q_ENUM(CameraPosition)

  /** Shows the context menu @p menu at global position @p globalPos; the default runs QMenu::exec.
   */
  using ContextMenuExecutor = std::function<void(QMenu* menu, const QPoint& globalPos)>;

  /** @p numRenderLayers is the layer count of the render window (frames pass 2). */
  explicit VXVisualizationWidget(QWidget* parent = nullptr, int numRenderLayers = 2);
  ~VXVisualizationWidget() override;

  /** Adds a prop to the scene and recentres the rotation (once for many calls) unless the user
   * picked it. */
  void addActor(vtkProp* prop);
  /** Removes a prop from the scene; recentres like addActor. */
  void removeActor(vtkProp* prop);
  /** Adds a prop to the outline renderer unless it is there already. */
  void addOutline(vtkProp* prop) const;
  /** Removes a prop from the outline renderer if it is there. */
  void removeOutline(vtkProp* prop) const;
  /** Whether the outline renderer holds @p prop. */
  bool hasOutlineActor(vtkProp* prop) const;
  /** Empties the outline renderer. */
  void clearOutlines() const;
  /** Whether @p prop is a visible data view prop of the scene (not the grid or a highlighter). */
  bool isDataViewActor(vtkProp* prop) const;

  vtkRenderer* getRenderer() const;
  /** The renderer of selection outlines (layer 1). */
  vtkRenderer* getOutlineRenderer() const;
  vtkRenderWindowInteractor* getRenderWindowInteractor() const;
  VXInteractorStyleCamera* getInteractorStyle() const { return m_InteractorStyle; }
  VXPickerCallback* getPickerCallback() const;
  /** The camera orientation widget; null after clearRenderWindow. */
  VXViewCubeWidget* getCameraOrientationWidget() const;
  /** The classic annotated cube; null unless initializeOrientationWidget ran. */
  vtkOrientationMarkerWidget* getOrientationWidget() const;
  /** The cross at the centre of rotation. */
  vtkActor* getCenterOfRotationActor() const;
  vtkCursor3D* getCenterOfRotationCursor() const;
  VXVisualizationToolbarWidget* getToolbar() const { return m_Toolbar; }
  VXViewActionsController* getViewActionsController() const { return m_ViewActions.get(); }
  /** The queued frames drawn so far. */
  int frameCount() const { return m_FrameCount; }
  /** Whether a queued frame is outstanding. */
  bool isRenderPending() const { return m_RenderPending != 0; }
  /** Whether the user picked the centre of rotation, which suspends automatic centring. */
  bool isCenterOfRotationLocked() const { return m_CenterOfRotationLocked; }
  /** The style's centre of rotation (the camera focal point without a style). */
  std::array<double, 3> getCenterOfRotation() const;
  int getNumRenderLayers() const { return m_NumRenderLayers; }
  bool ownContextMenu() const { return m_OwnContextMenu; }
  void setOwnContextMenu(bool own) { m_OwnContextMenu = own; }

  /** The views sharing this view's camera, this one included; empty when not linked. */
  const std::set<VXVisualizationWidget*>& getLinkedWidgets() const { return m_LinkedWidgets; }
  bool isLinked() const { return !m_LinkedWidgets.empty(); }
  /** Makes @p other (and its links) share this view's camera and centre of rotation. */
  void linkCameraWith(VXVisualizationWidget* other);
  /** Forgets @p widget as a link partner; a set left with only this view is cleared. */
  void removeLinkedWidget(VXVisualizationWidget* widget);
  /** The view waiting for a partner after "Link Cameras"; null when none. */
  static VXVisualizationWidget* linkingWidget() { return m_LinkingWidget; }

  /** Takes the camera and centre of rotation of @p other (a split clone). */
  void copy(const VXVisualizationWidget* other);
  /** An image of the view; see VXViewActionsController::captureViewImage. */
  QImage captureViewImage(bool transparent, const QColor& background);
  /** Whether a 3D texture of x by y by z fits; @p maxSize receives the limit. */
  bool areDimensionsValid(int x, int y, int z, int& maxSize) const;
  /** Caps the 3D texture size this view accepts below what the GPU reports (0: no cap), e.g. to
   * keep volumes within a memory budget. */
  void setMaximumTextureSize(int size) { m_MaximumTextureSize = size; }
  /** Fits the grid and the centre cross to the visible geometry; with @p propagate the linked views
   * too. */
  void updateGridAxesBounds(bool propagate);
  /** Lets the module say whether any view is linked ("Unlink All Cameras" in the menu). */
  void setAnyViewLinkedQuery(std::function<bool()> query)
  {
    m_AnyViewLinkedQuery = std::move(query);
  }
  /** Replaces how the context menu is shown, e.g. so tests see it without a modal loop. */
  void setContextMenuExecutor(ContextMenuExecutor executor)
  {
    m_ContextMenuExecutor = std::move(executor);
  }

  bool hoverCellsModeOn() const;
  bool hoverPointsModeOn() const;
  bool pickCenterOfRotationModeOn() const;

  /** Focal point and camera distance; four zeros without a renderer. */
  std::array<double, 4> getCameraFocalPointAndDistance() const;
  /** Snaps the camera to look along one axis. */
  void setCameraView(CameraPosition position);
  /** Creates the classic annotated-cube orientation marker (off by default). */
  void initializeOrientationWidget();
  /** The names of the stored camera positions. */
  QStringList customCameraPosPresetNames() const { return m_CameraPresets.keys(); }

  /** A new menu with the view's actions; the caller owns it. */
  virtual QMenu* getContextMenu();

  // cached actions of the context menu, made on first use
  QAction* getShowAllAction();
  QAction* getHideAllAction();
  QAction* getLinkCamerasAction();
  QAction* getLinkAllCamerasAction();
  QAction* getUnlinkCamerasAction();
  QAction* getUnlinkAllCamerasAction();
  QAction* getParallelProjectionAction();
  QAction* getSplitHorizontallyAction();
  QAction* getSplitVerticallyAction();
  QAction* getSaveAllViewsScreenshotAction();
  QAction* getCopyAllViewsToClipboardAction();
  QAction* getEqualizeViewWidthsAction();
  QAction* getEqualizeViewHeightsAction();
  QAction* getSaveScreenshotAction();
  QAction* getCopyScreenshotAction();
  QAction* getChangeBackgroundColorAction();
  QAction* getRestoreDefaultBackgroundColorAction();
  QAction* getGridAxesAction();
  QAction* getEditGridAxesAction();

public Q_SLOTS:
  /** Asks the data views to hide (emits hideAll). */
  void hideAllRepresentations();
  /** Schedules one frame for the next turn of the event loop; repeated calls before it merge. */
  void render();
  /** Fits the camera to the scene and recentres the rotation unless the user picked it. */
  virtual void resetCamera();
  /** Background of both renderers. */
  void setRenderWindowBackgroundColor(QColor color);
  /** Labels of the orientation widgets, six texts for +X, -X, +Y, -Y, +Z, -Z. */
  void setOrientationMarkerText(QStringList faceLabels);
  void camXPlus();
  void camYPlus();
  void camZPlus();
  void camXMinus();
  void camYMinus();
  void camZMinus();
  /** Looks along +Z with image row 0 at the top. */
  void camImageView();
  void rotateCamClockwise();
  void rotateCamCounterClockwise();
  void toggleCenterOfRotationVisibility(bool visible);
  /** Back to automatic centring: the centre of the visible props; with @p shouldLink in linked
   * views too. */
  void resetCenterOfRotation(bool shouldLink = false);
  /** Fits the centre cross to the visible props. */
  void syncCenterOfRotationCursor();
  /** Places the centre cross at the centre of rotation, sized a quarter of the largest extent of @p
   * bounds. */
  void syncCenterOfRotationCursor(std::array<double, 6> bounds);
  /** A click on the data sets the centre of rotation while @p checked. */
  void toggleCenterOfRotationPicking(bool checked);
  /** Removes every prop and the orientation widget. */
  virtual void clearRenderWindow();
  /** Goes back to an own camera; the other views stay linked among themselves. */
  void unlinkCamera();
  void toggleHoverPoints(bool checked);
  void toggleHoverPoints();
  void toggleHoverCells(bool checked);
  void toggleHoverCells();
  void enableDisableHoverFeatures(int allowHover);
  /** Stores the current camera under a new name and returns the name. */
  QString addCustomCameraPosPreset();
  /** Moves the camera to a stored position; unknown names do nothing. */
  void applyCustomCameraPosPreset(QString presetName);
  void saveState(nlohmann::json& output);
  void loadState(nlohmann::json input);

protected Q_SLOTS:
  virtual void showContextMenu(QPoint pos);
  virtual void startLinkCameras();
  virtual void toggleParallelProjection();
  void updateCenterOfRotation(double pickPos[3], bool pick1ModeOn, bool pick2ModeOn,
                              bool shouldLink = false);
  bool event(QEvent* event) override;

Q_SIGNALS:
  void mousePressed();
  void printOutput(QString message);
  void statusMessage(QString message);
  void copyActors(VXVisualizationWidget* widget);
  void showAll();
  void hideAll();
  void actorAdded(vtkProp* prop);
  void actorRemoved(vtkProp* prop);
  void actorVisibilityChanged(vtkProp* prop);
  void pickEvent(double pickPos[3], bool pick1ModeOn, bool pick2ModeOn);
  void doubleClicked(QPoint pos);
  void requestSplitHorizontally();
  void requestSplitVertically();
  void requestEqualizeViewWidths();
  void requestEqualizeViewHeights();
  void requestSaveAllViewsScreenshot();
  void requestCopyAllViewsToClipboard();
  void requestLinkAllCameras();
  void requestUnlinkAllCameras();

protected:
  /** Creates renderers, window, passes, hover, picking, style and the centre cross (once);
   * orientation widget and camera always. */
  virtual void initializeRendererAndAxes();
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  struct CameraPreset
  {
    std::array<double, 3> position;
    std::array<double, 3> focalPoint;
    std::array<double, 3> viewUp;
    double viewAngle;
    double parallelScale;
    bool parallel;
  };

  void setupGui();
  void initializeCameraOrientationWidget();
  void recenterToolbar();
  void renderQueued();
  /** Window start of frame: the outline layer draws only when it has something to show. */
  void onWindowStartRender(vtkObject* caller, unsigned long event, void* callData);
  /** Draws at once through the interactor when window and interactor exist. */
  void renderNow();
  std::array<double, 6> visiblePropBounds() const;
  void placeCamera(double dx, double dy, double dz, double upX, double upY, double upZ);
  QAction* makeAction(QAction*& slot, const QString& text);

  static VXVisualizationWidget* m_LinkingWidget;

  vtkSmartPointer<vtkOrientationMarkerWidget> m_OrientationWidget;
  vtkSmartPointer<vtkActor> m_CenterOfRotationActor;
  vtkSmartPointer<vtkCursor3D> m_CenterOfRotationCursor;
  vtkSmartPointer<vtkRenderer> m_Renderer;
  vtkSmartPointer<vtkRenderer> m_OutlineRenderer;
  vtkSmartPointer<vtkCamera> m_Camera;
  VXInteractorStyleCamera* m_InteractorStyle = nullptr;
  std::set<VXVisualizationWidget*> m_LinkedWidgets;
  std::function<bool()> m_AnyViewLinkedQuery;
  QAction* m_ShowAllAction = nullptr;
  QAction* m_HideAllAction = nullptr;
  QAction* m_LinkCamerasAction = nullptr;
  QAction* m_LinkAllCamerasAction = nullptr;
  QAction* m_UnlinkCamerasAction = nullptr;
  QAction* m_UnlinkAllCamerasAction = nullptr;
  QAction* m_ParallelProjectionAction = nullptr;
  QAction* m_SplitHorizontallyAction = nullptr;
  QAction* m_SplitVerticallyAction = nullptr;
  QAction* m_SaveAllViewsScreenshotAction = nullptr;
  QAction* m_CopyAllViewsToClipboardAction = nullptr;
  QAction* m_EqualizeViewWidthsAction = nullptr;
  QAction* m_EqualizeViewHeightsAction = nullptr;
  bool m_OwnContextMenu = true;
  bool m_CheckContextMenu = false;
  int m_RenderPending = 0;
  int m_MaximumTextureSize = 0;
  bool m_CenterOfRotationLocked = false;
  bool m_SavedPreserveColorBuffer = false;
  bool m_CenterResetPending = false;
  int m_NumRenderLayers = 2;
  vtkSmartPointer<vtkHoverWidget> m_HoverWidget;
  vtkSmartPointer<VXPickerCallback> m_PickerCallback;
  vtkSmartPointer<VXViewCubeWidget> m_CameraOrientationWidget;
  VXVisualizationToolbarWidget* m_Toolbar = nullptr;
  std::unique_ptr<VXViewActionsController> m_ViewActions;

  vtkSmartPointer<VXFrameRateCallback> m_FrameRateCallback;
  ContextMenuExecutor m_ContextMenuExecutor;
  QMap<QString, CameraPreset> m_CameraPresets;
  int m_FrameCount = 0;
  unsigned long m_WindowStartObserver = 0;
};
