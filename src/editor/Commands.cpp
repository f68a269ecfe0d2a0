#include "Commands.h"

#include "BinaryListF.h"
#include "CaretTag.h"
#include "ClipboardRules.h"
#include "Desktop.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "EditHtmlWbF.h"
#include "EditorFunctions.h"
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
#include "SettingsF.h"
#include "SettingsVariables.h"
#include "SpecialCharactersF.h"
#include "SpellCheckF.h"
#include "TypingRules.h"
#include "VMKAboutF.h"

#include <algorithm>

namespace vmk {
namespace {

using enum Command;

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
    {OpenFile, [](Form1& form) { form.LoadNewFbFile_Dialog(); }},
    {OpenLastFile, [](Form1& form) { form.OpenLastBook(); }},
    {SaveFile, [](Form1& form) { form.SaveCurrentBook(); }},
    {SaveFileAs, [](Form1& form) { form.SaveFileAs_Dialog(); }},
    {SaveAndReload, [](Form1& form) { form.SaveAndReload(); }},
    {Exit, [](Form1& form) { form.close(); }},
    {Undo, [](Form1&) { UndoEdit(); }},
    {Redo, [](Form1&) { RedoEdit(); }},
    {CaretLeft, [](Form1& form) { MoveCaret(Book(form), CaretDirection::Left); }},
    {CaretRight, [](Form1& form) { MoveCaret(Book(form), CaretDirection::Right); }},
    {Copy, [](Form1& form) { CopySelection(Book(form), false); }},
    {CopyText, [](Form1& form) { CopyAsText(Book(form)); }},
    {InsertTags, [](Form1&) { InstanceOf<FbTagListF>().ShowForm(); }},
    {InsertSpecialSymbols, [](Form1&) { InstanceOf<SpecialCharactersF>().ShowForm(); }},
    {InLineTags, [](Form1&) { InstanceOf<InLineTagsF>().ShowForm(); }},
    {HtmlFragmentEditor, [](Form1&) { InstanceOf<EditHtmlWbF>().ShowForm(); }},
    {About, [](Form1&) { InstanceOf<VMKAboutF>().ShowForm(); }},
    {ExtractAllImages, [](Form1&) { vmk::ExtractAllImages(); }},
    {DeleteExtractedImages, [](Form1&) { vmk::DeleteExtractedImages(); }},
    {ShowBinaryList, [](Form1&) { InstanceOf<BinaryListF>().GetBinaryTags(); }},
    {ShowImage, [](Form1&) { vmk::ShowImage(); }},
    {RemoveImageResource, [](Form1&) { vmk::RemoveImageResource(); }},
    {AddImageResource, [](Form1&) { vmk::AddImageResource(); }},
    {GoToLink, [](Form1& form) { GoToBookmark(Book(form), TagUnderCaret); }},
    {CheckId, [](Form1& form) { vmk::CheckId(Book(form), TagUnderCaret); }},
    {PreviousPosition, [](Form1&) { GoToPosition(Direction::Up); }},
    {NextPosition, [](Form1&) { GoToPosition(Direction::Down); }},
    {Validate, [](Form1&) { ValidateDisplay(); }},
    {ReadInHaaliReader, [](Form1&) { ShowFb2TextPreview(); }},
    {BookCleaner, [](Form1& form) { form.OpenBookCleaner(); }},
    {ShowSchema, [](Form1& form) { form.ShowSchemas(); }},
    {LoadNewSchema, [](Form1& form) { form.LoadNewFbSchema_Dialog(); }},
    {Settings, [](Form1& form) { SettingsF::Show(form); }},
    {Toolbar, [](Form1& form) { form.CustomiseToolbar(); }},
    {CheckForSchemaUpdates, [](Form1& form) { form.OpenPortalPage("/ru/programs/redact.html"); }},
    {FindReplace, [](Form1& form) { FindReplaceWbF::Show(form); }},
    {SpellCheck, [](Form1& form) { SpellCheckF::ShowForm(form); }},
    {FictionBookCite, [](Form1& form) { form.OpenPortalPage("/ru/news/"); }},
};

/// The commands that change the book.
constexpr CommandRow EditProcedures[] = {
    {Delete, [](Form1& form) { DeleteSelection(Book(form)); }},
    {Cut, [](Form1& form) { CopySelection(Book(form), true); }},
    {Paste, [](Form1& form) { PasteText(Book(form), ClipboardText(), PressedCaret(), NbspOfSettings()); }},
    {PasteHtml,
     [](Form1& form) { vmk::PasteHtml(Book(form), ClipboardText(), PressedCaret(), NbspOfSettings()); }},
    {RePaintSelection,
     [](Form1& form) {
         vmk::RePaintSelection(Book(form), PressedPlace(), TagPaint::Of(DisplayValuesOfSettings()));
     }},
    {RightShift, [](Form1& form) { vmk::RightShift(Book(form), NodeShift); }},
    {LeftShift, [](Form1& form) { vmk::LeftShift(Book(form), NodeShift); }},
    {InsertTextField, [](Form1& form) { InsertField(Book(form), Field::Text); }},
    {InsertTagField, [](Form1& form) { InsertField(Book(form), Field::Tag); }},
    {InsertTagAttributeField, [](Form1& form) { InsertField(Book(form), Field::Attribute); }},
    {InsertTagAttributeValueField, [](Form1& form) { InsertField(Book(form), Field::Value); }},
    {InsertNbsp, [](Form1& form) { vmk::InsertNbsp(Book(form), NbspOfSettings()); }},
    {InsertSpace, [](Form1& form) { vmk::InsertSpace(Book(form)); }},
    {Bold, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Bold); }},
    {Italic, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Italic); }},
    {Superscript, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Superscript); }},
    {Subscript, [](Form1& form) { InsertInlineTag(Book(form), InlineTag::Subscript); }},
    {LowerCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Lower); }},
    {UpperCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Upper); }},
    {ProperCase, [](Form1& form) { ChangeCase(Book(form), LetterCase::Proper); }},
};

