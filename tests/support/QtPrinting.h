#pragma once

#include <QString>

#include <ostream>

/// Prints texts readably in failed checks.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
