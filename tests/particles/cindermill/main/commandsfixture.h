#pragma once

#include "support/fakehost.h"
#include "support/testapp.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/displayerrors.h"

#include <deque>
#include <filesystem>
#include <sys/stat.h>

const char* const OpenEffect = "open Select load path|*.effect|*.effect|*.*|*.*";
const char* const SaveEffect = "save Select save path|*.effect|*.effect|*.*|*.*";
const char* const SaveEfx = "save Select export path|*.efx|*.efx|*.*|*.*";

// What the forms showed and asked. Questions that no answer was laid out for are answered with Cancel.
struct TShown
{
    TNames Messages;
    TNames Questions;
    TNames Errors;
    std::deque<bool> Answers;
};

inline TShown Shown;

class Commands : public testing::Test
{
protected:
    Commands() : App(&Host)
    {
        Shown = TShown();
        SetMessageForms([](const char* text) { Shown.Messages.push_back(text); },
                        [](const char* text) {
                            Shown.Questions.push_back(text);
                            if (Shown.Answers.empty())
                                return false;
                            const bool answer = Shown.Answers.front();
                            Shown.Answers.pop_front();
                            return answer;
                        });
        SetDisplayErrors([](const char* title, const TErrorList&) { Shown.Errors.push_back(title); });
    }
    ~Commands() override
    {
        const vector<TDocument*> documents = App.Get().GetDocuments();
        for (TDocument* document : documents) {
            Host.Answer = MA_NO;
            App.Get().CloseDocument(document);
        }
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }
    static std::string Kept(std::string path)
    {
        for (char& c : path)
            c = c == '/' ? '\\' : c;
        return path;
    }
    static TFakeHost& HostOf(TDocument& document) { return *static_cast<TFakeHost*>(document.GetHost()); }
    TDocument& Newest() const { return **(App.Get().GetDocuments().end() - 1); }
    int NumDocuments() const { return App.Get().GetDocuments().size(); }
    // As the views of a document do when they are clicked.
    void Activate(TDocument& document) { App.Get().SetActiveDocWindow(AView(), &document); }
    static TDocWindow* AView()
    {
        static int view;
        return reinterpret_cast<TDocWindow*>(&view);
    }
    static TWindow* AWindow()
    {
        static int window;
        return reinterpret_cast<TWindow*>(&window);
    }
    TDocument& New()
    {
        EXPECT_TRUE(App.Get().NewDocument());
        Activate(Newest());
        return Newest();
    }
    TToolNode* Add(TDocument& document, const char* type = "Age")
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type(type), 10, 20);
        document.ApplyOperation(op);
        return op->GetNode();
    }
    std::string EffectFile(const std::string& leaf)
    {
        TDocument document(App.Get());
        EXPECT_TRUE(document.New());
        Add(document);
        EXPECT_TRUE(document.SaveAs(Path(leaf).c_str()));
        return Path(leaf);
    }
    TNames Recent() const
    {
        TNames result;
        for (const TString& path : App.Get().GetSettings().GetRecentFiles())
            result.push_back(path.Print());
        return result;
    }
    // Leads to a file of the kernel's: read-only for the superuser too, and so it stays.
    std::string LockedForever(const std::string& leaf)
    {
        std::filesystem::create_symlink("/proc/self/stat", Path(leaf));
        return Path(leaf);
    }
    void MakeReadOnly(const std::string& path) { ASSERT_EQ(chmod(path.c_str(), 0444), 0); }

    TQuiet Quiet;
    TFakeAppHost Host;
    mutable TTestApp App;
};
