#pragma once

#include "DisplayValues.h"

#include <string_view>

namespace vmk {

/// How the display shows a tag of the book: the marks that stand for its angle brackets.
struct TagPaint
{
    std::string_view start = "&lt;";
    std::string_view end = "&gt;";
    /// Attributes are painted too, in classes of their own.
    bool attributes = false;

    /// The paint that these values ask for: highlighting, else bold tags in a text that is not bold, else
    /// none.
    [[nodiscard]] static TagPaint Of(const DisplayValues& values)
    {
        if (values.tagHighlighting)
            return {"<SPAN class=t>&lt;", "&gt;</SPAN>", true};
        if (values.tagFontWeight == "bold" && values.fontWeight != "bold")
            return {"<B>&lt;", "&gt;</B>", false};
        return {};
    }
};

} // namespace vmk
