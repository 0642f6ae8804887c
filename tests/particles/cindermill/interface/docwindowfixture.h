#pragma once

#include "support/fakehost.h"
#include "support/testapp.h"
#include "support/windowtest.h"

#include "library/wimp/mdi.h"
#include "library/wimp/menu.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/particles/particlewindow.h"
#include "particles/cindermill/interface/windowplaces.h"

#include <QtTest/QTest>
#include <QtWidgets/QWidget>

// The application's side, with real windows for its documents.
class TWindowsHost : public TFakeAppHost
{
public:
    TDocumentHost* CreateDocumentHost() override { return new TDocumentWindows(Frame, Places); }
    void EndInput() override { TGraphWindow::EndInput(); }
    void RunTicks() override { TRenderObject::RunTicks(nullptr); }
    TWindow* Frame = nullptr;
    // Null where windows have no places of their own.
    TWindowPlaces* Places = nullptr;
};

// A main window, and the application over it.
class DocWindows : public TWindowTest
{
protected:
    DocWindows();
    ~DocWindows() override;
    void SetUp() override;

    // A new document with its windows shown; null if that failed.
    TDocument* NewDocument();
    TDocument* LoadDocument(const std::string& path);
    static TDocumentWindows& WindowsOf(TDocument& document)
    {
        return *static_cast<TDocumentWindows*>(document.GetHost());
    }
    static TDocWindow& ViewOf(TDocument& document, int i = 0) { return *WindowsOf(document).GetWindow(i); }
    static TGraphWindow& GraphOf(TDocument& document, int i = 0) { return ViewOf(document, i).GetGraph(); }
    static std::string TitleOf(const TWindow& window);
    // A node with its top left at the place.
    TToolNode* AddNode(TDocument& document, const char* type, int x, int y);
    // The place of a world point in the view.
    static QPoint PixelOf(TGraphWindow& graph, const TVector2& point);
    // In the first view.
    static QPoint MiddleOf(TDocument& document, const TToolNode* node);
    static void SetView(TGraphWindow& graph, float offsetX, float offsetY, float scale);

    // The others are down all the while.
    static void Press(TWindow& window, const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers keys = Qt::NoModifier, Qt::MouseButtons others = Qt::NoButton);
    static void Release(TWindow& window, const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
                        Qt::KeyboardModifiers keys = Qt::NoModifier, Qt::MouseButtons others = Qt::NoButton);
    // With the buttons down.
    static void Move(TWindow& window, const QPoint& at, Qt::MouseButtons buttons = Qt::LeftButton,
                     Qt::KeyboardModifiers keys = Qt::NoModifier);
    static void Drag(TWindow& window, const QPoint& from, const QPoint& to,
                     Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = Qt::NoModifier);
    static void Wheel(TWindow& window, const QPoint& at, int delta);
    static void Key(TWindow& window, int key, Qt::KeyboardModifiers keys = Qt::NoModifier);
    // As a keyboard tells one that is held: down so many times, and up once.
    static void HoldKey(TWindow& window, int key, int times, Qt::KeyboardModifiers keys = Qt::NoModifier);
    // One press of Space, or what a keyboard tells of a held one, to what has the focus.
    static void Space(bool isRepeat);
    // With the text that the key gives.
    static void Type(TWindow& window, int key, const QString& text, Qt::KeyboardModifiers keys);
    // A point of one window in another's pixels.
    static QPoint InWindow(const TWindow& from, const QPoint& at, const TWindow& to);

    // Edits come within the time in which they may melt, however long the machine takes for them.
    TFakeClock Clock{10000};
    TQuiet Quiet;
    TWindowsHost Host;
    TTestApp App;
    TMenu Menu;
    TMDIFrame Frame;
};
