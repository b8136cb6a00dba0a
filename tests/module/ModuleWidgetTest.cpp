#include "ModuleTestSupport.hpp"

#include <visualization/FileToVXBridge.hpp>
#include <visualization/VXDataSource.hpp>

#include <vtkCamera.h>
#include <vtkRenderer.h>

#include <QtCore/QJsonObject>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtWidgets/QSplitter>

using namespace moduletest;

namespace
{
/** Opens the protected drop handler to the test, as a drop from the window system would reach it.
 */
struct DropAccess : VXVisualizationModuleWidget
{
  using VXVisualizationModuleWidget::dropEvent;
};

void dropFiles(VXVisualizationModuleWidget* target, const QStringList& paths)
{
  QMimeData mime;
  QList<QUrl> urls;
  for (const QString& path : paths)
    urls << QUrl::fromLocalFile(path);
  mime.setUrls(urls);
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
  (target->*(&DropAccess::dropEvent))(&drop);
}

QJsonObject storedPresets()
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  return settings.value("VisualizationPresets").toJsonObject();
}

void storePresetValue(const QString& name, const QJsonValue& value)
{
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  QJsonObject presets = settings.value("VisualizationPresets").toJsonObject();
  presets[name] = value;
  settings.setValue("VisualizationPresets", presets);
  settings.endGroup();
  settings.sync();
}

/** Every window index the items and their per-view parts are bound to. */
nlohmann::json renderWindowIndices(const nlohmann::json& items)
{
  nlohmann::json found = nlohmann::json::array();
  for (const auto& item : items)
  {
    const nlohmann::json& data = item.at("item_data");
    if (data.contains("render_window_index"))
      for (const auto& entry : data.at("render_window_index"))
        found.push_back(entry.at("render_window_index"));
    if (data.contains("rep_view_implementations"))
      for (const auto& entry : data.at("rep_view_implementations"))
        found.push_back(entry.at("render_window_index"));
    if (item.contains("item_children"))
      for (const auto& index : renderWindowIndices(item.at("item_children")))
        found.push_back(index);
  }
  return found;
}
} // namespace

TEST_F(ModuleFixture, StartsWithOneActiveViewThatFollowsClicksSplitsAndCloses)
{
  EXPECT_EQ(m_Module->windowTitle(), "Visualization Window");
  ASSERT_NE(m_Module->findChild<QSplitter*>("splitter"), nullptr);
  EXPECT_EQ(m_Module->findChild<VXInfoWidget*>("infoWidget"), info());
  EXPECT_EQ(m_Module->findChild<VXViewGridWidget*>("viewGridWidget"), grid());
  ASSERT_EQ(grid()->viewCount(), 1);
  VXAbstractViewWidget* first = grid()->allViews().front();
  EXPECT_EQ(m_Module->getActiveViewWidget(), first);
  EXPECT_EQ(m_Module->pipeline()->activeViewWidget(), first);
  EXPECT_TRUE(first->isActive());
  EXPECT_TRUE(first->property("Active").toBool());
  // no stored splitter state: the views take three quarters of the width
  const QList<int> sizes = m_Module->findChild<QSplitter*>("splitter")->sizes();
  ASSERT_EQ(sizes.size(), 2);
  const int total = sizes[0] + sizes[1];
  EXPECT_NEAR(sizes[0], total * 3 / 4, 12);

  // the active view follows clicks, splits and closes
  QSignalSpy changed(m_Module.get(), &VXVisualizationModuleWidget::changedActiveView);
  grid()->addColumn(first);
  pump();
  ASSERT_EQ(grid()->viewCount(), 2);
  VXAbstractViewWidget* second = grid()->allViews().at(1);
  second->mousePressed();
  pump();
  EXPECT_EQ(m_Module->getActiveViewWidget(), second);
  EXPECT_EQ(m_Module->pipeline()->activeViewWidget(), second);
  EXPECT_FALSE(first->isActive());
  EXPECT_TRUE(second->isActive());
  ASSERT_GE(changed.count(), 1);
  EXPECT_EQ(changed.last().at(0).value<VXAbstractViewWidget*>(), second);

  // only the active view's render widget reaches the output
  Q_EMIT first->getVisualizationWidget()->printOutput("from the first view");
  Q_EMIT second->getVisualizationWidget()->printOutput("from the second view");
  EXPECT_FALSE(outputContains("from the first view"));
  EXPECT_TRUE(outputContains("from the second view"));

  grid()->closeCell(second);
  pump();
  EXPECT_EQ(grid()->viewCount(), 1);
  EXPECT_EQ(m_Module->getActiveViewWidget(), grid()->allViews().front());
  EXPECT_EQ(m_Module->pipeline()->activeViewWidget(), grid()->allViews().front());
}

