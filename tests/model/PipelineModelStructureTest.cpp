#include "ModelTestSupport.hpp"

#include <visualization/QtWidgets/VXDatasetInfoWidget.hpp>

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

#include <functional>

using namespace modeltest;

namespace
{
constexpr int k_InvalidCheck = -1;

const QString k_SourceHint = "With this item selected, use the above toolbar to add a DataView or "
                             "add a Visual Filter to see your data.";
const QString k_ViewHint = "Click on the parent of this item in the tree to add another DataView "
                           "or additional Visual Filters.";

/** What one row of the surface tree must answer. */
struct RowCase
{
  const char* label;
  const char* rows; // row numbers from the top, separated by dots
  int kind;         // 0 bridge, 1 data source, 2 filter, 3 data view, 4 global source
  QString name;
  QString toolTip;
  int checkState; // k_InvalidCheck for none
  const char* iconName;
  int childCount;
  bool canAddChildren;
  bool canReload;
  bool canSave;
};

void PrintTo(const RowCase& row, std::ostream* os)
{
  *os << row.label;
}

const std::vector<RowCase> k_SurfaceTreeRows = {
  { "bridge", "0", 0, "surface.vtp", "Name: surface.vtp\nType: Pipeline or File", k_InvalidCheck,
    "PipelineFileBridgeObj", 1, false, true, false },
  { "dataSource", "0.0", 1, "surface", "Name: surface\nType: DataSource\n" + k_SourceHint,
    k_InvalidCheck, "DataSource", 2, true, false, true },
  { "outlineView", "0.0.0", 3, "Outline View", "Name: Outline View\nType: Data View\n" + k_ViewHint,
    Qt::Checked, "Visualization", 0, false, false, true },
  { "filter", "0.0.1", 2, "Pass Filter", "Name: Pass Filter\nType: Visual Filter\n" + k_SourceHint,
    k_InvalidCheck, "Filter", 1, true, false, true },
  { "surfaceView", "0.0.1.0", 3, "Surface View",
    "Name: Surface View\nType: Data View\n" + k_ViewHint, Qt::Checked, "TriangleGeometry", 0, false,
    false, true },
  // no icon of its own: the tree's icon stands in
  { "globalSource", "1", 4, "Caption", "Name: Caption\nType: Global Source", Qt::Checked,
    "VXPipelineTreeIcon", 0, false, false, false }
};

class SurfaceTreeRows : public ::testing::TestWithParam<RowCase>
{
};

bool sameIcon(const QIcon& actual, const QString& themeName)
{
  const QImage expected = KXStyle::generateThemeIconFromName(themeName).pixmap(16, 16).toImage();
  return !actual.isNull() && actual.pixmap(16, 16).toImage() == expected;
}
} // namespace

TEST_P(SurfaceTreeRows, AnswersRolesFlagsAndKindQueries)
{
  const RowCase& row = GetParam();
  Scene scene;
  scene.buildSurfaceTree();
  const VXPipelineModel& model = *scene.model;
  std::vector<int> rows;
  for (const QString& number : QString(row.rows).split('.'))
    rows.push_back(number.toInt());
  const QModelIndex index0 = indexAt(model, rows, 0);
  const QModelIndex index1 = indexAt(model, rows, 1);
  ASSERT_TRUE(index0.isValid());
  ASSERT_TRUE(index1.isValid());

  // column 1 carries the name and tool tip; column 0 carries no text
  EXPECT_EQ(model.data(index1, Qt::DisplayRole).toString(), row.name);
  EXPECT_EQ(model.data(index1, Qt::ToolTipRole).toString(), row.toolTip);
  EXPECT_FALSE(model.data(index0, Qt::DisplayRole).isValid());
  EXPECT_FALSE(model.data(index0, Qt::ToolTipRole).isValid());

  const QVariant check = model.data(index1, k_CheckStateRole);
  EXPECT_EQ(check.isValid() ? check.toInt() : k_InvalidCheck, row.checkState);

  EXPECT_TRUE(sameIcon(model.data(index1, Qt::DecorationRole).value<QIcon>(), row.iconName))
    << row.iconName;
  EXPECT_EQ(model.data(index1, Qt::ForegroundRole).value<QColor>(), KXStyle::getDefaultTextColor());

  EXPECT_EQ(static_cast<int>(model.flags(index0)), 0x21);
  EXPECT_EQ(static_cast<int>(model.flags(index1)), 0x33);

  EXPECT_EQ(model.rowCount(index0), row.childCount);
  EXPECT_EQ(model.columnCount(index0), 2);

  EXPECT_EQ(model.isPipeline(index0), row.kind == 0);
  EXPECT_EQ(model.isDataSource(index0), row.kind == 1);
  EXPECT_EQ(model.isFilter(index0), row.kind == 2);
  EXPECT_EQ(model.isRepresentation(index0), row.kind == 3);
  EXPECT_EQ(model.isGlobalSource(index0), row.kind == 4);
  EXPECT_EQ(model.getPipelineObject(index0) != nullptr, row.kind == 0);
  EXPECT_EQ(model.getCoreObject(index0) != nullptr, row.kind != 0 && row.kind != 4);
  EXPECT_EQ(model.getFilter(index0) != nullptr, row.kind == 2);
  EXPECT_EQ(model.getRepresentation(index0) != nullptr, row.kind == 3);
  EXPECT_EQ(model.getGlobalSource(index0) != nullptr, row.kind == 4);
  EXPECT_EQ(model.canAddFilter(index0), row.canAddChildren);
  EXPECT_EQ(model.canAddRepresentation(index0), row.canAddChildren);
  EXPECT_EQ(model.canReload(index0), row.canReload);
  EXPECT_EQ(model.canSave(index0), row.canSave);
}

