#include "FindReplaceWbF.h"

#include "DisplayView.h"
#include "Form1.h"
#include "HistoryDropDown.h"
#include "PanelBar.h"
#include "SearchField.h"
#include "StartUpVariables.h"
#include "VirtualKeys.h"
#include "WindowFunctions.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTimer>
#include <QToolButton>

#include <initializer_list>

/// The find window: its controls, opening and closing.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

QPointer<FindReplaceWbF> TheWindow;

constexpr int Margin = 8;
constexpr int FrameMargin = 5;
constexpr int RowSpacing = 8;

template <typename Control>
Control* Make(QWidget* parent, const char* name, const char* caption = "")
{
    auto* control = new Control(parent);
    control->setObjectName(QLatin1StringView(name));
    if constexpr (requires { control->setText(QString()); })
        control->setText(QLatin1StringView(caption));
    return control;
}

} // namespace

bool FindWindowOpen()
{
    return TheWindow;
}

bool HandleFindKey(int keyCode, int shift, bool ctrl, bool alt)
{
    constexpr int F3 = VirtualKey::F1 + 2;
    constexpr int F4 = VirtualKey::F1 + 3;
    if (!TheWindow || ctrl || alt || shift == 1 || TheWindow->isRunning())
        return false;
    if (keyCode == F3)
        TheWindow->DoFind();
    else if (keyCode == F4)
        TheWindow->DoReplace();
    return keyCode == F3 || keyCode == F4;
}

FindReplaceWbF* FindReplaceWbF::Instance()
{
    return TheWindow;
}

void FindReplaceWbF::Show(Form1& owner)
{
    if (!TheWindow) {
        TheWindow = new FindReplaceWbF(owner);
        TheWindow->place();
    }
    TheWindow->show();
    TheWindow->raise();
    TheWindow->activateWindow();
}

