#pragma once

#include "KXVtkLib_export.h"

#include "quadview/VXQuadViewControls.hpp"
#include "quadview/annotations/AnnotationId.hpp"
#include "quadview/annotations/SliceGeometry.hpp"

#include <kxcore/ColorPreset.hpp>

#include <vtkSmartPointer.h>

#include <QtCore/QPoint>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include <nlohmann/json.hpp>

#include <array>
#include <memory>
#include <optional>

class QAbstractTableModel;
class QDragEnterEvent;
class QDropEvent;
class QJsonArray;
class QMenu;
class QVTKOpenGLNativeWidget;
class VXDataSource;
class VXLookupTable;
class VXResliceImageViewer;
class VXViewActionsController;
class VXViewCubeWidget;
class vtkActor;
class vtkCornerAnnotation;
class vtkImageData;
class vtkImageSlice;
class vtkPiecewiseFunction;
class vtkRenderWindow;
class vtkRenderer;
class vtkResliceCursorCallback;
class vtkScalarBarWidget;
class vtkTable;
class vtkVolume;

namespace voxelia::quadview::annotations
{
class VXQuadViewAnnotationsController;
class VXQuadViewAnnotationsTableModel;
} // namespace voxelia::quadview::annotations

/**
 * The four pane viewer of one image geometry: three slice panes (YZ, XZ, XY)
 * that share one reslice cursor, and a volume pane with a volume rendering of
 * the same image and the outlines of the three slice planes. Moving the
 * crosshair in any slice pane moves the others, the outlines and the overlays.
 *
 * Two pane numberings exist. The UI pane index counts the widgets: 0 view3D,
 * 1 viewXZ, 2 viewYZ, 3 viewXY. The slice pane index counts the slice panes by
 * their plane normal: 0 viewYZ (X), 1 viewXZ (Y), 2 viewXY (Z). Arrays of four
 * use the first, arrays of three the second.
 *
 * The image shown is never the caller's: cell arrays are shared onto the
 * points of a half voxel shifted image, shrunk only when it exceeds the
 * graphics card's 3D texture limit.
 */
class KXVTKLIB_EXPORT VXQuadView : public QWidget
{
  Q_OBJECT

public:
  using SlicePlane = voxelia::quadview::annotations::SlicePlane;
  using WorldBounds = voxelia::quadview::annotations::WorldBounds;
  using AnnotationId = voxelia::quadview::annotations::AnnotationId;
  using AnnotationsController = voxelia::quadview::annotations::VXQuadViewAnnotationsController;
  using AnnotationsTableModel = voxelia::quadview::annotations::VXQuadViewAnnotationsTableModel;

  /** Pause between two renders, and between two overlay updates, in milliseconds. */
  static constexpr int k_ThrottleMs = 33;
  /** Frames per second asked of the volume pane while the slices step. */
  static constexpr double k_InteractiveVolumeRate = 15.0;
  /** The full-quality volume frame follows this long after the last step. */
  static constexpr int k_StillVolumeDelayMs = 300;
  /** The 3D texture limit assumed when the window cannot tell. */
  static constexpr int k_DefaultTextureLimit = 2048;

  explicit VXQuadView(QWidget* parent = nullptr);
  ~VXQuadView() override;

  /**
   * A new image whose point data are the cell arrays of @p in, shared, not
   * copied: extent 0 to dimension - 2 per axis, same spacing, origin moved by
   * half a voxel. The active scalars follow by name. Null for a null input.
   * An image with point arrays only (values sampled at the points, as in a
   * .vti file) keeps its geometry, and its point arrays are shared instead.
   */
  static vtkSmartPointer<vtkImageData> makeCellCenteredImage(vtkImageData* in);
  /**
   * @p image unchanged when every dimension fits in @p limit; otherwise a copy
   * averaged down by max(1, ceil(dimension / limit)) per axis, all point
   * arrays included.
   */
  static vtkSmartPointer<vtkImageData> shrinkToTextureLimit(vtkImageData* image, int limit);
  /** The volume pane's 3D texture limit, or k_DefaultTextureLimit when unknown. */
  int textureLimit() const;

