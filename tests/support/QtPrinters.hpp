#pragma once

// Readable GoogleTest failure messages for the Qt value types the tests compare.
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
  *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* os)
{
  *os << '[' << texts.join(QStringLiteral(", ")).toStdString() << ']';
}

inline void PrintTo(const QColor& color, std::ostream* os)
{
  *os << color.name(QColor::HexArgb).toStdString();
}
