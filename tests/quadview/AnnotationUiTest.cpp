// Rulers and marks as the user meets them in a quad view: the annotations
// table, the questions before deleting, the floating editors, the pane menu
// and the annotations in a saved record.
#include "QuadViewTestSupport.hpp"
#include "QtTestSupport.hpp"

#include <quadview/VXQuadView.hpp>
#include <quadview/VXQuadViewControlWidget.hpp>
#include <quadview/VXResliceImageViewer.hpp>
#include <quadview/annotations/VXQuadViewAnnotationsController.hpp>
#include <quadview/annotations/VXQuadViewAnnotationsTableModel.hpp>
#include <quadview/annotations/VXQuadViewMark.hpp>
#include <quadview/annotations/VXQuadViewMarkHUD.hpp>
#include <quadview/annotations/VXQuadViewRuler.hpp>
#include <quadview/annotations/VXQuadViewRulerHUD.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <QVTKOpenGLNativeWidget.h>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTableView>

#include <vtkCamera.h>
#include <vtkLinearTransform.h>
#include <vtkMatrix4x4.h>
#include <vtkPolygonalHandleRepresentation3D.h>
#include <vtkTextActor.h>
#include <vtkRenderer.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorWidget.h>

#include <nlohmann/json.hpp>

using namespace voxelia::quadview::annotations;

namespace
{
/** A shown quad view of @p side by @p side pixels over a 20 x 16 x 12 voxel ramp. */
struct Annotated
{
  explicit Annotated(int side = 600)
  {
    view.resize(side, side);
    view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    QObject::connect(&view, &VXQuadView::loadGeometryRequested, &view,
                     [this](const QString&, VXQuadView*) { showImage(); });
    showImage();
  }

  void showImage()
  {
    view.setGeometry(nullptr, image);
    kxtest::pump();
  }

  VXQuadViewAnnotationsController& controller(int pane)
  {
    return *view.annotationsController(pane);
  }

  /** Moves the cursor to @p slice of slice pane @p pane, as a drag in another pane would. */
  void moveSlice(int pane, int slice)
  {
    double center[3];
    view.getViewer(0)->GetResliceCursor()->GetCenter(center);
    center[pane] = slice * 1.0 + 0.5; // unit spacing, origin half a voxel in
    kxtest::setQuadViewCursor(view, center, 0.0);
    view.notifyAnnotationsSliceChanged();
    kxtest::pump();
  }

  vtkSmartPointer<vtkImageData> image = kxtest::hostCellImage(
    20, 16, 12, 1, [](int i, int j, int k, int) { return static_cast<float>(i + j + k); });
  VXQuadView view;
};

/** What the last confirmation asked. */
struct Asked
{
  QString title;
  QString text;
  QString informative;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  QStringList buttons;
  bool cancelIsDefault = false;
};

/** Answers every confirmation with the button named @p answer, noting the question in @p asked. */
void answerBox(Asked& asked, const QString& answer)
{
  VXUserPrompt::setBoxHandler(
    [&asked, answer](QMessageBox& box)
    {
      asked = { box.windowTitle(),
                box.text(),
                box.informativeText(),
                box.icon(),
                {},
                box.standardButton(box.defaultButton()) == QMessageBox::Cancel };
      QAbstractButton* chosen = nullptr;
      for (QAbstractButton* button : box.buttons())
      {
        asked.buttons << button->text().remove('&');
        if (button->text().remove('&') == answer)
          chosen = button;
      }
      if (chosen != nullptr)
        chosen->click();
      return 0;
    });
}

QStringList texts(const QMenu* menu)
{
  QStringList list;
  for (const QAction* action : menu->actions())
    list << action->text();
  return list;
}
} // namespace

