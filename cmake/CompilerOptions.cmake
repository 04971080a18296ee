# Settings that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

# The same folder for programs and the DLL, so that a program finds the DLL beside itself. $<1:...> keeps generators of
# several configurations, as for Visual Studio, from adding a folder of their own.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "$<1:${CMAKE_BINARY_DIR}/bin>")

# For the project's own targets; third-party code does not link it.
add_library(project_options INTERFACE)
if(MSVC)
  # C4251, C4275: exported classes have members from the standard library and derive from std::exception. That is
  # safe, because a client must use the same compiler and runtime anyway. Warnings are no errors unless
  # CMAKE_COMPILE_WARNING_AS_ERROR is ON, so that a new version of Visual Studio still builds an old version of the
  # sources.
  target_compile_options(project_options INTERFACE /W4 /permissive- /utf-8 /wd4251 /wd4275)
  # Sources that are compiled together have more sections than an object file usually holds.
  target_compile_options(project_options INTERFACE /bigobj)
  target_compile_options(project_options INTERFACE $<$<CXX_COMPILER_ID:MSVC>:/Zc:preprocessor>)
  # Visual Studio calls functions of standard C deprecated, like gmtime, and offers some that others lack.
  target_compile_definitions(project_options INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
  target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endif()

if(MSVC)
  # Links the runtime into each module, which then needs only libraries of the system. Hosts that use the exported
  # classes need MultiThreadedDLL: they share objects and memory with the library, and so its runtime.
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>" CACHE STRING "The runtime, as CMake names it")
  # Exceptions can leave the library's C functions. With /EHsc the compiler would take it that they cannot.
  string(REPLACE "/EHsc" "/EHs" CMAKE_CXX_FLAGS "${CMAKE_CXX_FLAGS}")
  # In every configuration, in a .pdb file beside the module.
  set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT ProgramDatabase)
  add_compile_options(/guard:cf /Brepro)
  # A module names its .pdb file without the folder where it was built.
  add_link_options(/DEBUG /INCREMENTAL:NO /OPT:REF /OPT:ICF /guard:cf /Brepro /PDBALTPATH:%_PDB%)
  # As large a stack as MinGW-w64 gives, with which the tests of deeply nested input pass.
  add_link_options(/STACK:0x200000)
endif()

if(MINGW)
  # Links the compiler's runtime into each module, which then needs only libraries of the system.
  add_link_options(-static)
  # Hardening, and reproducible builds: a module has no time stamp and no path of the build folder.
  add_link_options(-Wl,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp)
  add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}=." "-ffile-prefix-map=${CMAKE_BINARY_DIR}=./build")
endif()

# Windows 10 is the oldest system supported.
if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0A00 UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
endif()

# For all code but GoogleTest's. A report of a sanitizer ends the program, so the test fails.
set(CORVANE_SANITIZERS "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(CORVANE_SANITIZERS)
  add_compile_options(-fsanitize=${CORVANE_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVANE_SANITIZERS})
endif()

# Precompiles headers that nearly every source includes. Where the sources of a target are compiled together, each
# header is read once anyway. clang-tidy cannot read what GCC precompiled.
function(precompile_usual_headers target)
  if(CMAKE_UNITY_BUILD OR CORVANE_LINT)
    return()
  endif()
  foreach(header WfpPlatform.h algorithm functional map memory optional span string vector)
    target_precompile_headers(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
  endforeach()
endfunction()
