#include "dialogfixture.h"
#include "support/sampledocument.h"

#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/options/filepropertiesdialog.h"

#include <QtWidgets/QPlainTextEdit>

#include <memory>

namespace {

constexpr const char* Name = "dialog116";

// Goes on with the comparison, as long as it is let.
class TComparingApp : public TWimpApp
{
public:
    explicit TComparingApp(TDocument& document) : Document(document)
    {
        TWimp::Get().SetIdle(true);
        TWimp::Get().SetApp(this);
    }
    ~TComparingApp() override
    {
        TWimp::Get().ClearApp();
        TWimp::Get().SetIdle(false);
    }
    void OnIdle() override
    {
        ++Passes;
        if (Runs)
            if (Document.GetAgreement().IsDue())
                Document.GetAgreement().RunPass();
    }

    int Passes = 0;
    bool Runs = true;

private:
    TDocument& Document;
};

class FileProperties : public DialogTest
{
protected:
    void Load(const char* sample)
    {
        Sample = std::make_unique<TSampleDocument>(App, sample);
        Idle = std::make_unique<TComparingApp>(**Sample);
        (*Sample)->GetReport(Report);
        (*Sample)->GetAgreement().Begin();
    }
    void TearDown() override
    {
        Idle.reset();
        Sample.reset();
    }
    static std::string TextIn(QDialog& dialog, const char* name)
    {
        QPlainTextEdit* edit = dialog.findChild<QPlainTextEdit*>(name);
        return edit != nullptr ? edit->toPlainText().toStdString() : "none";
    }
    static QPushButton& Button(QDialog& dialog, const char* name)
    {
        return *dialog.findChild<QPushButton*>(name);
    }
    TToolNode* Run()
    {
        TFilePropertiesDialog dialog(**Sample, Report);
        return dialog.Run(nullptr);
    }
    void AwaitPasses(int count)
    {
        const int until = Idle->Passes + count;
        EXPECT_TRUE(WaitFor([&] { return Idle->Passes >= until; }));
    }
    void AwaitVerdict()
    {
        EXPECT_TRUE(WaitFor([&] { return (*Sample)->GetAgreement().IsKnown(); }));
        AwaitPasses(2);
    }

    std::unique_ptr<TSampleDocument> Sample;
    std::unique_ptr<TComparingApp> Idle;
    TString Report;
};

} // namespace

TEST_F(FileProperties, TheReportStandsAsItIsAndTheComparisonBelowIt)
{
    Load("fireflies");
    Idle->Runs = false;
    Use(Name, [&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QString("File Properties"));
        QPlainTextEdit* page = dialog.findChild<QPlainTextEdit*>("text");
        ASSERT_NE(page, nullptr);
        EXPECT_TRUE(page->isReadOnly());
        EXPECT_EQ(page->lineWrapMode(), QPlainTextEdit::NoWrap);
        std::string report = Report.Print();
        report.erase(std::remove(report.begin(), report.end(), '\r'), report.end());
        EXPECT_EQ(TextIn(dialog, "text"), report);
        EXPECT_EQ(TextIn(dialog, "agreement").find("Comparing preview and export: frame 0 of "), 0u);
        EXPECT_FALSE(Button(dialog, "shownode").isVisible());
        EXPECT_EQ(Button(dialog, "button0").text(), QString("OK"));
        Picture(dialog, "file-properties-comparing");
        Idle->Runs = true;
        AwaitVerdict();
        const std::string text = TextIn(dialog, "agreement");
        EXPECT_EQ(
            text.find("3 differences between preview and export for known reasons, the first at Noise\n"), 0u)
            << text;
        EXPECT_NE(text.find("\nKnown reasons:\nNoise in group 2: it is not exported, as the console has no "
                            "command for it\n"),
                  std::string::npos)
            << text;
        EXPECT_NE(text.find("\nNotes:\n"), std::string::npos);
        EXPECT_TRUE(Button(dialog, "shownode").isVisible());
        Picture(dialog, "file-properties-known");
        Click(Button(dialog, "button0"));
    });
    EXPECT_EQ(Run(), nullptr);
}

TEST_F(FileProperties, TheButtonGivesTheFirstNode)
{
    Load("fireflies");
    Use(Name, [&](QDialog& dialog) {
        AwaitVerdict();
        Click(Button(dialog, "shownode"));
    });
    TToolNode* node = Run();
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(Text(node->GetNodeType()->Name), "Noise");
}

TEST_F(FileProperties, WhereNothingDiffersThereIsNoButton)
{
    Load("fountain");
    Use(Name, [&](QDialog& dialog) {
        AwaitVerdict();
        EXPECT_EQ(TextIn(dialog, "agreement").find("Preview and export agree: "), 0u);
        EXPECT_FALSE(Button(dialog, "shownode").isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(Run(), nullptr);
}

TEST_F(FileProperties, ReturnClosesIt)
{
    Load("fountain");
    bool isClosed = false;
    Use(Name, [&](QDialog& dialog) {
        QTest::keyClick(dialog.findChild<QPlainTextEdit*>("text"), Qt::Key_Return);
        isClosed = !dialog.isVisible();
    });
    EXPECT_EQ(Run(), nullptr);
    EXPECT_TRUE(isClosed);
}