TEST(AnnotationsTable, ColumnsEditsAndRowsFollowTheControllers)
{
  Annotated a;
  VXQuadViewAnnotationsTableModel* model = a.view.annotationsTableModel();
  ASSERT_NE(model, nullptr);
  QStringList headers;
  for (int c = 0; c < model->columnCount(); ++c)
    headers << model->headerData(c, Qt::Horizontal).toString();
  EXPECT_EQ(headers, QStringList({ "Type", "Name", "Pane", "Slice", "Length / Shape", "Locked" }));

  a.view.addRulerAtPaneLocalPos(2, QPoint(150, 150));
  a.view.addMarkAtPaneLocalPos(1, QPoint(140, 160));
  ASSERT_EQ(model->rowCount(), 2);
  const auto* ruler = dynamic_cast<VXQuadViewRuler*>(model->annotationAt(0));
  ASSERT_NE(ruler, nullptr);
  const auto cell = [model](int row, int column, int role = Qt::DisplayRole)
  { return model->index(row, column).data(role); };
  EXPECT_EQ(cell(0, 0).toString(), "Ruler");
  EXPECT_TRUE(cell(0, 1).toString().startsWith("Ruler "));
  EXPECT_EQ(cell(0, 2).toString(), "XY");
  EXPECT_EQ(cell(0, 3).toInt(), a.view.currentSliceIndexFor(2));
  // a tenth of the shorter in-plane extent away: the voxel centres span 15 in y
  EXPECT_EQ(cell(0, 4).toString(), "1.50");
  EXPECT_EQ(cell(0, 5, Qt::CheckStateRole).toInt(), Qt::Unchecked);
  EXPECT_FALSE(cell(0, 5).isValid());
  EXPECT_EQ(cell(1, 0).toString(), "Mark");
  EXPECT_EQ(cell(1, 2).toString(), "XZ");
  EXPECT_EQ(cell(1, 4).toString(), "Sphere");
  EXPECT_EQ(cell(1, 5, Qt::CheckStateRole).toInt(), Qt::Checked);
  EXPECT_TRUE(model->flags(model->index(0, 1)).testFlag(Qt::ItemIsEditable));
  EXPECT_TRUE(model->flags(model->index(0, 5)).testFlag(Qt::ItemIsUserCheckable));
  EXPECT_FALSE(model->flags(model->index(0, 0)).testFlag(Qt::ItemIsEditable));

  // names are trimmed, and empty or unchanged names are refused
  EXPECT_TRUE(model->setData(model->index(0, 1), "  Crack width "));
  EXPECT_EQ(ruler->name(), "Crack width");
  EXPECT_FALSE(model->setData(model->index(0, 1), "   "));
  EXPECT_FALSE(model->setData(model->index(0, 1), "Crack width"));
  EXPECT_TRUE(model->setData(model->index(0, 5), Qt::Checked, Qt::CheckStateRole));
  EXPECT_TRUE(ruler->locked());
  EXPECT_FALSE(model->setData(model->index(0, 5), Qt::Checked, Qt::CheckStateRole));
  EXPECT_EQ(cell(0, 5, Qt::EditRole).toBool(), true);

  // the slice column of an unlocked mark follows the slice
  EXPECT_TRUE(model->setData(model->index(1, 5), Qt::Unchecked, Qt::CheckStateRole));
  a.moveSlice(1, 3);
  EXPECT_EQ(cell(1, 3).toInt(), 3);

  // rows follow additions and removals in any pane; removal by rows takes the ids first
  a.view.addMarkAtPaneLocalPos(0, QPoint(150, 150));
  ASSERT_EQ(model->rowCount(), 3);
  EXPECT_EQ(cell(2, 2).toString(), "YZ");
  const AnnotationId last = model->annotationAt(2)->id();
  model->removeAnnotationsByRows({ 0, 1 });
  ASSERT_EQ(model->rowCount(), 1);
  EXPECT_EQ(model->rowFor(last), 0);
  a.controller(0).remove(last);
  EXPECT_EQ(model->rowCount(), 0);

  // the control panel deletes through the same questions
  VXQuadViewControlWidget panel;
  panel.setQuadView(&a.view);
  auto* table = panel.findChild<QTableView*>("annotationsTable");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->model(), model);
  a.view.addMarkAtPaneLocalPos(2, QPoint(100, 100));
  a.view.addMarkAtPaneLocalPos(2, QPoint(200, 200));
  Asked asked;
  answerBox(asked, "Cancel");
  panel.findChild<QPushButton*>("clearAnnotationsButton")->click();
  EXPECT_EQ(asked.text, "Clear all annotations in all slice panes?");
  EXPECT_EQ(model->rowCount(), 2);
  table->selectAll();
  answerBox(asked, "Delete");
  panel.findChild<QPushButton*>("deleteSelectedAnnotationsButton")->click();
  EXPECT_EQ(asked.text, "Delete 2 annotations?");
  EXPECT_EQ(model->rowCount(), 0);
  VXUserPrompt::resetHandlers();

  // activating a row (Return on it) goes to its slice: a mark pinned to slice 5 of the XY pane
  a.moveSlice(2, 5);
  a.view.addMarkAtPaneLocalPos(2, QPoint(150, 150));
  a.moveSlice(2, 9);
  ASSERT_EQ(a.view.currentSliceIndexFor(2), 9);
  panel.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
  table->setCurrentIndex(model->index(0, 0));
  QSignalSpy activated(table, &QTableView::activated);
  QTest::keyClick(table, Qt::Key_Return);
  EXPECT_EQ(activated.count(), 1);
  EXPECT_EQ(a.view.currentSliceIndexFor(2), 5);
}