INSTANTIATE_TEST_SUITE_P(PipelineModel, SurfaceTreeRows, ::testing::ValuesIn(k_SurfaceTreeRows),
                         [](const ::testing::TestParamInfo<RowCase>& info)
                         { return std::string(info.param.label); });

TEST(PipelineModelStructure, IndicesParentsAndLookupsRoundTrip)
{
  Scene scene;
  scene.buildSurfaceTree();
  const std::filesystem::path sample = writeSample(scene.dir);
  scene.pipeline->importFile(qpath(sample));
  const VXPipelineModel& model = *scene.model;

  // bridges and global sources at the top, in order of arrival
  ASSERT_EQ(model.rowCount(), 3);
  EXPECT_EQ(model.data(model.index(0, 1), Qt::DisplayRole).toString(), "surface.vtp");
  EXPECT_EQ(model.data(model.index(1, 1), Qt::DisplayRole).toString(), "Caption");
  EXPECT_EQ(model.data(model.index(2, 1), Qt::DisplayRole).toString(), "sample.voxelia");

  int visited = 0;
  std::function<void(const QModelIndex&)> walk = [&](const QModelIndex& parent)
  {
    EXPECT_EQ(model.columnCount(parent), 2);
    for (int row = 0; row < model.rowCount(parent); row++)
    {
      for (int column = 0; column < 2; column++)
      {
        const QModelIndex index = model.index(row, column, parent);
        ASSERT_TRUE(index.isValid());
        EXPECT_EQ(index.row(), row);
        EXPECT_EQ(index.column(), column);
        EXPECT_EQ(model.parent(index), parent);
        // children hang from column 0 only
        if (column == 1)
        {
          EXPECT_EQ(model.rowCount(index), 0);
        }
      }
      const QModelIndex index = model.index(row, 0, parent);
      visited++;
      // top-level rows go by their name, the others by their path
      VXBridgeObject* topLevel = model.getPipelineObject(index);
      if (topLevel == nullptr)
        topLevel = model.getGlobalSource(index);
      QObject* object = topLevel;
      if (object == nullptr)
        object = model.getCoreObject(index);
      ASSERT_NE(object, nullptr);
      EXPECT_EQ(model.helperIndex(object), index);
      const QString path =
        topLevel != nullptr ? topLevel->name() : model.getCoreObject(index)->pathName();
      EXPECT_EQ(model.pathIndex(path), index) << path.toStdString();
      walk(index);
    }
    EXPECT_FALSE(model.index(model.rowCount(parent), 0, parent).isValid());
    EXPECT_FALSE(model.index(0, 2, parent).isValid());
  };
  walk(QModelIndex());

  // the surface subtree has 5 rows, the global source 1, and the sample 1 + 3 sources + 3 data
  // views
  EXPECT_EQ(visited, 5 + 1 + 7);
  EXPECT_FALSE(model.helperIndex(nullptr).isValid());
  EXPECT_FALSE(model.helperIndex(scene.pipeline.get()).isValid());
  EXPECT_FALSE(model.pathIndex("no such item").isValid());
  EXPECT_FALSE(model.parent(QModelIndex()).isValid());
}

