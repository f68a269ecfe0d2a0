#pragma once

#include <QString>

namespace vmk {

/// The namespace of all elements of a FictionBook 2 book.
[[nodiscard]] inline QString FictionBookNamespace()
{
    return QStringLiteral("http://www.gribuser.ru/xml/fictionbook/2.0");
}

} // namespace vmk
