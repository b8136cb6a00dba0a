#include "quadview/VXQuadView.hpp"

#include "quadview/VXResliceCursorLineRepresentation.hpp"
#include "quadview/VXResliceCursorRepresentationCommon.hpp"
#include "quadview/VXResliceCursorThickLineRepresentation.hpp"
#include "quadview/VXResliceImageViewer.hpp"
#include "quadview/annotations/AnnotationRestore.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsController.hpp"
#include "quadview/annotations/VXQuadViewAnnotationsTableModel.hpp"
#include "quadview/annotations/VXQuadViewMark.hpp"
#include "quadview/annotations/VXQuadViewRuler.hpp"
#include "quadview/vtkInteractorStyleImageNoWindowLevel.hpp"
#include "quadview/vtkResliceCursorCallback.hpp"
#include "quadview/vtkSnapToClickCallback.hpp"
#include "utils/PopulateHistogram.hpp"
#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXLookupTable.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXUserPrompt.hpp"
#include "visualization/QtWidgets/VXViewActionsController.hpp"
#include "visualization/QtWidgets/VXViewCubeRepresentation.hpp"
#include "visualization/QtWidgets/VXViewCubeWidget.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <QVTKOpenGLNativeWidget.h>
#include <vtkActor.h>
#include <vtkCallbackCommand.h>
#include <vtkCamera.h>
#include <vtkCellArray.h>
#include <vtkColorTransferFunction.h>
#include <vtkCornerAnnotation.h>
#include <vtkDataArray.h>
#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkImageData.h>
#include <vtkImageExtractComponents.h>
#include <vtkImageMagnitude.h>
#include <vtkImageProperty.h>
#include <vtkImageResliceMapper.h>
#include <vtkImageShrink3D.h>
#include <vtkImageSlabReslice.h>
#include <vtkImageSlice.h>
#include <vtkImageActor.h>
#include <vtkOpenGLRenderWindow.h>
#include <vtkPiecewiseFunction.h>
#include <vtkPlane.h>
#include <vtkPointData.h>
#include <vtkCellData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkRendererCollection.h>
#include <vtkResliceCursor.h>
#include <vtkResliceCursorActor.h>
#include <vtkResliceCursorPolyDataAlgorithm.h>
#include <vtkResliceCursorWidget.h>
#include <vtkScalarBarActor.h>
#include <vtkScalarBarRepresentation.h>
#include <vtkScalarBarWidget.h>
#include <vtkSmartVolumeMapper.h>
#include <vtkTable.h>
#include <vtkTextProperty.h>
#include <vtkTextureObject.h>
#include <vtkVolume.h>
#include <vtkVolumeProperty.h>

#include <fmt/format.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QMenu>
#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QSaveFile>
#include <QtCore/QTimer>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtWidgets/QGridLayout>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace qva = voxelia::quadview::annotations;

namespace
{
// the two in-plane cursor axes of each slice pane, by slice pane index
constexpr int k_PaneAxes[3][2] = { { 1, 2 }, { 0, 2 }, { 0, 1 } };
constexpr double k_RadToDeg = 57.29577951308232;
constexpr const char* k_AxisLetters[3] = { "x", "y", "z" };
constexpr const char* k_HistogramColumn = "image_pops";

size_t idx(int i)
{
  return static_cast<size_t>(i);
}

void cross(const double a[3], const double b[3], double out[3])
{
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

// bridge name + "/" + source name under a bridge, else the source's own name
QString sourcePath(VXDataSource* source)
{
  if (auto* bridge = qobject_cast<VXBridgeObject*>(source->parent()))
    return bridge->name() + QStringLiteral("/") + source->name();
  return source->name();
}

QVTKOpenGLNativeWidget* makePane(QWidget* parent, const char* name)
{
  auto* pane = new QVTKOpenGLNativeWidget(parent);
  pane->setObjectName(QString::fromLatin1(name));
  QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  policy.setHorizontalStretch(1);
  policy.setVerticalStretch(1);
  pane->setSizePolicy(policy);
  pane->setMinimumSize(100, 100);
  pane->setAcceptDrops(false); // drops go to the quad view itself
  return pane;
}
} // namespace

struct VXQuadView::Internals
{
  // the form
  QGridLayout* gridLayout = nullptr;
  QVTKOpenGLNativeWidget* view3D = nullptr;
  QVTKOpenGLNativeWidget* viewXZ = nullptr;
  QVTKOpenGLNativeWidget* viewXY = nullptr;
  QVTKOpenGLNativeWidget* viewYZ = nullptr;

  vtkSmartPointer<vtkResliceCursorCallback> callback;
  std::array<vtkSmartPointer<vtkSnapToClickCallback>, 3> snapCallbacks;
  std::array<vtkSmartPointer<VXResliceImageViewer>, 3> viewers;
  std::array<vtkSmartPointer<vtkInteractorStyleImageNoWindowLevel>, 3> styles;
  std::array<vtkSmartPointer<vtkScalarBarWidget>, 4> scalarBars;
  std::array<vtkSmartPointer<vtkResliceCursorLineRepresentation>, 3> reps;
  std::array<vtkSmartPointer<vtkPolyData>, 3> outlinePolys;
  std::array<vtkSmartPointer<vtkPolyDataMapper>, 3> outlineMappers;
  std::array<vtkSmartPointer<vtkActor>, 3> outlineActors;
  std::array<QVTKOpenGLNativeWidget*, 3> paneWidgets{};
  std::array<VXViewActionsController*, 4> viewActions{};
  // made once, on the first pane build, and only emptied by clearView
  std::array<qva::VXQuadViewAnnotationsController*, 3> annotationControllers{};
  qva::VXQuadViewAnnotationsTableModel* annotationsModel = nullptr;
  vtkSmartPointer<vtkImageData> image;
  vtkSmartPointer<VXViewCubeWidget> viewCube;
  QPointer<VXDataSource> source;
  VXDataSource* sourceRaw = nullptr;
  QMetaObject::Connection outputConnection;
  int dims[3] = { 0, 0, 0 };
  int lastIncomingDims[3] = { 0, 0, 0 };
  bool initialized = false;
  VXQuadViewControls controls;
  vtkSmartPointer<vtkTable> histogram;
  QHash<QPair<QString, int>, vtkSmartPointer<vtkTable>> histograms;
  std::array<vtkSmartPointer<vtkCornerAnnotation>, 4> corners;
  std::string lengthUnits = "mm";
  vtkDataArray* activeArray = nullptr;
  std::string activeArrayName;
  vtkSmartPointer<vtkImageExtractComponents> extractComponents;
  vtkSmartPointer<vtkImageMagnitude> magnitude;
  QElapsedTimer annotationTimer;
  QElapsedTimer renderTimer;
  QTimer* deferredRender = nullptr;
  QTimer* interactiveVolumeRender = nullptr;
  QTimer* stillVolumeRender = nullptr;
  vtkSmartPointer<vtkSmartVolumeMapper> volumeMapper;
  vtkSmartPointer<vtkVolume> volume;
  vtkSmartPointer<vtkVolumeProperty> volumeProperty;
  std::array<vtkSmartPointer<vtkImageResliceMapper>, 3> sliceMappers;
  std::array<vtkSmartPointer<vtkImageSlice>, 3> slices;
  std::array<vtkSmartPointer<vtkPlane>, 3> planes;
  // pane view states of a loaded record, applied again once the new panes reset their cameras
  std::array<nlohmann::json, 4> pendingViewStates;
  // counts setGeometry calls, to tell whether anyone answered loadGeometryRequested
  unsigned geometryLoads = 0;

