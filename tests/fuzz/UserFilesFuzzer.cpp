// Any bytes in the small files of the user, which also come from others: lists of tags, the colours of the
// palette, lists of books, results of interrupted runs, the files of a dictionary. The first byte selects the
// reader.

#include "ColorTable.h"
#include "DictionaryFiles.h"
#include "FileNames.h"
#include "ListFunctions.h"
#include "NameList.h"
#include "ResultFile.h"
#include "SpellDictionary.h"

#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using namespace Qt::StringLiterals;

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

const QTemporaryDir& Folder()
{
    static const QTemporaryDir folder;
    return folder;
}

QString Write(const QString& name, std::string_view bytes)
{
    QString path = Folder().filePath(name);
    std::ofstream file(vmk::EncodeFileName(path).toStdString(), std::ios::binary | std::ios::trunc);
    file << bytes;
    return path;
}

void CheckTagList(std::string_view bytes)
{
    const QString path = Write(u"tags"_s, bytes);
    const QStringList tags = vmk::ReadTagFile(path);
    for (const QString& tag : tags)
        Require(!tag.isEmpty() && tag == tag.trimmed());
    QStringList kept;
    Require(vmk::WriteTagFile(tags, path, kept) && kept == tags);
    // A file of a few characters is read as an empty one, and bytes that are no text change once.
    const QStringList again = vmk::ReadTagFile(path);
    Require(vmk::WriteTagFile(again, path, kept));
    Require(vmk::ReadTagFile(path) == again || tags.join(u"\r\n"_s).size() <= 4);
}

void CheckColors(std::string_view bytes)
{
    constexpr vmk::ColorValue White = 0xffffff;
    vmk::ColorTable table;
    table.read(Write(u"colors"_s, bytes));
    for (int cell = 0; cell < vmk::ColorCellCount; ++cell)
        Require(table.color(cell) <= White);
}

void CheckNames(std::string_view bytes, char mark)
{
    vmk::NameList list(vmk::EncodeFileName(Write(u"names"_s, bytes)).toStdString(), mark);
    std::size_t length = 0;
    while (const std::optional<std::string> name = list.next()) {
        Require(!name->empty() && name->find(mark) == std::string::npos);
        length += name->size();
    }
    Require(list.problem().isEmpty() && length <= bytes.size());
}

void CheckResults(std::string_view bytes)
{
    vmk::ResultFile results(Write(u"results"_s, bytes));
    const auto isAny = [](std::string_view line) { return line.find('!') == std::string_view::npos; };
    std::size_t length = 0;
    for (const std::string& line : results.readWhile(isAny))
        length += line.size() + 1;
    Require(results.problem().isEmpty() && results.position() == length && length <= bytes.size());
    Require(results.atEnd() || !isAny(results.nextLine()));
    Require(results.cut(length) && results.append("line\n") && results.flush() && results.atEnd());
}

void CheckDictionary(std::string_view bytes)
{
    const std::size_t middle = std::min(bytes.find('\0'), bytes.size());
    const vmk::SpellDictionary dictionary{
        u"xx"_s, Write(u"xx.aff"_s, bytes.substr(0, middle)),
        Write(u"xx.dic"_s, bytes.substr(std::min(middle + 1, bytes.size())))};
    QString problem;
    const vmk::DictionaryFiles files = vmk::ReadDictionaryFiles(dictionary, &problem);
    Require(!problem.isEmpty() || !files.encoding.empty());
    Require(files.sampleWords.size() <= bytes.size());
    for (const std::string& word : files.sampleWords)
        Require(!word.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 6) {
    case 0:
        CheckTagList(bytes);
        break;
    case 1:
        CheckColors(bytes);
        break;
    case 2:
        CheckNames(bytes, '\n');
        break;
    case 3:
        CheckNames(bytes, '\0');
        break;
    case 4:
        CheckResults(bytes);
        break;
    default:
        CheckDictionary(bytes);
    }
    return 0;
}
