// Colour maps from presets: continuous rows and JSON, indexed rows and JSON,
// the default categorical palette and the questions about unknown values.
#include "LookupTableTestUtils.hpp"

#include "utils/ColorUtils.hpp"

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>

#include <nlohmann/json.hpp>

#include <QtTest/QSignalSpy>

#include <set>

using namespace lut;

namespace
{
Preset IndexedPreset(std::vector<float> colors, nlohmann::json annotations,
                     std::vector<float> nan = {})
{
  Preset preset;
  preset.name = "Test Indexed";
  preset.indexedColors = std::move(colors);
  preset.annotations = std::move(annotations);
  preset.nanColor = std::move(nan);
  return preset;
}

const QColor k_NanColor = QColor::fromRgbF(0.5f, 0.75f, 0.0f);
} // namespace

TEST_F(LookupTableTest, RgbRowsAreStretchedOntoTheCurrentRange)
{
  VXLookupTable table;
  table.setRange(100.0, 200.0);
  table.getColorTransferFunction()->SetIndexedLookup(0);
  table.parseRgbArray({ "0/1/0/0", "0.25/0/1/0", "1/0/0/1" });
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(Nodes(ctf),
            (std::vector<Node>{ { 100, 1, 0, 0 }, { 125, 0, 1, 0 }, { 200, 0, 0, 1 } }));
  EXPECT_EQ(table.getColorPresetArray(), (QList<QString>{ "0/1/0/0", "0.25/0/1/0", "1/0/0/1" }));
  ExpectColors(ctf, { { 125.0, { 0, 1, 0 } } });

  // from an indexed map: indexed mode and annotations go, the indexed map's range stays
  VXLookupTable indexed;
  indexed.parseIndexedArray({ "1/1/0/0", "5/0/1/0" });
  indexed.parseRgbArray({ "0/1/1/1", "1/0/0/0" });
  EXPECT_EQ(indexed.getColorTransferFunction()->GetIndexedLookup(), 0);
  EXPECT_EQ(indexed.getColorTransferFunction()->GetNumberOfAnnotatedValues(), 0);
  EXPECT_EQ(indexed.getRange(), (std::array<double, 2>{ 1.0, 5.0 }));
}

TEST_F(LookupTableTest, MalformedFirstRgbRowIsIgnoredAndDefaultRowsReloadThePreferencesMap)
{
  for (const QList<QString>& rows :
       QList<QList<QString>>{ { "0/1/0" }, { "0/1/0/0/1", "1/0/0/0" }, { "a-b-c-d" } })
  {
    VXLookupTable table;
    table.setRange(0.0, 4.0);
    const auto before = Nodes(table.getColorTransferFunction());
    const auto rowsBefore = table.getColorPresetArray();
    table.parseRgbArray(rows);
    EXPECT_EQ(Nodes(table.getColorTransferFunction()), before) << rows.first().toStdString();
    EXPECT_EQ(table.getColorPresetArray(), rowsBefore);
  }
  for (const QList<QString>& rows : { QList<QString>{}, QList<QString>{ "Default" } })
  {
    VXLookupTable table;
    table.parseRgbArray({ "0/0/1/0", "1/0/1/0" });
    table.setRange(10.0, 30.0);
    table.parseRgbArray(rows);
    EXPECT_EQ(Nodes(table.getColorTransferFunction()),
              (std::vector<Node>{ { 10, 0, 0, 1 }, { 20, 1, 1, 1 }, { 30, 1, 0, 0 } }))
      << rows.size();
  }
}

