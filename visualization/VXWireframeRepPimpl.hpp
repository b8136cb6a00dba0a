#pragma once

#include "visualization/VXPointsRepPimpl.hpp"

/**
 * The wireframe data view in one render view: the points implementation with
 * the actor drawn as lines along the cell edges.
 */
class KXVTKLIB_EXPORT VXWireframeRepPimpl : public VXPointsRepPimpl
{
  Q_OBJECT

public:
  VXWireframeRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXWireframeRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  void buildSettingsPage() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void pasteSettingsFromClipboard() override;
  void updateToolTips() override;
  void openHelp() override;
};
