#include "RegExpSyntax.h"

#include <QChar>
#include <QString>

#include <vector>

namespace vmk {

using namespace Qt::StringLiterals;

namespace {

bool IsDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool IsOctalDigit(QChar c)
{
    return c >= u'0' && c <= u'7';
}

bool IsAsciiLetter(QChar c)
{
    const auto small = static_cast<char16_t>(c.unicode() | 0x20);
    return small >= u'a' && small <= u'z';
}

/// Counts the capturing groups: they determine the meaning of `\1`.
int CountGroups(QStringView pattern)
{
    int groups = 0;
    bool inClass = false;
    for (qsizetype at = 0; at < pattern.size(); ++at) {
        const QChar c = pattern[at];
        if (c == u'\\')
            ++at;
        else if (inClass)
            inClass = c != u']';
        else if (c == u'[')
            inClass = true;
        else if (c == u'(' && !pattern.mid(at + 1).startsWith(u'?'))
            ++groups;
    }
    return groups;
}

/// The meaning of a plain character or an escape.
struct Atom
{
    enum Kind
    {
        Character,
        Set,
        Anchor,
        BackReference
    };

    Kind kind = Character;
    /// The character, or the number of the group.
    char32_t value = 0;
    /// For sets and anchors, the letter after the backslash; the engine uses the same one.
    QChar letter;
};

class Translator
{
public:
    Translator(QStringView source, bool checkPoints)
        : pattern(source)
        , groupCount(CountGroups(source))
        , writesCheckPoints(checkPoints)
    {
    }

    std::optional<EnginePattern> translate();

private:
    [[nodiscard]] bool atEnd() const { return at >= pattern.size(); }
    [[nodiscard]] bool ahead(QStringView text) const { return pattern.mid(at).startsWith(text); }
    [[nodiscard]] qsizetype quantifierLength() const;
    [[nodiscard]] bool posixClassAhead() const;

    bool readTerm();
    bool openGroup();
    bool closeGroup();
    bool readQuantifier();
    bool readClass();
    bool readClassItem();
    std::optional<Atom> readAtom(bool inClass);
    std::optional<Atom> readEscape(bool inClass);
    Atom readNumber(bool inClass);
    std::optional<char32_t> readHex(qsizetype digits);
    char32_t readCodeUnits();
    char32_t readPlain();

    void writeCharacter(char32_t c);
    void writeAtom(const Atom& atom);
    void addChoice();