  /** Shows @p image of @p source, rebuilding every pane. A null image does nothing. */
  void setGeometry(VXDataSource* source, vtkSmartPointer<vtkImageData> image);
  /**
   * Takes new arrays for the image shown: in place (camera, cursor and
   * annotations kept) when the dimensions are the same, otherwise by a rebuild
   * that keeps the settings.
   */
  void reload(vtkImageData* image);
  /** Gives @p image to the shared cursor, the volume mapper and the three slice mappers. */
  void setResliceImageData(vtkImageData* image);
  /** 1 to 1, 2 to 0, 3 to 2, anything else to -1. */
  int slicePaneIdxFromUiPaneIdx(int uiPane) const;
  /** The plane of slice pane @p slicePane; a zero record out of range or before a viewer exists. */
  SlicePlane computeSlicePlaneFor(int slicePane) const;
  /** The bounds of the cursor's image, or zeros. */
  WorldBounds currentWorldBoundsFor(int slicePane);
  /** The slice index of the cursor's centre along the pane's normal axis; 0 when unknown. */
  int currentSliceIndexFor(int slicePane) const;
  /** The point of the pane's slice plane under widget position @p pos, if any. */
  std::optional<std::array<double, 3>> worldFromPaneScreenPos(int slicePane, QPoint pos);
  /** Tells the rulers and marks of the three slice panes that the slices moved. */
  void notifyAnnotationsSliceChanged();
  /**
   * The rulers and marks of slice pane @p slicePane; null before the first image or out of
   * range. Made once, they outlive clearView, which only empties them.
   */
  AnnotationsController* annotationsController(int slicePane) const;
  /** The table of the annotations of all three slice panes; null before the first image. */
  AnnotationsTableModel* annotationsTableModel() const;
  /** Drops a mark on slice pane @p slicePane under widget position @p pos, if on the slice. */
  void addMarkAtPaneLocalPos(int slicePane, QPoint pos);
  /**
   * Places a ruler on slice pane @p slicePane from widget position @p pos to a point a tenth of
   * the shorter in-plane extent of the image away, inside the image where it can be.
   */
  void addRulerAtPaneLocalPos(int slicePane, QPoint pos);
  /** Moves the slice of pane @p slicePane to the slice the annotation @p id shows on. */
  void navigateToAnnotation(int slicePane, AnnotationId id);

  /** Rewrites the overlay text of slice pane @p slicePane. */
  void updateAnnotations(int slicePane);
  /** Rewrites the volume pane's overlay text. */
  void updateVolumeAnnotation();

  /** True from the end of a pane build to clearView. */
  bool isInitialized() const;
  /** The image shown (prepared from the caller's), or null. */
  vtkImageData* getImageData() const;
  /** The pane widget of UI pane index @p uiPane, or null. */
  QVTKOpenGLNativeWidget* getPaneWidget(int uiPane) const;
  /** The viewer of slice pane index @p slicePane, or null. */
  VXResliceImageViewer* getViewer(int slicePane) const;
  /** The slice drawn in thin mode in slice pane @p slicePane, or null. */
  vtkImageSlice* getImageSlice(int slicePane) const;
  /** The outline of slice plane @p slicePane in the volume pane, or null. */
  vtkActor* getPlaneOutlineActor(int slicePane) const;
  /** The overlay of slice pane 0 to 2, or of the volume pane for 3; null otherwise. */
  vtkCornerAnnotation* getCornerAnnotation(int index) const;
  /** The colour legend of slice pane 0 to 2, or of the volume pane for 3; null otherwise. */
  vtkScalarBarWidget* getScalarBarWidget(int index) const;
  /** The view action controller of UI pane index @p uiPane, or null. */
  VXViewActionsController* getViewActionsController(int uiPane) const;
  /** The volume pane's window. */
  vtkRenderWindow* getVolumeRenderWindow() const;
  /** The volume of the volume pane, or null. */
  vtkVolume* getVolume() const;
  /** The view cube of the volume pane, or null. */
  VXViewCubeWidget* getViewCube() const;
  /** The callback that keeps the panes in step, or null. */
  vtkResliceCursorCallback* getResliceCursorCallback() const;

  /** The array shown. */
  QString getActiveArrayName() const;
  /** The point arrays of the image shown, in order. */
  QStringList getAvailableArrayNames() const;
  /** "Scalar" below two components, else "Magnitude" then "Component 0", ... */
  QStringList getComponentNames(const QString& arrayName) const;
  vtkSmartPointer<vtkTable> getHistogram() const;
  QSharedPointer<VXLookupTable> getLookupTable() const;
  vtkSmartPointer<vtkPiecewiseFunction> getOpacityFunction() const;
  /** The finite range of the active array and component; max = min + 1 for a constant array. */
  void getTrueDataRange(double& min, double& max) const;
  /** The live settings record. */
  const VXQuadViewControls& getControls() const;
  /** Moves the opacity points to [min, max], each keeping its relative position. */
  void setOpacityFunctionRange(double min, double max);

  /**
   * The four panes in one 2 by 2 image: volume pane top left, XZ top right,
   * YZ bottom right, XY bottom left. RGBA on transparency when @p transparent,
   * else RGB on @p background (black when invalid). Null if a pane gives none.
   */
  QImage captureAllPanesComposite(bool transparent, const QColor& background);
  /** Puts the composite of all panes on the clipboard. */
  void copyAllPanesScreenshot();
  /** Asks a file name and writes the composite of all panes. */
  void saveAllPanesScreenshot();
  /** Asks a colour and makes it the background of all four panes. */
  void changeAllPanesBackgroundColor();
  /** Puts each pane's default background back. */
  void resetAllPanesBackgroundColor();

