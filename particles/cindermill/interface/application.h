#pragma once

#include "library/containers/owner.h"
#include "library/wimp/desktopactivation.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/mainwindow.h"
#include "particles/cindermill/interface/resourcedialog.h"
#include "particles/cindermill/interface/systemexchange.h"
#include "particles/cindermill/interface/windowplaces.h"
#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/cindermillapp.h"

// The program with its windows: starts it, and gives the application object its main window, choosers and
// dialogs.
class TApplication : public TWimpApp, public TAppHost, public TActivationHost
{
public:
    TApplication();
    ~TApplication() override;

    // False if the program cannot or shall not go on; what failed was shown.
    bool Init();
    // After the start: from now on documents are autosaved, and what an earlier run left so is asked about.
    void StartAutosave();
    void OnIdle() override;
    void OnClock() override;
    void OnWait() override;
    // Comes to the front and opens the effects.
    void OnActivation(const vector<TString>& files, const TLaunch& launch) override;
    void OnEnding() override;
    // The system has ended the program: what is to be kept is kept, and nobody was asked.
    void EndUnasked();

    TDocumentHost* CreateDocumentHost() override;
    bool ChooseOpenPath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                        TString& path) override;
    bool ChooseSavePath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                        TString& path) override;
    bool ChooseFolder(const char* title, TString& path) override;
    TModifiedAnswer AskModifiedFiles(const vector<TString>& names) override;
    TRecoveryAnswer AskRecovery(const vector<TString>& effects) override;
    void ShowProperties(TDocument& document, const char* text) override;
    void ShowOptions() override;
    void Beep() override;
    void RebuildRecentFiles(const vector<TString>& files) override;
    void FocusSelected(TDocWindow& window) override;
    void FocusAll(TDocWindow& window) override;
    void DeleteIn(TDocWindow& window) override;
    bool TakesDelete(TDocWindow& window) override;
    void Cascade() override;
    TWindow* WindowFromPoint(int x, int y) override;
    void EndInput() override;
    bool IsDragging() override;
    void RunTicks() override;
    void ShowStatus(const char* text) override;
    bool IsLastStatus(const char* text) override;
    void Quit() override;

private:
    bool LoadNodeBitmaps();
    void KeepPlaces();

    static constexpr int NumNodeBitmaps = 4;

    TSystemExchange Exchange;
    TCindermillApp App;
    TWindowPlaces Places;
    TResourceDialog ResourceDialog;
    TOwner<TMainWindow> MainWindow;
    TGDIBitmap NodeBitmaps[NumNodeBitmaps];
    TDesktopActivation Activation;
};
