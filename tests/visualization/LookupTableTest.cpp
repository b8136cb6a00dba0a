// Colour maps: defaults, range changes, inversion, copies and equality.
#include "LookupTableTestUtils.hpp"

#include <cfloat>
#include <cmath>
#include <memory>

using namespace lut;

TEST_F(LookupTableTest, NewTableTakesTheDefaultPresetOfThePreferences)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();

  // a fresh table has no range of its own yet, so the preset's positions stand
  const std::vector<Node> expected = { { -1, 0, 0, 1 }, { 0, 1, 1, 1 }, { 1, 1, 0, 0 } };
  EXPECT_EQ(Nodes(ctf), expected);
  EXPECT_EQ(ctf->GetIndexedLookup(), 0);
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_RGB);
  EXPECT_EQ(table.getColorPresetArray(), (QList<QString>{ "-1/0/0/1", "0/1/1/1", "1/1/0/0" }));
  EXPECT_FALSE(table.isInverted());
  EXPECT_RGB_NEAR(ColorAt(ctf, -0.5), (Rgb3{ 0.5, 0.5, 1.0 }));

  // out-of-range values and NaN share the NaN colour
  EXPECT_EQ(table.getNANColor(), QColor::fromRgbF(0.5f, 0.75f, 0.0f));
  EXPECT_RGB_NEAR(ctf->GetNanColor(), (Rgb3{ 0.5, 0.75, 0.0 }));
  EXPECT_RGB_NEAR(ctf->GetBelowRangeColor(), (Rgb3{ 0.5, 0.75, 0.0 }));
  EXPECT_RGB_NEAR(ctf->GetAboveRangeColor(), (Rgb3{ 0.5, 0.75, 0.0 }));
}

TEST_F(LookupTableTest, PreferencesWithoutAMapFallBackToTheBuiltInOne)
{
  KXPreferences::setDefaultColorPreset(Preset());
  VXLookupTable table;
  const auto nodes = Nodes(table.getColorTransferFunction());
  ASSERT_EQ(nodes.size(), 3u);
  EXPECT_DOUBLE_EQ(nodes[1][0], 0.5);
  EXPECT_DOUBLE_EQ(nodes[1][1], 0.865003);
  EXPECT_DOUBLE_EQ(nodes[2][3], 0.14902);
}

TEST_F(LookupTableTest, ConstantsOfThePalette)
{
  EXPECT_EQ(VXLookupTable::k_MaxNumberIndexedColors, 32);
  EXPECT_EQ(VXLookupTable::k_DefaultPresetName, "Default");
  EXPECT_EQ(VXLookupTable::k_TypeName, "VXLookupTable");
  ASSERT_EQ(VXLookupTable::m_DefaultIndexedColors.size(), 32);
  EXPECT_EQ(VXLookupTable::m_DefaultIndexedColors[0], QColor(223, 32, 32));
  EXPECT_EQ(VXLookupTable::m_DefaultIndexedColors[10], QColor(41, 223, 32));
  EXPECT_EQ(VXLookupTable::m_DefaultIndexedColors[16], QColor(32, 217, 223));
  EXPECT_EQ(VXLookupTable::m_DefaultIndexedColors[31], QColor(223, 32, 57));
  ASSERT_EQ(VXLookupTable::m_DefaultRgbPosVec.size(), 3u);
  EXPECT_DOUBLE_EQ(VXLookupTable::m_DefaultRgbPosVec[0].b, 0.752941);
}

TEST_F(LookupTableTest, SetRangeKeepsRelativePositionsOverManyChanges)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  ctf->RemoveAllPoints();
  table.addRgbPoint(0.0, 0.0, 0.0, 0.0);
  table.addRgbPoint({ 0.25, 0.5, 0.0, 1.0 });
  double white[3] = { 1.0, 1.0, 1.0 };
  table.addRgbPoint(1.0, white);

  struct Step
  {
    double min;
    double max;
    double middle;
  };
  const Step steps[] = {
    { 10.0, 50.0, 20.0 }, { -4.0, 4.0, -2.0 }, { 1e-3, 2e-3, 1.25e-3 }, { 0.0, 1000.0, 250.0 }
  };
  for (const Step& step : steps)
  {
    table.setRange(step.min, step.max);
    const auto nodes = Nodes(ctf);
    ASSERT_EQ(nodes.size(), 3u) << step.min;
    EXPECT_DOUBLE_EQ(nodes[0][0], step.min);
    EXPECT_NEAR(nodes[1][0], step.middle, 1e-12 * (step.max - step.min + 1.0));
    EXPECT_DOUBLE_EQ(nodes[2][0], step.max);
    EXPECT_EQ((Rgb3{ nodes[1][1], nodes[1][2], nodes[1][3] }), (Rgb3{ 0.5, 0.0, 1.0 }));
    EXPECT_EQ(table.getRange(), (std::array<double, 2>{ step.min, step.max }));
  }
}

