#pragma once

#include <QDate>
#include <QString>

#include <vector>

namespace vmk {

/// One row of the list of schemas.
struct SchemaRow
{
    QString path;
    bool main = false; ///< else one that the main schema imports
    bool found = false;
    QDate created; ///< last change; invalid if the file is missing
};

/// The main schema and those that it imports itself, in the order of their `xs:import`s; imports of imports
/// are not followed. A main schema that is missing gives one row. A location is joined to the main
/// schema's folder as it stands.
[[nodiscard]] std::vector<SchemaRow> ListSchemas(const QString& mainSchema);

} // namespace vmk
