#include "visualization/VXLookupTable.hpp"

#include "utils/ColorUtils.hpp"
#include "visualization/VXUserPrompt.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <KXComponents/KXPreferences.hpp>

#include <vtkDataArray.h>
#include <vtkVariant.h>

#include <nlohmann/json.hpp>

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <map>

using kx::core::ColorTableUtilities::ColorPreset;

const std::vector<VXLookupTable::RgbPos_t> VXLookupTable::m_DefaultRgbPosVec = {
  { 0.0, 0.231373, 0.298039, 0.752941 },
  { 0.5, 0.865003, 0.865003, 0.865003 },
  { 1.0, 0.705882, 0.0156863, 0.14902 },
};

const QList<QColor> VXLookupTable::m_DefaultIndexedColors = {
  QColor(223, 32, 32),  QColor(223, 67, 32),  QColor(223, 105, 32), QColor(223, 143, 32),
  QColor(223, 179, 32), QColor(223, 217, 32), QColor(191, 223, 32), QColor(156, 223, 32),
  QColor(121, 223, 32), QColor(83, 223, 32),  QColor(41, 223, 32),  QColor(32, 223, 67),
  QColor(32, 223, 102), QColor(32, 223, 131), QColor(32, 223, 159), QColor(32, 223, 194),
  QColor(32, 217, 223), QColor(32, 179, 223), QColor(32, 143, 223), QColor(32, 108, 223),
  QColor(32, 70, 223),  QColor(32, 32, 223),  QColor(70, 32, 223),  QColor(108, 32, 223),
  QColor(143, 32, 223), QColor(179, 32, 223), QColor(217, 32, 223), QColor(223, 32, 191),
  QColor(223, 32, 156), QColor(223, 32, 121), QColor(223, 32, 83),  QColor(223, 32, 57),
};

namespace
{
vtkColor3d Rgb(const QColor& color)
{
  return KXVtk::utils::GetVtkColor3dFromQColor(color);
}

QString NumberText(double value)
{
  return QString::number(value, 'g', 6);
}

/** One categorical entry before it goes into the function. */
struct IndexedEntry
{
  double value = 0.0;
  QString label;
  double rgb[3] = { 0.0, 0.0, 0.0 };
};

/**
 * Adds categorical entries in ascending value order. VTK looks up the colour of
 * an annotated value as the node whose index equals the annotation's index, and
 * nodes are kept sorted by position: annotating in value order keeps the two
 * aligned whatever order a preset lists its values in. Leaves @p entries sorted.
 */
void AddIndexedEntries(vtkColorTransferFunction* ctf, std::vector<IndexedEntry>& entries)
{
  std::stable_sort(entries.begin(), entries.end(),
                   [](const IndexedEntry& a, const IndexedEntry& b) { return a.value < b.value; });
  for (const IndexedEntry& entry : entries)
  {
    ctf->SetAnnotation(vtkVariant(entry.value), entry.label.toStdString());
    ctf->AddRGBPoint(entry.value, entry.rgb[0], entry.rgb[1], entry.rgb[2]);
  }
}

/** A preset row split into its four numbers; false for another field count or a non-number. */
bool ParseRow(const QString& row, double out[4])
{
  const QStringList parts = row.split(QLatin1Char('/'), Qt::SkipEmptyParts);
  if (parts.size() != 4)
  {
    return false;
  }
  for (int i = 0; i < 4; ++i)
  {
    bool ok = false;
    out[i] = parts[i].trimmed().toDouble(&ok);
    if (!ok)
    {
      return false;
    }
  }
  return true;
}

int FieldCount(const QString& row)
{
  return static_cast<int>(row.split(QLatin1Char('/'), Qt::SkipEmptyParts).size());
}

// Annotation values may be written as numbers or as text; anything else throws
// the JSON library's type error, which the caller sees.
double AnnotationValue(const nlohmann::json& entry)
{
  if (entry.is_string())
  {
    return QString::fromStdString(entry.get<std::string>()).toDouble();
  }
  return entry.get<double>();
}

QString AnnotationLabel(const nlohmann::json& entry)
{
  if (entry.is_number())
  {
    return NumberText(entry.get<double>());
  }
  return QString::fromStdString(entry.get<std::string>());
}

/** The colour of preset colour @p k, wrapping round short presets; black without colours. */
void WrappedPresetColor(const std::vector<float>& colors, size_t k, double rgb[3])
{
  if (colors.empty())
  {
    rgb[0] = rgb[1] = rgb[2] = 0.0;
    return;
  }
  for (size_t j = 0; j < 3; ++j)
  {
    rgb[j] = colors[(3 * k + j) % colors.size()];
  }
}

bool HasAnnotations(const ColorPreset& preset)
{
  return !preset.annotations.is_null() && !preset.annotations.empty();
}

void NanColorOf(const ColorPreset& preset, const double current[3], double nan[3])
{
  for (int j = 0; j < 3; ++j)
  {
    nan[j] = preset.nanColor.size() >= 3 ? static_cast<double>(preset.nanColor[j]) : current[j];
  }
}

} // namespace

