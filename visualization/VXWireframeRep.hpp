#pragma once

#include "visualization/VXPointsRep.hpp"

/**
 * The wireframe data view: the points data view's geometry drawn as its edges.
 */
class KXVTKLIB_EXPORT VXWireframeRep : public VXPointsRep
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXWireframeRep";

  explicit VXWireframeRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXWireframeRep() override;

  QString humanTypeName() override { return "Wireframe Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  QIcon getIcon() override;
  Type type() const override { return Wireframe; }

protected:
  VXWireframeRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent);
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
