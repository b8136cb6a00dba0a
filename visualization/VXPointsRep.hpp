#pragma once

#include "visualization/VXOutlineRep.hpp"

/**
 * The points data view: the parent's geometry drawn as points, coloured by an array or a solid
 * colour, with legend, categorical colours and presets.
 */
class KXVTKLIB_EXPORT VXPointsRep : public VXOutlineRep
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXPointsRep";

  explicit VXPointsRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXPointsRep() override;

  QString humanTypeName() override { return "Point Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  QIcon getIcon() override;
  Type type() const override { return Points; }

protected:
  VXPointsRep(VXPipeline* pipeline, const QString& defaultName, QObject* parent);
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
