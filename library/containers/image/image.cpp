#include "library/containers/image/image.h"

#include "library/containers/byteorder.h"
#include "library/containers/image/dxt.h"
#include "library/containers/wholenumbers.h"
#include "library/system/file.h"

#include <cstring>

#include <squish.h>

namespace {

// What a pixel code says of a source pixel. Four codes are compressed; the rest have a fixed size.
enum TDecodeRule
{
    DR_DXT,
    DR_ALPHA8,
    DR_LUMINANCE8,
    DR_BYTES,
    DR_LUMINANCEALPHA8,
    DR_ALPHA16,
    DR_LUMINANCE16,
    DR_LUMINANCEALPHA16,
    DR_WHITE,
    DR_FLOAT4,
    DR_FLOAT1
};

struct TPixelCode
{
    uint32_t Code;
    TDecodeRule Rule;
    // Bytes per source pixel; for a compressed code the TDxtKind.
    int Size;
    // Which source byte each of R, G, B, A is, for DR_BYTES.
    uint8_t Bytes[4];
};

constexpr TPixelCode PixelCodes[] = {
    {0x0600AAE4, DR_DXT, DXT_1, {}},         {0x0700AAE4, DR_DXT, DXT_3, {}},
    {0x0800AAE4, DR_DXT, DXT_5, {}},         {0x010002FF, DR_ALPHA8, 1, {}},
    {0x0100A9FF, DR_LUMINANCE8, 1, {}},      {0x0500AA1B, DR_BYTES, 4, {2, 1, 0, 3}},
    {0x0500AA93, DR_BYTES, 4, {0, 1, 2, 3}}, {0x0500AAE4, DR_BYTES, 4, {1, 2, 3, 0}},
    {0x0B00AAAB, DR_LUMINANCEALPHA8, 2, {}}, {0x140002EE, DR_ALPHA16, 2, {}},
    {0x1400A9EE, DR_LUMINANCE16, 2, {}},     {0x1501AAE4, DR_LUMINANCEALPHA16, 4, {}},
    {0x1A00AAE4, DR_WHITE, 8, {}},           {0x1B00AAE4, DR_FLOAT4, 16, {}},
    {0x1C0009E4, DR_FLOAT1, 4, {}},
};

// Formats that no code of the table names are white, and their data is not looked at.
constexpr TPixelCode UnknownCode = {0, DR_WHITE, 0, {}};

const TPixelCode& FindPixelCode(uint32_t code)
{
    for (const TPixelCode& entry : PixelCodes)
        if (entry.Code == code)
            return entry;
    return UnknownCode;
}

// The high byte of a 16-bit value.
uint8_t High16(const uint8_t* p, bool bigEndian)
{
    return bigEndian ? p[0] : p[1];
}

uint8_t FloatToByte(const uint8_t* p, bool bigEndian)
{
    const uint32_t bits = bigEndian ? BigU32(p) : LittleU32(p);
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    if (!(value > 0.0f))
        return 0;
    if (value >= 1.0f)
        return 255;
    return static_cast<uint8_t>(255.0 * value);
}

void SetGrey(uint8_t* out, uint8_t grey, uint8_t alpha)
{
    out[0] = out[1] = out[2] = grey;
    out[3] = alpha;
}

void DecodePixel(const TPixelCode& code, const uint8_t* in, bool bigEndian, uint8_t* out)
{
    switch (code.Rule) {
    case DR_ALPHA8:
        return SetGrey(out, 255, in[0]);
    case DR_LUMINANCE8:
        return SetGrey(out, in[0], 255);
    case DR_BYTES:
        for (int i = 0; i < 4; ++i)
            out[i] = in[code.Bytes[i]];
        return;
    case DR_LUMINANCEALPHA8:
        return SetGrey(out, in[0], in[1]);
    case DR_ALPHA16:
        return SetGrey(out, 255, High16(in, bigEndian));
    case DR_LUMINANCE16:
        return SetGrey(out, High16(in, bigEndian), 255);
    case DR_LUMINANCEALPHA16:
        return SetGrey(out, High16(in, bigEndian), High16(in + 2, bigEndian));
    case DR_FLOAT4:
        for (int i = 0; i < 4; ++i)
            out[i] = FloatToByte(in + 4 * i, bigEndian);
        return;
    case DR_FLOAT1:
        return SetGrey(out, FloatToByte(in, bigEndian), 255);
    case DR_DXT:
    case DR_WHITE:
        break;
    }
    SetGrey(out, 255, 255);
}

bool WriteFileFrom(const char* path, const uint8_t* head, int headSize, const vector<uint8_t>& body,
                   TString& fault)
{
    TFile file;
    bool written = file.OpenWrite(path);
    if (written) {
        // A write that fails is remembered by the file, and Close then drops it.
        file.Write(head, headSize);
        file.Write(body.data(), body.size());
        written = file.Close();
    }
    fault = file.GetFault();
    return written;
}

} // namespace

