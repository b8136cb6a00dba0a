#include "quadview/VXQuadViewControls.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>

namespace
{
constexpr const char* k_Luts = "array_lut_fct";
constexpr const char* k_Opacities = "array_scalar_opacity_fct";
constexpr const char* k_ViewStates = "perPaneViewActionState";
constexpr const char* k_Annotations = "perPaneAnnotations";

QString wrongType(const char* key)
{
  return QStringLiteral("Quad View state: '%1' has the wrong type; kept the default.")
    .arg(QString::fromUtf8(key));
}

// the key's value when present and accepted by @p ok; a present key of a wrong type is reported
const nlohmann::json* find(const nlohmann::json& json, const char* key,
                           bool (*ok)(const nlohmann::json&), QStringList& messages)
{
  const auto it = json.find(key);
  if (it == json.end())
    return nullptr;
  if (!ok(*it))
  {
    messages << wrongType(key);
    return nullptr;
  }
  return &*it;
}

bool isBool(const nlohmann::json& v)
{
  return v.is_boolean();
}
bool isString(const nlohmann::json& v)
{
  return v.is_string();
}
bool isInt(const nlohmann::json& v)
{
  return v.is_number_integer() && v.get<long long>() >= -2147483647LL &&
         v.get<long long>() <= 2147483647LL;
}
bool isDouble(const nlohmann::json& v)
{
  return v.is_number() && std::isfinite(v.get<double>());
}
bool isObject(const nlohmann::json& v)
{
  return v.is_object();
}
bool isArray(const nlohmann::json& v)
{
  return v.is_array();
}

void readBool(const nlohmann::json& json, const char* key, bool& out, QStringList& messages)
{
  if (const nlohmann::json* v = find(json, key, isBool, messages))
    out = v->get<bool>();
}

void readString(const nlohmann::json& json, const char* key, QString& out, QStringList& messages)
{
  if (const nlohmann::json* v = find(json, key, isString, messages))
    out = QString::fromStdString(v->get<std::string>());
}

void readDouble(const nlohmann::json& json, const char* key, double& out, QStringList& messages)
{
  if (const nlohmann::json* v = find(json, key, isDouble, messages))
    out = v->get<double>();
}
} // namespace

void VXQuadViewControls::write(nlohmann::json& json) const
{
  json = nlohmann::json::object();
  json["geometry_path"] = m_GeometryPath.toStdString();
  json["mean_blend"] = m_MeanBlend;
  json["min_intensity_blend"] = m_MinBlend;
  json["max_intensity_blend"] = m_MaxBlend;
  json["reslice_mode"] = m_ResliceMode;
  json["thick_mode"] = m_ThickMode;
  json["show_color_legend"] = m_ShowColorLegend;
  json["show_annotations"] = m_ShowAnnotations;
  json["show_plane_widgets"] = m_ShowPlaneWidgets;
  json["length_units"] = m_LengthUnits.toStdString();
  json["active_array"] = m_ActiveArray.toStdString();
  json["active_component"] = m_ActiveComponent;
  json["color_map_inverted"] = m_ColorMapInverted;
  json["shading_enabled"] = m_ShadingEnabled;
  json["ambient"] = m_Ambient;
  json["diffuse"] = m_Diffuse;
  json["specular"] = m_Specular;
  json["specular_power"] = m_SpecularPower;
  json["light_follows_camera"] = m_LightFollowsCamera;
  json["ssao_enabled"] = m_SSAOEnabled;
  json["volume_blend_mode"] = m_VolumeBlendMode;
  json["gi_reach"] = m_GIReach;
  json["volumetric_scattering"] = m_VolumetricScattering;

  nlohmann::json luts = nlohmann::json::object();
  for (auto it = m_ArrayLookupTables.cbegin(); it != m_ArrayLookupTables.cend(); ++it)
  {
    if (it.value() != nullptr)
      it.value()->write(luts[it.key().toStdString()]);
  }
  json[k_Luts] = luts;

  nlohmann::json opacities = nlohmann::json::object();
  for (auto it = m_ArrayOpacityFunctions.cbegin(); it != m_ArrayOpacityFunctions.cend(); ++it)
  {
    nlohmann::json points = nlohmann::json::array();
    if (vtkPiecewiseFunction* function = it.value())
    {
      double node[4];
      for (int i = 0; i < function->GetSize(); ++i)
      {
        function->GetNodeValue(i, node);
        points.push_back(fmt::format("{:.17g} {:.17g}", node[0], node[1]));
      }
    }
    opacities[it.key().toStdString()] = points;
  }
  json[k_Opacities] = opacities;

  nlohmann::json views = nlohmann::json::array();
  for (const nlohmann::json& state : m_PerPaneViewActionState)
    views.push_back(state);
  json[k_ViewStates] = views;

  nlohmann::json annotations = nlohmann::json::array();
  for (const QString& text : m_PerPaneAnnotations)
    annotations.push_back(text.toStdString());
  json[k_Annotations] = annotations;
}

