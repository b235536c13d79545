# Cross-compiles for 64-bit Windows with the toolchain that ./run builds. QX_TOOLCHAIN and QX_QT name its
# folders. CMake's nested runs read them from the environment.
foreach(variable QX_TOOLCHAIN QX_QT)
    if(NOT ${variable})
        set(${variable} "$ENV{${variable}}")
    endif()
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QX_TOOLCHAIN QX_QT)

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER "${QX_TOOLCHAIN}/bin/${triple}-clang")
set(CMAKE_CXX_COMPILER "${QX_TOOLCHAIN}/bin/${triple}-clang++")
set(CMAKE_RC_COMPILER "${QX_TOOLCHAIN}/bin/${triple}-windres")
set(CMAKE_AR "${QX_TOOLCHAIN}/bin/${triple}-ar")
set(CMAKE_RANLIB "${QX_TOOLCHAIN}/bin/${triple}-ranlib")

set(CMAKE_FIND_ROOT_PATH "${QX_QT}" "${QX_TOOLCHAIN}/${triple}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../toolchain/wine.sh")

# CodeView debug data, for a PDB next to the program.
set(CMAKE_C_FLAGS_INIT "-gcodeview")
set(CMAKE_CXX_FLAGS_INIT "-gcodeview")

# The C++ runtime is linked statically, so its functions are not imported.
foreach(language C CXX)
    string(APPEND CMAKE_${language}_FLAGS_INIT " -D_LIBCXXABI_DISABLE_VISIBILITY_ANNOTATIONS")
endforeach()

# The linker drops unused functions and data.
string(APPEND CMAKE_C_FLAGS_INIT " -ffunction-sections -fdata-sections")
string(APPEND CMAKE_CXX_FLAGS_INIT " -ffunction-sections -fdata-sections")
foreach(kind EXE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,--gc-sections")
endforeach()
