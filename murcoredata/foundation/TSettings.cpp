#include "murcoredata/foundation/TSettings.h"

#include <QSettings>

TSettings::TSettings(int group, const TString& domain, const TString& keySpace)
    : m_settings(new QSettings(QSettings::IniFormat, QSettings::UserScope, domain.toQString(), keySpace.toQString()))
{
    m_settings->beginGroup(QStringLiteral("Group%1").arg(group));
}

TSettings::~TSettings() = default;

bool TSettings::ValueExists(const TString& key) const
{
    return m_settings->contains(key.toQString());
}

TString TSettings::GetStringValue(const TString& key, const TString& defaultValue) const
{
    return m_settings->value(key.toQString(), defaultValue.toQString()).toString();
}

void TSettings::SetStringValue(const TString& key, const TString& value)
{
    m_settings->setValue(key.toQString(), value.toQString());
    m_settings->sync();
}

void TSettings::RemoveValue(const TString& key)
{
    m_settings->remove(key.toQString());
    m_settings->sync();
}

TString TSettings::GetStringValue(int group, const TString& key, const TString& defaultValue)
{
    return TSettings(group, TString(u"murcoredata"), TString(u"murcoredata")).GetStringValue(key, defaultValue);
}

void TSettings::SetStringValue(int group, const TString& key, const TString& value)
{
    TSettings(group, TString(u"murcoredata"), TString(u"murcoredata")).SetStringValue(key, value);
}

void TSettings::SetStorageDirectory(const TString& folder)
{
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.toQString());
}