TEST(AnnotationsTable, ConfirmationsAskThroughThePromptHook)
{
  using Model = VXQuadViewAnnotationsTableModel;
  Asked asked;
  answerBox(asked, "Delete");
  EXPECT_TRUE(Model::confirmDeleteOne(nullptr, "Mark 3"));
  EXPECT_EQ(asked.title, "Delete Annotation");
  EXPECT_EQ(asked.text, "Delete \"Mark 3\"?");
  EXPECT_EQ(asked.informative, "This cannot be undone.");
  EXPECT_EQ(asked.icon, QMessageBox::Question);
  EXPECT_TRUE(asked.cancelIsDefault);
  EXPECT_EQ(asked.buttons.size(), 2);
  EXPECT_TRUE(asked.buttons.contains("Delete"));

  EXPECT_TRUE(Model::confirmDeleteMany(nullptr, 1));
  EXPECT_EQ(asked.title, "Delete Annotations");
  EXPECT_EQ(asked.text, "Delete 1 annotation?");
  EXPECT_TRUE(Model::confirmDeleteMany(nullptr, 4));
  EXPECT_EQ(asked.text, "Delete 4 annotations?");
  EXPECT_EQ(asked.informative, "This cannot be undone.");

  answerBox(asked, "Clear All");
  EXPECT_TRUE(Model::confirmClearAll(nullptr, "the XY pane"));
  EXPECT_EQ(asked.title, "Clear Annotations");
  EXPECT_EQ(asked.text, "Clear all annotations in the XY pane?");
  EXPECT_TRUE(asked.cancelIsDefault);

  answerBox(asked, "Cancel");
  EXPECT_FALSE(Model::confirmClearAll(nullptr, "the XY pane"));
  EXPECT_FALSE(Model::confirmDeleteOne(nullptr, "Mark 3"));
  VXUserPrompt::resetHandlers();
}

