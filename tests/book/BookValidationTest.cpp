#include "BookValidation.h"

#include "BookVariables.h"
#include "FictionBookNamespace.h"
#include "SettingsVariables.h"
#include "Workplace.h"

#include <gtest/gtest.h>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr char Schema[]
    = R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" elementFormDefault="qualified"
    targetNamespace="http://www.gribuser.ru/xml/fictionbook/2.0">
    <xs:element name="FictionBook" type="xs:string"/>
</xs:schema>)";

/// A book that is well-formed, and wrong for the schema.
constexpr char Wrong[]
    = R"(<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><x/></FictionBook>)";
constexpr char Right[]
    = R"(<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0">text</FictionBook>)";
constexpr char Broken[] = "<FictionBook>";

int ErrorOf(const BookValidation& validation, std::string_view text)
{
    return validation.validate(text, XmlEncoding::utf8()).errorCode;
}

} // namespace

TEST(BookValidation, ReadsTheOptionInAnyCase)
{
    EXPECT_EQ(ValidateAgainstOf(u"schema"_s), ValidateAgainst::Schema);
    EXPECT_EQ(ValidateAgainstOf(u"Schema"_s), ValidateAgainst::Schema);
    for (const QString& other : {u"namespace!"_s, u"namespace"_s, u""_s, u"schema "_s})
        EXPECT_EQ(ValidateAgainstOf(other), ValidateAgainst::Namespace) << other.toStdString();
    EXPECT_EQ(NameOf(ValidateAgainst::Schema), u"schema"_s);
    EXPECT_EQ(NameOf(ValidateAgainst::Namespace), u"namespace"_s);
}

TEST(BookValidation, AgainstTheSchemaFindsWhatTheNamespaceAllows)
{
    const Workplace place;
    place.Make(u"book.xsd"_s, Schema);
    const BookValidation strict(ValidateAgainst::Schema, place.Path(u"book.xsd"_s));
    EXPECT_EQ(strict.schemaProblem(), QString());
    EXPECT_EQ(ErrorOf(strict, Right), 0);
    EXPECT_NE(ErrorOf(strict, Wrong), 0);
    EXPECT_NE(ErrorOf(strict, Broken), 0);

    const BookValidation loose(ValidateAgainst::Namespace, place.Path(u"book.xsd"_s));
    EXPECT_EQ(ErrorOf(loose, Wrong), 0);
    EXPECT_NE(ErrorOf(loose, Broken), 0);
}

TEST(BookValidation, WithoutAUsableSchemaChecksTheNamespace)
{
    const Workplace place;
    const BookValidation validation(ValidateAgainst::Schema, place.Path(u"missing.xsd"_s));
    EXPECT_TRUE(validation.schemaProblem().contains(u"missing.xsd"_s))
        << validation.schemaProblem().toStdString();
    EXPECT_EQ(ErrorOf(validation, Wrong), 0);
    EXPECT_NE(ErrorOf(validation, Broken), 0);
}

TEST(BookValidation, BySettingsSetsTheNamespaceForTheSchemaOnly)
{
    FbNamespace = u"before"_s;
    SchemaFile = u"/no/such.xsd"_s;
    EXPECT_EQ(ValidationBySettings(ValidateAgainst::Namespace).schemaProblem(), QString());
    EXPECT_EQ(FbNamespace, u"before"_s);
    EXPECT_TRUE(ValidationBySettings(ValidateAgainst::Schema).schemaProblem().contains(SchemaFile));
    EXPECT_EQ(FbNamespace, FictionBookNamespace());
}

} // namespace vmk
