#include "CustomWords.h"

#include "CodePages.h"
#include "FileOperations.h"
#include "LineEnds.h"

#include <algorithm>

namespace vmk {
namespace {

QString DecodeWord(std::string_view bytes)
{
    return DecodeBytes(bytes, IsValidUtf8(bytes) ? CodePageUtf8 : CodePageSystem);
}

/// Returns a word without blanks around it and without byte order marks before it, which editors write.
QStringView WithoutMarks(QStringView word)
{
    word = word.trimmed();
    while (word.startsWith(QChar::ByteOrderMark))
        word = word.sliced(1).trimmed();
    return word;
}

std::string EncodeWord(const QString& word)
{
    std::string bytes = EncodeText(word, CodePageSystem);
    return DecodeWord(bytes) == word ? bytes : EncodeText(word, CodePageUtf8);
}

} // namespace

QStringList DecodeCustomWords(std::string_view bytes)
{
    QStringList words;
    while (!bytes.empty()) {
        const size_t end = bytes.find_first_of("\r\n");
        const QString line = DecodeWord(bytes.substr(0, end));
        const QString word = WithoutMarks(line).toString();
        if (!word.isEmpty())
            words.append(word);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    }
    return words;
}

std::string EncodeCustomWords(const QStringList& words)
{
    std::string bytes;
    for (const QString& word : words)
        bytes += EncodeWord(word) + CrLf;
    return bytes;
}

void CustomDictionary::LoadCustomWords(const QString& file)
{
    const FileContent content = ReadContent(file);
    mayWrite = content.outcome == ReadOutcome::Ok || content.outcome == ReadOutcome::Missing;
    CustomWords = DecodeCustomWords(content.bytes);
    CustomWordCount = CustomWords.size();
}

void CustomDictionary::SaveCustomWords(const QString& file) const
{
    write(CustomWords, file);
}

bool CustomDictionary::IsCustomWord(const QString& word) const
{
    return CustomWordCount != 0 && CustomWords.contains(word.trimmed());
}

void CustomDictionary::AddWord(const QString& word)
{
    const QString trimmed = word.trimmed();
    if (trimmed.isEmpty())
        return;
    ++CustomWordCount;
    CustomWords.resize(CustomWordCount);
    CustomWords.last() = trimmed;
}

QStringList CustomDictionary::ListedWords() const
{
    return CustomWords.first(std::min(CustomWordCount, CustomWords.size()));
}

void CustomDictionary::Remove(const QStringList& remaining, qsizetype removed)
{
    CustomWords.resize(std::max<qsizetype>(CustomWords.size() - removed, 0));
    for (qsizetype i = 0; i < CustomWords.size(); ++i)
        CustomWords[i] = remaining.value(i);
}

void CustomDictionary::SaveCustomWordsFromList(const QStringList& words, const QString& file) const
{
    QStringList kept;
    for (const QString& word : words) {
        if (!word.trimmed().isEmpty())
            kept.append(word.trimmed());
    }
    write(kept, file);
}

void CustomDictionary::write(const QStringList& words, const QString& file) const
{
    if (mayWrite)
        (void)WriteFileText(file, EncodeCustomWords(words));
}

} // namespace vmk
