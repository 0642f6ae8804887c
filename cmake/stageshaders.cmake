# The render stages' shaders: each source in shaders/ is assembled into an image in the build folder's shaders/,
# named after the stage's class, and all images go into one library as bytes.

set(CINDERMILL_STAGES TQuadRenderStage TBlendedQuadRenderStage TSpriteRenderStage TBlendedSpriteRenderStage
                      TVelocityTrailRenderStage)
set(CINDERMILL_SHADER_DIR "${CMAKE_BINARY_DIR}/shaders")
file(MAKE_DIRECTORY "${CINDERMILL_SHADER_DIR}")

set(stage_images)
foreach(stage IN LISTS CINDERMILL_STAGES)
    string(SUBSTRING "${stage}" 1 -1 stem)
    string(TOLOWER "${stem}" stem)
    foreach(kind vertex fragment)
        set(source "${PROJECT_SOURCE_DIR}/shaders/${stem}.${kind}.qsa")
        set(image "${CINDERMILL_SHADER_DIR}/${stage}.${kind}.sho")
        add_custom_command(OUTPUT "${image}"
                           COMMAND shaderassembler "${source}" "${image}"
                           DEPENDS shaderassembler "${source}"
                           COMMENT "Assembling ${stem}.${kind}.qsa"
                           VERBATIM)
        list(APPEND stage_images "${image}")
    endforeach()
endforeach()

set(stage_data "${CINDERMILL_SHADER_DIR}/stageshaderdata.cpp")
set(stage_script "${PROJECT_SOURCE_DIR}/cmake/embedstageshaders.cmake")
add_custom_command(OUTPUT "${stage_data}"
                   COMMAND "${CMAKE_COMMAND}" "-DSTAGES=${CINDERMILL_STAGES}" "-DFOLDER=${CINDERMILL_SHADER_DIR}"
                           "-DOUTPUT=${stage_data}" -P "${stage_script}"
                   DEPENDS ${stage_images} "${stage_script}"
                   COMMENT "Embedding the stage shaders"
                   VERBATIM)

set(stage_root "${CINDERMILL_LAYER_ROOT}/stage-shaders")
file(MAKE_DIRECTORY "${stage_root}/shaders")
foreach(header stageshaders.h stageshaderdata.h)
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/shaders/${header}" "${stage_root}/shaders/${header}" SYMBOLIC
         COPY_ON_ERROR)
endforeach()
add_library(stage-shaders STATIC shaders/stageshaders.cpp "${stage_data}")
target_include_directories(stage-shaders PUBLIC "${stage_root}")
target_link_libraries(stage-shaders PRIVATE cindermill-options)
