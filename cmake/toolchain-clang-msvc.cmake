# Reads sources as Visual Studio does, on Debian: clang in that dialect, with libc++ and the headers of MinGW-w64.
# There is no runtime to link with: scripts/check-msvc-dialect.sh checks sources and makes no programs.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(llvm /usr/lib/llvm-19)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER ${llvm}/bin/clang-cl)
  set(CMAKE_${language}_COMPILER_TARGET x86_64-pc-windows-msvc)
endforeach()
set(CMAKE_LINKER ${llvm}/bin/lld-link)
set(CMAKE_AR ${llvm}/bin/llvm-lib)
set(CMAKE_RC_COMPILER ${llvm}/bin/llvm-rc)
set(CMAKE_MT ${llvm}/bin/llvm-mt)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# The headers of MinGW-w64 need __GNUC__, and a way to import variables that this dialect knows. For libc++ 19,
# std::jthread is experimental.
set(dialect "/X -nobuiltininc -fms-compatibility-version=19.38 -fgnuc-version=12 -D_UCRT")
set(headers "-imsvc${llvm}/lib/clang/19/include -imsvc/usr/share/mingw-w64/include")
set(CMAKE_C_FLAGS_INIT "${dialect} ${headers}")
string(
  CONCAT CMAKE_CXX_FLAGS_INIT
         "/EHsc ${dialect} -D_LIBCPP_NO_VCRUNTIME -D_LIBCPP_ENABLE_EXPERIMENTAL "
         "\"-D__MINGW_IMPORT=extern __declspec(dllimport)\" "
         "/FI${CMAKE_CURRENT_LIST_DIR}/clang-msvc-gaps.h -imsvc${llvm}/include/c++/v1 ${headers}")
set(CMAKE_RC_FLAGS_INIT "/I /usr/share/mingw-w64/include")

set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
