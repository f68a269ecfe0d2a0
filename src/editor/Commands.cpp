#include "Commands.h"

#include "BinaryListF.h"
#include "CaretTag.h"
#include "ClipboardRules.h"
#include "Desktop.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "EditHtmlWbF.h"
#include "EditorState.h"
#include "FbFunctions.h"
#include "FbTagListF.h"
#include "FieldRules.h"
#include "FindReplaceWbF.h"
#include "Form1.h"
#include "ImageFunctions.h"
#include "InLineTagsF.h"
#include "NodeShift.h"
#include "NonBreakingSpace.h"
#include "PasteRules.h"
#include "Repaint.h"
#include "ScrollPositions.h"
#include "SettingsF.h"
#include "SettingsVariables.h"
#include "SpecialCharactersF.h"
#include "SpellCheckF.h"
#include "TypingRules.h"
#include "UndoCommands.h"
#include "VMKAboutF.h"

#include <algorithm>

namespace vmk {
namespace {

struct CommandRow
{
    Command command;
    CommandProcedure procedure;
};

DisplayDocument& Book(Form1& form)
{
    return form.HTMLread->document();
}

QPoint PressedCaret()
{
    return {CaretOffsetLeft, CaretOffsetTop};
}

LastPress PressedPlace()
{
    return {PressedCaret(), {SavedScrollLeft, SavedScrollTop}};
}

QChar NbspOfSettings()
{
    return ShownNbsp(ShowNbsp == 1);
}

constexpr CommandRow Procedures[] = {
    {Command::OpenFile, [](Form1& form) { form.LoadNewFbFile_Dialog(); }},
    {Command::OpenLastFile, [](Form1& form) { form.OpenLastBook(); }},
    {Command::SaveFile, [](Form1& form) { form.SaveCurrentBook(); }},
    {Command::SaveFileAs, [](Form1& form) { form.SaveFileAs_Dialog(); }},
    {Command::SaveAndReload, [](Form1& form) { form.SaveAndReload(); }},
    {Command::Exit, [](Form1& form) { form.close(); }},
    {Command::Undo, [](Form1&) { UndoEdit(); }},
    {Command::Redo, [](Form1&) { RedoEdit(); }},
    {Command::CaretLeft, [](Form1& form) { MoveCaret(Book(form), CaretDirection::Left); }},
    {Command::CaretRight, [](Form1& form) { MoveCaret(Book(form), CaretDirection::Right); }},
    {Command::Copy, [](Form1& form) { CopySelection(Book(form), false); }},
    {Command::CopyText, [](Form1& form) { CopyAsText(Book(form)); }},
    {Command::InsertTags, [](Form1&) { InstanceOf<FbTagListF>().ShowForm(); }},
    {Command::InsertSpecialSymbols, [](Form1&) { InstanceOf<SpecialCharactersF>().ShowForm(); }},
    {Command::InLineTags, [](Form1&) { InstanceOf<InLineTagsF>().ShowForm(); }},
    {Command::HtmlFragmentEditor, [](Form1&) { InstanceOf<EditHtmlWbF>().ShowForm(); }},
    {Command::About, [](Form1&) { InstanceOf<VMKAboutF>().ShowForm(); }},
    {Command::ExtractAllImages, [](Form1&) { ExtractAllImages(); }},
    {Command::DeleteExtractedImages, [](Form1&) { DeleteExtractedImages(); }},
    {Command::ShowBinaryList, [](Form1&) { InstanceOf<BinaryListF>().GetBinaryTags(); }},
    {Command::ShowImage, [](Form1&) { ShowImage(); }},
    {Command::RemoveImageResource, [](Form1&) { RemoveImageResource(); }},
    {Command::AddImageResource, [](Form1&) { AddImageResource(); }},
    {Command::GoToLink, [](Form1& form) { GoToBookmark(Book(form), TagUnderCaret); }},
    {Command::CheckId, [](Form1& form) { CheckId(Book(form), TagUnderCaret); }},
    {Command::PreviousPosition, [](Form1&) { GoToPosition(Direction::Up); }},
    {Command::NextPosition, [](Form1&) { GoToPosition(Direction::Down); }},
    {Command::Validate, [](Form1&) { ValidateDisplay(); }},
    {Command::ReadInHaaliReader, [](Form1&) { ShowFb2TextPreview(); }},
    {Command::BookCleaner, [](Form1& form) { form.OpenBookCleaner(); }},
    {Command::ShowSchema, [](Form1& form) { form.ShowSchemas(); }},
    {Command::LoadNewSchema, [](Form1& form) { form.LoadNewFbSchema_Dialog(); }},
    {Command::Settings, [](Form1& form) { SettingsF::Show(form); }},
    {Command::Toolbar, [](Form1& form) { form.CustomiseToolbar(); }},
    {Command::CheckForSchemaUpdates, [](Form1& form) { form.OpenPortalPage("/ru/programs/redact.html"); }},
    {Command::FindReplace, [](Form1& form) { FindReplaceWbF::Show(form); }},
    {Command::SpellCheck, [](Form1& form) { SpellCheckF::ShowForm(form); }},
    {Command::FictionBookCite, [](Form1& form) { form.OpenPortalPage("/ru/news/"); }},
};

/// The commands that change the book.
constexpr CommandRow EditProcedures[] = {
    {Command::Delete, [](Form1& form) { DeleteSelection(Book(form)); }},
    {Command::Cut, [](Form1& form) { CopySelection(Book(form), true); }},
    {Command::Paste,
     [](Form1& form) { PasteText(Book(form), ClipboardText(), PressedCaret(), NbspOfSettings()); }},
    {Command::PasteHtml,
     [](Form1& form) { PasteHtml(Book(form), ClipboardText(), PressedCaret(), NbspOfSettings()); }},
    {Command::RePaintSelection,
     [](Form1& form) {
         RePaintSelection(Book(form), PressedPlace(), TagPaint::Of(DisplayValuesOfSettings()));
     }},
    {Command::RightShift, [](Form1& form) { RightShift(Book(form), NodeShift); }},
    {Command::LeftShift, [](Form1& form) { LeftShift(Book(form), NodeShift); }},
    {Command::InsertTextField, [](Form1& form) { InsertField(Book(form), Field::Text); }},
    {Command::InsertTagField, [](Form1& form) { InsertField(Book(form), Field::Tag); }},
    {Command::InsertTagAttributeField, [](Form1& form) { InsertField(Book(form), Field::Attribute); }},
    {Command::InsertTagAttributeValueField, [](Form1& form) { InsertField(Book(form), Field::Value); }},
    {Command::InsertNbsp, [](Form1& form) { InsertNbsp(Book(form), NbspOfSettings()); }},
    {Command::InsertSpace, [](Form1& form) { InsertSpace(Book(form)); }},
    {Command::Bold, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Bold); }},
    {Command::Italic, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Italic); }},
    {Command::Superscript, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Superscript); }},
    {Command::Subscript, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Subscript); }},
    {Command::LowerCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Lower); }},
    {Command::UpperCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Upper); }},
    {Command::ProperCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Proper); }},
};