VXLookupTable::VXLookupTable(QObject* parent)
  : QObject(parent)
  , m_ColorTransferFunction(vtkSmartPointer<vtkColorTransferFunction>::New())
{
  createDefaultRgbColorTransferFunction();
}

VXLookupTable::~VXLookupTable() = default;

void VXLookupTable::addRgbPoint(double x, double r, double g, double b)
{
  m_ColorTransferFunction->AddRGBPoint(x, r, g, b);
}

void VXLookupTable::addRgbPoint(double x, double rgb[3])
{
  addRgbPoint(x, rgb[0], rgb[1], rgb[2]);
}

void VXLookupTable::addRgbPoint(RgbPos_t point)
{
  addRgbPoint(point.pos, point.r, point.g, point.b);
}

void VXLookupTable::copy(const VXLookupTable& other)
{
  if (&other == this)
  {
    return;
  }
  vtkColorTransferFunction* source = other.m_ColorTransferFunction;
  // read the nodes first: both tables may share one function
  const auto otherNodes = other.nodes();
  m_ColorTransferFunction->RemoveAllPoints();
  m_ColorTransferFunction->SetIndexedLookup(source->GetIndexedLookup());
  for (const auto& node : otherNodes)
  {
    m_ColorTransferFunction->AddRGBPoint(node[0], node[1], node[2], node[3], node[4], node[5]);
  }
  m_ColorTransferFunction->SetColorSpace(source->GetColorSpace());
  std::copy(std::begin(other.m_NanColor), std::end(other.m_NanColor), std::begin(m_NanColor));
  refresh();
  m_IsInverted = other.m_IsInverted;
  m_ColorPresetArray = other.m_ColorPresetArray;
}

VXLookupTable* VXLookupTable::deepCopy() const
{
  auto* table = new VXLookupTable(nullptr);
  table->copy(*this);
  return table;
}

bool VXLookupTable::equals(VXLookupTable* other) const
{
  if (other == nullptr)
  {
    return false;
  }
  if (other == this)
  {
    return true;
  }
  const auto mine = nodes();
  const auto theirs = other->nodes();
  if (mine.size() != theirs.size() || getRange() != other->getRange())
  {
    return false;
  }
  for (size_t i = 0; i < mine.size(); ++i)
  {
    for (size_t j = 0; j < 4; ++j)
    {
      if (mine[i][j] != theirs[i][j])
      {
        return false;
      }
    }
  }
  return true;
}

vtkColorTransferFunction* VXLookupTable::getColorTransferFunction() const
{
  return m_ColorTransferFunction;
}

void VXLookupTable::setColorTransferFunction(vtkColorTransferFunction* ctf)
{
  if (ctf == nullptr)
  {
    return;
  }
  m_ColorTransferFunction = ctf;
  refresh();
}

QList<QString> VXLookupTable::getColorPresetArray() const
{
  return m_ColorPresetArray;
}

QList<QString> VXLookupTable::getIndexedPresetArray() const
{
  return m_IndexedPresetArray;
}

QColor VXLookupTable::getNANColor() const
{
  return QColor::fromRgbF(static_cast<float>(m_NanColor[0]), static_cast<float>(m_NanColor[1]),
                          static_cast<float>(m_NanColor[2]));
}

void VXLookupTable::setNANColor(QColor color)
{
  const vtkColor3d rgb = Rgb(color);
  setNANColor(rgb.GetData());
}

void VXLookupTable::setNANColor(const double color[3])
{
  std::copy(color, color + 3, std::begin(m_NanColor));
  applyNanColorToFunction();
}

