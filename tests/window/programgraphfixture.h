#pragma once

#include "window/programfixture.h"

#include "particles/cindermill/interface/graph/nodelayout.h"

// What a hand does in the graph of the running program, held against the operations that it stands for.
class ProgramGraph : public Program
{
protected:
    using Program::Program;

    // The keys of a search at a place of the graph.
    void SearchAt(const TWorkshop& workshop, int x, int y, const char* opener, const char* text)
    {
        Screen.MoveTo(workshop.ScreenX(x), workshop.ScreenY(y));
        Screen.Key(opener);
        Screen.Type(text);
        Screen.Key("Return");
    }
    static void PortAt(const TWorkshop& workshop, const TToolNode* node, bool isInput, const char* name,
                       int& x, int& y)
    {
        const TNodeType& type = *node->GetNodeType();
        const int port = isInput ? type.FindInput(name) : type.FindOutput(name);
        const TVector2 place = GetPortOffset(isInput, port, MeasureNode(type)[0]);
        x = workshop.ScreenX(node->GetX() + double(place[0]));
        y = workshop.ScreenY(node->GetY() + double(place[1]));
    }
    void CheckFile(TProgram& program, TWorkshop& workshop, bool first)
    {
        const std::string saved = program.Path("hand.effect");
        const std::string expected = program.Path("operations.effect");
        if (first)
            SaveTo(program, saved);
        else
            Screen.Key("ctrl+s");
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(workshop.GetDocument().SaveAs(expected.c_str()));
        EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, expected); }));
    }
};
