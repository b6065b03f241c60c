// Loading and unloading the library, in processes of their own: this one is linked with it.
#include "soak/soak.h"
#include "support/files.h"

void RunLoading(Soak& soak, unsigned seed) {
    const int Rounds = onWindows ? 20 : 200;
    const TemporaryFolder folder;
    TAProcess loader;
    loader.SetOutput((folder / "out").c_str());
    loader.Start(soak.Command("soak_loader", std::to_string(Rounds)), 0);
    soak.Check(CodeOf(loader) == 0, "loading, seed " + std::to_string(seed) + ": " + ReadWhole(folder / "out"));
    soak.Add(Loads, Rounds);
}
