#include "SearchHistories.h"

#include "CodePages.h"
#include "FileOperations.h"
#include "Files.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"

namespace vmk {

using namespace Qt::StringLiterals;

bool AddToHistoryList(QStringList& list, const QString& text)
{
    if (TrimBlanks(text).isEmpty() || (!list.isEmpty() && list.first() == text))
        return false;
    list.removeAll(text);
    list.prepend(text);
    if (list.size() > MostHistoryEntries)
        list.resize(MostHistoryEntries);
    return true;
}

QStringList DecodeHistory(std::string_view bytes)
{
    QStringList list = DecodeBytes(bytes, CodePageUtf16).split(u'\r', Qt::SkipEmptyParts);
    for (QString& entry : list)
        entry.replace("&lt;"_L1, "<"_L1).replace("&gt;"_L1, ">"_L1);
    return list;
}

std::string EncodeHistory(const QStringList& list)
{
    std::string bytes;
    const auto append = [&bytes](const QString& text) {
        for (const QChar c : text) {
            bytes += char(c.unicode() & 0xFF);
            bytes += char(c.unicode() >> 8);
        }
    };
    for (QString entry : list) {
        // A carriage return would end the entry.
        entry.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
        append(entry.replace(u'<', "&lt;"_L1).replace(u'>', "&gt;"_L1) + u'\r');
    }
    return bytes;
}

bool ReadHistoryFile(QStringList& list, const QString& path)
{
    list.clear();
    if (!FileExists(path))
        return true;
    const FileContent content = ReadContent(path);
    list = DecodeHistory(content.bytes);
    return content.outcome == ReadOutcome::Ok;
}

bool WriteHistoryFile(const QStringList& list, const QString& path)
{
    if (!list.isEmpty())
        return WriteFileText(path, EncodeHistory(list));
    if (FileExists(path))
        FileOperation(DeleteFileMode, path);
    return !FileExists(path);
}

void LoadHistory(History& history)
{
    history.unreadable = !ReadHistoryFile(history.entries, history.path);
    history.changed = false;
}

bool SaveHistory(History& history)
{
    if (!history.changed)
        return true;
    if (history.unreadable || !WriteHistoryFile(history.entries, history.path))
        return false;
    history.changed = false;
    return true;
}

SearchHistories::SearchHistories()
{
    HisFind.path = HisFindFile;
    HisReplace.path = HisReplaceFile;
    HisFindRegExp.path = HisFindRegExpFile;
    HisReplaceRegExp.path = HisReplaceRegExpFile;
}

void SearchHistories::LoadHistories(HistoryMode mode)
{
    LoadHistory(find(mode));
    LoadHistory(replace(mode));
}

bool SearchHistories::SaveHistories(HistoryMode mode)
{
    const bool findSaved = SaveHistory(find(mode));
    const bool replaceSaved = SaveHistory(replace(mode));
    return findSaved && replaceSaved;
}

} // namespace vmk
