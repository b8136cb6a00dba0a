#include "visualization/QtWidgets/VXPickerCallback.hpp"

#include "utils/PipelineUtils.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"

#include <vtkAbstractMapper3D.h>
#include <vtkActor.h>
#include <vtkCamera.h>
#include <vtkCell.h>
#include <vtkCellData.h>
#include <vtkCellArray.h>
#include <vtkDataSet.h>
#include <vtkDataSetAttributes.h>
#include <vtkGridAxesActor3D.h>
#include <vtkHardwarePicker.h>
#include <vtkIdTypeArray.h>
#include <vtkImageData.h>
#include <vtkImageSlice.h>
#include <vtkImageSliceMapper.h>
#include <vtkLinearTransform.h>
#include <vtkMath.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkProp.h>
#include <vtkPropCollection.h>
#include <vtkProperty.h>
#include <vtkRenderWindow.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkSphereSource.h>
#include <vtkTransform.h>

#include <fmt/format.h>

#include <QtGui/QCursor>
#include <QtWidgets/QToolTip>

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

vtkStandardNewMacro(VXPickerCallback);

namespace
{
bool isOriginalIdArray(const std::string& name)
{
  return name == "vtkOriginalCellIds" || name == "Original Cell Index" ||
         name == "vtkOriginalPointIds" || name == "Original Point Index";
}

std::string valueText(vtkAbstractArray* array, vtkIdType id, int component)
{
  std::ostringstream stream;
  auto* dataArray = vtkDataArray::SafeDownCast(array);
  if (dataArray != nullptr)
  {
    const double value = dataArray->GetComponent(id, component);
    // integer arrays print as integers, not in the double's exponent form
    if (dataArray->IsIntegral() != 0)
      stream << static_cast<long long>(value);
    else
      stream << value;
  }
  else
  {
    stream << array->GetVariantValue(id * array->GetNumberOfComponents() + component).ToString();
  }
  return stream.str();
}

void appendArrayLines(std::string& text, vtkAbstractArray* array, vtkIdType id,
                      const std::string& lineEnding)
{
  const std::string name = array->GetName() != nullptr ? array->GetName() : "";
  const int components = array->GetNumberOfComponents();
  const vtkIdType tuples = array->GetNumberOfTuples();
  for (int c = 0; c < components; ++c)
  {
    text += "    " + name;
    if (components > 1)
      text += "[" + std::to_string(c) + "]";
    text += ": ";
    if (id >= tuples)
      text += fmt::format("Idx = {} - Not Valid Max = {}", id, tuples - 1);
    else
      text += valueText(array, id, c);
    text += lineEnding;
  }
}

/** Hides the view parts a pick must not hit and strips id arrays; restores all on destruction. */
class PickPreparation
{
public:
  explicit PickPreparation(vtkRenderer* renderer)
  {
    vtkPropCollection* props = renderer->GetViewProps();
    vtkCollectionSimpleIterator it;
    props->InitTraversal(it);
    while (vtkProp* prop = props->GetNextProp(it))
    {
      if (auto* grid = vtkGridAxesActor3D::SafeDownCast(prop);
          grid != nullptr && grid->GetVisibility() != 0)
      {
        grid->SetVisibility(false);
        m_HiddenGrids.push_back(grid);
        continue;
      }
      auto* actor = vtkActor::SafeDownCast(prop);
      auto* mapper =
        actor != nullptr ? vtkPolyDataMapper::SafeDownCast(actor->GetMapper()) : nullptr;
      if (mapper == nullptr)
        continue;
      // with id arrays named, the hardware pick reports those values instead of plain ids
      m_Mappers.push_back(
        { mapper, mapper->GetPointIdArrayName() != nullptr ? mapper->GetPointIdArrayName() : "",
          mapper->GetCellIdArrayName() != nullptr ? mapper->GetCellIdArrayName() : "",
          mapper->GetPointIdArrayName() != nullptr, mapper->GetCellIdArrayName() != nullptr });
      mapper->SetPointIdArrayName(nullptr);
      mapper->SetCellIdArrayName(nullptr);
    }
  }
  ~PickPreparation()
  {
    for (auto* grid : m_HiddenGrids)
      grid->SetVisibility(true);
    for (const auto& saved : m_Mappers)
    {
      saved.mapper->SetPointIdArrayName(saved.hasPoint ? saved.pointName.c_str() : nullptr);
      saved.mapper->SetCellIdArrayName(saved.hasCell ? saved.cellName.c_str() : nullptr);
    }
  }
  PickPreparation(const PickPreparation&) = delete;
  PickPreparation& operator=(const PickPreparation&) = delete;

private:
  struct SavedMapper
  {
    vtkPolyDataMapper* mapper;
    std::string pointName;
    std::string cellName;
    bool hasPoint;
    bool hasCell;
  };
  std::vector<vtkGridAxesActor3D*> m_HiddenGrids;
  std::vector<SavedMapper> m_Mappers;
};
/**
 * The index extent of @p image that is on screen: the whole extent, or for an image shown by a
 * slice mapper the displayed slice (and the cropping region when cropping is on).
 */
void displayedExtent(vtkImageData* image, vtkImageSliceMapper* sliceMapper, int extent[6])
{
  image->GetExtent(extent);
  if (sliceMapper == nullptr)
    return;
  if (sliceMapper->GetCropping() != 0)
  {
    const int* crop = sliceMapper->GetCroppingRegion();
    for (int i = 0; i < 3; ++i)
    {
      extent[2 * i] = std::max(extent[2 * i], crop[2 * i]);
      extent[2 * i + 1] = std::max(extent[2 * i], std::min(extent[2 * i + 1], crop[2 * i + 1]));
    }
  }
  const int axis = sliceMapper->GetOrientation();
  const int sliceNumber =
    std::clamp(sliceMapper->GetSliceNumber(), extent[2 * axis], extent[2 * axis + 1]);
  extent[2 * axis] = sliceNumber;
  extent[2 * axis + 1] = sliceNumber;
}

/**
 * Where the line of sight through the display position @p eventPosition meets the plane of the
 * slice @p sliceIndex along @p axis of @p image: the line is taken from the display into the
 * image's index space, so that the answer is the continuous index @p continuous and the world
 * point @p world. False when the line runs along the plane.
 */
bool sliceIntersection(vtkRenderer* renderer, vtkImageData* image, int axis, int sliceIndex,
                       vtkLinearTransform* worldToData, const int eventPosition[2],
                       double continuous[3], double world[3])
{
  double ray[2][3];
  double index[2][3];
  for (int end = 0; end < 2; ++end)
  {
    renderer->SetDisplayPoint(eventPosition[0], eventPosition[1], end);
    renderer->DisplayToWorld();
    double point[4];
    renderer->GetWorldPoint(point);
    if (point[3] == 0.0)
      return false;
    for (int i = 0; i < 3; ++i)
      ray[end][i] = point[i] / point[3];
    double local[3];
    worldToData->TransformPoint(ray[end], local);
    image->TransformPhysicalPointToContinuousIndex(local, index[end]);
  }
  const double span = index[1][axis] - index[0][axis];
  if (std::abs(span) < 1e-12)
    return false;
  const double t = (sliceIndex - index[0][axis]) / span;
  for (int i = 0; i < 3; ++i)
  {
    world[i] = ray[0][i] + t * (ray[1][i] - ray[0][i]);
    continuous[i] = index[0][i] + t * (index[1][i] - index[0][i]);
  }
  continuous[axis] = sliceIndex;
  return true;
}

/** The cell of @p image that holds the continuous index, kept inside the displayed extent. */
vtkIdType cellAtIndex(vtkImageData* image, const double continuous[3], const int displayed[6])
{
  int ijk[3];
  const int* extent = image->GetExtent();
  for (int i = 0; i < 3; ++i)
  {
    // cells run from one sample to the next: the last sample closes the last cell
    const int lastCell = std::max(extent[2 * i], extent[2 * i + 1] - 1);
    const int low = std::min(displayed[2 * i], lastCell);
    const int high = std::max(low, std::min(displayed[2 * i + 1], lastCell));
    ijk[i] = std::clamp(static_cast<int>(std::floor(continuous[i])), low, high);
  }
  return image->ComputeCellId(ijk);
}
} // namespace

