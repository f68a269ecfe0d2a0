// Any bytes can be in a custom dictionary, in a book and in the text that is divided into words. The first
// byte selects the reader. A dictionary must come back when it is written and read again; words must be in
// order, inside the text, and whole.

#include "BookLanguage.h"
#include "BookWords.h"
#include "CustomWords.h"
#include "SpellWords.h"

#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void ReadDictionary(std::string_view bytes)
{
    const QStringList words = vmk::DecodeCustomWords(bytes);
    for (const QString& word : words)
        Require(!word.isEmpty() && word == word.trimmed() && !word.contains(u'\r') && !word.contains(u'\n'));
    Require(vmk::DecodeCustomWords(vmk::EncodeCustomWords(words)) == words);
}

/// A word by itself is the same word.
void CheckAlone(QStringView word)
{
    vmk::SpellWords words(word);
    Require(words.next() && words.start() == 0 && words.length() == word.size() && !words.next());
}

void DivideText(QStringView text)
{
    vmk::SpellWords words(text);
    qsizetype end = 0;
    while (words.next()) {
        Require(words.start() >= end && words.length() > 0);
        end = words.start() + words.length();
        Require(end <= text.size());
        CheckAlone(words.word());
        for (qsizetype i = words.start() + 1; i < end; ++i) {
            const bool inPair = text[i].isLowSurrogate() && text[i - 1].isHighSurrogate();
            Require(inPair || vmk::IsInsideSpellWord(text, i));
        }
    }
}

void ReadBook(std::string_view bytes)
{
    const QString xml = vmk::DecodeBook(bytes);
    (void)vmk::BookLanguage(QStringView(xml));
    for (const vmk::BookMarkup markup : {vmk::BookMarkup::LeaveOut, vmk::BookMarkup::Include}) {
        int line = 1;
        int column = 0;
        vmk::ForEachBookWord(xml, markup, [&](const vmk::BookWord& found) {
            Require(!found.word.isEmpty());
            Require(found.line > line || (found.line == line && found.column > column));
            line = found.line;
            column = found.column;
        });
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 4) {
    case 0:
        ReadDictionary(bytes);
        break;
    case 1:
        DivideText(QString::fromUtf8(bytes.data(), qsizetype(bytes.size())));
        break;
    case 2: {
        QString text(qsizetype(bytes.size() / 2), Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            text[i] = QChar(uint8_t(bytes[size_t(2 * i)]), uint8_t(bytes[size_t(2 * i + 1)]));
        DivideText(text);
        break;
    }
    default:
        ReadBook(bytes);
    }
    return 0;
}