TEST(AnnotationHud, OutOfBoundsValueIsRevertedAndTheRulerKept)
{
  Annotated a;
  a.view.addRulerAtPaneLocalPos(2, QPoint(150, 150));
  VXQuadViewAnnotationsController& controller = a.controller(2);
  auto* ruler = dynamic_cast<VXQuadViewRuler*>(controller.annotations().front().get());
  ASSERT_NE(ruler, nullptr);
  controller.showHudFor(ruler);
  auto* hud = qobject_cast<VXQuadViewRulerHUD*>(controller.hud());
  ASSERT_NE(hud, nullptr);
  EXPECT_EQ(hud->objectName(), "rulerHud");
  EXPECT_GE(hud->width(), 180);
  EXPECT_EQ(hud->findChild<QPushButton*>("hudPrimaryButton")->toolTip(), "Close the editor (Esc)");
  EXPECT_EQ(hud->findChild<QPushButton*>("hudDestructiveButton")->text(), "Delete");
  const QStringList groups = { hud->endpoint1Fields().group->title(),
                               hud->endpoint2Fields().group->title() };
  EXPECT_EQ(groups, QStringList({ "Endpoint 1", "Endpoint 2" }));
  QStringList labels;
  for (const QLabel* label : hud->endpoint1Fields().group->findChildren<QLabel*>())
    labels << label->text();
  EXPECT_TRUE(labels.contains("X:") && labels.contains("Y:") && labels.contains("Z:"))
    << labels.join(' ').toStdString();

  // the XY pane edits world x and y; x runs from 0.5 to 19.5 here
  const std::array<double, 3> before = ruler->point1();
  QDoubleSpinBox* x = hud->endpoint1Fields().u;
  EXPECT_NEAR(x->value(), before[0], 1e-4);
  x->setValue(25.0);
  auto* error = hud->findChild<QLabel*>("hudInlineError");
  EXPECT_EQ(error->text(), "Out of bounds — reverted");
  EXPECT_TRUE(error->isVisible());
  EXPECT_EQ(ruler->point1(), before);
  EXPECT_NEAR(x->value(), before[0], 1e-4);

  // a value inside moves the end, and the length follows
  x->setValue(2.0);
  EXPECT_DOUBLE_EQ(ruler->point1()[0], 2.0);
  EXPECT_EQ(hud->lengthLabel()->text(), ruler->summaryText());
  EXPECT_NEAR(ruler->distance(), std::abs(ruler->point2()[0] - 2.0), 1e-9);
}

TEST(AnnotationHud, MovedByHandItStaysWhenTheSliceChanges)
{
  Annotated a(1000); // panes taller than the editor, so that it has room to move
  a.view.addRulerAtPaneLocalPos(2, QPoint(250, 300));
  VXQuadViewAnnotationsController& controller = a.controller(2);
  VXQuadViewAnnotation* ruler = controller.annotations().front().get();
  controller.showHudFor(ruler);
  VXAnnotationHud* hud = controller.hud();
  ASSERT_NE(hud, nullptr);
  kxtest::pump();
  ASSERT_GT(hud->parentWidget()->height(), hud->height() + 60);

  // pan the pane: a HUD the user did not move follows its ruler on the next slice change
  vtkCamera* camera = a.view.getViewer(2)->GetRenderer()->GetActiveCamera();
  const auto pan = [&a, camera](double dx)
  {
    double p[3];
    double f[3];
    camera->GetPosition(p);
    camera->GetFocalPoint(f);
    camera->SetPosition(p[0] + dx, p[1], p[2]);
    camera->SetFocalPoint(f[0] + dx, f[1], f[2]);
    a.view.getViewer(2)->Render();
  };
  const QPoint placed = hud->pos();
  pan(-3.0);
  a.moveSlice(2, 4);
  EXPECT_NE(hud->pos(), placed);

  // drag it by a spot that is no control
  const QPoint grip(3, 3);
  ASSERT_EQ(hud->childAt(grip), nullptr);
  const QPoint start = hud->pos();
  QTest::mousePress(hud, Qt::LeftButton, {}, grip);
  EXPECT_EQ(hud->cursor().shape(), Qt::ClosedHandCursor);
  QTest::mouseMove(hud, grip + QPoint(-30, -25));
  QTest::mouseRelease(hud, Qt::LeftButton, {}, grip + QPoint(-30, -25));
  EXPECT_EQ(hud->cursor().shape(), Qt::OpenHandCursor);
  EXPECT_TRUE(hud->userMoved());
  const QPoint dragged = hud->pos();
  EXPECT_EQ(dragged, start + QPoint(-30, -25));

  pan(3.0);
  a.moveSlice(2, 6);
  EXPECT_EQ(hud->pos(), dragged);

  // a drag stops 4 pixels inside the pane
  QTest::mousePress(hud, Qt::LeftButton, {}, grip);
  QTest::mouseMove(hud, grip + QPoint(-2000, -2000));
  QTest::mouseRelease(hud, Qt::LeftButton, {}, grip + QPoint(-2000, -2000));
  EXPECT_EQ(hud->pos(), QPoint(4, 4));
}

