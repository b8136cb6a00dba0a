#include "ViewerApplication.hpp"

#include "ViewRenderHold.hpp"

#include <quadview/VXQuadView.hpp>
#include <quadview/VXQuadViewModuleWidget.hpp>
#include <quadview/VXQuadViewWindow.hpp>
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>
#include <visualization/QtWidgets/VXInfoWidget.hpp>
#include <visualization/QtWidgets/VXViewGridWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>
#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXFClip.hpp>
#include <visualization/VXFSlice.hpp>
#include <visualization/VXFThreshold.hpp>
#include <visualization/VXPlane.hpp>
#include <visualization/VXBox.hpp>
#include <visualization/VXStateItemFactory.hpp>
#include <visualization/VXImageSliceRep.hpp>
#include <visualization/VXImageSliceRepPimpl.hpp>
#include <visualization/VXPipeline.hpp>
#include <visualization/VXPointsRepPimpl.hpp>
#include <visualization/VXVolumeRepPimpl.hpp>
#include <visualization/VXUserPrompt.hpp>

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkCamera.h>
#include <vtkCellData.h>
#include <vtkDataSet.h>
#include <vtkPointData.h>
#include <vtkImageData.h>
#include <vtkRenderer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtWidgets/QLayout>
#include <QtGui/QImage>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QDialog>

#include <cstdio>

