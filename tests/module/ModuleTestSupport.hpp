#pragma once

#include "QtTestSupport.hpp"
// Shared pieces of the module tests: a shown module with scripted answers to
// every question it asks, settings in a file of the test's own, sample files.

#include "../pipeline/PipelineTestSupport.hpp"

#include <visualization/QtWidgets/VXInfoWidget.hpp>
#include <visualization/QtWidgets/VXViewGridWidget.hpp>
#include <visualization/QtWidgets/VXViewWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXPipelineModel.hpp>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QAbstractButton>

#include <memory>

namespace moduletest
{
using pipelinetest::qpath;
using pipelinetest::waitFor;

using kxtest::pump;

/** Every dialog the module can open, answered by the test. */
class ScriptedDialogs : public pipelinetest::ScriptedPrompts
{
public:
  ScriptedDialogs()
  {
    VXUserPrompt::setSaveFileHandler(
      [this](const QString& title, const QString& filter)
      {
        saveTitles.push_back(title);
        saveFilters.push_back(filter);
        return saveAnswer;
      });
    VXUserPrompt::setTextHandler([this](const QString&, const QString&, const QString&)
                                 { return textAnswer; });
    VXUserPrompt::setBoxHandler(
      [this](QMessageBox& box)
      {
        boxTitles.push_back(box.windowTitle());
        boxTexts.push_back(box.text());
        for (QAbstractButton* button : box.buttons())
          boxButtons.push_back(button->text());
        return boxResult;
      });
  }
  ~ScriptedDialogs()
  {
    VXUserPrompt::setSaveFileHandler({});
    VXUserPrompt::setTextHandler({});
    VXUserPrompt::setBoxHandler({});
  }

  QString saveAnswer;
  QString textAnswer;
  int boxResult = QMessageBox::No;
  std::vector<QString> saveTitles;
  std::vector<QString> saveFilters;
  std::vector<QString> boxTitles;
  std::vector<QString> boxTexts;
  std::vector<QString> boxButtons;
};

/** A shown module at a fixed size with its output collected. */
class ModuleFixture : public ::testing::Test
{
protected:
  void SetUp() override { makeModule(); }
  void TearDown() override { m_Module.reset(); }

  void makeModule()
  {
    m_Module.reset();
    m_Module = std::make_unique<VXVisualizationModuleWidget>();
    QObject::connect(m_Module.get(), &VXVisualizationModuleWidget::printOutput,
                     [this](const QString& message) { output << message; });
    m_Module->resize(1000, 600);
    m_Module->show();
    pump();
  }

  VXViewGridWidget* grid() const { return m_Module->getViewGridWidget(); }
  VXPipelineModel* model() const { return m_Module->pipelineModel(); }
  VXInfoWidget* info() const { return m_Module->getInfoWidget(); }

  /** The data sources of all bridges, in tree order. */
  QList<VXDataSource*> dataSources() const
  {
    QList<VXDataSource*> sources;
    for (VXBridgeObject* bridge : m_Module->pipeline()->bridges())
      sources += bridge->dataSources();
    return sources;
  }

  bool outputContains(const QString& text) const
  {
    for (const QString& line : output)
    {
      if (line.contains(text))
        return true;
    }
    return false;
  }

  pipelinetest::ScopedSettings m_Settings;
  ScriptedDialogs m_Dialogs;
  kxtest::TempDir m_Dir;
  QStringList output;
  std::unique_ptr<VXVisualizationModuleWidget> m_Module;
};
} // namespace moduletest
