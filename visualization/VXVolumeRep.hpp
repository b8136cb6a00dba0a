#pragma once

#include "visualization/VXRepresentation.hpp"

#include <string_view>

/**
 * The volume data view: an image drawn by ray casting, coloured and made transparent by a colour
 * function and an opacity function of its own for each array. It takes image data only and does
 * not follow the parent geometry's colours.
 */
class KXVTKLIB_EXPORT VXVolumeRep : public VXRepresentation
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXVolumeRep";

  explicit VXVolumeRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXVolumeRep() override;

  QString humanTypeName() override { return "Volume Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  vtkAlgorithmOutput* outputPort() override;
  QIcon getIcon() override;
  Type type() const override { return Volume; }
  void initializeImplementations(vtkAlgorithmOutput* inputPort) override;
  bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                       vtkAlgorithmOutput* inputPort, bool visible) override;
  void updateDataSetInfo() override;

protected:
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
