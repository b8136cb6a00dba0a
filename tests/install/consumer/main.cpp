// A host-side program: builds a small image geometry, wraps it for VTK, and
// shows it in the module widget through its pipeline, as a host would.
#include <bridge/VtkBridge.hpp>
#include <visualization/QtWidgets/VXVisualizationModuleWidget.hpp>
#include <visualization/VXPipeline.hpp>

#include <KX/IPipelineController.hpp>

#include <kxcore/AttributeMatrix.hpp>
#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/ImageGeom.hpp>

#include <QVTKOpenGLNativeWidget.h>
#include <vtkCellData.h>

#include <QtGui/QSurfaceFormat>
#include <QtWidgets/QApplication>

#include <cstdio>

namespace
{
class Controller : public KX::IPipelineController
{
public:
  QString getPipelineName() const override { return "Consumer"; }
  QString getPipelineFilePath() const override { return "/tmp/consumer.pipeline"; }
  QString getPipelineUuid() const override { return "{8c6e2f4a-0000-4000-8000-000000000001}"; }
};
} // namespace

int main(int argc, char** argv)
{
  using namespace kx::core;
  auto ds = std::make_shared<DataStructure>();
  auto* image = ImageGeom::Create(*ds, "Image");
  image->setDimensions({ 4, 3, 2 });
  auto* cells = AttributeMatrix::Create(*ds, "Cell Data", { 2, 3, 4 }, image->getId());
  image->setCellData(cells->getId());
  auto store = std::make_shared<DataStore<int32>>(ShapeType{ 2, 3, 4 }, ShapeType{ 1 });
  for (usize i = 0; i < 24; i++)
    store->setValue(i, static_cast<int32>(i));
  Int32Array::Create(*ds, "FeatureIds", store, cells->getId());

  auto wrapped = CV::VtkBridge::WrapGeometry(CV::VtkBridge::FindGeometry(ds, "Image"));
  if (!wrapped->DataSet)
    return 1;
  double range[2];
  wrapped->DataSet->GetCellData()->GetArray("FeatureIds")->GetRange(range, 0);
  std::printf("consumer: %lld cells, FeatureIds range %g %g\n",
              static_cast<long long>(wrapped->DataSet->GetNumberOfCells()), range[0], range[1]);

  QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
  QApplication app(argc, argv);
  VXVisualizationModuleWidget module;
  Controller controller;
  VXPipeline* pipeline = module.pipeline();
  if (pipeline == nullptr || !pipeline->importPipelineOutput(&controller, ds))
    return 2;
  // a host may also keep a pipeline of its own, outside any widget
  VXPipeline standalone;
  std::printf("consumer: module shows pipeline output\n");
  return 0;
}
