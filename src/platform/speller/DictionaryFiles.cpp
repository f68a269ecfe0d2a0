#include "DictionaryFiles.h"

#include "Files.h"
#include "SpellDictionary.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr size_t MostAffixBytes = 16 << 20;
constexpr size_t MostWordBytes = 128 << 20;
constexpr size_t LongestLine = 1 << 16;
constexpr size_t SampleSize = 40;

/// Removes the first line of a text and returns it without its line end.
std::string_view TakeLine(std::string_view& text)
{
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Returns the value after a keyword at the start of a line; empty for another line.
std::string_view ValueAfter(std::string_view line, std::string_view keyword)
{
    if (!line.starts_with(keyword) || line.size() <= keyword.size()
        || (line[keyword.size()] != ' ' && line[keyword.size()] != '\t'))
        return {};
    line.remove_prefix(keyword.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_last_not_of(" \t") + 1);
}

/// Dictionaries use some names of encodings that the system's converter does not know.
std::string SystemName(std::string_view encoding)
{
    constexpr std::string_view Prefix = "microsoft-";
    // An empty name would mean the encoding of the system.
    if (encoding.starts_with(Prefix) && encoding != Prefix)
        encoding.remove_prefix(Prefix.size());
    return std::string(encoding);
}

bool HasLongLine(std::string_view text)
{
    while (!text.empty()) {
        if (TakeLine(text).size() > LongestLine)
            return true;
    }
    return false;
}

QString ReadAffixes(const QString& file, DictionaryFiles& files)
{
    const FileContent content = ReadContent(file);
    if (content.outcome != ReadOutcome::Ok)
        return ReadFailureText(content);
    if (content.bytes.size() > MostAffixBytes || HasLongLine(content.bytes))
        return u"is too large for an affix file"_s;
    files.encoding = "ISO8859-1"; // Hunspell's own default
    std::string_view rest = content.bytes;
    if (rest.starts_with("\xef\xbb\xbf"))
        rest.remove_prefix(3);
    while (!rest.empty()) {
        const std::string_view line = TakeLine(rest);
        if (const std::string_view encoding = ValueAfter(line, "SET"); !encoding.empty())
            files.encoding = SystemName(encoding);
        else if (const std::string_view letters = ValueAfter(line, "TRY"); !letters.empty())
            files.tryLetters = letters;
    }
    return {};
}

QString ReadWords(const QString& file, DictionaryFiles& files)
{
    const FileContent content = ReadContent(file);
    if (content.outcome != ReadOutcome::Ok)
        return ReadFailureText(content);
    if (content.bytes.size() > MostWordBytes || HasLongLine(content.bytes))
        return u"is too large for a dictionary"_s;
    std::string_view rest = content.bytes;
    if (rest.starts_with("\xef\xbb\xbf"))
        rest.remove_prefix(3);
    const std::string_view first = TakeLine(rest);
    // Hunspell allocates memory for this number of words.
    size_t count = 0;
    const auto read = std::from_chars(first.data(), first.data() + first.size(), count);
    if (read.ec != std::errc() || count == 0 || count > content.bytes.size())
        return u"does not begin with the number of its words"_s;

    // From all parts of the file: the first words of many dictionaries are abbreviations.
    const size_t step = std::max<size_t>(rest.size() / SampleSize, 1);
    while (!rest.empty()) {
        const std::string_view word = TakeLine(rest);
        const std::string_view bare = word.substr(0, word.find_first_of("/\t "));
        if (!bare.empty())
            files.sampleWords.emplace_back(bare);
        rest.remove_prefix(std::min(step, rest.size()));
        TakeLine(rest);
    }
    return {};
}

} // namespace

DictionaryFiles ReadDictionaryFiles(const SpellDictionary& dictionary, QString* problem)
{
    DictionaryFiles files;
    *problem = ReadAffixes(dictionary.affixFile, files);
    if (problem->isEmpty())
        *problem = ReadWords(dictionary.wordFile, files);
    return files;
}

} // namespace vmk