uint32_t SwizzleIndex(uint32_t x, uint32_t y, uint32_t width, uint32_t height)
{
    uint32_t index = 0;
    uint32_t bit = 0;
    for (uint32_t mask = 1; mask != 0 && (mask < width || mask < height); mask <<= 1) {
        if (mask < width)
            index |= ((x & mask) != 0 ? 1u : 0u) << bit++;
        if (mask < height)
            index |= ((y & mask) != 0 ? 1u : 0u) << bit++;
    }
    return index;
}

void TImage::Clear()
{
    Width = Height = BitsPerPixel = 0;
    Pixels = vector<uint8_t>();
}

void TImage::Create(int width, int height)
{
    Width = width;
    Height = height;
    BitsPerPixel = 32;
    Pixels = vector<uint8_t>();
    Pixels.resize(width * height * 4);
}

bool TImage::LoadFile(const char* path, TReadHeader readHeader)
{
    Clear();
    TFile file;
    if (!file.OpenRead(path))
        return false;
    TStored stored;
    const bool loaded = readHeader(file, stored) && Decode(file, stored);
    file.Close();
    if (!loaded)
        Clear();
    return loaded;
}

bool TImage::Decode(TFile& file, const TStored& stored)
{
    constexpr int64_t MaxPixels = 1 << 28;
    if (stored.Width <= 0 || stored.Height <= 0 ||
        static_cast<int64_t>(stored.Width) * stored.Height > MaxPixels)
        return false;
    if (FindPixelCode(stored.Code).Rule == DR_DXT)
        return DecodeBlocks(file, stored);
    return stored.Morton ? DecodeMorton(file, stored) : DecodeRows(file, stored);
}

bool TImage::DecodeBlocks(TFile& file, const TStored& stored)
{
    const TDxtKind kind = static_cast<TDxtKind>(FindPixelCode(stored.Code).Size);
    const int blockSize = GetDxtBlockSize(kind);
    const int across = (stored.Width + 3) / 4;
    const int down = (stored.Height + 3) / 4;
    if (static_cast<int64_t>(across) * down * blockSize > file.GetSize() - stored.Offset)
        return false;
    Create(stored.Width, stored.Height);
    vector<uint8_t> row;
    row.resize(across * blockSize);
    file.SetFilePtr(stored.Offset);
    for (int by = 0; by < down; ++by) {
        if (!file.Read(row.data(), row.size()))
            return false;
        for (int bx = 0; bx < across; ++bx) {
            uint8_t block[64];
            DecodeDxtBlock(kind, row.data() + bx * blockSize, block);
            for (int i = 0; i < 16; ++i) {
                const int x = bx * 4 + i % 4;
                const int y = by * 4 + i / 4;
                if (x < Width && y < Height)
                    std::memcpy(GetPixel(x, Height - 1 - y), block + i * 4, 4);
            }
        }
    }
    return true;
}