  vtkResliceCursor* cursor() const
  {
    return viewers[0] != nullptr ? viewers[0]->GetResliceCursor() : nullptr;
  }
};

// ---------------------------------------------------------------------------
// Construction and the form

VXQuadView::VXQuadView(QWidget* parent)
  : QWidget(parent)
  , d(std::make_unique<Internals>())
{
  buildForm();
  d->lengthUnits = d->controls.m_LengthUnits.toStdString();
  assignBlankRenderWindows();
  connect(KXPreferences::Instance(), &KXPreferences::orientationMarkerTextChanged, this,
          &VXQuadView::setOrientationMarkerText);
}

VXQuadView::~VXQuadView()
{
  if (d->callback != nullptr)
    d->callback->clear();
  if (d->deferredRender != nullptr)
    d->deferredRender->stop();
  if (d->interactiveVolumeRender != nullptr)
    d->interactiveVolumeRender->stop();
  if (d->stillVolumeRender != nullptr)
    d->stillVolumeRender->stop();
  QObject::disconnect(d->outputConnection);
}

void VXQuadView::buildForm()
{
  setObjectName(QStringLiteral("VXQuadView"));
  setWindowTitle(QStringLiteral("Quad View"));
  resize(1028, 781);
  setFocusPolicy(Qt::NoFocus);
  setAcceptDrops(true);
  d->gridLayout = new QGridLayout(this);
  d->gridLayout->setObjectName(QStringLiteral("gridLayout"));
  d->gridLayout->setSpacing(2);
  d->gridLayout->setContentsMargins(0, 0, 0, 0);
  d->view3D = makePane(this, "view3D");
  d->viewXZ = makePane(this, "viewXZ");
  d->viewYZ = makePane(this, "viewYZ");
  d->viewXY = makePane(this, "viewXY");
  d->gridLayout->addWidget(d->view3D, 0, 0);
  d->gridLayout->addWidget(d->viewXZ, 0, 1);
  d->gridLayout->addWidget(d->viewYZ, 1, 1);
  d->gridLayout->addWidget(d->viewXY, 1, 0);
  for (QVTKOpenGLNativeWidget* pane : { d->view3D, d->viewXZ, d->viewYZ, d->viewXY })
    pane->installEventFilter(this);
  for (int k = 0; k < 2; ++k)
  {
    d->gridLayout->setRowStretch(k, 1);
    d->gridLayout->setColumnStretch(k, 1);
  }
}

void VXQuadView::assignBlankRenderWindows()
{
  for (QVTKOpenGLNativeWidget* pane : { d->viewXZ, d->viewYZ, d->viewXY, d->view3D })
  {
    vtkNew<vtkGenericOpenGLRenderWindow> window;
    vtkNew<vtkRenderer> renderer;
    renderer->SetBackground(0.0, 0.0, 0.0);
    window->AddRenderer(renderer);
    pane->setRenderWindow(window);
  }
}

// ---------------------------------------------------------------------------
// Image preparation

namespace
{
/** The voxels of a host image are its cells; an image that only carries point arrays is shown
 * by those instead. */
/**
 * VTK's ambient occlusion darkens a volume by its shading gradient: without shading it refuses
 * the volume on every frame. The wish stays in the record and takes effect with shading.
 */
void applyAmbientOcclusion(vtkRenderer* renderer, const VXQuadViewControls& controls)
{
  if (renderer != nullptr)
    renderer->SetUseSSAO(controls.m_SSAOEnabled && controls.m_ShadingEnabled);
}

vtkDataSetAttributes* voxelArraysOf(vtkImageData* image)
{
  if (image->GetCellData()->GetNumberOfArrays() == 0 &&
      image->GetPointData()->GetNumberOfArrays() > 0)
    return image->GetPointData();
  return image->GetCellData();
}
} // namespace

vtkSmartPointer<vtkImageData> VXQuadView::makeCellCenteredImage(vtkImageData* in)
{
  if (in == nullptr)
    return nullptr;
  int dims[3];
  in->GetDimensions(dims);
  double spacing[3];
  in->GetSpacing(spacing);
  double origin[3];
  in->GetOrigin(origin);
  auto out = vtkSmartPointer<vtkImageData>::New();
  vtkDataSetAttributes* samples = voxelArraysOf(in);
  if (samples == in->GetCellData())
  {
    // a one point axis has no cells along it: keep it one sample thick rather than empty
    out->SetExtent(0, std::max(0, dims[0] - 2), 0, std::max(0, dims[1] - 2), 0,
                   std::max(0, dims[2] - 2));
    out->SetOrigin(origin[0] + 0.5 * spacing[0], origin[1] + 0.5 * spacing[1],
                   origin[2] + 0.5 * spacing[2]);
  }
  else
  {
    // values already on the points (a .vti file, for instance) stand where they are
    out->SetExtent(0, dims[0] - 1, 0, dims[1] - 1, 0, dims[2] - 1);
    out->SetOrigin(origin);
  }
  out->SetSpacing(spacing);
  vtkPointData* points = out->GetPointData();
  for (int a = 0; a < samples->GetNumberOfArrays(); ++a)
  {
    if (vtkDataArray* array = samples->GetArray(a))
      points->AddArray(array); // shared: the reference count goes up, no voxel is copied
  }
  if (vtkDataArray* scalars = samples->GetScalars(); scalars != nullptr && scalars->GetName())
    points->SetActiveScalars(scalars->GetName());
  // a host image need not mark an array active; the panes' colour mapping needs one
  else if (points->GetNumberOfArrays() > 0 && points->GetArray(0)->GetName() != nullptr)
    points->SetActiveScalars(points->GetArray(0)->GetName());
  return out;
}

vtkSmartPointer<vtkImageData> VXQuadView::shrinkToTextureLimit(vtkImageData* image, int limit)
{
  if (image == nullptr)
    return nullptr;
  if (limit <= 0)
    limit = k_DefaultTextureLimit;
  int dims[3];
  image->GetDimensions(dims);
  int factors[3];
  for (int a = 0; a < 3; ++a)
    factors[a] = std::max(1, static_cast<int>(std::ceil(static_cast<double>(dims[a]) / limit)));
  if (factors[0] == 1 && factors[1] == 1 && factors[2] == 1)
    return image;

  vtkPointData* inPoints = image->GetPointData();
  vtkDataArray* activeScalars = inPoints->GetScalars();
  const std::string activeName =
    activeScalars != nullptr && activeScalars->GetName() ? activeScalars->GetName() : "";

  auto out = vtkSmartPointer<vtkImageData>::New();
  bool first = true;
  for (int a = 0; a < inPoints->GetNumberOfArrays(); ++a)
  {
    vtkDataArray* array = inPoints->GetArray(a);
    if (array == nullptr || array->GetName() == nullptr)
      continue;
    inPoints->SetActiveScalars(array->GetName());
    vtkNew<vtkImageShrink3D> shrink;
    shrink->SetInputData(image);
    shrink->SetShrinkFactors(factors);
    shrink->AveragingOn();
    shrink->Update();
    vtkImageData* result = shrink->GetOutput();
    if (first)
    {
      out->SetDimensions(result->GetDimensions());
      out->SetSpacing(result->GetSpacing());
      out->SetOrigin(result->GetOrigin());
      first = false;
    }
    vtkDataArray* shrunk = result->GetPointData()->GetScalars();
    if (shrunk == nullptr)
      continue;
    vtkSmartPointer<vtkDataArray> copy;
    copy.TakeReference(shrunk->NewInstance());
    copy->DeepCopy(shrunk);
    copy->SetName(array->GetName());
    out->GetPointData()->AddArray(copy);
  }
  if (first)
  {
    // no arrays: only the geometry shrinks
    int outDims[3];
    double spacing[3];
    image->GetSpacing(spacing);
    for (int a = 0; a < 3; ++a)
    {
      outDims[a] = std::max(1, dims[a] / factors[a]);
      spacing[a] *= factors[a];
    }
    out->SetDimensions(outDims);
    out->SetSpacing(spacing);
    out->SetOrigin(image->GetOrigin());
  }
  if (!activeName.empty())
  {
    inPoints->SetActiveScalars(activeName.c_str());
    out->GetPointData()->SetActiveScalars(activeName.c_str());
  }
  return out;
}

int VXQuadView::textureLimit() const
{
  auto* window = vtkOpenGLRenderWindow::SafeDownCast(d->view3D->renderWindow());
  if (window == nullptr || !window->GetInitialized())
    return k_DefaultTextureLimit;
  const int limit = vtkTextureObject::GetMaximumTextureSize3D(window);
  return limit > 0 ? limit : k_DefaultTextureLimit;
}

void VXQuadView::setGeometry(VXDataSource* source, vtkSmartPointer<vtkImageData> image)
{
  if (image == nullptr)
    return;
  QObject::disconnect(d->outputConnection);
  d->source = source;
  d->sourceRaw = source;
  image->GetDimensions(d->lastIncomingDims);
  if (source != nullptr)
  {
    // the path by which a removal of the source from the pipeline is recognised
    d->controls.m_GeometryPath = sourcePath(source);
  }
  auto prepared = shrinkToTextureLimit(makeCellCenteredImage(image), textureLimit());
  setupViewer(prepared);
  ++d->geometryLoads;
  if (source != nullptr)
  {
    if (auto* pipeline = qobject_cast<VXPipeline*>(source->parent()))
    {
      d->outputConnection = connect(pipeline, &VXPipeline::pipelineOutputReloaded, this,
                                    [this]()
                                    {
                                      if (d->source == nullptr)
                                        return;
                                      reload(vtkImageData::SafeDownCast(d->source->getOutput()));
                                    });
    }
  }
}

void VXQuadView::reload(vtkImageData* image)
{
  if (image == nullptr || d->image == nullptr)
    return;
  int dims[3];
  image->GetDimensions(dims);
  if (std::equal(dims, dims + 3, d->lastIncomingDims) && d->initialized)
  {
    // same grid: swap the arrays under the panes, so camera, cursor and annotations stay
    vtkPointData* points = d->image->GetPointData();
    for (int a = points->GetNumberOfArrays() - 1; a >= 0; --a)
      points->RemoveArray(a);
    vtkDataSetAttributes* samples = voxelArraysOf(image);
    for (int a = 0; a < samples->GetNumberOfArrays(); ++a)
    {
      if (vtkDataArray* array = samples->GetArray(a))
        points->AddArray(array);
    }
    if (vtkDataArray* scalars = samples->GetScalars(); scalars != nullptr && scalars->GetName())
      points->SetActiveScalars(scalars->GetName());
    d->image->Modified();
    refreshActiveDataArrayCache();
    // a component or magnitude image is derived from the arrays just exchanged
    updateActiveArrayAndComponent();
    render();
    return;
  }
  std::copy(dims, dims + 3, d->lastIncomingDims);
  auto prepared = shrinkToTextureLimit(makeCellCenteredImage(image), textureLimit());
  setupViewer(prepared);
}

// ---------------------------------------------------------------------------
// Building the panes

void VXQuadView::setupViewer(vtkImageData* image)
{
  if (image == nullptr)
    return;
  // VTK's slice colour mapping needs scalars to map: an image without any array is refused
  if (image->GetPointData()->GetScalars() == nullptr)
  {
    Q_EMIT printOutput("The image geometry has no arrays to show in the Quad View.");
    return;
  }
  vtkSmartPointer<vtkImageData> keep = image; // clearView must not free it

  // 1. settings survive a rebuild
  const VXQuadViewControls saved = d->controls;
  if (d->initialized)
    clearView();
  d->controls = saved;
  d->lengthUnits = d->controls.m_LengthUnits.toStdString();

  // 2.
  d->image = keep;
  image->GetDimensions(d->dims);
  d->paneWidgets = { d->viewYZ, d->viewXZ, d->viewXY };

  // 3.
  for (int i = 0; i < 3; ++i)
  {
    auto viewer = vtkSmartPointer<VXResliceImageViewer>::New();
    vtkNew<vtkGenericOpenGLRenderWindow> window;
    viewer->SetRenderWindow(window);
    d->paneWidgets[idx(i)]->setRenderWindow(viewer->GetRenderWindow());
    viewer->SetupInteractor(d->paneWidgets[idx(i)]->interactor());
    d->viewers[idx(i)] = viewer;
  }

  // 4. the XY pane reads with +Y upward
  vtkResliceCursor* cursor = d->viewers[0]->GetResliceCursor();
  cursor->SetZViewUp(0.0, 1.0, 0.0);

  // 5.
  for (int i = 0; i < 3; ++i)
  {
    VXResliceImageViewer* viewer = d->viewers[idx(i)];
    viewer->SetResliceCursor(cursor);
    auto* rep = vtkResliceCursorLineRepresentation::SafeDownCast(
      viewer->GetResliceCursorWidget()->GetRepresentation());
    if (rep != nullptr)
      rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetReslicePlaneNormal(i);
    viewer->SetInputData(image);
    viewer->SetSliceOrientation(i);
    // the stored mode, so that a rebuild in oblique or slab mode comes back as it was
    viewer->SetResliceMode(d->controls.m_ResliceMode ? 1 : 0);
    viewer->SetThickMode(d->controls.m_ThickMode ? 1 : 0);
    viewer->SetSlice((d->dims[i] - 1) / 2);
    auto style = vtkSmartPointer<vtkInteractorStyleImageNoWindowLevel>::New();
    d->paneWidgets[idx(i)]->interactor()->SetInteractorStyle(style);
    d->styles[idx(i)] = style;
    viewer->GetResliceCursorWidget()->SetEnabled(1);
    viewer->GetResliceCursorWidget()->SetManageWindowLevel(0);
    viewer->GetImageActor()->SetVisibility(0);
    installCustomRep(i);
  }

  // 6. the thin-mode picture of each slice pane
  for (int i = 0; i < 3; ++i)
  {
    auto plane = vtkSmartPointer<vtkPlane>::New();
    plane->SetOrigin(cursor->GetPlane(i)->GetOrigin());
    plane->SetNormal(cursor->GetPlane(i)->GetNormal());
    auto mapper = vtkSmartPointer<vtkImageResliceMapper>::New();
    mapper->SetInputData(image);
    mapper->SetSlicePlane(plane);
    mapper->ResampleToScreenPixelsOn();
    auto slice = vtkSmartPointer<vtkImageSlice>::New();
    slice->SetMapper(mapper);
    slice->SetVisibility(d->controls.m_ThickMode ? 0 : 1);
    d->viewers[idx(i)]->GetRenderer()->AddViewProp(slice);
    d->planes[idx(i)] = plane;
    d->sliceMappers[idx(i)] = mapper;
    d->slices[idx(i)] = slice;
  }

  // 7. the volume pane
  if (d->volumeMapper != nullptr)
  {
    d->volumeMapper->ReleaseGraphicsResources(d->view3D->renderWindow());
    d->volumeMapper->RemoveAllInputConnections(0);
  }
  d->volumeMapper = nullptr;
  d->volume = nullptr;
  d->volumeProperty = nullptr;
  vtkNew<vtkRenderer> volumeRenderer;
  vtkNew<vtkGenericOpenGLRenderWindow> volumeWindow;
  d->view3D->setRenderWindow(volumeWindow);
  volumeWindow->AddRenderer(volumeRenderer);
  initializeOrientationMarkerWidget(volumeRenderer);
  for (auto& viewer : d->viewers)
    viewer->GetRenderer()->SetBackground(0.0, 0.0, 0.0);

  // 8. the outlines of the slice planes in the volume pane
  for (int i = 0; i < 3; ++i)
  {
    vtkNew<vtkPoints> points;
    points->SetNumberOfPoints(4);
    for (vtkIdType p = 0; p < 4; ++p)
      points->SetPoint(p, 0.0, 0.0, 0.0);
    vtkNew<vtkCellArray> lines;
    for (vtkIdType p = 0; p < 4; ++p)
    {
      const vtkIdType ends[2] = { p, (p + 1) % 4 };
      lines->InsertNextCell(2, ends);
    }
    auto poly = vtkSmartPointer<vtkPolyData>::New();
    poly->SetPoints(points);
    poly->SetLines(lines);
    auto mapper = vtkSmartPointer<vtkPolyDataMapper>::New();
    mapper->SetInputData(poly);
    auto actor = vtkSmartPointer<vtkActor>::New();
    actor->SetMapper(mapper);
    actor->GetProperty()->SetRepresentationToWireframe();
    actor->GetProperty()->SetLineWidth(2.0);
    const auto color = VXViewCubeRepresentation::GetAxisColor(i);
    actor->GetProperty()->SetColor(color[0], color[1], color[2]);
    actor->SetVisibility(0);
    volumeRenderer->AddActor(actor);
    d->outlinePolys[idx(i)] = poly;
    d->outlineMappers[idx(i)] = mapper;
    d->outlineActors[idx(i)] = actor;
  }

  // 9. one callback keeps everything in step
  d->callback = vtkSmartPointer<vtkResliceCursorCallback>::New();
  d->callback->m_VolumeRenderWindow = d->view3D->renderWindow();
  d->callback->m_QuadView = this;
  for (int i = 0; i < 3; ++i)
  {
    d->callback->m_Widgets[idx(i)] = d->viewers[idx(i)]->GetResliceCursorWidget();
    d->callback->m_Viewers[idx(i)] = d->viewers[idx(i)];
    d->callback->m_Planes[idx(i)] = d->planes[idx(i)];
  }
  d->callback->setBounds(image->GetBounds());
  for (int i = 0; i < 3; ++i)
  {
    vtkResliceCursorWidget* widget = d->viewers[idx(i)]->GetResliceCursorWidget();
    widget->AddObserver(vtkResliceCursorWidget::ResliceAxesChangedEvent, d->callback);
    widget->AddObserver(vtkCommand::InteractionEvent, d->callback);
    widget->AddObserver(vtkCommand::EndInteractionEvent, d->callback);
    widget->AddObserver(vtkResliceCursorWidget::ResliceThicknessChangedEvent, d->callback);
    widget->AddObserver(vtkResliceCursorWidget::ResetCursorEvent, d->callback);
    d->viewers[idx(i)]->AddObserver(vtkResliceImageViewer::SliceChangedEvent, d->callback);
    d->viewers[idx(i)]->SetLookupTable(d->viewers[0]->GetLookupTable());
  }

  // 10. crosshair lines, edge labels and the double click
  for (int i = 0; i < 3; ++i)
  {
    d->callback->buildPaneOverlay(i, d->viewers[idx(i)]->GetRenderer());
    auto snap = vtkSmartPointer<vtkSnapToClickCallback>::New();
    snap->setPane(i, d->viewers[idx(i)], d->viewers[idx(i)]->GetResliceCursorWidget(), cursor);
    d->paneWidgets[idx(i)]->interactor()->AddObserver(vtkCommand::LeftButtonDoubleClickEvent, snap);
    d->snapCallbacks[idx(i)] = snap;
  }

  // 11.
  d->callback->syncCrosshair();
  for (QVTKOpenGLNativeWidget* pane : d->paneWidgets)
    pane->show();

  // 12. (the modes themselves were applied to the viewers above)
  resliceMode(d->controls.m_ResliceMode ? 2 : 0);
  thickMode(d->controls.m_ThickMode ? 2 : 0);

  // 13.
  initializeColorMap(image);
  initializeVolumeRender(volumeRenderer);
  initializeScalarBars();
  initializeCornerAnnotations();
  d->initialized = true;

  // 14. per-pane screenshots, background and axes grid
  const std::array<std::pair<vtkRenderer*, QVTKOpenGLNativeWidget*>, 4> panes{ {
    { volumeRenderer, d->view3D },
    { d->viewers[1]->GetRenderer(), d->viewXZ },
    { d->viewers[0]->GetRenderer(), d->viewYZ },
    { d->viewers[2]->GetRenderer(), d->viewXY },
  } };
  for (int ui = 0; ui < 4; ++ui)
  {
    auto* controller =
      new VXViewActionsController(panes[idx(ui)].first, panes[idx(ui)].second, this);
    connect(controller, &VXViewActionsController::printOutput, this, &VXQuadView::printOutput);
    d->viewActions[idx(ui)] = controller;
  }

  // 15. and 16.
  attachAnnotationControllers();

  // 17. the record onto the volume pane and the slice panes
  applyShadingToVolumeProperty();
  setSSAOEnabled(d->controls.m_SSAOEnabled);
  setLightFollowsCamera(d->controls.m_LightFollowsCamera);
  setVolumeBlendMode(d->controls.m_VolumeBlendMode);
  setGIReach(d->controls.m_GIReach);
  setVolumetricScattering(d->controls.m_VolumetricScattering);
  setBlendMode(d->controls.m_MeanBlend ? 2 : d->controls.m_MinBlend ? 0 : 1);
  showColorLegend(d->controls.m_ShowColorLegend);
  showAnnotations(d->controls.m_ShowAnnotations);
  updatePlaneOutlines();
  showPlaneWidgets(d->controls.m_ShowPlaneWidgets);
  updateActiveArrayAndComponent();
  refreshActiveDataArrayCache();

  // 18. a native widget knows its real size only after the event loop has run
  QTimer::singleShot(0, this,
                     [this]()
                     {
                       if (!d->initialized)
                         return;
                       for (auto& viewer : d->viewers)
                       {
                         viewer->Render();
                         viewer->GetRenderer()->ResetCamera();
                         viewer->Render();
                       }
                       renderVolumeWindow();
                       applyPendingViewStates();
                     });
}

void VXQuadView::attachAnnotationControllers()
{
  // 15. one controller per slice pane, made once: the pane widgets outlive every rebuild
  for (int i = 0; i < 3; ++i)
  {
    if (d->annotationControllers[idx(i)] != nullptr || d->paneWidgets[idx(i)] == nullptr)
      continue;
    auto* controller = new qva::VXQuadViewAnnotationsController(
      static_cast<qva::SlicePaneRole>(i), d->paneWidgets[idx(i)], [this, i]()
      { return computeSlicePlaneFor(i); }, [this, i]() { return currentWorldBoundsFor(i); },
      [this, i]() { return currentSliceIndexFor(i); }, this);
    connect(controller, &qva::VXQuadViewAnnotationsController::markClickGesture, this,
            [this, i](QPoint pos) { addMarkAtPaneLocalPos(i, pos); });
    connect(controller, &qva::VXQuadViewAnnotationsController::navigateRequested, this,
            [this, i](qva::AnnotationId id) { navigateToAnnotation(i, id); });
    d->annotationControllers[idx(i)] = controller;
  }
  // a resize changes the pixels per world unit: marks keep their size and their label's place
  for (int i = 0; i < 3; ++i)
  {
    vtkRenderWindow* window =
      d->viewers[idx(i)] != nullptr ? d->viewers[idx(i)]->GetRenderWindow() : nullptr;
    if (window == nullptr || d->annotationControllers[idx(i)] == nullptr)
      continue;
    vtkNew<vtkCallbackCommand> resized;
    resized->SetClientData(d->annotationControllers[idx(i)]);
    resized->SetCallback(
      [](vtkObject*, unsigned long, void* clientData, void*)
      {
        const auto* controller = static_cast<qva::VXQuadViewAnnotationsController*>(clientData);
        for (const auto& annotation : controller->annotations())
        {
          if (auto* mark = dynamic_cast<qva::VXQuadViewMark*>(annotation.get()))
          {
            mark->applyVisualSettings();
            mark->updateLabelActor();
          }
        }
      });
    window->AddObserver(vtkCommand::WindowResizeEvent, resized);
  }
  // 16.
  if (d->annotationsModel == nullptr)
    d->annotationsModel = new qva::VXQuadViewAnnotationsTableModel(d->annotationControllers, this);
  Q_EMIT annotationsTableModelReady(d->annotationsModel);
}

void VXQuadView::notifyAnnotationsSliceChanged()
{
  for (qva::VXQuadViewAnnotationsController* controller : d->annotationControllers)
  {
    if (controller != nullptr)
      controller->onSliceChanged();
  }
}

qva::VXQuadViewAnnotationsController* VXQuadView::annotationsController(int slicePane) const
{
  return slicePane >= 0 && slicePane < 3 ? d->annotationControllers[idx(slicePane)] : nullptr;
}

qva::VXQuadViewAnnotationsTableModel* VXQuadView::annotationsTableModel() const
{
  return d->annotationsModel;
}

void VXQuadView::addMarkAtPaneLocalPos(int slicePane, QPoint pos)
{
  qva::VXQuadViewAnnotationsController* controller = annotationsController(slicePane);
  const std::optional<std::array<double, 3>> point = worldFromPaneScreenPos(slicePane, pos);
  if (controller == nullptr || !point)
    return;
  controller->addAnnotation(std::make_unique<qva::VXQuadViewMark>(
    static_cast<qva::SlicePaneRole>(slicePane), d->paneWidgets[idx(slicePane)], controller,
    qva::VXQuadViewAnnotationsController::nextMarkName(), currentSliceIndexFor(slicePane),
    computeSlicePlaneFor(slicePane), currentWorldBoundsFor(slicePane), *point));
}

void VXQuadView::addRulerAtPaneLocalPos(int slicePane, QPoint pos)
{
  qva::VXQuadViewAnnotationsController* controller = annotationsController(slicePane);
  const std::optional<std::array<double, 3>> point = worldFromPaneScreenPos(slicePane, pos);
  if (controller == nullptr || !point)
    return;
  const SlicePlane plane = computeSlicePlaneFor(slicePane);
  const WorldBounds bounds = currentWorldBoundsFor(slicePane);
  // the second end lies a tenth of the shorter in-plane extent of the box away, inside it
  double uMin = VTK_DOUBLE_MAX;
  double uMax = VTK_DOUBLE_MIN;
  double vMin = VTK_DOUBLE_MAX;
  double vMax = VTK_DOUBLE_MIN;
  for (int corner = 0; corner < 8; ++corner)
  {
    const std::array<double, 3> p{ (corner & 1) != 0 ? bounds.xmax : bounds.xmin,
                                   (corner & 2) != 0 ? bounds.ymax : bounds.ymin,
                                   (corner & 4) != 0 ? bounds.zmax : bounds.zmin };
    const qva::Vec2 uv = qva::inPlaneFromWorld(plane, p);
    uMin = std::min(uMin, uv[0]);
    uMax = std::max(uMax, uv[0]);
    vMin = std::min(vMin, uv[1]);
    vMax = std::max(vMax, uv[1]);
  }
  double step = 0.1 * std::min(uMax - uMin, vMax - vMin);
  if (!(step > 0.0))
    step = 1.0;
  const qva::Vec2 uv = qva::inPlaneFromWorld(plane, *point);
  std::array<double, 3> second = qva::worldFromInPlane(plane, { uv[0] + step, uv[1] });
  if (!bounds.contains(second))
    second = qva::worldFromInPlane(plane, { uv[0] - step, uv[1] });
  controller->addAnnotation(std::make_unique<qva::VXQuadViewRuler>(
    static_cast<qva::SlicePaneRole>(slicePane), d->paneWidgets[idx(slicePane)], controller,
    qva::VXQuadViewAnnotationsController::nextRulerName(), currentSliceIndexFor(slicePane), plane,
    bounds, *point, second));
}

void VXQuadView::navigateToAnnotation(int slicePane, qva::AnnotationId id)
{
  qva::VXQuadViewAnnotationsController* controller = annotationsController(slicePane);
  qva::VXQuadViewAnnotation* annotation =
    controller != nullptr ? controller->annotationById(id) : nullptr;
  vtkImageData* image = cursorImage();
  if (annotation == nullptr || image == nullptr || !d->initialized)
    return;
  const double spacing = image->GetSpacing()[slicePane];
  if (spacing == 0.0)
    return;
  vtkResliceCursor* cursor = d->cursor();
  double center[3];
  cursor->GetCenter(center);
  center[slicePane] = annotation->displaySliceIndex() * spacing + image->GetOrigin()[slicePane];
  cursor->SetCenter(center);
  vtkResliceCursorWidget* widget = d->viewers[idx(slicePane)]->GetResliceCursorWidget();
  widget->InvokeEvent(vtkResliceCursorWidget::ResliceAxesChangedEvent);
  widget->InvokeEvent(vtkCommand::EndInteractionEvent);
  notifyAnnotationsSliceChanged();
  if (QWidget* pane = d->paneWidgets[idx(slicePane)])
    pane->setFocus(Qt::OtherFocusReason);
}

void VXQuadView::installCustomRep(int slicePane)
{
  if (slicePane < 0 || slicePane > 2 || d->viewers[idx(slicePane)] == nullptr)
    return;
  VXResliceImageViewer* viewer = d->viewers[idx(slicePane)];
  vtkResliceCursorWidget* widget = viewer->GetResliceCursorWidget();
  vtkRenderer* renderer = viewer->GetRenderer();

  vtkSmartPointer<vtkScalarsToColors> table;
  double window = 1.0;
  double level = 0.5;
  auto* oldRep = vtkResliceCursorRepresentation::SafeDownCast(widget->GetRepresentation());
  if (oldRep != nullptr)
  {
    table = oldRep->GetLookupTable();
    window = oldRep->GetWindow();
    level = oldRep->GetLevel();
  }
  if (auto* ours = dynamic_cast<VXResliceCursorRepresentationCommon*>(oldRep))
    ours->removeActorsFromRenderer(renderer);
  // the viewer may have swapped in a stock representation since ours was installed
  if (auto* stored =
        dynamic_cast<VXResliceCursorRepresentationCommon*>(d->reps[idx(slicePane)].GetPointer()))
    stored->removeActorsFromRenderer(renderer);

  vtkSmartPointer<vtkResliceCursorLineRepresentation> rep;
  if (d->controls.m_ThickMode)
    rep = vtkSmartPointer<VXResliceCursorThickLineRepresentation>::New();
  else
    rep = vtkSmartPointer<VXResliceCursorLineRepresentation>::New();
  d->reps[idx(slicePane)] = rep;
  rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetResliceCursor(viewer->GetResliceCursor());
  rep->GetResliceCursorActor()->GetCursorAlgorithm()->SetReslicePlaneNormal(slicePane);
  widget->SetRepresentation(rep);
  rep->SetRenderer(renderer);
  if (auto* common = dynamic_cast<VXResliceCursorRepresentationCommon*>(rep.GetPointer()))
    common->setObliqueMode(d->controls.m_ResliceMode);
  if (table != nullptr)
  {
    rep->SetLookupTable(table);
    rep->SetWindowLevel(window, level, 1);
  }
}

void VXQuadView::initializeOrientationMarkerWidget(vtkRenderer* renderer)
{
  if (renderer == nullptr || d->view3D->interactor() == nullptr)
    return;
  d->viewCube = vtkSmartPointer<VXViewCubeWidget>::New();
  d->viewCube->SetParentRenderer(renderer);
  d->viewCube->SetInteractor(d->view3D->interactor());
  d->viewCube->On();
  d->viewCube->setFaceLabels(KXPreferences::getOrientationMarkerText());
}

void VXQuadView::setOrientationMarkerText(QStringList faceLabels)
{
  if (faceLabels.size() != 6 || d->viewCube == nullptr)
    return;
  d->viewCube->setFaceLabels(faceLabels);
  renderVolumeWindow();
}

// ---------------------------------------------------------------------------
// Slice modes

void VXQuadView::resliceMode(int mode)
{
  d->controls.m_ResliceMode = mode != 0;
  if (!d->initialized)
    return;
  double scales[3];
  for (int i = 0; i < 3; ++i)
    scales[i] = d->viewers[idx(i)]->GetRenderer()->GetActiveCamera()->GetParallelScale();
  for (int i = 0; i < 3; ++i)
  {
    VXResliceImageViewer* viewer = d->viewers[idx(i)];
    viewer->SetResliceMode(mode != 0 ? 1 : 0);
    // the viewer installs its own style on a mode change
    d->paneWidgets[idx(i)]->interactor()->SetInteractorStyle(d->styles[idx(i)]);
    viewer->GetResliceCursorWidget()->SetEnabled(1);
    viewer->GetResliceCursorWidget()->SetManageWindowLevel(0);
    viewer->GetImageActor()->SetVisibility(0);
  }
  for (int i = 0; i < 3; ++i)
  {
    vtkRenderer* renderer = d->viewers[idx(i)]->GetRenderer();
    renderer->ResetCamera();
    renderer->GetActiveCamera()->SetParallelScale(scales[i]);
  }
  // a cursor turned before the switch is faced at once
  if (d->callback != nullptr && d->callback->alignObliqueCameras())
  {
    d->callback->invalidateCache();
    d->callback->syncCrosshair();
  }
  for (int i = 0; i < 3; ++i)
    installCustomRep(i);
  render();
}

void VXQuadView::thickMode(int mode)
{
  d->controls.m_ThickMode = mode != 0;
  if (!d->initialized)
    return;
  for (int i = 0; i < 3; ++i)
  {
    d->slices[idx(i)]->SetVisibility(mode == 0 ? 1 : 0);
    d->viewers[idx(i)]->SetThickMode(mode != 0 ? 1 : 0);
    d->viewers[idx(i)]->GetResliceCursorWidget()->SetManageWindowLevel(0);
  }
  for (int i = 0; i < 3; ++i)
    installCustomRep(i);
  // the new slab representations blend as the record says
  setBlendMode(d->controls.m_MeanBlend ? 2 : d->controls.m_MinBlend ? 0 : 1);
  render();
}

void VXQuadView::setBlendMode(int mode)
{
  d->controls.m_MinBlend = mode == 0;
  d->controls.m_MaxBlend = mode == 1;
  d->controls.m_MeanBlend = mode == 2;
  if (!d->initialized)
    return;
  for (int i = 0; i < 3; ++i)
  {
    auto* thick =
      vtkResliceCursorThickLineRepresentation::SafeDownCast(d->reps[idx(i)].GetPointer());
    if (thick == nullptr)
      continue;
    auto* slab = vtkImageSlabReslice::SafeDownCast(thick->GetReslice());
    if (slab == nullptr)
      continue;
    // VTK_IMAGE_SLAB_MIN 0, VTK_IMAGE_SLAB_MAX 1, VTK_IMAGE_SLAB_MEAN 2
    slab->SetBlendMode(mode);
    d->viewers[idx(i)]->Render();
  }
}

void VXQuadView::resetViews()
{
  if (!d->initialized)
    return;
  for (auto& viewer : d->viewers)
    viewer->Reset();
  updatePlaneOutlines();
  if (vtkDataArray* scalars = d->image->GetPointData()->GetScalars())
  {
    double range[2];
    scalars->GetRange(range);
    applyWindowLevel(range[0], range[1]);
  }
  vtkResliceCursor* cursor = d->cursor();
  cursor->SetZViewUp(0.0, 1.0, 0.0);
  for (int i = 0; i < 3; ++i)
  {
    d->planes[idx(i)]->SetOrigin(cursor->GetPlane(i)->GetOrigin());
    d->planes[idx(i)]->SetNormal(cursor->GetPlane(i)->GetNormal());
  }
  d->viewers[0]->GetResliceCursorWidget()->InvokeEvent(vtkResliceCursorWidget::ResetCursorEvent);
  for (int i = 0; i < 3; ++i)
  {
    vtkCamera* camera = d->viewers[idx(i)]->GetRenderer()->GetActiveCamera();
    if (i == 2)
      camera->SetViewUp(0.0, 1.0, 0.0);
    else
      camera->SetViewUp(0.0, 0.0, 1.0);
    d->viewers[idx(i)]->GetRenderer()->ResetCamera();
  }
  render();
}

void VXQuadView::applyWindowLevel(double min, double max)
{
  // the level stands half a window below the minimum on purpose: the colour map, not the
  // viewer's window, gives the picture its range, and every window/level setter agrees on it
  const double window = max - min;
  const double level = min - (max - min) * 0.5;
  for (auto& viewer : d->viewers)
  {
    if (viewer == nullptr)
      continue;
    viewer->SetColorWindow(window);
    viewer->SetColorLevel(level);
  }
}

// ---------------------------------------------------------------------------
// Geometry queries

int VXQuadView::slicePaneIdxFromUiPaneIdx(int uiPane) const
{
  switch (uiPane)
  {
    case 1:
      return 1;
    case 2:
      return 0;
    case 3:
      return 2;
    default:
      return -1;
  }
}

vtkImageData* VXQuadView::cursorImage() const
{
  vtkResliceCursor* cursor = d->cursor();
  return cursor != nullptr ? cursor->GetImage() : nullptr;
}

VXQuadView::SlicePlane VXQuadView::computeSlicePlaneFor(int slicePane) const
{
  SlicePlane plane;
  if (slicePane < 0 || slicePane > 2 || d->viewers[idx(slicePane)] == nullptr)
    return plane;
  vtkResliceCursor* cursor = d->cursor();
  if (cursor == nullptr)
    return plane;
  cursor->GetCenter(plane.origin.data());
  std::copy_n(cursor->GetAxis(k_PaneAxes[slicePane][0]), 3, plane.axisU.data());
  std::copy_n(cursor->GetAxis(k_PaneAxes[slicePane][1]), 3, plane.axisV.data());
  return plane;
}

VXQuadView::WorldBounds VXQuadView::currentWorldBoundsFor(int /*slicePane*/)
{
  WorldBounds bounds;
  vtkImageData* image = cursorImage();
  if (image == nullptr)
    return bounds;
  double b[6];
  image->GetBounds(b);
  bounds = { b[0], b[1], b[2], b[3], b[4], b[5] };
  return bounds;
}

int VXQuadView::currentSliceIndexFor(int slicePane) const
{
  if (slicePane < 0 || slicePane > 2)
    return 0;
  vtkImageData* image = cursorImage();
  if (image == nullptr)
    return 0;
  const double spacing = image->GetSpacing()[slicePane];
  if (spacing == 0.0)
    return 0;
  const double center = d->cursor()->GetCenter()[slicePane];
  return static_cast<int>(std::lround((center - image->GetOrigin()[slicePane]) / spacing));
}

std::optional<std::array<double, 3>> VXQuadView::worldFromPaneScreenPos(int slicePane, QPoint pos)
{
  if (slicePane < 0 || slicePane > 2 || d->viewers[idx(slicePane)] == nullptr)
    return std::nullopt;
  vtkRenderer* renderer = d->viewers[idx(slicePane)]->GetRenderer();
  QWidget* pane = d->paneWidgets[idx(slicePane)];
  if (renderer == nullptr || pane == nullptr)
    return std::nullopt;
  // Qt counts from the top in device independent pixels, VTK from the bottom in device pixels
  const double ratio = pane->devicePixelRatioF();
  const double x = pos.x() * ratio;
  const double y = (pane->height() - pos.y()) * ratio;
  double ends[2][3];
  for (int k = 0; k < 2; ++k)
  {
    renderer->SetDisplayPoint(x, y, static_cast<double>(k));
    renderer->DisplayToWorld();
    double world[4];
    renderer->GetWorldPoint(world);
    if (std::abs(world[3]) > 1e-12)
    {
      for (int a = 0; a < 3; ++a)
        world[a] /= world[3];
    }
    std::copy(world, world + 3, ends[k]);
  }
  SlicePlane plane = computeSlicePlaneFor(slicePane);
  double normal[3];
  cross(plane.axisU.data(), plane.axisV.data(), normal);
  if (std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]) < 1e-12)
    return std::nullopt;
  double t = 0.0;
  std::array<double, 3> hit{};
  if (vtkPlane::IntersectWithLine(ends[0], ends[1], normal, plane.origin.data(), t, hit.data()) ==
      0)
    return std::nullopt;
  return hit;
}

