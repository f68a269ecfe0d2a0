#pragma once

#include "DisplayDocument.h"

#include <QString>

/// Mark-up around the selection or at the caret: in-line tags, letter case, and painted fields.
namespace vmk {

/// The in-line tags that a command can insert.
enum class InlineTag
{
    Bold,
    Italic,
    Superscript,
    Subscript
};

/// Puts a pair of painted tags around the selection; at a caret, inserts an empty pair. Does not toggle: a
/// second call nests. One undo step.
void InsertInlineTag(DisplayDocument& document, InlineTag kind);

/// The letter cases of `ChangeCase`.
enum class LetterCase
{
    Lower,
    Upper,
    Proper
};

/// Changes the case of the selected text, including tags. The text remains selected and loses its painting.
/// "Proper" starts a word only after a blank, not after a line end. One undo step.
void ChangeCase(DisplayDocument& document, LetterCase kind);

/// The painted fields of `InsertField`.
enum class Field
{
    Text,
    Tag,
    Attribute,
    Value
};

/// Puts the selected text into a painted field, line by line. At a caret, inserts an empty field for the text
/// typed next, unless a painted piece touches the caret. Does not record an edit.
void InsertField(DisplayDocument& document, Field kind);

} // namespace vmk
