#pragma once

#include <optional>
#include <string_view>

/// The units and end points of text ranges, and their names in the editing rules.
namespace vmk {

/// The units by which a range is moved and extended.
enum class TextUnit
{
    Character, ///< a line break is one; a position inside a surrogate pair is skipped
    Word, ///< letters and digits, or other signs, with the blanks after them; a line break is one
    Textedit ///< the whole document
};

/// The position next to an element at which HTML is inserted.
enum class Adjacent
{
    BeforeBegin,
    AfterEnd
};

/// Two end points: the first of one range, the second of the other.
enum class EndPoints
{
    StartToStart,
    StartToEnd,
    EndToStart,
    EndToEnd
};

namespace detail {

constexpr bool IsSameName(std::u16string_view a, std::u16string_view b)
{
    const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + u'a' - u'A') : c; };
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i]))
            return false;
    }
    return true;
}

} // namespace detail

/// Returns the unit with this name, in any case; nothing for an unknown one.
[[nodiscard]] constexpr std::optional<TextUnit> TextUnitNamed(std::u16string_view name)
{
    if (detail::IsSameName(name, u"character"))
        return TextUnit::Character;
    if (detail::IsSameName(name, u"word"))
        return TextUnit::Word;
    if (detail::IsSameName(name, u"textedit"))
        return TextUnit::Textedit;
    return std::nullopt;
}

/// Returns the end points with this name, in any case; nothing for an unknown one.
[[nodiscard]] constexpr std::optional<EndPoints> EndPointsNamed(std::u16string_view name)
{
    if (detail::IsSameName(name, u"StartToStart"))
        return EndPoints::StartToStart;
    if (detail::IsSameName(name, u"StartToEnd"))
        return EndPoints::StartToEnd;
    if (detail::IsSameName(name, u"EndToStart"))
        return EndPoints::EndToStart;
    if (detail::IsSameName(name, u"EndToEnd"))
        return EndPoints::EndToEnd;
    return std::nullopt;
}

/// A literal such as `u"character"` as an argument. A name that does not exist does not compile.
struct TextUnitName
{
    TextUnit unit;
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is meant to convert.
    consteval TextUnitName(const char16_t* name)
        : unit(TextUnitNamed(name).value())
    {
    }
};

/// The same for literals such as `u"StartToEnd"`.
struct EndPointsName
{
    EndPoints ends;
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is meant to convert.
    consteval EndPointsName(const char16_t* name)
        : ends(EndPointsNamed(name).value())
    {
    }
};

} // namespace vmk
