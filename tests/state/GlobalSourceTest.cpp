#include "StateTestSupport.hpp"
#include "VXTestSupport.hpp"

#include <visualization/VXArrowAnnotationSource.hpp>
#include <visualization/VXCaptionAnnotationSource.hpp>
#include <visualization/VXCornerAnnotationSource.hpp>
#include <visualization/VXDistanceAnnotationSource.hpp>
#include <visualization/VXGlobalSource.hpp>
#include <visualization/VXSlicePlanePointPlacer.hpp>
#include <visualization/VXStateItemFactory.hpp>
#include <visualization/VXTextAnnotationSource.hpp>

#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkCaptionActor2D.h>
#include <vtkCornerAnnotation.h>
#include <vtkImageData.h>
#include <vtkImageSlice.h>
#include <vtkImageSliceMapper.h>
#include <vtkMapper.h>
#include <vtkRenderWindow.h>
#include <vtkTextActor.h>

using namespace statetest;
using nlohmann::json;

namespace
{
const QStringList k_Kinds = { "VXTextAnnotationSource",    "VXCornerAnnotationSource",
                              "VXCaptionAnnotationSource", "VXArrowAnnotationSource",
                              "VXEllipseAnnotationSource", "VXDistanceAnnotationSource",
                              "VXImageAnnotationSource",   "VXBuildPlateAnnotationSource" };

/** A value of every key unlike the default, inside the range the settings page offers. */
json changedSettings(VXGlobalSource* source, const QString& imagePath)
{
  const json defaults = source->defaultSettings();
  json changes = json::object();
  for (const VXGlobalSource::Field& field : source->fields())
  {
    const json& value = defaults.at(field.key);
    using Type = VXGlobalSource::Field::Type;
    switch (field.type)
    {
      case Type::Text:
      case Type::MultiLineText:
        changes[field.key] = field.key == "label_format" ? "%.2f mm" : "changed " + field.key;
        break;
      case Type::ImageFile:
        changes[field.key] = imagePath.toStdString();
        break;
      case Type::Choice:
        changes[field.key] = field.choices.last().toStdString();
        break;
      case Type::Integer:
        changes[field.key] = static_cast<int>(field.minimum + 7);
        break;
      case Type::Real:
        changes[field.key] = field.minimum + std::min(field.maximum - field.minimum, 10.0) * 0.37;
        break;
      case Type::Color:
        changes[field.key] = { 0.25, 0.5, 0.75 };
        break;
      case Type::Flag:
        changes[field.key] = !value.get<bool>();
        break;
      case Type::Point:
      {
        json point = json::array();
        for (std::size_t i = 0; i < value.size(); ++i)
          point.push_back(field.maximum > field.minimum
                            ? field.minimum + (field.maximum - field.minimum) * (0.3 + 0.2 * i)
                            : value.at(i).get<double>() + 0.5 + 0.25 * i);
        changes[field.key] = point;
        break;
      }
    }
  }
  return changes;
}

/** The props of a view's main renderer of one VTK class. */
template<typename PropT>
std::vector<PropT*> propsOf(VXAbstractViewWidget* view)
{
  std::vector<PropT*> found;
  vtkPropCollection* props = view->getVisualizationWidget()->getRenderer()->GetViewProps();
  vtkCollectionSimpleIterator iter;
  props->InitTraversal(iter);
  while (vtkProp* prop = props->GetNextProp(iter))
  {
    if (auto* typed = PropT::SafeDownCast(prop))
      found.push_back(typed);
  }
  return found;
}

class GlobalSourceFixture : public StateFixture
{
protected:
  VXAbstractViewWidget* view(int index) const { return grid()->allViews().at(index); }

  /** Adds a source as the pipeline browser's menu does. */
  VXGlobalSource* add(const QString& type)
  {
    VXGlobalSource* source = info()->addGlobalSource(type);
    pump();
    return source;
  }

  /** A small PNG picture in the test's folder. */
  QString writeImage()
  {
    QImage picture(16, 8, QImage::Format_RGB32);
    picture.fill(QColor(200, 30, 30));
    const QString path = qpath(m_Dir / "logo.png");
    EXPECT_TRUE(picture.save(path, "PNG"));
    return path;
  }
};
} // namespace

