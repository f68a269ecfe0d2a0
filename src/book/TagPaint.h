#pragma once

#include "DisplayValues.h"

#include <string_view>

namespace vmk {

// The marks around names and values of attributes in a page.
inline constexpr std::string_view NameStart = "<FONT class=n>";
inline constexpr std::string_view ValueStart = "<FONT class=v>";
inline constexpr std::string_view FontEnd = "</FONT>";
// The brackets of a comment.
inline constexpr std::string_view CommentStart = "<SPAN class=c>&lt;";
inline constexpr std::string_view CommentEnd = "&gt;</SPAN>";

/// The display of a tag of the book: the marks that represent its angle brackets.
struct TagPaint
{
    std::string_view start = "&lt;";
    std::string_view end = "&gt;";
    /// Attributes are painted too, in separate classes.
    bool attributes = false;

    /// Returns the paint for these values: highlighting, otherwise bold tags in a text that is not bold,
    /// otherwise none.
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
