#include "TextFunctions.h"

#include "Chance.h"
#include "RegExp.h"

#include <algorithm>
#include <cmath>

namespace vmk {
namespace {

// ---------------------------------------------------------------- common to byte strings and text

constexpr char SmallLetter(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool Equal(std::string_view a, std::string_view b, bool ignoreCase)
{
    if (!ignoreCase)
        return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return SmallLetter(x) == SmallLetter(y); });
}

bool Equal(QStringView a, QStringView b, bool ignoreCase)
{
    return a.compare(b, ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive) == 0;
}

size_t FindIgnoringCase(std::string_view text, std::string_view sought, size_t from)
{
    const char small = SmallLetter(sought.front());
    const bool letter = small >= 'a' && small <= 'z';
    const char both[] = {small, letter ? static_cast<char>(small - ('a' - 'A')) : small};
    for (; from + sought.size() <= text.size(); ++from) {
        from = letter ? text.find_first_of(std::string_view(both, 2), from) : text.find(small, from);
        if (from == std::string_view::npos)
            break;
        if (Equal(text.substr(from, sought.size()), sought, true))
            return from;
    }
    return std::string_view::npos;
}

/// The position at or after `from`, or -1.
qsizetype Find(std::string_view text, std::string_view sought, qsizetype from, bool ignoreCase)
{
    return static_cast<qsizetype>(FindText(text, sought, static_cast<size_t>(from), ignoreCase));
}

qsizetype Find(QStringView text, QStringView sought, qsizetype from, bool ignoreCase)
{
    return FindText(text, sought, from, ignoreCase);
}

qsizetype Length(std::string_view text)
{
    return static_cast<qsizetype>(text.size());
}

qsizetype Length(QStringView text)
{
    return text.size();
}

std::string_view Part(std::string_view text, qsizetype from, qsizetype length)
{
    return text.substr(static_cast<size_t>(from), static_cast<size_t>(length));
}

QStringView Part(QStringView text, qsizetype from, qsizetype length)
{
    return text.mid(from, length);
}

std::string Joined(std::string_view first, std::string_view second)
{
    return std::string(first).append(second);
}

QString Joined(QStringView first, QStringView second)
{
    return first.toString().append(second);
}

// ---------------------------------------------------------------- replacing

/// Compacts a text in its own memory: the kept parts move towards the beginning.
template <typename String>
class Compaction
{
public:
    /// Everything before `begin` is unchanged.
    Compaction(String& string, qsizetype begin)
        : text(string)
        , data(string.data())
        , written(begin)
    {
    }

    void keep(qsizetype from, qsizetype to)
    {
        std::move(data + from, data + to, data + written);
        written += to - from;
    }

    template <typename View>
    void put(View piece)
    {
        std::copy(piece.begin(), piece.end(), data + written);
        written += Length(piece);
    }

