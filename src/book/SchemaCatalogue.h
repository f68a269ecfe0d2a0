#pragma once

#include <QDate>
#include <QString>

#include <vector>

namespace vmk {

/// One row in the list of schemas.
struct SchemaRow
{
    QString path;
    bool main = false; ///< false: imported by the main schema
    bool found = false;
    QDate created; ///< time of the last change; invalid if the file is missing
};

/// Returns the main schema and the schemas that it imports directly, in the order of its `xs:import`
/// elements. Imports of imports are not followed. If the main schema is missing, the list has one row. A
/// location is appended to the main schema's folder without change.
[[nodiscard]] std::vector<SchemaRow> ListSchemas(const QString& mainSchema);

} // namespace vmk
