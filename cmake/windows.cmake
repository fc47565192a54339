# vrdppo.dll: the whole library as an in-process class server for 64-bit Windows, cross-built with
# MinGW-w64. Included by the top-level CMakeLists.txt when the target is Windows.
enable_language(C RC)

# The embedded store compiles the SQLite amalgamation: Debian has none for MinGW.
set(VRDPPO_SQLITE_DIR ${PROJECT_SOURCE_DIR}/build/_deps/sqlite CACHE PATH
    "Where scripts/fetch-sqlite.sh keeps the checked SQLite amalgamation")
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/fetch-sqlite.sh ${VRDPPO_SQLITE_DIR}
                RESULT_VARIABLE sqlite_fetched)
if(NOT sqlite_fetched EQUAL 0)
  message(FATAL_ERROR "scripts/fetch-sqlite.sh could not provide the SQLite amalgamation")
endif()
add_library(vrdppo_sqlite OBJECT ${VRDPPO_SQLITE_DIR}/sqlite3.c)
target_include_directories(vrdppo_sqlite PUBLIC ${VRDPPO_SQLITE_DIR})
# The features the store uses from Debian's SQLite.
target_compile_definitions(vrdppo_sqlite PUBLIC SQLITE_THREADSAFE=1 SQLITE_ENABLE_MATH_FUNCTIONS
                                               SQLITE_DEFAULT_RECURSIVE_TRIGGERS=1
                                               SQLITE_OMIT_LOAD_EXTENSION)

# fmt, header-only, from Debian's libfmt-dev: only its own folder, never the host's /usr/include.
find_path(VRDPPO_FMT_HEADERS fmt/format.h PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH
          NO_DEFAULT_PATH REQUIRED)
file(COPY ${VRDPPO_FMT_HEADERS}/fmt DESTINATION ${PROJECT_BINARY_DIR}/fmt/include)

# The IDL comes from a host build of the generator; without one given, build it here.
set(VRDPPO_IDL_GENERATOR "" CACHE FILEPATH "A host-built vrdppo_idl (empty: build one)")
set(idl_generator ${VRDPPO_IDL_GENERATOR})
set(idl_depends ${VRDPPO_IDL_GENERATOR})
if(NOT idl_generator)
  include(ExternalProject)
  set(host_dir ${PROJECT_BINARY_DIR}/host)
  ExternalProject_Add(vrdppo_host_idl
    SOURCE_DIR ${PROJECT_SOURCE_DIR}
    BINARY_DIR ${host_dir}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Debug -DVRDPPO_BUILD_TESTS=OFF -DVRDPPO_BUILD_BENCH=OFF
               -DVRDPPO_INSTALL=OFF -DVRDPPO_BUILD_TOOL=ON
    BUILD_COMMAND ${CMAKE_COMMAND} --build ${host_dir} --target vrdppo_idl
    BUILD_BYPRODUCTS ${host_dir}/tools/vrdppo_idl
    INSTALL_COMMAND ""
    BUILD_ALWAYS ON)
  set(idl_generator ${host_dir}/tools/vrdppo_idl)
  set(idl_depends vrdppo_host_idl)
endif()

set(gen ${PROJECT_BINARY_DIR}/generated)
find_program(VRDPPO_WIDL NAMES x86_64-w64-mingw32-widl widl REQUIRED)
find_path(VRDPPO_WINE_IDL oaidl.idl PATHS /usr/include/wine/wine/windows
          NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH REQUIRED)
find_path(VRDPPO_STDOLE_DIR stdole2.tlb PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows
          NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH REQUIRED)
add_custom_command(OUTPUT ${gen}/vrdppo.idl ${gen}/expected_typelib.txt
  COMMAND ${idl_generator} ${gen}/vrdppo.idl ${gen}/expected_typelib.txt
  DEPENDS ${idl_depends}
  COMMENT "Writing vrdppo.idl from the class registry")
# The type library and the header the C++ client includes.
add_custom_command(OUTPUT ${gen}/vrdppo.tlb ${gen}/vrdppo_idl.h
  COMMAND ${VRDPPO_WIDL} --win64 --nostdinc -I ${VRDPPO_WINE_IDL} -L ${VRDPPO_STDOLE_DIR}
          -t -o ${gen}/vrdppo.tlb ${gen}/vrdppo.idl
  COMMAND ${VRDPPO_WIDL} --win64 --nostdinc -I ${VRDPPO_WINE_IDL} -h -o ${gen}/vrdppo_idl.h
          ${gen}/vrdppo.idl
  DEPENDS ${gen}/vrdppo.idl
  COMMENT "Compiling vrdppo.idl into the type library")
add_custom_target(vrdppo_type_library DEPENDS ${gen}/vrdppo.tlb ${gen}/vrdppo_idl.h)

set(VRDPPO_TLB ${gen}/vrdppo.tlb)
configure_file(src/server/vrdppo.rc.in ${gen}/vrdppo.rc @ONLY)
configure_file(src/frame/build_config.hpp.in ${gen}/vrdppo_build_config.hpp)
set_source_files_properties(${gen}/vrdppo.rc PROPERTIES OBJECT_DEPENDS ${gen}/vrdppo.tlb)

# Every layer but the C interface, the class server on top: the DLL's surface is the four
# exports of the .def file.
include(cmake/layers.cmake)
set(VRDPPO_LAYERS frame providers classes check plant library server)
foreach(layer IN LISTS VRDPPO_LAYERS)
  vrdppo_add_layer(${layer})
  target_include_directories(vrdppo_${layer} PRIVATE ${PROJECT_BINARY_DIR}/fmt/include
                                                     ${VRDPPO_SQLITE_DIR})
  target_compile_definitions(vrdppo_${layer} PRIVATE FMT_HEADER_ONLY UNICODE _UNICODE NOMINMAX
                                                     _WIN32_WINNT=0x0601)
endforeach()
add_dependencies(vrdppo_server vrdppo_type_library)
list(TRANSFORM VRDPPO_LAYERS REPLACE "(.+)" "$<TARGET_OBJECTS:vrdppo_\\1>" OUTPUT_VARIABLE
     VRDPPO_OBJECTS)
add_library(vrdppo_dll SHARED ${VRDPPO_OBJECTS} ${gen}/vrdppo.rc
                              ${PROJECT_SOURCE_DIR}/src/server/vrdppo.def
                              $<TARGET_OBJECTS:vrdppo_sqlite>)
set_target_properties(vrdppo_dll PROPERTIES OUTPUT_NAME vrdppo PREFIX "")
target_link_libraries(vrdppo_dll PRIVATE vrdppo_warnings odbc32 ole32 oleaut32 uuid advapi32)
# No MinGW runtime DLL to ship: the C++ runtime and the thread library go inside.
target_link_options(vrdppo_dll PRIVATE -static -static-libgcc -static-libstdc++)

# The type-library client of the Wine suite.
add_executable(typelib_client ${PROJECT_SOURCE_DIR}/tests/windows/typelib_client.cpp)
add_dependencies(typelib_client vrdppo_type_library)
target_include_directories(typelib_client PRIVATE ${gen})
target_compile_definitions(typelib_client PRIVATE UNICODE _UNICODE NOMINMAX _WIN32_WINNT=0x0601)
target_link_libraries(typelib_client PRIVATE vrdppo_warnings ole32 oleaut32 uuid)
target_link_options(typelib_client PRIVATE -static -municode)