// A code that nobody knows tells no pixel size; its file must at least hold a byte per pixel.
static bool HoldsPixels(const TPixelCode& code, int64_t needed, int64_t pixels, int64_t held)
{
    return needed <= held && (code.Size != 0 || pixels <= held);
}

bool TImage::DecodeRows(TFile& file, const TStored& stored)
{
    const TPixelCode& code = FindPixelCode(stored.Code);
    const int64_t size = static_cast<int64_t>(stored.Width) * code.Size;
    const int64_t step = stored.Pitch != 0 ? stored.Pitch : size;
    // Rows that lie in each other would let a small file ask for a picture of any size.
    if (step < size)
        return false;
    const int64_t pixels = static_cast<int64_t>(stored.Width) * stored.Height;
    if (!HoldsPixels(code, step * (stored.Height - 1) + size, pixels, file.GetSize() - stored.Offset))
        return false;
    Create(stored.Width, stored.Height);
    vector<uint8_t> row;
    row.resize(static_cast<int>(size));
    for (int y = 0; y < Height; ++y) {
        file.SetFilePtr(static_cast<int>(stored.Offset + step * y));
        if (!file.Read(row.data(), row.size()))
            return false;
        for (int x = 0; x < Width; ++x)
            DecodePixel(code, row.data() + x * code.Size, stored.BigEndian, GetPixel(x, Height - 1 - y));
    }
    return true;
}

bool TImage::DecodeMorton(TFile& file, const TStored& stored)
{
    const TPixelCode& code = FindPixelCode(stored.Code);
    const uint32_t w = static_cast<uint32_t>(stored.Width);
    const uint32_t h = static_cast<uint32_t>(stored.Height);
    const int64_t size = (static_cast<int64_t>(SwizzleIndex(w - 1, h - 1, w, h)) + 1) * code.Size;
    const int64_t pixels = static_cast<int64_t>(stored.Width) * stored.Height;
    if (!HoldsPixels(code, size, pixels, file.GetSize() - stored.Offset))
        return false;
    vector<uint8_t> data;
    data.resize(static_cast<int>(size));
    file.SetFilePtr(stored.Offset);
    if (!file.Read(data.data(), data.size()))
        return false;
    Create(stored.Width, stored.Height);
    for (uint32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x)
            DecodePixel(code, data.data() + static_cast<int64_t>(SwizzleIndex(x, y, w, h)) * code.Size,
                        stored.BigEndian, GetPixel(static_cast<int>(x), static_cast<int>(h - 1 - y)));
    return true;
}