void VXQuadView::updatePlaneOutlines()
{
  vtkImageData* image = cursorImage();
  if (!d->initialized || image == nullptr)
    return;
  vtkResliceCursor* cursor = d->cursor();
  double center[3];
  cursor->GetCenter(center);
  double bounds[6];
  image->GetBounds(bounds);
  for (int i = 0; i < 3; ++i)
  {
    if (d->outlinePolys[idx(i)] == nullptr)
      continue;
    double u[3];
    double v[3];
    std::copy_n(cursor->GetAxis(k_PaneAxes[i][0]), 3, u);
    std::copy_n(cursor->GetAxis(k_PaneAxes[i][1]), 3, v);
    double uMin = VTK_DOUBLE_MAX;
    double uMax = VTK_DOUBLE_MIN;
    double vMin = VTK_DOUBLE_MAX;
    double vMax = VTK_DOUBLE_MIN;
    for (int corner = 0; corner < 8; ++corner)
    {
      const double p[3] = { bounds[(corner & 1) ? 1 : 0] - center[0],
                            bounds[(corner & 2) ? 3 : 2] - center[1],
                            bounds[(corner & 4) ? 5 : 4] - center[2] };
      const double pu = p[0] * u[0] + p[1] * u[1] + p[2] * u[2];
      const double pv = p[0] * v[0] + p[1] * v[1] + p[2] * v[2];
      uMin = std::min(uMin, pu);
      uMax = std::max(uMax, pu);
      vMin = std::min(vMin, pv);
      vMax = std::max(vMax, pv);
    }
    const double corners[4][2] = { { uMin, vMin }, { uMax, vMin }, { uMax, vMax }, { uMin, vMax } };
    vtkPoints* points = d->outlinePolys[idx(i)]->GetPoints();
    for (int p = 0; p < 4; ++p)
    {
      points->SetPoint(p, center[0] + corners[p][0] * u[0] + corners[p][1] * v[0],
                       center[1] + corners[p][0] * u[1] + corners[p][1] * v[1],
                       center[2] + corners[p][0] * u[2] + corners[p][1] * v[2]);
    }
    points->Modified();
    d->outlinePolys[idx(i)]->Modified();
  }
}

