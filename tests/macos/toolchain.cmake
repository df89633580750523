# Compiles for 32-bit macOS by Debian's Clang, with libc++'s headers and, in place of macOS's, those
# of the C library musl, which name no machine as wasi-libc has them. There is nothing to link with,
# so only objects can be built.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_OSX_ARCHITECTURES "")
set(CMAKE_OSX_SYSROOT "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "")
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET i386-apple-macosx10.7)
set(CMAKE_AR llvm-ar)
set(CMAKE_RANLIB llvm-ranlib)
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
execute_process(COMMAND clang++ -print-resource-dir OUTPUT_VARIABLE resources OUTPUT_STRIP_TRAILING_WHITESPACE)
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -nostdlibinc -isystem \"${resources}/../../../include/c++/v1\" \
-isystem \"${CMAKE_CURRENT_LIST_DIR}/include\" -isystem /usr/include/wasm32-wasi \
-D_XOPEN_SOURCE=700 -D__wasilibc_unmodified_upstream -D_LIBCPP_HAS_NO_LOCALIZATION -D_LIBCPP_HAS_NO_THREADS")
