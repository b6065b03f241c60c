# Builds and runs the user's program on a folder that holds the library. For scripts that have set `work`, a folder of
# their own, and stand in the project's.

project=$PWD

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

# LIBRARY PROJECT BUILD: for Windows, with the library beside the program.
build_for_windows() {
    cmake -S "$2" -B "$3" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake" \
        -DCMAKE_EXE_LINKER_FLAGS=-static -DZELToolsInfrastructure_DIR="$1/lib/cmake/ZELToolsInfrastructure"
    cmake --build "$3"
    cp "$1"/bin/*.dll "$3/"
}

under_wine() { # COMMAND...
    local result=0 prefix=$project/build/windows/wine
    "$project/cmake/wine-run" "$prefix" "$@" || result=$?
    "$project/cmake/wine-run" "$prefix" --stop
    return "$result"
}

write_as_readme_says() { # PROJECT: the program and the lines of CMake that README.md shows
    mkdir -p "$1"
    sed -n '/^```cmake$/,/^```$/{/^```/!p}' README.md >"$1/CMakeLists.txt"
    sed -n '/^```cpp$/,/^```$/{/^```/!p}' README.md >"$1/main.cpp"
}

expect_readme_line() { # COMMAND...
    echo "+ $*"
    "$@" | tr -d '\r' | grep -x '   main.cpp: 120'
}

consume_as_readme_says() { # LIBRARY PROJECT
    write_as_readme_says "$2"
    cmake -S "$2" -B "$2/build" -G Ninja -DCMAKE_PREFIX_PATH="$1"
    cmake --build "$2/build"
    expect_readme_line "$2/build/tool"
}

consume_on_windows_as_readme_says() { # LIBRARY PROJECT
    write_as_readme_says "$2"
    build_for_windows "$1" "$2" "$2/build"
    expect_readme_line under_wine "$2/build/tool.exe"
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
    build_for_windows "$1" tests/consumer "$2"
    expect under_wine "$2/consumer.exe"
}
