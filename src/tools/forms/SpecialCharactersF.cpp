#include "SpecialCharactersF.h"

#include "DisplayView.h"
#include "Form1.h"
#include "NonBreakingSpace.h"
#include "SettingsVariables.h"
#include "SpecialSymbols.h"
#include "TypingRules.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int Columns = 6;
constexpr QSize ButtonSize(52, 40);
constexpr qreal SymbolScale = 1.5;

/// Returns the document of the book; null if no book is open for editing.
DisplayDocument* Book()
{
    DisplayView& display = *Form1::Instance()->HTMLread;
    return display.designMode() == "On"_L1 ? &display.document() : nullptr;
}

QString CodeText(int code)
{
    const QString unicode = QString::number(SymbolText(code)[0].unicode(), 16).toUpper();
    return u"U+%1, code %2"_s.arg(unicode.rightJustified(4, u'0')).arg(code);
}

QString ToolTipOf(const WrappingSymbols& row)
{
    const QString codes
        = row.left == row.right ? CodeText(row.left) : CodeText(row.left) + u"; "_s + CodeText(row.right);
    return QLatin1StringView(row.name) + u" around the selection ("_s + codes + u')';
}

} // namespace

SpecialCharactersF::SpecialCharactersF()
    : ToolForm(u"SpecialCharactersF"_s, u" special symbols"_s)
{
    auto* all = new QVBoxLayout(this);
    grid = new QGridLayout;
    grid->setSpacing(4);
    all->addLayout(grid);
    addWrappingButtons();
    addSingleButtons();

    auto* label = new QLabel(u"Unicode (separated by space)"_s);
    label->setObjectName(u"Label1"_s);
    all->addWidget(label);
    AsciiCodeT = new QLineEdit;
    AsciiCodeT->setObjectName(u"AsciiCodeT"_s);
    label->setBuddy(AsciiCodeT);
    all->addWidget(AsciiCodeT);
    InsertAsciiB = new QPushButton(u"insert from Unicode field"_s);
    InsertAsciiB->setObjectName(u"InsertAsciiB"_s);
    all->addWidget(InsertAsciiB);
    connect(AsciiCodeT, &QLineEdit::returnPressed, this, &SpecialCharactersF::InsertAsciiB_Click);
    connect(InsertAsciiB, &QPushButton::clicked, this, &SpecialCharactersF::InsertAsciiB_Click);
}

QPushButton* SpecialCharactersF::addButton(const QString& name, const QString& caption,
                                           const QString& toolTip)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setMinimumSize(ButtonSize);
    QFont large = button->font();
    large.setPointSizeF(large.pointSizeF() * SymbolScale);
    button->setFont(large);
    grid->addWidget(button, buttonCount / Columns, buttonCount % Columns);
    ++buttonCount;
    return button;
}

void SpecialCharactersF::addWrappingButtons()
{
    for (const WrappingSymbols& row : WrappingSymbolTable()) {
        const QString name = QLatin1StringView(row.button);
        const QString caption = SymbolText(row.left) + QString(row.blanks, u' ') + SymbolText(row.right);
        connect(addButton(name, caption, ToolTipOf(row)), &QPushButton::clicked, this, [name] {
            if (DisplayDocument* book = Book())
                InsertSpecialSymbols(*book, name, QString());
        });
    }
}

void SpecialCharactersF::addSingleButtons()
{
    for (const SingleSymbol& row : SingleSymbolTable()) {
        const QString name = QLatin1StringView(row.button);
        const QString caption = name == "ThreePoints"_L1 ? u"..."_s : SymbolText(row.code);
        const QString toolTip = QLatin1StringView(row.name) + u" ("_s + CodeText(row.code) + u')';
        connect(addButton(name, caption, toolTip), &QPushButton::clicked, this, [code = row.code] {
            if (DisplayDocument* book = Book())
                InsertSpecialCharacter(*book, code);
        });
    }
    QPushButton* nbsp = addButton(u"Nbsp"_s, u"nbsp"_s, u"non-breaking space (U+00A0, code 160)"_s);
    nbsp->setFont(font());
    connect(nbsp, &QPushButton::clicked, this, [] {
        if (DisplayDocument* book = Book())
            InsertNbsp(*book, ShownNbsp(ShowNbsp == 1));
    });
}

void SpecialCharactersF::InsertAsciiB_Click()
{
    DisplayDocument* book = Book();
    if (book && !AsciiCodeT->text().trimmed().isEmpty())
        InsertSpecialSymbols(*book, QLatin1StringView(UserAsciiKind), AsciiCodeT->text());
}

void SpecialCharactersF::keyPressEvent(QKeyEvent* event)
{
    // Enter clicks the focused button, as the space bar does.
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && button)
        button->click();
    else
        ToolForm::keyPressEvent(event);
}

} // namespace vmk
