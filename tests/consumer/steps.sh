# Builds and runs the user's program on a folder that holds the library. For scripts that have set `work`, a folder of
# their own, and stand in the project's.

expect() { # COMMAND...: the consumer's last line, run in the script's folder
    echo "+ $*"
    local output
    output=$(cd "$work" && "$@" | tr -d '\r')
    echo "$output"
    [ "$(tail -n 1 <<<"$output")" = "consumer: every family answered" ]
}

consume_by_cmake() { # LIBRARY BUILD
    cmake -S tests/consumer -B "$2" -G Ninja -DCMAKE_PREFIX_PATH="$1"
    cmake --build "$2"
    expect env RkrkROOT_PATH="$1/share/ZELToolsInfrastructure" "$2/consumer"
}

consume_as_readme_says() { # LIBRARY PROJECT: with the program and the lines of CMake that README.md shows
    mkdir -p "$2"
    sed -n '/^```cmake$/,/^```$/{/^```/!p}' README.md >"$2/CMakeLists.txt"
    sed -n '/^```cpp$/,/^```$/{/^```/!p}' README.md >"$2/main.cpp"
    cmake -S "$2" -B "$2/build" -G Ninja -DCMAKE_PREFIX_PATH="$1"
    cmake --build "$2/build"
    echo "+ $2/build/tool"
    "$2/build/tool" | tee "$2/output"
    grep -qx '   main.cpp: 120' "$2/output"
}

consume_by_pkg_config() { # LIBRARY PROGRAM
    local libraries
    libraries=$(dirname "$(find "$1" -name 'libZELToolsInfrastructure.so' -print -quit)")
    # shellcheck disable=SC2046 # one word per option
    g++ -std=c++20 tests/consumer/consumer.cpp -o "$2" \
        $(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs ZELToolsInfrastructure)
    expect env LD_LIBRARY_PATH="$libraries" "$2"
}

consume_on_windows() { # LIBRARY BUILD
    cmake -S tests/consumer -B "$2" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-x86_64.cmake" \
        -DCMAKE_EXE_LINKER_FLAGS=-static -DZELToolsInfrastructure_DIR="$1/lib/cmake/ZELToolsInfrastructure"
    cmake --build "$2"
    cp "$1"/bin/*.dll "$2/"
    local result=0
    expect "$PWD/cmake/wine-run" "$PWD/build/windows/wine" "$2/consumer.exe" || result=$?
    cmake/wine-run "$PWD/build/windows/wine" --stop
    return "$result"
}