CommandProcedure ProcedureIn(std::span<const CommandRow> rows, Command command)
{
    const auto row = std::ranges::find(rows, command, &CommandRow::command);
    return row == rows.end() ? nullptr : row->procedure;
}

constexpr bool Hidden = true;
constexpr bool SeparatorBehind = true;
constexpr bool CreatedDisabled = true;

constexpr MenuEntry FileEntries[] = {
    {"uOpenFile", "open (F3)", OpenFile},
    {"uOpenLastFile", "open last file", OpenLastFile, nullptr, !Hidden, SeparatorBehind},
    {"uSaveFile", "save (F4)", SaveFile},
    {"uSaveFileAs", "save as (F5)", SaveFileAs, nullptr, !Hidden, SeparatorBehind},
    {"uSaveAndReload", "save and reload", SaveAndReload, nullptr, !Hidden, SeparatorBehind},
    {"uExit", "exit", Exit},
};

constexpr MenuEntry EditEntries[] = {
    {"uUndo", "undo (Ctrl+Z)", Undo},
    {"uRedo", "redo (Ctrl+Y)", Redo, nullptr, !Hidden, SeparatorBehind},
    {"uDelete", "delete", Delete, "Del"},
    {"uCut", "cut (Ctrl+X, Shift+Del)", Cut},
    {"uCopy", "copy (Ctrl+C, Ctrl+Ins)", Copy},
    {"uPaste", "paste (Ctrl+V, Shift+Ins)", Paste, nullptr, !Hidden, SeparatorBehind},
    {"uCopyText", "copy as text (Ctrl+T)", CopyText},
    {"uPasteHtml", "paste as html (Ctrl+H)", PasteHtml},
    // No procedure, by design.
    {"uPasteFromClipboard", "paste from clipboard", None, nullptr, Hidden, SeparatorBehind},
    {"uRePaintSelection", "re-paint selection (Esc)", RePaintSelection},
    {"uRightShift", "right shift  (Tab)", RightShift},
    {"uLeftShift", "left shift  (Ctrl+Tab)", LeftShift, nullptr, !Hidden, SeparatorBehind},
    {"uInsertTextField", "text field", InsertTextField, nullptr, Hidden},
    {"uInsertTagField", "tag field", InsertTagField, nullptr, Hidden},
    {"uInsertTagAttributeField", "attribute field", InsertTagAttributeField, nullptr, Hidden},
    {"uInsertTagAttributeValueField", "value field", InsertTagAttributeValueField, nullptr, Hidden,
     SeparatorBehind},
    {"uInsertNbsp", "insert nbsp (Ctrl+Space)", InsertNbsp, nullptr, !Hidden, SeparatorBehind},
    {"uInsertTags", "tag list", InsertTags, "F7"},
    {"uInsertSpecialSymbols", "insert special symbols", InsertSpecialSymbols, nullptr, !Hidden,
     SeparatorBehind},
    {"uBold", "bold (Ctrl+B)", Bold},
    {"uItalic", "italic (Ctrl+I)", Italic},
    {"uSuperscript", "superscript", Superscript},
    {"uSubscript", "subscript", Subscript, nullptr, !Hidden, SeparatorBehind},
    {"uLowerCase", "lower case", LowerCase},
    {"uUpperCase", "upper case", UpperCase},
    {"uProperCase", "proper case", ProperCase},
};

