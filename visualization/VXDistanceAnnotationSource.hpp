#pragma once

#include "visualization/VXGlobalSource.hpp"

#include <string_view>

/** A ruler between two points that the user drags in the view; it shows the distance in world
 * units. */
class KXVTKLIB_EXPORT VXDistanceAnnotationSource : public VXGlobalSource
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXDistanceAnnotationSource";

  explicit VXDistanceAnnotationSource(QObject* parent = nullptr);
  ~VXDistanceAnnotationSource() override;

  QString humanTypeName() override { return "Ruler"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  nlohmann::json defaultSettings() const override;
  std::vector<Field> fields() const override;
  void fitToBounds(const double bounds[6]) override;
  /** The ruler's length in a view, in world units. */
  double distance(VXAbstractViewWidget* view) const;

protected:
  QString build(VXGlobalSourcePimpl& impl) override;
};
