#pragma once

#include <QString>

#include <cstdint>
#include <string>

/// Shared variables of the open book: reset by a load, never saved.
namespace vmk {

/// Full path of the open book; empty before the first load.
extern QString CurrentBook;
/// The page file now shown: one of the two `Fb2SourceHtml` files.
extern QString DisplayFile;
/// The book's `binary` elements, held apart from the page from load to save.
extern std::string BinaryPart;
/// The code page of `BinaryPart`.
extern int32_t BinaryCodePage;
/// The book is read and saved without losses. False where the user wants the editor's own rules, which join
/// lines and split text next to elements that they do not know.
extern bool BookKeepsText;

/// The encoding in force for reading the book, after any override in the settings.
extern std::string WorkEncodingName;
extern int32_t WorkCodePage;
extern std::string WorkMetaTag;
/// The encoding that the file itself declares.
extern std::string FileEncodingName;
extern int32_t FileCodePage;
extern std::string FileMetaTag;
/// The declaration written back at the head of the display.
extern std::string XmlDeclaration;
/// The book held decimal character references; decides a second conversion.
extern bool BookHasCharRefs;
/// Set when a validation against a schema begins.
extern QString FbNamespace;
/// The last conversion refused the book for its binary part.
extern bool BadBinaryPart;
/// Set just before the program itself navigates; cleared by the navigation event.
extern bool LoadingByProgram;
/// Suppresses the report of a refused navigation once.
extern bool SkipNavigationCheck;
/// A command-line validation failed: validate the display as soon as it is complete.
extern bool ValidateAfterLoad;
/// Undo steps that make up the last edit; 0 after a document is complete.
extern int32_t UndoSteps;
/// True from document-complete until an edit.
extern bool BookUnchanged;

} // namespace vmk
