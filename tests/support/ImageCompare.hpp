#pragma once

// The one image comparison of the tests: pictures against committed baselines
// under tests/baselines/<area>/, with a tolerance.
#include <gtest/gtest.h>

#include <QtGui/QColor>
#include <QtGui/QImage>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace kxtest
{
/** Largest RMS difference (0..255 over RGB) that still counts as the same picture. */
constexpr double k_ImageTolerance = 6.0;

/** Root mean square difference of two images over RGB in 0..255; negative when the sizes differ. */
inline double RmsDifference(const QImage& a, const QImage& b)
{
  if (a.size() != b.size() || a.isNull())
    return -1.0;
  const QImage ca = a.convertToFormat(QImage::Format_RGB32);
  const QImage cb = b.convertToFormat(QImage::Format_RGB32);
  double sum = 0.0;
  for (int y = 0; y < ca.height(); ++y)
  {
    const auto* la = reinterpret_cast<const QRgb*>(ca.constScanLine(y));
    const auto* lb = reinterpret_cast<const QRgb*>(cb.constScanLine(y));
    for (int x = 0; x < ca.width(); ++x)
    {
      const double dr = qRed(la[x]) - qRed(lb[x]);
      const double dg = qGreen(la[x]) - qGreen(lb[x]);
      const double db = qBlue(la[x]) - qBlue(lb[x]);
      sum += dr * dr + dg * dg + db * db;
    }
  }
  return std::sqrt(sum / (3.0 * ca.width() * ca.height()));
}

/** Per-pixel difference, amplified four times so that small shifts show. */
inline QImage DifferenceImage(const QImage& a, const QImage& b)
{
  const QImage ca = a.convertToFormat(QImage::Format_RGB32);
  const QImage cb = b.convertToFormat(QImage::Format_RGB32);
  QImage diff(ca.size(), QImage::Format_RGB32);
  for (int y = 0; y < ca.height(); ++y)
  {
    const auto* la = reinterpret_cast<const QRgb*>(ca.constScanLine(y));
    const auto* lb = reinterpret_cast<const QRgb*>(cb.constScanLine(y));
    auto* ld = reinterpret_cast<QRgb*>(diff.scanLine(y));
    for (int x = 0; x < ca.width(); ++x)
    {
      auto channel = [](int p, int q) { return std::min(255, 4 * std::abs(p - q)); };
      ld[x] = qRgb(channel(qRed(la[x]), qRed(lb[x])), channel(qGreen(la[x]), qGreen(lb[x])),
                   channel(qBlue(la[x]), qBlue(lb[x])));
    }
  }
  return diff;
}

/** Share of pixels that differ from the image's corner (background) colour. */
inline double ForegroundFraction(const QImage& image)
{
  if (image.isNull())
    return 0.0;
  const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
  const QRgb corner = rgb.pixel(0, 0);
  long differing = 0;
  for (int y = 0; y < rgb.height(); ++y)
  {
    const auto* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
    for (int x = 0; x < rgb.width(); ++x)
    {
      if (std::abs(qRed(line[x]) - qRed(corner)) > 8 ||
          std::abs(qGreen(line[x]) - qGreen(corner)) > 8 ||
          std::abs(qBlue(line[x]) - qBlue(corner)) > 8)
        differing++;
    }
  }
  return double(differing) / double(rgb.width() * rgb.height());
}

/**
 * Compares an image with tests/baselines/<area>/<name>.png. A missing baseline
 * fails; KXVTK_UPDATE_BASELINES=1 writes the baseline and fails too, so that no
 * baseline is accepted without a person looking at it. On failure the image and
 * its difference from the baseline go to tests/tmp/failed/<area>/ in the build tree.
 */
inline void CompareWithBaseline(const QImage& image, const std::string& area,
                                const std::string& name)
{
  const std::filesystem::path baseline =
    std::filesystem::path(KXVTK_BASELINE_DIR) / area / (name + ".png");
  const std::filesystem::path failedDir =
    std::filesystem::path(KXVTK_TEST_TMP_DIR) / "failed" / area;
  const auto qpath = [](const std::filesystem::path& p)
  { return QString::fromStdString(p.string()); };
  const char* update = std::getenv("KXVTK_UPDATE_BASELINES");
  if (update != nullptr && std::string(update) == "1")
  {
    std::filesystem::create_directories(baseline.parent_path());
    image.save(qpath(baseline), "PNG");
    ADD_FAILURE() << "baseline written, look at it before committing: " << baseline;
    return;
  }
  std::filesystem::create_directories(failedDir);
  const std::filesystem::path actual = failedDir / (name + ".png");
  const QImage expected(qpath(baseline));
  if (expected.isNull())
  {
    image.save(qpath(actual), "PNG");
    ADD_FAILURE() << "missing baseline " << baseline << "; image written to " << actual;
    return;
  }
  const double rms = RmsDifference(image, expected);
  if (rms < 0.0 || rms > k_ImageTolerance)
  {
    image.save(qpath(actual), "PNG");
    const std::filesystem::path diff = failedDir / (name + ".diff.png");
    if (rms >= 0.0)
      DifferenceImage(image, expected).save(qpath(diff), "PNG");
    ADD_FAILURE() << name << ": RMS difference " << rms << " above " << k_ImageTolerance
                  << "; image written to " << actual << " (difference: " << diff << ")";
  }
}
} // namespace kxtest
