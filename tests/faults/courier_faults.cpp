// The inbox of courier: whatever runs out of memory, nothing is written beside the place of a name or through a link.

#include "courier/inbox.h"
#include "courier/names.h"
#include "faults/sweep.h"

namespace {

const std::string Long(40, 'x');

Outcome FindsPlaces(Round& round) {
    std::filesystem::create_directories(round / "inbox");
    std::filesystem::create_directories(round / ("outside" + Long));
    std::error_code refused;
    std::filesystem::create_directory_symlink(round / ("outside" + Long), round / ("inbox/link" + Long), refused);
    const Inbox inbox((round / "inbox").c_str());
    round.Begin();
    ZELString path;
    const bool isFound = !IsProblem(inbox.FindPlace(Long + "/below/file", path));
    const bool isMade = !IsProblem(inbox.MakeDirectory("made" + Long));
    for (const std::string& name : {"../" + Long, Long + "/../../up", "link" + Long + "/file", "link" + Long})
        EXPECT_TRUE(refused || IsProblem(inbox.MakeDirectory(name))) << name;
    round.End();
    return {isFound && isMade, isFound ? path.SubString(path.FindPosition("inbox"), 1000).CastToCharPtr() : ""};
}

Outcome TakesFiles(Round& round) {
    const ZELString place((round / ("file" + Long)).c_str());
    round.Begin();
    ZELString problem;
    {
        Arrival arrival;
        problem = arrival.Begin(place);
        if (!IsProblem(problem)) problem = arrival.Add("bytes", 5);
        if (!IsProblem(problem)) problem = arrival.Settle();
    }
    round.End();
    const std::string taken = ReadBytes(round / ("file" + Long));
    return {!IsProblem(problem), taken};
}

const Scenario scenarios[] = {{"CourierPlaces", FindsPlaces}, {"CourierFiles", TakesFiles}};

}  // namespace