constexpr MenuEntry GoEntries[] = {
    {"uPreviousPosition", "previous position", PreviousPosition},
    {"uNextPosition", "next position", NextPosition},
};

constexpr MenuEntry BookEntries[] = {
    {"uValidate", "validate", Validate, "F8", !Hidden, SeparatorBehind},
    {"uReadInHaaliReader", "read in Haali Reader", ReadInHaaliReader, "F11", !Hidden, SeparatorBehind},
    {"uShowSchema", "show schemas list", ShowSchema},
    // "shema" is the fixed spelling.
    {"uLoadNewSchema", "load new shema", LoadNewSchema, "F12"},
    {"uCheckForSchemaUpdates", "check for schema updates", CheckForSchemaUpdates, nullptr, !Hidden,
     SeparatorBehind},
    {"uInLineTags", "in-line tags", InLineTags},
};

constexpr MenuEntry ToolsEntries[] = {
    {"uFindReplace", "find/replace", FindReplace, "F2"},
    {"uBookCleaner", "book cleaner", BookCleaner, "F6"},
    {"uHtmlFragmentEditor", "html fragment editor", HtmlFragmentEditor, nullptr, !Hidden, SeparatorBehind},
    {"uSpellCheck", "spell check", SpellCheck, nullptr, !Hidden, SeparatorBehind},
    {"uExtractAllImages", "extract all images", ExtractAllImages},
    {"uDeleteExtractedImages", "delete extracted images", DeleteExtractedImages},
    {"uShowBinaryList", "binary list", ShowBinaryList, nullptr, !Hidden, !SeparatorBehind, CreatedDisabled},
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
    {"Ed3_Paste", "paste (Ctrl+V, Shift+Ins)", Paste, nullptr, !Hidden, SeparatorBehind},
    {"Ed_CopyText", "copy as text (Ctrl+T)", CopyText},
    {"Ed4_PasteHtml", "paste as html (Ctrl+H)", PasteHtml},
    {"Ed_PasteFromClipboard", "paste from clipboard", None, nullptr, Hidden, SeparatorBehind},
    {"Ed_RePaintSelection", "re-paint selection (Esc)", RePaintSelection},
    {"Ed_RightShift", "right shift (Tab)", RightShift},
    {"Ed_LeftShift", "left shift (Ctrl+Tab)", LeftShift, nullptr, !Hidden, SeparatorBehind},
    {"Ed41_InsertTextField", "text field", InsertTextField, nullptr, Hidden},
    {"Ed42_InsertTagField", "tag field", InsertTagField, nullptr, Hidden},
    {"Ed43_InsertTagAttributeField", "attribute field", InsertTagAttributeField, nullptr, Hidden},
    {"Ed44_InsertTagAttributeValueField", "value field", InsertTagAttributeValueField, nullptr, Hidden,
     SeparatorBehind},
    {"Ed5_InsertNbsp", "insert nbsp (Ctrl+Space)", InsertNbsp},
    {"Ed6_InsertSpecialSymbols", "insert special symbols", InsertSpecialSymbols, nullptr, !Hidden,
     SeparatorBehind},
    {"Ed_Bold", "bold (Ctrl+B)", Bold},
    {"Ed_Italic", "italic (Ctrl+I)", Italic},
    {"Ed_Superscript", "superscript", Superscript},
    {"Ed_Subscript", "subscript", Subscript, nullptr, !Hidden, SeparatorBehind},
    {"Ed7_LowerCase", "lower case", LowerCase},
    {"Ed8_UpperCase", "upper case", UpperCase},
    {"Ed9_ProperCase", "proper case", ProperCase, nullptr, !Hidden, SeparatorBehind},
    {"Ed_GoToLink", "goto bookmark", GoToLink, nullptr, !Hidden, SeparatorBehind, CreatedDisabled},
    {"Ed_CheckId", "check id", CheckId, nullptr, !Hidden, SeparatorBehind, CreatedDisabled},
    {"Ed_ShowImage", "show image", ShowImage, nullptr, !Hidden, !SeparatorBehind, CreatedDisabled},
    {"Ed_RemoveImageResource", "remove image resource", RemoveImageResource, nullptr, !Hidden,
     !SeparatorBehind, CreatedDisabled},
    {"Ed_AddImageResource", "add image resource", AddImageResource, nullptr, !Hidden, !SeparatorBehind,
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
