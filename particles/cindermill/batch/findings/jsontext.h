#pragma once

#include <cstdint>
#include <cstdio>

// Writes one JSON document, member by member, as UTF-8 whatever bytes the texts hold. Within an array the key
// is null.
class TJsonText
{
public:
    explicit TJsonText(std::FILE* out) : Out(out) {}

    void BeginObject(const char* key = nullptr) { Begin(key, '{'); }
    void EndObject() { End('}'); }
    void BeginArray(const char* key = nullptr) { Begin(key, '['); }
    void EndArray() { End(']'); }
    void Text(const char* key, const char* value);
    void Whole(const char* key, int64_t value);
    // What is no finite number is null.
    void Number(const char* key, double value);
    void Flag(const char* key, bool value);
    void Null(const char* key);
    // Ends the document.
    void Finish();

private:
    static constexpr int MaxDepth = 32;
    void Lead(const char* key);
    void Begin(const char* key, char bracket);
    void End(char bracket);
    void Quote(const char* text);
    void NewLine();

    std::FILE* Out;
    int Depth = 0;
    bool HasMember[MaxDepth] = {};
};
