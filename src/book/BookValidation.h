#pragma once

#include "XmlError.h"
#include "XmlSchemaCache.h"

#include <QString>

#include <memory>
#include <string_view>
#include <vector>

namespace vmk {

/// The rules against which a book is validated.
enum class ValidateAgainst
{
    Schema, ///< the schema, and the checks of `Namespace`
    Namespace ///< only well-formedness and declared prefixes
};

/// Returns the meaning of an option text: "schema" in any case; any other text means the namespace.
[[nodiscard]] ValidateAgainst ValidateAgainstOf(const QString& option);

/// Returns "schema" or "namespace", as in reports.
[[nodiscard]] QString NameOf(ValidateAgainst against);

/// The validation of books for the window, for the start and for `vmk`. One object can validate any number of
/// texts, on several threads at the same time.
class BookValidation
{
public:
    /// \param schemaFile  read at once; ignored for `Namespace`
    explicit BookValidation(ValidateAgainst against, const QString& schemaFile = QString());

    [[nodiscard]] ValidateAgainst against() const { return kind; }
    /// The reason why the schema cannot be used, as one line that names its file; empty if it can be used.
    /// Without a usable schema, books are validated against the namespace.
    [[nodiscard]] const QString& schemaProblem() const { return problem; }

    /// Validates the bytes of a text.
    /// \return the first error; `errorCode` is 0 if there is none
    [[nodiscard]] XmlParseError validate(std::string_view text, XmlEncoding encoding) const;

    /// Validates the bytes of a text to its end.
    /// \return all errors against the schema, up to the first one of well-formedness or namespaces
    [[nodiscard]] std::vector<XmlParseError> validateAll(std::string_view text, XmlEncoding encoding) const;

private:
    ValidateAgainst kind;
    std::shared_ptr<const XmlSchemaCache> schemas;
    QString problem;
};

/// Returns the validation with `SchemaFile`; sets `FbNamespace` if it is one against the schema.
[[nodiscard]] BookValidation ValidationBySettings(ValidateAgainst against);

} // namespace vmk