namespace
{
/** The data view of a --representation name: the registry's names, and "ImageSlice". */
bool RepresentationFor(const QString& name, VXRepresentation::Type* type)
{
  if (name == QStringLiteral("ImageSlice"))
  {
    *type = VXRepresentation::ImageSlice;
    return true;
  }
  if (!VXRepresentation::k_RepresentationStringToType.contains(name))
    return false;
  *type = VXRepresentation::k_RepresentationStringToType.value(name);
  return true;
}

void settle()
{
  for (int i = 0; i < 10; ++i)
  {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
}
} // namespace

ViewerApplication::ViewerApplication(ViewerOptions options)
  : m_Options(std::move(options))
{
  if (m_Options.isBatch())
  {
    // nobody is there to click: questions take their safe answer, messages go to stderr
    VXUserPrompt::setAskHandler(
      [this](const VXUserPrompt::Question& question)
      {
        std::fprintf(stderr, "%s: %s\n", qPrintable(question.title), qPrintable(question.text));
        if (question.icon == QMessageBox::Critical || question.icon == QMessageBox::Warning)
          m_Errors << question.text;
        if (question.buttons.testFlag(QMessageBox::Open))
          return QMessageBox::Open;
        return question.defaultButton != QMessageBox::NoButton ? question.defaultButton
                                                               : QMessageBox::Ok;
      });
    // boxes with their own buttons take the first answer that goes on; "do not show again"
    // stays unchecked, so a batch run never changes the user's settings
    VXUserPrompt::setChoiceHandler(
      [](const VXUserPrompt::Choice& choice)
      {
        std::fprintf(stderr, "%s: %s\n", qPrintable(choice.title), qPrintable(choice.text));
        VXUserPrompt::ChoiceAnswer answer;
        for (int i = 0; i < choice.buttons.size(); ++i)
        {
          if (i != choice.cancelButton || i == choice.buttons.size() - 1)
          {
            answer.button = i;
            break;
          }
        }
        return answer;
      });
    VXUserPrompt::setBoxHandler(
      [](QMessageBox& box)
      {
        std::fprintf(stderr, "%s: %s\n", qPrintable(box.windowTitle()), qPrintable(box.text()));
        QAbstractButton* button = box.defaultButton();
        if (button == nullptr)
          button = box.escapeButton();
        if (button == nullptr)
          return int(QMessageBox::Cancel);
        button->click();
        return int(box.standardButton(button));
      });
    // files, text and colours are not asked for: the command line says everything
    VXUserPrompt::setOpenFileHandler([](const QString&, const QString&) { return QString(); });
    VXUserPrompt::setSaveFileHandler([](const QString&, const QString&) { return QString(); });
    VXUserPrompt::setTextHandler([](const QString&, const QString&, const QString&)
                                 { return QString(); });
    VXUserPrompt::setColorHandler([](const QColor&, const QString&) { return QColor(); });
    VXUserPrompt::setDialogHandler([](QDialog&) { return int(QDialog::Rejected); });
    // nobody sees the window: the capture draws the only frames
    m_Hold = std::make_unique<ViewRenderHold>();
  }
  m_Window = std::make_unique<ViewerMainWindow>();
  m_Window->resize(m_Options.size);
  VXVisualizationModuleWidget* module = m_Window->module();
  QObject::connect(module->pipeline(), &VXPipeline::sendPopupMessage,
                   [this](const QString&, const QString& message) { m_Errors << message; });
  QObject::connect(module, &VXVisualizationModuleWidget::printOutput, [](const QString& message)
                   { std::fprintf(stderr, "%s\n", qPrintable(message)); });
  if (m_Options.isBatch())
  {
    // the window's own log (the quad view's reasons among it) is the only trace of a batch run
    QObject::connect(m_Window.get(), &ViewerMainWindow::outputAppended, [](const QString& message)
                     { std::fprintf(stderr, "%s\n", qPrintable(message)); });
  }
}

ViewerApplication::~ViewerApplication()
{
  m_Hold.reset();
  m_Window.reset();
  if (m_Options.isBatch())
    VXUserPrompt::resetHandlers();
}

bool ViewerApplication::load()
{
  if (!applyRepresentation())
    return false;
  if (m_Options.isBatch())
    m_Window->show();
  VXPipeline* pipeline = m_Window->module()->pipeline();
  for (const QString& file : m_Options.files)
  {
    if (!QFileInfo(file).isFile())
    {
      std::fprintf(stderr, "kxvtk-viewer: cannot load '%s': no such file\n", qPrintable(file));
      return false;
    }
    const int errorsBefore = m_Errors.size();
    pipeline->importFile(file);
    VXBridgeObject* bridge = pipeline->bridges().isEmpty() ? nullptr : pipeline->bridges().last();
    if (bridge == nullptr || bridge->dataSources().isEmpty())
    {
      if (m_Errors.size() == errorsBefore)
        std::fprintf(stderr, "kxvtk-viewer: cannot load '%s': not a readable data file\n",
                     qPrintable(file));
      return false;
    }
  }
  if (!applyRequestedDataView())
    return false;
  if (!applyFilters())
    return false;
  if (m_Options.hideEdges)
    hideEdges();
  if (!m_Options.stateFile.isEmpty())
  {
    if (!QFileInfo(m_Options.stateFile).isFile())
    {
      std::fprintf(stderr, "kxvtk-viewer: cannot load state '%s': no such file\n",
                   qPrintable(m_Options.stateFile));
      return false;
    }
    QStringList problems;
    auto connection =
      QObject::connect(m_Window->module(), &VXVisualizationModuleWidget::printOutput,
                       [&problems](const QString& message)
                       {
                         if (message.startsWith("Error"))
                           problems << message;
                       });
    m_Window->module()->loadState(m_Options.stateFile);
    QObject::disconnect(connection);
    if (!problems.isEmpty() && pipeline->bridges().isEmpty())
    {
      std::fprintf(stderr, "kxvtk-viewer: cannot load state '%s'\n",
                   qPrintable(m_Options.stateFile));
      return false;
    }
  }
  if (!applyColoring())
    return false;
  // a state file brings its own cameras; otherwise an oblique view shows three faces of a volume
  if (m_Options.stateFile.isEmpty())
    frameViews();
  return applySlice() && openQuadView();
}

bool ViewerApplication::openQuadView()
{
  if (!m_Options.quadView)
    return true;
  m_QuadViewWindow = m_Window->openQuadView();
  if (m_QuadViewWindow == nullptr)
  {
    std::fprintf(
      stderr, "kxvtk-viewer: --quad-view: no image geometry in the files given could be shown\n");
    return false;
  }
  settle();
  if (!m_Options.quadStateFile.isEmpty())
  {
    if (!m_QuadViewWindow->loadStateFile(m_Options.quadStateFile))
    {
      std::fprintf(stderr, "kxvtk-viewer: cannot apply quad view state '%s'\n",
                   qPrintable(m_Options.quadStateFile));
      return false;
    }
    settle();
  }
  return true;
}

bool ViewerApplication::saveQuadState()
{
  if (m_QuadViewWindow == nullptr || !m_QuadViewWindow->saveStateFile(m_Options.saveQuadStatePath))
  {
    std::fprintf(stderr, "kxvtk-viewer: failed to write quad view state '%s'\n",
                 qPrintable(m_Options.saveQuadStatePath));
    return false;
  }
  std::printf("%s\n", qPrintable(m_Options.saveQuadStatePath));
  return true;
}

bool ViewerApplication::saveQuadViewScreenshot()
{
  VXQuadView* view = m_QuadViewWindow->moduleWidget()->quadView();
  // the composite leaves out the grid's spacing between the panes
  const int spacing = view->layout() != nullptr ? view->layout()->spacing() : 0;
  const QSize target = m_Options.size + QSize(spacing, spacing);
  for (int attempt = 0; attempt < 3; ++attempt)
  {
    settle();
    const QSize delta = target - view->size();
    if (delta.isNull())
      break;
    m_QuadViewWindow->resize(m_QuadViewWindow->size() + delta);
  }
  settle();
  return writeScreenshot(view->captureAllPanesComposite(false, QColor()));
}

bool ViewerApplication::applySlice()
{
  if (m_Options.slice.isEmpty())
    return true;
  using KXVtkModule::constants::SliceDirection;
  // the combo's rows: "XYPlane", "XZPlane", "YZPlane"
  const QMap<QString, std::pair<int, SliceDirection>> directions = {
    { "XY", { 0, KXVtkModule::constants::XY } },
    { "XZ", { 1, KXVtkModule::constants::XZ } },
    { "YZ", { 2, KXVtkModule::constants::YZ } }
  };
  const QStringList parts = m_Options.slice.split(':');
  bool numberOk = false;
  const int number = parts.size() == 2 ? parts[1].toInt(&numberOk) : -1;
  if (parts.size() != 2 || !directions.contains(parts[0].toUpper()) || !numberOk || number < 0)
  {
    std::fprintf(stderr,
                 "kxvtk-viewer: invalid --slice '%s', expected DIR:N with DIR one of XY, YZ, XZ "
                 "and N a slice number from 0\n",
                 qPrintable(m_Options.slice));
    return false;
  }
  const auto [comboIndex, direction] = directions.value(parts[0].toUpper());
  int sliced = 0;
  for (VXBridgeObject* bridge : m_Window->module()->pipeline()->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      for (VXImageSliceRep* representation : source->findChildren<VXImageSliceRep*>())
      {
        for (VXRepresentationPimpl* split : representation->getDataViewSplits())
        {
          auto* slice = dynamic_cast<VXImageSliceRepPimpl*>(split);
          if (slice == nullptr)
            continue;
          slice->sliceDirectionComboChanged(comboIndex);
          if (number > slice->sliceMaximum())
          {
            std::fprintf(stderr, "kxvtk-viewer: slice %d of '%s' is outside 0..%d\n", number,
                         qPrintable(source->name()), slice->sliceMaximum());
            return false;
          }
          slice->sliceSpinBoxValueChanged(number);
          ++sliced;
        }
      }
    }
  }
  if (sliced == 0)
  {
    std::fprintf(stderr, "kxvtk-viewer: --slice needs an image slice data view (--representation "
                         "ImageSlice)\n");
    return false;
  }
  // face the slice: the camera looks along the slice's normal
  for (VXAbstractViewWidget* view : m_Window->module()->getAllViewWidgets())
  {
    vtkRenderer* renderer = view->getVisualizationWidget()->getRenderer();
    vtkCamera* camera = renderer->GetActiveCamera();
    camera->SetFocalPoint(0.0, 0.0, 0.0);
    if (direction == KXVtkModule::constants::XY)
    {
      camera->SetPosition(0.0, 0.0, 1.0);
      camera->SetViewUp(0.0, 1.0, 0.0);
    }
    else
    {
      camera->SetPosition(direction == KXVtkModule::constants::YZ ? 1.0 : 0.0,
                          direction == KXVtkModule::constants::XZ ? -1.0 : 0.0, 0.0);
      camera->SetViewUp(0.0, 0.0, 1.0);
    }
    renderer->ResetCamera();
  }
  settle();
  return true;
}

