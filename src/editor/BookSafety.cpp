#include "BookSafety.h"

#include "BookOnDisk.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "DisplayView.h"
#include "FbFunctions.h"
#include "FilePaths.h"
#include "MainWindowSeams.h"
#include "OpenSession.h"
#include "UnsavedText.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

constexpr int GeneralPanel = 1;

void ReportProblem(const QString& problem)
{
    ShowStatusPanel(GeneralPanel,
                    problem.isEmpty() ? u"unsaved text is safe again"_s
                                      : u"unsaved text is not safe: "_s + problem);
}

/// The page of a session, as the display shows it.
QByteArray PageOf(const JournalBase& session)
{
    DisplayDocument document;
    ShowSession(session, document);
    return document.savePage();
}

} // namespace

BookSafety::BookSafety(DisplayView& recorded)
    : view(recorded)
    , recorder(recorded.document(), RecoveryFolder(), ReportProblem)
{
    SetRecorder(&recorder);
}

BookSafety::~BookSafety()
{
    SetRecorder(nullptr);
}

bool BookSafety::offerRecovery()
{
    const QString folder = RecoveryFolder();
    CleanRecoveryFolder(folder);
    QStringList damaged;
    bool isFound = false;
    while (!isFound) {
        std::optional<InterruptedSession> session = NewestInterruptedSession(folder, damaged);
        if (!session)
            break;
        const QString question
            = u"Vellumark was interrupted while editing %1 (%2). Recover the unsaved text?"_s.arg(
                FileNameOf(session->state.facts.path), session->time.toString(u"dd.MM.yyyy HH:mm"_s));
        if (YesNoBox(question)) {
            if (!show(*session))
                break;
            isFound = true;
        } else {
            news = u"the unsaved text is kept for %1 days: "_s.arg(DaysOfDeclined) + DeclineSession(*session);
        }
    }
    if (!damaged.isEmpty())
        news = u"the record of an interrupted session is damaged: "_s + damaged.join(u", "_s);
    if (!isFound && !news.isEmpty())
        ShowStatus(news);
    return isFound;
}

bool BookSafety::show(InterruptedSession& session)
{
    TakeFacts(session.state);
    const QByteArray page = PageOf(session.state);
    if (!ShowPageOfBook(session.state.facts.path, {page.constData(), std::size_t(page.size())}))
        return false;
    shown = std::move(session);
    isShowing = true;
    return true;
}

QString BookSafety::completionText()
{
    if (isShowing)
        return finishRecovery();
    QString text = u"document complete"_s;
    if (!news.isEmpty())
        return text + u"; "_s + std::exchange(news, {});
    const QString unsaved = TakeNewsOfUnsavedText(RecoveryFolder(), CurrentBook);
    return unsaved.isEmpty() ? text : text + u"; its unsaved text is kept as: "_s + unsaved;
}

QString BookSafety::finishRecovery()
{
    isShowing = false;
    const JournalBase& session = shown->state;
    DisplayDocument& document = view.document();
    // A page holds less than its lines only for texts that no command makes. Undo then leads to the page.
    if (document.savePage() != PageOf(session))
        document.splice(0, document.lineCount(), LinesOfSession(session, document.tags()),
                        {{0, 0}, {0, 0}, {0, 0}, false});
    document.setSelection(session.selection.anchor, session.selection.focus);
    view.scrollIntoView(session.selection.focus);
    BookUnchanged = false;
    // The old journal is removed only when the text is in the new one.
    recorder.beginUnsaved([this] {
        if (shown)
            shown->journal.remove();
        shown.reset();
    });

    QString text = u"unsaved text recovered"_s;
    const QString path = session.facts.path;
    if (!shown->isComplete)
        text += u"; its last changes could not be read"_s;
    if (!StateOfFile(path).exists())
        text += u"; the file no longer exists: "_s + path;
    else if (WasChangedByOthers(path))
        text += u"; the file was changed meanwhile: "_s + path;
    return text;
}

} // namespace vmk
