#include "SettingsVariables.h"
#include "WindowTest.h"

#include <optional>
#include <string>

/// Triggers every entry of the menus and the context menu and every button of the toolbar, with a book,
/// without a book and on the welcome page. Each has its effect, or is disabled for a reason.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

enum class Page
{
    Book,
    Empty,
    Welcome
};

/// The effect of a command. The last three need a book.
enum class Effect
{
    /// A window, a box, a dialog, a message, a page in the browser, another image, or the program's end.
    Seen,
    TextChanges,
    ClipboardChanges,
    ViewMoves
};

struct Expectation
{
    Command command;
    Effect effect;
};

constexpr Expectation Expectations[] = {
    {Command::OpenFile, Effect::Seen},
    {Command::OpenLastFile, Effect::Seen},
    {Command::SaveFile, Effect::Seen},
    {Command::SaveFileAs, Effect::Seen},
    {Command::SaveAndReload, Effect::Seen},
    {Command::Exit, Effect::Seen},
    {Command::Undo, Effect::TextChanges},
    {Command::Redo, Effect::TextChanges},
    {Command::Delete, Effect::TextChanges},
    {Command::Cut, Effect::TextChanges},
    {Command::Copy, Effect::ClipboardChanges},
    {Command::Paste, Effect::TextChanges},
    {Command::CopyText, Effect::ClipboardChanges},
    {Command::PasteHtml, Effect::TextChanges},
    {Command::RePaintSelection, Effect::TextChanges},
    {Command::RightShift, Effect::TextChanges},
    {Command::LeftShift, Effect::TextChanges},
    {Command::InsertNbsp, Effect::TextChanges},
    {Command::InsertTags, Effect::Seen},
    {Command::InsertSpecialSymbols, Effect::Seen},
    {Command::Bold, Effect::TextChanges},
    {Command::Italic, Effect::TextChanges},
    {Command::Superscript, Effect::TextChanges},
    {Command::Subscript, Effect::TextChanges},
    {Command::LowerCase, Effect::TextChanges},
    {Command::UpperCase, Effect::TextChanges},
    {Command::ProperCase, Effect::TextChanges},
    {Command::PreviousPosition, Effect::ViewMoves},
    {Command::NextPosition, Effect::ViewMoves},
    {Command::Validate, Effect::Seen},
    {Command::ReadInHaaliReader, Effect::Seen},
    {Command::ShowSchema, Effect::Seen},
    {Command::LoadNewSchema, Effect::Seen},
    {Command::CheckForSchemaUpdates, Effect::Seen},
    {Command::InLineTags, Effect::Seen},
    {Command::FindReplace, Effect::Seen},
    {Command::BookCleaner, Effect::Seen},
    {Command::HtmlFragmentEditor, Effect::Seen},
    {Command::SpellCheck, Effect::Seen},
    {Command::ExtractAllImages, Effect::Seen},
    {Command::DeleteExtractedImages, Effect::Seen},
    {Command::ShowBinaryList, Effect::Seen},
    {Command::Settings, Effect::Seen},
    {Command::Toolbar, Effect::Seen},
    {Command::About, Effect::Seen},
    {Command::FictionBookCite, Effect::Seen},
    {Command::GoToLink, Effect::Seen},
    {Command::CheckId, Effect::Seen},
    {Command::ShowImage, Effect::Seen},
    {Command::RemoveImageResource, Effect::Seen},
    {Command::AddImageResource, Effect::Seen},
};

std::optional<Effect> EffectOf(Command command)
{
    for (const Expectation& row : Expectations) {
        if (row.command == command)
            return row.effect;
    }
    return std::nullopt;
}

/// The book of the walk: a link, an id, an image with its resource and one without, and room to scroll.
std::string WalkBook()
{
    std::string text = SmallBook;
    text.replace(text.find("Third line."), 11,
                 "<a l:href=\"#n1\">note</a><image l:href=\"#pic.png\"/><image l:href=\"#none.png\"/>");
    text.replace(text.find("<p>Second"), 3, "<p id=\"n1\">");
    std::string more;
    for (int i = 0; i < 150; ++i)
        more += "<p>One more line.</p>";
    text.insert(text.find("</section>"), more);
    text.replace(
        text.find("</body>"), 7,
        "</body><binary id=\"pic.png\" content-type=\"image/png\">"
        "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNgAAAAAgABSK+kcQAAAABJRU5ErkJggg=="
        "</binary>");
    return text;
}

