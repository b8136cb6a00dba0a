#include "kxcore/DataPath.hpp"

#include <gtest/gtest.h>

#include <algorithm>

using kx::core::DataPath;

TEST(DataPath, FromStringSplitsAndToStringJoins)
{
  const auto path = DataPath::FromString("Image/Cell Data/Phases");
  ASSERT_TRUE(path.has_value());
  EXPECT_EQ(path->getLength(), 3u);
  EXPECT_FALSE(path->empty());
  EXPECT_EQ((*path)[0], "Image");
  EXPECT_EQ((*path)[1], "Cell Data");
  EXPECT_EQ((*path)[2], "Phases");
  EXPECT_EQ(path->getTargetName(), "Phases");
  EXPECT_EQ(path->toString("/"), "Image/Cell Data/Phases");
  EXPECT_EQ(path->toString(" | "), "Image | Cell Data | Phases");
  EXPECT_EQ(path->toString(""), "ImageCell DataPhases");

  // another delimiter: '/' is then part of a name
  const auto piped = DataPath::FromString("a/b|c", '|');
  ASSERT_TRUE(piped.has_value());
  EXPECT_EQ(*piped, DataPath({ "a/b", "c" }));
  EXPECT_EQ(DataPath::FromString(piped->toString("|"), '|'), piped);

  const auto single = DataPath::FromString("Top");
  ASSERT_TRUE(single.has_value());
  EXPECT_EQ(single->getLength(), 1u);
  EXPECT_EQ(single->getTargetName(), "Top");
}

TEST(DataPath, FromStringRejectsEmptyNames)
{
  for (const char* text : { "", "a//b", "/a", "a/", "/" })
  {
    EXPECT_FALSE(DataPath::FromString(text).has_value()) << "'" << text << "'";
  }
}

TEST(DataPath, DefaultIsEmpty)
{
  const DataPath path;
  EXPECT_TRUE(path.empty());
  EXPECT_EQ(path.getLength(), 0u);
  EXPECT_EQ(path.getTargetName(), "");
  EXPECT_EQ(path.toString("/"), "");
  EXPECT_EQ(DataPath({ "a", "b" }).getParent(), DataPath({ "a" }));
  EXPECT_EQ(DataPath({ "a" }).createChildPath("b"), DataPath({ "a", "b" }));
}

TEST(DataPath, OrderingIsLexicographicParentsFirst)
{
  std::vector<DataPath> paths{ DataPath({ "b" }), DataPath({ "a", "c" }), DataPath({ "a" }),
                               DataPath({ "a", "b" }), DataPath({ "B" }) };
  std::sort(paths.begin(), paths.end());
  const std::vector<DataPath> expected{ DataPath({ "B" }), DataPath({ "a" }),
                                        DataPath({ "a", "b" }), DataPath({ "a", "c" }),
                                        DataPath({ "b" }) };
  EXPECT_EQ(paths, expected);

  EXPECT_FALSE(DataPath({ "a" }) < DataPath({ "a" }));
  EXPECT_EQ(DataPath({ "a", "b" }), *DataPath::FromString("a/b"));
  EXPECT_NE(DataPath({ "a", "b" }), DataPath({ "b", "a" }));
  EXPECT_NE(DataPath({ "a" }), DataPath({ "a", "b" }));

  DataPath copy = paths[2];
  DataPath moved = std::move(copy);
  EXPECT_EQ(moved, DataPath({ "a", "b" }));
}
