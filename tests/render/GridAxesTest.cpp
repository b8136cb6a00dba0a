// The axes grid: bounds, custom labels, appearance, and its options dialog.
#include "RenderTestUtils.hpp"

#include "utils/GridAxesUtils.hpp"
#include "visualization/QtWidgets/VXGridAxesWidget.hpp"
#include "visualization/QtWidgets/VXViewActionsController.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <vtkGridAxesActor3D.h>
#include <vtkImageActor.h>
#include <vtkImageData.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkTextProperty.h>

#include <QtGui/QAction>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

using rendertest::makeBox;
using rendertest::pump;

namespace
{
class GridAxes : public rendertest::ViewTest
{
protected:
  VXViewActionsController* controller() const { return m_View->getViewActionsController(); }
  std::array<double, 6> gridBounds() const
  {
    std::array<double, 6> b;
    controller()->getGridAxesActor()->GetGridBounds(b.data());
    return b;
  }
  void setSpacing(double x, double y, double z)
  {
    const VXGridAxesConfig c = controller()->gridAxesConfig();
    controller()->setGridAxesConfig({ x, y, z }, c.showGrid, c.color, c.opacity, c.showLabels,
                                    c.titles);
  }
};
} // namespace

TEST_F(GridAxes, NoActorUntilAskedForAndZeroBoundsWithoutVisibleGeometry)
{
  EXPECT_EQ(controller()->getGridAxesActor(), nullptr);
  EXPECT_FALSE(controller()->gridAxesEnabled());
  auto hidden = makeBox(1, 2, 1, 2, 1, 2);
  hidden->SetVisibility(false);
  m_View->addActor(hidden);
  controller()->setGridAxesEnabled(true);
  ASSERT_NE(controller()->getGridAxesActor(), nullptr);
  EXPECT_EQ(gridBounds(), (std::array<double, 6>{ 0, 0, 0, 0, 0, 0 }));
  EXPECT_TRUE(controller()->getGridAxesActor()->GetVisibility());
  EXPECT_TRUE(controller()->getGridAxesAction()->isChecked());
}

TEST_F(GridAxes, GridFitsTheVisibleGeometryAndIgnoresItself)
{
  m_View->addActor(makeBox(-1, 3, 0, 2, 5, 6));
  controller()->setGridAxesEnabled(true);
  EXPECT_EQ(gridBounds(), (std::array<double, 6>{ -1, 3, 0, 2, 5, 6 }));
  // a second fit with the grid visible must not grow from the grid's own bounds
  m_View->updateGridAxesBounds(false);
  EXPECT_EQ(gridBounds(), (std::array<double, 6>{ -1, 3, 0, 2, 5, 6 }));
  controller()->setGridAxesEnabled(false);
  EXPECT_FALSE(controller()->getGridAxesActor()->GetVisibility());
  EXPECT_FALSE(controller()->getGridAxesAction()->isChecked());
}

TEST_F(GridAxes, ImageActorsCountWithTheSliceTheyShow)
{
  vtkNew<vtkImageData> image;
  image->SetDimensions(11, 11, 11);
  image->SetSpacing(0.5, 0.5, 0.5);
  image->AllocateScalars(VTK_UNSIGNED_CHAR, 1);
  vtkNew<vtkImageActor> slice;
  slice->SetInputData(image);
  slice->SetDisplayExtent(0, 10, 0, 10, 4, 4);
  const std::array<double, 6> bounds = KXVtk::utils::GetImageActorRenderedBounds(slice);
  EXPECT_EQ(bounds, (std::array<double, 6>{ 0, 5, 0, 5, 2, 2 }));

  m_View->addActor(slice);
  controller()->setGridAxesEnabled(true);
  EXPECT_EQ(gridBounds(), (std::array<double, 6>{ 0, 5, 0, 5, 2, 2 }));
}

