#include "SpellChecker.h"

#include "NearWords.h"
#include "SpellWords.h"
#include "Speller.h"

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// The verdicts on longer words, which are rare, are not remembered.
constexpr qsizetype LongestRemembered = 64;
constexpr size_t MostRemembered = 1'000'000;

constexpr QChar CurlyApostrophe(0x2019);

/// Returns true if `Cleaned` would not change the word, as for most words.
bool IsClean(QStringView word)
{
    return std::ranges::none_of(word, [](QChar c) {
        return c == QChar(0xAD) || (c.unicode() >= 0x300 && !(c.unicode() >= 0x370 && c.unicode() < 0x480))
            || c == QChar(0x450) || c == QChar(0x45D) || c == QChar(0x2BC);
    });
}

/// Returns the word as in a dictionary: composed, without invisible characters, plain hyphens and
/// apostrophes.
QString Cleaned(QStringView word)
{
    QString clean;
    for (const QChar c : word.toString().normalized(QString::NormalizationForm_C)) {
        if (IsWordHyphen(c))
            clean += u'-';
        else if (IsWordApostrophe(c))
            clean += u'\'';
        else if (!IsInvisibleInWord(c.unicode()))
            clean += c;
    }
    return clean;
}

/// Returns the word without the marks that have no composed letter: stress marks. Composition has replaced
/// the Cyrillic letters with a grave accent by letters of other languages.
QString WithoutStress(QString word)
{
    word.removeIf([](QChar c) { return c.isMark(); });
    word.replace(QChar(0x450), QChar(0x435)).replace(QChar(0x400), QChar(0x415));
    word.replace(QChar(0x45D), QChar(0x438)).replace(QChar(0x40D), QChar(0x418));
    return word;
}

/// Returns the script of most letters of a word; `Script_Unknown` without letters.
QChar::Script ScriptOf(QStringView word)
{
    QChar::Script best = QChar::Script_Unknown;
    int bestCount = 0;
    std::map<QChar::Script, int> counts;
    for (qsizetype i = 0; i < word.size(); ++i) {
        char32_t c = word[i].unicode();
        if (word[i].isHighSurrogate() && i + 1 < word.size() && word[i + 1].isLowSurrogate())
            c = QChar::surrogateToUcs4(word[i], word[i + 1]);
        const QChar::Script script = QChar::script(c);
        if (!QChar::isLetter(c) || script == QChar::Script_Common || script == QChar::Script_Inherited)
            continue;
        const int count = ++counts[script];
        if (count > bestCount) {
            best = script;
            bestCount = count;
        }
    }
    return best;
}

} // namespace

SpellChecker::SpellChecker(SpellShelf& loadedDictionaries)
    : shelf(loadedDictionaries)
    , dictionaries({}, {}, {})
{
}

void SpellChecker::setDictionaries(const SpellDictionaries& chosen)
{
    if (chosen == dictionaries)
        return;
    dictionaries = chosen;
    spellers.clear();
    verdicts.clear();
}

void SpellChecker::prepare()
{
    shelf.prepare(likelyDictionaries());
}

/// Latin first: a page begins with tags, so that its first suspicious word is usually Latin.
std::vector<SpellDictionary> SpellChecker::likelyDictionaries() const
{
    std::vector<SpellDictionary> likely;
    for (const auto& list : {dictionaries.ofScript(QChar::Script_Latin), dictionaries.main(),
                             dictionaries.ofScript(QChar::Script_Cyrillic)}) {
        if (!list.empty())
            likely.push_back(list.front());
    }
    return likely;
}

bool SpellChecker::hasDictionary()
{
    return shelf.firstOf(likelyDictionaries()) || shelf.firstOf(dictionaries.all());
}

bool SpellChecker::isSuspicious(QStringView word)
{
    const std::u16string_view key(reinterpret_cast<const char16_t*>(word.utf16()), size_t(word.size()));
    if (const auto known = verdicts.find(key); known != verdicts.end())
        return !known->second;
    const bool right = isRight(IsClean(word) ? word.toString() : Cleaned(word));
    if (word.size() <= LongestRemembered) {
        if (verdicts.size() >= MostRemembered)
            verdicts.clear();
        verdicts.emplace(key, right);
    }
    return !right;
}

bool SpellChecker::isRight(const QString& word)
{
    if (isRightPart(word))
        return true;
    const QString bare = WithoutStress(word);
    if (bare != word && isRightPart(bare))
        return true;
    if (!bare.contains(u'-'))
        return false;
    const QList<QStringView> parts = QStringView(bare).split(u'-');
    return std::ranges::all_of(parts, [this](QStringView part) { return isRightPart(part); });
}

bool SpellChecker::isRightPart(QStringView part)
{
    // A part in capitals is an abbreviation, as a whole word in capitals is.
    if (part.isEmpty() || IsInCapitals(part))
        return true;
    Speller* speller = spellerFor(part);
    if (!speller || speller->isRight(part))
        return true;
    if (!part.contains(u'\''))
        return false;
    return speller->isRight(part.toString().replace(u'\'', CurlyApostrophe));
}

Speller* SpellChecker::spellerFor(QStringView word)
{
    const QChar::Script script = ScriptOf(word);
    const auto known = spellers.find(script);
    if (known != spellers.end())
        return known->second.get();
    return spellers.emplace(script, shelf.firstOf(dictionaries.ofScript(script))).first->second.get();
}

QStringList SpellChecker::suggestions(QStringView word)
{
    const QString clean = WithoutStress(Cleaned(word));
    Speller* speller = spellerFor(clean);
    if (!speller)
        return {};
    QStringList found = speller->suggestions(clean);
    // With the apostrophe of the text.
    if (word.contains(CurlyApostrophe) && !word.contains(u'\''))
        found.replaceInStrings(u"'"_s, QString(CurlyApostrophe));
    found.removeDuplicates();
    found.removeAll(word.toString());
    return found;
}

QStringList SpellChecker::nearWords(QStringView word, const std::function<bool()>& goOn)
{
    const QString clean = WithoutStress(Cleaned(word));
    Speller* speller = spellerFor(clean);
    if (!speller || clean.size() > Speller::LongestWord)
        return {};
    QString letters;
    for (const QChar c : speller->tryLetters()) {
        if (c.isLower())
            letters += c;
    }
    return NearWords(
        clean, letters, [this](const QString& candidate) { return !isSuspicious(candidate); }, goOn);
}

} // namespace vmk