namespace {

constexpr int DdsHeaderSize = 128;

struct TDdsLayout
{
    uint32_t Bits;
    uint32_t Masks[4];
    uint32_t Code;
};

constexpr TDdsLayout DdsLayouts[] = {
    {8, {0xFF, 0, 0, 0}, 0x0100A9FF},
    {8, {0, 0, 0, 0xFF}, 0x010002FF},
    {16, {0xFFFF, 0, 0, 0}, 0x1400A9EE},
    {16, {0, 0, 0, 0xFFFF}, 0x140002EE},
    {16, {0xFF, 0, 0, 0xFF00}, 0x0B00AAAB},
    {32, {0xFFFF, 0, 0, 0xFFFF0000}, 0x1501AAE4},
    {32, {0xFF00, 0xFF0000, 0xFF000000, 0xFF}, 0x0500AAE4},
    {32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, 0x0500AA1B},
    {32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, 0x0500AA93},
};

struct TFourCC
{
    uint32_t Word;
    uint32_t Code;
};

constexpr uint32_t FourCC(char a, char b, char c, char d)
{
    return static_cast<uint32_t>(a) | static_cast<uint32_t>(b) << 8 | static_cast<uint32_t>(c) << 16 |
           static_cast<uint32_t>(d) << 24;
}

constexpr TFourCC DdsFourCCs[] = {
    {FourCC('D', 'X', 'T', '1'), 0x0600AAE4},
    {FourCC('D', 'X', 'T', '3'), 0x0700AAE4},
    {FourCC('D', 'X', 'T', '5'), 0x0800AAE4},
    {113, 0x1A00AAE4},
    {114, 0x1C0009E4},
    {116, 0x1B00AAE4},
};

// The pixel code of a DDS header, 0 for a layout that is not read.
uint32_t GetDdsCode(const uint8_t* header)
{
    constexpr uint32_t HasFourCC = 4;
    constexpr uint32_t HasColour = 0x20040;
    constexpr uint32_t HasAlpha = 3;
    const uint32_t flags = LittleU32(header + 80);
    if ((flags & HasFourCC) != 0) {
        for (const TFourCC& entry : DdsFourCCs)
            if (entry.Word == LittleU32(header + 84))
                return entry.Code;
        return 0;
    }
    uint32_t masks[4];
    for (int i = 0; i < 4; ++i) {
        const bool counts = (flags & (i < 3 ? HasColour : HasAlpha)) != 0;
        masks[i] = counts ? LittleU32(header + 92 + 4 * i) : 0;
    }
    for (const TDdsLayout& layout : DdsLayouts)
        if (layout.Bits == LittleU32(header + 88) && std::memcmp(layout.Masks, masks, sizeof(masks)) == 0)
            return layout.Code;
    return 0;
}

} // namespace

bool TImage::ReadDdsHeader(TFile& file, TStored& stored)
{
    constexpr uint32_t CubeOrVolume = 0x200 | 1u << 21;
    uint8_t header[DdsHeaderSize];
    if (!file.Read(header, DdsHeaderSize) || std::memcmp(header, "DDS ", 4) != 0 ||
        (LittleU32(header + 112) & CubeOrVolume) != 0)
        return false;
    const uint32_t height = LittleU32(header + 12);
    const uint32_t width = LittleU32(header + 16);
    stored.Code = GetDdsCode(header);
    if (stored.Code == 0 || width > INT32_MAX || height > INT32_MAX)
        return false;
    stored.Offset = DdsHeaderSize;
    stored.Width = static_cast<int>(width);
    stored.Height = static_cast<int>(height);
    return true;
}

bool TImage::LoadDds(const char* path)
{
    return LoadFile(path, &TImage::ReadDdsHeader);
}

namespace {

constexpr int HvtHeaderSize = 48;
constexpr uint8_t HvtLinear = 32;
// The writer's formats have the top bit set, which no reader looks at.
constexpr uint8_t HvtWritten = 128;

} // namespace

bool TImage::ReadHvtHeader(TFile& file, TStored& stored)
{
    uint8_t header[HvtHeaderSize];
    if (!file.Read(header, HvtHeaderSize))
        return false;
    const uint32_t count = BigU32(header + 8);
    if (count != 1) {
        DebugPrintf("Incorrect number of textures in HVT file: %d\n", static_cast<int>(count));
        return false;
    }
    if (BigU32(header + 12) != 0 || header[26] != 2 || header[27] != 0 || BigU16(header + 36) != 1) {
        DebugPrintf("Bad hvt attribute - no support for non 2d textures\n");
        return false;
    }
    const uint32_t offset = BigU32(header + 16);
    if (offset > static_cast<uint32_t>(file.GetSize()))
        return false;
    const uint8_t format = header[24];
    const bool linear = (format & HvtLinear) != 0;
    stored.Code = static_cast<uint32_t>(format & 31) << 24 | (BigU32(header + 28) & 0xFFFFFF);
    stored.Offset = static_cast<int>(offset);
    stored.Width = static_cast<int>(BigU16(header + 32));
    stored.Height = static_cast<int>(BigU16(header + 34));
    stored.Pitch = linear ? BigU32(header + 40) : 0;
    stored.Morton = !linear;
    stored.BigEndian = true;
    return true;
}

