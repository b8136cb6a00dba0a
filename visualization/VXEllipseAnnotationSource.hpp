#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** An ellipse drawn as a line in the world: centre, normal of its plane, major axis and the ratio
 * of the minor to the major radius. */
class KXVTKLIB_EXPORT VXEllipseAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXEllipseAnnotationSource";

  explicit VXEllipseAnnotationSource(QObject* parent = nullptr);
  ~VXEllipseAnnotationSource() override;

  QString humanTypeName() override { return "Ellipse"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;
  void fitToBounds(const double bounds[6]) override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
