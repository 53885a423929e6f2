# Every tst_*.cpp in the calling folder becomes one QtTest executable and one
# CTest test named after the folder path and the file.
function(zelmor_add_qtests)
    cmake_parse_arguments(ARG "" "TIMEOUT" "LIBS;LABELS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    # The sanitizers' slow unwinder makes the database tests several times slower.
    if(ZELMOR_SANITIZE OR ZELMOR_SANITIZE_THREAD)
        math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * 5")
    endif()
    file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
    file(RELATIVE_PATH rel ${CMAKE_SOURCE_DIR}/tests ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE "/" "." prefix "${rel}")
    foreach(src IN LISTS tests)
        get_filename_component(name ${src} NAME_WE)
        add_executable(${name} ${src})
        target_link_libraries(${name} PRIVATE Qt5::Test zelmor_testsupport ${ARG_LIBS})
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
        add_test(NAME ${prefix}.${name} COMMAND ${name})
        set_tests_properties(${prefix}.${name} PROPERTIES
            TIMEOUT ${ARG_TIMEOUT}
            LABELS "${ARG_LABELS}"
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ZELMOR_SOURCE_DIR=${CMAKE_SOURCE_DIR};ZELMOR_BINARY_DIR=${CMAKE_BINARY_DIR};TZ=:/etc/localtime")
    endforeach()
endfunction()
