#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** A line of text in the view, at a preset place (a corner, an edge's middle, the centre) or at a
 * free place in the view's fraction coordinates. */
class KXVTKLIB_EXPORT VXTextAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXTextAnnotationSource";

  explicit VXTextAnnotationSource(QObject* parent = nullptr);
  ~VXTextAnnotationSource() override;

  QString humanTypeName() override { return "Text"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
