# Settings that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

# The same folder for programs and the DLL, so that a program finds the DLL beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# For the project's own targets; third-party code does not link it.
add_library(project_options INTERFACE)
if(MSVC)
  # C4251, C4275: exported classes have members from the standard library and derive from std::exception. That is
  # safe, because a client must use the same compiler and runtime anyway.
  target_compile_options(project_options INTERFACE /W4 /WX /permissive- /utf-8 /wd4251 /wd4275)
else()
  target_compile_options(project_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
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