FindReplaceWbF::FindReplaceWbF(Form1& ownerForm)
    : QWidget(&ownerForm, Qt::Dialog)
    , owner(ownerForm)
    , state(ownerForm.HTMLread->document())
{
    setObjectName(u"FindReplaceWbF"_s);
    setWindowTitle(u"VMK Find/Replace"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    makeControls();
    makeMenus();

    histories.LoadHistories(HistoryMode::Plain);
    BeginSearch(false);
    for (const Which which : {Which::Find, Which::Replace}) {
        showHistory(which);
        const QString selected = which == Which::Find ? MainSelectionText(false) : QString();
        field(which).Fill(selected.isEmpty() ? history(which).entries.value(0) : selected);
        field(which).selectAll();
    }
    TimerFindFocus->start();
}

FindReplaceWbF::~FindReplaceWbF() = default;

// ---------------------------------------------------------------- controls

void FindReplaceWbF::makeControls()
{
    makeFields();
    makeOptions();
    makeButtons();
    FrReport = Make<QFrame>(this, "FrReport");
    FrReport->setFrameShape(QFrame::StyledPanel);
    ReportL = Make<QLabel>(FrReport, "ReportL");
    ReportL->setAccessibleName(u"report"_s);
    ReportL->setTextInteractionFlags(Qt::NoTextInteraction);
    // A long report must not widen the window.
    ReportL->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    auto* reportLayout = new QHBoxLayout(FrReport);
    reportLayout->setContentsMargins(6, 2, 6, 2);
    reportLayout->addWidget(ReportL);

    TimerFindFocus = Make<QTimer>(this, "TimerFindFocus");
    TimerFindFocus->setSingleShot(true);
    TimerFindFocus->setInterval(100);
    connect(TimerFindFocus, &QTimer::timeout, this, [this] { SetFocusToFindWin(0); });
    // Has no effect, by design.
    TimerFocusToFindB = Make<QTimer>(this, "TimerFocusToFindB");
    TimerFocusToFindB->setSingleShot(true);
    TimerFocusToFindB->setInterval(200);
    layOut();
}

void FindReplaceWbF::makeFields()
{
    const auto makeRow = [this](Which which, const char* caption) {
        const bool isFind = which == Which::Find;
        (isFind ? FindL : ReplaceL) = Make<QLabel>(this, isFind ? "FindL" : "ReplaceL", caption);
        SearchField*& box = isFind ? FindCB : ReplaceCB;
        box = new SearchField(this);
        box->setObjectName(isFind ? u"FindCB"_s : u"ReplaceCB"_s);
        box->setAccessibleName(QLatin1StringView(caption));
        (isFind ? FindL : ReplaceL)->setBuddy(box);
        QToolButton*& drop = isFind ? DropF : DropR;
        drop = Make<QToolButton>(this, isFind ? "DropF" : "DropR");
        drop->setArrowType(Qt::DownArrow);
        // The given text, though the lists hold no genres.
        drop->setToolTip(u"show/hide genre list"_s);
        drop->setAccessibleName(isFind ? u"find history"_s : u"replace history"_s);
        // A click must not take the focus from the list, which closes when it loses the focus.
        drop->setFocusPolicy(Qt::NoFocus);
        connect(drop, &QToolButton::clicked, this, [this, which] { ToggleList(which); });
        HistoryDropDown*& shown = isFind ? ListF : ListR;
        shown = new HistoryDropDown(this);
        shown->setObjectName(isFind ? u"ListF"_s : u"ListR"_s);
        shown->setAccessibleName(drop->accessibleName());
        connectField(which);
    };
    makeRow(Which::Find, "find");
    makeRow(Which::Replace, "replace");
}

void FindReplaceWbF::connectField(Which which)
{
    SearchField& box = field(which);
    connect(&box, &SearchField::findKey, this, [this] { FindB->click(); });
    connect(&box, &SearchField::replaceKey, this, [this] { ReplaceB->click(); });
    connect(&box, &SearchField::mousePressed, this, &FindReplaceWbF::HideBothLists);
    connect(&box, &SearchField::dropDownKey, this, [this, which] { ToggleList(which); });
    HistoryDropDown& shown = list(which);
    connect(&shown, &HistoryDropDown::chosen, &box, &SearchField::Fill);
    connect(&shown, &HistoryDropDown::closeRequested, this,
            [this, which](bool refocus) { hideList(which, refocus); });
}

void FindReplaceWbF::makeOptions()
{
    WholeWordB = Make<QCheckBox>(this, "WholeWordB", "whole word");
    MatchCaseB = Make<QCheckBox>(this, "MatchCaseB", "match case");
    RegExpB = Make<QCheckBox>(this, "RegExpB", "RegExp");
    RegExpB->setToolTip(u"find/replace regular expressions"_s);
    connect(RegExpB, &QCheckBox::clicked, this, &FindReplaceWbF::regExpToggled);

    DirectionOF = Make<QFrame>(this, "DirectionOF");
    DirectionOF->setFrameShape(QFrame::StyledPanel);
    DownB = Make<QRadioButton>(DirectionOF, "DownB", "down");
    UpB = Make<QRadioButton>(DirectionOF, "UpB", "up");
    DownB->setChecked(true);
    connect(DownB, &QRadioButton::clicked, this, [this] { BeginSearch(true); });
    connect(UpB, &QRadioButton::clicked, this, [this] { BeginSearch(true); });

    SearchOF = Make<QFrame>(this, "SearchOF");
    SearchOF->setFrameShape(QFrame::StyledPanel);
    SelectionB = Make<QCheckBox>(SearchOF, "SelectionB", "selection");
    connect(SelectionB, &QCheckBox::clicked, this, [this] { BeginSearch(false); });
    AutoFindNextB = Make<QCheckBox>(this, "AutoFindNextB", "auto-find next");
    MarkReplacedB = Make<QCheckBox>(this, "MarkReplacedB", "mark replaced");
}

void FindReplaceWbF::makeButtons()
{
    FindB = Make<QPushButton>(this, "FindB", "find (F3)");
    ReplaceB = Make<QPushButton>(this, "ReplaceB", "replace (F4)");
    ReplaceAllB = Make<QPushButton>(this, "ReplaceAllB", "replace all");
    UpdateB = Make<QPushButton>(this, "UpdateB", "new search");
    PasteToReplaceB = Make<QPushButton>(this, "PasteToReplaceB", "paste to replace");
    HelpB = Make<QPushButton>(this, "HelpB", "help");
    // There is no help to show.
    HelpB->setEnabled(false);
    connect(FindB, &QPushButton::clicked, this, &FindReplaceWbF::DoFind);
    connect(ReplaceB, &QPushButton::clicked, this, &FindReplaceWbF::DoReplace);
    connect(ReplaceAllB, &QPushButton::clicked, this, [this] {
        state.StopRequested = running;
        if (!running)
            DoReplaceAll();
    });
    connect(UpdateB, &QPushButton::clicked, this, [this] {
        BeginSearch(false);
        MainSelectionText(true);
    });
    connect(PasteToReplaceB, &QPushButton::clicked, this,
            [this] { PasteMainSelection(Which::Replace, false); });
}

/// Arranges the controls. Additional width goes to the fields and the report; the buttons stay at the right.
void FindReplaceWbF::layOut()
{
    // The rows of the three columns are level, and so are the boxes inside and below a frame.
    const auto column = [](int left, int top, std::initializer_list<QWidget*> rows) {
        auto* result = new QVBoxLayout;
        result->setContentsMargins(left, top, 0, 0);
        result->setSpacing(RowSpacing);
        for (QWidget* row : rows)
            result->addWidget(row);
        result->addStretch();
        return result;
    };
    const auto fill = [](QFrame* frame, std::initializer_list<QWidget*> rows) {
        auto* result = new QVBoxLayout(frame);
        result->setContentsMargins(FrameMargin, FrameMargin, FrameMargin, FrameMargin);
        result->setSpacing(RowSpacing);
        for (QWidget* row : rows)
            result->addWidget(row);
    };
    fill(DirectionOF, {DownB, UpB});
    fill(SearchOF, {SelectionB});
    const int inset = FrameMargin + SearchOF->frameWidth();
    auto* runs = new QVBoxLayout;
    runs->setSpacing(RowSpacing - inset);
    runs->addWidget(SearchOF);
    runs->addLayout(column(inset, 0, {AutoFindNextB, MarkReplacedB}));
    auto* choices = new QHBoxLayout;
    choices->setSpacing(2 * Margin);
    choices->addLayout(column(0, inset, {WholeWordB, MatchCaseB, RegExpB}));
    choices->addWidget(DirectionOF, 0, Qt::AlignTop);
    choices->addLayout(runs);
    choices->addStretch();
    choices->addWidget(PasteToReplaceB, 0, Qt::AlignTop);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {FindB, ReplaceB, ReplaceAllB, UpdateB, HelpB})
        buttons->addWidget(button);
    buttons->addStretch();

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(Margin, Margin, Margin, Margin);
    grid->addWidget(FindL, 0, 0);
    grid->addWidget(FindCB, 0, 1);
    grid->addWidget(DropF, 0, 2);
    grid->addWidget(ReplaceL, 1, 0);
    grid->addWidget(ReplaceCB, 1, 1);
    grid->addWidget(DropR, 1, 2);
    grid->addLayout(choices, 2, 0, 1, 3);
    grid->addWidget(FrReport, 3, 0, 1, 3);
    grid->addLayout(buttons, 0, 3, 4, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);

    const QList<QWidget*> order = {
        FindCB,     ReplaceCB, FindB, ReplaceB, ReplaceAllB, UpdateB,       HelpB,         WholeWordB,
        MatchCaseB, RegExpB,   DownB, UpB,      SelectionB,  AutoFindNextB, MarkReplacedB, PasteToReplaceB};
    for (qsizetype i = 0; i + 1 < order.size(); ++i)
        setTabOrder(order[i], order[i + 1]);
}

