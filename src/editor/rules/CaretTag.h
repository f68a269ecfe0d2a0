#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <cstdint>
#include <string_view>

/// The tag under the caret and the operations of the context menu on it. A tag is text in the display: it is
/// found by its angle brackets, at most 50 characters away on either side.
namespace vmk {

/// The tag under the caret at the last right click.
struct CaretTag
{
    QString text; ///< With its angle brackets; empty if there is no tag.
    QString href; ///< The part after the last "#" of `href`.
    QString id;
    QString name; ///< The first word, without angle brackets.

    /// The tag has a link or an id.
    [[nodiscard]] bool hasTarget() const { return !href.isEmpty() || !id.isEmpty(); }
    [[nodiscard]] bool isImage() const { return name.contains(u"image", Qt::CaseInsensitive); }
    /// Every tag with a link whose name begins with that letter counts, which is intended.
    [[nodiscard]] bool isLink() const
    {
        return !href.isEmpty() && name.startsWith(u'a', Qt::CaseInsensitive);
    }
};

/// Returns the tag around the selection.
[[nodiscard]] CaretTag GetTagUnderCaret(DisplayDocument& document);

/// Returns the link, id and name in the text of a tag.
[[nodiscard]] CaretTag ParseTagAttributes(const QString& tag);

/// The entries of the context menu that apply to a tag.
struct TagEntries
{
    bool goToLink = false;
    bool checkId = false;
    bool showImage = false;
    bool removeImageResource = false;
    bool addImageResource = false;

    friend bool operator==(const TagEntries&, const TagEntries&) = default;
};

/// \param binaryPart  the book's resources as in its file. An image whose link is the beginning of an id can
///                    be shown or removed; any other image can be added.
/// \param codePage    the code page of `binaryPart`
[[nodiscard]] TagEntries EntriesFor(const CaretTag& tag, std::string_view binaryPart, int32_t codePage);

/// Selects the id that the tag links to, and shows in the message bar whether it exists.
void GoToBookmark(DisplayDocument& document, const CaretTag& tag);

/// Shows in the message bar whether the tag's id occurs a second time in the book, in text or in a tag.
void CheckId(DisplayDocument& document, const CaretTag& tag);

} // namespace vmk
