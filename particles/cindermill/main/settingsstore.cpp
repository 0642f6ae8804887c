#include "particles/cindermill/main/settingsstore.h"

#include "library/system/path.h"

#include <QSettings>

namespace {

class TQtSettingsStore : public TSettingsStore
{
public:
    TQtSettingsStore() : Settings("TolvTools", "VORCindermill") {}
    explicit TQtSettingsStore(const char* path) : Settings(QString::fromUtf8(path), QSettings::IniFormat) {}

    bool Exists() override { return !Settings.allKeys().isEmpty(); }

    // A store of text alone does not keep the kinds apart: a text counts as an integer when it is one.
    bool ReadInt(const char* name, uint32_t& value) override
    {
        const QVariant found = Settings.value(name);
        bool isInt = false;
        const uint32_t number = found.isValid() ? found.toString().toUInt(&isInt) : 0;
        if (isInt)
            value = number;
        return isInt;
    }
    bool ReadString(const char* name, TString& value) override
    {
        constexpr int MaxBytes = 4096;
        const QVariant found = Settings.value(name);
        const QByteArray bytes = found.toString().toUtf8();
        if (found.typeId() != QMetaType::QString || bytes.size() >= MaxBytes)
            return false;
        value = bytes.constData();
        return true;
    }
    bool WriteInt(const char* name, uint32_t value) override
    {
        Settings.setValue(name, value);
        return Settings.status() == QSettings::NoError;
    }
    bool WriteString(const char* name, const char* value) override
    {
        Settings.setValue(name, QString::fromUtf8(value != nullptr ? value : ""));
        return Settings.status() == QSettings::NoError;
    }
    void Remove(const char* name) override { Settings.remove(name); }
    bool Flush() override
    {
        Settings.sync();
        return Settings.status() == QSettings::NoError;
    }

private:
    QSettings Settings;
};

} // namespace

TSettingsStore* OpenSettingsStore()
{
    return new TQtSettingsStore;
}

TSettingsStore* OpenSettingsFile(const char* path)
{
    TString own;
    ToSystemPath(path, own);
    return new TQtSettingsStore(own.Print());
}