    QStringView pattern;
    qsizetype at = 0;
    int groupCount;
    bool writesCheckPoints;
    /// A quantifier is allowed after the last item.
    bool quantifiable = false;
    /// For each open group, innermost last: whether it has alternatives.
    std::vector<bool> branches;
    EnginePattern result;
};

std::optional<EnginePattern> Translator::translate()
{
    while (!atEnd()) {
        if (!readTerm())
            return std::nullopt;
    }
    if (!branches.empty())
        return std::nullopt;
    result.groupCount = groupCount;
    return std::move(result);
}

bool Translator::readTerm()
{
    const QChar c = pattern[at];
    if (quantifierLength() > 0)
        return readQuantifier();
    switch (c.unicode()) {
    case u'(':
        return openGroup();
    case u')':
        return closeGroup();
    case u'[':
        return readClass();
    case u'|':
        if (!branches.empty())
            branches.back() = true;
        [[fallthrough]];
    case u'^':
    case u'$':
        quantifiable = false;
        break;
    case u'.':
        quantifiable = true;
        break;
    default:
        if (const auto atom = readAtom(false)) {
            writeAtom(*atom);
            quantifiable = atom->kind != Atom::Anchor;
            return true;
        }
        return false;
    }
    result.text += c;
    ++at;
    return true;
}

bool Translator::openGroup()
{
    QStringView opening = u"(";
    for (const QStringView special : {QStringView(u"(?:"), QStringView(u"(?="), QStringView(u"(?!")}) {
        if (ahead(special))
            opening = special;
    }
    if (opening.size() == 1 && (ahead(u"(?") || ahead(u"(*")))
        return false;
    result.text += opening;
    at += opening.size();
    branches.push_back(false);
    quantifiable = false;
    return true;
}

bool Translator::closeGroup()
{
    if (branches.empty())
        return false;
    result.text += u')';
    ++at;
    const bool branched = branches.back();
    branches.pop_back();
    quantifiable = true;
    if (branched && quantifierLength() == 0)
        addChoice();
    return true;
}

/// The length of the quantifier here, without the "?" of a lazy one; 0 if there is none.
qsizetype Translator::quantifierLength() const
{
    if (atEnd())
        return 0;
    const QChar c = pattern[at];
    if (c == u'*' || c == u'+' || c == u'?')
        return 1;
    if (c != u'{')
        return 0;
    qsizetype end = at + 1;
    const auto skipDigits = [&] {
        const qsizetype begin = end;
        while (end < pattern.size() && IsDigit(pattern[end]))
            ++end;
        return end > begin;
    };
    if (!skipDigits())
        return 0;
    if (end < pattern.size() && pattern[end] == u',') {
        ++end;
        skipDigits();
    }
    return end < pattern.size() && pattern[end] == u'}' ? end + 1 - at : 0;
}

bool Translator::readQuantifier()
{
    if (!quantifiable)
        return false;
    qsizetype length = quantifierLength();
    if (pattern.mid(at + length).startsWith(u'?'))
        ++length;
    result.text += pattern.mid(at, length);
    at += length;
    quantifiable = false;
    addChoice();
    return true;
}

/// Whether one of the bracketed names `[:alpha:]`, `[.a.]`, `[=a=]` begins here.
bool Translator::posixClassAhead() const
{
    if (!ahead(u"[:") && !ahead(u"[.") && !ahead(u"[="))
        return false;
    const QChar mark = pattern[at + 1];
    qsizetype end = at + 2;
    while (end < pattern.size() && (IsAsciiLetter(pattern[end]) || pattern[end] == u'^'))
        ++end;
    return end > at + 2 && pattern.mid(end).startsWith(mark) && pattern.mid(end + 1).startsWith(u']');
}

bool Translator::readClass()
{
    const QStringView opening = ahead(u"[^") ? u"[^" : u"[";
    result.text += opening;
    at += opening.size();
    while (!atEnd() && pattern[at] != u']') {
        if (!readClassItem())
            return false;
    }
    if (atEnd())
        return false;
    result.text += u']';
    ++at;
    quantifiable = true;
    return true;
}

/// Reads a character, a set or a range. A dash next to a set is a plain dash.
bool Translator::readClassItem()
{
    if (posixClassAhead())
        return false;
    const auto first = readAtom(true);
    if (!first)
        return false;
    writeAtom(*first);
    if (!ahead(u"-") || at + 1 >= pattern.size() || pattern[at + 1] == u']')
        return true;
    ++at;
    if (posixClassAhead())
        return false;
    const auto last = readAtom(true);
    if (!last)
        return false;
    if (first->kind == Atom::Set || last->kind == Atom::Set)
        writeCharacter(u'-');
    else if (first->value <= last->value)
        result.text += u'-';
    else
        return false;
    writeAtom(*last);
    return true;
}

std::optional<Atom> Translator::readAtom(bool inClass)
{
    if (pattern[at] == u'\\')
        return readEscape(inClass);
    return Atom{Atom::Character, readPlain(), {}};
}

std::optional<Atom> Translator::readEscape(bool inClass)
{
    ++at;
    if (atEnd())
        return std::nullopt;
    const QChar letter = pattern[at];
    if (IsDigit(letter))
        return readNumber(inClass);
    if (!IsAsciiLetter(letter))
        return Atom{Atom::Character, readPlain(), {}};
    ++at;
    switch (letter.unicode()) {
    case u'd':
    case u'D':
    case u's':
    case u'S':
    case u'w':
    case u'W':
        return Atom{Atom::Set, 0, letter};
    case u'b':
        return inClass ? Atom{Atom::Character, u'\b', {}} : Atom{Atom::Anchor, 0, letter};
    case u'B':
        return inClass ? std::nullopt : std::optional(Atom{Atom::Anchor, 0, letter});
    case u'f':
        return Atom{Atom::Character, u'\f', {}};
    case u'n':
        return Atom{Atom::Character, u'\n', {}};
    case u'r':
        return Atom{Atom::Character, u'\r', {}};
    case u't':
        return Atom{Atom::Character, u'\t', {}};
    case u'v':
        return Atom{Atom::Character, u'\v', {}};
    case u'c':
        if (atEnd() || !IsAsciiLetter(pattern[at]))
            return std::nullopt;
        return Atom{Atom::Character, pattern[at++].unicode() % 32U, {}};
    case u'x':
        return Atom{Atom::Character, readHex(2).value_or(u'x'), {}};
    case u'u':
        return Atom{Atom::Character, readCodeUnits(), {}};
    default:
        return std::nullopt;
    }
}

/// Reads a group number of one or two digits, if such a group exists; otherwise up to three octal digits;
/// otherwise the digit itself.
Atom Translator::readNumber(bool inClass)
{
    const auto number = [this](qsizetype digits) { return pattern.mid(at, digits).toInt(); };
    const bool twoDigits = at + 1 < pattern.size() && IsDigit(pattern[at + 1]);
    for (const qsizetype digits : {2, 1}) {
        if (inClass || pattern[at] == u'0' || (digits == 2 && !twoDigits) || number(digits) > groupCount)
            continue;
        const auto group = static_cast<char32_t>(number(digits));
        at += digits;
        return {Atom::BackReference, group, {}};
    }
    if (!IsOctalDigit(pattern[at]))
        return {Atom::Character, pattern[at++].unicode(), {}};
    char32_t value = 0;
    for (int digit = 0; digit < 3 && !atEnd() && IsOctalDigit(pattern[at]) && value < 32; ++digit)
        value = value * 8 + (pattern[at++].unicode() - u'0');
    return {Atom::Character, value, {}};
}

/// Reads exactly this many hexadecimal digits, or nothing.
std::optional<char32_t> Translator::readHex(qsizetype digits)
{
    if (pattern.size() - at < digits)
        return std::nullopt;
    char32_t value = 0;
    for (const QChar digit : pattern.mid(at, digits)) {
        if (IsDigit(digit))
            value = value * 16 + (digit.unicode() - u'0');
        else if (IsAsciiLetter(digit) && (digit.unicode() | 0x20) <= u'f')
            value = value * 16 + ((digit.unicode() | 0x20U) - u'a' + 10);
        else
            return std::nullopt;
    }
    at += digits;
    return value;
}

/// Reads the number after `\u`; two halves of a surrogate pair are one character.
char32_t Translator::readCodeUnits()
{
    const auto high = readHex(4);
    if (!high)
        return u'u';
    if (!QChar::isHighSurrogate(*high) || !ahead(u"\\u"))
        return *high;
    const qsizetype behindHigh = at;
    at += 2;
    const auto low = readHex(4);
    if (low && QChar::isLowSurrogate(*low))
        return QChar::surrogateToUcs4(static_cast<char16_t>(*high), static_cast<char16_t>(*low));
    at = behindHigh;
    return *high;
}

char32_t Translator::readPlain()
{
    const QChar c = pattern[at++];
    if (!c.isHighSurrogate() || atEnd() || !pattern[at].isLowSurrogate())
        return c.unicode();
    return QChar::surrogateToUcs4(c, pattern[at++]);
}

/// All characters except letters and digits are written by number, so that none has a special meaning.
void Translator::writeCharacter(char32_t c)
{
    if (c < 0x80 && (IsAsciiLetter(QChar(c)) || IsDigit(QChar(c))))
        result.text += QChar(c);
    else
        result.text += u"\\x{"_s + QString::number(c, 16) + u'}';
}

void Translator::writeAtom(const Atom& atom)
{
    switch (atom.kind) {
    case Atom::Character:
        writeCharacter(atom.value);
        break;
    case Atom::Set:
    case Atom::Anchor:
        result.text += u'\\';
        result.text += atom.letter;
        break;
    case Atom::BackReference:
        result.text += u"\\g{"_s + QString::number(atom.value) + u'}';
        break;
    }
}

void Translator::addChoice()
{
    ++result.choices;
    if (writesCheckPoints)
        result.text += CheckPoint;
}

} // namespace

std::optional<EnginePattern> TranslatePattern(QStringView pattern)
{
    // One choice costs at most one pass over the text per start position, so that a check point at the start
    // is sufficient; the costs of several choices multiply.
    std::optional<EnginePattern> plain = Translator(pattern, false).translate();
    if (!plain || plain->choices == 0)
        return plain;
    if (plain->choices > 1)
        plain = Translator(pattern, true).translate();
    plain->text.prepend(CheckPoint);
    return plain;
}

} // namespace vmk
