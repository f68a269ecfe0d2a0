#pragma once

#include "HtmlElements.h"
#include "TagTable.h"

#include <cstddef>

namespace vmk {

/// The treatment of white space by the reader of HTML.
enum class Spacing
{
    Collapse,
    Keep
};

/// The properties of a tag that the reader uses.
struct TagFacts
{
    TagId tag = NoTag; ///< The interned start tag; for an end tag, the one without attributes.
    TagId name = NoTag; ///< The interned tag with this name and without attributes: equal for equal names.
    std::size_t cost = 0; ///< What each use adds to the lines; see `HtmlLineBuilder::cost`.
    ElementKind kind = ElementKind::Inline;
    bool isEnd = false;
};

} // namespace vmk
