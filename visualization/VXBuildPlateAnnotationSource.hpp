#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** The build plate of an additive manufacturing machine: a flat slab whose top face lies at the
 * given centre, under the part, with an optional grid on top. */
class KXVTKLIB_EXPORT VXBuildPlateAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXBuildPlateAnnotationSource";

  explicit VXBuildPlateAnnotationSource(QObject* parent = nullptr);
  ~VXBuildPlateAnnotationSource() override;

  QString humanTypeName() override { return "Build Plate"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;
  void fitToBounds(const double bounds[6]) override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