void ViewerApplication::frameViews()
{
  for (VXAbstractViewWidget* view : m_Window->module()->getAllViewWidgets())
  {
    vtkRenderer* renderer = view->getVisualizationWidget()->getRenderer();
    renderer->ResetCamera();
    renderer->GetActiveCamera()->Azimuth(35.0);
    renderer->GetActiveCamera()->Elevation(25.0);
    renderer->GetActiveCamera()->OrthogonalizeViewUp();
    renderer->ResetCamera();
  }
}

bool ViewerApplication::applyRepresentation()
{
  if (m_Options.representation.isEmpty())
    return true;
  VXRepresentation::Type type = VXRepresentation::None;
  if (!RepresentationFor(m_Options.representation, &type))
  {
    std::fprintf(stderr, "kxvtk-viewer: unknown representation '%s'; one of: %s, ImageSlice\n",
                 qPrintable(m_Options.representation),
                 qPrintable(VXRepresentation::k_RepresentationStringToType.keys().join(", ")));
    return false;
  }
  // every kind of data set gets the chosen data view as its default
  m_Window->setDataViewForAll(type);
  return true;
}

bool ViewerApplication::applyRequestedDataView()
{
  if (m_Options.representation.isEmpty())
    return true;
  VXRepresentation::Type type = VXRepresentation::None;
  RepresentationFor(m_Options.representation, &type);
  const QString typeName = VXRepresentation::k_RepresentationTypeToString.value(type);
  VXPipeline* pipeline = m_Window->module()->pipeline();
  // the pipeline's defaults cover the common data sets; structured grids, triangle strips and
  // meshes of other cells start as outlines, and the command line asks for its view everywhere
  for (VXBridgeObject* bridge : pipeline->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      QList<VXRepresentation*> others;
      bool present = false;
      for (QObject* child : source->children())
      {
        if (auto* representation = qobject_cast<VXRepresentation*>(child))
        {
          if (representation->type() == type)
            present = true;
          else
            others << representation;
        }
      }
      // a volume is ray cast through an image and a slice cuts one: other data sets have no
      // voxels
      if ((type == VXRepresentation::Volume || type == VXRepresentation::ImageSlice) &&
          !vtkImageData::SafeDownCast(source->getOutput()))
      {
        std::fprintf(stderr, "kxvtk-viewer: cannot show '%s' as %s: it is not image data\n",
                     qPrintable(source->name()), qPrintable(typeName));
        return false;
      }
      if (!present && type != VXRepresentation::None && !pipeline->addRepresentation(source, type))
      {
        std::fprintf(stderr, "kxvtk-viewer: cannot show '%s' as %s: %s\n",
                     qPrintable(source->name()), qPrintable(typeName),
                     VXRepresentation::IsRegistered(type) ? "the data view could not be created"
                                                          : "this data view is not available");
        return false;
      }
      for (VXRepresentation* representation : std::as_const(others))
        representation->removeModule();
    }
  }
  settle();
  return true;
}

