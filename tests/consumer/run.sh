#!/bin/bash
# One step of the consumer tests.
#   run.sh install <scratch directory> <build tree>    installs the build tree, then moves what was installed
#   run.sh unpack <scratch directory> <packages...>    unpacks Debian's packages, as if they were installed there
#   run.sh cmake <scratch directory>                   builds and runs the consumers by find_package
#   run.sh pkg_config <scratch directory>              the same from the command line
#   run.sh python <scratch directory>                  builds a wheel on what was installed, and runs with it alone
#   run.sh module <scratch directory>                  runs with the Python module that was unpacked
#   run.sh subdirectory <scratch directory>            what a build that adds the source tree to itself gets
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$2
prefix=$scratch/prefix
loader=/lib64/ld-linux-x86-64.so.2

fail() {
    echo "FAILED: $1" >&2
    exit 1
}

# The move shows that nothing in an installed tree names the prefix it was installed to.
install() {
    rm -rf "$scratch"
    mkdir -p "$scratch"
    "$CMAKE" --install "$1" --prefix "$scratch/first"
    mv "$scratch/first" "$prefix"
    [ -e "$prefix/include/kels.h" ] || fail "kels.h was not installed"
    [ "$(readlink "$prefix/lib/libkels.so")" = libkels.so.2 ] || fail "the link name libkels.so does not lead to libkels.so.2"
    ! readelf -d "$prefix/lib/libkels.so.2" | grep -E 'NEEDED.*(stdc|gcc_s)' || fail "programs in C would load the C++ library"
    ! find "$prefix/lib/glibc-hwcaps" -name libkels.so 2>/dev/null | grep . || fail "a level has a link name of its own"
}

unpack() {
    local package
    rm -rf "$scratch"
    mkdir -p "$scratch/root"
    for package in "$@"; do dpkg-deb -x "$package" "$scratch/root"; done
    ln -s root/usr "$prefix"
    [ "$(readlink "$(libdir)/libkels.so")" = libkels.so.2 ] || fail "the link name libkels.so does not lead to libkels.so.2"
}

# Where the libraries are: lib, or a directory of Debian's in it.
libdir() {
    dirname "$(find "$prefix/lib/" -name libkels.so)"
}

cmake() {
    local build=$scratch/cmake
    rm -rf "$build"
    "$CMAKE" -G "$GENERATOR" -S "$here/project" -B "$build" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" -DFACES="$FACES"
    "$CMAKE" --build "$build"
    runs_at_every_level "$build/consumer_c"
    runs_at_every_level "$build/consumer_cpp"
    [ -z "$FACES" ] || runs_at_every_level "$build/face"
}

pkg_config() {
    export PKG_CONFIG_PATH=$(libdir)/pkgconfig
    local flags
    flags="-Wall -Wextra -pedantic -Werror $(pkg-config --cflags --libs kels) -Wl,-rpath,$(pkg-config --variable=libdir kels)"
    # shellcheck disable=SC2086
    {
        "$CC" -std=c11 "$here/project/consumer.c" -o "$scratch/consumer_c" $flags
        "$CXX" -std=c++11 "$here/project/consumer.cpp" -o "$scratch/consumer_cpp" $flags
        "$CC" -std=c11 "$here/../../examples/first.c" -o "$scratch/first" $flags
    }
    runs_at_every_level "$scratch/consumer_c"
    runs_at_every_level "$scratch/consumer_cpp"
    runs_at_every_level "$scratch/first"
}

# Without a network: what pip would fetch is installed, or the test fails. The sources are copied, for it builds in them.
python() {
    local source=$scratch/python site=$scratch/site
    rm -rf "$source" "$site"
    mkdir -p "$source"
    cp -r "$here"/../../{faces,include,python,pyproject.toml,setup.py} "$source"
    CMAKE_ARGS="-DCMAKE_PREFIX_PATH=$prefix" CC=$CC CXX=$CXX "$PYTHON" -m pip wheel --quiet --no-index --no-deps \
        --no-build-isolation --wheel-dir "$scratch/wheels" "$source"
    "$PYTHON" -m pip install --quiet --root-user-action=ignore --no-index --no-deps --target "$site" "$scratch"/wheels/kels-*.whl
    (cd "$scratch" && PYTHONPATH=$site prints_the_mean "$PYTHON")
}

# Debian's module has no library of its own and names no place: it takes the system's, which lies in the scratch root.
module() {
    local packages=$prefix/lib/python3/dist-packages level object
    ! find "$packages" -name 'libkels*' | grep . || fail "the module has a library of its own"
    ! readelf -d "$packages"/kels/_core.*.so | grep -E 'R(UN)?PATH' || fail "the module names a place of the library"
    export PYTHONPATH=$packages LD_LIBRARY_PATH
    LD_LIBRARY_PATH=$(libdir)
    for level in $(levels); do
        prints_the_mean "$loader" --glibc-hwcaps-mask "$level" "$PYTHON"
        object=$("$loader" --glibc-hwcaps-mask "$level" "$PYTHON" -B -c "import kels.raw, re
print(*set(re.findall(r'/\S*libkels\S*', open('/proc/self/maps').read())))")
        [ "$object" = "$(object_of "$level")" ] || fail "Python loads $object at level $level"
    done
}

# prints_the_mean <Python...>: runs the first program.
prints_the_mean() {
    local printed
    printed=$("$@" -B "$here/../../examples/first.py")
    [ "$printed" = "0.0 0.0 0.25 0.5 0.75 1.0 1.0 1.0 No error, it's ok" ] || fail "Python printed: $printed"
}

subdirectory() {
    local build=$scratch/subdirectory targets
    rm -rf "$build"
    "$CMAKE" -G "$GENERATOR" -S "$here/subproject" -B "$build" -DKELS_ROOT="$here/../.." \
        -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX"
    targets=$("$CMAKE" --build "$build" --target help)
    grep -q '^kels:' <<<"$targets" || fail "the library is no target of the build"
    ! grep -E '^(kels-|gtest|install)' <<<"$targets" || fail "more than the library came with it"
}

# The levels that are installed and that this processor runs, best first; then the one that every processor runs.
# The loader's words are read to their end before they are searched: a search that stops early would stop the loader
# by a broken pipe, and the level would be missed.
levels() {
    local level supported
    supported=$("$loader" --help)
    for level in x86-64-v4 x86-64-v3; do
        [ -d "$(libdir)/glibc-hwcaps/$level" ] && grep -q "$level (supported" <<<"$supported" && echo "$level"
    done
    echo none
}

object_of() {
    if [ "$1" = none ]; then realpath "$(libdir)/libkels.so.2"; else realpath "$(libdir)/glibc-hwcaps/$1/libkels.so.2"; fi
}

# loaded <program> <loader option...>: the library that the loader would take
loaded() {
    local program=$1
    shift
    realpath "$("$loader" "$@" --list "$program" | sed -n 's/.*libkels\.so\.2 => \(.*\) (.*/\1/p')"
}

runs_at_every_level() {
    local program=$1 level
    [ "$(loaded "$program")" = "$(object_of "$(levels | sed -n 1p)")" ] || fail "$program does not load the best level"
    "$program"
    for level in $(levels); do
        [ "$(loaded "$program" --glibc-hwcaps-mask "$level")" = "$(object_of "$level")" ] ||
            fail "$program does not load the object of level $level"
        "$loader" --glibc-hwcaps-mask "$level" "$program"
    done
}

"$1" "${@:3}"