TEST_F(ModuleFixture, DroppingAFileTwiceOffersAReloadAndAStateFileOnlyAsksTheHost)
{
  const auto sample = pipelinetest::writeSample(m_Dir);
  dropFiles(m_Module.get(), { qpath(sample) });
  ASSERT_EQ(m_Module->pipeline()->bridges().size(), 1);
  const int sources = dataSources().size();
  EXPECT_GT(sources, 0);

  m_Dialogs.answers = { QMessageBox::No };
  dropFiles(m_Module.get(), { qpath(sample) });
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 1);
  EXPECT_EQ(dataSources().size(), sources);
  ASSERT_EQ(m_Dialogs.asked.size(), 1u);
  EXPECT_EQ(m_Dialogs.asked[0].title, "File Already Imported");
  EXPECT_EQ(m_Dialogs.asked[0].text, QString("The file at %1 has already been imported. Would you "
                                             "like to reload the existing file data instead?")
                                       .arg(qpath(sample)));

  // Yes reloads the bridge in place
  QSignalSpy reloaded(m_Module->pipeline(), &VXPipeline::pipelineOutputReloaded);
  m_Dialogs.answers = { QMessageBox::Yes };
  dropFiles(m_Module.get(), { qpath(sample) });
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 1);
  EXPECT_GE(reloaded.count(), 1);

  // a state file only asks the host
  QSignalSpy requested(m_Module.get(), &VXVisualizationModuleWidget::loadStateRequested);
  const QString statePath = qpath(m_Dir / "scene.vlxstate");
  dropFiles(m_Module.get(), { statePath });
  ASSERT_EQ(requested.count(), 1);
  EXPECT_EQ(requested.at(0).at(0).toString(), statePath);
  EXPECT_EQ(m_Module->pipeline()->bridges().size(), 1);
  EXPECT_EQ(m_Dialogs.asked.size(), 2u);
}

TEST_F(ModuleFixture, CorruptStoredLayoutIsRemovedAndTheModuleOpensWithOneView)
{
  m_Module.reset();
  {
    QtKXSettings settings;
    settings.beginGroup("VisualizationSettings");
    settings.beginGroup("RenderWindowSettings");
    settings.setValue("split_view_state", "{\"grid\": [1, 2");
    settings.setValue("info_splitter_state", QByteArray());
    settings.endGroup();
    settings.endGroup();
    settings.sync();
  }
  makeModule();
  EXPECT_EQ(grid()->viewCount(), 1);
  QtKXSettings settings;
  settings.beginGroup("VisualizationSettings");
  settings.beginGroup("RenderWindowSettings");
  EXPECT_FALSE(settings.contains("split_view_state"));
  // the empty splitter state leaves the default three quarters
  const QList<int> sizes = m_Module->findChild<QSplitter*>("splitter")->sizes();
  EXPECT_NEAR(sizes[0], (sizes[0] + sizes[1]) * 3 / 4, 12);
}

