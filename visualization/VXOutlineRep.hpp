#pragma once

#include "visualization/VXRepresentation.hpp"

#include <string_view>

class VXOutlineRepPimpl;

/**
 * The outline data view: the bounding box of the parent's data as lines. It
 * carries the instance rules that the points, wireframe and surface data views
 * share; each of those only says which implementation it makes.
 */
class KXVTKLIB_EXPORT VXOutlineRep : public VXRepresentation
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXOutlineRep";

  explicit VXOutlineRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXOutlineRep() override;

  QString humanTypeName() override { return "Outline Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  /** The output of the first implementation's filter. */
  vtkAlgorithmOutput* outputPort() override;
  QIcon getIcon() override;
  Type type() const override { return Outline; }
  void initializeImplementations(vtkAlgorithmOutput* inputPort) override;
  bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                       vtkAlgorithmOutput* inputPort, bool visible) override;
  void updateDataSetInfo() override;

protected:
  VXOutlineRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent);
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