bool ViewerApplication::ParseFilter(const QString& text, FilterRequest* request, QString* error)
{
  const QStringList parts = text.split(':');
  const QString kind = parts.value(0).toLower();
  auto axisOf = [&](const QString& name)
  {
    const int axis = QStringList{ "x", "y", "z" }.indexOf(name.toLower());
    if (axis < 0)
      *error = QString("'%1' is no axis (x, y or z)").arg(name);
    return axis;
  };
  *request = FilterRequest();
  if ((kind == "clip" || kind == "slice") && parts.size() <= 3)
  {
    request->typeName = kind == "clip" ? VXFClip::k_TypeName : VXFSlice::k_TypeName;
    if (kind == "clip" && parts.size() >= 2 && parts[1].toLower() == "box")
    {
      request->box = true;
      bool ok = true;
      if (parts.size() == 3)
        request->boxScale = parts[2].toDouble(&ok);
      if (!ok || request->boxScale <= 0.0)
      {
        *error = QString("'%1' is no box scale, a number above 0").arg(parts[2]);
        return false;
      }
      return true;
    }
    if (parts.size() == 3)
    {
      *error = "a plane takes one axis";
      return false;
    }
    if (parts.size() == 2)
      request->axis = axisOf(parts[1]);
    return request->axis >= 0;
  }
  if (kind == "threshold" && parts.size() == 4 && !parts[1].isEmpty())
  {
    request->typeName = VXFThreshold::k_TypeName;
    request->array = parts[1];
    bool okMin = false;
    bool okMax = false;
    request->minimum = parts[2].toDouble(&okMin);
    request->maximum = parts[3].toDouble(&okMax);
    if (!okMin || !okMax || request->minimum > request->maximum)
    {
      *error = QString("'%1:%2' is no range: MIN:MAX with MIN <= MAX").arg(parts[2], parts[3]);
      return false;
    }
    return true;
  }
  *error = "expected Clip[:x|y|z], Clip:box[:SCALE], Slice[:x|y|z] or Threshold:ARRAY:MIN:MAX";
  return false;
}