std::array<double, 2> VXLookupTable::getRange() const
{
  const double* range = m_ColorTransferFunction->GetRange();
  return { range[0], range[1] };
}

void VXLookupTable::setRange(double min, double max)
{
  if (m_ColorTransferFunction->GetIndexedLookup() != 0 || min > max || std::isnan(min) ||
      std::isnan(max))
  {
    return;
  }
  if (min == max)
  {
    // a constant array still needs a valid two-point function
    double rgb[3];
    m_ColorTransferFunction->GetColor(getRange()[0], rgb);
    m_ColorTransferFunction->RemoveAllPoints();
    m_ColorTransferFunction->AddRGBPoint(min, rgb[0], rgb[1], rgb[2]);
    m_ColorTransferFunction->AddRGBPoint(std::nextafter(min, DBL_MAX), rgb[0], rgb[1], rgb[2]);
    refresh();
    return;
  }

  const auto range = getRange();
  const double width = range[1] - range[0];
  auto points = nodes();
  if (points.size() > 2 || width >= 1e-10)
  {
    const double divisor = width == 0.0 ? 1.0 : width;
    for (auto& node : points)
    {
      node[0] = (node[0] - range[0]) / divisor;
    }
  }
  else
  {
    // a collapsed function has no shape left to stretch
    points.clear();
    for (const RgbPos_t& point : m_DefaultRgbPosVec)
    {
      points.push_back({ point.pos, point.r, point.g, point.b, 0.5, 0.0 });
    }
  }
  m_ColorTransferFunction->RemoveAllPoints();
  for (const auto& node : points)
  {
    // the end points land exactly on the bounds, so the data's extremes stay in range
    double x = (max - min) * node[0] + min;
    if (node[0] == 0.0)
    {
      x = min;
    }
    else if (node[0] == 1.0)
    {
      x = max;
    }
    m_ColorTransferFunction->AddRGBPoint(x, node[1], node[2], node[3], node[4], node[5]);
  }
  refresh();
}

void VXLookupTable::setRange(double range[2])
{
  setRange(range[0], range[1]);
}

void VXLookupTable::invert()
{
  const auto points = nodes();
  const size_t n = points.size();
  m_ColorTransferFunction->RemoveAllPoints();
  for (size_t k = 0; k < n; ++k)
  {
    const auto& position = points[k];
    const auto& color = points[n - 1 - k];
    m_ColorTransferFunction->AddRGBPoint(position[0], color[1], color[2], color[3], position[4],
                                         position[5]);
  }
  refresh();
  m_IsInverted = !m_IsInverted;
}

bool VXLookupTable::isInverted() const
{
  return m_IsInverted;
}

void VXLookupTable::parseRgbArray(const QList<QString>& rows)
{
  m_ColorTransferFunction->SetIndexedLookup(0);
  m_ColorTransferFunction->ResetAnnotations();
  const bool hadPoints = m_ColorTransferFunction->GetSize() > 0;
  auto range = getRange();

  if (rows.isEmpty() || rows.first() == k_DefaultPresetName)
  {
    createDefaultRgbColorTransferFunction();
  }
  else
  {
    if (FieldCount(rows.first()) != 4)
    {
      return;
    }
    m_ColorPresetArray = rows;
    m_ColorTransferFunction->RemoveAllPoints();
    for (const QString& row : rows)
    {
      double fields[4];
      if (ParseRow(row, fields))
      {
        m_ColorTransferFunction->AddRGBPoint(fields[0], fields[1], fields[2], fields[3]);
      }
    }
    m_ColorTransferFunction->SetColorSpaceToRGB();
  }

  // an empty function had no range worth keeping: the rows' own positions stand
  if (hadPoints)
  {
    setRange(range.data());
  }
  else
  {
    refresh();
  }
}

void VXLookupTable::parseRgbJson(const ColorPreset& preset)
{
  std::vector<RgbPos_t> points;
  const auto& values = preset.rgbPoints;
  for (size_t i = 0; i + 3 < values.size(); i += 4)
  {
    points.push_back({ values[i], values[i + 1], values[i + 2], values[i + 3] });
  }
  setRgbPoints(points);
}

