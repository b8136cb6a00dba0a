#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** A framed text with a leader line pointing at a point of the world. */
class KXVTKLIB_EXPORT VXCaptionAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXCaptionAnnotationSource";

  explicit VXCaptionAnnotationSource(QObject* parent = nullptr);
  ~VXCaptionAnnotationSource() override;

  QString humanTypeName() override { return "Caption"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;
  void fitToBounds(const double bounds[6]) override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