TEST(PipelineModelStructure, CollectionsFollowTheTree)
{
  Scene scene;
  scene.buildSurfaceTree();
  scene.pipeline->importFile(qpath(writeSample(scene.dir)));
  const VXPipelineModel& model = *scene.model;
  VXBridgeObject* sampleBridge = scene.pipeline->bridges().last();

  EXPECT_EQ(model.getAllBridgeObjects(), scene.pipeline->bridges());
  EXPECT_EQ(model.getAllFilters(), QList<VXFilter*>{ scene.filter });
  EXPECT_EQ(model.getChildDataSources(model.helperIndex(sampleBridge)),
            sampleBridge->dataSources());
  EXPECT_EQ(model.getChildDataSources(model.helperIndex(scene.surfaceSource)),
            QList<VXDataSource*>{});
  EXPECT_EQ(model.getChildDataSources(QList<VXBridgeObject*>{ scene.surfaceBridge, sampleBridge }),
            QList<VXDataSource*>{ scene.surfaceSource } + sampleBridge->dataSources());

  const QList<VXDataSource*> sources = model.getAllDataSources();
  ASSERT_EQ(sources.size(), 4);
  const QStringList names = model.getAllDataSourceNames();
  ASSERT_EQ(names.size(), 4);
  EXPECT_EQ(names.first(), "surface.vtp > surface");
  EXPECT_TRUE(names.contains("sample.voxelia > Microstructure"));
  EXPECT_TRUE(names.contains("sample.voxelia > Grain Boundaries"));
  EXPECT_TRUE(names.contains("sample.voxelia > Grain Centroids"));
  for (int i = 0; i < names.size(); i++)
    EXPECT_EQ(model.getDataSource(names[i]), sources[i]);
  EXPECT_EQ(model.getDataSource("surface"), nullptr);

  // each new default data view takes the first free suffix over the whole tree
  QStringList viewNames;
  for (VXRepresentation* view : model.getAllRepresentations())
    viewNames.append(view->name());
  EXPECT_EQ(viewNames, (QStringList{ "Outline View", "Surface View", "Outline View 1",
                                     "Outline View 2", "Outline View 3" }));

  // a global source stands at the top beside the bridges but is neither a core object nor a
  // bridge of data
  EXPECT_EQ(model.getAllCoreObjects().size(), 4 + 1 + 5);
  EXPECT_FALSE(model.getAllBridgeObjects().contains(scene.caption.data()));
  EXPECT_EQ(model.getGlobalSource(model.helperIndex(scene.caption)), scene.caption.data());
}

TEST(PipelineModelStructure, EmptyModelAndHeader)
{
  Scene scene;
  const VXPipelineModel& model = *scene.model;
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 2);
  EXPECT_FALSE(model.index(0, 0).isValid());
  EXPECT_EQ(model.flags(QModelIndex()), Qt::NoItemFlags);
  EXPECT_FALSE(model.data(QModelIndex(), Qt::DisplayRole).isValid());
  EXPECT_FALSE(model.data(QModelIndex(), k_CheckStateRole).isValid());

  for (int section = 0; section <= 2; section++)
  {
    const QVariant header = model.headerData(section, Qt::Horizontal, Qt::DisplayRole);
    ASSERT_TRUE(header.isValid()) << section;
    EXPECT_EQ(header.toString(), "");
  }
  EXPECT_FALSE(model.headerData(3, Qt::Horizontal, Qt::DisplayRole).isValid());
  EXPECT_FALSE(model.headerData(-1, Qt::Horizontal, Qt::DisplayRole).isValid());
  EXPECT_FALSE(model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

TEST(PipelineModelStructure, AddOperationsRefuseWhatTheyCannotPlace)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;
  const int rowsBefore = model.rowCount();

  PassFilter stray;
  EXPECT_FALSE(model.addFilter(QModelIndex(), &stray).isValid());
  EXPECT_EQ(stray.pipeline(), nullptr);
  // a bridge row holds no core object to hang a data view from
  EXPECT_FALSE(
    model.addRepresentation(model.helperIndex(scene.surfaceBridge), VXRepresentation::Outline)
      .isValid());
  EXPECT_FALSE(
    model.addRepresentation(model.helperIndex(scene.surfaceSource), VXRepresentation::None)
      .isValid());
  EXPECT_FALSE(model.loadRepresentation(QModelIndex(), nullptr).isValid());
  EXPECT_FALSE(model.addGlobalSource(nullptr).isValid());
  EXPECT_FALSE(model.addBridgeObject(nullptr).isValid());
  EXPECT_EQ(model.rowCount(), rowsBefore);
  EXPECT_EQ(model.rowCount(model.helperIndex(scene.surfaceSource)), 2);

  // a bridge made elsewhere, as the state loader does, gets the last top row
  auto* loaded = new FileToVXBridge();
  const QModelIndex loadedIndex = model.addBridgeObject(loaded);
  ASSERT_TRUE(loadedIndex.isValid());
  EXPECT_EQ(loadedIndex.row(), rowsBefore);
  EXPECT_EQ(loaded->parent(), scene.pipeline.get());
  EXPECT_EQ(model.getPipelineObject(loadedIndex), loaded);
}