TEST_F(LookupTableTest, SetRangeOfEqualBoundsGivesTwoNodesOfTheLowColour)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  table.setRange(0.0, 10.0);
  table.setRange(5.0, 5.0);

  const auto nodes = Nodes(ctf);
  ASSERT_EQ(nodes.size(), 2u);
  EXPECT_EQ(nodes[0][0], 5.0);
  EXPECT_EQ(nodes[1][0], std::nextafter(5.0, DBL_MAX));
  for (const Node& node : nodes)
    EXPECT_EQ((Rgb3{ node[1], node[2], node[3] }), (Rgb3{ 0.0, 0.0, 1.0 }));

  // a constant map has no shape left: widening it again gives the default map
  table.setRange(0.0, 2.0);
  const std::vector<Node> widened = { { 0.0, 0.231373, 0.298039, 0.752941 },
                                      { 1.0, 0.865003, 0.865003, 0.865003 },
                                      { 2.0, 0.705882, 0.0156863, 0.14902 } };
  EXPECT_EQ(Nodes(ctf), widened);
}

TEST_F(LookupTableTest, SetRangeRefusesReversedBoundsAndIndexedMaps)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  const auto before = Nodes(ctf);
  table.setRange(3.0, 2.0);
  EXPECT_EQ(Nodes(ctf), before);
  double reversed[2] = { 1.0, -1.0 };
  table.setRange(reversed);
  EXPECT_EQ(Nodes(ctf), before);

  table.parseIndexedArray({ "1/1/0/0", "2/0/1/0" });
  const auto indexed = Nodes(ctf);
  table.setRange(0.0, 100.0);
  EXPECT_EQ(Nodes(ctf), indexed);
  EXPECT_EQ(table.getRange(), (std::array<double, 2>{ 1.0, 2.0 }));
}

TEST_F(LookupTableTest, SetRangeOfACollapsedFunctionFallsBackToTheDefaultMap)
{
  struct Case
  {
    const char* name;
    std::vector<Node> points;
  };
  const Case cases[] = {
    { "empty", {} },
    { "one node", { { 3.0, 1.0, 0.0, 0.0 } } },
    { "two nodes closer than 1e-10", { { 3.0, 1.0, 0.0, 0.0 }, { 3.0 + 1e-11, 0.0, 1.0, 0.0 } } },
  };
  for (const Case& c : cases)
  {
    VXLookupTable table;
    vtkColorTransferFunction* ctf = table.getColorTransferFunction();
    ctf->RemoveAllPoints();
    for (const Node& p : c.points)
      table.addRgbPoint(p[0], p[1], p[2], p[3]);
    table.setRange(-10.0, 10.0);
    const std::vector<Node> expected = { { -10.0, 0.231373, 0.298039, 0.752941 },
                                         { 0.0, 0.865003, 0.865003, 0.865003 },
                                         { 10.0, 0.705882, 0.0156863, 0.14902 } };
    EXPECT_EQ(Nodes(ctf), expected) << c.name;
  }
}

TEST_F(LookupTableTest, InvertReversesColoursAndKeepsUnevenPositions)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  ctf->RemoveAllPoints();
  table.addRgbPoint(0.0, 1.0, 0.0, 0.0);
  table.addRgbPoint(0.1, 0.0, 1.0, 0.0);
  table.addRgbPoint(0.7, 0.0, 0.0, 1.0);
  table.addRgbPoint(1.0, 1.0, 1.0, 1.0);
  const auto original = Nodes(ctf);

  table.invert();
  EXPECT_TRUE(table.isInverted());
  const std::vector<Node> inverted = {
    { 0.0, 1, 1, 1 }, { 0.1, 0, 0, 1 }, { 0.7, 0, 1, 0 }, { 1.0, 1, 0, 0 }
  };
  EXPECT_EQ(Nodes(ctf), inverted);
  EXPECT_RGB_NEAR(ColorAt(ctf, 0.1), (Rgb3{ 0.0, 0.0, 1.0 }));

  table.invert();
  EXPECT_FALSE(table.isInverted());
  EXPECT_EQ(Nodes(ctf), original);
}

