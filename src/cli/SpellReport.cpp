#include "SpellReport.h"

#include "BookLanguage.h"
#include "CommandLine.h"
#include "FileNames.h"
#include "SpellChecker.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

void FindWords(SpellReport& report, QStringView xml, const SpellReportOptions& options, SpellChecker& checker)
{
    const QSet<QString> custom(options.customWords.begin(), options.customWords.end());
    QHash<QString, size_t> indexes;
    ForEachBookWord(xml, options.markup, [&](const BookWord& found) {
        if (!checker.isSuspicious(found.word))
            return;
        const QString word = found.word.toString();
        if (custom.contains(word))
            return;
        if (options.unique) {
            const auto known = indexes.constFind(word);
            if (known != indexes.constEnd()) {
                ++report.words[*known].count;
                return;
            }
            indexes.insert(word, report.words.size());
        }
        report.words.push_back({word, found.line, found.column, 1, {}});
    });
    if (options.unique)
        std::ranges::stable_sort(report.words, std::greater(), &SuspiciousWord::count);
}

void AddSuggestions(SpellReport& report, SpellChecker& checker)
{
    QHash<QString, QStringList> known;
    for (SuspiciousWord& word : report.words) {
        if (!known.contains(word.word))
            known.insert(word.word, checker.suggestions(word.word));
        word.suggestions = known.value(word.word);
    }
}

} // namespace

SpellReport CheckSpelling(const BookItem& book, const SpellReportOptions& options, SpellChecker& checker)
{
    SpellReport report;
    report.book = book.name;
    const FileContent content = book.content();
    if (content.outcome != ReadOutcome::Ok) {
        report.failure = ReadFailureText(content);
        return report;
    }
    const QString xml = DecodeBook(content.bytes);
    const QString language = options.language.isEmpty() ? BookLanguage(QStringView(xml)) : options.language;
    checker.setDictionaries(
        SpellDictionaries(InstalledDictionaries(DictionaryFolders()), language, QLocale::system().name()));
    if (!checker.hasDictionary()) {
        report.failure = u"cannot find a dictionary"_s;
        return report;
    }
    FindWords(report, xml, options, checker);
    if (options.suggest)
        AddSuggestions(report, checker);
    return report;
}

QString SpellLine(const SpellReport& report, const SuspiciousWord& word, const SpellReportOptions& options)
{
    if (options.json) {
        QJsonObject object = {{u"book"_s, ReadableName(report.book)},
                              {u"line"_s, word.line},
                              {u"column"_s, word.column},
                              {u"word"_s, word.word}};
        if (options.unique)
            object.insert(u"count"_s, word.count);
        if (options.suggest)
            object.insert(u"suggestions"_s, QJsonArray::fromStringList(word.suggestions));
        return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    }
    QString line = ShownName(report.book) + u':' + QString::number(word.line) + u':'
        + QString::number(word.column) + u": "_s + word.word;
    if (options.unique)
        line += u' ' + QString::number(word.count);
    if (options.suggest && !word.suggestions.isEmpty())
        line += u": "_s + word.suggestions.join(u", "_s);
    return line;
}

} // namespace vmk
