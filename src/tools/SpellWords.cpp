#include "SpellWords.h"

#include <algorithm>
#include <array>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr char32_t SoftHyphen = 0xAD;

/// The role of a character in a word.
enum class Role
{
    Other,
    Letter,
    Capital,
    Digit,
    Companion ///< a mark or an invisible character: continues a word but does not start one
};

Role RoleOf(char32_t c)
{
    if (c == SoftHyphen)
        return Role::Companion;
    switch (QChar::category(c)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Titlecase:
        return Role::Capital;
    case QChar::Letter_Lowercase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
        return Role::Letter;
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
        return Role::Digit;
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return Role::Companion;
    default:
        return Role::Other;
    }
}

/// Returns the character at a position; a lone surrogate is itself, which is no letter.
char32_t CharacterAt(QStringView text, qsizetype i)
{
    const QChar c = text[i];
    if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(c, text[i + 1]);
    return c.unicode();
}

qsizetype UnitsOf(char32_t c)
{
    return QChar::requiresSurrogates(c) ? 2 : 1;
}

/// Returns true for letters of scripts that write words without blanks, or with endings on foreign words.
bool IsWithoutBlanks(char32_t c)
{
    constexpr char32_t FirstOfThai = 0xE00;
    if (c < FirstOfThai)
        return false;
    switch (QChar::script(c)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Hangul:
    case QChar::Script_Thai:
    case QChar::Script_Lao:
    case QChar::Script_Khmer:
    case QChar::Script_Myanmar:
        return true;
    default:
        return false;
    }
}

/// Returns true between two letters if one of them is of a script without blanks, and the other is not.
bool IsScriptBorder(QStringView text, qsizetype position)
{
    if (position <= 0 || position >= text.size())
        return false;
    qsizetype before = position - 1;
    if (before > 0 && text[before].isLowSurrogate() && text[before - 1].isHighSurrogate())
        --before;
    const char32_t left = CharacterAt(text, before);
    const char32_t right = CharacterAt(text, position);
    return QChar::isLetter(left) && QChar::isLetter(right) && IsWithoutBlanks(left) != IsWithoutBlanks(right);
}

bool IsJoiner(QChar c)
{
    return IsWordHyphen(c) || IsWordApostrophe(c);
}

bool IsLetterOrDigit(Role role)
{
    return role == Role::Letter || role == Role::Capital || role == Role::Digit;
}

/// Returns true for blanks, control characters, quotation marks and the brackets of tags, which end an
/// address.
bool EndsAddress(QChar c)
{
    return c.isSpace() || c.category() == QChar::Other_Control || c == u'<' || c == u'>' || c == u'"'
        || (c >= QChar(0x201C) && c <= QChar(0x201F)) || c == QChar(0xAB) || c == QChar(0xBB);
}

bool IsAsciiLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool IsAsciiWord(QChar c)
{
    return IsAsciiLetter(c) || (c >= u'0' && c <= u'9') || c == u'-' || c == u'_';
}

/// Returns true for the top domains of host names that are recognised without a leading "www.".
bool IsTopDomain(QStringView name)
{
    constexpr std::array Names = {"com"_L1, "org"_L1, "net"_L1, "info"_L1, "edu"_L1, "gov"_L1, "ru"_L1,
                                  "su"_L1,  "ua"_L1,  "by"_L1,  "kz"_L1,   "de"_L1,  "fr"_L1,  "uk"_L1};
    return std::ranges::any_of(Names, [&](QLatin1StringView known) { return name == known; });
}

/// Returns the start of the ASCII letters, digits, dots and similar characters that end at `end`.
qsizetype StartOfName(QStringView run, qsizetype end)
{
    while (end > 0 && (IsAsciiWord(run[end - 1]) || run[end - 1] == u'.' || run[end - 1] == u'+'))
        --end;
    return end;
}