// ---------------------------------------------------------------------------
// Overlays and rendering

void VXQuadView::updateAnnotations(int slicePane)
{
  if (slicePane < 0 || slicePane > 2)
    return;
  vtkCornerAnnotation* overlay = d->corners[idx(slicePane)];
  if (overlay == nullptr || !d->controls.m_ShowAnnotations || d->viewers[0] == nullptr)
    return;
  vtkImageData* image = cursorImage();
  vtkResliceCursor* cursor = d->cursor();
  int dims[3] = { 0, 0, 0 };
  double spacing[3] = { 0.0, 0.0, 0.0 };
  double origin[3] = { 0.0, 0.0, 0.0 };
  if (image != nullptr)
  {
    image->GetDimensions(dims);
    image->GetSpacing(spacing);
    image->GetOrigin(origin);
  }
  fmt::memory_buffer text;
  auto out = std::back_inserter(text);
  fmt::format_to(out, "Voxel Dims:");
  for (int a = 0; a < 3; ++a)
  {
    if (a == slicePane)
      fmt::format_to(out, "  {{{}: {}}}", k_AxisLetters[a], dims[a]);
    else
      fmt::format_to(out, "  {}: {}", k_AxisLetters[a], dims[a]);
  }
  const int u = k_PaneAxes[slicePane][0];
  const int v = k_PaneAxes[slicePane][1];
  fmt::format_to(out, "\nPhysical Size: {:.4g} x {:.4g} {}", dims[u] * spacing[u],
                 dims[v] * spacing[v], d->lengthUnits);
  int slice = 0;
  if (cursor != nullptr && spacing[slicePane] != 0.0)
    slice = static_cast<int>(
      std::lround((cursor->GetCenter()[slicePane] - origin[slicePane]) / spacing[slicePane]));
  fmt::format_to(out, "\nSlice: {}", slice);
  if (d->controls.m_LookupTable != nullptr)
  {
    const double* range = d->controls.m_LookupTable->getColorTransferFunction()->GetRange();
    fmt::format_to(out, "\nRange Min: {:.4g}  Max: {:.4g}", range[0], range[1]);
  }
  if (cursor != nullptr)
  {
    double a[3];
    double b[3];
    double c[3];
    std::copy_n(cursor->GetAxis(0), 3, a);
    std::copy_n(cursor->GetAxis(1), 3, b);
    std::copy_n(cursor->GetAxis(2), 3, c);
    const double yaw = std::atan2(a[1], a[0]) * k_RadToDeg;
    const double pitch = std::asin(std::clamp(-a[2], -1.0, 1.0)) * k_RadToDeg;
    const double roll = std::atan2(b[2], c[2]) * k_RadToDeg;
    fmt::format_to(out, "\nYaw: {:.1f} deg\nPitch: {:.1f} deg\nRoll: {:.1f} deg", yaw, pitch, roll);
  }
  overlay->SetText(2, fmt::to_string(text).c_str());
}

void VXQuadView::updateVolumeAnnotation()
{
  vtkCornerAnnotation* overlay = d->corners[3];
  if (overlay == nullptr || !d->controls.m_ShowAnnotations || d->viewers[0] == nullptr)
    return;
  vtkResliceCursor* cursor = d->cursor();
  vtkImageData* image = cursorImage();
  double c[3] = { 0.0, 0.0, 0.0 };
  if (cursor != nullptr)
    cursor->GetCenter(c);
  fmt::memory_buffer text;
  auto out = std::back_inserter(text);
  if (image != nullptr)
  {
    int dims[3];
    image->GetDimensions(dims);
    fmt::format_to(out, "Voxel Dims:  x: {}  y: {}  z: {}\n", dims[0], dims[1], dims[2]);
  }
  fmt::format_to(out, "X: {:.4g}  Y: {:.4g}  Z: {:.4g}", c[0], c[1], c[2]);

  vtkDataArray* array = d->activeArray;
  if (d->image != nullptr && array != nullptr && !d->activeArrayName.empty())
  {
    double spacing[3];
    double origin[3];
    int dims[3];
    d->image->GetSpacing(spacing);
    d->image->GetOrigin(origin);
    d->image->GetDimensions(dims);
    if (spacing[0] != 0.0 && spacing[1] != 0.0 && spacing[2] != 0.0)
    {
      long long ijk[3];
      bool inside = true;
      for (int a = 0; a < 3; ++a)
      {
        ijk[a] = std::llround((c[a] - origin[a]) / spacing[a]);
        inside = inside && ijk[a] >= 0 && ijk[a] < dims[a];
      }
      const vtkIdType id = static_cast<vtkIdType>(
        (static_cast<long long>(dims[1]) * ijk[2] + ijk[1]) * dims[0] + ijk[0]);
      if (inside && id < array->GetNumberOfTuples())
      {
        const int count = array->GetNumberOfComponents();
        const int component = d->controls.m_ActiveComponent;
        if (count == 1)
        {
          fmt::format_to(out, "\n{}: {:.6g}", d->activeArrayName, array->GetComponent(id, 0));
        }
        else if (component >= 0 && component < count)
        {
          fmt::format_to(out, "\n{} [{}]: {:.6g}", d->activeArrayName, component,
                         array->GetComponent(id, component));
        }
        else
        {
          double sum = 0.0;
          for (int k = 0; k < count; ++k)
          {
            const double value = array->GetComponent(id, k);
            sum += value * value;
          }
          fmt::format_to(out, "\n{} (mag): {:.6g}", d->activeArrayName, std::sqrt(sum));
        }
      }
    }
  }
  overlay->SetText(2, fmt::to_string(text).c_str());
}

