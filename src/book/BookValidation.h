#pragma once

#include "XmlError.h"
#include "XmlSchemaCache.h"

#include <QString>

#include <memory>
#include <string_view>

namespace vmk {

/// What a book is validated against.
enum class ValidateAgainst
{
    Schema, ///< the schema, and what `Namespace` covers
    Namespace ///< well-formedness and declared prefixes alone
};

/// The meaning of an option text: "schema" in any case, or anything else for the namespace.
[[nodiscard]] ValidateAgainst ValidateAgainstOf(const QString& option);

/// "schema" or "namespace", as reports name it.
[[nodiscard]] QString NameOf(ValidateAgainst against);

/// The validation of books: the window's, the one at start, and that of `vmk`. One object may validate any
/// number of texts, on several threads at a time.
class BookValidation
{
public:
    /// \param schemaFile  read at once; not looked at for `Namespace`
    explicit BookValidation(ValidateAgainst against, const QString& schemaFile = QString());

    [[nodiscard]] ValidateAgainst against() const { return kind; }
    /// Why the schema cannot be used, as one line that names its file; empty if there is nothing wrong.
    /// Without a usable schema, books are validated against the namespace.
    [[nodiscard]] const QString& schemaProblem() const { return problem; }

    /// Validates the bytes of a text.
    /// \return the first error; `errorCode` is 0 for none
    [[nodiscard]] XmlParseError validate(std::string_view text, XmlEncoding encoding) const;

private:
    ValidateAgainst kind;
    std::shared_ptr<const XmlSchemaCache> schemas;
    QString problem;
};

/// The validation that `SchemaFile` asks for; sets `FbNamespace` if it is one against the schema.
[[nodiscard]] BookValidation ValidationBySettings(ValidateAgainst against);

} // namespace vmk
