#include "ModuleTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXStateItemFactory.hpp>

#include <QtCore/QPointer>
#include <QtWidgets/QMenu>
#include <QtWidgets/QTreeView>

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkImageData.h>

using namespace moduletest;

namespace
{
QMenu* submenu(QMenu* menu, const QString& title)
{
  for (QAction* action : menu->actions())
  {
    if (action->menu() != nullptr && action->text() == title)
      return action->menu();
  }
  return nullptr;
}

QAction* action(QMenu* menu, const QString& text)
{
  for (QAction* entry : menu->actions())
  {
    if (entry->text() == text)
      return entry;
  }
  return nullptr;
}

QStringList texts(QMenu* menu)
{
  QStringList list;
  for (QAction* entry : menu->actions())
  {
    if (!entry->isSeparator())
      list << entry->text();
  }
  return list;
}

class InfoWidgetFixture : public ModuleFixture
{
protected:
  void SetUp() override
  {
    ModuleFixture::SetUp();
    m_Sample = pipelinetest::writeSample(m_Dir);
    m_Module->pipeline()->importFile(qpath(m_Sample));
    ASSERT_EQ(m_Module->pipeline()->bridges().size(), 1);
  }

  QModelIndex bridgeIndex() const { return model()->index(0, 0, QModelIndex()); }
  QModelIndex sourceIndex(int row) const { return model()->index(row, 0, bridgeIndex()); }

  std::filesystem::path m_Sample;
};
} // namespace

TEST_F(InfoWidgetFixture, ContextMenusOfferWhatEachItemCanDo)
{
  std::unique_ptr<QMenu> sourceMenu(info()->createContextMenu(sourceIndex(0)));
  QMenu* views = submenu(sourceMenu.get(), "Add Data View");
  ASSERT_NE(views, nullptr);
  EXPECT_EQ(texts(views), (QStringList{ "Outline", "Points", "Wireframe", "Surface",
                                        "2D Image/Slice", "Volume" }));
  // the volume and the image slice are offered for images only
  int images = 0;
  int others = 0;
  for (int row = 0; row < model()->rowCount(bridgeIndex()); ++row)
  {
    vtkAlgorithmOutput* port = model()->getCoreObject(sourceIndex(row))->outputPort();
    const bool image =
      vtkImageData::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex()));
    std::unique_ptr<QMenu> menu(info()->createContextMenu(sourceIndex(row)));
    EXPECT_EQ(action(submenu(menu.get(), "Add Data View"), "Volume")->isEnabled(), image);
    EXPECT_EQ(action(submenu(menu.get(), "Add Data View"), "2D Image/Slice")->isEnabled(), image);
    ++(image ? images : others);
  }
  EXPECT_GT(images, 0);
  EXPECT_GT(others, 0);
  QMenu* filters = submenu(sourceMenu.get(), "Add Visual Filter");
  ASSERT_NE(filters, nullptr);
  EXPECT_EQ(texts(filters), (QStringList{ "Clip", "Slice", "Threshold" }));
  EXPECT_TRUE(action(filters, "Slice")->isEnabled());
  EXPECT_TRUE(action(filters, "Threshold")->isEnabled());
  // "Clip" puts a clip filter under the source
  ASSERT_TRUE(action(filters, "Clip")->isEnabled());
  action(filters, "Clip")->trigger();
  VXCoreObject* source = model()->getCoreObject(sourceIndex(0));
  ASSERT_EQ(source->findChildren<VXFClip*>().size(), 1);
  const int last = model()->rowCount(sourceIndex(0)) - 1;
  EXPECT_EQ(model()->getCoreObject(model()->index(last, 0, sourceIndex(0))),
            source->findChildren<VXFClip*>().front());
  // a filter takes filters and data views under it too: a threshold under the clip
  const QModelIndex clipIndex = model()->index(last, 0, sourceIndex(0));
  std::unique_ptr<QMenu> clipMenu(info()->createContextMenu(clipIndex));
  ASSERT_NE(submenu(clipMenu.get(), "Add Data View"), nullptr);
  QMenu* clipFilters = submenu(clipMenu.get(), "Add Visual Filter");
  ASSERT_NE(clipFilters, nullptr);
  for (const char* entry : { "Clip", "Slice", "Threshold" })
    EXPECT_TRUE(action(clipFilters, entry)->isEnabled()) << entry;
  action(clipFilters, "Threshold")->trigger();
  ASSERT_EQ(model()->rowCount(clipIndex), 1);
  EXPECT_EQ(model()->getCoreObject(model()->index(0, 0, clipIndex))->parent(),
            source->findChildren<VXFClip*>().front());
  for (const char* entry : { "Show Data Set Information", "Copy Settings", "Paste Settings",
                             "Save as Visualization Preset...", "Rename", "Remove" })
    EXPECT_NE(action(sourceMenu.get(), entry), nullptr) << entry;
  EXPECT_EQ(action(sourceMenu.get(), "Reload File"), nullptr);

  std::unique_ptr<QMenu> bridgeMenu(info()->createContextMenu(bridgeIndex()));
  ASSERT_NE(action(bridgeMenu.get(), "Reload File"), nullptr);
  QAction* watch = action(bridgeMenu.get(), "Watch File for Changes");
  ASSERT_NE(watch, nullptr);
  EXPECT_TRUE(watch->isCheckable());
  EXPECT_EQ(submenu(bridgeMenu.get(), "Add Data View"), nullptr);

  std::unique_ptr<QMenu> emptyMenu(info()->createContextMenu(QModelIndex()));
  EXPECT_EQ(
    texts(emptyMenu.get()),
    (QStringList{ "Open File...", "Load State File...", "Save State File...", "Add Annotation",
                  "Export Visualization Presets...", "Import Visualization Presets..." }));
}