TEST_F(GridAxes, SpacingGivesEvenlySpacedCustomLabelsFromTheMinimumAndConfigReachesTheActor)
{
  m_View->addActor(makeBox(1, 3, 0, 10, 0, 1));
  controller()->setGridAxesEnabled(true);
  setSpacing(0.5, 0, 0);
  EXPECT_TRUE(controller()->gridAxesUsesCustomLabels(0));
  EXPECT_EQ(controller()->gridAxesLabels(0), (std::vector<double>{ 1.0, 1.5, 2.0, 2.5, 3.0 }));
  // 0 on the other axes: they label themselves
  EXPECT_FALSE(controller()->gridAxesUsesCustomLabels(1));
  EXPECT_FALSE(controller()->gridAxesUsesCustomLabels(2));
  EXPECT_TRUE(controller()->gridAxesLabels(1).empty());

  // a spacing larger than the extent gives one label at the minimum
  setSpacing(0, 25, 0);
  EXPECT_FALSE(controller()->gridAxesUsesCustomLabels(0));
  EXPECT_TRUE(controller()->gridAxesUsesCustomLabels(1));
  EXPECT_EQ(controller()->gridAxesLabels(1), (std::vector<double>{ 0.0 }));

  controller()->setGridAxesConfig({ 0, 0, 0 }, true, QColor(0, 255, 0), 0.5, true,
                                  { "Depth", "", "H" });
  vtkGridAxesActor3D* actor = controller()->getGridAxesActor();
  EXPECT_TRUE(actor->GetGenerateGrid());
  EXPECT_DOUBLE_EQ(actor->GetProperty()->GetColor()[1], 1.0);
  EXPECT_DOUBLE_EQ(actor->GetProperty()->GetOpacity(), 0.5);
}

TEST_F(GridAxes, InitializeAndAppearanceSetTheActorsLook)
{
  vtkNew<vtkGridAxesActor3D> actor;
  KXVtk::utils::InitializeGridAxesActor(actor);
  EXPECT_TRUE(actor->GetGenerateTicks());
  EXPECT_FALSE(actor->GetGenerateGrid());
  EXPECT_TRUE(actor->GetGenerateEdges());
  EXPECT_EQ(actor->GetLabelDisplayOffset()[0], 0);
  EXPECT_EQ(actor->GetLabelDisplayOffset()[1], -10);
  for (int axis = 0; axis < 3; ++axis)
    EXPECT_EQ(actor->GetTitleTextProperty(axis)->GetFontSize(), 18);

  KXVtk::utils::ApplyGridAxesAppearance(actor, QColor(255, 0, 0), 0.4, true);
  EXPECT_DOUBLE_EQ(actor->GetProperty()->GetOpacity(), 0.4);
  EXPECT_DOUBLE_EQ(actor->GetProperty()->GetColor()[0], 1.0);
  EXPECT_DOUBLE_EQ(actor->GetLabelTextProperty(2)->GetOpacity(), 0.4);
  EXPECT_DOUBLE_EQ(actor->GetTitleTextProperty(1)->GetColor()[0], 1.0);
  EXPECT_TRUE(actor->GetGenerateTicks());

  KXVtk::utils::ApplyGridAxesAppearance(actor, QColor(255, 0, 0), 0.4, false);
  EXPECT_DOUBLE_EQ(actor->GetLabelTextProperty(0)->GetOpacity(), 0.0);
  EXPECT_DOUBLE_EQ(actor->GetTitleTextProperty(0)->GetOpacity(), 0.0);
  EXPECT_DOUBLE_EQ(actor->GetProperty()->GetOpacity(), 0.4);
  EXPECT_FALSE(actor->GetGenerateTicks());
}

