#pragma once

#include "PictureInfo.h"

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

/// The resources of a whole book: what its binary part holds and what its tags refer to.
namespace vmk {

/// One `binary` element.
struct BookResource
{
    QString id;
    QString type; ///< the content type
    qsizetype bytes = 0; ///< of the decoded content
    bool isBase64 = true;
    PictureInfo picture;
    int uses = 0; ///< tags whose link leads to the id
    bool isRepeated = false; ///< an earlier element has the same id
};

struct BookResources
{
    std::vector<BookResource> resources; ///< in the order of the book
    QStringList missing; ///< ids that `image` tags refer to and no element has, each once
};

/// The text of a book in an encoding of one byte or more per ASCII character, and its code page.
struct BookBytes
{
    std::string bytes;
    int codePage = 0;
};

/// A book as its declaration says; UTF-16 is turned into UTF-8.
[[nodiscard]] BookBytes ReadableBook(std::string bytes);

/// The run of `binary` elements within a book; empty without one.
[[nodiscard]] std::string_view BinaryPartOf(std::string_view book);

/// Lists the resources of a book, by plain searches: a book that is not well-formed has resources too.
[[nodiscard]] BookResources ListResources(const BookBytes& book);

/// Why a resource cannot be decoded; empty when it can, and for content of a type that is not known.
[[nodiscard]] QString DecodingProblem(const BookResource& resource);

} // namespace vmk
