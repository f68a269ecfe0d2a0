#include "WindowTest.h"

#include <QDir>
#include <QRegularExpression>

/// Compares the tutorial books with the window: a reader who follows them has used every command.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class TutorialBooks : public WindowTest
{
protected:
    struct Language
    {
        const char* name;
        QString folder;
    };

    static std::vector<Language> Languages()
    {
        return {{"Russian", SampleBooksFolder}, {"English", SampleBooksFolder + u"/English"_s}};
    }

    static QStringList BooksIn(const QString& folder)
    {
        QStringList books;
        for (const QString& name : QDir(folder).entryList({u"*.fb2"_s}, QDir::Files, QDir::Name))
            books.append(folder + u'/' + name);
        return books;
    }

    /// The red lines of a book: its comments.
    static QStringList InstructionsOf(const QString& book)
    {
        static const QRegularExpression comment(u"<!--(.*?)-->"_s);
        QStringList lines;
        for (const auto& match : comment.globalMatch(QString::fromStdString(ReadFileText(book))))
            lines.append(match.captured(1).simplified());
        return lines;
    }

    static QString InstructionsIn(const QString& folder)
    {
        QStringList lines;
        for (const QString& book : BooksIn(folder))
            lines += InstructionsOf(book);
        return lines.join(u'\n');
    }

    /// The name of a command in a caption, without the keys in brackets after it.
    static QString NameIn(const char* caption)
    {
        return QString(QLatin1StringView(caption)).section(u'(', 0, 0).simplified();
    }

    static QStringList KeysIn(const char* caption)
    {
        const QString keys = QString(QLatin1StringView(caption)).section(u'(', 1).section(u')', 0, 0);
        return keys.split(u", "_s, Qt::SkipEmptyParts);
    }

    static bool Names(const QString& instructions, const QString& term)
    {
        const QRegularExpression whole(u"(?<![\\w+])"_s + QRegularExpression::escape(term) + u"(?![\\w+])"_s,
                                       QRegularExpression::CaseInsensitiveOption
                                           | QRegularExpression::UseUnicodePropertiesOption);
        return instructions.contains(whole);
    }

    /// Names and keys of every command that a user can reach.
    static QStringList EverythingThereIs()
    {
        QStringList terms;
        const auto add = [&terms](const char* caption, const char* accelerator) {
            terms += NameIn(caption);
            terms += KeysIn(caption);
            if (accelerator)
                terms += QLatin1StringView(accelerator);
        };
        const auto addEntries = [&add](std::span<const MenuEntry> entries) {
            for (const MenuEntry& row : entries) {
                if (!row.hidden && ProcedureOf(row.command))
                    add(row.caption, row.accelerator);
            }
        };
        for (const Menu& menu : MainMenu())
            addEntries(menu.entries);
        addEntries(ContextMenu());
        for (const ToolbarButton& button : ToolbarDesign()) {
            // The tool tip of the button has the same spelling.
            if (ProcedureOf(button.command) && button.command != Command::LoadNewSchema)
                add(button.toolTip, nullptr);
        }
        terms.removeDuplicates();
        return terms;
    }
};

} // namespace

TEST_F(TutorialBooks, EveryCommandIsNamedInBothLanguagesWithItsKeys)
{
    const QStringList terms = EverythingThereIs();
    ASSERT_GE(terms.size(), 50);
    for (const Language& language : Languages()) {
        const QString instructions = InstructionsIn(language.folder);
        for (const QString& term : terms)
            EXPECT_TRUE(Names(instructions, term)) << language.name << ": " << term.toStdString();
    }
}

TEST_F(TutorialBooks, EveryNamedKeyHasACommand)
{
    // Keys of the display and of the toolkit's menus that no entry names.
    QStringList known{u"Ctrl+Home"_s, u"F10"_s};
    known += EverythingThereIs();
    static const QRegularExpression key(u"\\b(F\\d+|(Ctrl|Shift|Alt)\\+\\w+)"_s);
    for (const Language& language : Languages()) {
        for (const auto& match : key.globalMatch(InstructionsIn(language.folder)))
            EXPECT_TRUE(known.contains(match.captured()))
                << language.name << ": " << match.captured().toStdString();
    }
}

TEST_F(TutorialBooks, BothLanguagesHaveTheSameBooksInTheSameOrder)
{
    const QStringList russian = BooksIn(SampleBooksFolder);
    const QStringList english = BooksIn(SampleBooksFolder + u"/English"_s);
    ASSERT_EQ(russian.size(), 5);
    ASSERT_EQ(english.size(), russian.size());
    for (qsizetype i = 0; i < russian.size(); ++i) {
        const QString number = QString::number(i + 1) + u' ';
        EXPECT_TRUE(QFileInfo(russian[i]).fileName().startsWith(number));
        EXPECT_TRUE(QFileInfo(english[i]).fileName().startsWith(number));
        EXPECT_EQ(InstructionsOf(russian[i]).size(), InstructionsOf(english[i]).size()) << i + 1;
    }
}

TEST_F(TutorialBooks, EveryBookBeginsWithAnInstruction)
{
    for (const Language& language : Languages()) {
        for (const QString& book : BooksIn(language.folder)) {
            const QString text = QString::fromStdString(ReadFileText(book));
            EXPECT_LT(text.indexOf(u"<!--"_s), text.indexOf(u"<description>"_s)) << book.toStdString();
        }
    }
}

TEST_F(TutorialBooks, EveryBookIsValid)
{
    Open();
    for (const Language& language : Languages()) {
        for (const QString& book : BooksIn(language.folder)) {
            LoadAndWait(book);
            form->RunCommand(Command::Validate);
            EXPECT_EQ(Message(), u"No errors (against schema)"_s) << book.toStdString();
        }
    }
}

} // namespace vmk
