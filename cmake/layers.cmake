# One folder is one static library is one layer.
#
# A layer sees the headers of another only by linking it: every layer's headers are reached through a
# private include root in the build folder that holds links to that folder's headers and to nothing else.
# An include of a layer that stands above therefore finds no file.

set(CINDERMILL_LAYER_ROOT "${CMAKE_BINARY_DIR}/layers")

# The name of a folder's library: library/system/files becomes library-system-files.
function(cindermill_layer_name folder result)
    string(REPLACE "/" "-" name "${folder}")
    set(${result} "${name}" PARENT_SCOPE)
endfunction()

# cindermill_layer(FOLDER [LINKS folder...] [PACKAGES target...])
#   FOLDER    the folder under the repository's root
#   LINKS     the folders of the layers below that it uses (their headers come along)
#   PACKAGES  targets of outside libraries
function(cindermill_layer folder)
    cmake_parse_arguments(arg "" "" "LINKS;PACKAGES" ${ARGN})
    cindermill_layer_name("${folder}" name)
    set(source "${PROJECT_SOURCE_DIR}/${folder}")
    file(GLOB headers CONFIGURE_DEPENDS "${source}/*.h")
    file(GLOB sources CONFIGURE_DEPENDS "${source}/*.cpp")
    set(root "${CINDERMILL_LAYER_ROOT}/${name}")
    file(REMOVE_RECURSE "${root}")
    file(MAKE_DIRECTORY "${root}/${folder}")
    foreach(header IN LISTS headers)
        get_filename_component(leaf "${header}" NAME)
        file(CREATE_LINK "${header}" "${root}/${folder}/${leaf}" SYMBOLIC COPY_ON_ERROR)
    endforeach()
    add_library(${name} STATIC ${sources} ${headers})
    target_include_directories(${name} PUBLIC "${root}")
    set(links)
    foreach(below IN LISTS arg_LINKS)
        cindermill_layer_name("${below}" target)
        if(NOT TARGET ${target})
            message(FATAL_ERROR "${folder} links ${below}, which does not stand below it")
        endif()
        list(APPEND links ${target})
    endforeach()
    target_link_libraries(${name} PUBLIC cindermill-options ${links} ${arg_PACKAGES})
    # For the check of the layers, which holds each folder's README against it.
    list(JOIN arg_LINKS " " line)
    file(WRITE "${root}.links" "${folder} ${line}\n")
endfunction()

# A test ends by itself long before: what it waits for has limits of its own. These only end what hangs.
set(CINDERMILL_TEST_SECONDS 1800)
# Of a whole program of tests with windows.
set(CINDERMILL_DISPLAY_SECONDS 7200)

# What the window system's own libraries never give back is no leak of ours.
set(CINDERMILL_DISPLAY_ENVIRONMENT
    "LSAN_OPTIONS=suppressions='${PROJECT_SOURCE_DIR}/tests/support/systemleaks.txt':print_suppressions=0")

# The search for leaks stops all threads of a program that ends, and at times falls over those of the driver: no fault
# of ours where all tests have passed, and the next build has another try.
set(CINDERMILL_LEAKS_NOT_SOUGHT "\\[  PASSED  \\] [0-9]+ tests?[.][\n]+Tracer caught signal")

# What a test itself does takes no time to run, and long to optimise: most of the time of a whole build. The headers
# that nearly all tests include are read once; whoever shares them has to be compiled alike. The fuzz targets have no
# use for knowing the ways through a test, and a failed one tells its place by itself. Whether each pointer of a test
# is one at all takes a quarter of that time to write down, and shows without.
function(cindermill_compile_as_test target)
    target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-O0> -fPIC)
    if(CINDERMILL_SANITIZE)
        target_compile_options(${target} PRIVATE -g0 -fno-sanitize=null,alignment,vptr,object-size)
    endif()
    set_target_properties(${target} PROPERTIES CINDERMILL_TEST ON)
endfunction()

