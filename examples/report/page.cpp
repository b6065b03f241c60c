// One function for each part of the page, from top to bottom. Every text of the records goes through Escaped; links are
// made of numbers and fixed names alone.

#include "report/page.h"

#include <algorithm>
#include <cstdio>

#include "TADiagnostics.h"
#include "TAHtmlBanner.h"
#include "report/markup.h"

namespace {

class Page {
public:
    explicit Page(const Run& run) : _run(run) {}

    void Head(const ZELString& styleSheet);
    void Totals();
    void Commands();
    void Words();
    void Counters();
    void Foot(const ZELString& dump);
    // None when memory ran out for one.
    ZELListValZELString Lines() const { return _isWhole ? _lines : ZELListValZELString(); }

private:
    void Add(const ZELString& line) { _isWhole = _lines.Append(line) == 0 && _isWhole; }
    void Figure(const ZELString& number, const char* what) { Add("<li><b>" + number + "</b> " + what + "</li>"); }
    void CommandTable(const Batch& batch);
    void CommandRow(const Command& command, double share);
    void WordTable(const Scan& scan);

    const Run& _run;
    ZELListValZELString _lines;
    bool _isWhole = true;
};

void Page::Head(const ZELString& styleSheet) {
    Add("<!DOCTYPE html>");
    Add("<html lang=\"en\"><head><meta charset=\"utf-8\"><title>Run " + Escaped(_run.identifier) + "</title>");
    if (styleSheet.Length() > 0) Add("<link rel=\"stylesheet\" href=\"" + styleSheet + "\">");
    Add("</head><body>");
    ZELListValZELString menu;
    menu.Append("<a href=\"#totals\">Totals</a>");
    if (!_run.batches.empty()) menu.Append("<a href=\"#commands\">Commands</a>");
    if (!_run.scans.empty()) menu.Append("<a href=\"#identifiers\">Identifiers</a>");
    menu.Append("<a href=\"#counters\">Counters</a>");
    const ZELListValZELString banner = BuildHtmlBanner("Report of a run", menu, "index.html", "");
    _isWhole = banner.Size() > 0 && _isWhole;
    for (const ZELString& fragment : banner) Add(fragment);
}

void Page::Totals() {
    Add("<h1 id=\"totals\">Run <code>" + Escaped(_run.identifier) + "</code></h1>");
    Add("<p>" + Escaped(_run.date) + ", on " + Escaped(_run.host) + "</p>");
    if (_run.note.Length() > 0) Add("<p>" + Escaped(_run.note) + "</p>");
    for (const Batch& batch : _run.batches) {
        const int failed = batch.Failed();
        Add("<h3>Commands of " + Escaped(batch.file) + "</h3><ul class=\"figures\">");
        Figure(Grouped(static_cast<long long>(batch.commands.size())), "commands");
        Figure(ZELString(failed == 0 ? "<span class=\"passed\">" : "<span class=\"failed\">") + Grouped(failed) +
                   "</span>",
               "failed");
        Figure(Grouped(batch.NotRun()), "not run");
        Figure(Seconds(batch.milliseconds), "in all");
        Add("</ul>");
    }
    for (const Scan& scan : _run.scans) {
        Add("<h3>Sources in " + Escaped(scan.directory) + "</h3><ul class=\"figures\">");
        Figure(Grouped(scan.files), "files");
        Figure(Grouped(scan.unreadable), "unreadable");
        Figure(Grouped(scan.lines), "lines");
        Figure(Grouped(scan.bytes), "bytes");
        Figure(Grouped(scan.identifiers), "identifiers");
        Figure(Grouped(scan.distinct), "distinct");
        Figure(Seconds(scan.milliseconds), "in all");
        Add("</ul>");
    }
}

void Page::CommandRow(const Command& command, double share) {
    const char* const look = command.Passed() ? "passed" : command.WasRun() ? "failed" : "skipped";
    const ZELString line = toString(command.line);
    Add("<tr><td class=\"number\">" + line + "</td><td class=\"" + look + "\">" +
        (command.Passed() ? "passed" : Escaped(command.how == "ended" ? "failed" : command.how)) +
        "</td><td class=\"number\">" + toString(command.code) + "</td>");
    Add("<td class=\"number\">" + Seconds(command.milliseconds) + "</td>" + BarCell(share));
    Add("<td><code>" + Escaped(command.text) + "</code></td>");
    Add(command.link.Length() == 0 ? ZELString("<td></td></tr>")
                                   : "<td><a href=\"" + command.link + "\">log</a></td></tr>");
}

void Page::CommandTable(const Batch& batch) {
    long long slowest = 1;
    for (const Command& command : batch.commands) slowest = std::max(slowest, command.milliseconds);
    Add("<h3>" + Escaped(batch.file) + "</h3>");
    Add("<table class=\"report\"><tr><th class=\"number\">Line</th><th>Result</th><th class=\"number\">Code</th>"
        "<th class=\"number\">Time</th><th></th><th>Command</th><th>Output</th></tr>");
    for (const Command& command : batch.commands)
        CommandRow(command, static_cast<double>(command.milliseconds) / static_cast<double>(slowest));
    Add("</table>");
}

void Page::WordTable(const Scan& scan) {
    long long most = 1;
    for (const Word& word : scan.words) most = std::max(most, word.count);
    Add("<h3>" + Escaped(scan.directory) + "</h3>");
    Add("<table class=\"report\"><tr><th>Identifier</th><th class=\"number\">Count</th>"
        "<th class=\"number\">Share</th><th></th></tr>");
    for (const Word& word : scan.words) {
        char share[16];
        std::snprintf(share, sizeof share, "%.2f %%",
                      100.0 * static_cast<double>(word.count) /
                          static_cast<double>(std::max({scan.identifiers, word.count, 1LL})));
        Add("<tr><td><code>" + Escaped(word.text) + "</code></td><td class=\"number\">" + Grouped(word.count) +
            "</td><td class=\"number\">" + share + "</td>" +
            BarCell(static_cast<double>(word.count) / static_cast<double>(most)) + "</tr>");
    }
    Add("</table>");
}

void Page::Commands() {
    if (_run.batches.empty()) return;
    Add("<h2 id=\"commands\">Commands</h2>");
    for (const Batch& batch : _run.batches) CommandTable(batch);
}

void Page::Words() {
    if (_run.scans.empty()) return;
    Add("<h2 id=\"identifiers\">Most frequent identifiers</h2>");
    for (const Scan& scan : _run.scans) WordTable(scan);
}

void Page::Counters() {
    Add("<h2 id=\"counters\">Counters</h2><ul>");
    for (const ZELString& counter : _run.counters) Add("<li>" + Escaped(counter) + "</li>");
    Add("</ul>");
}

void Page::Foot(const ZELString& dump) {
    Add("<p>The same for scripts: <a href=\"" + dump + "\">" + dump + "</a> and the files beside it.</p>");
    Add("</body></html>");
}

}  // namespace

ZELListValZELString MakePage(const Run& run, const ZELString& styleSheet, const ZELString& dump) {
    Page page(run);
    page.Head(styleSheet);
    page.Totals();
    page.Commands();
    page.Words();
    page.Counters();
    page.Foot(dump);
    return page.Lines();
}
