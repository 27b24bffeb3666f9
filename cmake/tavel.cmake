# The project's own build rules: one library for each folder, one program for each test.

add_library(tavel_options INTERFACE)
target_compile_options(tavel_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual)
target_compile_definitions(tavel_options INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_DISABLE_DEPRECATED_BEFORE=0x060400 _FILE_OFFSET_BITS=64)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Without it the system refuses to tell of a file that is dated after January 2038.
  target_compile_definitions(tavel_options INTERFACE _TIME_BITS=64)
endif()
if(CMAKE_CROSSCOMPILING)
  # Libraries and programs share the precompiled header; Qt itself asks for this on some processors only.
  target_compile_options(tavel_options INTERFACE -fPIC)
endif()
if(TAVEL_WERROR)
  target_compile_options(tavel_options INTERFACE -Werror)
endif()
if(TAVEL_SANITIZER STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(TAVEL_SANITIZER STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

# Everything takes about this many times as long: tests wait and may last that much longer.
if(CMAKE_CROSSCOMPILING)
  set(TAVEL_WAIT_FACTOR 10)
elseif(TAVEL_SANITIZER)
  set(TAVEL_WAIT_FACTOR 4)
else()
  set(TAVEL_WAIT_FACTOR 1)
endif()

# One precompiled header for all targets: Qt's and the standard library's, never ours.
file(WRITE "${CMAKE_BINARY_DIR}/pch/pch.cpp.in" "// Carries the precompiled header.\n")
configure_file("${CMAKE_BINARY_DIR}/pch/pch.cpp.in" "${CMAKE_BINARY_DIR}/pch/pch.cpp" COPYONLY)
add_library(tavel_pch STATIC "${CMAKE_BINARY_DIR}/pch/pch.cpp")
set_target_properties(tavel_pch PROPERTIES AUTOMOC OFF)
target_link_libraries(tavel_pch PUBLIC tavel_options Qt6::Core Qt6::Gui Qt6::Widgets)
target_precompile_headers(tavel_pch PRIVATE
  <QtCore/QtCore> <QtGui/QtGui> <QtWidgets/QtWidgets>
  <atomic> <chrono> <functional> <memory> <mutex> <string> <thread> <vector>)

function(tavel_apply_defaults target)
  target_link_libraries(${target} PRIVATE tavel_options Qt6::Core Qt6::Gui Qt6::Widgets)
  target_precompile_headers(${target} REUSE_FROM tavel_pch)
endfunction()

# tavel_library(NAME target [OBJECT] SOURCES files... [LINK targets...])
# Publishes its own folder as include directory; a folder without sources publishes headers only.
function(tavel_library)
  cmake_parse_arguments(ARG "OBJECT" "NAME" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_SOURCES)
    add_library(${ARG_NAME} INTERFACE)
    target_include_directories(${ARG_NAME} INTERFACE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${ARG_NAME} INTERFACE Qt6::Core ${ARG_LINK})
    return()
  endif()
  if(ARG_OBJECT)
    add_library(${ARG_NAME} OBJECT ${ARG_SOURCES})
  else()
    add_library(${ARG_NAME} STATIC ${ARG_SOURCES})
  endif()
  target_include_directories(${ARG_NAME} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
  target_link_libraries(${ARG_NAME} PUBLIC Qt6::Core Qt6::Gui Qt6::Widgets ${ARG_LINK})
  tavel_apply_defaults(${ARG_NAME})
endfunction()

# tavel_test(NAME tst_x SOURCES files... [LINK targets...] [LABELS ...] [TIMEOUT seconds] [BUS])
# Each test runs on the offscreen platform with directories of its own; BUS gives it a private session bus.
function(tavel_test)
  cmake_parse_arguments(ARG "BUS" "NAME;TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE tavel_test_support ${ARG_LINK} Qt6::Test)
  tavel_apply_defaults(${ARG_NAME})
  # Holds nothing: a test's classes are mocked up in its own source. Reading the precompiled header for it would cost a second.
  set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${ARG_NAME}_autogen/mocs_compilation.cpp"
    PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  set(command ${CMAKE_CROSSCOMPILING_EMULATOR} "$<TARGET_FILE:${ARG_NAME}>")
  if(ARG_BUS)
    set(command dbus-run-session -- ${command})
  endif()
  set(home "${CMAKE_BINARY_DIR}/test-home/${ARG_NAME}")
  file(MAKE_DIRECTORY "${home}/tmp")
  add_test(NAME ${ARG_NAME} COMMAND ${command} WORKING_DIRECTORY "${home}")
  set(environment
    "QT_QPA_PLATFORM=offscreen" "HOME=${home}" "TMPDIR=${home}/tmp" "XDG_CONFIG_HOME=${home}/config"
    "XDG_DATA_HOME=${home}/data" "XDG_CACHE_HOME=${home}/cache" "XDG_RUNTIME_DIR=${home}/tmp" "QPEDIR=${home}/qpe/"
    "LC_ALL=C.UTF-8"
    "ASAN_OPTIONS=detect_leaks=1:abort_on_error=0"
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan.supp:halt_on_error=0:exitcode=66:second_deadlock_stack=1:die_after_fork=0")
  if(NOT ARG_BUS)
    list(APPEND environment "DBUS_SESSION_BUS_ADDRESS=")
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * ${TAVEL_WAIT_FACTOR}")
  if(CMAKE_CROSSCOMPILING)
    # A test that starts itself once more does so in the emulator too.
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    list(APPEND environment "TAVEL_EMULATOR=${emulator}")
  endif()
  set_tests_properties(${ARG_NAME} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT ${ARG_TIMEOUT}
    FAIL_REGULAR_EXPRESSION "QCRITICAL")
  if(ARG_LABELS)
    set_tests_properties(${ARG_NAME} PROPERTIES LABELS "${ARG_LABELS}")
  endif()
endfunction()