TEST_F(ModuleFixture, WriteSettingsActsOnTheBoxResultAsStored)
{
  grid()->addRow(grid()->allViews().front());
  pump();
  auto stored = []
  {
    QtKXSettings settings;
    settings.beginGroup("VisualizationSettings");
    settings.beginGroup("RenderWindowSettings");
    return settings.childKeys();
  };

  m_Dialogs.boxResult = QMessageBox::No;
  m_Module->writeSettings();
  EXPECT_TRUE(stored().isEmpty());
  ASSERT_EQ(m_Dialogs.boxTitles.size(), 1u);
  EXPECT_EQ(m_Dialogs.boxTitles[0], "Save Default Render Window Settings");
  EXPECT_EQ(m_Dialogs.boxTexts[0],
            "Do you want to save the current render window state as the default?");
  for (const char* label : { "Save", "Don't Save", "Reset to Default" })
    EXPECT_NE(std::find(m_Dialogs.boxButtons.begin(), m_Dialogs.boxButtons.end(), QString(label)),
              m_Dialogs.boxButtons.end())
      << label;

  // the standard Save button (0x800) writes nothing: that is how the result is read
  m_Dialogs.boxResult = QMessageBox::Save;
  m_Module->writeSettings();
  EXPECT_TRUE(stored().isEmpty());

  m_Dialogs.boxResult = QMessageBox::Yes;
  m_Module->writeSettings();
  EXPECT_TRUE(stored().contains("split_view_state"));
  EXPECT_TRUE(stored().contains("info_splitter_state"));

  // a new module opens with the stored two views
  makeModule();
  EXPECT_EQ(grid()->viewCount(), 2);

  m_Dialogs.boxResult = QMessageBox::Reset;
  m_Module->writeSettings();
  EXPECT_TRUE(stored().isEmpty());
}

TEST_F(ModuleFixture, LinkAllViewsSharesOneCameraUnlinkAllSeparatesThemAndBlockingReachesAll)
{
  VXAbstractViewWidget* first = grid()->allViews().front();
  grid()->addColumn(first);
  pump();
  grid()->addRow(grid()->allViews().front());
  pump();
  ASSERT_EQ(grid()->viewCount(), 3);
  m_Module->linkAllViews();
  const QList<VXAbstractViewWidget*> views = grid()->allViews();
  vtkCamera* shared = views[0]->getVisualizationWidget()->getRenderer()->GetActiveCamera();
  for (VXAbstractViewWidget* view : views)
  {
    EXPECT_EQ(view->getVisualizationWidget()->getRenderer()->GetActiveCamera(), shared);
    EXPECT_EQ(view->getVisualizationWidget()->getLinkedWidgets().size(), 3u);
  }
  m_Module->unlinkAllViews();
  for (VXAbstractViewWidget* view : views)
    EXPECT_FALSE(view->getVisualizationWidget()->isLinked());
  EXPECT_NE(views[0]->getVisualizationWidget()->getRenderer()->GetActiveCamera(),
            views[1]->getVisualizationWidget()->getRenderer()->GetActiveCamera());

  // blocking renders reaches every view
  for (const bool block : { true, false })
  {
    m_Module->setBlockRender(block);
    for (VXAbstractViewWidget* view : views)
      EXPECT_EQ(view->isRenderBlocked(), block);
  }
}

