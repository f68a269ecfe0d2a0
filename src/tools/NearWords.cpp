#include "NearWords.h"

#include <utility>

namespace vmk {
namespace {

/// Collects right words, each once, until `mayGoOn` returns false.
class Collector
{
public:
    Collector(const QString& misspeltWord, const std::function<bool(const QString&)>& verdict,
              const std::function<bool()>& mayGoOn)
        : word(misspeltWord)
        , isRight(verdict)
        , goOn(mayGoOn)
    {
    }

    void tryWord(const QString& candidate)
    {
        if (take(candidate) && candidate != word && !found.contains(candidate) && isRight(candidate))
            found.append(candidate);
    }

    void tryTwoWords(const QString& first, const QString& second)
    {
        if (take(first) && isRight(first) && isRight(second))
            found.append(first + QLatin1Char(' ') + second);
    }

    [[nodiscard]] const QStringList& words() const { return found; }

private:
    bool take(const QString& candidate)
    {
        stopped = stopped || !goOn();
        return !stopped && !candidate.isEmpty();
    }

    const QString& word;
    const std::function<bool(const QString&)>& isRight;
    const std::function<bool()>& goOn;
    QStringList found;
    bool stopped = false;
};

QString InCaseOf(QChar model, QChar letter)
{
    return model.isUpper() ? QString(letter.toUpper()) : QString(letter);
}

} // namespace

QStringList NearWords(const QString& word, const QString& letters,
                      const std::function<bool(const QString&)>& isRight, const std::function<bool()>& goOn)
{
    Collector collector(word, isRight, goOn);
    const qsizetype size = word.size();
    for (qsizetype i = 0; i + 1 < size; ++i) {
        QString exchanged = word;
        std::swap(exchanged[i], exchanged[i + 1]);
        collector.tryWord(exchanged);
    }
    for (qsizetype i = 0; i + 1 < size; ++i) {
        if (word[i] == word[i + 1])
            collector.tryWord(QString(word).remove(i, 1));
    }
    for (const QChar letter : letters) {
        for (qsizetype i = 0; i < size; ++i)
            collector.tryWord(QString(word).replace(i, 1, InCaseOf(word[i], letter)));
    }
    for (qsizetype i = 0; i < size; ++i)
        collector.tryWord(QString(word).remove(i, 1));
    for (const QChar letter : letters) {
        for (qsizetype i = 0; i <= size; ++i)
            collector.tryWord(QString(word).insert(i, letter));
    }
    for (qsizetype i = 2; i + 2 <= size; ++i)
        collector.tryTwoWords(word.left(i), word.mid(i));
    return collector.words();
}

} // namespace vmk