void VXLookupTable::setRgbPoints(const std::vector<RgbPos_t>& points)
{
  m_ColorTransferFunction->SetIndexedLookup(0);
  m_ColorTransferFunction->ResetAnnotations();
  m_ColorPresetArray.clear();
  const bool hadPoints = m_ColorTransferFunction->GetSize() > 0;
  auto range = getRange();
  m_ColorTransferFunction->RemoveAllPoints();

  for (const RgbPos_t& point : points)
  {
    m_ColorTransferFunction->AddRGBPoint(point.pos, point.r, point.g, point.b);
    m_ColorPresetArray.append(presetRow(point.pos, point.r, point.g, point.b));
  }
  m_ColorTransferFunction->SetColorSpaceToRGB();

  // an empty function had no range worth keeping: the preset's own positions stand
  if (hadPoints)
  {
    setRange(range.data());
  }
  else
  {
    refresh();
  }
}

void VXLookupTable::parseIndexedArray(const QList<QString>& rows)
{
  m_ColorTransferFunction->SetIndexedLookup(1);
  m_ColorTransferFunction->ResetAnnotations();

  if (rows.isEmpty() || rows.first() == k_DefaultPresetName)
  {
    std::set<double> values;
    for (const QString& row : rows)
    {
      bool ok = false;
      const double value = row.split(QLatin1Char('/'), Qt::SkipEmptyParts).value(0).toDouble(&ok);
      // the "Default" marker row carries no value
      if (ok && !std::isnan(value))
      {
        values.insert(value);
      }
    }
    generateDefaultIndexedColors(values);
    return;
  }

  m_IndexedPresetArray = rows;
  if (FieldCount(rows.first()) != 4)
  {
    return;
  }
  m_ColorTransferFunction->RemoveAllPoints();
  std::vector<IndexedEntry> entries;
  for (const QString& row : rows)
  {
    double fields[4];
    if (ParseRow(row, fields))
    {
      entries.push_back({ fields[0], NumberText(fields[0]), { fields[1], fields[2], fields[3] } });
    }
  }
  AddIndexedEntries(m_ColorTransferFunction, entries);
  refresh();
}

void VXLookupTable::generateDefaultIndexedColors(const std::set<double>& values)
{
  m_IndexedPresetArray = { k_DefaultPresetName };
  m_ColorTransferFunction->SetIndexedLookup(1);
  m_ColorTransferFunction->ResetAnnotations();
  m_ColorTransferFunction->RemoveAllPoints();

  const int count = static_cast<int>(values.size());
  // integer step: more than 32 values step by 0, all taking the first colour,
  // which is what the too-many-values warning tells the user about
  const int step = count > 0 ? k_MaxNumberIndexedColors / count : 0;
  int index = 0;
  for (const double value : values)
  {
    m_ColorTransferFunction->SetAnnotation(vtkVariant(value), NumberText(value).toStdString());
    const vtkColor3d color = Rgb(m_DefaultIndexedColors[index]);
    index = (index + step) % k_MaxNumberIndexedColors;
    m_ColorTransferFunction->AddRGBPoint(value, color.GetRed(), color.GetGreen(), color.GetBlue());
  }
  refresh();
}

