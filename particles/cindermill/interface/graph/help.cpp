#include "particles/cindermill/interface/graph/help.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

namespace {

constexpr float HelpFontSize = 10.0f;
// In a view that is zoomed out, the text takes a larger size, so that it can still be read.
constexpr int NumFontSizes = 5;
constexpr float FontSizes[NumFontSizes] = {HelpFontSize, 14, 20, 28, 40};
// In units of the font's size.
constexpr float WidestLine = 26.0f;
constexpr float Border = 0.5f;
constexpr float LineSpacing = 1.25f;
// Below the mouse pointer.
constexpr float PointerX = 0.9f;
constexpr float PointerY = 1.9f;

} // namespace

THelp::THelp(TRenderObjects& root) : Root(root) {}

void THelp::Show(const char* text, const TVector2& point)
{
    Hide();
    Text = text;
    if (Text.Length() == 0)
        return;
    View = GetRenderer();
    SetOrigin(point);
    Measure(View != nullptr ? View->GetScale()[0] : 1.0f);
    Root.AddObject(this);
}

bool THelp::Hide()
{
    if (!IsShown())
        return false;
    Root.RemoveObject(this);
    View = nullptr;
    return true;
}

void THelp::Measure(float zoom)
{
    int size = 0;
    while (size < NumFontSizes - 1 && FontSizes[size] * zoom < HelpFontSize * 0.9f)
        ++size;
    if (!Font.IsCreated() || FontSize != FontSizes[size]) {
        FontSize = FontSizes[size];
        Font.Create(ControlFont, FontSize);
    }
    BreakLines(WidestLine * FontSize);
    TVector2 textSize;
    float width = 0;
    for (const TString& line : Lines) {
        Font.GetTextSize(line.Print(), textSize);
        width = textSize[0] > width ? textSize[0] : width;
    }
    LineHeight = LineSpacing * FontSize;
    Size = TVector2(width, LineHeight * static_cast<float>(Lines.size() - 1) + FontSize) +
           TVector2(Border, Border) * (2 * FontSize);
    Box.MoveTo(TVector2(0, 0));
    Box.LineTo(TVector2(Size[0], 0));
    Box.LineTo(Size);
    Box.LineTo(TVector2(0, Size[1]));
    Box.Close();
    Box.SetFillColour(TVector4(1, 0.99f, 0.86f, 0.97f));
    Box.SetStrokeColour(TVector4(0.35f, 0.35f, 0.30f, 1));
    Box.SetWidth(0.08f * FontSize);
}

void THelp::BreakLines(float width)
{
    Lines.clear();
    vector<TString> words;
    Text.Split(words, ' ');
    TString line;
    for (const TString& word : words) {
        TString longer = line;
        if (!line.IsEmpty())
            longer += " ";
        longer += word.Print();
        TVector2 size;
        Font.GetTextSize(longer.Print(), size);
        if (size[0] > width && !line.IsEmpty()) {
            Lines.push_back(line);
            line = word;
        } else {
            line = longer;
        }
    }
    Lines.push_back(line);
}

void THelp::Render(TRenderer& renderer)
{
    if (View != nullptr && View != &renderer)
        return;
    // Moved so far that all of it is in sight.
    TVector2 min;
    TVector2 max;
    renderer.GetVisibleRect(min, max);
    TVector2 place = renderer.GetOrigin() + TVector2(PointerX, PointerY) * FontSize;
    for (int i = 0; i < 2; ++i) {
        if (place[i] + Size[i] > max[i])
            place[i] = max[i] - Size[i];
        if (place[i] < min[i])
            place[i] = min[i];
    }
    renderer.PushOrigin(place - renderer.GetOrigin());
    renderer.PushOrigin(TVector2(0.2f, 0.25f) * FontSize);
    Box.SetWidth(0);
    Box.SetFillColour(TVector4(0, 0, 0, 0.2f));
    Box.Render(renderer);
    renderer.PopOrigin();
    Box.SetWidth(0.08f * FontSize);
    Box.SetFillColour(TVector4(1, 0.99f, 0.86f, 1));
    Box.Render(renderer);
    for (int i = 0; i < Lines.size(); ++i)
        Font.DrawText(renderer,
                      TVector2(Border * FontSize, Border * FontSize + LineHeight * static_cast<float>(i)),
                      Lines[i].Print(), TVector4(0.1f, 0.1f, 0.1f, 1));
    renderer.PopOrigin();
}

void THelp::GetBounds(TVector2& min, TVector2& max)
{
    // Wherever the point is, the box is moved into sight.
    min = TVector2(-1e30f, -1e30f);
    max = TVector2(1e30f, 1e30f);
}

TRenderObject* THelp::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}
