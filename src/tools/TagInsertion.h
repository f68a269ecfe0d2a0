#pragma once

#include "DisplayDocument.h"
#include "TagPaint.h"

#include <QString>

namespace vmk {

/// Inserts a tag of the user's list into the book.
///
/// The tag is inserted at the caret or before the selected text. Before selected lines it is inserted as a
/// separate line. If the caret is inside a tag, only the words without the brackets are inserted, as for a
/// new attribute. After an insertion at a selection within a line, the selection contains the inserted tags
/// too. \param line       the tag, as in the list \param paint      how tags are painted \param closeTags
/// also inserts the end tag after the selection, if the tag needs one
void InsertTagFromList(DisplayDocument& document, const QString& line, bool closeTags, const TagPaint& paint);

} // namespace vmk