void VXLookupTable::parseIndexedJson(const ColorPreset& preset)
{
  const std::vector<float>& colors = preset.indexedColors;
  const size_t colorCount = colors.size() / 3;
  const bool hasAnnotations = HasAnnotations(preset);

  m_IndexedPresetArray.clear();
  if (hasAnnotations)
  {
    if (colorCount != preset.annotations.size() / 2)
    {
      return;
    }
  }
  else if (m_ColorTransferFunction->GetSize() == 0)
  {
    return;
  }

  double nan[3];
  NanColorOf(preset, m_NanColor, nan);

  if (hasAnnotations)
  {
    std::vector<IndexedEntry> entries;
    for (size_t k = 0; k < colorCount; ++k)
    {
      IndexedEntry entry;
      entry.value = AnnotationValue(preset.annotations[2 * k]);
      entry.label = AnnotationLabel(preset.annotations[2 * k + 1]);
      for (size_t j = 0; j < 3; ++j)
      {
        entry.rgb[j] = colors[3 * k + j];
      }
      entries.push_back(entry);
    }
    // only touch the function once the whole preset has been read
    m_ColorTransferFunction->RemoveAllPoints();
    m_ColorTransferFunction->ResetAnnotations();
    m_ColorTransferFunction->SetIndexedLookup(1);
    AddIndexedEntries(m_ColorTransferFunction, entries);
    for (const IndexedEntry& entry : entries)
    {
      m_IndexedPresetArray.append(presetRow(entry.value, entry.rgb[0], entry.rgb[1], entry.rgb[2]));
    }
  }
  else
  {
    // keep the annotated values and their labels, recolour them in turn
    std::map<double, QString> labels;
    for (vtkIdType i = 0; i < m_ColorTransferFunction->GetNumberOfAnnotatedValues(); ++i)
    {
      labels[m_ColorTransferFunction->GetAnnotatedValue(i).ToDouble()] =
        QString::fromStdString(m_ColorTransferFunction->GetAnnotation(i));
    }
    const auto points = nodes();
    m_ColorTransferFunction->RemoveAllPoints();
    m_ColorTransferFunction->ResetAnnotations();
    m_ColorTransferFunction->SetIndexedLookup(1);
    std::vector<IndexedEntry> entries;
    for (size_t k = 0; k < points.size(); ++k)
    {
      IndexedEntry entry;
      entry.value = points[k][0];
      const auto label = labels.find(entry.value);
      entry.label = label != labels.end() ? label->second : NumberText(entry.value);
      WrappedPresetColor(colors, k, entry.rgb);
      entries.push_back(entry);
      m_IndexedPresetArray.append(presetRow(entry.value, entry.rgb[0], entry.rgb[1], entry.rgb[2]));
    }
    AddIndexedEntries(m_ColorTransferFunction, entries);
  }

  std::copy(nan, nan + 3, std::begin(m_NanColor));
  refresh();
}

void VXLookupTable::parseIndexedJson(const ColorPreset& preset,
                                     const std::set<double>& uniqueValues)
{
  if (uniqueValues.empty())
  {
    parseIndexedJson(preset);
    return;
  }
  const std::vector<float>& colors = preset.indexedColors;
  const size_t colorCount = colors.size() / 3;
  const bool hasAnnotations = HasAnnotations(preset);
  if (hasAnnotations && colorCount != preset.annotations.size() / 2)
  {
    return;
  }

  double nan[3];
  NanColorOf(preset, m_NanColor, nan);

  struct Known
  {
    double rgb[3];
    QString label;
  };
  // read the preset before touching the function, so a malformed one leaves it as it was
  std::map<double, Known> known;
  if (hasAnnotations)
  {
    for (size_t k = 0; k < colorCount; ++k)
    {
      Known entry{ { colors[3 * k], colors[3 * k + 1], colors[3 * k + 2] },
                   AnnotationLabel(preset.annotations[2 * k + 1]) };
      known[AnnotationValue(preset.annotations[2 * k])] = entry;
    }
  }

  m_ColorTransferFunction->RemoveAllPoints();
  m_ColorTransferFunction->ResetAnnotations();
  m_ColorTransferFunction->SetIndexedLookup(1);

  enum class Missing
  {
    NotAsked,
    UseNan,
    Generate
  };
  Missing missing = Missing::NotAsked;
  bool generated = false;
  size_t k = 0;
  for (const double value : uniqueValues)
  {
    double rgb[3];
    QString label = NumberText(value);
    if (!hasAnnotations)
    {
      WrappedPresetColor(colors, k, rgb);
    }
    else if (const auto found = known.find(value); found != known.end())
    {
      std::copy(std::begin(found->second.rgb), std::end(found->second.rgb), rgb);
      label = found->second.label;
    }
    else
    {
      if (missing == Missing::NotAsked)
      {
        VXUserPrompt::Choice question;
        question.icon = QMessageBox::Question;
        question.title = k_MissingValuesTitle;
        question.text = k_MissingValuesText;
        question.buttons = { k_UseNanColorButton, k_GenerateNewColorsButton, k_CancelButton };
        question.cancelButton = 2;
        const VXUserPrompt::ChoiceAnswer answer =
          VXUserPrompt::choose(QApplication::activeWindow(), question);
        if (answer.button == 0)
        {
          missing = Missing::UseNan;
        }
        else if (answer.button == 1)
        {
          missing = Missing::Generate;
        }
        else
        {
          // cancelled or closed: leave an empty map for the user to choose another preset
          m_ColorTransferFunction->RemoveAllPoints();
          m_ColorTransferFunction->ResetAnnotations();
          return;
        }
      }
      if (missing == Missing::UseNan)
      {
        std::copy(nan, nan + 3, rgb);
      }
      else
      {
        const vtkColor3d color = Rgb(KXVtk::utils::GenerateRandomColor());
        std::copy(color.GetData(), color.GetData() + 3, rgb);
        generated = true;
      }
    }
    m_ColorTransferFunction->SetAnnotation(vtkVariant(value), label.toStdString());
    m_ColorTransferFunction->AddRGBPoint(value, rgb[0], rgb[1], rgb[2]);
    m_IndexedPresetArray.append(presetRow(value, rgb[0], rgb[1], rgb[2]));
    ++k;
  }

  std::copy(nan, nan + 3, std::begin(m_NanColor));
  refresh();
  // the map now describes the data, not a preset
  m_IndexedPresetArray.clear();
  if (generated)
  {
    Q_EMIT syncIndexedColorMap(m_ColorTransferFunction);
  }
}