TEST_F(LookupTableTest, RgbJsonIsStretchedOntoTheCurrentRangeInRgbSpace)
{
  VXLookupTable table;
  table.setRange(-50.0, 50.0);
  table.getColorTransferFunction()->SetColorSpaceToLab();
  Preset preset;
  preset.rgbPoints = { 0.0f, 0.0f, 0.0f, 0.0f, 0.75f, 0.5f, 0.5f, 0.5f, 2.0f, 1.0f, 1.0f, 1.0f };
  table.parseRgbJson(preset);
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(Nodes(ctf),
            (std::vector<Node>{ { -50, 0, 0, 0 }, { -12.5, 0.5, 0.5, 0.5 }, { 50, 1, 1, 1 } }));
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_RGB);
  EXPECT_EQ(table.getColorPresetArray(),
            (QList<QString>{ "0/0/0/0", "0.75/0.5/0.5/0.5", "2/1/1/1" }));
}

TEST_F(LookupTableTest, IndexedRowsAnnotateEachValueWithItsColour)
{
  VXLookupTable table;
  // rows need not be sorted: each value must still get its own colour
  const QList<QString> rows = { "7/0/0/1", "1/1/0/0", "3.5/0/1/0" };
  table.parseIndexedArray(rows);
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(ctf->GetIndexedLookup(), 1);
  EXPECT_EQ(table.getIndexedPresetArray(), rows);
  EXPECT_EQ(Annotations(ctf), (Labels{ { 1, "1" }, { 3.5, "3.5" }, { 7, "7" } }));
  // a value that is no category takes the NaN colour
  ExpectColors(ctf, { { 1.0, { 1, 0, 0 } },
                      { 3.5, { 0, 1, 0 } },
                      { 7.0, { 0, 0, 1 } },
                      { 2.0, { 0.5, 0.75, 0.0 } } });

  // "Default" first: the palette over the rows' values
  VXLookupTable palette;
  palette.parseIndexedArray({ "Default", "4/0/0/0", "2/0/0/0", "9/0/0/0" });
  EXPECT_EQ(palette.getIndexedPresetArray(), (QList<QString>{ "Default" }));
  ExpectColors(palette.getColorTransferFunction(),
               { { 2.0, Rgb(223, 32, 32) }, { 4.0, Rgb(41, 223, 32) }, { 9.0, Rgb(32, 70, 223) } });
}

TEST_F(LookupTableTest, DefaultPaletteStepsByThirtyTwoOverTheValueCount)
{
  struct Case
  {
    int count;
    std::vector<int> paletteIndices;
  };
  std::vector<int> every(32);
  for (int i = 0; i < 32; ++i)
    every[i] = i;
  // past 32 values all take the first colour
  const Case cases[] = {
    { 1, { 0 } },         { 2, { 0, 16 } },
    { 3, { 0, 10, 20 } }, { 5, { 0, 6, 12, 18, 24 } },
    { 32, every },        { 33, std::vector<int>(33, 0) },
  };
  for (const Case& c : cases)
  {
    std::set<double> values;
    for (int i = 0; i < c.count; ++i)
      values.insert(10.0 * i - 3.0);
    VXLookupTable table;
    table.generateDefaultIndexedColors(values);
    vtkColorTransferFunction* ctf = table.getColorTransferFunction();
    ASSERT_EQ(ctf->GetSize(), c.count);
    ASSERT_EQ(ctf->GetNumberOfAnnotatedValues(), c.count);
    int k = 0;
    for (const double value : values)
    {
      const QColor expected = VXLookupTable::m_DefaultIndexedColors[c.paletteIndices[k]];
      SCOPED_TRACE(std::to_string(c.count) + " values");
      ExpectColors(ctf, { { value, Rgb(expected.red(), expected.green(), expected.blue()) } });
      EXPECT_EQ(ctf->GetAnnotation(k), QString::number(value, 'g', 6).toStdString());
      ++k;
    }
  }
}

