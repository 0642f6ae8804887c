# The program's own pictures, compiled into the layer that loads them by number.
set(CMAKE_AUTORCC OFF)
qt_add_resources(CINDERMILL_PICTURES "${PROJECT_SOURCE_DIR}/resources/pictures.qrc")
set_source_files_properties(${CINDERMILL_PICTURES} PROPERTIES COMPILE_OPTIONS "-w")
target_sources(library-wimp-gdi PRIVATE ${CINDERMILL_PICTURES})