void VXLookupTable::createDefaultRgbColorTransferFunction()
{
  m_ColorPresetArray = { k_DefaultPresetName };
  const ColorPreset preset = KXPreferences::getDefaultColorPreset();
  if (preset.rgbPoints.size() < 4)
  {
    // preferences without a usable map: fall back to the built-in one
    setRgbPoints(m_DefaultRgbPosVec);
  }
  else
  {
    parseRgbJson(preset);
  }
  refresh();
}

void VXLookupTable::read(const nlohmann::json& json)
{
  if (!json.is_object())
  {
    return;
  }
  m_ColorTransferFunction->RemoveAllPoints();

  // keys of the wrong type are skipped like missing ones: a damaged state file
  // restores what it can
  if (const auto it = json.find("indexed_lookup");
      it != json.end() && (it->is_number() || it->is_boolean()))
  {
    m_ColorTransferFunction->SetIndexedLookup(it->is_boolean() ? it->get<bool>()
                                                               : KXVtkModule::utils::StateInt(*it));
  }
  if (const auto it = json.find("rgb_pos_vector"); it != json.end() && it->is_array())
  {
    for (const auto& point : *it)
    {
      if (point.is_array() && point.size() == 4 &&
          std::all_of(point.begin(), point.end(),
                      [](const nlohmann::json& v) { return v.is_number(); }))
      {
        m_ColorTransferFunction->AddRGBPoint(point[0].get<double>(), point[1].get<double>(),
                                             point[2].get<double>(), point[3].get<double>());
      }
    }
  }
  if (const auto it = json.find("color_space"); it != json.end() && it->is_number_integer())
  {
    m_ColorTransferFunction->SetColorSpace(KXVtkModule::utils::StateInt(*it));
  }
  if (const auto it = json.find("lut_is_inverted"); it != json.end() && it->is_boolean())
  {
    m_IsInverted = it->get<bool>();
  }
  const char* nanKeys[3] = { "lut_nan_color_r", "lut_nan_color_g", "lut_nan_color_b" };
  if (std::all_of(std::begin(nanKeys), std::end(nanKeys),
                  [&json](const char* key) { return json.contains(key) && json[key].is_number(); }))
  {
    for (int j = 0; j < 3; ++j)
    {
      m_NanColor[j] = json[nanKeys[j]].get<double>();
    }
  }
  if (const auto it = json.find("lut_color_preset"); it != json.end() && it->is_array())
  {
    m_ColorPresetArray.clear();
    for (const auto& row : *it)
    {
      if (row.is_string())
      {
        m_ColorPresetArray.append(QString::fromStdString(row.get<std::string>()));
      }
    }
  }

  // the state keeps no labels: an indexed map read without annotations would
  // colour every value with the NaN colour, so annotate each node by its value
  if (m_ColorTransferFunction->GetIndexedLookup() != 0 &&
      m_ColorTransferFunction->GetNumberOfAnnotatedValues() == 0)
  {
    for (const auto& node : nodes())
    {
      m_ColorTransferFunction->SetAnnotation(vtkVariant(node[0]),
                                             NumberText(node[0]).toStdString());
    }
  }
  refresh();
}

