#pragma once

#include <QString>
#include <QStringView>

#include <functional>
#include <string_view>

namespace vmk {

/// Decodes the bytes of a book by its byte order mark or XML declaration; if these fail, as UTF-8 if the
/// bytes are valid, otherwise as windows-1251. Accepts any bytes.
[[nodiscard]] QString DecodeBook(std::string_view bytes);

/// A word of a book's file.
struct BookWord
{
    QStringView word; ///< Its references resolved; valid during the call only.
    int line = 1; ///< From 1; a line ends with CR LF, LF or CR.
    int column = 1; ///< From 1, in characters.
};

/// The words of a book that are checked.
enum class BookMarkup
{
    LeaveOut, ///< text and attribute values
    Include ///< names of elements and attributes too
};

/// Calls `take` for each word that a spell check checks, in the order of the file. The content of `binary`
/// elements and of document type declarations is left out. The text need not be well-formed.
void ForEachBookWord(QStringView xml, BookMarkup markup, const std::function<void(const BookWord&)>& take);

} // namespace vmk
