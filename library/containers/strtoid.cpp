#include "library/containers/strtoid.h"

#include "library/containers/map.h"

namespace {

// Made at the first use, as names are hashed by the constructors of other files' static objects.
map<uint32_t, TString>& GetNames()
{
    static map<uint32_t, TString> names;
    return names;
}

uint32_t HashName(const char* name)
{
    uint32_t a = 0xBFE47DAC;
    uint32_t b = 0x1A2B3C4D;
    for (const char* p = name; *p != 0; ++p) {
        uint32_t c = static_cast<uint32_t>(static_cast<int32_t>(static_cast<signed char>(*p)));
        if (c >= 'A' && c <= 'Z')
            c |= 32;
        a += (c << 20) + (c >> 4);
        b += c * b;
        b ^= (a >> 5) + (a << 19);
        a ^= (b >> 15) + (b << 9);
    }
    return a ^ b;
}

} // namespace

uint32_t StrToID(const char* name)
{
    const TString str(name);
    const uint32_t id = HashName(str.Print());
    const auto it = GetNames().find(id);
    if (it == GetNames().end())
        GetNames().insert(id, str);
    else
        ASSERT_TEXT_MSG(it->second.Compare(str) == 0, "it->second.Compare(str)==0",
                        TempFormat("Collision in StrToID (%s %s)", it->second.Print(), str.Print()));
    return id;
}

void IDToStr(uint32_t id, TString& result)
{
    const auto it = GetNames().find(id);
    if (it == GetNames().end())
        result.Format("UKID %x", id);
    else
        result = it->second;
}