TEST_F(LookupTableTest, CopyTakesNodesModeSpaceNanInversionAndRowsButNotAnnotations)
{
  VXLookupTable source;
  source.parseIndexedArray({ "1/1/0/0", "2/0/1/0", "7/0/0/1" });
  source.getColorTransferFunction()->SetColorSpaceToHSV();
  const double nan[3] = { 0.1, 0.2, 0.3 };
  source.setNANColor(nan);
  source.invert();

  VXLookupTable target;
  target.copy(source);
  vtkColorTransferFunction* ctf = target.getColorTransferFunction();
  EXPECT_EQ(Nodes(ctf), Nodes(source.getColorTransferFunction()));
  EXPECT_EQ(ctf->GetIndexedLookup(), 1);
  EXPECT_EQ(ctf->GetColorSpace(), VTK_CTF_HSV);
  EXPECT_EQ(target.getNANColor(), source.getNANColor());
  EXPECT_RGB_NEAR(ctf->GetAboveRangeColor(), (Rgb3{ 0.1, 0.2, 0.3 }));
  EXPECT_TRUE(target.isInverted());
  EXPECT_EQ(target.getColorPresetArray(), source.getColorPresetArray());
  EXPECT_EQ(ctf->GetNumberOfAnnotatedValues(), 0);
  EXPECT_NE(ctf, source.getColorTransferFunction());

  std::unique_ptr<VXLookupTable> deep(source.deepCopy());
  EXPECT_EQ(deep->parent(), nullptr);
  EXPECT_EQ(Nodes(deep->getColorTransferFunction()), Nodes(source.getColorTransferFunction()));
  EXPECT_TRUE(deep->isInverted());
  EXPECT_TRUE(deep->equals(&source));

  // the copy is independent
  deep->invert();
  EXPECT_FALSE(deep->equals(&source));
  EXPECT_TRUE(target.equals(&source));
}

TEST_F(LookupTableTest, EqualsComparesNodesAndRangeOnly)
{
  VXLookupTable a;
  VXLookupTable b;
  EXPECT_TRUE(a.equals(&b));
  EXPECT_FALSE(a.equals(nullptr));

  b.setNANColor(QColor(Qt::black));
  EXPECT_TRUE(a.equals(&b));

  b.setRange(0.0, 2.0);
  EXPECT_FALSE(a.equals(&b));
  b.setRange(-1.0, 1.0);
  EXPECT_TRUE(a.equals(&b));

  b.getColorTransferFunction()->AddRGBPoint(0.0, 1.0, 1.0, 0.9);
  EXPECT_FALSE(a.equals(&b));

  VXLookupTable c;
  c.getColorTransferFunction()->AddRGBPoint(0.5, 0.0, 0.0, 0.0);
  EXPECT_FALSE(a.equals(&c));
}

TEST_F(LookupTableTest, NanColourGoesToTheFunctionAndToAnAdoptedOne)
{
  VXLookupTable table;
  vtkColorTransferFunction* ctf = table.getColorTransferFunction();
  table.setNANColor(QColor(255, 0, 255));
  EXPECT_EQ(table.getNANColor(), QColor(255, 0, 255));
  EXPECT_RGB_NEAR(ctf->GetNanColor(), (Rgb3{ 1.0, 0.0, 1.0 }));
  EXPECT_RGB_NEAR(ctf->GetBelowRangeColor(), (Rgb3{ 1.0, 0.0, 1.0 }));

  const double rgb[3] = { 0.0, 0.5, 0.25 };
  table.setNANColor(rgb);
  EXPECT_RGB_NEAR(ctf->GetAboveRangeColor(), (Rgb3{ 0.0, 0.5, 0.25 }));
  EXPECT_NEAR(table.getNANColor().greenF(), 0.5, 1e-4);

  // an adopted function takes the NaN colour; null is not adopted
  table.setNANColor(QColor(0, 0, 255));
  vtkNew<vtkColorTransferFunction> adopted;
  adopted->AddRGBPoint(0.0, 1.0, 1.0, 1.0);
  table.setColorTransferFunction(adopted);
  EXPECT_EQ(table.getColorTransferFunction(), adopted.Get());
  EXPECT_RGB_NEAR(adopted->GetNanColor(), (Rgb3{ 0.0, 0.0, 1.0 }));
  table.setColorTransferFunction(nullptr);
  EXPECT_EQ(table.getColorTransferFunction(), adopted.Get());
}
