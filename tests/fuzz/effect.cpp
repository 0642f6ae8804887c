#include "fuzzfile.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/settingsstore.h"

namespace {

// Holds nothing, and so leaves the machine's own settings out of it.
class TEmptyStore : public TSettingsStore
{
public:
    bool Exists() override { return false; }
    bool ReadInt(const char*, uint32_t&) override { return false; }
    bool ReadString(const char*, TString&) override { return false; }
    bool WriteInt(const char*, uint32_t) override { return true; }
    bool WriteString(const char*, const char*) override { return true; }
    void Remove(const char*) override {}
    bool Flush() override { return true; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static TCindermillApp app(new TEmptyStore);
    return ReadAsFile(data, size, [](const char* path) {
        TDocument document(app);
        if (!document.BatchLoad(path) || !document.CheckLoaded())
            return;
        document.GetGraph()->GraphChanged();
        TErrorList errors;
        if (!document.CreateSchedule(errors) || !document.InitEngineWithoutRender(errors))
            return;
        for (int frame = 0; frame < 3; ++frame)
            document.UpdateEngine(0.02f, errors);
    });
}
