#include "QtPrinters.hpp"

#include <KXComponents/KXColorPresets.hpp>

#include <gtest/gtest.h>

#include <set>

using kx::core::ColorTableUtilities::ColorPreset;
using kx::core::ColorTableUtilities::IsValidIndexedPreset;

TEST(KXColorPresets, BuiltInCollectionHasTheFamiliarMaps)
{
  const auto& presets = KXColorPresets::LoadBuiltIn();
  ASSERT_GE(presets.size(), 10u);
  std::set<std::string> names;
  for (const ColorPreset& preset : presets)
    EXPECT_TRUE(names.insert(preset.name).second) << "duplicate name " << preset.name;
  for (const char* name :
       { "Cool to Warm", "Viridis", "Inferno", "Grayscale", "Jet", "Rainbow Uniform", "Distinct 12",
         "Brewer Qualitative Set1", "Brewer Qualitative Paired" })
    EXPECT_EQ(names.count(name), 1u) << name;
}

TEST(KXColorPresets, ContinuousMapsAreWellFormedAndIndexedMapsValid)
{
  int continuous = 0;
  int indexed = 0;
  for (const ColorPreset& preset : KXColorPresets::LoadBuiltIn())
  {
    SCOPED_TRACE(preset.name);
    if (!KXColorPresets::IsContinuous(preset))
    {
      ++indexed;
      EXPECT_TRUE(IsValidIndexedPreset(preset));
      EXPECT_TRUE(preset.rgbPoints.empty());
      EXPECT_GE(preset.indexedColors.size() / 3, 8u);
      continue;
    }
    ++continuous;
    const auto& points = preset.rgbPoints;
    ASSERT_EQ(points.size() % 4, 0u);
    ASSERT_GE(points.size(), 8u);
    EXPECT_FLOAT_EQ(points.front(), 0.0f);
    EXPECT_FLOAT_EQ(points[points.size() - 4], 1.0f);
    for (size_t i = 0; i < points.size(); i += 4)
    {
      EXPECT_TRUE(i == 0 || points[i] > points[i - 4]) << "positions must ascend";
      for (size_t c = 1; c < 4; ++c)
        EXPECT_TRUE(points[i + c] >= 0.0f && points[i + c] <= 1.0f) << points[i + c];
    }
    EXPECT_EQ(preset.nanColor.size(), 3u);
    EXPECT_FALSE(preset.colorSpace.empty());
  }
  EXPECT_GE(continuous, 6);
  EXPECT_GE(indexed, 3);
}

TEST(KXColorPresets, ControlPointsMatchThePublishedMapsFoundByTheirExactNames)
{
  // Moreland's cool-to-warm: blue (59,76,192), near-white middle, red (180,4,38).
  const ColorPreset coolToWarm = *KXColorPresets::Find("Cool to Warm");
  const auto& c = coolToWarm.rgbPoints;
  EXPECT_NEAR(c[1], 59 / 255.0, 0.005);
  EXPECT_NEAR(c[2], 76 / 255.0, 0.005);
  EXPECT_NEAR(c[3], 192 / 255.0, 0.005);
  const size_t middle = (c.size() / 4 / 2) * 4;
  EXPECT_FLOAT_EQ(c[middle], 0.5f);
  EXPECT_NEAR(c[middle + 1], 0.865, 0.01);
  EXPECT_NEAR(c[middle + 2], 0.865, 0.01);
  EXPECT_NEAR(c[middle + 3], 0.865, 0.01);
  EXPECT_NEAR(c[c.size() - 3], 180 / 255.0, 0.005);

  const ColorPreset viridis = *KXColorPresets::Find("Viridis");
  EXPECT_NEAR(viridis.rgbPoints[1], 0.267004, 1e-6);
  EXPECT_NEAR(viridis.rgbPoints[viridis.rgbPoints.size() - 2], 0.906157, 1e-6);

  const ColorPreset set1 = *KXColorPresets::Find("Brewer Qualitative Set1");
  ASSERT_EQ(set1.indexedColors.size(), 27u);
  EXPECT_NEAR(set1.indexedColors[0], 0xe4 / 255.0, 1e-5);
  EXPECT_NEAR(set1.indexedColors[1], 0x1a / 255.0, 1e-5);
  EXPECT_NEAR(set1.indexedColors[2], 0x1c / 255.0, 1e-5);

  // names are found exactly
  EXPECT_TRUE(KXColorPresets::Find("Jet").has_value());
  EXPECT_FALSE(KXColorPresets::Find("jet").has_value());
  EXPECT_FALSE(KXColorPresets::Find("No Such Map").has_value());
}

TEST(KXColorPresets, ParseSkipsWhatIsNotAPreset)
{
  EXPECT_TRUE(KXColorPresets::Parse("not json at all").empty());
  EXPECT_TRUE(KXColorPresets::Parse(R"({"Name": "object, not array"})").empty());
  const auto presets = KXColorPresets::Parse(
    R"([{"Name": "A", "RGBPoints": [0, 0, 0, 0, 1, 1, 1, 1]}, 3, {"RGBPoints": [0, 1, 1, 1]},
        {"Name": "B", "IndexedColors": [1, 0, 0, 0, 1, 0]}])");
  ASSERT_EQ(presets.size(), 2u);
  EXPECT_EQ(presets[0].name, "A");
  EXPECT_EQ(presets[0].rgbPoints.size(), 8u);
  EXPECT_EQ(presets[1].name, "B");
  EXPECT_TRUE(IsValidIndexedPreset(presets[1]));
}
