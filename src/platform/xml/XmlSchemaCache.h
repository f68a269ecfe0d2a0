#pragma once

#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vmk {

/// A compiled schema. Immutable: any number of threads can validate against it at the same time.
class XmlSchema
{
public:
    /// Reads and compiles the schema file at `location` and the files that it imports and includes. Only
    /// local files are read.
    /// \param problem  on failure receives the reason, on one line, beginning with the file that caused it
    /// \return null if a file is missing or unreadable or the schema is invalid
    [[nodiscard]] static std::shared_ptr<const XmlSchema> compile(const QString& location, QString* problem);
    ~XmlSchema();
    XmlSchema(const XmlSchema&) = delete;
    XmlSchema& operator=(const XmlSchema&) = delete;

    /// The URI of the namespace that the schema describes; empty for none.
    [[nodiscard]] const std::string& targetNamespace() const { return target; }
    /// The names of the attributes without a namespace that the schema declares only as xs:ID.
    [[nodiscard]] const std::vector<std::string>& idAttributes() const { return ids; }

    struct Parts;
    [[nodiscard]] const Parts& parts() const { return *compiled; }

private:
    XmlSchema();

    std::unique_ptr<Parts> compiled;
    std::string target;
    std::vector<std::string> ids;
};

/// The schemas for validation, by namespace: `schemas` of the document.
class XmlSchemaCache
{
public:
    /// Compiles the schema file at `location` for elements of `namespaceUri`, replacing an earlier one.
    /// \return false if the schema cannot be used or describes another namespace; the cache is then unchanged
    ///         and `problem` is the reason
    bool add(const QString& namespaceUri, const QString& location);
    /// The reason why the last `add` failed, on one line, with the file that caused it; empty after a
    /// success.
    [[nodiscard]] const QString& problem() const { return lastProblem; }

    [[nodiscard]] bool isEmpty() const { return entries.empty(); }
    /// Returns the schema for a document whose root is in `namespaceUri`. For an unknown namespace, returns
    /// the first added schema, which then refuses the root. Null if the cache is empty.
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
