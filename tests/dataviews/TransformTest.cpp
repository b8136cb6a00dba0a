// The local transform of a data view: its page's spin boxes, the box tool in the view and the
// state move the actors alike, and the transform goes to the host as a 4x4 matrix.
#include "DataViewTestSupport.hpp"
#include "HostDataSupport.hpp"

#include <visualization/QtWidgets/VXBoxWidget.hpp>
#include <visualization/QtWidgets/VXFTransformFilterWidget.hpp>
#include <visualization/VXBox.hpp>

#include <gtest/gtest.h>

#include <QtTest/QSignalSpy>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QPushButton>

#include <vtkActor.h>
#include <vtkImageData.h>
#include <vtkLinearTransform.h>
#include <vtkMatrix4x4.h>

using namespace dataviewtest;

namespace
{
std::array<double, 3> Moved(vtkActor* actor, std::array<double, 3> point)
{
  std::array<double, 3> out{};
  actor->GetUserTransform()->TransformPoint(point.data(), out.data());
  for (double& value : out)
    value = std::round(value * 1e9) / 1e9;
  return out;
}

QDoubleSpinBox* SpinBox(VXFTransformFilterWidget* widget, const char* name)
{
  return widget->findChild<QDoubleSpinBox*>(name);
}
} // namespace

TEST(DataViewTransform, SpinBoxesBoxToolAndStateMoveTheActorsAlike)
{
  ScopedSettings settings;
  Scene scene;
  auto cube = vtkSmartPointer<vtkImageData>::New();
  cube->SetDimensions(11, 11, 11); // 0..10, centre 5, 5, 5
  VXDataSource* source = scene.source(cube);
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  // the page's "Transform" section holds the widget that the data view made when it was shown
  VXFTransformFilterWidget* widget = surface->transformWidget();
  ASSERT_NE(widget, nullptr);
  surface->settingsWidget();
  ASSERT_NE(surface->settingsWidget()->findChild<VXFTransformFilterWidget*>(), nullptr);
  EXPECT_EQ(widget->box(), nullptr);

  // rotation turns about the data's centre, then the translation moves it
  SpinBox(widget, "rotateZSpinBox")->setValue(90.0);
  SpinBox(widget, "translateXSpinBox")->setValue(5.0);
  EXPECT_EQ(surface->translation(), (std::array<double, 3>{ 5.0, 0.0, 0.0 }));
  EXPECT_EQ(surface->rotation(), (std::array<double, 3>{ 0.0, 0.0, 90.0 }));
  EXPECT_EQ(Moved(surface->actor(), { 10, 5, 5 }), (std::array<double, 3>{ 10, 10, 5 }));
  EXPECT_EQ(Moved(surface->actor(), { 5, 5, 5 }), (std::array<double, 3>{ 10, 5, 5 }));

  // the box tool takes over with the same values: the data stays where it is
  QSignalSpy shown(surface, &VXRepresentationPimpl::showTransformBoxChanged);
  widget->showBoxCheckBox()->click();
  ASSERT_EQ(shown.size(), 1);
  EXPECT_TRUE(shown[0][0].toBool());
  EXPECT_TRUE(surface->showBoxTool());
  ASSERT_NE(widget->box(), nullptr);
  EXPECT_TRUE(widget->box()->isEnabled());
  EXPECT_EQ(widget->box()->bounds(), (std::array<double, 6>{ 0, 10, 0, 10, 0, 10 }));
  EXPECT_EQ(Moved(surface->actor(), { 10, 5, 5 }), (std::array<double, 3>{ 10, 10, 5 }));

  // moving the box moves the data and the spin boxes
  widget->box()->setValues({ 0.0, 0.0, 0.0 }, { 0.0, 0.0, 0.0 }, { 2.0, 1.0, 1.0 });
  EXPECT_EQ(surface->scale(), (std::array<double, 3>{ 2.0, 1.0, 1.0 }));
  EXPECT_DOUBLE_EQ(SpinBox(widget, "scaleXSpinBox")->value(), 2.0);
  EXPECT_DOUBLE_EQ(SpinBox(widget, "translateXSpinBox")->value(), 0.0);
  EXPECT_EQ(Moved(surface->actor(), { 10, 5, 5 }), (std::array<double, 3>{ 15, 5, 5 }));
  const double* bounds = surface->actor()->GetBounds();
  EXPECT_DOUBLE_EQ(bounds[0], -5.0);
  EXPECT_DOUBLE_EQ(bounds[1], 15.0);

  // the state keeps the values and the tool; reading them moves a second data view the same way
  nlohmann::json state;
  surface->write(state);
  EXPECT_EQ(state.at("show_box_tool"), true);
  EXPECT_EQ(state.at("transform_box_scale_x"), 2.0);
  auto* other = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(other, nullptr);
  other->read(state);
  EXPECT_EQ(Moved(other->actor(), { 10, 5, 5 }), (std::array<double, 3>{ 15, 5, 5 }));

  // reset: the identity, and hiding the tool keeps it
  widget->findChild<QPushButton*>("m_ResetTransformButton")->click();
  EXPECT_EQ(surface->scale(), (std::array<double, 3>{ 1.0, 1.0, 1.0 }));
  EXPECT_TRUE(surface->actor()->GetUserTransform()->GetMatrix()->IsIdentity());
  surface->setShowBoxTool(false);
  EXPECT_FALSE(widget->showBoxCheckBox()->isChecked());
  EXPECT_FALSE(widget->box()->isEnabled());
}