TEST_F(ModuleFixture, AllViewsScreenshotPutsEachPaneWhereItStands)
{
  VXAbstractViewWidget* left = grid()->allViews().front();
  grid()->addColumn(left);
  pump();
  VXAbstractViewWidget* right = grid()->allViews().at(1);
  left->getVisualizationWidget()->setRenderWindowBackgroundColor(QColor(255, 0, 0));
  right->getVisualizationWidget()->setRenderWindowBackgroundColor(QColor(0, 0, 255));
  pump();
  const QImage image = m_Module->grabAllViewsImage();
  ASSERT_EQ(image.size(), grid()->size());
  auto centreOf = [this](VXAbstractViewWidget* view)
  {
    VXVisualizationWidget* renderWidget = view->getVisualizationWidget();
    return renderWidget->mapTo(grid(), renderWidget->rect().center());
  };
  const QColor leftColour = image.pixelColor(centreOf(left));
  const QColor rightColour = image.pixelColor(centreOf(right));
  EXPECT_GT(leftColour.red(), 200);
  EXPECT_LT(leftColour.blue(), 60);
  EXPECT_GT(rightColour.blue(), 200);
  EXPECT_LT(rightColour.red(), 60);

  // saved through the dialog; a path that cannot be written gives the message
  m_Dialogs.saveAnswer = qpath(m_Dir / "views.png");
  m_Module->saveAllViewsScreenshot();
  ASSERT_EQ(m_Dialogs.saveTitles.back(), "Save Screenshot of All Views");
  EXPECT_EQ(m_Dialogs.saveFilters.back(),
            "PNG Image (*.png);;JPEG Image (*.jpg *.jpeg);;Bitmap Image (*.bmp)");
  const QImage written(qpath(m_Dir / "views.png"));
  EXPECT_EQ(written.size(), image.size());
  EXPECT_TRUE(m_Dialogs.asked.empty());

  const QString badPath = qpath(m_Dir / "no-such-folder" / "views.png");
  m_Dialogs.saveAnswer = badPath;
  m_Module->saveAllViewsScreenshot();
  ASSERT_EQ(m_Dialogs.asked.size(), 1u);
  EXPECT_EQ(m_Dialogs.asked[0].title, "Save Failed");
  EXPECT_EQ(m_Dialogs.asked[0].text,
            QString("Failed to save the screenshot to:\n%1\nCheck that the file path is valid and "
                    "you have write permissions.")
              .arg(badPath));
}

TEST_F(ModuleFixture, PresetWithoutViewsBindsItsItemsToNoWindowAndAppliesToAnotherSource)
{
  const auto sample = pipelinetest::writeSample(m_Dir);
  m_Module->pipeline()->importFile(qpath(sample));
  const QList<VXDataSource*> sources = dataSources();
  ASSERT_GE(sources.size(), 2);
  const QModelIndex first = model()->helperIndex(sources[0]);
  const int viewsUnderFirst = model()->rowCount(first);
  ASSERT_GT(viewsUnderFirst, 0);

  QSignalSpy added(m_Module.get(), &VXVisualizationModuleWidget::presetAdded);
  m_Module->createPreset(first, "Grains", false);
  ASSERT_EQ(added.count(), 1);
  EXPECT_TRUE(outputContains("Successfully saved preset Grains to the visualization presets"));
  const QJsonObject presets = storedPresets();
  ASSERT_TRUE(presets.value("Grains").isString());
  const nlohmann::json preset =
    nlohmann::json::parse(presets.value("Grains").toString().toStdString());
  EXPECT_FALSE(preset.contains("split_view_state"));
  ASSERT_TRUE(preset["tree_view_state"].is_array());
  ASSERT_EQ(preset["tree_view_state"].size(), static_cast<size_t>(viewsUnderFirst));
  const nlohmann::json indices = renderWindowIndices(preset["tree_view_state"]);
  ASSERT_FALSE(indices.empty());
  for (const auto& index : indices)
    EXPECT_EQ(index.get<int>(), -1);

  // applied under the second source it adds the same data views there, in the active view
  const QModelIndex second = model()->helperIndex(sources[1]);
  const int before = model()->rowCount(second);
  m_Module->applyPreset(second, "Grains");
  EXPECT_EQ(model()->rowCount(second), before + viewsUnderFirst);
  const QModelIndex newest = model()->index(model()->rowCount(second) - 1, 1, second);
  VXRepresentation* representation = model()->getRepresentation(newest);
  ASSERT_NE(representation, nullptr);
  EXPECT_TRUE(representation->isVisible());
}