/// Returns the start of the first `scheme://`, `mailto:` or `www.` of a run, or -1.
qsizetype FindWebAddress(QStringView run)
{
    if (const qsizetype scheme = run.indexOf("://"_L1); scheme > 0 && IsAsciiLetter(run[scheme - 1]))
        return StartOfName(run, scheme);
    if (const qsizetype mail = run.indexOf("mailto:"_L1); mail >= 0)
        return mail;
    const qsizetype www = run.indexOf("www."_L1, 0, Qt::CaseInsensitive);
    return www == 0 || (www > 0 && !IsAsciiWord(run[www - 1])) ? www : -1;
}

/// Returns the start of `name@host.domain`, or -1.
qsizetype FindMailAddress(QStringView run)
{
    const qsizetype at = run.indexOf(u'@');
    if (at <= 0 || at + 1 >= run.size() || !IsAsciiWord(run[at + 1]))
        return -1;
    const qsizetype start = StartOfName(run, at);
    return start < at && run.indexOf(u'.', at) > at ? start : -1;
}

/// Returns the start of a path with backslashes, or -1.
qsizetype FindBackslashPath(QStringView run)
{
    const qsizetype backslash = run.indexOf(u'\\');
    if (backslash < 0 || backslash + 1 == run.size())
        return -1;
    if (run[backslash + 1] == u'\\')
        return backslash;
    if (backslash == 0)
        return -1;
    const QChar before = run[backslash - 1];
    const bool isPath = before == u':' || (IsAsciiWord(before) && IsAsciiWord(run[backslash + 1]));
    return isPath ? StartOfName(run, backslash - (before == u':' ? 1 : 0)) : -1;
}

/// Returns the start of a path, or -1: `C:\books`, `\\server`, `/usr/share`, `~/books`, `./books`,
/// `books\one`, `one/two/three.txt`.
qsizetype FindPath(QStringView run)
{
    if (const qsizetype start = FindBackslashPath(run); start >= 0)
        return start;
    const qsizetype slash = run.indexOf(u'/');
    if (slash < 0)
        return -1;
    if (slash >= 2 && run[slash - 1] == u':' && IsAsciiLetter(run[slash - 2]))
        return slash - 2;
    const bool severalLevels = run.indexOf(u'/', slash + 1) > slash + 1;
    if (slash == 0 || !run[slash - 1].isLetterOrNumber()) {
        const bool isHere = slash > 0 && (run[slash - 1] == u'~' || run[slash - 1] == u'.')
            && (slash == 1 || !run[slash - 2].isLetterOrNumber());
        return severalLevels || isHere ? slash : -1;
    }
    const qsizetype dot = run.indexOf(u'.', slash);
    const bool hasExtension = dot > slash && dot + 1 < run.size() && IsAsciiWord(run[dot + 1]);
    const qsizetype start = StartOfName(run, slash);
    return hasExtension && severalLevels && start < slash ? start : -1;
}

/// Returns the start of `host.org` or `host.org/page` with a known top domain, or -1.
qsizetype FindBareHost(QStringView run)
{
    const qsizetype dot = run.indexOf(u'.');
    if (dot <= 0 || !IsAsciiWord(run[dot - 1]))
        return -1;
    const qsizetype start = StartOfName(run, dot);
    qsizetype end = dot;
    while (end < run.size() && (IsAsciiWord(run[end]) || run[end] == u'.'))
        ++end;
    const QStringView host = run.mid(start, end - start);
    QStringView name = host;
    while (name.endsWith(u'.'))
        name.chop(1);
    return IsTopDomain(name.mid(name.lastIndexOf(u'.') + 1)) ? start : -1;
}

/// Returns the start of the first address of a run, or the length of the run.
qsizetype FindAddress(QStringView run)
{
    qsizetype first = run.size();
    if (std::ranges::none_of(run, [](QChar c) { return c == u'.' || c == u'/' || c == u'\\' || c == u':'; }))
        return first;
    for (const qsizetype found :
         {FindWebAddress(run), FindMailAddress(run), FindPath(run), FindBareHost(run)}) {
        if (found >= 0)
            first = std::min(first, found);
    }
    return first;
}

} // namespace