void VXQuadView::restartAnnotationTimer()
{
  d->annotationTimer.restart();
}

bool VXQuadView::annotationThrottleElapsed() const
{
  return !d->annotationTimer.isValid() || d->annotationTimer.elapsed() > k_ThrottleMs - 1;
}

void VXQuadView::updateAllAnnotations(bool force)
{
  if (!force && !annotationThrottleElapsed())
    return;
  d->annotationTimer.restart();
  for (int i = 0; i < 3; ++i)
    updateAnnotations(i);
  updateVolumeAnnotation();
}

void VXQuadView::updateAllAnnotations()
{
  updateAllAnnotations(false);
}

void VXQuadView::render()
{
  if (!d->initialized)
    return;
  if (d->renderTimer.isValid() && d->renderTimer.elapsed() < k_ThrottleMs)
  {
    if (d->deferredRender == nullptr)
    {
      d->deferredRender = new QTimer(this);
      d->deferredRender->setSingleShot(true);
      d->deferredRender->setTimerType(Qt::PreciseTimer);
      connect(d->deferredRender, &QTimer::timeout, this, &VXQuadView::render);
    }
    if (!d->deferredRender->isActive())
      d->deferredRender->start(k_ThrottleMs);
    return;
  }
  d->renderTimer.restart();
  for (auto& viewer : d->viewers)
    viewer->Render();
  renderVolumeWindow();
}

void VXQuadView::renderVolumeWindow()
{
  if (d->interactiveVolumeRender != nullptr)
    d->interactiveVolumeRender->stop();
  if (d->stillVolumeRender != nullptr)
    d->stillVolumeRender->stop();
  if (vtkRenderWindow* window = d->view3D->renderWindow())
    window->Render();
}

void VXQuadView::renderVolumeWindowInteractive()
{
  // the slice panes answer a step at once; the volume pane draws when the event loop is next
  // free, so steps queued behind a slow volume frame share one frame instead of one each
  if (d->interactiveVolumeRender == nullptr)
  {
    d->interactiveVolumeRender = new QTimer(this);
    d->interactiveVolumeRender->setSingleShot(true);
    d->interactiveVolumeRender->setInterval(0);
    connect(d->interactiveVolumeRender, &QTimer::timeout, this,
            &VXQuadView::drawInteractiveVolumeFrame);
  }
  d->interactiveVolumeRender->start();
}

void VXQuadView::drawInteractiveVolumeFrame()
{
  vtkRenderWindow* window = d->view3D->renderWindow();
  if (window == nullptr)
    return;
  // as an interactor does while the mouse is busy: above the mapper's interactive rate it casts
  // fewer rays, so a run of wheel steps is not held up by the full volume each time
  const double stillRate = window->GetDesiredUpdateRate();
  window->SetDesiredUpdateRate(k_InteractiveVolumeRate);
  window->Render();
  window->SetDesiredUpdateRate(stillRate);
  if (d->stillVolumeRender == nullptr)
  {
    d->stillVolumeRender = new QTimer(this);
    d->stillVolumeRender->setSingleShot(true);
    connect(d->stillVolumeRender, &QTimer::timeout, this, &VXQuadView::renderVolumeWindow);
  }
  d->stillVolumeRender->start(k_StillVolumeDelayMs);
}

vtkRenderer* VXQuadView::volumeRenderer() const
{
  vtkRenderWindow* window = d->view3D->renderWindow();
  return window != nullptr ? window->GetRenderers()->GetFirstRenderer() : nullptr;
}

void VXQuadView::showColorLegend(bool show)
{
  d->controls.m_ShowColorLegend = show;
  if (d->initialized)
  {
    for (auto& bar : d->scalarBars)
    {
      if (bar != nullptr)
        bar->SetEnabled(show ? 1 : 0);
    }
  }
  render();
}

void VXQuadView::showAnnotations(bool show)
{
  d->controls.m_ShowAnnotations = show;
  if (d->initialized)
  {
    for (auto& overlay : d->corners)
    {
      if (overlay != nullptr)
        overlay->SetVisibility(show ? 1 : 0);
    }
    if (show)
      updateAllAnnotations(false);
  }
  render();
}

void VXQuadView::showPlaneWidgets(bool show)
{
  d->controls.m_ShowPlaneWidgets = show;
  if (d->initialized)
  {
    for (auto& actor : d->outlineActors)
    {
      if (actor != nullptr)
        actor->SetVisibility(show ? 1 : 0);
    }
  }
  render();
}

void VXQuadView::setLengthUnits(QString units)
{
  d->controls.m_LengthUnits = units;
  d->lengthUnits = units.toStdString();
  if (!d->initialized || !d->controls.m_ShowAnnotations)
    return;
  d->annotationTimer.restart();
  for (int i = 0; i < 3; ++i)
    updateAnnotations(i);
  updateVolumeAnnotation();
  render();
}

void VXQuadView::initializeScalarBars()
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  const std::array<vtkRenderWindowInteractor*, 4> interactors{ d->paneWidgets[0]->interactor(),
                                                               d->paneWidgets[1]->interactor(),
                                                               d->paneWidgets[2]->interactor(),
                                                               d->view3D->interactor() };
  for (int k = 0; k < 4; ++k)
  {
    auto widget = vtkSmartPointer<vtkScalarBarWidget>::New();
    widget->SetInteractor(interactors[idx(k)]);
    vtkScalarBarRepresentation* rep = widget->GetScalarBarRepresentation();
    rep->SetPosition(0.1, 0.01);
    rep->SetPosition2(0.8, 0.08);
    rep->SetOrientation(1);
    rep->SetShowBorderToOff();
    vtkScalarBarActor* bar = widget->GetScalarBarActor();
    bar->SetOrientationToHorizontal();
    bar->SetLookupTable(d->controls.m_LookupTable->getColorTransferFunction());
    bar->SetNumberOfLabels(5);
    bar->SetTitle(d->controls.m_ActiveArray.toStdString().c_str());
    bar->SetBarRatio(0.4);
    bar->GetLabelTextProperty()->SetFontSize(10);
    bar->GetLabelTextProperty()->BoldOff();
    bar->GetLabelTextProperty()->ShadowOff();
    widget->SetEnabled(d->controls.m_ShowColorLegend ? 1 : 0);
    d->scalarBars[idx(k)] = widget;
  }
}

void VXQuadView::initializeCornerAnnotations()
{
  for (int k = 0; k < 4; ++k)
  {
    auto overlay = vtkSmartPointer<vtkCornerAnnotation>::New();
    overlay->SetLinearFontScaleFactor(2.0);
    overlay->SetNonlinearFontScaleFactor(1.0);
    overlay->SetMaximumFontSize(14);
    overlay->GetTextProperty()->SetColor(1.0, 1.0, 1.0);
    overlay->GetTextProperty()->ShadowOn();
    overlay->SetVisibility(d->controls.m_ShowAnnotations ? 1 : 0);
    vtkRenderer* renderer = k < 3 ? d->viewers[idx(k)]->GetRenderer() : volumeRenderer();
    if (renderer != nullptr)
      renderer->AddViewProp(overlay);
    d->corners[idx(k)] = overlay;
  }
  if (annotationThrottleElapsed())
  {
    d->annotationTimer.restart();
    for (int i = 0; i < 3; ++i)
      updateAnnotations(i);
    updateVolumeAnnotation();
  }
}

// ---------------------------------------------------------------------------
// The volume pane

void VXQuadView::initializeVolumeRender(vtkRenderer* renderer)
{
  if (renderer == nullptr || d->controls.m_LookupTable == nullptr ||
      d->controls.m_OpacityFunction == nullptr || d->image == nullptr)
    return;
  d->volumeMapper = vtkSmartPointer<vtkSmartVolumeMapper>::New();
  d->volumeMapper->SetInputData(d->image);
  d->volumeMapper->SetBlendModeToComposite();
  d->volumeMapper->SetRequestedRenderModeToDefault();
  d->volumeMapper->SetInteractiveAdjustSampleDistances(1);
  d->volumeMapper->SetInteractiveUpdateRate(1.0);
  d->volumeProperty = vtkSmartPointer<vtkVolumeProperty>::New();
  d->volumeProperty->SetInterpolationTypeToLinear();
  d->volumeProperty->SetColor(d->controls.m_LookupTable->getColorTransferFunction());
  d->volumeProperty->SetScalarOpacity(d->controls.m_OpacityFunction);
  applyShadingToVolumeProperty();
  d->volume = vtkSmartPointer<vtkVolume>::New();
  d->volume->SetMapper(d->volumeMapper);
  d->volume->SetProperty(d->volumeProperty);
  renderer->SetUseDepthPeeling(1);
  renderer->SetMaximumNumberOfPeels(4);
  renderer->SetOcclusionRatio(0.1);
  renderer->AddVolume(d->volume);
  renderer->ResetCamera();
}

void VXQuadView::applyShadingToVolumeProperty()
{
  if (d->volumeProperty == nullptr)
    return;
  const VXQuadViewControls& c = d->controls;
  d->volumeProperty->SetShade(0, c.m_ShadingEnabled ? 1 : 0);
  d->volumeProperty->SetAmbient(0, c.m_Ambient);
  d->volumeProperty->SetDiffuse(0, c.m_Diffuse);
  d->volumeProperty->SetSpecular(0, c.m_Specular);
  d->volumeProperty->SetSpecularPower(0, c.m_SpecularPower);
}

void VXQuadView::setShadingEnabled(bool enabled)
{
  d->controls.m_ShadingEnabled = enabled;
  applyShadingToVolumeProperty();
  applyAmbientOcclusion(volumeRenderer(), d->controls);
  render();
}

void VXQuadView::setAmbient(double value)
{
  d->controls.m_Ambient = value;
  applyShadingToVolumeProperty();
  render();
}

void VXQuadView::setDiffuse(double value)
{
  d->controls.m_Diffuse = value;
  applyShadingToVolumeProperty();
  render();
}

void VXQuadView::setSpecular(double value)
{
  d->controls.m_Specular = value;
  applyShadingToVolumeProperty();
  render();
}

void VXQuadView::setSpecularPower(double value)
{
  d->controls.m_SpecularPower = value;
  applyShadingToVolumeProperty();
  render();
}

void VXQuadView::setLightFollowsCamera(bool follows)
{
  d->controls.m_LightFollowsCamera = follows;
  if (vtkRenderer* renderer = volumeRenderer())
    renderer->SetLightFollowCamera(follows ? 1 : 0);
  render();
}

void VXQuadView::setSSAOEnabled(bool enabled)
{
  d->controls.m_SSAOEnabled = enabled;
  applyAmbientOcclusion(volumeRenderer(), d->controls);
  render();
}

void VXQuadView::setVolumeBlendMode(int mode)
{
  d->controls.m_VolumeBlendMode = mode;
  if (d->volumeMapper == nullptr)
    return;
  if (mode == 1)
    d->volumeMapper->SetBlendModeToMaximumIntensity();
  else if (mode == 2)
    d->volumeMapper->SetBlendModeToMinimumIntensity();
  else
    d->volumeMapper->SetBlendModeToComposite();
  render();
}

void VXQuadView::setGIReach(double value)
{
  d->controls.m_GIReach = value;
  if (d->volumeMapper == nullptr)
    return;
  d->volumeMapper->SetGlobalIlluminationReach(static_cast<float>(value));
  render();
}

void VXQuadView::setVolumetricScattering(double value)
{
  d->controls.m_VolumetricScattering = value;
  if (d->volumeMapper == nullptr)
    return;
  d->volumeMapper->SetVolumetricScatteringBlending(static_cast<float>(value));
  render();
}

// ---------------------------------------------------------------------------
// Arrays, colour map, opacity and histogram

QString VXQuadView::getActiveArrayName() const
{
  return d->controls.m_ActiveArray;
}

QStringList VXQuadView::getAvailableArrayNames() const
{
  QStringList names;
  if (d->image == nullptr)
    return names;
  vtkPointData* points = d->image->GetPointData();
  for (int a = 0; a < points->GetNumberOfArrays(); ++a)
  {
    if (const char* name = points->GetArrayName(a))
      names.append(QString::fromUtf8(name));
  }
  return names;
}

QStringList VXQuadView::getComponentNames(const QString& arrayName) const
{
  int count = 1;
  if (d->image != nullptr)
  {
    if (vtkDataArray* array = d->image->GetPointData()->GetArray(arrayName.toUtf8().constData()))
      count = array->GetNumberOfComponents();
  }
  if (count < 2)
    return { QStringLiteral("Scalar") };
  QStringList names{ QStringLiteral("Magnitude") };
  for (int k = 0; k < count; ++k)
    names.append(QStringLiteral("Component %1").arg(k));
  return names;
}

vtkSmartPointer<vtkTable> VXQuadView::getHistogram() const
{
  return d->histogram;
}

QSharedPointer<VXLookupTable> VXQuadView::getLookupTable() const
{
  return d->controls.m_LookupTable;
}

vtkSmartPointer<vtkPiecewiseFunction> VXQuadView::getOpacityFunction() const
{
  return d->controls.m_OpacityFunction;
}

