#pragma once

#include "SamplePipelineController.hpp"

#include <kxcore/DataStructure.hpp>

#include <QtWidgets/QMainWindow>

#include <cstdint>
#include <memory>

class QPlainTextEdit;
class VXVisualizationModuleWidget;

/**
 * The viewer's window: the visualization module in the middle, its output in
 * a dock below, and menus for files, state files, screenshots, presets and a
 * stand-in host pipeline that feeds the module from memory.
 */
class ViewerMainWindow : public QMainWindow
{
  Q_OBJECT

public:
  explicit ViewerMainWindow(QWidget* parent = nullptr);
  ~ViewerMainWindow() override;

  VXVisualizationModuleWidget* module() const { return m_Module; }
  QPlainTextEdit* output() const { return m_Output; }
  /** The last output of the sample pipeline, shared with the module; empty before the first run. */
  std::shared_ptr<kx::core::DataStructure> hostData() const { return m_HostData; }

public Q_SLOTS:
  void openFiles();
  /** Runs the sample pipeline in memory and shows its output (zero-copy). */
  void runHostPipeline();
  /** Runs it again with another grain layout; the module updates what it shows. */
  void rerunHostPipeline();
  void appendOutput(const QString& message);

private:
  void createMenus();

  VXVisualizationModuleWidget* m_Module = nullptr;
  QPlainTextEdit* m_Output = nullptr;
  SamplePipelineController m_Controller;
  std::shared_ptr<kx::core::DataStructure> m_HostData;
  std::uint32_t m_HostRun = 0;
};