TEST(PipelineModelStructure, AddedItemsAnnounceThemselvesAndParentColoursSelectTheSource)
{
  Scene scene;
  QSignalSpy presets(scene.model, &VXPipelineModel::applyDefaultPresetRequest);
  QSignalSpy inserted(scene.model, &QAbstractItemModel::rowsInserted);
  scene.buildSurfaceTree();

  // data source, then filter
  ASSERT_EQ(presets.count(), 2);
  EXPECT_EQ(scene.model->getCoreObject(presets.at(0).at(0).value<QModelIndex>()),
            scene.surfaceSource);
  EXPECT_EQ(scene.model->getCoreObject(presets.at(1).at(0).value<QModelIndex>()), scene.filter);
  // bridge, data source, outline, filter, surface view, caption
  EXPECT_EQ(inserted.count(), 6);
  EXPECT_TRUE(scene.filter->initialized);

  QSignalSpy hostAdded(scene.model, &VXPipelineModel::kxToVXBridgeObjectAdded);
  FakeController run("Run", "run-1");
  auto result = hostResult(1, true);
  scene.pipeline->importPipelineOutput(&run, result);
  ASSERT_EQ(hostAdded.count(), 1);
  EXPECT_EQ(static_cast<VXBridgeObject*>(hostAdded.at(0).at(0).value<KXToVXBridge*>()),
            scene.pipeline->bridges().last());

  QSignalSpy instances(scene.model, &VXPipelineModel::representationViewInstanceAdded);
  Q_EMIT scene.pipeline->representationViewInstanceAdded();
  EXPECT_EQ(instances.count(), 1);

  // a data view's "go to the parent's colours" selects the data source
  QSignalSpy select(scene.model, &VXPipelineModel::selectIndexRequest);
  Q_EMIT scene.surfaceSource->goToParentColorSettings();
  ASSERT_EQ(select.count(), 1);
  EXPECT_EQ(select.at(0).at(0).value<QModelIndex>(), scene.model->helperIndex(scene.surfaceSource));
}

TEST(PipelineModelStructure, PagesAndInfoWindows)
{
  Scene scene;
  scene.buildSurfaceTree();
  VXPipelineModel& model = *scene.model;

  // a global source builds a new page on each ask
  const QModelIndex captionIndex = model.helperIndex(scene.caption);
  QWidget* first = model.itemWidget(captionIndex);
  QWidget* second = model.itemWidget(captionIndex);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(scene.caption->pagesBuilt, 2);

  // a data source keeps its page
  QWidget* sourcePage = model.itemWidget(model.helperIndex(scene.surfaceSource));
  ASSERT_NE(sourcePage, nullptr);
  EXPECT_EQ(model.itemWidget(model.helperIndex(scene.surfaceSource)), sourcePage);
  EXPECT_EQ(model.itemWidget(QModelIndex()), nullptr);
  EXPECT_EQ(model.itemWidget(model.helperIndex(scene.surfaceBridge)), nullptr);

  model.showInfoWidget(model.helperIndex(scene.surfaceSource));
  ASSERT_NE(scene.surfaceSource->getDataSetInfoWidget(), nullptr);
  EXPECT_TRUE(scene.surfaceSource->getDataSetInfoWidget()->isVisible());
  scene.surfaceSource->getDataSetInfoWidget()->hide();

  model.showInfoWidget(model.helperIndex(scene.surfaceView));
  ASSERT_FALSE(scene.surfaceView->getDataSetInfoWidget().isNull());
  EXPECT_TRUE(scene.surfaceView->getDataSetInfoWidget()->isVisible());
  scene.surfaceView->getDataSetInfoWidget()->hide();
}

namespace
{
/** Collects the model tester's complaints. */
QStringList g_TesterFailures;
void collectFailures(QtMsgType, const QMessageLogContext&, const QString& message)
{
  if (message.contains("FAIL"))
    g_TesterFailures.append(message);
}
} // namespace

TEST(PipelineModelStructure, PassesTheQtModelTesterThroughChanges)
{
  Scene scene;
  g_TesterFailures.clear();
  const QtMessageHandler previous = qInstallMessageHandler(collectFailures);
  {
    QAbstractItemModelTester tester(scene.model,
                                    QAbstractItemModelTester::FailureReportingMode::Warning);
    scene.buildSurfaceTree();
    scene.pipeline->importFile(qpath(writeSample(scene.dir)));
    scene.model->setData(scene.model->helperIndex(scene.surfaceView), Qt::Unchecked,
                         k_CheckStateRole);
    scene.model->setData(scene.model->helperIndex(scene.filter).siblingAtColumn(1),
                         "Renamed Filter", Qt::EditRole);
    scene.model->removeItem(scene.model->helperIndex(scene.filter));
    scene.model->removePipeline(scene.pipeline->bridges().last());
    flushDeletes();
  }
  qInstallMessageHandler(previous);
  EXPECT_TRUE(g_TesterFailures.isEmpty()) << g_TesterFailures.join("\n").toStdString();
  EXPECT_EQ(scene.model->rowCount(), 2);
}
