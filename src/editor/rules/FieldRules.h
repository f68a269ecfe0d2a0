#pragma once

#include "DisplayDocument.h"

#include <QString>

/// Mark-up around the selection or at the caret: in-line tags, case, and painted fields.
namespace vmk {

enum class InlineTag
{
    Bold,
    Italic,
    Superscript,
    Subscript
};

/// Puts a pair of tags, painted, around the selection; at a caret an empty pair. It does not toggle: twice
/// nests. One undo step.
void InsertInlineTag(DisplayDocument& document, InlineTag kind);

enum class LetterCase
{
    Lower,
    Upper,
    Proper
};

/// Changes the case of the selected text, tags included; it stays selected, without its painting. "Proper"
/// begins a word behind a blank only, not behind a line end. One undo step.
void ChangeCase(DisplayDocument& document, LetterCase kind);

enum class Field
{
    Text,
    Tag,
    Attribute,
    Value
};

/// Puts the selected text into a painted field, line by line; at a caret makes an empty one that takes what
/// is typed next, unless a painted piece touches the caret. Notes no edit.
void InsertField(DisplayDocument& document, Field kind);

} // namespace vmk
