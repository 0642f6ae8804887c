#include "tools/samplemaker/samplepictures.h"

#include "library/containers/image/image.h"
#include "library/containers/string.h"
#include "tools/samplemaker/samplemaths.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

// What a picture shows at a place; x and y from -1 to 1, y upwards.
struct TTexel
{
    double Red = 1;
    double Green = 1;
    double Blue = 1;
    double Alpha = 0;
};

using TPainter = TTexel (*)(double x, double y);

double Clamp(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

// 0 at and below `from`, 1 at and above `to`, smooth in between.
double Step(double from, double to, double value)
{
    const double t = Clamp((value - from) / (to - from));
    return t * t * (3 - 2 * t);
}

double Mix(double a, double b, double w)
{
    return a + (b - a) * w;
}

double Length(double x, double y)
{
    return std::sqrt(x * x + y * y);
}

TTexel White(double alpha)
{
    TTexel result;
    result.Alpha = alpha;
    return result;
}

TTexel Tinted(double red, double green, double blue, double alpha)
{
    return {red, green, blue, alpha};
}

// Bright in the middle, and without an edge where it ends.
TTexel PaintGlow(double x, double y)
{
    const double fall = Clamp(1 - Length(x, y));
    const double core = Step(0.5, 1, fall);
    return White(Clamp(0.75 * fall * fall * fall + 0.2 * fall * fall + 0.45 * core));
}

// Even in the middle, and so soft at the rim that one does not see where it ends: air, not dirt in it.
TTexel PaintDusk(double x, double y)
{
    const double fall = Step(0, 0.9, Clamp(1 - Length(x, y)));
    return White(fall * Mix(0.8, 1, fall));
}

// A streak without edges: broad and bright near the head, thin at the tail.
TTexel PaintSpark(double x, double y)
{
    const double along = (y + 1) / 2;
    const double width = Mix(0.12, 0.85, along * std::sqrt(along));
    const double off = Clamp(1 - x * x / (width * width));
    const double head = Step(0, 0.22, 1 - along);
    return White(off * off * off * along * std::sqrt(along) * head);
}

// Four rays and a light in their middle.
TTexel PaintStar(double x, double y)
{
    const double r = Length(x, y);
    const double fall = Clamp(1 - r);
    const double across = std::fabs(x) < std::fabs(y) ? std::fabs(x) : std::fabs(y);
    const double ray = Clamp(1 - across / (0.11 * fall + 0.001));
    const double heart = Clamp(1 - r / 0.35);
    return White(Clamp(ray * ray * fall + heart * heart * 1.2));
}

// A chip of stone, lit from above.
TTexel PaintRock(double x, double y)
{
    const double bumps = GetFractalNoise(2.2 * x + 3, 2.2 * y + 5, 0, 43);
    const double edge = 0.62 + 0.4 * (bumps - 0.5) - std::max(Length(x, y), 0.9 * std::fabs(x + 0.4 * y));
    const double grain = GetFractalNoise(7 * x, 7 * y, 0, 17);
    const double light = Clamp(0.32 + 0.22 * y + 0.5 * (grain - 0.35));
    return Tinted(light, 0.92 * light, 0.84 * light, Step(0, 0.06, edge));
}

// Value noise that is thick in the middle and ragged at the rim.
TTexel PaintPuff(double x, double y, unsigned seed)
{
    const double r = Length(x, y);
    const double cloud = GetFractalNoise(3 * x, 3 * y, 0, seed);
    const double alpha = Step(0.1, 0.9, 1.15 - r + (cloud - 0.5) * 0.9) * Step(0, 0.2, 1 - r);
    const double light = Mix(0.72, 1, Clamp(0.5 + 0.35 * y + (cloud - 0.5)));
    return Tinted(light, light, light, alpha);
}

TTexel PaintSmoke(double x, double y)
{
    return PaintPuff(x, y, 11);
}

// What a puff falls apart into.
TTexel PaintWisp(double x, double y)
{
    const double r = Length(x, y);
    const double shreds = GetFractalNoise(2.6 * x + 7, 2.6 * y, 0, 29);
    const double alpha = Step(0.32, 0.72, shreds) * Step(0, 0.7, 1 - r);
    return Tinted(0.95, 0.95, 0.95, alpha * 0.9);
}

// A thin bright line between two soft slopes.
TTexel PaintRing(double x, double y)
{
    const double off = Length(x, y) - 0.78;
    const double slope = Clamp(1 - std::fabs(off) / (off > 0 ? 0.21 : 0.34));
    const double line = Clamp(1 - std::fabs(off) / 0.07);
    return White(Clamp(0.55 * slope * slope * (3 - 2 * slope) + 0.45 * line * line * (3 - 2 * line)));
}

// Three lines through the middle, each with a pair of branches, in a soft light. Flakes are small on the
// screen: lines that are thinner than its dots would flicker.
TTexel PaintFlake(double x, double y)
{
    static constexpr double HalfRoot3 = 0.8660254037844386;
    static constexpr double Arms[][2] = {{1, 0}, {0.5, HalfRoot3}, {-0.5, HalfRoot3}};
    const double r = Length(x, y);
    double nearest = 1;
    for (const double* arm : Arms) {
        const double along = std::fabs(x * arm[0] + y * arm[1]);
        const double across = std::fabs(y * arm[0] - x * arm[1]);
        if (along < 0.8)
            nearest = std::min(nearest, across);
        // A branch leaves the arm at 60 degrees.
        const double out = (along - 0.4) * 0.5 + across * HalfRoot3;
        const double off = std::fabs(across * 0.5 - (along - 0.4) * HalfRoot3);
        if (out > 0 && out < 0.28)
            nearest = std::min(nearest, off);
    }
    // White on a soft cold light, which shows before a bright sky as before a dark one.
    const double body = (1 - Step(0, 0.15, nearest)) * Step(0, 0.25, 0.88 - r);
    const double cold = Step(0, 0.5, 1 - r);
    const double white = Step(0, 0.7, body);
    return Tinted(Mix(0.25, 1, white), Mix(0.47, 1, white), Mix(0.85, 1, white), Mix(0.6 * cold, 1, body));
}

// A round drop, bright at its lower edge and with a light on its upper left, as water has them.
TTexel PaintDrop(double x, double y)
{
    const double r = Length(x, y);
    const double body = Step(0, 0.3, 0.92 - r);
    const double shine = Clamp(1 - Length(x + 0.28, y - 0.32) / 0.38);
    const double below = Clamp((r * r) * (0.45 - 0.55 * y));
    const double light = Clamp(0.62 + 0.5 * below + 0.9 * shine * shine);
    return Tinted(light, Mix(light, 1, 0.25), Mix(light, 1, 0.5), body * Clamp(0.72 + 0.3 * r * r + shine));
}

// A rounded tile with a bright rim.
TTexel PaintTile(double x, double y)
{
    const double corner = 0.3;
    const double dx = std::max(std::fabs(x) - (0.92 - corner), 0.0);
    const double dy = std::max(std::fabs(y) - (0.92 - corner), 0.0);
    const double edge = corner - Length(dx, dy);
    const double rim = 1 - Step(0.08, 0.16, edge);
    const double light = Mix(0.62 + 0.12 * y, 1, rim);
    return Tinted(light, light, light, Step(0, 0.05, edge));
}

// A leaf with its stalk at the bottom, and veins.
TTexel PaintLeaf(double x, double y, const TTexel& light, const TTexel& dark)
{
    const double up = (y + 0.75) / 1.65;
    const double half = up > 0 && up < 1 ? 1.9 * up * (1 - up) * Mix(1.15, 0.75, up) : 0;
    const double blade = Step(0, 0.06, half - std::fabs(x));
    const double stalk = y < -0.6 ? Step(0.05, 0.02, std::fabs(x)) * Step(-0.98, -0.9, y) : 0;
    const double middle = 1 - Step(0.01, 0.05, std::fabs(x));
    const double slope = (y - 0.7 * std::fabs(x) + 2) * 5;
    const double between = std::fabs(slope - std::floor(slope) - 0.5) * 2;
    const double vein = std::max(middle, 0.7 * Step(0.82, 0.98, between));
    const double grain = Mix(vein, 1, 0.35 * GetFractalNoise(6 * x, 6 * y, 0, 5));
    return Tinted(Mix(light.Red, dark.Red, grain), Mix(light.Green, dark.Green, grain),
                  Mix(light.Blue, dark.Blue, grain), std::max(blade, stalk));
}

TTexel PaintGreenLeaf(double x, double y)
{
    return PaintLeaf(x, y, {0.42, 0.72, 0.2, 1}, {0.2, 0.42, 0.1, 1});
}

TTexel PaintBrownLeaf(double x, double y)
{
    return PaintLeaf(x, y, {0.86, 0.5, 0.14, 1}, {0.48, 0.22, 0.06, 1});
}

// One frame of a flame: the noise it is cut out of moves upwards and comes round after `NumFrames`.
constexpr int FlameTiles = 4;
constexpr int NumFrames = FlameTiles * FlameTiles;

TTexel PaintFlame(double x, double y, int frame)
{
    const double phase = static_cast<double>(frame) / NumFrames;
    constexpr int Period = 4;
    const double noise = GetFractalNoise(2.4 * x, 1.5 * y - Period * phase, Period, 71);
    const double up = (y + 1) / 2;
    const double sway = (noise - 0.5) * 0.6 * up;
    const double half = 0.55 * std::sqrt(Clamp(1 - up)) * Mix(0.75, 1, Step(0, 0.25, up));
    const double body = half - std::fabs(x + sway) + (noise - 0.55) * 0.55 * up;
    const double heat = Step(-0.02, 0.5, body) * Mix(1, 0.45, up);
    const double alpha = Step(0, 0.32, body) * Step(0, 0.3, up) * Step(0, 0.25, 1 - up);
    return Tinted(1, Mix(0.28, 0.95, heat), Mix(0.03, 0.62, heat * heat), alpha);
}

uint8_t ToByte(double value)
{
    return static_cast<uint8_t>(Clamp(value) * 255 + 0.5);
}

void Store(TImage& image, int x, int y, const TTexel& texel)
{
    uint8_t* pixel = image.GetPixel(x, y);
    pixel[0] = ToByte(texel.Red);
    pixel[1] = ToByte(texel.Green);
    pixel[2] = ToByte(texel.Blue);
    pixel[3] = ToByte(texel.Alpha);
}

// The middle of pixel i of n, from -1 to 1.
double ToPosition(int i, int n)
{
    return (2.0 * i + 1) / n - 1;
}

bool MakePicture(const char* folder, const char* name, int width, int height, int format, TPainter painter)
{
    TImage image;
    image.Create(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            Store(image, x, y, painter(ToPosition(x, width), ToPosition(y, height)));
    TString path;
    path.Format("%s/%s", folder, name);
    return image.Save(path, format);
}

// The first frame stands at the top left.
bool MakeFlipbook(const char* folder, const char* name, int size, int format)
{
    TImage image;
    image.Create(size, size);
    const int tile = size / FlameTiles;
    for (int y = 0; y < size; ++y) {
        const int row = FlameTiles - 1 - y / tile;
        for (int x = 0; x < size; ++x) {
            const int frame = row * FlameTiles + x / tile;
            Store(image, x, y, PaintFlame(ToPosition(x % tile, tile), ToPosition(y % tile, tile), frame));
        }
    }
    TString path;
    path.Format("%s/%s", folder, name);
    return image.Save(path, format);
}

struct TSamplePicture
{
    const char* Name;
    int Width;
    int Height;
    int Format;
    TPainter Painter;
};

constexpr TSamplePicture Pictures[] = {
    {"glow.dds", 128, 128, IF_DDS_RAW, PaintGlow},
    {"dusk.dds", 128, 128, IF_DDS_RAW, PaintDusk},
    {"spark.dds", 64, 256, IF_DDS_RAW, PaintSpark},
    {"star.dds", 128, 128, IF_DDS_RAW, PaintStar},
    {"rock.dds", 128, 128, IF_DDS_DXT5, PaintRock},
    {"smoke.hvt", 256, 256, IF_HVT_DXT5, PaintSmoke},
    {"wisp.hvt", 128, 128, IF_HVT_DXT5, PaintWisp},
    {"ring.hvt", 256, 256, IF_HVT_RAW, PaintRing},
    {"flake.dds", 128, 128, IF_DDS_RAW, PaintFlake},
    {"drop.dds", 128, 128, IF_DDS_RAW, PaintDrop},
    {"tile.hvt", 128, 128, IF_HVT_RAW, PaintTile},
    {"leafgreen.dds", 128, 128, IF_DDS_DXT5, PaintGreenLeaf},
    {"leafbrown.dds", 128, 128, IF_DDS_DXT5, PaintBrownLeaf},
};

} // namespace

bool MakeSamplePictures(const char* folder)
{
    bool made = MakeFlipbook(folder, "fire.dds", 512, IF_DDS_DXT5);
    for (const TSamplePicture& picture : Pictures)
        made &=
            MakePicture(folder, picture.Name, picture.Width, picture.Height, picture.Format, picture.Painter);
    return made;
}