# cindermill_test(FOLDER [DISPLAY] [APART] [FILTER filter] [CHECKED filter] [LINKS folder...] [PACKAGES target...])
#   all of tests/FOLDER/*.cpp as one GoogleTest program, each test known to CTest by its own name. With DISPLAY
#   the program runs whole, as one test of CTest, on a display of its own. So does what draws, where the start of a
#   program takes longer than its tests, and under the sanitizers every program; those with APART do not. Of tests
#   that the optimised build runs and that would take minutes there the sanitizers see those of the CHECKED filter
#   alone; the program itself has them all. Tests beyond the FILTER are added by whoever needs more for them.
function(cindermill_test folder)
    cmake_parse_arguments(arg "DISPLAY;APART" "FILTER;CHECKED" "LINKS;PACKAGES" ${ARGN})
    cindermill_layer_name("${folder}" name)
    file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/${folder}/*.cpp"
         "${PROJECT_SOURCE_DIR}/tests/${folder}/*.h")
    add_executable(test-${name} ${sources})
    set(links)
    foreach(below IN LISTS arg_LINKS)
        cindermill_layer_name("${below}" target)
        list(APPEND links ${target})
    endforeach()
    target_link_libraries(test-${name} PRIVATE cindermill-options cindermill-test-support ${links}
                          ${arg_PACKAGES} GTest::gtest)
    cindermill_compile_as_test(test-${name})
    if(cindermill-test-windows IN_LIST arg_PACKAGES)
        target_precompile_headers(test-${name} REUSE_FROM cindermill-test-windows)
    else()
        target_precompile_headers(test-${name} REUSE_FROM cindermill-test-support)
    endif()
    target_compile_definitions(test-${name} PRIVATE CINDERMILL_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                               CINDERMILL_BINARY_DIR="${CMAKE_BINARY_DIR}")
    set_target_properties(test-${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    # Whole programs begin first, the longest ahead, so that none is left over alone at the end.
    list(LENGTH sources cost)
    set(filter "*")
    if(arg_FILTER)
        set(filter "${arg_FILTER}")
    endif()
    if(CINDERMILL_SANITIZE AND arg_CHECKED)
        set(filter "${arg_CHECKED}")
    endif()
    if(arg_DISPLAY)
        add_test(NAME ${name} COMMAND xvfb-run -a -s "-screen 0 1600x1200x24" $<TARGET_FILE:test-${name}>
                                      "--gtest_filter=${filter}")
        set_tests_properties(${name} PROPERTIES TIMEOUT ${CINDERMILL_DISPLAY_SECONDS} COST ${cost}
                             SKIP_REGULAR_EXPRESSION "${CINDERMILL_LEAKS_NOT_SOUGHT}"
                             ENVIRONMENT "${CINDERMILL_DISPLAY_ENVIRONMENT}")
        return()
    endif()
    if((CINDERMILL_SANITIZE OR cindermill-test-gl IN_LIST arg_PACKAGES) AND NOT arg_APART)
        add_test(NAME ${name} COMMAND test-${name} "--gtest_filter=${filter}")
        set_tests_properties(${name} PROPERTIES TIMEOUT ${CINDERMILL_TEST_SECONDS} COST ${cost}
                             SKIP_REGULAR_EXPRESSION "${CINDERMILL_LEAKS_NOT_SOUGHT}"
                             ENVIRONMENT "${CINDERMILL_DISPLAY_ENVIRONMENT}")
        return()
    endif()
    # What runs apart because it is long begins before the thousands of short ones, which then fill what is left over.
    set(cost 0)
    if(arg_APART)
        set(cost 5)
    endif()
    # The driver's threads are still at work when a program of one test ends, and the search for leaks, which stops
    # all threads, falls over them. It is done where programs run whole.
    gtest_discover_tests(test-${name} DISCOVERY_TIMEOUT 600 TEST_FILTER "${filter}"
                         PROPERTIES TIMEOUT ${CINDERMILL_TEST_SECONDS} COST ${cost}
                                    ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")
endfunction()
