# The type library of the module, the interfaces for C++ and the identifiers, made from one description by widl.
# What the description imports comes with Wine: the platform's interfaces, and the library of its standard objects.
find_program(TARN_WIDL ${TARN_TRIPLE}-widl REQUIRED)
# What lies on the building machine, so not below the toolchain's root.
find_path(TARN_IDL_FOLDER oaidl.idl REQUIRED NO_CMAKE_FIND_ROOT_PATH
    PATHS /usr/include/wine/wine/windows /usr/include/wine/windows)
file(GLOB wine_folders /usr/lib/*/wine/*-windows /usr/lib/wine/*-windows)
find_path(TARN_STDOLE_FOLDER stdole2.tlb REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS ${wine_folders})

# name: a library with the identifiers; whoever links it finds NAME.h. The type library is ${name}_file.
function(tarn_type_library name description)
    cmake_path(GET description STEM stem)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/typelib)
    file(MAKE_DIRECTORY ${folder})
    set(made)
    # Each kind of output with its switch.
    foreach(kind IN ITEMS "-t .tlb" "-h .h" "-u _i.c")
        separate_arguments(kind)
        list(GET kind 0 switch)
        list(GET kind 1 ending)
        set(output ${folder}/${stem}${ending})
        # The same description gives the same bytes at any hour, wherever it strikes.
        add_custom_command(OUTPUT ${output}
            COMMAND ${CMAKE_COMMAND} -E env TZ=UTC WIDL_TIME_OVERRIDE=0
                ${TARN_WIDL} -I ${TARN_IDL_FOLDER} -L ${TARN_STDOLE_FOLDER} ${switch} -o ${output} ${description}
            WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
            DEPENDS ${description}
            COMMENT "${stem}${ending}" VERBATIM)
        list(APPEND made ${output})
    endforeach()
    add_library(${name} STATIC ${made})
    target_include_directories(${name} SYSTEM PUBLIC ${folder})
    target_compile_options(${name} PRIVATE -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
    set(${name}_file ${folder}/${stem}.tlb PARENT_SCOPE)
endfunction()