bool ViewerApplication::applyFilters()
{
  if (m_Options.filters.isEmpty())
    return true;
  std::vector<FilterRequest> requests;
  for (const QString& text : m_Options.filters)
  {
    FilterRequest request;
    QString error;
    if (!ParseFilter(text, &request, &error))
    {
      std::fprintf(stderr, "kxvtk-viewer: invalid --filter '%s': %s\n", qPrintable(text),
                   qPrintable(error));
      return false;
    }
    requests.push_back(request);
  }
  VXPipeline* pipeline = m_Window->module()->pipeline();
  int chains = 0;
  for (VXBridgeObject* bridge : pipeline->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      VXCoreObject* parent = source;
      QString skipped;
      for (const FilterRequest& request : requests)
      {
        // a threshold needs its array in what reaches it
        vtkAlgorithmOutput* port = parent->outputPort();
        auto* data =
          port != nullptr
            ? vtkDataSet::SafeDownCast(port->GetProducer()->GetOutputDataObject(port->GetIndex()))
            : nullptr;
        if (!request.array.isEmpty() &&
            (data == nullptr ||
             data->GetPointData()->GetAbstractArray(qPrintable(request.array)) == nullptr) &&
            (data == nullptr ||
             data->GetCellData()->GetAbstractArray(qPrintable(request.array)) == nullptr))
        {
          skipped = request.array;
          break;
        }
        const VXStateItemFactory::Entry* entry = VXStateItemFactory::Find(request.typeName);
        auto* filter = entry != nullptr ? qobject_cast<VXFilter*>(entry->make(pipeline)) : nullptr;
        if (filter == nullptr || !pipeline->addFilter(parent, filter))
        {
          std::fprintf(stderr, "kxvtk-viewer: cannot add a %s under '%s'\n",
                       qPrintable(request.typeName), qPrintable(parent->name()));
          delete filter;
          return false;
        }
        if (auto* clip = qobject_cast<VXFClip*>(filter))
        {
          // the picture shows the cut, not the tool that made it
          clip->setShowClipTool(false);
          if (request.box)
          {
            clip->setClipType(VXFClip::ClipType::Box);
            clip->box()->setScale({ request.boxScale, request.boxScale, request.boxScale });
          }
          else
          {
            std::array<double, 3> normal{ 0.0, 0.0, 0.0 };
            normal[request.axis] = 1.0;
            clip->plane()->setValues(normal, clip->plane()->getOrigin());
          }
        }
        else if (auto* slice = qobject_cast<VXFSlice*>(filter))
        {
          slice->setShowPlaneTool(false);
          std::array<double, 3> normal{ 0.0, 0.0, 0.0 };
          normal[request.axis] = 1.0;
          slice->plane()->setValues(normal, slice->plane()->getOrigin());
        }
        else if (auto* threshold = qobject_cast<VXFThreshold*>(filter))
        {
          const auto& infos = threshold->activeArrayInfos();
          for (size_t i = 0; i < infos.size(); ++i)
          {
            if (infos[i].displayName == request.array)
              threshold->setActiveArrayInfoIndex(i);
          }
          threshold->setUserRange(request.minimum, request.maximum);
        }
        filter->applyFilter();
        // only the end of the chain shows
        for (VXRepresentation* shown :
             parent->findChildren<VXRepresentation*>(QString(), Qt::FindDirectChildrenOnly))
          shown->setVisibility(false);
        parent = filter;
      }
      if (skipped.isEmpty())
      {
        ++chains;
        continue;
      }
      std::fprintf(stderr, "kxvtk-viewer: '%s' has no array '%s': it is hidden\n",
                   qPrintable(source->name()), qPrintable(skipped));
      // the picture is of the filtered data: a data set the chain can't take stays out of it
      for (VXRepresentation* shown : source->findChildren<VXRepresentation*>())
        shown->setVisibility(false);
    }
  }
  settle();
  if (chains == 0)
  {
    std::fprintf(stderr, "kxvtk-viewer: no data set takes the whole --filter chain\n");
    return false;
  }
  return true;
}

