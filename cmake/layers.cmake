# The library's layers, bottom up, each with its own sources and its own view of the headers:
#
#   frame                          the gateway, values, rendering, Buffer, contracts, registry
#   providers  classes  check      ODBC and the store's engine; the five subsystems; the schema check
#   criteria                       criteria built from values, read with the store's tokenizer
#   plant                          the plant's schema and procedures as the store holds them
#   library                        the built-in providers and the list of classes
#   capi  (or server on Windows)   the C interface; the class server
#
# A layer's view holds links to the folders of src/ and the public headers it may include, and
# nothing else, so that an include of a layer above it does not compile.

set(VRDPPO_LAYER_SOURCES_frame
    frame/buffer.cpp frame/contract.cpp frame/date.cpp frame/dbhelp.cpp frame/error.cpp
    frame/number_text.cpp frame/observer.cpp frame/provider.cpp frame/recordset.cpp frame/registry.cpp
    frame/render.cpp frame/row_sink.cpp frame/stretch_storage.cpp frame/text.cpp
    frame/type_library.cpp frame/variant.cpp)
set(VRDPPO_LAYER_SOURCES_providers
    providers/odbc/odbc_connection.cpp providers/odbc/odbc_fetch.cpp
    providers/odbc/odbc_handles.cpp providers/odbc/odbc_login.cpp providers/odbc/odbc_pool.cpp
    providers/odbc/odbc_session_effects.cpp providers/odbc/odbc_values.cpp
    providers/embedded/call.cpp providers/embedded/catalog.cpp providers/embedded/condition.cpp
    providers/embedded/date_functions.cpp providers/embedded/dates.cpp
    providers/embedded/embedded_store.cpp providers/embedded/errors.cpp
    providers/embedded/functions.cpp providers/embedded/literals.cpp
    providers/embedded/query.cpp providers/embedded/rows.cpp
    providers/embedded/schema_reader.cpp providers/embedded/session.cpp
    providers/embedded/shape.cpp providers/embedded/sqlite_handles.cpp
    providers/embedded/store_files.cpp providers/embedded/tokenizer.cpp
    providers/embedded/translator.cpp)
set(VRDPPO_LAYER_SOURCES_classes
    reference/grades.cpp reference/stations.cpp reference/types.cpp
    production/inputs.cpp production/results.cpp production/run.cpp production/stems.cpp
    production/tests.cpp production/views.cpp
    greenleaf/inventory.cpp greenleaf/physical.cpp greenleaf/receipts.cpp
    cages/cages.cpp cages/movements.cpp
    lab/advice.cpp lab/degradation.cpp lab/foreign.cpp lab/green_moisture.cpp lab/headers.cpp
    lab/instruments.cpp lab/lab_calls.cpp lab/packed.cpp lab/settings.cpp)
set(VRDPPO_LAYER_SOURCES_check check/procedure_calls.cpp check/schema_check.cpp)
set(VRDPPO_LAYER_SOURCES_criteria criteria/criteria.cpp)
set(VRDPPO_LAYER_SOURCES_plant
    plant/catalog.cpp plant/catalog_cages.cpp plant/catalog_frame.cpp plant/catalog_greenleaf.cpp
    plant/catalog_lab.cpp plant/catalog_lab_procedures.cpp plant/catalog_production.cpp
    plant/catalog_reference.cpp plant/procedures.cpp)
set(VRDPPO_LAYER_SOURCES_library library/builtins.cpp)
set(VRDPPO_LAYER_SOURCES_capi capi/capi.cpp)
set(VRDPPO_LAYER_SOURCES_server server/classes.cpp server/exports.cpp server/module.cpp
                                server/object.cpp server/trace_file.cpp server/variants.cpp)

# What each layer sees: folders of src/, then public headers (files or folders of include/vrdppo).
set(frame_public buffer.hpp dbhelp.hpp error.hpp locale.hpp observer.hpp operations.hpp persist.hpp
                 provider.hpp record.hpp recordset.hpp registry.hpp render.hpp row_sink.hpp
                 text.hpp variant.hpp visibility.hpp)
set(class_public reference production greenleaf cages lab)
set(provider_public embedded_store.hpp odbc_pool.hpp)
set(VRDPPO_LAYER_SEES_frame frame)
set(VRDPPO_LAYER_PUBLIC_frame ${frame_public})
set(VRDPPO_LAYER_SEES_providers frame providers)
set(VRDPPO_LAYER_PUBLIC_providers ${frame_public} ${provider_public})
set(VRDPPO_LAYER_SEES_classes frame reference production greenleaf cages lab)
set(VRDPPO_LAYER_PUBLIC_classes ${frame_public} ${class_public})
set(VRDPPO_LAYER_SEES_check frame check)
set(VRDPPO_LAYER_PUBLIC_check ${frame_public} schema_check.hpp)
set(VRDPPO_LAYER_SEES_criteria frame providers criteria)
set(VRDPPO_LAYER_PUBLIC_criteria ${frame_public} criteria.hpp)
set(VRDPPO_LAYER_SEES_plant frame providers plant)
set(VRDPPO_LAYER_PUBLIC_plant ${frame_public} ${provider_public})
set(VRDPPO_LAYER_SEES_library frame providers plant library)
set(VRDPPO_LAYER_PUBLIC_library ${frame_public} ${provider_public} ${class_public})
set(VRDPPO_LAYER_SEES_capi frame capi)
set(VRDPPO_LAYER_PUBLIC_capi ${frame_public} ${provider_public} criteria.hpp schema_check.hpp
                             vrdppo.h)
set(VRDPPO_LAYER_SEES_server frame server)
set(VRDPPO_LAYER_PUBLIC_server ${frame_public})

# The folder of links that is LAYER's include path.
function(vrdppo_layer_view layer out)
  set(view ${PROJECT_BINARY_DIR}/layers/${layer})
  file(REMOVE_RECURSE ${view})
  file(MAKE_DIRECTORY ${view}/vrdppo)
  foreach(folder IN LISTS VRDPPO_LAYER_SEES_${layer})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${view}/${folder} SYMBOLIC)
  endforeach()
  foreach(header IN LISTS VRDPPO_LAYER_PUBLIC_${layer})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/include/vrdppo/${header} ${view}/vrdppo/${header}
         SYMBOLIC)
  endforeach()
  set(${out} ${view} PARENT_SCOPE)
endfunction()

# LAYER's object library: its sources compiled against its view alone.
function(vrdppo_add_layer layer)
  list(TRANSFORM VRDPPO_LAYER_SOURCES_${layer} PREPEND ${PROJECT_SOURCE_DIR}/src/
       OUTPUT_VARIABLE sources)
  vrdppo_layer_view(${layer} view)
  add_library(vrdppo_${layer} OBJECT ${sources})
  target_include_directories(vrdppo_${layer} PRIVATE ${view} ${PROJECT_BINARY_DIR}/generated)
  target_link_libraries(vrdppo_${layer} PRIVATE vrdppo_warnings ${ARGN})
endfunction()

# Every source of src/ is in a layer: a file left out of the lists would be left out of the build.
file(GLOB_RECURSE vrdppo_all_sources RELATIVE ${PROJECT_SOURCE_DIR}/src CONFIGURE_DEPENDS
     ${PROJECT_SOURCE_DIR}/src/*.cpp)
foreach(layer frame providers classes check criteria plant library capi server)
  list(REMOVE_ITEM vrdppo_all_sources ${VRDPPO_LAYER_SOURCES_${layer}})
endforeach()
if(vrdppo_all_sources)
  message(FATAL_ERROR "in no layer of cmake/layers.cmake: ${vrdppo_all_sources}")
endif()