TEST(DataViewTransform, TheHostGetsTheMatrixForItsOwnGeometryOnly)
{
  ScopedSettings settings;
  Scene scene;
  kxtest::TempDir dir;
  VXDataSource* source =
    scene.import(kxtest::writeSample(dir, "sample.voxelia", 8), "Microstructure");
  ASSERT_NE(source, nullptr);
  auto* surface = scene.add(source, VXRepresentation::Surface);
  ASSERT_NE(surface, nullptr);
  std::vector<std::pair<std::string, std::array<std::array<double, 4>, 4>>> sent;
  QObject::connect(scene.pipeline.get(), &VXPipeline::createApplyTransformationGeometryFilter,
                   [&](kx::core::DataPath path, const std::array<std::array<double, 4>, 4>& m)
                   { sent.emplace_back(path.toString(), m); });
  QSignalSpy output(scene.pipeline.get(), &VXPipeline::sendOutputMessage);

  // nothing to hand over yet
  QPushButton* button = surface->transformWidget()->hostButton();
  button->click();
  EXPECT_TRUE(sent.empty());
  ASSERT_EQ(output.size(), 1);
  EXPECT_EQ(output[0][0].toString(),
            VXRepresentationPimpl::k_IdentityTransformText.arg(surface->owner()->pathName()));

  // scale 2 about the centre (4, 4, 4), then 1, 2, 3 along the axes
  surface->setTransform({ 1.0, 2.0, 3.0 }, { 0.0, 0.0, 0.0 }, { 2.0, 2.0, 2.0 });
  button->click();
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0].first, "Microstructure");
  const auto& m = sent[0].second;
  EXPECT_EQ(m[0], (std::array<double, 4>{ 2.0, 0.0, 0.0, -3.0 }));
  EXPECT_EQ(m[1], (std::array<double, 4>{ 0.0, 2.0, 0.0, -2.0 }));
  EXPECT_EQ(m[2], (std::array<double, 4>{ 0.0, 0.0, 2.0, -1.0 }));
  EXPECT_EQ(m[3], (std::array<double, 4>{ 0.0, 0.0, 0.0, 1.0 }));

  // data that no host geometry holds: the user is told, nothing goes out
  std::vector<VXUserPrompt::Question> boxes;
  VXUserPrompt::setAskHandler(
    [&](const VXUserPrompt::Question& question)
    {
      boxes.push_back(question);
      return QMessageBox::Ok;
    });
  auto cube = vtkSmartPointer<vtkImageData>::New();
  cube->SetDimensions(3, 3, 3);
  auto* loose = scene.add(scene.source(cube), VXRepresentation::Surface);
  ASSERT_NE(loose, nullptr);
  loose->setTranslation({ 1.0, 0.0, 0.0 });
  loose->createApplyTransformationGeometryFilter();
  VXUserPrompt::resetHandlers();
  EXPECT_EQ(sent.size(), 1u);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].title, "Cannot Create Apply Transformation Filter");
  EXPECT_EQ(boxes[0].text,
            QString("Cannot create an Apply Transformation filter from %1 because no parent "
                    "geometry could be found.")
              .arg(loose->owner()->pathName()));
}