using enum Command;

CommandProcedure ProcedureIn(std::span<const CommandRow> rows, Command command)
{
    const auto row = std::ranges::find(rows, command, &CommandRow::command);
    return row == rows.end() ? nullptr : row->procedure;
}

constexpr bool Hidden = true;
constexpr bool SeparatorAfter = true;
constexpr bool CreatedDisabled = true;

constexpr MenuEntry FileEntries[] = {
    {"uOpenFile", "open (F3)", OpenFile},
    {"uOpenLastFile", "open last file", OpenLastFile, nullptr, !Hidden, SeparatorAfter},
    {"uSaveFile", "save (F4)", SaveFile},
    {"uSaveFileAs", "save as (F5)", SaveFileAs, nullptr, !Hidden, SeparatorAfter},
    {"uSaveAndReload", "save and reload", SaveAndReload, nullptr, !Hidden, SeparatorAfter},
    {"uExit", "exit", Exit},
};

constexpr MenuEntry EditEntries[] = {
    {"uUndo", "undo (Ctrl+Z)", Undo},
    {"uRedo", "redo (Ctrl+Y)", Redo, nullptr, !Hidden, SeparatorAfter},
    {"uDelete", "delete", Delete, "Del"},
    {"uCut", "cut (Ctrl+X, Shift+Del)", Cut},
    {"uCopy", "copy (Ctrl+C, Ctrl+Ins)", Copy},
    {"uPaste", "paste (Ctrl+V, Shift+Ins)", Paste, nullptr, !Hidden, SeparatorAfter},
    {"uCopyText", "copy as text (Ctrl+T)", CopyText},
    {"uPasteHtml", "paste as html (Ctrl+H)", PasteHtml},
    // No procedure, by design.
    {"uPasteFromClipboard", "paste from clipboard", None, nullptr, Hidden, SeparatorAfter},
    {"uRePaintSelection", "re-paint selection (Esc)", RePaintSelection},
    {"uRightShift", "right shift  (Tab)", RightShift},
    {"uLeftShift", "left shift  (Ctrl+Tab)", LeftShift, nullptr, !Hidden, SeparatorAfter},
    {"uInsertTextField", "text field", InsertTextField, nullptr, Hidden},
    {"uInsertTagField", "tag field", InsertTagField, nullptr, Hidden},
    {"uInsertTagAttributeField", "attribute field", InsertTagAttributeField, nullptr, Hidden},
    {"uInsertTagAttributeValueField", "value field", InsertTagAttributeValueField, nullptr, Hidden,
     SeparatorAfter},
    {"uInsertNbsp", "insert nbsp (Ctrl+Space)", InsertNbsp, nullptr, !Hidden, SeparatorAfter},
    {"uInsertTags", "tag list", InsertTags, "F7"},
    {"uInsertSpecialSymbols", "insert special symbols", InsertSpecialSymbols, nullptr, !Hidden,
     SeparatorAfter},
    {"uBold", "bold (Ctrl+B)", Bold},
    {"uItalic", "italic (Ctrl+I)", Italic},
    {"uSuperscript", "superscript", Superscript},
    {"uSubscript", "subscript", Subscript, nullptr, !Hidden, SeparatorAfter},
    {"uLowerCase", "lower case", LowerCase},
    {"uUpperCase", "upper case", UpperCase},
    {"uProperCase", "proper case", ProperCase},
};

