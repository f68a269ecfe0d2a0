#include "Start.h"

#include "BookFileCheck.h"
#include "BookValidation.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CommLineInfoF.h"
#include "CommandText.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "InitGlobals.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "SampleTables.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "StartUpVariables.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Passes an existing book to the main window by its full path, which remains valid when the current folder
/// changes.
void OpenInMainWindow(const QString& path)
{
    LoadBookSeam()(AbsolutePath(path), true);
}

void ShowReport(const QString& text, bool modal)
{
    CommLineInfoF::Instance().ShowActionReport(text, {.modal = modal, .topmost = true});
}

/// Shows "file not found" in a box and ends the process.
void RefuseMissingFile(const QString& path)
{
    StopBox(u"file not found"_s, u"VMK: "_s + FileNameOf(path));
    EndProcess();
}

void OpenBookWithErrors(const QString& path)
{
    CommLineInfoF::Unload();
    ShowReport(u"validation failed"_s + QLatin1StringView(CrLf)
                   + u"...loading file to VMK...wait, please..."_s,
               false);
    OpenMainWindowSeam()();
    PlayProgramSound(u"bul'.wav"_s, true);
    OpenInMainWindow(path);
}

void ReportCleanBook(const QString& path)
{
    SkipNavigationCheck = true;
    PlayProgramSound(u"NoParseError.wav"_s, false);
    if (CommandLineInfo == 1) {
        CommLineInfoF::Unload();
        const QString result = u"No errors (against %1)"_s.arg(NameOf(ValidateAgainstOf(ValidateOption)));
        ShowReport(result + QLatin1StringView(CrLf) + FileNameOf(path), true);
    }
    CommLineInfoF::Unload();
    EndProcess();
}

} // namespace

bool RunStart(const QString& commandText)
{
    InitGlobals();
    if (CleanUpFolderIsNew)
        WriteSampleCleanUpTables(UserCleanUpFolder);
    if (!FileExists(IniFilePath))
        FirstStart = true;
    ReadSettings(false);
    if (!CheckMsxml())
        return false;

    const StartOrder order = ReadCommandText(commandText);
    switch (order.course) {
    case StartCourse::OpenWindow:
        OpenMainWindowSeam()();
        (void)OfferRecoverySeam()();
        return true;
    case StartCourse::LoadBook:
        return LoadFromCommandLine(order.path, false);
    case StartCourse::ValidateBook:
        if (!ValidateFromCommandLine(order.path))
            return false;
        // Set only here: the book is loading by now, and its completion reads the flag.
        ValidateAfterLoad = true;
        return true;
    }
    return false;
}

bool LoadFromCommandLine(const QString& path, bool quiet)
{
    if (!quiet) {
        OpenMainWindowSeam()();
        // The text that the user wants back is shown instead of the book, which nothing else endangers.
        if (OfferRecoverySeam()())
            return true;
    }
    if (FileExists(path)) {
        const bool passed = CheckBookExtension(path, BookRefusal::Box);
        if (passed) {
            if (quiet)
                OpenMainWindowSeam()();
            OpenInMainWindow(path);
        }
        // A refused file leaves an open window unchanged; without a window, the program has nothing to do.
        return passed || !quiet;
    }

    if (quiet)
        RefuseMissingFile(path);
    ShowStatus(u"file not found"_s);
    PlayProgramSound(u"FileLoadError.wav"_s, true);
    return !quiet;
}

bool ValidateFromCommandLine(const QString& path)
{
    if (!FileExists(path)) {
        RefuseMissingFile(path);
        return false;
    }
    ShowReport(u"...validating file...wait, please..."_s, false);
    if (!CheckBookExtension(path, BookRefusal::BoxAndEnd)) {
        CommLineInfoF::Unload();
        return false;
    }
    if (ValidateFileQuietly(path)) {
        OpenBookWithErrors(path);
        return true;
    }
    ReportCleanBook(path);
    return false;
}

} // namespace vmk
