#pragma once

#include "ImageCompare.hpp"
// Shared pieces of the state file tests: a shown module (see the module
// tests), a description of its tree and views that two modules can be compared
// by, and small file helpers.

#include "StatePlaceholders.hpp"
#include "QtPrinters.hpp"
#include "../module/ModuleTestSupport.hpp"

#include <visualization/VXDataSource.hpp>
#include <visualization/VXRepresentation.hpp>

#include <vtkCamera.h>
#include <vtkRenderer.h>

#include <QtCore/QFile>
#include <QtGui/QImage>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>

namespace statetest
{
using moduletest::pump;
using pipelinetest::qpath;

using kxtest::ReadBytes;
using kxtest::WriteBytes;

using statetest::substitute;

/** A tree item of a state file. */
inline nlohmann::json item(const std::string& type, nlohmann::json data = nlohmann::json::object(),
                           nlohmann::json children = nullptr)
{
  nlohmann::json object = { { "item_type", type }, { "item_data", std::move(data) } };
  if (!children.is_null())
    object["item_children"] = std::move(children);
  return object;
}

class StateFixture : public moduletest::ModuleFixture
{
protected:
  /**
   * The tree as lines "depth type name [visibility per view]", in tree order:
   * two modules with the same lines show the same items in the same views.
   */
  QStringList treeLines(const QModelIndex& parent = QModelIndex(), int depth = 0) const
  {
    QStringList lines;
    const QList<VXAbstractViewWidget*> views = grid()->allViews();
    for (int row = 0; row < model()->rowCount(parent); ++row)
    {
      const QModelIndex index = model()->index(row, 0, parent);
      QString line = QString(depth * 2, ' ');
      if (VXBridgeObject* bridge = model()->getPipelineObject(index);
          bridge != nullptr && model()->isPipeline(index))
        line += bridge->typeName() + " " + bridge->name();
      else if (VXCoreObject* object = model()->getCoreObject(index))
      {
        line += object->typeName() + " " + object->name();
        QStringList shown;
        const auto perView = object->viewWidgets();
        for (VXAbstractViewWidget* view : views)
          shown << (perView.contains(view) ? (perView.value(view) ? "on" : "off") : "-");
        line += " [" + shown.join(',') + "]";
      }
      lines << line;
      lines += treeLines(index, depth + 1);
    }
    return lines;
  }

  /** Number of views and their split ids, in grid order. */
  QList<int> splitIds() const
  {
    QList<int> ids;
    for (VXAbstractViewWidget* view : grid()->allViews())
    {
      nlohmann::json state = nlohmann::json::object();
      view->saveState(state);
      ids << (state.contains("split_view_index") ? state["split_view_index"].get<int>() : -1);
    }
    return ids;
  }

  vtkCamera* camera(int view) const
  {
    return grid()->allViews().at(view)->getVisualizationWidget()->getRenderer()->GetActiveCamera();
  }

  /** The messages that contain the text. */
  int countOutput(const QString& text) const
  {
    int count = 0;
    for (const QString& line : output)
    {
      if (line.contains(text))
        count++;
    }
    return count;
  }

  /** Data views under a source, by model index. */
  QList<VXRepresentation*> representationsUnder(const QModelIndex& parent) const
  {
    QList<VXRepresentation*> list;
    for (int row = 0; row < model()->rowCount(parent); ++row)
    {
      if (VXRepresentation* representation =
            model()->getRepresentation(model()->index(row, 1, parent)))
        list << representation;
    }
    return list;
  }

  /** A new module in place of the old one, with nothing heard or asked yet. */
  void freshModule()
  {
    makeModule();
    output.clear();
    m_Dialogs.asked.clear();
  }

  /** Loads a JSON document as a module's caller would. */
  void load(nlohmann::json state)
  {
    m_Module->loadState(state);
    pump();
  }

  /** The index of the data source of this name. */
  QModelIndex sourceNamed(const QString& name) const
  {
    for (VXDataSource* source : dataSources())
    {
      if (source->name() == name)
        return model()->helperIndex(source);
    }
    return {};
  }

  /** A state of the current split views and the given tree. */
  nlohmann::json stateWith(const nlohmann::json& tree) const
  {
    nlohmann::json split;
    grid()->saveState(split);
    return { { "split_view_state", split }, { "tree_view_state", tree } };
  }
};

/** A state fixture with the sample written as a host file. */
class SampleStateFixture : public StateFixture
{
protected:
  void SetUp() override
  {
    StateFixture::SetUp();
    m_Sample = pipelinetest::writeSample(m_Dir);
  }

  /** Imports the sample and splits the view: something a load could lose. */
  void buildSomething()
  {
    m_Module->pipeline()->importFile(qpath(m_Sample));
    grid()->addColumn(grid()->allViews().front());
    pump();
    ASSERT_EQ(grid()->viewCount(), 2);
    ASSERT_EQ(dataSources().size(), 3);
  }

  std::filesystem::path m_Sample;
};
} // namespace statetest

namespace statetest
{
using kxtest::RmsDifference;

/** Compares an image with tests/baselines/state/<name>.png. */
inline void compareWithBaseline(const QImage& image, const std::string& name)
{
  kxtest::CompareWithBaseline(image, "state", name);
}
} // namespace statetest