constexpr MenuEntry GoEntries[] = {
    {"uPreviousPosition", "previous position", PreviousPosition},
    {"uNextPosition", "next position", NextPosition},
};

constexpr MenuEntry BookEntries[] = {
    {"uValidate", "validate", Validate, "F8", !Hidden, SeparatorAfter},
    {"uReadInHaaliReader", "read in Haali Reader", ReadInHaaliReader, "F11", !Hidden, SeparatorAfter},
    {"uShowSchema", "show schemas list", ShowSchema},
    // "shema" is the fixed spelling.
    {"uLoadNewSchema", "load new shema", LoadNewSchema, "F12"},
    {"uCheckForSchemaUpdates", "check for schema updates", CheckForSchemaUpdates, nullptr, !Hidden,
     SeparatorAfter},
    {"uInLineTags", "in-line tags", InLineTags},
};

constexpr MenuEntry ToolsEntries[] = {
    {"uFindReplace", "find/replace", FindReplace, "F2"},
    {"uBookCleaner", "book cleaner", BookCleaner, "F6"},
    {"uHtmlFragmentEditor", "html fragment editor", HtmlFragmentEditor, nullptr, !Hidden, SeparatorAfter},
    {"uSpellCheck", "spell check", SpellCheck, nullptr, !Hidden, SeparatorAfter},
    {"uExtractAllImages", "extract all images", ExtractAllImages},
    {"uDeleteExtractedImages", "delete extracted images", DeleteExtractedImages},
    {"uShowBinaryList", "binary list", ShowBinaryList, nullptr, !Hidden, !SeparatorAfter, CreatedDisabled},
};

constexpr MenuEntry ConfigurationEntries[] = {
    {"uSettings", "settings", Settings, "F9"},
    {"uToolbar", "toolbar", Toolbar},
};

constexpr MenuEntry HelpEntries[] = {
    {"uAbout", "about", About},
    {"uFictionBookCite", "Fiction Book Portal", FictionBookCite},
};

constexpr Menu Menus[] = {
    {"uFile", "File", FileEntries},    {"uEdit", "Edit", EditEntries},
    {"uGo", "Go", GoEntries},          {"uBook", "Book", BookEntries},
    {"uTools", "Tools", ToolsEntries}, {"uConfiguration", "Configuration", ConfigurationEntries},
    {"uHelp", "Help", HelpEntries},
};