TEST(AnnotationHud, TypingMInTheNameFieldArmsNothing)
{
  Annotated a;
  a.view.addMarkAtPaneLocalPos(2, QPoint(150, 150));
  VXQuadViewAnnotationsController& controller = a.controller(2);
  auto* mark = dynamic_cast<VXQuadViewMark*>(controller.annotations().front().get());
  controller.showHudFor(mark);
  auto* hud = qobject_cast<VXQuadViewMarkHUD*>(controller.hud());
  ASSERT_NE(hud, nullptr);
  EXPECT_EQ(hud->objectName(), "markHud");
  // small enough for a pane of a 600 pixel quad view
  EXPECT_LT(hud->height(), hud->parentWidget()->height());
  EXPECT_LT(hud->width(), hud->parentWidget()->width());
  QLineEdit* name = hud->nameEdit();
  a.view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&a.view));
  name->setFocus();
  ASSERT_EQ(QApplication::focusWidget(), name);
  name->selectAll();
  QTest::keyPress(name, Qt::Key_M);
  EXPECT_FALSE(controller.markKeyHeld());
  QTest::keyClicks(name, "ark A");
  QTest::keyRelease(name, Qt::Key_M);
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_EQ(mark->name(), "mark A");
  // the form's choices reach the mark and the table
  hud->findChild<QComboBox*>()->setCurrentIndex(2);
  EXPECT_EQ(mark->shape(), MarkShape::Square);
  EXPECT_EQ(a.view.annotationsTableModel()->index(0, 4).data().toString(), "Square");
  hud->findChild<QSpinBox*>()->setValue(30);
  EXPECT_EQ(mark->sizeInPixels(), 30);
  name->setFocus();
  QTest::keyClick(name, Qt::Key_Escape); // "Close the editor (Esc)"
  EXPECT_EQ(controller.hud(), nullptr);

  QSignalSpy gestures(&controller, &VXQuadViewAnnotationsController::markClickGesture);
  QTest::mouseClick(a.view.getPaneWidget(3), Qt::LeftButton, {}, QPoint(60, 60));
  EXPECT_EQ(gestures.count(), 0);
  EXPECT_EQ(controller.count(), 1);
}

