#include "QtPrinters.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtGui/QImage>
#include <QtGui/QPixmap>

#include <gtest/gtest.h>

#include <set>

namespace
{
QImage Render(const QIcon& icon, int side = 16)
{
  return icon.pixmap(QSize(side, side)).toImage().convertToFormat(QImage::Format_ARGB32);
}

/** Theme icon names the visualization layer asks KXStyle for. */
const QStringList k_NamesUsedByTheLibrary = { "PipelineFileBridgeObj",
                                              "DataSource",
                                              "VertexGeometry",
                                              "Cells",
                                              "VXPipelineTreeIcon",
                                              "invert",
                                              "preset",
                                              "Eye",
                                              "ScaleToData",
                                              "CustomRange",
                                              "Undo",
                                              "Close",
                                              "Split Horizontal",
                                              "Split Vertical",
                                              "Run",
                                              "target",
                                              "Visualization",
                                              "TriangleGeometry",
                                              "SliceView",
                                              "VolumeView",
                                              "GlyphView" };
} // namespace

TEST(KXStyle, EveryNameTheLibraryUsesHasItsOwnIcon)
{
  const QStringList known = KXStyle::iconNames();
  const QImage fallback = Render(KXStyle::fallbackIcon());
  for (const QString& name : k_NamesUsedByTheLibrary)
  {
    SCOPED_TRACE(name.toStdString());
    EXPECT_TRUE(known.contains(name));
    EXPECT_TRUE(KXStyle::hasThemeIcon(name));
    const QIcon icon = KXStyle::generateThemeIconFromName(name);
    ASSERT_FALSE(icon.isNull());
    EXPECT_NE(Render(icon), fallback);
  }
}

TEST(KXStyle, IconsAreDistinctAndVisible)
{
  std::set<QByteArray> seen;
  for (const QString& name : KXStyle::iconNames())
  {
    SCOPED_TRACE(name.toStdString());
    const QImage image = Render(KXStyle::generateThemeIconFromName(name));
    ASSERT_EQ(image.size(), QSize(16, 16));
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        opaque += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    // Something is drawn, and it is not a filled square.
    EXPECT_GT(opaque, 15);
    const QByteArray bytes(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
    EXPECT_TRUE(seen.insert(bytes).second) << "same picture as another icon";
  }
  EXPECT_EQ(seen.size(), static_cast<size_t>(KXStyle::iconNames().size()));
}

TEST(KXStyle, SizesColoursAndTheMagentaFallbackForUnknownNames)
{
  const QIcon icon = KXStyle::generateThemeIconFromName("Eye");
  EXPECT_TRUE(icon.availableSizes().contains(QSize(16, 16)));
  EXPECT_TRUE(icon.availableSizes().contains(QSize(32, 32)));
  EXPECT_EQ(icon.pixmap(QSize(32, 32)).size(), QSize(32, 32));
  EXPECT_EQ(KXStyle::getIconSize(), QSize(16, 16));
  EXPECT_EQ(KXStyle::getLightRedColor(), QColor(255, 180, 180));
  EXPECT_EQ(KXStyle::getDefaultTextColor(), QColor(33, 33, 33));

  EXPECT_FALSE(KXStyle::hasThemeIcon("NoSuchIcon"));
  EXPECT_FALSE(KXStyle::hasThemeIcon("eye")); // names are case-sensitive
  const QImage image = Render(KXStyle::generateThemeIconFromName("NoSuchIcon"));
  EXPECT_EQ(image, Render(KXStyle::fallbackIcon()));
  EXPECT_EQ(QColor(image.pixel(1, 1)), QColor(255, 0, 255));
}
