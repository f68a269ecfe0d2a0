#pragma once

#include "SpellWords.h"

#include <QProcess>
#include <QSet>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// Compares the suspicious words of a text with those of `hunspell -l`, and explains each difference by a
/// rule that is checked on the text.
namespace vmk::reference {

/// Returns the words that `hunspell -l` reports. Empty with `problem` set if it cannot be run.
/// \param dictionaries  paths without extensions
inline QSet<QString> HunspellWords(const QString& text, const QStringList& dictionaries, QString* problem)
{
    QProcess process;
    QStringList environment = QProcess::systemEnvironment();
    process.setEnvironment(environment << QStringLiteral("LC_ALL=C.UTF-8"));
    process.start(QStringLiteral("hunspell"),
                  {QStringLiteral("-l"), QStringLiteral("-i"), QStringLiteral("utf-8"), QStringLiteral("-d"),
                   dictionaries.join(u',')});
    // It divides long lines, even inside a word.
    process.write(QString(text).replace(u' ', u'\n').toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(300'000) || process.exitCode() != 0) {
        *problem = process.errorString();
        return {};
    }
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    const QStringList words = output.split(u'\n', Qt::SkipEmptyParts);
    return {words.begin(), words.end()};
}

/// The differences between two sets of words, by explanation. A word without an explanation has an empty one.
using Differences = std::map<std::string, QStringList>;

class HunspellComparison
{
public:
    /// \param isSuspicious  the verdict of the program on a word as `SpellWords` cuts it
    HunspellComparison(const QString& comparedText, QSet<QString> ownWords, QSet<QString> hunspellWords,
                       std::function<bool(QStringView)> isSuspicious)
        : text(comparedText)
        , own(std::move(ownWords))
        , other(std::move(hunspellWords))
        , suspicious(std::move(isSuspicious))
    {
        SpellWords words(text);
        while (words.next())
            cut.push_back({words.start(), words.start() + words.length()});
    }

    [[nodiscard]] Differences differences() const
    {
        Differences kinds;
        for (const QString& word : own) {
            if (!other.contains(word))
                kinds[whyOnlyOwn(word)].append(word);
        }
        for (const QString& word : other) {
            if (!own.contains(word))
                kinds[whyOnlyOther(word)].append(word);
        }
        for (auto& [kind, words] : kinds)
            words.sort();
        return kinds;
    }

private:
    struct Span
    {
        qsizetype from;
        qsizetype to;
    };

    static bool isJoiner(QChar c) { return IsWordHyphen(c) || IsWordApostrophe(c); }

    /// The letters of a word between its hyphens and apostrophes.
    static QStringList partsOf(const QString& word)
    {
        QStringList parts(1);
        for (const QChar c : word) {
            if (isJoiner(c))
                parts.append(QString());
            else
                parts.last() += c;
        }
        return parts;
    }

    [[nodiscard]] std::string whyOnlyOwn(const QString& word) const
    {
        const QStringList parts = partsOf(word);
        if (parts.size() > 1
            && std::ranges::any_of(parts, [this](const QString& part) { return other.contains(part); }))
            return "own: a whole compound; hunspell reports its part";
        if (parts.size() > 1)
            return "own: a compound; hunspell accepts each of its parts alone";
        if (WithoutMarks(word) != word)
            return "own: a word with stress marks or soft hyphens; hunspell cuts it there";
        if (everyOccurrence(word, [this](const Span& span) { return hasSignOfAddress(span.from, span.to); }))
            return "own: hunspell takes it for a part of an address or path";
        if (everyOccurrence(word, [this](const Span& span) {
                return span.from > 0 && other.contains(text[span.from - 1] + textOf(span));
            }))
            return "own: hunspell reports it with the mark before it";
        if (everyOccurrence(word, [this](const Span& span) {
                return isOtherLetter(span.from - 1) || isOtherLetter(span.to);
            }))
            return "own: beside letters of another script, from which it is separated";
        return {};
    }

    /// The reasons of all occurrences of a word; one without a reason makes it unexplained.
    [[nodiscard]] std::string whyOnlyOther(const QString& word) const
    {
        if (IsInCapitals(word))
            return "hunspell: a word in capitals, which is skipped";
        if (std::ranges::any_of(word, [](QChar c) { return c.isDigit(); }))
            return "hunspell: a word with digits, which is skipped";
        if (std::ranges::none_of(word, [](QChar c) { return c.isLetter(); }))
            return "hunspell: no letters";
        if (word.front().isMark() && own.contains(word.sliced(1)))
            return "hunspell: with a mark before the word";
        if (std::ranges::all_of(word, IsWithoutDictionary))
            return "hunspell: in a script without a dictionary";
        std::string reason;
        for (qsizetype at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + 1)) {
            const std::string here = whyAt(word, at);
            if (here.empty())
                return {};
            if (here != "inside")
                reason = here;
        }
        return reason;
    }

    /// Why the program does not report an occurrence; "inside" if it is a piece of other letters.
    [[nodiscard]] std::string whyAt(const QString& word, qsizetype at) const
    {
        const qsizetype end = at + word.size();
        const auto isLetter = [this](qsizetype i) { return i >= 0 && i < text.size() && text[i].isLetter(); };
        if (isLetter(at - 1) || isLetter(end))
            return "inside";
        const auto next = std::ranges::upper_bound(cut, at, {}, &Span::from);
        if (next != cut.begin() && (next - 1)->to > at) {
            const Span& span = *(next - 1);
            const QStringView whole = QStringView(text).mid(span.from, span.to - span.from);
            if (whole == word)
                return suspicious(whole) ? std::string() : whyRight(word);
            if (own.contains(whole.toString()))
                return "hunspell: a part of a word that is reported whole";
            return suspicious(whole) ? std::string()
                                     : "hunspell: a part of a right word with hyphens, apostrophes or marks";
        }
        return whySkipped(at, end);
    }

    /// Why the program takes a word as right.
    [[nodiscard]] std::string whyRight(const QString& word) const
    {
        if (std::ranges::any_of(word, IsWordApostrophe))
            return "hunspell: right with the other kind of apostrophe";
        const QString bare = WithoutMarks(word);
        if (bare != word && !other.contains(bare))
            return "hunspell: right without its stress marks";
        return {};
    }

    static bool IsWithoutDictionary(QChar c)
    {
        return c.isMark()
            || (c.isLetter() && c.script() != QChar::Script_Latin && c.script() != QChar::Script_Cyrillic);
    }
    [[nodiscard]] bool isOtherLetter(qsizetype i) const
    {
        return i >= 0 && i < text.size() && text[i].isLetter() && IsWithoutDictionary(text[i]);
    }

    /// Removes stress marks and invisible characters.
    static QString WithoutMarks(QString word)
    {
        word.removeIf([](QChar c) { return c.isMark() || c.category() == QChar::Other_Format; });
        return word;
    }

    /// Why no word was cut at an occurrence.
    [[nodiscard]] std::string whySkipped(qsizetype at, qsizetype end) const
    {
        const auto isPart = [this](qsizetype i) {
            return text[i].isLetterOrNumber() || text[i].isMark() || isJoiner(text[i]);
        };
        qsizetype from = at;
        while (from > 0 && isPart(from - 1))
            --from;
        qsizetype to = end;
        while (to < text.size() && isPart(to))
            ++to;
        const QStringView token = QStringView(text).mid(from, to - from);
        if (std::ranges::any_of(token, [](QChar c) { return c.isNumber(); }))
            return "hunspell: a part of a word with digits, which is skipped";
        if (IsInCapitals(token))
            return "hunspell: a part of a word in capitals, which is skipped";
        return hasSignOfAddress(from, to) ? "hunspell: a part of an address or path, which is skipped"
                                          : std::string();
    }

    /// True if the run without blanks around a word contains a sign of addresses and paths.
    [[nodiscard]] bool hasSignOfAddress(qsizetype from, qsizetype to) const
    {
        const auto isAddress = [this](qsizetype i) {
            const QChar c = text[i];
            return !c.isSpace() && c != u'<' && c != u'>' && c != u'"';
        };
        while (from > 0 && isAddress(from - 1))
            --from;
        while (to < text.size() && isAddress(to))
            ++to;
        return std::ranges::any_of(QStringView(text).mid(from, to - from),
                                   [](QChar c) { return c == u'@' || c == u'/' || c == u'\\' || c == u'.'; });
    }

    [[nodiscard]] QString textOf(const Span& span) const { return text.mid(span.from, span.to - span.from); }

    template <typename Condition>
    [[nodiscard]] bool everyOccurrence(const QString& word, Condition condition) const
    {
        return std::ranges::all_of(cut,
                                   [&](const Span& span) { return textOf(span) != word || condition(span); });
    }

    const QString& text;
    QSet<QString> own;
    QSet<QString> other;
    std::function<bool(QStringView)> suspicious;
    std::vector<Span> cut;
};

} // namespace vmk::reference
