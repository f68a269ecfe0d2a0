#pragma once

#include "SpellCheckWalk.h"
#include "SpellShelf.h"
#include "SuggestionWorker.h"

#include <QElapsedTimer>
#include <QWidget>

#include <chrono>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedLayout;
class QTimer;

namespace vmk {

class Form1;

/// The spell check's window, at most one at a time. It stays open while the user works in the main window;
/// each action works on the display as it is at that moment.
///
/// Suggestions come from another thread. The list shows them when they are complete, or after 0.3 s what was
/// found by then, so that going from word to word never waits for them.
class SpellCheckF : public QWidget, private SpellCheckWindow
{
    Q_OBJECT

public:
    /// Opens the window, or brings the open one to the front.
    static void ShowForm(Form1& owner);
    /// The open window; null for none.
    [[nodiscard]] static SpellCheckF* Instance();

    ~SpellCheckF() override;

    /// The display shows another page: ends a check that is under way.
    void PageReplaced();

    [[nodiscard]] const SpellCheckWalk& Check() const { return check; }

    QPushButton* StartB = nullptr;
    QPushButton* SelIniB = nullptr;
    QPushButton* Edit = nullptr;
    QPushButton* Add = nullptr;
    QPushButton* Cancel = nullptr;
    QPushButton* Ignore = nullptr;
    QPushButton* ReplaceB = nullptr;
    /// Without an action, by design.
    QPushButton* Help = nullptr;
    QListWidget* lstWords = nullptr;
    QLineEdit* txtReplaceWith = nullptr;
    QLabel* lblReplaceWith = nullptr;
    QLineEdit* txtWord = nullptr;
    QLabel* lblWord = nullptr;
    QLabel* ReportL = nullptr;

    // The controls of the dictionary mode.
    QListWidget* CustWords = nullptr;
    QPushButton* remove = nullptr;
    QPushButton* ClearAll = nullptr;
    QPushButton* Done = nullptr;
    QPushButton* Cancel1 = nullptr;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit SpellCheckF(Form1& owner);

    // ---- what the walk shows
    void showReport(const QString& text) override;
    void hideReport() override;
    void showWord(const QString& word) override;
    void clearWord() override;
    void setStartEnabled(bool enabled) override;
    void unload() override;

    void makeControls();
    [[nodiscard]] QPushButton* makeButton(const char* name, const char* caption,
                                          const char* shortcut = nullptr);
    void layOut();
    void connectControls();
    void Form_Activate();

    // ---- suggestions
    void suggestionsFound(const QString& word);
    void showSuggestions(const QStringList& words);
    void waitForSuggestions();

    // ---- buttons
    void startCheck();
    void expandSelection();
    void replaceWord();
    void ignoreWord();
    void removeCustomWords();
    void clearCustomWords();
    void enterDictionaryMode();
    void leaveDictionaryMode();
    void setDictionaryMode(bool on);

    [[nodiscard]] DisplayDocument& display() const;

    Form1& form;
    SpellShelf shelf;
    SpellCheckWalk check;
    QStackedLayout* lists = nullptr;
    QTimer* suggestionTime = nullptr;
    std::chrono::steady_clock::time_point suggestionsDue;
    /// The word whose suggestions are not shown yet; empty for none.
    QString pendingWord;
    bool replacementEdited = false;
    /// One-shot: the next activation leaves everything as it is.
    int16_t SkipActivate = 0;
    SuggestionWorker suggestions; ///< Last: its thread reports to this window.
};

} // namespace vmk
