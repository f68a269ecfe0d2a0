#pragma once

#include <QString>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace vmk {

/// A list of paths in a file, read one by one.
class NameList
{
public:
    /// \param file       the system path of the list; "-" for standard input
    /// \param mark  the character after each path: LF or NUL
    NameList(const std::string& file, char mark);

    /// The system's error message if the list cannot be opened or read; empty otherwise.
    [[nodiscard]] const QString& problem() const { return failure; }
    /// Returns the next path that is not empty; nothing at the end.
    [[nodiscard]] std::optional<std::string> next();

private:
    struct Closer
    {
        void operator()(std::FILE* file) const;
    };

    std::unique_ptr<std::FILE, Closer> list;
    char separator;
    QString failure;
};

} // namespace vmk
