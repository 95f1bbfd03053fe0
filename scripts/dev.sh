# Source this in a shell for work on single targets: it sets up what is missing, configures build/release and turns the
# compiler cache on.
export CCACHE_DIR="${CCACHE_DIR:-$PWD/build/ccache}" CCACHE_BASEDIR="$PWD"
mkdir -p build && scripts/setup.sh build test &&
    cmake --preset release -D VL_WERROR=ON -D CMAKE_C_COMPILER_LAUNCHER=ccache -D CMAKE_CXX_COMPILER_LAUNCHER=ccache >/dev/null
