#pragma once

#include "library/containers/map.h"
#include "library/containers/ownerlist.h"
#include "library/maths/vector4.h"
#include "library/wimp/gl/fontatlas.h"
#include "library/wimp/gl/systemfonts.h"

class TRenderer;

// A font of a size. The atlas of that size settles all measures; texts are drawn from it or, where the screen
// shows more pixels than it has, from a finer one.
class TRenderFont
{
public:
    TRenderFont(uint32_t name, float size) : Name(name), Size(size) {}

    bool Build(FT_LibraryRec_* library, const char* path);
    // A box for each character, for a system without a font.
    bool BuildBoxes();
    uint32_t GetName() const { return Name; }
    float GetSize() const { return Size; }
    const TFontAtlas& GetAtlas() const { return Atlas; }
    void GetTextSize(const char* text, TVector2& size) const;
    void DrawText(TRenderer& renderer, const TVector2& position, const char* text, const TVector4& colour);

private:
    // Of more texels to a world unit than the first one.
    struct TFinerAtlas
    {
        float TexelsPerUnit;
        // Null where there can be none.
        TOwner<TFontAtlas> Atlas;
    };

    // Null if there can be none so fine.
    TFontAtlas* GetFinerAtlas(float texelsPerUnit);
    // The atlas for so many dots of the target to a world unit, and how many texels it has to one: just as
    // many if that is wanted and can be, otherwise enough.
    TFontAtlas& GetDrawnAtlas(float resolution, bool wantsExact, float& texelsPerUnit);

    uint32_t Name;
    float Size;
    FT_LibraryRec_* Library = nullptr;
    TString Path;
    TFontAtlas Atlas;
    // Made when first needed: of twice, four and eight times the size, and for the scales of screens.
    TOwnerList<TFinerAtlas> Finer;
};

// The fonts of the run, shared by name and size.
class TRenderFontTable
{
public:
    using TLister = void (*)(vector<TFontFile>& fonts);

    // The font, counted up, or null if there is no such font. Names are compared without case. The default
    // font is always there: where no file can be loaded for it, its characters are boxes.
    static TRenderFont* AddRef(const char* name, float size);
    static void AddRef(TRenderFont* font);
    // Counts down. A font stays when nobody uses it.
    static void Release(TRenderFont* font);
    // -1 for a font that the table does not have.
    static int GetRefCount(const TRenderFont* font);
    // In place of the system's list, which is read again when next needed; null for the system's.
    static void SetLister(TLister lister);
    static const vector<TFontFile>& GetFontFiles();

private:
    struct TEntry
    {
        TRenderFont* Font = nullptr;
        int RefCount = 0;
    };
    struct TTable;

    static TTable& GetTable();
    static TEntry* Find(const TRenderFont* font);
    static bool Build(TRenderFont& font, const char* name);
};