void VXLookupTable::write(nlohmann::json& json) const
{
  json["indexed_lookup"] = m_ColorTransferFunction->GetIndexedLookup();
  nlohmann::json points = nlohmann::json::array();
  for (const auto& node : nodes())
  {
    points.push_back({ node[0], node[1], node[2], node[3] });
  }
  json["rgb_pos_vector"] = points;
  json["color_space"] = m_ColorTransferFunction->GetColorSpace();
  json["lut_is_inverted"] = m_IsInverted;
  json["lut_nan_color_r"] = m_NanColor[0];
  json["lut_nan_color_g"] = m_NanColor[1];
  json["lut_nan_color_b"] = m_NanColor[2];
  nlohmann::json rows = nlohmann::json::array();
  for (const QString& row : m_ColorPresetArray)
  {
    rows.push_back(row.toStdString());
  }
  json["lut_color_preset"] = rows;
}

VXLookupTable::IndexedValueWarning VXLookupTable::checkIndexedValueCount(int uniqueValueCount,
                                                                         int presetColorCount,
                                                                         const QString& arrayName)
{
  VXUserPrompt::Choice question;
  question.icon = QMessageBox::Warning;
  question.buttons = { QStringLiteral("OK") };
  question.cancelButton = 0;
  question.checkBoxText = k_DoNotShowAgain;

  if ((uniqueValueCount < 1 || uniqueValueCount > k_MaxNumberIndexedColors) &&
      KXPreferences::getAllowTooManyIndexedValues())
  {
    question.title = k_TooManyValuesTitle;
    question.text = k_TooManyValuesText.arg(QString::number(k_MaxNumberIndexedColors), arrayName);
    if (VXUserPrompt::choose(QApplication::activeWindow(), question).checkBoxChecked)
    {
      KXPreferences::setAllowTooManyIndexedValues(false);
      KXPreferences::writeSettings();
    }
    return IndexedValueWarning::TooManyValues;
  }
  if (uniqueValueCount > presetColorCount && KXPreferences::getAllowMoreValuesThanIndexedColors())
  {
    question.title = k_MoreValuesThanColorsTitle;
    question.text = k_MoreValuesThanColorsText.arg(QString::number(uniqueValueCount),
                                                   QString::number(presetColorCount),
                                                   QString::number(uniqueValueCount));
    if (VXUserPrompt::choose(QApplication::activeWindow(), question).checkBoxChecked)
    {
      KXPreferences::setAllowMoreValuesThanIndexedColors(false);
      KXPreferences::writeSettings();
    }
    return IndexedValueWarning::MoreValuesThanColors;
  }
  return IndexedValueWarning::None;
}

std::set<double> VXLookupTable::computeUniqueValues(vtkDataArray* array, int component)
{
  std::set<double> values;
  if (array == nullptr)
  {
    return values;
  }
  const int components = array->GetNumberOfComponents();
  if (component >= components || component < -1)
  {
    return values;
  }
  const vtkIdType tuples = array->GetNumberOfTuples();
  for (vtkIdType t = 0; t < tuples; ++t)
  {
    double value = 0.0;
    if (component >= 0)
    {
      value = array->GetComponent(t, component);
    }
    else if (components == 1)
    {
      value = array->GetComponent(t, 0);
    }
    else
    {
      double sum = 0.0;
      for (int c = 0; c < components; ++c)
      {
        const double v = array->GetComponent(t, c);
        sum += v * v;
      }
      value = std::sqrt(sum);
    }
    // NaN has no place in an ordered set; it takes the NaN colour anyway
    if (!std::isnan(value))
    {
      values.insert(value);
    }
  }
  return values;
}

QString VXLookupTable::presetRow(double x, double r, double g, double b)
{
  return QStringLiteral("%1/%2/%3/%4")
    .arg(NumberText(x), NumberText(r), NumberText(g), NumberText(b));
}

void VXLookupTable::applyNanColorToFunction()
{
  m_ColorTransferFunction->SetNanColor(m_NanColor);
  m_ColorTransferFunction->SetBelowRangeColor(m_NanColor);
  m_ColorTransferFunction->SetAboveRangeColor(m_NanColor);
}

void VXLookupTable::refresh()
{
  applyNanColorToFunction();
  m_ColorTransferFunction->Build();
}

