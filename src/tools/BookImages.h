#pragma once

#include "PictureInfo.h"

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

/// The resources of a book: the elements of its binary part, and the references of its tags.
namespace vmk {

/// One `binary` element.
struct BookResource
{
    QString id;
    QString type; ///< The content type.
    qsizetype bytes = 0; ///< The size of the decoded content.
    bool isBase64 = true;
    bool hasBlanks = false; ///< The content is base64 with blanks, which this program does not decode.
    PictureInfo picture;
    int uses = 0; ///< The number of tags that refer to the id.
    bool isRepeated = false; ///< An earlier element has the same id.
};

struct BookResources
{
    std::vector<BookResource> resources; ///< In the order of the book.
    QStringList missing; ///< Ids to which `image` tags refer and which no element has, each once.
};

/// A book in an encoding that contains ASCII as single bytes, and the code page.
struct BookBytes
{
    std::string bytes;
    int codePage = 0;
};

/// Determines the encoding of a book; converts UTF-16 to UTF-8.
[[nodiscard]] BookBytes ReadableBook(std::string bytes);

/// Returns the part of a book from its first to its last `binary` element; empty if there is none.
[[nodiscard]] std::string_view BinaryPartOf(std::string_view book);

/// Lists the resources of a book. It uses plain searches, so that a book that is not well-formed is listed
/// too.
[[nodiscard]] BookResources ListResources(const BookBytes& book);

/// Returns why a resource cannot be decoded; empty if it can, and for content of an unknown type.
[[nodiscard]] QString DecodingProblem(const BookResource& resource);

} // namespace vmk
