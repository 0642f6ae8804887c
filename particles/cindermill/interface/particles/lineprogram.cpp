#include "particles/cindermill/interface/particles/lineprogram.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/sceneview.h"

static constexpr const char* ProgramText = "!!ARBvp1.0\n"
                                           "PARAM c[4] = { program.local[0..3] };\n"
                                           "TEMP R0;\n"
                                           "MUL R0, vertex.position.x, c[0];\n"
                                           "MAD R0, vertex.position.y, c[1], R0;\n"
                                           "MAD R0, vertex.position.z, c[2], R0;\n"
                                           "ADD result.position, R0, c[3];\n"
                                           "MOV result.color, vertex.color;\n"
                                           "END\n";

void TLineProgram::Load()
{
    ASSERT_TEXT(!Loaded, "VertexShader == -1");
    Loaded = true;
    Program.Assemble(ProgramText);
}

void TLineProgram::Bind(const TSceneView& view)
{
    if (!Loaded)
        Load();
    if (!Program.IsAssembled())
        return;
    Program.Bind();
    for (int i = 0; i < 4; ++i)
        Program.SetLocal(i, view.GetWorldViewProjection()[i]);
}

void TLineProgram::Unbind()
{
    Program.Unbind();
}