/// Where the pointer is for an entry of the context menu that is about one tag.
QString TagFor(Command command)
{
    switch (command) {
    case Command::GoToLink:
        return u"<a l:href"_s;
    case Command::CheckId:
        return u"<p id"_s;
    case Command::ShowImage:
    case Command::RemoveImageResource:
        return u"<image l:href=\"#pic"_s;
    case Command::AddImageResource:
        return u"<image l:href=\"#none"_s;
    default:
        return u"First"_s;
    }
}

class EveryEntry : public WindowTest, public testing::WithParamInterface<Page>
{
protected:
    ~EveryEntry() override { CloseWindows(); }

    void SetUp() override
    {
        QFile::remove(ExtractedImagesFolder);
        roomy = false;
        book = MakeBook(WalkBook());
        Show();
    }

    /// Restores the initial state of the walk.
    void Show()
    {
        CloseWindows();
        endCount = 0;
        LastFile = book;
        if (!form->isVisible()) {
            FirstStart = GetParam() == Page::Welcome;
            form->Load();
            form->PlaceForm(0, 0, 12'000, 9'000);
            const QString& start = GetParam() == Page::Welcome ? WelcomeFile : EmptyPageFile;
            ASSERT_TRUE(WaitFor([&] { return View().location() == start; }));
        }
        if (GetParam() == Page::Book) {
            MakeBook(WalkBook());
            LoadAndWait(book);
        }
        SetClipboardText(u"clip"_s);
        form->StatusMsg->setPanelText(1, u"before"_s);
        form->Status->setPanelText(1, u"before"_s);
    }

