#pragma once

#include "visualization/VXRepresentation.hpp"

#include <string_view>

/**
 * The glyph data view: a small shape (arrow, cone, sphere, cube or line) at each shown point of
 * the parent's data, turned along a vector array, sized by an array and coloured like the other
 * data views. Large data sets are thinned to every Nth point or a uniform random subset first.
 */
class KXVTKLIB_EXPORT VXGlyphRep : public VXRepresentation
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "VXGlyphRep";

  explicit VXGlyphRep(VXPipeline* pipeline, QObject* parent = nullptr);
  ~VXGlyphRep() override;

  QString humanTypeName() override { return "Glyph Representation"; }
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  /** The points the first implementation draws glyphs at (after sampling). */
  vtkAlgorithmOutput* outputPort() override;
  QIcon getIcon() override;
  Type type() const override { return Glyph; }
  void initializeImplementations(vtkAlgorithmOutput* inputPort) override;
  bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view,
                       vtkAlgorithmOutput* inputPort, bool visible) override;
  /** Hands the data the first implementation samples to the dataset info widget. */
  void updateDataSetInfo() override;

protected:
  std::shared_ptr<VXRepresentationPimpl> createImplementation(VXAbstractViewWidget* view) override;
  bool isOwnImplementation(VXRepresentationPimpl* implementation) const override;
};