void ViewerApplication::hideEdges()
{
  for (VXBridgeObject* bridge : m_Window->module()->pipeline()->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      // the data views of filters too
      for (VXRepresentation* representation : source->findChildren<VXRepresentation*>())
      {
        for (VXRepresentationPimpl* split : representation->getDataViewSplits())
        {
          if (auto* drawn = dynamic_cast<VXOutlineRepPimpl*>(split))
            drawn->setEdgeVisibility(false);
        }
      }
    }
  }
}

bool ViewerApplication::applyColoring()
{
  if (m_Options.colorBy.isEmpty())
    return true;
  bool found = false;
  int coloredViews = 0;
  for (VXBridgeObject* bridge : m_Window->module()->pipeline()->bridges())
  {
    for (VXDataSource* source : bridge->dataSources())
    {
      if (!source->getImportedArrayNames().contains(m_Options.colorBy))
        continue;
      found = true;
      for (VXRepresentation* representation : source->findChildren<VXRepresentation*>())
      {
        if (!representation->isVisible())
          continue;
        for (VXRepresentationPimpl* split : representation->getDataViewSplits())
        {
          // outlines have no colouring; every other data view colours by array
          if (auto* colored = dynamic_cast<VXPointsRepPimpl*>(split))
          {
            colored->setActiveArray(m_Options.colorBy);
            ++coloredViews;
          }
          else if (auto* volume = dynamic_cast<VXVolumeRepPimpl*>(split))
          {
            volume->setActiveArray(m_Options.colorBy);
            ++coloredViews;
          }
          else if (auto* slice = dynamic_cast<VXImageSliceRepPimpl*>(split))
          {
            slice->setActiveArray(m_Options.colorBy);
            ++coloredViews;
          }
          else
            std::fprintf(stderr, "kxvtk-viewer: the %s view of '%s' has no array colouring\n",
                         qPrintable(representation->humanTypeName()), qPrintable(source->name()));
        }
      }
    }
  }
  if (!found)
  {
    std::fprintf(stderr, "kxvtk-viewer: no data set has an array named '%s'\n",
                 qPrintable(m_Options.colorBy));
    return false;
  }
  if (coloredViews == 0)
  {
    std::fprintf(stderr,
                 "kxvtk-viewer: cannot colour by '%s': no data view that shows it has "
                 "array colouring\n",
                 qPrintable(m_Options.colorBy));
    return false;
  }
  return true;
}