std::vector<VXLookupTable::IndexedColor> VXLookupTable::indexedColors() const
{
  std::vector<IndexedColor> entries;
  if (m_ColorTransferFunction->GetIndexedLookup() == 0)
    return entries;
  const auto points = nodes();
  const vtkIdType count = m_ColorTransferFunction->GetNumberOfAnnotatedValues();
  for (vtkIdType i = 0; i < count; ++i)
  {
    IndexedColor entry;
    entry.value = m_ColorTransferFunction->GetAnnotatedValue(i).ToDouble();
    entry.label = QString::fromStdString(m_ColorTransferFunction->GetAnnotation(i));
    // VTK colours annotated value i with node i; a value without a node takes the NaN colour
    const auto& rgb = static_cast<size_t>(i) < points.size()
                        ? std::array<double, 3>{ points[i][1], points[i][2], points[i][3] }
                        : std::array<double, 3>{ m_NanColor[0], m_NanColor[1], m_NanColor[2] };
    entry.color = QColor::fromRgbF(static_cast<float>(rgb[0]), static_cast<float>(rgb[1]),
                                   static_cast<float>(rgb[2]));
    entries.push_back(entry);
  }
  std::stable_sort(entries.begin(), entries.end(),
                   [](const IndexedColor& a, const IndexedColor& b) { return a.value < b.value; });
  return entries;
}

void VXLookupTable::setIndexedColors(std::vector<IndexedColor> entries)
{
  std::map<double, IndexedEntry> byValue;
  for (const IndexedColor& entry : entries)
  {
    IndexedEntry indexed;
    indexed.value = entry.value;
    indexed.label = entry.label;
    indexed.rgb[0] = entry.color.redF();
    indexed.rgb[1] = entry.color.greenF();
    indexed.rgb[2] = entry.color.blueF();
    byValue[entry.value] = indexed;
  }
  std::vector<IndexedEntry> sorted;
  for (const auto& [value, entry] : byValue)
    sorted.push_back(entry);
  m_ColorTransferFunction->RemoveAllPoints();
  m_ColorTransferFunction->ResetAnnotations();
  m_ColorTransferFunction->SetIndexedLookup(1);
  AddIndexedEntries(m_ColorTransferFunction, sorted);
  m_IndexedPresetArray.clear();
  for (const IndexedEntry& entry : sorted)
    m_IndexedPresetArray.append(presetRow(entry.value, entry.rgb[0], entry.rgb[1], entry.rgb[2]));
  refresh();
}

ColorPreset VXLookupTable::toColorPreset(const QString& name) const
{
  ColorPreset preset;
  preset.name = name.toStdString();
  preset.colorSpace = "RGB";
  preset.nanColor = { static_cast<float>(m_NanColor[0]), static_cast<float>(m_NanColor[1]),
                      static_cast<float>(m_NanColor[2]) };
  const auto points = nodes();
  const size_t n = points.size();
  // invert() reverses the colours over fixed positions: reversing them again gives the upright map
  const auto uprightColor = [&](size_t k) -> const std::array<double, 6>&
  { return m_IsInverted ? points[n - 1 - k] : points[k]; };
  if (m_ColorTransferFunction->GetIndexedLookup() == 0)
  {
    for (size_t k = 0; k < n; ++k)
    {
      const auto& color = uprightColor(k);
      for (double v : { points[k][0], color[1], color[2], color[3] })
        preset.rgbPoints.push_back(static_cast<float>(v));
    }
    return preset;
  }
  preset.annotations = nlohmann::json::array();
  const vtkIdType count = m_ColorTransferFunction->GetNumberOfAnnotatedValues();
  for (vtkIdType i = 0; i < count && static_cast<size_t>(i) < n; ++i)
  {
    const auto& color = uprightColor(static_cast<size_t>(i));
    for (int j = 1; j <= 3; ++j)
      preset.indexedColors.push_back(static_cast<float>(color[j]));
    preset.annotations.push_back(m_ColorTransferFunction->GetAnnotatedValue(i).ToDouble());
    preset.annotations.push_back(m_ColorTransferFunction->GetAnnotation(i));
  }
  return preset;
}

std::vector<std::array<double, 6>> VXLookupTable::nodes() const
{
  std::vector<std::array<double, 6>> points;
  const int size = m_ColorTransferFunction->GetSize();
  points.reserve(static_cast<size_t>(size));
  for (int i = 0; i < size; ++i)
  {
    std::array<double, 6> node{};
    m_ColorTransferFunction->GetNodeValue(i, node.data());
    points.push_back(node);
  }
  return points;
}
