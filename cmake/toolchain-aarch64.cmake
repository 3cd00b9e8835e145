# aarch64 Linux with Debian's cross compiler and its arm64 packages beside the host's.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# Without -L: the arm64 C library is installed where the emulator looks by itself. Given the cross
# compiler's copy instead, threads hang.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)

set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
