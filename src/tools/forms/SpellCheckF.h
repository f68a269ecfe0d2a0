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

/// The window of the spell check; at most one exists. It stays open while the user works in the main window;
/// each action uses the current state of the display.
///
/// Suggestions are found on another thread. The list shows them when they are complete, or after
/// `SuggestionWait` those found so far, so that the step to the next word never waits for them.
class SpellCheckF : public QWidget, private SpellCheckWindow
{
    Q_OBJECT

public:
    /// Opens the window, or raises the open one.
    static void ShowForm(Form1& owner);
    /// Returns the open window, or null.
    [[nodiscard]] static SpellCheckF* Instance();

    ~SpellCheckF() override;

    /// Ends a check in progress because the display shows another page.
    void PageReplaced();

    [[nodiscard]] const SpellCheckWalk& Check() const { return check; }

    /// The time after which the list shows the suggestions found so far, and for which `ReplaceB` waits.
    /// Tests set a longer one, because a busy machine finds nothing in this time.
    std::chrono::milliseconds SuggestionWait{300};

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

    // ---- called by the walk
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
    [[nodiscard]] bool findAllSuggestions();

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
    /// The word whose suggestions are not shown yet, or empty.
    QString pendingWord;
    bool replacementEdited = false;
    /// The next activation, and only that one, changes nothing.
    int16_t SkipActivate = 0;
    SuggestionWorker suggestions; ///< The last member, because its thread calls this window.
};

} // namespace vmk
