#pragma once

#include <span>

namespace vmk {

class Form1;

/// All that a menu entry, a context-menu entry, a toolbar button or a shortcut can ask for. Several of
/// them may ask for the same command; each command is one procedure.
enum class Command
{
    None,
    OpenFile,
    OpenLastFile,
    SaveFile,
    SaveFileAs,
    SaveAndReload,
    Exit,
    Undo,
    Redo,
    Delete,
    Cut,
    Copy,
    Paste,
    CopyText,
    PasteHtml,
    RePaintSelection,
    RightShift,
    LeftShift,
    InsertTextField,
    InsertTagField,
    InsertTagAttributeField,
    InsertTagAttributeValueField,
    InsertNbsp,
    InsertSpace,
    CaretLeft,
    CaretRight,
    InsertTags,
    InsertSpecialSymbols,
    Bold,
    Italic,
    Superscript,
    Subscript,
    LowerCase,
    UpperCase,
    ProperCase,
    PreviousPosition,
    NextPosition,
    Validate,
    ReadInHaaliReader,
    ShowSchema,
    LoadNewSchema,
    CheckForSchemaUpdates,
    InLineTags,
    FindReplace,
    BookCleaner,
    HtmlFragmentEditor,
    SpellCheck,
    ExtractAllImages,
    DeleteExtractedImages,
    ShowBinaryList,
    Settings,
    Toolbar,
    About,
    FictionBookCite,
    GoToLink,
    CheckId,
    ShowImage,
    RemoveImageResource,
    AddImageResource,
};

/// A command's procedure; it finds all else that it needs in the shared variables.
using CommandProcedure = void (*)(Form1&);

/// The procedure of `command`, null for one that is not there yet: its entries are shown disabled, and
/// its keys are left to the display.
[[nodiscard]] CommandProcedure ProcedureOf(Command command);

/// True for the commands that edit the book: they do nothing while a page is shown that is not one.
[[nodiscard]] bool ChangesBook(Command command);

/// One entry of a menu. The caption is shown as it stands.
struct MenuEntry
{
    const char* name;
    const char* caption;
    Command command = Command::None;
    /// The accelerator, as `QKeySequence` reads it; shortcuts named in a caption are text only.
    const char* accelerator = nullptr;
    bool hidden = false;
    bool separatorBehind = false;
    /// Created disabled; whatever opens the menu enables it when it fits.
    bool disabled = false;
};

/// One menu of the main menu, in order.
struct Menu
{
    const char* name;
    const char* caption;
    std::span<const MenuEntry> entries;
};

/// One button of the toolbar.
struct ToolbarButton
{
    const char* key;
    const char* toolTip;
    Command command;
};

[[nodiscard]] std::span<const Menu> MainMenu();
/// `MnRightClick`, the context menu of the display.
[[nodiscard]] std::span<const MenuEntry> ContextMenu();
/// The toolbar as designed.
[[nodiscard]] std::span<const ToolbarButton> ToolbarDesign();

} // namespace vmk
