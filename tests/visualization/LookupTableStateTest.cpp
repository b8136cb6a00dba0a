// Colour maps in state files: the keys written and what reading them restores.
#include "LookupTableTestUtils.hpp"

#include <nlohmann/json.hpp>

using namespace lut;

TEST_F(LookupTableTest, WriteEmitsEveryKeyWithItsValue)
{
  VXLookupTable table;
  table.parseRgbArray({ "0/1/0/0", "1/0/0/1" });
  table.setRange(2.0, 4.0);
  table.invert();
  table.setNANColor(QColor(0, 255, 0));

  nlohmann::json json;
  table.write(json);
  EXPECT_EQ(json.size(), 8u);
  EXPECT_EQ(json.at("indexed_lookup"), 0);
  EXPECT_EQ(json.at("rgb_pos_vector"), nlohmann::json::parse("[[2, 0, 0, 1], [4, 1, 0, 0]]"));
  EXPECT_EQ(json.at("color_space"), VTK_CTF_RGB);
  EXPECT_EQ(json.at("lut_is_inverted"), true);
  EXPECT_EQ(json.at("lut_nan_color_r"), 0.0);
  EXPECT_EQ(json.at("lut_nan_color_g"), 1.0);
  EXPECT_EQ(json.at("lut_nan_color_b"), 0.0);
  EXPECT_EQ(json.at("lut_color_preset"), nlohmann::json::parse(R"(["0/1/0/0", "1/0/0/1"])"));
}

TEST_F(LookupTableTest, ReadRestoresWhatWriteWroteContinuousOrIndexed)
{
  VXLookupTable source;
  source.parseRgbArray({ "0/1/0/0", "0.2/0/1/0", "1/0/0/1" });
  source.setRange(-3.0, 7.0);
  source.getColorTransferFunction()->SetColorSpaceToDiverging();
  source.invert();
  source.setNANColor(QColor(255, 255, 0));
  nlohmann::json json;
  source.write(json);

  VXLookupTable target;
  target.read(json);
  vtkColorTransferFunction* ctf = target.getColorTransferFunction();
  EXPECT_TRUE(target.equals(&source));
  EXPECT_EQ(Nodes(ctf), Nodes(source.getColorTransferFunction()));
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_DIVERGING);
  EXPECT_TRUE(target.isInverted());
  EXPECT_EQ(target.getNANColor(), QColor(255, 255, 0));
  EXPECT_RGB_NEAR(ctf->GetBelowRangeColor(), (Rgb3{ 1, 1, 0 }));
  EXPECT_EQ(target.getColorPresetArray(), (QList<QString>{ "0/1/0/0", "0.2/0/1/0", "1/0/0/1" }));

  // an indexed map colours its values again
  VXLookupTable indexed;
  indexed.parseIndexedArray({ "1/1/0/0", "4/0/1/0", "9/0/0/1" });
  nlohmann::json indexedJson;
  indexed.write(indexedJson);
  EXPECT_EQ(indexedJson.at("indexed_lookup"), 1);
  VXLookupTable indexedTarget;
  indexedTarget.read(indexedJson);
  EXPECT_EQ(indexedTarget.getColorTransferFunction()->GetIndexedLookup(), 1);
  ExpectColors(indexedTarget.getColorTransferFunction(),
               { { 4.0, { 0, 1, 0 } }, { 9.0, { 0, 0, 1 } }, { 5.0, { 0.5, 0.75, 0.0 } } });
}

TEST_F(LookupTableTest, ReadLeavesPropertiesOfMissingKeysAndSkipsValuesOfTheWrongType)
{
  VXLookupTable table;
  table.invert();
  table.getColorTransferFunction()->SetColorSpaceToHSV();
  const auto rows = table.getColorPresetArray();

  // two of three NaN channels are not a colour
  table.read(nlohmann::json::parse(R"({"lut_nan_color_r": 0.0, "lut_nan_color_g": 0.0})"));
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  EXPECT_EQ(ctf->GetSize(), 0); // nodes are always replaced
  EXPECT_TRUE(table.isInverted());
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_HSV);
  EXPECT_EQ(ctf->GetIndexedLookup(), 0);
  EXPECT_EQ(table.getNANColor(), QColor::fromRgbF(0.5f, 0.75f, 0.0f));
  EXPECT_EQ(table.getColorPresetArray(), rows);

  table.read(
    nlohmann::json::parse(R"({"lut_nan_color_r": 0, "lut_nan_color_g": 0, "lut_nan_color_b": 1,
                                       "rgb_pos_vector": [[0, 1, 1, 1], [3, 0, 0, 0]]})"));
  EXPECT_EQ(table.getNANColor(), QColor(0, 0, 255));
  EXPECT_RGB_NEAR(ctf->GetAboveRangeColor(), (Rgb3{ 0, 0, 1 }));
  EXPECT_EQ(Nodes(ctf), (std::vector<Node>{ { 0, 1, 1, 1 }, { 3, 0, 0, 0 } }));

  // values of the wrong type are skipped
  VXLookupTable typed;
  typed.read(nlohmann::json::parse(R"({
    "indexed_lookup": "yes", "color_space": "Lab", "lut_is_inverted": 1,
    "rgb_pos_vector": [[0, 1, 0, 0], [1, 0, 1], "x", [2, 0, 0, 1]],
    "lut_color_preset": "0/1/0/0"})"));
  ctf = typed.getColorTransferFunction();
  EXPECT_EQ(Nodes(ctf), (std::vector<Node>{ { 0, 1, 0, 0 }, { 2, 0, 0, 1 } }));
  EXPECT_EQ(ctf->GetIndexedLookup(), 0);
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_RGB);
  EXPECT_FALSE(typed.isInverted());
  EXPECT_EQ(typed.getColorPresetArray().size(), 3);
}
