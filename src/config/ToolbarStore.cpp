#include "ToolbarStore.h"

#include "Boxes.h"

#include <QSettings>
#include <QStringList>

namespace vmk {

using namespace Qt::StringLiterals;

namespace {

QString Path(const QString& section, const char* key)
{
    return section + u'/' + QLatin1StringView(key);
}

} // namespace

ToolbarStore::ToolbarStore(const QString& application, const QString& section)
    : applicationName(application.isEmpty() ? QString(ProgramTitle) : application)
    , sectionName(section.isEmpty() ? u"Settings"_s : section)
{
}

QString ToolbarStore::value(const char* key) const
{
    const QSettings settings(QSettings::UserScope, applicationName, applicationName);
    // QSettings reads a text with commas and without quotes as a list.
    return settings.value(Path(sectionName, key)).toStringList().join(u',');
}

int ToolbarStore::number(const char* key, int missing) const
{
    bool isNumber = false;
    const int number = value(key).trimmed().toInt(&isNumber);
    return isNumber ? number : missing;
}

void ToolbarStore::setValue(const char* key, const QString& text) const
{
    // An unchanged value causes no write at each start.
    if (value(key) == text)
        return;
    QSettings settings(QSettings::UserScope, applicationName, applicationName);
    settings.setValue(Path(sectionName, key), text);
}

void ToolbarStore::setNumber(const char* key, int number) const
{
    setValue(key, QString::number(number));
}

} // namespace vmk
