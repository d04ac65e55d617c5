# What every target of this project has in common, and the two helpers that make one.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# qmllint finds a module only where its qmldir lies under its own URI.
set(QT_QML_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml")

include(CheckPIESupported)
check_pie_supported()

add_library(plenaura_options INTERFACE)
target_compile_options(plenaura_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -fstack-protector-strong $<$<NOT:$<PLATFORM_ID:Darwin>>:-fcf-protection>
  # Some libraries ask for it; precompiled headers want all files to be compiled alike.
  -pthread)
target_compile_definitions(plenaura_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(plenaura_options INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_link_options(plenaura_options INTERFACE
  $<$<NOT:$<PLATFORM_ID:Darwin>>:-Wl,-z,relro,-z,now,-z,noexecstack>)

if(PLENAURA_SANITIZE)
  target_compile_options(plenaura_options INTERFACE
    -fsanitize=${PLENAURA_SANITIZE} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(plenaura_options INTERFACE -fsanitize=${PLENAURA_SANITIZE})
else()
  # Fortification needs optimisation, and glibc warns where there is none. With the sanitizers, which
  # watch the functions that it replaces, GCC 12 also takes its bounds for too small ones.
  target_compile_options(plenaura_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

# Reading Qt's headers is more than half of compiling, and so they are read once. That spares no file
# its own includes: the debug build goes without. Objective-C++ would need a set of its own.
if(APPLE)
  set(PLENAURA_PRECOMPILE OFF)
endif()
if(PLENAURA_PRECOMPILE)
  add_library(plenaura_precompiled OBJECT "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
  target_link_libraries(plenaura_precompiled
    PRIVATE plenaura_options Qt6::Core QCoro6::Core tl::expected)
  target_precompile_headers(plenaura_precompiled
    PRIVATE <QtCore/QtCore> <QCoroFuture> <QCoroTask> <tl/expected.hpp>)
  set_target_properties(plenaura_precompiled PROPERTIES AUTOMOC OFF)
endif()

# plenaura_precompile(<target>)
function(plenaura_precompile target)
  if(PLENAURA_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM plenaura_precompiled)
  endif()
endfunction()

# plenaura_room(<room> SOURCES <file>... LINK <library>...)
# One folder under src/ is one static library; LINK is all that the room may know.
function(plenaura_room room)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(plenaura_${room} STATIC ${ARG_SOURCES})
  target_link_libraries(plenaura_${room} PUBLIC plenaura_options ${ARG_LINK})
  plenaura_precompile(plenaura_${room})
endfunction()

# In seconds. Sanitizers make everything several times as slow.
set(patience 120)
if(PLENAURA_SANITIZE)
  set(patience 900)
endif()

# plenaura_test(<name> [SOURCES <file>...] LINK <library>... [LABELS <label>...]
#               [THROUGH <script> [<argument>...]])
# A Qt Test program from <name>.cpp, run on the offscreen platform with a home of its own, or in what another script of
# scripts/ gives it.
function(plenaura_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;LABELS;THROUGH" ${ARGN})
  if(NOT ARG_THROUGH)
    set(ARG_THROUGH in-private-home)
  endif()
  add_executable(${name} ${name}.cpp ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE plenaura_options ${ARG_LINK} Qt6::Test)
  plenaura_precompile(${name})
  # Empty where all is in the one file, which includes its own; to read the headers for it takes a second.
  if(NOT ARG_SOURCES)
    set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${name}_autogen/mocs_compilation.cpp"
      PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/scripts/${ARG_THROUGH} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT ${patience} LABELS "unit;${ARG_LABELS}"
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