TEST_F(LookupTableTest, UniqueValueWarningsFollowCountsAndPreferences)
{
  EXPECT_EQ(VXLookupTable::checkIndexedValueCount(33, 32, "Phases"),
            VXLookupTable::IndexedValueWarning::TooManyValues);
  ASSERT_EQ(m_Questions.size(), 1u);
  EXPECT_EQ(m_Questions[0].title, "Too many discrete values to determine color map annotations");
  EXPECT_EQ(m_Questions[0].text,
            "More than 32 unique values were found in the active array (Phases). "
            "Categorical coloring may not be the best color map to use for this data set");
  EXPECT_EQ(m_Questions[0].checkBoxText, "Do Not Show Again");

  struct Case
  {
    int values;
    int colors;
    bool allowTooMany;
    bool allowMore;
    VXLookupTable::IndexedValueWarning expected;
  };
  using W = VXLookupTable::IndexedValueWarning;
  const Case cases[] = {
    { 0, 10, true, true, W::TooManyValues },
    { 33, 40, true, true, W::TooManyValues },
    { 33, 10, false, true, W::MoreValuesThanColors },
    { 33, 10, false, false, W::None },
    { 12, 10, true, true, W::MoreValuesThanColors },
    { 12, 10, true, false, W::None },
    { 10, 10, true, true, W::None },
    { 32, 40, true, true, W::None },
  };
  for (const Case& c : cases)
  {
    m_Questions.clear();
    KXPreferences::setAllowTooManyIndexedValues(c.allowTooMany);
    KXPreferences::setAllowMoreValuesThanIndexedColors(c.allowMore);
    EXPECT_EQ(VXLookupTable::checkIndexedValueCount(c.values, c.colors, "Phases"), c.expected)
      << c.values << " values, " << c.colors << " colours";
    EXPECT_EQ(m_Questions.size(), c.expected == W::None ? 0u : 1u);
  }
}

TEST_F(LookupTableTest, MoreValuesThanColoursWarningTextAndDoNotShowAgain)
{
  m_Answer.button = 0;
  m_Answer.checkBoxChecked = true;
  VXLookupTable::checkIndexedValueCount(12, 10, "Phases");
  ASSERT_EQ(m_Questions.size(), 1u);
  EXPECT_EQ(m_Questions[0].icon, QMessageBox::Warning);
  EXPECT_EQ(m_Questions[0].title, "One or more colors mapping to multiple array values");
  EXPECT_EQ(
    m_Questions[0].text,
    "The number of unique array values (12) is greater than the number of colors in the selected "
    "preset (10). This means that some colors may be mapped to more than one array value. It is "
    "strongly recommended that you select a preset 12 or more colors.");
  EXPECT_FALSE(KXPreferences::getAllowMoreValuesThanIndexedColors());
  EXPECT_TRUE(KXPreferences::getAllowTooManyIndexedValues());

  // the choice persists, and the warning stays away
  QtKXSettings settings;
  EXPECT_FALSE(settings.childGroups().isEmpty());
  EXPECT_EQ(VXLookupTable::checkIndexedValueCount(12, 10, "Phases"),
            VXLookupTable::IndexedValueWarning::None);

  m_Questions.clear();
  VXLookupTable::checkIndexedValueCount(40, 50, "Grains");
  EXPECT_FALSE(KXPreferences::getAllowTooManyIndexedValues());
}

TEST_F(LookupTableTest, IndexedJsonWithAnnotationsGivesValuesLabelsAndColours)
{
  VXLookupTable table;
  table.parseIndexedJson(IndexedPreset(
    { 1, 0, 0, 0, 1, 0, 0, 0, 1 },
    nlohmann::json::array({ 5, "Ferrite", "2", "Austenite", 9.5, 42 }), { 0.2f, 0.2f, 0.2f }));
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(ctf->GetIndexedLookup(), 1);
  EXPECT_EQ(Annotations(ctf), (Labels{ { 2, "Austenite" }, { 5, "Ferrite" }, { 9.5, "42" } }));
  ExpectColors(ctf, { { 5.0, { 1, 0, 0 } }, { 2.0, { 0, 1, 0 } }, { 9.5, { 0, 0, 1 } } });
  EXPECT_NEAR(table.getNANColor().redF(), 0.2, 1e-6);
  EXPECT_RGB_NEAR(ctf->GetNanColor(), (Rgb3{ 0.2, 0.2, 0.2 }));
  EXPECT_EQ(table.getIndexedPresetArray(), (QList<QString>{ "2/0/1/0", "5/1/0/0", "9.5/0/0/1" }));
}

