#include "Command.h"
#include "CommandLine.h"
#include "DisplayDocument.h"
#include "FileState.h"
#include "Files.h"
#include "InitGlobals.h"
#include "JournalReader.h"
#include "OpenSession.h"
#include "PageOfBook.h"
#include "PrivateFiles.h"
#include "Settings.h"
#include "StartUpVariables.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

struct RecoverOptions
{
    QString journal; // empty: the journals are listed
    QString file;
    bool json = false;
};

RecoverOptions ReadOptions(CommandLine& line)
{
    RecoverOptions options;
    while (line.next()) {
        const QString& option = line.option();
        if (option == u"--out")
            options.file = line.value();
        else if (option == u"--json")
            options.json = true;
        else if (!option.isEmpty())
            line.failUnknownOption();
        else if (options.journal.isEmpty())
            options.journal = line.operand();
        else
            line.fail(u"more than one journal given"_s);
    }
    if (options.journal.isEmpty() != options.file.isEmpty())
        line.fail(u"JOURNAL and --out belong together"_s);
    return options;
}

/// Reads a journal of this user that no living program writes.
std::optional<RecordedSession> ReadSession(const QString& path)
{
    LockedFile file = LockedFile::open(path);
    if (!file) {
        PrintErrorLine(u"vmk: "_s + ShownName(path) + u": cannot be read: "_s + file.reason());
        return {};
    }
    std::optional<RecordedSession> session = ReadJournal(file.read());
    if (!session)
        PrintErrorLine(u"vmk: "_s + ShownName(path) + u": not a journal, or damaged"_s);
    return session;
}

void PrintJournal(const QString& path, const RecordedSession& session, bool json)
{
    const QDateTime time = StateOfFile(path).time();
    if (!json) {
        PrintLine(ShownName(path) + u": "_s + time.toString(u"yyyy-MM-dd HH:mm:ss"_s) + u", "_s
                  + ShownName(session.state.facts.path));
        return;
    }
    const QJsonObject object{{u"journal"_s, path},
                             {u"time"_s, time.toString(Qt::ISODate)},
                             {u"book"_s, session.state.facts.path},
                             {u"unsaved"_s, session.state.unsaved},
                             {u"complete"_s, session.isComplete}};
    PrintLine(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

int ListJournals(bool json)
{
    const QString folder = WorkspaceFolder(RunningProgramPlace()) + u"/Recovery"_s;
    int code = ExitClean;
    for (const QString& pattern : {u"*.journal"_s, u"*.declined"_s}) {
        for (const QString& name : FindFiles(folder, pattern)) {
            const QString path = folder + u'/' + name;
            if (const std::optional<RecordedSession> session = ReadSession(path))
                PrintJournal(path, *session, json);
            else
                code = ExitFailure;
        }
    }
    return FlushOutput() ? code : int(ExitFailure);
}

int WriteRecovered(const RecoverOptions& options)
{
    const std::optional<RecordedSession> session = ReadSession(options.journal);
    if (!session)
        return ExitFailure;
    if (!session->isComplete)
        PrintErrorLine(u"vmk: "_s + ShownName(options.journal) + u": the last changes could not be read"_s);
    ReadSettings(true);
    InLineTags = DefaultInLineTags();
    TakeFacts(session->state);
    DisplayDocument document;
    ShowSession(session->state, document);
    const BookFile file = FileOfDocument(session->state.facts.path, document, BookReading::Kept);
    return WriteOutput(options.file, file.bytes, Durability::Flushed) ? ExitClean : ExitFailure;
}

int RunRecover(const QStringList& arguments)
{
    CommandLine line(arguments);
    const RecoverOptions options = ReadOptions(line);
    if (!line.error().isEmpty()) {
        PrintErrorLine(u"vmk recover: "_s + line.error() + u"; try vmk recover --help"_s);
        return ExitFailure;
    }
    return options.journal.isEmpty() ? ListJournals(options.json) : WriteRecovered(options);
}

} // namespace

const Command RecoverCommand = {"recover", "list or convert the journals of interrupted sessions",
                                R"(usage: vmk recover [JOURNAL --out FILE] [--json]

While a book is edited, the editor writes a journal of the changes. After a crash, its next start offers the
text. A text that was declined there stays in its journal for 30 days.

Without JOURNAL, the journals of interrupted and declined sessions are listed: file, time of the last change,
book. JOURNAL is left as it is.

  --out FILE  write the text of JOURNAL as a book
  --json      print each journal as a JSON object on one line
  --help      show this text

Exit status: 0 success, 2 wrong usage, a journal that is damaged or in use by a running program, or a file that
cannot be read or written.
)",
                                RunRecover};

} // namespace vmk
