#pragma once

#include "visualization/VXWireframeRep.hpp"

/**
 * The surface data view: the points data view's geometry drawn as filled faces, with optional
 * back-face culling.
 */
class KXVTKLIB_EXPORT VXSurfaceRep : public VXWireframeRep
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXSurfaceRep";

  explicit VXSurfaceRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXSurfaceRep() override;

  QString humanTypeName() override { return "Surface Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  QIcon getIcon() override;
  Type type() const override { return Surface; }

protected:
  VXSurfaceRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent);
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