VXPickerCallback::VXPickerCallback() = default;

VXPickerCallback::~VXPickerCallback() = default;

void VXPickerCallback::setRenderer(vtkRenderer* renderer)
{
  m_Renderer = renderer;
}

void VXPickerCallback::setRenderWindow(vtkRenderWindow* window)
{
  m_RenderWindow = window;
}

void VXPickerCallback::requestRender() const
{
  if (m_RenderFunction)
    m_RenderFunction();
}

void VXPickerCallback::getLastImageDataIndex(int index[3]) const
{
  for (int i = 0; i < 3; ++i)
    index[i] = m_LastImageIndex[i];
}

void VXPickerCallback::Execute(vtkObject* caller, unsigned long eventId, void* /*callData*/)
{
  if (m_Renderer == nullptr)
    return;
  auto* style = VXInteractorStyleCamera::SafeDownCast(caller);
  switch (eventId)
  {
    case vtkCommand::TimerEvent:
      m_PickText = QString::fromStdString(GeneratePickInfo());
      QToolTip::showText(QCursor::pos(), m_PickText);
      requestRender();
      break;
    case vtkCommand::EndInteractionEvent:
      toggleHighlightersVisibility(false);
      requestRender();
      break;
    case VXInteractorStyleCamera::k_KeyPressEvent:
      if (style != nullptr && (style->pick1ModeOn() || style->pick2ModeOn()))
      {
        m_KeyPick = true;
        m_PickText = QString::fromStdString(GeneratePickInfo());
      }
      break;
    case VXInteractorStyleCamera::k_KeyReleaseEvent:
      m_KeyPick = false;
      if (m_PointHighlightActor != nullptr)
        m_PointHighlightActor->SetVisibility(m_HoverPoints);
      if (m_CellHighlightActor != nullptr)
        m_CellHighlightActor->SetVisibility(m_HoverCells);
      break;
    case vtkCommand::PickEvent:
    {
      const bool cellPick = style != nullptr && style->cellPickModeOn();
      if (!m_KeyPick && !cellPick)
        return;
      m_PickText = QString::fromStdString(GeneratePickInfo());
      if (m_PickFunction)
      {
        const bool pick1 = style != nullptr && style->pick1ModeOn();
        const bool pick2 = style != nullptr && style->pick2ModeOn();
        m_PickFunction(m_PickPosition, pick1 || cellPick, pick2 || cellPick);
      }
      break;
    }
    default:
      break;
  }
}

