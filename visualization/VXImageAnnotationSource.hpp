#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** An image file shown as a logo in the view: a place and a size in the view's fraction
 * coordinates, and an opacity. The logo can be dragged and resized. */
class KXVTKLIB_EXPORT VXImageAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXImageAnnotationSource";

  explicit VXImageAnnotationSource(QObject* parent = nullptr);
  ~VXImageAnnotationSource() override;

  QString humanTypeName() override { return "Image"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
