#pragma once

#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// A compiled schema. Immutable: any number of threads may validate against it at the same time.
class XmlSchema
{
public:
    /// Reads and compiles the schema file at `location` with all that it imports and includes. Only local
    /// files are read.
    /// \param problem  on failure set to the reason, on one line, beginning with the file at fault
    /// \return null when a file is missing or unreadable or the schema is broken
    [[nodiscard]] static std::shared_ptr<const XmlSchema> compile(const QString& location, QString* problem);
    ~XmlSchema();
    XmlSchema(const XmlSchema&) = delete;
    XmlSchema& operator=(const XmlSchema&) = delete;

    /// URI of the namespace that the schema describes; empty for none.
    [[nodiscard]] const std::string& targetNamespace() const { return target; }
    /// Names of the attributes without a namespace that the schema declares as xs:ID and as nothing else.
    [[nodiscard]] const std::vector<std::string>& idAttributes() const { return ids; }

    struct Parts;
    [[nodiscard]] const Parts& parts() const { return *compiled; }

private:
    XmlSchema();

    std::unique_ptr<Parts> compiled;
    std::string target;
    std::vector<std::string> ids;
};

/// The schemas that documents are validated against, by namespace: `schemas` of the document.
class XmlSchemaCache
{
public:
    /// Compiles the schema file at `location` for elements of `namespaceUri`, replacing an earlier one.
    /// \return false when the schema can't be used or describes another namespace; the cache is then
    ///         unchanged and `problem` tells the reason
    bool add(const QString& namespaceUri, const QString& location);
    /// Why the last `add` failed, on one line, with the file at fault; empty after a success.
    [[nodiscard]] const QString& problem() const { return lastProblem; }

    [[nodiscard]] bool isEmpty() const { return entries.empty(); }
    /// The schema for a document whose root is in `namespaceUri`; for an unknown namespace the first one
    /// added, which then refuses the root. Null when the cache is empty.
    [[nodiscard]] const XmlSchema* find(std::string_view namespaceUri) const;

private:
    struct Entry
    {
        std::string namespaceUri;
        std::shared_ptr<const XmlSchema> schema;
    };
    std::vector<Entry> entries;
    QString lastProblem;
};

} // namespace vmk