bool TImage::LoadHvt(const char* path)
{
    return LoadFile(path, &TImage::ReadHvtHeader);
}

TImage::TReadHeader TImage::FindReader(const char* path)
{
    char magic[4] = {};
    TFile file;
    if (!file.OpenRead(path))
        return nullptr;
    const bool isDds = file.GetSize() >= 4 && file.Read(magic, 4) && std::memcmp(magic, "DDS ", 4) == 0;
    file.Close();
    return isDds ? &TImage::ReadDdsHeader : &TImage::ReadHvtHeader;
}

bool TImage::Load(const char* path)
{
    Clear();
    const TReadHeader readHeader = FindReader(path);
    return readHeader != nullptr && LoadFile(path, readHeader);
}

bool TImage::ReadSize(const char* path, int& width, int& height)
{
    const TReadHeader readHeader = FindReader(path);
    TFile file;
    TStored stored;
    if (readHeader == nullptr || !file.OpenRead(path))
        return false;
    const bool isRead = readHeader(file, stored);
    file.Close();
    if (!isRead)
        return false;
    width = stored.Width;
    height = stored.Height;
    return true;
}

uint32_t TImage::GetMeanColour() const
{
    constexpr int most = 64;
    const int stepX = Width / most + 1;
    const int stepY = Height / most + 1;
    uint32_t sums[3] = {};
    uint32_t count = 0;
    for (int y = stepY / 2; y < Height; y += stepY)
        for (int x = stepX / 2; x < Width; x += stepX) {
            for (int i = 0; i < 3; ++i)
                sums[i] += GetPixel(x, y)[i];
            ++count;
        }
    return count == 0 ? 0 : sums[0] / count << 16 | sums[1] / count << 8 | sums[2] / count;
}

bool TImage::Save(const char* path, int format) const
{
    TString fault;
    return Save(path, format, fault);
}

bool TImage::Save(const char* path, int format, TString& fault) const
{
    switch (format) {
    case IF_TGA:
        return SaveTga(path, fault);
    case IF_DDS_RAW:
        return SaveDds(path, 0, fault);
    case IF_DDS_DXT3:
        return SaveDds(path, squish::kDxt3, fault);
    case IF_DDS_DXT5:
        return SaveDds(path, squish::kDxt5, fault);
    case IF_HVT_RAW:
        return SaveHvt(path, 0, fault);
    case IF_HVT_DXT3:
        return SaveHvt(path, squish::kDxt3, fault);
    case IF_HVT_DXT5:
        return SaveHvt(path, squish::kDxt5, fault);
    default:
        ASSERT_TEXT(false, "0");
    }
    return false;
}

void TImage::ReverseRows(vector<uint8_t>& pixels) const
{
    pixels.resize(Pixels.size());
    for (int y = 0; y < Height; ++y)
        std::memcpy(pixels.data() + y * Width * 4, GetPixel(0, Height - 1 - y),
                    static_cast<size_t>(Width) * 4);
}

namespace {

void Compress(vector<uint8_t>& pixels, int width, int height, int squishFlags)
{
    vector<uint8_t> blocks;
    blocks.resize(squish::GetStorageRequirements(width, height, squishFlags));
    squish::CompressImage(pixels.data(), width, height, blocks.data(), squishFlags);
    pixels.swap(blocks);
}

} // namespace

// Files of these kinds hold their sizes in 16 bits.
static bool FitsShort(int width, int height, TString& fault)
{
    if (width <= 0xFFFF && height <= 0xFFFF)
        return true;
    fault = "It is wider or higher than 65,535 pixels";
    return false;
}