    void finish() { text.resize(static_cast<decltype(text.size())>(written)); }

private:
    String& text;
    decltype(std::declval<String&>().data()) data;
    qsizetype written;
};

template <typename String, typename View>
String ReplaceByShorter(String text, View sought, View replacement, bool ignoreCase, qsizetype found)
{
    const qsizetype size = Length(text);
    Compaction<String> result(text, found);
    while (found >= 0) {
        result.put(replacement);
        const qsizetype after = found + Length(sought);
        found = Find(View(text), sought, after, ignoreCase);
        result.keep(after, found < 0 ? size : found);
    }
    result.finish();
    return text;
}

template <typename String, typename View>
String ReplaceByLonger(const String& text, View sought, View replacement, bool ignoreCase, qsizetype found)
{
    const View all(text);
    String result;
    result.reserve(text.size() + text.size() / 8);
    qsizetype after = 0;
    while (found >= 0) {
        result.append(Part(all, after, found - after)).append(replacement);
        after = found + Length(sought);
        found = Find(all, sought, after, ignoreCase);
    }
    result.append(Part(all, after, Length(all) - after));
    return result;
}

template <typename String, typename View>
String Replace(String text, View sought, View replacement, bool ignoreCase)
{
    const qsizetype found = sought.empty() ? -1 : Find(View(text), sought, 0, ignoreCase);
    if (found < 0)
        return text;
    if (Length(replacement) <= Length(sought))
        return ReplaceByShorter(std::move(text), sought, replacement, ignoreCase, found);
    return ReplaceByLonger(text, sought, replacement, ignoreCase, found);
}

// ---------------------------------------------------------------- collapsing

/// Whether an occurrence can overlap the next one: the unit begins with a part with which it ends.
template <typename View>
bool OverlapsItself(View unit, bool ignoreCase)
{
    const qsizetype size = Length(unit);
    for (qsizetype border = 1; border < size; ++border) {
        if (Equal(Part(unit, 0, border), Part(unit, size - border, border), ignoreCase))
            return true;
    }
    return false;
}

/// One pass instead of many, for units that never overlap themselves: each run is independent of the text
/// around it, and replacing it by one unit does not create a new run.
template <typename String, typename View>
String CollapseRuns(String text, View unit, bool ignoreCase)
{
    const String twoUnits = Joined(unit, unit);
    const View pair(twoUnits);
    qsizetype found = Find(View(text), pair, 0, ignoreCase);
    if (found < 0)
        return text;
    const qsizetype size = Length(text);
    const qsizetype step = Length(unit);
    Compaction<String> result(text, found);
    while (found >= 0) {
        qsizetype after = found + 2 * step;
        while (after + step <= size && Equal(Part(View(text), after, step), unit, ignoreCase))
            after += step;
        result.put(unit);
        found = Find(View(text), pair, after, ignoreCase);
        result.keep(after, found < 0 ? size : found);
    }
    result.finish();
    return text;
}

template <typename String, typename View>
String Collapse(String text, View unit, View separator, bool ignoreCase)
{
    if (separator.empty() && !unit.empty() && !OverlapsItself(unit, ignoreCase))
        return CollapseRuns(std::move(text), unit, ignoreCase);
    const String repeated = Joined(View(Joined(unit, separator)), unit);
    for (;;) {
        const auto before = text.size();
        text = Replace(std::move(text), View(repeated), unit, ignoreCase);
        if (text.size() == before)
            return text;
    }
}

// ---------------------------------------------------------------- searching

template <typename View>
qsizetype CountIn(View text, View sought, bool ignoreCase)
{
    if (sought.empty())
        return 0;
    qsizetype count = 0;
    for (qsizetype found = Find(text, sought, 0, ignoreCase); found >= 0;
         found = Find(text, sought, found + Length(sought), ignoreCase))
        ++count;
    return count;
}

constexpr bool IsBlankCharacter(char16_t c)
{
    return c == 9 || c == 10 || c == 13 || c == 32 || c == 160;
}

/// Blanks are removed first, so that an "&nbsp;" with blanks inside counts too.
template <typename View, typename ToCode>
bool IsBlankText(View text, bool countNbsp, ToCode toCode)
{
    constexpr std::u16string_view Nbsp = u"&nbsp;";
    size_t matched = 0;
    for (const auto character : text) {
        const char16_t code = toCode(character);
        if (IsBlankCharacter(code))
            continue;
        if (!countNbsp || code != Nbsp[matched])
            return false;
        matched = (matched + 1) % Nbsp.size();
    }
    return matched == 0;
}

// ---------------------------------------------------------------- regular expressions

/// Converts bytes to the characters with the same numbers, and back.
QString FromBytes(std::string_view bytes)
{
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string ToBytes(const QString& text)
{
    return text.toLatin1().toStdString();
}

RegExp GlobalExpression(const QString& pattern, bool matchCase, bool multiLine = false)
{
    RegExp expression;
    expression.Pattern = pattern;
    expression.IgnoreCase = !matchCase;
    expression.Global = true;
    expression.MultiLine = multiLine;
    return expression;
}

QString ReplaceMatches(const RegExp& expression, QStringView text, QStringView replacement, int32_t* count)
{
    qsizetype replaced = 0;
    const auto result = expression.Replace(text, replacement, &replaced);
    if (count)
        *count = static_cast<int32_t>(replaced);
    return result ? *result : text.toString();
}

} // namespace

size_t FindText(std::string_view text, std::string_view sought, size_t from, bool ignoreCase)
{
    if (ignoreCase && !sought.empty())
        return FindIgnoringCase(text, sought, from);
    return text.find(sought, from);
}

qsizetype FindText(QStringView text, QStringView sought, qsizetype from, bool ignoreCase)
{
    return text.indexOf(sought, from, ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

std::string ReplaceAll(std::string text, std::string_view sought, std::string_view replacement,
                       bool ignoreCase)
{
    return Replace(std::move(text), sought, replacement, ignoreCase);
}

QString ReplaceAll(QString text, QStringView sought, QStringView replacement, bool ignoreCase)
{
    return Replace(std::move(text), sought, replacement, ignoreCase);
}

std::string RegExpReplace(std::string_view text, std::string_view pattern, std::string_view replacement,
                          bool matchCase, int32_t* count, bool multiLine)
{
    RegExp expression = GlobalExpression(FromBytes(pattern), matchCase, multiLine);
    expression.ByteText = true;
    return ToBytes(ReplaceMatches(expression, FromBytes(text), FromBytes(replacement), count));
}

QString RegExpReplace(QStringView text, QStringView pattern, QStringView replacement, bool matchCase,
                      int32_t* count, bool multiLine)
{
    return ReplaceMatches(GlobalExpression(pattern.toString(), matchCase, multiLine), text, replacement,
                          count);
}

int32_t RegExpCount(std::string_view pattern, std::string_view text, bool matchCase)
{
    RegExp expression = GlobalExpression(FromBytes(pattern), matchCase);
    expression.ByteText = true;
    return static_cast<int32_t>(expression.Count(FromBytes(text)).value_or(0));
}

int32_t RegExpCount(QStringView pattern, QStringView text, bool matchCase)
{
    return static_cast<int32_t>(GlobalExpression(pattern.toString(), matchCase).Count(text).value_or(0));
}

std::string CollapseRepeats(std::string text, std::string_view unit, std::string_view separator,
                            bool ignoreCase)
{
    return Collapse(std::move(text), unit, separator, ignoreCase);
}

QString CollapseRepeats(QString text, QStringView unit, QStringView separator, bool ignoreCase)
{
    return Collapse(std::move(text), unit, separator, ignoreCase);
}

size_t CountOccurrences(std::string_view text, std::string_view sought, bool ignoreCase)
{
    if (sought.size() == 1 && !ignoreCase)
        return static_cast<size_t>(std::count(text.begin(), text.end(), sought.front()));
    return static_cast<size_t>(CountIn(text, sought, ignoreCase));
}

qsizetype CountOccurrences(QStringView text, QStringView sought, bool ignoreCase)
{
    return CountIn(text, sought, ignoreCase);
}

bool IsBlank(std::string_view text, bool countNbsp)
{
    return IsBlankText(text, countNbsp, [](char byte) { return char16_t{static_cast<unsigned char>(byte)}; });
}

bool IsBlank(QStringView text, bool countNbsp)
{
    return IsBlankText(text, countNbsp, [](QChar c) { return c.unicode(); });
}

std::string_view TrimBlanks(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

QStringView TrimBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.sliced(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), SmallLetter);
    return text;
}

int32_t RandomBelow(double n)
{
    return static_cast<int32_t>(std::lround(RandomFraction() * n));
}

QString GroupDigits(int64_t number)
{
    QString digits = QString::number(number);
    const qsizetype first = number < 0 ? 1 : 0;
    for (qsizetype at = digits.size() - 3; at > first; at -= 3)
        digits.insert(at, u' ');
    return digits;
}

QString TitleCase(QStringView text)
{
    QStringList words;
    for (const QStringView word : text.split(u' ', Qt::SkipEmptyParts)) {
        const qsizetype first = word.front().isHighSurrogate() && word.size() > 1 ? 2 : 1;
        words.append(word.left(first).toString().toUpper() + word.mid(first).toString().toLower());
    }
    return words.join(u' ');
}

void FindInArray(const QStringList& list, QString& value, const QString& fallback)
{
    if (!list.contains(value))
        value = fallback;
}

} // namespace vmk
