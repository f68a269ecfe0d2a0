#pragma once

#include <QString>

#include <ostream>

/// Texts of failed checks, readable.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