TEST_F(LookupTableTest, IndexedJsonThatDoesNotFitChangesNothing)
{
  VXLookupTable table;
  table.parseIndexedArray({ "1/1/0/0", "2/0/1/0" });
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  const auto nodes = Nodes(ctf);
  const auto annotations = Annotations(ctf);
  // a wrong annotation count, with and without unique values
  const Preset wrongCount =
    IndexedPreset({ 1, 1, 1, 0, 0, 0 }, nlohmann::json::array({ 1, "one" }), { 1, 0, 0 });
  table.parseIndexedJson(wrongCount);
  EXPECT_EQ(Nodes(ctf), nodes);
  EXPECT_EQ(Annotations(ctf), annotations);
  EXPECT_EQ(table.getNANColor(), k_NanColor);
  table.parseIndexedJson(wrongCount, std::set<double>{ 1.0, 2.0, 3.0 });
  EXPECT_EQ(Nodes(ctf), nodes);
  EXPECT_EQ(Annotations(ctf), annotations);
  EXPECT_TRUE(m_Questions.empty());

  // without annotations a map is needed to recolour
  VXLookupTable empty;
  empty.getColorTransferFunction()->RemoveAllPoints();
  empty.parseIndexedJson(IndexedPreset({ 1, 0, 0 }, nlohmann::json::array(), { 0, 0, 0 }));
  EXPECT_EQ(empty.getColorTransferFunction()->GetSize(), 0);
  EXPECT_EQ(empty.getColorTransferFunction()->GetIndexedLookup(), 0);
  EXPECT_EQ(empty.getNANColor(), k_NanColor);

  // annotations of an unexpected type raise the JSON error and leave the map
  VXLookupTable typed;
  try
  {
    typed.parseIndexedJson(IndexedPreset({ 1, 0, 0 }, nlohmann::json{ { "a", 1 }, { "b", 2 } }));
    FAIL() << "no exception";
  }
  catch (const nlohmann::json::type_error& error)
  {
    EXPECT_NE(std::string(error.what()).find("cannot use operator[] with a numeric argument with "),
              std::string::npos)
      << error.what();
  }
  EXPECT_EQ(typed.getColorTransferFunction()->GetSize(), 3);
  EXPECT_EQ(typed.getColorTransferFunction()->GetIndexedLookup(), 0);
}

TEST_F(LookupTableTest, IndexedJsonWithoutAnnotationsRecoloursKnownValuesWrappingTheColours)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  table.parseIndexedJson(
    IndexedPreset({ 0, 0, 0, 0, 0, 0, 0, 0, 0 },
                  nlohmann::json::array({ 1, "Grain A", 2, "Grain B", 3, "Pore" })));
  ASSERT_EQ(ctf->GetSize(), 3);
  table.parseIndexedJson(IndexedPreset({ 1, 0, 0, 0, 1, 0, 0, 0 }, nullptr));
  // eight floats: node 2 takes floats 6, 7 and 8 % 8 = 0
  EXPECT_EQ(Annotations(ctf), (Labels{ { 1, "Grain A" }, { 2, "Grain B" }, { 3, "Pore" } }));
  ExpectColors(ctf, { { 1.0, { 1, 0, 0 } }, { 2.0, { 0, 1, 0 } }, { 3.0, { 0, 0, 1 } } });
}