std::string VXPickerCallback::GeneratePickInfo()
{
  m_LastImageData = nullptr;
  m_LastImageSlice = nullptr;
  if (m_Renderer == nullptr || m_RenderWindow == nullptr ||
      m_RenderWindow->GetInteractor() == nullptr)
    return {};
  const int* eventPosition = m_RenderWindow->GetInteractor()->GetEventPosition();
  const bool pointMode = m_HoverPoints || m_KeyPick;

  vtkNew<vtkHardwarePicker> picker;
  picker->SetSnapToMeshPoint(pointMode);
  int hit = 0;
  {
    // the highlighters themselves must not be picked
    const bool pointVisible =
      m_PointHighlightActor != nullptr && m_PointHighlightActor->GetVisibility() != 0;
    const bool cellVisible =
      m_CellHighlightActor != nullptr && m_CellHighlightActor->GetVisibility() != 0;
    toggleHighlightersVisibility(false);
    PickPreparation preparation(m_Renderer);
    hit = picker->Pick(eventPosition[0], eventPosition[1], 0.0, m_Renderer);
    if ((hit == 0 || picker->GetViewProp() == nullptr) && pointMode)
    {
      picker->SetSnapToMeshPoint(false);
      hit = picker->Pick(eventPosition[0], eventPosition[1], 0.0, m_Renderer);
    }
    if (m_PointHighlightActor != nullptr)
      m_PointHighlightActor->SetVisibility(pointVisible);
    if (m_CellHighlightActor != nullptr)
      m_CellHighlightActor->SetVisibility(cellVisible);
  }
  picker->GetPickPosition(m_PickPosition);
  vtkProp* prop = picker->GetViewProp();
  if (hit == 0 || prop == nullptr)
    return {};

  // the data drawn, which the picked ids refer to, and the data it was made from
  vtkAbstractMapper3D* mapper = picker->GetMapper();
  vtkDataSet* drawn = picker->GetDataSet();
  if (drawn == nullptr && mapper != nullptr)
    drawn = vtkDataSet::SafeDownCast(mapper->GetInputDataObject(0, 0));
  vtkDataSet* original = mapper != nullptr
                           ? KXVtk::utils::FindOriginalPipelineInput(mapper->GetInputAlgorithm())
                           : nullptr;
  if (original == nullptr)
    original = drawn;
  if (original == nullptr)
    return {};

  vtkNew<vtkTransform> actorTransform;
  if (auto* prop3D = vtkProp3D::SafeDownCast(prop))
    actorTransform->SetMatrix(prop3D->GetMatrix());
  vtkNew<vtkTransform> worldToData;
  worldToData->DeepCopy(actorTransform);
  worldToData->Inverse();
  double local[3];
  worldToData->TransformPoint(m_PickPosition, local);

  std::string name = original->GetObjectName();
  if (name.empty() && drawn != nullptr)
    name = drawn->GetObjectName();

  auto* image = vtkImageData::SafeDownCast(original);
  auto* slice = vtkImageSlice::SafeDownCast(prop);
  auto* sliceMapper =
    slice != nullptr ? vtkImageSliceMapper::SafeDownCast(slice->GetMapper()) : nullptr;
  int displayed[6] = { 0, -1, 0, -1, 0, -1 };
  if (image != nullptr)
    displayedExtent(image, sliceMapper, displayed);

  if (pointMode)
  {
    vtkIdType pointId = -1;
    double position[3] = { m_PickPosition[0], m_PickPosition[1], m_PickPosition[2] };
    if (image != nullptr)
    {
      // the nearest sample, on the slice that is shown when the image is shown as a slice
      double continuous[3];
      if (sliceMapper == nullptr ||
          !sliceIntersection(m_Renderer, image, sliceMapper->GetOrientation(),
                             displayed[2 * sliceMapper->GetOrientation()], worldToData,
                             eventPosition, continuous, position))
        image->TransformPhysicalPointToContinuousIndex(local, continuous);
      for (int i = 0; i < 3; ++i)
      {
        const int index = static_cast<int>(std::lround(continuous[i]));
        m_LastImageIndex[i] = std::clamp(index, displayed[2 * i], displayed[2 * i + 1]);
      }
      m_LastImageData = image;
      m_LastImageSlice = slice;
      pointId = image->ComputePointId(m_LastImageIndex);
      double sample[3];
      image->GetPoint(pointId, sample);
      actorTransform->TransformPoint(sample, position);
    }
    else
    {
      // the drawn point itself when the drawn data is the original, else (and when the pick found
      // no mesh point within its tolerance) the original point nearest to the pick
      pointId = original == drawn ? picker->GetPointId() : -1;
      if (pointId < 0)
        pointId = original->FindPoint(local);
      if (pointId >= 0)
      {
        double point[3];
        original->GetPoint(pointId, point);
        actorTransform->TransformPoint(point, position);
      }
    }
    if (pointId >= 0)
      createPointHighlighter(position[0], position[1], position[2], nullptr, std::nullopt);
    std::ostringstream coords;
    coords << "(" << position[0] << ", " << position[1] << ", " << position[2] << ")";
    return printDataValues(original->GetPointData(), pointId, "Point", name, coords.str(), "\n");
  }
  if (!m_HoverCells)
    return {};

  vtkIdType cellId = -1;
  double position[3] = { m_PickPosition[0], m_PickPosition[1], m_PickPosition[2] };
  if (image != nullptr && sliceMapper != nullptr)
  {
    // on the displayed plane: what lies under the cursor, whatever depth the pick reports
    const int axis = sliceMapper->GetOrientation();
    double continuous[3];
    if (sliceIntersection(m_Renderer, image, axis, displayed[2 * axis], worldToData, eventPosition,
                          continuous, position))
      cellId = cellAtIndex(image, continuous, displayed);
  }
  else if (original == drawn)
  {
    cellId = picker->GetCellId();
  }
  else
  {
    // the picked cell of the drawn geometry lies on one cell of the original data: find it at the
    // drawn cell's centre, which no neighbouring cell shares
    double centre[3] = { local[0], local[1], local[2] };
    if (drawn != nullptr && picker->GetCellId() >= 0 &&
        picker->GetCellId() < drawn->GetNumberOfCells())
    {
      vtkCell* cell = drawn->GetCell(picker->GetCellId());
      double parametric[3];
      int subId = cell->GetParametricCenter(parametric);
      std::vector<double> weights(
        static_cast<size_t>(std::max<vtkIdType>(cell->GetNumberOfPoints(), 1)));
      cell->EvaluateLocation(subId, parametric, centre, weights.data());
    }
    const double tolerance = 1e-6 * std::max(original->GetLength(), 1e-12);
    std::vector<double> weights(
      static_cast<size_t>(std::max<vtkIdType>(original->GetMaxCellSize(), 8)));
    double parametric[3];
    int subId = 0;
    cellId = original->FindCell(centre, nullptr, -1, tolerance * tolerance, subId, parametric,
                                weights.data());
  }
  if (cellId >= 0)
  {
    vtkNew<vtkIdTypeArray> ids;
    ids->InsertNextValue(cellId);
    createCellHighlighter(original, ids, actorTransform);
  }
  std::ostringstream coords;
  coords << "(" << position[0] << ", " << position[1] << ", " << position[2] << ")";
  return printDataValues(original->GetCellData(), cellId, "Cell", name, coords.str(), "\n");
}

