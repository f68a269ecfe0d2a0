#include "HtmlElements.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vmk {

namespace {

struct Element
{
    std::u16string_view name;
    ElementKind kind;
};

using enum ElementKind;

constexpr std::array Elements = std::to_array<Element>({
    {u"ADDRESS", Block},      {u"AREA", Void},        {u"ARTICLE", Container}, {u"ASIDE", Container},
    {u"BASE", Ignored},       {u"BASEFONT", Ignored}, {u"BLOCKQUOTE", Block},  {u"BODY", Body},
    {u"BR", Break},           {u"CAPTION", Block},    {u"CENTER", Block},      {u"COL", Void},
    {u"COLGROUP", Container}, {u"DD", Block},         {u"DIR", Container},     {u"DIV", Block},
    {u"DL", Container},       {u"DT", Block},         {u"EMBED", Void},        {u"FIELDSET", Container},
    {u"FIGCAPTION", Block},   {u"FIGURE", Container}, {u"FOOTER", Container},  {u"FORM", Container},
    {u"FRAME", Void},         {u"FRAMESET", Ignored}, {u"H1", Block},          {u"H2", Block},
    {u"H3", Block},           {u"H4", Block},         {u"H5", Block},          {u"H6", Block},
    {u"HEAD", Head},          {u"HEADER", Container}, {u"HR", Rule},           {u"HTML", Ignored},
    {u"IMG", Void},           {u"INPUT", Void},       {u"LEGEND", Block},      {u"LI", Block},
    {u"LINK", Ignored},       {u"MAIN", Container},   {u"MENU", Container},    {u"META", Ignored},
    {u"NAV", Container},      {u"OL", Container},     {u"OPTION", Block},      {u"P", Block},
    {u"PARAM", Void},         {u"PRE", Block},        {u"SCRIPT", Dropped},    {u"SECTION", Container},
    {u"SOURCE", Void},        {u"STYLE", Dropped},    {u"TABLE", Container},   {u"TBODY", Container},
    {u"TD", Block},           {u"TFOOT", Container},  {u"TH", Block},          {u"THEAD", Container},
    {u"TITLE", Dropped},      {u"TR", Container},     {u"TRACK", Void},        {u"UL", Container},
    {u"WBR", Void},
});

static_assert(std::is_sorted(Elements.begin(), Elements.end(),
                             [](const Element& a, const Element& b) { return a.name < b.name; }));

} // namespace

ElementKind KindOfElement(QStringView name)
{
    const std::u16string_view wanted(name.utf16(), std::size_t(name.size()));
    const auto found = std::lower_bound(
        Elements.begin(), Elements.end(), wanted,
        [](const Element& entry, std::u16string_view value) { return entry.name < value; });
    return found != Elements.end() && found->name == wanted ? found->kind : Inline;
}

bool EndsImplicitly(QStringView open, QStringView opening)
{
    const auto isOneOf = [](QStringView name, std::initializer_list<QStringView> names) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    if (open == u"P")
        return true;
    if (isOneOf(open, {u"LI", u"OPTION"}))
        return open == opening;
    if (isOneOf(open, {u"DT", u"DD"}))
        return isOneOf(opening, {u"DT", u"DD"});
    if (isOneOf(open, {u"TD", u"TH"}))
        return isOneOf(opening, {u"TD", u"TH", u"TR", u"TBODY", u"TFOOT"});
    if (open == u"TR")
        return isOneOf(opening, {u"TR", u"TBODY", u"TFOOT"});
    return false;
}

} // namespace vmk
