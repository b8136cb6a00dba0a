#pragma once

#include "HostDataSupport.hpp"
#include "VXTestSupport.hpp"

#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXRepresentation.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <KX/IPipelineController.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>

#include <deque>

namespace pipelinetest
{
using kxtest::FakeController;
using kxtest::hostResult;
using kxtest::TestView;
using kxtest::writeSample;

/** A data view that records how the pipeline set it up. */
class RecordingRep : public VXRepresentation
{
public:
  RecordingRep(VXPipeline* pipeline, Type type)
    : VXRepresentation(pipeline, k_RepresentationTypeToString.value(type) + " View")
    , m_Type(type)
  {
  }
  QString humanTypeName() override { return "Recording"; }
  QString typeName() override { return "RecordingRep"; }
  vtkAlgorithmOutput* outputPort() override { return nullptr; }
  void initializeSettingsWidget() override {}
  QIcon getIcon() override { return {}; }
  void copyActiveSettings() const override {}
  void pasteToActiveSettings() override {}
  void receivePipelineOutputReloaded() override { reloads++; }
  void addViewWidgetCopy(VXAbstractViewWidget*, VXAbstractViewWidget*) override {}
  Type type() const override { return m_Type; }
  void initializeImplementations(vtkAlgorithmOutput* port) override { initializedWith = port; }
  bool addViewInstance(VXAbstractViewWidget*, VXAbstractViewWidget* view, vtkAlgorithmOutput* port,
                       bool) override
  {
    addViewWidget(view);
    initializedWith = port;
    return true;
  }
  void updateDataSetInfo() override {}

  vtkAlgorithmOutput* initializedWith = nullptr;
  int reloads = 0;

private:
  Type m_Type;
};

/** Registers recording data views for every type, for the test's lifetime. */
inline void registerRecordingViews()
{
  for (std::uint32_t t = VXRepresentation::Outline; t <= VXRepresentation::Glyph; t++)
  {
    const auto type = static_cast<VXRepresentation::Type>(t);
    VXRepresentation::RegisterType(type, [type](VXPipeline* pipeline)
                                   { return new RecordingRep(pipeline, type); });
  }
}

using kxtest::ScopedSettings;

/** Answers the questions the code asks, in order, and records them. */
class ScriptedPrompts
{
public:
  ScriptedPrompts()
  {
    VXUserPrompt::setAskHandler(
      [this](const VXUserPrompt::Question& question)
      {
        asked.push_back(question);
        if (answers.empty())
          return QMessageBox::No;
        const auto answer = answers.front();
        answers.pop_front();
        return answer;
      });
    VXUserPrompt::setOpenFileHandler(
      [this](const QString& title, const QString&)
      {
        fileTitles.push_back(title);
        return fileAnswer;
      });
  }
  ~ScriptedPrompts()
  {
    VXUserPrompt::setAskHandler({});
    VXUserPrompt::setOpenFileHandler({});
  }

  std::deque<QMessageBox::StandardButton> answers;
  std::vector<VXUserPrompt::Question> asked;
  std::vector<QString> fileTitles;
  QString fileAnswer;
};

using kxtest::waitFor;

using kxtest::qpath;
} // namespace pipelinetest
