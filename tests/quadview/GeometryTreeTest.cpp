// The quad view's geometry chooser over a pipeline holding an image, a point
// cloud and (later) a surface file.
#include "HostDataSupport.hpp"
#include "VXTestSupport.hpp"

#include <quadview/VXGeometryTreeWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPipelineModel.hpp>

#include <QtTest/QTest>
#include <QtWidgets/QTreeWidget>

#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkXMLPolyDataWriter.h>

#include <gtest/gtest.h>

#include <utility>

TEST(GeometryTree, ListsImageGeometriesOnlyAndNamesTheChosenOneByPath)
{
  kxtest::ScopedSettings settings;
  kxtest::TestView view;
  VXPipeline pipeline;
  auto* model = new VXPipelineModel(&pipeline, &pipeline);
  pipeline.setActiveViewWidget(&view);

  VXGeometryTreeWidget chooser;
  chooser.setPipelineModel(model);
  chooser.resize(300, 300);
  chooser.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&chooser));
  EXPECT_EQ(chooser.treeWidget()->topLevelItemCount(), 0);

  kxtest::FakeController run("Run", "run-1");
  auto result = kxtest::hostResult(1, true);
  ASSERT_TRUE(pipeline.importPipelineOutput(&run, result));
  // a surface file brings no image: its bridge stays out of the tree
  vtkNew<vtkPolyData> points;
  vtkNew<vtkPoints> xyz;
  xyz->InsertNextPoint(0.0, 0.0, 0.0);
  points->SetPoints(xyz);
  const auto surface = settings.dir() / "points.vtp";
  vtkNew<vtkXMLPolyDataWriter> writer;
  writer->SetInputData(points);
  writer->SetFileName(surface.string().c_str());
  ASSERT_EQ(writer->Write(), 1);
  ASSERT_TRUE(pipeline.importFile(kxtest::qpath(surface)));
  kxtest::pump();

  // the host run's bridge with "Grains"; "Seeds" is a point cloud, left out
  ASSERT_EQ(chooser.treeWidget()->topLevelItemCount(), 1);
  QTreeWidgetItem* bridgeRow = chooser.treeWidget()->topLevelItem(0);
  auto* bridge = qobject_cast<VXBridgeObject*>(chooser.dataSources().value(0)->parent());
  ASSERT_NE(bridge, nullptr);
  EXPECT_EQ(bridgeRow->text(0), bridge->name());
  ASSERT_EQ(bridgeRow->childCount(), 1);
  EXPECT_EQ(bridgeRow->child(0)->text(0), "Grains");
  ASSERT_EQ(chooser.dataSources().size(), 1);
  VXDataSource* grains = chooser.dataSources().first();
  EXPECT_EQ(VXGeometryTreeWidget::geometryPath(grains), bridge->name() + "/Grains");

  // the keyboard walks from the bridge row to the geometry; Enter chooses it
  QList<std::pair<VXDataSource*, QString>> chosen;
  QList<std::pair<VXDataSource*, QString>> current;
  QObject::connect(&chooser, &VXGeometryTreeWidget::geometryChosen,
                   [&chosen](VXDataSource* source, const QString& path)
                   { chosen.append({ source, path }); });
  QObject::connect(&chooser, &VXGeometryTreeWidget::currentGeometryChanged,
                   [&current](VXDataSource* source, const QString& path)
                   { current.append({ source, path }); });
  QTreeWidget* tree = chooser.treeWidget();
  tree->setFocus();
  tree->setCurrentItem(bridgeRow);
  EXPECT_EQ(chooser.selectedDataSource(), nullptr);
  QTest::keyClick(tree, Qt::Key_Down);
  ASSERT_GE(current.count(), 1);
  EXPECT_EQ(current.last().first, grains);
  EXPECT_EQ(current.last().second, bridge->name() + "/Grains");
  EXPECT_EQ(chooser.selectedDataSource(), grains);
  QTest::keyClick(tree, Qt::Key_Return);
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen.at(0).first, grains);
  EXPECT_EQ(chosen.at(0).second, bridge->name() + "/Grains");
  // and so does a double click on its row
  const QPoint onRow = tree->visualItemRect(bridgeRow->child(0)).center();
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, onRow);
  QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, onRow);
  EXPECT_EQ(chosen.count(), 2);

  // removing the image empties the tree
  model->removeItem(model->helperIndex(grains));
  kxtest::pump();
  EXPECT_EQ(chooser.treeWidget()->topLevelItemCount(), 0);
  EXPECT_TRUE(chooser.dataSources().isEmpty());
  EXPECT_EQ(chooser.selectedDataSource(), nullptr);
}
