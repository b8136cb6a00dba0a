#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** Text in the four corners of the view, one text per corner. */
class KXVTKLIB_EXPORT VXCornerAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXCornerAnnotationSource";

  explicit VXCornerAnnotationSource(QObject* parent = nullptr);
  ~VXCornerAnnotationSource() override;

  QString humanTypeName() override { return "Corner Annotation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