TEST_F(GridAxes, DialogHasTheTitledControlsAndAppliesEdits)
{
  m_View->addActor(makeBox(0, 4, 0, 4, 0, 4));
  controller()->setGridAxesEnabled(true);
  controller()->getEditGridAxesAction()->trigger();
  VXGridAxesWidget* dialog = controller()->getGridAxesWidget();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Grid Axes Options"));
  EXPECT_FALSE(dialog->isModal());
  EXPECT_TRUE(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  EXPECT_EQ(dialog->spacingEdit(1)->text(), QStringLiteral("0"));
  EXPECT_EQ(dialog->spacingEdit(1)->toolTip(),
            QStringLiteral("Tick spacing along the Y axis. Set to 0 to use automatic spacing."));
  EXPECT_EQ(
    dialog->titleEdit(2)->toolTip(),
    QStringLiteral("Title text shown at the end of the Z axis. Leave empty to hide the title."));
  EXPECT_EQ(dialog->showGridCheckBox()->text(), QStringLiteral("Show Grid"));
  EXPECT_EQ(dialog->showLabelsCheckBox()->text(), QStringLiteral("Show Axis Labels"));
  EXPECT_EQ(dialog->colorButton()->toolTip(),
            QStringLiteral("Color applied to grid lines, bounding edges, tick marks, tick-value "
                           "labels, and axis titles."));
  EXPECT_EQ(dialog->opacitySlider()->maximum(), 100);
  QStringList labels;
  for (QLabel* label : dialog->findChildren<QLabel*>())
    labels << label->text();
  EXPECT_TRUE(labels.contains(QStringLiteral("Spacing:")));
  EXPECT_TRUE(labels.contains(QStringLiteral("Axis Titles:")));
  EXPECT_TRUE(labels.contains(QStringLiteral("Grid Opacity:")));
  EXPECT_TRUE(labels.contains(QStringLiteral("Grid Color:")));
  EXPECT_TRUE(labels.contains(QStringLiteral("Setting a spacing value of 0 will reset that axis to "
                                             "the default automatic spacing behavior")));
  QPushButton* apply = dialog->buttonBox()->button(QDialogButtonBox::Apply);
  ASSERT_NE(apply, nullptr);
  EXPECT_TRUE(apply->isDefault());
  EXPECT_NE(dialog->buttonBox()->button(QDialogButtonBox::Close), nullptr);
  EXPECT_NE(dialog->buttonBox()->button(QDialogButtonBox::Reset), nullptr);

  dialog->spacingEdit(0)->setText(QStringLiteral("2"));
  dialog->spacingEdit(1)->setText(QStringLiteral("not a number"));
  dialog->titleEdit(0)->setText(QStringLiteral("Width"));
  dialog->opacityEdit()->setText(QStringLiteral("0.25"));
  apply->click();
  const VXGridAxesConfig& config = controller()->gridAxesConfig();
  EXPECT_DOUBLE_EQ(config.spacing[0], 2.0);
  EXPECT_DOUBLE_EQ(config.spacing[1], 0.0);
  EXPECT_EQ(config.titles[0], QStringLiteral("Width"));
  EXPECT_DOUBLE_EQ(config.opacity, 0.25);
  EXPECT_EQ(controller()->gridAxesLabels(0), (std::vector<double>{ 0.0, 2.0, 4.0 }));
  dialog->close();
}

TEST_F(GridAxes, DialogReopensWithTheCachedConfigResetsAndMirrorsOpacity)
{
  controller()->setGridAxesConfig({ 3, 0, 0 }, true, Qt::red, 0.7, false, { "a", "b", "c" });
  controller()->editGridAxes();
  VXGridAxesWidget* dialog = controller()->getGridAxesWidget();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->spacingEdit(0)->text(), QStringLiteral("3"));
  EXPECT_TRUE(dialog->showGridCheckBox()->isChecked());
  EXPECT_FALSE(dialog->showLabelsCheckBox()->isChecked());
  EXPECT_EQ(dialog->opacitySlider()->value(), 70);
  EXPECT_EQ(dialog->titleEdit(1)->text(), QStringLiteral("b"));

  dialog->buttonBox()->button(QDialogButtonBox::Reset)->click();
  EXPECT_EQ(dialog->config(), VXGridAxesConfig());
  EXPECT_EQ(dialog->spacingEdit(0)->text(), QStringLiteral("0"));
  EXPECT_TRUE(dialog->showLabelsCheckBox()->isChecked());
  EXPECT_EQ(dialog->colorButton()->color(), QColor(Qt::white));
  // Reset alone does not touch the view's settings
  EXPECT_DOUBLE_EQ(controller()->gridAxesConfig().spacing[0], 3.0);

  // reopening shows the view's settings again, in the same dialog
  controller()->editGridAxes();
  EXPECT_EQ(controller()->getGridAxesWidget(), dialog);
  EXPECT_EQ(dialog->spacingEdit(0)->text(), QStringLiteral("3"));

  // the opacity slider and edit mirror each other
  dialog->opacitySlider()->setValue(25);
  EXPECT_EQ(dialog->opacityEdit()->text(), QStringLiteral("0.25"));
  dialog->opacityEdit()->setText(QStringLiteral("0.337"));
  Q_EMIT dialog->opacityEdit()->editingFinished();
  EXPECT_EQ(dialog->opacitySlider()->value(), 33);
  EXPECT_EQ(dialog->opacityEdit()->text(), QStringLiteral("0.337"));
  dialog->opacityEdit()->setText(QStringLiteral("7"));
  Q_EMIT dialog->opacityEdit()->editingFinished();
  EXPECT_EQ(dialog->opacityEdit()->text(), QStringLiteral("1"));
  EXPECT_EQ(dialog->opacitySlider()->value(), 100);
  dialog->close();
}