TEST(AnnotationState, RulersAndMarksOfThreePanesRoundTrip)
{
  Annotated a;
  for (int pane = 0; pane < 3; ++pane)
  {
    a.view.addRulerAtPaneLocalPos(pane, QPoint(120, 140));
    a.view.addMarkAtPaneLocalPos(pane, QPoint(170, 130));
  }
  auto* mark = dynamic_cast<VXQuadViewMark*>(a.controller(1).annotations().back().get());
  mark->setShape(MarkShape::Cross);
  mark->setColor(QColor(10, 200, 30));
  nlohmann::json record;
  a.view.saveState(record);
  ASSERT_TRUE(record["perPaneAnnotations"].is_array());
  for (int pane = 0; pane < 3; ++pane)
  {
    const QJsonArray saved =
      QJsonDocument::fromJson(
        QByteArray::fromStdString(record["perPaneAnnotations"][pane].get<std::string>()))
        .array();
    ASSERT_EQ(saved.size(), 2) << pane;
    EXPECT_EQ(saved[0].toObject()["type"].toString(), "Ruler");
    EXPECT_EQ(saved[1].toObject()["type"].toString(), "Mark");
  }
  record["geometry_path"] = "Data/ramp";

  Annotated b;
  QStringList messages;
  QObject::connect(&b.view, &VXQuadView::printOutput,
                   [&messages](const QString& m) { messages << m; });
  QSignalSpy ready(&b.view, &VXQuadView::annotationsTableModelReady);
  ASSERT_TRUE(b.view.loadState(record));
  kxtest::pump();
  EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
  EXPECT_GE(ready.count(), 1);
  EXPECT_EQ(b.view.annotationsTableModel()->rowCount(), 6);
  for (int pane = 0; pane < 3; ++pane)
  {
    const auto& before = a.controller(pane).annotations();
    const auto& after = b.controller(pane).annotations();
    ASSERT_EQ(after.size(), 2u);
    for (size_t k = 0; k < 2; ++k)
    {
      EXPECT_EQ(after[k]->name(), before[k]->name());
      EXPECT_EQ(after[k]->type(), before[k]->type());
      EXPECT_EQ(after[k]->locked(), before[k]->locked());
      EXPECT_NE(after[k]->id(), before[k]->id());
    }
    const auto* r0 = dynamic_cast<VXQuadViewRuler*>(before[0].get());
    const auto* r1 = dynamic_cast<VXQuadViewRuler*>(after[0].get());
    for (int c = 0; c < 3; ++c)
    {
      EXPECT_NEAR(r1->point1()[c], r0->point1()[c], 1e-9);
      EXPECT_NEAR(r1->point2()[c], r0->point2()[c], 1e-9);
    }
    const auto* m0 = dynamic_cast<VXQuadViewMark*>(before[1].get());
    const auto* m1 = dynamic_cast<VXQuadViewMark*>(after[1].get());
    for (int c = 0; c < 3; ++c)
      EXPECT_NEAR(m1->anchor()[c], m0->anchor()[c], 1e-9);
    EXPECT_EQ(m1->shape(), m0->shape());
    EXPECT_EQ(m1->color(), m0->color());
  }

  // a resized pane keeps a mark's size in pixels and its label beside it
  auto* xyMark = dynamic_cast<VXQuadViewMark*>(b.controller(2).annotations().back().get());
  xyMark->setLabelVisibleInViewport(true);
  b.view.resize(900, 800);
  kxtest::pump();
  vtkRenderer* renderer = b.view.getViewer(2)->GetRenderer();
  const double worldPerPixel =
    2.0 * renderer->GetActiveCamera()->GetParallelScale() / renderer->GetSize()[1];
  // the handle's transform carries the uniform scale on its diagonal
  auto* scale = vtkLinearTransform::SafeDownCast(xyMark->handleRepresentation()->GetTransform());
  ASSERT_NE(scale, nullptr);
  EXPECT_NEAR(scale->GetMatrix()->GetElement(0, 0), xyMark->sizeInPixels() * worldPerPixel, 1e-9);
  const std::optional<QPointF> at = xyMark->worldToPaneLocal(xyMark->anchor());
  ASSERT_TRUE(at.has_value());
  const double ratio = b.view.getPaneWidget(3)->devicePixelRatioF();
  const double* label = xyMark->labelActor()->GetPosition(); // display pixels
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label[0], std::lround((at->x() + xyMark->sizeInPixels() + 4) * ratio));
  EXPECT_EQ(label[1], std::lround(renderer->GetSize()[1] - at->y() * ratio));

  // clearing the view empties the controllers, which stay
  VXQuadViewAnnotationsController* kept = b.view.annotationsController(0);
  b.view.clearView();
  EXPECT_EQ(b.view.annotationsController(0), kept);
  EXPECT_EQ(kept->count(), 0);
  EXPECT_EQ(b.view.annotationsTableModel()->rowCount(), 0);
}