TEST_F(GlobalSourceFixture, MenuAddsEachKindAsATopLevelRowCheckedInTheActiveView)
{
  m_Dialogs.fileAnswer = writeImage();
  std::unique_ptr<QMenu> menu(info()->createContextMenu(QModelIndex()));
  QMenu* annotations = nullptr;
  for (QAction* action : menu->actions())
  {
    if (action->menu() != nullptr && action->text() == "Add Annotation")
      annotations = action->menu();
  }
  ASSERT_NE(annotations, nullptr);
  const QList<QAction*> entries = annotations->actions();
  ASSERT_EQ(entries.size(), k_Kinds.size());
  for (QAction* entry : entries)
  {
    ASSERT_TRUE(entry->isEnabled());
    entry->trigger();
    pump();
  }
  // the image asked for its file
  EXPECT_EQ(m_Dialogs.fileTitles, std::vector<QString>{ "Open Image" });
  ASSERT_EQ(model()->rowCount(), k_Kinds.size());
  ASSERT_EQ(m_Module->pipeline()->globalSources().size(), k_Kinds.size());
  QStringList types;
  for (int row = 0; row < model()->rowCount(); ++row)
  {
    const QModelIndex index = model()->index(row, 1);
    ASSERT_TRUE(model()->isGlobalSource(index));
    VXGlobalSource* source = model()->getGlobalSource(index);
    types << source->typeName();
    EXPECT_EQ(model()->data(index, Qt::ToolTipRole).toString(),
              QString("Name: %1\nType: Global Source").arg(source->name()));
    EXPECT_EQ(model()->data(index, Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_TRUE(source->implementation(view(0))->error().isEmpty())
      << source->implementation(view(0))->error().toStdString();
  }
  EXPECT_EQ(types, (QStringList{ "VXTextAnnotationSource", "VXCornerAnnotationSource",
                                 "VXCaptionAnnotationSource", "VXArrowAnnotationSource",
                                 "VXEllipseAnnotationSource", "VXDistanceAnnotationSource",
                                 "VXImageAnnotationSource", "VXBuildPlateAnnotationSource" }));
  // the last one added is selected and its page, built from its settings, edits the active view's
  VXGlobalSource* plate = m_Module->pipeline()->globalSources().back();
  QCheckBox* grid = nullptr;
  for (QCheckBox* box : m_Module->findChildren<QCheckBox*>("show_grid"))
  {
    if (box->isVisible())
      grid = box;
  }
  ASSERT_NE(grid, nullptr);
  ASSERT_TRUE(grid->isChecked());
  QSignalSpy edited(plate, &VXGlobalSource::settingsChanged);
  QTest::mouseClick(grid, Qt::LeftButton, Qt::NoModifier, QPoint(6, grid->height() / 2));
  ASSERT_EQ(edited.count(), 1);
  EXPECT_EQ(edited.front().front().value<VXAbstractViewWidget*>(), view(0));
  EXPECT_EQ(plate->implementation(view(0))->settings().at("show_grid"), false);
  const QModelIndex last = model()->index(model()->rowCount() - 1, 1);
  QWidget* page = model()->itemWidget(last);
  ASSERT_NE(page, nullptr);
  EXPECT_NE(page->findChild<QWidget*>("grid_spacing"), nullptr);
  // a second ask builds a new page
  EXPECT_NE(model()->itemWidget(last), page);

  // unchecking hides the text in this view
  const QModelIndex text = model()->index(0, 1);
  ASSERT_EQ(propsOf<vtkTextActor>(view(0)).size(), 1u);
  ASSERT_TRUE(model()->setData(text, Qt::Unchecked, Qt::CheckStateRole));
  EXPECT_EQ(model()->data(text, Qt::CheckStateRole).toInt(), Qt::Unchecked);
  EXPECT_FALSE(propsOf<vtkTextActor>(view(0)).front()->GetVisibility());

  // removal takes the row, the pipeline's entry and the picture away
  model()->removeItem(text);
  pump();
  EXPECT_EQ(model()->rowCount(), k_Kinds.size() - 1);
  EXPECT_EQ(m_Module->pipeline()->globalSources().size(), k_Kinds.size() - 1);
  EXPECT_TRUE(propsOf<vtkTextActor>(view(0)).empty());

  // like bridges, sources of one kind are told apart by " (n)", the freed name first
  VXGlobalSource* firstText = add("VXTextAnnotationSource");
  VXGlobalSource* secondText = add("VXTextAnnotationSource");
  ASSERT_NE(secondText, nullptr);
  EXPECT_EQ(firstText->name(), "Text");
  EXPECT_EQ(secondText->name(), "Text (1)");
  EXPECT_EQ(secondText->sourceName(), "Text");
  EXPECT_TRUE(secondText->dataSources().isEmpty());
  EXPECT_EQ(model()->data(model()->helperIndex(secondText).siblingAtColumn(1)).toString(),
            "Text (1)");
}

TEST_F(GlobalSourceFixture, SplitViewCopiesSettingsAndEveryKindRoundTripsAllItsKeys)
{
  const QString image = writeImage();
  QList<VXGlobalSource*> sources;
  QList<json> changed;
  for (const QString& type : k_Kinds)
  {
    m_Dialogs.fileAnswer = image;
    VXGlobalSource* source = add(type);
    ASSERT_NE(source, nullptr) << type.toStdString();
    const json changes = changedSettings(source, image);
    QString error;
    ASSERT_TRUE(source->setSettings(view(0), changes, &error)) << error.toStdString();
    const json& now = source->implementation(view(0))->settings();
    // every key was changed, to the value asked for
    const json defaults = source->defaultSettings();
    for (auto iter = defaults.begin(); iter != defaults.end(); ++iter)
    {
      EXPECT_NE(now.at(iter.key()), iter.value()) << type.toStdString() << " " << iter.key();
      EXPECT_EQ(now.at(iter.key()), changes.at(iter.key())) << iter.key();
    }
    sources << source;
    changed << now;
  }
  // unknown keys and values of the wrong kind are refused with a reason
  QString error;
  EXPECT_FALSE(sources.front()->setSettings(view(0), { { "font_size", "big" } }, &error));
  EXPECT_EQ(error, "the setting 'font_size' must be a number");
  EXPECT_FALSE(sources.front()->setSettings(view(0), { { "colour", 1 } }, &error));
  EXPECT_EQ(error, "unknown setting 'colour'");

  // a split view gets a copy of each, which then goes its own way
  grid()->addColumn(view(0));
  pump();
  ASSERT_EQ(grid()->viewCount(), 2);
  for (int i = 0; i < sources.size(); ++i)
  {
    ASSERT_NE(sources[i]->implementation(view(1)), nullptr) << k_Kinds[i].toStdString();
    EXPECT_EQ(sources[i]->implementation(view(1))->settings(), changed[i]);
  }
  EXPECT_EQ(propsOf<vtkTextActor>(view(1)).size(), 1u);
  EXPECT_EQ(propsOf<vtkCornerAnnotation>(view(1)).size(), 1u);
  ASSERT_TRUE(sources[0]->setSettings(view(1), { { "text", "right only" } }));
  EXPECT_EQ(sources[0]->implementation(view(0))->settings().at("text"), "changed text");
  EXPECT_STREQ(propsOf<vtkTextActor>(view(1)).front()->GetInput(), "right only");
  // the arrow is hidden on the right only
  view(1)->mousePressed();
  pump();
  sources[3]->setVisibility(false);
  EXPECT_EQ(model()->data(model()->helperIndex(sources[3]), Qt::CheckStateRole).toInt(),
            Qt::Unchecked);
  view(0)->mousePressed();
  pump();
  EXPECT_EQ(model()->data(model()->helperIndex(sources[3]), Qt::CheckStateRole).toInt(),
            Qt::Checked);

  const QStringList linesBefore = treeLines();
  json first;
  m_Module->saveState(first);
  const json& tree = first.at("tree_view_state");
  ASSERT_EQ(tree.size(), 8u);
  for (int i = 0; i < 8; ++i)
  {
    EXPECT_EQ(tree[i].at("item_type"), k_Kinds[i].toStdString());
    // a top-level item names its window by one number
    EXPECT_EQ(tree[i].at("item_data").at("render_window_index"), 0);
  }

  freshModule();
  load(first);
  EXPECT_TRUE(output.isEmpty()) << output.join('\n').toStdString();
  EXPECT_EQ(treeLines(), linesBefore);
  const QList<VXGlobalSource*> loaded = m_Module->pipeline()->globalSources();
  ASSERT_EQ(loaded.size(), 8);
  for (int i = 0; i < 8; ++i)
  {
    EXPECT_EQ(loaded[i]->typeName(), k_Kinds[i]);
    json expected = changed[i];
    if (i == 0)
      expected["text"] = "right only";
    EXPECT_EQ(loaded[i]->implementation(view(0))->settings(), changed[i]);
    EXPECT_EQ(loaded[i]->implementation(view(1))->settings(), expected);
  }
  json second;
  m_Module->saveState(second);
  EXPECT_EQ(second.at("tree_view_state"), first.at("tree_view_state"));
}

TEST_F(GlobalSourceFixture, BadImagesAndBadValuesAreReportedWithoutTakingTheLoadDown)
{
  QFile broken(qpath(m_Dir / "broken.png"));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("\x89PNG\r\n\x1a\n not really a picture");
  broken.close();
  const std::string missing = (m_Dir / "gone.png").string();
  auto imageItem = [](const std::string& path)
  {
    return item("VXImageAnnotationSource",
                { { "render_window_index", 0 },
                  { "source_view_implementations",
                    json::array({ { { "render_window_index", 0 }, { "file_path", path } } }) } });
  };
  json badValue =
    item("VXTextAnnotationSource",
         { { "source_view_implementations",
             json::array({ { { "render_window_index", 0 }, { "font_size", "x" } } }) } });
  // only the window: a text with the starting settings
  json plain = item("VXTextAnnotationSource", { { "render_window_index", -1 } });
  load(stateWith(json::array(
    { imageItem(missing), imageItem((m_Dir / "broken.png").string()), badValue, plain })));
  EXPECT_EQ(output,
            (QStringList{
              QString("Cannot show the image '%1': the file does not exist.")
                .arg(QString::fromStdString(missing)),
              QString("Cannot show the image '%1': the file is not a PNG, JPEG, BMP or TIFF image "
                      "that can be read.")
                .arg(qpath(m_Dir / "broken.png")),
              "Error reading state file; Text 'Text': the setting 'font_size' must be a number",
            }));
  // the images stay in the tree so that the file can be fixed on their page
  ASSERT_EQ(m_Module->pipeline()->globalSources().size(), 3);
  VXGlobalSource* image = m_Module->pipeline()->globalSources().front();
  QWidget* page = model()->itemWidget(model()->helperIndex(image));
  ASSERT_NE(page, nullptr);
  auto* label = page->findChild<QLabel*>("globalSourceErrorLabel");
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->text(), output.front());
  ASSERT_TRUE(image->setSettings(view(0), { { "file_path", writeImage().toStdString() } }));
  EXPECT_TRUE(image->implementation(view(0))->error().isEmpty());
  EXPECT_TRUE(label->text().isEmpty());
  EXPECT_EQ(m_Module->pipeline()->globalSources().back()->implementation(view(0))->settings(),
            VXTextAnnotationSource().defaultSettings());

  // the largest plate over the finest spacing the page allows: the grid stops at 200 a side
  VXGlobalSource* plate = add("VXBuildPlateAnnotationSource");
  ASSERT_TRUE(
    plate->setSettings(view(0), { { "width", 1e9 }, { "depth", 1e9 }, { "grid_spacing", 1e-6 } }));
  std::vector<vtkIdType> cells;
  for (vtkActor* actor : propsOf<vtkActor>(view(0)))
  {
    actor->GetMapper()->Update();
    cells.push_back(vtkDataSet::SafeDownCast(actor->GetMapper()->GetInput())->GetNumberOfCells());
  }
  EXPECT_EQ(std::count(cells.begin(), cells.end(), vtkIdType{ 200 * 200 }), 1);
}

TEST_F(GlobalSourceFixture, RulerHandlesSnapToPixelCornersOfTheShownPicture)
{
  // a 20 x 10 picture of unit pixels, seen square on
  vtkNew<vtkImageData> pixels;
  pixels->SetDimensions(20, 10, 1);
  pixels->AllocateScalars(VTK_UNSIGNED_CHAR, 1);
  std::fill_n(static_cast<unsigned char*>(pixels->GetScalarPointer()), 200, 128);
  vtkNew<vtkImageSliceMapper> mapper;
  mapper->SetInputData(pixels);
  vtkNew<vtkImageSlice> picture;
  picture->SetMapper(mapper);
  vtkRenderer* renderer = view(0)->getVisualizationWidget()->getRenderer();
  renderer->AddViewProp(picture);
  renderer->ResetCamera();
  view(0)->getVisualizationWidget()->renderWindow()->Render();
  auto toDisplay = [renderer](double x, double y)
  {
    renderer->SetWorldPoint(x, y, 0.0, 1.0);
    renderer->WorldToDisplay();
    const double* display = renderer->GetDisplayPoint();
    return std::array<double, 2>{ display[0], display[1] };
  };

  vtkNew<VXSlicePlanePointPlacer> placer;
  EXPECT_TRUE(placer->getSnapToPixelCorner());
  placer->setPicture(renderer, picture);
  EXPECT_EQ(placer->inPlaneAxis(0), 0);
  EXPECT_EQ(placer->inPlaneAxis(1), 1);
  auto at = toDisplay(6.3, 4.2);
  double world[3];
  double orientation[9];
  ASSERT_EQ(placer->ComputeWorldPosition(renderer, at.data(), world, orientation), 1);
  EXPECT_DOUBLE_EQ(world[0], 6.5);
  EXPECT_DOUBLE_EQ(world[1], 4.5);
  placer->setSnapToPixelCorner(false);
  ASSERT_EQ(placer->ComputeWorldPosition(renderer, at.data(), world, orientation), 1);
  EXPECT_NEAR(world[0], 6.3, 0.05);
  EXPECT_NEAR(world[1], 4.2, 0.05);
  // off the picture there is nothing to place on
  auto off = toDisplay(40.0, 4.0);
  EXPECT_EQ(placer->ComputeWorldPosition(renderer, off.data(), world, orientation), 0);
  EXPECT_EQ(placer->ValidateWorldPosition(world), 1);

  // a ruler on the picture: its second handle dragged with the mouse lands on a pixel corner
  auto* ruler = qobject_cast<VXDistanceAnnotationSource*>(add("VXDistanceAnnotationSource"));
  ASSERT_NE(ruler, nullptr);
  ASSERT_TRUE(ruler->setSettings(
    view(0), { { "point1", { 1.5, 1.5, 0.0 } }, { "point2", { 5.5, 1.5, 0.0 } } }));
  view(0)->getVisualizationWidget()->renderWindow()->Render();
  QSignalSpy changed(ruler, &VXGlobalSource::settingsChanged);
  auto from = toDisplay(5.5, 1.5);
  auto to = toDisplay(11.2, 7.9);
  // the handle lights up under the pointer before the press, as it does for a user
  vtkRenderWindowInteractor* interactor = ruler->implementation(view(0))->interactor();
  interactor->SetEventInformation(static_cast<int>(from[0]), static_cast<int>(from[1]), 0, 0);
  interactor->InvokeEvent(vtkCommand::MouseMoveEvent);
  kxtest::drag(interactor, static_cast<int>(from[0]), static_cast<int>(from[1]),
               static_cast<int>(to[0]), static_cast<int>(to[1]));
  ASSERT_GE(changed.count(), 1);
  const json& settings = ruler->implementation(view(0))->settings();
  EXPECT_EQ(settings.at("point1"), json({ 1.5, 1.5, 0.0 }));
  EXPECT_DOUBLE_EQ(settings.at("point2").at(0).get<double>(), 11.5);
  EXPECT_DOUBLE_EQ(settings.at("point2").at(1).get<double>(), 7.5);
  EXPECT_DOUBLE_EQ(ruler->distance(view(0)), std::hypot(10.0, 6.0));
  renderer->RemoveViewProp(picture);
}

TEST_F(GlobalSourceFixture, CornerCaptionTextAndArrowDrawAsInTheBaseline)
{
  auto set = [this](const QString& type, const json& settings)
  {
    VXGlobalSource* source = add(type);
    ASSERT_NE(source, nullptr);
    QString error;
    ASSERT_TRUE(source->setSettings(view(0), settings, &error)) << error.toStdString();
  };
  set("VXCornerAnnotationSource", { { "upper_left_text", "Sample A\nscan 3" },
                                    { "lower_right_text", "50 um" },
                                    { "color", { 0.9, 0.9, 0.3 } } });
  set("VXArrowAnnotationSource", { { "start_point", { -1.0, -1.0, 0.0 } },
                                   { "end_point", { 1.0, 1.0, 0.0 } },
                                   { "color", { 0.2, 0.8, 1.0 } } });
  set("VXCaptionAnnotationSource", { { "caption", "pore" },
                                     { "attachment_point", { 1.0, 1.0, 0.0 } },
                                     { "offset", { -220.0, 30.0 } } });
  set("VXTextAnnotationSource", { { "text", "Build 7" },
                                  { "placement", "Lower Center" },
                                  { "color", { 1.0, 0.5, 0.5 } },
                                  { "font_size", 24 } });
  EXPECT_EQ(propsOf<vtkCaptionActor2D>(view(0)).size(), 1u);
  vtkRenderer* renderer = view(0)->getVisualizationWidget()->getRenderer();
  renderer->GetActiveCamera()->SetPosition(0, 0, 10);
  renderer->GetActiveCamera()->SetFocalPoint(0, 0, 0);
  renderer->GetActiveCamera()->SetViewUp(0, 1, 0);
  renderer->ResetCamera(-1.5, 1.5, -1.5, 1.5, -0.2, 0.2);
  m_Module->renderAllViews();
  pump();
  compareWithBaseline(m_Module->grabAllViewsImage(), "annotations_corner_caption_text_arrow");
}
