#pragma once

#include "SamplePipelineController.hpp"

#include <kxcore/DataStructure.hpp>
#include <visualization/VXRepresentation.hpp>

#include <QtCore/QPointer>
#include <QtWidgets/QMainWindow>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class QDockWidget;
class QPlainTextEdit;
class VXDataSource;
class VXFilter;
class VXQuadViewWindow;
class VXVisualizationModuleWidget;
// the generated meta-object code needs these types complete
Q_MOC_INCLUDE(<quadview / VXQuadViewWindow.hpp>)
Q_MOC_INCLUDE(<visualization / VXFilter.hpp>)

/**
 * The viewer's window: the visualization module in the middle, its output in
 * a dock below, and menus for files, state files, screenshots, presets and a
 * stand-in host pipeline that feeds the module from memory.
 *
 * As the host, it chooses the first data view of each kind of data set: meshes
 * and small grids as surfaces, points as points, lines as wireframes, and grids
 * of more than k_LargeGridCells cells as outlines (a voxel surface of that size
 * is slow and hides the inside). Its settings defaults differ from the
 * library's where large data needs it: surfaces open without cell edges, which
 * would cover a mesh of millions of triangles or a voxel surface in black. A
 * value the user saved still wins. The pipeline's and the settings' defaults are
 * restored when the window goes.
 */
class ViewerMainWindow : public QMainWindow
{
  Q_OBJECT

public:
  /** Image, rectilinear and structured grids with more cells than this open as outlines. */
  static constexpr long long k_LargeGridCells = 64LL * 64 * 64;
  /**
   * The settings key of the surface data view's cell edges. The viewer ships its own default
   * for it (off): where the user never saved one, the viewer's settings get it on start.
   */
  static constexpr const char* k_SurfaceEdgesKey =
    "VisualizationSettings/RepresentationSettings/VXSurfaceRep/edge_visibility";

  /** Cells a side of the sample pipeline's microstructure. */
  static constexpr kx::core::usize k_HostSampleSize = 48;

  explicit ViewerMainWindow(QWidget* parent = nullptr);
  ~ViewerMainWindow() override;

  /** Every data set opened from now on gets @p type, whatever its kind and size. */
  void setDataViewForAll(VXRepresentation::Type type);

  VXVisualizationModuleWidget* module() const { return m_Module; }
  QPlainTextEdit* output() const { return m_Output; }
  /** The last output of the sample pipeline, shared with the module; empty before the first run. */
  std::shared_ptr<kx::core::DataStructure> hostData() const { return m_HostData; }

Q_SIGNALS:
  /** Every line written to the output pane, for a batch run to echo. */
  void outputAppended(const QString& message);

public Q_SLOTS:
  void openFiles();
  /** Runs the sample pipeline in memory and shows its output (zero-copy). */
  void runHostPipeline();
  /** Runs it again with another grain layout; the module updates what it shows. */
  void rerunHostPipeline();
  /**
   * The module asks its host for a Multi-Threshold Objects filter: on a geometry of the sample
   * pipeline the step is added, the pipeline runs and the module reloads its output, which now
   * holds the mask array. Any other geometry (a file's) gets the request reported in the output.
   */
  void createMultiThresholdObjectsFilter(kx::core::DataPath geometryPath,
                                         std::vector<KX::ArrayThresholdRange> ranges);
  /**
   * The same for an Apply Transformation filter: the host moves its geometry by @p matrix, and
   * the data views of that geometry drop their own transform, which now lives in the data.
   */
  void createApplyTransformationGeometryFilter(kx::core::DataPath geometryPath,
                                               const std::array<std::array<double, 4>, 4>& matrix);
  void appendOutput(const QString& message);
  /**
   * The "Filters" menu: adds the filter of @p typeName ("VXFClip", "VXFSlice", "VXFThreshold")
   * under the selected data source or filter, applies it and selects it. Null (with a line in
   * the output) when nothing that takes a filter is selected.
   */
  VXFilter* addFilterToSelection(const QString& typeName);
  /**
   * Opens the quad view window on the image geometry selected in the pipeline browser, or on
   * the first image geometry loaded; null (and a message) when there is none.
   */
  VXQuadViewWindow* openQuadView();

protected:
  /** The first time: the output dock takes a few lines, the module the rest. */
  void showEvent(QShowEvent* event) override;

private:
  void createMenus();
  /** Adds @p step to the sample pipeline and runs it; the step is dropped again if it fails. */
  bool runHostStep(SamplePipelineController::Step step);
  /** Whether the last output of the sample pipeline holds @p path. */
  bool hostHolds(const kx::core::DataPath& path) const;
  /** Just before the pipeline picks a data view for @p source: grids by their size. */
  void chooseGridDataView(VXDataSource* source);

  VXVisualizationModuleWidget* m_Module = nullptr;
  QPlainTextEdit* m_Output = nullptr;
  SamplePipelineController m_Controller;
  std::shared_ptr<kx::core::DataStructure> m_HostData;
  std::uint32_t m_HostRun = 0;
  QDockWidget* m_OutputDock = nullptr;
  QPointer<VXQuadViewWindow> m_QuadViewWindow;
  bool m_DocksSized = false;
  bool m_GridDataViewBySize = true;
  std::array<VXRepresentation::Type, 9> m_PreviousDefaults{};
};
