#include "EditHtmlWbF.h"

#include "Dialogs.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "Form1.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWindow>

#include <utility>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize FormSize(800, 420);
constexpr int LeastHeight = 240;
constexpr int CodeFieldWidth = 80;
constexpr int ButtonMargin = 12;
constexpr int EscapeKey = 27;

DisplayView& Display()
{
    return *Form1::Instance()->HTMLread;
}

QLineEdit* MakeCodeField(const QString& name)
{
    auto* field = new QLineEdit;
    field->setObjectName(name);
    field->setReadOnly(true);
    field->setFixedWidth(CodeFieldWidth);
    return field;
}

} // namespace

EditHtmlWbF::EditHtmlWbF()
    : ToolForm(u"EditHtmlWbF"_s, u" HTML Fragment Editor"_s)
{
    makeEditor();
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button :
         {ApplyB = makeButton(u"ApplyB"_s, u"apply"_s), RefreshB = makeButton(u"RefreshB"_s, u"refresh"_s),
         FontB = makeButton(u"FontB"_s, u"font"_s), ColorB = makeButton(u"ColorB"_s, u"color"_s),
         FindB = makeButton(u"FindB"_s, u"find"_s), HelpB = makeButton(u"HelpB"_s, u"help"_s)})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(makeValidationFrame());
    buttons->addWidget(makeCodeFrame());
    auto* all = new QVBoxLayout(this);
    all->addWidget(HtmlEditor, 1);
    all->addLayout(buttons);
    setMinimumHeight(LeastHeight);
    resize(FormSize);
    // These buttons have no action, by design.
    FindB->setEnabled(false);
    HelpB->setEnabled(false);

    connect(ApplyB, &QPushButton::clicked, this, &EditHtmlWbF::ApplyFragment);
    connect(RefreshB, &QPushButton::clicked, this, &EditHtmlWbF::Refresh);
    connect(FontB, &QPushButton::clicked, this, &EditHtmlWbF::ChooseViewerFont);
    connect(ColorB, &QPushButton::clicked, this, &EditHtmlWbF::PaintFragment);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &EditHtmlWbF::noteActiveWindow);
}

void EditHtmlWbF::makeEditor()
{
    HtmlEditor = new DisplayView(this);
    HtmlEditor->setObjectName(u"HtmlEditor"_s);
    HtmlEditor->setAccessibleName(u"HTML source"_s);
    HtmlEditor->events.onclick = [this](DisplayEvent& event) {
        event.returnValue = false;
        ShowCharCodes();
    };
    HtmlEditor->events.onkeydown = [this](DisplayEvent& event) {
        if (event.keyCode != EscapeKey)
            return;
        event.returnValue = false;
        close();
    };
    // A file dropped here is not opened.
    HtmlEditor->events.onbeforenavigate = [](const QString&, bool& cancel) { cancel = true; };
}

QPushButton* EditHtmlWbF::makeButton(const QString& name, const QString& caption)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    // Narrower than the buttons of dialogs, so that one row holds all controls.
    button->setFixedWidth(button->fontMetrics().horizontalAdvance(caption) + 2 * ButtonMargin);
    return button;
}

QGroupBox* EditHtmlWbF::makeValidationFrame()
{
    auto* frame = new QGroupBox;
    frame->setObjectName(u"ValFrame"_s);
    ValidateSelectionB = new QCheckBox(u"validate selection"_s);
    ValidateSelectionB->setObjectName(u"ValidateSelectionB"_s);
    auto* row = new QHBoxLayout(frame);
    row->addWidget(ValidateSelectionB);
    return frame;
}

QGroupBox* EditHtmlWbF::makeCodeFrame()
{
    auto* frame = new QGroupBox;
    frame->setObjectName(u"CodeFrame"_s);
    AsciiNumT = MakeCodeField(u"AsciiNumT"_s);
    HexNumT = MakeCodeField(u"HexNumT"_s);
    auto* row = new QHBoxLayout(frame);
    const auto add = [row](const QString& name, const QString& caption, QLineEdit* field) {
        auto* label = new QLabel(caption);
        label->setObjectName(name);
        label->setBuddy(field);
        row->addWidget(label);
        row->addWidget(field);
    };
    add(u"AscL"_s, u"ansi"_s, AsciiNumT);
    // The name means hexadecimal; the number is decimal, by design.
    add(u"HexL"_s, u"unicode"_s, HexNumT);
    return frame;
}

void EditHtmlWbF::Form_Load()
{
    showCodes({});
    fragment = Fragment();
    wasElsewhere = true;
}

void EditHtmlWbF::Form_Unload()
{
    fragment = Fragment();
    HtmlEditor->setPage(BlankFragmentPage());
}

bool EditHtmlWbF::event(QEvent* event)
{
    const bool handled = ToolForm::event(event);
    if (event->type() == QEvent::WindowActivate && isVisible() && Form1::Instance()
        && std::exchange(wasElsewhere, false))
        Refresh();
    return handled;
}

void EditHtmlWbF::noteActiveWindow(const QWindow* window)
{
    // Null if another program is active.
    if (!window)
        return;
    // A dialog of this form is not another window.
    const QWindow* own = windowHandle();
    while (window && window != own)
        window = window->transientParent();
    wasElsewhere = wasElsewhere || !window;
}

void EditHtmlWbF::ClearEditor()
{
    HtmlEditor->setPage(BlankFragmentPage());
    HtmlEditor->setDesignMode(u"On"_s);
}

void EditHtmlWbF::Refresh()
{
    ClearEditor();
    fragment = TakeFragment(Display().document(), ValidateSelectionB->isChecked());
    if (!fragment.source.isEmpty())
        ShowFragment(HtmlEditor->document(), fragment.source);
}

void EditHtmlWbF::PageReplaced()
{
    if (isVisible())
        Refresh();
}

void EditHtmlWbF::ApplyFragment()
{
    if (Display().designMode() == "On"_L1)
        vmk::ApplyFragment(Display().document(), fragment, FragmentText(HtmlEditor->document()));
}

void EditHtmlWbF::PaintFragment()
{
    vmk::PaintFragment(HtmlEditor->document());
    HtmlEditor->scroll(0, 0);
}

void EditHtmlWbF::ShowCharCodes()
{
    showCodes(CodesInFragment(HtmlEditor->document()));
}

void EditHtmlWbF::showCodes(const ShownCodes& codes)
{
    AsciiNumT->setText(codes.ansi);
    HexNumT->setText(codes.unicode);
}

void EditHtmlWbF::ChooseViewerFont()
{
    // The page of the editor specifies no font and is always shown in the default font.
    (void)AskFont({.title = u"Change viewer font"_s, .current = {}});
}

void EditHtmlWbF::PaintSelectionSource()
{
    fragment = TakeFragment(Display().document(), ValidateSelectionB->isChecked());
    HtmlEditor->setPage(PaintedSourcePage(fragment.source));
}

} // namespace vmk