std::string VXPickerCallback::printDataValues(vtkDataSetAttributes* attributes, vtkIdType id,
                                              const std::string& itemKind,
                                              const std::string& geometryName,
                                              const std::string& coords,
                                              const std::string& lineEnding)
{
  if (id < 0)
    return "Idx = -1";
  std::string text =
    (geometryName.empty() ? std::string("Unnamed Geometry") : geometryName) + lineEnding;
  text += "    " + itemKind + " Id: " + std::to_string(id) + lineEnding;
  const int count = attributes != nullptr ? attributes->GetNumberOfArrays() : 0;
  for (int i = 0; i < count; ++i)
  {
    vtkAbstractArray* array = attributes->GetAbstractArray(i);
    if (array != nullptr && array->GetName() != nullptr && isOriginalIdArray(array->GetName()))
      appendArrayLines(text, array, id, lineEnding);
  }
  if (!coords.empty())
    text += "    Coords: " + coords + lineEnding;
  for (int i = 0; i < count; ++i)
  {
    vtkAbstractArray* array = attributes->GetAbstractArray(i);
    if (array == nullptr || (array->GetName() != nullptr && isOriginalIdArray(array->GetName())))
      continue;
    appendArrayLines(text, array, id, lineEnding);
  }
  return text;
}

void VXPickerCallback::setupHighlightActors()
{
  for (auto* slot : { &m_PointHighlightActor, &m_CellHighlightActor })
  {
    if (*slot != nullptr && m_Renderer != nullptr)
      m_Renderer->RemoveViewProp(*slot);
    auto actor = vtkSmartPointer<vtkActor>::New();
    vtkNew<vtkPolyDataMapper> mapper;
    vtkNew<vtkPolyData> empty;
    mapper->SetInputData(empty);
    actor->SetMapper(mapper);
    actor->PickableOff();
    actor->GetProperty()->SetColor(0.0, 0.0, 0.0);
    actor->SetVisibility(false);
    *slot = actor;
    if (m_Renderer != nullptr)
      m_Renderer->AddViewProp(actor);
  }
  m_CellHighlightActor->GetProperty()->SetRepresentationToWireframe();
  m_CellHighlightActor->GetProperty()->SetLineWidth(m_HighlightLineWidth + 1.0f);
}

