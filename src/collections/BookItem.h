#pragma once

#include "Files.h"
#include "ZipArchive.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace vmk {

/// A book of a collection, or the reason why there is none.
struct BookItem
{
    /// As in results: the path, or "ARCHIVE:MEMBER", in the form of `FileNames.h`.
    QString name;
    /// Why the book, archive or folder cannot be read; there is then no content. Empty otherwise.
    QString failure;
    /// The path of the file in the bytes of the system; "-" for standard input; empty for a member.
    std::string path;
    /// The member of an archive; set by `BookWalk::load`.
    std::optional<PackedMember> packed;
    /// The path of the result of a command that writes, in the bytes of the system; empty if there is none.
    std::string output;

    /// Reads or unpacks the book.
    [[nodiscard]] FileContent content() const;

    /// Returns the item as bytes for another process, and the item of such bytes.
    [[nodiscard]] std::string toBytes() const;
    [[nodiscard]] static BookItem ofBytes(std::string_view bytes);
};

/// Returns the text of a path in the bytes of the system.
[[nodiscard]] QString NameOfPath(const std::string& systemPath);

} // namespace vmk
