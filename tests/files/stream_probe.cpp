// Uses the standard streams of the shared library from the first to the last moment of a program.
#include "YAVFStream.h"

namespace {

struct Static {
    Static() { YAVout << "before " << YAVin.isOpen() << endl; }
    ~Static() {
        YAVout << "after" << endl;
        YAVerr.Print("error %s\n", "after");
    }
} object;

}  // namespace

int main() {
    return YAVout.Print("main\n");
}