TEST_F(ModuleFixture, PresetWithViewsAsksBeforeClearingTheLayout)
{
  const auto sample = pipelinetest::writeSample(m_Dir);
  m_Module->pipeline()->importFile(qpath(sample));
  grid()->addColumn(grid()->allViews().front());
  pump();
  const QModelIndex first = model()->helperIndex(dataSources()[0]);
  m_Module->createPreset(first, "Two Views", true);
  const nlohmann::json preset =
    nlohmann::json::parse(storedPresets().value("Two Views").toString().toStdString());
  ASSERT_TRUE(preset.contains("split_view_state"));

  grid()->addRow(grid()->allViews().front());
  pump();
  ASSERT_EQ(grid()->viewCount(), 3);
  m_Dialogs.answers = { QMessageBox::Cancel };
  m_Module->applyPreset(first, "Two Views");
  ASSERT_EQ(m_Dialogs.asked.size(), 1u);
  EXPECT_EQ(m_Dialogs.asked[0].title, "Loading Preset Possible Loss of Data");
  EXPECT_EQ(m_Dialogs.asked[0].text,
            "The existing render window split view state will be cleared while loading preset 'Two "
            "Views'. This may result in a loss of existing "
            "data.\n\n Would you like to continue opening the preset?)");
  EXPECT_EQ(m_Dialogs.asked[0].defaultButton, QMessageBox::Cancel);
  EXPECT_EQ(grid()->viewCount(), 3);

  m_Dialogs.answers = { QMessageBox::Open };
  m_Module->applyPreset(first, "Two Views");
  EXPECT_EQ(grid()->viewCount(), 2);
}

TEST_F(ModuleFixture, BrokenPresetsAreReportedOneByOne)
{
  storePresetValue("Number", 42);
  storePresetValue("Empty", QString());
  storePresetValue("Broken", QString("{\"tree_view_state\": ["));
  const QModelIndex nowhere;
  m_Module->applyPreset(nowhere, "Missing");
  m_Module->applyPreset(nowhere, "Number");
  m_Module->applyPreset(nowhere, "Empty");
  m_Module->applyPreset(nowhere, "Broken");
  ASSERT_EQ(output.size(), 4);
  EXPECT_EQ(output[0], "Error reading visualization presets; missing Missing key");
  EXPECT_EQ(output[1],
            "Error reading visualization preset Number. Expected json formatted string not found.");
  EXPECT_EQ(output[2],
            "Error reading visualization preset Empty. No json formatted strings found.");
  EXPECT_TRUE(
    output[3].startsWith("Error reading visualization preset 'Broken': malformed JSON ("));
  EXPECT_TRUE(output[3].endsWith("). Delete the preset and recreate it."));
}

TEST_F(ModuleFixture, PresetsExportAndImportThroughFiles)
{
  storePresetValue("A", QString("{\"tree_view_state\": []}"));
  storePresetValue("B", QString("{\"tree_view_state\": [], \"split_view_state\": {}}"));
  const QString exported = qpath(m_Dir / "presets.json");
  m_Module->exportPresets(exported, { "A", "B" });
  EXPECT_EQ(output.last(), QString("Presets successfully written to file at '%1'").arg(exported));

  // a failed export leaves an existing file as it was
  const QString folder = qpath(m_Dir.path());
  m_Module->exportPresets(folder, { "A" });
  EXPECT_EQ(output.last(), QString("Failed to open preset export file '%1'").arg(folder));

  {
    QtKXSettings settings;
    settings.beginGroup("VisualizationSettings");
    settings.remove("VisualizationPresets");
  }
  storePresetValue("A", QString("{\"old\": true}"));
  m_Module->importPresets(exported);
  EXPECT_EQ(output.last(), QString("Successfully imported preset(s) from file %1").arg(exported));
  const QJsonObject presets = storedPresets();
  EXPECT_EQ(presets.keys(), (QStringList{ "A", "B" }));
  // an import overwrites a preset of the same name
  EXPECT_EQ(nlohmann::json::parse(presets.value("A").toString().toStdString()),
            nlohmann::json::parse("{\"tree_view_state\": []}"));

  m_Module->importPresets(qpath(m_Dir / "absent.json"));
  EXPECT_EQ(
    output.last(),
    QString("Error opening visualization preset file %1").arg(qpath(m_Dir / "absent.json")));
  QFile broken(qpath(m_Dir / "broken.json"));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("{\"A\": ");
  broken.close();
  m_Module->importPresets(qpath(m_Dir / "broken.json"));
  EXPECT_TRUE(
    output.last().startsWith(QString("Error importing presets from '%1': malformed JSON (")
                               .arg(qpath(m_Dir / "broken.json"))));
  EXPECT_TRUE(output.last().endsWith("). The file may be corrupt or not a valid preset file."));
}