/// Moves the window below the main window, over its status bar. The height is fixed, and the first width is
/// the minimum.
void FindReplaceWbF::place()
{
    constexpr int CentredBelow = 16;
    ensurePolished();
    const QSize size = layout()->sizeHint();
    resize(size);
    setFixedHeight(size.height());
    setMinimumWidth(size.width());
    const float raised = -float(owner.Status->height()) * TwipsPerPixelY;
    if (PlaceFormBeside(*this, owner, CentredBelow, 0, raised))
        return;
    const QRect screenArea = QGuiApplication::primaryScreen()->availableGeometry();
    move(screenArea.center() - rect().center());
}

// ---------------------------------------------------------------- events

void FindReplaceWbF::closeEvent(QCloseEvent* event)
{
    if (running) {
        // Closes after the run has stopped.
        state.StopRequested = closeAfterRun = true;
        event->ignore();
        return;
    }
    saveHistories();
    TheWindow.clear();
    QWidget::closeEvent(event);
}

bool FindReplaceWbF::event(QEvent* event)
{
    // The main window's shortcuts of these keys apply to its tool windows too.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<const QKeyEvent*>(event)->key();
        if (key == Qt::Key_F3 || key == Qt::Key_F4) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void FindReplaceWbF::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (event->key() == Qt::Key_Escape) {
        if (running)
            state.StopRequested = true;
        else
            close();
        return;
    }
    if (!HandleFindKey(VirtualKeyCode(*event), modifiers.testFlag(Qt::ShiftModifier) ? 1 : 0,
                       modifiers.testFlag(Qt::ControlModifier), modifiers.testFlag(Qt::AltModifier)))
        QWidget::keyPressEvent(event);
}

void FindReplaceWbF::mousePressEvent(QMouseEvent* event)
{
    HideBothLists();
    QWidget::mousePressEvent(event);
}

void FindReplaceWbF::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (!isMinimized())
        HideBothLists();
}

} // namespace vmk