void VXPickerCallback::createPointHighlighter(double x, double y, double z,
                                              vtkLinearTransform* transform,
                                              std::optional<double> size) const
{
  if (m_PointHighlightActor == nullptr)
    return;
  double point[3] = { x, y, z };
  if (transform != nullptr)
    transform->TransformPoint(point, point);
  vtkNew<vtkSphereSource> sphere;
  sphere->SetRadius(0.5);
  sphere->SetThetaResolution(16);
  sphere->SetPhiResolution(16);
  sphere->Update();
  auto* mapper = vtkPolyDataMapper::SafeDownCast(m_PointHighlightActor->GetMapper());
  mapper->SetInputData(sphere->GetOutput());
  m_PointHighlightActor->SetPosition(point);
  m_PointHighlightActor->SetScale(1.0);
  double scale = size.value_or(0.0);
  if (!size.has_value())
  {
    // about 15 pixels across at the current zoom
    const double ratio = getPointHighlighterSizeRatio(point[0], point[1], point[2]);
    scale = std::isnan(ratio) ? 1.0 : ratio;
  }
  m_PointHighlightActor->SetScale(scale);
  m_PointHighlightActor->SetVisibility(true);
  m_CellHighlightActor->SetVisibility(false);
}

void VXPickerCallback::createCellHighlighter(vtkDataSet* data, const vtkIdTypeArray* cellIds,
                                             vtkLinearTransform* transform) const
{
  if (m_CellHighlightActor == nullptr || data == nullptr || cellIds == nullptr ||
      const_cast<vtkIdTypeArray*>(cellIds)->GetNumberOfTuples() < 1)
    return;
  const vtkIdType cellId = const_cast<vtkIdTypeArray*>(cellIds)->GetValue(0);
  if (cellId < 0 || cellId >= data->GetNumberOfCells())
    return;
  vtkCell* cell = data->GetCell(cellId);
  vtkNew<vtkPoints> points;
  vtkNew<vtkCellArray> lines;
  auto addEdge = [&](vtkCell* edge)
  {
    const vtkIdType n = edge->GetNumberOfPoints();
    std::vector<vtkIdType> ids(static_cast<size_t>(n));
    for (vtkIdType i = 0; i < n; ++i)
    {
      double p[3];
      edge->GetPoints()->GetPoint(i, p);
      if (transform != nullptr)
        transform->TransformPoint(p, p);
      ids[static_cast<size_t>(i)] = points->InsertNextPoint(p);
    }
    lines->InsertNextCell(n, ids.data());
  };
  if (cell->GetNumberOfEdges() > 0)
  {
    for (int e = 0; e < cell->GetNumberOfEdges(); ++e)
      addEdge(cell->GetEdge(e));
  }
  else
  {
    addEdge(cell);
  }
  vtkNew<vtkPolyData> outline;
  outline->SetPoints(points);
  outline->SetLines(lines);
  auto* mapper = vtkPolyDataMapper::SafeDownCast(m_CellHighlightActor->GetMapper());
  mapper->SetInputData(outline);
  m_CellHighlightActor->SetVisibility(true);
  m_PointHighlightActor->SetVisibility(false);
}