TEST_F(LookupTableTest, UniqueValuesTakeThePresetColoursOrItsAnnotations)
{
  VXLookupTable table;
  QSignalSpy sync(&table, &VXLookupTable::syncIndexedColorMap);
  table.parseIndexedJson(IndexedPreset({ 1, 0, 0, 0, 1, 0 }, nullptr),
                         std::set<double>{ -1.0, 0.125, 8.0 });
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(ctf->GetIndexedLookup(), 1);
  EXPECT_EQ(Annotations(ctf), (Labels{ { -1, "-1" }, { 0.125, "0.125" }, { 8, "8" } }));
  ExpectColors(ctf, { { -1.0, { 1, 0, 0 } }, { 0.125, { 0, 1, 0 } }, { 8.0, { 1, 0, 0 } } });
  EXPECT_TRUE(table.getIndexedPresetArray().isEmpty());
  EXPECT_EQ(sync.count(), 0);
  EXPECT_TRUE(m_Questions.empty());

  // a preset without colours paints black
  table.parseIndexedJson(IndexedPreset({}, nullptr), std::set<double>{ 4.0 });
  ExpectColors(ctf, { { 4.0, { 0, 0, 0 } } });

  // values known to the annotations ask nothing, and only the data's values become categories
  table.parseIndexedJson(
    IndexedPreset({ 1, 0, 0, 0, 1, 0 }, nlohmann::json::array({ "1", "Matrix", 2, "Precipitate" })),
    std::set<double>{ 2.0 });
  EXPECT_TRUE(m_Questions.empty());
  EXPECT_EQ(Annotations(ctf), (Labels{ { 2, "Precipitate" } }));
  ExpectColors(ctf, { { 2.0, { 0, 1, 0 } }, { 1.0, { 0.5, 0.75, 0.0 } } });

  // no unique values: the preset alone
  VXLookupTable alone;
  alone.parseIndexedJson(IndexedPreset({ 0, 0, 1 }, nlohmann::json::array({ 4, "Void" })),
                         std::set<double>{});
  EXPECT_EQ(Annotations(alone.getColorTransferFunction()), (Labels{ { 4, "Void" } }));
  EXPECT_EQ(alone.getIndexedPresetArray(), (QList<QString>{ "4/0/0/1" }));
}

TEST_F(LookupTableTest, MissingValuesAskOnceAndTakeTheNanColourOrGeneratedColours)
{
  VXLookupTable table;
  QSignalSpy sync(&table, &VXLookupTable::syncIndexedColorMap);
  m_Answer.button = 0;
  table.parseIndexedJson(
    IndexedPreset({ 1, 0, 0 }, nlohmann::json::array({ 1, "Matrix" }), { 0, 0, 0.5f }),
    std::set<double>{ 1.0, 2.0, 3.0 });
  ASSERT_EQ(m_Questions.size(), 1u);
  EXPECT_EQ(m_Questions[0].title, "Missing annotated values in color map");
  EXPECT_EQ(m_Questions[0].text,
            "Some of the data in the active data array does not appear in the selected color map. "
            "Would you like to use the NaN color for the missing values, auto generate new colors "
            "for the missing values, or cancel and select a new color map?");
  EXPECT_EQ(m_Questions[0].buttons,
            (QStringList{ "Use NaN Color", "Generate New Colors", "Cancel" }));
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(Annotations(ctf), (Labels{ { 1, "Matrix" }, { 2, "2" }, { 3, "3" } }));
  ExpectColors(ctf, { { 1.0, { 1, 0, 0 } } });
  const auto nodes = Nodes(ctf);
  ASSERT_EQ(nodes.size(), 3u);
  EXPECT_NEAR(nodes[1][3], 0.5, 1e-6);
  EXPECT_NEAR(nodes[2][3], 0.5, 1e-6);
  EXPECT_EQ(sync.count(), 0);

  // "Generate New Colors": whole 8-bit channels, and the map is synced
  VXLookupTable generated;
  QSignalSpy generatedSync(&generated, &VXLookupTable::syncIndexedColorMap);
  m_Questions.clear();
  m_Answer.button = 1;
  generated.parseIndexedJson(IndexedPreset({ 1, 0, 0 }, nlohmann::json::array({ 1, "Matrix" })),
                             std::set<double>{ 0.0, 1.0, 2.0, 3.0 });
  EXPECT_EQ(m_Questions.size(), 1u);
  ctf = generated.getColorTransferFunction();
  EXPECT_EQ(ctf->GetSize(), 4);
  EXPECT_EQ(Annotations(ctf), (Labels{ { 0, "0" }, { 1, "Matrix" }, { 2, "2" }, { 3, "3" } }));
  ExpectColors(ctf, { { 1.0, { 1, 0, 0 } } });
  ASSERT_EQ(generatedSync.count(), 1);
  EXPECT_EQ(generatedSync.at(0).at(0).value<vtkSmartPointer<vtkColorTransferFunction>>().Get(),
            ctf);
  for (const Node& node : Nodes(ctf))
  {
    for (int j = 1; j < 4; ++j)
      EXPECT_NEAR(node[j] * 255.0, std::round(node[j] * 255.0), 1e-9);
  }

  // "Cancel" or closing leaves an empty indexed map
  for (const int button : { 2, -1 })
  {
    VXLookupTable cancelled;
    QSignalSpy cancelledSync(&cancelled, &VXLookupTable::syncIndexedColorMap);
    m_Answer.button = button;
    cancelled.parseIndexedJson(
      IndexedPreset({ 1, 0, 0 }, nlohmann::json::array({ 1, "Matrix" }), { 0, 0, 1 }),
      std::set<double>{ 1.0, 2.0 });
    ctf = cancelled.getColorTransferFunction();
    EXPECT_EQ(ctf->GetSize(), 0) << button;
    EXPECT_EQ(ctf->GetNumberOfAnnotatedValues(), 0);
    EXPECT_EQ(ctf->GetIndexedLookup(), 1);
    EXPECT_EQ(cancelled.getNANColor(), k_NanColor);
    EXPECT_EQ(cancelledSync.count(), 0);
  }
}

