#include "particles/cindermill/interface/application.h"

#include "support/windowtest.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

#include <QtWidgets/QDialog>

namespace {

class Application : public TWindowTest
{
protected:
    void TearDown() override
    {
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }
};

} // namespace

TEST_F(Application, TheOptionsEntryOpensTheOptionsDialog)
{
    TApplication application;
    bool met = false;
    Meet("dialog111", [&met](QDialog& dialog) {
        met = true;
        EXPECT_EQ(dialog.windowTitle(), QString("Options"));
        dialog.close();
    });
    EXPECT_TRUE(TCindermillApp::Get().OnMenu(MI_OPTIONS));
    EXPECT_TRUE(met);
}

TEST_F(Application, BeepsWhereTheDocumentsAskForIt)
{
    static int beeps;
    beeps = 0;
    TApplication application;
    SetBeep([] { ++beeps; });
    application.Beep();
    SetBeep(nullptr);
    EXPECT_EQ(beeps, 1);
}

TEST_F(Application, EveryTypeWithADisplayGetsOne)
{
    TApplication application;
    TErrorList errors;
    TCindermillApp& app = TCindermillApp::Get();
    app.LoadNodeTypes(SourcePath("NodeTypes").c_str(), errors);
    EXPECT_TRUE(errors.empty());
    int shown = 0;
    for (int i = 0; i < app.GetNodeTypes().GetNumTypes(); ++i) {
        const TNodeType& type = *app.GetNodeTypes().GetType(i);
        TToolNode node;
        node.Create(nullptr, type, 0, 0, false);
        EXPECT_EQ(node.GetDisplay() != nullptr, !type.DisplayClass.IsEmpty()) << Text(type.Name);
        shown += node.GetDisplay() != nullptr ? 1 : 0;
    }
    EXPECT_EQ(shown, 6);
}