TEST(AnnotationMenu, PaneMenuEntriesAddEditLockAndDelete)
{
  Annotated a;
  QMenu* menu = a.view.buildPaneContextMenu(3, QPoint(150, 150)); // the XY pane
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(texts(menu),
            QStringList({ "Add Ruler Here", "Add Mark Here", "Clear All Annotations in This Pane",
                          "", "Current View", "All Views" }));
  EXPECT_EQ(menu->actions()[1]->toolTip(),
            "Or hold M and left-click on the slice to drop a mark at the cursor.");
  EXPECT_EQ(menu->actions()[2]->toolTip(),
            "Removes every ruler and mark from this slice pane. Annotations in the other panes "
            "are not affected.");
  EXPECT_FALSE(menu->actions()[2]->isEnabled());
  menu->actions()[0]->trigger();
  delete menu;
  VXQuadViewAnnotationsController& controller = a.controller(2);
  ASSERT_EQ(controller.count(), 1);
  VXQuadViewAnnotation* ruler = controller.annotations().front().get();

  // on the ruler: edit, lock, delete
  menu = a.view.buildPaneContextMenu(3, QPoint(150, 150));
  EXPECT_EQ(texts(menu).mid(0, 4), QStringList({ "Edit Ruler…", "Lock", "Delete Ruler",
                                                 "Clear All Annotations in This Pane" }));
  EXPECT_TRUE(menu->actions()[3]->isEnabled());
  menu->actions()[0]->trigger();
  EXPECT_NE(qobject_cast<VXQuadViewRulerHUD*>(controller.hud()), nullptr);
  menu->actions()[1]->trigger();
  EXPECT_TRUE(ruler->locked());
  delete menu;
  menu = a.view.buildPaneContextMenu(3, QPoint(150, 150));
  EXPECT_EQ(menu->actions()[1]->text(), "Unlock");
  const QString name = ruler->name();
  Asked asked;
  answerBox(asked, "Delete");
  menu->actions()[2]->trigger();
  EXPECT_EQ(asked.text, QString("Delete \"%1\"?").arg(name));
  delete menu;
  VXUserPrompt::resetHandlers();
  EXPECT_EQ(controller.count(), 0);

  // holding M, a left click drops a mark where the click meets the slice
  QWidget* xy = a.view.getPaneWidget(3);
  QTest::keyPress(xy, Qt::Key_M);
  QTest::mouseClick(xy, Qt::LeftButton, {}, QPoint(140, 120));
  QTest::keyRelease(xy, Qt::Key_M);
  ASSERT_EQ(controller.count(), 1);
  auto* dropped = dynamic_cast<VXQuadViewMark*>(controller.annotations().front().get());
  ASSERT_NE(dropped, nullptr);
  const auto where = a.view.worldFromPaneScreenPos(2, QPoint(140, 120));
  ASSERT_TRUE(where.has_value());
  for (int c = 0; c < 3; ++c)
    EXPECT_NEAR(dropped->anchor()[c], (*where)[c], 1e-9);
  controller.clearAll();

  // oblique slices take no new rulers, marks still go
  a.view.resliceMode(2);
  const double center[3] = { 10.0, 8.0, 6.0 };
  kxtest::setQuadViewCursor(a.view, center, 30.0);
  menu = a.view.buildPaneContextMenu(3, QPoint(150, 150));
  EXPECT_EQ(texts(menu).mid(0, 2),
            QStringList({ "Add Mark Here", "Clear All Annotations in This Pane" }));
  menu->actions()[0]->trigger();
  delete menu;
  // a mark on a turned slice is edited in the plane's own axes
  ASSERT_EQ(controller.count(), 1);
  controller.showHudFor(controller.annotations().front().get());
  auto* hud = qobject_cast<VXQuadViewMarkHUD*>(controller.hud());
  ASSERT_NE(hud, nullptr);
  QStringList labels;
  for (const QLabel* label : hud->anchorFields().group->findChildren<QLabel*>())
    labels << label->text();
  EXPECT_TRUE(labels.contains("U:") && labels.contains("V:") && labels.contains("Normal:"))
    << labels.join(' ').toStdString();
}
