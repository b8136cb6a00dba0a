#include "kxcore/ColorPreset.hpp"
#include "kxcore/Result.hpp"

#include <gtest/gtest.h>

using namespace kx::core;
using ColorTableUtilities::ColorPreset;
using ColorTableUtilities::IsValidIndexedPreset;
using nlohmann::json;

namespace
{
const json k_Indexed = json::parse(R"({
  "Name": "Grains",
  "ColorSpace": "RGB",
  "NanColor": [1, 0, 0.5],
  "IndexedColors": [0, 0, 0, 1, 0.5, 0.25],
  "Annotations": [0, "matrix", 1, "precipitate"]
})");

const json k_Continuous = json::parse(R"({
  "Name": "Cool to Warm",
  "ColorSpace": "Diverging",
  "NanColor": [1, 1, 0],
  "RGBPoints": [-1, 0.25, 0.5, 0.75, 1, 0.75, 0.5, 0.25]
})");
} // namespace

TEST(ColorPreset, ReadsEveryMember)
{
  const ColorPreset indexed(k_Indexed);
  EXPECT_EQ(indexed.name, "Grains");
  EXPECT_EQ(indexed.colorSpace, "RGB");
  EXPECT_EQ(indexed.nanColor, (std::vector<float>{ 1.0f, 0.0f, 0.5f }));
  EXPECT_TRUE(indexed.rgbPoints.empty());
  EXPECT_EQ(indexed.indexedColors, (std::vector<float>{ 0, 0, 0, 1, 0.5f, 0.25f }));
  EXPECT_EQ(indexed.annotations, json::parse(R"([0, "matrix", 1, "precipitate"])"));

  const ColorPreset continuous(k_Continuous);
  EXPECT_EQ(continuous.name, "Cool to Warm");
  EXPECT_EQ(continuous.colorSpace, "Diverging");
  EXPECT_EQ(continuous.rgbPoints,
            (std::vector<float>{ -1, 0.25f, 0.5f, 0.75f, 1, 0.75f, 0.5f, 0.25f }));
  EXPECT_TRUE(continuous.indexedColors.empty());
  EXPECT_TRUE(continuous.annotations.is_null());
}

TEST(ColorPreset, JsonRoundTrip)
{
  for (const json& source : { k_Indexed, k_Continuous })
  {
    const ColorPreset preset(source);
    EXPECT_EQ(preset.toJson(), source);
    EXPECT_EQ(ColorPreset(preset.toJson()), preset);
    EXPECT_EQ(json::parse(preset.toJsonString(2)), source);
    EXPECT_EQ(json::parse(preset.toJsonString(-1)), source);

    ColorPreset copy = preset;
    ColorPreset moved = std::move(copy);
    EXPECT_EQ(moved, preset);
  }
  const ColorPreset continuous(k_Continuous);
  EXPECT_EQ(continuous.toJsonString(-1).find('\n'), std::string::npos);
  EXPECT_NE(continuous.toJsonString(2).find("\n  \"Name\": \"Cool to Warm\""), std::string::npos);
  EXPECT_NE(continuous.toJsonString(4).find("\n    \"Name\""), std::string::npos);

  // an unnamed default preset still writes its name
  EXPECT_EQ(ColorPreset().toJson(), json::parse(R"({"Name": ""})"));
}

TEST(ColorPreset, MissingOrMistypedMembersStayEmpty)
{
  const ColorPreset mistyped(json::parse(R"({
    "Name": 7,
    "ColorSpace": ["RGB"],
    "NanColor": "red",
    "RGBPoints": [0, 1, "half", 1],
    "IndexedColors": {"0": [1, 0, 0]},
    "Annotations": {"0": "matrix"}
  })"));
  EXPECT_EQ(mistyped.name, "");
  EXPECT_EQ(mistyped.colorSpace, "");
  EXPECT_TRUE(mistyped.nanColor.empty());
  EXPECT_TRUE(mistyped.rgbPoints.empty());
  EXPECT_TRUE(mistyped.indexedColors.empty());
  EXPECT_TRUE(mistyped.annotations.is_null());
  EXPECT_EQ(mistyped, ColorPreset());

  const ColorPreset partial(json::parse(R"({"Name": "Only a name"})"));
  EXPECT_EQ(partial.name, "Only a name");
  EXPECT_TRUE(partial.rgbPoints.empty());
  EXPECT_EQ(ColorPreset(json::parse("[1, 2, 3]")), ColorPreset());
}

TEST(ColorPreset, IndexedPresetNeedsWholeRgbColors)
{
  struct Case
  {
    std::vector<float> indexed;
    std::vector<float> points;
    bool valid;
  };
  const std::vector<Case> cases{
    { {}, {}, false },
    { { 1, 0, 0 }, {}, true },
    { { 1, 0, 0, 0, 1, 0 }, {}, true },
    { { 1, 0 }, {}, false },
    { { 1, 0, 0, 0 }, {}, false },
    { {}, { 0, 1, 0, 0, 1, 0, 0, 1 }, false },
  };
  for (const auto& c : cases)
  {
    ColorPreset preset;
    preset.name = "p";
    preset.indexedColors = c.indexed;
    preset.rgbPoints = c.points;
    EXPECT_EQ(IsValidIndexedPreset(preset), c.valid) << c.indexed.size() << " indexed values";
  }
  EXPECT_TRUE(IsValidIndexedPreset(ColorPreset(k_Indexed)));
  EXPECT_FALSE(IsValidIndexedPreset(ColorPreset(k_Continuous)));
}

TEST(Result, ValidOnlyWithAValueOrVoidAndNoErrorsWhateverTheWarnings)
{
  const Result<int> value(5);
  EXPECT_TRUE(value.isValid());
  EXPECT_EQ(value.value(), 5);
  EXPECT_TRUE(Result<std::string>(std::string("ok"), { Warning{ -2, "rounded" } }).isValid());
  EXPECT_FALSE(Result<int>().isValid());

  const auto failed = MakeErrorResult<int>(-17, "no such file");
  EXPECT_FALSE(failed.isValid());
  ASSERT_EQ(failed.errors().size(), 1u);
  EXPECT_EQ(failed.errors()[0].code, -17);
  EXPECT_EQ(failed.errors()[0].message, "no such file");
  const Result<int> failedWarned(std::vector<Error>{ { -1, "a" }, { -2, "b" } },
                                 { Warning{ 3, "w" } });
  EXPECT_FALSE(failedWarned.isValid());
  EXPECT_EQ(failedWarned.errors().size(), 2u);
  EXPECT_EQ(failedWarned.warnings().size(), 1u);

  Result<void> done;
  EXPECT_TRUE(done.isValid());
  done.warnings().push_back(Warning{ 1, "skipped" });
  EXPECT_TRUE(done.isValid());
  const detail::ResultVoid voidFailed(std::vector<Error>{ { -5, "broken" } },
                                      { Warning{ 2, "partial" } });
  EXPECT_FALSE(voidFailed.isValid());
  EXPECT_EQ(voidFailed.errors()[0].message, "broken");
  EXPECT_FALSE(MakeErrorResult<void>(-1, "x").isValid());
}
