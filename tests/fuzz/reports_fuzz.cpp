// Records of a run: those that a tool writes are read back, and no text of any record becomes markup of the page.
#include "fuzz/input.h"
#include "report/page.h"
#include "report/run.h"
#include "support/record.h"

namespace {

std::string Tags(const Run& run) {
    std::string page, tags;
    for (const ZELString& line : MakePage(run, "style.css", "dump")) page += line.View();
    for (std::size_t at = 0; (at = page.find('<', at)) != std::string::npos;) {
        const std::size_t end = page.find('>', at);
        tags += page.substr(at, end - at + 1);
        at = end;
    }
    return tags;
}

// The same run with harmless texts.
Run Harmless(Run run) {
    for (Scan& scan : run.scans) {
        scan.directory = "x";
        for (Word& word : scan.words) word.text = "x";
    }
    for (Batch& batch : run.batches) {
        batch.file = "x";
        for (Command& command : batch.commands) {
            if (command.Passed() == (command.how == "ended") && command.WasRun())
                command.how = "ended", command.code = 0;
            command.text = command.log = "x";
        }
    }
    for (ZELString& counter : run.counters) counter = "x";
    return run;
}

}  // namespace

FUZZ_TARGET(input) {
    static const TemporaryFolder folder;
    const ZELString path((folder / "record").c_str());
    Run run;
    if (input.Flip()) {
        WriteBytes(folder / "record",
                   input.Flip() ? input.Rest()
                                : input.Spell({"scan", "identifier", "batch", "command", "counter", "\t", "\n", "1",
                                               "-7", "9223372036854775807", "<b>", "\"", "ended", "not run",
                                               "scan\ta\t1\t2\t3\t4\t5\t6\t7\n", "identifier\tw\t3\n", "batch\tb\t1\n",
                                               "command\t1\t0\t5\tended\tlog\ttext\n"},
                                              100));
        if (!ReadRecord(path, run)) return;
    } else {
        Record record(path);
        std::vector<std::string> texts;
        while (input.remaining_bytes() > 0) {
            texts.push_back(input.Text(60));
            record.Add({"counter", texts.back()});
            for (char& c : texts.back())
                if (c >= 0 && c < ' ') c = ' ';
        }
        ASSERT_TRUE(record.Finish() && ReadRecord(path, run));
        ASSERT_EQ(Texts(run.counters), texts);
    }
    ASSERT_EQ(Tags(run), Tags(Harmless(run)));
}
