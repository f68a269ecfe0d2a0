#pragma once

#include "DisplayDocument.h"
#include "TagPaint.h"

#include <QString>

namespace vmk {

/// Puts a tag of the user's list into the book.
///
/// The tag goes in place of the caret or in front of the selected text, which stays; selected lines get it on
/// a line of its own before them. With the caret inside a tag, only the words of the tag go in, as one adds
/// an attribute. What was put in at a selection is selected afterwards.
/// @param line      the tag as it is in the list
/// @param paint     how tags are painted
/// @param closeTags adds the end tag after the selection, for a tag that needs one
void InsertTagFromList(DisplayDocument& document, const QString& line, bool closeTags, const TagPaint& paint);

} // namespace vmk
