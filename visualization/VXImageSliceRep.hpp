#pragma once

#include "visualization/VXRepresentation.hpp"

#include <string_view>

/**
 * The image slice data view: one 2D slice of an image at a time, coloured by an array, with slice
 * animations and slices linked between views. It takes image data only.
 */
class KXVTKLIB_EXPORT VXImageSliceRep : public VXRepresentation
{
  Q_OBJECT

public:
  /** Ends in a blank: state files carry the name that way. */
  static constexpr std::string_view k_TypeName = "VXImageSliceRep ";

  explicit VXImageSliceRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXImageSliceRep() override;

  QString humanTypeName() override { return "Image Slice Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  vtkAlgorithmOutput* outputPort() override;
  QIcon getIcon() override;
  Type type() const override { return ImageSlice; }
  void initializeImplementations(vtkAlgorithmOutput* inputPort) override;
  bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                       vtkAlgorithmOutput* inputPort, bool visible) override;
  void updateDataSetInfo() override;

protected:
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