bool TImage::SaveTga(const char* path, TString& fault) const
{
    if (!FitsShort(Width, Height, fault))
        return false;
    uint8_t header[18] = {};
    header[2] = 2;
    header[12] = static_cast<uint8_t>(Width);
    header[13] = static_cast<uint8_t>(Width >> 8);
    header[14] = static_cast<uint8_t>(Height);
    header[15] = static_cast<uint8_t>(Height >> 8);
    header[16] = 32;
    header[17] = 8;
    vector<uint8_t> swapped = Pixels;
    for (int i = 0; i < swapped.size(); i += 4) {
        const uint8_t red = swapped[i];
        swapped[i] = swapped[i + 2];
        swapped[i + 2] = red;
    }
    return WriteFileFrom(path, header, sizeof(header), swapped, fault);
}

bool TImage::SaveDds(const char* path, int squishFlags, TString& fault) const
{
    uint8_t header[DdsHeaderSize] = {};
    std::memcpy(header, "DDS ", 4);
    PutLittleU32(header + 4, 124);
    PutLittleU32(header + 8, 0x1007);
    PutLittleU32(header + 12, static_cast<uint32_t>(Height));
    PutLittleU32(header + 16, static_cast<uint32_t>(Width));
    PutLittleU32(header + 76, 32);
    PutLittleU32(header + 108, 0x1000);
    vector<uint8_t> body;
    ReverseRows(body);
    if (squishFlags == 0) {
        PutLittleU32(header + 80, 65);
        PutLittleU32(header + 88, 32);
        for (int i = 0; i < 4; ++i)
            PutLittleU32(header + 92 + 4 * i, 0xFFu << (8 * i));
    } else {
        PutLittleU32(header + 80, 4);
        std::memcpy(header + 84, squishFlags == squish::kDxt3 ? "DXT3" : "DXT5", 4);
        Compress(body, Width, Height, squishFlags);
    }
    return WriteFileFrom(path, header, sizeof(header), body, fault);
}

bool TImage::SaveHvt(const char* path, int squishFlags, TString& fault) const
{
    if (!FitsShort(Width, Height, fault))
        return false;
    vector<uint8_t> body;
    ReverseRows(body);
    uint8_t format = HvtWritten | 5;
    uint32_t remap = 0xAA93;
    uint32_t pitch = 0;
    if (squishFlags != 0) {
        format = static_cast<uint8_t>(HvtWritten | (squishFlags == squish::kDxt3 ? 7 : 8));
        remap = 0xAAE4;
        Compress(body, Width, Height, squishFlags);
    } else if (IsPowerOf2(Width) && !IsPowerOf2(Height)) {
        const uint32_t w = static_cast<uint32_t>(Width);
        const uint32_t h = static_cast<uint32_t>(Height);
        vector<uint8_t> swizzled;
        swizzled.resize(static_cast<int>(SwizzleIndex(w - 1, h - 1, w, h) + 1) * 4);
        for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x)
                std::memcpy(swizzled.data() + SwizzleIndex(x, y, w, h) * 4, body.data() + (y * w + x) * 4, 4);
        body.swap(swizzled);
    } else {
        format |= HvtLinear;
        pitch = static_cast<uint32_t>(Width) * 4;
    }
    uint8_t header[HvtHeaderSize] = {};
    PutBigU32(header + 4, static_cast<uint32_t>(body.size()));
    PutBigU32(header + 8, 1);
    PutBigU32(header + 16, HvtHeaderSize);
    PutBigU32(header + 20, static_cast<uint32_t>(body.size()));
    header[24] = format;
    header[25] = 1;
    header[26] = 2;
    PutBigU32(header + 28, remap);
    header[32] = static_cast<uint8_t>(Width >> 8);
    header[33] = static_cast<uint8_t>(Width);
    header[34] = static_cast<uint8_t>(Height >> 8);
    header[35] = static_cast<uint8_t>(Height);
    header[37] = 1;
    PutBigU32(header + 40, pitch);
    return WriteFileFrom(path, header, sizeof(header), body, fault);
}
