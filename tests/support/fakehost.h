#pragma once

#include "support/testsupport.h"

#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/documenthost.h"

using TNames = std::vector<std::string>;

// Writes down what a document asks of its windows.
class TFakeHost : public TDocumentHost, public TGraphListener
{
public:
    bool CreateParticleWindow(TDocument&) override
    {
        return Tell("create particle window") && !FailsParticleWindow;
    }
    void ShowParticleWindow(TDocument&) override { Tell("show particle window"); }
    bool CreateView(TDocument& document) override
    {
        document.SetListener(this);
        return Tell("create view") && !FailsView;
    }
    bool NewView(TDocument&) override { return Tell("new view"); }
    void DeleteWindows(TDocument& document) override
    {
        document.SetListener(nullptr);
        Tell("delete windows");
    }
    void OnIdle(TDocument&) override { Tell("idle"); }
    bool OwnsWindow(TWindow* window) override { return window == Window; }
    void OnDrop(TDocument&, TWindow*, int x, int y, const char* path) override
    {
        Tell("drop " + std::to_string(x) + " " + std::to_string(y) + " " + path);
    }
    void FrameAllNodes(TDocument&) override { Tell("frame"); }
    void BringIntoSight(TDocument&, const vector<TToolNode*>& nodes) override { Sought = nodes; }
    void UpdateTitles(TDocument& document) override { Tell(document.IsModified() ? "title*" : "title"); }
    void RedrawWindows(TDocument&) override { ++Redraws; }
    void AgreementChanged(TDocument&) override { ++NumAgreements; }
    void ScheduleChanged(TDocument& document) override
    {
        ++Schedules;
        HasSeenEngine = document.GetEngine().IsInited();
    }
    void EngineGoes(TDocument& document) override
    {
        ++GoneEngines;
        // It can still be let go of.
        EXPECT_TRUE(document.GetEngine().IsInited());
        EXPECT_TRUE(document.GetSchedule().IsCreated());
        HasSeenEngine = false;
    }
    void NodeAdded(TToolNode*) override { ++NodeObjects; }
    void NodeRemoved(TToolNode*) override { --NodeObjects; }
    void EdgeAdded(TToolEdge*) override { ++EdgeObjects; }
    void EdgeRemoved(TToolEdge*) override { --EdgeObjects; }
    void GetNodeHalfSize(TToolNode*, int& x, int& y) override
    {
        x = 20;
        y = 10;
    }
    TNames Taken()
    {
        TNames result;
        result.swap(Events);
        return result;
    }

    TNames Events;
    // The one window that is the document's.
    TWindow* Window = nullptr;
    // What was to be brought into sight last.
    vector<TToolNode*> Sought;
    int Redraws = 0;
    int NumAgreements = 0;
    int Schedules = 0;
    int GoneEngines = 0;
    // Whether the windows believe that there is an engine.
    bool HasSeenEngine = false;
    int NodeObjects = 0;
    int EdgeObjects = 0;
    bool FailsParticleWindow = false;
    bool FailsView = false;

private:
    bool Tell(const std::string& what)
    {
        Events.push_back(what);
        return true;
    }
};

// Answers what the application asks of its windows, and writes it down.
class TFakeAppHost : public TAppHost
{
public:
    TDocumentHost* CreateDocumentHost() override
    {
        TFakeHost* host = new TFakeHost;
        host->FailsParticleWindow = FailsDocuments;
        return host;
    }
    bool ChooseOpenPath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                        TString& path) override
    {
        return Choose("open", title, filters, directory, path);
    }
    bool ChooseSavePath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                        TString& path) override
    {
        return Choose("save", title, filters, directory, path);
    }
    bool ChooseFolder(const char* title, TString& path) override
    {
        return Choose("folder", title, vector<TPathFilter>(), nullptr, path);
    }
    TModifiedAnswer AskModifiedFiles(const vector<TString>& names) override
    {
        std::string text = "modified";
        for (const TString& name : names)
            text += std::string("|") + name.Print();
        Events.push_back(text);
        return Answer;
    }
    TRecoveryAnswer AskRecovery(const vector<TString>& effects) override
    {
        for (const TString& effect : effects)
            Recovered.push_back(effect.Print());
        return RecoveryAnswer;
    }
    bool IsDragging() override { return Drags; }
    void ShowProperties(TDocument&, const char* text) override
    {
        Events.push_back(std::string("properties ") + text);
    }
    void ShowOptions() override { Events.push_back("options"); }
    void Beep() override { Events.push_back("beep"); }
    void RebuildRecentFiles(const vector<TString>& files) override
    {
        Events.push_back("recent " + std::to_string(files.size()));
    }
    void FocusSelected(TDocWindow& window) override
    {
        Focused = &window;
        Events.push_back("focus selected");
    }
    void FocusAll(TDocWindow& window) override
    {
        Focused = &window;
        Events.push_back("focus all");
    }
    bool TakesDelete(TDocWindow&) override { return HasControl; }
    void DeleteIn(TDocWindow& window) override
    {
        Focused = &window;
        Events.push_back("delete");
    }
    void Cascade() override { Events.push_back("cascade"); }
    TWindow* WindowFromPoint(int, int) override { return UnderPoint; }
    void Quit() override { Events.push_back("quit"); }
    // Told apart from the rest, as most tests have no use for it.
    void ShowStatus(const char* text) override { Statuses.push_back(text); }
    bool IsLastStatus(const char* text) override { return !Statuses.empty() && Statuses.back() == text; }
    void EndInput() override
    {
        ++NumInputEnds;
        if (OnEndInput)
            OnEndInput();
    }
    TNames Taken()
    {
        TNames result;
        result.swap(Events);
        return result;
    }

    TNames Events;
    TNames Statuses;
    int NumInputEnds = 0;
    std::function<void()> OnEndInput;
    // The next choice; "" is Cancel.
    std::string Choice;
    // The name that the chooser came up with.
    std::string Offered;
    TModifiedAnswer Answer = MA_CANCEL;
    // What the question about autosaved effects named.
    TNames Recovered;
    TRecoveryAnswer RecoveryAnswer = RA_LATER;
    bool Drags = false;
    TWindow* UnderPoint = nullptr;
    // A control has the focus that takes the delete key.
    bool HasControl = false;
    TDocWindow* Focused = nullptr;
    bool FailsDocuments = false;

private:
    bool Choose(const char* kind, const char* title, const vector<TPathFilter>& filters,
                const char* directory, TString& path)
    {
        std::string text = std::string(kind) + " " + title;
        for (const TPathFilter& filter : filters)
            text += std::string("|") + filter.Description + "|" + filter.Pattern;
        if (directory != nullptr)
            text += std::string(" in ") + directory;
        Events.push_back(text);
        Offered = path.IsEmpty() ? "" : path.Print();
        path = Choice.c_str();
        return !Choice.empty();
    }
};
