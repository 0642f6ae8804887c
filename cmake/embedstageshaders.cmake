# cmake -DSTAGES=class;... -DFOLDER=folder -DOUTPUT=file -P embedstageshaders.cmake
# Writes a source file with the two images of each stage as byte arrays, and the table of them.

set(arrays "")
set(table "")
foreach(stage IN LISTS STAGES)
    foreach(kind Vertex Fragment)
        string(TOLOWER "${kind}" leaf)
        file(READ "${FOLDER}/${stage}.${leaf}.sho" hex HEX)
        string(LENGTH "${hex}" digits)
        math(EXPR ${kind}Size "${digits} / 2")
        string(REGEX REPLACE "(................................)" "\\1\n" hex "${hex}")
        string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," hex "${hex}")
        string(APPEND arrays "const unsigned char ${stage}${kind}[] = {\n${hex}};\n\n")
    endforeach()
    string(APPEND table
           "    {\"${stage}\", ${stage}Vertex, ${VertexSize}, ${stage}Fragment, ${FragmentSize}},\n")
endforeach()

file(WRITE "${OUTPUT}.new"
     "#include \"shaders/stageshaderdata.h\"\n\nnamespace\n{\n${arrays}} // namespace\n\n"
     "const TStageShader StageShaders[] = {\n${table}};\n"
     "const int NumStageShaders = sizeof StageShaders / sizeof StageShaders[0];\n")
file(RENAME "${OUTPUT}.new" "${OUTPUT}")