constexpr MenuEntry RightClickEntries[] = {
    {"Ed1_Delete", "delete (Del)", Delete},
    {"Ed_Cut", "cut (Ctrl+X, Shift+Del)", Cut},
    {"Ed2_Copy", "copy (Ctrl+C, Ctrl+Ins)", Copy},
    {"Ed3_Paste", "paste (Ctrl+V, Shift+Ins)", Paste, nullptr, !Hidden, SeparatorAfter},
    {"Ed_CopyText", "copy as text (Ctrl+T)", CopyText},
    {"Ed4_PasteHtml", "paste as html (Ctrl+H)", PasteHtml},
    {"Ed_PasteFromClipboard", "paste from clipboard", None, nullptr, Hidden, SeparatorAfter},
    {"Ed_RePaintSelection", "re-paint selection (Esc)", RePaintSelection},
    {"Ed_RightShift", "right shift (Tab)", RightShift},
    {"Ed_LeftShift", "left shift (Ctrl+Tab)", LeftShift, nullptr, !Hidden, SeparatorAfter},
    {"Ed41_InsertTextField", "text field", InsertTextField, nullptr, Hidden},
    {"Ed42_InsertTagField", "tag field", InsertTagField, nullptr, Hidden},
    {"Ed43_InsertTagAttributeField", "attribute field", InsertTagAttributeField, nullptr, Hidden},
    {"Ed44_InsertTagAttributeValueField", "value field", InsertTagAttributeValueField, nullptr, Hidden,
     SeparatorAfter},
    {"Ed5_InsertNbsp", "insert nbsp (Ctrl+Space)", InsertNbsp},
    {"Ed6_InsertSpecialSymbols", "insert special symbols", InsertSpecialSymbols, nullptr, !Hidden,
     SeparatorAfter},
    {"Ed_Bold", "bold (Ctrl+B)", Bold},
    {"Ed_Italic", "italic (Ctrl+I)", Italic},
    {"Ed_Superscript", "superscript", Superscript},
    {"Ed_Subscript", "subscript", Subscript, nullptr, !Hidden, SeparatorAfter},
    {"Ed7_LowerCase", "lower case", LowerCase},
    {"Ed8_UpperCase", "upper case", UpperCase},
    {"Ed9_ProperCase", "proper case", ProperCase, nullptr, !Hidden, SeparatorAfter},
    {"Ed_GoToLink", "goto bookmark", GoToLink, nullptr, !Hidden, SeparatorAfter, CreatedDisabled},
    {"Ed_CheckId", "check id", CheckId, nullptr, !Hidden, SeparatorAfter, CreatedDisabled},
    {"Ed_ShowImage", "show image", ShowImage, nullptr, !Hidden, !SeparatorAfter, CreatedDisabled},
    {"Ed_RemoveImageResource", "remove image resource", RemoveImageResource, nullptr, !Hidden,
     !SeparatorAfter, CreatedDisabled},
    {"Ed_AddImageResource", "add image resource", AddImageResource, nullptr, !Hidden, !SeparatorAfter,
     CreatedDisabled},
};

constexpr ToolbarButton Buttons[] = {
    {"open", "open (F3)", OpenFile},
    {"save", "save (F4)", SaveFile},
    {"save as", "save as  (F5)", SaveFileAs},
    {"undo", "undo (Ctrl+Z)", Undo},
    {"redo", "redo (Ctrl+Y)", Redo},
    {"previous position", "previous position", PreviousPosition},
    {"next position", "next position", NextPosition},
    {"tag list", "tag list (F7)", InsertTags},
    {"re-paint selection", "re-paint selection (Esc)", RePaintSelection},
    {"right shift", "right shift", RightShift},
    {"left shift", "left shift", LeftShift},
    {"find/replace", "find/replace (F2)", FindReplace},
    {"book cleaner", "book cleaner (F6)", BookCleaner},
    {"html fragment editor", "html fragment editor", HtmlFragmentEditor},
    {"spell check", "spell check", SpellCheck},
    {"settings", "settings (F9)", Settings},
    {"read in hr", "read in Haali reader (F11)", ReadInHaaliReader},
    {"validate", "validate (F8)", Validate},
    {"load new schema", "load new schema (F12)", LoadNewSchema},
};

} // namespace

CommandProcedure ProcedureOf(Command command)
{
    const CommandProcedure procedure = ProcedureIn(Procedures, command);
    return procedure ? procedure : ProcedureIn(EditProcedures, command);
}

bool ChangesBook(Command command)
{
    return ProcedureIn(EditProcedures, command);
}

std::span<const Menu> MainMenu()
{
    return Menus;
}

std::span<const MenuEntry> ContextMenu()
{
    return RightClickEntries;
}

std::span<const ToolbarButton> ToolbarDesign()
{
    return Buttons;
}

} // namespace vmk