TEST(LookupTableUniqueValues, ComponentsAndMagnitude)
{
  vtkNew<vtkDoubleArray> vectors;
  vectors->SetNumberOfComponents(2);
  vectors->InsertNextTuple2(3.0, 4.0);
  vectors->InsertNextTuple2(0.0, 5.0);
  vectors->InsertNextTuple2(1.0, 0.0);
  EXPECT_EQ(VXLookupTable::computeUniqueValues(vectors, -1), (std::set<double>{ 1.0, 5.0 }));
  EXPECT_EQ(VXLookupTable::computeUniqueValues(vectors, 0), (std::set<double>{ 0.0, 1.0, 3.0 }));
  EXPECT_EQ(VXLookupTable::computeUniqueValues(vectors, 1), (std::set<double>{ 0.0, 4.0, 5.0 }));
  EXPECT_TRUE(VXLookupTable::computeUniqueValues(vectors, 2).empty());

  vtkNew<vtkIntArray> phases;
  for (const int v : { -2, 7, 7, 1, -2 })
    phases->InsertNextValue(v);
  // one component: the magnitude is the signed value itself
  EXPECT_EQ(VXLookupTable::computeUniqueValues(phases, -1), (std::set<double>{ -2.0, 1.0, 7.0 }));
}

TEST(ColorUtils, VtkColourFromQColorAndRandomColours)
{
  const vtkColor3d rgb = KXVtk::utils::GetVtkColor3dFromQColor(QColor(255, 51, 0, 10));
  EXPECT_DOUBLE_EQ(rgb.GetRed(), 1.0);
  EXPECT_DOUBLE_EQ(rgb.GetGreen(), 0.2);
  EXPECT_DOUBLE_EQ(rgb.GetBlue(), 0.0);

  std::set<QRgb> seen;
  for (int i = 0; i < 64; ++i)
  {
    const QColor color = KXVtk::utils::GenerateRandomColor();
    EXPECT_EQ(color.alpha(), 255);
    seen.insert(color.rgb());
  }
  // 64 draws of 24 bits: a repeat is all but impossible, a constant certainly wrong
  EXPECT_GT(seen.size(), 60u);
}