const VXQuadViewControls& VXQuadView::getControls() const
{
  return d->controls;
}

void VXQuadView::getTrueDataRange(double& min, double& max) const
{
  double range[2] = { 0.0, 1.0 };
  vtkDataArray* array =
    d->image != nullptr
      ? d->image->GetPointData()->GetArray(d->controls.m_ActiveArray.toUtf8().constData())
      : nullptr;
  if (array != nullptr)
  {
    const int count = array->GetNumberOfComponents();
    const int component = d->controls.m_ActiveComponent;
    // a one component array has no magnitude to speak of: its values are the range
    const int which = count == 1 ? 0 : (component < 0 || component >= count ? -1 : component);
    array->GetFiniteRange(range, which);
  }
  if (range[0] == range[1])
    range[1] = range[0] + 1.0;
  min = range[0];
  max = range[1];
}

void VXQuadView::refreshActiveDataArrayCache()
{
  d->activeArray = nullptr;
  d->activeArrayName.clear();
  if (d->image == nullptr || d->controls.m_ActiveArray.isEmpty())
    return;
  d->activeArrayName = d->controls.m_ActiveArray.toStdString();
  d->activeArray = d->image->GetPointData()->GetArray(d->activeArrayName.c_str());
}

void VXQuadView::applyColorMapToPanes()
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  vtkColorTransferFunction* ctf = d->controls.m_LookupTable->getColorTransferFunction();
  for (int i = 0; i < 3; ++i)
  {
    if (d->viewers[idx(i)] != nullptr)
      d->viewers[idx(i)]->SetLookupTable(ctf);
    if (d->slices[idx(i)] != nullptr)
    {
      d->slices[idx(i)]->GetProperty()->SetLookupTable(ctf);
      d->slices[idx(i)]->GetProperty()->UseLookupTableScalarRangeOn();
    }
  }
  if (d->volumeProperty != nullptr)
  {
    d->volumeProperty->SetColor(ctf);
    if (d->controls.m_OpacityFunction != nullptr)
      d->volumeProperty->SetScalarOpacity(d->controls.m_OpacityFunction);
  }
}

void VXQuadView::initializeColorMap(vtkImageData* image)
{
  if (image == nullptr)
    return;
  const QStringList names = getAvailableArrayNames();
  if (names.isEmpty())
    return;
  d->controls.m_ActiveArray = names.first();
  d->controls.m_ActiveComponent = -1;
  refreshActiveDataArrayCache();
  double min = 0.0;
  double max = 1.0;
  getTrueDataRange(min, max);

  auto table = QSharedPointer<VXLookupTable>::create();
  table->createDefaultRgbColorTransferFunction();
  table->setRange(min, max);
  d->controls.m_LookupTable = table;
  applyColorMapToPanes();
  applyWindowLevel(min, max);

  auto opacity = vtkSmartPointer<vtkPiecewiseFunction>::New();
  opacity->AddPoint(min, 0.0);
  opacity->AddPoint(max, 1.0);
  d->controls.m_OpacityFunction = opacity;
  d->controls.m_ArrayLookupTables.insert(d->controls.m_ActiveArray, table);
  d->controls.m_ArrayOpacityFunctions.insert(d->controls.m_ActiveArray, opacity);

  recomputeHistogram();
  Q_EMIT colorControlsReady(names, table, opacity, d->histogram, d->controls.m_ActiveArray, min,
                            max);
  Q_EMIT componentListChanged(getComponentNames(d->controls.m_ActiveArray),
                              d->controls.m_ActiveComponent);
}

void VXQuadView::onArrayChanged(QString arrayName)
{
  if (!d->initialized || d->controls.m_LookupTable == nullptr)
    return;
  d->controls.m_ActiveArray = arrayName;
  d->controls.m_ColorMapInverted = false;
  refreshActiveDataArrayCache();
  const bool multi = d->activeArray != nullptr && d->activeArray->GetNumberOfComponents() > 1;
  d->controls.m_ActiveComponent = multi ? -1 : 0;

  auto& tables = d->controls.m_ArrayLookupTables;
  auto& opacities = d->controls.m_ArrayOpacityFunctions;
  if (!tables.contains(arrayName) || !opacities.contains(arrayName))
  {
    auto table = QSharedPointer<VXLookupTable>::create();
    table->createDefaultRgbColorTransferFunction();
    auto opacity = vtkSmartPointer<vtkPiecewiseFunction>::New();
    opacity->AddPoint(0.0, 0.0);
    opacity->AddPoint(1.0, 1.0);
    d->controls.m_LookupTable = table;
    d->controls.m_OpacityFunction = opacity;
    applyColorMapToPanes();
    tables.insert(arrayName, table);
    opacities.insert(arrayName, opacity);
    onRangeReset();
  }
  else
  {
    d->controls.m_LookupTable = tables.value(arrayName);
    d->controls.m_OpacityFunction = opacities.value(arrayName);
    applyColorMapToPanes();
    double range[2];
    d->controls.m_OpacityFunction->GetRange(range);
    applyWindowLevel(range[0], range[1]);
  }
  updateActiveArrayAndComponent();
  recomputeHistogram();
  double min = 0.0;
  double max = 1.0;
  getTrueDataRange(min, max);
  Q_EMIT colorControlsReady(getAvailableArrayNames(), d->controls.m_LookupTable,
                            d->controls.m_OpacityFunction, d->histogram, arrayName, min, max);
  for (auto& bar : d->scalarBars)
  {
    if (bar == nullptr)
      continue;
    bar->GetScalarBarActor()->SetLookupTable(d->controls.m_LookupTable->getColorTransferFunction());
    bar->GetScalarBarActor()->SetTitle(arrayName.toStdString().c_str());
  }
  Q_EMIT componentListChanged(getComponentNames(arrayName), d->controls.m_ActiveComponent);
  render();
}

void VXQuadView::updateActiveArrayAndComponent()
{
  if (d->image == nullptr)
    return;
  const std::string name = d->controls.m_ActiveArray.toStdString();
  vtkDataArray* array = d->image->GetPointData()->GetArray(name.c_str());
  vtkImageData* shown = d->image;
  if (array != nullptr && array->GetNumberOfComponents() > 1)
  {
    d->image->GetPointData()->SetActiveScalars(name.c_str());
    const int component = d->controls.m_ActiveComponent;
    if (component >= 0 && component < array->GetNumberOfComponents())
    {
      if (d->extractComponents == nullptr)
        d->extractComponents = vtkSmartPointer<vtkImageExtractComponents>::New();
      d->extractComponents->SetInputData(d->image);
      d->extractComponents->SetComponents(component);
      d->extractComponents->Update();
      shown = d->extractComponents->GetOutput();
    }
    else
    {
      if (d->magnitude == nullptr)
        d->magnitude = vtkSmartPointer<vtkImageMagnitude>::New();
      d->magnitude->SetInputData(d->image);
      d->magnitude->Update();
      shown = d->magnitude->GetOutput();
    }
  }
  else if (array != nullptr)
  {
    d->image->GetPointData()->SetActiveScalars(name.c_str());
  }
  setResliceImageData(shown);
  updateVolumeAnnotation();
}

void VXQuadView::setResliceImageData(vtkImageData* image)
{
  if (image == nullptr)
    return;
  if (vtkResliceCursor* cursor = d->cursor())
    cursor->SetImage(image);
  if (d->volumeMapper != nullptr)
    d->volumeMapper->SetInputData(image);
  for (auto& mapper : d->sliceMappers)
  {
    if (mapper != nullptr)
      mapper->SetInputData(image);
  }
}

void VXQuadView::onComponentChanged(int componentIndex)
{
  if (d->activeArray != nullptr && d->activeArray->GetNumberOfComponents() >= 2)
    d->controls.m_ActiveComponent = componentIndex - 1; // entry 0 is "Magnitude"
  updateActiveArrayAndComponent();
  recomputeHistogram();
  render();
}

void VXQuadView::recomputeHistogram()
{
  const QPair<QString, int> key{ d->controls.m_ActiveArray, d->controls.m_ActiveComponent };
  auto cached = d->histograms.constFind(key);
  if (cached != d->histograms.constEnd())
  {
    d->histogram = cached.value();
  }
  else
  {
    if (d->image == nullptr)
      return;
    auto table = vtkSmartPointer<vtkTable>::New();
    try
    {
      KXVtkModule::utils::ComputeArrayHistogram(d->image, d->controls.m_ActiveArray.toStdString(),
                                                k_HistogramColumn, table);
    }
    catch (const std::exception& error)
    {
      Q_EMIT printOutput(QString::fromUtf8(error.what()));
      return;
    }
    d->histograms.insert(key, table);
    d->histogram = table;
  }
  Q_EMIT histogramUpdated(d->histogram, d->controls.m_ActiveArray);
}

void VXQuadView::setOpacityFunctionRange(double min, double max)
{
  vtkPiecewiseFunction* opacity = d->controls.m_OpacityFunction;
  if (opacity == nullptr)
    return;
  double oldRange[2];
  opacity->GetRange(oldRange);
  const int count = opacity->GetSize();
  std::vector<std::array<double, 4>> nodes;
  if (count < 2 || oldRange[1] == oldRange[0])
  {
    nodes = { { 0.0, 0.0, 0.5, 0.0 }, { 1.0, 1.0, 0.5, 0.0 } };
  }
  else
  {
    for (int k = 0; k < count; ++k)
    {
      std::array<double, 4> node{};
      opacity->GetNodeValue(k, node.data());
      node[0] = (node[0] - oldRange[0]) / (oldRange[1] - oldRange[0]);
      nodes.push_back(node);
    }
  }
  opacity->RemoveAllPoints();
  for (const auto& node : nodes)
    opacity->AddPoint(node[0] * (max - min) + min, node[1], node[2], node[3]);
}

void VXQuadView::onCustomRangeChanged(double min, double max)
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  d->controls.m_LookupTable->setRange(min, max);
  applyWindowLevel(min, max);
  setOpacityFunctionRange(min, max);
  if (annotationThrottleElapsed())
    updateAllAnnotations(true);
  render();
}

void VXQuadView::onRangeReset()
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  double min = 0.0;
  double max = 1.0;
  getTrueDataRange(min, max);
  d->controls.m_LookupTable->setRange(min, max);
  applyWindowLevel(min, max);
  setOpacityFunctionRange(min, max);
  Q_EMIT rangeChanged(min, max);
  if (annotationThrottleElapsed())
    updateAllAnnotations(true);
  render();
}

void VXQuadView::markScalarBarsDirty()
{
  for (auto& bar : d->scalarBars)
  {
    if (bar != nullptr)
      bar->GetScalarBarActor()->Modified();
  }
}

void VXQuadView::onColorPresetSelected(kx::core::ColorTableUtilities::ColorPreset preset)
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  d->controls.m_LookupTable->parseRgbJson(preset);
  if (d->controls.m_ColorMapInverted)
    d->controls.m_LookupTable->invert();
  markScalarBarsDirty();
  render();
  Q_EMIT colorMapModified();
}

void VXQuadView::onDefaultColorPresetRestored()
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  d->controls.m_LookupTable->createDefaultRgbColorTransferFunction();
  if (d->controls.m_ColorMapInverted)
    d->controls.m_LookupTable->invert();
  markScalarBarsDirty();
  render();
  Q_EMIT colorMapModified();
}

void VXQuadView::onColorMapInverted(bool inverted)
{
  if (d->controls.m_LookupTable == nullptr)
    return;
  if (inverted != d->controls.m_ColorMapInverted)
  {
    d->controls.m_LookupTable->invert();
    d->controls.m_ColorMapInverted = inverted;
  }
  markScalarBarsDirty();
  render();
  Q_EMIT colorMapModified();
}

void VXQuadView::onDataSourceRemoved(VXDataSource* removedDataSource)
{
  if (removedDataSource == nullptr)
    return;
  onItemRemovedFromModel(sourcePath(removedDataSource));
}

void VXQuadView::onItemRemovedFromModel(QString itemPath)
{
  if (itemPath.isEmpty() || itemPath != d->controls.m_GeometryPath)
    return;
  clearView();
  Q_EMIT viewCleared();
}

// ---------------------------------------------------------------------------
// Screenshots

