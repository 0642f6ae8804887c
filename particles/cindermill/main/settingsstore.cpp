#include "particles/cindermill/main/settingsstore.h"

#include "library/containers/log.h"
#include "library/system/file.h"
#include "library/system/path.h"

#include <QSettings>
#include <QStandardPaths>

namespace {

constexpr const char* Organisation = "TolvTools";
constexpr const char* Program = "VORCindermill";

class TQtSettingsStore : public TSettingsStore
{
public:
    // The platform's own store.
    TQtSettingsStore() : Settings(Organisation, Program) {}
    explicit TQtSettingsStore(const QString& path) : Settings(path, QSettings::IniFormat) {}

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

// Where nothing can be kept: a run with the defaults.
class TNoSettingsStore : public TSettingsStore
{
public:
    bool Exists() override { return false; }
    bool ReadInt(const char*, uint32_t&) override { return false; }
    bool ReadString(const char*, TString&) override { return false; }
    bool WriteInt(const char*, uint32_t) override { return false; }
    bool WriteString(const char*, const char*) override { return false; }
    void Remove(const char*) override {}
    bool Flush() override { return false; }
};

// Reading a pipe or a device would never end, and what cannot be read must not be written over.
TSettingsStore* OpenFile(const QString& path)
{
    TString refusal;
    if (!GetReadRefusal(path.toUtf8().constData(), refusal))
        return new TQtSettingsStore(path);
    DebugPrintf("The settings are not used: %s\n", refusal.Print());
    return new TNoSettingsStore;
}

} // namespace

TSettingsStore* OpenSettingsStore()
{
#ifdef Q_OS_UNIX
    // The file that the platform's own store is, and none of those that it falls back on.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return OpenFile(folder + '/' + Organisation + '/' + Program + ".conf");
#else
    return new TQtSettingsStore;
#endif
}

TSettingsStore* OpenNoSettings()
{
    return new TNoSettingsStore;
}

TSettingsStore* OpenSettingsFile(const char* path)
{
    TString own;
    ToSystemPath(path, own);
    return OpenFile(QString::fromUtf8(own.Print()));
}