void VXPickerCallback::toggleHighlightersVisibility(bool visible) const
{
  if (m_PointHighlightActor != nullptr)
    m_PointHighlightActor->SetVisibility(visible);
  if (m_CellHighlightActor != nullptr)
    m_CellHighlightActor->SetVisibility(visible);
}

double VXPickerCallback::getPointHighlighterSizeRatio(double x, double y, double z) const
{
  if (m_Renderer == nullptr)
    return std::numeric_limits<double>::quiet_NaN();
  m_Renderer->SetWorldPoint(x, y, z, 1.0);
  m_Renderer->WorldToDisplay();
  double display[3];
  m_Renderer->GetDisplayPoint(display);
  auto toWorld = [this](double dx, double dy, double dz, double out[3])
  {
    m_Renderer->SetDisplayPoint(dx, dy, dz);
    m_Renderer->DisplayToWorld();
    double world[4];
    m_Renderer->GetWorldPoint(world);
    const double w = world[3] != 0.0 ? world[3] : 1.0;
    for (int i = 0; i < 3; ++i)
      out[i] = world[i] / w;
  };
  double low[3];
  double high[3];
  toWorld(display[0] - 7.5, display[1] - 7.5, display[2], low);
  toWorld(display[0] + 7.5, display[1] + 7.5, display[2], high);
  const double half = 0.5 * std::sqrt(vtkMath::Distance2BetweenPoints(low, high));
  vtkActor* reference = (m_HoverPoints || m_KeyPick) ? m_PointHighlightActor : m_CellHighlightActor;
  if (reference == nullptr)
    return std::numeric_limits<double>::quiet_NaN();
  const double* bounds = reference->GetBounds();
  const double width = bounds != nullptr ? bounds[1] - bounds[0] : 0.0;
  if (width == 0.0 || !std::isfinite(width))
    return std::numeric_limits<double>::quiet_NaN();
  return 2.0 * half / width;
}
