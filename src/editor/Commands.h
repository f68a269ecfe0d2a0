#pragma once

#include <span>

namespace vmk {

class Form1;

/// The commands of menus, context menus, toolbar buttons and shortcuts. Several entries may run the same
/// command. Each command is one procedure.
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

/// The procedure of a command. It reads its input from the shared variables.
using CommandProcedure = void (*)(Form1&);

/// Returns the procedure of `command`, or null if it does not exist yet: then its entries are disabled and
/// its keys go to the display.
[[nodiscard]] CommandProcedure ProcedureOf(Command command);

/// True for commands that edit the book. They do nothing while the shown page is not a book.
[[nodiscard]] bool ChangesBook(Command command);

/// One menu entry. The caption is shown without change.
struct MenuEntry
{
    const char* name;
    const char* caption;
    Command command = Command::None;
    /// The accelerator, in the format of `QKeySequence`. A shortcut named in a caption is only text.
    const char* accelerator = nullptr;
    bool hidden = false;
    bool separatorAfter = false;
    /// Created disabled; the code that opens the menu enables the entry when it applies.
    bool disabled = false;
};

/// One menu of the menu bar, in order.
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

/// Returns the menus of the menu bar, in order.
[[nodiscard]] std::span<const Menu> MainMenu();
/// Returns `MnRightClick`, the context menu of the display.
[[nodiscard]] std::span<const MenuEntry> ContextMenu();
/// Returns the default toolbar.
[[nodiscard]] std::span<const ToolbarButton> ToolbarDesign();

} // namespace vmk
