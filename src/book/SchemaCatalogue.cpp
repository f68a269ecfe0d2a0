#include "SchemaCatalogue.h"

#include "FileOperations.h"
#include "FilePaths.h"
#include "TagFunctions.h"

namespace vmk {
namespace {

SchemaRow RowOf(const QString& path, bool main)
{
    const bool found = FileExists(path);
    return {path, main, found, found ? FileDate(path) : QDate()};
}

} // namespace

std::vector<SchemaRow> ListSchemas(const QString& mainSchema)
{
    std::vector<SchemaRow> rows{RowOf(mainSchema, true)};
    if (!rows.front().found)
        return rows;
    const QString folder = FolderOf(mainSchema);
    const std::string text = ReadFileText(mainSchema);
    Extraction import = ExtractBetween(text, "<xs:import", ">");
    while (!import.found.empty()) {
        std::string tag(import.found);
        if (tag.ends_with("/>"))
            tag.replace(tag.size() - 2, 2, ">");
        const std::string location = GetXmlAttribute(tag, "schemaLocation", true);
        rows.push_back(RowOf(folder + QString::fromStdString(location), false));
        import = ExtractBetween(text, "<xs:import", ">", import.endPos);
    }
    return rows;
}

} // namespace vmk
