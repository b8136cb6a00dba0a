#pragma once

// What the view benchmarks share: a render view, a host pipeline run, and a 256^3 float host
// volume handed over the way a host hands over its results.
#include <visualization/QtWidgets/VXAbstractViewWidget.hpp>

#include <KX/IPipelineController.hpp>
#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/ImageGeom.hpp>

#include <cmath>
#include <memory>

namespace kxbench
{
constexpr int k_VolumeSide = 256;

class BenchView : public VXAbstractViewWidget
{
public:
  using VXAbstractViewWidget::VXAbstractViewWidget;
  VXAbstractViewWidget* clone() override { return new BenchView(); }
  VXAbstractViewWidget* newInstance() override { return new BenchView(); }
};

class BenchController : public KX::IPipelineController
{
public:
  QString getPipelineName() const override { return "Bench"; }
  QString getPipelineFilePath() const override { return "/tmp/bench.kxpipe"; }
  QString getPipelineUuid() const override { return "bench-volume"; }
};

/**
 * A host image "Volume" of 256^3 cells with a float cell array "Density": nested shells, smooth
 * enough to shade. @p values receives the host's own buffer.
 */
inline std::shared_ptr<kx::core::DataStructure> HostVolume(float*& values)
{
  using namespace kx::core;
  const int side = k_VolumeSide;
  auto ds = std::make_shared<DataStructure>();
  auto* image = ImageGeom::Create(*ds, "Volume");
  image->setDimensions(
    { static_cast<usize>(side), static_cast<usize>(side), static_cast<usize>(side) });
  const ShapeType tuples{ static_cast<usize>(side), static_cast<usize>(side),
                          static_cast<usize>(side) };
  auto* cells = AttributeMatrix::Create(*ds, "Cell Data", tuples, image->getId());
  image->setCellData(cells->getId());
  auto store = std::make_shared<DataStore<float>>(tuples, ShapeType{ 1 }, 0.0f);
  const double centre = 0.5 * side;
  float* out = store->data();
  for (int z = 0; z < side; ++z)
    for (int y = 0; y < side; ++y)
      for (int x = 0; x < side; ++x)
      {
        const double r = std::sqrt((x - centre) * (x - centre) + (y - centre) * (y - centre) +
                                   (z - centre) * (z - centre));
        const size_t i = (static_cast<size_t>(z) * side + y) * side + x;
        out[i] = static_cast<float>(100.0 * (1.0 + std::cos(r / 6.0)) * (1.0 - r / 222.0));
      }
  values = out;
  Float32Array::Create(*ds, "Density", store, cells->getId());
  return ds;
}
} // namespace kxbench
