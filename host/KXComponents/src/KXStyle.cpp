#include "KXComponents/KXStyle.hpp"

#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>

#include <array>
#include <functional>
#include <optional>

namespace
{
/** What to draw; each shape is laid out on a 16 x 16 grid and scaled. */
enum class Shape
{
  Badge,       // rounded square with a letter
  Document,    // page with a folded corner and a letter
  Database,    // drum
  Points,      // 3 x 3 dots
  Cells,       // 2 x 2 filled cells
  Triangle,    // filled triangle
  Wireframe,   // triangle mesh outline
  BoxOutline,  // cube edges
  Volume,      // shaded cube
  Slice,       // slanted plane
  Glyphs,      // small arrows
  Tree,        // pipeline tree nodes
  Eye,         // visibility
  Cross,       // close
  SplitH,      // frame divided left | right
  SplitV,      // frame divided top / bottom
  Play,        // run
  Target,      // concentric rings
  Undo,        // curved arrow
  Gradient,    // colour ramp
  Invert,      // half black, half white disc
  ScaleArrows, // double-headed arrow over a bar
  Range,       // bracketed bar
  Circle,      // disc with a letter
  Floppy,      // save
  Grid,        // axes grid
  Chain,       // link
  AxisView,    // look along an axis: rounded square with "+X" and the like
  Picture,     // framed landscape: the image view
  RotateCw,    // round arrow turning clockwise
  RotateCcw,   // round arrow turning counterclockwise
  FitAll,      // box inside four corner brackets: show everything
  Crosshair,   // ring and cross: centre of rotation
  PointerDot,  // mouse pointer over a point
  PointerCell, // mouse pointer over a cell
  Pencil,      // edit
};

struct IconRecipe
{
  const char* name;
  Shape shape;
  QRgb color;
  const char* letter; // null for none
};

// The single list of theme icon names; tests iterate over KXStyle::iconNames().
constexpr std::array k_Recipes = {
  IconRecipe{ "PipelineFileBridgeObj", Shape::Document, 0xff3d7cc9, "F" },
  IconRecipe{ "DataSource", Shape::Database, 0xff3a9d5d, nullptr },
  IconRecipe{ "VertexGeometry", Shape::Points, 0xff2f6fb3, nullptr },
  IconRecipe{ "Cells", Shape::Cells, 0xffd08a2c, nullptr },
  IconRecipe{ "TriangleGeometry", Shape::Triangle, 0xff8c5bc7, nullptr },
  IconRecipe{ "Wireframe", Shape::Wireframe, 0xff4f9fb8, nullptr },
  IconRecipe{ "Visualization", Shape::BoxOutline, 0xff5a6d84, nullptr },
  IconRecipe{ "SliceView", Shape::Slice, 0xff2c9c9c, nullptr },
  IconRecipe{ "VolumeView", Shape::Volume, 0xffc0504d, nullptr },
  IconRecipe{ "GlyphView", Shape::Glyphs, 0xff9a7b2f, nullptr },
  IconRecipe{ "VXPipelineTreeIcon", Shape::Tree, 0xff607d8b, nullptr },
  IconRecipe{ "Eye", Shape::Eye, 0xff37474f, nullptr },
  IconRecipe{ "Close", Shape::Cross, 0xffc62828, nullptr },
  IconRecipe{ "Split Horizontal", Shape::SplitH, 0xff455a64, nullptr },
  IconRecipe{ "Split Vertical", Shape::SplitV, 0xff455a64, nullptr },
  IconRecipe{ "Run", Shape::Play, 0xff2e7d32, nullptr },
  IconRecipe{ "target", Shape::Target, 0xffd84315, nullptr },
  IconRecipe{ "Undo", Shape::Undo, 0xff1565c0, nullptr },
  IconRecipe{ "preset", Shape::Gradient, 0xff000000, nullptr },
  IconRecipe{ "invert", Shape::Invert, 0xff212121, nullptr },
  IconRecipe{ "ScaleToData", Shape::ScaleArrows, 0xff00838f, nullptr },
  IconRecipe{ "CustomRange", Shape::Range, 0xff6a1b9a, nullptr },
  IconRecipe{ "Help", Shape::Circle, 0xff1e88e5, "?" },
  IconRecipe{ "Save", Shape::Floppy, 0xff3949ab, nullptr },
  IconRecipe{ "GridAxes", Shape::Grid, 0xff546e7a, nullptr },
  IconRecipe{ "Link", Shape::Chain, 0xff546e7a, nullptr },
  IconRecipe{ "Sync", Shape::Circle, 0xff00897b, "S" },
  IconRecipe{ "Settings", Shape::Badge, 0xff757575, "S" },
  IconRecipe{ "Filter", Shape::Badge, 0xff7cb342, "F" },
  IconRecipe{ "Threshold", Shape::Badge, 0xffef6c00, "T" },
  IconRecipe{ "Clip", Shape::Badge, 0xff5e35b1, "C" },
  IconRecipe{ "Edit", Shape::Pencil, 0xffef8f00, nullptr },
  // the render view's tool strip, drawn over the dark view: axes in the usual red, green, blue,
  // the camera moves in a light grey
  IconRecipe{ "ViewPlusX", Shape::AxisView, 0xffc62828, "+X" },
  IconRecipe{ "ViewMinusX", Shape::AxisView, 0xffc62828, "-X" },
  IconRecipe{ "ViewPlusY", Shape::AxisView, 0xff2e7d32, "+Y" },
  IconRecipe{ "ViewMinusY", Shape::AxisView, 0xff2e7d32, "-Y" },
  IconRecipe{ "ViewPlusZ", Shape::AxisView, 0xff1565c0, "+Z" },
  IconRecipe{ "ViewMinusZ", Shape::AxisView, 0xff1565c0, "-Z" },
  IconRecipe{ "ImageView", Shape::Picture, 0xff455a64, nullptr },
  IconRecipe{ "RotateClockwise", Shape::RotateCw, 0xffb0bec5, nullptr },
  IconRecipe{ "RotateCounterClockwise", Shape::RotateCcw, 0xffb0bec5, nullptr },
  IconRecipe{ "ResetCamera", Shape::FitAll, 0xffb0bec5, nullptr },
  IconRecipe{ "CenterOfRotation", Shape::Crosshair, 0xffd84315, nullptr },
  IconRecipe{ "HoverPoints", Shape::PointerDot, 0xff2f6fb3, nullptr },
  IconRecipe{ "HoverCells", Shape::PointerCell, 0xffd08a2c, nullptr },
};

std::optional<IconRecipe> FindRecipe(const QString& name)
{
  for (const IconRecipe& recipe : k_Recipes)
  {
    if (name == QLatin1String(recipe.name))
    {
      return recipe;
    }
  }
  return std::nullopt;
}

void DrawLetter(QPainter& p, const QRectF& rect, const char* letter, const QColor& color,
                qreal scale = 0.8)
{
  if (letter == nullptr)
  {
    return;
  }
  QFont font = p.font();
  font.setBold(true);
  font.setPixelSize(qMax(1, static_cast<int>(rect.height() * scale)));
  p.setFont(font);
  p.setPen(color);
  p.drawText(rect, Qt::AlignCenter, QString::fromLatin1(letter));
}

QPen Stroke(const QColor& color, qreal width = 1.5)
{
  return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

/** Draws the recipe in 16 x 16 units; the painter is scaled to the pixmap. */
void DrawRecipe(QPainter& p, Shape shape, const QColor& c, const char* letter)
{
  const QColor light = c.lighter(160);
  switch (shape)
  {
    case Shape::Badge:
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawRoundedRect(QRectF(1, 1, 14, 14), 3, 3);
      DrawLetter(p, QRectF(1, 1, 14, 14), letter, Qt::white);
      break;
    case Shape::Circle:
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawEllipse(QRectF(1, 1, 14, 14));
      DrawLetter(p, QRectF(1, 1, 14, 14), letter, Qt::white);
      break;
    case Shape::Document:
    {
      QPainterPath page;
      page.moveTo(3, 1);
      page.lineTo(10, 1);
      page.lineTo(13, 4);
      page.lineTo(13, 15);
      page.lineTo(3, 15);
      page.closeSubpath();
      p.setPen(Stroke(c.darker(130), 1));
      p.setBrush(light);
      p.drawPath(page);
      p.drawLine(QPointF(10, 1), QPointF(10, 4));
      p.drawLine(QPointF(10, 4), QPointF(13, 4));
      DrawLetter(p, QRectF(3, 5, 10, 10), letter, c.darker(150));
      break;
    }
    case Shape::Database:
      p.setPen(Stroke(c.darker(140), 1));
      p.setBrush(c);
      p.drawRect(QRectF(2.5, 4, 11, 8));
      p.drawEllipse(QRectF(2.5, 10, 11, 4));
      p.setPen(Qt::NoPen);
      p.drawRect(QRectF(3, 5, 10, 7));
      p.setPen(Stroke(c.darker(140), 1));
      p.setBrush(light);
      p.drawEllipse(QRectF(2.5, 2, 11, 4));
      break;
    case Shape::Points:
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      for (int row = 0; row < 3; ++row)
      {
        for (int col = 0; col < 3; ++col)
        {
          p.drawEllipse(QPointF(3.5 + 4.5 * col, 3.5 + 4.5 * row), 1.8, 1.8);
        }
      }
      break;
    case Shape::Cells:
      p.setPen(Stroke(c.darker(150), 1));
      for (int row = 0; row < 2; ++row)
      {
        for (int col = 0; col < 2; ++col)
        {
          p.setBrush((row + col) % 2 == 0 ? c : light);
          p.drawRect(QRectF(1.5 + 6.5 * col, 1.5 + 6.5 * row, 6.5, 6.5));
        }
      }
      break;
    case Shape::Triangle:
      p.setPen(Stroke(c.darker(140), 1));
      p.setBrush(c);
      p.drawPolygon(QPolygonF({ QPointF(8, 1.5), QPointF(14.5, 14), QPointF(1.5, 14) }));
      break;
    case Shape::Wireframe:
      p.setPen(Stroke(c, 1.2));
      p.setBrush(Qt::NoBrush);
      p.drawPolygon(QPolygonF({ QPointF(8, 1.5), QPointF(14.5, 14), QPointF(1.5, 14) }));
      p.drawLine(QPointF(4.75, 7.75), QPointF(11.25, 7.75));
      p.drawLine(QPointF(4.75, 7.75), QPointF(8, 14));
      p.drawLine(QPointF(11.25, 7.75), QPointF(8, 14));
      break;
    case Shape::BoxOutline:
    case Shape::Volume:
    {
      const QPolygonF front({ QPointF(2, 5), QPointF(11, 5), QPointF(11, 14), QPointF(2, 14) });
      const QPolygonF top({ QPointF(2, 5), QPointF(5, 2), QPointF(14, 2), QPointF(11, 5) });
      const QPolygonF side({ QPointF(11, 5), QPointF(14, 2), QPointF(14, 11), QPointF(11, 14) });
      p.setPen(Stroke(shape == Shape::Volume ? c.darker(150) : c, 1.2));
      if (shape == Shape::Volume)
      {
        p.setBrush(c);
        p.drawPolygon(front);
        p.setBrush(light);
        p.drawPolygon(top);
        p.setBrush(c.darker(130));
        p.drawPolygon(side);
      }
      else
      {
        p.setBrush(Qt::NoBrush);
        p.drawPolygon(front);
        p.drawPolygon(top);
        p.drawPolygon(side);
      }
      break;
    }
    case Shape::Slice:
      p.setPen(Stroke(c.darker(140), 1));
      p.setBrush(c);
      p.drawPolygon(QPolygonF({ QPointF(1, 12), QPointF(5, 4), QPointF(15, 4), QPointF(11, 12) }));
      p.setPen(Stroke(light, 1));
      p.drawLine(QPointF(4, 9), QPointF(12, 9));
      break;
    case Shape::Glyphs:
      p.setPen(Stroke(c, 1.5));
      for (const QPointF& origin : { QPointF(2, 13), QPointF(7, 9), QPointF(2, 6) })
      {
        const QPointF tip = origin + QPointF(6, -4);
        p.drawLine(origin, tip);
        p.drawLine(tip, tip + QPointF(-2.5, 0.2));
        p.drawLine(tip, tip + QPointF(-0.8, 2.3));
      }
      break;
    case Shape::Tree:
      p.setPen(Stroke(c, 1.2));
      p.drawLine(QPointF(4, 4), QPointF(4, 12));
      p.drawLine(QPointF(4, 8), QPointF(11, 8));
      p.drawLine(QPointF(4, 12), QPointF(11, 12));
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawRect(QRectF(1.5, 1.5, 5, 4));
      p.setBrush(light);
      p.drawRect(QRectF(10, 6, 5, 4));
      p.drawRect(QRectF(10, 10.5, 5, 4));
      break;
    case Shape::Eye:
    {
      QPainterPath lids;
      lids.moveTo(1, 8);
      lids.quadTo(8, 0.5, 15, 8);
      lids.quadTo(8, 15.5, 1, 8);
      p.setPen(Stroke(c, 1.2));
      p.setBrush(Qt::white);
      p.drawPath(lids);
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawEllipse(QPointF(8, 8), 2.8, 2.8);
      break;
    }
    case Shape::Cross:
      p.setPen(Stroke(c, 2.2));
      p.drawLine(QPointF(3.5, 3.5), QPointF(12.5, 12.5));
      p.drawLine(QPointF(12.5, 3.5), QPointF(3.5, 12.5));
      break;
    case Shape::SplitH:
    case Shape::SplitV:
      p.setPen(Stroke(c, 1.2));
      p.setBrush(Qt::white);
      p.drawRect(QRectF(1.5, 2.5, 13, 11));
      p.setPen(Stroke(c, 1.6));
      if (shape == Shape::SplitH)
      {
        p.drawLine(QPointF(8, 2.5), QPointF(8, 13.5));
      }
      else
      {
        p.drawLine(QPointF(1.5, 8), QPointF(14.5, 8));
      }
      break;
    case Shape::Play:
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawPolygon(QPolygonF({ QPointF(4, 2), QPointF(14, 8), QPointF(4, 14) }));
      break;
    case Shape::Target:
      p.setBrush(Qt::NoBrush);
      p.setPen(Stroke(c, 1.4));
      p.drawEllipse(QPointF(8, 8), 6.3, 6.3);
      p.drawEllipse(QPointF(8, 8), 3.5, 3.5);
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawEllipse(QPointF(8, 8), 1.3, 1.3);
      break;
    case Shape::Undo:
    {
      QPainterPath arc;
      arc.moveTo(4, 6);
      arc.lineTo(10, 6);
      arc.cubicTo(15, 6, 15, 14, 10, 14);
      arc.lineTo(6, 14);
      p.setPen(Stroke(c, 1.8));
      p.setBrush(Qt::NoBrush);
      p.drawPath(arc);
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawPolygon(QPolygonF({ QPointF(1, 6), QPointF(5.5, 2), QPointF(5.5, 10) }));
      break;
    }
    case Shape::Gradient:
    {
      QLinearGradient ramp(QPointF(1, 0), QPointF(15, 0));
      ramp.setColorAt(0.0, QColor(59, 76, 192));
      ramp.setColorAt(0.5, QColor(221, 221, 221));
      ramp.setColorAt(1.0, QColor(180, 4, 38));
      p.setPen(Stroke(c, 1));
      p.setBrush(ramp);
      p.drawRect(QRectF(1.5, 4.5, 13, 7));
      break;
    }
    case Shape::Invert:
      p.setPen(Stroke(c, 1));
      p.setBrush(Qt::white);
      p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
      p.setBrush(c);
      p.drawPie(QRectF(1.5, 1.5, 13, 13), 90 * 16, 180 * 16);
      break;
    case Shape::ScaleArrows:
      p.setPen(Stroke(c, 1.5));
      p.drawLine(QPointF(2, 5), QPointF(14, 5));
      p.drawLine(QPointF(2, 5), QPointF(4.5, 2.5));
      p.drawLine(QPointF(2, 5), QPointF(4.5, 7.5));
      p.drawLine(QPointF(14, 5), QPointF(11.5, 2.5));
      p.drawLine(QPointF(14, 5), QPointF(11.5, 7.5));
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawRect(QRectF(2, 10, 12, 4));
      break;
    case Shape::Range:
      p.setPen(Stroke(c, 1.5));
      p.drawLine(QPointF(2, 3), QPointF(2, 13));
      p.drawLine(QPointF(14, 3), QPointF(14, 13));
      p.setPen(Qt::NoPen);
      p.setBrush(light);
      p.drawRect(QRectF(2, 6, 12, 4));
      p.setBrush(c);
      p.drawRect(QRectF(5, 6, 6, 4));
      break;
    case Shape::Floppy:
      p.setPen(Stroke(c.darker(130), 1));
      p.setBrush(c);
      p.drawRect(QRectF(1.5, 1.5, 13, 13));
      p.setBrush(Qt::white);
      p.drawRect(QRectF(4, 1.5, 8, 5));
      p.setBrush(light);
      p.drawRect(QRectF(3.5, 9, 9, 5.5));
      break;
    case Shape::Grid:
      p.setPen(Stroke(c.lighter(130), 0.8));
      for (int i = 1; i < 4; ++i)
      {
        p.drawLine(QPointF(2 + 3.3 * i, 2), QPointF(2 + 3.3 * i, 14));
        p.drawLine(QPointF(2, 14 - 3.3 * i), QPointF(14, 14 - 3.3 * i));
      }
      p.setPen(Stroke(c, 1.6));
      p.drawLine(QPointF(2, 2), QPointF(2, 14));
      p.drawLine(QPointF(2, 14), QPointF(14, 14));
      break;
    case Shape::Chain:
      p.setPen(Stroke(c, 1.6));
      p.setBrush(Qt::NoBrush);
      p.drawRoundedRect(QRectF(1.5, 5, 8, 6), 3, 3);
      p.drawRoundedRect(QRectF(6.5, 5, 8, 6), 3, 3);
      break;
    case Shape::AxisView:
    {
      const bool minus = letter != nullptr && letter[0] == '-';
      p.setPen(Stroke(c.darker(130), 1));
      p.setBrush(minus ? QBrush(Qt::white) : QBrush(c));
      p.drawRoundedRect(QRectF(1, 1, 14, 14), 3, 3);
      DrawLetter(p, QRectF(0.5, 1, 15, 14), letter, minus ? c.darker(120) : QColor(Qt::white),
                 0.62);
      break;
    }
    case Shape::Picture:
      p.setPen(Stroke(c, 1.2));
      p.setBrush(Qt::white);
      p.drawRect(QRectF(1.5, 2.5, 13, 11));
      p.setPen(Qt::NoPen);
      p.setBrush(QColor(0xff, 0xb3, 0x00));
      p.drawEllipse(QPointF(11, 5.5), 1.6, 1.6);
      p.setBrush(QColor(0x43, 0xa0, 0x47));
      p.drawPolygon(QPolygonF({ QPointF(2.2, 12.8), QPointF(6, 6.5), QPointF(9, 10.5),
                                QPointF(10.5, 8.5), QPointF(13.8, 12.8) }));
      break;
    case Shape::RotateCw:
    case Shape::RotateCcw:
    {
      const bool clockwise = shape == Shape::RotateCw;
      p.save();
      if (!clockwise)
      {
        // the mirror image turns the other way
        p.translate(16, 0);
        p.scale(-1, 1);
      }
      p.setPen(Stroke(c, 1.8));
      p.setBrush(Qt::NoBrush);
      // three quarters of a circle, open at the top right, ending in an arrow head
      p.drawArc(QRectF(2.5, 3, 11, 11), 60 * 16, 270 * 16);
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawPolygon(QPolygonF({ QPointF(9.2, 0.8), QPointF(13.2, 3.6), QPointF(8.6, 6.4) }));
      p.restore();
      break;
    }
    case Shape::FitAll:
      p.setPen(Stroke(c, 1.5));
      p.setBrush(Qt::NoBrush);
      for (const QPointF& corner :
           { QPointF(1.5, 1.5), QPointF(14.5, 1.5), QPointF(1.5, 14.5), QPointF(14.5, 14.5) })
      {
        const qreal dx = corner.x() < 8 ? 4 : -4;
        const qreal dy = corner.y() < 8 ? 4 : -4;
        p.drawLine(corner, corner + QPointF(dx, 0));
        p.drawLine(corner, corner + QPointF(0, dy));
      }
      p.setPen(Stroke(c.lighter(140), 1));
      p.setBrush(c.lighter(170));
      p.drawRect(QRectF(5, 5, 6, 6));
      break;
    case Shape::Crosshair:
      p.setPen(Stroke(c, 1.3));
      p.setBrush(Qt::NoBrush);
      p.drawEllipse(QPointF(8, 8), 4.8, 4.8);
      p.drawLine(QPointF(8, 0.8), QPointF(8, 5));
      p.drawLine(QPointF(8, 11), QPointF(8, 15.2));
      p.drawLine(QPointF(0.8, 8), QPointF(5, 8));
      p.drawLine(QPointF(11, 8), QPointF(15.2, 8));
      p.setPen(Qt::NoPen);
      p.setBrush(c);
      p.drawEllipse(QPointF(8, 8), 1.5, 1.5);
      break;
    case Shape::PointerDot:
    case Shape::PointerCell:
    {
      p.setPen(Stroke(c.darker(120), 1));
      if (shape == Shape::PointerDot)
      {
        p.setBrush(c);
        p.drawEllipse(QPointF(4.5, 4.5), 3.2, 3.2);
      }
      else
      {
        p.setBrush(c.lighter(130));
        p.drawRect(QRectF(1, 1, 8, 8));
      }
      // the mouse pointer, tip on the point or cell
      const QPolygonF pointer({ QPointF(5.5, 5.5), QPointF(5.5, 15), QPointF(8.2, 12.3),
                                QPointF(10.2, 15.5), QPointF(11.8, 14.7), QPointF(9.8, 11.5),
                                QPointF(13.5, 11.2) });
      p.setPen(Stroke(Qt::black, 0.9));
      p.setBrush(Qt::white);
      p.drawPolygon(pointer);
      break;
    }
    case Shape::Pencil:
    {
      p.save();
      p.translate(8, 8);
      p.rotate(45);
      p.setPen(Stroke(c.darker(150), 0.9));
      p.setBrush(c);
      p.drawRect(QRectF(-2, -7, 4, 10));
      p.setBrush(QColor(0xf0, 0xd0, 0xa0));
      p.drawPolygon(QPolygonF({ QPointF(-2, 3), QPointF(2, 3), QPointF(0, 7) }));
      p.setBrush(QColor(0xe5, 0x73, 0x73));
      p.drawRect(QRectF(-2, -8.5, 4, 1.8));
      p.restore();
      break;
    }
  }
}

QIcon MakeIcon(const std::function<void(QPainter&)>& draw)
{
  QIcon icon;
  for (const int side : { 16, 24, 32, 64 })
  {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.scale(side / 16.0, side / 16.0);
    draw(painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

QIcon MakeFallbackIcon()
{
  return MakeIcon(
    [](QPainter& p)
    {
      p.setPen(Qt::NoPen);
      p.setBrush(QColor(255, 0, 255));
      p.drawRect(QRectF(0, 0, 16, 16));
      DrawLetter(p, QRectF(0, 0, 16, 16), "?", Qt::black);
    });
}

QMutex s_CacheMutex;
QHash<QString, QIcon>& Cache()
{
  static QHash<QString, QIcon> s_Cache;
  return s_Cache;
}
} // namespace

QIcon KXStyle::generateThemeIconFromName(const QString& name)
{
  QMutexLocker lock(&s_CacheMutex);
  auto found = Cache().constFind(name);
  if (found != Cache().constEnd())
  {
    return found.value();
  }
  QIcon icon;
  if (const auto recipe = FindRecipe(name))
  {
    icon =
      MakeIcon([&recipe](QPainter& p)
               { DrawRecipe(p, recipe->shape, QColor::fromRgba(recipe->color), recipe->letter); });
  }
  else
  {
    icon = MakeFallbackIcon();
  }
  Cache().insert(name, icon);
  return icon;
}

bool KXStyle::hasThemeIcon(const QString& name)
{
  return FindRecipe(name).has_value();
}

QStringList KXStyle::iconNames()
{
  QStringList names;
  for (const IconRecipe& recipe : k_Recipes)
  {
    names.append(QLatin1String(recipe.name));
  }
  return names;
}

QIcon KXStyle::fallbackIcon()
{
  static const QIcon s_Fallback = MakeFallbackIcon();
  return s_Fallback;
}

QSize KXStyle::getIconSize()
{
  return QSize(16, 16);
}

QColor KXStyle::getLightRedColor()
{
  return QColor(255, 180, 180);
}

QColor KXStyle::getDefaultTextColor()
{
  return QColor(33, 33, 33);
}