bool ViewerApplication::saveState()
{
  const QString path = m_Options.saveStatePath;
  VXUserPrompt::setSaveFileHandler([path](const QString&, const QString&) { return path; });
  QStringList failures;
  auto connection = QObject::connect(m_Window->module(), &VXVisualizationModuleWidget::printOutput,
                                     [&failures](const QString& message)
                                     {
                                       if (message.startsWith("Failed"))
                                         failures << message;
                                     });
  m_Window->module()->saveState();
  QObject::disconnect(connection);
  VXUserPrompt::setSaveFileHandler([](const QString&, const QString&) { return QString(); });
  if (!failures.isEmpty() || !QFileInfo(path).isFile())
  {
    std::fprintf(stderr, "kxvtk-viewer: failed to write state '%s'\n", qPrintable(path));
    return false;
  }
  std::printf("%s\n", qPrintable(path));
  return true;
}

void ViewerApplication::fitViewsToRequestedSize()
{
  VXViewGridWidget* grid = m_Window->module()->getViewGridWidget();
  for (int attempt = 0; attempt < 3; ++attempt)
  {
    settle();
    const QSize delta = m_Options.size - grid->size();
    if (delta.isNull())
      return;
    m_Window->resize(m_Window->size() + delta);
  }
  settle();
}

void ViewerApplication::showWindow()
{
  // showing, sizing and the first paint draw nothing: each view draws its first frame once,
  // with everything in place
  m_Hold = std::make_unique<ViewRenderHold>();
  m_Window->show();
  if (m_Options.sizeGiven)
    fitViewsToRequestedSize();
  QElapsedTimer waited;
  waited.start();
  const auto allReady = [this]()
  {
    for (VXAbstractViewWidget* view : m_Window->module()->getAllViewWidgets())
    {
      if (!view->getVisualizationWidget()->isValid())
        return false;
    }
    return true;
  };
  while (!allReady() && waited.elapsed() < 2000)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  settle();
  m_Hold->release(true);
  m_Hold.reset();
}

bool ViewerApplication::saveScreenshot()
{
  if (m_QuadViewWindow != nullptr)
    return saveQuadViewScreenshot();
  m_Window->show();
  fitViewsToRequestedSize();
  // the capture draws each view itself: a frame before it would be drawn for nobody, and so
  // would the frame that puts the view back on screen after it
  if (m_Hold != nullptr)
    m_Hold->allowOneFrame();
  return writeScreenshot(m_Window->module()->grabAllViewsImage());
}

bool ViewerApplication::writeScreenshot(const QImage& image) const
{
  QSaveFile file(m_Options.screenshotPath);
  if (image.isNull() || !file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") ||
      !file.commit())
  {
    std::fprintf(stderr, "kxvtk-viewer: failed to write '%s'\n",
                 qPrintable(m_Options.screenshotPath));
    return false;
  }
  std::printf("%s\n", qPrintable(m_Options.screenshotPath));
  return true;
}