VXQuadViewControls VXQuadViewControls::read(const nlohmann::json& json, QStringList& messages)
{
  VXQuadViewControls c;
  if (!json.is_object())
  {
    messages << QStringLiteral("Quad View state: the record is not a JSON object.");
    return c;
  }
  readString(json, "geometry_path", c.m_GeometryPath, messages);
  readBool(json, "mean_blend", c.m_MeanBlend, messages);
  readBool(json, "min_intensity_blend", c.m_MinBlend, messages);
  readBool(json, "max_intensity_blend", c.m_MaxBlend, messages);
  readBool(json, "reslice_mode", c.m_ResliceMode, messages);
  readBool(json, "thick_mode", c.m_ThickMode, messages);
  readBool(json, "show_color_legend", c.m_ShowColorLegend, messages);
  readBool(json, "show_annotations", c.m_ShowAnnotations, messages);
  readBool(json, "show_plane_widgets", c.m_ShowPlaneWidgets, messages);
  readString(json, "length_units", c.m_LengthUnits, messages);
  readString(json, "active_array", c.m_ActiveArray, messages);
  if (const nlohmann::json* v = find(json, "active_component", isInt, messages))
    c.m_ActiveComponent = KXVtkModule::utils::StateInt(*v);
  readBool(json, "color_map_inverted", c.m_ColorMapInverted, messages);
  readBool(json, "shading_enabled", c.m_ShadingEnabled, messages);
  readDouble(json, "ambient", c.m_Ambient, messages);
  readDouble(json, "diffuse", c.m_Diffuse, messages);
  readDouble(json, "specular", c.m_Specular, messages);
  readDouble(json, "specular_power", c.m_SpecularPower, messages);
  readBool(json, "light_follows_camera", c.m_LightFollowsCamera, messages);
  readBool(json, "ssao_enabled", c.m_SSAOEnabled, messages);
  if (const nlohmann::json* v = find(json, "volume_blend_mode", isInt, messages))
    c.m_VolumeBlendMode = KXVtkModule::utils::StateInt(*v);
  readDouble(json, "gi_reach", c.m_GIReach, messages);
  readDouble(json, "volumetric_scattering", c.m_VolumetricScattering, messages);

  if (const nlohmann::json* luts = find(json, k_Luts, isObject, messages))
  {
    for (auto it = luts->begin(); it != luts->end(); ++it)
    {
      auto table = QSharedPointer<VXLookupTable>::create();
      table->read(it.value());
      c.m_ArrayLookupTables.insert(QString::fromStdString(it.key()), table);
    }
  }
  if (const nlohmann::json* opacities = find(json, k_Opacities, isObject, messages))
  {
    for (auto it = opacities->begin(); it != opacities->end(); ++it)
    {
      const QString array = QString::fromStdString(it.key());
      auto function = vtkSmartPointer<vtkPiecewiseFunction>::New();
      if (!it.value().is_array())
      {
        messages << wrongType(k_Opacities);
        continue;
      }
      for (const nlohmann::json& point : it.value())
      {
        double x = 0.0;
        double y = 0.0;
        char rest = 0;
        const std::string text = point.is_string() ? point.get<std::string>() : point.dump();
        // exactly two numbers, nothing after them
        if (!point.is_string() || std::sscanf(text.c_str(), "%lf %lf %c", &x, &y, &rest) != 2 ||
            !std::isfinite(x) || !std::isfinite(y))
        {
          messages << QStringLiteral("Skipped malformed opacity control point '%1' for array "
                                     "'%2' while loading state.")
                        .arg(QString::fromStdString(text), array);
          continue;
        }
        function->AddPoint(x, y);
      }
      c.m_ArrayOpacityFunctions.insert(array, function);
    }
  }
  if (const nlohmann::json* views = find(json, k_ViewStates, isArray, messages))
  {
    for (size_t i = 0; i < std::min<size_t>(views->size(), 4); ++i)
      c.m_PerPaneViewActionState[i] = (*views)[i];
  }
  if (const nlohmann::json* annotations = find(json, k_Annotations, isArray, messages))
  {
    for (size_t i = 0; i < std::min<size_t>(annotations->size(), 3); ++i)
    {
      if ((*annotations)[i].is_string())
        c.m_PerPaneAnnotations[i] = QString::fromStdString((*annotations)[i].get<std::string>());
      else
        messages << wrongType(k_Annotations);
    }
  }
  return c;
}