QImage VXQuadView::captureAllPanesComposite(bool transparent, const QColor& background)
{
  std::array<QImage, 4> images;
  for (int ui = 0; ui < 4; ++ui)
  {
    VXViewActionsController* controller = d->viewActions[idx(ui)];
    if (controller == nullptr)
      return {};
    images[idx(ui)] = controller->captureViewImage(transparent, background);
    if (images[idx(ui)].isNull())
      return {};
  }
  // columns: 0 holds UI panes 0 and 3, 1 holds 1 and 2; rows: 0 holds 0 and 1, 1 holds 3 and 2
  const int w0 = std::max(images[0].width(), images[3].width());
  const int w1 = std::max(images[1].width(), images[2].width());
  const int h0 = std::max(images[0].height(), images[1].height());
  const int h1 = std::max(images[3].height(), images[2].height());
  QImage composite(w0 + w1, h0 + h1, transparent ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
  if (transparent)
    composite.fill(Qt::transparent);
  else
    composite.fill(background.isValid() ? background : QColor(Qt::black));
  QPainter painter(&composite);
  painter.drawImage(0, 0, images[0]);
  painter.drawImage(w0, 0, images[1]);
  painter.drawImage(w0, h0, images[2]);
  painter.drawImage(0, h0, images[3]);
  painter.end();
  return composite;
}

void VXQuadView::copyAllPanesScreenshot()
{
  const QImage image = captureAllPanesComposite(false, QColor());
  if (image.isNull())
    return;
  QGuiApplication::clipboard()->setImage(image);
}

void VXQuadView::saveAllPanesScreenshot()
{
  const QString fileName = VXUserPrompt::getSaveFileName(
    this, QStringLiteral("Save All Views Screenshot"),
    QStringLiteral("PNG Image (*.png);;JPEG Image (*.jpg *.jpeg);;Bitmap Image (*.bmp)"));
  if (fileName.isEmpty())
    return;
  const QImage image = captureAllPanesComposite(false, QColor());
  QSaveFile file(fileName);
  if (image.isNull() || !file.open(QIODevice::WriteOnly) || !image.save(&file) || !file.commit())
  {
    Q_EMIT printOutput(
      QStringLiteral("Failed to write composite screenshot to '%1'.").arg(fileName));
  }
}

void VXQuadView::changeAllPanesBackgroundColor()
{
  if (d->viewActions[0] == nullptr)
    return;
  const QColor color = VXUserPrompt::getColor(this, d->viewActions[0]->backgroundColor(),
                                              QStringLiteral("Select Background Color"));
  if (!color.isValid())
    return;
  for (VXViewActionsController* controller : d->viewActions)
  {
    if (controller != nullptr)
      controller->setBackgroundColor(color);
  }
}

void VXQuadView::resetAllPanesBackgroundColor()
{
  for (VXViewActionsController* controller : d->viewActions)
  {
    if (controller != nullptr)
      controller->restoreDefaultBackgroundColor();
  }
}

// ---------------------------------------------------------------------------
// Teardown

void VXQuadView::clearView()
{
  // the annotation controllers are emptied first; they outlive this call
  for (qva::VXQuadViewAnnotationsController* controller : d->annotationControllers)
  {
    if (controller != nullptr)
      controller->clearAll();
  }
  for (VXViewActionsController*& controller : d->viewActions)
  {
    delete controller;
    controller = nullptr;
  }
  if (d->deferredRender != nullptr)
    d->deferredRender->stop();
  if (d->interactiveVolumeRender != nullptr)
    d->interactiveVolumeRender->stop();
  if (d->stillVolumeRender != nullptr)
    d->stillVolumeRender->stop();
  QObject::disconnect(d->outputConnection);
  d->source = nullptr;
  d->sourceRaw = nullptr;
  if (d->viewCube != nullptr)
  {
    d->viewCube->Off();
    d->viewCube = nullptr;
  }
  if (d->callback != nullptr)
  {
    for (int i = 0; i < 3; ++i)
    {
      if (d->viewers[idx(i)] == nullptr)
        continue;
      d->viewers[idx(i)]->GetResliceCursorWidget()->RemoveObserver(d->callback);
      d->viewers[idx(i)]->RemoveObserver(d->callback);
    }
    d->callback->clear();
    d->callback = nullptr;
  }
  for (int i = 0; i < 3; ++i)
  {
    if (d->snapCallbacks[idx(i)] != nullptr)
    {
      if (vtkRenderWindowInteractor* interactor =
            d->paneWidgets[idx(i)] != nullptr ? d->paneWidgets[idx(i)]->interactor() : nullptr)
        interactor->RemoveObserver(d->snapCallbacks[idx(i)]);
      d->snapCallbacks[idx(i)]->clear();
      d->snapCallbacks[idx(i)] = nullptr;
    }
  }
  for (int i = 0; i < 3; ++i)
  {
    if (d->viewers[idx(i)] == nullptr)
      continue;
    vtkRenderer* renderer = d->viewers[idx(i)]->GetRenderer();
    if (d->slices[idx(i)] != nullptr)
      renderer->RemoveViewProp(d->slices[idx(i)]);
    if (auto* ours =
          dynamic_cast<VXResliceCursorRepresentationCommon*>(d->reps[idx(i)].GetPointer()))
      ours->removeActorsFromRenderer(renderer);
    d->viewers[idx(i)]->GetResliceCursorWidget()->SetEnabled(0);
  }
  for (auto& bar : d->scalarBars)
  {
    if (bar != nullptr)
      bar->SetEnabled(0);
  }
  if (d->volumeMapper != nullptr)
  {
    d->volumeMapper->ReleaseGraphicsResources(d->view3D->renderWindow());
    d->volumeMapper->RemoveAllInputConnections(0);
  }
  d->histograms.clear();
  d->histogram = nullptr;
  d->image = nullptr;
  const bool wasInitialized = d->initialized;
  if (wasInitialized)
    assignBlankRenderWindows();
  std::fill(std::begin(d->dims), std::end(d->dims), 0);
  // the next panes' overlays are new: their first text must not wait for the throttle
  d->annotationTimer.invalidate();
  d->initialized = false;
  d->controls = VXQuadViewControls();
  d->lengthUnits = d->controls.m_LengthUnits.toStdString();
  d->activeArray = nullptr;
  d->activeArrayName.clear();

  // nothing in a pane outlives this call
  d->viewers = {};
  d->styles = {};
  d->scalarBars = {};
  d->reps = {};
  d->outlinePolys = {};
  d->outlineMappers = {};
  d->outlineActors = {};
  d->corners = {};
  d->slices = {};
  d->sliceMappers = {};
  d->planes = {};
  d->volumeMapper = nullptr;
  d->volume = nullptr;
  d->volumeProperty = nullptr;
  d->extractComponents = nullptr;
  d->magnitude = nullptr;
}

// ---------------------------------------------------------------------------
// Accessors

bool VXQuadView::isInitialized() const
{
  return d->initialized;
}

vtkImageData* VXQuadView::getImageData() const
{
  return d->image;
}

QVTKOpenGLNativeWidget* VXQuadView::getPaneWidget(int uiPane) const
{
  switch (uiPane)
  {
    case 0:
      return d->view3D;
    case 1:
      return d->viewXZ;
    case 2:
      return d->viewYZ;
    case 3:
      return d->viewXY;
    default:
      return nullptr;
  }
}

VXResliceImageViewer* VXQuadView::getViewer(int slicePane) const
{
  return slicePane >= 0 && slicePane < 3 ? d->viewers[idx(slicePane)].GetPointer() : nullptr;
}

vtkImageSlice* VXQuadView::getImageSlice(int slicePane) const
{
  return slicePane >= 0 && slicePane < 3 ? d->slices[idx(slicePane)].GetPointer() : nullptr;
}

vtkActor* VXQuadView::getPlaneOutlineActor(int slicePane) const
{
  return slicePane >= 0 && slicePane < 3 ? d->outlineActors[idx(slicePane)].GetPointer() : nullptr;
}

vtkCornerAnnotation* VXQuadView::getCornerAnnotation(int index) const
{
  return index >= 0 && index < 4 ? d->corners[idx(index)].GetPointer() : nullptr;
}

vtkScalarBarWidget* VXQuadView::getScalarBarWidget(int index) const
{
  return index >= 0 && index < 4 ? d->scalarBars[idx(index)].GetPointer() : nullptr;
}

VXViewActionsController* VXQuadView::getViewActionsController(int uiPane) const
{
  return uiPane >= 0 && uiPane < 4 ? d->viewActions[idx(uiPane)] : nullptr;
}

vtkRenderWindow* VXQuadView::getVolumeRenderWindow() const
{
  return d->view3D->renderWindow();
}

vtkVolume* VXQuadView::getVolume() const
{
  return d->volume;
}

VXViewCubeWidget* VXQuadView::getViewCube() const
{
  return d->viewCube;
}

vtkResliceCursorCallback* VXQuadView::getResliceCursorCallback() const
{
  return d->callback;
}

// ---------------------------------------------------------------------------
// State

namespace
{
constexpr const char* k_CursorCenter = "cursor_center";
constexpr const char* k_CursorAxes = "cursor_axes";

// @p count finite numbers, or nothing
bool readNumbers(const nlohmann::json& json, const char* key, double* out, size_t count)
{
  const auto it = json.find(key);
  if (it == json.end() || !it->is_array() || it->size() != count)
    return false;
  for (size_t i = 0; i < count; ++i)
  {
    if (!(*it)[i].is_number() || !std::isfinite((*it)[i].get<double>()))
      return false;
    out[i] = (*it)[i].get<double>();
  }
  return true;
}
} // namespace

void VXQuadView::saveState(nlohmann::json& json)
{
  for (int ui = 0; ui < 4; ++ui)
  {
    nlohmann::json& state = d->controls.m_PerPaneViewActionState[idx(ui)];
    state = nullptr;
    if (VXViewActionsController* controller = d->viewActions[idx(ui)])
      controller->saveState(state);
  }
  for (int pane = 0; pane < 3; ++pane)
  {
    QString& text = d->controls.m_PerPaneAnnotations[idx(pane)];
    text.clear();
    const qva::VXQuadViewAnnotationsController* controller = d->annotationControllers[idx(pane)];
    const QJsonArray records = controller != nullptr ? controller->serialize() : QJsonArray();
    if (!records.isEmpty())
      text = QString::fromUtf8(QJsonDocument(records).toJson(QJsonDocument::Compact));
  }
  d->controls.write(json);
  vtkResliceCursor* cursor = d->initialized ? d->cursor() : nullptr;
  if (cursor == nullptr)
    return;
  const double* c = cursor->GetCenter();
  json[k_CursorCenter] = { c[0], c[1], c[2] };
  // the cursor's planes are its truth: their normals are its axes
  nlohmann::json axes = nlohmann::json::array();
  for (int i = 0; i < 3; ++i)
  {
    const double* normal = cursor->GetPlane(i)->GetNormal();
    for (int k = 0; k < 3; ++k)
      axes.push_back(normal[k]);
  }
  json[k_CursorAxes] = axes;
}

bool VXQuadView::loadState(const nlohmann::json& json)
{
  QStringList messages;
  const VXQuadViewControls saved = VXQuadViewControls::read(json, messages);
  for (const QString& message : messages)
    Q_EMIT printOutput(message);
  if (saved.m_GeometryPath.isEmpty())
    return false;
  const unsigned loadsBefore = d->geometryLoads;
  Q_EMIT loadGeometryRequested(saved.m_GeometryPath, this);
  // a view still showing an earlier geometry does not count: the record is for the one asked
  if (!d->initialized || d->geometryLoads == loadsBefore)
  {
    Q_EMIT printOutput(QStringLiteral("Could not load Quad View state: geometry '%1' was not "
                                      "loaded by any handler.")
                         .arg(saved.m_GeometryPath));
    return false;
  }

  for (int ui = 0; ui < 4; ++ui)
  {
    const nlohmann::json& state = saved.m_PerPaneViewActionState[idx(ui)];
    if (!state.is_null() && d->viewActions[idx(ui)] != nullptr)
      d->viewActions[idx(ui)]->restoreState(state);
  }
  if (!saved.m_ArrayLookupTables.isEmpty())
  {
    d->controls.m_ArrayLookupTables = saved.m_ArrayLookupTables;
    d->controls.m_ArrayOpacityFunctions = saved.m_ArrayOpacityFunctions;
  }
  const QStringList arrays = getAvailableArrayNames();
  QString array = d->controls.m_ActiveArray;
  if (arrays.contains(saved.m_ActiveArray))
    array = saved.m_ActiveArray;
  else if (!saved.m_ActiveArray.isEmpty())
    Q_EMIT printOutput(QStringLiteral("Quad View state: array '%1' does not exist; showing '%2'.")
                         .arg(saved.m_ActiveArray, array));
  onArrayChanged(array);
  // the saved table carries its own inversion; the flag only tells which way it stands
  d->controls.m_ColorMapInverted = saved.m_ColorMapInverted;
  const int components = d->activeArray != nullptr ? d->activeArray->GetNumberOfComponents() : 0;
  if (array == saved.m_ActiveArray && saved.m_ActiveComponent != d->controls.m_ActiveComponent)
  {
    if (components < 2)
      d->controls.m_ActiveComponent = saved.m_ActiveComponent; // -1 and 0 both mean the only one
    else if (saved.m_ActiveComponent >= -1 && saved.m_ActiveComponent < components)
      onComponentChanged(saved.m_ActiveComponent + 1);
    else
      Q_EMIT printOutput(
        QStringLiteral("Quad View state: array '%1' has no component %2; showing the magnitude.")
          .arg(array)
          .arg(saved.m_ActiveComponent));
  }
  showColorLegend(saved.m_ShowColorLegend);
  showAnnotations(saved.m_ShowAnnotations);
  showPlaneWidgets(saved.m_ShowPlaneWidgets);
  setLengthUnits(saved.m_LengthUnits);
  if (saved.m_ResliceMode)
    resliceMode(2);
  if (saved.m_ThickMode)
    thickMode(2);
  setBlendMode(saved.m_MeanBlend ? 2 : saved.m_MinBlend ? 0 : 1);
  d->controls.m_ShadingEnabled = saved.m_ShadingEnabled;
  d->controls.m_Ambient = saved.m_Ambient;
  d->controls.m_Diffuse = saved.m_Diffuse;
  d->controls.m_Specular = saved.m_Specular;
  d->controls.m_SpecularPower = saved.m_SpecularPower;
  applyShadingToVolumeProperty();
  setLightFollowsCamera(saved.m_LightFollowsCamera);
  setSSAOEnabled(saved.m_SSAOEnabled);
  setVolumeBlendMode(saved.m_VolumeBlendMode);
  setGIReach(saved.m_GIReach);
  setVolumetricScattering(saved.m_VolumetricScattering);
  restoreCursor(json);

  // the modes reset the slice cameras: the saved ones go on last, and again after the new
  // panes' first reset
  for (int ui = 0; ui < 4; ++ui)
  {
    const nlohmann::json& state = saved.m_PerPaneViewActionState[idx(ui)];
    if (state.is_null() || d->viewActions[idx(ui)] == nullptr)
      continue;
    d->viewActions[idx(ui)]->restoreState(state);
    d->pendingViewStates[idx(ui)] = state;
  }

  bool restored = false;
  for (int pane = 0; pane < 3; ++pane)
  {
    const QString& text = saved.m_PerPaneAnnotations[idx(pane)];
    if (text.isEmpty())
      continue;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (document.isArray())
    {
      reconstructAnnotationsForPane(pane, document.array());
      restored = true;
    }
    else
      Q_EMIT printOutput(
        QStringLiteral("Quad View state: the annotations of pane %1 are not a JSON array.")
          .arg(pane));
  }
  if (restored)
  {
    Q_EMIT annotationsTableModelReady(d->annotationsModel);
    // marks size themselves by the camera, which is ready only once the panes have drawn
    QTimer::singleShot(0, this,
                       [this]()
                       {
                         notifyAnnotationsSliceChanged();
                         for (qva::VXQuadViewAnnotationsController* controller :
                              d->annotationControllers)
                         {
                           if (controller == nullptr)
                             continue;
                           for (const auto& annotation : controller->annotations())
                             annotation->onAfterLoad();
                         }
                       });
  }
  updateAllAnnotations(true);
  render();
  return true;
}

void VXQuadView::reconstructAnnotationsForPane(int slicePane, const QJsonArray& records)
{
  qva::VXQuadViewAnnotationsController* controller = annotationsController(slicePane);
  if (controller == nullptr)
    return;
  qva::restoreAnnotationRecords(*controller, records, currentWorldBoundsFor(slicePane),
                                [this](const QString& message) { Q_EMIT printOutput(message); });
}

void VXQuadView::restoreCursor(const nlohmann::json& json)
{
  vtkResliceCursor* cursor = d->cursor();
  if (cursor == nullptr || !json.is_object())
    return;
  double center[3];
  double axes[9];
  const bool hasCenter = json.contains(k_CursorCenter);
  if (hasCenter && !readNumbers(json, k_CursorCenter, center, 3))
  {
    Q_EMIT printOutput(QStringLiteral("Quad View state: '%1' is not three numbers; the cursor "
                                      "stays where it is.")
                         .arg(QString::fromLatin1(k_CursorCenter)));
    return;
  }
  if (json.contains(k_CursorAxes))
  {
    bool valid = readNumbers(json, k_CursorAxes, axes, 9);
    for (int a = 0; valid && a < 3; ++a)
    {
      const double length =
        std::sqrt(axes[3 * a] * axes[3 * a] + axes[3 * a + 1] * axes[3 * a + 1] +
                  axes[3 * a + 2] * axes[3 * a + 2]);
      valid = std::abs(length - 1.0) < 1e-6;
    }
    for (int a = 0; valid && a < 3; ++a)
    {
      const int b = (a + 1) % 3;
      valid = std::abs(axes[3 * a] * axes[3 * b] + axes[3 * a + 1] * axes[3 * b + 1] +
                       axes[3 * a + 2] * axes[3 * b + 2]) < 1e-6;
    }
    if (!valid)
    {
      Q_EMIT printOutput(QStringLiteral("Quad View state: '%1' are not three orthogonal unit "
                                        "axes; the cursor keeps its axes.")
                           .arg(QString::fromLatin1(k_CursorAxes)));
    }
    else
    {
      for (int i = 0; i < 3; ++i)
        cursor->GetPlane(i)->SetNormal(axes + 3 * i);
    }
  }
  if (hasCenter)
  {
    const double* bounds = cursorImage()->GetBounds();
    for (int i = 0; i < 3; ++i)
      center[i] = std::clamp(center[i], bounds[2 * i], bounds[2 * i + 1]);
    cursor->SetCenter(center);
  }
  cursor->Modified();
  cursor->Update();
  for (int i = 0; i < 3; ++i)
  {
    d->planes[idx(i)]->SetOrigin(cursor->GetPlane(i)->GetOrigin());
    d->planes[idx(i)]->SetNormal(cursor->GetPlane(i)->GetNormal());
  }
  vtkResliceCursorWidget* widget = d->viewers[0]->GetResliceCursorWidget();
  widget->InvokeEvent(vtkResliceCursorWidget::ResliceAxesChangedEvent);
  widget->InvokeEvent(vtkCommand::EndInteractionEvent);
  updatePlaneOutlines();
  notifyAnnotationsSliceChanged();
}

void VXQuadView::applyPendingViewStates()
{
  for (int ui = 0; ui < 4; ++ui)
  {
    nlohmann::json& state = d->pendingViewStates[idx(ui)];
    if (!state.is_null() && d->viewActions[idx(ui)] != nullptr)
      d->viewActions[idx(ui)]->restoreState(state);
    state = nullptr;
  }
}

// ---------------------------------------------------------------------------
// Pane menu, drag and drop

QMenu* VXQuadView::buildPaneContextMenu(int uiPane, QPoint pos)
{
  VXViewActionsController* controller = getViewActionsController(uiPane);
  if (controller == nullptr)
    return nullptr;
  auto* menu = new QMenu(this);
  menu->setObjectName(QStringLiteral("quadViewPaneMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->setToolTipsVisible(true);

  auto add = [](QMenu* to, const QString& text, const QString& tip, auto&& slot)
  {
    QAction* action = to->addAction(text);
    action->setToolTip(tip);
    QObject::connect(action, &QAction::triggered, to, slot);
    return action;
  };
  const int slicePane = slicePaneIdxFromUiPaneIdx(uiPane);
  if (annotationsController(slicePane) != nullptr)
  {
    addAnnotationMenuEntries(menu, slicePane, pos);
    menu->addSeparator();
  }
  QMenu* current = menu->addMenu(QStringLiteral("Current View"));
  current->setToolTipsVisible(true);
  add(current, QStringLiteral("Save Screenshot ..."),
      QStringLiteral("Saves a picture of this pane to a file."),
      [controller]() { controller->saveScreenshot(); });
  add(current, QStringLiteral("Copy Screenshot"),
      QStringLiteral("Puts a picture of this pane on the clipboard."),
      [controller]() { controller->copyScreenshot(); });
  QAction* grid = add(current, QStringLiteral("Axes Grid"),
                      QStringLiteral("Shows or hides the axes grid in this pane."),
                      [controller](bool on) { controller->setGridAxesEnabled(on); });
  grid->setCheckable(true);
  grid->setChecked(controller->gridAxesEnabled());
  add(current, QStringLiteral("Change Background Color"),
      QStringLiteral("Chooses the background colour of this pane."),
      [controller]() { controller->changeBackgroundColor(); });
  add(current, QStringLiteral("Restore Default Background Color"),
      QStringLiteral("Puts this pane's default background back."),
      [controller]() { controller->restoreDefaultBackgroundColor(); });

  QMenu* all = menu->addMenu(QStringLiteral("All Views"));
  all->setToolTipsVisible(true);
  add(all, QStringLiteral("Save Screenshot ..."),
      QStringLiteral("Saves one picture of the four panes to a file."),
      [this]() { saveAllPanesScreenshot(); });
  add(all, QStringLiteral("Copy Screenshot"),
      QStringLiteral("Puts one picture of the four panes on the clipboard."),
      [this]() { copyAllPanesScreenshot(); });
  const bool allGrids =
    std::all_of(d->viewActions.begin(), d->viewActions.end(),
                [](VXViewActionsController* c) { return c != nullptr && c->gridAxesEnabled(); });
  QAction* allGrid = add(all, QStringLiteral("Axes Grid"),
                         QStringLiteral("Shows or hides the axes grid in all four panes."),
                         [this](bool on)
                         {
                           for (VXViewActionsController* c : d->viewActions)
                           {
                             if (c != nullptr)
                               c->setGridAxesEnabled(on);
                           }
                         });
  allGrid->setCheckable(true);
  allGrid->setChecked(allGrids);
  add(all, QStringLiteral("Change Background Color"),
      QStringLiteral("Chooses one background colour for all four panes."),
      [this]() { changeAllPanesBackgroundColor(); });
  add(all, QStringLiteral("Restore Default Background Color"),
      QStringLiteral("Puts every pane's default background back."),
      [this]() { resetAllPanesBackgroundColor(); });
  return menu;
}

void VXQuadView::addAnnotationMenuEntries(QMenu* menu, int slicePane, QPoint pos)
{
  qva::VXQuadViewAnnotationsController* controller = annotationsController(slicePane);
  const QPointer<qva::VXQuadViewAnnotationsController> guard(controller);
  auto add = [menu](const QString& text, const QString& tip, auto&& slot)
  {
    QAction* action = menu->addAction(text);
    action->setToolTip(tip);
    QObject::connect(action, &QAction::triggered, menu, slot);
    return action;
  };
  if (qva::VXQuadViewAnnotation* hit = controller->hitTest(pos))
  {
    // the record may be gone by the time an entry is chosen: go through its id
    const qva::AnnotationId id = hit->id();
    const QString type = qva::VXQuadViewAnnotation::typeName(hit->type());
    const auto find = [guard, id]() -> qva::VXQuadViewAnnotation*
    { return guard != nullptr ? guard->annotationById(id) : nullptr; };
    add(QStringLiteral("Edit %1…").arg(type),
        QStringLiteral("Opens the editor of this %1.").arg(type.toLower()),
        [guard, find]()
        {
          if (qva::VXQuadViewAnnotation* a = find())
            guard->showHudFor(a);
        });
    add(hit->locked() ? QStringLiteral("Unlock") : QStringLiteral("Lock"),
        hit->locked() ? QStringLiteral("Lets the %1 follow the slice.").arg(type.toLower())
                      : QStringLiteral("Keeps the %1 on this slice only.").arg(type.toLower()),
        [find]()
        {
          if (qva::VXQuadViewAnnotation* a = find())
            a->setLocked(!a->locked());
        });
    add(QStringLiteral("Delete %1").arg(type),
        QStringLiteral("Removes this %1 from the pane.").arg(type.toLower()),
        [this, guard, find, id]()
        {
          qva::VXQuadViewAnnotation* a = find();
          if (a != nullptr &&
              qva::VXQuadViewAnnotationsTableModel::confirmDeleteOne(this, a->name()) &&
              guard != nullptr)
            guard->remove(id);
        });
  }
  else
  {
    if (qva::slicePlaneIsAxisAligned(computeSlicePlaneFor(slicePane), 1e-5))
    {
      add(QStringLiteral("Add Ruler Here"),
          QStringLiteral("Places a ruler starting at the cursor; drag its ends to measure."),
          [this, slicePane, pos]() { addRulerAtPaneLocalPos(slicePane, pos); });
    }
    add(QStringLiteral("Add Mark Here"),
        QStringLiteral("Or hold M and left-click on the slice to drop a mark at the cursor."),
        [this, slicePane, pos]() { addMarkAtPaneLocalPos(slicePane, pos); });
  }
  QAction* clear = add(
    QStringLiteral("Clear All Annotations in This Pane"),
    QStringLiteral("Removes every ruler and mark from this slice pane. Annotations in the other "
                   "panes are not affected."),
    [this, guard, slicePane]()
    {
      const QString scope = QStringLiteral("the %1 pane")
                              .arg(qva::slicePaneName(static_cast<qva::SlicePaneRole>(slicePane)));
      if (guard != nullptr && qva::VXQuadViewAnnotationsTableModel::confirmClearAll(this, scope) &&
          guard != nullptr)
        guard->clearAll();
    });
  clear->setEnabled(controller->count() > 0);
}

bool VXQuadView::eventFilter(QObject* watched, QEvent* event)
{
  if (event->type() == QEvent::MouseButtonPress)
  {
    auto* mouse = static_cast<QMouseEvent*>(event);
    const std::array<QWidget*, 4> panes{ d->view3D, d->viewXZ, d->viewYZ, d->viewXY };
    const auto found = std::find(panes.begin(), panes.end(), watched);
    if (mouse->button() == Qt::RightButton && found != panes.end() && d->initialized)
    {
      const QPoint pos = mouse->position().toPoint();
      if (QMenu* menu = buildPaneContextMenu(static_cast<int>(found - panes.begin()), pos))
        menu->popup(static_cast<QWidget*>(watched)->mapToGlobal(pos));
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void VXQuadView::dragEnterEvent(QDragEnterEvent* event)
{
  const QMimeData* mime = event->mimeData();
  if (mime->hasFormat(QStringLiteral("text/uri-list")) ||
      mime->hasFormat(QStringLiteral("QuadViewItem")))
    event->acceptProposedAction();
}

void VXQuadView::dropEvent(QDropEvent* event)
{
  const QMimeData* mime = event->mimeData();
  if (mime->hasFormat(QStringLiteral("QuadViewItem")))
  {
    const QJsonDocument document =
      QJsonDocument::fromJson(mime->data(QStringLiteral("QuadViewItem")));
    const QString path = document.object().value(QStringLiteral("geometry_path")).toString();
    if (path.isEmpty())
      return;
    event->acceptProposedAction();
    Q_EMIT loadGeometryRequested(path, this);
    return;
  }
  const QList<QUrl> urls = mime->urls();
  if (urls.size() != 1)
    return;
  const QString file = urls.first().toLocalFile();
  const QString suffix = QFileInfo(file).suffix().toLower();
  if (suffix == QStringLiteral("vlxstate"))
  {
    event->acceptProposedAction();
    Q_EMIT loadStateRequested(file);
  }
  else if (suffix == QStringLiteral("voxelia"))
  {
    event->acceptProposedAction();
    Q_EMIT loadFileRequested(file);
  }
}
