#pragma once

#include "visualization/VXWireframeRepPimpl.hpp"

/**
 * The surface data view in one render view: the wireframe implementation with
 * the actor drawn as filled faces, and optional back-face culling.
 */
class KXVTKLIB_EXPORT VXSurfaceRepPimpl : public VXWireframeRepPimpl
{
  Q_OBJECT

public:
  VXSurfaceRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXSurfaceRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  void write(nlohmann::json& output) const override;
  /** Reads the points-level keys first, then back_face_culling. */
  void read(const nlohmann::json& input) override;
  void bounds(double bounds[6]) override;
  void buildSettingsPage() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void pasteSettingsFromClipboard() override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void updateToolTips() override;
  void openHelp() override;

  bool backFaceCulling() const { return m_BackFaceCulling; }

public Q_SLOTS:
  void setBackFaceCulling(bool culling);

protected:
  void syncControls() override;

  bool m_BackFaceCulling = false;
  QPointer<QCheckBox> m_CullingCheckBox;
};