TEST_F(InfoWidgetFixture, AddingADataViewFromTheMenuPutsItUnderTheSourceAndSelectsIt)
{
  const QModelIndex source = sourceIndex(0);
  const int before = model()->rowCount(source);
  std::unique_ptr<QMenu> menu(info()->createContextMenu(source));
  action(submenu(menu.get(), "Add Data View"), "Points")->trigger();
  pump();
  ASSERT_EQ(model()->rowCount(source), before + 1);
  const QModelIndex added = model()->index(before, 1, source);
  VXRepresentation* representation = model()->getRepresentation(added);
  ASSERT_NE(representation, nullptr);
  EXPECT_EQ(representation->type(), VXRepresentation::Points);
  EXPECT_EQ(info()->currentIndex(), added);
  // its page shows below the tree
  ASSERT_NE(info()->currentSettingsPage(), nullptr);
  EXPECT_TRUE(info()->currentSettingsPage()->isVisible());
}

TEST_F(InfoWidgetFixture, RemovingItemsDeletesThemAndTheirRows)
{
  const QModelIndex source = sourceIndex(0);
  ASSERT_GT(model()->rowCount(source), 0);
  const QModelIndex viewIndex = model()->index(0, 1, source);
  QPointer<VXRepresentation> representation = model()->getRepresentation(viewIndex);
  ASSERT_FALSE(representation.isNull());
  info()->setCurrentIndex(viewIndex);
  const int before = model()->rowCount(source);
  info()->removeItem(viewIndex);
  pump();
  EXPECT_TRUE(representation.isNull());
  EXPECT_EQ(model()->rowCount(source), before - 1);
  EXPECT_EQ(info()->currentSettingsPage(), nullptr);

  QPointer<VXBridgeObject> bridge = m_Module->pipeline()->bridges().front();
  info()->removeItem(bridgeIndex());
  pump();
  EXPECT_TRUE(bridge.isNull());
  EXPECT_TRUE(info()->modelIsEmpty());
  EXPECT_TRUE(m_Module->pipeline()->bridges().isEmpty());
}

TEST_F(InfoWidgetFixture, TreeStateWritesEveryItemWithTypeDataAndChildren)
{
  nlohmann::json tree;
  QMap<VXAbstractViewWidget*, int> indices{ { grid()->allViews().front(), 0 } };
  info()->saveState(tree, indices);
  ASSERT_TRUE(tree.is_array());
  ASSERT_EQ(tree.size(), 1u);
  EXPECT_EQ(tree[0]["item_type"], "FileToVXBridge");
  EXPECT_EQ(tree[0]["item_data"]["bridge_object_file_path"], m_Sample.string());
  const auto& sources = tree[0]["item_children"];
  ASSERT_EQ(sources.size(), static_cast<size_t>(model()->rowCount(bridgeIndex())));
  for (const auto& source : sources)
  {
    EXPECT_EQ(source["item_type"], "VXDataSource");
    EXPECT_TRUE(source["item_data"].contains("imported_data_path"));
    ASSERT_TRUE(source.contains("item_children"));
    for (const auto& view : source["item_children"])
    {
      EXPECT_NE(VXStateItemFactory::KnownItemTypes().indexOf(
                  QString::fromStdString(view["item_type"].get<std::string>())),
                -1);
      EXPECT_FALSE(view.contains("item_children"));
    }
  }
}
