#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** A solid arrow from a start point to an end point of the world. */
class KXVTKLIB_EXPORT VXArrowAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXArrowAnnotationSource";

  explicit VXArrowAnnotationSource(QObject* parent = nullptr);
  ~VXArrowAnnotationSource() override;

  QString humanTypeName() override { return "Arrow"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;
  void fitToBounds(const double bounds[6]) override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
