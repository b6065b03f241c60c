// Stands for a database tool: prints its arguments and ends with 3.
#include <cstdio>

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) std::printf("[%s]", arguments[i]);
    std::printf("\n");
    return 3;
}