bool IsWordHyphen(QChar c)
{
    return c == u'-' || c == QChar(0x2010) || c == QChar(0x2011);
}

bool IsWordApostrophe(QChar c)
{
    return c == u'\'' || c == QChar(0x2019) || c == QChar(0x02BC) || c == QChar(0x2032);
}

bool IsInvisibleInWord(char32_t c)
{
    return QChar::category(c) == QChar::Other_Format;
}

bool IsInCapitals(QStringView word)
{
    bool hasCapital = false;
    for (qsizetype i = 0; i < word.size();) {
        const char32_t c = CharacterAt(word, i);
        const Role role = RoleOf(c);
        if (role == Role::Letter && !IsWordApostrophe(word[i]))
            return false;
        hasCapital = hasCapital || role == Role::Capital;
        i += UnitsOf(c);
    }
    return hasCapital;
}

bool IsInsideSpellWord(QStringView text, qsizetype position)
{
    const auto roleAt = [&](qsizetype i) { return RoleOf(CharacterAt(text, i)); };
    if (position <= 0 || position >= text.size())
        return false;
    const auto roleBefore = [&](qsizetype i) {
        const bool secondHalf = i >= 2 && text[i - 1].isLowSurrogate() && text[i - 2].isHighSurrogate();
        return roleAt(i - (secondHalf ? 2 : 1));
    };
    const Role after = roleAt(position);
    if (IsScriptBorder(text, position))
        return false;
    if (IsJoiner(text[position]) && position + 1 < text.size())
        return roleBefore(position) != Role::Other && IsLetterOrDigit(roleAt(position + 1));
    if (IsJoiner(text[position - 1]) && position >= 2)
        return IsLetterOrDigit(after) && roleBefore(position - 1) != Role::Other;
    return after != Role::Other && roleBefore(position) != Role::Other;
}

bool SpellWords::next()
{
    while (at < text.size()) {
        if (at >= runEnd)
            enterRun(at);
        if (at >= addressStart) {
            at = runEnd;
            continue;
        }
        const char32_t c = CharacterAt(text, at);
        if (!IsLetterOrDigit(RoleOf(c)) || IsWordApostrophe(text[at])) {
            at += UnitsOf(c);
            continue;
        }
        takeToken();
        if (!hasDigit && !isCapitals)
            return true;
    }
    return false;
}

void SpellWords::enterRun(qsizetype from)
{
    // A separator is a run of its own, without an address.
    runEnd = from + 1;
    addressStart = runEnd;
    if (EndsAddress(text[from]))
        return;
    while (runEnd < text.size() && !EndsAddress(text[runEnd]))
        ++runEnd;
    addressStart = from + FindAddress(text.mid(from, runEnd - from));
}

void SpellWords::takeToken()
{
    wordStart = at;
    wordEnd = at;
    hasDigit = false;
    while (at < addressStart) {
        const char32_t c = CharacterAt(text, at);
        const Role role = RoleOf(c);
        const bool isJoiner = IsJoiner(text[at]);
        if (at > wordStart && IsScriptBorder(text, at))
            break;
        if (isJoiner) {
            const bool continues = at + 1 < addressStart && IsLetterOrDigit(RoleOf(CharacterAt(text, at + 1)))
                && !IsJoiner(text[at + 1]);
            if (!continues)
                break;
        } else if (role == Role::Other) {
            break;
        }
        at += UnitsOf(c);
        hasDigit = hasDigit || role == Role::Digit;
        // Invisible characters at the end are not part of the word.
        if (!isJoiner && !IsInvisibleInWord(c))
            wordEnd = at;
    }
    isCapitals = IsInCapitals(word());
}

} // namespace vmk
