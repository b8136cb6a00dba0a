#include "SamplePipelineController.hpp"

#include <MicrostructureGenerator.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/INodeGeometry0D.hpp>
#include <kxcore/IGeometry.hpp>
#include <kxcore/ImageGeom.hpp>

#include <QtCore/QStringList>

#include <cmath>
#include <memory>

namespace
{
using namespace kx::core;

// the seed of run 0 is the generator's own; each later run takes the next one
constexpr std::uint32_t k_FirstSeed = 20240611u;

QString PathText(const DataPath& path)
{
  return QString::fromStdString(path.toString("/"));
}

/** The attribute matrices directly under a geometry. */
std::vector<AttributeMatrix*> AttributeMatrices(const IGeometry& geometry)
{
  std::vector<AttributeMatrix*> matrices;
  for (const auto& [id, object] : geometry.getDataMap())
  {
    if (auto* matrix = dynamic_cast<AttributeMatrix*>(object.get()))
      matrices.push_back(matrix);
  }
  return matrices;
}

/** The value at @p index of a single-component array of any of the ten number types. */
bool ReadValues(const IArray& array, std::vector<double>& values)
{
  bool matched = false;
  auto attempt = [&](auto tag)
  {
    using T = decltype(tag);
    const auto* typed = dynamic_cast<const DataArray<T>*>(&array);
    if (matched || typed == nullptr)
      return;
    matched = true;
    values.resize(typed->getNumberOfTuples());
    for (usize i = 0; i < values.size(); ++i)
      values[i] = static_cast<double>((*typed)[i]);
  };
  attempt(int8{});
  attempt(int16{});
  attempt(int32{});
  attempt(int64{});
  attempt(uint8{});
  attempt(uint16{});
  attempt(uint32{});
  attempt(uint64{});
  attempt(float32{});
  attempt(float64{});
  return matched;
}

bool RunMultiThreshold(const SamplePipelineController::MultiThresholdStep& step,
                       DataStructure& data, QString* message)
{
  auto* geometry = data.getDataAs<IGeometry>(step.geometry);
  if (geometry == nullptr)
  {
    *message =
      QString("Multi-Threshold Objects: there is no geometry %1.").arg(PathText(step.geometry));
    return false;
  }
  if (step.ranges.empty())
  {
    *message = "Multi-Threshold Objects: no ranges were given.";
    return false;
  }
  // every range names an array of the same attribute matrix: the mask goes beside them
  AttributeMatrix* owner = nullptr;
  std::vector<std::vector<double>> columns;
  for (const KX::ArrayThresholdRange& range : step.ranges)
  {
    const IArray* found = nullptr;
    AttributeMatrix* foundIn = nullptr;
    for (AttributeMatrix* matrix : AttributeMatrices(*geometry))
    {
      if (auto object = matrix->getDataMap().getByName(range.arrayPath))
      {
        found = dynamic_cast<const IArray*>(object.get());
        foundIn = matrix;
        break;
      }
    }
    if (found == nullptr)
    {
      *message = QString("Multi-Threshold Objects: %1 has no array \"%2\".")
                   .arg(PathText(step.geometry), QString::fromStdString(range.arrayPath));
      return false;
    }
    if (owner != nullptr && foundIn != owner)
    {
      *message = QString("Multi-Threshold Objects: the arrays of one mask must belong to the "
                         "same attribute matrix; \"%1\" does not.")
                   .arg(QString::fromStdString(range.arrayPath));
      return false;
    }
    owner = foundIn;
    columns.emplace_back();
    if (found->getNumberOfComponents() != 1 || !ReadValues(*found, columns.back()))
    {
      *message = QString("Multi-Threshold Objects: \"%1\" is no single-component number array.")
                   .arg(QString::fromStdString(range.arrayPath));
      return false;
    }
  }

  std::string name = SamplePipelineController::k_MaskName;
  for (int i = 2; owner->getDataMap().getByName(name) != nullptr; ++i)
    name = std::string(SamplePipelineController::k_MaskName) + " " + std::to_string(i);
  const usize tuples = columns.front().size();
  auto store = std::make_shared<DataStore<uint8>>(owner->getShape(), ShapeType{ 1 });
  usize inside = 0;
  for (usize t = 0; t < tuples; ++t)
  {
    bool keep = true;
    for (usize r = 0; r < columns.size() && keep; ++r)
    {
      const double value = columns[r][t];
      keep = value >= step.ranges[r].lowerBound && value <= step.ranges[r].upperBound;
    }
    store->setValue(t, keep ? 1 : 0);
    inside += keep ? 1 : 0;
  }
  UInt8Array::Create(data, name, store, owner->getId());
  QStringList ranges;
  for (const KX::ArrayThresholdRange& range : step.ranges)
    ranges << QString("%1 in [%2, %3]")
                .arg(QString::fromStdString(range.arrayPath))
                .arg(range.lowerBound)
                .arg(range.upperBound);
  *message = QString("Multi-Threshold Objects on %1 (%2): %3 of %4 tuples marked in \"%5\".")
               .arg(PathText(step.geometry), ranges.join(", "))
               .arg(inside)
               .arg(tuples)
               .arg(QString::fromStdString(name));
  return true;
}

bool RunTransform(const SamplePipelineController::TransformStep& step, DataStructure& data,
                  QString* message)
{
  const auto& m = step.matrix;
  auto* geometry = data.getDataAs<IGeometry>(step.geometry);
  if (geometry == nullptr)
  {
    *message =
      QString("Apply Transformation: there is no geometry %1.").arg(PathText(step.geometry));
    return false;
  }
  if (auto* nodes = dynamic_cast<INodeGeometry0D*>(geometry);
      nodes != nullptr && nodes->getVertices())
  {
    Float32Array* vertices = nodes->getVertices();
    auto& store = vertices->getDataStoreRefTyped();
    const usize count = vertices->getNumberOfTuples();
    for (usize v = 0; v < count; ++v)
    {
      const double p[3] = { store.getValue(v * 3), store.getValue(v * 3 + 1),
                            store.getValue(v * 3 + 2) };
      for (usize row = 0; row < 3; ++row)
        store.setValue(v * 3 + row, static_cast<float32>(m[row][0] * p[0] + m[row][1] * p[1] +
                                                         m[row][2] * p[2] + m[row][3]));
    }
    *message = QString("Apply Transformation on %1: %2 vertices moved.")
                 .arg(PathText(step.geometry))
                 .arg(count);
    return true;
  }
  if (auto* image = dynamic_cast<ImageGeom*>(geometry))
  {
    // a grid stays a grid: only moving and stretching along its axes keeps its cells
    for (int row = 0; row < 3; ++row)
    {
      for (int column = 0; column < 3; ++column)
      {
        if (row != column && std::abs(m[row][column]) > 1e-9)
        {
          *message = QString("Apply Transformation: %1 is an image grid, which can be moved and "
                             "scaled along its axes but not rotated.")
                       .arg(PathText(step.geometry));
          return false;
        }
      }
      if (m[row][row] <= 0.0)
      {
        *message = QString("Apply Transformation: %1 is an image grid; its scale must be "
                           "positive.")
                     .arg(PathText(step.geometry));
        return false;
      }
    }
    FloatVec3 origin = image->getOrigin();
    FloatVec3 spacing = image->getSpacing();
    for (int axis = 0; axis < 3; ++axis)
    {
      origin[axis] = static_cast<float32>(m[axis][axis] * origin[axis] + m[axis][3]);
      spacing[axis] = static_cast<float32>(m[axis][axis] * spacing[axis]);
    }
    image->setOrigin(origin);
    image->setSpacing(spacing);
    *message = QString("Apply Transformation on %1: origin (%2, %3, %4), spacing (%5, %6, %7).")
                 .arg(PathText(step.geometry))
                 .arg(origin[0])
                 .arg(origin[1])
                 .arg(origin[2])
                 .arg(spacing[0])
                 .arg(spacing[1])
                 .arg(spacing[2]);
    return true;
  }
  *message = QString("Apply Transformation: %1 is a geometry this pipeline can't move.")
               .arg(PathText(step.geometry));
  return false;
}
} // namespace

SamplePipelineController::Output SamplePipelineController::execute(kx::core::usize size,
                                                                   std::uint32_t run) const
{
  kxvtk::sample::MicrostructureGenerator generator(size, k_FirstSeed + run);
  Output output{ generator.generate(), 0, {}, {} };
  output.grains = generator.summary().grains;
  for (const Step& step : m_Steps)
  {
    QString message;
    output.succeeded.push_back(RunStep(step, output.data, &message));
    output.messages.push_back(message);
  }
  return output;
}

bool SamplePipelineController::RunStep(const Step& step, kx::core::DataStructure& data,
                                       QString* message)
{
  if (const auto* threshold = std::get_if<MultiThresholdStep>(&step))
    return RunMultiThreshold(*threshold, data, message);
  return RunTransform(std::get<TransformStep>(step), data, message);
}