    void CloseWindows()
    {
        for (QWidget* window : Windows())
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QWidgetList Windows() const
    {
        QWidgetList windows;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window != form.get())
                windows.append(window);
        }
        return windows;
    }

    /// Brings the book into a state in which the command has something to do.
    void Prepare(Command command)
    {
        if (GetParam() != Page::Book)
            return;
        const Position at = PlaceOf(u"First words"_s);
        PutCaret(at);
        switch (command) {
        case Command::Undo:
            Type(u"z"_s);
            break;
        case Command::Redo:
            Type(u"z"_s);
            form->RunCommand(Command::Undo);
            break;
        case Command::RePaintSelection:
            Type(u"<i>"_s);
            break;
        case Command::NextPosition:
        case Command::PreviousPosition:
            View().scroll(0, 1'500);
            WaitFor([this] { return !form->TimerScroll->isActive(); });
            if (command == Command::NextPosition)
                form->RunCommand(Command::PreviousPosition);
            break;
        default:
            Document().setSelection(at, {at.line, at.offset + 11});
        }
    }

    /// Returns the visible state and the images of the book, but not its text.
    QStringList SeenState()
    {
        QStringList seen{Message(), Panel(1), form->windowTitle(), View().location(),
                         QString::number(BinaryPart.size())};
        for (const qsizetype count : {Windows().size(), boxTexts.size(), qsizetype(requests.size()),
                                      opened.size(), soundNames.size(), qsizetype(endCount)})
            seen.append(QString::number(count));
        return seen;
    }

    /// Triggers an entry and checks its effect.
    void Walk(QAction& entry, Command command, const std::string& name)
    {
        Prepare(command);
        const QStringList seen = SeenState();
        const QByteArray page = Document().savePage();
        const int scrollTop = View().scrollTop();
        const auto happened = [&, effect = EffectOf(command)] {
            switch (*effect) {
            case Effect::Seen:
                return SeenState() != seen;
            case Effect::TextChanges:
                return Document().savePage() != page;
            case Effect::ClipboardChanges:
                return ClipboardText() != u"clip"_s;
            case Effect::ViewMoves:
                return View().scrollTop() != scrollTop;
            }
            return false;
        };
        entry.trigger();
        const bool bookNeeded = EffectOf(command) != Effect::Seen;
        if (GetParam() == Page::Book || !bookNeeded) {
            EXPECT_TRUE(QTest::qWaitFor(happened, 3'000)) << name << " does nothing";
        }
        if (GetParam() != Page::Book && bookNeeded) {
            QCoreApplication::processEvents();
            EXPECT_EQ(Document().savePage(), page) << name << " changes a page that is no book";
            EXPECT_TRUE(boxTexts.isEmpty()) << name;
        }
        boxTexts.clear();
    }

    /// Returns why an entry is disabled; empty if it must be enabled.
    QString ReasonOf(Command command) const
    {
        switch (command) {
        case Command::ExtractAllImages:
        case Command::ShowBinaryList:
            return BinaryPart.empty() ? u"the book has no images"_s : QString();
        case Command::DeleteExtractedImages:
            return u"no images have been extracted"_s;
        case Command::GoToLink:
        case Command::CheckId:
        case Command::ShowImage:
        case Command::RemoveImageResource:
        case Command::AddImageResource:
            return GetParam() == Page::Book ? QString() : u"there is no such tag under the pointer"_s;
        default:
            return {};
        }
    }

    /// Triggers an entry if it is enabled; else reports the reason.
    void Visit(QAction& entry, Command command, const std::string& name)
    {
        ASSERT_TRUE(EffectOf(command)) << name << " is not on the list";
        ASSERT_TRUE(ProcedureOf(command)) << name << " has no procedure";
        if (entry.isEnabled()) {
            Walk(entry, command, name);
            if (HasFatalFailure())
                return;
            Show();
            return;
        }
        const QString reason = ReasonOf(command);
        EXPECT_FALSE(reason.isEmpty()) << name << " is disabled without a reason";
        std::printf("%s is disabled: %s\n", name.c_str(), reason.toUtf8().constData());
    }

    void VisitMenu(const char* name)
    {
        for (const Menu& menu : MainMenu()) {
            if (QLatin1StringView(menu.name) != QLatin1StringView(name))
                continue;
            for (const MenuEntry& row : menu.entries) {
                if (row.hidden)
                    continue;
                auto* shown = form->menuBar()->findChild<QMenu*>(QLatin1StringView(menu.name));
                Q_EMIT shown->aboutToShow();
                Visit(*form->Entry(row.name), row.command, row.name);
            }
        }
    }

    QString book;
};

std::string NameOfPage(const testing::TestParamInfo<Page>& info)
{
    switch (info.param) {
    case Page::Book:
        return "Book";
    case Page::Empty:
        return "Empty";
    case Page::Welcome:
        break;
    }
    return "Welcome";
}

} // namespace

TEST_P(EveryEntry, OfTheMenuFile)
{
    VisitMenu("uFile");
}

TEST_P(EveryEntry, OfTheMenuEdit)
{
    VisitMenu("uEdit");
}

TEST_P(EveryEntry, OfTheMenuGo)
{
    VisitMenu("uGo");
}

TEST_P(EveryEntry, OfTheMenuBook)
{
    VisitMenu("uBook");
}

TEST_P(EveryEntry, OfTheMenuTools)
{
    VisitMenu("uTools");
}

TEST_P(EveryEntry, OfTheMenusConfigurationAndHelp)
{
    VisitMenu("uConfiguration");
    VisitMenu("uHelp");
}

TEST_P(EveryEntry, OfTheContextMenu)
{
    for (const MenuEntry& row : ContextMenu()) {
        if (row.hidden)
            continue;
        if (GetParam() == Page::Book) {
            const Position at = PlaceOf(TagFor(row.command));
            QTest::mouseClick(View().viewport(), Qt::RightButton, {}, PointOf({at.line, at.offset + 2}));
            ASSERT_TRUE(WaitFor([this] { return form->MnRightClick->isVisible(); }));
            form->MnRightClick->close();
            form->StatusMsg->setPanelText(1, u"before"_s);
        }
        Visit(*form->Entry(row.name), row.command, row.name);
    }
}

TEST_P(EveryEntry, OfTheToolbar)
{
    for (const ToolbarButton& row : ToolbarDesign())
        Visit(*form->ToolbarAction(QLatin1StringView(row.key)), row.command, row.key);
}

INSTANTIATE_TEST_SUITE_P(Pages, EveryEntry, testing::Values(Page::Book, Page::Empty, Page::Welcome),
                         NameOfPage);

} // namespace vmk
