#pragma once

#include <QString>

namespace vmk {

/// The store of text values, separate from the settings file: one file per application in the user's
/// configuration folder, with sections and keys. A failed write is not reported.
class ToolbarStore
{
public:
    static constexpr char DefaultToolbarKey[] = "Default Toolbar";
    static constexpr char CustomToolbarKey[] = "Custom Toolbar";
    static constexpr char NoTextKey[] = "No text labels";
    static constexpr char LargeIconsKey[] = "Large Icons";

    /// \param application  empty for the program's title
    /// \param section      empty for "Settings"
    ToolbarStore(const QString& application, const QString& section);

    /// Returns the value of a key; empty if there is none.
    [[nodiscard]] QString value(const char* key) const;
    /// Returns the value of a key as a number; `missing` if there is none or it is not a number.
    [[nodiscard]] int number(const char* key, int missing) const;
    void setValue(const char* key, const QString& text) const;
    void setNumber(const char* key, int number) const;

private:
    QString applicationName;
    QString sectionName;
};

} // namespace vmk
