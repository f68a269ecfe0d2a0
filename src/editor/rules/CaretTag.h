#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <string_view>

/// The tag under the caret, and what the context menu does with it. A tag is text of the display, so it is
/// found by its angle brackets, at most 50 characters away on either side.
namespace vmk {

/// The tag under the caret, as the last right click found it.
struct CaretTag
{
    QString text; ///< With its angle brackets; empty when there is no tag.
    QString href; ///< What stands behind the last "#" of `href`.
    QString id;
    QString name; ///< The first word, without angle brackets.

    /// The tag has a link or an id.
    [[nodiscard]] bool hasTarget() const { return !href.isEmpty() || !id.isEmpty(); }
    [[nodiscard]] bool isImage() const { return name.contains(u"image", Qt::CaseInsensitive); }
    /// Every tag with a link whose name begins with that letter counts, which is meant.
    [[nodiscard]] bool isLink() const
    {
        return !href.isEmpty() && name.startsWith(u'a', Qt::CaseInsensitive);
    }
};

/// Reads the tag around the selection.
[[nodiscard]] CaretTag GetTagUnderCaret(DisplayDocument& document);

/// Reads a tag's link, id and name out of its text.
[[nodiscard]] CaretTag ParseTagAttributes(const QString& tag);

/// The entries of the context menu that fit a tag.
struct TagEntries
{
    bool goToLink = false;
    bool checkId = false;
    bool showImage = false;
    bool removeImageResource = false;
    bool addImageResource = false;

    friend bool operator==(const TagEntries&, const TagEntries&) = default;
};

/// @param binaryPart the book's resources as they stand in its file: an image whose link is the beginning of
///     one's id can be shown or removed, another one can be added.
[[nodiscard]] TagEntries EntriesFor(const CaretTag& tag, std::string_view binaryPart);

/// Selects the place with the id that the tag links to, and says in the message bar whether there is one.
void GoToBookmark(DisplayDocument& document, const CaretTag& tag);

/// Says in the message bar whether the tag's id stands a second time in the book, in text too.
void CheckId(DisplayDocument& document, const CaretTag& tag);

} // namespace vmk
