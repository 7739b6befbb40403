# What every target of the project is compiled with, and how a floor of the tower is declared.

add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_compile_definitions(project_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor
    $<$<NOT:$<CONFIG:Release>>:-Wshadow> # the C++ made of QML in a release build shadows its own parameters
    $<$<BOOL:${MARLUNE_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Fields that a designated initialiser leaves out have their defaults; that is what they are for.
    # libstdc++ 12's own std::stable_sort calls what it has deprecated; GCC holds our code to it.
    target_compile_options(project_options INTERFACE
        -Wno-missing-designated-field-initializers -Wno-deprecated-declarations)
else()
    # In a unity build GCC takes a coroutine's frame for a type of a header and warns of its lambdas' linkage.
    target_compile_options(project_options INTERFACE -fcoroutines -Wno-subobject-linkage)
endif()
if(MARLUNE_SANITIZE)
    # Global, so that moc's and the resource compiler's objects are instrumented too.
    add_compile_options(-fsanitize=${MARLUNE_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${MARLUNE_SANITIZE})
endif()

find_program(MARLUNE_MOLD mold)
if(MARLUNE_MOLD)
    add_link_options(-fuse-ld=mold)
endif()
find_program(MARLUNE_CCACHE ccache)
if(MARLUNE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${MARLUNE_CCACHE})
endif()

# marlune_floor(NAME USES floor... LIBRARIES lib... SOURCES file...)
# One floor of the tower as the static library marlune_NAME. USES names the floors directly below that it builds
# on; LIBRARIES stay private, so that no header of theirs reaches a floor above by accident.
function(marlune_floor NAME)
    cmake_parse_arguments(FLOOR "" "" "USES;PUBLIC_LIBRARIES;LIBRARIES;SOURCES" ${ARGN})
    add_library(marlune_${NAME} STATIC ${FLOOR_SOURCES})
    target_include_directories(marlune_${NAME} PUBLIC ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../src)
    foreach(floor IN LISTS FLOOR_USES)
        target_link_libraries(marlune_${NAME} PUBLIC marlune_${floor})
    endforeach()
    target_link_libraries(marlune_${NAME} PUBLIC Qt6::Core ${FLOOR_PUBLIC_LIBRARIES}
        PRIVATE project_options ${FLOOR_LIBRARIES})
endfunction()
