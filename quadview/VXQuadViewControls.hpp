#pragma once

#include "KXVtkLib_export.h"

#include "visualization/VXLookupTable.hpp"

#include <vtkPiecewiseFunction.h>
#include <vtkSmartPointer.h>

#include <nlohmann/json.hpp>

#include <QtCore/QMap>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

/**
 * The live settings of one quad view: slab blend, slice modes, what is shown,
 * the volume pane's lighting, and the colour map and opacity of each array.
 * The quad view keeps one and keeps it across a rebuild of its panes; the
 * state file stores it.
 */
struct KXVTKLIB_EXPORT VXQuadViewControls
{
  QString m_GeometryPath;
  bool m_MeanBlend = false;
  bool m_MinBlend = false;
  bool m_MaxBlend = true;
  /** Oblique reslicing of the cursor (rotation allowed). */
  bool m_ResliceMode = false;
  bool m_ThickMode = false;
  bool m_ShowColorLegend = true;
  bool m_ShowAnnotations = true;
  bool m_ShowPlaneWidgets = false;
  QString m_LengthUnits = QStringLiteral("mm");
  QSharedPointer<VXLookupTable> m_LookupTable;
  vtkSmartPointer<vtkPiecewiseFunction> m_OpacityFunction;
  QString m_ActiveArray;
  /** -1 means the magnitude, or the only component of a one component array. */
  int m_ActiveComponent = -1;
  bool m_ColorMapInverted = false;
  bool m_ShadingEnabled = false;
  double m_Ambient = 0.2;
  double m_Diffuse = 0.8;
  double m_Specular = 0.2;
  double m_SpecularPower = 20.0;
  bool m_LightFollowsCamera = true;
  bool m_SSAOEnabled = false;
  int m_VolumeBlendMode = 0;
  double m_GIReach = 0.0;
  double m_VolumetricScattering = 0.0;
  QMap<QString, QSharedPointer<VXLookupTable>> m_ArrayLookupTables;
  QMap<QString, vtkSmartPointer<vtkPiecewiseFunction>> m_ArrayOpacityFunctions;
  /** Saved view action state of each pane, by UI pane index. */
  std::array<nlohmann::json, 4> m_PerPaneViewActionState;
  /** Saved annotations of each slice pane as JSON text, by slice pane index. */
  std::array<QString, 3> m_PerPaneAnnotations;

  /**
   * Writes every key of the record into the object @p json. Opacity points are strings
   * "x y" with 17 significant digits, so that they read back bit for bit.
   */
  void write(nlohmann::json& json) const;
  /**
   * A record from @p json. A key that is missing keeps its default; a key of a wrong type,
   * and an opacity point that does not read as two numbers, are skipped with a line in
   * @p messages.
   */
  static VXQuadViewControls read(const nlohmann::json& json, QStringList& messages);
};
