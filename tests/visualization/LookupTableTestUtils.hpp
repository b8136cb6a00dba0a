#pragma once

#include "visualization/VXLookupTable.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <TestSupport.hpp>

#include <KXComponents/KXPreferences.hpp>
#include <KXComponents/QtKXSettings.hpp>

#include <gtest/gtest.h>

#include <vtkColorTransferFunction.h>

#include <QtCore/QString>

#include <array>
#include <string>
#include <vector>

namespace lut
{
using Preset = kx::core::ColorTableUtilities::ColorPreset;
using Node = std::array<double, 4>;

inline std::vector<Node> Nodes(vtkColorTransferFunction* ctf)
{
  std::vector<Node> nodes;
  for (int i = 0; i < ctf->GetSize(); ++i)
  {
    double v[6];
    ctf->GetNodeValue(i, v);
    nodes.push_back({ v[0], v[1], v[2], v[3] });
  }
  return nodes;
}

inline std::array<double, 3> ColorAt(vtkColorTransferFunction* ctf, double x)
{
  std::array<double, 3> rgb{};
  ctf->GetColor(x, rgb.data());
  return rgb;
}

inline std::array<double, 3> Rgb(int r, int g, int b)
{
  return { r / 255.0, g / 255.0, b / 255.0 };
}

/** The annotated values and labels, in annotation order. */
inline std::vector<std::pair<double, std::string>> Annotations(vtkColorTransferFunction* ctf)
{
  std::vector<std::pair<double, std::string>> result;
  for (vtkIdType i = 0; i < ctf->GetNumberOfAnnotatedValues(); ++i)
  {
    result.emplace_back(ctf->GetAnnotatedValue(i).ToDouble(), ctf->GetAnnotation(i));
  }
  return result;
}

using Labels = std::vector<std::pair<double, std::string>>;
using Rgb3 = std::array<double, 3>;

/** Expects each value to take its colour, within 1e-6 per channel. */
inline void ExpectColors(vtkColorTransferFunction* ctf,
                         const std::vector<std::pair<double, Rgb3>>& expected)
{
  for (const auto& [value, rgb] : expected)
  {
    const Rgb3 actual = ColorAt(ctf, value);
    for (int c = 0; c < 3; ++c)
      EXPECT_NEAR(actual[c], rgb[c], 1e-6) << "value " << value << ", channel " << c;
  }
}

#define EXPECT_RGB_NEAR(actual, expected)                                                          \
  do                                                                                               \
  {                                                                                                \
    const auto a_ = (actual);                                                                      \
    const auto e_ = (expected);                                                                    \
    EXPECT_NEAR(a_[0], e_[0], 1e-6);                                                               \
    EXPECT_NEAR(a_[1], e_[1], 1e-6);                                                               \
    EXPECT_NEAR(a_[2], e_[2], 1e-6);                                                               \
  } while (false)

/**
 * Every lookup table test starts from a known default preset (three points at
 * -1, 0 and 1), settings in a temporary file, both warnings enabled, and a
 * recorder answering the questions a table asks.
 */
class LookupTableTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    m_OldSettingsPath = QtKXSettings::FilePath();
    QtKXSettings::SetFilePath(QString::fromStdString((m_Dir / "settings.ini").string()));
    m_OldPreset = KXPreferences::getDefaultColorPreset();
    KXPreferences::setDefaultColorPreset(DefaultPreset());
    KXPreferences::setAllowTooManyIndexedValues(true);
    KXPreferences::setAllowMoreValuesThanIndexedColors(true);
    VXUserPrompt::setChoiceHandler(
      [this](const VXUserPrompt::Choice& question)
      {
        m_Questions.push_back(question);
        return m_Answer;
      });
  }

  void TearDown() override
  {
    VXUserPrompt::setChoiceHandler({});
    KXPreferences::setDefaultColorPreset(m_OldPreset);
    KXPreferences::setAllowTooManyIndexedValues(true);
    KXPreferences::setAllowMoreValuesThanIndexedColors(true);
    QtKXSettings::SetFilePath(m_OldSettingsPath);
  }

  static Preset DefaultPreset()
  {
    Preset preset;
    preset.name = "Test Blue White Red";
    preset.colorSpace = "RGB";
    preset.rgbPoints = { -1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 0.0f, 0.0f };
    return preset;
  }

  kxtest::TempDir m_Dir;
  QString m_OldSettingsPath;
  Preset m_OldPreset;
  std::vector<VXUserPrompt::Choice> m_Questions;
  VXUserPrompt::ChoiceAnswer m_Answer;
};
} // namespace lut