  /**
   * Writes the settings record into @p json, with each pane's view state (background, axes
   * grid, camera) and the cursor under "cursor_center" and "cursor_axes" (x, y, z axes).
   */
  void saveState(nlohmann::json& json);
  /**
   * Applies a record saveState wrote. The geometry is asked for with loadGeometryRequested;
   * every problem is reported through printOutput and leaves the view usable. False when the
   * record names no geometry or the geometry was not loaded.
   */
  bool loadState(const nlohmann::json& json);
  /**
   * Rebuilds the saved annotations of slice pane @p slicePane, repairing what can be repaired
   * and reporting it through printOutput.
   */
  void reconstructAnnotationsForPane(int slicePane, const QJsonArray& records);
  /**
   * The context menu of UI pane @p uiPane at widget position @p pos, deleted on close. On a
   * slice pane it starts with the annotation entries (edit, lock, delete the one under @p pos,
   * or add a ruler or mark there; clear the pane); every pane has "Current View" and
   * "All Views", each with screenshots, axes grid and background.
   */
  QMenu* buildPaneContextMenu(int uiPane, QPoint pos);

  bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
  /** Cursor back to the image centre and axes, default window and level, cameras reset. */
  void resetViews();
  /** Renders every pane, at most once per k_ThrottleMs; a later call is deferred. */
  void render();
  /** 0 axis aligned, anything else oblique. */
  void resliceMode(int mode);
  /** 0 thin slices, anything else a thick slab. */
  void thickMode(int mode);
  /** Slab blend: 0 minimum, 1 maximum, 2 mean. */
  void setBlendMode(int mode);
  void showColorLegend(bool show);
  void showAnnotations(bool show);
  void showPlaneWidgets(bool show);
  /** Fits the volume pane's plane outlines to the cursor planes. */
  void updatePlaneOutlines();
  void setLengthUnits(QString units);
  void setShadingEnabled(bool enabled);
  void setAmbient(double value);
  void setDiffuse(double value);
  void setSpecular(double value);
  void setSpecularPower(double value);
  void setLightFollowsCamera(bool follows);
  void setSSAOEnabled(bool enabled);
  /** 1 maximum intensity, 2 minimum intensity, anything else composite. */
  void setVolumeBlendMode(int mode);
  void setGIReach(double value);
  void setVolumetricScattering(double value);
  /** Rewrites all four overlays; unless @p force, at most once per k_ThrottleMs. */
  void updateAllAnnotations(bool force);
  void updateAllAnnotations();

  void onArrayChanged(QString arrayName);
  /** Index into getComponentNames: with two or more components, 0 is the magnitude. */
  void onComponentChanged(int componentIndex);
  void onColorPresetSelected(kx::core::ColorTableUtilities::ColorPreset preset);
  void onDefaultColorPresetRestored();
  void onColorMapInverted(bool inverted);
  void onRangeReset();
  void onCustomRangeChanged(double min, double max);
  void onItemRemovedFromModel(QString itemPath);
  void onDataSourceRemoved(VXDataSource* removedDataSource);
  /** Empties every pane and puts the default settings back. */
  void clearView();

Q_SIGNALS:
  void printOutput(QString message);
  void viewCleared();
  void loadStateRequested(QString filePath);
  void loadFileRequested(QString filePath);
  void loadGeometryRequested(QString geometryPath, VXQuadView* viewWindow);
  void colorControlsReady(QStringList arrayNames, QSharedPointer<VXLookupTable> lut,
                          vtkSmartPointer<vtkPiecewiseFunction> opacity,
                          vtkSmartPointer<vtkTable> histogram, QString activeArray, double trueMin,
                          double trueMax);
  void componentListChanged(QStringList componentNames, int activeComponent);
  void histogramUpdated(vtkSmartPointer<vtkTable> histogram, QString arrayName);
  void annotationsTableModelReady(QAbstractTableModel* model);
  void rangeChanged(double min, double max);
  void colorMapModified();

protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

private Q_SLOTS:
  void setOrientationMarkerText(QStringList faceLabels);

private:
  friend class vtkResliceCursorCallback;
  struct Internals;

  void buildForm();
  void assignBlankRenderWindows();
  void setupViewer(vtkImageData* image);
  void installCustomRep(int slicePane);
  void initializeOrientationMarkerWidget(vtkRenderer* renderer);
  void initializeVolumeRender(vtkRenderer* renderer);
  void initializeScalarBars();
  void initializeCornerAnnotations();
  void initializeColorMap(vtkImageData* image);
  void attachAnnotationControllers();
  void addAnnotationMenuEntries(QMenu* menu, int slicePane, QPoint pos);
  void applyShadingToVolumeProperty();
  void updateActiveArrayAndComponent();
  void refreshActiveDataArrayCache();
  void recomputeHistogram();
  void applyWindowLevel(double min, double max);
  void applyColorMapToPanes();
  void markScalarBarsDirty();
  void restartAnnotationTimer();
  bool annotationThrottleElapsed() const;
  void renderVolumeWindow();
  /** Asks for a frame of the volume pane at an interactive rate once the event loop is free, and a
   * full one once the steps pause. */
  void renderVolumeWindowInteractive();
  void drawInteractiveVolumeFrame();
  void applyPendingViewStates();
  void restoreCursor(const nlohmann::json& json);
  vtkRenderer* volumeRenderer() const;
  vtkImageData* cursorImage() const;

  std::unique_ptr<Internals> d;
};
